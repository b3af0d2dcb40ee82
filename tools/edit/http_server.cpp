#include "tools/edit/http_server.h"

#include <utility>
// Boost.Beast 1.74 needs it before its own headers.

#include <boost/asio.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <csignal>
#include <exception>
#include <new>
#include <optional>
#include <string>

#include "tools/exit_error.h"

namespace mox::tool {
namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;
using boost::system::error_code;

constexpr std::size_t kMostConnections = 32;
constexpr std::size_t kMostBuffered = 2 * kLargestHead;
constexpr std::chrono::milliseconds kRetryPeriod{100};

HttpRequest HeadOf(const http::request_header<>& head) {
    HttpRequest request;
    request.method = std::string(head.method_string());
    request.target = std::string(head.target());
    for (const auto& field : head)
        request.fields.emplace_back(std::string(http::to_string(field.name())), std::string(field.value()));
    return request;
}

// Counts the connections and pages of one server, and decides when it ends.
class ServerState {
  public:
    ServerState(asio::io_context& context, EditorSite& site, const ServerPatience& patience)
        : site_(site), context_(context), idleTimer_(context), closeTimer_(context), patience_(patience) {
        RestartIdle();
    }

    EditorSite& Site() noexcept { return site_; }
    const ServerPatience& Patience() const noexcept { return patience_; }
    ServerEnd Result() const noexcept { return end_; }

    void End(ServerEnd why) {
        end_ = why;
        isEnded_ = true;
        context_.stop();
    }

    void RestartIdle() {
        idleTimer_.expires_after(patience_.idle);
        idleTimer_.async_wait([this](error_code error) {
            if (!error) End(ServerEnd::Idle);
        });
    }

    void PageOpened() {
        ++openPages_;
        closeTimer_.cancel();
    }

    void PageClosed() {
        if (--openPages_ > 0 || isEnded_) return;
        closeTimer_.expires_after(patience_.reload);
        closeTimer_.async_wait([this](error_code error) {
            if (!error && openPages_ == 0) End(ServerEnd::PageClosed);
        });
    }

    std::size_t connections = 0;

