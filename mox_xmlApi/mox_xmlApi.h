#ifndef MOX_XMLAPI_MOX_XMLAPI_H
#define MOX_XMLAPI_MOX_XMLAPI_H

#include <stddef.h>
#include <stdint.h>
#ifndef __cplusplus
#include <stdbool.h>
#endif

#include "mox_xmlApi/platform/wchar16.h"

/**
 * @file
 * mox_xmlApi keeps configuration data in XML files.
 *
 * A settings document (a "profile") holds sections, a section holds keys, and a key holds a value as text. A
 * table document holds one table, a table holds entries, and an entry holds a value and its presentation
 * data: what an editor needs to display it. A section of a profile is a table too, and its keys are the
 * entries: the table functions take section handles and table handles alike. A host opens a document, reads
 * and changes it in memory, saves it when it likes, and releases it. docs/file-format.md describes the files.
 * These rules hold for every function unless its own description says otherwise:
 *
 * @par Order of arguments
 *   The handle first; then what to look for (section, key); then the data, a buffer directly followed by its
 *   size; then flags. A dispose function takes the address of the variable that holds the handle.
 *
 * @par Null
 *   A null handle is allowed everywhere: the call changes no document and returns its neutral result (null,
 *   0, or the caller's default), after it has set the outputs that its description promises for every call.
 *   Any other pointer may be null only where its description says so; elsewhere null is an error of the host
 *   that is not checked.
 *
 * @par Texts
 *   A text is a sequence of 16-bit units (wchar16) that ends with a zero unit. It is meant to be UTF-16, but
 *   this is never checked: a host reads back the units that it has stored. wchar16 is wchar_t on Windows
 *   (L"text") and char16_t elsewhere (u"text"). Names of sections and keys are compared exactly, unit by unit
 *   and case-sensitively; if several elements have the same name, the first one in the document is used. A
 *   file is either wide (two bytes per unit) or narrow (one byte per unit, safe for 7-bit text only). Files
 *   of table documents are always wide.
 *
 * @par Lengths
 *   The length of a text buffer counts units and includes the zero unit; a returned length does not include
 *   it. The size of a byte buffer counts bytes. A text buffer of length 0 is never written to, whatever is
 *   said below.
 *
 * @par Flags
 *   A flag is set when it equals 1; any other value, such as 2 or -1, leaves it clear. (removeAll of
 *   xmlTableRemoveEntry and editable of xmlWriteProfileSection are set by any value but 0.)
 *
 * @par Ownership and lifetime
 *   Arguments belong to the host and are copied where needed; the library keeps no pointer to them. A profile
 *   handle lives from xmlProfileNew to xmlProfileDispose and owns its document. A table handle (the void* of
 *   xmlTableNew) owns its document. A section handle (the void* of a section function) refers to a section
 *   inside the profile's document and owns nothing of it. The host releases both with xmlTableDispose, and
 *   section handles before their profile. Once its section has been deleted, a section handle can only be
 *   passed to xmlTableDispose.
 *
 * @par Position variables
 *   An enumeration keeps its position in a variable of the host that starts at 0. What the library stores
 *   there means nothing to the host. The variable of xmlEnumProfileSections must not be changed, copied for
 *   later or used with another handle, and the element that was returned last must not be deleted before the
 *   next step. The position in a table refers to the entry that was read or written last and owns nothing: an
 *   enumeration can be abandoned at any time, and its variable can be copied and kept. It is valid until that
 *   entry is removed. Where a function says so, the value with all bits set means: no enumeration, find the
 *   entry by its name.
 *
 * @par Entry records
 *   Entries are passed in the records of mox_dbtInfo (mox_xmlApi/platform/mox_dbtInfo.h). These are C++
 *   classes; a host in C can use only the functions that take no records. Records belong to the host; the
 *   library reads or fills them during the call and keeps no pointer to them. An entry is identified by its
 *   name alone: the id and type of a record never select an entry. Looking up an empty name finds the first
 *   entry that has a name; removing by an empty name removes only entries whose name is empty.
 *
 * @par eud
 *   The attribute "eud" says that the end user or a program has marked an entry as protected from ordinary
 *   writes: while it is "true", xmlTableEntrySet leaves the entry alone unless it is forced. On a section or
 *   table it says that entries in it may be protected. Key writes, xmlTableEntryAdd and removals do not
 *   respect it. docs/file-format.md lists what sets and removes it.
 *
 * @par Threads
 *   The library starts no threads, takes no locks and keeps no state outside its handles that a call could
 *   observe. A profile handle and all section handles taken from it must be used by one thread at a time;
 *   different documents share nothing.
 *
 * @par Failure
 *   The result shows that a call has failed, but not why. Nothing is rolled back: what a call changed in
 *   memory before it failed stays changed, the handle stays usable, and no file is touched but the one being
 *   saved.
 *
 * @par Exceptions
 *   Only these C++ exceptions leave the functions:
 *   - std::bad_alloc, from any function, when memory runs out;
 *   - std::length_error: "string too long", when a text would exceed the maximum length; "vector<T> too
 *     long", when a list of children or attributes would have more than 2^31 - 1 items;
 *   - std::out_of_range, from a check in the library's own lists that no call is known to fail;
 *   - std::int32_t with the value 0x80000008, which is reserved: xmlWriteProfileSection, and xmlProfileSave
 *     in modes other than 0, throw it when an existing section cannot be given its new data. No document is
 *     known to cause this;
 *   - whatever another build of the companion libraries throws.
 *
 *   A host can catch them if it shares the C++ runtime with the library. A host in C cannot: there an
 *   exception ends the process. After an exception the handles are as after any other failure: usable, with
 *   nothing rolled back.
 */

