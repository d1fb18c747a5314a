// The records and collections of classes that tables describe: those of the library, and where a schema says more than
// they hold, classes derived from them that look at the element first.
#include <algorithm>
#include <type_traits>
#include <utility>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/XsdTypes.h"
#include "RkXmlLib16/binding/ElementInfoAll.h"
#include "RkXmlLib16/binding/ElementInfoChoice.h"
#include "RkXmlLib16/binding/ElementInfoSeq.h"
#include "RkXmlLib16/binding/internal/ElementRules.h"
#include "RkXmlLib16/binding/internal/ModelClass.h"
#include "RkXmlLib16/binding/internal/ReadSession.h"
#include "RkXmlLib16/document/internal/NodeText.h"
#include "RkXmlLib16/document/internal/Refusal.h"
#include "RkXmlLib16/wildcards/internal/TypeValue.h"

namespace RkXmlLib16Data {

using namespace RkXmlLib16;

namespace {

using Kind = MemberModel::Kind;
using Occurrence = MemberModel::Cardinality;

void RefuseNilContent(const CXmlElement& element) {
  if (!element.GetText().empty() || element.GetFirstElement() != nullptr)
    throw At(CRkValidationException(
                 FormatString(L"The element [%ls] is nil and must be empty.", element.GetLocalName().c_str()),
                 element.GetXPath()),
             element);
}

[[noreturn]] void ThrowUnexpectedChild(const CXmlElement& element, const CXmlElement& child) {
  throw At(CRkValidationException(
               FormatString(L"Failed read all the elements held within the element [%ls]. The unexpected element "
                            L"[%ls] remains un processed",  // sic
                            element.GetLocalName().c_str(), child.GetLocalName().c_str()),
               element.GetXPath()),
           child);
}

void RefuseChildren(const CXmlElement& element) {
  if (const CXmlElement* const child = element.GetFirstElement()) ThrowUnexpectedChild(element, *child);
}

// ---- Values

// Whether the xsi:type of the element is the simple type of the member, or a derived one, which its text then has to
// fit too.
bool IsOfDerivedType(const SchemaModel* schema, const MemberModel& member, const CXmlElement& element,
                     std::wstring_view text) {
  const CSimpleType* const simple = FindNamedType(schema, element).simple;
  const bool isBlocked = (member.block & Derivation_Restriction) != 0;
  if (simple == nullptr || member.simple == nullptr || !simple->IsDerivedFrom(member.simple) ||
      (isBlocked && simple != member.simple))
    return false;
  if (const auto error = simple->Check(text, ResolverOf(element)))
    throw At(CRkValidationException(*error, element.GetXPath()), element);
  return true;
}

// A value that is checked by its text.
template <class Base>
class CModelValue final : public Base {
 public:
  CModelValue(const ClassModel& owner, const MemberModel& member)
      : Base(member.name, member.namespaceUri, member.property, member.isNillable, member.values->itemType,
             /*format=*/nullptr, member.values->whitespace, FacetsOf(*member.values), member.value.text),
        m_owner(owner),
        m_member(member),
        m_needsText(member.values->needsCheck || member.values->holdsQNames || member.value.isFixed) {
    Base::SetModelValue();
    if (!m_needsText) Base::SetModelText();
    if constexpr (std::is_same_v<Base, CElementInfoSeqPrimOpt>) Base::SetReadsOnlyItsElement();
  }

  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override {
    const CXmlElement* const element = *cursor;
    if (!Base::IsThisElement(context, element))
      return Base::ElementFromXml(context, object, parent, cursor, ownerNamespace, ownerType);
    if (m_needsText || !element->GetAttributes().empty() || element->GetFirstElement() != nullptr)
      ReadChecked(context, object, cursor);
    else
      Base::Read(context, object, cursor);
    return true;
  }

 private:
  [[gnu::noinline]] void ReadChecked(const CSerializationContext& context, CXmlGeneratedClass* object,
                                     CXmlElement** cursor) {
    const CXmlElement& element = **cursor;
    const CNodeText held(element);
    std::wstring_view text = held.Get();
    if (text.empty() && m_member.HasDefault()) text = m_member.value.text;
    const ReadingScope scope(element, text);
    bool isDone = true;
    try {
      isDone = ReadDerived(object, element, text);
    } catch (CRkException& e) {
      RefuseCaught(context, e, element);
    }
    if (isDone)
      *cursor = element.GetNextSiblingElement();
    else
      Base::Read(context, object, cursor);
  }

