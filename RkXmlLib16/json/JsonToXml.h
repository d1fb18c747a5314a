#ifndef RKXMLLIB16_JSON_JSONTOXML_H
#define RKXMLLIB16_JSON_JSONTOXML_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "RkXmlLib16/base/Enumerations.h"
#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/base/HugePages.h"
#include "RkXmlLib16/json/JsonReaderHandler.h"

namespace RkXmlLib16 {

class CJsonTextReader;
class CReadLimits;
class CXmlTextWriter;

// Turns the events of a JSON reader into calls of an XML text writer. A name becomes an element, which starts with its
// first value, object or array item; with markers "@name" becomes an attribute and "#text" the text of the element
// around it. The objects in an array are elements of the array's name. Of the plain values in an array only the first
// is an element's; the others are text after it.
//
// Names and values that XML cannot hold throw CRkInvalidStateException with the JSON path and reach the writer not at
// all; no value is taken for markup.
class RKXML_EXPORT CJsonReaderToXmlHandler : public IJsonReaderHandler {
 public:
  // All are kept.
  CJsonReaderToXmlHandler(CXmlTextWriter& writer, JsonRoundTrip mode, const IErrorPathProvider* errorPath);
  ~CJsonReaderToXmlHandler() override;

  // Limits the names that the items of arrays repeat, as a multiple of the `jsonLength` characters of the document: the
  // expansion limit of `limits`, which is kept. Without this call there is no limit.
  void SetLimits(const CReadLimits& limits, std::size_t jsonLength);

  // Appends where each element and attribute stands in the text of `reader`; both are kept. Of attributes that declare
  // namespaces only when `areDeclarationsNodes`.
  void SetPlaces(const CJsonTextReader& reader, CLargeVector<std::uint64_t>& nodes, bool areDeclarationsNodes) {
    m_reader = &reader;
    m_nodes = &nodes;
    m_areDeclarationsNodes = areDeclarationsNodes;
  }

  void ReadStartDocument() override;
  void ReadEndDocument() override;
  void ReadName(const std::wstring& name) override;
  void ReadString(const std::wstring& value) override;
  void ReadNumber(const std::wstring& lexical) override;
  void ReadStartObject() override;
  void ReadEndObject() override;
  void ReadStartArray() override;
  void ReadEndArray() override;
  void ReadBool(bool value) override;
  void ReadNull() override;

 private:
  // What the next value becomes.
  enum class Target { Content, Element, Attribute, Text };

  void StartElement(const std::wstring& name);
  void EndElement();
  void WriteText(const std::wstring& value);
  void WriteAttribute(const std::wstring& value);
  void CountRepeatedName(std::size_t length);
  [[noreturn]] void FailAttributeValue(const std::wstring& value) const;
  [[noreturn]] void Fail(const std::wstring& message) const;

  CXmlTextWriter& m_writer;
  JsonRoundTrip m_mode;
  const IErrorPathProvider* m_errorPath;
  Target m_target = Target::Content;
  std::wstring m_name;                 // of the element or attribute that the next value becomes
  std::vector<bool> m_objects;         // for each open object, whether it is an element of its own
  std::vector<std::wstring> m_arrays;  // the names of open arrays; those beyond m_arrayCount keep their storage
  std::size_t m_arrayCount = 0;
  const CJsonTextReader* m_reader = nullptr;
  CLargeVector<std::uint64_t>* m_nodes = nullptr;
  bool m_areDeclarationsNodes = false;
  const CReadLimits* m_limits = nullptr;
  std::size_t m_jsonLength = 0;
  std::size_t m_repeatedCharacters = 0;
};

}  // namespace RkXmlLib16

#endif
