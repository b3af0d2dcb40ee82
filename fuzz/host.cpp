// Calls of mox_host with any bytes as texts, documents and structures. Each call either succeeds or says why; one that
// fails has set no output and changed nothing; a text that was written is read back. The C++ front does the same with
// the same results (host_twin.h). What was written is there when the saved bytes are opened.
//
// The input: a digit that chooses the kind, form and encoding of the document, the document up to a zero byte, then
// calls. Each call is a letter or any other byte, then its arguments: a digit for a text that is there, or a byte for
// its length and the text itself.
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "fuzz/fuzz_input.h"
#include "fuzz/host_twin.h"
#include "mox_host/mox_host.h"
#include "tests/c_host/sized.h"

namespace mox::fuzz {
namespace {

constexpr std::size_t kMostCalls = 60;

constexpr std::string_view kSettings =
    "<Settings xmlns:noNamespaceSchemaLocation=\"MXSettings.xsd\"><Table name=\"S\">"
    "<Var name=\"A\" type=\"long\" id=\"4\" eud=\"true\"><Value>1</Value><UI control=\"num\" "
    "prov_index=\"7\" "
    "prov_owner=\"app\" name=\"shown\" minVal=\"0\"><Comment>comment</Comment><Value>2</Value></UI></Var>"
    "<Var name=\"B\" type=\"string\"><Value>00FF</Value></Var><Var name=\"D\"/></Table><Table name=\"U\">"
    "<Var name=\"A\" type=\"long\"><UI control=\"num\"><Value>1</Value></UI></Var></Table></Settings>\n";
constexpr std::string_view kTable =
    "<Table name=\"T\"><Var name=\"A\" type=\"double\"><Value>1.5</Value></Var>"
    "<Var name=\"B\" type=\"bool\"><Value>1</Value></Var></Table>\n";

using c_host::Sized;

void Append(std::string& text, const char* data, size_t size) {
    if (data == nullptr) {
        text += " null";
        return;
    }
    Check(data[size] == '\0', "a text ends with a zero byte");
    text.append(" '").append(data, size).append("'");
}

std::string Shown(const mox_entry& entry) {
    std::string text;
    Append(text, entry.name, entry.name_size);
    Append(text, entry.value, entry.value_size);
    for (const uint32_t number : {entry.type, entry.shape, entry.id, entry.has_ui, entry.control,
                                  entry.provider_owner, entry.provider_index})
        text += " " + std::to_string(number);
    if (entry.has_ui == 0) return text;
    Append(text, entry.shown_name, entry.shown_name_size);
    Append(text, entry.comment, entry.comment_size);
    Append(text, entry.ui_value, entry.ui_value_size);
    return text;
}

class HostCalls {
  public:
    HostCalls(const std::uint8_t* data, std::size_t size) : input_(data, size) {
        Check(mox_problem_new(&problem_) == MOX_OK, "there is memory for a problem");
    }
    ~HostCalls() {
        mox_document_free(document_);
        mox_problem_free(problem_);
    }
    HostCalls(const HostCalls&) = delete;
    HostCalls& operator=(const HostCalls&) = delete;

    void Run() {
        Open();
        for (std::size_t i = 0; i < kMostCalls && !input_.IsEmpty(); ++i) {
            const std::string before = TreeOf(*document_);
            isSave_ = false;
            const mox_status status = Call();
            CheckProblem(status);
            // A save removes "eud" even if it then fails.
            Check(status == MOX_OK || isSave_ || TreeOf(*document_) == before,
                  "a call that fails changes nothing");
        }
        Reopen();
    }

  private:
    // ---- the document

    void CheckProblem(mox_status status) const {
        auto info = Sized<mox_problem_info>();
        Check(mox_problem_get(problem_, &info) == MOX_OK, "a problem can be read");
        Check(info.status == status, "a problem has the status of the call");
        Check((status == MOX_OK) == (info.message_size == 0), "a problem has a message");
        Check(status != MOX_INTERNAL_ERROR, "no failure is unknown");
        Check(mox_status_name(status) != std::string_view("unknown status"), "a status has a name");
    }

