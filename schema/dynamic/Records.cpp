// The records and collections of classes without code: those of the library, and where the schema says more than they
// hold, classes derived from them that look at the element first.
#include "RkXmlLib16/base/Format.h"
#include "schema/dynamic/internal/Class.h"

namespace RkXmlSchema {

using namespace RkXmlLib16;
using namespace RkXmlLib16Data;

namespace {

using Kind = MemberBinding::Kind;

const wchar_t* DefaultOf(const DefaultBinding& value) { return value.exists ? value.text.c_str() : nullptr; }

bool NeedsText(const ValueBinding& value, const DefaultBinding& defaultValue) {
  return value.needsCheck || value.holdsQNames || defaultValue.isFixed;
}

void RefuseNilContent(const CXmlElement& element) {
  if (!element.GetText().empty() || element.GetFirstElement() != nullptr)
    throw At(CRkValidationException(
                 FormatString(L"The element [%ls] is nil and must be empty.", element.GetLocalName().c_str()),
                 element.GetXPath()),
             element);
}

void RefuseChildren(const CXmlElement& element) {
  if (const CXmlElement* const child = element.GetFirstElement())
    throw At(CRkValidationException(
                 FormatString(L"Failed read all the elements held within the element [%ls]. The unexpected element "
                              L"[%ls] remains un processed",  // sic
                              element.GetLocalName().c_str(), child->GetLocalName().c_str()),
                 element.GetXPath()),
             *child);
}

bool IsNilTrue(const CXmlElement& element) {
  const CXmlText value = element.GetAttribute(L"nil", kInstanceNamespace);
  return value == L"true" || value == L"1";
}

// ---- Values

// A value that is checked by its text.
template <class Base>
class CCheckedValue final : public Base {
 public:
  template <class... Args>
  CCheckedValue(const CDynamicSchema& schema, const MemberBinding& member, Args&&... args)
      : Base(std::forward<Args>(args)...), m_schema(schema), m_member(member) {}

  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override {
    const CXmlElement* const element = *cursor;
    if (!Base::IsThisElement(context, element))
      return Base::ElementFromXml(context, object, parent, cursor, ownerNamespace, ownerType);
    std::wstring_view text = element->GetText();
    if (text.empty() && m_member.defaultValue.exists) text = m_member.defaultValue.text;
    const ReadingScope scope(*element, text);
    bool isDone = true;
    try {
      isDone = ReadDerived(object, *element, text);
    } catch (CRkException& e) {
      if (!context.TellError(At(e, *element))) throw;
    }
    if (!isDone) return Base::ElementFromXml(context, object, parent, cursor, ownerNamespace, ownerType);
    *cursor = element->GetNextSiblingElement();
    return true;
  }

 private:
  // Checks what stands in the element besides its text; reads that if it is of a derived type.
  bool ReadDerived(CXmlGeneratedClass* object, const CXmlElement& element, std::wstring_view text) {
    RefuseChildren(element);
    if (m_member.isNillable && IsNilTrue(element)) RefuseNilContent(element);
    if (!IsOfDerivedType(element, text)) return false;
    RkVariant value;
    value.FromText(text, m_member.value->itemType, m_member.value->whitespace);
    Base::InvokePropertySet(object, value, element);
    return true;
  }

  // Whether the element has an xsi:type of a derived simple type, which its text then has to fit too, and nothing else.
  bool IsOfDerivedType(const CXmlElement& element, std::wstring_view text) const {
    const CXmlAttributes attributes = element.GetAttributes();
    if (attributes.size() != 1 || !attributes[0]->IsNamespaceAttribute()) return false;
    bool isNamed = false;
    const TypeDefinition* const type = FindNamedType(m_schema.GetBinding().GetSchemas(), element, isNamed);
    const SimpleTypeDefinition* const simple = type != nullptr ? type->AsSimple() : nullptr;
    const bool isBlocked = (m_member.element->disallowedSubstitutions & kRestriction) != 0;
    if (simple == nullptr || !simple->IsDerivedFrom(m_member.value->type) ||
        (isBlocked && simple != m_member.value->type))
      return false;
    if (const auto error = CheckValue(*simple, text, ResolverOf(element)))
      throw At(CRkValidationException(*error, element.GetXPath()), element);
    return true;
  }

  const CDynamicSchema& m_schema;
  const MemberBinding& m_member;
};

// A value collection that stops at its maximum, where it must, and checks texts and attributes of its items.
template <class Base>
class CCheckedCol final : public Base {
 public:
  explicit CCheckedCol(const Property& property) : CCheckedCol(property, property.value->facets) {}

