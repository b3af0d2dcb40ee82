// front_replay < <calls>: carries out calls through the C++ front and prints what each of them gives, for a comparison
// with the Python package. A call is a line of words: its name and its arguments. Texts and bytes are in hexadecimal
// digits after an "x", "-" stands for a text that is null. front_calls.py describes the calls.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "mox_xmlApi/mox_xmlApi.hpp"

namespace {

using Words = std::vector<std::string>;
using Bytes = std::vector<std::uint8_t>;

std::string Hex(const std::string& bytes) {
    std::string text = "x";
    for (const char byte : bytes) {
        char digits[3];
        static_cast<void>(std::snprintf(digits, sizeof digits, "%02x",
                                        static_cast<unsigned>(static_cast<unsigned char>(byte))));
        text += digits;
    }
    return text;
}

std::string Unhex(const std::string& word) {
    std::string bytes;
    for (std::size_t at = 1; at + 1 < word.size(); at += 2)
        bytes += static_cast<char>(std::stoi(word.substr(at, 2), nullptr, 16));
    return bytes;
}

std::optional<std::string> OptionalText(const std::string& word) {
    return word == "-" ? std::nullopt : std::optional(Unhex(word));
}

std::string OptionalHex(const std::optional<std::string>& text) {
    return text.has_value() ? Hex(*text) : "-";
}

std::uint32_t Number(const std::string& word) {
    return static_cast<std::uint32_t>(std::stoul(word));
}

// ---- entries

std::string Shown(const mox::Entry& entry) {
    std::ostringstream out;
    out << Hex(entry.name) << ' ' << OptionalHex(entry.value) << ' ' << static_cast<unsigned>(entry.type)
        << ' ' << static_cast<unsigned>(entry.shape) << ' ' << entry.id;
    if (entry.ui.has_value()) {
        out << ' ' << static_cast<unsigned>(entry.ui->control) << ' '
            << static_cast<unsigned>(entry.ui->providerOwner) << ' ' << entry.ui->providerIndex << ' '
            << Hex(entry.ui->shownName) << ' ' << Hex(entry.ui->comment) << ' '
            << OptionalHex(entry.ui->value);
    }
    return out.str();
}

mox::Entry EntryOf(const Words& words, std::size_t at) {
    mox::Entry entry;
    entry.name = Unhex(words.at(at));
    entry.value = OptionalText(words.at(at + 1));
    entry.type = static_cast<mox::ValueType>(Number(words.at(at + 2)));
    entry.shape = static_cast<mox::Shape>(Number(words.at(at + 3)));
    entry.id = Number(words.at(at + 4));
    if (words.size() == at + 5) return entry;
    mox::Presentation& ui = entry.ui.emplace();
    ui.control = static_cast<mox::Control>(Number(words.at(at + 5)));
    ui.providerOwner = static_cast<mox::Owner>(Number(words.at(at + 6)));
    ui.providerIndex = Number(words.at(at + 7));
    ui.shownName = Unhex(words.at(at + 8));
    ui.comment = Unhex(words.at(at + 9));
    ui.value = OptionalText(words.at(at + 10));
    return entry;
}

// ---- values

std::string Shown(const std::string& text) {
    return "str " + Hex(text);
}
std::string Shown(bool value) {
    return value ? "bool 1" : "bool 0";
}
std::string Shown(std::int64_t value) {
    return "int " + std::to_string(value);
}
std::string Shown(double value) {
    char text[40];
    static_cast<void>(std::snprintf(text, sizeof text, "float %.17g", value));
    return text;
}
std::string Shown(const Bytes& bytes) {
    return "bytes " + Hex(std::string(bytes.begin(), bytes.end()));
}

// The kind of value that the Python package has for a type.
std::string KindOf(const mox::Entry& entry) {
    using mox::ValueType;
    if (entry.shape != mox::Shape::Single) return entry.type == ValueType::Byte ? "bytes" : "str";
    switch (entry.type) {
        case ValueType::Short:
        case ValueType::Long:
        case ValueType::UShort:
        case ValueType::ULong:
            return "int";
        case ValueType::Double:
            return "float";
        case ValueType::Bool:
            return "bool";
        default:
            return "str";
    }
}

bool FitsType(mox::ValueType type, long long number) {
    switch (type) {
        case mox::ValueType::Short:
            return number >= -32768 && number <= 32767;
        case mox::ValueType::Long:
            return number >= -2147483648LL && number <= 2147483647LL;
        case mox::ValueType::UShort:
            return number >= 0 && number <= 65535;
        case mox::ValueType::ULong:
            return number >= 0 && number <= 4294967295LL;
        default:  // a double
            return number >= -9007199254740992LL && number <= 9007199254740992LL;
    }
}

// Whether the value suits the type of an entry.
mox::Reason Suitable(const mox::Entry& entry, const std::string& kind, const std::string& value) {
    const std::string needed = KindOf(entry);
    const bool takesInt = needed == "int" || needed == "float";
    if (kind == "int" && takesInt)
        return FitsType(entry.type, std::stoll(value)) ? mox::Reason::None : mox::Reason::OutOfRange;
    if (needed == "str" && entry.shape == mox::Shape::Single) return mox::Reason::None;
    return kind == needed ? mox::Reason::None : mox::Reason::WrongType;
}

// ---- a document

class Document {
  public:
    explicit Document(mox::Profile&& profile) : content_(std::move(profile)) {}
    explicit Document(mox::Table&& table) : content_(std::move(table)) {}