    void Open() {
        const std::size_t option = input_.Below(10);
        const std::string text(option < 4 ? std::string_view() : input_.Until('\0'));
        kind_ = option % 2 == 0 ? MOX_SETTINGS : MOX_TABLE;
        auto options = Sized<mox_open_options>();
        if (option >= 6) options.encoding = static_cast<uint32_t>(1 + input_.Below(6));
        isWide_ = option >= 2 && kind_ == MOX_SETTINGS;
        if (option >= 4) {
            ReadAsFile(text);
            const mox_status status =
                mox_parse(text.data(), text.size(), kind_, &options, &document_, problem_);
            CheckProblem(status);
            Check((status == MOX_OK) == (document_ != nullptr), "a call that fails gives no document");
        }
        mox_document_free(document_);
        document_ = nullptr;
        const bool isKept = option >= 4 && IsKept(Parsed(text, options));
        const std::string_view own = kind_ == MOX_SETTINGS ? kSettings : kTable;
        if (!isKept) options = Sized<mox_open_options>();
        document_ = Parsed(isKept ? text : own, options);
        Check(document_ != nullptr, "it opens");
        twin_.emplace(document_, Parsed(isKept ? text : own, options));
    }

    // The document of a text, in the form of this input; null if it cannot be opened.
    mox_document* Parsed(std::string_view text, const mox_open_options& options) const {
        mox_document* document = nullptr;
        mox_parse(text.data(), text.size(), kind_, &options, &document, nullptr);
        if (document != nullptr && isWide_)
            Check(mox_set_form(document, MOX_FORM_WIDE, nullptr) == MOX_OK, "a form can be set");
        return document;
    }

    // What needs no document.
    void ReadAsFile(std::string_view text) {
        const auto form = static_cast<uint32_t>(input_.Below(4));
        const auto flags = static_cast<uint32_t>(input_.Below(3));
        mox_list* list = nullptr;
        mox_status status = mox_diagnose(text.data(), text.size(), form, flags, &list, problem_);
        CheckProblem(status);
        for (size_t i = 0; i < mox_list_count(list); ++i) {
            auto diagnostic = Sized<mox_diagnostic>();
            Check(mox_list_diagnostic(list, i, &diagnostic) == MOX_OK, "a diagnostic can be read");
            Check(diagnostic.line >= 1 && diagnostic.column >= 1, "a diagnostic has a place");
        }
        mox_list_free(list);
        mox_tree* tree = nullptr;
        status = mox_tree_parse(text.data(), text.size(), form, &tree, problem_);
        CheckProblem(status);
        for (size_t i = 0; i < mox_tree_count(tree); ++i)
            CheckNode(tree, i);
        mox_tree_free(tree);
    }

    static void CheckNode(const mox_tree* tree, size_t number) {
        auto node = Sized<mox_node>();
        Check(mox_tree_node(tree, number, &node) == MOX_OK, "a node can be read");
        Check(node.name[node.name_size] == '\0' && node.value[node.value_size] == '\0',
              "a text ends with a zero byte");
        Check(node.parent == MOX_NO_NODE || node.parent < number, "a parent comes first");
        Check(node.first_child == MOX_NO_NODE || node.first_child == number + 1, "its children come next");
        Check(node.next == MOX_NO_NODE || (node.next > number && node.next < mox_tree_count(tree)),
              "a node in order");
        auto attribute = Sized<mox_attribute>();
        for (size_t i = 0; i < node.attribute_count; ++i)
            Check(mox_tree_attribute(tree, number, i, &attribute) == MOX_OK, "an attribute can be read");
        Check(mox_tree_attribute(tree, number, node.attribute_count, &attribute) == MOX_OUT_OF_RANGE,
              "and no other");
    }

