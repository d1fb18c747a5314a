#include "RkXmlLib16/binding/ElementInfoAll.h"

#include <type_traits>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/binding/internal/ElementRules.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/ElementTree.h"

namespace RkXmlLib16Data {

using namespace RkXmlLib16;

namespace {

template <class Value>
bool ReadAny(Value& info, const MemberRead& read) {
  return ReadValue(info, read);
}

bool ReadAny(CElementInfoCls& info, const MemberRead& read) { return ReadNewObject(info, read, info.IsInlineGroup()); }
bool ReadAny(CElementInfoAbsCls& info, const MemberRead& read) {
  return ReadNewObject(info, read, info.IsInlineGroup());
}
bool ReadAny(CElementInfoUntpd& info, const MemberRead& read) { return ReadNewWildcard(info, read); }

// The object that the owner has.
bool ReadAny(CElementInfoClsMnd& info, const MemberRead& read) {
  const bool isInline = info.IsInlineGroup();
  if (!isInline && !info.IsThisElement(read.context, read.At())) return false;
  const auto child = GetOrCreateChild(info, read, isInline ? *read.parent : *read.At());
  if (child == nullptr) return false;
  if (isInline) return ReadInline(info, read, child);
  ReadOwnElement(info, read, child);
  return true;
}

bool ReadAny(CElementInfoUntpdMnd& info, const MemberRead& read) {
  if (read.At() == nullptr || !AcceptsName(info, read.At())) return false;
  const auto element = GetChild(info, read.object);
  return element != nullptr && ReadInline(info, read, element);
}

bool ReadAny(CElementInfoCol& info, const MemberRead& read) {
  const auto collection = GetCollection(info, read.object);
  if (collection != nullptr)
    *read.cursor = info.FromXml_Int(collection, read.parent, read.At(), read.context, /*isOptionalChoice=*/false);
  return false;
}

}  // namespace

template <class Kind, Cardinality kCardinality>
bool CElementInfoAll<Kind, kCardinality>::ElementToXml(const CSerializationContext& context,
                                                       const CXmlGeneratedClass* object, CXmlWriter* writer) const {
  return WriteMember<kCardinality, Kind>(*this, context, object, writer);
}

template <class Kind, Cardinality kCardinality>
bool CElementInfoAll<Kind, kCardinality>::ElementFromXml(const CSerializationContext& context,
                                                         CXmlGeneratedClass* object, CXmlElement* parent,
                                                         CXmlElement** cursor, const wchar_t* ownerNamespace,
                                                         XmlElementType ownerType) {
  using Reader = std::conditional_t<std::is_base_of_v<CElementInfoAbsCls, Kind>, CElementInfoAbsCls, Kind>;
  return ReadAny(static_cast<Reader&>(*this), {context, object, parent, cursor, ownerNamespace, ownerType});
}

template <class Kind, Cardinality kCardinality>
bool CElementInfoAll<Kind, kCardinality>::Validate(const CSerializationContext& context,
                                                   const CXmlGeneratedClass* object, bool found, bool final) const {
  if constexpr (kCardinality == Cardinality::Col) return Kind::Validate(context, object, found, final);
  if constexpr (kCardinality == Cardinality::Opt) return true;
  if constexpr (std::is_same_v<Kind, CElementInfoClsMnd>)
    if (!this->IsRequired() && !this->IsInlineGroup()) return true;
  if (!found && final)
    throw CRkValidationException(
        FormatString(L"Failed to find the mandatory element [%ls].", this->GetElementName().c_str()), std::wstring());
  return found;
}

RKXML_ALL_RECORDS(RKXML_DEFINE_RECORD, RKXML_DEFINE_RECORD)
RKXML_ALL_RECORDS(RKXML_DEFINE_RECORD_BASE, RKXML_NO_RECORD_BASE)

}  // namespace RkXmlLib16Data
