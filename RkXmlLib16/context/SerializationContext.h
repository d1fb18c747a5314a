#ifndef RKXMLLIB16_CONTEXT_SERIALIZATIONCONTEXT_H
#define RKXMLLIB16_CONTEXT_SERIALIZATIONCONTEXT_H

#include <list>
#include <string>

#include "RkXmlLib16/base/Enumerations.h"
#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/base/LazyPart.h"
#include "RkXmlLib16/base/SmartPtr.h"
#include "RkXmlLib16/context/NamespaceAliasMap.h"
#include "RkXmlLib16/context/ReadLimits.h"

namespace RkXmlLib16 {

class CAttributeCol;
class CFastInfosetContext;
class CJsonContext;
class CXmlDocument;
class CRkException;
class IErrorHandler;

// The settings of a reading or writing call: leniency of the reader, choices of the writers, prefixes, extra content of
// the root element. A value type; one context serves one call at a time.
//
//   CSerializationContext ctx;
//   ctx.SetIgnoreUnknownElements(true);
//   ctx.GetNamespaceAliases().Add(L"x", L"urn:x");
//   order.FromXmlFile(L"order.xml", ctx);
class RKXML_EXPORT CSerializationContext {
 public:
  CSerializationContext();
  // Copies the settings; the extra root attributes and the working contexts of JSON and Fast Infoset are shared.
  CSerializationContext(const CSerializationContext& other);
  CSerializationContext& operator=(const CSerializationContext& other);
  virtual ~CSerializationContext();

  // Used wherever no context is given. It stays as it is when the process ends: threads that still run, and destructors
  // of static objects, may use it.
  static CSerializationContext m_defaultContext;

