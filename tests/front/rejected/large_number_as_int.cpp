// -std=c++17: setInt takes integers that fit into 32 bits with a sign; use set for others
#include "mox_xmlApi/mox_xmlApi.hpp"

bool Write(mox::Profile& profile) {
    return profile.setInt("S", "K", 4000000000u);
}
