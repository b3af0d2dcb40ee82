// The types of values.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
#ifndef MOX_XMLAPI_FRONT_VALUE_TYPE_HPP
#define MOX_XMLAPI_FRONT_VALUE_TYPE_HPP

#include <cstdint>

namespace mox {

// What the text of a value means. The library keeps any text with any type.
enum class ValueType : std::uint16_t {
    Short = 2,
    Long = 3,
    Double = 5,
    String = 8,
    Bool = 11,
    Char = 16,
    Byte = 17,
    UShort = 18,
    ULong = 19,
    UcString = 31
};

// How many of that type a value holds.
enum class Shape : std::uint16_t { Single = 0, Vector = 0x1000, Array = 0x2000 };

namespace front {

// Whether the type and shape have a name in files. An entry with another type could not be read again.
inline bool IsKnownType(ValueType type, Shape shape) noexcept {
    switch (type) {
        case ValueType::Short:
        case ValueType::Long:
        case ValueType::Double:
        case ValueType::String:
        case ValueType::Bool:
        case ValueType::Char:
        case ValueType::Byte:
        case ValueType::UShort:
        case ValueType::ULong:
        case ValueType::UcString:
            return shape == Shape::Single || shape == Shape::Vector || shape == Shape::Array;
    }
    return false;
}

}  // namespace front
}  // namespace mox

#endif