/**
 * An open settings document; hosts only use pointers to it.
 *
 * A handle points to a C++ object with one virtual operation, in slot 0 of its virtual table:
 * void* (unsigned flags), which destroys the object, frees its storage if bit 0 of flags is set, and returns
 * its address. Without bit 0 the caller owns the storage and frees it with the operator delete of the C++
 * runtime that the library uses. xmlProfileDispose calls it with flags 1.
 */
typedef struct moxSettings moxSettings;

/* The entry records of mox_dbtInfo, declared in mox_xmlApi/platform/mox_dbtInfo.h. */
/** What identifies an entry. */
typedef struct TableEntryBaseInfoStruct TableEntryBaseInfoStruct;
/** What identifies an entry, and its value. */
typedef struct TableEntryValueInfoStruct TableEntryValueInfoStruct;
/** What identifies an entry, its value, and how it is presented. */
typedef struct TableEntryUInfoStruct TableEntryUInfoStruct;

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Opens a settings document from a file or from memory, or creates an empty one.
 *
 * The root is the first top-level element "Settings" with the attribute "xmlns:noNamespaceSchemaLocation" or
 * "xsi:noNamespaceSchemaLocation". A document without one gets a new, empty root after everything else; the
 * rest stays in the document and is saved with it, but no function of this family sees it.
 *
 * @param path    The file to load; buffer and size are then ignored. Null: no file.
 * @param buffer  8-bit text to load if path is null: the bytes before the first zero byte, at most size of
 *                them, each widened to one unit. Null: no text.
 * @param size    Bytes in buffer; a negative size means up to the first zero byte. If it is 0, the buffer is
 *                ignored.
 * @param wide    Set: the file is wide. Clear: it is narrow. Ignored for a buffer.
 * @return The handle, to be released with xmlProfileDispose; null on failure. Without file and buffer: the
 *         handle of a new document with the XML declaration and an empty root.
 * @par Failure
 * Null if the file cannot be opened or read to its end, or if the text cannot be parsed. Nothing stays
 * allocated.
 */
moxSettings* xmlProfileNew(const wchar16* path, const char* buffer, int32_t size, int32_t wide);

/**
 * Releases a profile with its whole document and sets the host's variable to null. Unsaved changes are lost.
 * Section handles of this profile must have been released before.
 *
 * @param handleAddress  Address of the variable that holds the handle, never null. If the variable holds
 *                       null, nothing happens: a second call is harmless.
 * @par Failure
 * None.
 */
void xmlProfileDispose(moxSettings** handleAddress);

