// What the fuzz targets demand of a tree at any time, and of a document that is saved and loaded again.
#ifndef MOX_XMLAPI_FUZZ_TREE_CHECK_H
#define MOX_XMLAPI_FUZZ_TREE_CHECK_H

#include "fuzz/plain_document.h"
#include "fuzz/scratch_file.h"
#include "mox_xmlApi/profile/settings.h"
#include "mox_xmlApi/xml/xml_document.h"

namespace mox::fuzz {

// Checks the tree under `node`: every index is the node's position, every node stands where its kind may
// stand and has what its kind may have.
void CheckTree(const XmlNode& node);

// Checks the tree and copies it. Of a document node the children are copied alone.
PlainDocument CopyTree(const XmlNode& node);

// Looks up the names that stand among the children of `parent`, and some that do not, and holds the results
// against a plain scan.
void CheckLookUps(const XmlDocument& document, XmlNode& parent);

// The slow look-ups: the first child called `name` (an empty name: the first that has one), and the first
// "Table" child called `name`. Null without.
XmlNode* ScanForEntry(const XmlNode& parent, WideView name);
XmlNode* ScanForTable(const XmlNode& parent, WideView name);

// Why a document that is saved and loaded does not come back unchanged; 0 when nothing speaks against it.
inline constexpr unsigned kUnitsAreCut = 1;
inline constexpr unsigned kSpaceIsDropped = 2;
inline constexpr unsigned kTextGrows = 4;
unsigned WhyNotUnchanged(const PlainDocument& document, bool wide);

// Saves the profile or the table, loads the file and saves that again. Each file must hold exactly what a
// plain writing of the tree gives, each loaded tree must be what a plain reading of the file gives, and the
// second file must equal the first unless there is a reason why not.
void CheckRoundTrip(moxSettings* profile, const ScratchFile& file, bool wide);
void CheckRoundTrip(void* table, const ScratchFile& file);

}  // namespace mox::fuzz

#endif
