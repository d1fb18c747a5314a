// The base of the classes that `rkxml generate` prints, and of objects without classes. docs/generated-names.md shows
// what such a class looks like.
#ifndef RKXMLLIB16_BINDING_MODELOBJECT_H
#define RKXMLLIB16_BINDING_MODELOBJECT_H

#include <cstdint>
#include <forward_list>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Likely.h"
#include "RkXmlLib16/base/SharedName.h"
#include "RkXmlLib16/binding/GeneratedClass.h"
#include "RkXmlLib16/binding/Model.h"
#include "RkXmlLib16/binding/ModelMember.h"
#include "RkXmlLib16/binding/ParentElementInfo.h"
#include "RkXmlLib16/collections/ObjectCollection.h"
#include "RkXmlLib16/collections/ValueCollections.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/object/Variant.h"
#include "RkXmlLib16/wildcards/AttributeCol.h"
#include "RkXmlLib16/wildcards/Element.h"
#include "RkXmlLib16/wildcards/ElementCol.h"

namespace RkXmlLib16 {

using RkXmlLib16Data::ClassModel;
using RkXmlLib16Data::ElementModel;
using RkXmlLib16Data::MemberModel;
using RkXmlLib16Data::SchemaModel;

class CXmlDocument;

// Which properties of an object are set: a bit for each of the first. Another bit tells whether the object was changed.
class CPropertySet {
 public:
  bool Has(int property) const noexcept {
    return RKXML_LIKELY(property < kInPlace) ? (m_first & Bit(property)) != 0 : m_more != nullptr && HasMore(property);
  }
  void Add(int property) {
    if (RKXML_LIKELY(property < kInPlace))
      m_first |= Bit(property) | kChanged;
    else
      AddMore(property);
  }
  // The first properties, as bits; others may be set beside them.
  static constexpr int kInPlace = 63;
  std::uint64_t GetFirst() const noexcept { return m_first; }
  bool IsEmpty() const noexcept { return (m_first & ~kChanged) == 0 && m_more == nullptr; }
  static constexpr std::uint64_t Bit(int property) noexcept { return std::uint64_t{1} << (property % kWord); }
  void Remove(int property) noexcept {
    if (property < kInPlace)
      m_first &= ~Bit(property);
    else if (m_more != nullptr)
      RemoveMore(property);
  }
  // Since it was made, or was told to be as it was then. Adding a property is a change too.
  bool IsChanged() const noexcept { return (m_first & kChanged) != 0; }
  void SetChanged(bool changed = true) noexcept { m_first = changed ? m_first | kChanged : m_first & ~kChanged; }

 private:
  static constexpr int kWord = 64;
  static constexpr std::uint64_t kChanged = std::uint64_t{1} << kInPlace;
  struct Word {
    int number;
    std::uint64_t bits;
  };
  [[gnu::cold, gnu::noinline]] RKXML_EXPORT bool HasMore(int property) const noexcept;
  [[gnu::cold]] RKXML_EXPORT void AddMore(int property);
  RKXML_EXPORT void RemoveMore(int property) noexcept;

  std::uint64_t m_first = 0;
  std::unique_ptr<std::vector<Word>> m_more;  // in order; a class may have very many properties, an object few of them
};

// An object of a class that a schema describes. The class derived from it has the members, and for each of them a
// getter, a setter and a line in FindMember; reading, writing, checks and records come from the tables.
//
// A setter throws CRkException for a value that breaks a facet, CRkInvalidValueException for one that breaks what the
// facets do not know, CRkInvalidStateException while another member of a choice is set, and then leaves the object as
// it was. Reading begins with an object as its constructor makes it. A mandatory member that was never set is an error
// of writing.
class RKXML_EXPORT CModelObject : public CXmlGeneratedClass {
 public:
  using CXmlObjectBase::AttributesToXml_Int;
  using CXmlObjectBase::FromXml_Int;
  using CXmlObjectBase::GetBase;

  ~CModelObject() override;

  const ClassModel& GetModel() const noexcept;
  // The declaration of the element that the object stands for; null for an inline group, or when only the type is
  // known.
  const ElementModel* GetDeclaration() const noexcept { return m_declaration; }
  // The object takes the name, and xsi:type is written where its class is not the declared one. Borrowed.
  void SetDeclaration(const ElementModel& declaration);
  // The same, quicker. The name is that of the declaration.
  void SetDeclaration(const ElementModel& declaration, const CSharedName& name) {
    m_declaration = &declaration;
    m_elementName = name;
  }
  // Nothing is known of the element but its type.
  void SetUndeclared() noexcept { m_declaration = nullptr; }
  // Of a choice: the element name of the member that is set; null when none is.
  const wchar_t* GetSelected() const;

