// The entry points of CXmlObjectBase for XML text, and those for reading whatever the form of the bytes.
#include <algorithm>
#include <atomic>
#include <string>

#include "RkXmlLib16/base/internal/CodePoints.h"
#include "RkXmlLib16/binding/internal/EntryPointTools.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/facets/internal/PatternBudget.h"
#include "RkXmlLib16/wildcards/Element.h"
#include "RkXmlLib16/xml/XmlTextWriter.h"

namespace RkXmlLib16 {

namespace {

std::atomic<bool> directWrite{false};

void WriteXmlText(const CXmlObjectBase& object, CTextStream& stream, bool includeDocumentHeader, bool formatted,
                  EOLType eol, const CSerializationContext& context) {
  CXmlTextWriter writer(stream);
  writer.Open();
  ApplySettings(writer, formatted, eol, context);
  if (includeDocumentHeader) writer.WriteStartDocument();
  object.ToXml_Int(&writer, true, object.GetTargetNamespace(), context, false);
  writer.Close();
}

}  // namespace

void AsyncToXmlFile(bool enable) { directWrite = enable; }
void AsyncFromXmlFile(bool /*enable*/) {}

void ApplySettings(CXmlTextWriter& writer, bool formatted, EOLType eol, const CSerializationContext& context) {
  writer.SetFormat(formatted);
  writer.SetIndentChars(context.GetIndentChars().c_str());
  writer.SetEOLType(eol);
  writer.SetWellFormedOutput(context.GetWellFormedOutput());
  writer.SetEscapesSections(context.GetEscapeCDATA());
}

void RequireFileCompression(CompressionType compression) {
  if (compression == CompressionType_ZLib) {
    throw CRkException(L"ZLIB Compression only available for To Stream methods.");
  }
}

std::wstring SplitPairs(std::wstring text) {
  const auto isUnit = [](wchar_t c) { return static_cast<char32_t>(c) < 0x10000; };
  if (std::all_of(text.begin(), text.end(), isUnit)) return text;
  std::wstring units;
  for (const wchar_t c : text) {
    if (isUnit(c)) {
      units += c;
      continue;
    }
    const auto whole = static_cast<char32_t>(c);
    char16_t pair[2];
    units.append(pair, Utf16Form::Put(IsScalarValue(whole) ? whole : kReplacementCharacter, pair));
  }
  return units;
}

bool WritesDirectly(CompressionType compression) { return directWrite && compression == CompressionType_None; }

std::wstring CXmlObjectBase::ToXml(bool includeDocumentHeader, bool formatted, EOLType eol,
                                   const CSerializationContext& context) const {
  CTextStream stream;
  WriteXmlText(*this, stream, includeDocumentHeader, formatted, eol, context);
  return Guarded([&] { return stream.ToString(); });
}

CBinaryData CXmlObjectBase::ToXmlStream(bool includeDocumentHeader, bool formatted, XmlEncoding encoding, EOLType eol,
                                        const CSerializationContext& context, CompressionType compression) const {
  if (encoding == XmlEncoding_UTF8) {
    CUtf8TextStream stream;
    WriteXmlText(*this, stream, includeDocumentHeader, formatted, eol, context);
    return Guarded([&] { return Compressed(stream.TakeBytes(), compression); });
  }
  CTextStream stream(encoding);
  WriteXmlText(*this, stream, includeDocumentHeader, formatted, eol, context);
  return Guarded([&] { return Compressed(stream.GetEncodedStream(), compression); });
}

std::string CXmlObjectBase::ToXmlUtf8(bool includeDocumentHeader, bool formatted, EOLType eol,
                                      const CSerializationContext& context) const {
  return TextOf(ToXmlStream(includeDocumentHeader, formatted, XmlEncoding_UTF8, eol, context, CompressionType_None));
}

void CXmlObjectBase::ToXmlFile(const wchar_t* fileName, bool includeDocumentHeader, bool formatted,
                               XmlEncoding encoding, EOLType eol, const CSerializationContext& context,
                               CompressionType compression) const {
  CXmlObjectBase::ToXmlFile(CFileName(fileName), includeDocumentHeader, formatted, encoding, eol, context, compression);
}

void CXmlObjectBase::ToXmlFile(const CFileName& fileName, bool includeDocumentHeader, bool formatted,
                               XmlEncoding encoding, EOLType eol, const CSerializationContext& context,
                               CompressionType compression) const {
  RequireFileCompression(compression);
  if (WritesDirectly(compression)) {
    CFileTextStream stream(fileName, encoding);
    WriteXmlText(*this, stream, includeDocumentHeader, formatted, eol, context);
  } else {
    WriteFile(fileName, encoding, ToXmlStream(includeDocumentHeader, formatted, encoding, eol, context, compression));
  }
}

void CXmlObjectBase::FromXml(const wchar_t* text, const CSerializationContext& context) {
  ReadDocument(*this, context, [text](CXmlDocument& document) { document.LoadXml(text); });
}

void CXmlObjectBase::FromXml(const char* text, const CSerializationContext& context) {
  ReadDocument(*this, context, [text](CXmlDocument& document) { document.LoadXml(text); });
}

void CXmlObjectBase::FromXmlFile(const wchar_t* fileName, const CSerializationContext& context) {
  CXmlObjectBase::FromXmlFile(CFileName(fileName), context);
}

void CXmlObjectBase::FromXmlFile(const CFileName& fileName, const CSerializationContext& context) {
  ReadDocument(*this, context, [&fileName](CXmlDocument& document) { document.Load(fileName); });
}

void CXmlObjectBase::FromXmlStream(unsigned char* data, unsigned long length, const CSerializationContext& context) {
  ReadDocument(*this, context, [data, length](CXmlDocument& document) { document.LoadXmlStream(data, length); });
}

void CXmlObjectBase::FromXmlStream(const CBinaryData& data, const CSerializationContext& context) {
  FromXmlStream(data.GetData(), data.GetLength(), context);
}

void CXmlObjectBase::FromXmlElement(const CXmlElement* element, const CSerializationContext& context) {
  if (element == nullptr) throw CRkException(L"The document contains no element.");
  const PatternBudget budget(context.GetLimits().GetMaxPatternSteps(),
                             [](unsigned long limit) { CReadLimits::ThrowExceeded(L"pattern steps", limit); });
  CErrorSession session(context);
  session.Run([&] { FromXml_Int(const_cast<CXmlElement*>(element), element->GetFirstElement(), context, false); });
}

void CXmlObjectBase::FromXmlElement(const CElement* element, const CSerializationContext& context) {
  if (element == nullptr) throw CRkException(L"The document contains no element.");
  const std::wstring text = element->ToXml(false, false, EOLType_LF, GetDefaultContext());
  FromXml(Guarded([&text] { return SplitPairs(text); }).c_str(), context);
}

}  // namespace RkXmlLib16
