#ifndef RKXMLLIB16_XML_EXPATREADER_H
#define RKXMLLIB16_XML_EXPATREADER_H

#include <cstddef>
#include <cstdint>
#include <memory>

#include "RkXmlLib16/base/Export.h"

namespace RkXmlLib16 {

class CXmlDocument;

// Parses the input of a document as XML text (W3C XML 1.0, Namespaces in XML 1.0) into its tree. The encoding is told
// by the byte order mark or the XML declaration, else it is UTF-8. External entities are not fetched.
//
//   CExpatReader reader(document);
//   reader.CreateParser();
//   reader.Parse(/*isFinal=*/true);
class RKXML_EXPORT CExpatReader {
 public:
  explicit CExpatReader(CXmlDocument& document);  // kept
  CExpatReader(const CExpatReader&) = delete;
  CExpatReader& operator=(const CExpatReader&) = delete;
  virtual ~CExpatReader();

  // Without namespace processing when the document's schema type is SchemaType_NoNamespaces: prefixes then stay part
  // of the names, and declarations are attributes.
  void CreateParser();
  // Parses the document's whole input. Throws CRkException "%ls at line %d" with the parser's description of what is
  // wrong, or that a namespace URI contains '|', and "Limit exceeded: ..." by the limits of the document's context;
  // what was read before stays in the document.
  void Parse(bool isFinal);
  // The same in pieces, for a document that is read so: parses the next `length` bytes (INT_MAX at most) after
  // CreateParser. True when the document has paused; Resume then goes on with what is left of them.
  bool ParsePiece(const unsigned char* bytes, std::size_t length, bool isFinal);
  bool Resume();
  // Of what was parsed last, in bytes; what comes before is not needed any more.
  std::uint64_t GetOffset() const;
  void Cleanup();

 private:
  struct Parser;

  template <class Work>
  auto WithLocation(Work&& work);

  CXmlDocument& m_document;
  std::unique_ptr<Parser> m_parser;
};

}  // namespace RkXmlLib16

#endif
