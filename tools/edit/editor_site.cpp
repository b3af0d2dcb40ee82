#include "tools/edit/editor_site.h"

#include <algorithm>
#include <new>

#include "mox_xmlApi/document/text_format.h"
#include "tools/edit/page.h"
#include "tools/exit_error.h"
#include "tools/json_depth.h"

namespace mox::tool {
namespace {

constexpr const char* kTokenTarget = "/?token=";

// Targets and the methods that they take.
struct SiteTarget {
    const char* path;
    const char* method;
};
constexpr SiteTarget kSiteTargets[] = {{"/", "GET"},        {"/document", "GET"},   {"/open", "GET"},
                                       {"/active", "POST"}, {"/preview", "POST"},   {"/save", "POST"},
                                       {"/rebase", "POST"}, {"/overwrite", "POST"}, {"/end", "POST"}};

bool IsTokenTarget(const std::string& target) {
    return target.rfind(kTokenTarget, 0) == 0;
}

// For every response: nothing is stored, framed, guessed or sent elsewhere.
void AddSafeFields(HttpResponse& response) {
    const auto add = [&response](const char* name, const std::string& value) {
        response.fields.emplace_back(name, value);
    };
    add("Cache-Control", "no-store");
    add("Content-Security-Policy", PagePolicy(PageUse::Served) + "; frame-ancestors 'none'");
    add("Cross-Origin-Opener-Policy", "same-origin");
    add("Cross-Origin-Resource-Policy", "same-origin");
    add("Referrer-Policy", "no-referrer");
    add("X-Content-Type-Options", "nosniff");
    add("X-Frame-Options", "DENY");
}

HttpResponse MakeResponse(int status, const char* type, std::string body) {
    HttpResponse response;
    response.status = status;
    if (*type != '\0') response.fields.emplace_back("Content-Type", type);
    AddSafeFields(response);
    response.body = std::move(body);
    return response;
}

HttpResponse JsonResponse(int status, const Json& json) {
    return MakeResponse(status, "application/json",
                        json.dump(-1, ' ', false, Json::error_handler_t::replace));
}

// A status that tells the page what kind of failure it was.
int StatusOf(ExitCode code) {
    switch (code) {
        case ExitCode::kNotFound:
        case ExitCode::kUsageError:
            return 409;
        case ExitCode::kSyntaxError:
            return 400;
        default:
            return 422;
    }
}

// Throws ExitError (kSyntaxError) unless the text is a JSON object. Code that takes JSON apart may recurse on its
// depth.
Json ReadCall(const std::string& text) {
    if (IsDeepJson(text)) throw ExitError(ExitCode::kSyntaxError, kTooDeepJson);
    Json call = Json::parse(text, nullptr, false);
    if (!call.is_object()) throw ExitError(ExitCode::kSyntaxError, "expected a JSON object");
    return call;
}

std::uint64_t VersionIn(const Json& call) {
    const auto found = call.find("version");
    if (found == call.end() || !found->is_number_unsigned())
        throw ExitError(ExitCode::kSyntaxError, "\"version\" is not a number");
    return found->get<std::uint64_t>();
}

std::vector<RequestedChange> ChangesIn(const Json& call) {
    const auto found = call.find("changes");
    if (found == call.end() || !found->is_array())
        throw ExitError(ExitCode::kSyntaxError, "\"changes\" is not a list");
    if (found->size() > kMostChanges)
        throw ExitError(ExitCode::kSyntaxError,
                        "more than " + std::to_string(kMostChanges) + " changes at once");
    return ReadChanges("changes", found->dump());
}

bool FlagIn(const Json& call, const char* name) {
    const auto found = call.find(name);
    if (found == call.end()) return false;
    if (!found->is_boolean())
        throw ExitError(ExitCode::kSyntaxError, Quoted(name) + " is neither true nor false");
    return found->get<bool>();
}

}  // namespace

bool IsSameSecret(const std::string& one, const std::string& other) noexcept {
    if (one.size() != other.size()) return false;
    unsigned difference = 0;
    for (std::size_t i = 0; i < one.size(); ++i)
        difference |= static_cast<unsigned char>(one[i]) ^ static_cast<unsigned char>(other[i]);
    return difference == 0;
}

std::optional<std::string> HttpRequest::Field(const std::string& name) const {
    std::optional<std::string> value;
    for (const auto& [fieldName, fieldValue] : fields) {
        if (fieldName != name) continue;
        if (value.has_value()) return std::nullopt;
        value = fieldValue;
    }
    return value;
}

EditorSite::EditorSite(EditorSession& session, std::uint16_t port, std::string token, std::string cookie)
    : session_(session),
      host_("127.0.0.1:" + std::to_string(port)),
      token_(std::move(token)),
      cookie_(std::move(cookie)),
      cookieName_("mox-xml-" + std::to_string(port)) {}  // cookies are shared by all ports of a host

std::string EditorSite::Address() const {
    return "http://" + host_ + kTokenTarget + token_;
}

HttpResponse EditorSite::Error(int status, const std::string& message) {
    return JsonResponse(status, {{"error", message}});
}

bool EditorSite::HasCookie(const HttpRequest& request) const {
    const std::string wanted = cookieName_ + "=";
    std::string cookies = request.Field("cookie").value_or("");
    for (std::size_t at = 0; at < cookies.size();) {
        std::size_t end = std::min(cookies.find(';', at), cookies.size());
        if (cookies.compare(at, wanted.size(), wanted) == 0 &&
            IsSameSecret(cookies.substr(at + wanted.size(), end - at - wanted.size()), cookie_))
            return true;
        at = end + 1;
        while (at < cookies.size() && cookies[at] == ' ')
            ++at;
    }
    return false;
}

std::optional<HttpResponse> EditorSite::Refuse(const HttpRequest& request) const {
    if (request.Field("host") != host_) return Error(421, "this is not the host that the request names");
    const bool hasOrigin = std::any_of(request.fields.begin(), request.fields.end(),
                                       [](const auto& field) { return field.first == "origin"; });
    const bool isPost = request.method == "POST";
    if ((hasOrigin || isPost) && request.Field("origin") != "http://" + host_)
        return Error(403, "the request comes from another page");
    if (!isPost && request.method != "GET") return Error(405, "only GET and POST are answered");
    const auto target = std::find_if(std::begin(kSiteTargets), std::end(kSiteTargets),
                                     [&](const SiteTarget& known) { return request.target == known.path; });
    if (IsTokenTarget(request.target)) {
        if (isPost) return Error(405, "the address is for GET");
        return std::nullopt;
    }
    if (!HasCookie(request))
        return Error(403,
                     "the request lacks the cookie of the page: use the address that mox-xml has printed, "
                     "which is valid once");
    if (target == std::end(kSiteTargets)) return Error(404, "there is nothing at this address");
    if (request.method != target->method)
        return Error(405, std::string("the address is for ") + target->method);
    if (isPost && request.Field("content-type") != "application/json") return Error(415, "expected JSON");
    return std::nullopt;
}

HttpResponse EditorSite::Exchange(const std::string& token) {
    if (token_.empty() || !IsSameSecret(token, token_))
        return Error(403, "the address is valid once, and was used or is wrong: start mox-xml again");
    token_.clear();
    HttpResponse response = MakeResponse(303, "", "");
    response.fields.emplace_back("Location", "/");
    response.fields.emplace_back("Set-Cookie",
                                 cookieName_ + "=" + cookie_ + "; Path=/; HttpOnly; SameSite=Strict");
    return response;
}

HttpResponse EditorSite::Answer(const HttpRequest& request) {
    const std::string& target = request.target;
    if (IsTokenTarget(target)) return Exchange(target.substr(std::string(kTokenTarget).size()));
    if (target == "/") return MakeResponse(200, "text/html; charset=utf-8", PageText(PageUse::Served));
    if (target == "/open") {
        HttpResponse response = MakeResponse(200, "text/event-stream", "");
        response.isOpenPage = true;
        return response;
    }
    try {
        HttpResponse response =
            target == "/document" ? JsonResponse(200, session_.Form()) : AnswerPost(request);
        response.isActivity = true;
        return response;
    } catch (const ExitError& error) {
        return Error(StatusOf(error.Code()), error.what());
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        return Error(500, error.what());
    } catch (std::int32_t code) {  // the library throws these, see mox_xmlApi.h
        return Error(500, "the library failed with error code " + std::to_string(code));
    }
}

HttpResponse EditorSite::AnswerPost(const HttpRequest& request) {
    const Json call = ReadCall(request.body);
    if (request.target == "/active") return MakeResponse(204, "", "");
    if (request.target == "/end") {
        HttpResponse response = MakeResponse(204, "", "");
        response.isEnd = true;
        return response;
    }
    return JsonResponse(200, AnswerCall(request.target, call));
}

Json EditorSite::AnswerCall(const std::string& target, const Json& call) {
    const std::uint64_t version = VersionIn(call);
    if (target == "/rebase") return session_.Rebase(version);
    const std::vector<RequestedChange> changes = ChangesIn(call);
    if (target == "/preview") return session_.Preview(version, changes);
    const bool withBackup = FlagIn(call, "backup");
    return target == "/save" ? session_.Save(version, changes, withBackup)
                             : session_.Overwrite(version, changes, withBackup);
}

}  // namespace mox::tool