  private:
    EditorSite& site_;
    asio::io_context& context_;
    asio::steady_timer idleTimer_;
    asio::steady_timer closeTimer_;
    ServerPatience patience_;
    std::size_t openPages_ = 0;
    ServerEnd end_ = ServerEnd::Signal;
    bool isEnded_ = false;
};

// One connection, which carries one request. Each step keeps the object alive until the next one.
class Connection : public std::enable_shared_from_this<Connection> {
  public:
    Connection(asio::ip::tcp::socket&& socket, std::shared_ptr<ServerState> state)
        : stream_(std::move(socket)), state_(std::move(state)) {
        ++state_->connections;
        parser_.header_limit(kLargestHead);
        parser_.body_limit(kLargestBody);
    }
    ~Connection() {
        --state_->connections;
        if (isOpenPage_) state_->PageClosed();
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    void Start() {
        stream_.expires_after(state_->Patience().head);
        http::async_read_header(stream_, buffer_, parser_,
                                [self = shared_from_this()](error_code error, std::size_t) {
                                    self->Guarded([&] { self->HeadRead(error); });
                                });
    }

  private:
    // Whatever is thrown ends this connection and no other.
    template <class Step>
    void Guarded(const Step& step) noexcept {
        try {
            step();
        } catch (const std::exception&) {
            stream_.close();
        }
    }

    void HeadRead(error_code error) {
        if (error == http::error::header_limit || error == http::error::buffer_overflow)
            return Send(EditorSite::Error(431, "the head of the request is too long"));
        if (error == http::error::body_limit) return Send(EditorSite::Error(413, "the request is too long"));
        if (IsMalformed(error)) return Send(EditorSite::Error(400, "this is not HTTP"));
        if (error) return;
        request_ = HeadOf(parser_.get().base());
        if (std::optional<HttpResponse> refusal = state_->Site().Refuse(request_))
            return Send(*std::move(refusal));
        const std::uint64_t mostBody = request_.method == "POST" ? kLargestBody : 0;
        if (parser_.content_length().value_or(0) > mostBody)
            return Send(EditorSite::Error(413, "the request is too long"));
        parser_.body_limit(mostBody);  // of chunks
        stream_.expires_after(state_->Patience().body);
        http::async_read(stream_, buffer_, parser_,
                         [self = shared_from_this()](error_code bodyError, std::size_t) {
                             self->Guarded([&] { self->BodyRead(bodyError); });
                         });
    }

    static bool IsMalformed(error_code error) {
        return error && error.category() == make_error_code(http::error::bad_method).category() &&
               error != http::error::end_of_stream && error != http::error::partial_message;
    }

    void BodyRead(error_code error) {
        if (error == http::error::body_limit) return Send(EditorSite::Error(413, "the request is too long"));
        if (IsMalformed(error)) return Send(EditorSite::Error(400, "this is not HTTP"));
        if (error) return;
        request_.body = std::move(parser_.get().body());
        HttpResponse response;
        try {
            response = state_->Site().Answer(request_);
        } catch (const std::bad_alloc&) {
            response = EditorSite::Error(500, "out of memory");
        }
        if (response.isActivity) state_->RestartIdle();
        Send(std::move(response));
    }

    void Send(HttpResponse&& response) {
        isEnd_ = response.isEnd;
        const bool isOpenPage = response.isOpenPage;
        response_.version(11);
        response_.result(static_cast<unsigned>(response.status));
        for (const auto& [name, value] : response.fields)
            response_.insert(name, value);
        response_.set(http::field::connection, "close");
        response_.body() = std::move(response.body);
        if (isOpenPage) {
            // Without a length: the body ends with the connection, that is, never.
            isOpenPage_ = true;
            state_->PageOpened();
        } else {
            response_.prepare_payload();
        }
        stream_.expires_after(state_->Patience().body);
        http::async_write(stream_, response_, [self = shared_from_this()](error_code error, std::size_t) {
            self->Guarded([&] { self->Sent(error); });
        });
    }

    void Sent(error_code error) {
        if (isEnd_) return state_->End(ServerEnd::PageRequest);
        const bool isWaiting = isOpenPage_ && (!error || error == http::error::end_of_stream);
        if (isWaiting) {
            stream_.expires_never();
        } else {
            // The client may still be sending: it would not see the response if the connection were reset.
            error_code ignored;
            stream_.socket().shutdown(asio::ip::tcp::socket::shutdown_send, ignored);
            stream_.expires_after(state_->Patience().close);
        }
        Drain();
    }

    // Reads, and drops, what the client sends, until it closes the connection.
    void Drain() {
        stream_.async_read_some(asio::buffer(dropped_),
                                [self = shared_from_this()](error_code error, std::size_t) {
                                    if (!error) self->Guarded([&] { self->Drain(); });
                                });
    }

    beast::tcp_stream stream_;
    beast::flat_buffer buffer_{kMostBuffered};
    http::request_parser<http::string_body> parser_;
    http::response<http::string_body> response_;
    HttpRequest request_;
    std::shared_ptr<ServerState> state_;  // outlives the connections, the last of which end with the context
    char dropped_[4096] = {};
    bool isOpenPage_ = false;
    bool isEnd_ = false;
};

}  // namespace

class HttpServer::Listener {
  public:
    Listener() : acceptor_(context_), retryTimer_(context_) {
        const asio::ip::tcp::endpoint here(asio::ip::address_v4::loopback(), 0);
        acceptor_.open(here.protocol());
#if defined(_WIN32)
        // Otherwise another process could take the port over.
        acceptor_.set_option(asio::detail::socket_option::boolean<SOL_SOCKET, SO_EXCLUSIVEADDRUSE>(true));
#endif
        acceptor_.bind(here);
        acceptor_.listen();
    }

    std::uint16_t Port() const {
        return acceptor_.local_endpoint().port();
    }

    ServerEnd Run(EditorSite& site, const ServerPatience& patience) {
        const auto state = std::make_shared<ServerState>(context_, site, patience);
        asio::signal_set signals(context_, SIGINT, SIGTERM);
        signals.async_wait([&state](error_code error, int) {
            if (!error) state->End(ServerEnd::Signal);
        });
        Accept(state);
        context_.run();
        return state->Result();
    }

  private:
    void Accept(const std::shared_ptr<ServerState>& state) {
        acceptor_.async_accept([this, state](error_code error, asio::ip::tcp::socket socket) {
            if (error == asio::error::operation_aborted) return;
            if (error) return AcceptLater(state);
            // One too many is closed at once.
            if (state->connections < kMostConnections) {
                try {
                    std::make_shared<Connection>(std::move(socket), state)->Start();
                } catch (const std::exception&) {
                    // That connection is lost.
                }
            }
            Accept(state);
        });
    }

    // The connection is still waiting, so the same error would come again at once: too many open files, for example.
    void AcceptLater(const std::shared_ptr<ServerState>& state) {
        retryTimer_.expires_after(kRetryPeriod);
        retryTimer_.async_wait([this, state](error_code error) {
            if (!error) Accept(state);
        });
    }

    asio::io_context context_{1};
    asio::ip::tcp::acceptor acceptor_;
    asio::steady_timer retryTimer_;
};

HttpServer::HttpServer() {
    try {
        listener_ = std::make_unique<Listener>();
    } catch (const boost::system::system_error& error) {
        throw ExitError(ExitCode::kIoError, std::string("cannot listen on 127.0.0.1: ") + error.what());
    }
}

HttpServer::~HttpServer() = default;

std::uint16_t HttpServer::Port() const noexcept {
    return listener_->Port();
}

ServerEnd HttpServer::Run(EditorSite& site, const ServerPatience& patience) {
    return listener_->Run(site, patience);
}

}  // namespace mox::tool
