// What the editor's site answers in detail: fields, statuses, limits, the policy of the page.
#include "tests/editor/session_support.h"
#include "tools/edit/page.h"

namespace editor {
namespace {

using mox::tool::EditorSite;
using mox::tool::HttpRequest;
using mox::tool::HttpResponse;
using mox::tool::PagePolicy;
using mox::tool::PageUse;

class SiteAnswers : public SiteTest {
  protected:
    HttpResponse Post(const std::string& name, const std::string& body) {
        return site_->Answer({"POST", "/FOLDER/" + name, {}, body});
    }
};

using Fields = std::vector<std::pair<std::string, std::string>>;

TEST_F(SiteAnswers, AreNeitherStoredNorFramedNorGuessed) {
    const std::string policy = PagePolicy(PageUse::Served) + "; frame-ancestors 'none'";
    const Fields safe = {{"Cache-Control", "no-store"},
                         {"Content-Security-Policy", policy},
                         {"Cross-Origin-Opener-Policy", "same-origin"},
                         {"Cross-Origin-Resource-Policy", "same-origin"},
                         {"Referrer-Policy", "no-referrer"},
                         {"X-Content-Type-Options", "nosniff"},
                         {"X-Frame-Options", "DENY"}};
    const auto with = [&safe](const std::string& type) {
        Fields fields = {{"Content-Type", type}};
        fields.insert(fields.end(), safe.begin(), safe.end());
        return fields;
    };
    EXPECT_EQ(site_->Answer({"GET", "/FOLDER/", {}, ""}).fields, with("text/html; charset=utf-8"));
    EXPECT_EQ(site_->Answer({"GET", "/FOLDER/document", {}, ""}).fields, with("application/json"));
    EXPECT_EQ(site_->Answer({"GET", "/FOLDER/open", {}, ""}).fields, with("text/event-stream"));
    EXPECT_EQ(EditorSite::Error(404, "a").fields, with("application/json"));
    EXPECT_EQ(EditorSite::Error(404, "a \"b\"").body, R"({"error":"a \"b\""})");
    EXPECT_EQ(Post("active", "{}").fields, safe);
}

TEST_F(SiteAnswers, AreUtf8EvenIfATextIsNot) {
    EXPECT_EQ(EditorSite::Error(404, "\xC3\xA4").body, "{\"error\":\"\xC3\xA4\"}");
    EXPECT_EQ(EditorSite::Error(404, "a\xFF").body, "{\"error\":\"a\xEF\xBF\xBD\"}");
}

TEST_F(SiteAnswers, StatusTellsTheKindOfFailure) {
    const auto statusOf = [this](const std::string& change) {
        return Post("preview", R"({"version": 1, "changes": [)" + change + "]}").status;
    };
    EXPECT_EQ(statusOf(R"({"section": "S", "entry": "k", "value": 2})"), 200);
    EXPECT_EQ(statusOf(R"({"change": "removed", "section": "S", "entry": "none"})"), 409);
    EXPECT_EQ(statusOf(R"({"change": "odd"})"), 400);
    EXPECT_EQ(statusOf(R"({"section": "S", "entry": "k", "value": "a\nb"})"), 422);
    EXPECT_EQ(Post("preview", R"({"version": 2, "changes": []})").status, 409);
    EXPECT_EQ(Post("rebase", R"({"version": 1})").status, 409);
}

TEST_F(SiteAnswers, OneCallHasALimitedNumberOfChanges) {
    const auto bodyOf = [this](std::size_t count) {
        std::string changes = "{}";
        for (std::size_t i = 1; i < count; ++i)
            changes += ",{}";
        return Post("save", R"({"version": 1, "changes": [)" + changes + "]}").body;
    };
    EXPECT_EQ(bodyOf(200001), R"({"error":"more than 200000 changes at once"})");
    EXPECT_EQ(bodyOf(200000), R"({"error":"changes: change 1: \"entry\" is missing"})");
}

TEST_F(SiteAnswers, MalformedCallsAreToldApart) {
    EXPECT_EQ(Post("save", "[]").body, R"({"error":"expected a JSON object"})");
    EXPECT_EQ(Post("save", "{}").body, R"({"error":"\"version\" is not a number"})");
    EXPECT_EQ(Post("save", R"({"version": 1, "changes": 1})").body,
              R"({"error":"\"changes\" is not a list"})");
    EXPECT_EQ(Post("save", R"({"version": 1, "changes": [], "backup": 1})").body,
              R"({"error":"\"backup\" is neither true nor false"})");
    EXPECT_EQ(Post("save", R"({"version": 1, "changes": []})").body, R"({"unchanged":true})");
}

TEST_F(SiteAnswers, BackupIsMadeOnRequest) {
    const std::string before = ReadBytes(path_);
    const std::string change = R"("changes": [{"section": "S", "entry": "k", "value": 2}])";
    EXPECT_EQ(Post("save", R"({"version": 1, "backup": false, )" + change + "}").status, 200);
    EXPECT_EQ(ReadBytes(path_ + ".bak"), "");
    const std::string after = ReadBytes(path_);
    EXPECT_NE(after, before);
    const std::string again = R"("changes": [{"section": "S", "entry": "k", "value": 3}])";
    EXPECT_EQ(Post("save", R"({"version": 2, "backup": true, )" + again + "}").status, 200);
    EXPECT_EQ(ReadBytes(path_ + ".bak"), after);
}

// The bytes that a text of base 64 stands for, as hexadecimal digits.
std::string HexOfBase64(const std::string& text) {
    const std::string letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string bits;
    for (const char character : text) {
        const std::size_t value = letters.find(character);
        for (int i = 5; value != std::string::npos && i >= 0; --i)
            bits += (value >> static_cast<unsigned>(i)) & 1U ? '1' : '0';
    }
    std::string digits;
    for (std::size_t at = 0; at + 4 <= bits.size() / 8 * 8; at += 4)
        digits += "0123456789abcdef"[std::stoul(bits.substr(at, 4), nullptr, 2)];
    return digits;
}

TEST_F(SiteAnswers, PolicyKnowsScriptAndStyleByTheirHashes) {
    const std::string policy = PagePolicy(PageUse::Served);
    const auto hashAfter = [&policy](const std::string& source) {
        const std::size_t at = policy.find(source + " 'sha256-");
        EXPECT_NE(at, std::string::npos);
        return policy.substr(at + source.size() + 9, 44);
    };
    EXPECT_EQ(HexOfBase64(hashAfter("script-src")), mox::tool::kPageScriptHash);
    EXPECT_EQ(HexOfBase64(hashAfter("style-src")), mox::tool::kPageStyleHash);
    EXPECT_EQ(hashAfter("script-src")[43], '=');
    EXPECT_NE(policy.find("; connect-src 'self'"), std::string::npos);
    EXPECT_EQ(policy.rfind("default-src 'none'; ", 0), 0U);
}

TEST_F(SiteAnswers, ServedPageHasNoDocumentAndNoPolicyOfItsOwn) {
    const std::string page = mox::tool::PageText(PageUse::Served);
    EXPECT_NE(page.find("<script type=\"application/json\" id=\"data\">null</script>"), std::string::npos);
    EXPECT_EQ(page.find("http-equiv"), std::string::npos);
    EXPECT_NE(page.find(mox::tool::kPageScript), std::string::npos);
    EXPECT_NE(page.find(mox::tool::kPageStyle), std::string::npos);
}

}  // namespace
}  // namespace editor
