#include "RkXmlLib16/collections/TypeCollection.h"

#include "RkXmlLib16/base/internal/TextOrEmpty.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/document/internal/ElementNameMatch.h"

namespace RkXmlLib16 {

CXmlTypeCollection::CXmlTypeCollection(ItemType type, const wchar_t* name, const wchar_t* namespaceUri, int minOccurs,
                                       int maxOccurs, const wchar_t* pattern, long minLength, long maxLength,
                                       const wchar_t* minInclusive, const wchar_t* maxInclusive,
                                       const wchar_t* minExclusive, const wchar_t* maxExclusive, long length,
                                       long totalDigits, long fractionDigits,
                                       CWhitespaceUtils::WhitespaceRule whitespaceRule, const wchar_t* format)
    : CXmlCollectionBase(name, namespaceUri, minOccurs, maxOccurs),
      m_restrictions(pattern, minLength, maxLength, minInclusive, maxInclusive, minExclusive, maxExclusive, length,
                     totalDigits, fractionDigits),
      m_itemType(type),
      m_format(TextOrEmpty(format)),
      m_whitespaceRule(whitespaceRule) {}

CXmlTypeCollection::~CXmlTypeCollection() = default;

CXmlElement* CXmlTypeCollection::FromXml_Int(CXmlElement* /*parent*/, CXmlElement* current,
                                             const CSerializationContext& context, bool /*isOptionalChoice*/) {
  for (; ElementNameMatches(context, current, GetElementNameRef(), GetNamespace());
       current = current->GetNextSiblingElement()) {
    AddFromString(current->GetText());
  }
  return current;
}

}  // namespace RkXmlLib16