    std::string Shown(const mox_document* document, const char* section, size_t size) const {
        std::string text;
        mox_list* entries = nullptr;
        // Of an element that is not a section, the name finds nothing.
        if (mox_entries(document, section, size, &entries, nullptr) != MOX_OK) return text;
        for (size_t i = 0; i < mox_list_count(entries); ++i) {
            auto entry = Sized<mox_entry>();
            Check(mox_list_entry(entries, i, &entry) == MOX_OK, "an entry can be read");
            text.append(fuzz::Shown(entry)).append("\n");
        }
        mox_list_free(entries);
        size_t unreadable = 0;
        Check(mox_count_unreadable(document, section, size, &unreadable, nullptr) == MOX_OK,
              "they can be counted");
        return text + std::to_string(unreadable) + "\n";
    }

    // All that can be read of the document.
    std::string Shown(const mox_document* document) const {
        if (kind_ == MOX_TABLE) return Shown(document, nullptr, 0);
        std::string text;
        mox_list* names = nullptr;
        Check(mox_section_names(document, &names, nullptr) == MOX_OK, "sections can be listed");
        for (size_t i = 0; i < mox_list_count(names); ++i) {
            const char* name = nullptr;
            size_t size = 0;
            Check(mox_list_name(names, i, &name, &size) == MOX_OK, "a name can be read");
            text.append("[").append(name, size).append("]\n").append(Shown(document, name, size));
        }
        mox_list_free(names);
        return text;
    }

    // The saved document, opened again; null if it cannot be saved.
    mox_document* Saved(mox_document* document) const {
        void* bytes = nullptr;
        size_t size = 0;
        if (mox_to_bytes(document, nullptr, &bytes, &size, problem_) != MOX_OK) return nullptr;
        auto info = Sized<mox_document_info>();
        Check(mox_document_get_info(document, &info) == MOX_OK, "a document can be described");
        auto options = Sized<mox_open_options>();
        options.form = info.form;
        mox_document* opened = nullptr;
        const mox_status status = mox_parse(bytes, size, kind_, &options, &opened, problem_);
        mox_free(bytes);
        Check(status == MOX_OK, "what was saved can be opened");
        return opened;
    }

    // Of a document that was not written here: whether it is the same after a save. Frees it; it may be null.
    bool IsKept(mox_document* document) const {
        if (document == nullptr) return false;
        mox_document* const opened = Saved(document);
        const bool isSame = opened != nullptr && Shown(opened) == Shown(document);
        mox_document_free(opened);
        mox_document_free(document);
        return isSame;
    }

    void Reopen() {
        const std::string before = Shown(document_);
        mox_document* const opened = Saved(document_);
        Check(opened != nullptr, "the document is saved");
        Check(Shown(opened) == before, "what was written is in the saved file");
        mox_document_free(opened);
    }

    // ---- arguments

    // Any bytes.
    std::string Bytes() {
        constexpr std::array<std::string_view, 10> kTexts = {
            "", "S", "U", "A", "B", "D", "\xC3\xA4", "\xED\xA0\x80", "\xFF", "12"};
        const std::uint8_t byte = input_.Byte();
        if (byte >= '0' && byte <= '9') return std::string(kTexts[std::size_t{byte} - '0']);
        std::string text;
        for (std::size_t i = 0; i < byte % 32U && !input_.IsEmpty(); ++i)
            text += static_cast<char>(input_.Byte());
        return text;
    }

    // The section's name. A table document has none, as a rule.
    std::string Section() { return kind_ == MOX_TABLE && !input_.Flag() ? std::string() : Bytes(); }

