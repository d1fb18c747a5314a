// The entry points of CXmlObjectBase for writing Fast Infoset; reading goes through those for XML.
#include "RkXmlLib16/binding/internal/EntryPointTools.h"
#include "RkXmlLib16/context/FastInfosetContext.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/fastinfoset/Writer.h"

namespace RkXmlLib16 {

CBinaryData CXmlObjectBase::ToFastInfosetStream(FInfoDecl declaration, const CSerializationContext& context,
                                                CompressionType compression) const {
  CBinaryStream stream;
  CFastInfosetWriter writer(*context.GetFIContext(), stream);
  writer.Open();
  writer.SetWellFormedOutput(context.GetWellFormedOutput());
  writer.WriteStartDocument(declaration);
  ToXml_Int(&writer, true, GetTargetNamespace(), context, false);
  writer.WriteEndDocument();
  writer.Close();
  return Guarded([&] { return Compressed(stream.GetBinaryStream(), compression); });
}

void CXmlObjectBase::ToFastInfosetFile(const wchar_t* fileName, FInfoDecl declaration,
                                       const CSerializationContext& context, CompressionType compression) const {
  CXmlObjectBase::ToFastInfosetFile(CFileName(fileName), declaration, context, compression);
}

void CXmlObjectBase::ToFastInfosetFile(const CFileName& fileName, FInfoDecl declaration,
                                       const CSerializationContext& context, CompressionType compression) const {
  RequireFileCompression(compression);
  WriteFile(fileName, XmlEncoding_None, ToFastInfosetStream(declaration, context, compression));
}

}  // namespace RkXmlLib16
