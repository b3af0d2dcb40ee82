/**
 * @file
 * mox_host: settings documents and data tables for hosts in any language, by plain C functions. C11 and later, C++.
 *
 *     #include <stdio.h>
 *     #include "mox_host/mox_host.h"
 *
 *     int main(void) {
 *         mox_document* settings = NULL;
 *         int64_t exposure = 1000;
 *         if (mox_open(MOX_STR("camera.xml"), MOX_SETTINGS, NULL, &settings, NULL) != MOX_OK) return 1;
 *         mox_get_int(settings, MOX_STR("Camera"), MOX_STR("Exposure"), &exposure, NULL);
 *         printf("exposure: %d us\n", (int)exposure);
 *         mox_set_int(settings, MOX_STR("Camera"), MOX_STR("Exposure"), 2400, MOX_TYPE_LONG, NULL);
 *         mox_status saved = mox_save(settings, MOX_STR("camera.xml"), NULL, NULL);
 *         mox_document_free(settings);
 *         return saved == MOX_OK ? 0 : 1;
 *     }
 *
 * Programs link mox_host (libmox_host.so.0, mox_host.dll). It is built on the C++ classes of mox_xmlApi.hpp and does
 * what they do; any compiler and any language that can call C functions can use it.
 *
 * These rules hold for every function, unless its own description says otherwise.
 *
 * @par Results
 *   A function that can fail returns a mox_status: MOX_OK, which is 0, or why it failed. No C++ exception leaves the
 *   library. A call that fails leaves every output as it was: a variable that is set to a default before the call has
 *   it afterwards. Outputs are set only when everything else has succeeded.
 *
 * @par Problem
 *   The last argument of most functions is a mox_problem that the host has made with mox_problem_new, or null. After a
 *   failure it holds the reason: a message and, for a file, line and column. After a success it is empty. Null means
 *   that the host does not ask.
 *
 * @par Texts
 *   Texts, paths too, are UTF-8, as a pointer directly followed by the length in bytes. They need not end with a zero
 *   byte, and must not contain one. A null pointer with the length 0 is the empty text. Bytes that are not UTF-8, a
 *   zero byte, or a text in a place where it cannot be stored give MOX_INVALID_TEXT; a null pointer with another
 *   length, and a length that no text can have, give MOX_INVALID_ARGUMENT. Texts from the library are followed by a
 *   zero byte that their length does not count, and have no other. An unpaired UTF-16 surrogate in a document is read
 *   as the three bytes ED A0 80 to ED BF BF; writes refuse them (MOX_NOT_KEPT). MOX_STR("text") passes a literal with
 *   its length.
 *
 * @par Null
 *   The free functions accept null. Everywhere else a null handle, and a null pointer to an output, give
 *   MOX_INVALID_ARGUMENT, or 0 if the function returns no status. Other pointers may be null where it is said.
 *
 * @par Ownership
 *   A handle belongs to the host from the call that makes it to the one free function of its type. What a function
 *   takes is copied. What it gives: mox_to_bytes and mox_read_file give memory that the host frees with mox_free.
 *   mox_get_text and mox_get_bytes fill memory of the host. All other texts belong to the handle that they were asked
 *   of, and are valid until that is freed (those of a problem: until it is passed to another call). Lists and trees are
 *   copies: they do not change with the document and may outlive it.
 *
 * @par Structures
 *   Each structure begins with its size, which the host sets to sizeof. So fields can be added at its end. Of a
 *   structure that a function fills in, it writes no byte beyond that size, and sets those to 0 that it does not know.
 *   One that a function reads must not be larger than the library knows. Otherwise, for a size smaller than in the
 *   first release, and for one above 4096, the call fails with MOX_INVALID_ARGUMENT. Fields of 0 are the defaults.
 *
 * @par Numbers
 *   A flag or an option with a value that is not listed gives MOX_INVALID_ARGUMENT. The values of all constants stay.
 *
 * @par Sections and names
 *   A settings document has sections, and a section has keys. A table document has entries and no sections: its section
 *   is the empty text, any other gives MOX_NO_SUCH_SECTION. Keys and entries are the same: a name, a type, a value, and
 *   perhaps presentation data, which tell an editor how to display it. If several have the same name, the first one
 *   is used. An element without a known type cannot be read (MOX_UNREADABLE). Names of more than 259 UTF-16 units can
 *   be read and written as keys, but not as entries.
 *
 * @par Writes
 *   A write that succeeds has stored what was asked: the document returns it, and so does the next program that opens
 *   the saved file. What cannot be stored is refused, and a write that is refused changes nothing. If memory runs out
 *   (MOX_OUT_OF_MEMORY), a write that adds something takes it back; one to what was there may have been carried out in
 *   part, but each entry has its old value or the new one. Nothing reaches the disk before mox_save.
 *
 * @par Threads
 *   Any thread may use a handle, one at a time; different handles may be used at the same time. The functions lock
 *   nothing.
 */
