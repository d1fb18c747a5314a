#ifndef RKXMLLIB16_CORE_FILEOUTPUT_H
#define RKXMLLIB16_CORE_FILEOUTPUT_H

#include "RkXmlLib16/core/Enumerations.h"
#include "RkXmlLib16/support/BinaryStream.h"

namespace RkXmlLib16 {

// What the entry points that write files share.

// Throws CRkException "ZLIB Compression only available for To Stream methods.".
void RequireFileCompression(CompressionType compression);
// Whether a text document is to be written straight to its file.
bool WritesDirectly(CompressionType compression);

// Writes finished bytes, after the byte order mark that the encoding asks for.
inline void WriteFile(const wchar_t* fileName, XmlEncoding encoding, CBinaryData bytes) {
  CFileBinaryStream(fileName, encoding, bytes).ToFile();
}

}  // namespace RkXmlLib16

#endif
