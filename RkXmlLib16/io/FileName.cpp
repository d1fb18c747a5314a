#include "RkXmlLib16/io/FileName.h"

#include "RkXmlLib16/base/internal/TextOrEmpty.h"
#include "RkXmlLib16/io/Encoder.h"

namespace RkXmlLib16 {

CFileName::CFileName(const char* name) : CFileName(std::string(name != nullptr ? name : "")) {}
CFileName::CFileName(std::string name) : m_bytes(std::move(name)), m_text(FromUtf8(m_bytes)) {}
CFileName::CFileName(const wchar_t* name) : m_bytes(UnicodeToMultiByte(name)), m_text(TextOrEmpty(name)) {}

}  // namespace RkXmlLib16
