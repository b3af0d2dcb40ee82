// Checks what must hold for every tree at any time, on the trees inside the handles.
#ifndef MOX_XMLAPI_TESTS_FAULTS_TREE_CHECK_SUPPORT_H
#define MOX_XMLAPI_TESTS_FAULTS_TREE_CHECK_SUPPORT_H

#include <gtest/gtest.h>

#include "mox_xmlApi/xml/xml_document.h"

namespace faults {

// Whether below the node the links between siblings are whole, every node is of a kind that may stand there,
// every text can be read to its end, and the look-ups by name give what a plain scan gives.
testing::AssertionResult IsSound(const mox::XmlDocument& document);

}  // namespace faults

#endif
