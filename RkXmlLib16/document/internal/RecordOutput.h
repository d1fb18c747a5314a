#ifndef RKXMLLIB16_DOCUMENT_INTERNAL_RECORDOUTPUT_H
#define RKXMLLIB16_DOCUMENT_INTERNAL_RECORDOUTPUT_H

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

#include "RkXmlLib16/base/Enumerations.h"
#include "RkXmlLib16/base/NameToken.h"
#include "RkXmlLib16/base/internal/WideText.h"
#include "RkXmlLib16/document/XmlWriter.h"
#include "RkXmlLib16/document/internal/NamespacePool.h"

namespace RkXmlLib16 {

// What a writer of the library does with the names of records, in place of WriteStartElement, WriteTextElement,
// WriteAttributeString and WriteEndElement. It writes what those write. Its output is not checked, an element is open,
// and no prefix is avoided.
class CRecordOutput {
 public:
  explicit CRecordOutput(bool takesNewNames) noexcept : m_takesNewNames(takesNewNames) {}
  CRecordOutput(const CRecordOutput&) = delete;
  CRecordOutput& operator=(const CRecordOutput&) = delete;
  virtual ~CRecordOutput() = default;

  virtual void StartElement(const CNameToken& name) = 0;
  virtual void TextElement(const CNameToken& name, std::wstring_view text, ItemType type, bool isCanonical) = 0;
  virtual void Attribute(const CNameToken& name, std::wstring_view value, ItemType type, bool isCanonical) = 0;
  virtual void EndElement() = 0;
  // Whether it can write a name that the document does not have yet.
  bool TakesNewNames() const noexcept { return m_takesNewNames; }

  // What writes for the writer now; null where its own operations have to: it is not of a type of the library, its
  // output is checked, no element is open, or a prefix is avoided.
  static CRecordOutput* Of(const CXmlWriter& writer) noexcept {
    return writer.m_context != nullptr && writer.m_avoidedPrefix.empty() ? writer.m_recordOutput.get() : nullptr;
  }
  // The operations of CXmlWriter without a call, for those who write each element and attribute.
  static void WriteStart(CXmlWriter& writer, const CNameToken& name) {
    CRecordOutput* const output = Of(writer);
    output != nullptr ? output->StartElement(name) : PlainStart(writer, name);
  }
  static void WriteStart(CXmlWriter& writer, const std::wstring& localName, const std::wstring& namespaceUri) {
    if (writer.IsExpected(localName, namespaceUri)) return WriteStart(writer, *writer.m_expectedName);
    writer.WriteStartElement(localName, namespaceUri);
  }
  static void WriteText(CXmlWriter& writer, const CNameToken& name, std::wstring_view text, ItemType type,
                        bool isCanonical) {
    CRecordOutput* const output = Of(writer);
    output != nullptr ? output->TextElement(name, text, type, isCanonical) : PlainText(writer, name, text, type);
  }
  static void WriteAttribute(CXmlWriter& writer, const CNameToken& name, std::wstring_view value, ItemType type,
                             bool isCanonical) {
    CRecordOutput* const output = Of(writer);
    output != nullptr ? output->Attribute(name, value, type, isCanonical) : PlainAttribute(writer, name, value, type);
  }
  static void WriteEnd(CXmlWriter& writer) {
    CRecordOutput* const output = Of(writer);
    output != nullptr ? output->EndElement() : writer.WriteEndElement();
  }

 protected:
  static constexpr std::uint64_t kNoScope = CXmlWriter::kNoScope;
  static std::uint64_t ScopeOf(const CXmlWriter& writer) noexcept { return writer.m_scopeNumber; }
  static void PlainStart(CXmlWriter& writer, const CNameToken& name) {
    writer.WriteStartElement(name.GetLocalName(), name.GetNamespace());
  }
  static void PlainText(CXmlWriter& writer, const CNameToken& name, std::wstring_view text, ItemType type) {
    writer.PlainTextElement(name, text, type);
  }
  static void PlainAttribute(CXmlWriter& writer, const CNameToken& name, std::wstring_view value, ItemType type) {
    writer.PlainAttribute(name, value, type);
  }

 private:
  const bool m_takesNewNames;
};

inline bool CXmlWriter::IsExpected(const std::wstring& localName, const std::wstring& namespaceUri) const noexcept {
  return m_expectedName != nullptr && WideText::IsEqual(m_expectedName->GetLocalName(), localName) &&
         WideText::IsEqual(m_expectedName->GetNamespace(), namespaceUri);
}

// A name that is that of the context already is left as it is.
inline CXmlWriter::CXmlWriterContext& CXmlWriter::PushContext(const CNameToken& name,
                                                              const CNamespaceName& namespaceName) {
  if (m_closedContexts == nullptr) return PushContext(name.GetLocalName(), name.GetNamespace());
  CXmlWriterContext& context = *m_closedContexts;
  if (&context.m_localName.Get() != &name.GetLocalName()) context.m_localName = name.GetSharedLocalName();
  if (context.m_name != &namespaceName) context.SetName(namespaceName);
  context.m_scope = m_context->m_scope;
  ReopenContext();
  context.m_nameNumber = name.GetNumber();
  return context;
}

// Makes the closed context, which has its name and scope, a child of the current one.
inline void CXmlWriter::ReopenContext() noexcept {
  CXmlWriterContext& context = *m_closedContexts;
  context.m_childCount = 0;
  context.m_startTagOpen = true;
  context.m_depth = m_context->m_depth + 1;
  context.m_prefix.clear();
  context.m_state = ContextState_None;
  context.m_itemsAreGroups = false;
  context.m_nameNumber = CNameToken::kNoNumber;
  m_closedContexts.swap(context.m_parent);
  m_context.swap(context.m_parent);
}

inline void CXmlWriter::CloseContext() {
  if (m_checks != nullptr) CheckEnd();
  CXmlWriterContext& context = *m_context;
  m_context.swap(context.m_parent);
  m_closedContexts.swap(context.m_parent);
  if (context.m_ownScope != nullptr) CloseScope(context);
  context.m_scope = nullptr;
}

// Characters that a writer has ready, of which sixteen at a time are copied; there must be space for all of `text`.
template <std::size_t kLongest>
struct CReadyText {
  static_assert(kLongest % 16 == 0);

