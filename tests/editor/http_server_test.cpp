// The editor's server: what it reads and sends, how much, how long it waits, and when it ends.
#if !defined(_WIN32)

#include "tools/edit/http_server.h"

#include <chrono>
#include <csignal>
#include <ctime>
#include <future>
#include <memory>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

#include "tests/editor/http_client_support.h"
#include "tests/editor/session_support.h"

namespace editor {
namespace {

using namespace std::chrono_literals;
using mox::tool::EditorSession;
using mox::tool::EditorSite;
using mox::tool::HttpServer;
using mox::tool::ServerEnd;
using mox::tool::ServerPatience;
using Clock = std::chrono::steady_clock;

class Server : public SessionTest {
  protected:
    void SetUp() override {
        SessionTest::SetUp();
        patience_.idle = 1h;
        session_ = std::make_unique<EditorSession>(Options());
        server_ = std::make_unique<HttpServer>();
        site_ = std::make_unique<EditorSite>(*session_, Port(),
                                             mox::tool::SiteSecrets{"TOKEN", "COOKIE", "FOLDER"});
    }
    void TearDown() override {
        if (end_.valid()) End();
    }

    std::uint16_t Port() const { return server_->Port(); }

    void Start() {
        end_ = std::async(std::launch::async, [this] { return server_->Run(*site_, patience_); });
        ASSERT_EQ(Status(RequestOf(Port(), "GET", "")), 200);
    }

    // Asks the server for its end, and returns why it has ended.
    ServerEnd End() {
        EXPECT_EQ(Status(RequestOf(Port(), "POST", "end", "{}")), 204);
        return WaitForEnd();
    }

    ServerEnd WaitForEnd() {
        if (end_.wait_for(20s) != std::future_status::ready) {
            ADD_FAILURE() << "the server does not end";
            kill(getpid(), SIGTERM);
        }
        return end_.get();
    }

    bool IsRunning() const { return end_.wait_for(0s) == std::future_status::timeout; }

    int Status(const std::string& request) const { return StatusOf(Exchange(Port(), request)); }

    // Tries again while connections that were closed are still counted.
    bool IsAnsweredSoon() const {
        for (int i = 0; i < 400; ++i) {
            if (Status(RequestOf(Port(), "GET", "document")) == 200) return true;
            std::this_thread::sleep_for(10ms);
        }
        return false;
    }

    std::unique_ptr<Connection> OpenPage() const {
        auto page = std::make_unique<Connection>(Port());
        page->Send(RequestOf(Port(), "GET", "open"));
        EXPECT_EQ(StatusOf(page->ReceiveSome()), 200);
        return page;
    }

