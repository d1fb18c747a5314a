#include "RkXmlLib16/document/internal/ElementNameMatch.h"

#include "RkXmlLib16/base/internal/TextOrEmpty.h"
#include "RkXmlLib16/facets/FacetChecks.h"
#include "RkXmlLib16/object/XmlObjectBase.h"

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
