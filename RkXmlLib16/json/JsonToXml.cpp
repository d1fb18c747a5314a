#include "RkXmlLib16/json/JsonToXml.h"

#include <algorithm>
#include <string_view>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/internal/NeverDestroyed.h"
#include "RkXmlLib16/context/JsonContext.h"
#include "RkXmlLib16/context/ReadLimits.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/internal/Names.h"
#include "RkXmlLib16/io/TextStream.h"
#include "RkXmlLib16/json/JsonTextReader.h"
#include "RkXmlLib16/types/BinaryData.h"
#include "RkXmlLib16/xml/XmlTextWriter.h"

namespace RkXmlLib16 {

namespace {

const CNeverDestroyed<std::wstring> kNoNamespace;

}  // namespace

CBinaryData CJsonTextReader::ConvertJsonToXml(const std::wstring& json, const CSerializationContext& context) {
  CJsonPlaces places;
  return ConvertJsonToXml(json, context, /*indented=*/true, places);
}

CBinaryData CJsonTextReader::ConvertJsonToXml(const std::wstring& json, const CSerializationContext& context,
                                              bool indented, CJsonPlaces& places) {
  const CJsonContext& settings = *context.GetJsonContext();
  CTextStream stream(XmlEncoding_UTF8);
  CXmlTextWriter writer(stream);
  writer.SetFormat(indented);
  writer.Open();
  writer.SetKeepTabs(context.GetWellFormedOutput());
  CJsonTextReader reader(json);
  CJsonReaderToXmlHandler handler(writer, settings.GetSupportRoundtrip(), reader.GetErrorPathProvider());
  handler.SetLimits(context.GetLimits(), json.size());
  reader.SetJsonReaderHandler(&handler);
  reader.SetAllowComments(settings.GetAllowComments());
  reader.SetRootElementName(settings.GetRootElementName());
  handler.SetPlaces(reader, places.nodes, context.GetSchemaType() == SchemaType_NoNamespaces);
  try {
    reader.Read();
    places.at = reader.GetPosition();
  } catch (const CRkException& e) {
    // A name or value that XML cannot hold is the matter of its member.
    const bool isMember = e.GetCode() == RkErrorCode_JsonName || e.GetCode() == RkErrorCode_JsonValue;
    places.at = isMember ? reader.GetItemStart() : reader.GetPosition();
    throw;
  }
  writer.Close();
  return stream.GetEncodedStream();
}

CJsonReaderToXmlHandler::CJsonReaderToXmlHandler(CXmlTextWriter& writer, JsonRoundTrip mode,
                                                 const IErrorPathProvider* errorPath)
    : m_writer(writer), m_mode(mode), m_errorPath(errorPath) {}

CJsonReaderToXmlHandler::~CJsonReaderToXmlHandler() = default;

void CJsonReaderToXmlHandler::SetLimits(const CReadLimits& limits, std::size_t jsonLength) {
  m_limits = &limits;
  m_jsonLength = jsonLength;
}

void CJsonReaderToXmlHandler::ReadStartDocument() {
  m_target = Target::Content;
  m_objects.clear();
  m_arrayCount = 0;
  m_repeatedCharacters = 0;
}

void CJsonReaderToXmlHandler::ReadEndDocument() {}

void CJsonReaderToXmlHandler::ReadName(const std::wstring& name) {
  const bool attribute = m_mode != JsonRoundTrip_Plain && !name.empty() && name[0] == L'@';
  m_name.assign(name, attribute ? 1 : 0, std::wstring::npos);
  if (m_name.empty()) throw CRkValidationException(L"JSON item has an empty Name.", m_errorPath->GetPath());
  if (attribute) {
    m_target = Target::Attribute;
  } else if (m_mode != JsonRoundTrip_Plain && name == L"#text") {
    m_target = Target::Text;
  } else {
    // Without markers what would be one is a name like any other, although no XML parser takes it.
    const bool isMarker = m_mode == JsonRoundTrip_Plain && (name == L"#text" || name[0] == L'@');
    if (!IsQName(std::wstring_view(name).substr(isMarker ? 1 : 0)))
      Fail(L"Failed to convert name '" + name + L"' to Element name in XML.");
    m_target = Target::Element;
  }
}

void CJsonReaderToXmlHandler::ReadString(const std::wstring& value) {
  const Target target = m_target;
  m_target = Target::Content;
  if (target == Target::Attribute) return WriteAttribute(value);
  if (target == Target::Element) StartElement(m_name);
  WriteText(value);
  if (target == Target::Element) EndElement();
}

void CJsonReaderToXmlHandler::ReadNumber(const std::wstring& lexical) { ReadString(lexical); }

void CJsonReaderToXmlHandler::ReadBool(bool value) { ReadString(value ? L"true" : L"false"); }

// An element stays empty; an attribute, a text and an item after the first leave nothing.
void CJsonReaderToXmlHandler::ReadNull() {
  if (m_target == Target::Element) {
    StartElement(m_name);
    EndElement();
  }
  m_target = Target::Content;
}

void CJsonReaderToXmlHandler::ReadStartObject() {
  bool element = true;
  if (m_target == Target::Attribute) {
    FailAttributeValue(L"{");
  } else if (m_target == Target::Element) {
    StartElement(m_name);
  } else if (m_target == Target::Content && m_arrayCount != 0) {
    const std::wstring& name = m_arrays[m_arrayCount - 1];
    CountRepeatedName(name.size());
    StartElement(name);
  } else {
    element = false;
  }
  m_objects.push_back(element);
  m_target = Target::Content;
}

void CJsonReaderToXmlHandler::ReadEndObject() {
  if (m_target == Target::Element) ReadNull();  // a root element name around no value at all
  m_target = Target::Content;
  if (m_objects.empty()) return;
  if (m_objects.back()) EndElement();
  m_objects.pop_back();
}

void CJsonReaderToXmlHandler::ReadStartArray() {
  if (m_target == Target::Attribute) FailAttributeValue(L"[");
  if (m_target != Target::Element) throw CRkValidationException(L"JSON Array has no Name.", m_errorPath->GetPath());
  // The name stays that of the first item.
  if (m_arrayCount == m_arrays.size()) m_arrays.emplace_back();
  m_arrays[m_arrayCount++] = m_name;
}

void CJsonReaderToXmlHandler::ReadEndArray() {
  m_target = Target::Content;  // the name of an empty array is no element
  if (m_arrayCount != 0) --m_arrayCount;
}

void CJsonReaderToXmlHandler::StartElement(const std::wstring& name) {
  if (m_nodes != nullptr) m_nodes->push_back(m_reader->GetItemStart());
  try {
    m_writer.WriteStartElement(name, kNoNamespace.Get());
  } catch (const CRkException&) {
    Fail(L"Failed to convert name '" + name + L"' to Element name in XML.");
  }
}

void CJsonReaderToXmlHandler::EndElement() { m_writer.WriteEndElement(); }

void CJsonReaderToXmlHandler::WriteText(const std::wstring& value) {
  const auto fail = [&] { Fail(L"Failed to convert value '" + value + L"' to Element string value in XML."); };
  if (!IsXmlText(value)) fail();
  try {
    m_writer.WriteData(value);
  } catch (const CRkException&) {
    fail();
  }
}

void CJsonReaderToXmlHandler::WriteAttribute(const std::wstring& value) {
  if (!IsQName(m_name) || !IsXmlText(value)) FailAttributeValue(value);
  const bool isDeclaration = m_name.compare(0, 5, L"xmlns") == 0 && (m_name.size() == 5 || m_name[5] == L':');
  if (m_nodes != nullptr && (!isDeclaration || m_areDeclarationsNodes)) m_nodes->push_back(m_reader->GetItemStart());
  try {
    if (isDeclaration)
      m_writer.WriteDeclaration(std::wstring_view(m_name).substr(std::min<std::size_t>(m_name.size(), 6)), value);
    else
      m_writer.WriteAttributeString(m_name, kNoNamespace.Get(), value, ItemType_string);
  } catch (const CRkException&) {
    FailAttributeValue(value);
  }
}

void CJsonReaderToXmlHandler::CountRepeatedName(std::size_t length) {
  if (m_limits == nullptr) return;
  m_repeatedCharacters += length;
  const unsigned long ratio = m_limits->GetMaxExpansionRatio();
  if (ratio != 0 && m_repeatedCharacters > m_limits->GetExpansionRatioFrom() &&
      m_repeatedCharacters / ratio > m_jsonLength)
    CReadLimits::ThrowExceeded(L"expansion ratio", ratio, m_errorPath->GetPath());
}

void CJsonReaderToXmlHandler::FailAttributeValue(const std::wstring& value) const {
  Fail(L"Failed to convert value '" + value + L"' to Attribute string value in XML.");
}

void CJsonReaderToXmlHandler::Fail(const std::wstring& message) const {
  throw CRkInvalidStateException(CRkException(message, m_errorPath->GetPath()));
}

}  // namespace RkXmlLib16
