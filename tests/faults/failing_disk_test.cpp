// Places that cannot be written to or read from, as far as both systems have them.
#include <filesystem>
#include <string>

#include "tests/faults/open_documents_support.h"
#include "tests/host/host_support.h"

#if defined(_WIN32)
#include <windows.h>
#endif

namespace faults {
namespace {

using host::operator""_w;

TEST(FailingDisk, FolderIsNoFile) {
    const host::WideText folder = host::WidePath(host::ScratchFolder());
    EXPECT_TRUE(OpenDocuments(3).CannotBeSavedTo(folder.c_str()));
    EXPECT_TRUE(CannotBeLoaded(folder.c_str()));
    EXPECT_TRUE(std::filesystem::is_directory(host::ScratchFolder()));
}

TEST(FailingDisk, FolderThatIsNotThereHoldsNoFile) {
    const std::filesystem::path folder = host::ScratchFolder() / "no_such_folder";
    const host::WideText path = host::WidePath(folder / "file.xml");
    EXPECT_TRUE(OpenDocuments(3).CannotBeSavedTo(path.c_str()));
    EXPECT_TRUE(CannotBeLoaded(path.c_str()));
    EXPECT_FALSE(std::filesystem::exists(folder));
}

TEST(FailingDisk, FileIsNoFolder) {
    const host::ScratchFile file;
    host::WriteBytes(file.Path(), "<a/>\n");
    const host::WideText path = host::WidePath(file.Path() / "below.xml");
    EXPECT_TRUE(OpenDocuments(3).CannotBeSavedTo(path.c_str()));
    EXPECT_TRUE(CannotBeLoaded(path.c_str()));
    EXPECT_EQ(file.Bytes(), "<a/>\n");
}

TEST(FailingDisk, FileThatIsNotThereIsNotLoaded) {
    const host::ScratchFile file;
    EXPECT_TRUE(CannotBeLoaded(file.Name()));
    EXPECT_FALSE(file.Exists());
}

TEST(FailingDisk, EmptyPathIsNoFile) {
    EXPECT_TRUE(OpenDocuments(3).CannotBeSavedTo(""_w));
    EXPECT_TRUE(CannotBeLoaded(""_w));
}

// One name of `length` characters in the scratch folder.
host::WideText NameOfLength(std::size_t length) {
    return host::WidePath(host::ScratchFolder() / std::u16string(length, u'n'));
}

TEST(FailingDisk, NameThatIsTooLongForTheSystemIsNoFile) {
    const OpenDocuments documents(3);
    EXPECT_TRUE(documents.CannotBeSavedTo(NameOfLength(256).c_str()));
    EXPECT_TRUE(CannotBeLoaded(NameOfLength(256).c_str()));
}

#if !defined(_WIN32)
TEST(FailingDisk, LongestNameOfTheSystemIsAFile) {
    const OpenDocuments documents(3);
    const host::ScratchFile file(std::u16string(255, u'n'));
    for (const OpenDocuments::Save& save : documents.EverySave())
        EXPECT_TRUE(save(file.Name()));
    EXPECT_TRUE(host::Section(xmlTableNew(file.Name(), nullptr, 0, nullptr, 0, 0, 0, 0)));
}
#endif

TEST(FailingDisk, PathThatIsTooLongForTheSystemIsNoFile) {
    const OpenDocuments documents(3);
#if defined(_WIN32)
    const host::WideText step = "/n"_w;  // components without effect are removed before the length is checked
#else
    const host::WideText step = "/."_w;
#endif
    for (const std::size_t steps : {2500U, 20000U}) {
        host::WideText path = host::WidePath(host::ScratchFolder());
        for (std::size_t i = 0; i < steps; ++i)
            path.append(step);
        path.append("/file.xml"_w);
        EXPECT_TRUE(documents.CannotBeSavedTo(path.c_str())) << steps;
        EXPECT_TRUE(CannotBeLoaded(path.c_str())) << steps;
    }
}

// Under Linux paths are 8-bit texts, which surrogates without a partner have no form in. Under Windows some characters
// are reserved.
TEST(FailingDisk, PathThatTheSystemCannotExpressIsNoFile) {
    const OpenDocuments documents(3);
#if defined(_WIN32)
    const host::WideText names[] = {"a|b.xml"_w, "a<b>.xml"_w, "a?b*.xml"_w, "a\"b.xml"_w};
#else
    const host::WideText names[] = {u"\xD800.xml"_w, u"\xDC00.xml"_w, u"\xDC00\xD800.xml"_w, u"a\xD83D"_w};
#endif
    for (const host::WideText& name : names) {
        const host::WideText path = host::WidePath(host::ScratchFolder()) + host::WideText("/"_w) + name;
        EXPECT_TRUE(documents.CannotBeSavedTo(path.c_str())) << host::Shown(name.c_str());
        EXPECT_TRUE(CannotBeLoaded(path.c_str())) << host::Shown(name.c_str());
    }
}

#if defined(_WIN32)

TEST(FailingDisk, ReadOnlyFileIsReadAndNotWritten) {
    const host::ScratchFile file;
    const std::string bytes = host::WideFile(TableText(3));
    host::WriteBytes(file.Path(), bytes);
    ASSERT_TRUE(SetFileAttributesW(file.Name(), FILE_ATTRIBUTE_READONLY));
    const HANDLE forAll = CreateFileW(file.Name(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    if (forAll != INVALID_HANDLE_VALUE) {
        CloseHandle(forAll);
        SetFileAttributesW(file.Name(), FILE_ATTRIBUTE_NORMAL);
        GTEST_SKIP() << "this user may write to read-only files";
    }
    EXPECT_TRUE(OpenDocuments(3).CannotBeSavedTo(file.Name()));
    EXPECT_TRUE(host::Section(xmlTableNew(file.Name(), nullptr, 0, nullptr, 0, 0, 0, 0)));
    ASSERT_TRUE(SetFileAttributesW(file.Name(), FILE_ATTRIBUTE_NORMAL));
    EXPECT_EQ(file.Bytes(), bytes);
}

TEST(FailingDisk, FileThatAnotherKeepsToItselfIsNeitherReadNorWritten) {
    const host::ScratchFile file;
    host::WriteBytes(file.Path(), host::WideFile(TableText(3)));
    const HANDLE other = CreateFileW(file.Name(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(other, INVALID_HANDLE_VALUE);
    EXPECT_TRUE(OpenDocuments(3).CannotBeSavedTo(file.Name()));
    EXPECT_TRUE(CannotBeLoaded(file.Name()));
    CloseHandle(other);
    EXPECT_EQ(file.Bytes(), host::WideFile(TableText(3)));
}

#endif

}  // namespace
}  // namespace faults
