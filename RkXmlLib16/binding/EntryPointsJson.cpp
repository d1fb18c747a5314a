// The entry points of CXmlObjectBase for JSON.
#include <string>
#include <string_view>

#include "RkXmlLib16/base/internal/Overrider.h"
#include "RkXmlLib16/binding/internal/EntryPointTools.h"
#include "RkXmlLib16/context/JsonContext.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/io/Encoder.h"
#include "RkXmlLib16/json/JsonTextWriter.h"
#include "RkXmlLib16/wildcards/Element.h"

namespace RkXmlLib16 {

namespace {

void WriteJsonText(const CXmlObjectBase& object, CTextStream& stream, bool formatted, EOLType eol,
                   const CSerializationContext& context) {
  CJsonTextWriter writer(stream);
  writer.Open();
  ApplySettings(writer, formatted, eol, context);
  writer.WriteStartDocument();
  object.ToXml_Int(&writer, true, object.GetTargetNamespace(), context, false);
  writer.WriteEndDocument();
  writer.Close();
}

void LoadBytes(CXmlDocument& document, const CBinaryData& xml) {
  Guarded([&] {
    if (xml.GetLength() == 0)
      document.LoadXml("");
    else
      document.LoadXmlStream(xml.GetData(), xml.GetLength());
  });
}

std::wstring WideTextOf(const CBinaryData& utf8) {
  return CEncoder::Utf8ToUnicode(std::string_view(reinterpret_cast<const char*>(utf8.GetData()), utf8.GetLength()));
}

// Whether the object reads XML text in its own way; others are given the bytes, which saves a conversion.
bool OverridesFromXml(const CXmlObjectBase& object) {
  constexpr void (CXmlObjectBase::*kFromXml)(const wchar_t*, const CSerializationContext&) = &CXmlObjectBase::FromXml;
  static const void* const own = FindOverrider<CXmlObjectBase>(CElement(L""), kFromXml);
  return FindOverrider(object, kFromXml) != own;
}

CRkException ErrorWithText(const CBinaryData& xml, const CRkException& cause) {
  return CRkException::WithLateMessage([xml] { return L"Error converting JSON to XML:\n" + WideTextOf(xml); }, cause);
}

// Fills the object from XML text that was made of JSON. What is read is not indented, so that text beside children
// stays as it is; what an error shows is, which `toShown` makes, and its lines are those of the indented text.
template <class ToShown>
void ReadXmlOfJson(CXmlObjectBase& object, const CSerializationContext& context, CErrorSession& session,
                   CXmlDocument& json, const CBinaryData& xml, ToShown&& toShown) {
  CXmlDocument document(context);
  document.SetInputStays(true);
  bool isLoaded = false;
  try {
    session.Run([&] {
      if (OverridesFromXml(object)) {
        isLoaded = true;  // in its own way
        return object.FromXml(Guarded([&xml] { return SplitPairs(WideTextOf(xml)); }).c_str(), context);
      }
      Guarded([&] { document.LoadConverted(xml, json); });
      isLoaded = true;
      const CXmlElement* const root = document.GetDocumentElement();
      object.FromXmlElement(root, context);
    });
  } catch (const CRkException& e) {
    const CBinaryData shown = toShown();
    try {
      if (!isLoaded) LoadBytes(document, shown);
    } catch (CRkException& indented) {
      indented.SetLocation(e.GetLocation());
      throw ErrorWithText(shown, indented);
    }
    throw ErrorWithText(shown, e);
  }
}

// Fills the object from JSON that `convert` turns into XML text in UTF-8. JSON without namespaces is matched without
// them, on a copy of the settings, so that nobody sees the caller's settings change.
template <class Convert>
void ReadJson(CXmlObjectBase& object, const CSerializationContext& context, Convert&& convert) {
  CErrorSession session(context);
  CXmlDocument json(context);
  json.SetInputStays(true);
  json.SetIndentsJson(false);
  CBinaryData xml;
  session.Run([&] { xml = Guarded([&] { return convert(json); }); });
  const auto toShown = [&] {
    CSerializationContext quiet(context);
    quiet.SetErrorHandler(nullptr);
    CXmlDocument document(quiet);
    return Guarded([&] { return convert(document); });
  };
  if (context.GetJsonContext()->GetSupportRoundtrip() == JsonRoundTrip_Namespaces)
    return ReadXmlOfJson(object, context, session, json, xml, toShown);
  CSerializationContext ignoringNamespaces(context);
  ignoringNamespaces.SetIgnoreNamespaces(true);
  ReadXmlOfJson(object, ignoringNamespaces, session, json, xml, toShown);
}

}  // namespace

void ApplySettings(CJsonTextWriter& writer, bool formatted, EOLType eol, const CSerializationContext& context) {
  const CJsonContext& settings = *context.GetJsonContext();
  writer.SetFormat(formatted);
  writer.SetIndentChars(context.GetIndentChars().c_str());
  writer.SetEOLType(eol);
  writer.SetSupportRoundtrip(settings.GetSupportRoundtrip());
  writer.SetStrictOutput(settings.GetStrictOutput() || context.GetWellFormedOutput());
  writer.SetWellFormedOutput(context.GetWellFormedOutput());
}

std::wstring CXmlObjectBase::ToJson(bool formatted, EOLType eol, const CSerializationContext& context) const {
  CTextStream stream;
  WriteJsonText(*this, stream, formatted, eol, context);
  return Guarded([&] { return stream.ToString(); });
}

CBinaryData CXmlObjectBase::ToJsonStream(bool formatted, XmlEncoding encoding, EOLType eol,
                                         const CSerializationContext& context, CompressionType compression) const {
  if (encoding == XmlEncoding_UTF8) {
    CUtf8TextStream stream;
    WriteJsonText(*this, stream, formatted, eol, context);
    return Guarded([&] { return Compressed(stream.TakeBytes(), compression); });
  }
  CTextStream stream(encoding);
  WriteJsonText(*this, stream, formatted, eol, context);
  return Guarded([&] { return Compressed(stream.GetEncodedStream(), compression); });
}

std::string CXmlObjectBase::ToJsonUtf8(bool formatted, EOLType eol, const CSerializationContext& context) const {
  return TextOf(ToJsonStream(formatted, XmlEncoding_UTF8, eol, context, CompressionType_None));
}

void CXmlObjectBase::ToJsonFile(const wchar_t* fileName, bool formatted, XmlEncoding encoding, EOLType eol,
                                const CSerializationContext& context, CompressionType compression) const {
  CXmlObjectBase::ToJsonFile(CFileName(fileName), formatted, encoding, eol, context, compression);
}

// JSON never gets a byte order mark when it is buffered, whatever its encoding.
void CXmlObjectBase::ToJsonFile(const CFileName& fileName, bool formatted, XmlEncoding encoding, EOLType eol,
                                const CSerializationContext& context, CompressionType compression) const {
  RequireFileCompression(compression);
  if (WritesDirectly(compression)) {
    CFileTextStream stream(fileName, encoding);
    WriteJsonText(*this, stream, formatted, eol, context);
  } else {
    WriteFile(fileName, XmlEncoding_UTF8, ToJsonStream(formatted, encoding, eol, context, compression));
  }
}

void CXmlObjectBase::FromJson(const wchar_t* text, const CSerializationContext& context) {
  ReadJson(*this, context, [text](CXmlDocument& document) { return document.LoadJson(text); });
}

void CXmlObjectBase::FromJson(const char* text, const CSerializationContext& context) {
  ReadJson(*this, context, [text](CXmlDocument& document) { return document.LoadJson(text); });
}

void CXmlObjectBase::FromJsonFile(const wchar_t* fileName, const CSerializationContext& context) {
  CXmlObjectBase::FromJsonFile(CFileName(fileName), context);
}

void CXmlObjectBase::FromJsonFile(const CFileName& fileName, const CSerializationContext& context) {
  ReadJson(*this, context, [&fileName](CXmlDocument& document) { return document.LoadJsonFile(fileName); });
}

void CXmlObjectBase::FromJsonStream(unsigned char* data, unsigned long length, const CSerializationContext& context) {
  ReadJson(*this, context, [data, length](CXmlDocument& document) { return document.LoadJsonStream(data, length); });
}

void CXmlObjectBase::FromJsonStream(const CBinaryData& data, const CSerializationContext& context) {
  FromJsonStream(data.GetData(), data.GetLength(), context);
}

}  // namespace RkXmlLib16
