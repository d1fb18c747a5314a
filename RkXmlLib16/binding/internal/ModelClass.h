#ifndef RKXMLLIB16_BINDING_INTERNAL_MODELCLASS_H
#define RKXMLLIB16_BINDING_INTERNAL_MODELCLASS_H

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "RkXmlLib16/base/SharedName.h"
#include "RkXmlLib16/binding/AttributeInfo.h"
#include "RkXmlLib16/binding/ElementInfo.h"
#include "RkXmlLib16/binding/Model.h"
#include "RkXmlLib16/binding/ModelObject.h"
#include "RkXmlLib16/binding/ParentElementInfo.h"
#include "RkXmlLib16/binding/SimpleType.h"
#include "RkXmlLib16/object/Variant.h"

namespace RkXmlLib16Data {

using RkXmlLib16::CModelObject;
using RkXmlLib16::CSharedName;
using RkXmlLib16::CXmlAttribute;
using RkXmlLib16::CXmlCollectionBase;

inline constexpr const wchar_t* kInstanceNamespace = L"http://www.w3.org/2001/XMLSchema-instance";
inline constexpr const wchar_t* kXmlNamespace = L"http://www.w3.org/XML/1998/namespace";

CPrimitiveRestrictions FacetsOf(const ValueModel& value);

// What an object must know about one property.
struct ModelProperty {
  const wchar_t* name = L"";            // for messages
  const ValueModel* values = nullptr;   // of a value or text
  const MemberModel* member = nullptr;  // of an element, group or wildcard
  const DefaultModel* fixed = nullptr;  // the fixed value, if there is one
  CPrimitiveRestrictions facets;
  std::vector<std::wstring> texts;  // of an enumeration
  std::vector<int> order;           // their numbers in the order of the texts, where there are many
  RkVariant initial;                // what the property begins with, of an enumeration the number
  bool mustCheck = false;           // whether some value of the C++ type may not be set
  bool isPlain = false;             // whether nothing but facets, enumeration and choice is to be checked
  bool mayRefuse = false;           // whether a value that could be read may be refused
  bool startsNil = false;
  bool startsEmpty = false;  // the text of mixed content

  void SetTexts(Span<const wchar_t*> enumeration);
  // The number of the text in the enumeration; -1 when it is none of them.
  int FindText(std::wstring_view text) const noexcept;
  std::wstring_view TextOf(int number) const noexcept { return texts[static_cast<std::size_t>(number)]; }
  bool IsEnumeration() const noexcept { return values->texts != nullptr || !texts.empty(); }
  // Whether it is a text of the enumeration.
  bool IsAllowed(std::wstring_view text) const {
    return values->texts != nullptr ? values->texts->count(text) != 0 : FindText(text) >= 0;
  }
};

// How the members are written: the attributes, and the records of the elements in their order, those of the first
// properties, as long as these are in the same order, and the others.
struct WrittenMembers {
  struct Attribute {
    Attribute(const CAttributeInfo& info, ItemType type);

    const CAttributeInfo& record;  // which writes what only AccessProperty can tell
    const RkXmlLib16::CNameToken& name;
    int property;
    ItemType itemType;
    bool isOptional;
    std::wstring_view omitted;  // the default value that a setting leaves out, or empty
  };
  struct Other {
    const CElementInfo* record;
    bool isOnlyIfSet;
  };

  void Add(const CElementInfo& record, bool isOnlyIfSet);

  std::vector<Attribute> attributes;
  const CAttributeInfo* attributeWildcard = nullptr;
  std::uint64_t always = 0;  // as CPropertySet has them
  std::uint64_t ifSet = 0;
  std::vector<const CElementInfo*> first;  // by property
  std::vector<Other> others;
};

// The records and properties of one class.
class CModelClass {
 public:
  explicit CModelClass(const ClassModel& model);
  CModelClass(const CModelClass&) = delete;
  CModelClass& operator=(const CModelClass&) = delete;

  const ClassModel& GetModel() const noexcept { return m_model; }
  CParentElementInfo* GetInfo() const noexcept { return m_records.info; }
  CElementInfo** GetElements() const noexcept { return m_records.elements; }
  CAttributeInfo** GetAttributes() const noexcept { return m_records.attributes; }
  // Of an object that the application makes without one.
  const CSharedName& GetElementName() const noexcept { return m_elementName; }
  // Whether some record may write attributes of the object's element.
  bool HasInlineAttributes() const noexcept { return m_hasInlineAttributes; }
  // Whether an object of the class may write into the start tag of the element that it stands in.
  bool MayWriteAttributes() const noexcept;
  const WrittenMembers& GetWritten() const noexcept { return m_written; }
  // The properties that begin with a value.
  const std::vector<int>& GetInitial() const noexcept { return m_initial; }
  const ModelProperty& GetProperty(int property) const noexcept {
    return m_properties[static_cast<std::size_t>(property)];
  }

