#include "RkXmlLib16/wildcards/Element.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <typeinfo>
#include <utility>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/Prefetch.h"
#include "RkXmlLib16/base/internal/NeverDestroyed.h"
#include "RkXmlLib16/base/internal/TextOrEmpty.h"
#include "RkXmlLib16/base/internal/WideText.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/context/internal/ErrorSession.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/document/internal/NodeText.h"
#include "RkXmlLib16/document/internal/RecordOutput.h"
#include "RkXmlLib16/document/internal/Refusal.h"
#include "RkXmlLib16/document/internal/Section.h"
#include "RkXmlLib16/object/internal/ObjectMemory.h"
#include "RkXmlLib16/types/Whitespace.h"
#include "RkXmlLib16/wildcards/internal/NameTest.h"
#include "RkXmlLib16/wildcards/internal/RootWriter.h"
#include "RkXmlLib16/wildcards/internal/TypeValue.h"
#include "RkXmlLib16/xml/XmlTextWriter.h"

namespace RkXmlLib16 {

namespace {

using std::wstring_view;

// As StartsName: what is no name is not declared as a prefix anyway.
bool ContinuesName(wchar_t c) {
  return StartsName(c) || (c >= L'0' && c <= L'9') || c == L'-' || c == L'.' || c == 0xB7;
}

template <class Found>
[[gnu::noinline]] void ForEachPrefixFrom(std::size_t firstColon, wstring_view text, Found&& found) {
  for (std::size_t colon = firstColon; colon != wstring_view::npos; colon = text.find(L':', colon + 1)) {
    if (colon + 1 == text.size() || !StartsName(text[colon + 1])) continue;
    std::size_t begin = colon;
    while (begin > 0 && ContinuesName(text[begin - 1])) --begin;
    while (begin < colon && !StartsName(text[begin])) ++begin;
    if (begin < colon) found(text.substr(begin, colon - begin));
  }
}

// Calls `found` with each prefix of a "prefix:local" in the text.
template <class Found>
void ForEachPrefix(wstring_view text, Found&& found) {
  const std::size_t colon = text.find(L':');
  if (colon != wstring_view::npos) ForEachPrefixFrom(colon, text, found);
}

[[noreturn]] void ThrowBadIndex(int index, int count) {
  throw CRkInvalidParamException(FormatString(L"Index %d is out of range, use 0 - %d", index, count));
}

}  // namespace

// Takes an element of a document with all below it.
//
// Prefixes in values keep the namespaces that they have where the value stands. The elements of a tree share one map of
// these, which its top declares; an element that binds a prefix differently has a map of its own, and so has every
// element below it.
class CElement::TreeReader {
 public:
  explicit TreeReader(const CSerializationContext& context) : m_context(context) {}

  static void Read(CElement& target, const CXmlElement& source, const CSerializationContext& context) {
    if (!TakeLeaf(target, source)) TreeReader(context).Read(target, source);
  }

  void Read(CElement& target, const CXmlElement& source) {
    struct Level {
      CElement* element;
      const CXmlElement* source;
      const CXmlElement* nextChild;
      bool hasOwnPrefixes;
    };
    std::vector<Level> open;
    const auto enter = [&](CElement& element, const CXmlElement& from, bool isBelowOwn) {
      EnterScope(from);
      const bool hasOwn = Take(element, from, isBelowOwn) || isBelowOwn;
      if (from.GetFirstElement() != nullptr)
        open.push_back({&element, &from, from.GetFirstElement(), hasOwn});
      else
        LeaveScope(from);
    };
    m_document = source.GetDocument();
    m_outside = source.GetParentElement();
    m_isScoped = m_document->HasInnerDeclarations();
    enter(target, source, false);
    while (!open.empty()) {
      const CXmlElement* const child = open.back().nextChild;
      if (child == nullptr) {
        LeaveScope(*open.back().source);
        open.pop_back();
        continue;
      }
      open.back().nextChild = child->GetNextSiblingElement();
      Children& children = open.back().element->m_children;
      children.push_back(new CElement);
      enter(*children.back(), *child, open.back().hasOwnPrefixes);
    }
    if (target.m_prefixes == nullptr) target.m_prefixes = m_prefixes;
  }