#ifndef MOX_HOST_MOX_HOST_H
#define MOX_HOST_MOX_HOST_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- constants */

/** A string literal as a text: its pointer and its length. */
#define MOX_STR(literal) (literal), (sizeof(literal) - 1)

/** Whether a call succeeded: MOX_OK, or why it failed. */
typedef int32_t mox_status;

/** The values of mox_status. New ones may be added: treat a number that you do not know as a failure. */
enum {
    MOX_OK = 0,

    /* Files */
    MOX_NOT_FOUND = 1,        /**< There is no such file or folder. */
    MOX_NO_PERMISSION = 2,    /**< The process may not read, replace or create the file. */
    MOX_NOT_REGULAR_FILE = 3, /**< A folder or a device, for example. */
    MOX_TOO_LARGE = 4,        /**< More than a document can have. */
    MOX_READ_FAILED = 5,      /**< The system reported an error. */
    MOX_WRITE_FAILED = 6,     /**< The system reported an error; the old file is unchanged. */
    MOX_CHANGED = 7,          /**< The file is no longer the one that was read. */
    MOX_BUSY = 8,             /**< Another process is replacing the file and does not finish. */
    MOX_UNCONFIRMED = 9,      /**< The file was replaced, but the system fails to confirm it. */

    /* Documents */
    MOX_SYNTAX = 20,         /**< It does not parse. */
    MOX_WRONG_KIND = 21,     /**< It parses, but is a different kind of document. */
    MOX_WRONG_ENCODING = 22, /**< It is stored in another way than documents are, or than was said. */
    MOX_TOO_DEEP = 23, /**< Its elements are nested so deeply that saving it would take too much memory. */

    /* Sections, keys and entries */
    MOX_NO_SUCH_SECTION = 40,
    MOX_NO_SUCH_KEY = 41, /**< There is no key or entry of that name. */
    MOX_NAME_TAKEN = 42,  /**< There is one already. */
    MOX_PROTECTED = 43,   /**< The entry has eud="true". */
    MOX_UNREADABLE = 44,  /**< The entry has no known type, so that nobody could read the value. */
    MOX_AMBIGUOUS =
        45, /**< The entry has two elements where one is expected: one is written, another one read. */

    /* Values */
    MOX_INVALID_TEXT = 60, /**< A text is not UTF-8, contains a zero, or is empty or longer than it may be. */
    MOX_NOT_KEPT = 61,     /**< The text would be another one after the document has been saved and opened. */
    MOX_WRONG_TYPE = 62,   /**< The value is not of the type that was asked for. */
    MOX_OUT_OF_RANGE = 63, /**< The number does not fit the type that was asked for. */
    MOX_NOT_STORED = 64,   /**< The library cannot store this combination of values. */

    /* Calls */
    MOX_INVALID_ARGUMENT = 80, /**< The call breaks the rules above. Nothing was done. */
    MOX_BUFFER_TOO_SMALL = 81, /**< The host's memory has no room for the result. Its size was set. */
    MOX_OUT_OF_MEMORY = 82,
    MOX_INTERNAL_ERROR = 83 /**< A defect of the library. */
};

/** Kinds of documents. */
enum { MOX_SETTINGS = 1, MOX_TABLE = 2 };

/** The forms in which a document is stored. */
enum {
    MOX_FORM_DEFAULT = 0, /**< Opening: find out. Saving: that of the document. */
    MOX_FORM_NARROW = 1,  /**< One byte per character: keeps 7-bit text only. */
    MOX_FORM_WIDE = 2,    /**< Two bytes per UTF-16 unit, low byte first: keeps everything. */
    MOX_FORM_UTF8 = 3     /**< For other programs; only mox_to_bytes makes it. */
};

/** The encodings that mox_open and mox_parse import. */
enum {
    MOX_ENCODING_DEFAULT = 0, /**< That of a document, narrow or wide. */
    MOX_ENCODING_NARROW = 1,  /**< 7-bit text. */
    MOX_ENCODING_WIDE = 2,    /**< UTF-16, low byte first. */
    MOX_ENCODING_UTF8 = 3,
    MOX_ENCODING_LATIN1 = 4,
    MOX_ENCODING_UTF16BE = 5, /**< UTF-16, high byte first. */
    MOX_ENCODING_ZEROS = 6 /**< Of a diagnostic alone: the file has nothing but zeros. Cannot be imported. */
};

