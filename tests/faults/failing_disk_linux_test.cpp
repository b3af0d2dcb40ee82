// Full disks, devices, pipes and missing permissions. Linux only.
#if !defined(_WIN32)

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <new>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

#include "tests/faults/child_process_support.h"
#include "tests/faults/filled_pipe_support.h"
#include "tests/faults/open_documents_support.h"
#include "tests/host/host_support.h"
#include "tests/sanitized_build.h"

namespace faults {
namespace {

using host::operator""_w;

std::string Said(const testing::AssertionResult& result, const char* what) {
    return result ? "" : std::string(what) + ": " + result.message();
}

// ---- Full disks

TEST(FailingDisk, SaveToAFullDeviceFails) {
    EXPECT_TRUE(OpenDocuments(3).CannotBeSavedTo("/dev/full"_w));
    EXPECT_TRUE(OpenDocuments(10000).CannotBeSavedTo("/dev/full"_w));
}

// While one lives, no file of this process grows beyond `bytes` bytes.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t bytes) : oldAction_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &old_);
        rlimit limit = old_;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &old_);
        std::signal(SIGXFSZ, oldAction_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

  private:
    rlimit old_{};
    void (*oldAction_)(int);
};

std::string SaveWithin(const OpenDocuments::Save& save, rlim_t bytes, bool& saved) {
    const host::ScratchFile file;
    {
        const FileSizeLimit limit(bytes);
        saved = save(file.Name());
    }
    return file.Bytes();
}

TEST(FailingDisk, SaveThatTheDiskHasRoomForInPartFails) {
    const OpenDocuments documents(2000);
    for (const OpenDocuments::Save& save : documents.EverySave()) {
        bool saved = false;
        const std::string whole = SaveWithin(save, RLIM_INFINITY, saved);
        ASSERT_TRUE(saved);
        for (const std::size_t room :
             {std::size_t{0}, std::size_t{1}, std::size_t{4096}, whole.size() / 2, whole.size() - 1}) {
            const std::string part = SaveWithin(save, room, saved);
            EXPECT_FALSE(saved) << room;
            EXPECT_TRUE(part.size() <= room && whole.starts_with(part)) << room;
        }
        EXPECT_EQ(SaveWithin(save, whole.size(), saved), whole);
        EXPECT_TRUE(saved);
    }
    EXPECT_TRUE(documents.AreUntouched());
}

TEST(FailingDisk, WhatAFullDiskLeftOfASaveIsNotLoaded) {
    const OpenDocuments documents(2000);
    const host::ScratchFile file;
    {
        const FileSizeLimit limit(30000);
        EXPECT_EQ(xmlProfileSave(documents.profile, file.Name(), 0, 0, 0), 0U);
    }
    EXPECT_EQ(std::filesystem::file_size(file.Path()), 30000U);
    EXPECT_TRUE(CannotBeLoaded(file.Name()));
}

// Makes a disk of 64 KiB at the folder, for this process alone.
bool MountSmallDisk(const std::string& folder) {
    return unshare(CLONE_NEWNS) == 0 && mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=64k") == 0;
}

std::string SaveToSmallDisk(const std::filesystem::path& folder) {
    if (!MountSmallDisk(folder.string())) return "skipped";
    const OpenDocuments large(20000);
    const OpenDocuments small(20);
    const std::filesystem::path path = folder / "file.xml";
    const host::WideText name = host::WidePath(path);
    for (const OpenDocuments::Save& save : large.EverySave()) {
        if (save(name.c_str())) return "a large document fits on a small disk";
        if (std::filesystem::file_size(path) > 64 * 1024) return "more was written than fits";
        if (const auto result = CannotBeLoaded(name.c_str()); !result)
            return Said(result, "a part of a document");
    }
    // What was there is replaced, which makes room.
    for (const OpenDocuments::Save& save : small.EverySave()) {
        if (!save(name.c_str())) return "a small document does not fit";
    }
    return Said(large.AreUntouched(), "large") + Said(small.AreUntouched(), "small");
}

TEST(FailingDisk, SaveToADiskThatIsTooSmallFails) {
    const std::filesystem::path folder = host::ScratchFolder() / "small_disk";
    std::filesystem::create_directories(folder);
    const std::string wrong = InChild([&] { return SaveToSmallDisk(folder); });
    std::filesystem::remove(folder);
    if (wrong == "skipped") GTEST_SKIP() << "no right to mount a disk; file size limits are tested instead";
    EXPECT_EQ(wrong, "");
}

// ---- Permissions

// In the scratch folder, which others may not be able to reach by its whole path.
std::string WithoutPrivileges(const std::function<std::string()>& work) {
    return InChild([&]() -> std::string {
        std::filesystem::current_path(host::ScratchFolder());
        return GiveUpPrivileges() ? work() : "privileges cannot be given up";
    });
}

TEST(FailingDisk, ReadOnlyFileIsReadAndNotWritten) {
    const host::ScratchFile file(u"read_only.xml");
    const std::string bytes = host::WideFile(TableText(3));
    host::WriteBytes(file.Path(), bytes);
    ASSERT_EQ(chmod(file.Path().c_str(), 0444), 0);
    EXPECT_EQ(
        WithoutPrivileges([] {
            const bool loads(host::Section(xmlTableNew("read_only.xml"_w, nullptr, 0, nullptr, 0, 0, 0, 0)));
            // Good paths are relative here, too.
            setenv("MOX_TEST_TMP", "/tmp", 1);
            return Said(OpenDocuments(3).CannotBeSavedTo("read_only.xml"_w), "save") +
                   (loads ? "" : "it does not load");
        }),
        "");
    EXPECT_EQ(file.Bytes(), bytes);
}

TEST(FailingDisk, FileThatMustNotBeReadIsNotLoaded) {
    const host::ScratchFile file(u"unreadable.xml");
    host::WriteBytes(file.Path(), host::WideFile(TableText(3)));
    ASSERT_EQ(chmod(file.Path().c_str(), 0200), 0);
    EXPECT_EQ(WithoutPrivileges([] { return Said(CannotBeLoaded("unreadable.xml"_w), "load"); }), "");
}

TEST(FailingDisk, FolderThatMustNotBeWrittenTakesNoNewFile) {
    const std::filesystem::path folder = host::ScratchFolder() / "read_only_folder";
    std::filesystem::create_directories(folder);
    ASSERT_EQ(chmod(folder.c_str(), 0555), 0);
    EXPECT_EQ(WithoutPrivileges([] {
                  setenv("MOX_TEST_TMP", "/tmp", 1);
                  return Said(OpenDocuments(3).CannotBeSavedTo("read_only_folder/new.xml"_w), "save");
              }),
              "");
    EXPECT_FALSE(std::filesystem::exists(folder / "new.xml"));
    std::filesystem::remove(folder);
}

// ---- Devices, pipes and sockets

TEST(FailingDisk, NullDeviceIsAnEmptyDocumentAndTakesAnySave) {
    const OpenDocuments documents(3);
    for (const OpenDocuments::Save& save : documents.EverySave())
        EXPECT_TRUE(save("/dev/null"_w));
    const host::Profile profile(xmlProfileNew("/dev/null"_w, nullptr, 0, 0));
    EXPECT_EQ(host::SaveBytes(profile), host::NarrowFile(host::Lines({host::kEmptyRoot})));
}

TEST(FailingDisk, DeviceWithoutAnEndIsReadUpToItsFirstZero) {
    for (const wchar16* device : {"/dev/full"_w, "/dev/zero"_w}) {
        for (const std::int32_t wide : {0, 1}) {
            const host::Profile profile(xmlProfileNew(device, nullptr, 0, wide));
            EXPECT_EQ(host::SaveBytes(profile), host::NarrowFile(host::Lines({host::kEmptyRoot})));
        }
    }
}

// Spaces without an end, until the reader closes.
void WriteSpaces(const std::filesystem::path& path) {
    const std::string spaces(65536, ' ');
    const int file = open(path.c_str(), O_WRONLY);
    while (write(file, spaces.data(), spaces.size()) > 0) {
    }
    close(file);
}

std::string LoadWithoutAnEnd(const host::ScratchFile& pipe) {
    rlimit limit{};
    getrlimit(RLIMIT_AS, &limit);
    limit.rlim_cur = rlim_t{256} << 20;
    setrlimit(RLIMIT_AS, &limit);
    std::signal(SIGPIPE, SIG_IGN);
    bool isMemoryOut = false;
    std::thread writer([&] { WriteSpaces(pipe.Path()); });
    try {
        xmlProfileNew(pipe.Name(), nullptr, 0, 0);
    } catch (const std::bad_alloc&) {
        isMemoryOut = true;
    }
    writer.join();
    if (!isMemoryOut) return "the load has come to an end";
    return Said(OpenDocuments(3).AreUntouched(), "afterwards");
}

TEST(FailingDisk, PipeWithoutAnEndIsReadUntilMemoryRunsOut) {
    if (kIsSanitized) GTEST_SKIP() << "AddressSanitizer does not throw";
    const host::ScratchFile file;
    ASSERT_EQ(mkfifo(file.Path().c_str(), 0600), 0);
    EXPECT_EQ(InChild([&] { return LoadWithoutAnEnd(file); }), "");
}

TEST(FailingDisk, PipeIsReadUntilItsWriterCloses) {
    FilledPipe pipe;
    pipe.Fill(ProfileText(300));
    const host::Profile narrow(xmlProfileNew(pipe.Path(), nullptr, 0, 0));
    EXPECT_EQ(xmlGetProfileInt(narrow, "S"_w, "n10000299"_w, -1), 2147483647);
    pipe.Fill(host::WideFile(ProfileText(300)));
    const host::Profile wide(xmlProfileNew(pipe.Path(), nullptr, 0, 1));
    EXPECT_EQ(xmlGetProfileInt(wide, "S"_w, "n10000299"_w, -1), 2147483647);
}

TEST(FailingDisk, PipeWhoseWriterGivesUpIsNoDocument) {
    const std::string text = ProfileText(300);
    for (const std::size_t length : {text.size() - 2, text.size() / 2, std::size_t{1}}) {
        FilledPipe pipe;
        pipe.Fill(text.substr(0, length));
        EXPECT_EQ(xmlProfileNew(pipe.Path(), nullptr, 0, 0), nullptr) << length;
        pipe.Fill(host::WideFile(text.substr(0, length)));
        EXPECT_EQ(xmlProfileNew(pipe.Path(), nullptr, 0, 1), nullptr) << length;
    }
}

TEST(FailingDisk, NamedPipeIsReadInWhateverPiecesItGives) {
    const host::ScratchFile file;
    ASSERT_EQ(mkfifo(file.Path().c_str(), 0600), 0);
    const std::string text = ProfileText(3000);
    std::thread writer([&] {
        std::ofstream stream(file.Path(), std::ios::binary);
        for (std::size_t at = 0; at < text.size(); at += 1000)
            stream << text.substr(at, 1000) << std::flush;
    });
    const host::Profile profile(xmlProfileNew(file.Name(), nullptr, 0, 0));
    writer.join();
    EXPECT_NE(profile, nullptr);
    EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, "n10002999"_w, -1), 2147483647);
}

TEST(FailingDisk, SocketIsNoFile) {
    const host::ScratchFile file(u"s");
    const int server = socket(AF_UNIX, SOCK_STREAM, 0);
    // Relative: the name of a socket is short.
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(host::ScratchFolder());
    sockaddr_un address{AF_UNIX, "s"};
    ASSERT_EQ(bind(server, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    std::filesystem::current_path(before);
    EXPECT_TRUE(OpenDocuments(3).CannotBeSavedTo(file.Name()));
    EXPECT_TRUE(CannotBeLoaded(file.Name()));
    close(server);
}

}  // namespace
}  // namespace faults

#endif
