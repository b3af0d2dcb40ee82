// A profile and a table to save, and what has to hold of them whatever became of their files.
#ifndef MOX_XMLAPI_TESTS_FAULTS_OPEN_DOCUMENTS_SUPPORT_H
#define MOX_XMLAPI_TESTS_FAULTS_OPEN_DOCUMENTS_SUPPORT_H

#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "mox_xmlApi/mox_xmlApi.h"

namespace faults {

// A document of this many keys or entries with texts of 16 characters.
std::string ProfileText(int keys);
std::string TableText(int entries);

class OpenDocuments {
  public:
    explicit OpenDocuments(int entries);
    ~OpenDocuments();
    OpenDocuments(const OpenDocuments&) = delete;
    OpenDocuments& operator=(const OpenDocuments&) = delete;

    using Save = std::function<bool(const wchar16* path)>;
    // Every kind of save there is, of the profile and of the table.
    std::vector<Save> EverySave() const;

    // Whether every kind of save to the path fails and changes nothing in memory.
    testing::AssertionResult CannotBeSavedTo(const wchar16* path) const;
    // Whether every kind of save to a writable path writes what it wrote when the documents were made, and their trees are sound.
    testing::AssertionResult AreUntouched() const;

    moxSettings* profile = nullptr;
    void* table = nullptr;

  private:
    std::vector<std::string> EveryFile() const;

    std::vector<std::string> files_;
};

// Whether no document can be loaded from the path, in any form, and nothing stays allocated or open.
testing::AssertionResult CannotBeLoaded(const wchar16* path);

}  // namespace faults

#endif