/** Types of values. Several of them are one type with a shape: see mox_shape. */
enum {
    MOX_TYPE_SHORT = 2,
    MOX_TYPE_LONG = 3,
    MOX_TYPE_DOUBLE = 5,
    MOX_TYPE_STRING = 8,
    MOX_TYPE_BOOL = 11,
    MOX_TYPE_CHAR = 16,
    MOX_TYPE_BYTE = 17,
    MOX_TYPE_USHORT = 18,
    MOX_TYPE_ULONG = 19,
    MOX_TYPE_UCSTRING = 31
};

/** How many of that type a value holds. */
enum { MOX_SHAPE_SINGLE = 0, MOX_SHAPE_VECTOR = 0x1000, MOX_SHAPE_ARRAY = 0x2000 };

/** The control that displays a value and edits it. None is written as text. */
enum {
    MOX_CONTROL_NONE = 0,
    MOX_CONTROL_NUMBER = 1,
    MOX_CONTROL_TEXT = 2,
    MOX_CONTROL_SWITCH = 4,
    MOX_CONTROL_NO_EDIT = 5,
    MOX_CONTROL_RGB = 7,
    MOX_CONTROL_BUTTON = 8,
    MOX_CONTROL_TEXT_ARRAY = 12,
    MOX_CONTROL_NAMED_ARRAY = 14,
    MOX_CONTROL_SWITCH_ARRAY = 15,
    MOX_CONTROL_RADIO_ARRAY = 16,
    MOX_CONTROL_STATE = 17,
    MOX_CONTROL_NAMED_LIST_ARRAY = 18,
    MOX_CONTROL_RADIO = 19,
    MOX_CONTROL_PROPERTY_ARRAY = 20
};

/** The owner of an entry's provider. */
enum { MOX_OWNER_NONE = 0, MOX_OWNER_APP = 1, MOX_OWNER_DWG = 2, MOX_OWNER_ERG = 4 };

/** What a save writes: the document, or an export of the presentation data or of the values of its entries. */
enum { MOX_CONTENT_DOCUMENT = 0, MOX_CONTENT_UI = 1, MOX_CONTENT_VALUES = 2 };

/** Flags of mox_open_options. */
enum {
    /** Opens any document that parses, up to its first zero. To the library a document of another kind is empty. */
    MOX_OPEN_ANY = 1
};

/** Flags of mox_save_options. */
enum {
    /** Replaces whatever is there. Otherwise a file is replaced only if it still has the content that was read from it
     *  or saved to it, and is created only if there is none. */
    MOX_SAVE_OVERWRITE = 1
};

/** Flags of writes of entries. */
enum {
    MOX_EUD_SET = 1,     /**< Sets eud="true" on the entry, and on its table if that has none. */
    MOX_EUD_RESPECT = 2, /**< mox_set_value alone: leaves an entry with eud="true" alone (MOX_PROTECTED). */
};

/** Flags of mox_diagnose. */
enum {
    /** Also checks whether values suit the types, limits and controls of their entries. */
    MOX_DIAGNOSE_VALUES = 1
};

/** How serious a diagnostic is. */
enum {
    MOX_SEVERITY_ERROR =
        1, /**< The file does not parse, or is in an encoding of which the library reads nothing. */
    MOX_SEVERITY_WARNING = 2, /**< Hosts do not read, or do not keep, all that the file contains. */
    MOX_SEVERITY_NOTE = 3     /**< A restriction that takes effect only when the file is converted. */
};

/** Kinds of nodes. */
enum { MOX_NODE_DECLARATION = 1, MOX_NODE_COMMENT = 2, MOX_NODE_ELEMENT = 3 };

/** All entries of the name, for mox_remove. */
#define MOX_ALL (-1)

/** No node, in a mox_node. */
#define MOX_NO_NODE SIZE_MAX

/* ---- handles and structures */

/** An open settings document or table document. */
typedef struct mox_document mox_document;
/** Names, entries or diagnostics. */
typedef struct mox_list mox_list;
/** All that is in a file, to read. */
typedef struct mox_tree mox_tree;
/** Why a call failed. */
typedef struct mox_problem mox_problem;

