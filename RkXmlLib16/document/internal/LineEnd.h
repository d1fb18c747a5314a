#ifndef RKXMLLIB16_DOCUMENT_INTERNAL_LINEEND_H
#define RKXMLLIB16_DOCUMENT_INTERNAL_LINEEND_H

#include "RkXmlLib16/base/Enumerations.h"
#include "RkXmlLib16/base/Exception.h"

namespace RkXmlLib16 {

// The characters that end a line. Throws CRkException "Invalid EOL type.".
inline const wchar_t* LineEnd(EOLType type) {
  if (type != EOLType_CRLF && type != EOLType_LF) throw CRkException(L"Invalid EOL type.");
  return type == EOLType_CRLF ? L"\r\n" : L"\n";
}

}  // namespace RkXmlLib16

#endif