 private:
  // They own themselves, since making one may fail when others are there.
  struct Records {
    Records() = default;
    Records(const Records&) = delete;
    Records& operator=(const Records&) = delete;
    ~Records();
    void Make(const ClassModel& model);

    CParentElementInfo* info = nullptr;
    CElementInfo** elements = nullptr;
    CAttributeInfo** attributes = nullptr;
    std::vector<int> factoryIds;
  };

  ModelProperty& NoteValues(int property, const wchar_t* name, const ValueModel* values, const DefaultModel* value);
  void NoteAttribute(const AttributeModel& attribute);
  void NoteMember(const MemberModel& member);
  // The properties that a restriction leaves out; programs reach them through the base class all the same.
  void TakeLeftOut(const CModelClass& base);

  const ClassModel& m_model;
  CSharedName m_elementName;
  std::vector<ModelProperty> m_properties;
  WrittenMembers m_written;
  std::vector<int> m_initial;
  Records m_records;
  bool m_hasInlineAttributes = false;
};

// The text that a property is being set from, while that is read on this thread.
struct Reading {
  const CXmlElement* element = nullptr;
  std::wstring_view text;

  static const Reading*& Current() noexcept;
};

class ReadingScope {
 public:
  ReadingScope(const CXmlElement& element, std::wstring_view text)
      : m_reading{&element, text}, m_outer(std::exchange(Reading::Current(), &m_reading)) {}
  ReadingScope(const ReadingScope&) = delete;
  ReadingScope& operator=(const ReadingScope&) = delete;
  ~ReadingScope() { Reading::Current() = m_outer; }

 private:
  const Reading m_reading;
  const Reading* const m_outer;
};

// Prefixes as the document of the element declares them, and as the schema did at a default value.
NamespaceResolver ResolverOf(const CXmlElement& element);
NamespaceResolver ResolverOf(Span<PrefixModel> prefixes);

bool IsNilTrue(const CXmlElement& element);

// "Invalid Value for %ls [%ls].".
[[noreturn]] void ThrowInvalidValue(const wchar_t* name, std::wstring_view text);
// Throws CRkInvalidValueException when the text is no value of the type, or not the fixed one.
void CheckModelText(const wchar_t* name, const ValueModel& values, const DefaultModel* fixed, std::wstring_view text,
                    const NamespaceResolver& resolver);

// The type that xsi:type names. `isNamed` tells the absence of the attribute from an unknown name.
struct NamedType {
  bool isNamed = false;
  const ClassModel* object = nullptr;
  const CSimpleType* simple = nullptr;
};
NamedType FindNamedType(const SchemaModel* schema, const CXmlElement& element);

// A new object of the class; for the element, if there is one, whose name someone may hold already.
inline CSmartPtr<CModelObject> NewModelObject(const ClassModel& model, const ElementModel* declaration,
                                              const CSharedName* heldName = nullptr) {
  if (model.create == nullptr) return nullptr;
  CSmartPtr<CModelObject> object(model.create(model));
  if (declaration == nullptr)
    object->SetUndeclared();
  else if (heldName != nullptr)
    object->SetDeclaration(*declaration, *heldName);
  else
    object->SetDeclaration(*declaration);
  return object;
}
// The object for an element of the declaration, as xsi:type says; null when the type does not fit.
CSmartPtr<CModelObject> NewElement(const SchemaModel* schema, const ElementModel& declaration,
                                   const CXmlElement& element);

// What processContents asks for. Throws CRkValidationException, unless the handler of the context wants to go on.
void CheckWildcardElement(const SchemaModel* schema, WildcardModel::Process process, CXmlElement& element,
                          const CSerializationContext& context);
void CheckWildcardAttribute(const SchemaModel* schema, WildcardModel::Process process, const CXmlAttribute& attribute);

// The records of one class.
CElementInfo* NewModelRecord(const ClassModel& owner, const MemberModel& member, std::vector<int>& factoryIds);
CAttributeInfo* NewModelRecord(const AttributeModel& attribute);
CAttributeInfo* NewWildcardRecord(const ClassModel& owner);
// A new collection for the property of a repeated member.
CXmlCollectionBase* NewCollection(const ClassModel& owner, const ModelProperty& property);

// Class records make their objects by number: the numbers of all classes of the process.
class ModelFactories {
 public:
  static int Add(const MemberModel& member);
  static void Remove(int id) noexcept;
  static CSmartPtr<CXmlObjectBase> Create(int id, const wchar_t* elementName);
};

}  // namespace RkXmlLib16Data

#endif