/** What a problem says. Texts are empty if they do not apply. */
typedef struct mox_problem_info {
    uint32_t size;
    mox_status status; /**< What the call returned. */
    uint64_t line;     /**< In the file, from 1 on; 0 if there is none. */
    uint64_t column;   /**< In units of the file, from 1 on; 0 if there is none. */
    const char* text;  /**< The message after the place that it is about: "camera.xml:3:17: found ...". */
    size_t text_size;
    const char* message; /**< One sentence in plain English, without the file. */
    size_t message_size;
    const char* file; /**< The path as it was given. */
    size_t file_size;
    const char* found; /**< For MOX_SYNTAX: what is at that place. */
    size_t found_size;
    const char* expected; /**< For MOX_SYNTAX: what was expected there. */
    size_t expected_size;
} mox_problem_info;

/** How a document is opened. */
typedef struct mox_open_options {
    uint32_t size;
    uint32_t form;     /**< MOX_FORM_DEFAULT, NARROW or WIDE. In the wrong form a document does not parse. */
    uint32_t encoding; /**< Other than MOX_ENCODING_DEFAULT: imports it; form and flags must be 0 then. */
    uint32_t flags;    /**< MOX_OPEN_ANY */
    const char* table_name; /**< For MOX_TABLE: the name that the table must have; empty accepts any. */
    size_t table_name_size;
} mox_open_options;

/** How a document is saved. */
typedef struct mox_save_options {
    uint32_t size;
    uint32_t form;    /**< MOX_FORM_...; tables and sections are always wide, or UTF-8. */
    uint32_t content; /**< MOX_CONTENT_...; tables and sections are always saved as they are. */
    uint32_t flags;   /**< MOX_SAVE_OVERWRITE; mox_to_bytes has none. */
    /** Null, or the path to which the old file is copied before it is replaced; mox_to_bytes makes no backup. */
    const char* backup;
    size_t backup_size;
    const char*
        section; /**< Null, or the section of a settings document of which only the element is saved. */
    size_t section_size;
} mox_save_options;

/** What a document is. */
typedef struct mox_document_info {
    uint32_t size;
    uint32_t kind; /**< MOX_SETTINGS or MOX_TABLE. */
    uint32_t form; /**< That of the next save: MOX_FORM_NARROW or WIDE. */
} mox_document_info;

/** The attributes of a section or table besides its name. No function acts on them. */
typedef struct mox_table_options {
    uint32_t size;
    uint32_t editable; /**< 0 or 1 */
    uint32_t first_id;
    uint32_t type; /**< At most 65535. */
} mox_table_options;

/** What a section is. */
typedef struct mox_section_info {
    uint32_t size;
    uint32_t editable; /**< 0 or 1 */
} mox_section_info;

/**
 * An entry, or a key. It is a copy of what is in the document, or what is to be written there; how the null pointers
 * and the zeros are meant there is said at mox_add_entry and mox_put_entry.
 */
typedef struct mox_entry {
    uint32_t size;
    uint32_t type;    /**< MOX_TYPE_... */
    uint32_t shape;   /**< MOX_SHAPE_... */
    uint32_t id;      /**< 0: none. */
    const char* name; /**< At most 259 UTF-16 units: a longer one is cut when read. Empty if it has none. */
    size_t name_size;
    /** Its own value, empty if it has none. When read: null if it contains an unpaired surrogate and the type is not
     *  MOX_TYPE_UCSTRING; mox_get_text reads the value of such a key. */
    const char* value;
    size_t value_size;
    uint32_t has_ui;         /**< 1 if it has presentation data; if 0, everything below is 0 or null. */
    uint32_t control;        /**< MOX_CONTROL_... */
    uint32_t provider_owner; /**< MOX_OWNER_... */
    uint32_t provider_index; /**< 0: none. */
    const char* shown_name;  /**< The name that an editor displays. */
    size_t shown_name_size;
    const char* comment;
    size_t comment_size;
    const char* ui_value; /**< The value in the presentation data, as value; mostly empty. */
    size_t ui_value_size;
} mox_entry;

/** What is wrong, or likely to be, at a place in a file. */
typedef struct mox_diagnostic {
    uint32_t size;
    uint32_t severity;   /**< MOX_SEVERITY_... */
    uint32_t encoding;   /**< That with which mox_parse imports the file, if it has another; else 0. */
    uint32_t reserved;   /**< 0 */
    uint64_t line;       /**< From 1 on. Lines end with a line feed. */
    uint64_t column;     /**< From 1 on, in 16-bit units of a wide file, in bytes of a narrow one. */
    const char* message; /**< In plain English, on one line. */
    size_t message_size;
} mox_diagnostic;

