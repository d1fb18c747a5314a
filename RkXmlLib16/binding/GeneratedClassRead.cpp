// The read walk: how an object reads itself from an element.
//
// FromXml_Int lets the class prepare its members, offers each attribute to the attribute records, and then walks the
// element records with a cursor over the children of the element. A record that accepts the child under the cursor
// reads it and moves the cursor on. What is left in the end is an error, and so is a mandatory member that found
// nothing. The content models differ in how they ask:
//   sequence  each record once, in order
//   choice    the records in turn, until one accepts
//   all       the records that have not accepted yet, pass after pass, until a pass consumes nothing
// An object of an inline group has no element of its own. It reads from its owner's cursor, gives back what it does not
// take, and leaves it to the owner to judge what is missing.
//
// What is added to that:
//   Session         The outermost object makes the session of the read (ReadSession): the number of objects inside each
//                   other, which is limited since each takes stack, and storage that is used again.
//   Texts           Attributes and elements with nothing but a text are set by the object itself, where it is a
//                   CModelObject, without the call of their record (ReadAttribute, ReadMember).
//   Skipping        A record that would accept the absence of its element is not called at all when another element is
//                   next (CElementInfo::IsSkipped): most members of most objects are absent. Where runs of
//                   such records end is remembered (SkippedRuns).
//   Unknown ones    Where the context ignores unknown elements, a record is asked about one child after the other until
//                   it accepts (AskPastUnknown). What it refused is remembered, as inline groups ask for the same
//                   children again and again, and what failed attempts read is limited (SiblingSearch).
//   Error handlers  With a handler, an error in a value or an unexpected element is told and reading goes on behind it
//                   (Refuse..., PassOverUnexpected). An attempt to read a group may be taken back, with what it told.
//   Paths           The first object that an error passes gives it the path of its element; the others leave it alone.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/Likely.h"
#include "RkXmlLib16/base/internal/StackEnd.h"
#include "RkXmlLib16/base/internal/WideText.h"
#include "RkXmlLib16/binding/AttributeInfo.h"
#include "RkXmlLib16/binding/ElementInfo.h"
#include "RkXmlLib16/binding/GeneratedClass.h"
#include "RkXmlLib16/binding/ModelObject.h"
#include "RkXmlLib16/binding/ParentElementInfo.h"
#include "RkXmlLib16/binding/internal/ElementRules.h"
#include "RkXmlLib16/binding/internal/MemberText.h"
#include "RkXmlLib16/binding/internal/ModelClass.h"
#include "RkXmlLib16/binding/internal/NilValue.h"
#include "RkXmlLib16/binding/internal/ReadSession.h"
#include "RkXmlLib16/binding/internal/ReadingValue.h"
#include "RkXmlLib16/binding/internal/SiblingSearch.h"
#include "RkXmlLib16/collections/CollectionBase.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/document/internal/NodeText.h"
#include "RkXmlLib16/document/internal/Refusal.h"
#include "RkXmlLib16/object/Variant.h"

namespace RkXmlLib16 {

using RkXmlLib16Data::CAttributeInfo;
using RkXmlLib16Data::CElementInfo;
using RkXmlLib16Data::CParentElementInfo;
using RkXmlLib16Data::IsTaken;
using RkXmlLib16Data::MemberKind;
using RkXmlLib16Data::MemberRead;
using RkXmlLib16Data::PassOverUnexpected;
using RkXmlLib16Data::ReadSession;
using RkXmlLib16Data::RefuseMissing;
using RkXmlLib16Data::RefuseUnread;
using RkXmlLib16Data::RequireCount;
using RkXmlLib16Data::SiblingSearch;

namespace {

// Whether the record at each place of an array was satisfied. Allocates only for classes of more than 64 records.
class SeenFlags {
 public:
  bool operator[](std::size_t index) const {
    return RKXML_LIKELY(index < 64) ? (m_first >> index & 1) != 0 : Rest(index);
  }
  void Set(std::size_t index) {
    if (RKXML_LIKELY(index < 64)) {
      m_first |= std::uint64_t{1} << index;
    } else {
      if (m_rest == nullptr) m_rest = std::make_unique<std::vector<bool>>();
      if (m_rest->size() <= index - 64) m_rest->resize(index - 63);
      (*m_rest)[index - 64] = true;
    }
  }