    // The texts of an entry; the pointers are theirs.
    struct EntryTexts {
        std::string name, value, shownName, comment, uiValue;
    };
    mox_entry Entry(EntryTexts& texts) {
        auto entry = Sized<mox_entry>();
        constexpr std::array<uint32_t, 6> kTypes = {
            MOX_TYPE_STRING, MOX_TYPE_LONG, MOX_TYPE_UCSTRING, MOX_TYPE_DOUBLE, 99, 0x10003};
        entry.type = kTypes[input_.Below(kTypes.size())];
        if (input_.Flag()) entry.shape = MOX_SHAPE_ARRAY;
        if (input_.Flag()) entry.id = input_.Number();
        texts.name = Bytes();
        entry.name = texts.name.data();
        entry.name_size = texts.name.size();
        if (input_.Flag()) {
            texts.value = Bytes();
            entry.value = texts.value.data();
            entry.value_size = texts.value.size();
        }
        if (input_.Flag()) entry.size = input_.Number();
        entry.has_ui = static_cast<uint32_t>(input_.Below(3));
        if (entry.has_ui == 0) return entry;
        entry.control = static_cast<uint32_t>(input_.Below(22));
        entry.provider_owner = static_cast<uint32_t>(input_.Below(5));
        entry.provider_index = input_.Flag() ? input_.Number() : 0;
        texts.shownName = Bytes();
        entry.shown_name = texts.shownName.data();
        entry.shown_name_size = texts.shownName.size();
        texts.comment = Bytes();
        entry.comment = texts.comment.data();
        entry.comment_size = texts.comment.size();
        if (!input_.Flag()) return entry;
        texts.uiValue = Bytes();
        entry.ui_value = texts.uiValue.data();
        entry.ui_value_size = texts.uiValue.size();
        return entry;
    }

    // ---- calls

    mox_status Call() {
        const std::size_t number = input_.Below(20);
        const std::string section = Section();
        switch (number) {
            case 0:
                return SetText(section);
            case 1:
                return SetNumber(section);
            case 2:
            case 3:
                return ReadValue(section);
            case 4:
                return Add(section);
            case 5:
                return Put(section);
            case 6:
                return Find(section);
            case 7:
                return MakeSection(section);
            case 8: {
                const mox_status status =
                    mox_remove_section(document_, section.data(), section.size(), problem_);
                twin_->CheckProfile(status, [&](Profile& profile, Problem* problem) {
                    return profile.removeSection(section, problem);
                });
                return status;
            }
            case 9: {
                const mox_status status = mox_clear(document_, section.data(), section.size(), problem_);
                twin_->CheckEntries(status, section, [](EntryTable& entries, Problem* problem) {
                    return entries.clear(problem);
                });
                return status;
            }
            case 10:
                return Save(section);
            default:
                return ChangeEntry(number - 11, section);
        }
    }

    mox_status SetText(const std::string& section) {
        const std::string name = Bytes();
        const std::string value = Bytes();
        const mox_status status = mox_set_text(document_, section.data(), section.size(), name.data(),
                                               name.size(), value.data(), value.size(), problem_);
        twin_->CheckSet(status, section, name, value);
        if (status == MOX_OK) Check(Text(section, name) == value, "a text that was written is read");
        return status;
    }

    std::optional<std::string> Text(const std::string& section, const std::string& name) const {
        char few[4];
        size_t size = 0;
        mox_status status = mox_get_text(document_, section.data(), section.size(), name.data(), name.size(),
                                         few, sizeof few, &size, nullptr);
        if (status != MOX_BUFFER_TOO_SMALL) {
            const auto text =
                status == MOX_OK ? std::optional<std::string>(std::in_place, few, size) : std::nullopt;
            twin_->CheckGet(status, section, name, text);
            return text;
        }
        std::string text(size + 1, '?');
        status = mox_get_text(document_, section.data(), section.size(), name.data(), name.size(),
                              text.data(), text.size(), &size, nullptr);
        Check(status == MOX_OK && size + 1 == text.size(), "the size that was given is enough");
        Check(text[size] == '\0', "a text ends with a zero byte");
        text.resize(size);
        twin_->CheckGet(status, section, name, std::optional(text));
        return text;
    }

