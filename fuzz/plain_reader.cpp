#include "fuzz/fuzz_input.h"
#include "fuzz/plain_document.h"
#include "mox_xmlApi/xml/xml_name_characters.h"

namespace mox::fuzz {
namespace {

bool IsSpace(wchar16 unit) {
    return unit == ' ' || unit == '\t' || unit == '\n' || unit == '\r';
}

class Reader {
  public:
    Reader(WideView text, PlainDocument& document) : text_(text), document_(document) {}

    bool Read() {
        for (;;) {
            SkipSpace();
            if (AtEnd()) return true;
            if (!Take('<')) return false;
            if (!ReadNode()) return false;
            while (!open_.empty()) {
                if (!ReadContent()) return false;
            }
            if (!AtEnd()) ++at_;  // whatever it is
        }
    }

  private:
    bool AtEnd() const { return at_ == text_.size(); }
    bool Sees(char unit) const { return !AtEnd() && text_[at_] == static_cast<wchar16>(unit); }

    bool Take(char unit) {
        if (!Sees(unit)) return false;
        ++at_;
        return true;
    }

    // Returns false at the end of the text.
    bool SkipSpace() {
        while (!AtEnd() && IsSpace(text_[at_]))
            ++at_;
        return !AtEnd();
    }

    WideString TakeName() {
        WideString name;
        while (!AtEnd() && (name.empty() ? IsNameStart(text_[at_]) : IsNameCharacter(text_[at_])))
            name += text_[at_++];
        return name;
    }

    PlainNode& Start(XmlNodeKind kind, const WideString& name) {
        document_.push_back({kind, open_.size(), name});
        return document_.back();
    }

    // Behind "<".
    bool ReadNode() {
        if (Take('?')) return ReadDeclaration();
        if (Take('!')) return ReadComment();
        const WideString name = TakeName();
        if (name.empty()) return false;
        if (!ReadAttributes(Start(XmlNodeKind::Element, name))) return false;
        if (Take('/')) return Take('>');
        if (!Take('>')) return false;
        open_.push_back(document_.size() - 1);
        pending_.clear();
        return SkipSpace();
    }

    bool ReadDeclaration() {
        if (!document_.empty() || TakeName() != "xml"_w) return false;
        if (AtEnd() || !IsSpace(text_[at_])) return false;
        PlainNode& declaration = Start(XmlNodeKind::ProcessingInstruction, WideString("xml"_w));
        return ReadAttributes(declaration) && PlainAttributeOf(declaration, "version"_w) != nullptr &&
               Take('?') && Take('>');
    }

    bool ReadComment() {
        if (!Take('-') || !Take('-')) return false;
        PlainNode& comment = Start(XmlNodeKind::Comment, WideString());
        for (int dashes = 0; !AtEnd(); ++at_) {
            const wchar16 unit = text_[at_];
            if (unit == '>' && dashes == 2) {
                comment.value.resize(comment.value.size() - 2);
                ++at_;
                return true;
            }
            if (unit == '>' || dashes == 2) return false;
            if (unit == '-') {
                ++dashes;
            } else if (dashes > 0) {
                --dashes;
            }
            comment.value += unit;
        }
        return false;
    }

    // Leaves white space behind the last one skipped.
    bool ReadAttributes(PlainNode& node) {
        for (;;) {
            if (!SkipSpace()) return false;
            const WideString name = TakeName();
            if (name.empty()) return true;
            SkipSpace();
            if (!Take('=')) return false;
            SkipSpace();
            if (!Take('"')) return false;
            WideString value;
            while (!Sees('"')) {
                if (AtEnd() || Sees('<') || !TakeUnit(value)) return false;
            }
            ++at_;
            node.attributes.emplace_back(name, value);
        }
    }

    // One unit of text, or the one that an entity stands for.
    bool TakeUnit(WideString& text) {
        if (!Sees('&')) {
            text += text_[at_++];
            return true;
        }
        const std::size_t end = text_.find(';', at_);
        if (end == WideView::npos) return false;
        const WideView entity = text_.substr(at_, end + 1 - at_);
        at_ = end + 1;
        const auto decode = [&](WideView name, char unit) {
            if (entity != name) return false;
            text += static_cast<wchar16>(unit);
            return true;
        };
        return decode("&amp;"_w, '&') || decode("&apos;"_w, '\'') || decode("&gt;"_w, '>') ||
               decode("&lt;"_w, '<') || decode("&quot;"_w, '"');
    }

    // The next unit of the innermost open element's content, or the markup that stands there.
    bool ReadContent() {
        if (AtEnd()) return false;
        if (!Take('<')) return TakeUnit(pending_);
        PlainNode& element = document_[open_.back()];
        if (!pending_.empty()) {
            if (!element.value.empty()) element.value += '\n';
            element.value += pending_;
            pending_.clear();
        }
        if (Take('/')) {
            if (TakeName() != element.name || !Take('>')) return false;
            open_.pop_back();
        } else if (Sees('?') || !ReadNode()) {
            return false;
        }
        return open_.empty() || SkipSpace();
    }

    WideView text_;
    PlainDocument& document_;
    std::size_t at_ = 0;
    std::vector<std::size_t> open_;
    WideString pending_;
};

}  // namespace

bool PlainRead(WideView text, PlainDocument& document) {
    document.clear();
    return Reader(text, document).Read();
}

WideString PlainUnits(std::string_view bytes, bool wide) {
    if (!wide) return WidenBytes(bytes);
    WideString units;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto low = static_cast<unsigned char>(bytes[i]);
        const auto high = static_cast<unsigned char>(bytes[i + 1]);
        if (low == 0 && high == 0) break;
        units += static_cast<wchar16>(low | high << 8);
    }
    return units;
}

}  // namespace mox::fuzz
