#include "RkXmlLib16/binding/DocumentWriter.h"

#include <utility>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/internal/NeverDestroyed.h"
#include "RkXmlLib16/binding/GeneratedClass.h"
#include "RkXmlLib16/binding/ParentElementInfo.h"
#include "RkXmlLib16/binding/internal/EntryPointTools.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/fastinfoset/Writer.h"
#include "RkXmlLib16/io/internal/SinkStreams.h"
#include "RkXmlLib16/json/JsonTextWriter.h"
#include "RkXmlLib16/wildcards/internal/RootWriter.h"
#include "RkXmlLib16/wildcards/internal/TypeValue.h"
#include "RkXmlLib16/xml/XmlTextWriter.h"

namespace RkXmlLib16 {

namespace {

const CNeverDestroyed<std::wstring> kNoNamespace;

bool IsGroup(const CXmlObjectBase& object) {
  const auto* const generated = dynamic_cast<const CXmlGeneratedClass*>(&object);
  return generated != nullptr && generated->GetClassInfo()->GetElementType() != XmlElementType_Element;
}

std::unique_ptr<ByteSink> TakeSink(CByteTarget& target, CompressionType compression) {
  if (target.IsFile()) RequireFileCompression(compression);
  return Compressing(target.TakeSink(), compression);
}

}  // namespace

// A document on its way, in one of the forms. A call asks first whether it may be made, which changes nothing, and then
// runs; what fails while it runs cannot be repaired.
class CDocumentWriter::Form {
 public:
  Form(CByteTarget& target, CompressionType compression, const CSerializationContext& context)
      : m_end(TakeSink(target, compression)), m_context(context) {}
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;
  virtual ~Form() = default;

  virtual CXmlWriter& Writer() = 0;
  // Everything behind the root element, and what the streams still hold.
  virtual void Complete() = 0;
  // Hands over what was written, where the stream does not do so by itself.
  virtual void Offer() {}

  const CSerializationContext& GetContext() const { return m_context; }
  bool IsInElement() { return Writer().HasOpenElement(); }

  void RequireGoingOn() const {
    if (m_state == State::Ended) throw CRkInvalidStateException(L"The document has ended.");
    if (m_state == State::Failed) throw CRkInvalidStateException(L"The document was given up after a failure.");
  }
  void RequireElement(const wchar_t* message) {
    RequireGoingOn();
    if (!IsInElement()) throw CRkInvalidStateException(message);
  }
  void RequireStartTag() const {
    RequireGoingOn();
    if (!m_isStartTagOpen) throw CRkInvalidStateException(L"Attributes must be added before elements");
  }
  void RequirePlace() {
    RequireGoingOn();
    if (m_hasRoot && !IsInElement()) throw CRkInvalidStateException(L"The document has its root element already.");
  }

  template <class Work>
  void Run(Work&& work) {
    try {
      work(Writer());
      Offer();
    } catch (...) {
      m_state = State::Failed;
      m_end.ThrowFailure();
      throw;
    }
  }

  // `writeStartTag` is told whether the element is the root.
  template <class Work>
  void Start(Work&& writeStartTag) {
    RequirePlace();
    Run([&](CXmlWriter& writer) {
      const bool isRoot = !writer.HasOpenElement();
      if (isRoot)
        WriteRootPrologue(writer, m_context);
      else
        BeginContent(writer);
      writeStartTag(writer, isRoot);
      m_hasRoot = m_isStartTagOpen = true;
      m_isSchemaDue = isRoot;
    });
  }

