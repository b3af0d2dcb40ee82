// Every element and attribute name of the two document shapes, and the texts that go with them.
#ifndef MOX_XMLAPI_XML_XML_NAMES_H
#define MOX_XMLAPI_XML_XML_NAMES_H

#include "mox_xmlApi/platform/wide_text.h"

namespace mox::names {

// The declaration.
inline constexpr WideView kXml = "xml"_w;
inline constexpr WideView kVersion = "version"_w;
inline constexpr WideView kVersionText = "1.0"_w;
inline constexpr WideView kEncoding = "encoding"_w;
inline constexpr WideView kEncodingText = "UTF-8"_w;

// Elements.
inline constexpr WideView kSettings = "Settings"_w;
inline constexpr WideView kTable = "Table"_w;
inline constexpr WideView kVar = "Var"_w;
inline constexpr WideView kUi = "UI"_w;
inline constexpr WideView kValue = "Value"_w;
inline constexpr WideView kComment = "Comment"_w;

// The schema location of a root or table element.
inline constexpr WideView kSchemaLocation = "xmlns:noNamespaceSchemaLocation"_w;
inline constexpr WideView kSchemaLocationXsi = "xsi:noNamespaceSchemaLocation"_w;
inline constexpr WideView kSettingsSchema = "MXSettings.xsd"_w;
inline constexpr WideView kTableSchema = "MXTable.xsd"_w;

// Attributes.
inline constexpr WideView kName = "name"_w;
inline constexpr WideView kFirstId = "first_id"_w;
inline constexpr WideView kType = "type"_w;
inline constexpr WideView kEditable = "editable"_w;
inline constexpr WideView kEud = "eud"_w;
inline constexpr WideView kId = "id"_w;
inline constexpr WideView kArray = "array"_w;
inline constexpr WideView kLoc = "loc"_w;
inline constexpr WideView kLocval = "locval"_w;  // a field's name only, never written
inline constexpr WideView kControl = "control"_w;
inline constexpr WideView kAccess = "access"_w;
inline constexpr WideView kFlags = "flags"_w;
inline constexpr WideView kProvIndex = "prov_index"_w;
inline constexpr WideView kProvOwner = "prov_owner"_w;
inline constexpr WideView kRegen = "regen"_w;
inline constexpr WideView kMinVal = "minVal"_w;
inline constexpr WideView kMaxVal = "maxVal"_w;

// Attribute texts.
inline constexpr WideView kTrue = "true"_w;
inline constexpr WideView kFalse = "false"_w;
inline constexpr WideView kVector = "vector"_w;

}  // namespace mox::names

#endif
