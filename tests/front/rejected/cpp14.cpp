// -std=c++14: mox_xmlApi.hpp needs C++17
#include "mox_xmlApi/mox_xmlApi.hpp"
