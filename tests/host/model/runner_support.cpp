#include "tests/host/model/runner_support.h"

#include <algorithm>
#include <array>
#include <sstream>

#include "tests/host/model/profile_support.h"
#include "tests/host/model/tables_support.h"

namespace host::model {
namespace {

// ---- Arguments
// -----------------------------------------------------------------------------------------------

// Turns the numbers of a call into arguments, one after the other.
class Arguments {
  public:
    explicit Arguments(const Call& call) : call_(call) {}

    unsigned Below(unsigned count) { return call_.picks[next_++] % count; }
    bool Flag() { return Below(2) == 1; }
    template <class Item, std::size_t Count>
    const Item& Pick(const std::array<Item, Count>& items) {
        return items[Below(Count)];
    }

  private:
    const Call& call_;
    std::size_t next_ = 0;
};

const std::array<Text, 6> kSections = {"S"_w, "T"_w, "U"_w, ""_w, "s"_w, "N"_w};
const std::array<Text, 7> kNames = {"a"_w, "b"_w, "A"_w, ""_w, "c"_w, Text(259, 'n'), u"\u00fc"_w};
const std::array<Text, 9> kKeys = {"a"_w,          "b"_w,       "A"_w,      ""_w,       "c"_w,
                                   Text(300, 'n'), u"\u00fc"_w, "nested"_w, u"\xDC00"_w};
const std::array<Text, 12> kTexts = {
    "12"_w,    ""_w,         "x<&>\"'"_w, "0aFfxx"_w,      "true"_w,
    " lead"_w, "one\ntwo"_w, "trail "_w,  "-2147483649"_w, u"\u00e9\u0101\U0001F600"_w,
    "  "_w,    "0x10"_w};
const Text kUnpaired = u"\xD800x"_w;
constexpr std::array<std::int32_t, 6> kFlags = {0, 1, 2, -1, 256, 1};
constexpr std::array<std::uint16_t, 14> kTypes = {3,      8, 31,     5,      0,      0x1003, 0x2008,
                                                  0x3005, 7, 0x201F, 0x1000, 0x4003, 17,     11};
constexpr std::array<std::uint16_t, 10> kMasks = {0, 2, 1, 4, 8, 6, 0x10, 0x12, 0xFFF0, 0xFFFF};
constexpr std::array<std::uint16_t, 8> kControls = {1, 0xFFFF, 2, 26, 3, 20, 0, 0xFFFE};
constexpr std::array<std::uint8_t, 7> kOwners = {0, 1, 2, 4, 3, 255, 5};
constexpr std::array<std::uint32_t, 5> kNumbers = {0, 7, 0x80000000, 0xFFFFFFFF, 0x7FFFFFFF};
constexpr std::array<std::int32_t, 6> kOccurrences = {-1, 0, 1, 2, 5, -2};

PlainValue PickValue(Arguments& arguments) {
    PlainValue record{arguments.Pick(kNames), 0, arguments.Pick(kTypes), arguments.Pick(kMasks)};
    record.id = arguments.Pick(kNumbers);
    const unsigned text = arguments.Below(kTexts.size() + 1);
    if (text < kTexts.size()) record.value = kTexts[text];
    return record;
}

PlainUi PickUi(Arguments& arguments) {
    PlainUi record;
    record.name = arguments.Pick(kNames);
    record.type = arguments.Pick(kTypes);
    const unsigned text = arguments.Below(kTexts.size() + 1);
    if (text < kTexts.size()) record.value = kTexts[text];
    record.control = arguments.Pick(kControls);
    record.index = arguments.Pick(kNumbers);
    record.owner = arguments.Pick(kOwners);
    const unsigned more = arguments.Below(7);
    if (more % 2 != 0) record.comment = more == 1 ? ""_w : "note"_w;
    if (more > 3) record.userName = more == 4 ? ""_w : "shown"_w;
    return record;
}

const wchar16* PointerTo(const std::optional<Text>& text) {
    return text ? text->c_str() : nullptr;
}

TableEntryValueInfoStruct Made(const PlainValue& plain) {
    TableEntryValueInfoStruct record;
    SetName(record, plain.name);
    record.id = plain.id;
    record.type = plain.type;
    record.writeMask = plain.mask;
    record.SetVal_w(PointerTo(plain.value));
    return record;
}

TableEntryUInfoStruct Made(const PlainUi& plain) {
    TableEntryUInfoStruct record;
    static_cast<TableEntryValueInfoStruct&>(record) = Made(static_cast<const PlainValue&>(plain));
    record.control = plain.control;
    record.prov_index = plain.index;
    record.prov_owner = plain.owner;
    record.SetComment_w(PointerTo(plain.comment));
    record.SetUserName_w(PointerTo(plain.userName));
    return record;
}

// Both records of a call, as the model has them and as the library gets them; either may be absent.
struct Records {
    bool hasValue;
    bool hasUi;
    PlainValue plainValue;
    PlainUi plainUi;
    TableEntryValueInfoStruct realValue;
    TableEntryUInfoStruct realUi;