  void WriteTag(CXmlWriter& writer, const CXmlElement& element, bool isRoot) {
    const CXmlDocument& document = *element.GetDocument();
    const bool mayDeclare = writer.WritesNamespaces() && (isRoot || document.HasInnerDeclarations());
    const std::shared_ptr<const std::wstring> namespaceUri = document.ShareName(element.GetNamespaceRef());
    writer.TellNamespace(namespaceUri);
    if (mayDeclare && !isRoot) AvoidDeclaredPrefix(writer, element);
    m_name = element.GetLocalNameRef()->View();
    writer.WriteStartElement(m_name, UriOf(namespaceUri));
    writer.AvoidPrefix(std::wstring());
    if (isRoot) WriteRootAttributes(writer, m_context, UriOf(namespaceUri).c_str(), false);
    if (mayDeclare) DeclarePrefixes(writer, element);
    for (const CXmlAttribute* attribute : element.GetAttributes()) WriteAttribute(writer, element, *attribute);
  }

  // Comes before what stands inside the open element.
  void BeginContent(CXmlWriter& writer) {
    m_isStartTagOpen = false;
    if (std::exchange(m_isSchemaDue, false)) WriteRootSchema(writer, m_context);
  }

  void WriteNil(CXmlWriter& writer) {
    writer.WriteAttributeNil();
    m_isSchemaDue = false;
  }

  void SetCollection(ContextState state) {
    RequireElement(L"No Element is open.");
    Writer().SetContextState(state);
    m_isCollectionNew = state == ContextState_CollectionStart;
  }

  void WriteObject(CXmlWriter& writer, const CXmlObjectBase& object, const wchar_t* namespaceUri) {
    const bool isRoot = !writer.HasOpenElement();
    if (!isRoot) BeginContent(writer);
    if (std::exchange(m_isCollectionNew, false) && IsGroup(object)) writer.SetItemsAreGroups();
    object.ToXml_Int(&writer, isRoot, namespaceUri, m_context, false);
    m_hasRoot = true;
  }

  void End() {
    RequireGoingOn();
    if (IsInElement()) throw CRkInvalidStateException(L"An Element has not been closed.");
    if (!m_hasRoot) throw CRkInvalidStateException(L"The document cannot end without a root element.");
    Run([this](CXmlWriter&) {
      Complete();
      m_end.Finish();
    });
    m_state = State::Ended;
  }

 protected:
  SinkEnd m_end;
  const CSerializationContext m_context;

 private:
  enum class State { GoingOn, Ended, Failed };

  static const std::wstring& UriOf(const std::shared_ptr<const std::wstring>& shared) {
    return shared != nullptr ? *shared : kNoNamespace.Get();
  }

  // The name of an element must not use a prefix that its start tag declares for another namespace.
  void AvoidDeclaredPrefix(CXmlWriter& writer, const CXmlElement& element) {
    const CXmlDocument& document = *element.GetDocument();
    const auto declarations = document.GetDeclarations(&element);
    if (declarations.begin() == declarations.end() || element.GetNamespaceRef()->empty()) return;
    const std::wstring* const prefix = writer.FindPrefixInScope(UriOf(document.ShareName(element.GetNamespaceRef())));
    if (prefix == nullptr) return;
    for (const auto& [owner, declared, uri] : declarations)
      if (declared->View() == *prefix && uri != element.GetNamespaceRef()) return writer.AvoidPrefix(*prefix);
  }

  static void DeclarePrefixes(CXmlWriter& writer, const CXmlElement& element) {
    for (const auto& [owner, prefix, uri] : element.GetDocument()->GetDeclarations(&element))
      if (!prefix->empty() && !uri->empty())
        writer.DeclareNamespace(std::wstring(prefix->View()), std::wstring(uri->View()));
  }

  void WriteAttribute(CXmlWriter& writer, const CXmlElement& element, const CXmlAttribute& attribute) {
    const CXmlDocument& document = *element.GetDocument();
    const std::shared_ptr<const std::wstring> namespaceUri = document.ShareName(attribute.GetNamespaceRef());
    m_value = attribute.GetValue().View();
    if (writer.WritesNamespaces() && CTypeValue::IsType(attribute.GetLocalName(), UriOf(namespaceUri))) {
      const CTypeValue type(m_value);
      const CXmlName* const meant = type.IsName() ? element.LookupNamespaceRef(type.GetPrefix()) : nullptr;
      if (meant != nullptr && !meant->empty() && type.WriteIfChanged(writer, document.ShareName(meant))) return;
    }
    m_name = attribute.GetLocalNameRef()->View();
    writer.TellNamespace(namespaceUri);
    writer.WriteAttributeString(m_name, UriOf(namespaceUri), m_value, ItemType_string);
  }

