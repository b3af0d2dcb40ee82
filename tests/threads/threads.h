// What the parts of the program "threads" share.
#ifndef MOX_XMLAPI_TESTS_THREADS_THREADS_H
#define MOX_XMLAPI_TESTS_THREADS_THREADS_H

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "mox_xmlApi/platform/wchar16.h"

namespace threads {

using WideText = std::basic_string<wchar16>;

inline constexpr int kThreads = 4;

// Ends the process with a message unless `isTrue`.
void Expect(bool isTrue, const char* what);

// Runs `work` in kThreads threads, which get their number and begin together, and waits for their ends.
void InThreads(const std::function<void(int)>& work);

// ASCII as 16-bit text.
inline WideText Wide(std::string_view ascii) {
    return {ascii.begin(), ascii.end()};
}

// A file in the folder for tests, which is not there yet, and its path for the exports.
std::filesystem::path FilePath(const std::string& name);
WideText WidePath(const std::filesystem::path& path);

// exports.cpp
// All exports, each thread with documents of its own, on the same file to read and on a file of its own to write.
void CallAllExports(int rounds);
// One document that goes from thread to thread, under a lock.
void ShareOneDocument(int rounds);
// The first look-up by an index, and the first letters beyond ASCII, in all threads at the same time. To be called once
// in a process, before anything else.
void LookUpFirst();
// Threads that go on parsing and searching until the process ends.
void KeepParsing();

// front.cpp
// Profiles, tables and documents of the C++ front, each thread with its own.
void UseFront(int rounds);
// All threads change one file.
void ReplaceOneFile(int rounds);

}  // namespace threads

#endif