/** One node of a tree. */
typedef struct mox_node {
    uint32_t size;
    uint32_t kind;    /**< MOX_NODE_... */
    const char* name; /**< Of an element; "xml" of the declaration; empty for a comment. */
    size_t name_size;
    const char* value; /**< The text of an element without that of its children; the text of a comment. */
    size_t value_size;
    uint64_t line; /**< Where the name, or the text of a comment, is; see mox_diagnostic. */
    uint64_t column;
    size_t parent; /**< The numbers of other nodes, or MOX_NO_NODE. */
    size_t first_child;
    size_t next; /**< The next one with the same parent. */
    size_t attribute_count;
} mox_node;

/** One attribute of a node. */
typedef struct mox_attribute {
    uint32_t size;
    uint32_t reserved; /**< 0 */
    const char* name;
    size_t name_size;
    const char* value; /**< With its references decoded. */
    size_t value_size;
} mox_attribute;

/* ---- the library */

/** Returns the version of the library as 10000 * major + 100 * minor + patch. */
uint32_t mox_version(void);

/** Returns the name of a status, "MOX_OK" for 0; "unknown status" for a number that is none. The text is static. */
const char* mox_status_name(mox_status status);

/** Frees memory that mox_to_bytes or mox_read_file has given. Null does nothing. */
void mox_free(void* memory);

/** Makes an empty problem, for use as the last argument of any number of calls. To be freed with mox_problem_free. */
mox_status mox_problem_new(mox_problem** problem);

/** Reads what the problem says about the last call that it was passed to. */
mox_status mox_problem_get(const mox_problem* problem, mox_problem_info* info);

/** Frees a problem. Null does nothing. */
void mox_problem_free(mox_problem* problem);

/* ---- documents */

/** Makes a settings document without sections; its form is wide. To be freed with mox_document_free. */
mox_status mox_new_settings(mox_document** document, mox_problem* problem);

/**
 * Makes a table document with an empty table of that name. options may be null. To be freed with mox_document_free.
 * Fails with MOX_NOT_KEPT if no file keeps that name.
 */
mox_status mox_new_table(const char* name, size_t name_size, const mox_table_options* options,
                         mox_document** document, mox_problem* problem);

/**
 * Opens a file. kind is MOX_SETTINGS or MOX_TABLE; options may be null. To be freed with mox_document_free.
 *
 * Fails if the file cannot be read (MOX_NOT_FOUND and the other statuses of files), does not parse (MOX_SYNTAX, with
 * line, column, and what was expected there), is another kind of document (MOX_WRONG_KIND), or is stored in another way
 * than documents are (MOX_WRONG_ENCODING; mox_diagnose tells how). A table document is always wide. A file that is
 * imported does not count as read: saving to it takes MOX_SAVE_OVERWRITE.
 */
mox_status mox_open(const char* path, size_t path_size, uint32_t kind, const mox_open_options* options,
                    mox_document** document, mox_problem* problem);

/** The same for the content of a file in memory, bytes of any values. Here a table document may have either form. */
mox_status mox_parse(const void* bytes, size_t size, uint32_t kind, const mox_open_options* options,
                     mox_document** document, mox_problem* problem);

/** Reads what a document is. */
mox_status mox_document_get_info(const mox_document* document, mox_document_info* info);

/**
 * Sets the form of the next saves of a settings document: MOX_FORM_NARROW or MOX_FORM_WIDE. Later writes refuse what
 * that form does not keep; saves check what was written before. A table document is always wide
 * (MOX_INVALID_ARGUMENT).
 */
mox_status mox_set_form(mox_document* document, uint32_t form, mox_problem* problem);

/**
 * Replaces a file atomically by what the document has, or creates it: after a failure the old file is unchanged. (With
 * MOX_UNCONFIRMED, the new one should be in place, and the next save goes on from it.) options may be null.
 *
 * A file that is not the one that was read or saved last is not replaced (MOX_CHANGED), unless MOX_SAVE_OVERWRITE is
 * set. A narrow file keeps 7-bit text only (MOX_NOT_KEPT). Saving a settings document with MOX_CONTENT_DOCUMENT removes
 * "eud" from all its sections and entries, in memory as well, even if the save then fails.
 */
mox_status mox_save(mox_document* document, const char* path, size_t path_size,
                    const mox_save_options* options, mox_problem* problem);

/**
 * Gives the bytes that mox_save would write, or with MOX_FORM_UTF8 the same text as UTF-8 without a byte-order mark.
 * options may be null. *bytes is to be freed with mox_free; a zero byte follows it, which *size does not count. Like
 * mox_save, it removes "eud" from a settings document in memory.
 */