  wchar_t* CopyTo(wchar_t* to) const noexcept {
    const std::size_t count = length;
    WideText::CopySixteen(to, text);
    for (std::size_t i = 16; i < count; i += 16) WideText::CopySixteen(to + i, text + i);
    return to + count;
  }

  std::size_t length;
  wchar_t text[kLongest];
};

// Whether what the library writes for a value of the type has no character that some form escapes, nor NUL.
constexpr bool HasNothingToEscape(ItemType type) {
  return type != ItemType_none && type != ItemType_char && type != ItemType_string;
}

// The record output of one form, which keeps what it made of a name, `Made`, by the number of the name: one entry for
// each element and each attribute, of those that share a place the last one. Invariant: an entry holds in the scope of
// its number. `Form` is derived from this and has
//
//   // Make what the entry holds; or return false when the plain operations have to write the name.
//   bool MakeElement(const CNameToken& name, Entry& entry);
//   bool MakeAttribute(const CNameToken& name, Entry& entry);
//   // Write with what the entry holds; or write nothing and return false, and the plain operations write it all.
//   bool PutStart(const CNameToken& name, Entry& entry);
//   bool PutText(const CNameToken& name, Entry& entry, std::wstring_view text, ItemType type, bool isCanonical);
//   bool PutAttribute(const CNameToken& name, Entry& entry, std::wstring_view value, ItemType type, bool isCanonical);
template <class Form, class Writer, class Made>
class CFormRecordOutput : public CRecordOutput {
 public:
  struct Entry {
    std::uint32_t number = CNameToken::kNoNumber;
    std::uint64_t scope = kNotKept;
    const CNamespaceName* namespaceName;  // as the writer has it once; of elements
    Made made;
  };

  explicit CFormRecordOutput(Writer& writer, bool takesNewNames = true) noexcept
      : CRecordOutput(takesNewNames), m_writer(writer) {}

  void StartElement(const CNameToken& name) final {
    Entry& entry = m_elements[name.GetNumber() % std::size(m_elements)];
    const bool isPut = Find<&Form::MakeElement>(name, entry) && GetForm().PutStart(name, entry);
    if (!isPut) PlainStart(m_writer, name);
  }
  void TextElement(const CNameToken& name, std::wstring_view text, ItemType type, bool isCanonical) final {
    Entry& entry = m_elements[name.GetNumber() % std::size(m_elements)];
    const bool isPut = Find<&Form::MakeElement>(name, entry) && GetForm().PutText(name, entry, text, type, isCanonical);
    if (!isPut) PlainText(m_writer, name, text, type);
  }
  void Attribute(const CNameToken& name, std::wstring_view value, ItemType type, bool isCanonical) final {
    Entry& entry = m_attributes[name.GetNumber() % std::size(m_attributes)];
    const bool isPut =
        Find<&Form::MakeAttribute>(name, entry) && GetForm().PutAttribute(name, entry, value, type, isCanonical);
    if (!isPut) PlainAttribute(m_writer, name, value, type);
  }

  void EndElement() final {
    if (!GetForm().PutEnd()) m_writer.Writer::WriteEndElement();
  }

  // A form may hide these. Like the others PutEnd may write nothing and return false.
  static constexpr bool PutEnd() noexcept { return false; }
  std::uint64_t GetScope() const noexcept { return ScopeOf(m_writer); }

 protected:
  // The entry of the number that an element was started by; null when it is that of another name or scope now.
  const Entry* FindElement(std::uint32_t number) {
    const Entry& entry = m_elements[number % std::size(m_elements)];
    return entry.number == number && entry.scope == GetForm().GetScope() ? &entry : nullptr;
  }

  Writer& m_writer;

 private:
  static constexpr std::uint64_t kNotKept = UINT64_MAX;  // the number of no scope

  Form& GetForm() noexcept { return static_cast<Form&>(*this); }

  // Whether the entry is that of the name, or is it now.
  template <auto kMake>
  bool Find(const CNameToken& name, Entry& entry) {
    const std::uint64_t scope = GetForm().GetScope();
    return (entry.number == name.GetNumber() && entry.scope == scope) || Remake<kMake>(name, scope, entry);
  }
  // Without a scope or a number it is not found again.
  template <auto kMake>
  [[gnu::noinline]] bool Remake(const CNameToken& name, std::uint64_t scope, Entry& entry) {
    entry.scope = kNotKept;
    if (!(GetForm().*kMake)(name, entry)) return false;
    entry.number = name.GetNumber();
    if (scope != kNoScope && entry.number != CNameToken::kNoNumber) entry.scope = scope;
    return true;
  }

  Entry m_elements[64];
  Entry m_attributes[16];
};

}  // namespace RkXmlLib16

#endif
