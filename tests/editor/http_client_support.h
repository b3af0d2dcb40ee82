// A plain HTTP client for the tests of the editor's server. Not for Windows.
#ifndef MOX_XMLAPI_TESTS_EDITOR_HTTP_CLIENT_SUPPORT_H
#define MOX_XMLAPI_TESTS_EDITOR_HTTP_CLIENT_SUPPORT_H

#if !defined(_WIN32)

#include <cstdint>
#include <string>

namespace editor {

// One connection to a port of 127.0.0.1.
class Connection {
  public:
    explicit Connection(std::uint16_t port) : Connection() { Connect(port); }
    // Not connected yet.
    Connection();
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    void Connect(std::uint16_t port) const;
    // Sends all bytes. Returns false if the server has closed the connection before.
    bool Send(const std::string& bytes) const;
    // What the server has sent when it closes the connection, at most 20 seconds from now.
    std::string ReceiveAll() const;
    // What the server sends next.
    std::string ReceiveSome() const;

  private:
    int socket_;
};

// The bytes that come back for these.
std::string Exchange(std::uint16_t port, const std::string& bytes);

// The head of a request of the page in the folder "/FOLDER/" with the cookie COOKIE, without the empty line at its end.
std::string HeadOf(std::uint16_t port, const std::string& method, const std::string& name);
// A whole one, with a body unless that is empty.
std::string RequestOf(std::uint16_t port, const std::string& method, const std::string& name,
                      const std::string& body = "");

// The status in a response; 0 if it has none.
int StatusOf(const std::string& response);

}  // namespace editor

#endif

#endif
