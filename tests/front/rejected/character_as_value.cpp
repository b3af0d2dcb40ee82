// -std=c++17: a value is a bool, an integer of 16, 32 or 64 bits, a double, a text or a container of
#include "mox_xmlApi/mox_xmlApi.hpp"

bool Write(mox::Table& table) {
    return table.set("K", 'x');
}
