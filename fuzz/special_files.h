// Files that are not on a disk, and disks that fail, where the system has them under a name.
#ifndef MOX_XMLAPI_FUZZ_SPECIAL_FILES_H
#define MOX_XMLAPI_FUZZ_SPECIAL_FILES_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/fuzz_input.h"
#include "mox_xmlApi/platform/wide_text.h"

#if defined(__linux__)
#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>
#endif

namespace mox::fuzz {

#if defined(__linux__)

// A pipe with a name, as a file to read from or to write to.
class Pipe {
  public:
    // Bytes that a pipe can hold, so that neither end waits for the other.
    static constexpr std::size_t kMost = std::size_t{1} << 20;

    static constexpr bool IsThere() { return true; }

    Pipe() {
        Check(::pipe(ends_) == 0 && ::fcntl(ends_[1], F_SETPIPE_SZ, static_cast<int>(kMost)) >= 0,
              "a pipe can be made");
    }
    ~Pipe() {
        ::close(ends_[0]);
        CloseWriter();
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    // The end to read from; what can be read there is at most kMost bytes, after which it ends.
    WideString Filled(std::string_view bytes) {
        while (!bytes.empty()) {
            const ssize_t written = ::write(ends_[1], bytes.data(), bytes.size());
            Check(written > 0, "a pipe can be written");
            bytes.remove_prefix(static_cast<std::size_t>(written));
        }
        CloseWriter();
        return Name(ends_[0]);
    }

    // The end to write to, and what was written.
    WideString Writable() const { return Name(ends_[1]); }
    std::string Written() {
        CloseWriter();
        std::string bytes;
        char piece[4096];
        for (ssize_t count = 0; (count = ::read(ends_[0], piece, sizeof piece)) > 0;)
            bytes.append(piece, static_cast<std::size_t>(count));
        return bytes;
    }

  private:
    static WideString Name(int end) {
        const std::string name = "/proc/self/fd/" + std::to_string(end);
        return {name.begin(), name.end()};
    }

    void CloseWriter() {
        if (ends_[1] >= 0) ::close(ends_[1]);
        ends_[1] = -1;
    }

    int ends_[2] = {-1, -1};
};

// In its scope no file of this process can grow beyond so many bytes: a write fails there.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(std::uint64_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &old_);
        rlimit limited = old_;
        limited.rlim_cur = bytes;
        Check(::setrlimit(RLIMIT_FSIZE, &limited) == 0, "the size of files can be limited");
    }
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &old_);
        std::signal(SIGXFSZ, handler_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

    static constexpr bool IsThere() { return true; }

  private:
    void (*handler_)(int);
    rlimit old_{};
};

#else

class Pipe {
  public:
    static constexpr std::size_t kMost = 0;
    static constexpr bool IsThere() { return false; }
    WideString Filled(std::string_view) { return {}; }
    WideString Writable() const { return {}; }
    std::string Written() { return {}; }
};

class FileSizeLimit {
  public:
    explicit FileSizeLimit(std::uint64_t) {}
    static constexpr bool IsThere() { return false; }
};

#endif

}  // namespace mox::fuzz

#endif