  // Checks what stands in the element besides its text; reads that if it is of a derived type.
  bool ReadDerived(CXmlGeneratedClass* object, const CXmlElement& element, std::wstring_view text) {
    RefuseChildren(element);
    if (m_member.isNillable && IsNilTrue(element)) RefuseNilContent(element);
    const CXmlAttributes attributes = element.GetAttributes();
    const bool isPlain = std::all_of(attributes.begin(), attributes.end(),
                                     [](const CXmlAttribute* attribute) { return attribute->IsNamespaceAttribute(); });
    if (!isPlain || !IsOfDerivedType(m_owner.schema, m_member, element, text)) return false;
    RkVariant value;
    value.FromText(text, m_member.values->itemType, m_member.values->whitespace);
    Base::InvokePropertySet(object, value, element);
    return true;
  }

  const ClassModel& m_owner;
  const MemberModel& m_member;
  bool m_needsText;
};

// A value collection that stops at its maximum, where it must, and checks texts and attributes of its items.
template <class Base>
class CModelValues final : public Base {
 public:
  CModelValues(const SchemaModel* schema, const ModelProperty& property)
      : CModelValues(schema, property, property.facets) {}

  CXmlElement* FromXml_Int(CXmlElement*, CXmlElement* current, const CSerializationContext& context, bool) override {
    const MemberModel& member = *m_property.member;
    const auto isFull = [&] { return member.stopsAtMaximum && this->GetCount() >= member.maxOccurs; };
    for (; current != nullptr && !isFull() &&
           this->DoesElementNameMatch(context, current, member.name, member.namespaceUri);
         current = current->GetNextSiblingElement()) {
      try {
        const CNodeText text(*current);
        CheckItem(context, *current, text.Get());
        this->AddFromString(text.Get());
      } catch (CRkException& e) {
        RefuseCaught(context, e, *current);
      }
    }
    return current;
  }
  using CXmlObjectBase::FromXml_Int;

 private:
  CModelValues(const SchemaModel* schema, const ModelProperty& property, const CPrimitiveRestrictions& f)
      : Base(property.member->name, property.member->namespaceUri, property.member->minOccurs,
             property.member->maxOccurs, f.GetPattern().c_str(), f.GetMinLength(), f.GetMaxLength(),
             f.GetMinInclusive().c_str(), f.GetMaxInclusive().c_str(), f.GetMinExclusive().c_str(),
             f.GetMaxExclusive().c_str(), f.GetLength(), f.GetTotalDigits(), f.GetFractionDigits(),
             property.values->whitespace, nullptr),
        m_schema(schema),
        m_property(property) {}

  void CheckItem(const CSerializationContext& context, const CXmlElement& element, std::wstring_view text) const {
    RefuseChildren(element);
    for (const CXmlAttribute* attribute : element.GetAttributes()) {
      if (attribute->IsNilAttribute() && IsNilTrue(element))
        throw At(CRkValidationException(L"Invalid use of 'nil' attribute in non-nillable element.", element.GetXPath()),
                 element);
      if (!IsAllowed(*attribute, element) && !context.GetIgnoreUnknownAttributes())
        Refuse(context, CRkValidationException(L"Unexpected Attribute found.", attribute->GetXPath()), *attribute);
    }
    const ValueModel& values = *m_property.values;
    try {
      if (values.needsCheck) CheckModelText(m_property.name, values, /*fixed=*/nullptr, text, ResolverOf(element));
      if (!m_property.IsEnumeration()) return;
      std::wstring scratch;
      const std::wstring_view normalized = CWhitespaceUtils::ApplyRule(values.whitespace, text, scratch);
      if (!m_property.IsAllowed(normalized)) ThrowInvalidValue(m_property.name, normalized);
    } catch (const CRkException& e) {
      throw At(CRkValidationException(L"Failed to set the property value.", element.GetXPath(), e), element);
    }
  }

  bool IsAllowed(const CXmlAttribute& attribute, const CXmlElement& element) const {
    if (CTypeValue::IsType(attribute.GetLocalName(), attribute.GetNamespaceURI()))
      return IsOfDerivedType(m_schema, *m_property.member, element, element.GetText());
    return attribute.IsNilAttribute() || attribute.IsNamespaceAttribute();
  }