 private:
  bool Rest(std::size_t index) const {
    return m_rest != nullptr && index - 64 < m_rest->size() && (*m_rest)[index - 64];
  }

  std::uint64_t m_first = 0;
  std::unique_ptr<std::vector<bool>> m_rest;
};

// One more object being read inside the others of the session. Each takes stack, so their number has a limit: that of
// the context, or what the stack of the thread holds.
class ObjectLevel {
 public:
  ObjectLevel(ReadSession& session, const CSerializationContext& context, const CXmlElement& element)
      : m_session(session) {
    const unsigned long limit = context.GetLimits().GetMaxObjectDepth();
    if (RKXML_UNLIKELY(session.depth >= limit) && limit != 0) ThrowTooDeep(limit, element);
    if (CStackEnd::IsNear()) ThrowTooDeep(session.depth, element);
    ++session.depth;
  }
  ObjectLevel(const ObjectLevel&) = delete;
  ObjectLevel& operator=(const ObjectLevel&) = delete;
  ~ObjectLevel() { --m_session.depth; }

 private:
  [[noreturn, gnu::cold, gnu::noinline]] static void ThrowTooDeep(unsigned long limit, const CXmlElement& element) {
    CReadLimits::ThrowExceeded(L"object depth", limit, element.GetXPath());
  }

