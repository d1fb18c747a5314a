// Reading the members of a sequence.
//
// The plain algorithm: a record is asked once, with the child under the cursor. If that is its element, it reads it and
// moves the cursor on. If not, an optional member leaves the child to the next record, and a mandatory one is missing,
// which is an error. A collection reads elements as long as they are its own, then its count is checked. The answer is
// whether reading goes on; false leaves it to the owner of an inline group to judge what is missing.
//
// What is added to that:
//   Unknown elements  Where the context ignores them, a mandatory value or object is searched for behind them
//                     (SeekMandatory, SiblingSearch). Optional members and collections pass over nothing.
//   Missing elements  Where the context ignores those, mandatory values and objects keep what they have (Seek::GoOn).
//   Inline groups     have no element. A mandatory one reads from the cursor into the child that the owner holds; one
//                     that is not required may find nothing (ReadMandatoryGroup).
//   Error handlers    With a handler, Refuse... tells the error and returns, and reading goes on: a mandatory member
//                     passes over elements that no later member takes, and a collection reads on behind such.
#include "RkXmlLib16/binding/ElementInfoSeq.h"

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/binding/GeneratedClass.h"
#include "RkXmlLib16/binding/internal/ElementRules.h"
#include "RkXmlLib16/binding/internal/SiblingSearch.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/document/internal/Refusal.h"

