#ifndef RKXMLLIB16_BINDING_CLASSFACTORY_H
#define RKXMLLIB16_BINDING_CLASSFACTORY_H

#include <string>

#include "RkXmlLib16/base/Export.h"

namespace RkXmlLib16 {

class CXmlElement;

// The base of the factory that generated code supplies to create the object for an element whose class is known only
// when it is read. It tells which type an element names by xsi:type (XML Schema Part 1).
//
//   <item xsi:type="p:Book" xmlns:p="urn:books"/>   GetElementType is "Book", GetElementTypeNamespaceUri "urn:books"
class RKXML_EXPORT CClassfactoryBase {
 public:
  virtual ~CClassfactoryBase();

  // The local part of xsi:type; empty without the attribute. Both throw CRkInvalidParamException for a null element.
  static std::wstring GetElementType(CXmlElement* element);
  // The namespace that the document binds to the prefix of xsi:type; without a prefix, or with one that the document
  // does not declare, the element's own namespace.
  static std::wstring GetElementTypeNamespaceUri(CXmlElement* element);
};

}  // namespace RkXmlLib16

#endif
