/*
 * A host of mox_host in plain C11, as it could be written with any compiler, or in any language that calls C functions:
 * opens settings, lists sections and entries with what an editor displays, changes a key, says why a change is refused,
 * saves without overwriting what somebody else has written, and shows where a broken file is broken.
 *
 *   host_demo <folder with camera.xml> <scratch folder>
 *
 * The exit code is 0 if all results were as expected.
 */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "mox_host/mox_host.h"

enum { kPathBytes = 4096 };

static mox_problem* problem = NULL;

/* Ends the program unless the call succeeded. */
static void Expect(mox_status status, const char* what) {
    mox_problem_info info = {0};
    if (status == MOX_OK) return;
    info.size = sizeof info;
    mox_problem_get(problem, &info);
    fprintf(stderr, "host_demo: %s: %s: %s\n", what, mox_status_name(status), info.text);
    exit(1);
}

static void ExpectRefused(mox_status status, mox_status expected, const char* what) {
    mox_problem_info info = {0};
    info.size = sizeof info;
    mox_problem_get(problem, &info);
    if (status != expected) {
        fprintf(stderr, "host_demo: %s: %s instead of %s\n", what, mox_status_name(status),
                mox_status_name(expected));
        exit(1);
    }
    printf("  refused: %s\n", info.message);
}

static void ListEntries(const mox_document* settings, const char* section, size_t sectionSize) {
    mox_list* entries = NULL;
    Expect(mox_entries(settings, section, sectionSize, &entries, problem), "list the entries");
    for (size_t i = 0; i < mox_list_count(entries); ++i) {
        mox_entry entry = {0};
        entry.size = sizeof entry;
        Expect(mox_list_entry(entries, i, &entry), "read an entry");
        printf("    %s = %s", entry.name, entry.value != NULL ? entry.value : "?");
        if (entry.has_ui != 0 && entry.shown_name_size != 0) printf("  (%s)", entry.shown_name);
        printf("\n");
    }
    mox_list_free(entries);
}

static void ListSections(const mox_document* settings) {
    mox_list* sections = NULL;
    Expect(mox_section_names(settings, &sections, problem), "list the sections");
    for (size_t i = 0; i < mox_list_count(sections); ++i) {
        const char* name = NULL;
        size_t size = 0;
        Expect(mox_list_name(sections, i, &name, &size), "read a name");
        printf("  section %s\n", name);
        if (strcmp(name, "Camera") == 0) ListEntries(settings, name, size);
    }
    mox_list_free(sections);
}

static void ChangeKeys(mox_document* settings) {
    int64_t exposure = 1000; /* stays if there is no such key */
    mox_get_int(settings, MOX_STR("Camera"), MOX_STR("Exposure"), &exposure, NULL);
    printf("  exposure %d us\n", (int)exposure);
    Expect(
        mox_set_int(settings, MOX_STR("Camera"), MOX_STR("Exposure"), exposure + 600, MOX_TYPE_LONG, problem),
        "write a number");
    ExpectRefused(mox_get_int(settings, MOX_STR("Camera"), MOX_STR("Model"), &exposure, problem),
                  MOX_WRONG_TYPE, "read a text as a number");
    ExpectRefused(
        mox_set_text(settings, MOX_STR("Camera"), MOX_STR("Owner"), MOX_STR("M\xC3\xBCller"), problem),
        MOX_NOT_KEPT, "write a text that a narrow file loses");
}

static void SaveAndOpen(mox_document* settings, const char* path) {
    const size_t size = strlen(path);
    mox_save_options overwriting = {0};
    mox_document* opened = NULL;
    int64_t exposure = 0;
    overwriting.size = sizeof overwriting;
    overwriting.flags = MOX_SAVE_OVERWRITE;
    Expect(mox_save(settings, path, size, &overwriting, problem), "save");
    Expect(mox_open(path, size, MOX_SETTINGS, NULL, &opened, problem), "open what was saved");
    Expect(mox_get_int(opened, MOX_STR("Camera"), MOX_STR("Exposure"), &exposure, problem), "read a number");
    printf("  saved and opened again: exposure %d us\n", (int)exposure);
    Expect(mox_set_bool(settings, MOX_STR("Trigger"), MOX_STR("Armed"), 0, problem), "write a truth value");
    Expect(mox_save(settings, path, size, NULL, problem), "save over the file that was saved last");
    /* The file is no longer the one that this document was read from. */
    ExpectRefused(mox_save(opened, path, size, NULL, problem), MOX_CHANGED, "overwrite another change");
    mox_document_free(opened);
}

static void Diagnose(void) {
    static const char broken[] = "<Settings>\n\t<Table name=\"Camera\">\n\t</Tabel>\n</Settings>\n";
    mox_list* diagnostics = NULL;
    Expect(mox_diagnose(broken, sizeof broken - 1, MOX_FORM_DEFAULT, 0, &diagnostics, problem), "diagnose");
    for (size_t i = 0; i < mox_list_count(diagnostics); ++i) {
        mox_diagnostic found = {0};
        found.size = sizeof found;
        Expect(mox_list_diagnostic(diagnostics, i, &found), "read a diagnostic");
        printf("  line %d, column %d: %s\n", (int)found.line, (int)found.column, found.message);
    }
    mox_list_free(diagnostics);
}

int main(int argc, char** argv) {
    char path[kPathBytes];
    mox_document* settings = NULL;
    if (argc != 3) {
        fprintf(stderr, "usage: host_demo <folder with camera.xml> <existing scratch folder>\n");
        return 2;
    }
    Expect(mox_problem_new(&problem), "make a problem");
    snprintf(path, sizeof path, "%s/camera.xml", argv[1]);
    Expect(mox_open(path, strlen(path), MOX_SETTINGS, NULL, &settings, problem), "open");
    ListSections(settings);
    ChangeKeys(settings);
    snprintf(path, sizeof path, "%s/host_demo.xml", argv[2]);
    SaveAndOpen(settings, path);
    mox_document_free(settings);
    Diagnose();
    mox_problem_free(problem);
    printf("all results as expected\n");
    return 0;
}
