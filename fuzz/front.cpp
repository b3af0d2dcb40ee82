// Writes through the C++ front: a write that succeeds is what the same object reads back, a write that is refused changes
// nothing, and what was written is there when the saved file is opened, in both forms.
//
// The input: a digit that chooses the form and where the document comes from, for some of them the document up to a zero
// byte, then calls. Each call is a letter or any other byte, then its arguments as fuzz_input.h describes them.
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "fuzz/fuzz_input.h"
#include "fuzz/work.h"
#include "mox_xmlApi/mox_xmlApi.hpp"

namespace mox::fuzz {
namespace {

constexpr std::size_t kMostCalls = 60;

// S keeps its values in the entries, U in the presentation data.
constexpr std::string_view kDocument =
    "<Settings xmlns:noNamespaceSchemaLocation=\"MXSettings.xsd\"><Table name=\"S\">"
    "<Var name=\"A\" type=\"long\" id=\"4\" eud=\"true\"><Value>1</Value><UI control=\"num\" "
    "prov_index=\"7\" "
    "prov_owner=\"app\" name=\"shown\" minVal=\"0\"><Comment>comment</Comment><Value>2</Value></UI></Var>"
    "<Var name=\"B\" type=\"string\"><Value>3</Value><UI control=\"text\" name=\"shown\"/></Var>"
    "<!-- C --><Var name=\"C\" type=\"ucstring\"/><Var name=\"D\"/></Table><Table name=\"U\">"
    "<Var name=\"A\" type=\"long\"><UI control=\"num\" prov_index=\"7\"><Value>1</Value></UI></Var>"
    "<Var name=\"B\" type=\"bool\"><UI control=\"switch\"><Comment>c</Comment><Value>0</Value></UI></Var>"
    "<Var name=\"C\" type=\"double\"><Value>0.5</Value></Var></Table></Settings>\n";

std::string Shown(const Entry& entry) {
    std::string text = entry.name + " #" + std::to_string(entry.id) + " " +
                       std::to_string(static_cast<int>(entry.type)) + "/" +
                       std::to_string(static_cast<int>(entry.shape)) + " '" + entry.value.value_or("?") + "'";
    if (!entry.ui.has_value()) return text;
    const Presentation& ui = *entry.ui;
    return text + " " + std::to_string(static_cast<int>(ui.control)) + " " +
           std::to_string(ui.providerIndex) + "/" + std::to_string(static_cast<int>(ui.providerOwner)) +
           " '" + ui.shownName + "' '" + ui.comment + "' '" + ui.value.value_or("?") + "'";
}

// All that can be read of the document.
std::string Shown(const Profile& profile) {
    std::string text;
    for (const Section& section : profile.sections()) {
        text += "[" + section.name() + "] " + std::to_string(section.countUnreadable()) + "\n";
        for (const Entry& entry : section.entries()) {
            text += Shown(entry);
            // Names in records are cut; the value is then that of the first one with the name.
            text += " = " + profile.getString(section.name(), entry.name).value_or("?") + "\n";
        }
    }
    return text;
}

class Writer {
  public:
    Writer(const std::uint8_t* data, std::size_t size) : input_(data, size) {}

    void Run() {
        Open();
        for (std::size_t i = 0; i < kMostCalls && !input_.IsEmpty(); ++i) {
            const std::string before = Shown(*profile_);
            problem_ = Problem();

            const std::uint64_t work = WorkDone();
            const bool isDone = Call();
            CheckWork(WorkDone() - work, 4 * before.size(), "a call");  // it makes some more

            Check(isDone != static_cast<bool>(problem_), "a call that fails says why, and no other does");
            Check(!problem_ || !problem_.message.empty(), "a problem has a message");
            Check(isDone || Shown(*profile_) == before, "a call that fails changes nothing");
        }
        Reopen();
    }

  private:
    // ---- the document

    static OpenOptions As(Form form) {
        OpenOptions options;
        options.form = form;
        return options;
    }

    void Open() {
        const std::size_t option = input_.Below(6);
        const Form form = option % 2 == 0 ? Form::Wide : Form::Narrow;
        std::optional<Profile> opened;
        if (option / 2 == 1) opened = Profile::parse(kDocument);
        if (option / 2 == 2) {
            const std::string text(input_.Until('\0'));
            opened = Profile::parse(text);
        }
        profile_ = opened.has_value() ? std::move(*opened) : Profile();
        profile_->setForm(form);
        if (!IsKept()) profile_ = Profile();
        profile_->setForm(form);
    }

    Profile Saved() const {
        const std::optional<std::string> bytes = profile_->toBytes(profile_->form());
        Check(bytes.has_value(), "the document is saved");
        std::optional<Profile> opened = Profile::parse(*bytes, As(profile_->form()));
        Check(opened.has_value(), "what was saved can be opened");
        return std::move(*opened);
    }

    // Of a document that was not written here: whether it is the same after a save.
    bool IsKept() const {
        const std::optional<std::string> bytes = profile_->toBytes(profile_->form());
        if (!bytes.has_value()) return false;
        const std::optional<Profile> opened = Profile::parse(*bytes, As(profile_->form()));
        return opened.has_value() && Shown(*opened) == Shown(*profile_);
    }

