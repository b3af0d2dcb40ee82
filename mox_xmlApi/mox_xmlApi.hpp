// The C++ front of mox_xmlApi: the exports of mox_xmlApi.h as classes. C++17 and later.
//
//     #include <iostream>
//     #include "mox_xmlApi/mox_xmlApi.hpp"
//
//     int main() {
//         auto settings = mox::Profile::open("camera.xml");
//         if (!settings) return 1;
//         std::cout << settings->get<int>("Camera", "Exposure", 1000) << "\n";
//         mox::Problem problem;
//         if (!settings->set("Camera", "Gain", 1.5, &problem)) std::cerr << problem.message << "\n";
//         for (const mox::Section& section : settings->sections())
//             for (const mox::Entry& entry : section.entries())
//                 std::cout << section.name() << "/" << entry.name << " = " << entry.effectiveValue() << "\n";
//         return settings->saveReplacing("camera.xml") ? 0 : 1;  // in the form that it was opened with
//     }
//
// A program links mox_front, a static library, and with it mox_xmlApi and mox_dbtInfo. The classes:
//
//   mox::Profile   a settings document: sections with keys. front/profile.hpp
//   mox::Section   one section of a profile        } both derive from mox::EntryTable, which has the
//   mox::Table     a table document: one table     } functions for entries: front/entry_table.hpp
//   mox::Entry     an entry, or a key, as a plain value with its presentation data: front/entry.hpp
//   mox::Document  a whole file to read, with what no export returns: document/document.hpp
//   mox::Text      a text argument, converted implicitly from any kind of string: front/text.hpp
//   mox::Problem   why a call failed: front/problem.hpp
//
// mox::readFile and mox::replaceFile read and replace files as a whole, and mox::FileLock keeps a file from changing in
// between: disk/read_file.hpp, disk/replace_file.hpp, disk/file_lock.hpp. mox::renameSection, copySection,
// changeSection, changeSections and removePresentation change the text of a document where no class can:
// document/text_edit.hpp.
//
// Texts
//   Arguments are UTF-8 (std::string, std::string_view, "...") or UTF-16 (std::u16string, std::u16string_view, u"...",
//   on Windows L"..." as well). So are paths: UTF-8 on every system, or a std::filesystem::path. Results are UTF-8; a
//   function or type whose name ends in 16 has std::u16string. Every 16-bit text can be converted to UTF-8 and back
//   without loss, also one with unpaired surrogates. A call with bytes that are not UTF-8, or with a text that contains
//   a zero unit, fails and does nothing (front/text.hpp has the details). Texts of any length are read whole.
//
// Failure
//   A function returns std::optional if its result may be missing, and bool if it may fail. Most of them take a pointer
//   to a mox::Problem as their last argument; on failure it receives the reason, on success it is reset. A program that
//   does not ask for it pays nothing. The front throws no exceptions of its own. Those of the library, such as
//   std::bad_alloc, pass through (see mox_xmlApi.h).
//
// Files
//   open finds out what a file is and refuses what it cannot use: a document of another kind, another encoding, text that
//   does not parse (with line and column). saveReplacing replaces a file as a whole, in the form that was opened, and
//   only if it still has the content that was read: a file that another program has changed, or that nobody has read, is
//   not overwritten unless the program asks for it. front/file_options.hpp has the options.
//
// Writes
//   A write that succeeds has stored what was asked: the same object reads it back, and so does the next program that
//   opens the saved file. What cannot be kept is refused: a text that the form of the file would change or lose
//   (Reason::NotKept; front/kept_text.hpp has the rules), a value that nobody could read (Unreadable), that reads would
//   not return (Ambiguous, NotStored). A write that is refused changes nothing. setLossy(true) of a profile or table
//   switches most of these checks off, see Profile::setLossy.
//
//   If memory runs out, a write that adds something takes it back; at most an empty element without a name is left, which
//   nobody can find. A write to what was there before may have been carried out in part; the document is whole, and each
//   entry has its old value or the new one.
//
// Ownership
//   Profile, Section and Table own their handles and can be moved but not copied. A Section keeps the document of its
//   profile alive, and a range keeps its table alive, so they can be destroyed in any order. What a function returns by
//   value is a copy. An object that was moved from is empty: it converts to false, finds nothing and writes nothing. A
//   Document that was moved from can only be assigned to or destroyed.
//
// Threads
//   A profile with all its sections and their ranges may be used by one thread at a time; so may a table with its
//   ranges, and a Document with its nodes.
#ifndef MOX_XMLAPI_MOX_XMLAPI_HPP
#define MOX_XMLAPI_MOX_XMLAPI_HPP

#if (defined(_MSVC_LANG) && _MSVC_LANG < 201703L) || (!defined(_MSVC_LANG) && __cplusplus < 201703L)
#error "mox_xmlApi.hpp needs C++17: compile with -std=c++17 or /std:c++17, or a later standard"
#else

#include "mox_xmlApi/disk/file_lock.hpp"
#include "mox_xmlApi/disk/file_stamp.hpp"
#include "mox_xmlApi/disk/read_file.hpp"
#include "mox_xmlApi/disk/replace_file.hpp"
#include "mox_xmlApi/document/diagnose.hpp"
#include "mox_xmlApi/document/document.hpp"
#include "mox_xmlApi/document/encoding.hpp"
#include "mox_xmlApi/document/text_edit.hpp"
#include "mox_xmlApi/front/entry.hpp"
#include "mox_xmlApi/front/entry_table.hpp"
#include "mox_xmlApi/front/file_options.hpp"
#include "mox_xmlApi/front/form.hpp"
#include "mox_xmlApi/front/problem.hpp"
#include "mox_xmlApi/front/profile.hpp"
#include "mox_xmlApi/front/section.hpp"
#include "mox_xmlApi/front/table.hpp"
#include "mox_xmlApi/front/table_options.hpp"
#include "mox_xmlApi/front/text.hpp"
#include "mox_xmlApi/mox_xmlApi.h"

#endif

#endif