/**
 * Writes the document, or an export of it, to a file, which is created or overwritten.
 *
 * Mode 0 writes the document as it is. Before that it removes the attribute "eud" in memory: from every
 * section that has it and, where the section's value was "true", from the section's entries.
 *
 * Any other mode writes an export: a new document with the sections and entries rebuilt from what the library
 * knows of them, without comments and unknown elements. In mode 1 an entry keeps only its presentation data
 * (control, provider, displayed name, comment), in mode 2 everything else (an empty value is taken from the
 * presentation data), in any further mode nothing. Sections with the same name become one; the first entry
 * that cannot be read ends its section. An export never changes the document.
 *
 * Each line is indented by one tab per level: the size of the file, and the memory that a save needs, grow
 * with the square of the document's depth.
 *
 * @param handle  The profile.
 * @param path    The file to write. Null: nothing is done and the result is 0.
 * @param mode    0, 1 or 2, see above.
 * @param refuse  Set: refuse to write; the result is 0 and no file is touched. Clear: write.
 * @param wide    Set: write a wide file. Clear: a narrow one, which keeps only the low 8 bits of each unit.
 * @return 1 if every byte was written and the file was closed without an error, else 0.
 * @par Failure
 * 0. The whole text is built before the file is opened, so a failed allocation leaves the old file intact; a
 * failed write may leave it incomplete. In mode 0 "eud" is removed from memory even if nothing could be
 * written. Modes other than 0 may throw 0x80000008, see above.
 */
uint32_t xmlProfileSave(moxSettings* handle, const wchar16* path, uint32_t mode, uint32_t refuse,
                        int32_t wide);

/**
 * Finds a section by its name.
 *
 * @param handle    The profile.
 * @param section   The section's name.
 * @param editable  Receives 1 if the section is editable and 0 if it is not; also 1 if there is no such
 *                  section or the handle is null. May be null.
 * @return A section handle, to be released with xmlTableDispose; null if there is no such section.
 * @par Failure
 * Null; nothing is changed.
 */
void* xmlGetProfileSection(moxSettings* handle, const wchar16* section, uint32_t* editable);

/**
 * Steps to the next section, in document order. Every element under the root counts, even one that is not a
 * section and that xmlGetProfileSection would never find.
 *
 * @param handle      The profile.
 * @param position    Position variable, 0 to begin. Between the steps it owns a little memory, which is freed
 *                    only by the step that returns null and sets the variable to 0: an abandoned enumeration
 *                    leaks it.
 * @param name        Receives the section's name, cut to nameLength - 1 units and padded with zeros up to
 *                    nameLength; empty for an element without a name and at the end. May be null.
 * @param nameLength  Units in name.
 * @param editable    Receives 1 if the section is editable and 0 if it is not; also 1 at the end or if the
 *                    handle is null. May be null.
 * @return A section handle, to be released with xmlTableDispose; null after the last one.
 * @par Failure
 * Null. A null handle leaves the position as it is; the end sets it to 0.
 */
void* xmlEnumProfileSections(moxSettings* handle, uintptr_t* position, wchar16* name, uint32_t nameLength,
                             uint32_t* editable);

/**
 * Creates a section, or gives an existing one a new first id and type.
 *
 * @param handle    The profile.
 * @param section   The section's name.
 * @param editable  Any value but 0 makes a new section editable. An existing section stays as it is.
 * @param firstId   The section's first id.
 * @param type      The section's type, in the low 16 bits.
 * @param eud       Receives 1 if the section existed and has "eud"="true", else 0. May be null; not written
 *                  to if the handle is null.
 * @return A section handle, to be released with xmlTableDispose; null if the section cannot be created.
 * @par Failure
 * Null; nothing is added. May throw 0x80000008, see above; what was written to the section by then stays.
 */
void* xmlWriteProfileSection(moxSettings* handle, const wchar16* section, uint32_t editable, uint32_t firstId,
                             uint32_t type, uint32_t* eud);

/**
 * Reads a key as a number: the leading decimal digits of the value, after white space and an optional sign,
 * limited to the range of 32 bits; 0 if there are none.
 *
 * As in every read, an empty value is replaced by that of the entry's presentation data, and an entry whose
 * type is missing or unknown counts as missing.
 *
 * @param handle        The profile.
 * @param section       The section's name.
 * @param key           The key. An empty one means the first entry of the section that has a name.
 * @param defaultValue  The result if there is nothing to read.
 * @return The number.
 * @par Failure
 * defaultValue: no such section or key, an empty value, a null handle.
 */
int32_t xmlGetProfileInt(moxSettings* handle, const wchar16* section, const wchar16* key,
                         int32_t defaultValue);

