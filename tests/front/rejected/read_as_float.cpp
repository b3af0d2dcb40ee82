// -std=c++17: a value is read as bool, an integer of 16, 32 or 64 bits, double, std::string,
#include "mox_xmlApi/mox_xmlApi.hpp"

bool Read(const mox::Profile& profile) {
    return profile.get<float>("S", "K").has_value();
}