    std::string Call(const Words& words);

  private:
    template <class Use>
    bool WithEntries(const std::string& section, Use use) {
        if (auto* const table = std::get_if<mox::Table>(&content_))
            return use(static_cast<mox::EntryTable&>(*table));
        auto found = std::get<mox::Profile>(content_).findSection(section, &problem_);
        return found.has_value() && use(static_cast<mox::EntryTable&>(*found));
    }

    template <class T>
    bool Read(const std::string& section, const std::string& name) {
        std::optional<T> value;
        if (const auto* const table = std::get_if<mox::Table>(&content_))
            value = table->get<T>(name, &problem_);
        else
            value = std::get<mox::Profile>(content_).get<T>(section, name, &problem_);
        if (value.has_value()) result_ = Shown(*value);
        return value.has_value();
    }
    bool ReadAs(const std::string& kind, const std::string& section, const std::string& name) {
        if (kind == "int") return Read<std::int64_t>(section, name);
        if (kind == "float") return Read<double>(section, name);
        if (kind == "bool") return Read<bool>(section, name);
        if (kind == "bytes") return Read<Bytes>(section, name);
        return Read<std::string>(section, name);
    }

    template <class T>
    bool Set(const std::string& section, const std::string& name, const T& value) {
        if (auto* const table = std::get_if<mox::Table>(&content_)) return table->set(name, value, &problem_);
        return std::get<mox::Profile>(content_).set(section, name, value, &problem_);
    }
    bool SetAs(const std::string& kind, const std::string& section, const std::string& name,
               const std::string& value) {
        if (kind == "int") {
            const std::int64_t number = std::stoll(value);
            if (number >= INT32_MIN && number <= INT32_MAX)
                return Set(section, name, static_cast<std::int32_t>(number));
            if (number >= 0 && number <= UINT32_MAX)
                return Set(section, name, static_cast<std::uint32_t>(number));
            return Set(section, name, number);
        }
        if (kind == "float") return Set(section, name, std::strtod(value.c_str(), nullptr));
        if (kind == "bool") return Set(section, name, value == "1");
        const std::string text = Unhex(value);
        if (kind == "bytes") return Set(section, name, Bytes(text.begin(), text.end()));
        return Set(section, name, text);
    }

