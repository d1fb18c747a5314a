#ifndef RKXMLLIB16_OBJECT_XMLOBJECTBASE_H
#define RKXMLLIB16_OBJECT_XMLOBJECTBASE_H

#include <cstddef>
#include <cstdint>
#include <new>
#include <string>

#include "RkXmlLib16/base/Enumerations.h"
#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/base/ReferenceCount.h"
#include "RkXmlLib16/base/SharedName.h"
#include "RkXmlLib16/io/FileName.h"
#include "RkXmlLib16/types/BinaryData.h"

namespace RkXmlLib16 {

class CElement;
class CSerializationContext;
class CXmlCollectionBase;
class CXmlElement;
class CXmlObjectBase;
class CXmlWriter;

// The shared default settings, CSerializationContext::m_defaultContext.
RKXML_EXPORT const CSerializationContext& GetDefaultContext() noexcept;

// Lets ToXmlFile and ToJsonFile write straight to the file while the document grows, instead of building it in memory
// first. Holds for the whole process; off at load. Only uncompressed files are affected.
RKXML_EXPORT void AsyncToXmlFile(bool enable);
// Accepted for symmetry; reading always loads the whole input.
RKXML_EXPORT void AsyncFromXmlFile(bool enable);

// Receives the notifications of collections.
class RKXML_EXPORT IEventSink {
 public:
  enum MsgType : std::int32_t {
    MsgType_CollectionChanged = 0,  // data is null
    MsgType_ItemAdding = 1,         // data is the item
    MsgType_ItemAdded = 2,          // data is the item
    MsgType_ItemRemoving = 3,       // data points to the index (int), or is null for index -1
    MsgType_ItemRemoved = 4         // data points to the index (int), or is null for index -1
  };

  // `source` is the collection. Everything is borrowed for the call. The base does nothing.
  virtual void OnEvent(CXmlObjectBase* source, MsgType type, void* data);

 protected:
  ~IEventSink() = default;
};

// The root of every object that can be turned into a document and back: generated classes, collections and the wildcard
// holders. Identity matters, so objects are neither copied nor moved.
//
// Reference counting: the count starts at 0; who keeps a pointer calls AddRef and later Release, and the object deletes
// itself when Release brings the count back to 0. An object on the stack keeps the count 0 and works with every entry
// point. Counts may change in several threads at once, but not in a signal handler: changing one takes several steps
// while the process has one thread.
//
// Every entry point throws CRkException or a subclass of it (and std::bad_alloc), nothing else. A From* entry point
// fills the object in place: members that the document does not mention keep their values, and after an exception the
// object may be partly filled.
//
//   COrder order;
//   order.FromXmlFile(L"order.xml");
//   order.SetTotal(CDecimal(L"12.50"));
//   CBinaryData bytes = order.ToXmlStream();
//
// Implemented in object/XmlObjectBase.cpp; what needs more stands in higher layers: entry points in
// binding/EntryPoints*.cpp, Choice_ and Throw_ in binding/ChoiceHelpers.cpp, FireOn in collections/CollectionBase.cpp,
// DoesElementNameMatch in document/internal/ElementNameMatch.cpp.
class RKXML_EXPORT CXmlObjectBase : public IEventSink {
 public:
  CXmlObjectBase() = default;
  CXmlObjectBase(const CXmlObjectBase&) = delete;
  CXmlObjectBase& operator=(const CXmlObjectBase&) = delete;

  // The object as its base; a collection returns itself.
  virtual CXmlObjectBase* GetBase() = 0;

  // Writing to a file. `fileName` is converted to the multibyte form of the current locale (UTF-8 where that fails).
  // Encodings 2 and 3 put the byte-order mark FF FE in front of XML. Throw CRkException
  // "ZLIB Compression only available for To Stream methods.", "Failed to write data to the file [%ls].".
  virtual void ToXmlFile(const wchar_t* fileName, bool includeDocumentHeader = true, bool formatted = true,
                         XmlEncoding encoding = XmlEncoding_UTF8, EOLType eol = EOLType_LF,
                         const CSerializationContext& context = GetDefaultContext(),
                         CompressionType compression = CompressionType_None) const;
  virtual void ToFastInfosetFile(const wchar_t* fileName, FInfoDecl declaration = FInfoDecl_None,
                                 const CSerializationContext& context = GetDefaultContext(),
                                 CompressionType compression = CompressionType_None) const;
  virtual void ToJsonFile(const wchar_t* fileName, bool formatted = true, XmlEncoding encoding = XmlEncoding_UTF8,
                          EOLType eol = EOLType_LF, const CSerializationContext& context = GetDefaultContext(),
                          CompressionType compression = CompressionType_None) const;

  // Writing to wide text. The XML declaration names no encoding.
  virtual std::wstring ToXml(bool includeDocumentHeader = true, bool formatted = true, EOLType eol = EOLType_LF,
                             const CSerializationContext& context = GetDefaultContext()) const;
  virtual std::wstring ToJson(bool formatted = true, EOLType eol = EOLType_LF,
                              const CSerializationContext& context = GetDefaultContext()) const;

