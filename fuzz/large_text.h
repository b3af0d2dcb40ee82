// Large documents from small inputs.
#ifndef MOX_XMLAPI_FUZZ_LARGE_TEXT_H
#define MOX_XMLAPI_FUZZ_LARGE_TEXT_H

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "mox_xmlApi/xml/xml_node.h"

namespace mox::fuzz {

// The text that a description stands for, cut to `most` bytes. A byte stands for itself, except:
//
//   0x11 count ... 0x12   what is between is repeated: a digit counts 1, 4, 16, 64 ... 262144 times, any other byte as
//                         many times as it says. Without 0x12 it reaches to the end. Repetitions are not nested.
//   0x13                  in a repetition, a name that differs each time: A, B, ... Z, AA, ...
//   0x14                  in a repetition, one of kCollidingNames names that collide (fixed_key.h)
std::string Expand(std::string_view description, std::size_t most);

// How many levels are below `node`. Takes no stack.
std::size_t DepthBelow(const XmlNode& node);

// The model recurses on the depth of a document, and the checks with it. Runs `work` where that does no harm.
void WithLargeStack(const std::function<void()>& work);

}  // namespace mox::fuzz

#endif
