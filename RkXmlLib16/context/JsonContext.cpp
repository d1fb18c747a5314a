#include "RkXmlLib16/context/JsonContext.h"

namespace RkXmlLib16 {

CJsonContext::CJsonContext() = default;
CJsonContext::CJsonContext(const CJsonContext& other) = default;
CJsonContext& CJsonContext::operator=(const CJsonContext& other) = default;
CJsonContext::~CJsonContext() = default;

void CJsonContext::SetRootElementName(const wchar_t* name) { m_rootElementName = name != nullptr ? name : L""; }

}  // namespace RkXmlLib16