  State m_state = State::GoingOn;
  bool m_hasRoot = false;
  bool m_isStartTagOpen = false;
  bool m_isSchemaDue = false;
  bool m_isCollectionNew = false;  // nothing was written into it
  std::wstring m_name;             // kept for their storage
  std::wstring m_value;
};

CDocumentWriter::CDocumentWriter(std::unique_ptr<Form> form) : m_form(std::move(form)) {}
CDocumentWriter::~CDocumentWriter() = default;

void CDocumentWriter::WriteStartElement(const std::wstring& localName, const std::wstring& namespaceUri) {
  m_form->Start([&](CXmlWriter& writer, bool isRoot) {
    writer.WriteStartElement(localName, namespaceUri);
    if (isRoot) WriteRootAttributes(writer, m_form->GetContext(), namespaceUri.c_str(), false);
  });
}

void CDocumentWriter::WriteStartElement(const CXmlObjectBase& object) {
  WriteStartElement(object, object.GetTargetNamespace());
}

void CDocumentWriter::WriteStartElement(const CXmlObjectBase& object, const std::wstring& namespaceUri) {
  m_form->Start([&](CXmlWriter& writer, bool isRoot) {
    writer.WriteStartElement(object.GetElementNameRef(), namespaceUri);
    if (isRoot) WriteRootAttributes(writer, m_form->GetContext(), namespaceUri.c_str(), false);
    object.AttributesToXml_Int(&writer, m_form->GetContext());
  });
}

void CDocumentWriter::WriteStartElement(const CXmlElement& element) {
  m_form->Start([&](CXmlWriter& writer, bool isRoot) { m_form->WriteTag(writer, element, isRoot); });
}

void CDocumentWriter::WriteEndElement() {
  m_form->RequireElement(L"There is no open Element to end.");
  m_form->Run([this](CXmlWriter& writer) {
    m_form->BeginContent(writer);
    writer.WriteEndElement();
  });
}

void CDocumentWriter::WriteAttribute(const std::wstring& localName, const std::wstring& value,
                                     const std::wstring& namespaceUri, ItemType type) {
  m_form->RequireStartTag();
  m_form->Run([&](CXmlWriter& writer) { writer.WriteAttributeString(localName, namespaceUri, value, type); });
}

void CDocumentWriter::WriteNil() {
  m_form->RequireStartTag();
  m_form->Run([this](CXmlWriter& writer) { m_form->WriteNil(writer); });
}

void CDocumentWriter::DeclareNamespace(const std::wstring& prefix, const std::wstring& namespaceUri) {
  m_form->RequireStartTag();
  m_form->Run([&](CXmlWriter& writer) { writer.DeclareNamespace(prefix, namespaceUri); });
}

void CDocumentWriter::WriteText(const std::wstring& text, ItemType type) {
  m_form->RequireElement(L"Text must be written inside an Element.");
  m_form->Run([&](CXmlWriter& writer) {
    m_form->BeginContent(writer);
    writer.WriteString(text, type);
  });
}

void CDocumentWriter::WriteTextElement(const std::wstring& localName, const std::wstring& namespaceUri,
                                       const std::wstring& text, ItemType type) {
  m_form->RequireElement(L"Text must be written inside an Element.");
  m_form->Run([&](CXmlWriter& writer) {
    m_form->BeginContent(writer);
    writer.WriteTextElement(localName, namespaceUri, text, type);
  });
}

void CDocumentWriter::WriteObject(const CXmlObjectBase& object) { Write(object, object.GetTargetNamespace()); }

void CDocumentWriter::WriteObject(const CXmlObjectBase& object, const std::wstring& namespaceUri) {
  Write(object, namespaceUri.c_str());
}

void CDocumentWriter::Write(const CXmlObjectBase& object, const wchar_t* namespaceUri) {
  m_form->RequirePlace();
  m_form->Run([&](CXmlWriter& writer) { m_form->WriteObject(writer, object, namespaceUri); });
}

void CDocumentWriter::BeginCollection() { m_form->SetCollection(ContextState_CollectionStart); }
void CDocumentWriter::EndCollection() { m_form->SetCollection(ContextState_CollectionEnd); }

void CDocumentWriter::End() { m_form->End(); }

// The forms

class CXmlDocumentWriter::XmlForm : public Form {
 public:
  XmlForm(CByteTarget& target, CompressionType compression, const CSerializationContext& context, bool hasHeader,
          bool formatted, EOLType eol)
      : Form(target, compression, context) {
    m_writer.Open();
    ApplySettings(m_writer, formatted, eol, m_context);
    if (hasHeader) m_writer.WriteStartDocument();
  }
  CXmlWriter& Writer() override { return m_writer; }
  void Complete() override { m_writer.Close(); }