    ServerPatience patience_{};
    std::unique_ptr<EditorSession> session_{};
    std::unique_ptr<HttpServer> server_{};
    std::unique_ptr<EditorSite> site_{};
    std::future<ServerEnd> end_{};
};

TEST_F(Server, AnswersOneRequestForEachConnection) {
    Start();
    const std::string request = RequestOf(Port(), "GET", "document");
    const std::string response = Exchange(Port(), request + request);
    EXPECT_EQ(response.rfind("HTTP/1.1 200 ", 0), 0U);
    EXPECT_EQ(response.find("HTTP/1.1", 1), std::string::npos);
    for (const char* const field :
         {"\r\nContent-Type: application/json\r\n", "\r\nCache-Control: no-store\r\n",
          "\r\nConnection: close\r\n", "\r\nX-Frame-Options: DENY\r\n", "\r\nContent-Length: "})
        EXPECT_NE(response.find(field), std::string::npos) << field;
    const std::size_t body = response.find("\r\n\r\n") + 4;
    EXPECT_EQ(response.substr(body), session_->Form().dump());
    EXPECT_EQ(End(), ServerEnd::PageRequest);
}

TEST_F(Server, SavesWhatThePageSends) {
    Start();
    const std::string call = R"({"version": 1, "changes": [{"section": "S", "entry": "k", "value": 2}]})";
    const std::string head = HeadOf(Port(), "POST", "save");
    EXPECT_EQ(Status(head + "Transfer-Encoding: chunked\r\n\r\n5\r\n" + call.substr(0, 5) + "\r\n" +
                     "42\r\n" + call.substr(5) + "\r\n0\r\n\r\n"),
              200);
    EXPECT_NE(ReadBytes(path_).find(">2<"), std::string::npos);
}

TEST_F(Server, LimitsWhatARequestHas) {
    Start();
    const std::string get = HeadOf(Port(), "GET", "document");
    const std::string post = HeadOf(Port(), "POST", "active");
    const std::string chunked = "Transfer-Encoding: chunked\r\n\r\n";
    EXPECT_EQ(Status(get + "X: " + std::string(65536, 'x') + "\r\n\r\n"), 431);
    EXPECT_EQ(Status(get + "X: " + std::string(65200, 'x') + "\r\n\r\n"), 200);
    // The bodies are not sent.
    EXPECT_EQ(Status(get + "Content-Length: 1\r\n\r\n"), 413);
    EXPECT_EQ(Status(get + chunked + "1\r\n"), 413);
    EXPECT_EQ(Status(post + "Content-Length: 16777217\r\n\r\n"), 413);
    EXPECT_EQ(Status(post + chunked + "1000001\r\n"), 413);
    // The largest body is read.
    EXPECT_EQ(Status(post + "Content-Length: 16777216\r\n\r\n{}" + std::string(16777214, ' ')), 204);
    EXPECT_EQ(Status(get + "Content-Length: 0\r\n\r\n"), 200);
}

TEST_F(Server, RefusesBeforeTheBodyIsSent) {
    Start();
    EXPECT_EQ(Status("POST /FOLDER/save HTTP/1.1\r\nHost: a\r\nContent-Length: 1000\r\n\r\n"), 421);
}

TEST_F(Server, TellsWhatIsNoHttp) {
    Start();
    const std::string head = HeadOf(Port(), "POST", "active");
    for (const std::string& request :
         {std::string("GET\r\n\r\n"), std::string("\x16\x03\x01\r\n\r\n"), head + "Content-Length: x\r\n\r\n",
          head + "Transfer-Encoding: chunked\r\n\r\nzz\r\n"})
        EXPECT_EQ(Status(request), 400) << request;
}

TEST_F(Server, WaitsForAHeadAndABodyForALimitedTime) {
    patience_.head = 400ms;
    patience_.body = 800ms;
    Start();
    const auto secondsOf = [this](const std::string& request) {
        const auto before = Clock::now();
        EXPECT_EQ(Exchange(Port(), request), "");
        return std::chrono::duration<double>(Clock::now() - before).count();
    };
    const double head = secondsOf("GET / HTTP/1.1\r\n");
    EXPECT_GT(head, 0.35);
    EXPECT_LT(head, 10);
    const double body = secondsOf(HeadOf(Port(), "POST", "active") + "Content-Length: 2\r\n\r\n{");
    EXPECT_GT(body, 0.75);
    EXPECT_LT(body, 10);
}

TEST_F(Server, ClosesAConnectionThatTheClientKeepsOpen) {
    patience_.close = 100ms;
    Start();
    const Connection connection(Port());
    connection.Send(RequestOf(Port(), "GET", "document"));
    EXPECT_EQ(StatusOf(connection.ReceiveAll()), 200);
    bool isClosed = false;
    for (int i = 0; i < 400 && !isClosed; ++i) {
        std::this_thread::sleep_for(10ms);
        isClosed = !connection.Send("x");
    }
    EXPECT_TRUE(isClosed);
}

TEST_F(Server, TakesALimitedNumberOfConnections) {
    Start();
    std::vector<std::unique_ptr<Connection>> idle;
    for (int i = 0; i < 31; ++i)
        idle.push_back(std::make_unique<Connection>(Port()));
    EXPECT_TRUE(IsAnsweredSoon());
    std::this_thread::sleep_for(50ms);  // until that one is no longer counted
    idle.push_back(std::make_unique<Connection>(Port()));
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(Status(RequestOf(Port(), "GET", "document")), 0) << "closed at once";
    idle.clear();
    EXPECT_TRUE(IsAnsweredSoon());
}

TEST_F(Server, WaitsWhileThereAreTooManyOpenFiles) {
    Start();
    const Connection connection;
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    rlimit none = limit;
    none.rlim_cur = 3;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    connection.Connect(Port());
    const std::clock_t before = std::clock();
    std::this_thread::sleep_for(400ms);
    const double used = static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
    EXPECT_LT(used, 0.2) << "seconds of the processor";
    connection.Send(RequestOf(Port(), "GET", "document"));
    EXPECT_EQ(StatusOf(connection.ReceiveAll()), 200);
}

TEST_F(Server, EndsWhenNobodyWorksWithThePage) {
    patience_.idle = 1000ms;
    const auto before = Clock::now();
    Start();
    const auto page = OpenPage();
    while (Clock::now() - before < 1400ms) {
        std::this_thread::sleep_for(150ms);
        EXPECT_EQ(Status(RequestOf(Port(), "POST", "active", "{}")), 204);
    }
    const auto lastWork = Clock::now();
    EXPECT_EQ(WaitForEnd(), ServerEnd::Idle);
    EXPECT_GT(Clock::now() - lastWork, 500ms);
}

TEST_F(Server, EndsSoonAfterTheLastPageWasClosed) {
    patience_.reload = 700ms;
    Start();
    auto one = OpenPage();
    auto two = OpenPage();
    one.reset();
    std::this_thread::sleep_for(900ms);
    EXPECT_TRUE(IsRunning()) << "the other page is open";
    two.reset();
    std::this_thread::sleep_for(50ms);
    one = OpenPage();
    std::this_thread::sleep_for(900ms);
    EXPECT_TRUE(IsRunning()) << "the page was loaded again";
    one.reset();
    const auto closed = Clock::now();
    EXPECT_EQ(WaitForEnd(), ServerEnd::PageClosed);
    EXPECT_GT(Clock::now() - closed, 400ms);
}

TEST_F(Server, KeepsThePageOpenForLongerThanAResponseMayTake) {
    patience_.body = 500ms;
    patience_.reload = 50ms;
    Start();
    const auto page = OpenPage();
    std::this_thread::sleep_for(1000ms);
    EXPECT_TRUE(IsRunning());
}

TEST_F(Server, EndsOnASignal) {
    for (const int signal : {SIGINT, SIGTERM}) {
        Start();
        EXPECT_EQ(kill(getpid(), signal), 0);
        EXPECT_EQ(WaitForEnd(), ServerEnd::Signal);
        server_ = std::make_unique<HttpServer>();
        site_ = std::make_unique<EditorSite>(*session_, Port(),
                                             mox::tool::SiteSecrets{"TOKEN", "COOKIE", "FOLDER"});
    }
}

}  // namespace
}  // namespace editor

#endif