    mox_status SetNumber(const std::string& section) {
        const std::string name = Bytes();
        const char* const s = section.data();
        const char* const n = name.data();
        switch (input_.Below(4)) {
            case 0:
                return SetInteger(section, name);
            case 1: {
                const double written =
                    static_cast<double>(input_.Number()) / static_cast<double>(input_.Number());
                const mox_status status =
                    mox_set_double(document_, s, section.size(), n, name.size(), written, problem_);
                double read = 0;
                if (status == MOX_OK)
                    Check(mox_get_double(document_, s, section.size(), n, name.size(), &read, nullptr) ==
                                  MOX_OK &&
                              read == written,
                          "a number that was written is read");
                twin_->CheckSet(status, section, name, written);
                return status;
            }
            case 2: {
                const auto written = static_cast<int32_t>(input_.Below(3));
                const mox_status status =
                    mox_set_bool(document_, s, section.size(), n, name.size(), written, problem_);
                twin_->CheckSet(status, section, name, written == 1);
                return status;
            }
            default: {
                const std::string bytes = Bytes();
                const mox_status status = mox_set_bytes(document_, s, section.size(), n, name.size(),
                                                        bytes.data(), bytes.size(), problem_);
                std::string read(bytes.size(), '?');
                size_t size = 0;
                if (status == MOX_OK)
                    Check(mox_get_bytes(document_, s, section.size(), n, name.size(), read.data(),
                                        read.size(), &size, nullptr) == MOX_OK &&
                              size == bytes.size() && read == bytes,
                          "bytes that were written are read");
                twin_->CheckSet(status, section, name, front::Bytes(bytes.begin(), bytes.end()));
                return status;
            }
        }
    }

    mox_status SetInteger(const std::string& section, const std::string& name) {
        const auto written = static_cast<int64_t>(input_.Number()) - (input_.Flag() ? 0x80000000 : 0);
        const auto type = static_cast<uint32_t>(input_.Below(32));
        const mox_status status = mox_set_int(document_, section.data(), section.size(), name.data(),
                                              name.size(), written, type, problem_);
        const auto check = [&](auto number) {
            const bool fits = number == written;
            Check(fits || status == MOX_OUT_OF_RANGE || status == MOX_INVALID_ARGUMENT,
                  "a number that does not fit is refused");
            if (fits) twin_->CheckSet(status, section, name, number);
        };
        if (type == MOX_TYPE_SHORT) check(static_cast<std::int16_t>(written));
        if (type == MOX_TYPE_USHORT) check(static_cast<std::uint16_t>(written));
        if (type == MOX_TYPE_LONG) check(static_cast<std::int32_t>(written));
        if (type == MOX_TYPE_ULONG) check(static_cast<std::uint32_t>(written));
        if (type == MOX_TYPE_STRING) check(written);
        int64_t read = 0;
        if (status == MOX_OK)
            Check(mox_get_int(document_, section.data(), section.size(), name.data(), name.size(), &read,
                              nullptr) == MOX_OK &&
                      read == written,
                  "a number that was written is read");
        return status;
    }

    mox_status ReadValue(const std::string& section) {
        const std::string name = Bytes();
        const char* const s = section.data();
        const char* const n = name.data();
        int64_t number = 1000;
        double decimal = 2.5;
        int32_t truth = 7;
        mox_status status = MOX_OK;
        const auto value = [&](auto read) { return status == MOX_OK ? std::optional(read) : std::nullopt; };
        switch (input_.Below(5)) {
            case 0:
                status = mox_get_int(document_, s, section.size(), n, name.size(), &number, problem_);
                twin_->CheckGet(status, section, name, value(number));
                break;
            case 1:
                status = mox_get_double(document_, s, section.size(), n, name.size(), &decimal, problem_);
                twin_->CheckGet(status, section, name, value(decimal));
                break;
            case 2:
                status = mox_get_bool(document_, s, section.size(), n, name.size(), &truth, problem_);
                twin_->CheckGet(status, section, name, value(truth == 1));
                break;
            case 3:
                status = mox_contains(document_, s, section.size(), n, name.size(), &truth, problem_);
                Check(status != MOX_OK || truth == 0 || truth == 1, "a truth value");
                break;
            default:
                Text(section, name);
                status =
                    mox_get_text(document_, s, section.size(), n, name.size(), nullptr, 0, nullptr, problem_);
                Check(status != MOX_OK, "there is no room for a zero byte");
                break;
        }
        Check(status == MOX_OK || (number == 1000 && decimal == 2.5 && truth == 7),
              "a failure leaves the output");
        return status;
    }

