// A settings document and a table document with presentation data, written, saved, opened and read by mox_host. In the
// part of the language that C and C++ have in common, without any runtime library.
#include "mox_host/mox_host.h"

// The runtime library's name for "this program uses floating point".
#if defined(__cplusplus)
extern "C" {
#endif
int _fltused = 0;
#if defined(__cplusplus)
}
#endif

static int IsText(const char* text, size_t size, const char* expected, size_t expectedSize) {
    size_t i = 0;
    if (size != expectedSize) return 0;
    for (; i < size; ++i)
        if (text[i] != expected[i]) return 0;
    return text[size] == 0;
}

// The result of a save that overwrites; options without an initialiser for all fields would need memset.
static mox_status SaveOver(mox_document* document, const char* path, size_t pathSize) {
    mox_save_options options;
    options.size = sizeof options;
    options.form = MOX_FORM_DEFAULT;
    options.content = MOX_CONTENT_DOCUMENT;
    options.flags = MOX_SAVE_OVERWRITE;
    options.backup = NULL;
    options.backup_size = 0;
    options.section = NULL;
    options.section_size = 0;
    return mox_save(document, path, pathSize, &options, NULL);
}

static int WriteSettings(const char* path, size_t pathSize) {
    static const unsigned char mask[] = {255, 255, 0};
    mox_document* settings = NULL;
    if (mox_new_settings(&settings, NULL) != MOX_OK) return 10;
    if (mox_set_int(settings, MOX_STR("Camera"), MOX_STR("Exposure"), 2400, MOX_TYPE_LONG, NULL) != MOX_OK)
        return 11;
    if (mox_set_text(settings, MOX_STR("Camera"), MOX_STR("Title"), MOX_STR("Fr\xC3\xA4ser"), NULL) != MOX_OK)
        return 12;
    if (mox_set_double(settings, MOX_STR("Camera"), MOX_STR("Gain"), 1.25, NULL) != MOX_OK) return 13;
    if (mox_set_bool(settings, MOX_STR("Camera"), MOX_STR("Armed"), 1, NULL) != MOX_OK) return 14;
    if (mox_set_bytes(settings, MOX_STR("Camera"), MOX_STR("Mask"), mask, sizeof mask, NULL) != MOX_OK)
        return 15;
    if (SaveOver(settings, path, pathSize) != MOX_OK) return 16;
    mox_document_free(settings);
    return 0;
}

static int ReadSettings(const char* path, size_t pathSize) {
    mox_document* settings = NULL;
    int64_t exposure = 0;
    double gain = 0;
    int32_t isArmed = 0;
    char text[16];
    unsigned char mask[8];
    size_t size = 0;
    mox_list* names = NULL;
    const char* name = NULL;
    if (mox_open(path, pathSize, MOX_SETTINGS, NULL, &settings, NULL) != MOX_OK) return 20;
    if (mox_get_int(settings, MOX_STR("Camera"), MOX_STR("Exposure"), &exposure, NULL) != MOX_OK ||
        exposure != 2400)
        return 21;
    if (mox_get_text(settings, MOX_STR("Camera"), MOX_STR("Title"), text, sizeof text, &size, NULL) !=
            MOX_OK ||
        !IsText(text, size, MOX_STR("Fr\xC3\xA4ser")))
        return 22;
    if (mox_get_double(settings, MOX_STR("Camera"), MOX_STR("Gain"), &gain, NULL) != MOX_OK || gain != 1.25)
        return 23;
    if (mox_get_bool(settings, MOX_STR("Camera"), MOX_STR("Armed"), &isArmed, NULL) != MOX_OK || isArmed != 1)
        return 24;
    if (mox_get_bytes(settings, MOX_STR("Camera"), MOX_STR("Mask"), mask, sizeof mask, &size, NULL) !=
            MOX_OK ||
        size != 3 || mask[0] != 255 || mask[2] != 0)
        return 25;
    if (mox_section_names(settings, &names, NULL) != MOX_OK || mox_list_count(names) != 1) return 26;
    if (mox_list_name(names, 0, &name, &size) != MOX_OK || !IsText(name, size, MOX_STR("Camera"))) return 27;
    mox_list_free(names);
    mox_document_free(settings);
    return 0;
}

