#include "tools/edit/editor_site.h"

#include <algorithm>
#include <new>

#include "mox_xmlApi/document/text_format.h"
#include "tools/edit/page.h"
#include "tools/exit_error.h"
#include "tools/json_depth.h"

namespace mox::tool {
namespace {

using CallJson = nlohmann::json;

constexpr const char* kTokenTarget = "/?token=";

constexpr const char* kCookieName = "mox-xml";

// What is in the folder, and the methods that it takes.
struct SiteTarget {
    const char* name;
    const char* method;
};
constexpr SiteTarget kSiteTargets[] = {{"", "GET"},        {"document", "GET"},   {"open", "GET"},
                                       {"active", "POST"}, {"preview", "POST"},   {"save", "POST"},
                                       {"rebase", "POST"}, {"overwrite", "POST"}, {"end", "POST"}};

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
CallJson ReadCall(const std::string& text) {
    if (IsDeepJson(text)) throw ExitError(ExitCode::kSyntaxError, kTooDeepJson);
    CallJson call = CallJson::parse(text, nullptr, false);
    if (!call.is_object()) throw ExitError(ExitCode::kSyntaxError, "expected a JSON object");
    return call;
}

std::uint64_t VersionIn(const CallJson& call) {
    const auto found = call.find("version");
    if (found == call.end() || !found->is_number_unsigned())
        throw ExitError(ExitCode::kSyntaxError, "\"version\" is not a number");
    return found->get<std::uint64_t>();
}

std::vector<RequestedChange> ChangesIn(const CallJson& call) {
    const auto found = call.find("changes");
    if (found == call.end() || !found->is_array())
        throw ExitError(ExitCode::kSyntaxError, "\"changes\" is not a list");
    if (found->size() > kMostChanges)
        throw ExitError(ExitCode::kSyntaxError,
                        "more than " + std::to_string(kMostChanges) + " changes at once");
    return ChangesFromJson("changes", *found);
}

bool FlagIn(const CallJson& call, const char* name) {
    const auto found = call.find(name);
    if (found == call.end()) return false;
    if (!found->is_boolean())
        throw ExitError(ExitCode::kSyntaxError, Quoted(name) + " is neither true nor false");
    return found->get<bool>();
}

}  // namespace

bool IsSameSecret(const std::string& one, const std::string& other) noexcept {
    if (one.size() != other.size()) return false;
    int difference = 0;
    auto atOther = other.begin();
    for (const char character : one)
        difference |= character ^ *atOther++;
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

EditorSite::EditorSite(EditorSession& session, std::uint16_t port, SiteSecrets secrets)
    : session_(session),
      host_("127.0.0.1:" + std::to_string(port)),
      secrets_(std::move(secrets)),
      folder_("/" + secrets_.folder + "/") {}

std::string EditorSite::Address() const {
    return "http://" + host_ + kTokenTarget + secrets_.token;
}

HttpResponse EditorSite::Error(int status, const std::string& message) {
    return JsonResponse(status, {{"error", message}});
}

bool EditorSite::HasCookie(const HttpRequest& request) const {
    const std::string wanted = std::string(kCookieName) + "=";
    const std::string cookies = request.Field("Cookie").value_or("");
    for (std::size_t at = 0; at < cookies.size();) {
        const std::size_t end = std::min(cookies.find(';', at), cookies.size());
        if (cookies.compare(at, wanted.size(), wanted) == 0 &&
            IsSameSecret(cookies.substr(at + wanted.size(), end - at - wanted.size()), secrets_.cookie))
            return true;
        at = cookies.find_first_not_of("; ", end);
    }
    return false;
}

std::optional<HttpResponse> EditorSite::Refuse(const HttpRequest& request) const {
    if (request.Field("Host") != host_) return Error(421, "this is not the host that the request names");
    const bool hasOrigin = std::any_of(request.fields.begin(), request.fields.end(),
                                       [](const auto& field) { return field.first == "Origin"; });
    const bool isPost = request.method == "POST";
    if ((hasOrigin || isPost) && request.Field("Origin") != "http://" + host_)
        return Error(403, "the request comes from another page");
    if (!isPost && request.method != "GET") return Error(405, "only GET and POST are answered");
    const auto target =
        std::find_if(std::begin(kSiteTargets), std::end(kSiteTargets),
                     [&](const SiteTarget& known) { return request.target == folder_ + known.name; });
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
    if (isPost && request.Field("Content-Type") != "application/json") return Error(415, "expected JSON");
    return std::nullopt;
}

HttpResponse EditorSite::Exchange(const std::string& token) {
    if (secrets_.token.empty() || !IsSameSecret(token, secrets_.token))
        return Error(403, "the address is valid once, and was used or is wrong: start mox-xml again");
    secrets_.token.clear();
    HttpResponse response = MakeResponse(303, "", "");
    response.fields.emplace_back("Location", folder_);
    response.fields.emplace_back("Set-Cookie", std::string(kCookieName) + "=" + secrets_.cookie +
                                                   "; Path=" + folder_ + "; HttpOnly; SameSite=Strict");
    return response;
}

HttpResponse EditorSite::Answer(const HttpRequest& request) {
    if (IsTokenTarget(request.target))
        return Exchange(request.target.substr(std::string(kTokenTarget).size()));
    const std::string target = request.target.substr(folder_.size());
    if (target.empty()) return MakeResponse(200, "text/html; charset=utf-8", PageText(PageUse::Served));
    if (target == "open") {
        HttpResponse response = MakeResponse(200, "text/event-stream", "");
        response.isOpenPage = true;
        return response;
    }
    HttpResponse response = AnswerInFolder(target, request.body);
    response.isActivity = true;
    return response;
}

HttpResponse EditorSite::AnswerInFolder(const std::string& target, const std::string& body) {
    try {
        return target == "document" ? JsonResponse(200, session_.Form()) : AnswerPost(target, body);
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

HttpResponse EditorSite::AnswerPost(const std::string& target, const std::string& body) {
    const CallJson call = ReadCall(body);
    if (target == "active") return MakeResponse(204, "", "");
    if (target == "end") {
        HttpResponse response = MakeResponse(204, "", "");
        response.isEnd = true;
        return response;
    }
    return JsonResponse(200, AnswerCall(target, call));
}

Json EditorSite::AnswerCall(const std::string& target, const CallJson& call) {
    const std::uint64_t version = VersionIn(call);
    if (target == "rebase") return session_.Rebase(version);
    const std::vector<RequestedChange> changes = ChangesIn(call);
    if (target == "preview") return session_.Preview(version, changes);
    const bool withBackup = FlagIn(call, "backup");
    return target == "save" ? session_.Save(version, changes, withBackup)
                            : session_.Overwrite(version, changes, withBackup);
}

}  // namespace mox::tool
