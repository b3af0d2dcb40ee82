// A library of its own that throws: shows that what leaves a library reaches the catch of a host built apart.
#ifndef MOX_XMLAPI_TESTS_HOST_THROWER_H
#define MOX_XMLAPI_TESTS_HOST_THROWER_H

// Throws 0x80000008 as std::int32_t, always.
extern "C" void ThrowStamp();

#endif