    std::optional<mox::Entry> Find(const std::string& section, const std::string& name) {
        std::optional<mox::Entry> entry;
        WithEntries(section, [&](mox::EntryTable& entries) {
            entry = entries.find(name, &problem_);
            return entry.has_value();
        });
        return entry;
    }

    bool Get(const std::string& section, const std::string& name);
    bool Assign(const Words& words);
    bool Save(const Words& words);
    bool Carry(const Words& words);
    bool ChangeEntry(const Words& words, mox::EntryTable& entries);

    std::variant<mox::Profile, mox::Table> content_;
    mox::Problem problem_;
    std::string result_;
};

bool Document::Get(const std::string& section, const std::string& name) {
    constexpr std::size_t kLongestName = 259;
    const std::optional<mox::Entry> entry = Find(section, name);
    if (entry.has_value()) return ReadAs(KindOf(*entry), section, name);
    return name.size() > kLongestName && ReadAs("str", section, name);
}

bool Document::Assign(const Words& words) {
    const std::string section = Unhex(words.at(1));
    const std::string name = Unhex(words.at(2));
    const std::optional<mox::Entry> entry = Find(section, name);
    if (entry.has_value()) {
        const mox::Reason reason = Suitable(*entry, words.at(3), words.at(4));
        if (reason != mox::Reason::None) {
            problem_.reason = reason;
            return false;
        }
    }
    return SetAs(words.at(3), section, name, words.at(4));
}

bool Document::Save(const Words& words) {
    std::optional<std::string> bytes;
    const bool isUtf8 = words.at(1) == "3";
    if (words.at(2) != "-") {
        return WithEntries(Unhex(words.at(2)), [&](mox::EntryTable& entries) {
            bytes = isUtf8 ? entries.toUtf8(&problem_) : entries.toBytes(&problem_);
            if (bytes.has_value()) result_ = Hex(*bytes);
            return bytes.has_value();
        });
    }
    if (const auto* const table = std::get_if<mox::Table>(&content_)) {
        bytes = isUtf8 ? table->toUtf8(&problem_) : table->toBytes(&problem_);
    } else {
        const auto& profile = std::get<mox::Profile>(content_);
        const mox::Form form =
            words.at(1) == "0" ? profile.form() : (words.at(1) == "1" ? mox::Form::Narrow : mox::Form::Wide);
        bytes = isUtf8 ? profile.toUtf8(&problem_) : profile.toBytes(form, mox::Content::Document, &problem_);
    }
    if (bytes.has_value()) result_ = Hex(*bytes);
    return bytes.has_value();
}

bool Document::ChangeEntry(const Words& words, mox::EntryTable& entries) {
    const std::string& call = words.at(0);
    const auto eud = [](const std::string& word) { return word == "1" ? mox::Eud::Set : mox::Eud::DoNotSet; };
    if (call == "add" && words.at(3) == "-")
        return entries.add(EntryOf(words, 4), eud(words.at(2)), &problem_);
    if (call == "add")
        return entries.addBefore(Unhex(words.at(3)), EntryOf(words, 4), eud(words.at(2)), &problem_);
    if (call == "put") return entries.put(EntryOf(words, 3), eud(words.at(2)), &problem_);
    if (call == "clear") return entries.clear(&problem_);
    if (call == "names") {
        for (const std::string& name : entries.names())
            result_ += Hex(name) + " ";
        return true;
    }
    if (call == "entries") {
        for (const mox::Entry& entry : entries.list())
            result_ += Shown(entry) + "; ";
        result_ += std::to_string(entries.countUnreadable());
        return true;
    }
    const std::string name = Unhex(words.at(2));
    if (call == "rename") return entries.rename(name, Unhex(words.at(3)), &problem_);
    if (call == "comment") return entries.setComment(name, Unhex(words.at(3)), &problem_);
    if (call == "shown") return entries.setShownName(name, Unhex(words.at(3)), &problem_);
    if (call == "provider")
        return entries.setProvider(name, static_cast<mox::Owner>(Number(words.at(3))), Number(words.at(4)),
                                   &problem_);
    if (call == "eud") return entries.setEud(name, words.at(3) == "1", &problem_);
    if (call == "remove" && words.at(3) == "-") return entries.removeAll(name, &problem_);
    if (call == "remove")
        return entries.remove(name, static_cast<std::int32_t>(Number(words.at(3))), &problem_);
    if (call == "set_value" && words.at(5) == "1")
        return entries.setValueUnlessEud(name, Unhex(words.at(3)), eud(words.at(4)), &problem_);
    if (call == "set_value") return entries.setValue(name, Unhex(words.at(3)), eud(words.at(4)), &problem_);
    throw std::runtime_error("unknown call " + call);
}

bool Document::Carry(const Words& words) {
    const std::string& call = words.at(0);
    if (call == "save") return Save(words);
    if (call == "assign") return Assign(words);
    auto* const profile = std::get_if<mox::Profile>(&content_);
    if (call == "form") {
        profile->setForm(words.at(1) == "1" ? mox::Form::Narrow : mox::Form::Wide);
        return true;
    }
    if (call == "sections") {
        // Each name once, and only those by which a section is found.
        std::set<std::string> names;
        for (const std::string& name : profile->sectionNames()) {
            if (names.insert(name).second && profile->findSection(name).has_value())
                result_ += Hex(name) + " ";
        }
        return true;
    }
    const std::string section = Unhex(words.at(1));
    if (call == "make_section") {
        mox::TableOptions options;
        options.editable = words.at(2) == "1";
        options.firstId = Number(words.at(3));
        options.type = static_cast<std::uint16_t>(Number(words.at(4)));
        return profile->makeSection(section, options, &problem_).has_value();
    }
    if (call == "remove_section") return profile->removeSection(section, &problem_);
    if (call == "write") return SetAs(words.at(3), section, Unhex(words.at(2)), words.at(4));
    if (call == "read") return ReadAs(words.at(3), section, Unhex(words.at(2)));
    if (call == "get") return Get(section, Unhex(words.at(2)));
    if (call == "contains") {
        const std::string name = Unhex(words.at(2));
        const bool found = profile != nullptr ? profile->contains(section, name)
                                              : std::get<mox::Table>(content_).contains(name);
        result_ = found ? "1" : "0";
        return true;
    }
    if (call == "remove" && words.at(3) == "-" && profile != nullptr)
        return profile->remove(section, Unhex(words.at(2)), &problem_);
    return WithEntries(section, [&](mox::EntryTable& entries) { return ChangeEntry(words, entries); });
}

std::string Document::Call(const Words& words) {
    problem_ = mox::Problem();
    result_.clear();
    if (Carry(words)) return "ok " + result_;
    // Of a value that does not suit the type of an entry, the package has its own message.
    const std::string message = words.at(0) == "assign" ? "" : problem_.message;
    return "failed " + std::to_string(static_cast<unsigned>(problem_.reason)) + " " + message;
}

// A document of a call that makes one.
Document Made(const Words& words) {
    const std::string& call = words.at(0);
    if (call == "new_settings") return Document(mox::Profile());
    if (call == "new_table") return Document(mox::Table::create(Unhex(words.at(1))));
    if (call == "parse_settings") return Document(mox::Profile::parse(Unhex(words.at(1))).value());
    return Document(mox::Table::parse(Unhex(words.at(1))).value());
}

}  // namespace

int main() {
    try {
        std::optional<Document> document;
        std::string line;
        while (std::getline(std::cin, line)) {
            std::istringstream in(line);
            Words words;
            for (std::string word; in >> word;)
                words.push_back(word);
            const bool isNew = words.at(0).rfind("new_", 0) == 0 || words.at(0).rfind("parse_", 0) == 0;
            if (isNew) {
                document.emplace(Made(words));
                std::cout << "ok\n";
            } else {
                std::cout << document->Call(words) << "\n";
            }
        }
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "front_replay: " << error.what() << "\n";
        return 1;
    }
}