/**
 * Reads a key as text.
 *
 * If destination and defaultText are both given, the default is copied first, so that destination holds it
 * whenever no value follows. A copy is cut to length - 1 units and padded with zeros up to length; all of
 * these units must belong to the host. A cut may split a surrogate pair.
 *
 * @param handle       The profile.
 * @param section      The section's name.
 * @param key          The key. An empty one means the first entry of the section that has a name.
 * @param destination  Receives the text. Null: only the length is wanted.
 * @param length       Units in destination.
 * @param defaultText  The text for when there is nothing to read. May be null: then destination is not
 *                     written to.
 * @return The length of the text that was copied to destination; without a destination, the full length of
 *         the value. 0 for an empty value, although destination holds the default.
 * @par Failure
 * No such section or key, or a null handle: the length of the default as copied, or 0 if it was not copied.
 */
uint32_t xmlGetProfileString(moxSettings* handle, const wchar16* section, const wchar16* key,
                             wchar16* destination, uint32_t length, const wchar16* defaultText);

/**
 * Reads a key as bytes: every two hexadecimal digits of the value, in upper or lower case, give one byte, up
 * to the first pair that is not hexadecimal. (A value gives at most half as many bytes as
 * xmlGetProfileString returns without a destination.)
 *
 * @param handle       The profile.
 * @param section      The section's name.
 * @param key          The key. An empty one means the first entry of the section that has a name.
 * @param destination  Receives the bytes.
 * @param size         Bytes in destination; no more are stored.
 * @return The number of bytes stored.
 * @par Failure
 * 0, and destination is not written to: no such section or key, an empty value, a surrogate without its
 * partner anywhere in the value, a null handle.
 */
uint32_t xmlGetProfileData(moxSettings* handle, const wchar16* section, const wchar16* key, void* destination,
                           uint32_t size);

/**
 * Writes a key as a decimal number, or deletes a section.
 *
 * All three writes have this in common: a missing section is created, not editable; a missing key is added as
 * the section's last entry, with the type "string". Of an existing key only the value changes: its type, id
 * and presentation data stay, but its "eud" is removed. Whether the section is editable is not checked.
 *
 * @param handle   The profile.
 * @param section  The section's name.
 * @param key      The key. An empty one means the first entry that has a name, if there is one. Null: the
 *                 section is deleted with everything in it.
 * @param value    The number.
 * @return 1 if the key was written or the section deleted, else 0.
 * @par Failure
 * 0: nothing to delete, a null handle, or the entry could not be written; a section created for it stays.
 */
uint32_t xmlWriteProfileInt(moxSettings* handle, const wchar16* section, const wchar16* key, int32_t value);

/**
 * Writes a key as text, or deletes a key or a section. xmlWriteProfileInt describes what all writes have in
 * common.
 *
 * @param handle   The profile.
 * @param section  The section's name.
 * @param key      The key. An empty one means the first entry that has a name, if there is one; for a
 *                 deletion, only entries whose name is empty. Null: the section is deleted with everything in
 *                 it.
 * @param value    The text. Null: every entry of that name is deleted from the section.
 * @return 1 if the key was written or something was deleted, else 0.
 * @par Failure
 * 0: nothing to delete, a null handle, or the entry could not be written; a section created for it stays.
 */
uint32_t xmlWriteProfileString(moxSettings* handle, const wchar16* section, const wchar16* key,
                               const wchar16* value);

/**
 * Writes a key as bytes, two upper-case hexadecimal digits each, or deletes a key or a section.
 * xmlWriteProfileInt describes what all writes have in common.
 *
 * @param handle   The profile.
 * @param section  The section's name.
 * @param key      As for xmlWriteProfileString.
 * @param data     The bytes. Null: every entry of that name is deleted from the section.
 * @param size     The number of bytes; 0 writes an empty value.
 * @return 1 if the key was written or something was deleted, else 0.
 * @par Failure
 * 0: nothing to delete, a null handle, or the entry could not be written; a section created for it stays.
 */
uint32_t xmlWriteProfileData(moxSettings* handle, const wchar16* section, const wchar16* key,
                             const void* data, uint32_t size);

