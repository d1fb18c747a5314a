#include "RkXmlLib16/binding/CheckMetaData.h"

#include <cxxabi.h>
#include <pthread.h>

#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <typeindex>
#include <utility>

#include "RkXmlLib16/base/ErrorCode.h"
#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/binding/AttributeInfo.h"
#include "RkXmlLib16/binding/ElementInfo.h"
#include "RkXmlLib16/binding/ElementInfoAll.h"
#include "RkXmlLib16/binding/ElementInfoChoice.h"
#include "RkXmlLib16/binding/ElementInfoSeq.h"
#include "RkXmlLib16/binding/GeneratedClass.h"
#include "RkXmlLib16/binding/ModelObject.h"
#include "RkXmlLib16/binding/ParentElementInfo.h"
#include "RkXmlLib16/collections/Collection.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/facets/FacetChecks.h"
#include "RkXmlLib16/io/Encoder.h"
#include "RkXmlLib16/object/Variant.h"
#include "RkXmlLib16/wildcards/AttributeCol.h"
#include "RkXmlLib16/wildcards/ElementCol.h"

namespace RkXmlLib16 {

using namespace RkXmlLib16Data;

namespace {

std::wstring NameOf(ItemType type) {
  switch (static_cast<std::uint32_t>(type)) {
    case ItemType_none:
      return L"nothing";
    case ItemType_char:
      return L"character";
    case RkVariant::kXmlObject:
      return L"an object";
    case RkVariant::kXmlCollection:
      return L"a collection";
    default:
      return *NameOfXsdType(type) != L'\0' ? NameOfXsdType(type) : L"unknown";
  }
}

std::wstring ClassNameOf(const CXmlObjectBase& object) {
  const char* const mangled = typeid(object).name();
  int status = 0;
  const std::unique_ptr<char, decltype(&std::free)> name(abi::__cxa_demangle(mangled, nullptr, nullptr, &status),
                                                         &std::free);
  return FromUtf8(name != nullptr ? name.get() : mangled);
}

bool IsOnStack(const void* address) {
  pthread_attr_t attributes;
  if (pthread_getattr_np(pthread_self(), &attributes) != 0) return false;
  void* lowest = nullptr;
  std::size_t size = 0;
  const bool isKnown = pthread_attr_getstack(&attributes, &lowest, &size) == 0;
  pthread_attr_destroy(&attributes);
  const auto* const first = static_cast<const char*>(lowest);
  const auto* const at = static_cast<const char*>(address);
  return isKnown && std::greater_equal<>()(at, first) && std::less<>()(at, first + size);
}

// Whether a value keeps to the facets of its record. Those of fresh objects often do not, and setters refuse them.
bool IsAllowed(const RkVariant& value, ItemType type, const CPrimitiveRestrictions& facets) {
  try {
    CXmlObjectHelper::CheckRestriction(L"", value, type, facets);
    return true;
  } catch (const CRkException&) {
    return false;
  }
}

template <class... Records>
bool IsOneOf(const CElementInfo& record) {
  return ((dynamic_cast<const Records*>(&record) != nullptr) || ...);
}

}  // namespace

std::wstring CMetaDataFault::GetText() const {
  return className + (record.empty() ? std::wstring() : L" [" + record + L"]") + L": " + fault;
}

class CMetaDataCheck {
 public:
  void Check(CXmlGeneratedClass& object);
  std::vector<CMetaDataFault> TakeFaults() { return std::move(m_faults); }

 private:
  // The record at hand.
  struct Place {
    CXmlGeneratedClass& object;
    std::wstring record;
    int property;
  };

  void Add(const Place& place, std::wstring fault) {
    m_faults.push_back({ClassNameOf(place.object), place.record, std::move(fault)});
  }
  void CheckClass(CXmlGeneratedClass& object, const CParentElementInfo& info);
  void CheckElement(const Place& place, const CElementInfo& record);
  void CheckFactory(const Place& place, const CElementInfo& record);
  void CheckAttribute(const Place& place, const CAttributeInfo& record);
  bool Read(const Place& place, RkVariant& value);
  void CheckIndex(const Place& place);
  void CheckValue(const Place& place, ItemType type, const CPrimitiveRestrictions* facets = nullptr);
  void CheckDefault(const Place& place, ItemType type, const std::wstring& text);
  void CheckEnumeration(const Place& place, bool hasFunctions);
  void CheckObject(const Place& place);
  bool PrepareForReading(const Place& place);
  template <class Wanted>
  void CheckCollection(const Place& place, const wchar_t* wanted);
  void CheckHeld(const Place& place, CXmlObjectBase* held, const wchar_t* where);

