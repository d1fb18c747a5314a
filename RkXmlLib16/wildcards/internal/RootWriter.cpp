#include "RkXmlLib16/wildcards/internal/RootWriter.h"

#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/XmlWriter.h"
#include "RkXmlLib16/wildcards/AttributeCol.h"

namespace RkXmlLib16 {

void WriteRootPrologue(CXmlWriter& writer, const CSerializationContext& context) {
  for (const std::wstring& instruction : context.GetProcessingInstructions()) writer.WritePI(instruction);
  for (const auto& [namespaceUri, alias] : context.GetNamespaceAliases().GetEntries()) {
    writer.AddNamespace(alias, namespaceUri);
  }
  const std::wstring defaultNamespace = context.GetDefaultNamespaceURI();
  if (!defaultNamespace.empty()) writer.SetDefaultNamespace(defaultNamespace);
}

void WriteRootAttributes(CXmlWriter& writer, const CSerializationContext& context, const wchar_t* namespaceUri,
                         bool isOptionalChoice) {
  if (!context.HasAdditionalRootAttributes()) return;
  const CSmartPtr<CAttributeCol> attributes = context.GetAdditionalRootAttributes();
  attributes->ToXml_Int(&writer, false, namespaceUri, context, isOptionalChoice);
}

void WriteRootSchema(CXmlWriter& writer, const CSerializationContext& context) {
  const std::wstring schema = context.GetInLineSchema();
  if (!schema.empty()) writer.WriteInlineSchema(schema);
}

}  // namespace RkXmlLib16
