#ifndef RKXMLLIB16_COLLECTIONS_TYPECOLLECTION_H
#define RKXMLLIB16_COLLECTIONS_TYPECOLLECTION_H

#include <cstddef>
#include <string>

#include "RkXmlLib16/base/Enumerations.h"
#include "RkXmlLib16/collections/CollectionBase.h"
#include "RkXmlLib16/facets/PrimitiveRestrictions.h"
#include "RkXmlLib16/types/Whitespace.h"

namespace RkXmlLib16 {

class CRkException;

// The base of the value collections: what their items have in common, and the reading of items from consecutive
// elements.
class RKXML_EXPORT CXmlTypeCollection : public CXmlCollectionBase {
 public:
  // The ten arguments between the limits and the whitespace rule are the facets, in the order of
  // CPrimitiveRestrictions. `format` is handed to the conversion when a value is written; null is the empty text.
  CXmlTypeCollection(ItemType type, const wchar_t* name, const wchar_t* namespaceUri, int minOccurs, int maxOccurs,
                     const wchar_t* pattern, long minLength, long maxLength, const wchar_t* minInclusive,
                     const wchar_t* maxInclusive, const wchar_t* minExclusive, const wchar_t* maxExclusive, long length,
                     long totalDigits, long fractionDigits, CWhitespaceUtils::WhitespaceRule whitespaceRule,
                     const wchar_t* format);
  ~CXmlTypeCollection() override;

  // Adds the text of `current` and of its next siblings, as long as they bear the name of the items, and returns the
  // first element that does not. Attributes of the elements are not examined.
  CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* current, const CSerializationContext& context,
                           bool isOptionalChoice) override;
  using CXmlObjectBase::FromXml_Int;

  // Converts the text under the whitespace rule and adds the value.
  virtual void AddFromString(std::wstring text) = 0;

  ItemType GetItemType() const noexcept { return m_itemType; }
  const CPrimitiveRestrictions& GetRestrictions() const noexcept { return m_restrictions; }
  const std::wstring& GetFormat() const noexcept { return m_format; }
  CWhitespaceUtils::WhitespaceRule GetWhitespaceRule() const noexcept { return m_whitespaceRule; }

 protected:
  // Begins the path of an error of writing, at the item in this place.
  void SetPath(CRkException& error, std::size_t index) const;

 private:
  CPrimitiveRestrictions m_restrictions;
  ItemType m_itemType;
  std::wstring m_format;
  CWhitespaceUtils::WhitespaceRule m_whitespaceRule;
};

}  // namespace RkXmlLib16

#endif
