#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/internal/StackEnd.h"
#include "RkXmlLib16/binding/AttributeInfo.h"
#include "RkXmlLib16/binding/ElementInfo.h"
#include "RkXmlLib16/binding/GeneratedClass.h"
#include "RkXmlLib16/binding/ParentElementInfo.h"
#include "RkXmlLib16/binding/internal/ElementRules.h"
#include "RkXmlLib16/binding/internal/NilValue.h"
#include "RkXmlLib16/binding/internal/ReadingValue.h"
#include "RkXmlLib16/binding/internal/SiblingSearch.h"
#include "RkXmlLib16/collections/CollectionBase.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/document/internal/Refusal.h"
#include "RkXmlLib16/object/Variant.h"

namespace RkXmlLib16 {

using RkXmlLib16Data::CAttributeInfo;
using RkXmlLib16Data::CElementInfo;
using RkXmlLib16Data::CParentElementInfo;
using RkXmlLib16Data::IsTaken;
using RkXmlLib16Data::MemberKind;
using RkXmlLib16Data::PassOverUnexpected;
using RkXmlLib16Data::RefuseMissing;
using RkXmlLib16Data::RefuseUnread;
using RkXmlLib16Data::RequireCount;
using RkXmlLib16Data::SiblingSearch;

namespace {

// Whether the record at each place of an array was satisfied. Allocates only for classes of more than 64 records.
class SeenFlags {
 public:
  bool operator[](std::size_t index) const { return index < 64 ? (m_first >> index & 1) != 0 : Rest(index); }
  void Set(std::size_t index) {
    if (index < 64) {
      m_first |= std::uint64_t{1} << index;
    } else {
      if (m_rest.size() <= index - 64) m_rest.resize(index - 63);
      m_rest[index - 64] = true;
    }
  }

 private:
  bool Rest(std::size_t index) const { return index - 64 < m_rest.size() && m_rest[index - 64]; }

  std::uint64_t m_first = 0;
  std::vector<bool> m_rest;
};

// One more object being read inside the others on this thread. Each takes stack, so their number has a limit: that of
// the context, or what the stack of the thread holds.
class ObjectLevel {
 public:
  ObjectLevel(const CSerializationContext& context, const CXmlElement& element) {
    const unsigned long limit = context.GetLimits().GetMaxObjectDepth();
    if (s_depth >= limit && limit != 0) ThrowTooDeep(limit, element);
    if (CStackEnd::IsNear()) ThrowTooDeep(s_depth, element);
    ++s_depth;
  }
  ObjectLevel(const ObjectLevel&) = delete;
  ObjectLevel& operator=(const ObjectLevel&) = delete;
  ~ObjectLevel() { --s_depth; }

 private:
  [[noreturn, gnu::noinline]] static void ThrowTooDeep(unsigned long limit, const CXmlElement& element) {
    CReadLimits::ThrowExceeded(L"object depth", limit, element.GetXPath());
  }

