#include "tests/editor/http_client_support.h"

#if !defined(_WIN32)

#include <arpa/inet.h>
#include <cstdlib>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

namespace editor {

Connection::Connection() : socket_(socket(AF_INET, SOCK_STREAM, 0)) {
    const timeval patience{20, 0};
    EXPECT_EQ(setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience), 0);
}

void Connection::Connect(std::uint16_t port) const {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
}

Connection::~Connection() {
    close(socket_);
}

bool Connection::Send(const std::string& bytes) const {
    for (std::size_t sent = 0; sent < bytes.size();) {
        const ssize_t count = send(socket_, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (count <= 0) return false;
        sent += static_cast<std::size_t>(count);
    }
    return true;
}

std::string Connection::ReceiveAll() const {
    std::string all;
    for (std::string some = ReceiveSome(); !some.empty(); some = ReceiveSome())
        all += some;
    return all;
}

std::string Connection::ReceiveSome() const {
    char bytes[4096];
    const ssize_t count = recv(socket_, bytes, sizeof bytes, 0);
    return count > 0 ? std::string(bytes, static_cast<std::size_t>(count)) : std::string();
}

std::string Exchange(std::uint16_t port, const std::string& bytes) {
    const Connection connection(port);
    connection.Send(bytes);
    return connection.ReceiveAll();
}

std::string HeadOf(std::uint16_t port, const std::string& method, const std::string& name) {
    const std::string host = "127.0.0.1:" + std::to_string(port);
    return method + " /FOLDER/" + name + " HTTP/1.1\r\nHost: " + host + "\r\nOrigin: http://" + host +
           "\r\ncookie: mox-xml=COOKIE\r\nCONTENT-TYPE: application/json\r\nOther: a\r\n";
}

std::string RequestOf(std::uint16_t port, const std::string& method, const std::string& name,
                      const std::string& body) {
    const std::string length = body.empty() ? "" : "Content-Length: " + std::to_string(body.size()) + "\r\n";
    return HeadOf(port, method, name) + length + "\r\n" + body;
}

int StatusOf(const std::string& response) {
    return response.rfind("HTTP/1.1 ", 0) == 0 ? std::atoi(response.c_str() + 9) : 0;
}

}  // namespace editor

#endif
