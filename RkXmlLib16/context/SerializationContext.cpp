#include "RkXmlLib16/context/SerializationContext.h"

#include <memory>
#include <new>
#include <utility>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/internal/TextOrEmpty.h"
#include "RkXmlLib16/context/FastInfosetContext.h"
#include "RkXmlLib16/context/JsonContext.h"
#include "RkXmlLib16/context/internal/ErrorSession.h"

namespace RkXmlLib16 {

namespace {

constexpr wchar_t kSetMandatoryFirst[] =
    L"The parser can only ignore additional elements, or ignore the fact that some required ones are missing, you can "
    L"not ignore both\nSet IgnoreMissingMandatoryElements to false before setting IgnoreUnknownElements to true";
constexpr wchar_t kSetUnknownFirst[] =
    L"The parser can only ignore additional elements, or ignore the fact that some required ones are missing, you can "
    L"not ignore both\nSet IgnoreUnknownElements to false before setting IgnoreMissingMandatoryElements to true";

}  // namespace

// The bytes of m_defaultContext, under its symbol, so that the object is made when the library is loaded and nothing
// destroys it.
alignas(CSerializationContext) RKXML_EXPORT
    extern unsigned char g_defaultContext[sizeof(CSerializationContext)] __asm__(
        "_ZN10RkXmlLib1621CSerializationContext16m_defaultContextE");
alignas(CSerializationContext) unsigned char g_defaultContext[sizeof(CSerializationContext)];
[[maybe_unused]] static const void* const kMadeAtLoad = ::new (g_defaultContext) CSerializationContext;

CSerializationContext::CSerializationContext() = default;
CSerializationContext::CSerializationContext(const CSerializationContext& other) = default;
CSerializationContext& CSerializationContext::operator=(const CSerializationContext& other) = default;
CSerializationContext::~CSerializationContext() = default;

void CSerializationContext::SetIgnoreUnknownElements(bool ignore) {
  if (ignore && m_settings.ignoreMissingMandatoryElements) throw CRkInvalidStateException(kSetMandatoryFirst);
  m_settings.ignoreUnknownElements = ignore;
}

void CSerializationContext::SetIgnoreMissingMandatoryElements(bool ignore) {
  if (ignore && m_settings.ignoreUnknownElements) throw CRkInvalidStateException(kSetUnknownFirst);
  m_settings.ignoreMissingMandatoryElements = ignore;
}

void CSerializationContext::SetDefaultNamespaceURI(const wchar_t* namespaceUri) {
  m_settings.defaultNamespaceUri = TextOrEmpty(namespaceUri);
}

void CSerializationContext::SetInLineSchema(const wchar_t* schemaText) {
  m_settings.inLineSchema = TextOrEmpty(schemaText);
}

void CSerializationContext::SetIndentChars(const wchar_t* text) {
  std::wstring indent(TextOrEmpty(text));
  if (indent.find_first_not_of(L"\t ") != std::wstring::npos) {
    throw CRkInvalidParamException(L"IndentChars can only contain Whitespace characters, i.e. \\t or spaces");
  }
  m_settings.indentChars = std::move(indent);
}

bool CSerializationContext::TellError(const CRkException& error) const { return CErrorSession::Tell(*this, error); }

bool CSerializationContext::HasAdditionalRootAttributes() const {
  return m_settings.additionalRootAttributes.Peek() != nullptr;
}

CFastInfosetContext* CSerializationContext::GetFIContext() const {
  return m_settings.fastInfosetContext.Get([] { return std::make_shared<CFastInfosetContext>(); });
}

CJsonContext* CSerializationContext::GetJsonContext() const {
  return m_settings.jsonContext.Get([] { return std::make_shared<CJsonContext>(); });
}

}  // namespace RkXmlLib16