static int WriteTable(const char* path, size_t pathSize) {
    mox_document* table = NULL;
    mox_entry entry;
    if (mox_new_table(MOX_STR("Tools"), NULL, &table, NULL) != MOX_OK) return 30;
    entry.size = sizeof entry;
    entry.type = MOX_TYPE_LONG;
    entry.shape = MOX_SHAPE_ARRAY;
    entry.id = 7;
    entry.name = "Speed";
    entry.name_size = 5;
    entry.value = "900";
    entry.value_size = 3;
    entry.has_ui = 1;
    entry.control = MOX_CONTROL_NUMBER;
    entry.provider_owner = MOX_OWNER_APP;
    entry.provider_index = 4;
    entry.shown_name = "Speed of rotation";
    entry.shown_name_size = 17;
    entry.comment = "per minute";
    entry.comment_size = 10;
    entry.ui_value = NULL;
    entry.ui_value_size = 0;
    if (mox_add_entry(table, NULL, 0, NULL, 0, &entry, 0, NULL) != MOX_OK) return 31;
    if (SaveOver(table, path, pathSize) != MOX_OK) return 32;
    mox_document_free(table);
    return 0;
}

static int ReadTable(const char* path, size_t pathSize) {
    mox_document* table = NULL;
    mox_list* entries = NULL;
    mox_entry entry;
    if (mox_open(path, pathSize, MOX_TABLE, NULL, &table, NULL) != MOX_OK) return 40;
    if (mox_entries(table, NULL, 0, &entries, NULL) != MOX_OK || mox_list_count(entries) != 1) return 41;
    entry.size = sizeof entry;
    if (mox_list_entry(entries, 0, &entry) != MOX_OK) return 42;
    if (entry.type != MOX_TYPE_LONG || entry.shape != MOX_SHAPE_ARRAY || entry.id != 7) return 43;
    if (!IsText(entry.name, entry.name_size, MOX_STR("Speed")) ||
        !IsText(entry.value, entry.value_size, MOX_STR("900")))
        return 44;
    if (entry.has_ui != 1 || entry.control != MOX_CONTROL_NUMBER || entry.provider_owner != MOX_OWNER_APP ||
        entry.provider_index != 4)
        return 45;
    if (!IsText(entry.shown_name, entry.shown_name_size, MOX_STR("Speed of rotation")) ||
        !IsText(entry.comment, entry.comment_size, MOX_STR("per minute")))
        return 46;
    mox_list_free(entries);
    mox_document_free(table);
    return 0;
}

// A failure, which the C++ code behind the interface reports by an exception or a problem, comes back as a status.
static int Fail(void) {
    static const char text[] = "<Settings>\n<Table></Tabel>";
    mox_problem* problem = NULL;
    mox_problem_info info;
    mox_document* document = NULL;
    if (mox_problem_new(&problem) != MOX_OK) return 50;
    if (mox_parse(text, sizeof text - 1, MOX_SETTINGS, NULL, &document, problem) != MOX_SYNTAX) return 51;
    info.size = sizeof info;
    if (mox_problem_get(problem, &info) != MOX_OK || info.line != 2 || info.column != 8) return 52;
    if (document != NULL || info.message_size == 0) return 53;
    mox_problem_free(problem);
    return 0;
}

static int CallAll(const char* settings, size_t settingsSize, const char* table, size_t tableSize) {
    int failed = WriteSettings(settings, settingsSize);
    if (failed == 0) failed = ReadSettings(settings, settingsSize);
    if (failed == 0) failed = WriteTable(table, tableSize);
    if (failed == 0) failed = ReadTable(table, tableSize);
    return failed != 0 ? failed : Fail();
}