  const SchemaModel* m_schema;
  const ModelProperty& m_property;
};

CXmlCollectionBase* NewValues(const SchemaModel* schema, const ModelProperty& property) {
  switch (property.values->itemType) {
#define RKXML_NEW(Kind, Name, Property, Value) \
  case ItemType_##Kind:                        \
    return new CModelValues<C##Name##Col>(schema, property);
#define RKXML_NOTHING(Kind, Name, Property, Value)
    RKXML_XSD_TYPES(RKXML_NEW, RKXML_NEW, RKXML_NOTHING)
#undef RKXML_NEW
#undef RKXML_NOTHING
    default:
      return new CModelValues<CstringCol>(schema, property);
  }
}

// ---- Objects

// Of which element a record is about to make the object.
thread_local const MemberModel* t_place = nullptr;

CSmartPtr<CXmlObjectBase> CreateAbstract(CXmlElement* element) {
  return NewElement(t_place->object->schema, *t_place, *element);
}

template <class Base>
class CModelAbstract final : public Base {
 public:
  template <class... Args>
  explicit CModelAbstract(const MemberModel& member, Args&&... args)
      : Base(member.name, member.namespaceUri, member.property, XmlElementType_Element, CreateAbstract,
             std::forward<Args>(args)...),
        m_member(member) {
    if constexpr (std::is_same_v<Base, CElementInfoSeqAbsClsOpt>) Base::SetReadsOnlyItsElement();
  }

  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override {
    t_place = &m_member;
    return Base::ElementFromXml(context, object, parent, cursor, ownerNamespace, ownerType);
  }

 private:
  const MemberModel& m_member;
};

// ---- Collections

// A collection that is made when there is something to read into it.
template <class Base>
class CModelCollectionRecord final : public Base {
 public:
  template <class... Args>
  explicit CModelCollectionRecord(const MemberModel& member, bool isChoice, Args&&... args)
      : Base(member.name, member.namespaceUri, member.property, std::forward<Args>(args)...),
        m_member(member),
        m_isChoice(isChoice) {
    const bool hasName = member.kind != Kind::InlineGroup && member.kind != Kind::Wildcard;
    if (hasName && member.minOccurs == 0 && !isChoice) Base::SetReadsOnlyItsElement();
  }

  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override {
    const CXmlElement* const first = *cursor;
    const bool hasNothing = m_member.kind == Kind::InlineGroup || m_member.kind == Kind::Wildcard
                                ? first == nullptr
                                : !Base::IsThisElement(context, first);
    if (hasNothing && (m_member.minOccurs == 0 || m_isChoice)) return !m_isChoice;
    auto& owner = static_cast<CModelObject&>(*object);
    owner.Ensure(m_member.property);
    const bool accepted = Base::ElementFromXml(context, object, parent, cursor, ownerNamespace, ownerType);
    if (m_member.values != nullptr && m_member.values->holdsQNames)
      for (const CXmlElement* e = first; e != nullptr && e != *cursor; e = e->GetNextSiblingElement())
        owner.KeepPrefixes(*e, e->GetText());
    return accepted;
  }

 private:
  const MemberModel& m_member;
  bool m_isChoice;
};

// ---- Wildcards

bool IsCheck() noexcept {
  const ReadSession* const session = ReadSession::Current();
  return session != nullptr && session->isCheck;
}

template <class Base>
class CModelWildcard final : public Base {
 public:
  CModelWildcard(const ClassModel& owner, const MemberModel& member, bool isChoice)
      : Base(member.name, member.namespaceUri, member.property, L"##any", member.namespaceUri),
        m_owner(owner),
        m_member(member),
        m_isChoice(isChoice) {}

  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override {
    CXmlElement* const element = *cursor;
    if (element != nullptr && !m_member.wildcard->Allows(element->GetNamespaceURI())) {
      const bool isOptional = m_member.cardinality == Occurrence::Optional;
      if (m_isChoice || (!isOptional && ownerType != XmlElementType_Element)) return false;
      if (isOptional) return true;
      Refuse(context,
             CRkValidationException(
                 FormatString(L"Failed to find the required element from namespace [%ls].", m_member.wildcard->written),
                 parent->GetXPath()),
             *parent);
      return true;
    }
    if (element != nullptr) {
      if (m_member.cardinality == Occurrence::Mandatory) static_cast<CModelObject&>(*object).Ensure(m_member.property);
      CheckWildcardElement(m_owner.schema, m_member.wildcard->process, *element, context);
    }
    if (element != nullptr && IsCheck()) {
      const MemberRead read{context, object, parent, cursor, ownerNamespace, ownerType};
      if (m_member.cardinality != Occurrence::Mandatory)
        StoreChild(*this, read, CSmartPtr<CXmlObjectBase>(new CElement(m_member.name)), *element);
      read.MoveOn();
      return true;
    }
    return Base::ElementFromXml(context, object, parent, cursor, ownerNamespace, ownerType);
  }

