// Runs the commands of the transcript in the README on the example files, and compares their output with the transcript.
//
// If MOX_WRITE_TRANSCRIPT is set, the test updates the README instead (tests/tool/write_transcript.sh).
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "tests/tool/tool_support.h"

namespace fs = std::filesystem;

namespace tool {
namespace {

using Transcript = ToolTest;

const std::string kBegin =
    "<!-- transcript of mox-xml, made by tests/tool/write_transcript.sh -->\n```console\n";
const std::string kEnd = "```\n";

// Splits a command line at spaces that are not in double quotes.
std::vector<std::string> WordsOf(const std::string& line) {
    std::vector<std::string> words;
    bool isQuoted = false;
    bool isInWord = false;
    for (const char character : line) {
        if (character == '"') {
            isQuoted = !isQuoted;
            if (isQuoted && !isInWord) words.emplace_back();
            isInWord = true;
        } else if (character == ' ' && !isQuoted) {
            isInWord = false;
        } else {
            if (!isInWord) words.emplace_back();
            isInWord = true;
            words.back() += character;
        }
    }
    return words;
}

// The commands of a transcript with their present output.
std::string Replay(const std::string& transcript) {
    const std::string prompt = "$ mox-xml ";
    std::string replayed;
    std::istringstream lines(transcript);
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind(prompt, 0) != 0) continue;
        const Result result = RunTool(WordsOf(line.substr(prompt.size())));
        replayed.append(line).append("\n").append(result.out).append(result.err);
        if (result.code != 0)
            replayed.append("(exit code ").append(std::to_string(result.code)).append(")\n");
    }
    return replayed;
}

TEST_F(Transcript, OfTheReadmeMatchesTheOutputOfTheTool) {
    const std::string path = SourceFolder() + "/../README.md";
    const std::string readme = ReadBytes(path);
    const std::size_t begin = readme.find(kBegin);
    ASSERT_NE(begin, std::string::npos);
    const std::size_t textBegin = begin + kBegin.size();
    const std::size_t textEnd = readme.find(kEnd, textBegin);
    ASSERT_NE(textEnd, std::string::npos);
    for (const char* const name : {"camera.xml", "press_line.xml"})
        WriteBytes(name, ReadBytes(SourceFolder() + "/../examples/data/" + name));
    std::string broken = ReadBytes("camera.xml");
    WriteBytes("broken.xml", broken.replace(broken.find("</Table>"), 8, "</Tabel>"));

    std::string edited = ReadBytes("camera.xml");
    edited.replace(edited.find("belt encoder"), 12, "Förderband").resize(edited.find('\0'));
    WriteBytes("edited.xml", "\xEF\xBB\xBF" + edited);
    WriteBytes(
        "changes.json",
        R"([{"change": "changed", "section": "Trigger", "entry": "Delay", "field": "value", "before": "-120",)"
        R"( "after": "-80"}, {"section": "Trigger", "entry": "Armed", "value": false}])");

    const std::string written = readme.substr(textBegin, textEnd - textBegin);
    const std::string replayed = Replay(written);
    if (std::getenv("MOX_WRITE_TRANSCRIPT") != nullptr) {
        WriteBytes(path, readme.substr(0, textBegin) + replayed + readme.substr(textEnd));
        return;
    }
    EXPECT_EQ(written, replayed) << "run tests/tool/write_transcript.sh to update the README";
    EXPECT_GE(std::count(replayed.begin(), replayed.end(), '$'), 8);
}

}  // namespace
}  // namespace tool