  ReadSession& m_session;
};

// Apart, so that only the outermost object has the session on the stack.
[[gnu::noinline]] CXmlElement* ReadOutermost(CXmlGeneratedClass& object, CXmlElement* element, CXmlElement* firstChild,
                                             const CSerializationContext& context, bool isOptionalChoice) {
  ReadSession session(element != nullptr ? element->GetDocument() : nullptr, context);
  return object.CXmlGeneratedClass::FromXml_Int(element, firstChild, context, isOptionalChoice);
}

// Apart, so that the objects inside each other do not all have the space for it on the stack.
[[noreturn, gnu::cold, gnu::noinline]] void ThrowWithPath(CRkException& e, const CXmlElement* element) {
  if (typeid(e) == typeid(CRkException) && !e.GetPath().empty()) throw;
  if (!e.GetPath().empty()) throw CRkException(e);
  throw CRkValidationException(L"Failed to process the element.",
                               element == nullptr ? std::wstring() : element->GetXPath(), std::move(e));
}

// The arrays of records may be null when they are empty.
template <class Info>
Info** OrEmpty(Info** infos) {
  static Info* empty[] = {nullptr};
  return RKXML_UNLIKELY(infos == nullptr) ? empty : infos;
}

// Whether the last record of a sequence may be offered elements that are left: not when it would fail because its
// element is absent.
bool CanBeOfferedRest(const CElementInfo& last, const CSerializationContext& context, const CXmlElement* element) {
  return last.GetMemberKind() != MemberKind::Single || last.IsThisElement(context, element);
}

// What asking a record about the element under the cursor came to.
enum class Asked {
  Accepted,  // the record is satisfied
  AtEnd,     // it is not, and no element is left
  MovedOn,   // it is not, but it took elements or passed over them
  Refused,   // it took nothing
  TookBack   // the same, but elements were taken meanwhile: an attempt failed, whose work is lost
};

// Elements that a record refused one after the other.
struct Refusals {
  const CXmlElement* first;
  std::uint64_t takenBefore;  // of the session
  int count = 0;
};

Asked Ask(CElementInfo& info, const MemberRead& read, ReadSession& session, const Refusals& refusals) {
  const CXmlElement* const asked = read.At();
  const bool isAccepted =
      info.ElementFromXml(read.context, read.object, read.parent, read.cursor, read.ownerNamespace, read.ownerType);
  const bool hasMoved = read.At() != asked;
  // A mandatory member that is not there moves the cursor too, to the end.
  if (hasMoved && (isAccepted || info.GetMemberKind() == MemberKind::Collection)) ++session.takenCount;
  if (isAccepted) return Asked::Accepted;
  if (read.At() == nullptr) return Asked::AtEnd;
  if (hasMoved) return Asked::MovedOn;
  const bool isLost = SiblingSearch::KeepsAttempts(info) && session.takenCount != refusals.takenBefore;
  return isLost ? Asked::TookBack : Asked::Refused;
}

// ElementFromXml for the element under the cursor and, until the record accepts something, for those that follow.
// Elements that it refused are remembered as long as it would refuse them again: a record that keeps attempts, until
// anything is taken.
bool AskPastUnknown(CElementInfo& info, const MemberRead& read) {
  ReadSession& session = *ReadSession::Current();
  const bool keepsAttempts = SiblingSearch::KeepsAttempts(info);
  Refusals refusals{read.At(), session.takenCount};
  for (;;) {
    const CXmlElement* const asked = read.At();
    const Asked outcome = Ask(info, read, session, refusals);
    const bool isRefusal = outcome == Asked::Refused || outcome == Asked::TookBack;
    if (outcome == Asked::Refused) ++refusals.count;
    if (!isRefusal && refusals.count > 0 && (!keepsAttempts || session.takenCount == refusals.takenBefore))
      SiblingSearch::SetFailed(info, refusals.first, asked, refusals.count);
    if (outcome == Asked::Accepted || outcome == Asked::AtEnd) return outcome == Asked::Accepted;

    *read.cursor = isRefusal ? SiblingSearch::Next(info, asked) : read.At()->GetNextSiblingElement();
    if (read.At() == nullptr) {
      if (outcome == Asked::Refused) SiblingSearch::SetFailed(info, refusals.first, nullptr, refusals.count);
      return false;
    }
    if (outcome == Asked::Refused) continue;
    if (keepsAttempts) SiblingSearch::CountWasted(session.takenCount - refusals.takenBefore);
    refusals = {read.At(), session.takenCount};
  }
}

}  // namespace

[[gnu::always_inline]] inline CXmlElement* CXmlGeneratedClass::ReadContent(CXmlElement* element,
                                                                           CXmlElement* firstChild,
                                                                           const CSerializationContext& context,
                                                                           const CParentElementInfo& info,
                                                                           bool isOptionalChoice) {
  const XmlElementType elementType = info.GetElementType();
  CXmlElement* unread = nullptr;
  switch (info.GetGroupType()) {
    case XmlElementGroupType_Sequence:
      unread = ProcessElementSeqFromXml(context, element, firstChild, elementType);
      break;
    case XmlElementGroupType_Choice:
      unread = ProcessElementChoiceFromXml(context, element, firstChild, elementType, isOptionalChoice);
      break;
    case XmlElementGroupType_All:
      unread = ProcessElementAllFromXml(context, element, firstChild, elementType);
      break;
    default:
      throw CRkException(L"Unknown Group Type");
  }
  if (info.GetSimpleContentProperty() != -1 && info.GetSimpleContentType() != ItemType_none)
    ReadSimpleContent(element, context, info);
  return unread;
}

// Inline, since objects inside each other take stack for each call.
[[gnu::always_inline]] inline CXmlElement* CXmlGeneratedClass::ReadElement(CXmlElement* element,
                                                                           CXmlElement* firstChild,
                                                                           const CSerializationContext& context,
                                                                           bool isOptionalChoice) {
  BeginFromXml_Int(element, firstChild, context, isOptionalChoice);
  const CParentElementInfo& info = *GetClassInfo();
  const XmlElementType elementType = info.GetElementType();
  if (elementType == XmlElementType_Element) {
    // Most objects have the name from their record, which is seen here without a call.
    if (RKXML_UNLIKELY(!WideText::IsEqual(m_elementName.Get(), element->GetLocalName())))
      m_elementName.Set(element->GetLocalName());
    if (auto* const nillable = RKXML_UNLIKELY(IsNil(info)) ? dynamic_cast<INillable*>(this) : nullptr)
      nillable->SetNil(false);
  }
  CAttributeInfo** const attributes = OrEmpty(GetClassAttributeInfo());
  if (attributes[0] != nullptr || !element->GetAttributes().empty())
    ProcessAttributesFromXml(context, element, info, attributes);
  if (RKXML_UNLIKELY(IsNil(info))) return firstChild;

  CXmlElement* const unread =
      RKXML_UNLIKELY(context.GetIgnoreUnknownElements()) && elementType == XmlElementType_Element
          ? ReadContentPastUnknown(element, firstChild, context, info, isOptionalChoice)
          : ReadContent(element, firstChild, context, info, isOptionalChoice);
  if (RKXML_UNLIKELY(context.GetErrorHandler() != nullptr) && elementType == XmlElementType_Element)
    TellLeftOut(*element, context, info);
  return unread;
}

CXmlElement* CXmlGeneratedClass::FromXml_Int(CXmlElement* element, CXmlElement* firstChild,
                                             const CSerializationContext& context, bool isOptionalChoice) {
  ReadSession* const session = ReadSession::Current();
  if (RKXML_UNLIKELY(session == nullptr)) return ReadOutermost(*this, element, firstChild, context, isOptionalChoice);
  try {
    if (element == nullptr) throw CRkException(L"The document has no root element.");
    const ObjectLevel level(*session, context, *element);
    CErrorSession::NoteRead(context, element);
    return ReadElement(element, firstChild, context, isOptionalChoice);
  } catch (CRkException& e) {
    if (GoesOnAfter(e, element, context)) return nullptr;
    ThrowWithPath(e, element);
  }
}

bool CXmlGeneratedClass::GoesOnAfter(CRkException& error, const CXmlElement* element,
                                     const CSerializationContext& context) const {
  if (element == nullptr) return false;
  At(error, *element);
  return GetClassInfo()->GetElementType() == XmlElementType_Element && CErrorSession::Tell(context, error);
}

CXmlElement* CXmlGeneratedClass::ReadContentPastUnknown(CXmlElement* element, CXmlElement* firstChild,
                                                        const CSerializationContext& context,
                                                        const CParentElementInfo& info, bool isOptionalChoice) {
  const SiblingSearch search(element);
  return ReadContent(element, firstChild, context, info, isOptionalChoice);
}

// Text and child elements that the class has no place for.
void CXmlGeneratedClass::TellLeftOut(const CXmlElement& element, const CSerializationContext& context,
                                     const CParentElementInfo& info) {
  if (context.GetIgnoreUnknownElements()) {
    for (const CXmlElement* e = element.GetFirstElement(); e != nullptr; e = e->GetNextSiblingElement())
      if (!CErrorSession::TakeRead(e)) TellDropped(context, RkDropped_Element, *e);
  }
  if (CNodeText::IsBlank(element)) return;
  const bool keepsText = info.GetSimpleContentProperty() != -1 && info.GetSimpleContentType() != ItemType_none;
  if (!keepsText)
    TellDropped(context, RkDropped_Text, element, element.GetText().size());
  else if (element.GetFirstElement() != nullptr)
    TellDropped(context, RkDropped_Position, element);
}

void CXmlGeneratedClass::ReadSimpleContent(const CXmlElement* element, const CSerializationContext& context,
                                           const CParentElementInfo& info) {
  const CNodeText held(*element);
  const CXmlText& text = held.Get();
  bool isValue = false;
  try {
    RkXmlLib16Data::ReadingValue value(text.size());
    if (info.IsSimpleContentText())
      value.Get().SetString(text.View());
    else
      value.Get().FromText(text, info.GetSimpleContentType());
    isValue = true;
    const RkXmlLib16Data::ReadingScope scope(*element, text);
    AccessProperty(info.GetSimpleContentProperty(), /*get=*/false, value.Get());
  } catch (CRkException& e) {
    if (!isValue)
      e.SetRefusedValue({element->GetLocalName(), text, NameOfXsdType(info.GetSimpleContentType()), {}, {}});
    RefuseCaught(context, e, *element);
  }
}

void CXmlGeneratedClass::ReadNil(const CXmlAttribute* attribute) {
  auto* const nillable = dynamic_cast<INillable*>(this);
  if (nillable == nullptr)
    throw CRkValidationException(L"Invalid use of 'nil' attribute in non-nillable element.", std::wstring());
  const NilValue value = ParseNilValue(attribute->GetValue());
  if (value == NilValue::Invalid)
    throw CRkValidationException(
        FormatString(L"Unexpected Value [%ls] for 'nil' Attribute found.", attribute->GetValue().c_str()),
        attribute->GetXPath());
  nillable->SetNil(value == NilValue::True);
}

// AttributeFromXml and ElementFromXml. Texts of CModelObject are set here, without the call of the record; it is called
// where there is more than a text, or it cannot be set.
inline bool CXmlGeneratedClass::ReadAttribute(CAttributeInfo& info, const CSerializationContext& context,
                                              CXmlAttribute* attribute) {
  if (RKXML_LIKELY(info.IsModelText())) {
    if (!attribute->GetNameRef()->Is(info.GetName())) return false;
    if (RKXML_LIKELY(static_cast<CModelObject*>(this)->TrySetFrom(info.GetPropertyIndex(), *attribute))) return true;
  }
  return info.AttributeFromXml(context, this, attribute);
}

inline bool CXmlGeneratedClass::ReadMember(CElementInfo& info, const CSerializationContext& context,
                                           CXmlElement* parent, CXmlElement** cursor, XmlElementType elementType) {
  CXmlElement* const element = *cursor;
  const bool mayBeText = info.IsModelText() && info.IsThisElement(context, element) &&
                         element->GetAttributes().empty() && element->GetFirstElement() == nullptr;
  if (!mayBeText || RKXML_UNLIKELY(!static_cast<CModelObject*>(this)->TrySetFrom(info.GetPropertyIndex(), *element)))
    return info.ElementFromXml(context, this, parent, cursor, GetNamespace(), elementType);
  CErrorSession::NoteRead(context, element);
  *cursor = element->GetNextSiblingElement();
  return true;
}

void CXmlGeneratedClass::ProcessAttributesFromXml(const CSerializationContext& context, CXmlElement* element,
                                                  const CParentElementInfo& classInfo, CAttributeInfo** infos) {
  const bool ownElement = classInfo.GetElementType() == XmlElementType_Element;
  const bool strictAttributes = classInfo.HasStrictAttributes();
  // An inline group is offered the same attributes for every attempt; most have no use for them.
  const bool hasUse = ownElement || (strictAttributes && !context.GetIgnoreUnknownAttributes());
  if (infos[0] == nullptr && !hasUse) return;
  SeenFlags seen;
  for (CXmlAttribute* attribute : element->GetAttributes()) {
    if (RKXML_UNLIKELY(attribute->IsNamespaceAttribute())) continue;
    std::size_t i = 0;
    try {
      if (RKXML_UNLIKELY(attribute->IsNilAttribute())) {
        if (ownElement) ReadNil(attribute);  // on the element of an inline group it is the owner's
        continue;
      }
      while (infos[i] != nullptr && !ReadAttribute(*infos[i], context, attribute)) ++i;
      if (RKXML_UNLIKELY(infos[i] == nullptr) && strictAttributes && !context.GetIgnoreUnknownAttributes())
        throw CRkValidationException(L"Unexpected Attribute found.", attribute->GetXPath());
    } catch (CRkException& e) {
      RefuseCaught(context, e, *attribute);
      if (infos[i] == nullptr) continue;  // told already
    }
    if (RKXML_LIKELY(infos[i] != nullptr))
      seen.Set(i);
    else if (ownElement)
      TellDropped(context, RkDropped_Attribute, *attribute);
  }
  for (std::size_t i = 0; infos[i] != nullptr; ++i) {
    if (RKXML_LIKELY(infos[i]->IsModelText() && (infos[i]->IsOptional() || seen[i]))) continue;
    try {
      infos[i]->Validate(context, seen[i]);
    } catch (CRkException& e) {
      RefuseCaught(context, e, *element);
    }
  }
}

CXmlElement* CXmlGeneratedClass::ProcessElementSeqFromXml(const CSerializationContext& context, CXmlElement* parent,
                                                          CXmlElement* first, XmlElementType elementType) {
  const bool ignoreUnknown = context.GetIgnoreUnknownElements();
  CXmlElement* current = first;
  // False when the sequence cannot go on.
  const auto ask = [&](CElementInfo* info) {
    return RKXML_UNLIKELY(ignoreUnknown)
               ? AskPastUnknown(*info, {context, this, parent, &current, GetNamespace(), elementType})
               : ReadMember(*info, context, parent, &current, elementType);
  };

  const bool ownElement = elementType == XmlElementType_Element;
  const bool goesOn = ownElement && !ignoreUnknown && context.GetErrorHandler() != nullptr;
  const CXmlElement* taken = nullptr;
  CElementInfo** const infos = OrEmpty(GetClassElementInfo());
  CElementInfo** info = infos;
  RkXmlLib16Data::SkippedRuns& runs = ReadSession::Current()->skippedRuns;
  const bool passesRuns = !goesOn && runs.HoldFor(*parent, context);
  for (; *info != nullptr; ++info) {
    if (RKXML_UNLIKELY(goesOn) && current != taken) {
      PassOverUnexpected(context, *this, parent, &current);
      taken = current;
    }
    if ((*info)->IsSkipped(context, current)) {
      if (RKXML_UNLIKELY(!passesRuns)) continue;
      info = runs.Pass(info, current);
      if (*info == nullptr) break;
    }
    if (RKXML_UNLIKELY(!ask(*info))) return first;
  }
  CElementInfo* const last = info != infos ? info[-1] : nullptr;
  if (!ownElement) return current;
  while (current != nullptr) {
    if (!ignoreUnknown) RefuseUnread(context, *this, parent, current);
    current = current->GetNextSiblingElement();
    const bool isOffered =
        current != nullptr && last != nullptr &&
        (ignoreUnknown ? CanBeOfferedRest(*last, context, current) : last->GetMemberKind() == MemberKind::Collection);
    if (isOffered && !ask(last)) return first;
  }
  return nullptr;
}

CXmlElement* CXmlGeneratedClass::ProcessElementChoiceFromXml(const CSerializationContext& context, CXmlElement* parent,
                                                             CXmlElement* first, XmlElementType elementType,
                                                             bool isOptionalChoice) {
  const bool ignoreUnknown = context.GetIgnoreUnknownElements();
  const bool ownElement = elementType == XmlElementType_Element;
  CElementInfo** const infos = OrEmpty(GetClassElementInfo());
  CXmlElement* current = first;
  const auto isMemberRead = [&] {
    for (CElementInfo** info = infos; *info != nullptr; ++info) {
      if (!ReadMember(**info, context, parent, &current, elementType)) continue;
      if (RKXML_UNLIKELY(ignoreUnknown)) ++ReadSession::Current()->takenCount;
      return true;
    }
    return false;
  };

  const bool goesOn = ownElement && !ignoreUnknown && context.GetErrorHandler() != nullptr;
  bool chosen = isMemberRead();
  while (RKXML_UNLIKELY(!chosen) && current != nullptr && ownElement && (ignoreUnknown || goesOn)) {
    if (goesOn) {
      // Of a choice that nobody answers that is the error, not what stands there instead.
      const CXmlElement* next = current;
      while (next != nullptr && !IsTaken(context, *this, next)) next = next->GetNextSiblingElement();
      if (next == nullptr || next == current) break;
      RefuseUnread(context, *this, parent, current);
    }
    current = current->GetNextSiblingElement();
    chosen = isMemberRead();
  }
  if (RKXML_UNLIKELY(!chosen) && !isOptionalChoice) {
    if (elementType == XmlElementType_InlineGroup) return ignoreUnknown ? first : current;
    if (!ownElement) return current;
    if (!DoesElementContainOptionalElements() && !context.GetIgnoreMissingChoice()) {
      RefuseMissing(context,
                    CRkValidationException(
                        FormatString(L"No child elements within the element [%ls] were populated. The element "
                                     L"represents a choice, so one and only one element should be populated. The "
                                     L"element contained no sutable child elements",  // sic
                                     parent->GetLocalName().c_str()),
                        parent->GetXPath()),
                    std::wstring(), std::wstring(), parent, current);
      return nullptr;
    }
  }
  if (!ownElement || ignoreUnknown) return current;
  for (; current != nullptr; current = current->GetNextSiblingElement()) RefuseUnread(context, *this, parent, current);
  return nullptr;
}

CXmlElement* CXmlGeneratedClass::ProcessElementAllFromXml(const CSerializationContext& context, CXmlElement* parent,
                                                          CXmlElement* first, XmlElementType elementType) {
  const bool ignoreUnknown = context.GetIgnoreUnknownElements();
  const bool ownElement = elementType == XmlElementType_Element;
  CElementInfo** const infos = OrEmpty(GetClassElementInfo());
  CXmlElement* current = first;
  SeenFlags seen;
  // One pass over the members that are still missing; whether it consumed anything.
  const auto pass = [&] {
    const CXmlElement* const before = current;
    for (std::size_t i = 0; infos[i] != nullptr; ++i)
      if (!seen[i] && ReadMember(*infos[i], context, parent, &current, elementType)) seen.Set(i);
    if (ignoreUnknown && current != before) ++ReadSession::Current()->takenCount;
    return current != before;
  };

  bool consumed = pass();
  const bool goesOn = ownElement && context.GetErrorHandler() != nullptr;
  while (current != nullptr && (consumed || (ownElement && (ignoreUnknown || goesOn)))) {
    if (!consumed) {
      if (!ignoreUnknown) RefuseUnread(context, *this, parent, current);
      current = current->GetNextSiblingElement();
    }
    consumed = current != nullptr && pass();
  }
  for (std::size_t i = 0; infos[i] != nullptr; ++i) {
    const CElementInfo& info = *infos[i];
    if (info.GetMemberKind() != MemberKind::Collection) {
      try {
        if (!info.Validate(context, this, seen[i], /*final=*/ownElement)) return first;
      } catch (CRkException& e) {
        RefuseCaught(context, e, current != nullptr ? *current : *parent);
      }
    } else if (ownElement) {
      const CSmartPtr<CXmlCollectionBase> collection = RkXmlLib16Data::GetCollection(info, this);
      if (collection != nullptr) RequireCount(context, *collection, info, parent, current);
    }
  }
  if (ownElement && current != nullptr && !ignoreUnknown) RefuseUnread(context, *this, parent, current);
  return current;
}

}  // namespace RkXmlLib16