 private:
  // An element with nothing in it but a text without prefixes, for which no reader is made; false, and nothing done,
  // for others.
  static bool TakeLeaf(CElement& element, const CXmlElement& source) {
    if (source.GetFirstElement() != nullptr || !source.GetAttributes().empty() || source.GetSections() != nullptr)
      return false;
    const CNodeText held(source);
    const wstring_view text = held.Get();
    if (text.find(L':') != wstring_view::npos) return false;
    element.m_elementName.Set(source.GetLocalName());
    element.m_namespaceUri = source.GetDocument()->ShareName(source.GetNamespaceRef());
    element.m_text = text;
    return true;
  }

  // Returns whether the element has a map of its own.
  [[gnu::always_inline]] bool Take(CElement& element, const CXmlElement& source, bool isBelowOwn) {
    m_used.clear();
    const auto use = [this](wstring_view prefix) { Use(prefix); };

    element.m_elementName.Set(source.GetLocalName());
    if (m_lastUri != source.GetNamespaceRef()) {
      m_lastUri = source.GetNamespaceRef();
      m_lastShared = m_document->ShareName(m_lastUri);
    }
    element.m_namespaceUri = m_lastShared;
    std::size_t childCount = 0;
    for (const CXmlElement* c = source.GetFirstElement(); c != nullptr; c = c->GetNextSiblingElement()) ++childCount;
    if (childCount != 0) element.m_children.reserve(childCount);
    if (childCount == 0 || !CNodeText::IsBlank(source)) {
      const CNodeText held(source);
      const wstring_view text = held.Get();
      element.m_text = text;
      if (childCount != 0) TellDropped(m_context, RkDropped_Position, source);
      if (const auto* const sections = source.GetSections())
        element.m_sections = std::make_unique<const std::vector<std::size_t>>(*sections);
      ForEachPrefix(text, use);
    }
    for (const CXmlAttribute* attribute : source.GetAttributes()) {
      element.GetAttributes()->Add(*attribute);
      ForEachPrefix(CNodeText(*attribute).Get(), use);
      if (CTypeValue::IsType(attribute->GetLocalName(), attribute->GetNamespaceURI())) {
        const CTypeValue type(attribute->GetValue());
        if (type.IsName() && !type.HasPrefix()) UseDefault();
      }
    }
    if (m_used.empty()) return false;
    const bool isOwn = isBelowOwn || !JoinPrefixes();
    element.m_prefixes = isOwn ? OwnPrefixes() : m_prefixes;
    return isOwn;
  }

  void Use(wstring_view prefix) {
    if (prefix == L"xml" || prefix == L"xmlns") return;
    const CXmlName* const uri = Lookup(prefix);
    if (uri == nullptr || uri->empty() || uri->View() == CXmlWriter::XML_NAMESPACE ||
        uri->View() == CXmlWriter::XMLNS_NAMESPACE)
      return;
    m_used.emplace(prefix, uri);
  }

  // The namespace of a type without prefix, noted under the empty prefix.
  void UseDefault() {
    const CXmlName* const uri = Lookup({});
    m_used.emplace(wstring_view(), uri != nullptr ? uri : m_document->GetEmptyName());
  }

  const CXmlName* Lookup(wstring_view prefix) {
    if (!m_isScoped) return m_document->LookupNamespaceRef(prefix);
    const auto inside = m_scope.find(prefix);
    if (inside != m_scope.end() && !inside->second.empty()) return inside->second.back();
    const auto [known, isNew] = m_scopeOutside.try_emplace(std::wstring(prefix), nullptr);
    if (isNew) known->second = m_outside != nullptr ? m_outside->LookupNamespaceRef(prefix) : nullptr;
    return known->second;
  }

  void EnterScope(const CXmlElement& source) {
    if (!m_isScoped) return;
    for (const auto& declaration : m_document->GetDeclarations(&source))
      m_scope[declaration.prefix->View()].push_back(declaration.namespaceUri);
  }

  void LeaveScope(const CXmlElement& source) {
    if (!m_isScoped) return;
    for (const auto& declaration : m_document->GetDeclarations(&source)) m_scope[declaration.prefix->View()].pop_back();
  }

  // Adds what is used to the shared map; false, and nothing added, when the shared map has to bind a prefix
  // differently.
  bool JoinPrefixes() {
    if (m_isScoped)
      for (const auto& [prefix, uri] : m_used)
        if (SharedBinding(prefix) != uri) return false;
    if (m_prefixes == nullptr) m_prefixes = std::make_shared<Prefixes>();
    for (const auto& [prefix, uri] : m_used)
      if (m_prefixes->find(prefix) == m_prefixes->end()) m_prefixes->emplace(prefix, Share(uri));
    return true;
  }

