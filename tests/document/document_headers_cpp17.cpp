// Hosts in C++17 include these headers; they see nothing of the tree.
#include "mox_xmlApi/document/diagnose.hpp"
#include "mox_xmlApi/document/document.hpp"
#include "mox_xmlApi/document/encoding.hpp"
#include "mox_xmlApi/document/inspect.hpp"
#include "mox_xmlApi/mox_xmlApi.hpp"

#if defined(MOX_XMLAPI_XML_XML_NODE_H) || defined(MOX_XMLAPI_XML_XML_DOCUMENT_H)
#error "a public header includes the tree"
#endif