 private:
  const ClassModel& m_owner;
  const MemberModel& m_member;
  bool m_isChoice;
};

class CModelWildcards final : public CElementCol {
 public:
  CModelWildcards(const ClassModel& owner, const MemberModel& member)
      : CElementCol(member.name, member.namespaceUri, member.minOccurs, member.maxOccurs),
        m_owner(owner),
        m_member(member) {}

  CXmlElement* FromXml_Int(CXmlElement*, CXmlElement* current, const CSerializationContext& context, bool) override {
    const auto isFull = [&] { return m_member.stopsAtMaximum && GetCount() >= m_member.maxOccurs; };
    while (current != nullptr && !isFull() && m_member.wildcard->Allows(current->GetNamespaceURI())) {
      CheckWildcardElement(m_owner.schema, m_member.wildcard->process, *current, context);
      if (IsCheck()) {
        Add(CSmartPtr<CElement>(new CElement(L"AnyElement")));
        current = current->GetNextSiblingElement();
      } else {
        current = TakeElement(current, context);
      }
    }
    return current;
  }
  using CXmlObjectBase::FromXml_Int;

 private:
  const ClassModel& m_owner;
  const MemberModel& m_member;
};

class CModelWildcardAttributes final : public CAttributeInfoAny {
 public:
  explicit CModelWildcardAttributes(const ClassModel& owner)
      : CAttributeInfoAny(L"AnyAttribute", L"", owner.attributeWildcardProperty, /*optional=*/true, L"##any", L"",
                          nullptr),
        m_owner(owner) {}

  bool AttributeFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                        CXmlAttribute* attribute) override {
    const WildcardModel& wildcard = *m_owner.attributeWildcard;
    if (!wildcard.Allows(attribute->GetNamespaceURI())) return false;
    CheckWildcardAttribute(m_owner.schema, wildcard.process, *attribute);
    auto& owner = static_cast<CModelObject&>(*object);
    owner.Ensure(m_owner.attributeWildcardProperty);
    owner.KeepPrefixes(*attribute->GetElement(), attribute->GetValue());
    return CAttributeInfoAny::AttributeFromXml(context, object, attribute);
  }

 private:
  const ClassModel& m_owner;
};

class CModelAttribute final : public CAttributeInfoPrimitive {
 public:
  using CAttributeInfoPrimitive::CAttributeInfoPrimitive;

  bool AttributeFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                        CXmlAttribute* attribute) override {
    const CNodeText text(*attribute);
    const ReadingScope scope(*attribute->GetElement(), text.Get());
    return CAttributeInfoPrimitive::AttributeFromXml(context, object, attribute);
  }
};

// ---- One record for each place in a class

enum class Place { SeqMnd, SeqOpt, Choice, AllMnd, AllOpt };

Place PlaceOf(const ClassModel& owner, const MemberModel& member) {
  const bool isMandatory = member.cardinality == Occurrence::Mandatory;
  if (owner.group == XmlElementGroupType_Choice) return Place::Choice;
  if (owner.group == XmlElementGroupType_All) return isMandatory ? Place::AllMnd : Place::AllOpt;
  return isMandatory ? Place::SeqMnd : Place::SeqOpt;
}

CElementInfo* NewValueRecord(Place place, const ClassModel& owner, const MemberModel& member) {
  switch (place) {
    case Place::SeqMnd:
      return new CModelValue<CElementInfoSeqPrimMnd>(owner, member);
    case Place::SeqOpt:
      return new CModelValue<CElementInfoSeqPrimOpt>(owner, member);
    case Place::Choice:
      return new CModelValue<CElementInfoChoicePrimOpt>(owner, member);
    case Place::AllMnd:
      return new CModelValue<CElementInfoAllPrimMnd>(owner, member);
    default:
      return new CModelValue<CElementInfoAllPrimOpt>(owner, member);
  }
}

CElementInfo* NewObjectRecord(Place place, const MemberModel& member, int id) {
  const wchar_t* const name = member.name;
  const wchar_t* const ns = member.namespaceUri;
  const int property = member.property;
  const XmlElementType type = member.object->elementType;
  switch (place) {
    case Place::SeqMnd:
      return new CElementInfoSeqClsMnd(name, ns, property, type, ModelFactories::Create, id, member.isRequired);
    case Place::SeqOpt:
      return new CElementInfoSeqClsOpt(name, ns, property, type, ModelFactories::Create, id);
    case Place::Choice:
      return new CElementInfoChoiceClsOpt(name, ns, property, type, ModelFactories::Create, id);
    case Place::AllMnd:
      return new CElementInfoAllClsMnd(name, ns, property, type, ModelFactories::Create, id, member.isRequired);
    default:
      return new CElementInfoAllClsOpt(name, ns, property, type, ModelFactories::Create, id);
  }
}

