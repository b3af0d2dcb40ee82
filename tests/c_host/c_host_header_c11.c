/* The header must be a whole program's first include, in C11. */
#include "mox_host/mox_host.h"

/* Hosts built by other compilers and with later headers rely on these. */
_Static_assert(sizeof(mox_status) == 4, "a status");
_Static_assert(sizeof(mox_problem_info) == 104 && offsetof(mox_problem_info, line) == 8, "a problem");
_Static_assert(offsetof(mox_problem_info, text) == 24 && offsetof(mox_problem_info, expected_size) == 96,
               "a problem");
_Static_assert(sizeof(mox_open_options) == 32 && offsetof(mox_open_options, table_name) == 16,
               "open options");
_Static_assert(sizeof(mox_save_options) == 48 && offsetof(mox_save_options, section_size) == 40,
               "save options");
_Static_assert(sizeof(mox_document_info) == 12 && sizeof(mox_section_info) == 8, "what a document is");
_Static_assert(sizeof(mox_table_options) == 16 && offsetof(mox_table_options, type) == 12, "table options");
_Static_assert(sizeof(mox_entry) == 112 && offsetof(mox_entry, name) == 16, "an entry");
_Static_assert(offsetof(mox_entry, has_ui) == 48 && offsetof(mox_entry, ui_value_size) == 104, "an entry");
_Static_assert(sizeof(mox_diagnostic) == 48 && offsetof(mox_diagnostic, message) == 32, "a diagnostic");
_Static_assert(sizeof(mox_node) == 88 && offsetof(mox_node, attribute_count) == 80, "a node");
_Static_assert(sizeof(mox_attribute) == 40 && offsetof(mox_attribute, value) == 24, "an attribute");

/* Never called: the calls must compile without a warning. */
mox_status CHostUse(void);
mox_status CHostUse(void) {
    mox_document* document = NULL;
    int64_t exposure = 1000;
    mox_status status = mox_open(MOX_STR("camera.xml"), MOX_SETTINGS, NULL, &document, NULL);
    if (status == MOX_OK)
        status = mox_get_int(document, MOX_STR("Camera"), MOX_STR("Exposure"), &exposure, NULL);
    mox_document_free(document);
    return status;
}