  CXmlElement* FromXml_Int(CXmlElement*, CXmlElement* current, const CSerializationContext& context, bool) override {
    const MemberBinding& member = *m_property.member;
    const auto isFull = [&] { return member.stopsAtMaximum && this->GetCount() >= member.maxOccurs; };
    for (; current != nullptr && !isFull() &&
           this->DoesElementNameMatch(context, current, member.name.c_str(), member.namespaceUri.c_str());
         current = current->GetNextSiblingElement()) {
      try {
        CheckItem(context, *current);
        this->AddFromString(current->GetText());
      } catch (CRkException& e) {
        if (!context.TellError(At(e, *current))) throw;
      }
    }
    return current;
  }
  using CXmlObjectBase::FromXml_Int;

 private:
  CCheckedCol(const Property& property, const CPrimitiveRestrictions& f)
      : Base(property.name, property.member->namespaceUri.c_str(), property.member->minOccurs,
             property.member->maxOccurs, f.GetPattern().c_str(), f.GetMinLength(), f.GetMaxLength(),
             f.GetMinInclusive().c_str(), f.GetMaxInclusive().c_str(), f.GetMinExclusive().c_str(),
             f.GetMaxExclusive().c_str(), f.GetLength(), f.GetTotalDigits(), f.GetFractionDigits(),
             property.value->whitespace, nullptr),
        m_property(property) {}

  void CheckItem(const CSerializationContext& context, const CXmlElement& element) const {
    RefuseChildren(element);
    for (const CXmlAttribute* attribute : element.GetAttributes()) {
      if (attribute->IsNilAttribute() && IsNilTrue(element))
        throw At(CRkValidationException(L"Invalid use of 'nil' attribute in non-nillable element.", element.GetXPath()),
                 element);
      if (!attribute->IsNilAttribute() && !attribute->IsNamespaceAttribute() && !context.GetIgnoreUnknownAttributes())
        Refuse(context, CRkValidationException(L"Unexpected Attribute found.", attribute->GetXPath()), *attribute);
    }
    try {
      if (m_property.value->needsCheck) CheckText(m_property, element.GetText(), ResolverOf(element));
      if (m_property.enumeration == nullptr) return;
      std::wstring scratch;
      const std::wstring_view text =
          CWhitespaceUtils::ApplyRule(m_property.value->whitespace, element.GetText(), scratch);
      if (m_property.enumeration->count(text) == 0)
        throw CRkInvalidValueException(
            FormatString(L"Invalid Value for %ls [%ls].", m_property.name, std::wstring(text).c_str()));
    } catch (const CRkException& e) {
      throw At(CRkValidationException(L"Failed to set the property value.", element.GetXPath(), e), element);
    }
  }

  const Property& m_property;
};

template <class Base>
CSmartPtr<CXmlCollectionBase> NewValues(const Property& property) {
  return CSmartPtr<CXmlCollectionBase>(new CCheckedCol<Base>(property));
}

CSmartPtr<CXmlCollectionBase> NewValueCollection(const Property& property) {
  switch (property.value->itemType) {
#define RKXML_NEW(Kind, Name, Property, Value) \
  case ItemType_##Kind:                        \
    return NewValues<C##Name##Col>(property);
#define RKXML_NOTHING(Kind, Name, Property, Value)
    RKXML_XSD_TYPES(RKXML_NEW, RKXML_NEW, RKXML_NOTHING)
#undef RKXML_NEW
#undef RKXML_NOTHING
    default:
      return NewValues<CstringCol>(property);
  }
}

// ---- Objects

// Of which element a record is about to make the object.
struct AbstractPlace {
  const CDynamicSchema* schema;
  const ElementDeclaration* declaration;
};
thread_local AbstractPlace t_place{nullptr, nullptr};

CSmartPtr<CXmlObjectBase> CreateAbstract(CXmlElement* element) {
  return NewElement(*t_place.schema, *t_place.declaration, *element);
}

template <class Base>
class CAbstractObject final : public Base {
 public:
  template <class... Args>
  CAbstractObject(AbstractPlace place, Args&&... args) : Base(std::forward<Args>(args)...), m_place(place) {}

  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override {
    t_place = m_place;
    return Base::ElementFromXml(context, object, parent, cursor, ownerNamespace, ownerType);
  }

