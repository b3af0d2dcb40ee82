#include <algorithm>

#include "tests/second_opinion/kinds_support.h"

namespace opinion {
namespace {

constexpr std::string_view kWhitespace = " \t\n\r";

// Walks over a document that is known to be well-formed, and so need not look for errors.
class Walk {
  public:
    explicit Walk(std::string_view xml) : xml_(xml) {}

    Kinds Run() {
        if (At("\xEF\xBB\xBF")) {
            kinds_.insert("byte-order-mark");
            position_ = 3;
        }
        bool isAfterNode = false;
        while (position_ < xml_.size()) {
            if (xml_[position_] == '<') {
                if (isAfterNode) kinds_.insert("nothing-between-nodes");
                Markup();
                isAfterNode = depth_ == 0;
            } else {
                if (At("&#")) kinds_.insert("character-reference");
                position_ += 1;
                isAfterNode = false;
            }
        }
        return kinds_;
    }

  private:
    bool At(std::string_view text) const { return xml_.substr(position_, text.size()) == text; }

    // The text up to `end`; the walk goes on after it.
    std::string_view UpTo(std::string_view end) {
        const std::size_t found = xml_.find(end, position_);
        const std::string_view passed = xml_.substr(position_, found - position_);
        position_ = found + end.size();
        return passed;
    }
    void SkipWhitespace() {
        position_ = std::min(xml_.find_first_not_of(kWhitespace, position_), xml_.size());
    }

    void Markup() {
        if (At("<!--")) {
            position_ += 4;
            if (UpTo("-->").find('>') != std::string_view::npos) kinds_.insert("comment-with-greater-than");
        } else if (At("<![CDATA[")) {
            kinds_.insert("cdata");
            UpTo("]]>");
        } else if (At("<!DOCTYPE")) {
            kinds_.insert("doctype");
            SkipDoctype();
        } else if (At("<?xml") && kWhitespace.find(xml_[position_ + 5]) != std::string_view::npos) {
            position_ += 5;
            Attributes();
            UpTo(">");
        } else if (At("<?")) {
            kinds_.insert("processing-instruction");
            UpTo("?>");
        } else if (At("</")) {
            position_ += 2;
            depth_ -= 1;
            Name();
            if (!At(">")) kinds_.insert("space-in-end-tag");
            UpTo(">");
        } else {
            position_ += 1;
            Name();
            Attributes();
            if (!At("/")) depth_ += 1;
            UpTo(">");
        }
    }

    void Attributes() {
        for (;;) {
            SkipWhitespace();
            if (At("/") || At(">") || At("?")) return;
            Name();
            UpTo("=");
            SkipWhitespace();
            const std::string quote(1, xml_[position_++]);
            if (quote == "'") kinds_.insert("single-quotes");
            if (UpTo(quote).find("&#") != std::string_view::npos) kinds_.insert("character-reference");
        }
    }

    void Name() {
        const std::size_t end = std::min(xml_.find_first_of(" \t\n\r=/>", position_), xml_.size());
        const std::string_view name = xml_.substr(position_, end - position_);
        if (name.find_first_of("-.") != std::string_view::npos) kinds_.insert("name-with-hyphen-or-stop");
        position_ = end;
    }

    void SkipDoctype() {
        bool inside = false;
        char quote = 0;
        for (; inside || quote != 0 || xml_[position_] != '>'; ++position_) {
            const char here = xml_[position_];
            if (quote != 0) {
                if (here == quote) quote = 0;
            } else if (here == '"' || here == '\'') {
                quote = here;
            } else if (here == '[' || here == ']') {
                inside = here == '[';
            }
        }
        position_ += 1;
    }

    std::string_view xml_;
    std::size_t position_ = 0;
    int depth_ = 0;
    Kinds kinds_;
};

}  // namespace

Kinds RefusedParts(std::string_view xml) {
    return Walk(xml).Run();
}

}  // namespace opinion