  // Reading: drop attributes that the class does not know.
  bool GetIgnoreUnknownAttributes() const noexcept { return m_settings.ignoreUnknownAttributes; }
  void SetIgnoreUnknownAttributes(bool ignore) noexcept { m_settings.ignoreUnknownAttributes = ignore; }
  // Reading: skip elements that the class does not know. Throws CRkInvalidStateException when missing mandatory
  // elements are ignored already: with both, a misplaced element could silently stand for a missing one.
  bool GetIgnoreUnknownElements() const noexcept { return m_settings.ignoreUnknownElements; }
  void SetIgnoreUnknownElements(bool ignore);
  // Reading: accept that mandatory elements are absent. Throws CRkInvalidStateException when unknown elements are
  // ignored already.
  bool GetIgnoreMissingMandatoryElements() const noexcept { return m_settings.ignoreMissingMandatoryElements; }
  void SetIgnoreMissingMandatoryElements(bool ignore);
  // Accept a choice with no member set.
  bool GetIgnoreMissingChoice() const noexcept { return m_settings.ignoreMissingChoice; }
  void SetIgnoreMissingChoice(bool ignore) noexcept { m_settings.ignoreMissingChoice = ignore; }
  // Do not enforce the occurrence limits of collections.
  bool GetIgnoreInvalidCollectionCounts() const noexcept { return m_settings.ignoreInvalidCollectionCounts; }
  void SetIgnoreInvalidCollectionCounts(bool ignore) noexcept { m_settings.ignoreInvalidCollectionCounts = ignore; }
  // Reading: match names without their namespaces. Also true for schema type 2.
  bool GetIgnoreNamespaces() const noexcept {
    return m_settings.ignoreNamespaces || m_settings.schemaType == SchemaType_NoNamespaces;
  }
  void SetIgnoreNamespaces(bool ignore) noexcept { m_settings.ignoreNamespaces = ignore; }
  // The flag alone, without the schema type.
  bool GetIgnoreNamespacesFlag() const noexcept { return m_settings.ignoreNamespaces; }
  SchemaType GetSchemaType() const noexcept { return m_settings.schemaType; }
  void SetSchemaType(SchemaType type) noexcept { m_settings.schemaType = type; }
  // Writing: leave out an optional attribute whose value is its default.
  bool GetNoOptionalAttributeDefaultOutput() const noexcept { return m_settings.noOptionalAttributeDefaultOutput; }
  void SetNoOptionalAttributeDefaultOutput(bool omit) noexcept { m_settings.noOptionalAttributeDefaultOutput = omit; }
  // Writing: write the text of an element that holds its default (otherwise the element is written empty).
  bool GetWriteDefaultElementValues() const noexcept { return m_settings.writeDefaultElementValues; }
  void SetWriteDefaultElementValues(bool write) noexcept { m_settings.writeDefaultElementValues = write; }
  // Writing: mark objects of a derived type with xsi:type.
  bool GetWriteTypeAttribute() const noexcept { return m_settings.writeTypeAttribute; }
  void SetWriteTypeAttribute(bool write) noexcept { m_settings.writeTypeAttribute = write; }
  // Writing: refuse what a reader would not give back as it was, in every form, with CRkException "Refused to write
  // ...": names, namespaces and prefixes that XML does not have, characters that it cannot hold, carriage returns in
  // text, a second attribute of one name, markup that is not well-formed. JSON is strict then, and a tab in an
  // attribute is written as "&#9;", also by the conversion of JSON while it is read. Comments, processing instructions
  // and in-line schemas are no part of what readers give back: JSON and Fast Infoset leave them out. Off at first.
  bool GetWellFormedOutput() const noexcept { return m_settings.wellFormedOutput; }
  void SetWellFormedOutput(bool refuse) noexcept { m_settings.wellFormedOutput = refuse; }
  // Reading: refuse documents with a document type declaration, of any form, before anything in it is looked at. Off at
  // first. The reader throws CRkException "A document type declaration is not allowed ...".
  bool GetRefuseDocumentType() const noexcept { return m_settings.refuseDocumentType; }
  void SetRefuseDocumentType(bool refuse) noexcept { m_settings.refuseDocumentType = refuse; }
  // Reading: deliver CDATA sections as plain text (otherwise the text keeps the "<![CDATA[" and "]]>" marks).
  bool GetStripCDATA() const noexcept { return m_settings.stripCDATA; }
  void SetStripCDATA(bool strip) noexcept { m_settings.stripCDATA = strip; }
  // Writing XML text: escape values that begin with "<![CDATA[" like all others; use it for untrusted values. Otherwise
  // such a value is taken for a finished section and written unchanged. CElement knows its sections and needs no
  // setting.
  bool GetEscapeCDATA() const noexcept { return m_settings.escapeCDATA; }
  void SetEscapeCDATA(bool escape) noexcept { m_settings.escapeCDATA = escape; }
  // Reading: one character for each surrogate pair that XML or JSON text arrives with (see docs/xml.md), as Fast
  // Infoset gives it; FromXml(const wchar_t*) then takes characters above U+FFFF whole. Off at first.
  bool GetJoinSurrogatePairs() const noexcept { return m_settings.joinSurrogatePairs; }
  void SetJoinSurrogatePairs(bool join) noexcept { m_settings.joinSurrogatePairs = join; }
  // Reading XML text and JSON: plain documents in UTF-8, those with a document type declaration excepted, take code
  // paths of their own, several times as fast as the general ones, which read all others and tell all errors. What is
  // read is the same; this is for those who want to see that. On at first.
  bool GetScanPlainXml() const noexcept { return m_settings.scanPlainXml; }
  void SetScanPlainXml(bool scan) noexcept { m_settings.scanPlainXml = scan; }
  // Writing: the namespace that the root element declares as default and that is written without prefix.
  std::wstring GetDefaultNamespaceURI() const { return m_settings.defaultNamespaceUri; }
  void SetDefaultNamespaceURI(const wchar_t* namespaceUri);
  // Writing: schema text placed unchanged inside the root element.
  std::wstring GetInLineSchema() const { return m_settings.inLineSchema; }
  void SetInLineSchema(const wchar_t* schemaText);
  // Writing: the text repeated once per nesting level; tabs and blanks only, null for none. One tab at first.
  // Throws CRkInvalidParamException and keeps the old text.
  std::wstring GetIndentChars() const { return m_settings.indentChars; }
  void SetIndentChars(const wchar_t* text);

