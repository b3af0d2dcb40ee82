#include "mox_xmlApi/document/parsed_text.h"

#include <utility>

namespace mox {

ParsedText::ParsedText(WideString text) : text_(std::move(text)) {
    isParsed_ = ParseInPlace(document_, text_.data(), text_.size() - kZeros, document_.root, &failure_);
}

}  // namespace mox