/**
 * Opens a table document from a file or from memory, or creates a new one.
 *
 * The table is the first top-level element "Table". A document without one gets an empty table in memory,
 * with the name tableName and the schema location.
 *
 * @param filePath     The file to load, always a wide one; buffer and bufferSize are then ignored. Null: no
 *                     file.
 * @param buffer       8-bit text to load if filePath is null: the bytes before the first zero byte, at most
 *                     bufferSize of them, each widened to one unit. Null: no text.
 * @param bufferSize   Bytes in buffer; a negative size means up to the first zero byte. If it is 0, the
 *                     buffer is ignored.
 * @param tableName    When loading: the name that the table must have; null or empty accepts any name. For a
 *                     new table: its name; null means "_MXTable_".
 * @param editable     Set: a new table is editable. Ignored when loading, like the next three.
 * @param firstId      First id of a new table.
 * @param type         Type of a new table.
 * @param newDocument  Set: a new document begins with the XML declaration and its table has the schema
 *                     location. Clear: it holds the table only.
 * @return The handle, to be released with xmlTableDispose; null on failure.
 * @par Failure
 * Null if the file cannot be opened or read to its end, if the text cannot be parsed, or if the table has
 * another name; nothing stays allocated. A new table is never null.
 */
void* xmlTableNew(const wchar16* filePath, const char* buffer, int32_t bufferSize, const wchar16* tableName,
                  int32_t editable, uint32_t firstId, uint16_t type, int32_t newDocument);

/**
 * Writes the whole document of a table to a wide file, which is created or overwritten; for a section handle,
 * only the section's element. As for xmlProfileSave, the size of the file grows with the square of the
 * document's depth.
 *
 * @param handle    The table or section.
 * @param filePath  The file to write.
 * @param reserved  Must be 0; any other value is refused.
 * @param refuse    Set: refuse to write; the result is false and no file is touched. Clear: write.
 * @return true if every byte was written and the file was closed without an error.
 * @par Failure
 * false. The document stays as it is. The whole text is built before the file is opened, so a failed
 * allocation leaves the old file intact; a failed write may leave it incomplete.
 */
bool xmlTableSave(void* handle, const wchar16* filePath, int32_t reserved, int32_t refuse);

/**
 * Releases a table handle with its document, or a section handle, and sets the host's variable to null. A
 * section stays in its profile's document. Unsaved changes of a table are lost.
 *
 * @param handleAddress  Address of the variable that holds the handle, never null. If the variable holds
 *                       null, nothing happens: a second call is harmless.
 * @par Failure
 * None.
 */
void xmlTableDispose(void** handleAddress);

/**
 * Reads one entry: the next one of an enumeration, or the first one with a given name.
 *
 * The value record receives id, type, name and the entry's own value; if that is empty, the type is not 31
 * and uiRecord is null, it receives the value of the presentation data instead. The presentation record
 * receives id, type, name, control, provider, comment, displayed name and the value of the presentation data.
 * Names are cut to 259 units; an owner other than 1, 2 or 4 is given as 0. Values are set as 16-bit text if
 * the type is 31, unit by unit, and as 8-bit text otherwise.
 *
 * @param handle       The table or section.
 * @param position     Position variable, 0 to begin; it moves to the element that was tried, even if that is
 *                     not a readable entry. All bits set, or null: find the entry by the name in valueRecord,
 *                     whose name and id are kept as the key; without a valueRecord the name is empty.
 * @param valueRecord  Receives the value. In an enumeration its fields other than the value are cleared
 *                     first. May be null if uiRecord is not.
 * @param uiRecord     Receives the presentation data; cleared first. May be null if valueRecord is not.
 * @return true if an entry was found and read.
 * @par Failure
 * false: the end, no entry with the name, an element without a known type (the next call continues after it),
 * a value that has no 8-bit form (the records are then partly filled), both records null, a null handle.
 */
bool xmlTableEntryGet(void* handle, uint64_t* position, TableEntryValueInfoStruct* valueRecord,
                      TableEntryUInfoStruct* uiRecord);

/**
 * Checks whether the table has an entry with a given name.
 *
 * @param handle  The table or section.
 * @param record  Holds the name; its other fields are ignored.
 * @return true if there is such an entry.
 * @par Failure
 * false; nothing is changed.
 */
bool xmlTableEntryIsExist(void* handle, const TableEntryBaseInfoStruct* record);

