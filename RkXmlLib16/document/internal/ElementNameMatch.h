#ifndef RKXMLLIB16_DOCUMENT_INTERNAL_ELEMENTNAMEMATCH_H
#define RKXMLLIB16_DOCUMENT_INTERNAL_ELEMENTNAMEMATCH_H

#include <string_view>

#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/ElementTree.h"

namespace RkXmlLib16 {

// Whether the element bears this name: equal local names and, unless the context ignores namespaces, equal namespace
// URIs. A null element matches nothing.
inline bool ElementNameMatches(const CSerializationContext& context, const CXmlElement* element,
                               std::wstring_view localName, std::wstring_view namespaceUri) {
  return element != nullptr && element->GetLocalName() == localName &&
         (element->GetNamespaceURI() == namespaceUri || context.GetIgnoreNamespaces());
}

}  // namespace RkXmlLib16

#endif