    explicit Records(Arguments& arguments) {
        const unsigned which = arguments.Below(3);
        hasValue = which != 1;
        hasUi = which != 0;
        plainValue = PickValue(arguments);
        plainUi = PickUi(arguments);
        Make();
    }
    void Make() {
        realValue = Made(plainValue);
        realUi = Made(plainUi);
    }

    PlainValue* Value() { return hasValue ? &plainValue : nullptr; }
    PlainUi* Ui() { return hasUi ? &plainUi : nullptr; }
    TableEntryValueInfoStruct* RealValue() { return hasValue ? &realValue : nullptr; }
    TableEntryUInfoStruct* RealUi() { return hasUi ? &realUi : nullptr; }

    std::string Expected() const {
        return (hasValue ? "\n      value " + Show(plainValue) : "") +
               (hasUi ? "\n      ui " + Show(plainUi) : "");
    }
    std::string Actual() const {
        return (hasValue ? "\n      value " + Show(realValue) : "") +
               (hasUi ? "\n      ui " + Show(realUi) : "");
    }
};

std::string Said(const Text& text) {
    return "'" + Printable(text) + "'";
}

template <class... Parts>
std::string Say(const Parts&... parts) {
    std::ostringstream out;
    (out << ... << parts);
    return out.str();
}

// ---- The two sides
// ---------------------------------------------------------------------------------------

// One table handle on both sides, and a position in it.
struct Slot {
    void* handle = nullptr;
    std::weak_ptr<Node> table{};
    std::uint64_t position = 0;
    std::weak_ptr<Node> after{};

    // Before the first entry, also when the entry is gone.
    void ForgetLostPosition() {
        if (position != 0 && after.expired()) position = 0;
        if (position == 0) after.reset();
    }
};

class Runner {
  public:
    explicit Runner(const Sequence& sequence) { Begin(sequence); }
    ~Runner() {
        for (Slot& slot : slots_)
            xmlTableDispose(&slot.handle);
        xmlProfileDispose(&profile_);
    }
    Runner(const Runner&) = delete;
    Runner& operator=(const Runner&) = delete;

    void Do(const Call& call);
    void End();
    const Outcome& Result() const { return outcome_; }

  private:
    static constexpr unsigned kOwnTable = 0;

    void Begin(const Sequence& sequence);
    void Tell(const std::string& line);
    void Compare(const std::string& actual, const std::string& expected);

    // The slot of a table function: an open section, or the table.
    Slot& PickSlot(Arguments& arguments, std::string& name);
    void Fill(Slot& slot, void* handle, const NodePtr& table);
    void DropLostSections();
    void LoadTableDocument(const Text& text, std::int32_t size, const Text* name);
    void MakeTable(NodePtr document, const Text& name, bool withSchema);

    void OpenSection(Arguments arguments);
    void EnumSections(Arguments arguments);
    void WriteSection(Arguments arguments);
    void CloseSection(Arguments arguments);
    void GetInt(Arguments arguments);
    void GetString(Arguments arguments);
    void GetData(Arguments arguments);
    void WriteInt(Arguments arguments);
    void WriteString(Arguments arguments);
    void WriteData(Arguments arguments);
    void DeleteKey(Arguments arguments);
    void DeleteSection(Arguments arguments);
    void SaveProfile(Arguments arguments);
    void ReloadProfile(Arguments arguments);
    void NewTable(Arguments arguments);
    void ReloadTable(Arguments arguments);
    void SaveTable(Arguments arguments);
    void Get(Arguments arguments);
    void Exists(Arguments arguments);
    void Set(Arguments arguments);
    void Add(Arguments arguments);
    void Remove(Arguments arguments);
    void RemoveAll(Arguments arguments);
    void RestartPosition(Arguments arguments);

