#include "RkXmlLib16/core/internal/ElementNameMatch.h"

#include "RkXmlLib16/core/XmlObjectBase.h"
#include "RkXmlLib16/core/internal/TextOrEmpty.h"
#include "RkXmlLib16/metadata/FacetChecks.h"

namespace RkXmlLib16 {

bool CXmlObjectHelper::DoesElementNameMatch(const CSerializationContext& ctx, const CXmlElement* element,
                                            const std::wstring& localName, const std::wstring& namespaceUri) {
  return ElementNameMatches(ctx, element, localName, namespaceUri);
}

bool CXmlObjectBase::DoesElementNameMatch(const CSerializationContext& context, const CXmlElement* element,
                                          const wchar_t* localName, const wchar_t* namespaceUri) const {
  return ElementNameMatches(context, element, TextOrEmpty(localName), TextOrEmpty(namespaceUri));
}

}  // namespace RkXmlLib16
