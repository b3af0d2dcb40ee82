/* A library that says it is mox_host of the version in MOX_TEST_VERSION; and what a compiler makes of the header's
 * structures. */
#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>

#include "mox_host/mox_host.h"

uint32_t mox_version(void) {
    const char* const version = getenv("MOX_TEST_VERSION");
    return version == NULL ? 0 : (uint32_t)strtoul(version, NULL, 10);
}

size_t mox_test_layout(uint32_t index);

/* The size of a structure and the offset of its last field, as 1000 * size + offset; 0 after the last structure. */
size_t mox_test_layout(uint32_t index) {
#define LAYOUT(type, last) (1000 * sizeof(type) + offsetof(type, last))
    static const size_t layouts[] = {
        LAYOUT(mox_problem_info, expected_size), LAYOUT(mox_open_options, table_name_size),
        LAYOUT(mox_save_options, section_size),  LAYOUT(mox_document_info, form),
        LAYOUT(mox_table_options, type),         LAYOUT(mox_section_info, editable),
        LAYOUT(mox_entry, ui_value_size),        LAYOUT(mox_diagnostic, message_size)};
    return index < sizeof layouts / sizeof layouts[0] ? layouts[index] : 0;
}
