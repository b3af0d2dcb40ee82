// Form, the two ways in which a document is stored in a file.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
#ifndef MOX_XMLAPI_FRONT_FORM_HPP
#define MOX_XMLAPI_FRONT_FORM_HPP

namespace mox {

// The form of a profile's file. Narrow has one byte per unit: it keeps 7-bit text only, and other text is lost
// silently. Wide has two bytes per unit and keeps everything.
enum class Form { Narrow, Wide };

}  // namespace mox

#endif
