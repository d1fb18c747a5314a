// The entry points of CXmlObjectBase for JSON.
#include <string>
#include <string_view>

#include "RkXmlLib16/binding/internal/EntryPointTools.h"
#include "RkXmlLib16/context/JsonContext.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/io/Encoder.h"
#include "RkXmlLib16/json/JsonTextWriter.h"

namespace RkXmlLib16 {

namespace {

void WriteJsonText(const CXmlObjectBase& object, CTextStream& stream, bool formatted, EOLType eol,
                   const CSerializationContext& context) {
  const CJsonContext& settings = *context.GetJsonContext();
  CJsonTextWriter writer(stream);
  writer.Open();
  writer.SetFormat(formatted);
  writer.SetIndentChars(context.GetIndentChars().c_str());
  writer.SetEOLType(eol);
  writer.SetSupportRoundtrip(settings.GetSupportRoundtrip());
  writer.SetStrictOutput(settings.GetStrictOutput() || context.GetWellFormedOutput());
  writer.SetWellFormedOutput(context.GetWellFormedOutput());
  writer.WriteStartDocument();
  object.ToXml_Int(&writer, true, object.GetTargetNamespace(), context, false);
  writer.WriteEndDocument();
  writer.Close();
}

// Fills the object from JSON that `convert` turns into XML text in UTF-8. JSON without namespaces is matched without
// them, on a copy of the settings, so that nobody sees the caller's settings change.
template <class Convert>
void ReadJson(CXmlObjectBase& object, const CSerializationContext& context, Convert&& convert) {
  const CBinaryData utf8 = Guarded([&] {
    CXmlDocument document(context);
    return convert(document);
  });
  const auto load = [&utf8](CXmlDocument& document) {
    if (utf8.GetLength() == 0) {
      document.LoadXml("");
    } else {
      document.LoadXmlStream(utf8.GetData(), utf8.GetLength());
    }
  };
  try {
    if (context.GetJsonContext()->GetSupportRoundtrip() == JsonRoundTrip_Namespaces) {
      ReadDocument(object, context, load);
    } else {
      CSerializationContext ignoringNamespaces(context);
      ignoringNamespaces.SetIgnoreNamespaces(true);
      ReadDocument(object, ignoringNamespaces, load);
    }
  } catch (const CRkException& e) {
    const std::string_view text(reinterpret_cast<const char*>(utf8.GetData()), utf8.GetLength());
    throw CRkException(L"Error converting JSON to XML:\n" + CEncoder::Utf8ToUnicode(text), e);
  }
}

}  // namespace

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

// JSON never gets a byte order mark from the buffered road, whatever its encoding.
void CXmlObjectBase::ToJsonFile(const wchar_t* fileName, bool formatted, XmlEncoding encoding, EOLType eol,
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
  ReadJson(*this, context, [fileName](CXmlDocument& document) { return document.LoadJsonFile(fileName); });
}

void CXmlObjectBase::FromJsonStream(unsigned char* data, unsigned long length, const CSerializationContext& context) {
  ReadJson(*this, context, [data, length](CXmlDocument& document) { return document.LoadJsonStream(data, length); });
}

void CXmlObjectBase::FromJsonStream(const CBinaryData& data, const CSerializationContext& context) {
  FromJsonStream(data.GetData(), data.GetLength(), context);
}

}  // namespace RkXmlLib16