 private:
  AbstractPlace m_place;
};

// ---- Collections

// A collection that is made when there is something to read into it.
template <class Base>
class CLateCollection final : public Base {
 public:
  template <class... Args>
  explicit CLateCollection(const MemberBinding& member, bool isChoice, Args&&... args)
      : Base(std::forward<Args>(args)...), m_member(member), m_isChoice(isChoice) {}

  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override {
    const CXmlElement* const first = *cursor;
    const bool hasNothing = m_member.kind == Kind::InlineGroup || m_member.kind == Kind::Wildcard
                                ? first == nullptr
                                : !Base::IsThisElement(context, first);
    if (hasNothing && (m_member.minOccurs == 0 || m_isChoice)) return !m_isChoice;
    auto& owner = static_cast<CDynamicObject&>(*object);
    owner.Ensure(m_member.property);
    const bool accepted = Base::ElementFromXml(context, object, parent, cursor, ownerNamespace, ownerType);
    if (m_member.value != nullptr && m_member.value->holdsQNames)
      for (const CXmlElement* e = first; e != *cursor; e = e->GetNextSiblingElement())
        owner.KeepPrefixes(*e, e->GetText());
    return accepted;
  }

 private:
  const MemberBinding& m_member;
  bool m_isChoice;
};

// ---- Wildcards

void CheckWildcard(const CDynamicSchema& schema, const MemberBinding& member, CXmlElement& element,
                   const CSerializationContext& context) {
  try {
    CheckWildcardElement(schema, member.wildcard->processContents, element, context);
  } catch (CRkException& e) {
    if (!context.TellError(At(e, element))) throw;
  }
}

template <class Base>
class CWildcardRecord final : public Base {
 public:
  CWildcardRecord(const CDynamicSchema& schema, const MemberBinding& member, bool isChoice)
      : Base(member.name.c_str(), member.namespaceUri.c_str(), member.property, L"##any", member.namespaceUri.c_str()),
        m_schema(schema),
        m_member(member),
        m_isChoice(isChoice) {}

  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override {
    CXmlElement* const element = *cursor;
    if (element != nullptr && !m_member.wildcard->Allows(element->GetNamespaceURI())) {
      const bool isOptional = m_member.cardinality == MemberBinding::Cardinality::Optional;
      if (m_isChoice || (!isOptional && ownerType != XmlElementType_Element)) return false;
      if (isOptional) return true;
      Refuse(context,
             CRkValidationException(FormatString(L"Failed to find the required element from namespace [%ls].",
                                                 m_member.wildcard->written.c_str()),
                                    parent->GetXPath()),
             *parent);
      return true;
    }
    if (element != nullptr) {
      if (m_member.cardinality == MemberBinding::Cardinality::Mandatory)
        static_cast<CDynamicObject&>(*object).Ensure(m_member.property);
      CheckWildcard(m_schema, m_member, *element, context);
    }
    return Base::ElementFromXml(context, object, parent, cursor, ownerNamespace, ownerType);
  }

 private:
  const CDynamicSchema& m_schema;
  const MemberBinding& m_member;
  bool m_isChoice;
};

class CWildcardCol final : public CElementCol {
 public:
  CWildcardCol(const CDynamicSchema& schema, const MemberBinding& member)
      : CElementCol(member.name.c_str(), member.namespaceUri.c_str(), member.minOccurs, member.maxOccurs),
        m_schema(schema),
        m_member(member) {}

  CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* current, const CSerializationContext& context,
                           bool) override {
    const auto isFull = [&] { return m_member.stopsAtMaximum && GetCount() >= m_member.maxOccurs; };
    while (current != nullptr && !isFull() && m_member.wildcard->Allows(current->GetNamespaceURI())) {
      CheckWildcard(m_schema, m_member, *current, context);
      const CSmartPtr<CElement> element(new CElement(L"AnyElement"));
      current = element->FromXml_Int(parent, current, context, /*isOptionalChoice=*/false);
      Add(element);
    }
    return current;
  }
  using CXmlObjectBase::FromXml_Int;

 private:
  const CDynamicSchema& m_schema;
  const MemberBinding& m_member;
};

class CWildcardAttributes final : public CAttributeInfoAny {
 public:
  CWildcardAttributes(const CDynamicSchema& schema, const Wildcard& wildcard, int property)
      : CAttributeInfoAny(L"AnyAttribute", L"", property, /*optional=*/true, L"##any", L"", nullptr),
        m_schema(schema),
        m_wildcard(wildcard),
        m_property(property) {}