  // What the document element says, or else what the document says last, as whoever declares the prefixes of a document
  // beforehand would have it.
  const CXmlName* SharedBinding(wstring_view prefix) {
    const auto [known, isNew] = m_shared.try_emplace(std::wstring(prefix), nullptr);
    if (isNew) known->second = m_document->GetDocumentElement()->LookupNamespaceRef(prefix);
    if (isNew && known->second == nullptr) known->second = m_document->LookupNamespaceRef(prefix);
    return known->second != nullptr ? known->second : m_document->GetEmptyName();
  }

  // Elements that use the same in a row share the map.
  const std::shared_ptr<const Prefixes>& OwnPrefixes() {
    const bool isSame = m_own != nullptr && m_own->size() == m_used.size() &&
                        std::equal(m_used.begin(), m_used.end(), m_own->begin(), [this](const auto& a, const auto& b) {
                          return a.first == b.first && Share(a.second) == b.second;
                        });
    if (isSame) return m_own;
    const auto own = std::make_shared<Prefixes>();
    for (const auto& [prefix, uri] : m_used) own->emplace(prefix, Share(uri));
    return m_own = own;
  }

  SharedText Share(const CXmlName* uri) const {
    static const CNeverDestroyed<SharedText> kEmpty(std::make_shared<const std::wstring>());
    return uri->empty() ? kEmpty.Get() : m_document->ShareName(uri);
  }

  const CSerializationContext& m_context;
  const CXmlDocument* m_document = nullptr;
  const CXmlElement* m_outside = nullptr;  // the parent of the top
  bool m_isScoped = false;
  std::map<wstring_view, std::vector<const CXmlName*>> m_scope;  // what the open elements declare
  // With copies of the prefixes: values may be texts of the moment.
  std::map<std::wstring, const CXmlName*> m_scopeOutside;  // what was in scope before
  std::map<std::wstring, const CXmlName*> m_shared;        // what the shared map may bind
  std::map<std::wstring, const CXmlName*> m_used;          // by the values of one element
  std::shared_ptr<Prefixes> m_prefixes;
  std::shared_ptr<const Prefixes> m_own;
  const CXmlName* m_lastUri = nullptr;  // the namespace of the last element, and its text for all
  SharedText m_lastShared;
};

// Writes an element with all below it.
class CElement::TreeWriter {
 public:
  TreeWriter(CXmlWriter& writer, const CSerializationContext& context, bool isOptionalChoice)
      : m_writer(writer), m_context(context), m_isOptionalChoice(isOptionalChoice) {}

  void Write(const CElement& top, bool isRoot) {
    std::vector<Level> open;
    const auto enter = [&](const CElement& element, bool isAtTop, const Prefixes* declared) {
      if (!isAtTop && WriteInOneStep(element, declared)) return;
      Start(element, isAtTop, declared);
      if (element.m_children.empty()) return CRecordOutput::WriteEnd(m_writer);
      open.push_back({&element, 0, element.m_prefixes != nullptr ? element.m_prefixes.get() : declared, false});
    };
    enter(top, isRoot, nullptr);
    while (!open.empty()) {
      Level& level = open.back();
      if (level.nextChild == level.element->m_children.size()) {
        CRecordOutput::WriteEnd(m_writer);
        open.pop_back();
        continue;
      }
      MarkRun(level);
      Prefetch(level);
      enter(*level.element->m_children[level.nextChild++], false, level.declared);
    }
  }

 private:
  struct Level {
    const CElement* element;
    std::size_t nextChild;
    const Prefixes* declared;
    bool isInRun;  // the next child has the name of the one before it
  };

  // Asks for the memory of a child that is not far behind.
  [[gnu::always_inline]] static void Prefetch(const Level& level) noexcept {
    constexpr std::size_t kAhead = 2;
    const Children& children = level.element->m_children;
    const std::size_t index = level.nextChild + kAhead;
    if (index + 1 < children.size()) PrefetchObject(children[index], sizeof(CElement), children[index + 1]);
  }

  // Elements of one name in a row are a collection to writers that have a form for it.
  void MarkRun(Level& level) {
    const Children& children = level.element->m_children;
    const std::size_t index = level.nextChild;
    const bool goesOn = index + 1 < children.size() && HaveSameName(*children[index], *children[index + 1]);
    if (!level.isInRun) m_writer.SetContextState(goesOn ? ContextState_CollectionStart : ContextState_CollectionEnd);
    level.isInRun = goesOn;
  }