  // Writing: the prefixes declared on the root element. Edit in place.
  CNamespaceAliasMap& GetNamespaceAliases() noexcept { return m_settings.namespaceAliases; }
  const CNamespaceAliasMap& GetNamespaceAliases() const noexcept { return m_settings.namespaceAliases; }
  // Writing: adds the prefixes that `document` declares, and its default namespace unless one of its elements has no
  // namespace, so that what is written looks like what was read. What is set here already stays.
  // Implemented in document/TakeNamespaces.cpp.
  void TakeNamespaces(const CXmlDocument& document);
  // Writing: processing instructions, each a whole text such as L"<?go now?>", before the root element. Edit in place.
  std::list<std::wstring>& GetProcessingInstructions() noexcept { return m_settings.processingInstructions; }
  const std::list<std::wstring>& GetProcessingInstructions() const noexcept {
    return m_settings.processingInstructions;
  }
  // Writing: extra attributes of the root element, of any namespace. Created on first use, always the same collection.
  // Implemented in wildcards/AttributeCol.cpp.
  CSmartPtr<CAttributeCol> GetAdditionalRootAttributes() const;
  // Whether GetAdditionalRootAttributes was called on this context or on the one it was copied from.
  bool HasAdditionalRootAttributes() const;

  // Settings of JSON and of Fast Infoset. Created on first use; owned by this context and its copies together.
  CFastInfosetContext* GetFIContext() const;
  CJsonContext* GetJsonContext() const;

  // Reading: how much a document may ask for. Edit in place.
  CReadLimits& GetLimits() noexcept { return m_settings.limits; }
  const CReadLimits& GetLimits() const noexcept { return m_settings.limits; }

  // Reading: who is told of errors and of what is left out, and says whether reading goes on. Borrowed, null for
  // nobody: the first error is then thrown. Copies of the context have it too. One thread at a time may read a document
  // with a handler.
  IErrorHandler* GetErrorHandler() const noexcept { return m_settings.errorHandler; }
  void SetErrorHandler(IErrorHandler* handler) noexcept { m_settings.errorHandler = handler; }
  // For code that reads, such as a collection of its own: tells the handler of an error, unless it belongs to an
  // attempt at a group that is taken back. Whether reading goes on; when not (or without a handler) the caller throws
  // the error.
  bool TellError(const CRkException& error) const;

 private:
  struct Settings {
    CLazyPart<CFastInfosetContext> fastInfosetContext;
    CLazyPart<CJsonContext> jsonContext;
    std::wstring defaultNamespaceUri;
    bool writeTypeAttribute = true;
    CNamespaceAliasMap namespaceAliases;
    CLazyPart<CAttributeCol> additionalRootAttributes;  // holds one reference, which it releases
    std::list<std::wstring> processingInstructions;
    std::wstring inLineSchema;
    bool ignoreInvalidCollectionCounts = false;
    bool ignoreMissingChoice = false;
    bool ignoreMissingMandatoryElements = false;
    bool ignoreUnknownElements = false;
    bool ignoreUnknownAttributes = false;
    bool ignoreNamespaces = false;
    SchemaType schemaType = SchemaType_Xsd;
    bool noOptionalAttributeDefaultOutput = false;
    bool writeDefaultElementValues = false;
    bool wellFormedOutput = false;
    bool refuseDocumentType = false;
    bool stripCDATA = true;
    bool escapeCDATA = false;
    bool joinSurrogatePairs = false;
    bool scanPlainXml = true;
    std::wstring indentChars = L"\t";
    CReadLimits limits;
    IErrorHandler* errorHandler = nullptr;
  };

  Settings m_settings;
};

}  // namespace RkXmlLib16

#endif