  static inline thread_local unsigned long s_depth = 0;
};

// Apart, so that the objects inside each other do not all have the space for it on the stack.
[[noreturn, gnu::noinline]] void ThrowWithPath(CRkException& e, const CXmlElement* element) {
  if (typeid(e) == typeid(CRkException) && !e.GetPath().empty()) throw;
  if (!e.GetPath().empty()) throw CRkException(e);
  throw CRkValidationException(L"Failed to process the element.",
                               element == nullptr ? std::wstring() : element->GetXPath(), std::move(e));
}

// The arrays of records may be null when they are empty.
template <class Info>
Info** OrEmpty(Info** infos) {
  static Info* empty[] = {nullptr};
  return infos == nullptr ? empty : infos;
}

// Whether the last record of a sequence may be offered elements that are left: not when it would fail because its
// element is absent.
bool CanBeOfferedRest(const CElementInfo& last, const CSerializationContext& context, const CXmlElement* element) {
  return last.GetMemberKind() != MemberKind::Single || last.IsThisElement(context, element);
}

// ElementFromXml for the element under the cursor and, until it accepts something, for those that follow.
bool AskPastUnknown(CElementInfo* info, const CSerializationContext& context, CXmlGeneratedClass* object,
                    CXmlElement* parent, CXmlElement** cursor, const wchar_t* ownNamespace,
                    XmlElementType elementType) {
  CXmlElement*& current = *cursor;
  const bool keepsAttempts = SiblingSearch::KeepsAttempts(*info);
  const CXmlElement* firstFailed = current;
  std::uint64_t takenBefore = SiblingSearch::GetTakenCount();
  for (int steps = 0;; ++steps) {
    CXmlElement* const asked = current;
    const bool accepted = info->ElementFromXml(context, object, parent, cursor, ownNamespace, elementType);
    // A mandatory member that is not there moves the cursor too, to the end.
    if (current != asked && (accepted || info->GetMemberKind() == MemberKind::Collection)) SiblingSearch::CountTaken();
    const bool goesOn = !accepted && current != nullptr;
    const bool hasFailed = goesOn && current == asked;
    const bool isSame = !keepsAttempts || SiblingSearch::GetTakenCount() == takenBefore;
    if (!hasFailed && steps > 0 && isSame) SiblingSearch::SetFailed(*info, firstFailed, asked, steps);
    if (!goesOn) return accepted;
    current = hasFailed ? SiblingSearch::Next(*info, current) : current->GetNextSiblingElement();
    if (current == nullptr) {
      if (hasFailed && isSame) SiblingSearch::SetFailed(*info, firstFailed, nullptr, steps);
      return false;
    }
    if (hasFailed && isSame) continue;
    if (keepsAttempts) SiblingSearch::CountWasted(SiblingSearch::GetTakenCount() - takenBefore);
    firstFailed = current;
    takenBefore = SiblingSearch::GetTakenCount();
    steps = -1;
  }
}

}  // namespace

CXmlElement* CXmlGeneratedClass::FromXml_Int(CXmlElement* element, CXmlElement* firstChild,
                                             const CSerializationContext& context, bool isOptionalChoice) {
  try {
    if (element == nullptr) throw CRkException(L"The document has no root element.");
    const ObjectLevel level(context, *element);
    CErrorSession::NoteRead(context, element);
    return ReadElement(element, firstChild, context, isOptionalChoice);
  } catch (CRkException& e) {
    if (GoesOnAfter(e, element, context)) return nullptr;
    ThrowWithPath(e, element);
  }
}

CXmlElement* CXmlGeneratedClass::ReadElement(CXmlElement* element, CXmlElement* firstChild,
                                             const CSerializationContext& context, bool isOptionalChoice) {
  BeginFromXml_Int(element, firstChild, context, isOptionalChoice);
  const CParentElementInfo& info = *GetClassInfo();
  const XmlElementType elementType = info.GetElementType();
  auto* nillable = const_cast<INillable*>(AsNillable(info));
  if (elementType == XmlElementType_Element) {
    m_elementName.Set(element->GetLocalName());
    if (nillable != nullptr && nillable->IsNil()) nillable->SetNil(false);
  }
  ProcessAttributesFromXml(context, element, info, nillable);
  if (nillable != nullptr && nillable->IsNil()) return firstChild;

  CXmlElement* const unread = elementType == XmlElementType_Element && context.GetIgnoreUnknownElements()
                                  ? ReadContentPastUnknown(element, firstChild, context, info, isOptionalChoice)
                                  : ReadContent(element, firstChild, context, info, isOptionalChoice);
  if (context.GetErrorHandler() != nullptr && elementType == XmlElementType_Element)
    TellLeftOut(*element, context, info);
  return unread;
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
  const std::wstring_view text = element.GetText();
  if (std::all_of(text.begin(), text.end(), CWhitespaceUtils::IsWhiteSpace)) return;
  const bool keepsText = info.GetSimpleContentProperty() != -1 && info.GetSimpleContentType() != ItemType_none;
  if (!keepsText)
    TellDropped(context, RkDropped_Text, element, text.size());
  else if (element.GetFirstElement() != nullptr)
    TellDropped(context, RkDropped_Position, element);
}

CXmlElement* CXmlGeneratedClass::ReadContent(CXmlElement* element, CXmlElement* firstChild,
                                             const CSerializationContext& context, const CParentElementInfo& info,
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

void CXmlGeneratedClass::ReadSimpleContent(const CXmlElement* element, const CSerializationContext& context,
                                           const CParentElementInfo& info) {
  const CXmlText text = element->GetText();
  bool isValue = false;
  try {
    RkXmlLib16Data::ReadingValue value(text.size());
    if (info.IsSimpleContentText())
      value.Get().SetString(text.View());
    else
      value.Get().FromText(text, info.GetSimpleContentType());
    isValue = true;
    AccessProperty(info.GetSimpleContentProperty(), /*get=*/false, value.Get());
  } catch (CRkException& e) {
    if (!isValue)
      e.SetRefusedValue({element->GetLocalName(), text, NameOfXsdType(info.GetSimpleContentType()), {}, {}});
    RefuseCaught(context, e, *element);
  }
}

void CXmlGeneratedClass::ReadNil(const CXmlAttribute* attribute, INillable* nillable) {
  if (nillable == nullptr)
    throw CRkValidationException(L"Invalid use of 'nil' attribute in non-nillable element.", std::wstring());
  const NilValue value = ParseNilValue(attribute->GetValue());
  if (value == NilValue::Invalid)
    throw CRkValidationException(
        FormatString(L"Unexpected Value [%ls] for 'nil' Attribute found.", attribute->GetValue().c_str()),
        attribute->GetXPath());
  nillable->SetNil(value == NilValue::True);
}

void CXmlGeneratedClass::ProcessAttributesFromXml(const CSerializationContext& context, CXmlElement* element,
                                                  const CParentElementInfo& classInfo, INillable* nillable) {
  CAttributeInfo** const infos = OrEmpty(GetClassAttributeInfo());
  const bool ownElement = classInfo.GetElementType() == XmlElementType_Element;
  const bool strictAttributes = classInfo.HasStrictAttributes();
  // An inline group is offered the same attributes for every attempt; most have no use for them.
  if (!ownElement && infos[0] == nullptr && (!strictAttributes || context.GetIgnoreUnknownAttributes())) return;
  SeenFlags seen;
  for (CXmlAttribute* attribute : element->GetAttributes()) {
    if (attribute->IsNamespaceAttribute()) continue;
    std::size_t i = 0;
    try {
      if (attribute->IsNilAttribute()) {
        if (ownElement) ReadNil(attribute, nillable);  // on the element of an inline group it is the owner's
        continue;
      }
      while (infos[i] != nullptr && !infos[i]->AttributeFromXml(context, this, attribute)) ++i;
      if (infos[i] == nullptr && strictAttributes && !context.GetIgnoreUnknownAttributes())
        throw CRkValidationException(L"Unexpected Attribute found.", attribute->GetXPath());
    } catch (CRkException& e) {
      RefuseCaught(context, e, *attribute);
      if (infos[i] == nullptr) continue;  // told already
    }
    if (infos[i] != nullptr)
      seen.Set(i);
    else if (ownElement)
      TellDropped(context, RkDropped_Attribute, *attribute);
  }
  for (std::size_t i = 0; infos[i] != nullptr; ++i) {
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
  const wchar_t* const ownNamespace = GetNamespace();
  CXmlElement* current = first;
  // False when the sequence cannot go on.
  const auto ask = [&](CElementInfo* info) {
    return ignoreUnknown ? AskPastUnknown(info, context, this, parent, &current, ownNamespace, elementType)
                         : info->ElementFromXml(context, this, parent, &current, ownNamespace, elementType);
  };

  const bool ownElement = elementType == XmlElementType_Element;
  const bool goesOn = ownElement && !ignoreUnknown && context.GetErrorHandler() != nullptr;
  const CXmlElement* taken = nullptr;
  CElementInfo* last = nullptr;
  for (CElementInfo** info = OrEmpty(GetClassElementInfo()); *info != nullptr; ++info) {
    last = *info;
    if (goesOn && current != taken) {
      PassOverUnexpected(context, *this, parent, &current);
      taken = current;
    }
    if (!last->IsSkipped(context, current) && !ask(last)) return first;
  }
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
  const wchar_t* const ownNamespace = GetNamespace();
  CElementInfo** const infos = OrEmpty(GetClassElementInfo());
  CXmlElement* current = first;
  const auto isMemberRead = [&] {
    for (CElementInfo** info = infos; *info != nullptr; ++info) {
      if (!(*info)->ElementFromXml(context, this, parent, &current, ownNamespace, elementType)) continue;
      if (ignoreUnknown) SiblingSearch::CountTaken();
      return true;
    }
    return false;
  };

  const bool goesOn = ownElement && !ignoreUnknown && context.GetErrorHandler() != nullptr;
  bool chosen = isMemberRead();
  while (!chosen && current != nullptr && ownElement && (ignoreUnknown || goesOn)) {
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
  if (!chosen && !isOptionalChoice) {
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
  const wchar_t* const ownNamespace = GetNamespace();
  CElementInfo** const infos = OrEmpty(GetClassElementInfo());
  CXmlElement* current = first;
  SeenFlags seen;
  // One pass over the members that are still missing; whether it consumed anything.
  const auto pass = [&] {
    const CXmlElement* const before = current;
    for (std::size_t i = 0; infos[i] != nullptr; ++i)
      if (!seen[i] && infos[i]->ElementFromXml(context, this, parent, &current, ownNamespace, elementType)) seen.Set(i);
    if (ignoreUnknown && current != before) SiblingSearch::CountTaken();
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
