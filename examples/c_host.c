/*
 * A host program in plain C11: creates a settings document, writes and reads keys, lists the sections, saves
 * the document and loads it again. Then it works on a section and a table, as far as C allows: without entry
 * records.
 *
 *   c_host <scratch folder>
 *
 * The exit code is 0 if all results were as expected.
 */
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "mox_xmlApi/mox_xmlApi.h"

/* A string literal of 16-bit units: W("Window"). */
#if defined(_WIN32)
#define W(text) L##text
#else
#define W(text) u##text
#endif

enum { kNameUnits = 64, kPathUnits = 1024 };

static void Expect(bool isTrue, const char* what) {
    if (isTrue) return;
    fprintf(stderr, "c_host: unexpected result: %s\n", what);
    exit(1);
}

/* Makes "folder/file" in 16-bit units. This host accepts only ASCII paths. */
static void MakePath(const char* folder, const char* file, wchar16 path[kPathUnits]) {
    const char* const parts[] = {folder, "/", file};
    size_t length = 0;
    for (size_t part = 0; part < 3; ++part) {
        for (const char* unit = parts[part]; *unit != '\0'; ++unit) {
            Expect(length + 1 < kPathUnits && (unsigned char)*unit < 0x80, "a short ASCII path");
            path[length++] = (wchar16)*unit;
        }
    }
    path[length] = 0;
}

static void Print(const wchar16* text) {
    for (; *text != 0; ++text)
        putchar(*text < 0x80 ? (int)*text : '?');
}

static bool IsSame(const wchar16* a, const wchar16* b) {
    while (*a != 0 && *a == *b) {
        ++a;
        ++b;
    }
    return *a == *b;
}

static void WriteKeys(moxSettings* settings) {
    static const uint8_t mask[] = {255, 255, 255, 0};
    Expect(xmlWriteProfileInt(settings, W("Window"), W("Left"), -120) == 1, "write a number");
    Expect(xmlWriteProfileString(settings, W("Window"), W("Title"), W("Line 3 <north>")) == 1,
           "write a text");
    Expect(xmlWriteProfileData(settings, W("Network"), W("Mask"), mask, sizeof mask) == 1, "write bytes");
    Expect(xmlWriteProfileString(settings, W("Network"), W("Old"), W("to be deleted")) == 1, "add a key");
    Expect(xmlWriteProfileString(settings, W("Network"), W("Old"), NULL) == 1, "delete a key");
}

static void ReadKeys(moxSettings* settings) {
    wchar16 title[kNameUnits];
    uint8_t mask[8];
    Expect(xmlGetProfileInt(settings, W("Window"), W("Left"), 0) == -120, "read a number");
    Expect(xmlGetProfileInt(settings, W("Window"), W("Top"), 40) == 40, "a default");
    Expect(xmlGetProfileString(settings, W("Window"), W("Title"), title, kNameUnits, W("")) == 14,
           "the length of a text");
    Expect(IsSame(title, W("Line 3 <north>")), "read a text");
    Expect(xmlGetProfileData(settings, W("Network"), W("Mask"), mask, sizeof mask) == 4,
           "the number of bytes");
    Expect(memcmp(mask, "\xFF\xFF\xFF\x00", 4) == 0, "read bytes");
    Expect(xmlGetProfileInt(settings, W("Network"), W("Old"), -1) == -1, "a deleted key");
}

static void ListSections(moxSettings* settings) {
    uintptr_t position = 0;
    uint32_t editable = 0;
    wchar16 name[kNameUnits];
    unsigned count = 0;
    void* section;
    while ((section = xmlEnumProfileSections(settings, &position, name, kNameUnits, &editable)) != NULL) {
        printf("  section ");
        Print(name);
        printf("%s\n", editable == 1 ? ", editable" : "");
        xmlTableDispose(&section);
        Expect(section == NULL, "a null handle after its release");
        ++count;
    }
    Expect(count == 3 && position == 0, "three sections");
}

/* A section handle is a table handle: the section can be saved as a table, and its entries removed. */
static void WorkOnSection(moxSettings* settings, const wchar16* path) {
    uint32_t eud = 1;
    void* section = xmlWriteProfileSection(settings, W("Network"), 1, 100, 0x14, &eud);
    Expect(section != NULL && eud == 0, "a section");
    Expect(xmlTableSave(section, path, 0, 0), "save a section");
    Expect(xmlTableRemoveEntries(section), "empty a section");
    xmlTableDispose(&section);
    Expect(xmlGetProfileInt(settings, W("Network"), W("Mask"), 7) == 7, "no key in an empty section");
}

static void WorkOnTable(const wchar16* path) {
    static const char text[] =
        "<Table name=\"Tools\">\n"
        "\t<Var name=\"Speed\" type=\"long\" array=\"\">\n\t\t<Value>900</Value>\n\t</Var>\n"
        "</Table>\n";
    void* table = xmlTableNew(NULL, text, (int32_t)(sizeof text - 1), W("Tools"), 0, 0, 0, 0);
    Expect(table != NULL, "a table from memory");
    Expect(xmlTableSave(table, path, 0, 0), "save a table");
    Expect(!xmlTableSave(table, path, 0, 1), "a save that fails");
    Expect(xmlTableRemoveEntries(table), "empty a table");
    xmlTableDispose(&table);

    Expect(xmlTableNew(path, NULL, 0, W("Other"), 0, 0, 0, 0) == NULL, "no table of another name");
    table = xmlTableNew(path, NULL, 0, NULL, 0, 0, 0, 0);
    Expect(table != NULL, "a table from a file");
    xmlTableDispose(&table);
    xmlTableDispose(&table);
}

int main(int argc, char** argv) {
    if (argc != 2) {
        fprintf(stderr, "usage: c_host <existing scratch folder>\n");
        return 2;
    }
    wchar16 settingsPath[kPathUnits];
    wchar16 sectionPath[kPathUnits];
    wchar16 tablePath[kPathUnits];
    MakePath(argv[1], "c_host.xml", settingsPath);
    MakePath(argv[1], "c_host_section.xml", sectionPath);
    MakePath(argv[1], "c_host_table.xml", tablePath);

    moxSettings* settings = xmlProfileNew(NULL, NULL, 0, 0);
    Expect(settings != NULL, "a new document");
    WriteKeys(settings);
    void* section = xmlWriteProfileSection(settings, W("History"), 1, 0, 0, NULL);
    Expect(section != NULL, "a new section");
    xmlTableDispose(&section);
    ReadKeys(settings);
    Expect(xmlProfileSave(settings, settingsPath, 0, 0, 1) == 1, "save");
    xmlProfileDispose(&settings);

    settings = xmlProfileNew(settingsPath, NULL, 0, 1);
    Expect(settings != NULL, "load what was saved");
    ReadKeys(settings);
    ListSections(settings);
    WorkOnSection(settings, sectionPath);
    xmlProfileDispose(&settings);
    WorkOnTable(tablePath);
    printf("all results as expected\n");
    return 0;
}
