// The document that the tests of the profile family start with.
#ifndef MOX_XMLAPI_TESTS_FAULTS_FAILING_MEMORY_PROFILE_SUPPORT_H
#define MOX_XMLAPI_TESTS_FAULTS_FAILING_MEMORY_PROFILE_SUPPORT_H

#include <string_view>

#include "tests/faults/memory_script_support.h"

namespace faults {

inline constexpr std::string_view kDocument =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<Settings xmlns:noNamespaceSchemaLocation=\"MXSettings.xsd\">\n"
    "<!-- note -->"
    "<Table name=\"A\" first_id=\"7\" type=\"000A\" editable=\"true\" eud=\"true\">"
    "<Var name=\"k\" type=\"string\" array=\"\" eud=\"true\"><Value>one &amp; two</Value></Var>"
    "<Var name=\"hex\" type=\"byte\" array=\"array\"><Value>00102030405060708090A0B0C0D0E0F0</Value></Var>"
    "<Var name=\"ui\" type=\"long\"><UI control=\"num\" prov_index=\"3\" prov_owner=\"dwg\" name=\"Shown\">"
    "<Comment>for people</Comment><Value>12</Value></UI></Var>"
    "</Table>"
    "<Table name=\"B\"/>"
    "<Table name=\"A\" type=\"000B\"><Var name=\"k2\" type=\"long\"><Value>5</Value></Var></Table>"
    "</Settings>\n";

inline void LoadDocument(World& world) {
    world.LoadProfile(kDocument);
}

}  // namespace faults

#endif