mox_status mox_to_bytes(mox_document* document, const mox_save_options* options, void** bytes, size_t* size,
                        mox_problem* problem);

/** Frees a document. What was not saved is lost. Null does nothing. */
void mox_document_free(mox_document* document);

/* ---- sections of a settings document. Of a table document, the functions fail with MOX_WRONG_KIND. */

/**
 * Lists the names of the sections in document order (mox_list_name). Every element under the root counts, even one that
 * is not a section, which no other function finds. To be freed with mox_list_free.
 */
mox_status mox_section_names(const mox_document* document, mox_list** names, mox_problem* problem);

/** Reads what a section is. Fails with MOX_NO_SUCH_SECTION if there is none. */
mox_status mox_section_get_info(const mox_document* document, const char* section, size_t section_size,
                                mox_section_info* info, mox_problem* problem);

/**
 * Creates a section, or gives an existing one the first id and the type of the options; whether that one is editable
 * does not change. options may be null. Fails with MOX_NOT_KEPT if a file of the document's form does not keep that
 * name.
 */
mox_status mox_make_section(mox_document* document, const char* section, size_t section_size,
                            const mox_table_options* options, mox_problem* problem);

/** Removes a section with everything in it. Fails with MOX_NO_SUCH_SECTION if there is none. */
mox_status mox_remove_section(mox_document* document, const char* section, size_t section_size,
                              mox_problem* problem);

/* ---- values of keys and entries. Reading: an empty value is replaced by that of the presentation data. A text is read
 * as a number, a truth value or bytes only if all of it is one; white space around it does not count. Failures:
 * MOX_NO_SUCH_SECTION, MOX_NO_SUCH_KEY, MOX_UNREADABLE, MOX_WRONG_TYPE, MOX_OUT_OF_RANGE. */

/**
 * Lists the names of the keys or entries that can be read (mox_list_name). Of a name with more than 259 UTF-16 units,
 * the list has the first 259. To be freed with mox_list_free.
 */
mox_status mox_entry_names(const mox_document* document, const char* section, size_t section_size,
                           mox_list** names, mox_problem* problem);

/**
 * Sets *found to 1 if there is such a key or entry, to 0 if not, even if there is no such section. An entry of a table
 * document counts also if it cannot be read; a key does not.
 */
mox_status mox_contains(const mox_document* document, const char* section, size_t section_size,
                        const char* name, size_t name_size, int32_t* found, mox_problem* problem);

/**
 * Reads a value as text. buffer has room for capacity bytes; it receives the text and a zero byte, and *size the length
 * without that. If there is no room (MOX_BUFFER_TOO_SMALL), the buffer is unchanged and *size is set: a buffer of
 * *size + 1 bytes is large enough. buffer may be null if capacity is 0. size may be null.
 */
mox_status mox_get_text(const mox_document* document, const char* section, size_t section_size,
                        const char* name, size_t name_size, char* buffer, size_t capacity, size_t* size,
                        mox_problem* problem);

/** Reads a value as a whole number from -2^63 to 2^63 - 1. */
mox_status mox_get_int(const mox_document* document, const char* section, size_t section_size,
                       const char* name, size_t name_size, int64_t* value, mox_problem* problem);

/** Reads a value as a decimal number. */
mox_status mox_get_double(const mox_document* document, const char* section, size_t section_size,
                          const char* name, size_t name_size, double* value, mox_problem* problem);

/** Reads 1 or "true" as 1, 0 or "false" as 0. */
mox_status mox_get_bool(const mox_document* document, const char* section, size_t section_size,
                        const char* name, size_t name_size, int32_t* value, mox_problem* problem);

/** Reads pairs of hexadecimal digits as bytes. As mox_get_text, but without the zero byte: *size bytes are enough. */
mox_status mox_get_bytes(const mox_document* document, const char* section, size_t section_size,
                         const char* name, size_t name_size, void* buffer, size_t capacity, size_t* size,
                         mox_problem* problem);

/*
 * Writing: a missing section is created, a missing key or entry is added at the end, with the type that is said. Of an
 * existing one only the value changes, and its "eud" is removed. The value that was written is the one that is read:
 * so an empty text is refused where the presentation data have a value (MOX_NOT_STORED). Failures: MOX_INVALID_TEXT,
 * MOX_NOT_KEPT, MOX_UNREADABLE, MOX_AMBIGUOUS, MOX_NOT_STORED.
 */

