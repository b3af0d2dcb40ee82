// What the fuzz targets demand of a tree at any time, and of a document that is saved and loaded again.
#ifndef MOX_XMLAPI_FUZZ_TREE_CHECK_H
#define MOX_XMLAPI_FUZZ_TREE_CHECK_H

#include "fuzz/scratch_file.h"
#include "mox_xmlApi/profile/settings.h"
#include "mox_xmlApi/xml/xml_document.h"
#include "tests/model/tree.h"

namespace mox::fuzz {

// Checks the tree under `node`: every index is the node's position, every node stands where its kind may
// stand and has what its kind may have.
void CheckTree(const XmlNode& node);

// Checks the tree and gives it the form of the model.
model::NodePtr CopyTree(const XmlNode& node);

// The document of a text, as the model parses it; null when it is not in the dialect. Which characters beyond ASCII
// are letters, only the library can say.
model::NodePtr ParseByModel(const model::Text& text);

// Looks up the names that stand among the children of `parent`, and some that do not, and compares the results with
// those of a scan.
void CheckLookUps(const XmlDocument& document, XmlNode& parent);

// The slow look-ups: the first child called `name` (an empty name: the first that has one), and the first
// "Table" child called `name`. Null without.
XmlNode* ScanForEntry(const XmlNode& parent, WideView name);
XmlNode* ScanForTable(const XmlNode& parent, WideView name);

// Why a document that is saved and loaded does not come back unchanged; 0 when nothing speaks against it.
inline constexpr unsigned kUnitsAreCut = 1;
inline constexpr unsigned kSpaceIsDropped = 2;
inline constexpr unsigned kTextGrows = 4;
unsigned WhyNotUnchanged(const model::Node& document, bool wide);

// Saves the profile or the table, loads the file and saves that again. Each file must hold exactly what the model
// writes of the tree, each loaded tree must be what the model reads from the file, and the second file must equal the
// first unless there is a reason why not.
void CheckRoundTrip(moxSettings* profile, const ScratchFile& file, bool wide);
void CheckRoundTrip(void* table, const ScratchFile& file);

}  // namespace mox::fuzz

#endif
