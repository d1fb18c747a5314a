#include "schema/dynamic/DynamicObject.h"

#include <algorithm>

#include "RkXmlLib16/base/Format.h"
#include "schema/dynamic/internal/Class.h"

namespace RkXmlSchema {

using namespace RkXmlLib16;

CDynamicObject::CDynamicObject(const CDynamicClass& object) : CModelObject(object, /*elementName=*/nullptr) {
  if (object.HasDefaults()) Begin();
}

CDynamicObject::~CDynamicObject() = default;

void CDynamicObject::Destroy::operator()(std::byte* members) const { object->Destroy(chunk, members); }

const CDynamicClass& CDynamicObject::GetClass() const noexcept { return static_cast<const CDynamicClass&>(GetModel()); }
const ClassBinding& CDynamicObject::GetBinding() const noexcept { return GetClass().GetBinding(); }
const ElementDeclaration* CDynamicObject::GetDeclaration() const {
  return GetClass().GetSchema().FindDeclaration(CModelObject::GetDeclaration());
}

// ---- Properties

CMember CDynamicObject::FindMember(int property) {
  const CDynamicClass& object = GetClass();
  if (property < 0 || property >= object.propertyCount) return {};
  const CDynamicClass::Place& place = object.GetPlace(property);
  const auto numberOf = [](const Chunk& chunk) { return chunk.get_deleter().chunk; };
  const auto before = [&](const Chunk& chunk, std::uint32_t wanted) { return numberOf(chunk) < wanted; };
  auto at = m_chunks.begin();
  if (at != m_chunks.end() && numberOf(*at) != place.chunk)
    at = std::lower_bound(at, m_chunks.end(), place.chunk, before);
  if (at == m_chunks.end() || numberOf(*at) != place.chunk) at = m_chunks.insert(at, object.NewChunk(place.chunk));
  return {at->get() + place.offset, *place.type};
}

int CDynamicObject::FindProperty(std::wstring_view name) const { return GetClass().FindProperty(name); }

int CDynamicObject::Require(std::wstring_view name) const {
  const int property = FindProperty(name);
  if (property < 0)
    throw CRkInvalidParamException(FormatString(L"There is no property [%ls].", std::wstring(name).c_str()));
  return property;
}

RkVariant CDynamicObject::Get(std::wstring_view name) const {
  RkVariant value;
  ReadProperty(Require(name), value);
  if (value.IsXmlCollection() && value.PeekXmlCollection() == nullptr) value.SetInvalid();
  return value;
}

void CDynamicObject::Set(std::wstring_view name, const RkVariant& value) {
  const int property = Require(name);
  const CDynamicClass::Place& place = GetClass().GetPlace(property);
  const MemberModel* const member = GetClass().FindMember(property);
  const bool isObject = place.type->kind == MemberType::Kind::Object;
  const bool isCollection = place.type->kind == MemberType::Kind::Collection;
  const bool isOfClass =
      !isObject || member->object == nullptr || dynamic_cast<CModelObject*>(value.PeekXmlObject()) != nullptr;
  if (value.IsValid() && (value.IsXmlObject() != isObject || value.IsXmlCollection() != isCollection || !isOfClass))
    throw CRkInvalidParamException(
        FormatString(L"The property [%ls] holds no such value.", std::wstring(name).c_str()));
  RkVariant copy = value;
  const bool isOther =
      place.values != nullptr && value.IsValid() && !value.IsNil() && value.GetItemType() != place.values->itemType;
  if (isOther) copy.FromText(value.ToString(), place.values->itemType, place.values->whitespace);
  AccessProperty(property, /*get=*/false, copy);
}

CSmartPtr<CXmlObjectBase> CDynamicObject::GetOrCreateObject(std::wstring_view name) {
  const int property = Require(name);
  if (GetClass().GetPlace(property).type->kind != MemberType::Kind::Object) return nullptr;
  const MemberModel& member = *GetClass().FindMember(property);
  if (!IsSet(property) && member.object != nullptr) {
    RkVariant value;
    value.SetXmlObject(CSmartPtr<CModelObject>(member.object->create(*member.object)));
    AccessProperty(property, /*get=*/false, value);
  } else {
    Ensure(property);
  }
  return Get(name).GetXmlObject();
}

CSmartPtr<CXmlCollectionBase> CDynamicObject::GetCollection(std::wstring_view name) {
  const int property = Require(name);
  if (GetClass().GetPlace(property).type->kind != MemberType::Kind::Collection) return nullptr;
  Ensure(property);
  return Get(name).GetXmlCollection();
}

}  // namespace RkXmlSchema