/** Writes a text. A new key has the type "string". */
mox_status mox_set_text(mox_document* document, const char* section, size_t section_size, const char* name,
                        size_t name_size, const char* value, size_t value_size, mox_problem* problem);

/**
 * Writes a whole number. type is that of a new key: MOX_TYPE_SHORT, USHORT, LONG or ULONG, which the number has to fit
 * (MOX_OUT_OF_RANGE), or MOX_TYPE_STRING for 64 bits.
 */
mox_status mox_set_int(mox_document* document, const char* section, size_t section_size, const char* name,
                       size_t name_size, int64_t value, uint32_t type, mox_problem* problem);

/**
 * Writes a finite number, as the shortest text that reads as the same one; any other gives MOX_OUT_OF_RANGE. A new key
 * has the type "double".
 */
mox_status mox_set_double(mox_document* document, const char* section, size_t section_size, const char* name,
                          size_t name_size, double value, mox_problem* problem);

/** Writes a truth value, 0 or 1. A new key has the type "bool". */
mox_status mox_set_bool(mox_document* document, const char* section, size_t section_size, const char* name,
                        size_t name_size, int32_t value, mox_problem* problem);

/**
 * Writes two hexadecimal digits per byte. bytes may be null if size is 0. A new key has the type "string". More than
 * 1,073,741,823 bytes give MOX_TOO_LARGE.
 */
mox_status mox_set_bytes(mox_document* document, const char* section, size_t section_size, const char* name,
                         size_t name_size, const void* bytes, size_t size, mox_problem* problem);

/**
 * Removes one of the entries of that name, whatever their "eud": occurrence 0 is the first one, MOX_ALL means all of
 * them. An empty name means the entries whose name is empty. Fails with MOX_NO_SUCH_KEY if there is none. A key whose
 * name has more than 259 UTF-16 units can be removed with MOX_ALL alone.
 */
mox_status mox_remove(mox_document* document, const char* section, size_t section_size, const char* name,
                      size_t name_size, int32_t occurrence, mox_problem* problem);

/** Gives an entry another name, in its place, and changes nothing else. Fails with MOX_NAME_TAKEN if that exists. */
mox_status mox_rename(mox_document* document, const char* section, size_t section_size, const char* name,
                      size_t name_size, const char* new_name, size_t new_name_size, mox_problem* problem);

/** Removes every entry of the section or table. Comments and other elements stay. */
mox_status mox_clear(mox_document* document, const char* section, size_t section_size, mox_problem* problem);

/* ---- whole entries. A section has to exist. */

/** Lists the entries in document order (mox_list_entry). Those that cannot be read are left out. To be freed with
 *  mox_list_free. */
mox_status mox_entries(const mox_document* document, const char* section, size_t section_size,
                       mox_list** entries, mox_problem* problem);

/** The same for the entry of that name: a list of one. To be freed with mox_list_free. */
mox_status mox_find_entry(const mox_document* document, const char* section, size_t section_size,
                          const char* name, size_t name_size, mox_list** entries, mox_problem* problem);

/** Counts the elements that the lists leave out because they have no known type. */
mox_status mox_count_unreadable(const mox_document* document, const char* section, size_t section_size,
                                size_t* count, mox_problem* problem);

/**
 * Adds an entry: before the first one of the name `before`, or after the last one if that is null.
 *
 * A null value writes no value, and a null ui_value none to the presentation data. flags is 0 or MOX_EUD_SET. Fails if
 * the name exists (MOX_NAME_TAKEN) or is empty or too long (MOX_INVALID_TEXT), if there is no `before`
 * (MOX_NO_SUCH_KEY), if the file does not keep a text (MOX_NOT_KEPT), or if the entry cannot be stored
 * (MOX_NOT_STORED): its type, control or owner has no name in files, or the presentation data have a value but no
 * comment. In a table that keeps its values in the presentation data, which its first entry shows, a value without one
 * of its own goes there.
 */
mox_status mox_add_entry(mox_document* document, const char* section, size_t section_size, const char* before,
                         size_t before_size, const mox_entry* entry, uint32_t flags, mox_problem* problem);

/**
 * Changes the entry of that name, whatever its "eud", or adds it if there is none. What is null, zero or empty in
 * *entry leaves the entry as it is; but type, shape, an empty value that is not null and the control are always
 * written (the latter if has_ui is 1). An "eud" that the entry has stays. flags is 0 or MOX_EUD_SET. Fails as
 * mox_add_entry does.
 */
mox_status mox_put_entry(mox_document* document, const char* section, size_t section_size,
                         const mox_entry* entry, uint32_t flags, mox_problem* problem);

