// Takes the place of mox_xmlApi/platform/random_key.cpp in the fuzz targets.
#include "fuzz/fixed_key.h"

namespace mox {

HashKey ProcessHashKey() noexcept {
    return fuzz::kFixedKey;
}

}  // namespace mox