  std::vector<CMetaDataFault> m_faults;
  std::set<const CXmlObjectBase*> m_checked;
  std::set<std::type_index> m_made;
  std::map<int, std::wstring> m_indices;  // of the class at hand
};

void CMetaDataCheck::Check(CXmlGeneratedClass& object) {
  if (!m_checked.insert(&object).second) return;
  const Place whole{object, {}, -1};
  const CParentElementInfo* const info = object.GetClassInfo();
  if (info == nullptr) return Add(whole, L"there is no class record");
  if (object.GetTargetNamespace() == nullptr || object.GetNamespace() == nullptr)
    Add(whole, L"a namespace is a null pointer");
  const auto outer = std::exchange(m_indices, {});
  CheckClass(object, *info);
  m_indices = outer;
}

void CMetaDataCheck::CheckClass(CXmlGeneratedClass& object, const CParentElementInfo& info) {
  const Place whole{object, {}, info.GetSimpleContentProperty()};
  if (info.GetGroupType() < XmlElementGroupType_Sequence || info.GetGroupType() > XmlElementGroupType_All)
    Add(whole, L"the group type is unknown");
  if (info.GetElementType() == XmlElementType_Element && info.GetElementName().empty() &&
      object.GetElementName().empty())
    Add(whole, L"the element has no name");
  if (whole.property != -1 && info.GetSimpleContentType() != ItemType_none) {
    CheckIndex(whole);
    CheckValue(whole, info.IsSimpleContentText() ? ItemType_none : info.GetSimpleContentType());
  }
  if (CElementInfo** record = object.GetClassElementInfo())
    for (; *record != nullptr; ++record)
      CheckElement({object, (*record)->GetElementName(), (*record)->GetPropertyIndex()}, **record);
  if (CAttributeInfo** record = object.GetClassAttributeInfo())
    for (; *record != nullptr; ++record)
      CheckAttribute({object, L"@" + (*record)->GetAttributeName(), (*record)->GetPropertyIndex()}, **record);
}

void CMetaDataCheck::CheckElement(const Place& place, const CElementInfo& record) {
  if (record.GetElementName().empty()) Add(place, L"the record has no name");
  CheckIndex(place);
  if (record.GetMemberKind() == MemberKind::Collection) {
    if (IsOneOf<CElementInfoSeqUntpdCol, CElementInfoChoiceUntpdCol, CElementInfoAllUntpdCol>(record))
      CheckCollection<CElementCol>(place, L"a CElementCol");
    else
      CheckCollection<CXmlCollectionBase>(place, L"a collection");
    return;
  }
  switch (record.m_content) {
    case CElementInfo::Content::Primitive:
      CheckValue(place, record.m_itemType, &record.m_facets);
      return CheckDefault(place, record.m_itemType, record.m_defaultValue);
    case CElementInfo::Content::Enumeration:
      return CheckEnumeration(place, record.m_enumToString != nullptr && record.m_enumFromString != nullptr);
    default:
      CheckFactory(place, record);
      return CheckObject(place);
  }
}

void CMetaDataCheck::CheckFactory(const Place& place, const CElementInfo& record) {
  const bool byClass = record.m_content == CElementInfo::Content::ObjectOfFactory;
  const bool byElement = record.m_content == CElementInfo::Content::ObjectOfAbstractFactory;
  if ((byClass && record.m_factory == nullptr) || (byElement && record.m_abstractFactory == nullptr))
    return Add(place, L"the factory is a null pointer");
  if (!byClass) return;
  try {
    const CSmartPtr<CXmlObjectBase> made = record.m_factory(record.m_classId, record.GetElementName().c_str());
    if (made == nullptr)
      return Add(place, FormatString(L"the factory makes nothing for the class number %d", record.m_classId));
    auto* const child = dynamic_cast<CXmlGeneratedClass*>(static_cast<CXmlObjectBase*>(made));
    if (child != nullptr && m_made.insert(typeid(*child)).second) {
      Check(*child);
      m_checked.erase(child);  // another object may get its address
    }
  } catch (const CRkException& e) {
    Add(place, L"the factory fails: " + e.GetMessage());
  }
}

void CMetaDataCheck::CheckAttribute(const Place& place, const CAttributeInfo& record) {
  if (dynamic_cast<const CAttributeInfoAny*>(&record) != nullptr) {
    CheckIndex(place);
    return CheckCollection<CAttributeCol>(place, L"a CAttributeCol");
  }
  if (record.GetAttributeName().empty()) Add(place, L"the record has no name");
  CheckIndex(place);
  if (const auto* const primitive = dynamic_cast<const CAttributeInfoPrimitive*>(&record)) {
    CheckValue(place, primitive->m_itemType, &primitive->m_facets);
    CheckDefault(place, primitive->m_itemType, record.GetDefaultValue());
  } else if (const auto* const enumeration = dynamic_cast<const CAttributeInfoEnum*>(&record)) {
    CheckEnumeration(place, enumeration->m_toString != nullptr && enumeration->m_fromString != nullptr);
  }
}

void CMetaDataCheck::CheckIndex(const Place& place) {
  const auto [known, isNew] = m_indices.emplace(place.property, place.record);
  if (!isNew) Add(place, FormatString(L"the property %d is that of [%ls] too", place.property, known->second.c_str()));
}

// The accessor has to change the variant that it is given, which holds what no property does.
bool CMetaDataCheck::Read(const Place& place, RkVariant& value) {
  constexpr wchar_t kUntouched = 0x10FFFF;
  value.SetChar(kUntouched);
  try {
    place.object.AccessProperty(place.property, /*get=*/true, value);
  } catch (const CRkException& e) {
    Add(place, FormatString(L"the property %d cannot be read: %ls", place.property, e.GetMessage().c_str()));
    return false;
  }
  if (value.GetItemType() != ItemType_char || value.IsNil() || value.GetChar() != kUntouched) return true;
  Add(place, FormatString(L"the accessor does not know the property %d", place.property));
  return false;
}

// ItemType_none stands for any value.
void CMetaDataCheck::CheckValue(const Place& place, ItemType type, const CPrimitiveRestrictions* facets) {
  RkVariant value;
  if (!Read(place, value) || !value.IsValid() || value.IsNil()) return;
  const ItemType held = value.GetItemType();
  if (type != ItemType_none ? held != type : value.IsXmlObject() || value.IsXmlCollection())
    return Add(place, FormatString(L"the property %d is %ls where the record says %ls", place.property,
                                   NameOf(held).c_str(), NameOf(type).c_str()));
  if (facets == nullptr || !IsAllowed(value, type, *facets)) return;
  try {
    place.object.AccessProperty(place.property, /*get=*/false, value);
  } catch (const CRkException& e) {
    Add(place, FormatString(L"the property %d cannot be set: %ls", place.property, e.GetMessage().c_str()));
  }
}

void CMetaDataCheck::CheckDefault(const Place& place, ItemType type, const std::wstring& text) {
  if (text.empty()) return;
  try {
    RkVariant().FromText(text, type);
  } catch (const CRkException& e) {
    Add(place, L"the default value is not of its type: " + e.GetMessage());
  }
}

void CMetaDataCheck::CheckEnumeration(const Place& place, bool hasFunctions) {
  if (!hasFunctions) Add(place, L"a function of the enumeration is a null pointer");
  CheckValue(place, ItemType_int);
}

void CMetaDataCheck::CheckObject(const Place& place) {
  RkVariant value;
  if (!Read(place, value) || !value.IsValid()) return;
  if (!value.IsXmlObject())
    return Add(place, FormatString(L"the property %d is %ls where the record says an object", place.property,
                                   NameOf(value.GetItemType()).c_str()));
  CheckHeld(place, value.PeekXmlObject(), L"the property");
}

// Some classes create a collection when reading begins and its element is there; a choice would be emptied then.
bool CMetaDataCheck::PrepareForReading(const Place& place) {
  if (auto* const object = dynamic_cast<CModelObject*>(&place.object)) {
    object->Ensure(place.property);
    return true;
  }
  if (place.object.GetClassInfo()->GetGroupType() == XmlElementGroupType_Choice) return false;
  CXmlDocument document;
  CXmlElement* const root = document.AddDocElement(L"", L"root");
  root->AddAttribute(L"a", L"", L"");
  CXmlElement* const child = root->CreateNewChildElement();
  child->SetElementName(place.record.c_str());
  child->SetNamespace(place.object.GetTargetNamespace());
  try {
    place.object.BeginFromXml_Int(root, child, GetDefaultContext(), false);
    return true;
  } catch (const CRkException& e) {
    Add(place, L"the object cannot begin to read: " + e.GetMessage());
    return false;
  }
}

template <class Wanted>
void CMetaDataCheck::CheckCollection(const Place& place, const wchar_t* wanted) {
  RkVariant value;
  if (!Read(place, value)) return;
  const auto isMissing = [&value] {
    return value.PeekXmlCollection() == nullptr && (!value.IsValid() || value.IsXmlCollection());
  };
  if (isMissing() && !PrepareForReading(place)) return;
  if (isMissing() && !Read(place, value)) return;
  if (isMissing()) return Add(place, L"the collection has not been created");
  CXmlCollectionBase* const collection = value.PeekXmlCollection();
  if (collection == nullptr || dynamic_cast<Wanted*>(collection) == nullptr)
    return Add(place, FormatString(L"the property %d is not %ls", place.property, wanted));
  const auto* const objects = dynamic_cast<const CXmlCollection*>(collection);
  if (objects == nullptr) return;
  for (const auto* node = objects->GetFirstNode(); node != nullptr; node = node->GetNext())
    CheckHeld(place, node->GetItem(), L"the collection");
}

void CMetaDataCheck::CheckHeld(const Place& place, CXmlObjectBase* held, const wchar_t* where) {
  if (held == nullptr) return;
  if (IsOnStack(held)) Add(place, FormatString(L"%ls holds an object on the stack", where));
  if (auto* const object = dynamic_cast<CXmlGeneratedClass*>(held)) Check(*object);
}

std::vector<CMetaDataFault> CheckMetaData(CXmlGeneratedClass& object) {
  CMetaDataCheck check;
  check.Check(object);
  return check.TakeFaults();
}

}  // namespace RkXmlLib16
