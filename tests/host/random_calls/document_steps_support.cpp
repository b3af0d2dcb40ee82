#include "tests/host/random_calls/runner_support.h"

namespace host::random_calls {

void Runner::SaveProfile(Arguments arguments) {
    const std::uint32_t mode = arguments.Below(4);
    const std::int32_t wide = arguments.Pick(kFlags);
    const std::uint32_t refuse = arguments.Pick(std::array<std::uint32_t, 5>{0, 0, 2, 0, 1});
    Log(Concat("xmlProfileSave mode ", mode, " refuse ", refuse, " wide ", wide));
    const ScratchFile file;
    const std::uint32_t result = xmlProfileSave(profile_, file.Name(), mode, refuse, wide);
    if (mode == 0) model_->StripEud();
    const Text text = mode == 0 ? model_->DocumentText() : model_->Export(mode);
    const std::string bytes = wide == 1 ? model::WideBytes(text) : model::NarrowBytes(text);
    Compare(Concat(result, "\n", FileBytes(file)),
            Concat(refuse == 1 ? 0 : 1, "\n", refuse == 1 ? "no file" : bytes));
}

void Runner::ReloadProfile(Arguments arguments) {
    const bool wide = arguments.Flag();
    Log(Concat("save and load the profile, ", wide ? "wide" : "narrow"));
    for (unsigned number = 1; number < slots_.size(); ++number) {
        xmlTableDispose(&slots_[number].handle);
        slots_[number] = Slot();
    }
    const ScratchFile file;
    xmlProfileSave(profile_, file.Name(), 0, 0, wide ? 1 : 0);
    xmlProfileDispose(&profile_);
    profile_ = xmlProfileNew(file.Name(), nullptr, 0, wide ? 1 : 0);
    model_->StripEud();
    const Text text = model_->DocumentText();
    const NodePtr document = model::Parse(wide ? model::FromWideBytes(model::WideBytes(text))
                                               : model::FromNarrowBytes(model::NarrowBytes(text)));
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
    Log(Concat("table = xmlTableNew ", nameNumber == 0 ? "null" : Quote(name), " editable ", editable,
               " first id ", firstId, " type ", type, " document ", newDocument));
    Slot& slot = slots_[kOwnTable];
    xmlTableDispose(&slot.handle);
    slot = Slot();
    slot.handle = xmlTableNew(nullptr, nullptr, 5, nameNumber == 0 ? nullptr : name.c_str(), editable,
                              firstId, type, newDocument);
    MakeTable(model::Parse(newDocument == 1 ? Wide("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n") : Text()),
              name, newDocument == 1);
    const NodePtr table = slot.table.lock();
    if (firstId != 0) SetAttribute(*table, "first_id", model::UnsignedText(firstId));
    if (type != 0) SetAttribute(*table, "type", model::HexText(type));
    if (editable == 1) SetAttribute(*table, "editable", Wide("true"));
}

void Runner::ReloadTable(Arguments arguments) {
    const unsigned nameNumber = arguments.Below(4);
    const Text name = std::array<Text, 4>{""_w, "S"_w, "T"_w, ""_w}[nameNumber];
    const std::int32_t size = arguments.Pick(std::array<std::int32_t, 4>{-1, 2147483647, 0, 40});
    Log(Concat("load the table from memory, name ", nameNumber == 0 ? "null" : Quote(name), " size ", size));
    Text text = Written(*tableDocument_);
    if (size > 0) text = text.substr(0, static_cast<std::size_t>(size));
    LoadTableDocument(text, size, nameNumber == 0 ? nullptr : &name);
}

void Runner::SaveTable(Arguments arguments) {
    std::string slotName;
    const Slot& slot = PickSlot(arguments, slotName);
    const std::int32_t reserved = arguments.Pick(std::array<std::int32_t, 5>{0, 0, 0, 0, 1});
    const std::int32_t refuse = arguments.Pick(kFlags);
    Log(Concat("xmlTableSave ", slotName, " reserved ", reserved, " refuse ", refuse));
    const ScratchFile file;
    const bool saved = xmlTableSave(slot.handle, file.Name(), reserved, refuse);
    const bool writes = reserved == 0 && refuse != 1;
    const bool isOwn = &slot == &slots_[kOwnTable];
    const Text text = Written(isOwn ? *tableDocument_ : *slot.table.lock());
    Compare(Concat(saved, "\n", FileBytes(file)),
            Concat(writes, "\n", writes ? model::WideBytes(text) : "no file"));
}

}  // namespace host::random_calls
