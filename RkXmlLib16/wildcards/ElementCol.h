#ifndef RKXMLLIB16_WILDCARDS_ELEMENTCOL_H
#define RKXMLLIB16_WILDCARDS_ELEMENTCOL_H

#include "RkXmlLib16/collections/Collection.h"
#include "RkXmlLib16/wildcards/Element.h"
#include "RkXmlLib16/wildcards/NamespaceRule.h"

namespace RkXmlLib16 {

// The elements that a repeated element wildcard took, in document order, each with a namespace that its constraint
// admits.
class RKXML_EXPORT CElementCol : public CXmlCollection {
 public:
  // Any number of elements of any namespace.
  CElementCol();
  // `maxOccurs` -1 means unbounded. `constraint` is "##any", "##other", "##local", "##targetNamespace", a URI, or a
  // list of these with single blanks.
  CElementCol(const wchar_t* name, const wchar_t* namespaceUri, int minOccurs, int maxOccurs,
              const wchar_t* constraint = L"##any", const wchar_t* targetNamespace = L"");
  ~CElementCol() override;

  // Writes every element in its own namespace.
  void ToXml_Int(CXmlWriter* writer, bool registerNamespaces, const wchar_t* namespaceUri,
                 const CSerializationContext& context, bool isOptionalChoice) const override;
  // Takes `current` and its next siblings, as long as the constraint admits their namespaces, and returns the first one
  // that it does not.
  CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* current, const CSerializationContext& context,
                           bool isOptionalChoice) override;
  using CXmlObjectBase::FromXml_Int;
  using CXmlObjectBase::ToXml_Int;

  // The same for elements of this local name only.
  virtual CXmlElement* FromXmlLockElementName_Int(const wchar_t* elementName, const wchar_t* namespaceUri,
                                                  CXmlElement* parent, CXmlElement* current,
                                                  const CSerializationContext& context);

  // Appends an element. Throws CRkInvalidNamespaceException "Invalid Namespace [%ls].".
  void Add(CElement* element);
  // The list operations of the base, with the same test.
  void AppendItem(CElement* element);
  void PrependItem(CElement* element);
  void AddItemAt(int index, CElement* element);
  void AddAfterItem(const CXmlObjectBase* existing, CElement* element);
  void AddBeforeItem(const CXmlObjectBase* existing, CElement* element);

  // The element at the index; it belongs to the collection. Throws CRkInvalidParamException
  // "Index %d is out of range, use 0 - %d".
  CElement* Item(int index) const;
  // The first element with this name, or null.
  CElement* Find(const wchar_t* localName, const wchar_t* namespaceUri = L"") const;

  // The elements as references: for (CElement& element : elements).
  CIterator<CElement> begin() const noexcept { return CIterator<CElement>(GetFirstNode()); }
  CIterator<CElement> end() const noexcept { return {}; }

  const wchar_t* GetNamespaceConstraint() const noexcept;
  const wchar_t* GetConstraintTargetNamespace() const noexcept;

 protected:
  // Appends the element, which is admitted, with all below it; returns the element behind it.
  RKXML_HIDDEN CXmlElement* TakeElement(CXmlElement* element, const CSerializationContext& context);

 private:
  void Test(const CElement* element) const;

  CNamespaceRule m_rule;
};

}  // namespace RkXmlLib16

#endif
