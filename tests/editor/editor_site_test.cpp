// The editor's site: who is let in, and what the answers are.
#include <algorithm>

#include "tests/editor/session_support.h"
#include "tools/edit/page.h"

namespace editor {
namespace {

using mox::tool::EditorSite;
using mox::tool::HttpRequest;
using mox::tool::HttpResponse;
using mox::tool::Json;

class Site : public SiteTest {
  protected:
    static HttpRequest GetAt(const std::string& target) {
        return {"GET", target, {{"Host", "127.0.0.1:80"}, {"Cookie", "mox-xml=COOKIE"}}, ""};
    }

    static HttpRequest Get(const std::string& name) { return GetAt("/FOLDER/" + name); }

    static HttpRequest Post(const std::string& name, const std::string& body) {
        HttpRequest request = Get(name);
        request.method = "POST";
        request.fields.emplace_back("Origin", "http://127.0.0.1:80");
        request.fields.emplace_back("Content-Type", "application/json");
        request.body = body;
        return request;
    }

    HttpResponse Answer(const HttpRequest& request) {
        std::optional<HttpResponse> refusal = site_->Refuse(request);
        return refusal.has_value() ? *std::move(refusal) : site_->Answer(request);
    }

    // The status of the answer to the request after the field was given another value, or left out.
    int StatusWith(HttpRequest request, const std::string& name, const std::optional<std::string>& value) {
        auto& fields = request.fields;
        fields.erase(std::remove_if(fields.begin(), fields.end(),
                                    [&](const auto& field) { return field.first == name; }),
                     fields.end());
        if (value.has_value()) fields.emplace_back(name, *value);
        return Answer(request).status;
    }

