#ifndef RKXMLLIB16_XML_INTERNAL_PLAINSCANNER_H
#define RKXMLLIB16_XML_INTERNAL_PLAINSCANNER_H

namespace RkXmlLib16 {

class CXmlDocument;

// Builds the tree straight from the input of the document if that is XML text of the plain case: UTF-8, well-formed
// with its namespaces, without a document type declaration, within all limits. The tree, its locations and what is
// noted as dropped are then those that CExpatReader makes, in a fraction of the time. False for anything else, errors
// included: the document is empty again, and its input is left to CExpatReader.
bool ScanPlainXml(CXmlDocument& document);

}  // namespace RkXmlLib16

#endif