    void Reopen() {
        const std::string before = Shown(*profile_);
        Profile opened = Saved();
        Check(Shown(opened) == before, "what was written is in the saved file");
        profile_ = std::move(opened);
    }

    // ---- arguments

    Text Name() {
        constexpr const char* kNames[] = {"S", "U", "A", "B", "C", "D", "E"};
        const std::size_t number = input_.Below(8);
        return number < std::size(kNames) ? Text(kNames[number]) : Text(input_.Text());
    }

    std::u16string Units() {
        const WideString text = input_.Text();
        return {text.begin(), text.end()};
    }

    std::optional<Section> AnySection() { return profile_->findSection(Name(), &problem_); }

    Entry16 AnyEntry() {
        constexpr ValueType kTypes[] = {ValueType::String, ValueType::Long, ValueType::UcString,
                                        ValueType::Double, static_cast<ValueType>(99)};
        Entry16 entry;
        entry.name = front::StringOf<std::u16string>(Name().units());
        if (input_.Flag()) entry.value = Units();
        entry.type = kTypes[input_.Below(std::size(kTypes))];
        if (input_.Flag()) entry.shape = Shape::Array;
        if (input_.Flag()) entry.id = input_.Number();
        if (!input_.Flag()) return entry;
        entry.ui.emplace();
        entry.ui->control = static_cast<Control>(input_.Below(22));
        entry.ui->providerIndex = input_.Flag() ? input_.Number() : 0;
        entry.ui->providerOwner = static_cast<Owner>(input_.Below(5));
        if (input_.Flag()) entry.ui->shownName = Units();
        if (input_.Flag()) entry.ui->comment = Units();
        if (input_.Flag()) entry.ui->value = Units();
        return entry;
    }

    // ---- calls

    bool Call() {
        switch (input_.Below(16)) {
            case 0:
                return SetString();
            case 1:
                return SetNumber();
            case 2:
                return SetData();
            case 3:
                return profile_->remove(Name(), Name(), &problem_);
            case 4:
                return profile_->removeSection(Name(), &problem_);
            case 5:
                return profile_->makeSection(Name(), {input_.Flag(), input_.Number()}, &problem_).has_value();
            case 6:
                return Add();
            case 7:
                return Put();
            case 8:
                return SetValue();
            case 9:
                return SetTyped();
            case 10:
                return Rename();
            case 11:
                return SetField();
            case 12:
                return SetProvider();
            case 13:
                return SetEud();
            case 14:
                return Remove();
            default:
                Reopen();
                return true;
        }
    }

    bool SetString() {
        const Text section = Name();
        const Text key = Name();
        const std::u16string value = Units();
        if (!profile_->setString(section, key, value, &problem_)) return false;
        Check(profile_->getString16(section, key) == value, "a text is read as it was written");
        return true;
    }

    template <class T>
    bool SetNumberOf(T value) {
        const Text section = Name();
        const Text key = Name();
        if (!profile_->set(section, key, value, &problem_)) return false;
        Check(profile_->get<T>(section, key) == value, "a number is read as it was written");
        return true;
    }

    bool SetNumber() {
        const std::uint32_t low = input_.Number();
        const std::uint64_t number = std::uint64_t{low} << 32 | input_.Number();
        switch (input_.Below(6)) {
            case 0:
                return SetNumberOf((low & 1) != 0);
            case 1:
                return SetNumberOf(static_cast<std::int32_t>(low));
            case 2:
                return SetNumberOf(low);
            case 3:
                return SetNumberOf(static_cast<std::int64_t>(number));
            case 4:
                return SetNumberOf(static_cast<double>(number) / 7);
            default:
                return SetNumberOf(number);
        }
    }

    bool SetData() {
        const Text section = Name();
        const Text key = Name();
        const std::string_view bytes = input_.Until('.');
        const std::vector<std::uint8_t> data(bytes.begin(), bytes.end());
        if (!profile_->setData(section, key, data, &problem_)) return false;
        Check(profile_->getData(section, key) == data, "bytes are read as they were written");
        return true;
    }

    static bool HoldsText(const std::u16string& asked, const std::u16string& read) {
        return asked.empty() || asked == read;
    }

    // Whether the entry has what was asked. Its value may be in its presentation data.
    static void CheckEntry(const Section& section, const Entry16& asked) {
        const std::optional<Entry16> read = section.find16(asked.name);
        Check(read.has_value(), "an entry that was written is there");
        Check(read->type == asked.type && read->shape == asked.shape, "it has its type");
        Check(asked.id == 0 || read->id == asked.id, "it has its id");
        const bool isInUi =
            read->value == std::u16string() && read->ui.has_value() && read->ui->value == asked.value;
        Check(!asked.value.has_value() || read->value == asked.value || isInUi, "it has its value");
        if (!asked.ui.has_value()) return;
        Check(read->ui.has_value(), "it has presentation data");
        const Control control = asked.ui->control == Control::None ? Control::Text : asked.ui->control;
        Check(read->ui->control == control, "they have their control");
        Check(asked.ui->providerIndex == 0 || read->ui->providerIndex == asked.ui->providerIndex,
              "they have their provider's index");
        Check(asked.ui->providerOwner == Owner::None || read->ui->providerOwner == asked.ui->providerOwner,
              "they have their provider's owner");
        Check(HoldsText(asked.ui->shownName, read->ui->shownName), "they have their displayed name");
        Check(HoldsText(asked.ui->comment, read->ui->comment), "they have their comment");
        Check(!asked.ui->value.has_value() || read->ui->value == asked.ui->value, "they have their value");
    }