  CXmlObjectBase* GetBase() override { return this; }
  const wchar_t* GetTargetNamespace() const override;
  const wchar_t* GetNamespace() const override;
  RkXmlLib16Data::CParentElementInfo* GetClassInfo() const override;
  RkXmlLib16Data::CElementInfo** GetClassElementInfo() const override;
  RkXmlLib16Data::CAttributeInfo** GetClassAttributeInfo() const override;
  void AccessProperty(int property, bool get, RkVariant& value) override;
  void BeginFromXml_Int(CXmlElement* element, CXmlElement* firstChild, const CSerializationContext& context,
                        bool isOptionalChoice) override;
  // xsi:type is written exactly where the type is not the declared one.
  void AttributesToXml_Int(CXmlWriter* writer, const CSerializationContext& context) const override;
  void OnEvent(CXmlObjectBase* source, MsgType type, void* data) override;

  // For the records: makes the collection of the property, or the wildcard element, if it is not there yet.
  void Ensure(int property);
  // Sets the property of a value from its lexical form, which an element or attribute has. What the setter throws is
  // wrapped in CRkValidationException "Failed to set the property value." with the path of the node; `isValue` tells it
  // from an error of the text.
  template <class Node>
  void SetFromText(int property, std::wstring_view text, const Node& node, bool& isValue) {
    if (TrySetFromText(property, text)) return;
    try {
      SetFromTextSlowly(property, text, isValue);
    } catch (const CRkException& e) {
      if (!isValue) throw;
      throw CRkValidationException(L"Failed to set the property value.", node.GetXPath(), e);
    }
  }
  // The object of the property, borrowed; null when there is none, or only AccessProperty can tell.
  CXmlObjectBase* PeekObject(int property) const;
  // Sets the property of an object, which may be null; false where only AccessProperty can do it. Throws what the
  // setter throws.
  bool TrySetObject(int property, CXmlObjectBase* object);
  // Keeps the prefixes of the names in the text as the element has them, so that they are declared again.
  void KeepPrefixes(const CXmlElement& element, std::wstring_view text);

 protected:
  CModelObject(const ClassModel& model, const wchar_t* elementName);

  // Gives attributes their defaults. Constructors of classes that have some call it.
  void Begin();

  bool IsSet(int property) const noexcept { return m_set.Has(property); }
  bool GetNilFlag() const noexcept { return m_rare != nullptr && m_rare->isNil; }
  void SetNilFlag(bool nil) {
    if (nil != GetNilFlag()) MakeRare().isNil = nil;
  }

  // Where the object has the property. A class without members of its own overrides AccessProperty instead.
  virtual CMember FindMember(int property);

  // For setters.
  template <class T>
  void StoreValue(int property, T& member, const T& value) {
    if (MustCheck(property)) CheckValue(property, const_cast<T&>(value));  // which is only read
    member = value;
    Mark(property);
  }
  template <class T>
  void StoreValue(int property, CRareValue<T>& member, const T& value) {
    if (MustCheck(property)) CheckValue(property, const_cast<T&>(value));  // which is only read
    member.Make() = value;
    Mark(property);
  }
  template <class T>
  void DropValue(int property, T& member) {
    member = T();
    Unmark(property);
  }
  template <class T>
  void DropValue(int property, CRareValue<T>& member) {
    member.Reset();
    Unmark(property);
  }
  // Counted; null clears.
  template <class T, class Value>
  void StoreObject(int property, CSmartPtr<T>& member, Value* value) {
    const CSmartPtr<T> held(value);
    Adopt(property, held);
    member = held;
  }
  template <class Made, class T>
  T* RequireObject(int property, CSmartPtr<T>& member) {
    if (member == nullptr) StoreObject(property, member, new Made());
    return member;
  }
  template <class T>
  T* RequireObject(int property, CSmartPtr<T>& member) {
    return RequireObject<T, T>(property, member);
  }
  // The collection, made at first use.
  template <class T>
  T* RequireCollection(int property, CSmartPtr<T>& member) const {
    if (member == nullptr) const_cast<CModelObject*>(this)->Ensure(property);
    return member;
  }

 private:
  friend class CXmlGeneratedClass;
  // What few objects have.
  struct Rare {
    bool isNil = false;
    std::unique_ptr<std::map<std::wstring, std::wstring>> prefixes;
    std::forward_list<CSmartPtr<CXmlCollectionBase>> watched;  // of a choice
  };