  bool AttributeFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                        CXmlAttribute* attribute) override {
    if (!m_wildcard.Allows(attribute->GetNamespaceURI())) return false;
    CheckWildcardAttribute(m_schema, m_wildcard.processContents, *attribute);
    auto& owner = static_cast<CDynamicObject&>(*object);
    owner.Ensure(m_property);
    owner.KeepPrefixes(*attribute->GetElement(), attribute->GetValue());
    return CAttributeInfoAny::AttributeFromXml(context, object, attribute);
  }

 private:
  const CDynamicSchema& m_schema;
  const Wildcard& m_wildcard;
  int m_property;
};

class CCheckedAttribute final : public CAttributeInfoPrimitive {
 public:
  using CAttributeInfoPrimitive::CAttributeInfoPrimitive;

  bool AttributeFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                        CXmlAttribute* attribute) override {
    const ReadingScope scope(*attribute->GetElement(), attribute->GetValue());
    return CAttributeInfoPrimitive::AttributeFromXml(context, object, attribute);
  }
};

// ---- One record for each place in a class

enum class Place { SeqMnd, SeqOpt, Choice, AllMnd, AllOpt };

Place PlaceOf(const ClassBinding& owner, const MemberBinding& member) {
  const bool isMandatory = member.cardinality == MemberBinding::Cardinality::Mandatory;
  if (owner.group == XmlElementGroupType_Choice) return Place::Choice;
  if (owner.group == XmlElementGroupType_All) return isMandatory ? Place::AllMnd : Place::AllOpt;
  return isMandatory ? Place::SeqMnd : Place::SeqOpt;
}

template <class Record>
CElementInfo* NewValue(const CDynamicSchema& schema, const MemberBinding& member) {
  const ValueBinding& v = *member.value;
  const auto make = [&](auto&& create) -> CElementInfo* {
    return create(member.name.c_str(), member.namespaceUri.c_str(), member.property, member.isNillable, v.itemType,
                  /*format=*/static_cast<const wchar_t*>(nullptr), v.whitespace, v.facets,
                  DefaultOf(member.defaultValue));
  };
  return make([&](auto&&... args) -> CElementInfo* { return new CCheckedValue<Record>(schema, member, args...); });
}

CElementInfo* NewValueRecord(Place place, const CDynamicSchema& schema, const MemberBinding& member) {
  switch (place) {
    case Place::SeqMnd:
      return NewValue<CElementInfoSeqPrimMnd>(schema, member);
    case Place::SeqOpt:
      return NewValue<CElementInfoSeqPrimOpt>(schema, member);
    case Place::Choice:
      return NewValue<CElementInfoChoicePrimOpt>(schema, member);
    case Place::AllMnd:
      return NewValue<CElementInfoAllPrimMnd>(schema, member);
    default:
      return NewValue<CElementInfoAllPrimOpt>(schema, member);
  }
}

CElementInfo* NewObjectRecord(Place place, const MemberBinding& member, int id) {
  const wchar_t* const name = member.name.c_str();
  const wchar_t* const ns = member.namespaceUri.c_str();
  const int property = member.property;
  const XmlElementType type = member.object->elementType;
  switch (place) {
    case Place::SeqMnd:
      return new CElementInfoSeqClsMnd(name, ns, property, type, Factories::Create, id, member.isRequired);
    case Place::SeqOpt:
      return new CElementInfoSeqClsOpt(name, ns, property, type, Factories::Create, id);
    case Place::Choice:
      return new CElementInfoChoiceClsOpt(name, ns, property, type, Factories::Create, id);
    case Place::AllMnd:
      return new CElementInfoAllClsMnd(name, ns, property, type, Factories::Create, id, member.isRequired);
    default:
      return new CElementInfoAllClsOpt(name, ns, property, type, Factories::Create, id);
  }
}

CElementInfo* NewAbstractRecord(Place place, const MemberBinding& member, AbstractPlace at) {
  const wchar_t* const name = member.name.c_str();
  const wchar_t* const ns = member.namespaceUri.c_str();
  const int property = member.property;
  constexpr auto kOwn = XmlElementType_Element;
  switch (place) {
    case Place::SeqMnd:
      return new CAbstractObject<CElementInfoSeqAbsClsMnd>(at, name, ns, property, kOwn, CreateAbstract);
    case Place::SeqOpt:
      return new CAbstractObject<CElementInfoSeqAbsClsOpt>(at, name, ns, property, kOwn, CreateAbstract);
    case Place::Choice:
      return new CAbstractObject<CElementInfoChoiceAbsClsOpt>(at, name, ns, property, kOwn, CreateAbstract);
    case Place::AllMnd:
      return new CAbstractObject<CElementInfoAllAbsClsMnd>(at, name, ns, property, kOwn, CreateAbstract, 0);
    default:
      return new CAbstractObject<CElementInfoAllAbsClsOpt>(at, name, ns, property, kOwn, CreateAbstract);
  }
}