/**
 * Changes the value of an existing entry and nothing else. Without MOX_EUD_SET its "eud" is removed. With
 * MOX_EUD_RESPECT an entry with eud="true" is left alone (MOX_PROTECTED), and so is one without a value of its own
 * (MOX_NOT_STORED).
 */
mox_status mox_set_value(mox_document* document, const char* section, size_t section_size, const char* name,
                         size_t name_size, const char* value, size_t value_size, uint32_t flags,
                         mox_problem* problem);

/** Sets "eud" of an entry (eud 1; also of its table, if that has none), or removes it (0). Changes nothing else. */
mox_status mox_set_eud(mox_document* document, const char* section, size_t section_size, const char* name,
                       size_t name_size, int32_t eud, mox_problem* problem);

/**
 * These three change parts of the presentation data of an entry; an empty text, MOX_OWNER_NONE and 0 clear them. Where
 * that is possible only by replacing the entry by a new one, and this would lose what only the file has, they fail
 * (MOX_NOT_STORED) and say what.
 */
mox_status mox_set_comment(mox_document* document, const char* section, size_t section_size, const char* name,
                           size_t name_size, const char* comment, size_t comment_size, mox_problem* problem);

/** Sets the name that an editor displays; see mox_set_comment. */
mox_status mox_set_shown_name(mox_document* document, const char* section, size_t section_size,
                              const char* name, size_t name_size, const char* shown_name,
                              size_t shown_name_size, mox_problem* problem);

/** Sets owner (MOX_OWNER_...) and index of the provider; see mox_set_comment. */
mox_status mox_set_provider(mox_document* document, const char* section, size_t section_size,
                            const char* name, size_t name_size, uint32_t owner, uint32_t index,
                            mox_problem* problem);

/* ---- lists */

/** Returns how many names, entries or diagnostics the list has. */
size_t mox_list_count(const mox_list* list);

/**
 * Gives the name with that index. size may be null. These three fail with MOX_OUT_OF_RANGE for an index that the list
 * does not have, and with MOX_WRONG_KIND if it is a list of something else (this one also gives the names of entries).
 */
mox_status mox_list_name(const mox_list* list, size_t index, const char** name, size_t* size);

/** Reads the entry with that index. */
mox_status mox_list_entry(const mox_list* list, size_t index, mox_entry* entry);

/** Reads the diagnostic with that index. */
mox_status mox_list_diagnostic(const mox_list* list, size_t index, mox_diagnostic* diagnostic);

/** Frees a list. Null does nothing. */
void mox_list_free(mox_list* list);

/* ---- files as they are */

/**
 * Reads a file as a whole, pipes too. *bytes is to be freed with mox_free; a zero byte follows it, which *size does not
 * count.
 */
mox_status mox_read_file(const char* path, size_t path_size, void** bytes, size_t* size,
                         mox_problem* problem);

/**
 * Finds what is wrong with the content of a file, and what is likely to be: a list of diagnostics sorted by position
 * (mox_list_diagnostic), to be freed with mox_list_free. A file with an error has no other diagnostics. form is
 * MOX_FORM_DEFAULT, NARROW or WIDE; flags is 0 or MOX_DIAGNOSE_VALUES.
 */
mox_status mox_diagnose(const void* bytes, size_t size, uint32_t form, uint32_t flags, mox_list** diagnostics,
                        mox_problem* problem);

/**
 * Reads the content of a file as a tree, with all that the other functions do not return: comments, attributes and
 * elements that the library does not know, limits and flags of entries. Nodes are numbered from 0 on in document
 * order, a node before its children. form is MOX_FORM_DEFAULT, NARROW or WIDE. To be freed with mox_tree_free.
 */
mox_status mox_tree_parse(const void* bytes, size_t size, uint32_t form, mox_tree** tree,
                          mox_problem* problem);

/** Returns the number of nodes. */
size_t mox_tree_count(const mox_tree* tree);

/** Reads the node with that number. Fails with MOX_OUT_OF_RANGE if there is none. */
mox_status mox_tree_node(const mox_tree* tree, size_t number, mox_node* node);

/** Reads an attribute of a node, by its index. Fails with MOX_OUT_OF_RANGE if there is no such node or attribute. */
mox_status mox_tree_attribute(const mox_tree* tree, size_t number, size_t index, mox_attribute* attribute);

/** Frees a tree. Null does nothing. */
void mox_tree_free(mox_tree* tree);

#ifdef __cplusplus
}
#endif

#endif
