#ifndef RKXMLLIB16_JSON_JSONREADERHANDLER_H
#define RKXMLLIB16_JSON_JSONREADERHANDLER_H

#include <string>

#include "RkXmlLib16/base/Export.h"

namespace RkXmlLib16 {

// What CJsonTextReader reports, in the order of the text. A member of an object is its name followed by its value.
class RKXML_EXPORT IJsonReaderHandler {
 public:
  virtual ~IJsonReaderHandler();

  virtual void ReadStartDocument() = 0;
  virtual void ReadEndDocument() = 0;
  // Texts are borrowed. Escapes are resolved in names and strings.
  virtual void ReadName(const std::wstring& name) = 0;
  virtual void ReadString(const std::wstring& value) = 0;
  // `lexical` is the number as it stands in the text.
  virtual void ReadNumber(const std::wstring& lexical) = 0;
  virtual void ReadStartObject() = 0;
  virtual void ReadEndObject() = 0;
  virtual void ReadStartArray() = 0;
  virtual void ReadEndArray() = 0;
  virtual void ReadBool(bool value) = 0;
  virtual void ReadNull() = 0;
};

// Tells where in the document a reader stands.
class RKXML_EXPORT IErrorPathProvider {
 public:
  virtual ~IErrorPathProvider();

  // The JSON path of the value being read: "$.order.item[2].@id".
  virtual std::wstring GetPath() const = 0;
};

}  // namespace RkXmlLib16

#endif