    mox_status Add(const std::string& section) {
        EntryTexts texts;
        const mox_entry entry = Entry(texts);
        const bool hasNext = input_.Flag();
        const std::string next = hasNext ? Bytes() : std::string();
        const auto flags = static_cast<uint32_t>(input_.Below(3));
        const mox_status status =
            mox_add_entry(document_, section.data(), section.size(), hasNext ? next.data() : nullptr,
                          next.size(), &entry, flags, problem_);
        const Eud eud = flags == MOX_EUD_SET ? Eud::Set : Eud::DoNotSet;
        twin_->CheckEntries(status, section, [&](EntryTable& entries, Problem* problem) {
            return hasNext ? entries.addBefore(next, FrontEntry(entry, texts), eud, problem)
                           : entries.add(FrontEntry(entry, texts), eud, problem);
        });
        return status;
    }

    mox_status Put(const std::string& section) {
        EntryTexts texts;
        const mox_entry entry = Entry(texts);
        const auto flags = static_cast<uint32_t>(input_.Below(3));
        const mox_status status =
            mox_put_entry(document_, section.data(), section.size(), &entry, flags, problem_);
        const Eud eud = flags == MOX_EUD_SET ? Eud::Set : Eud::DoNotSet;
        twin_->CheckEntries(status, section, [&](EntryTable& entries, Problem* problem) {
            return entries.put(FrontEntry(entry, texts), eud, problem);
        });
        return status;
    }

    // The entry as one of the front.
    static mox::Entry FrontEntry(const mox_entry& given, const EntryTexts& texts) {
        mox::Entry entry;
        entry.name = texts.name;
        if (given.value != nullptr) entry.value = texts.value;
        entry.type = static_cast<ValueType>(given.type);
        entry.shape = static_cast<Shape>(given.shape);
        entry.id = given.id;
        if (given.has_ui == 0) return entry;
        entry.ui = {static_cast<Control>(given.control),
                    given.provider_index,
                    static_cast<Owner>(given.provider_owner),
                    texts.shownName,
                    texts.comment,
                    std::nullopt};
        if (given.ui_value != nullptr) entry.ui->value = texts.uiValue;
        return entry;
    }

    mox_status Find(const std::string& section) {
        const std::string name = Bytes();
        mox_list* list = nullptr;
        const mox_status status = mox_find_entry(document_, section.data(), section.size(), name.data(),
                                                 name.size(), &list, problem_);
        Check(mox_list_count(list) == (status == MOX_OK ? 1U : 0U), "one entry, or none");
        if (list != nullptr) {
            auto entry = Sized<mox_entry>();
            Check(mox_list_entry(list, 0, &entry) == MOX_OK, "an entry can be read");
            Check(std::string_view(entry.name, entry.name_size) == name,
                  "an entry that is found has the name");
        }
        mox_list_free(list);
        return status;
    }

    mox_status MakeSection(const std::string& section) {
        auto options = Sized<mox_table_options>();
        options.editable = static_cast<uint32_t>(input_.Below(3));
        options.first_id = input_.Number();
        options.type = input_.Number();
        const mox_status status =
            mox_make_section(document_, section.data(), section.size(), &options, problem_);
        twin_->CheckProfile(status, [&](Profile& profile, Problem* problem) {
            TableOptions same;
            same.editable = options.editable == 1;
            same.firstId = options.first_id;
            same.type = static_cast<std::uint16_t>(options.type);
            return profile.makeSection(section, same, problem).has_value();
        });
        return status;
    }

