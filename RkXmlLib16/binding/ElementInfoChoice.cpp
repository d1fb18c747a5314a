#include "RkXmlLib16/binding/ElementInfoChoice.h"

#include "RkXmlLib16/binding/internal/ElementRules.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/context/internal/ErrorSession.h"
#include "RkXmlLib16/document/ElementTree.h"

namespace RkXmlLib16Data {

using namespace RkXmlLib16;

namespace {

template <class Value>
bool ReadChosen(Value& info, const MemberRead& read) {
  return ReadValue(info, read);
}

bool ReadChosen(CElementInfoCls& info, const MemberRead& read) {
  const bool isInline = info.IsInlineGroup();
  if (!MayRead(info, read, isInline)) return false;
  CXmlElement* const element = read.At();
  const auto child = info.Create(element);
  if (child == nullptr) return false;
  StoreChild(info, read, child, *element);
  if (!isInline) {
    ReadOwnElement(info, read, child, /*isOptionalChoice=*/true);
    return true;
  }
  if (ReadInline(info, read, child)) return true;
  StoreNull(info, read, *element);
  return false;
}

bool ReadChosen(CElementInfoAbsCls& info, const MemberRead& read) {
  if (!info.IsThisElement(read.context, read.At())) return false;
  const auto child = info.Create(read.At());
  if (child == nullptr) {
    StoreNull(info, read, *read.At());
    return false;
  }
  StoreChild(info, read, child, *read.At());
  ReadOwnElement(info, read, child);
  return true;
}

bool ReadChosen(CElementInfoUntpd& info, const MemberRead& read) {
  CXmlElement* const current = read.At();
  if (current == nullptr) return false;
  if (ReadNewWildcard(info, read)) return true;
  StoreNull(info, read, *current);
  return false;
}

// A collection, which reads with `readFrom`. What it read in an inline owner is taken out again when the count is not
// acceptable.
template <class ReadFrom>
bool ReadChosenCollection(const CElementInfo& info, const MemberRead& read, ReadFrom&& readFrom) {
  const auto collection = GetCollection(info, read.object);
  if (collection == nullptr) return false;
  const int countBefore = collection->GetCount();
  CXmlElement* const next = readFrom(collection);
  if (next == read.At()) return false;
  if (!read.HasOwnElement() && !collection->IsValidCount(read.context)) {
    if (countBefore == 0) collection->Clear();
    for (int i = collection->GetCount(); i > countBefore; --i) collection->Remove(i - 1);
    return false;
  }
  *read.cursor = next;
  if (read.HasOwnElement()) RequireCount(read.context, *collection, info, read.parent, next);
  return true;
}

bool ReadChosen(CElementInfoCol& info, const MemberRead& read) {
  CErrorSession::Attempt attempt(read.context);
  const bool isChosen = ReadChosenCollection(info, read, [&](CXmlCollectionBase* collection) {
    return info.FromXml_Int(collection, read.parent, read.At(), read.context, /*isOptionalChoice=*/false);
  });
  if (isChosen) attempt.Keep();
  return isChosen;
}

}  // namespace

template <class Kind>
bool CElementInfoChoice<Kind>::ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                            CXmlWriter* writer) const {
  return Kind::Write(context, object, writer);
}

template <class Kind>
bool CElementInfoChoice<Kind>::ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                                              CXmlElement* parent, CXmlElement** cursor, const wchar_t* ownerNamespace,
                                              XmlElementType ownerType) {
  return ReadChosen(static_cast<Kind&>(*this), {context, object, parent, cursor, ownerNamespace, ownerType});
}

bool CElementInfoChoiceUntpdCol::ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                                                CXmlElement* parent, CXmlElement** cursor,
                                                const wchar_t* ownerNamespace, XmlElementType ownerType) {
  const MemberRead read{context, object, parent, cursor, ownerNamespace, ownerType};
  return ReadChosenCollection(*this, read,
                              [&](CXmlCollectionBase* collection) { return ReadWildcards(*this, read, collection); });
}

CElementInfoChoiceUntpdCol::~CElementInfoChoiceUntpdCol() = default;
RKXML_CHOICE_RECORDS(RKXML_DEFINE_RECORD, RKXML_DEFINE_RECORD)
RKXML_CHOICE_RECORDS(RKXML_DEFINE_RECORD_BASE, RKXML_NO_RECORD_BASE)

}  // namespace RkXmlLib16Data
