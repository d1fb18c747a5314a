#ifndef RKXMLLIB16_XML_INTERNAL_PLAINSCANNER_H
#define RKXMLLIB16_XML_INTERNAL_PLAINSCANNER_H

namespace RkXmlLib16 {

class CXmlDocument;

// Builds the tree straight from the input of the document if that is XML text of the plain case: UTF-8, well-formed
// with its namespaces, without a document type declaration, within all limits. The tree, its locations and what is
// noted as dropped are then those that CExpatReader makes, in a fraction of the time. False for anything else, errors
// included: the document is empty again, and its input is left to CExpatReader.
// `standsFor`: what the input is to be seen as when places in it are told; Utf16 for one of ASCII that stands for text
// in UTF-16 with a byte order mark, which declares no encoding.
enum class ScannedAs { Itself, Utf16 };
bool ScanPlainXml(CXmlDocument& document, ScannedAs standsFor = ScannedAs::Itself);

}  // namespace RkXmlLib16

#endif