  bool HaveSameName(const CElement& a, const CElement& b) {
    return WideText::IsEqual(a.GetElementNameRef(), b.GetElementNameRef()) &&
           (a.m_namespaceUri == b.m_namespaceUri || m_writer.AreSameNamespaces(a.m_namespaceUri, b.m_namespaceUri));
  }

  // An element below the root with nothing but text; false, and nothing written, for others.
  bool WriteInOneStep(const CElement& element, const Prefixes* declared) {
    const bool hasOnlyText =
        element.m_children.empty() && element.GetAttributeCount() == 0 &&
        (element.m_prefixes == nullptr || (element.m_prefixes.get() == declared && !element.m_text.empty()));
    if (!hasOnlyText || !IsPlainData(element) || element.GetElementNameRef().empty()) return false;
    if (typeid(element) != typeid(CElement)) return false;  // it may have attributes of its own
    m_writer.TextElement(element.m_elementName, element.m_namespaceUri, element.m_text, ItemType_string);
    return true;
  }

  // Whether the text is written as it is, whatever the form.
  static bool IsPlainData(const CElement& element) {
    return element.m_sections == nullptr && !StartsSection(element.m_text);
  }

  // `declared` are the prefixes that the nearest element around it with prefixes has declared.
  void Start(const CElement& element, bool isRoot, const Prefixes* declared) {
    if (element.GetElementNameRef().empty()) throw CRkInvalidStateException(L"The element has no name.");
    if (isRoot) WritePrologue(element);
    const Prefixes* const own = element.m_prefixes.get() != declared ? element.m_prefixes.get() : nullptr;
    if (own != nullptr && !isRoot) AvoidOwnPrefix(element, *own);
    m_writer.StartElement(element.m_elementName, element.m_namespaceUri);
    if (isRoot) WriteRootAttributes(m_writer, m_context, element.GetNamespace(), m_isOptionalChoice);
    if (own != nullptr) {
      m_writer.AvoidPrefix(std::wstring());
      for (const auto& [prefix, uri] : *own) {
        m_writer.TellNamespace(uri);
        m_writer.DeclareNamespace(prefix, *uri);
      }
    }
    element.AttributesToXml_Int(&m_writer, m_context);
    if (isRoot) WriteRootSchema(m_writer, m_context);
    // Only an element with nothing in it has an empty text to show: JSON writes it as null in the element's place.
    const bool hasText =
        element.m_children.empty() ? !element.m_text.empty() : !CWhitespaceUtils::IsBlank(element.m_text);
    const bool isBare = element.m_children.empty() && !HasAttributes(element, isRoot);
    if (hasText || isBare) WriteText(element);
  }

  // The name of an element must not use a prefix that its start tag declares for another namespace.
  void AvoidOwnPrefix(const CElement& element, const Prefixes& own) {
    if (element.m_namespaceUri == nullptr || !m_writer.HasOpenElement()) return;
    m_writer.TellNamespace(element.m_namespaceUri);
    const std::wstring* const prefix = m_writer.FindPrefixInScope(*element.m_namespaceUri);
    const auto declared = prefix != nullptr ? own.find(*prefix) : own.end();
    if (declared != own.end() && !m_writer.AreSameNamespaces(declared->second, element.m_namespaceUri))
      m_writer.AvoidPrefix(*prefix);
  }

  // Declarations count as attributes here.
  bool HasAttributes(const CElement& element, bool isRoot) const {
    return element.GetAttributeCount() != 0 || element.m_prefixes != nullptr ||
           (isRoot &&
            (element.m_namespaceUri != nullptr || m_context.HasAdditionalRootAttributes() ||
             !m_context.GetDefaultNamespaceURI().empty() || m_context.GetNamespaceAliases().GetNamespaceCount() != 0));
  }

  // Prefixes that the settings leave free are declared with those of the settings, so that names use them too.
  void WritePrologue(const CElement& element) {
    WriteRootPrologue(m_writer, m_context);
    if (element.m_prefixes == nullptr) return;
    const auto& aliases = m_context.GetNamespaceAliases().GetEntries();
    std::set<wstring_view> used;
    for (const auto& [uri, alias] : aliases) used.insert(alias);
    for (const auto& [prefix, uri] : *element.m_prefixes) {
      const bool isFree = !prefix.empty() && used.count(prefix) == 0 && aliases.find(*uri) == aliases.end();
      if (isFree && CXmlWriter::CanNameElements(prefix)) m_writer.AddNamespace(prefix, *uri);
    }
    for (const auto& [prefix, uri] : *element.m_prefixes) {
      if (!CXmlWriter::CanNameElements(prefix)) m_writer.AddNamespaceWithoutPrefix(*uri);
    }
  }

