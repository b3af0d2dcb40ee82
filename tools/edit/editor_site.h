// EditorSite, what the editor's server answers. It takes requests that were read from the network and returns
// responses, and lets in nobody but the page that it has given out itself.
//
// The first address holds a random token that is valid once. It is exchanged for a cookie, which all other requests
// need. Browsers send a cookie to all ports of a host, so everything else is in a folder with a random name, and the
// cookie is for that folder: other servers of this machine do not get it. Requests that name another host are refused,
// so that a foreign name that leads to this machine is of no use, and so are requests from pages of another origin.
// Only POST requests with JSON change anything.
#ifndef MOX_XMLAPI_TOOLS_EDIT_EDITOR_SITE_H
#define MOX_XMLAPI_TOOLS_EDIT_EDITOR_SITE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/edit/editor_session.h"

namespace mox::tool {

// The most bytes of a request's head and body. The head has the cookies of all servers of this machine.
inline constexpr std::size_t kLargestHead = std::size_t{64} << 10;
inline constexpr std::size_t kLargestBody = std::size_t{16} << 20;
// The most changes in one request.
inline constexpr std::size_t kMostChanges = 200000;

struct HttpRequest {
    std::string method{};
    std::string target{};                                       // "/0A1B/save"
    std::vector<std::pair<std::string, std::string>> fields{};  // the names as in "Content-Type"
    std::string body{};

    // The value of the field; nullopt if there is none or more than one.
    std::optional<std::string> Field(const std::string& name) const;
};

struct HttpResponse {
    int status = 200;
    std::vector<std::pair<std::string, std::string>> fields{};
    std::string body{};
    bool isOpenPage = false;  // the response stays open without an end, until the page is closed
    bool isEnd = false;       // the server ends after this response
    bool isActivity = false;  // somebody works with the page
};

// Random texts of the system's generator, of letters and digits.
struct SiteSecrets {
    std::string token{};
    std::string cookie{};
    std::string folder{};
};

class EditorSite {
  public:
    // `session` must outlive this object.
    EditorSite(EditorSession& session, std::uint16_t port, SiteSecrets secrets);

    // The first address, with the token: "http://127.0.0.1:1234/?token=..."
    std::string Address() const;

    // What can be said before the body is read: a response that refuses the request, or nothing. Uses all of the
    // request but its body.
    std::optional<HttpResponse> Refuse(const HttpRequest& request) const;

    // The response to a request that Refuse does not refuse. Never throws but std::bad_alloc.
    HttpResponse Answer(const HttpRequest& request);

    // A response with this status and a sentence for people.
    static HttpResponse Error(int status, const std::string& message);

  private:
    bool HasCookie(const HttpRequest& request) const;
    HttpResponse Exchange(const std::string& token);
    HttpResponse AnswerInFolder(const std::string& target, const std::string& body);
    HttpResponse AnswerPost(const std::string& target, const std::string& body);
    Json AnswerCall(const std::string& target, const nlohmann::json& call);

    EditorSession& session_;
    std::string host_;
    SiteSecrets secrets_;  // the token is empty once it was used
    std::string folder_;   // "/0A1B/"
};

// Whether both texts are the same, in a time that does not tell where they differ.
bool IsSameSecret(const std::string& one, const std::string& other) noexcept;

}  // namespace mox::tool

#endif
