#include "RkXmlLib16/context/SerializationContext.h"

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/internal/TextOrEmpty.h"
#include "RkXmlLib16/context/FastInfosetContext.h"
#include "RkXmlLib16/context/JsonContext.h"

namespace RkXmlLib16 {

namespace {

constexpr wchar_t kSetMandatoryFirst[] =
    L"The parser can only ignore additional elements, or ignore the fact that some required ones are missing, you can "
    L"not ignore both\nSet IgnoreMissingMandatoryElements to false before setting IgnoreUnknownElements to true";
constexpr wchar_t kSetUnknownFirst[] =
    L"The parser can only ignore additional elements, or ignore the fact that some required ones are missing, you can "
    L"not ignore both\nSet IgnoreUnknownElements to false before setting IgnoreMissingMandatoryElements to true";

}  // namespace

CSerializationContext CSerializationContext::m_defaultContext;

CSerializationContext::CSerializationContext() = default;
CSerializationContext::~CSerializationContext() = default;

CSerializationContext::CSerializationContext(const CSerializationContext& other) { *this = other; }

CSerializationContext& CSerializationContext::operator=(const CSerializationContext& other) {
  if (this == &other) return *this;
  {
    const std::scoped_lock lock(m_lazyLock, other.m_lazyLock);
    m_fastInfosetContext = other.m_fastInfosetContext;
    m_jsonContext = other.m_jsonContext;
    m_additionalRootAttributes = other.m_additionalRootAttributes;
  }
  m_defaultNamespaceUri = other.m_defaultNamespaceUri;
  m_writeTypeAttribute = other.m_writeTypeAttribute;
  m_namespaceAliases = other.m_namespaceAliases;
  m_processingInstructions = other.m_processingInstructions;
  m_inLineSchema = other.m_inLineSchema;
  m_ignoreInvalidCollectionCounts = other.m_ignoreInvalidCollectionCounts;
  m_ignoreMissingChoice = other.m_ignoreMissingChoice;
  m_ignoreMissingMandatoryElements = other.m_ignoreMissingMandatoryElements;
  m_ignoreUnknownElements = other.m_ignoreUnknownElements;
  m_ignoreUnknownAttributes = other.m_ignoreUnknownAttributes;
  m_ignoreNamespaces = other.m_ignoreNamespaces;
  m_schemaType = other.m_schemaType;
  m_noOptionalAttributeDefaultOutput = other.m_noOptionalAttributeDefaultOutput;
  m_writeDefaultElementValues = other.m_writeDefaultElementValues;
  m_wellFormedOutput = other.m_wellFormedOutput;
  m_stripCDATA = other.m_stripCDATA;
  m_indentChars = other.m_indentChars;
  m_limits = other.m_limits;
  return *this;
}

void CSerializationContext::SetIgnoreUnknownElements(bool ignore) {
  if (ignore && m_ignoreMissingMandatoryElements) throw CRkInvalidStateException(kSetMandatoryFirst);
  m_ignoreUnknownElements = ignore;
}

void CSerializationContext::SetIgnoreMissingMandatoryElements(bool ignore) {
  if (ignore && m_ignoreUnknownElements) throw CRkInvalidStateException(kSetUnknownFirst);
  m_ignoreMissingMandatoryElements = ignore;
}

void CSerializationContext::SetDefaultNamespaceURI(const wchar_t* namespaceUri) {
  m_defaultNamespaceUri = TextOrEmpty(namespaceUri);
}

void CSerializationContext::SetInLineSchema(const wchar_t* schemaText) { m_inLineSchema = TextOrEmpty(schemaText); }

void CSerializationContext::SetIndentChars(const wchar_t* text) {
  std::wstring indent(TextOrEmpty(text));
  if (indent.find_first_not_of(L"\t ") != std::wstring::npos) {
    throw CRkInvalidParamException(L"IndentChars can only contain Whitespace characters, i.e. \\t or spaces");
  }
  m_indentChars = std::move(indent);
}

bool CSerializationContext::HasAdditionalRootAttributes() const {
  const std::scoped_lock lock(m_lazyLock);
  return m_additionalRootAttributes != nullptr;
}

CFastInfosetContext* CSerializationContext::GetFIContext() const {
  const std::scoped_lock lock(m_lazyLock);
  if (m_fastInfosetContext == nullptr) m_fastInfosetContext = std::make_shared<CFastInfosetContext>();
  return m_fastInfosetContext.get();
}

CJsonContext* CSerializationContext::GetJsonContext() const {
  const std::scoped_lock lock(m_lazyLock);
  if (m_jsonContext == nullptr) m_jsonContext = std::make_shared<CJsonContext>();
  return m_jsonContext.get();
}

}  // namespace RkXmlLib16
