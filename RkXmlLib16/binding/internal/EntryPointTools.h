#ifndef RKXMLLIB16_BINDING_INTERNAL_ENTRYPOINTTOOLS_H
#define RKXMLLIB16_BINDING_INTERNAL_ENTRYPOINTTOOLS_H

#include <exception>
#include <new>
#include <string>
#include <utility>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/context/internal/ErrorSession.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/io/BinaryStream.h"
#include "RkXmlLib16/io/TextStream.h"
#include "RkXmlLib16/io/Zip.h"
#include "RkXmlLib16/object/XmlObjectBase.h"

// What the entry points of the three document forms share.
namespace RkXmlLib16 {

class CJsonTextWriter;
class CXmlTextWriter;

// What the context and the arguments of a call tell a writer.
void ApplySettings(CXmlTextWriter& writer, bool formatted, EOLType eol, const CSerializationContext& context);
void ApplySettings(CJsonTextWriter& writer, bool formatted, EOLType eol, const CSerializationContext& context);

// Runs a part of an entry point that calls no code of the application; a failure of the standard library in it (a
// length that overflows, say) leaves as a CRkException. Exhausted memory stays std::bad_alloc.
template <class Work>
auto Guarded(Work&& work) {
  try {
    return std::forward<Work>(work)();
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& e) {
    const std::string reason = e.what();
    throw CRkException(std::wstring(reason.begin(), reason.end()));
  }
}

// Fills the object from the document that `load` loads.
template <class Load>
void ReadDocument(CXmlObjectBase& object, const CSerializationContext& context, Load&& load) {
  CErrorSession session(context);
  session.Run([&] {
    CXmlDocument document(context);
    document.SetInputStays(true);
    Guarded([&] { load(document); });
    const CXmlElement* const root = document.GetDocumentElement();
    object.FromXmlElement(root, context);
  });
}

// The text as FromXml(const wchar_t*) takes it: characters above U+FFFF as surrogate pairs.
std::wstring SplitPairs(std::wstring text);

// Throws CRkException "ZLIB Compression only available for To Stream methods.".
void RequireFileCompression(CompressionType compression);
// Whether a text document goes straight to its file.
bool WritesDirectly(CompressionType compression);

inline CBinaryData Compressed(CBinaryData bytes, CompressionType compression) {
  CRkZip::CompressData(bytes, compression);
  return bytes;
}

inline std::string TextOf(const CBinaryData& utf8) {
  return Guarded([&] { return std::string(reinterpret_cast<const char*>(utf8.GetData()), utf8.GetLength()); });
}

// Writes finished bytes, after the byte order mark that the encoding asks for.
inline void WriteFile(const CFileName& fileName, XmlEncoding encoding, CBinaryData bytes) {
  CFileBinaryStream(fileName, encoding, bytes).ToFile();
}

}  // namespace RkXmlLib16

#endif
