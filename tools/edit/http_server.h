// HttpServer, HTTP/1.1 over one port of 127.0.0.1 for an EditorSite.
#ifndef MOX_XMLAPI_TOOLS_EDIT_HTTP_SERVER_H
#define MOX_XMLAPI_TOOLS_EDIT_HTTP_SERVER_H

#include <chrono>
#include <cstdint>
#include <memory>

#include "tools/edit/editor_site.h"

namespace mox::tool {

// Why a server has ended.
enum class ServerEnd { PageClosed, PageRequest, Idle, Signal };

// How long a server waits.
struct ServerPatience {
    using Time = std::chrono::milliseconds;
    Time idle{};         // for somebody to work with the page
    Time head{10'000};   // for the head of a request
    Time body{60'000};   // for its body, and for the client to take the response
    Time close{2'000};   // for the client to close the connection
    Time reload{3'000};  // for a page that was closed to be loaded again
};

class HttpServer {
  public:
    // Listens on a free port. Throws ExitError (kIoError) if the system refuses.
    HttpServer();
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    std::uint16_t Port() const noexcept;

    // Answers requests, all in this thread, until the last page was closed and none was opened soon, the page asks for
    // the end, nobody has worked with it for some time, or the process gets SIGINT or SIGTERM.
    ServerEnd Run(EditorSite& site, const ServerPatience& patience);

  private:
    class Listener;
    std::unique_ptr<Listener> listener_;
};

}  // namespace mox::tool

#endif