  void GetProperty(int property, CMember member, RkVariant& value);
  void SetProperty(int property, CMember member, RkVariant& value);
  bool TrySetFromText(int property, std::wstring_view text);
  // The same with the text of an element, which is not empty, or the value of an attribute.
  bool TrySetFrom(int property, const CXmlElement& element);
  inline bool TrySetFrom(int property, const CXmlAttribute& attribute);
  template <class Text, bool mayBeEmpty, class Source>
  bool TrySetText(int property, const Source& source);
  [[gnu::cold, gnu::noinline]] void SetFromTextSlowly(int property, std::wstring_view text, bool& isValue);
  bool MustCheck(int property) const noexcept;
  // Throw when the value may not be set.
  void CheckValue(int property, CMember value);
  void CheckSet(int property, RkVariant& value);
  void CheckText(int property, RkVariant& value);
  // The lexical form of the property of a value, which is set, the object's own or in the space; without data when only
  // AccessProperty can tell. Such a value was checked when it was set.
  inline std::wstring_view PeekText(int property, TextSpace& space) const;
  // Writes the property of an element, which is set; false when that is left to the record.
  [[gnu::noinline]] bool WriteValue(const RkXmlLib16Data::CElementInfo& record, const CSerializationContext& context,
                                    CXmlWriter* writer) const;
  inline bool WriteMember(const RkXmlLib16Data::CElementInfo& record, bool isSet, const CSerializationContext& context,
                          CXmlWriter* writer) const;
  // Of a choice, only one member; whether there was one to write.
  bool WriteMembers(const CSerializationContext& context, CXmlWriter* writer, bool isChoice) const;
  inline void WriteAttributes(const CSerializationContext& context, CXmlWriter* writer) const;
  [[gnu::cold, gnu::noinline]] void DeclarePrefixes(CXmlWriter& writer) const;
  // Throws when another member of the choice is set.
  void Select(int property) {
    if (!m_set.IsEmpty()) SelectAmong(property);
  }
  void SelectAmong(int property);
  bool IsFilled(int property) const;
  // Whether its count is to be checked even when nothing was added.
  bool NeedsCollection(int property) const noexcept;
  CXmlCollectionBase* MakeCollection(int property);
  void Unwatch();
  void Adopt(int property, CXmlObjectBase* object);
  [[gnu::noinline]] RKXML_HIDDEN void CheckStart(const CXmlElement* element, const CXmlElement* firstChild,
                                                 const CSerializationContext& context) const;
  [[gnu::cold, gnu::noinline]] RKXML_HIDDEN void EnsureByAccess(int property);
  void Mark(int property) { m_set.Add(property); }
  void Unmark(int property) noexcept { m_set.Remove(property); }
  void Reset();
  Rare& MakeRare();

  const RkXmlLib16Data::CModelClass& m_class;
  const ElementModel* m_declaration = nullptr;
  CPropertySet m_set;
  std::unique_ptr<Rare> m_rare;
};

inline bool CXmlGeneratedClass::IsNil(const RkXmlLib16Data::CParentElementInfo& info) const {
  return info.IsOfModel() ? static_cast<const CModelObject*>(this)->GetNilFlag() : IsNilByInterface();
}

// The repeated objects of a property: elements, or inline groups.
class RKXML_EXPORT CModelCollectionBase : public CXmlObjectCollection<CModelObject> {
 public:
  using CXmlObjectBase::FromXml_Int;

  explicit CModelCollectionBase(const MemberModel& member);
  ~CModelCollectionBase() override;

  // Counted.
  void Add(CModelObject* item);
  CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* current, const CSerializationContext& context,
                           bool isOptionalChoice) override;

 protected:
  CModelObject* AddNewItem();

 private:
  const MemberModel& m_member;
};

// The same with the class of the items: for (CLineType& line : *order.GetLine()).
template <class T>
class CModelCollection final : public CModelCollectionBase {
 public:
  using CModelCollectionBase::CModelCollectionBase;

  // Borrowed. Throws CRkInvalidParamException for an index out of range.
  T* Item(int index) const { return static_cast<T*>(GetNodeAtIndex(index)->GetItem()); }
  CIterator<T> begin() const noexcept { return CIterator<T>(GetFirstNode()); }
  CIterator<T> end() const noexcept { return {}; }
  // Counted.
  void Add(T* item) { CModelCollectionBase::Add(item); }
  // Makes an item, adds it and returns it, borrowed; null where the class is abstract.
  T* AddNew() { return static_cast<T*>(AddNewItem()); }
};

// For the tables.
template <class T>
CModelObject* NewModelObject(const ClassModel&) {
  return new T();
}
template <class T>
CXmlCollectionBase* NewModelCollection(const MemberModel& member) {
  return new CModelCollection<T>(member);
}

// The object for a document of the schema: of the class of its root element, or of the one that xsi:type names there.
// NewObjectFor leaves it unread; the others read it. They throw CRkValidationException when the schema does not declare
// the element, or it is abstract, or the type does not fit, and what reading throws.
RKXML_EXPORT CSmartPtr<CModelObject> NewObjectFor(const SchemaModel& schema, CXmlElement& root,
                                                  const CSerializationContext& context);
RKXML_EXPORT CSmartPtr<CModelObject> ReadDocument(const SchemaModel& schema, const CXmlDocument& document,
                                                  const CSerializationContext& context = GetDefaultContext());
// XML text or Fast Infoset, told apart by their first bytes, plain or compressed.
RKXML_EXPORT CSmartPtr<CModelObject> ReadFile(const SchemaModel& schema, const CFileName& fileName,
                                              const CSerializationContext& context = GetDefaultContext());

// The number of a text in an enumeration; throws CRkInvalidValueException for another text.
RKXML_EXPORT int FindEnumeration(RkXmlLib16Data::Span<const wchar_t*> texts, std::wstring_view text);

}  // namespace RkXmlLib16

#endif
