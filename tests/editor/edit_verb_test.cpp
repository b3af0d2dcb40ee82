// The verbs "edit" and "form", run as a function of this program.
#if !defined(_WIN32)

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <regex>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "tests/editor/http_client_support.h"
#include "tests/editor/session_support.h"
#include "tools/edit/system_random.h"
#include "tools/run_tool.h"
#include "tools/system.h"

namespace editor {
namespace {

namespace tool = mox::tool;

// A run of the tool in a child of this process, which is killed at the end.
class ToolProcess {
  public:
    ToolProcess(const std::vector<std::string>& arguments, const std::string& searchPath,
                const std::string& messages) {
        int ends[2] = {-1, -1};
        EXPECT_EQ(pipe(ends), 0);
        std::fflush(nullptr);  // else the child would write it, too
        process_ = fork();
        if (process_ == 0) {
            dup2(ends[1], STDOUT_FILENO);
            dup2(open(messages.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDERR_FILENO);
            close(ends[0]);
            setenv("PATH", searchPath.c_str(), 1);
            tool::Output output(false);
            tool::RunTool(
                arguments, [] { return std::string(); }, output);
            tool::WriteStandardStreams(output.Data(), output.Messages());
            std::_Exit(static_cast<int>(output.code));
        }
        close(ends[1]);
        output_ = ends[0];
    }
    ~ToolProcess() {
        if (process_ > 0) {
            kill(process_, SIGKILL);
            waitpid(process_, nullptr, 0);
        }
        close(output_);
    }
    ToolProcess(const ToolProcess&) = delete;
    ToolProcess& operator=(const ToolProcess&) = delete;

    // The next line that it prints; what there is of it if the process ends before.
    std::string ReadLine() const {
        std::string line;
        char character = 0;
        while (read(output_, &character, 1) == 1) {
            line += character;
            if (character == '\n') break;
        }
        return line;
    }

    // The exit code, after the end that somebody has asked for.
    int Wait() {
        for (int i = 0; i < 2000; ++i) {
            int status = -1;
            if (waitpid(process_, &status, WNOHANG) == process_) {
                process_ = -1;
                return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        ADD_FAILURE() << "the editor does not end";
        kill(process_, SIGKILL);
        return -1;
    }

  private:
    pid_t process_ = -1;
    int output_ = -1;
};

class EditVerb : public SessionTest {
  protected:
    void SetUp() override {
        SessionTest::SetUp();
        searchPath_ = path_ + ".programs";
        std::filesystem::remove_all(searchPath_);
        std::filesystem::create_directories(searchPath_);
    }

    void WriteBrowser(const std::string& script) const {
        WriteBytes(searchPath_ + "/xdg-open", "#!/bin/sh\n" + script + "\n");
        std::filesystem::permissions(searchPath_ + "/xdg-open", std::filesystem::perms::owner_all);
    }

    // The bytes of the file once the condition holds, at most 20 seconds from now.
    static std::string BytesWith(const std::string& path, const std::string& text) {
        for (int i = 0; i < 2000; ++i) {
            if (ReadBytes(path).find(text) != std::string::npos) break;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return ReadBytes(path);
    }

    // Uses the address and ends the editor.
    static void EndByAddress(const std::string& text) {
        std::smatch found;
        ASSERT_TRUE(std::regex_search(text, found,
                                      std::regex("http://(127\\.0\\.0\\.1:(\\d+))(/\\?token=[0-9A-F]{64})")))
            << text;
        const auto port = static_cast<std::uint16_t>(std::stoi(found[2]));
        const std::string host = " HTTP/1.1\r\nHost: " + found[1].str() + "\r\n";
        const std::string reply = Exchange(port, "GET " + found[3].str() + host + "\r\n");
        EXPECT_EQ(StatusOf(reply), 303);
        std::smatch cookie;
        ASSERT_TRUE(std::regex_search(
            reply, cookie,
            std::regex("Location: (/[0-9A-F]{64}/)\r\n[^]*Set-Cookie: (mox-xml=[0-9A-F]{64}); Path=")))
            << reply;
        const std::string end = "POST " + cookie[1].str() + "end" + host + "Origin: http://" +
                                found[1].str() +
                                "\r\nContent-Type: application/json\r\nCookie: " + cookie[2].str() +
                                "\r\nContent-Length: 2\r\n\r\n{}";
        EXPECT_EQ(StatusOf(Exchange(port, end)), 204);
    }

    std::string searchPath_{};
};

TEST_F(EditVerb, PrintsTheAddressIfNoBrowserIsWanted) {
    WriteBrowser("echo \"$1\" >" + path_ + ".opened");
    ToolProcess process({"edit", path_, "--no-browser"}, searchPath_, path_ + ".messages");
    EndByAddress(process.ReadLine());
    EXPECT_EQ(process.Wait(), 0);
    EXPECT_EQ(process.ReadLine(), "");
    EXPECT_EQ(ReadBytes(path_ + ".messages"), "");
    EXPECT_FALSE(std::filesystem::exists(path_ + ".opened"));
}

TEST_F(EditVerb, PrintsTheAddressIfThereIsNoBrowser) {
    ToolProcess process({"edit", path_}, searchPath_, path_ + ".messages");
    EndByAddress(process.ReadLine());
    EXPECT_EQ(process.Wait(), 0);
    EXPECT_EQ(ReadBytes(path_ + ".messages"), "");
}

TEST_F(EditVerb, OpensTheBrowserAndTellsTheAddress) {
    // What the browser prints is not shown.
    WriteBrowser("echo noise; echo noise >&2; echo \"$1\" >" + path_ + ".opened");
    ToolProcess process({"edit", path_}, searchPath_, path_ + ".messages");
    const std::string opened = BytesWith(path_ + ".opened", "\n");
    const std::string messages = BytesWith(path_ + ".messages", "\n");
    EXPECT_EQ(messages, "mox-xml: " + path_ + ": opening the browser; if it does not come up, use " +
                            opened.substr(0, opened.size() - 1) + " (Ctrl-C ends the editor)\n");
    EndByAddress(opened);
    EXPECT_EQ(process.Wait(), 0);
    EXPECT_EQ(process.ReadLine(), "");
    EXPECT_EQ(ReadBytes(path_ + ".messages"), messages);
}

TEST_F(EditVerb, RefusesAFileThatItCannotShow) {
    WriteBytes(path_, "<a/>");
    tool::Output output(false);
    tool::RunTool(
        {"edit", path_, "--no-browser"}, [] { return std::string(); }, output);
    EXPECT_EQ(output.code, tool::ExitCode::kUsageError);
    EXPECT_NE(output.Messages().find("found a document without settings or a table"), std::string::npos);
}

TEST_F(EditVerb, FormPrintsThePageWithTheDocument) {
    tool::Output output(false);
    tool::RunTool(
        {"form", path_}, [] { return std::string(); }, output);
    EXPECT_EQ(output.code, tool::ExitCode::kSuccess);
    EXPECT_EQ(output.Messages(), "");
    EXPECT_NE(output.Data().find(
                  R"({"file":"a.xml","readOnly":"This page is for reading only.","kind":"settings",)"),
              std::string::npos);
    EXPECT_EQ(output.Data().rfind("</html>\n"), output.Data().size() - 8);
    tool::Output piped(false);
    tool::RunTool(
        {"form", "-"}, [this] { return ReadBytes(path_); }, piped);
    EXPECT_NE(piped.Data().find(R"({"file":"","readOnly":)"), std::string::npos);
}

TEST_F(EditVerb, SecretsHave256Bits) {
    const std::string one = tool::RandomSecret();
    EXPECT_TRUE(std::regex_match(one, std::regex("[0-9A-F]{64}"))) << one;
    EXPECT_NE(one, tool::RandomSecret());
    // Each byte is random, not only the first ones.
    EXPECT_NE(one.substr(56), tool::RandomSecret().substr(56));
    EXPECT_NE(one.substr(0, 8), tool::RandomSecret().substr(0, 8));
}

}  // namespace
}  // namespace editor

#endif