/**
 * Overwrites an existing entry; never makes one.
 *
 * What is written depends on where the entry keeps its value, see "Changing entries" in docs/file-format.md:
 * the value record when the entry has a value of its own, the presentation record when the presentation data
 * have one. When that leaves nothing to write and a value record is given, both records are written, and the
 * text of the value record goes to the presentation data, where it is stored in every case. Without a
 * presentation record, the control becomes "text" then, and provider and displayed name are removed.
 *
 * An entry with "eud"="true" is protected against this function alone: unless force is set, it is left alone and
 * the result is true.
 *
 * @param handle       The table or section.
 * @param position     Position variable, 0 or one that refers to an entry of this table: the entry after it
 *                     is written, and it moves there. All bits set gives false. The position of a removed
 *                     entry or a made-up value must not be given. Null: the entry is found by its name.
 * @param valueRecord  Name, type, id and value; writeMask selects what is written: 0x0001 name, 0x0002 value,
 *                     0x0004 type, 0x0008 id, 0 all of them. May be null if uiRecord is not.
 * @param uiRecord     Presentation data. A prov_owner other than 0, 1, 2 or 4 is set to 0 in the record
 *                     itself. Its value is stored only if the entry's presentation data have a comment and the
 *                     record has none. May be null if valueRecord is not.
 * @param force        Set: write protected entries as well.
 * @param mark         Set: give the written entry "eud"="true", and the table as well if it has no "eud" yet.
 *                     Clear: an entry written by name loses its "eud", one written by position keeps it.
 * @return true if an entry was found (by name: and written, unless it is protected).
 * @par Failure
 * false: no such entry, a value without a 16-bit form (nothing is written), a null handle. What was written
 * to an entry before a failure stays.
 */
bool xmlTableEntrySet(void* handle, uint64_t* position, TableEntryValueInfoStruct* valueRecord,
                      TableEntryUInfoStruct* uiRecord, int32_t force, int32_t mark);

/**
 * Adds an entry, or updates the one of the same name. The mark "eud" protects no entry from it.
 *
 * Fields that are zero or empty are left out, or left as they are in an update. An entry that is to have a
 * value and presentation data takes two calls: the first with the value record alone, the second with both
 * records and update set, which leaves the value.
 *
 * A value record alone stores its text as the entry's own value. In a table whose first entry has a value in
 * its presentation data and none of its own, the text goes to the presentation data instead, with the control
 * "text"; it is stored there in every case. The second of the two calls then writes the control that is
 * wanted. See "Changing entries" in docs/file-format.md.
 *
 * @param handle       The table or section.
 * @param position     Position variable, which is not changed: a new entry goes before the entry that it
 *                     refers to. 0 or null: after the last one. All bits set: by name, so that nothing is
 *                     inserted; without update, or without an entry of that name, the result is false. The
 *                     position of a removed entry or a made-up value must not be given.
 * @param valueRecord  Name, type, id and value, selected by writeMask as in xmlTableEntrySet. May be null if
 *                     uiRecord is not; the entry then gets presentation data only.
 * @param uiRecord     Presentation data; ignored if its control is 0xFFFF. Its value is taken from itself if
 *                     its type is 31, otherwise from valueRecord, which must then be given. It is stored only if
 *                     the entry's presentation data have a comment and the record has none. May be null if
 *                     valueRecord is not.
 * @param mark         Set: give the entry "eud"="true", and the table as well if it has no "eud" yet. Clear:
 *                     "eud" stays as it is.
 * @param update       Set: write to the first entry with that name if there is one; position is then not used.
 *                     Clear: always add.
 * @return true if the entry was written.
 * @par Failure
 * false: a position of another table when an entry has to be inserted, a value without a 16-bit form, a null
 * handle; nothing is added. What was written to an entry before an exception stays.
 */
bool xmlTableEntryAdd(void* handle, uint64_t* position, TableEntryValueInfoStruct* valueRecord,
                      TableEntryUInfoStruct* uiRecord, int32_t mark, int32_t update);

/**
 * Removes entries with a given name, protected ones ("eud") as well.
 *
 * @param handle      The table or section.
 * @param record      Holds the name, other fields are ignored; an empty one means entries whose name is
 *                    empty.
 * @param occurrence  Which of the entries with that name: 0 the first, 1 the second and so on; -1 any.
 * @param removeAll   Any value but 0: remove all of them from that occurrence on. 0: only that one (with -1:
 *                    the first).
 * @return true if at least one entry was removed.
 * @par Failure
 * false; nothing is changed.
 */
bool xmlTableRemoveEntry(void* handle, const TableEntryBaseInfoStruct* record, int32_t occurrence,
                         int32_t removeAll);

/**
 * Removes every entry ("Var" element), with or without a name. Comments and other elements stay.
 *
 * @param handle  The table or section.
 * @return true, even if there was none.
 * @par Failure
 * false for a null handle; nothing is changed.
 */
bool xmlTableRemoveEntries(void* handle);

#ifdef __cplusplus
}
#endif

#endif
