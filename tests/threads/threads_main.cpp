// threads <part>
//
// Uses the library in several threads. The preset "threads" runs it with ThreadSanitizer, which reports accesses to the
// same memory that nothing puts in order, also if they did no harm this time. Parts:
//
//   documents   all exports and the front, a document per thread; a document that is handed on; one file for all
//   first       the first look-ups of a process, in all threads at the same time
//   exit        the process ends while other threads parse. Not on Windows: as soon as a thread was ended inside Wine's
//               heap, Wine waits forever when it unloads the DLLs.
//
// The last two happen once in a process: they run in several processes, one after the other, where processes can be
// forked.
//
// ThreadSanitizer sees the accesses of code that was compiled with it: the library, its companions, the front, this
// program and what they use of the headers of libstdc++. The compiled part of libstdc++ was not. Its locks are calls of
// pthreads, and its memory and threads come from functions that ThreadSanitizer replaces, so that it knows of these. It
// sees neither the accesses of libstdc++ to its own data (of locales and streams, which the library does not use), nor
// what happens in atomics there. So it cannot see a race inside libstdc++, nor one that needs an order of events that
// did not occur in this run, nor what other processes and the system do to files: tests/disk is about these. Nothing
// can be instrumented for Windows; there the program shows results only.
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string_view>
#include <thread>
#include <vector>

#include "tests/threads/threads.h"

#if !defined(_WIN32)
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace threads {

void Expect(bool isTrue, const char* what) {
    if (isTrue) return;
    std::fprintf(stderr, "expected: %s\n", what);
    std::fflush(stderr);
    std::_Exit(1);
}

void InThreads(const std::function<void(int)>& work) {
    // Not std::barrier, nor a condition variable: those of MinGW's runtime lose a notification now and then.
    std::atomic<int> started = 0;
    std::vector<std::thread> all;
    for (int number = 0; number < kThreads; ++number) {
        all.emplace_back([&started, &work, number] {
            ++started;
            while (started != kThreads)
                std::this_thread::yield();
            try {
                work(number);
            } catch (const std::exception& error) {
                Expect(false, error.what());
            }
        });
    }
    for (std::thread& thread : all)
        thread.join();
}

std::filesystem::path FilePath(const std::string& name) {
    const char* folder = std::getenv("MOX_TEST_TMP");
    Expect(folder != nullptr, "MOX_TEST_TMP is a folder for files");
    std::filesystem::path path = std::filesystem::path(folder) / name;
    std::filesystem::remove(path);
    return path;
}

WideText WidePath(const std::filesystem::path& path) {
    const std::u16string units = path.u16string();
    return {units.begin(), units.end()};
}

}  // namespace threads

namespace {

#if defined(_WIN32)
constexpr int kRounds = 10;  // files take their time under Wine
#else
constexpr int kRounds = 40;
#endif

void EndWhileParsing() {
    threads::KeepParsing();
    std::exit(0);
}

// In processes of their own, where there is a way to have them.
void InProcesses(void (*work)()) {
#if defined(_WIN32)
    work();
#else
    constexpr int kProcesses = 8;
    for (int i = 0; i < kProcesses; ++i) {
        const pid_t child = fork();
        threads::Expect(child >= 0, "a process can be started");
        if (child == 0) {
            work();
            std::exit(0);
        }
        int status = 0;
        threads::Expect(waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0,
                        "the process ends with 0");
    }
#endif
}

}  // namespace

int main(int argc, char** argv) {
    const std::string_view part = argc == 2 ? argv[1] : "";
    if (part == "first") {
        InProcesses(threads::LookUpFirst);
    } else if (part == "exit") {
        InProcesses(EndWhileParsing);
    } else if (part == "documents") {
        threads::CallAllExports(kRounds);
        threads::ShareOneDocument(kRounds);
        threads::UseFront(kRounds);
        threads::ReplaceOneFile(kRounds);
    } else {
        std::fprintf(stderr, "threads documents|first|exit\n");
        return 2;
    }
    std::printf("%s: passed\n", argv[1]);
    return 0;
}
