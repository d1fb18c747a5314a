#ifndef RKXMLLIB16_BINDING_DOCUMENTWRITER_H
#define RKXMLLIB16_BINDING_DOCUMENTWRITER_H

#include <memory>
#include <string>

#include "RkXmlLib16/base/Enumerations.h"
#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/io/ByteTarget.h"
#include "RkXmlLib16/object/XmlObjectBase.h"

namespace RkXmlLib16 {

class CXmlElement;

// Writes a document of any size in pieces: the start tags and attributes of its outer elements, then any number of
// objects one by one, then the ends. Memory does not grow with the document. The bytes are those of the To* entry
// points for the whole tree, as long as collections are told.
//
//   CXmlDocumentWriter writer("track.gpx.gz", CompressionType_GZip, context);
//   writer.WriteStartElement(gpx);  // its name and attributes
//   writer.BeginCollection();
//   for (...) writer.WriteObject(point);
//   writer.EndCollection();
//   writer.WriteEndElement();
//   writer.End();
//
// Collections. In JSON the items of a collection of objects are one array, so BeginCollection and EndCollection stand
// around what a class holds as a collection; the other forms take no notice. Collections stand inside each other where
// elements do.
//
// The end. A document is complete when End returns. A writer that goes without it leaves no file, and in a stream bytes
// that are no document. After a failure while something was being written nothing more can be written.
//
// Errors. CRkInvalidStateException for calls in an order that makes no document; CRkException
// "Failed to write data to the file [%ls]." or "Failed to write data to the target of the document" when the target
// fails; else those of the entry points. One thread at a time.
class RKXML_EXPORT CDocumentWriter {
 public:
  CDocumentWriter(const CDocumentWriter&) = delete;
  CDocumentWriter& operator=(const CDocumentWriter&) = delete;
  virtual ~CDocumentWriter();

  // The root element carries what the context says: processing instructions before it, prefixes, default namespace,
  // extra attributes, schema.
  void WriteStartElement(const std::wstring& localName, const std::wstring& namespaceUri = std::wstring());
  // The start tag of an object with its attributes, but nothing of its content.
  void WriteStartElement(const CXmlObjectBase& object);
  void WriteStartElement(const CXmlObjectBase& object, const std::wstring& namespaceUri);
  // The start tag of an element that was read, as CDocumentStream::Event::Start tells it, with its attributes and the
  // prefixes that it declares, so that values keep their meaning. An xsi:type without prefix gets one where the default
  // namespace is another one here.
  void WriteStartElement(const CXmlElement& element);
  void WriteEndElement();

  // On the open start tag. `type` tells the kind of value that the text came from; JSON writes numbers and booleans
  // without quotes, Fast Infoset has encodings for them.
  void WriteAttribute(const std::wstring& localName, const std::wstring& value,
                      const std::wstring& namespaceUri = std::wstring(), ItemType type = ItemType_string);
  void WriteNil();  // xsi:nil="true"
  // Declares a prefix for values that use it; the root element has those of the context.
  void DeclareNamespace(const std::wstring& prefix, const std::wstring& namespaceUri);

  // Inside the open element.
  void WriteText(const std::wstring& text, ItemType type = ItemType_string);
  void WriteTextElement(const std::wstring& localName, const std::wstring& namespaceUri, const std::wstring& text,
                        ItemType type = ItemType_string);
  // The object as an element in its target namespace, or in the one given; as the root element, if none is there.
  void WriteObject(const CXmlObjectBase& object);
  void WriteObject(const CXmlObjectBase& object, const std::wstring& namespaceUri);

  // What is written between these into the open element is one collection. The end of the element ends it too.
  void BeginCollection();
  void EndCollection();

  // Ends the document, once, when all elements are closed, and completes the target.
  void End();

 protected:
  class Form;
  explicit CDocumentWriter(std::unique_ptr<Form> form);

 private:
  void Write(const CXmlObjectBase& object, const wchar_t* namespaceUri);

  std::unique_ptr<Form> m_form;
};

// XML text in UTF-8.
class RKXML_EXPORT CXmlDocumentWriter : public CDocumentWriter {
 public:
  // The context is copied. Throws CRkException "ZLIB Compression only available for To Stream methods." for a file.
  explicit CXmlDocumentWriter(CByteTarget target, CompressionType compression = CompressionType_None,
                              const CSerializationContext& context = GetDefaultContext(),
                              bool includeDocumentHeader = true, bool formatted = true, EOLType eol = EOLType_LF);
  ~CXmlDocumentWriter() override;

 private:
  class XmlForm;
};

// JSON text in UTF-8.
class RKXML_EXPORT CJsonDocumentWriter : public CDocumentWriter {
 public:
  explicit CJsonDocumentWriter(CByteTarget target, CompressionType compression = CompressionType_None,
                               const CSerializationContext& context = GetDefaultContext(), bool formatted = true,
                               EOLType eol = EOLType_LF);
  ~CJsonDocumentWriter() override;

 private:
  class JsonForm;
};

// Fast Infoset. The tables of indexed values, which hold at most 2^20 short ones, are kept until the end.
class RKXML_EXPORT CFastInfosetDocumentWriter : public CDocumentWriter {
 public:
  explicit CFastInfosetDocumentWriter(CByteTarget target, CompressionType compression = CompressionType_None,
                                      const CSerializationContext& context = GetDefaultContext(),
                                      FInfoDecl declaration = FInfoDecl_None);
  ~CFastInfosetDocumentWriter() override;

 private:
  class FastInfosetForm;
};

}  // namespace RkXmlLib16

#endif
