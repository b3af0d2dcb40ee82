#include "mox_xmlApi/xml/xml_entities.h"

#include <gtest/gtest.h>

#include "tests/unit/xml_support.h"

namespace mox {
namespace {

TEST(XmlEntities, AreFiveInTheirOrder) {
    std::string table;
    for (const XmlEntity& entity : kXmlEntities)
        table += test::Shown(entity.text) + static_cast<char>(entity.character) + " ";
    EXPECT_EQ(table, "&amp;& &apos;' &gt;> &lt;< &quot;\" ");
}

}  // namespace
}  // namespace mox