namespace RkXmlLib16Data {

using namespace RkXmlLib16;

namespace {

enum class Seek {
  Found,   // the element is under the cursor
  GoOn,    // it is missing, and that is accepted
  NotMine  // it is missing, and the enclosing reader judges
};

// Looks for the element of a mandatory member, past unknown elements where the context ignores those.
Seek SeekMandatory(const CElementInfo& info, const MemberRead& read) {
  const CSerializationContext& context = read.context;
  if (info.IsThisElement(context, read.At())) return Seek::Found;
  if (read.HasOwnElement() && context.GetIgnoreMissingMandatoryElements()) return Seek::GoOn;
  if (context.GetIgnoreUnknownElements()) {
    CXmlElement* const found = SiblingSearch::Find(info, context, read.At());
    if (found != nullptr || !read.HasOwnElement() || context.GetErrorHandler() == nullptr) *read.cursor = found;
    if (found != nullptr) return Seek::Found;
  }
  if (!read.HasOwnElement()) return Seek::NotMine;
  if (context.GetErrorHandler() != nullptr && !context.GetIgnoreUnknownElements()) {
    PassOverUnexpected(context, *read.object, read.parent, read.cursor, &info);
    if (info.IsThisElement(context, read.At())) return Seek::Found;
  }
  RefuseMissing(read, MissingChild(info, read.parent), info);
  return Seek::GoOn;
}

template <class Value>
bool ReadMandatory(Value& info, const MemberRead& read) {
  const Seek at = SeekMandatory(info, read);
  if (at == Seek::Found) info.Read(read.context, read.object, read.cursor);
  return at != Seek::NotMine;
}

// Passes over the members of a group whose absence was told, as some of them are missing.
[[gnu::cold]] void PassOverRestOf(const CXmlObjectBase& group, const CElementInfo& info, const MemberRead& read) {
  const auto* const members = dynamic_cast<const CXmlGeneratedClass*>(&group);
  if (members == nullptr || read.context.GetIgnoreUnknownElements()) return;
  while (read.At() != nullptr && IsTaken(read.context, *members, read.At()) &&
         !IsTaken(read.context, *read.object, read.At(), &info))
    read.MoveOn();
}

bool ReadMandatoryGroup(CElementInfoClsMnd& info, const MemberRead& read) {
  const bool atEnd = read.At() == nullptr;
  // True when reading goes on without the group.
  const auto refuseAbsence = [&] {
    if (read.HasOwnElement()) RefuseMissing(read, MissingChild(info, read.parent), info);
    return read.HasOwnElement();
  };
  if (info.IsRequired() && atEnd) return refuseAbsence();
  const auto child = GetOrCreateChild(info, read, *read.parent);
  if (child == nullptr) {
    RefuseMissing(read, MissingChild(info, read.parent), info);
    return true;
  }
  const bool mayBeAbsent =
      !info.IsRequired() && (atEnd || !read.HasOwnElement() || !read.context.GetIgnoreUnknownElements());
  if (ReadInline(info, read, child, /*keeps=*/mayBeAbsent)) return true;
  if (!info.IsRequired()) return mayBeAbsent;
  if (!refuseAbsence()) return false;
  PassOverRestOf(*child, info, read);
  return true;
}

bool ReadMandatory(CElementInfoClsMnd& info, const MemberRead& read) {
  if (info.IsInlineGroup()) return ReadMandatoryGroup(info, read);
  if (!read.HasOwnElement() && !info.IsThisElement(read.context, read.At())) return false;
  if (SeekMandatory(info, read) == Seek::GoOn) return true;
  const auto child = GetOrCreateChild(info, read, *read.At());
  if (child != nullptr) {
    ReadOwnElement(info, read, child);
  } else {
    Refuse(read.context, MissingChild(info, read.parent), *read.At());
    read.MoveOn();
  }
  return true;
}

bool ReadMandatory(CElementInfoAbsCls& info, const MemberRead& read) {
  const CSerializationContext& context = read.context;
  if (!info.IsThisElement(context, read.At())) {
    if (!read.HasOwnElement()) return false;
    if (context.GetErrorHandler() != nullptr)
      PassOverUnexpected(context, *read.object, read.parent, read.cursor, &info);
    if (!info.IsThisElement(context, read.At())) {
      RefuseMissing(read, MissingSubstitution(info, read.parent), info);
      return true;
    }
  }
  const auto child = info.Create(read.At());
  if (child != nullptr) {
    ReadOwnElement(info, read, child);
    StoreChild(info, read, child, *read.parent);
    return true;
  }
  if (!read.HasOwnElement()) return false;
  Refuse(context, MissingSubstitution(info, read.parent), *read.At());
  read.MoveOn();
  return true;
}

bool ReadMandatory(CElementInfoUntpdMnd& info, const MemberRead& read) {
  const auto element = GetChild(info, read.object);
  if (read.At() == nullptr || element == nullptr) {
    RefuseMissing(read, MissingChild(info, read.parent), info);
    return true;
  }
  if (AcceptsName(info, read.At()) && ReadInline(info, read, element)) return true;
  if (!read.HasOwnElement()) return false;
  RefuseMissing(read,
                CRkValidationException(FormatString(L"Failed to find the required element from namespace [%ls].",
                                                    info.GetNamespace().c_str()),
                                       read.parent->GetXPath()),
                info);
  return true;
}

template <class Value>
void ReadOptional(Value& info, const MemberRead& read) {
  ReadValue(info, read);
}

void ReadOptional(CElementInfoCls& info, const MemberRead& read) { ReadNewObject(info, read, info.IsInlineGroup()); }
void ReadOptional(CElementInfoAbsCls& info, const MemberRead& read) { ReadNewObject(info, read, /*isInline=*/false); }
void ReadOptional(CElementInfoUntpd& info, const MemberRead& read) { ReadNewWildcard(info, read); }

// Lets the collection of the member read with `readFrom`, again behind elements that no later member takes where
// reading goes on after those. Whether its count is accepted.
template <class ReadFrom>
bool ReadCollection(const CElementInfo& info, const MemberRead& read, ReadFrom&& readFrom) {
  const auto collection = GetCollection(info, read.object);
  if (collection == nullptr) return true;
  *read.cursor = readFrom(collection);
  if (read.context.GetErrorHandler() != nullptr && read.HasOwnElement() && !read.context.GetIgnoreUnknownElements()) {
    while (read.At() != nullptr && !IsTaken(read.context, *read.object, read.At(), &info)) {
      RefuseUnread(read.context, *read.object, read.parent, read.At());
      read.MoveOn();
      *read.cursor = readFrom(collection);
    }
  }
  if (!read.HasOwnElement()) return collection->IsValidCount(read.context);
  RequireCount(read.context, *collection, info, read.parent, read.At());
  return true;
}

}  // namespace

template <class Kind, Cardinality kCardinality>
bool CElementInfoSeq<Kind, kCardinality>::ElementToXml(const CSerializationContext& context,
                                                       const CXmlGeneratedClass* object, CXmlWriter* writer) const {
  return WriteMember<kCardinality, Kind>(*this, context, object, writer);
}

template <class Kind, Cardinality kCardinality>
bool CElementInfoSeq<Kind, kCardinality>::ElementFromXml(const CSerializationContext& context,
                                                         CXmlGeneratedClass* object, CXmlElement* parent,
                                                         CXmlElement** cursor, const wchar_t* ownerNamespace,
                                                         XmlElementType ownerType) {
  const MemberRead read{context, object, parent, cursor, ownerNamespace, ownerType};
  Kind& info = *this;
  if constexpr (kCardinality == Cardinality::Mnd) return ReadMandatory(info, read);
  if constexpr (kCardinality == Cardinality::Opt) ReadOptional(info, read);
  if constexpr (kCardinality == Cardinality::Col)
    return ReadCollection(info, read, [&](CXmlCollectionBase* collection) {
      return info.FromXml_Int(collection, parent, *cursor, context, /*isOptionalChoice=*/false);
    });
  return true;
}

bool CElementInfoSeqUntpdCol::ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                                             CXmlElement* parent, CXmlElement** cursor, const wchar_t* ownerNamespace,
                                             XmlElementType ownerType) {
  const MemberRead read{context, object, parent, cursor, ownerNamespace, ownerType};
  return ReadCollection(*this, read,
                        [&](CXmlCollectionBase* collection) { return ReadWildcards(*this, read, collection); });
}

CElementInfoSeqUntpdCol::~CElementInfoSeqUntpdCol() = default;
RKXML_SEQUENCE_RECORDS(RKXML_DEFINE_RECORD, RKXML_DEFINE_RECORD)
RKXML_SEQUENCE_RECORDS(RKXML_DEFINE_RECORD_BASE, RKXML_NO_RECORD_BASE)

}  // namespace RkXmlLib16Data