 private:
  SinkTextStream m_stream{m_end};
  CXmlTextWriter m_writer{m_stream};
};

class CJsonDocumentWriter::JsonForm : public Form {
 public:
  JsonForm(CByteTarget& target, CompressionType compression, const CSerializationContext& context, bool formatted,
           EOLType eol)
      : Form(target, compression, context) {
    m_writer.Open();
    ApplySettings(m_writer, formatted, eol, m_context);
    m_writer.WriteStartDocument();
  }
  CXmlWriter& Writer() override { return m_writer; }
  void Complete() override {
    m_writer.WriteEndDocument();
    m_writer.Close();
  }

 private:
  SinkTextStream m_stream{m_end};
  CJsonTextWriter m_writer{m_stream};
};

class CFastInfosetDocumentWriter::FastInfosetForm : public Form {
 public:
  FastInfosetForm(CByteTarget& target, CompressionType compression, const CSerializationContext& context,
                  FInfoDecl declaration)
      : Form(target, compression, context) {
    m_writer.Open();
    m_writer.SetWellFormedOutput(m_context.GetWellFormedOutput());
    m_writer.WriteStartDocument(declaration);
  }
  CXmlWriter& Writer() override { return m_writer; }
  void Offer() override { m_stream.Offer(); }
  void Complete() override {
    m_writer.WriteEndDocument();
    m_writer.Close();
    m_stream.Flush();
  }

 private:
  SinkBinaryStream m_stream{m_end};
  CFastInfosetWriter m_writer{*m_context.GetFIContext(), m_stream};
};

CXmlDocumentWriter::CXmlDocumentWriter(CByteTarget target, CompressionType compression,
                                       const CSerializationContext& context, bool includeDocumentHeader, bool formatted,
                                       EOLType eol)
    : CDocumentWriter(std::make_unique<XmlForm>(target, compression, context, includeDocumentHeader, formatted, eol)) {}
CXmlDocumentWriter::~CXmlDocumentWriter() = default;

CJsonDocumentWriter::CJsonDocumentWriter(CByteTarget target, CompressionType compression,
                                         const CSerializationContext& context, bool formatted, EOLType eol)
    : CDocumentWriter(std::make_unique<JsonForm>(target, compression, context, formatted, eol)) {}
CJsonDocumentWriter::~CJsonDocumentWriter() = default;

CFastInfosetDocumentWriter::CFastInfosetDocumentWriter(CByteTarget target, CompressionType compression,
                                                       const CSerializationContext& context, FInfoDecl declaration)
    : CDocumentWriter(std::make_unique<FastInfosetForm>(target, compression, context, declaration)) {}
CFastInfosetDocumentWriter::~CFastInfosetDocumentWriter() = default;

}  // namespace RkXmlLib16
