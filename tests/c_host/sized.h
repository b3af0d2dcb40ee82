// Structures of mox_host.h as hosts fill them in.
#ifndef MOX_XMLAPI_TESTS_C_HOST_SIZED_H
#define MOX_XMLAPI_TESTS_C_HOST_SIZED_H

namespace c_host {

// A structure with its size set and nothing else.
template <class Structure>
Structure Sized() {
    Structure structure{};
    structure.size = sizeof structure;
    return structure;
}

}  // namespace c_host

#endif