  // Writing to bytes, optionally in a gzip or zlib wrapper. XML text follows the W3C XML 1.0 and Namespaces in XML
  // recommendations, Fast Infoset follows ITU-T X.891. Throw CRkException
  // "Unknown Encoding, select UTF-8 (contact our support team)", "Failed to compress data. [Error Code: %d]".
  virtual CBinaryData ToXmlStream(bool includeDocumentHeader = true, bool formatted = true,
                                  XmlEncoding encoding = XmlEncoding_UTF8, EOLType eol = EOLType_LF,
                                  const CSerializationContext& context = GetDefaultContext(),
                                  CompressionType compression = CompressionType_None) const;
  virtual CBinaryData ToFastInfosetStream(FInfoDecl declaration = FInfoDecl_None,
                                          const CSerializationContext& context = GetDefaultContext(),
                                          CompressionType compression = CompressionType_None) const;
  virtual CBinaryData ToJsonStream(bool formatted = true, XmlEncoding encoding = XmlEncoding_UTF8,
                                   EOLType eol = EOLType_LF, const CSerializationContext& context = GetDefaultContext(),
                                   CompressionType compression = CompressionType_None) const;

  // The same with names that the system is given as they are: const char*, std::string, std::filesystem::path.
  void ToXmlFile(const CFileName& fileName, bool includeDocumentHeader = true, bool formatted = true,
                 XmlEncoding encoding = XmlEncoding_UTF8, EOLType eol = EOLType_LF,
                 const CSerializationContext& context = GetDefaultContext(),
                 CompressionType compression = CompressionType_None) const;
  void ToFastInfosetFile(const CFileName& fileName, FInfoDecl declaration = FInfoDecl_None,
                         const CSerializationContext& context = GetDefaultContext(),
                         CompressionType compression = CompressionType_None) const;
  void ToJsonFile(const CFileName& fileName, bool formatted = true, XmlEncoding encoding = XmlEncoding_UTF8,
                  EOLType eol = EOLType_LF, const CSerializationContext& context = GetDefaultContext(),
                  CompressionType compression = CompressionType_None) const;
  void FromXmlFile(const CFileName& fileName, const CSerializationContext& context = GetDefaultContext());
  void FromJsonFile(const CFileName& fileName, const CSerializationContext& context = GetDefaultContext());

  // Writing to UTF-8, as ToXmlStream and ToJsonStream do.
  std::string ToXmlUtf8(bool includeDocumentHeader = true, bool formatted = true, EOLType eol = EOLType_LF,
                        const CSerializationContext& context = GetDefaultContext()) const;
  std::string ToJsonUtf8(bool formatted = true, EOLType eol = EOLType_LF,
                         const CSerializationContext& context = GetDefaultContext()) const;

  // Reading. Files and byte streams may be XML text or Fast Infoset (for the Json forms: JSON text in UTF-8), plain or
  // in a gzip or zlib wrapper; all are told apart by their first bytes. Texts are NUL-terminated. All input is
  // borrowed.
  virtual void FromXmlFile(const wchar_t* fileName, const CSerializationContext& context = GetDefaultContext());
  virtual void FromJsonFile(const wchar_t* fileName, const CSerializationContext& context = GetDefaultContext());
  virtual void FromXml(const char* text, const CSerializationContext& context = GetDefaultContext());
  virtual void FromXml(const wchar_t* text, const CSerializationContext& context = GetDefaultContext());
  virtual void FromJson(const char* text, const CSerializationContext& context = GetDefaultContext());
  virtual void FromJson(const wchar_t* text, const CSerializationContext& context = GetDefaultContext());
  virtual void FromXmlStream(unsigned char* data, unsigned long length,
                             const CSerializationContext& context = GetDefaultContext());
  virtual void FromXmlStream(const CBinaryData& data, const CSerializationContext& context = GetDefaultContext());
  virtual void FromJsonStream(unsigned char* data, unsigned long length,
                              const CSerializationContext& context = GetDefaultContext());
  virtual void FromJsonStream(const CBinaryData& data, const CSerializationContext& context = GetDefaultContext());

  // Reading from an element of a loaded document, or from a held wildcard element: its text goes to
  // FromXml(const wchar_t*), as that of JSON does where an object overrides it.
  virtual void FromXmlElement(const CXmlElement* element, const CSerializationContext& context = GetDefaultContext());
  virtual void FromXmlElement(const CElement* element, const CSerializationContext& context = GetDefaultContext());

  virtual ~CXmlObjectBase();

  // The namespace URI of the element that the object is written as; never null.
  virtual const wchar_t* GetTargetNamespace() const = 0;
  // The namespace URI of the object's type; never null.
  virtual const wchar_t* GetNamespace() const = 0;