    static std::string FieldOf(const HttpResponse& response, const std::string& name) {
        for (const auto& [fieldName, value] : response.fields) {
            if (fieldName == name) return value;
        }
        return "";
    }
};

TEST_F(Site, TokenIsExchangedOnce) {
    EXPECT_EQ(site_->Address(), "http://127.0.0.1:80/?token=TOKEN");
    HttpRequest request = GetAt("/?token=WRONG");
    request.fields.pop_back();
    EXPECT_EQ(Answer(request).status, 403);
    request.target = "/?token=";
    EXPECT_EQ(Answer(request).status, 403);
    request.target = "/?token=TOKEN";
    const HttpResponse response = Answer(request);
    EXPECT_EQ(response.status, 303);
    EXPECT_EQ(FieldOf(response, "Location"), "/FOLDER/");
    EXPECT_EQ(FieldOf(response, "Set-Cookie"), "mox-xml=COOKIE; Path=/FOLDER/; HttpOnly; SameSite=Strict");
    EXPECT_EQ(Answer(request).status, 403);
    request.target = "/?token=";
    EXPECT_EQ(Answer(request).status, 403);
}

TEST_F(Site, HostOriginCookieAndTypeMustBeItsOwn) {
    const HttpRequest post = Post("active", "{}");
    EXPECT_EQ(Answer(post).status, 204);
    EXPECT_EQ(StatusWith(post, "Host", std::nullopt), 421);
    EXPECT_EQ(StatusWith(post, "Host", "localhost:80"), 421);
    EXPECT_EQ(StatusWith(post, "Origin", std::nullopt), 403);
    EXPECT_EQ(StatusWith(post, "Origin", "http://localhost:80"), 403);
    EXPECT_EQ(StatusWith(post, "Cookie", std::nullopt), 403);
    EXPECT_EQ(StatusWith(post, "Cookie", "mox-xml=COOKIF"), 403);
    EXPECT_EQ(StatusWith(post, "Cookie", "a; mox-xml=COOKIE"), 204);
    EXPECT_EQ(StatusWith(post, "Cookie", "mox-xml=OTHER;  mox-xml=COOKIE;b"), 204);
    EXPECT_EQ(StatusWith(post, "Cookie", "amox-xml=COOKIE"), 403);
    EXPECT_EQ(StatusWith(post, "Cookie", "mox-xml=COOKIEx"), 403);
    EXPECT_EQ(StatusWith(post, "Cookie", "mox-xml"), 403);
    EXPECT_EQ(StatusWith(post, "Content-Type", "text/plain"), 415);
    EXPECT_EQ(StatusWith(Get(""), "Origin", "null"), 403);
    EXPECT_EQ(StatusWith(Get(""), "Origin", "http://127.0.0.1:80"), 200);
    HttpRequest doubled = post;
    doubled.fields.emplace_back("Host", "127.0.0.1:80");
    EXPECT_EQ(Answer(doubled).status, 421);
    doubled = Get("");
    doubled.fields.emplace_back("Origin", "http://127.0.0.1:80");
    doubled.fields.emplace_back("Origin", "http://127.0.0.1:80");
    EXPECT_EQ(Answer(doubled).status, 403);
}

TEST_F(Site, EachAddressTakesOneMethod) {
    for (const char* const target : {"", "document", "open"}) {
        EXPECT_EQ(Answer(Get(target)).status, 200) << target;
        EXPECT_EQ(Answer(Post(target, "{}")).status, 405) << target;
    }
    for (const char* const target : {"active", "preview", "save", "rebase", "overwrite", "end"})
        EXPECT_EQ(Answer(Get(target)).status, 405) << target;
    HttpRequest put = Get("");
    put.method = "PUT";
    EXPECT_EQ(Answer(put).status, 405);
    EXPECT_EQ(Answer(Get("other")).status, 404);
    for (const char* const target :
         {"", "/", "/document", "/FOLDER", "/folder/", "/FOLDER/../", "FOLDER/", "/FOLDER/document?a",
          "http://127.0.0.1:80/FOLDER/", "/FOLDER/FOLDER/document", "/OTHER/document"})
        EXPECT_EQ(Answer(GetAt(target)).status, 404) << target;
}

TEST_F(Site, AnswersSayWhatTheServerDoesNext) {
    EXPECT_TRUE(Answer(Get("open")).isOpenPage);
    EXPECT_FALSE(Answer(Get("")).isOpenPage);
    EXPECT_TRUE(Answer(Post("end", "{}")).isEnd);
    EXPECT_FALSE(Answer(Post("active", "{}")).isEnd);
    EXPECT_TRUE(Answer(Post("active", "{}")).isActivity);
    EXPECT_TRUE(Answer(Get("document")).isActivity);
    EXPECT_TRUE(Answer(Post("save", "{}")).isActivity);  // although it is refused
    EXPECT_FALSE(Answer(Get("open")).isActivity);
}

TEST_F(Site, CallsReachTheSession) {
    const std::string call =
        R"({"version": 1, "changes": [{"change": "changed", "section": "S", "entry": "k", "field": "value", )"
        R"("after": "2"}]})";
    EXPECT_EQ(
        Answer(Post("preview", call)).body,
        R"({"asked":[{"change":"changed","section":"S","entry":"k","field":"value","before":"1","after":"2"}],)"
        R"("besides":[]})");
    EXPECT_EQ(Answer(Post("overwrite", call)).status, 409);
    EXPECT_EQ(Answer(Post("rebase", R"({"version": 1})")).status, 409);
    WriteBytes(path_, "<broken");
    EXPECT_NE(Answer(Post("save", call)).body.find("\"unreadable\""), std::string::npos);
    EXPECT_EQ(ReadBytes(path_), "<broken");
}

TEST_F(Site, MalformedCallsAreRefused) {
    for (const char* const body :
         {"", "[]", "{", "{\"version\": -1}", "{\"version\": 1}", "{\"version\": 1, \"changes\": {}}",
          "{\"version\": 1, \"changes\": [], \"backup\": 0}", "{\"version\": 1, \"changes\": [[]]}"})
        EXPECT_EQ(Answer(Post("save", body)).status, 400) << body;
    // Seventeen levels are one too many; brackets in strings are none.
    const auto nested = [](int depth) {
        return "{\"x\": " + std::string(static_cast<std::size_t>(depth), '[') +
               std::string(static_cast<std::size_t>(depth), ']') + "}";
    };
    EXPECT_EQ(Answer(Post("active", nested(15))).status, 204);
    EXPECT_EQ(Answer(Post("active", nested(16))).status, 400);
    EXPECT_EQ(
        Answer(Post("active", "{\"x\": \"" + std::string(50, '[') + "\\\"" + std::string(50, '{') + "\"}"))
            .status,
        204);
}

TEST_F(Site, SecretsAreComparedWhole) {
    EXPECT_TRUE(mox::tool::IsSameSecret("abc", "abc"));
    EXPECT_FALSE(mox::tool::IsSameSecret("abc", "abd"));
    EXPECT_FALSE(mox::tool::IsSameSecret("abc", "bbc"));
    EXPECT_FALSE(mox::tool::IsSameSecret("abc", "ab"));
}

// ---- the page

TEST_F(Site, PageAloneHoldsTheDocumentWhereNoTextCanLeaveIt) {
    const Json form = {{"file", "</script><script>&amp;-->"}};
    const std::string page = mox::tool::PageText(mox::tool::PageUse::Alone, form);
    EXPECT_NE(page.find(R"({"file":"\u003c/script\u003e\u003cscript\u003e\u0026amp;--\u003e"})"),
              std::string::npos);
    EXPECT_NE(page.find("http-equiv=\"Content-Security-Policy\""), std::string::npos);
    EXPECT_EQ(mox::tool::PagePolicy(mox::tool::PageUse::Alone).find("connect-src"), std::string::npos);
    for (const char* const mark : {"@POLICY@", "@STYLE@", "@SCRIPT@", "@DOCUMENT@"})
        EXPECT_EQ(page.find(mark), std::string::npos) << mark;
}

}  // namespace
}  // namespace editor
