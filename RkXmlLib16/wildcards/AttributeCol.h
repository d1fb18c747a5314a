#ifndef RKXMLLIB16_WILDCARDS_ATTRIBUTECOL_H
#define RKXMLLIB16_WILDCARDS_ATTRIBUTECOL_H

#include <memory>
#include <string>
#include <typeinfo>

#include "RkXmlLib16/collections/Collection.h"
#include "RkXmlLib16/wildcards/NamespaceRule.h"

namespace RkXmlLib16 {

class CXmlAttribute;

// One attribute that no schema describes: local name, namespace URI and value. It can be written onto an open start
// tag, but is no document of its own.
class RKXML_EXPORT CAttribute : public CXmlObjectBase {
 public:
  CAttribute();
  // Null arguments are empty texts.
  CAttribute(const wchar_t* localName, const wchar_t* value, const wchar_t* namespaceUri = L"");
  ~CAttribute() override;

  CXmlObjectBase* GetBase() override;
  using CXmlObjectBase::GetBase;
  const wchar_t* GetTargetNamespace() const override;
  const wchar_t* GetNamespace() const override;
  // Both write the attribute onto the open start tag.
  void AttributesToXml_Int(CXmlWriter* writer, const CSerializationContext& context) const override;
  void ToXml_Int(CXmlWriter* writer, bool registerNamespaces, const wchar_t* namespaceUri,
                 const CSerializationContext& context, bool isOptionalChoice) const override;
  // Throws CRkException "An attribute cannot be read from an element.".
  CXmlElement* FromXml_Int(CXmlElement* element, CXmlElement* firstChild, const CSerializationContext& context,
                           bool isOptionalChoice) override;
  using CXmlObjectBase::AttributesToXml_Int;
  using CXmlObjectBase::FromXml_Int;
  using CXmlObjectBase::ToXml_Int;

  // The local name is the element name of the base.
  const std::wstring& GetLocalName() const noexcept { return GetElementNameRef(); }
  const std::wstring& GetValue() const noexcept { return m_value; }
  void SetValue(const wchar_t* value);

 private:
  friend class CAttributeCol;
  friend class CElement;

  explicit CAttribute(const CXmlAttribute& source);
  const std::wstring& GetNamespaceRef() const noexcept;
  // The attribute that the object is, or null.
  static CAttribute* Of(CXmlObjectBase* object) noexcept {
    const bool isAttribute = object != nullptr && typeid(*object) == typeid(CAttribute);
    return isAttribute ? static_cast<CAttribute*>(object) : dynamic_cast<CAttribute*>(object);
  }

  std::wstring m_value;
  std::shared_ptr<const std::wstring> m_namespaceUri;  // null for no namespace; shared by all that a document brought
};

// The attributes that an attribute wildcard took, in document order, each with a namespace that its constraint admits.
//
//   CAttributeCol extras;
//   extras.Add(L"lang", L"en", L"urn:notes");
//   extras.GetValue(L"lang", L"urn:notes");  // "en"
class RKXML_EXPORT CAttributeCol : public CXmlCollection {
 public:
  // Admits every namespace ("##any").
  CAttributeCol();
  // `constraint` is "##any", "##other", "##local", "##targetNamespace", a URI, or a list of these with single blanks.
  CAttributeCol(const wchar_t* constraint, const wchar_t* targetNamespace);
  ~CAttributeCol() override;

  // Writes every attribute onto the open start tag.
  void ToXml_Int(CXmlWriter* writer, bool registerNamespaces, const wchar_t* namespaceUri,
                 const CSerializationContext& context, bool isOptionalChoice) const override;
  // Adds the attributes of `element` that the constraint admits, xsi:type and its siblings excepted; returns
  // `firstChild`.
  CXmlElement* FromXml_Int(CXmlElement* element, CXmlElement* firstChild, const CSerializationContext& context,
                           bool isOptionalChoice) override;
  using CXmlObjectBase::FromXml_Int;
  using CXmlObjectBase::ToXml_Int;

  // Append an attribute. Throw CRkInvalidNamespaceException
  // "Invalid Attribute [%ls]. The attributes namespace is Inappropriate." (the local name).
  void Add(const wchar_t* localName, const wchar_t* value, const wchar_t* namespaceUri = L"");
  void Add(CAttribute* attribute);
  // Appends a copy of an attribute of a document; all copies share the document's namespaces.
  void Add(const CXmlAttribute& source);
  // The list operations of the base, with the same test.
  void AppendItem(CAttribute* attribute);
  void PrependItem(CAttribute* attribute);
  void AddItemAt(int index, CAttribute* attribute);
  void AddAfterItem(const CXmlObjectBase* existing, CAttribute* attribute);
  void AddBeforeItem(const CXmlObjectBase* existing, CAttribute* attribute);

  // The attribute at the index; it belongs to the collection. Throws CRkInvalidParamException
  // "Index %d is out of range, use 0 - %d".
  CAttribute* Item(int index) const;
  // The first attribute with this name, or null.
  CAttribute* Find(const wchar_t* localName, const wchar_t* namespaceUri = L"") const;
  // The value of the first attribute with this name; empty when there is none.
  std::wstring GetValue(const wchar_t* localName, const wchar_t* namespaceUri = L"") const;

  // The attributes as references: for (CAttribute& attribute : attributes).
  CIterator<CAttribute> begin() const noexcept { return CIterator<CAttribute>(GetFirstNode()); }
  CIterator<CAttribute> end() const noexcept { return {}; }

  const wchar_t* GetNamespaceConstraint() const noexcept;
  const wchar_t* GetConstraintTargetNamespace() const noexcept;

 private:
  void Test(const CAttribute* attribute) const;

  CNamespaceRule m_rule;
};

}  // namespace RkXmlLib16

#endif