    moxSettings* profile_ = nullptr;
    std::optional<Profile> model_{};
    NodePtr tableDocument_{};
    std::array<Slot, 4> slots_{};
    Outcome outcome_{};
};

// The bytes of a file that a call may have written; "no file" when it did not.
std::string Written(const ScratchFile& file) {
    return file.Exists() ? file.Bytes() : "no file";
}

std::string ShownBytes(const std::string& bytes) {
    std::string shown;
    for (const char byte : bytes) {
        const auto unit = static_cast<unsigned char>(byte);
        if (unit == '\n' || unit == '\t' || (unit >= 0x20 && unit < 0x7F)) {
            shown += byte;
        } else if (unit != 0) {
            shown += "\\x" + Hex(unit).substr(2);
        }
    }
    return shown;
}

void Runner::Tell(const std::string& line) {
    ++outcome_.calls;
    outcome_.story += "  " + line + "\n";
}

void Runner::Compare(const std::string& actual, const std::string& expected) {
    if (actual == expected || !outcome_.agreed) return;
    outcome_.agreed = false;
    outcome_.story += "    gave     " + ShownBytes(actual) + "\n    expected " + ShownBytes(expected) + "\n";
}

void Runner::Begin(const Sequence& sequence) {
    const std::string settings = SettingsText(sequence.root, sequence.settings);
    const std::string table = TableText(sequence.table);
    outcome_.story = "settings\n" + ShownBytes(settings) + "\ntable\n" + ShownBytes(table) + "\ncalls\n";

    profile_ = xmlProfileNew(nullptr, settings.data(), static_cast<std::int32_t>(settings.size()), 0);
    const NodePtr document = Parse(FromNarrowBytes(settings));
    Compare(profile_ != nullptr ? "loaded" : "not loaded", document != nullptr ? "loaded" : "not loaded");
    model_.emplace(document);
    LoadTableDocument(FromNarrowBytes(table), static_cast<std::int32_t>(table.size()), nullptr);
}

// Both sides load from memory; the model's text is what the narrow bytes give. What fails is a new table.
void Runner::LoadTableDocument(const Text& text, std::int32_t size, const Text* name) {
    std::string bytes = NarrowBytes(text);
    Slot& slot = slots_[kOwnTable];
    xmlTableDispose(&slot.handle);
    slot = Slot();
    const wchar16* wanted = name == nullptr ? nullptr : name->c_str();
    slot.handle = xmlTableNew(nullptr, bytes.data(), size, wanted, 1, 1, 1, 1);
    const Text read = FromNarrowBytes(bytes);
    tableDocument_ = size == 0 ? nullptr : Parse(read);
    if (size == 0) {
        MakeTable(Parse(Wide("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n")),
                  name == nullptr ? "_MXTable_"_w : *name, true);
        SetAttribute(*slot.table.lock(), "first_id", "1"_w);
        SetAttribute(*slot.table.lock(), "type", "0001"_w);
        SetAttribute(*slot.table.lock(), "editable", "true"_w);
        return;
    }
    if (tableDocument_ != nullptr) {
        const NodePtr table = FindElement(*tableDocument_, "Table");
        if (table == nullptr) {
            MakeTable(tableDocument_, name == nullptr ? Text() : *name, true);
        } else if (name == nullptr || name->empty() || AttributeOf(*table, "name") == *name) {
            slot.table = table;
        } else {
            tableDocument_ = nullptr;
        }
    }
    Compare(slot.handle != nullptr ? "loaded" : "not loaded",
            tableDocument_ != nullptr ? "loaded" : "not loaded");
    if (slot.handle == nullptr || tableDocument_ == nullptr) {
        xmlTableDispose(&slot.handle);
        slot.handle = xmlTableNew(nullptr, nullptr, 0, nullptr, 0, 0, 0, 0);
        MakeTable(Parse(Text()), "_MXTable_"_w, false);
    }
}

void Runner::MakeTable(NodePtr document, const Text& name, bool withSchema) {
    tableDocument_ = std::move(document);
    const NodePtr table = NewElement("Table");
    if (withSchema) SetAttribute(*table, "xmlns:noNamespaceSchemaLocation", Wide("MXTable.xsd"));
    SetAttribute(*table, "name", name);
    tableDocument_->children.push_back(table);
    slots_[kOwnTable].table = table;
}

Slot& Runner::PickSlot(Arguments& arguments, std::string& name) {
    unsigned number = arguments.Below(4);
    if (slots_[number].handle == nullptr) number = kOwnTable;
    name = number == kOwnTable ? "table" : "section " + std::to_string(number);
    slots_[number].ForgetLostPosition();
    return slots_[number];
}

void Runner::Fill(Slot& slot, void* handle, const NodePtr& table) {
    xmlTableDispose(&slot.handle);
    slot = Slot{handle, table};
    Compare(handle != nullptr ? "a handle" : "null", table != nullptr ? "a handle" : "null");
    if (handle == nullptr || table == nullptr) {
        xmlTableDispose(&slot.handle);
        slot = Slot();
    }
}

void Runner::DropLostSections() {
    for (Slot& slot : slots_) {
        if (slot.handle == nullptr || !slot.table.expired()) continue;
        xmlTableDispose(&slot.handle);
        slot = Slot();
    }
}

// ---- Sections
// ------------------------------------------------------------------------------------------------

Slot& SectionSlot(std::array<Slot, 4>& slots, Arguments& arguments, std::string& name) {
    const unsigned number = 1 + arguments.Below(3);
    name = "section " + std::to_string(number);
    return slots[number];
}

void Runner::OpenSection(Arguments arguments) {
    std::string slotName;
    Slot& slot = SectionSlot(slots_, arguments, slotName);
    const Text& name = arguments.Pick(kSections);
    Tell(Say(slotName, " = xmlGetProfileSection ", Said(name)));
    std::uint32_t editable = 7;
    void* handle = xmlGetProfileSection(profile_, name.c_str(), &editable);
    const NodePtr table = model_->Section(name);
    Compare(Say("editable ", editable),
            Say("editable ", table == nullptr || HasAttribute(*table, "editable", "true") ? 1 : 0));
    Fill(slot, handle, table);
}

void Runner::EnumSections(Arguments arguments) {
    std::string slotName;
    Slot& slot = SectionSlot(slots_, arguments, slotName);
    const unsigned kept = arguments.Below(3);
    const unsigned length = arguments.Pick(std::array<unsigned, 4>{300, 1, 2, 8});
    Tell(Say(slotName, " = number ", kept, " of xmlEnumProfileSections, names of ", length));
    std::uintptr_t position = 0;
    NodePtr current;
    NodePtr keptTable;
    void* keptHandle = nullptr;
    for (unsigned number = 0; outcome_.agreed; ++number) {
        Text name(length, 'x');
        std::uint32_t editable = 7;
        void* handle = xmlEnumProfileSections(profile_, &position, name.data(), length, &editable);
        current = NextElement(model_->Root(), current.get());
        Text expected(length, 'x');
        if (current != nullptr) {
            expected = AttributeOf(*current, "name").substr(0, length - 1);
            expected.resize(length, 0);
        } else {
            expected[0] = 0;
        }
        Compare(Say(handle != nullptr, " ", Said(name), " ", editable),
                Say(current != nullptr, " ", Said(expected), " ",
                    current == nullptr || HasAttribute(*current, "editable", "true") ? 1 : 0));
        if (number == kept && handle != nullptr) {
            keptHandle = handle;
            keptTable = current;
        } else {
            xmlTableDispose(&handle);
        }
        if (current == nullptr) break;
    }
    Compare(Say("position ", position), "position 0");
    Fill(slot, keptHandle, keptTable);
}

void Runner::WriteSection(Arguments arguments) {
    std::string slotName;
    Slot& slot = SectionSlot(slots_, arguments, slotName);
    const Text& name = arguments.Pick(kSections);
    const std::uint32_t editable = arguments.Pick(std::array<std::uint32_t, 3>{0, 1, 5});
    const std::uint32_t firstId = arguments.Pick(kNumbers);
    const std::uint32_t type = arguments.Pick(std::array<std::uint32_t, 4>{0, 10, 0x1FFFF, 0xABCD});
    Tell(Say(slotName, " = xmlWriteProfileSection ", Said(name), " editable ", editable, " first id ",
             firstId, " type ", type));
    std::uint32_t eud = 7;
    void* handle = xmlWriteProfileSection(profile_, name.c_str(), editable, firstId, type, &eud);
    bool marked = false;
    const NodePtr table =
        model_->WriteSection(name, editable != 0, firstId, static_cast<std::uint16_t>(type & 0xFFFF), marked);
    Compare(Say("eud ", eud), Say("eud ", marked ? 1 : 0));
    Fill(slot, handle, table);
}

void Runner::CloseSection(Arguments arguments) {
    std::string slotName;
    Slot& slot = SectionSlot(slots_, arguments, slotName);
    if (slot.handle == nullptr) return;
    Tell(Say("xmlTableDispose ", slotName));
    xmlTableDispose(&slot.handle);
    Compare(slot.handle == nullptr ? "null" : "not null", "null");
    slot = Slot();
}

// ---- Keys
// ----------------------------------------------------------------------------------------------------

void Runner::GetInt(Arguments arguments) {
    const Text& section = arguments.Pick(kSections);
    const Text& key = arguments.Pick(kKeys);
    Tell(Say("xmlGetProfileInt ", Said(section), " ", Said(key)));
    const std::optional<Text> value = model_->Read(section, key);
    const std::int32_t expected = value && !value->empty() ? ReadSigned(*value) : -99;
    Compare(Say(xmlGetProfileInt(profile_, section.c_str(), key.c_str(), -99)), Say(expected));
}

// What a buffer of this length holds after a text was copied into it.
Text Copied(const Text& text, std::size_t length) {
    Text buffer = text.substr(0, length - 1);
    buffer.resize(length, 0);
    return buffer;
}

void Runner::GetString(Arguments arguments) {
    const Text& section = arguments.Pick(kSections);
    const Text& key = arguments.Pick(kKeys);
    const unsigned length = arguments.Pick(std::array<unsigned, 5>{300, 0, 1, 2, 4});
    const unsigned defaultNumber = arguments.Below(3);
    const Text defaultText = defaultNumber == 1 ? "d"_w : "default"_w;
    const wchar16* given = defaultNumber == 0 ? nullptr : defaultText.c_str();
    Tell(Say("xmlGetProfileString ", Said(section), " ", Said(key), " length ", length, " default ",
             given == nullptr ? "null" : Said(defaultText)));

    // Length 0 stands for no destination.
    Text buffer(300, 'x');
    wchar16* destination = length == 0 ? nullptr : buffer.data();
    const std::uint32_t result =
        xmlGetProfileString(profile_, section.c_str(), key.c_str(), destination, length, given);

    Text expected(300, 'x');
    std::size_t expectedResult = 0;
    const auto copy = [&](const Text& text) {
        expected.replace(0, length, Copied(text, length));
        expectedResult = Text(expected.c_str()).size();
    };
    if (length != 0 && given != nullptr) copy(defaultText);
    const std::optional<Text> value = model_->Read(section, key);
    if (value && value->empty()) expectedResult = 0;
    if (value && !value->empty() && length != 0) copy(*value);
    if (value && !value->empty() && length == 0) expectedResult = value->size();
    Compare(Say(result, " ", Said(buffer)), Say(expectedResult, " ", Said(expected)));
}

void Runner::GetData(Arguments arguments) {
    const Text& section = arguments.Pick(kSections);
    const Text& key = arguments.Pick(kKeys);
    const unsigned size = arguments.Pick(std::array<unsigned, 4>{100, 0, 1, 2});
    Tell(Say("xmlGetProfileData ", Said(section), " ", Said(key), " size ", size));
    std::string bytes(101, 'x');
    const std::uint32_t result =
        xmlGetProfileData(profile_, section.c_str(), key.c_str(), bytes.data(), size);
    const std::optional<Text> value = model_->Read(section, key);
    const std::string expected = value && HasNarrowForm(*value) ? BytesOf(*value, size) : "";
    Compare(Say(result, bytes), Say(expected.size(), expected, std::string(101 - expected.size(), 'x')));
}

void Runner::WriteInt(Arguments arguments) {
    const Text& section = arguments.Pick(kSections);
    const Text& key = arguments.Pick(kKeys);
    const auto number = static_cast<std::int32_t>(arguments.Pick(kNumbers));
    Tell(Say("xmlWriteProfileInt ", Said(section), " ", Said(key), " ", number));
    const bool written = model_->Write(section, key, SignedText(static_cast<std::uint32_t>(number)));
    Compare(Say(xmlWriteProfileInt(profile_, section.c_str(), key.c_str(), number)), Say(written ? 1 : 0));
}

void Runner::WriteString(Arguments arguments) {
    const Text& section = arguments.Pick(kSections);
    const Text& key = arguments.Pick(kKeys);
    const unsigned number = arguments.Below(kTexts.size() + 1);
    const Text& text = number < kTexts.size() ? kTexts[number] : kUnpaired;
    Tell(Say("xmlWriteProfileString ", Said(section), " ", Said(key), " ", Said(text)));
    const bool written = model_->Write(section, key, text);
    Compare(Say(xmlWriteProfileString(profile_, section.c_str(), key.c_str(), text.c_str())),
            Say(written ? 1 : 0));
}

void Runner::WriteData(Arguments arguments) {
    const Text& section = arguments.Pick(kSections);
    const Text& key = arguments.Pick(kKeys);
    const unsigned size = arguments.Below(4);
    Tell(Say("xmlWriteProfileData ", Said(section), " ", Said(key), " size ", size));
    const bool written = model_->Write(section, key, Wide(std::string_view("01ABFF").substr(0, 2 * size)));
    const std::uint32_t result =
        xmlWriteProfileData(profile_, section.c_str(), key.c_str(), "\x01\xAB\xFF", size);
    Compare(Say(result), Say(written ? 1 : 0));
}

void Runner::DeleteKey(Arguments arguments) {
    const Text& section = arguments.Pick(kSections);
    const Text& key = arguments.Pick(kKeys);
    const bool asData = arguments.Flag();
    Tell(Say("xmlWriteProfile", asData ? "Data " : "String ", Said(section), " ", Said(key), " null"));
    const bool removed = model_->DeleteKey(section, key);
    const std::uint32_t result = asData
                                     ? xmlWriteProfileData(profile_, section.c_str(), key.c_str(), nullptr, 3)
                                     : xmlWriteProfileString(profile_, section.c_str(), key.c_str(), nullptr);
    Compare(Say(result), Say(removed ? 1 : 0));
}

void Runner::DeleteSection(Arguments arguments) {
    const Text& section = arguments.Pick(kSections);
    const unsigned function = arguments.Below(3);
    Tell(Say("xmlWriteProfile", std::array{"Int ", "String ", "Data "}[function], Said(section), " null"));
    const bool removed = model_->DeleteSection(section);
    const std::uint32_t result = function == 0 ? xmlWriteProfileInt(profile_, section.c_str(), nullptr, 1)
                                 : function == 1
                                     ? xmlWriteProfileString(profile_, section.c_str(), nullptr, "v"_w)
                                     : xmlWriteProfileData(profile_, section.c_str(), nullptr, "v", 1);
    Compare(Say(result), Say(removed ? 1 : 0));
    DropLostSections();
}

// ---- Documents
// -----------------------------------------------------------------------------------------------

void Runner::SaveProfile(Arguments arguments) {
    const std::uint32_t mode = arguments.Below(4);
    const std::int32_t second = arguments.Pick(kFlags);
    const std::uint32_t first = arguments.Pick(std::array<std::uint32_t, 5>{0, 0, 2, 0, 1});
    Tell(Say("xmlProfileSave mode ", mode, " first ", first, " second ", second));
    const ScratchFile file;
    const std::uint32_t result = xmlProfileSave(profile_, file.Name(), mode, first, second);
    if (mode == 0) model_->StripMarks();
    const Text text = mode == 0 ? model_->Text0() : model_->Export(mode);
    const std::string bytes = second == 1 ? WideBytes(text) : NarrowBytes(text);
    Compare(Say(result, "\n", Written(file)), Say(first == 1 ? 0 : 1, "\n", first == 1 ? "no file" : bytes));
}

void Runner::ReloadProfile(Arguments arguments) {
    const bool wide = arguments.Flag();
    Tell(Say("save and load the profile, ", wide ? "wide" : "narrow"));
    for (unsigned number = 1; number < slots_.size(); ++number) {
        xmlTableDispose(&slots_[number].handle);
        slots_[number] = Slot();
    }
    const ScratchFile file;
    xmlProfileSave(profile_, file.Name(), 0, 0, wide ? 1 : 0);
    xmlProfileDispose(&profile_);
    profile_ = xmlProfileNew(file.Name(), nullptr, 0, wide ? 1 : 0);
    model_->StripMarks();
    const Text text = model_->Text0();
    const NodePtr document =
        Parse(wide ? FromWideBytes(WideBytes(text)) : FromNarrowBytes(NarrowBytes(text)));
    Compare(profile_ != nullptr ? "loaded" : "not loaded", document != nullptr ? "loaded" : "not loaded");
    if (profile_ == nullptr || document == nullptr) {
        xmlProfileDispose(&profile_);
        profile_ = xmlProfileNew(nullptr, nullptr, 0, 0);
        model_.emplace();
    } else {
        model_.emplace(document);
    }
}

void Runner::NewTable(Arguments arguments) {
    const unsigned nameNumber = arguments.Below(4);
    const Text name = std::array<Text, 4>{"_MXTable_"_w, "N"_w, ""_w, u"<\u0101>"_w}[nameNumber];
    const std::int32_t newDocument = arguments.Pick(kFlags);
    const std::int32_t editable = arguments.Pick(kFlags);
    const std::uint32_t firstId = arguments.Pick(kNumbers);
    const std::uint16_t type = arguments.Pick(kTypes);
    Tell(Say("table = xmlTableNew ", nameNumber == 0 ? "null" : Said(name), " editable ", editable,
             " first id ", firstId, " type ", type, " document ", newDocument));
    Slot& slot = slots_[kOwnTable];
    xmlTableDispose(&slot.handle);
    slot = Slot();
    slot.handle = xmlTableNew(nullptr, nullptr, 5, nameNumber == 0 ? nullptr : name.c_str(), editable,
                              firstId, type, newDocument);
    MakeTable(Parse(newDocument == 1 ? Wide("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n") : Text()), name,
              newDocument == 1);
    const NodePtr table = slot.table.lock();
    if (firstId != 0) SetAttribute(*table, "first_id", UnsignedText(firstId));
    if (type != 0) SetAttribute(*table, "type", HexText(type));
    if (editable == 1) SetAttribute(*table, "editable", Wide("true"));
}

void Runner::ReloadTable(Arguments arguments) {
    const unsigned nameNumber = arguments.Below(4);
    const Text name = std::array<Text, 4>{""_w, "S"_w, "T"_w, ""_w}[nameNumber];
    const std::int32_t size = arguments.Pick(std::array<std::int32_t, 4>{-1, 2147483647, 0, 40});
    Tell(Say("load the table from memory, name ", nameNumber == 0 ? "null" : Said(name), " size ", size));
    Text text = Written(*tableDocument_);
    if (size > 0) text = text.substr(0, static_cast<std::size_t>(size));
    LoadTableDocument(text, size, nameNumber == 0 ? nullptr : &name);
}

void Runner::SaveTable(Arguments arguments) {
    std::string slotName;
    const Slot& slot = PickSlot(arguments, slotName);
    const std::int32_t reserved = arguments.Pick(std::array<std::int32_t, 5>{0, 0, 0, 0, 1});
    const std::int32_t flag = arguments.Pick(kFlags);
    Tell(Say("xmlTableSave ", slotName, " reserved ", reserved, " flag ", flag));
    const ScratchFile file;
    const bool saved = xmlTableSave(slot.handle, file.Name(), reserved, flag);
    const bool writes = reserved == 0 && flag != 1;
    const bool isOwn = &slot == &slots_[kOwnTable];
    const Text text = model::Written(isOwn ? *tableDocument_ : *slot.table.lock());
    Compare(Say(saved, "\n", Written(file)), Say(writes, "\n", writes ? WideBytes(text) : "no file"));
}

// ---- Entries
// -------------------------------------------------------------------------------------------------

// Whether the position moved, on both sides.
std::string Moved(bool moved) {
    return moved ? " moved" : " stayed";
}

void Runner::Get(Arguments arguments) {
    std::string slotName;
    Slot& slot = PickSlot(arguments, slotName);
    const unsigned how = arguments.Below(4);  // 0 and 1: by position, 2: all bits set, 3: null
    Records records(arguments);
    if (how >= 2 && !records.hasValue) records.hasValue = arguments.Flag();
    Tell(Say("xmlTableEntryGet ", slotName,
             how < 2    ? " by position"
             : how == 2 ? " all bits set"
                        : " null",
             records.Expected()));
    Place place{how >= 2, slot.after.lock()};
    std::uint64_t position = how == 2 ? kByName : slot.position;
    const std::uint64_t before = position;
    const bool result =
        xmlTableEntryGet(slot.handle, how == 3 ? nullptr : &position, records.RealValue(), records.RealUi());
    const bool expected = model::Get(*slot.table.lock(), place, records.Value(), records.Ui());
    Compare(Say(result, Moved(position != before), records.Actual()),
            Say(expected, Moved(place.after != slot.after.lock()), records.Expected()));
    if (how >= 2) return;
    slot.position = position;
    slot.after = place.after;
}

void Runner::Exists(Arguments arguments) {
    std::string slotName;
    const Slot& slot = PickSlot(arguments, slotName);
    const Text& name = arguments.Pick(kNames);
    Tell(Say("xmlTableEntryIsExist ", slotName, " ", Said(name)));
    const TableEntryBaseInfoStruct record = NameRecord(name.c_str());
    Compare(Say(xmlTableEntryIsExist(slot.handle, &record)),
            Say(FindEntry(*slot.table.lock(), name) != nullptr));
}

void Runner::Set(Arguments arguments) {
    std::string slotName;
    Slot& slot = PickSlot(arguments, slotName);
    const bool byPosition = arguments.Flag();
    const std::int32_t force = arguments.Pick(kFlags);
    const std::int32_t mark = arguments.Pick(kFlags);
    Records records(arguments);
    Tell(Say("xmlTableEntrySet ", slotName, byPosition ? " by position" : " by name", " force ", force,
             " mark ", mark, records.Expected()));
    Place place{!byPosition, slot.after.lock()};
    std::uint64_t position = slot.position;
    const bool result = xmlTableEntrySet(slot.handle, byPosition ? &position : nullptr, records.RealValue(),
                                         records.RealUi(), force, mark);
    const bool expected =
        model::Set(*slot.table.lock(), place, records.Value(), records.Ui(), force == 1, mark == 1);
    Compare(Say(result, Moved(position != slot.position), records.Actual()),
            Say(expected, Moved(place.after != slot.after.lock()), records.Expected()));
    slot.position = position;
    slot.after = place.after;
}

void Runner::Add(Arguments arguments) {
    std::string slotName;
    Slot& slot = PickSlot(arguments, slotName);
    const unsigned how = arguments.Below(3);  // 0: null, 1: 0, 2: the position
    const std::int32_t mark = arguments.Pick(kFlags);
    const std::int32_t update = arguments.Pick(kFlags);
    Records records(arguments);
    // A presentation record alone brings its own text only when it is wide.
    if (!records.hasValue && records.plainUi.control != 0xFFFF) records.plainUi.type = 31;
    records.Make();
    Tell(Say("xmlTableEntryAdd ", slotName,
             how == 0   ? " null"
             : how == 1 ? " 0"
                        : " at the position",
             " mark ", mark, " update ", update, records.Expected()));
    const std::uint64_t before = how == 2 ? slot.position : 0;
    std::uint64_t position = before;
    const bool result = xmlTableEntryAdd(slot.handle, how == 0 ? nullptr : &position, records.RealValue(),
                                         records.RealUi(), mark, update);
    const NodePtr sibling = how == 2 ? slot.after.lock() : nullptr;
    const bool expected =
        model::Add(*slot.table.lock(), sibling.get(), records.Value(), records.Ui(), mark == 1, update == 1);
    Compare(Say(result, Moved(position != before), records.Actual()),
            Say(expected, Moved(false), records.Expected()));
}

void Runner::Remove(Arguments arguments) {
    std::string slotName;
    const Slot& slot = PickSlot(arguments, slotName);
    const Text& name = arguments.Pick(kNames);
    const std::int32_t occurrence = arguments.Pick(kOccurrences);
    const std::int32_t all = arguments.Pick(kFlags);
    Tell(Say("xmlTableRemoveEntry ", slotName, " ", Said(name), " occurrence ", occurrence, " all ", all));
    const TableEntryBaseInfoStruct record = NameRecord(name.c_str());
    const bool expected = RemoveEntries(*slot.table.lock(), name, occurrence, all != 0);
    Compare(Say(xmlTableRemoveEntry(slot.handle, &record, occurrence, all)), Say(expected));
}

void Runner::RemoveAll(Arguments arguments) {
    std::string slotName;
    const Slot& slot = PickSlot(arguments, slotName);
    Tell(Say("xmlTableRemoveEntries ", slotName));
    RemoveVars(*slot.table.lock());
    Compare(Say(xmlTableRemoveEntries(slot.handle)), Say(true));
}

void Runner::RestartPosition(Arguments arguments) {
    std::string slotName;
    Slot& slot = PickSlot(arguments, slotName);
    Tell(Say("position of ", slotName, " = 0"));
    slot.position = 0;
    slot.after.reset();
}

void Runner::Do(const Call& call) {
    using Step = void (Runner::*)(Arguments);
    constexpr std::array<Step, static_cast<std::size_t>(Op::Count)> steps = {
        &Runner::OpenSection, &Runner::EnumSections,  &Runner::WriteSection, &Runner::CloseSection,
        &Runner::GetInt,      &Runner::GetString,     &Runner::GetData,      &Runner::WriteInt,
        &Runner::WriteString, &Runner::WriteData,     &Runner::DeleteKey,    &Runner::DeleteSection,
        &Runner::SaveProfile, &Runner::ReloadProfile, &Runner::NewTable,     &Runner::ReloadTable,
        &Runner::SaveTable,   &Runner::Get,           &Runner::Exists,       &Runner::Set,
        &Runner::Add,         &Runner::Remove,        &Runner::RemoveAll,    &Runner::RestartPosition};
    (this->*steps[static_cast<std::size_t>(call.op)])(Arguments(call));
}

// Both documents, whole.
void Runner::End() {
    SaveProfile(Arguments(Call{Op::SaveProfile, {0, 1}}));
    SaveTable(Arguments(Call{Op::SaveTable}));
}

}  // namespace

Outcome Run(const Sequence& sequence) {
    Runner runner(sequence);
    for (const Call& call : sequence.calls) {
        if (!runner.Result().agreed) break;
        runner.Do(call);
    }
    if (runner.Result().agreed) runner.End();
    return runner.Result();
}

}  // namespace host::model
