#ifndef RKXMLLIB16_WILDCARDS_INTERNAL_ROOTWRITER_H
#define RKXMLLIB16_WILDCARDS_INTERNAL_ROOTWRITER_H

namespace RkXmlLib16 {

class CSerializationContext;
class CXmlWriter;

// What the context adds to the root element, whatever object is written as root. The three calls stand before the start
// tag, after it, and after the object's own attributes.

// Processing instructions; then the prefixes and the default namespace that the start tag will declare.
void WriteRootPrologue(CXmlWriter& writer, const CSerializationContext& context);
// The additional root attributes.
void WriteRootAttributes(CXmlWriter& writer, const CSerializationContext& context, const wchar_t* namespaceUri,
                         bool isOptionalChoice);
// The in-line schema.
void WriteRootSchema(CXmlWriter& writer, const CSerializationContext& context);

}  // namespace RkXmlLib16

#endif