    mox_status Save(const std::string& section) {
        auto options = Sized<mox_save_options>();
        options.form = static_cast<uint32_t>(input_.Below(5));
        options.content = static_cast<uint32_t>(input_.Below(4));
        if (input_.Flag()) {
            options.section = section.data();
            options.section_size = section.size();
        }
        void* bytes = nullptr;
        size_t size = 77;
        const mox_status status = mox_to_bytes(document_, &options, &bytes, &size, problem_);
        Check(status == MOX_OK || (bytes == nullptr && size == 77), "a failure leaves the output");
        isSave_ = true;
        const std::string saved(static_cast<const char*>(bytes), status == MOX_OK ? size : 0);
        mox_free(bytes);
        twin_->CheckSave(status, options, status == MOX_OK ? &saved : nullptr);
        return status;
    }

    mox_status ChangeEntry(std::size_t which, const std::string& section) {
        const std::string name = Bytes();
        const std::string text = Bytes();
        const char* const s = section.data();
        const char* const n = name.data();
        mox_status status = MOX_OK;
        const auto check = [&](auto change) { twin_->CheckEntries(status, section, change); };
        switch (which) {
            case 0: {
                const auto flags = static_cast<uint32_t>(input_.Below(5));
                status = mox_set_value(document_, s, section.size(), n, name.size(), text.data(), text.size(),
                                       flags, problem_);
                const Eud eud = (flags & MOX_EUD_SET) != 0 ? Eud::Set : Eud::DoNotSet;
                check([&](EntryTable& entries, Problem* problem) {
                    return (flags & MOX_EUD_RESPECT) != 0
                               ? entries.setValueUnlessEud(name, text, eud, problem)
                               : entries.setValue(name, text, eud, problem);
                });
                break;
            }
            case 1:
                status = mox_set_comment(document_, s, section.size(), n, name.size(), text.data(),
                                         text.size(), problem_);
                check([&](EntryTable& entries, Problem* problem) {
                    return entries.setComment(name, text, problem);
                });
                break;
            case 2:
                status = mox_set_shown_name(document_, s, section.size(), n, name.size(), text.data(),
                                            text.size(), problem_);
                check([&](EntryTable& entries, Problem* problem) {
                    return entries.setShownName(name, text, problem);
                });
                break;
            case 3: {
                const auto owner = static_cast<uint32_t>(input_.Below(6));
                const std::uint32_t index = input_.Number();
                status =
                    mox_set_provider(document_, s, section.size(), n, name.size(), owner, index, problem_);
                check([&](EntryTable& entries, Problem* problem) {
                    return entries.setProvider(name, static_cast<Owner>(owner), index, problem);
                });
                break;
            }
            case 4: {
                const auto eud = static_cast<int32_t>(input_.Below(3));
                status = mox_set_eud(document_, s, section.size(), n, name.size(), eud, problem_);
                check([&](EntryTable& entries, Problem* problem) {
                    return entries.setEud(name, eud == 1, problem);
                });
                break;
            }
            case 5:
                status = mox_rename(document_, s, section.size(), n, name.size(), text.data(), text.size(),
                                    problem_);
                check([&](EntryTable& entries, Problem* problem) {
                    return entries.rename(name, text, problem);
                });
                break;
            default: {
                const auto occurrence = static_cast<int32_t>(input_.Below(5)) - 2;
                status = mox_remove(document_, s, section.size(), n, name.size(), occurrence, problem_);
                if (occurrence == MOX_ALL && kind_ == MOX_SETTINGS) {
                    twin_->CheckProfile(status, [&](Profile& profile, Problem* problem) {
                        return profile.remove(section, name, problem);
                    });
                    break;
                }
                check([&](EntryTable& entries, Problem* problem) {
                    return occurrence == MOX_ALL ? entries.removeAll(name, problem)
                                                 : entries.remove(name, occurrence, problem);
                });
                break;
            }
        }
        return status;
    }

    FuzzInput input_;
    uint32_t kind_ = MOX_SETTINGS;
    bool isWide_ = false;  // settings are to be saved in this form
    bool isSave_ = false;  // the last call was one
    mox_document* document_ = nullptr;
    std::optional<HostTwin> twin_{};
    mox_problem* problem_ = nullptr;
};

}  // namespace
}  // namespace mox::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    mox::fuzz::HostCalls(data, size).Run();
    return 0;
}
