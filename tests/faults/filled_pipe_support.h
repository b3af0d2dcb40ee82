// A pipe as the source of a load. Linux only.
#ifndef MOX_XMLAPI_TESTS_FAULTS_FILLED_PIPE_SUPPORT_H
#define MOX_XMLAPI_TESTS_FAULTS_FILLED_PIPE_SUPPORT_H

#if !defined(_WIN32)

#include <string>
#include <string_view>
#include <unistd.h>

#include "tests/host/host_support.h"

namespace faults {

// A pipe that contains a text of at most 64 KiB and whose writer has closed it. Its path can be loaded once.
class FilledPipe {
  public:
    FilledPipe() = default;
    ~FilledPipe() { Close(); }
    FilledPipe(const FilledPipe&) = delete;
    FilledPipe& operator=(const FilledPipe&) = delete;

    void Fill(std::string_view text) {
        Close();
        int ends[2] = {-1, -1};
        ASSERT_EQ(pipe(ends), 0);
        reader_ = ends[0];
        ASSERT_EQ(write(ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
        close(ends[1]);
        path_ = host::WidePath("/proc/self/fd/" + std::to_string(reader_));
    }
    const wchar16* Path() const { return path_.c_str(); }

  private:
    void Close() {
        if (reader_ >= 0) close(reader_);
        reader_ = -1;
    }

    int reader_ = -1;
    host::WideText path_;
};

}  // namespace faults

#endif

#endif
