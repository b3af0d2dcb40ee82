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
 * A settings document (a "profile") holds sections, a section holds keys, a key holds a value as text. A
 * table document holds one table, a table holds entries, an entry holds a value and the data to present and
 * edit it. A section of a profile is a table too: section handles and table handles are of one kind for the
 * table functions. A host opens a document, reads and changes it in memory, saves it when it likes, and
 * releases it. What a document looks like on disk is told in docs/file-format.md. These rules hold for every
 * function unless its own text says otherwise:
 *
 * @par Order of arguments
 *   The handle first; then what to look for (section, key); then the data, a buffer directly followed by its
 *   size; then flags. A dispose function takes the address of the variable that holds the handle.
 *
 * @par Null
 *   A null handle is allowed everywhere: the call changes no document and gives its neutral result (null, 0,
 *   or the caller's default), after it has set the outputs that its text promises for every call. Another
 *   pointer may be null only where its text says so; elsewhere null is an error of the host that is not
 *   looked for.
 *
 * @par Texts
 *   A text is a row of 16-bit units (wchar16) that ends with a zero unit, meant as UTF-16 but never checked:
 *   what a host stores, it reads back unit by unit. wchar16 is wchar_t on Windows (L"text") and char16_t
 *   elsewhere (u"text"). Names of sections and keys are compared exactly, unit by unit, with upper and lower
 *   case distinct; of several elements with one name, the first in the document is meant. A file may be wide
 *   (two bytes per unit) or narrow (one byte per unit, safe for 7-bit text only); files of table documents
 *   are always wide.
 *
 * @par Lengths
 *   A length of a text buffer counts units, the zero unit included; a length given back does not include it.
 *   A size of a byte buffer counts bytes. A text buffer of length 0 is left alone, whatever is said about it
 *   below.
 *
 * @par Flags
 *   A signed flag is set exactly when it is 1; any other value, 2 or -1 say, leaves it unset. (removeAll of
 *   xmlTableRemoveEntry and editable of xmlWriteProfileSection are set by any value but 0.)
 *
 * @par Ownership and life
 *   Arguments stay the host's and are copied as needed; the library keeps no pointer into them. A profile
 *   handle lives from xmlProfileNew to xmlProfileDispose and owns its document. A table handle (the void* of
 *   xmlTableNew) owns its document. A section handle (the void* of a section function) refers to the section
 *   inside the profile's document and owns nothing of it. The host releases both by xmlTableDispose, section
 *   handles before their profile is disposed. Once its section was deleted, a section handle is good for
 *   xmlTableDispose only.
 *
 * @par Position variables
 *   An enumeration keeps its place in a variable of the host that starts as 0. What the library stores there
 *   means nothing to the host. The one of xmlEnumProfileSections must not be changed, copied for later or
 *   used with another handle, and the element that was returned last must not be deleted before the next
 *   step. The position of a table refers to the entry that was read or written last and owns nothing: an
 *   enumeration may be left at any time, and its variable copied and kept. It is good until that entry is
 *   removed. The value with all bits set means, where a function says so: no enumeration, look the entry up
 *   by its name.
 *
 * @par Entry records
 *   Entries travel in the records of mox_dbtInfo (mox_xmlApi/platform/mox_dbtInfo.h). They are C++ classes; a
 *   host in C can use the functions that take handles alone. Records are the host's; the library reads or
 *   fills them during the call and keeps nothing of them. An entry is known by its name alone: the id and
 *   type of a record never choose an entry. Looking up an empty name finds the first entry that has a name;
 *   removing one removes only entries whose name is empty. A handle that is not ready (over a section or
 *   table that could not be opened) is refused as a null handle is.
 *
 * @par Threads
 *   The library starts no thread, takes no lock and keeps no state outside its handles. A profile handle
 *   together with every section handle taken from it belongs to one thread at a time; different documents
 *   share nothing.
 *
 * @par Failure
 *   Failure shows in the result, without a reason. Nothing is rolled back: what a call had changed in memory
 *   before it failed stays changed, the handle stays usable, and no file is touched but the one that is being
 *   saved.
 *
 * @par Exceptions
 *   C++ exceptions pass out of these functions, and only these:
 *   - std::bad_alloc, from any function, when memory runs out;
 *   - std::length_error: "string too long", when a text outgrows what a text can hold; "vector<T> too long",
 *     when a list of children or attributes is to have more than 2^31 - 1 items;
 *   - std::out_of_range, a guard of the library's own lists that no call is known to trip;
 *   - std::int32_t of value 0x80000008, from xmlWriteProfileSection and from xmlProfileSave in the modes
 *     other than 0, when an existing section cannot be given its new data (no document is known to cause it).
 *   A host catches them when it shares the C++ runtime with the library. A host in C cannot catch them: there
 *   an exception ends the process. After an exception the handles are as after any other failure: usable,
 *   nothing rolled back.
 */

/** A settings document that is open; the host sees pointers to it only. */
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
 * Opens a settings document from a file or from memory, or starts an empty one.
 *
 * The document's root is the first top-level element "Settings" that carries
 * "xmlns:noNamespaceSchemaLocation" or "xsi:noNamespaceSchemaLocation". A document without one gets a new,
 * empty root after what it holds; the rest stays in the document and is saved with it, but no function of
 * this family sees it.
 *
 * @param path      The file to load; then buffer and size are ignored. Null: no file.
 * @param buffer    8-bit text to load when path is null: the bytes before the first zero byte, at most size
 *                  of them, each widened to one unit. Null: no text.
 * @param size      Bytes in buffer; a negative size means: up to the first zero byte. With 0 the buffer is
 *                  ignored.
 * @param fileFlag  Set: the file is wide. Unset: it is narrow. Plays no part for a buffer.
 * @return The handle, to be released by xmlProfileDispose; null on failure. Without file and buffer: the
 *         handle of a new document with the XML declaration and an empty root.
 * @par Failure
 * Null when the file cannot be opened or read to its end, or when the text is not in the dialect. Nothing
 * stays allocated.
 */
moxSettings* xmlProfileNew(const wchar16* path, const char* buffer, int32_t size, int32_t fileFlag);

/**
 * Releases a profile with its whole document and sets the host's variable to null. Unsaved changes are lost.
 *
 * @param handleVar  Address of the variable that holds the handle, never null. A variable that holds null is
 *                   left as it is, so that a second call does no harm.
 * @par Failure
 * None. Section handles of this profile must have been released before.
 */
void xmlProfileDispose(moxSettings** handleVar);

/**
 * Writes the document, or an export of it, to a file, which is created or replaced.
 *
 * Mode 0 writes the document as it is. Before that it removes the mark "eud" in memory: from every section
 * that has it and, where the section's mark was "true", from the section's entries.
 *
 * Any other mode writes an export: a new document whose sections and entries are rebuilt from what the
 * library knows of them, so that comments and foreign elements stay behind. In mode 1 an entry keeps its
 * presentation data alone (control, provider, displayed name, comment), in mode 2 all but these (an empty
 * value is taken from the presentation data), in further modes nothing. Sections of one name become one; a
 * section's entries end before the first one that cannot be read. An export never changes the document.
 *
 * @param handle  The profile.
 * @param path    The file to write. Null: nothing is done and the result is 0.
 * @param mode    0, 1 or 2, see above.
 * @param first   1: refuse to write; the result is 0 and no file is touched. Any other value: write.
 * @param second  Set: write a wide file. Unset: a narrow one, which keeps only the low 8 bits of each unit.
 * @return 1 when every byte was written and the file closed without an error, else 0.
 * @par Failure
 * 0. The whole text is made before the file is opened, so a failed allocation leaves the old file whole; a
 * failed write may leave it incomplete. In mode 0 the marks are gone from memory even when nothing could be
 * written. In the other modes it may throw 0x80000008, see above.
 */
uint32_t xmlProfileSave(moxSettings* handle, const wchar16* path, uint32_t mode, uint32_t first,
                        int32_t second);

/**
 * Finds a section by its name.
 *
 * @param handle    The profile.
 * @param section   The section's name.
 * @param editable  Receives 1 when the section is marked editable and 0 when not; 1 also when there is no
 *                  such section or the handle is null. May be null.
 * @return A section handle, to be released by xmlTableDispose; null when there is no such section.
 * @par Failure
 * Null; nothing is changed.
 */
void* xmlGetProfileSection(moxSettings* handle, const wchar16* section, uint32_t* editable);

/**
 * Steps to the next section, in document order. Every element under the root counts, also one that is no
 * section and that xmlGetProfileSection would never find.
 *
 * @param handle      The profile.
 * @param position    Position variable, 0 to begin. Between the steps it owns a little memory, which only the
 *                    step that returns null gives back, setting the variable to 0: an enumeration that is
 *                    abandoned leaks it.
 * @param name        Receives the section's name, cut to nameLength - 1 units and filled with zeros up to
 *                    nameLength; empty for an element without a name and when there is no further element.
 *                    May be null.
 * @param nameLength  Units in name.
 * @param editable    Receives 1 when the section is marked editable and 0 when not; 1 also when there is no
 *                    further element or the handle is null. May be null.
 * @return A section handle, to be released by xmlTableDispose; null after the last one.
 * @par Failure
 * Null. A null handle leaves the position as it is; the end sets it to 0.
 */
void* xmlEnumProfileSections(moxSettings* handle, uintptr_t* position, wchar16* name, uint32_t nameLength,
                             uint32_t* editable);

/**
 * Makes a section, or gives an existing one a new first id and type.
 *
 * @param handle    The profile.
 * @param section   The section's name.
 * @param editable  Any value but 0 marks a new section as editable. An existing section keeps its own mark.
 * @param firstId   The section's first id.
 * @param type      The section's type; its low 16 bits count.
 * @param eud       Receives 1 when the section existed and carries the mark "eud", else 0. May be null; left
 *                  alone when the handle is null.
 * @return A section handle, to be released by xmlTableDispose; null when the section cannot be made.
 * @par Failure
 * Null; nothing is added. May throw 0x80000008, see above; what was written to the section by then stays.
 */
void* xmlWriteProfileSection(moxSettings* handle, const wchar16* section, uint32_t editable, uint32_t firstId,
                             uint32_t type, uint32_t* eud);

/**
 * Reads a key as a number: the value's leading decimal digits, after white space and one sign, cut to the
 * range of 32 bits; 0 when there are none. As in every read, a value that is empty is taken from the entry's
 * presentation data, and an entry whose type is missing or unknown counts as no entry.
 *
 * @param handle        The profile.
 * @param section       The section's name.
 * @param key           The key. An empty one means the first entry of the section that has a name.
 * @param defaultValue  The result when there is nothing to read.
 * @return The number.
 * @par Failure
 * defaultValue: no such section or key, an empty value, a null handle.
 */
int32_t xmlGetProfileInt(moxSettings* handle, const wchar16* section, const wchar16* key,
                         int32_t defaultValue);

/**
 * Reads a key as text.
 *
 * When destination and defaultText are both given, the default is copied first, so that it stands there
 * whenever no value follows. A copy is cut to length - 1 units and filled with zeros up to length, all of
 * which must be the host's; a cut may part a surrogate pair.
 *
 * @param handle       The profile.
 * @param section      The section's name.
 * @param key          The key. An empty one means the first entry of the section that has a name.
 * @param destination  Receives the text. Null: only the length is wanted.
 * @param length       Units in destination.
 * @param defaultText  The text for when there is nothing to read. May be null: then destination is left
 *                     alone.
 * @return The length of the text that was copied into destination; without a destination, the whole length of
 *         the value. 0 for an empty value, although destination holds the default.
 * @par Failure
 * No such section or key, or a null handle: the length of the default as copied, 0 when it was not.
 */
uint32_t xmlGetProfileString(moxSettings* handle, const wchar16* section, const wchar16* key,
                             wchar16* destination, uint32_t length, const wchar16* defaultText);

/**
 * Reads a key as bytes: two hexadecimal digits of the value give one byte, in upper or lower case, up to the
 * first pair that is none. (The bytes that a value can give are half of what xmlGetProfileString returns
 * without a destination.)
 *
 * @param handle       The profile.
 * @param section      The section's name.
 * @param key          The key. An empty one means the first entry of the section that has a name.
 * @param destination  Receives the bytes.
 * @param size         Bytes in destination; no more are stored.
 * @return The number of bytes stored.
 * @par Failure
 * 0, destination left alone: no such section or key, an empty value, a null handle.
 */
uint32_t xmlGetProfileData(moxSettings* handle, const wchar16* section, const wchar16* key, void* destination,
                           uint32_t size);

/**
 * Writes a key as a decimal number, or deletes a section.
 *
 * What all three writes share: a missing section is made, not editable; a missing key is added as the
 * section's last entry, of type "string". Of an existing key the value alone changes: its type, id and
 * presentation data stay, but it loses the mark "eud". The section's editable mark is not consulted.
 *
 * @param handle   The profile.
 * @param section  The section's name.
 * @param key      The key. An empty one means the first entry that has a name, if there is one. Null: the
 *                 section is deleted with all that it holds.
 * @param value    The number.
 * @return 1 when the key was written or the section deleted, else 0.
 * @par Failure
 * 0: nothing to delete, a null handle, or the entry could not be written; a section made for it stays.
 */
uint32_t xmlWriteProfileInt(moxSettings* handle, const wchar16* section, const wchar16* key, int32_t value);

/**
 * Writes a key as text, or deletes a key or a section. See xmlWriteProfileInt for what the writes share.
 *
 * @param handle   The profile.
 * @param section  The section's name.
 * @param key      The key. An empty one means the first entry that has a name, if there is one; when
 *                 deleting, only entries whose name is empty. Null: the section is deleted with all that it
 *                 holds.
 * @param value    The text. Null: every entry of that name is deleted from the section.
 * @return 1 when the key was written or something deleted, else 0.
 * @par Failure
 * 0: nothing to delete, a null handle, or the entry could not be written; a section made for it stays.
 */
uint32_t xmlWriteProfileString(moxSettings* handle, const wchar16* section, const wchar16* key,
                               const wchar16* value);

/**
 * Writes a key as bytes, two upper-case hexadecimal digits each, or deletes a key or a section. See
 * xmlWriteProfileInt for what the writes share.
 *
 * @param handle   The profile.
 * @param section  The section's name.
 * @param key      As for xmlWriteProfileString.
 * @param data     The bytes. Null: every entry of that name is deleted from the section.
 * @param size     How many bytes; 0 writes an empty value.
 * @return 1 when the key was written or something deleted, else 0.
 * @par Failure
 * 0: nothing to delete, a null handle, or the entry could not be written; a section made for it stays.
 */
uint32_t xmlWriteProfileData(moxSettings* handle, const wchar16* section, const wchar16* key,
                             const void* data, uint32_t size);

/**
 * Opens a table document from a file or from memory, or starts a new one.
 *
 * The table is the first top-level element "Table". A document that has none gets an empty one with the name
 * tableName and the schema location, in memory.
 *
 * @param filePath     The file to load, always a wide one; then buffer and bufferSize are ignored. Null: no
 *                     file.
 * @param buffer       8-bit text to load when filePath is null: the bytes before the first zero byte, at most
 *                     bufferSize of them, each widened to one unit. Null: no text.
 * @param bufferSize   Bytes in buffer; a negative size means: up to the first zero byte. With 0 the buffer is
 *                     ignored.
 * @param tableName    When loading: the name that the table must have; null or empty accepts any. For a new
 *                     table: its name; null means "_MXTable_".
 * @param editable     Set: a new table is marked editable. Plays no part when loading, as the next three.
 * @param firstId      First id of a new table.
 * @param type         Type of a new table.
 * @param newDocument  Set: a new document begins with the XML declaration and its table carries the schema
 *                     location. Unset: it holds the bare table.
 * @return The handle, to be released by xmlTableDispose; null on failure.
 * @par Failure
 * Null when the file cannot be opened or read to its end, when the text is not in the dialect, or when the
 * table has another name; nothing stays allocated. A new table never gives null.
 */
void* xmlTableNew(const wchar16* filePath, const char* buffer, int32_t bufferSize, const wchar16* tableName,
                  int32_t editable, uint32_t firstId, uint16_t type, int32_t newDocument);

/**
 * Writes a table's whole document to a wide file, which is created or replaced. Of a section handle, the
 * section's element alone.
 *
 * @param handle    The table.
 * @param filePath  The file to write.
 * @param reserved  Must be 0; any other value is refused.
 * @param flag      Set: refuse to write; the result is false and no file is touched. Unset: write.
 * @return true when every byte was written and the file closed without an error.
 * @par Failure
 * false. The document stays as it is. The whole text is made before the file is opened, so a failed
 * allocation leaves the old file whole; a failed write may leave it incomplete.
 */
bool xmlTableSave(void* handle, const wchar16* filePath, int32_t reserved, int32_t flag);

/**
 * Releases a table handle with its document, or a section handle, and sets the host's variable to null. A
 * section stays in its profile's document. Unsaved changes of a table are lost.
 *
 * @param handleSlot  Address of the variable that holds the handle, never null. A variable that holds null is
 *                    left as it is, so that a second call does no harm.
 * @par Failure
 * None.
 */
void xmlTableDispose(void** handleSlot);

/**
 * Reads one entry: the next of an enumeration, or the first of a name.
 *
 * The value record receives id, type, name and the entry's own value; when that is empty, the type is not 31
 * and no presentation record was given, the value of the presentation data. The presentation record receives
 * id, type, name, control, provider, comment, displayed name and the value of the presentation data. Names
 * are cut to 259 units; an owner other than 1, 2 or 4 is given as 0. Values are set as 16-bit text when the
 * type is 31, unit by unit, otherwise as 8-bit text.
 *
 * @param handle       The table or section.
 * @param position     Position variable, 0 to begin; it moves to the element that was tried, also when that
 *                     is no readable entry. All bits set, or null: find the entry by the name in valueRecord,
 *                     whose name and id are kept as the key; without a valueRecord the name is empty.
 * @param valueRecord  Receives the value. May be null when uiRecord is not. In an enumeration its fields
 *                     other than the value are cleared first.
 * @param uiRecord     Receives the presentation data; cleared first. May be null when valueRecord is not.
 * @return true when an entry was found and read.
 * @par Failure
 * false: the end, no entry of the name, an element without a known type (an enumeration goes on behind it
 * with the next call), a value that has no 8-bit form (the records are then filled in part), both records
 * null, a null handle.
 */
bool xmlTableEntryGet(void* handle, uint64_t* position, TableEntryValueInfoStruct* valueRecord,
                      TableEntryUInfoStruct* uiRecord);

/**
 * Says whether the table has an entry of a name.
 *
 * @param handle  The table or section.
 * @param record  Its name counts.
 * @return true when there is one.
 * @par Failure
 * false; nothing is changed.
 */
bool xmlTableEntryIsExist(void* handle, const TableEntryBaseInfoStruct* record);

/**
 * Overwrites an existing entry; never makes one.
 *
 * What is written depends on where the entry keeps its value, see "Changing entries" in docs/file-format.md:
 * the value record when the entry has a value of its own, the presentation record when the presentation data
 * have one. An entry that has neither is offered the value in its presentation data, which take it only when
 * they have a comment and the presentation record brings none.
 *
 * An entry with the mark "eud" is protected: it is left alone, and the result is true, unless force is set.
 *
 * @param handle       The table or section.
 * @param position     Position variable: the entry after it is written, and it moves there. All bits set is
 *                     not allowed. Null: the entry is found by its name.
 * @param valueRecord  Name, type, id and value; writeMask chooses what of it is written: 0x0001 name, 0x0002
 *                     value, 0x0004 type, 0x0008 id, 0 all. May be null when uiRecord is not.
 * @param uiRecord     Presentation data. A prov_owner other than 0, 1, 2 or 4 is set to 0 in the record
 *                     itself. May be null when valueRecord is not.
 * @param force        Set: write a protected entry, too.
 * @param mark         Set: mark the written entry, and the table when it has no mark yet. Unset: an entry
 *                     that was written by name loses its mark, one that was written by position keeps it.
 * @return true when an entry was found (by name: and written, unless it is protected).
 * @par Failure
 * false: no such entry, a value without a 16-bit form (nothing is written), a null handle. What was written
 * of an entry before a failure stays.
 */
bool xmlTableEntrySet(void* handle, uint64_t* position, TableEntryValueInfoStruct* valueRecord,
                      TableEntryUInfoStruct* uiRecord, int32_t force, int32_t mark);

/**
 * Adds an entry, or updates the one of the same name.
 *
 * Fields that are zero or empty are left out, or left as they are in an update. A presentation record takes
 * the place of the value: an entry that is to have both is added with the value record alone and then updated
 * with both, see "Changing entries" in docs/file-format.md.
 *
 * @param handle       The table or section.
 * @param position     The new entry goes before the entry that the position refers to; it is not changed. 0
 *                     or null: after the last one.
 * @param valueRecord  Name, type, id and value, chosen by writeMask as in xmlTableEntrySet. May be null when
 *                     uiRecord is not; the entry then gets presentation data only.
 * @param uiRecord     Presentation data; ignored when its control is 0xFFFF. Its value is taken from itself
 *                     when its type is 31, otherwise from valueRecord, which must then be given. May be null
 *                     when valueRecord is not.
 * @param mark         Set: mark the entry, and the table when it has no mark yet. Unset: marks stay as they
 *                     are.
 * @param update       Set: write to the first entry of that name when there is one. Unset: always add.
 * @return true when the entry was written.
 * @par Failure
 * false: a value without a 16-bit form (nothing is added), a null handle, an entry that could not be written;
 * what was written of it stays.
 */
bool xmlTableEntryAdd(void* handle, uint64_t* position, TableEntryValueInfoStruct* valueRecord,
                      TableEntryUInfoStruct* uiRecord, int32_t mark, int32_t update);

/**
 * Removes entries of a name. The mark "eud" protects none of them.
 *
 * @param handle      The table or section.
 * @param record      Its name counts; an empty one means entries whose name is empty.
 * @param occurrence  Which of the entries of that name: 0 the first, 1 the second and so on; -1 any.
 * @param removeAll   Any value but 0: remove all from that occurrence on. 0: that one alone (with -1: the
 *                    first).
 * @return true when at least one entry was removed.
 * @par Failure
 * false; nothing is changed.
 */
bool xmlTableRemoveEntry(void* handle, const TableEntryBaseInfoStruct* record, int32_t occurrence,
                         int32_t removeAll);

/**
 * Removes every entry ("Var" element), named or not. Comments and other elements stay.
 *
 * @param handle  The table or section.
 * @return true, also when there was none.
 * @par Failure
 * false for a null handle or one that is not ready; nothing is changed.
 */
bool xmlTableRemoveEntries(void* handle);

#ifdef __cplusplus
}
#endif

#endif
