#ifndef RKXMLLIB16_JSON_INTERNAL_PLAINJSON_H
#define RKXMLLIB16_JSON_INTERNAL_PLAINJSON_H

#include <string_view>

#include "RkXmlLib16/json/JsonTextReader.h"
#include "RkXmlLib16/types/BinaryData.h"

namespace RkXmlLib16 {

class CSerializationContext;

// Converts JSON text in UTF-8 straight to XML text in UTF-8, without indentation, if it is of the plain case: without
// errors, comments and escapes in names, one root element, no array directly in another, nothing behind the value. The
// bytes and places are then those of CJsonTextReader::ConvertJsonToXml, in a fraction of the time. False for anything
// else, which is left to that.
bool ConvertPlainJson(std::string_view json, const CSerializationContext& context, CBinaryData& xml,
                      CJsonPlaces& places);

}  // namespace RkXmlLib16

#endif