CElementInfo* NewWildcard(Place place, const CDynamicSchema& schema, const MemberBinding& member) {
  switch (place) {
    case Place::SeqMnd:
      return new CWildcardRecord<CElementInfoSeqUntpdMnd>(schema, member, false);
    case Place::Choice:
      return new CWildcardRecord<CElementInfoChoiceUntpdOpt>(schema, member, true);
    default:
      return new CWildcardRecord<CElementInfoSeqUntpdOpt>(schema, member, false);
  }
}

template <class Record, class... Args>
CElementInfo* NewCol(const MemberBinding& member, bool isChoice, Args... args) {
  return new CLateCollection<Record>(member, isChoice, member.name.c_str(), member.namespaceUri.c_str(),
                                     member.property, args...);
}

// An all group has no collections.
CElementInfo* NewCollectionRecord(bool isChoice, const MemberBinding& member) {
  const XmlElementType type = member.object != nullptr ? member.object->elementType : XmlElementType_Element;
  switch (member.kind) {
    case Kind::Value:
    case Kind::Enumeration:
      return isChoice ? NewCol<CElementInfoChoicePrimCol>(member, true) : NewCol<CElementInfoSeqPrimCol>(member, false);
    case Kind::Wildcard:
      return isChoice ? NewCol<CElementInfoChoiceUntpdCol>(member, true)
                      : NewCol<CElementInfoSeqUntpdCol>(member, false);
    default:
      return isChoice ? NewCol<CElementInfoChoiceClsCol>(member, true, type)
                      : NewCol<CElementInfoSeqClsCol>(member, false, type);
  }
}

}  // namespace

CElementInfo* NewRecord(const CDynamicSchema& schema, const ClassBinding& owner, const MemberBinding& member,
                        std::vector<int>& factoryIds) {
  if (member.IsCollection()) return NewCollectionRecord(owner.group == XmlElementGroupType_Choice, member);
  const Place place = PlaceOf(owner, member);
  switch (member.kind) {
    case Kind::Value:
    case Kind::Enumeration:
      return NewValueRecord(place, schema, member);
    case Kind::AbstractObject:
      return NewAbstractRecord(place, member, {&schema, member.element});
    case Kind::Wildcard:
      return NewWildcard(place, schema, member);
    default:
      factoryIds.push_back(
          Factories::Add(&ClassOf(schema, *member.object), member.object->IsInline() ? nullptr : member.element));
      return NewObjectRecord(place, member, factoryIds.back());
  }
}

CAttributeInfo* NewRecord(const AttributeBinding& attribute) {
  const ValueBinding& v = *attribute.value;
  const auto make = [&](auto* type) -> CAttributeInfo* {
    using Record = std::remove_pointer_t<decltype(type)>;
    return new Record(attribute.name.c_str(), attribute.namespaceUri.c_str(), attribute.property, attribute.isOptional,
                      v.itemType, nullptr, v.whitespace, v.facets, DefaultOf(attribute.defaultValue));
  };
  if (NeedsText(v, attribute.defaultValue)) return make(static_cast<CCheckedAttribute*>(nullptr));
  return make(static_cast<CAttributeInfoPrimitive*>(nullptr));
}

CAttributeInfo* NewWildcardRecord(const CDynamicSchema& schema, const ClassBinding& owner) {
  return new CWildcardAttributes(schema, *owner.attributeWildcard, owner.attributeWildcardProperty);
}

CSmartPtr<CXmlCollectionBase> NewCollection(const CDynamicSchema& schema, const Property& property) {
  const MemberBinding& member = *property.member;
  if (member.kind == Kind::Wildcard) return CSmartPtr<CXmlCollectionBase>(new CWildcardCol(schema, member));
  if (member.value != nullptr) return NewValueCollection(property);
  return CSmartPtr<CXmlCollectionBase>(new CDynamicCollection(schema, member));
}

}  // namespace RkXmlSchema