    bool Add() {
        std::optional<Section> section = AnySection();
        if (!section.has_value()) return false;
        const Eud eud = input_.Flag() ? Eud::Set : Eud::DoNotSet;
        const bool isBefore = input_.Flag();
        const Entry16 entry = AnyEntry();
        const bool isDone = isBefore ? section->addBefore(Name(), entry, eud, &problem_)
                                     : section->add(entry, eud, &problem_);
        if (isDone) CheckEntry(*section, entry);
        return isDone;
    }

    bool Put() {
        std::optional<Section> section = AnySection();
        if (!section.has_value()) return false;
        const Entry16 entry = AnyEntry();
        if (!section->put(entry, input_.Flag() ? Eud::Set : Eud::DoNotSet, &problem_)) return false;
        CheckEntry(*section, entry);
        return true;
    }

    bool SetValue() {
        std::optional<Section> section = AnySection();
        if (!section.has_value()) return false;
        const Text name = Name();
        const std::u16string value = Units();
        const bool isDone = input_.Flag() ? section->setValue(name, value, Eud::DoNotSet, &problem_)
                                          : section->setValueUnlessEud(name, value, Eud::Set, &problem_);
        if (!isDone) return false;
        const Entry16 read = *section->find16(name);
        const bool isInUi = read.value == std::u16string() && read.ui.has_value() && read.ui->value == value;
        Check(read.value == value || isInUi, "a value is read as it was written");
        return true;
    }

    bool SetTyped() {
        std::optional<Section> section = AnySection();
        if (!section.has_value()) return false;
        const Text name = Name();
        const std::u16string value = Units();
        if (!section->set(name, value, &problem_)) return false;
        Check(section->get<std::u16string>(name) == value, "a text of an entry is read as it was written");
        return true;
    }

    bool Rename() {
        std::optional<Section> section = AnySection();
        if (!section.has_value()) return false;
        const Text name = Name();
        const Text newName = Name();
        const std::optional<Entry> before = section->find(name);
        if (!section->rename(name, newName, &problem_)) return false;
        Entry after = *section->find(newName);
        after.name = before->name;
        Check(Shown(after) == Shown(*before), "a renamed entry is the same");
        return true;
    }

    bool SetField() {
        std::optional<Section> section = AnySection();
        if (!section.has_value()) return false;
        const Text name = Name();
        const bool isComment = input_.Flag();
        const std::u16string text = Units();
        const std::optional<Entry16> before = section->find16(name);
        const bool isDone = isComment ? section->setComment(name, text, &problem_)
                                      : section->setShownName(name, text, &problem_);
        if (!isDone) return false;
        const Entry16 after = *section->find16(name);
        const Presentation16 ui = after.ui.value_or(Presentation16());
        Check((isComment ? ui.comment : ui.shownName) == text, "a field is read as it was written");
        Check(after.value == before->value, "the value is the same");
        return true;
    }

    bool SetProvider() {
        std::optional<Section> section = AnySection();
        if (!section.has_value()) return false;
        const Text name = Name();
        const auto owner = static_cast<Owner>(input_.Below(5));
        const std::uint32_t index = input_.Number();
        const std::optional<Entry16> before = section->find16(name);
        if (!section->setProvider(name, owner, index, &problem_)) return false;
        const Entry16 after = *section->find16(name);
        const Presentation16 ui = after.ui.value_or(Presentation16());
        Check(ui.providerOwner == owner && ui.providerIndex == index, "a provider is read as it was written");
        Check(after.value == before->value, "the value is the same");
        return true;
    }

    bool SetEud() {
        std::optional<Section> section = AnySection();
        if (!section.has_value()) return false;
        const Text name = Name();
        const std::string before = Shown(*profile_);
        const bool isDone = section->setEud(name, input_.Flag(), &problem_);
        Check(Shown(*profile_) == before, "nothing but eud is written");
        return isDone;
    }

    bool Remove() {
        std::optional<Section> section = AnySection();
        if (!section.has_value()) return false;
        const Text name = Name();
        switch (input_.Below(3)) {
            case 0:
                return section->remove(name, 0, &problem_);
            case 1:
                return section->removeAll(name, &problem_);
            default:
                return section->clear(&problem_);
        }
    }

    FuzzInput input_;
    std::optional<Profile> profile_;
    Problem problem_;
};

}  // namespace
}  // namespace mox::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    mox::fuzz::Writer(data, size).Run();
    return 0;
}