  // Other forms than XML text have no sections: the marks are text there.
  void WriteText(const CElement& element) {
    const std::wstring& text = element.m_text;
    auto* const xmlWriter = IsPlainData(element) ? nullptr : dynamic_cast<CXmlTextWriter*>(&m_writer);
    if (xmlWriter == nullptr) return m_writer.WriteString(text, ItemType_string);
    if (element.m_sections == nullptr) return xmlWriter->WriteData(text);
    std::size_t at = 0;
    for (const std::size_t begin : *element.m_sections) {
      xmlWriter->WriteData(text.substr(at, begin - at));
      at = std::min(text.find(kSectionEnd, begin), text.size() - kSectionEnd.size()) + kSectionEnd.size();
      xmlWriter->WriteSection(text.substr(begin, at - begin));
    }
    xmlWriter->WriteData(text.substr(at));
  }

  CXmlWriter& m_writer;
  const CSerializationContext& m_context;
  const bool m_isOptionalChoice;
};

CElement::CElement() = default;

CElement::CElement(const wchar_t* name) : CElement(name, nullptr) {}

CElement::CElement(const wchar_t* name, const wchar_t* namespaceUri) : CElement(name, namespaceUri, nullptr, nullptr) {}

CElement::CElement(const wchar_t* name, const wchar_t* namespaceUri, const wchar_t* constraint,
                   const wchar_t* targetNamespace)
    : m_rule(constraint, targetNamespace) {
  SetElementName(name);
  if (*TextOrEmpty(namespaceUri) != L'\0') m_namespaceUri = std::make_shared<const std::wstring>(namespaceUri);
}

CElement::CElement(const CNamespaceRule& rule, const CXmlElement& source, const CSerializationContext& context)
    : m_rule(rule) {
  TreeReader::Read(*this, source, context);
}

CElement::~CElement() { Destroy(m_children); }

// A tree may be of any depth. Elements that nobody else holds lose their children before they go: the walk down leaves
// in the last slot of each element the way back up, so it needs neither recursion nor memory.
void CElement::Destroy(Children& children) noexcept {
  CSmartPtr<CElement> up;
  while (!children.empty()) {
    CSmartPtr<CElement> current = std::move(children.back());
    children.pop_back();
    while (current != nullptr) {
      if (!current->m_children.empty() && current->GetRefCount() == 1) {
        CSmartPtr<CElement> child = std::move(current->m_children.back());
        current->m_children.back() = std::move(up);  // NOLINT(bugprone-use-after-move): null after a move
        up = std::move(current);
        current = std::move(child);
        continue;
      }
      current = std::move(up);
      if (current == nullptr) break;
      up = std::move(current->m_children.back());
      current->m_children.pop_back();
    }
  }
}

CXmlObjectBase* CElement::GetBase() { return this; }

void CElement::FromXmlElement(const CXmlElement* element, const CSerializationContext& context) {
  if (element == nullptr) throw CRkException(L"The document contains no element.");
  m_rule.TestElement(element->GetNamespaceURI());
  RemoveChildren();
  m_attributes = nullptr;
  m_text.clear();
  m_sections = nullptr;
  m_prefixes = nullptr;
  const CObjectMemory memory;
  TreeReader::Read(*this, *element, context);
}

const wchar_t* CElement::GetNamespace() const { return m_namespaceUri != nullptr ? m_namespaceUri->c_str() : L""; }

const wchar_t* CElement::GetTargetNamespace() const { return GetNamespace(); }

void CElement::AttributesToXml_Int(CXmlWriter* writer, const CSerializationContext& context) const {
  if (m_attributes == nullptr) return;
  for (const CXmlCollection::CNode* node = m_attributes->GetFirstNode(); node != nullptr; node = node->GetNext()) {
    const CAttribute* const attribute = CAttribute::Of(node->GetItem());
    if (attribute == nullptr) continue;
    if (m_prefixes != nullptr && writer->WritesNamespaces() &&
        CTypeValue::IsType(attribute->GetLocalName(), attribute->GetNamespaceRef()) && WriteType(*attribute, *writer))
      continue;
    attribute->AttributesToXml_Int(writer, context);
  }
}

// A type whose prefix, or whose lack of one, means something else here keeps its namespace under another prefix.
bool CElement::WriteType(const CAttribute& attribute, CXmlWriter& writer) const {
  const CTypeValue type(attribute.GetValue());
  if (!type.IsName()) return false;
  const auto meant = m_prefixes->find(type.GetPrefix());
  return meant != m_prefixes->end() && !meant->second->empty() && type.WriteIfChanged(writer, meant->second);
}

void CElement::ToXml_Int(CXmlWriter* writer, bool registerNamespaces, const wchar_t* /*namespaceUri*/,
                         const CSerializationContext& context, bool isOptionalChoice) const {
  TreeWriter(*writer, context, isOptionalChoice).Write(*this, registerNamespaces);
}

CXmlElement* CElement::FromXml_Int(CXmlElement* /*parent*/, CXmlElement* current, const CSerializationContext& context,
                                   bool /*isOptionalChoice*/) {
  if (current == nullptr || !m_rule.Admits(current->GetNamespaceURI())) return current;
  CErrorSession::NoteRead(context, current);
  CElement::FromXmlElement(current, context);
  return current->GetNextSiblingElement();
}

void CElement::SetNamespace(const wchar_t* namespaceUri) {
  const wstring_view uri = TextOrEmpty(namespaceUri);
  m_rule.TestElement(uri);
  m_namespaceUri = uri.empty() ? nullptr : std::make_shared<const std::wstring>(uri);
}

const wchar_t* CElement::GetNamespaceConstraint() const noexcept { return m_rule.GetConstraint(); }

const wchar_t* CElement::GetConstraintTargetNamespace() const noexcept { return m_rule.GetTargetNamespace(); }

void CElement::SetText(const wchar_t* text) {
  m_text = TextOrEmpty(text);
  m_sections = nullptr;
}

CAttributeCol* CElement::GetAttributes() {
  if (m_attributes == nullptr) m_attributes = new CAttributeCol;
  return m_attributes;
}

int CElement::GetAttributeCount() const { return m_attributes != nullptr ? m_attributes->GetCount() : 0; }

std::wstring CElement::GetAttribute(const wchar_t* localName, const wchar_t* namespaceUri) const {
  return m_attributes != nullptr ? m_attributes->GetValue(localName, namespaceUri) : std::wstring();
}

void CElement::SetAttribute(const wchar_t* localName, const wchar_t* value, const wchar_t* namespaceUri) {
  CAttribute* const attribute = GetAttributes()->Find(localName, namespaceUri);
  if (attribute != nullptr) {
    attribute->SetValue(value);
  } else {
    GetAttributes()->Add(localName, value, namespaceUri);
  }
}

CElement* CElement::GetChild(int index) const {
  if (index < 0 || index >= GetChildCount()) ThrowBadIndex(index, GetChildCount());
  return m_children[static_cast<std::size_t>(index)];
}

void CElement::AddChild(CElement* child) { InsertChild(GetChildCount(), child); }

CElement* CElement::AddNewChild(const wchar_t* name, const wchar_t* namespaceUri, const wchar_t* text) {
  CSmartPtr<CElement> child(new CElement(name, namespaceUri));
  child->SetText(text);
  m_children.push_back(child);
  return child;
}

void CElement::InsertChild(int index, CElement* child) {
  if (child == nullptr) throw CRkInvalidParamException(L"The child element may not be NULL");
  if (child == this) throw CRkInvalidParamException(L"An element may not be its own child");
  if (index < 0 || index > GetChildCount()) ThrowBadIndex(index, GetChildCount());
  m_children.insert(static_cast<std::size_t>(index), child);
}

void CElement::RemoveChild(int index) {
  if (index < 0 || index >= GetChildCount()) ThrowBadIndex(index, GetChildCount());
  m_children.erase(static_cast<std::size_t>(index));
}

void CElement::RemoveChildren() { Destroy(m_children); }

CElement* CElement::FindChild(const wchar_t* localName, const wchar_t* namespaceUri) const {
  CNameTest isWanted(localName, namespaceUri);
  for (const CSmartPtr<CElement>& child : m_children) {
    if (isWanted(child->GetElementNameRef(), child->m_namespaceUri)) return child;
  }
  return nullptr;
}

std::vector<CElement*> CElement::FindChildren(const wchar_t* localName, const wchar_t* namespaceUri) const {
  std::vector<CElement*> found;
  CNameTest isWanted(localName, namespaceUri);
  for (const CSmartPtr<CElement>& child : m_children) {
    if (isWanted(child->GetElementNameRef(), child->m_namespaceUri)) found.push_back(child);
  }
  return found;
}

}  // namespace RkXmlLib16
