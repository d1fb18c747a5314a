#ifndef RKXMLLIB16_WILDCARDS_ELEMENT_H
#define RKXMLLIB16_WILDCARDS_ELEMENT_H

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "RkXmlLib16/base/FrontGapVector.h"
#include "RkXmlLib16/base/SmartPtr.h"
#include "RkXmlLib16/object/XmlObjectBase.h"
#include "RkXmlLib16/wildcards/AttributeCol.h"
#include "RkXmlLib16/wildcards/NamespaceRule.h"

namespace RkXmlLib16 {

// One element that no schema describes, held whole: local name, namespace URI, attributes, text, and the child elements
// in order. Written back it is the same infoset; prefixes that values use (xsi:type="p:T") stay declared. It serves as
// the member of a generated class behind an element wildcard, and as holder of any document.
//
//   CElement track;
//   track.FromXmlFile(L"track.gpx");
//   track.FindChild(L"metadata", L"http://www.topografix.com/GPX/1/1")->GetChildCount();
//
// The text is all character data of the element joined; it is written before the children, and not at all when the
// element has children and the text is blank. CDATA sections that the settings kept when it was read are written as
// such; all other text is data, also when it begins with "<![CDATA[". Trees of any depth are read, written and
// destroyed without recursion.
class RKXML_EXPORT CElement : public CXmlObjectBase {
 public:
  CElement();
  explicit CElement(const wchar_t* name);
  CElement(const wchar_t* name, const wchar_t* namespaceUri);
  // `constraint` says which namespaces the element may have: "##any", "##other", "##local", "##targetNamespace", a URI,
  // or a list of these with single blanks. It is tested when the element is read and by SetNamespace, not here.
  CElement(const wchar_t* name, const wchar_t* namespaceUri, const wchar_t* constraint, const wchar_t* targetNamespace);
  ~CElement() override;

  CXmlObjectBase* GetBase() override;
  using CXmlObjectBase::GetBase;

  // As the object of an entry point it takes the document element itself, in place of all that it held. Throws
  // CRkInvalidNamespaceException "Invalid Namespace [%ls]." when the constraint does not admit it.
  void FromXmlElement(const CXmlElement* element, const CSerializationContext& context = GetDefaultContext()) override;
  using CXmlObjectBase::FromXmlElement;

  const wchar_t* GetTargetNamespace() const override;
  const wchar_t* GetNamespace() const override;
  void AttributesToXml_Int(CXmlWriter* writer, const CSerializationContext& context) const override;
  // The element is written in its own namespace, whatever `namespaceUri` says. Throws CRkInvalidStateException
  // "The element has no name.".
  void ToXml_Int(CXmlWriter* writer, bool registerNamespaces, const wchar_t* namespaceUri,
                 const CSerializationContext& context, bool isOptionalChoice) const override;
  // As a member it takes `current` when the constraint admits its namespace and returns the next sibling; otherwise it
  // returns `current` and stays as it is.
  CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* current, const CSerializationContext& context,
                           bool isOptionalChoice) override;
  using CXmlObjectBase::AttributesToXml_Int;
  using CXmlObjectBase::FromXml_Int;
  using CXmlObjectBase::ToXml_Int;

  // Throws CRkInvalidNamespaceException "Invalid Namespace [%ls]." when the constraint does not admit it.
  void SetNamespace(const wchar_t* namespaceUri);
  const wchar_t* GetNamespaceConstraint() const noexcept;
  const wchar_t* GetConstraintTargetNamespace() const noexcept;

  const std::wstring& GetText() const noexcept { return m_text; }
  void SetText(const wchar_t* text);  // without sections

  // The attributes; they belong to the element.
  CAttributeCol* GetAttributes();
  int GetAttributeCount() const;
  // The value of the first attribute with this name; empty when there is none.
  std::wstring GetAttribute(const wchar_t* localName, const wchar_t* namespaceUri = L"") const;
  // Replaces the value of the attribute, or adds it. Looks through the attributes, as GetAttribute does; to add many
  // that are known to be new use GetAttributes()->Add.
  void SetAttribute(const wchar_t* localName, const wchar_t* value, const wchar_t* namespaceUri = L"");

  // The child elements. A counted reference is held on each; one element may stand in several trees, but never below
  // itself. The indices are 0 to the count less one (when inserting: to the count); other indices and null children
  // throw CRkInvalidParamException "Index %d is out of range, use 0 - %d" and "The child element may not be NULL".
  // Inserting and removing at either end are quick, elsewhere they move the references behind; FindChild looks through
  // the children.
  int GetChildCount() const noexcept { return static_cast<int>(m_children.size()); }
  CElement* GetChild(int index) const;
  void AddChild(CElement* child);
  // Creates the child, appends and returns it; it belongs to this element.
  CElement* AddNewChild(const wchar_t* name, const wchar_t* namespaceUri = L"", const wchar_t* text = L"");
  void InsertChild(int index, CElement* child);
  void RemoveChild(int index);
  void RemoveChildren();
  // The first child with this name, or null.
  CElement* FindChild(const wchar_t* localName, const wchar_t* namespaceUri = L"") const;
  // All children with this name, in order.
  std::vector<CElement*> FindChildren(const wchar_t* localName, const wchar_t* namespaceUri = L"") const;

 private:
  friend class CElementCol;
  using SharedText = std::shared_ptr<const std::wstring>;
  using Prefixes = std::map<std::wstring, SharedText, std::less<>>;  // prefix to namespace URI
  using Children = CFrontGapVector<CSmartPtr<CElement>>;
  class TreeReader;
  class TreeWriter;

  CElement(const CNamespaceRule& rule, const CXmlElement& source, const CSerializationContext& context);

  static void Destroy(Children& children) noexcept;
  // Writes xsi:type where it has to be written differently from how it was read; false where it has not.
  bool WriteType(const CAttribute& attribute, CXmlWriter& writer) const;

  SharedText m_namespaceUri;  // null for no namespace; shared by all that a document brought
  std::wstring m_text;
  std::unique_ptr<const std::vector<std::size_t>> m_sections;  // where CDATA sections begin in the text; null for none
  CNamespaceRule m_rule;
  CSmartPtr<CAttributeCol> m_attributes;  // null until asked for
  Children m_children;
  // What prefixes in values stand for; the empty prefix is that of types without one. Null when none is used.
  std::shared_ptr<const Prefixes> m_prefixes;
};

}  // namespace RkXmlLib16

#endif