  // Writes the object's attributes onto the open start tag. The base writes none.
  virtual void AttributesToXml_Int(CXmlWriter* writer, const CSerializationContext& context) const;
  // Writes the object as an element. `registerNamespaces` is true for the root element only, which then carries the
  // context's processing instructions, namespace declarations and extra attributes.
  virtual void ToXml_Int(CXmlWriter* writer, bool registerNamespaces, const wchar_t* namespaceUri,
                         const CSerializationContext& context, bool isOptionalChoice) const = 0;
  // Reads the object from `element`, whose first unread child is `firstChild` (may be null), and returns the first
  // child that it did not consume (null when none is left).
  virtual CXmlElement* FromXml_Int(CXmlElement* element, CXmlElement* firstChild, const CSerializationContext& context,
                                   bool isOptionalChoice) = 0;

  // The new count. Safe to call from several threads.
  long long AddRef() noexcept { return m_references.Increment(); }
  // The new count; deletes the object when it is 0. Safe to call from several threads.
  long long Release() {
    const long long count = m_references.Decrement();
    if (count == 0) delete this;
    return count;
  }
  // Objects that one read makes lie in blocks of some kilobytes, each of which goes with the last object in it.
  static void* operator new(std::size_t size);
  static void* operator new(std::size_t size, std::align_val_t alignment) { return ::operator new(size, alignment); }
  static void* operator new(std::size_t size, const std::nothrow_t&) noexcept;
  static void* operator new(std::size_t, void* place) noexcept { return place; }
  static void operator delete(void* object) noexcept;
  static void operator delete(void* object, std::align_val_t alignment) noexcept {
    ::operator delete(object, alignment);
  }
  static void operator delete(void* object, const std::nothrow_t&) noexcept { operator delete(object); }
  static void operator delete(void*, void*) noexcept {}

  // The present count, for diagnosis.
  long long GetRefCount() const noexcept { return m_references.Get(); }

  // The local name under which the object was read or is to be written.
  std::wstring GetElementName() const { return m_elementName.Get(); }
  // The same without a copy; valid until the name is set again.
  const std::wstring& GetElementNameRef() const noexcept { return m_elementName.Get(); }
  void SetElementName(const wchar_t* name);
  const CXmlObjectBase* GetBase() const { return const_cast<CXmlObjectBase*>(this)->GetBase(); }

  // Forward to the virtual operations of `object`; for metadata records.
  static void ToXml_Int(const CXmlObjectBase* object, CXmlWriter* writer, bool registerNamespaces,
                        const wchar_t* namespaceUri, const CSerializationContext& context, bool isOptionalChoice);
  static CXmlElement* FromXml_Int(CXmlObjectBase* object, CXmlElement* element, CXmlElement* firstChild,
                                  const CSerializationContext& context);
  static void AttributesToXml_Int(const CXmlObjectBase* object, CXmlWriter* writer,
                                  const CSerializationContext& context);

  // Tell `sink` (never null) about a change of `collection`, which is named as the source.
  static void FireOnCollectionChangeEvent(IEventSink* sink, CXmlCollectionBase* collection);
  static void FireOnCollectionAddEvent(IEventSink* sink, CXmlCollectionBase* collection, void* item);
  static void FireOnCollectionAddCompleteEvent(IEventSink* sink, CXmlCollectionBase* collection, void* item);
  static void FireOnCollectionRemoveEvent(IEventSink* sink, CXmlCollectionBase* collection, int index);
  static void FireOnCollectionRemoveCompleteEvent(IEventSink* sink, CXmlCollectionBase* collection, int index);

  // For the setters of generated choice groups, whose `selected` names the member that is set (empty when none).
  // They throw CRkInvalidStateException when another member is set already.
  static void Choice_SetElementValid(bool valid, const wchar_t* name, std::wstring& selected);
  static void Choice_SelectElement(const wchar_t* name, CXmlObjectBase* value, std::wstring& selected);
  static void Choice_CollectionChanged(const wchar_t* name, long count, std::wstring& selected);
  // Reads a collection member of a repeating choice, unless itemsRead is positive already. Throws
  // CRkInvalidParamException for a null collection.
  static void Choice_Read_Collection(CXmlCollectionBase* collection, CXmlElement* parent, CXmlElement*& current,
                                     long& itemsRead, const CSerializationContext& context);

  // Guards of generated setters; throw CRkInvalidParamException.
  static void Throw_IfPropertyIsNull(CXmlObjectBase* value, const wchar_t* propertyName);
  static void Throw_IfElementNameDiffers(CXmlObjectBase* value, const wchar_t* requiredName);

  // Whether `element` has this name under the context's matching rules.
  bool DoesElementNameMatch(const CSerializationContext& context, const CXmlElement* element, const wchar_t* localName,
                            const wchar_t* namespaceUri) const;
  // Whether a namespace constraint ("##any", "##other", "##local", "##targetNamespace", URIs) admits the URI.
  // TestNamespace throws CRkInvalidNamespaceException when it does not.
  void TestNamespace(const wchar_t* namespaceUri, const wchar_t* constraint, const wchar_t* targetNamespace) const;
  bool IsNamespaceValid(const wchar_t* namespaceUri, const wchar_t* constraint, const wchar_t* targetNamespace) const;

 protected:
  CSharedName m_elementName;

 private:
  CReferenceCount m_references{0};
};

}  // namespace RkXmlLib16

#endif
