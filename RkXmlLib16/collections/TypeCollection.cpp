#include "RkXmlLib16/collections/TypeCollection.h"

#include <utility>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/internal/TextOrEmpty.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/document/internal/ElementNameMatch.h"
#include "RkXmlLib16/document/internal/NodeText.h"
#include "RkXmlLib16/document/internal/Refusal.h"

namespace RkXmlLib16 {

namespace {

void TellDroppedAttributes(const CSerializationContext& context, const CXmlElement& item) {
  if (context.GetErrorHandler() == nullptr) return;
  for (const CXmlAttribute* attribute : item.GetAttributes())
    if (!attribute->IsNamespaceAttribute()) TellDropped(context, RkDropped_ItemAttribute, *attribute);
}

}  // namespace

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

void CXmlTypeCollection::SetPath(CRkException& error, std::size_t index) const {
  std::wstring path = L'/' + GetElementNameRef();
  if (GetCount() > 1) path += L'[' + std::to_wstring(index + 1) + L']';
  error.SetLocation(CRkLocation(std::move(path)));
}

CXmlElement* CXmlTypeCollection::FromXml_Int(CXmlElement* /*parent*/, CXmlElement* current,
                                             const CSerializationContext& context, bool /*isOptionalChoice*/) {
  for (; ElementNameMatches(context, current, GetElementNameRef(), GetNamespace());
       current = current->GetNextSiblingElement()) {
    CErrorSession::NoteRead(context, current);
    if (!current->GetAttributes().empty()) TellDroppedAttributes(context, *current);
    const CNodeText text(*current);
    try {
      AddFromString(text.Get());
    } catch (CRkException& e) {
      if (e.GetRefusedValue() == nullptr)
        e.SetRefusedValue({GetElementName(), text.Get(), NameOfXsdType(m_itemType), {}, {}});
      RefuseCaught(context, e, *current);
    }
  }
  return current;
}

}  // namespace RkXmlLib16