CElementInfo* NewAbstractRecord(Place place, const MemberModel& member) {
  switch (place) {
    case Place::SeqMnd:
      return new CModelAbstract<CElementInfoSeqAbsClsMnd>(member);
    case Place::SeqOpt:
      return new CModelAbstract<CElementInfoSeqAbsClsOpt>(member);
    case Place::Choice:
      return new CModelAbstract<CElementInfoChoiceAbsClsOpt>(member);
    case Place::AllMnd:
      return new CModelAbstract<CElementInfoAllAbsClsMnd>(member, 0);
    default:
      return new CModelAbstract<CElementInfoAllAbsClsOpt>(member);
  }
}

CElementInfo* NewWildcard(Place place, const ClassModel& owner, const MemberModel& member) {
  switch (place) {
    case Place::SeqMnd:
      return new CModelWildcard<CElementInfoSeqUntpdMnd>(owner, member, false);
    case Place::Choice:
      return new CModelWildcard<CElementInfoChoiceUntpdOpt>(owner, member, true);
    default:
      return new CModelWildcard<CElementInfoSeqUntpdOpt>(owner, member, false);
  }
}

// An all group has no collections.
CElementInfo* NewCollectionRecord(bool isChoice, const MemberModel& member) {
  const XmlElementType type = member.object != nullptr ? member.object->elementType : XmlElementType_Element;
  switch (member.kind) {
    case Kind::Value:
      if (isChoice) return new CModelCollectionRecord<CElementInfoChoicePrimCol>(member, true);
      return new CModelCollectionRecord<CElementInfoSeqPrimCol>(member, false);
    case Kind::Wildcard:
      if (isChoice) return new CModelCollectionRecord<CElementInfoChoiceUntpdCol>(member, true);
      return new CModelCollectionRecord<CElementInfoSeqUntpdCol>(member, false);
    default:
      if (isChoice) return new CModelCollectionRecord<CElementInfoChoiceClsCol>(member, true, type);
      return new CModelCollectionRecord<CElementInfoSeqClsCol>(member, false, type);
  }
}

}  // namespace

CElementInfo* NewModelRecord(const ClassModel& owner, const MemberModel& member, std::vector<int>& factoryIds) {
  if (member.IsCollection()) return NewCollectionRecord(owner.group == XmlElementGroupType_Choice, member);
  const Place place = PlaceOf(owner, member);
  switch (member.kind) {
    case Kind::Value:
      return NewValueRecord(place, owner, member);
    case Kind::AbstractObject:
      return NewAbstractRecord(place, member);
    case Kind::Wildcard:
      return NewWildcard(place, owner, member);
    default:
      factoryIds.push_back(ModelFactories::Add(member));
      return NewObjectRecord(place, member, factoryIds.back());
  }
}

CAttributeInfo* NewModelRecord(const AttributeModel& attribute) {
  const ValueModel& v = *attribute.values;
  const auto make = [&](auto* type) -> CAttributeInfo* {
    using Record = std::remove_pointer_t<decltype(type)>;
    auto* const record = new Record(attribute.name, attribute.namespaceUri, attribute.property, attribute.isOptional,
                                    v.itemType, nullptr, v.whitespace, FacetsOf(v), attribute.value.text);
    record->SetModelValue();
    return record;
  };
  if (v.needsCheck || v.holdsQNames || attribute.value.isFixed) return make(static_cast<CModelAttribute*>(nullptr));
  CAttributeInfo* const record = make(static_cast<CAttributeInfoPrimitive*>(nullptr));
  record->SetModelText();
  return record;
}

CAttributeInfo* NewWildcardRecord(const ClassModel& owner) { return new CModelWildcardAttributes(owner); }

CXmlCollectionBase* NewCollection(const ClassModel& owner, const ModelProperty& property) {
  const MemberModel& member = *property.member;
  if (member.kind == Kind::Wildcard) return new CModelWildcards(owner, member);
  if (member.values != nullptr) return NewValues(owner.schema, property);
  return member.newCollection(member);
}

}  // namespace RkXmlLib16Data
