#include <cwchar>
#include <string>
#include <utility>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/internal/TextOrEmpty.h"
#include "RkXmlLib16/binding/AttributeInfo.h"
#include "RkXmlLib16/binding/ElementInfo.h"
#include "RkXmlLib16/binding/GeneratedClass.h"
#include "RkXmlLib16/binding/ModelObject.h"
#include "RkXmlLib16/binding/ParentElementInfo.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/internal/RecordOutput.h"
#include "RkXmlLib16/object/Variant.h"
#include "RkXmlLib16/wildcards/internal/RootWriter.h"

namespace RkXmlLib16 {

using RkXmlLib16Data::CAttributeInfo;
using RkXmlLib16Data::CElementInfo;
using RkXmlLib16Data::CParentElementInfo;

namespace {

bool HasSimpleContent(const CParentElementInfo& info) {
  return info.GetSimpleContentProperty() != -1 && info.GetSimpleContentType() != ItemType_none;
}

// xsi:nil can only be written while the start tag is open, that is before a schema.
[[gnu::noinline]] bool IsContentNil(const CXmlGeneratedClass& object, const CParentElementInfo& info) {
  if (!HasSimpleContent(info)) return false;
  RkVariant value;
  object.ReadProperty(info.GetSimpleContentProperty(), value);
  return value.IsNil();
}

// These two stand apart, so that the objects inside each other do not all have the space for them on the stack.
[[noreturn, gnu::cold, gnu::noinline]] void ThrowNotWritten(const CXmlGeneratedClass& object, CRkException& e) {
  throw CRkValidationException(
      FormatString(L"Failed to convert the element [%ls] to XML", object.GetElementNameRef().c_str()), std::wstring(),
      std::move(e));
}

[[gnu::noinline]] void StartElement(CXmlWriter& writer, const std::wstring& name, const wchar_t* namespaceUri) {
  writer.StartElement(name, namespaceUri);
}

// Puts the element before the path of an error of writing, which ends with the member that was refused.
[[gnu::cold, gnu::noinline]] void AddToPath(CRkException& error, const std::wstring& name) {
  std::wstring path = error.GetLocation().GetPath();
  if (path.empty() && error.GetRefusedValue() != nullptr) path = L'/' + error.GetRefusedValue()->name;
  error.SetLocation(CRkLocation(L'/' + name + path));
}

}  // namespace

void CXmlGeneratedClass::ToXml_Int(CXmlWriter* writer, bool registerNamespaces, const wchar_t* namespaceUri,
                                   const CSerializationContext& context, bool isOptionalChoice) const {
  try {
    WriteElement(writer, registerNamespaces, namespaceUri, context, isOptionalChoice);
  } catch (CRkException& e) {
    if (GetClassInfo()->GetElementType() == XmlElementType_Element) AddToPath(e, GetElementNameRef());
    ThrowNotWritten(*this, e);
  }
}

void CXmlGeneratedClass::WriteElement(CXmlWriter* writer, bool registerNamespaces, const wchar_t* namespaceUri,
                                      const CSerializationContext& context, bool isOptionalChoice) const {
  const CParentElementInfo& info = *GetClassInfo();
  const bool ownElement = info.GetElementType() == XmlElementType_Element;
  const bool nil = IsNil(info);

  if (ownElement) {
    if (registerNamespaces) WriteRootPrologue(*writer, context);
    // Most elements are in the namespace of their class, whose text is at hand.
    const wchar_t* const uri = TextOrEmpty(namespaceUri);
    if (info.GetNamespace().c_str() == uri || std::wcscmp(info.GetNamespace().c_str(), uri) == 0)
      CRecordOutput::WriteStart(*writer, GetElementNameRef(), info.GetNamespace());
    else
      RkXmlLib16::StartElement(*writer, GetElementNameRef(), uri);
    if (registerNamespaces) WriteRootAttributes(*writer, context, namespaceUri, isOptionalChoice);
    AttributesToXml_Int(writer, context);
    if (registerNamespaces && !nil && !IsContentNil(*this, info)) WriteRootSchema(*writer, context);
  }
  if (nil)
    writer->WriteAttributeNil();
  else
    WriteContent(writer, context, info, isOptionalChoice);
  if (ownElement) CRecordOutput::WriteEnd(*writer);
}

inline void CXmlGeneratedClass::WriteContent(CXmlWriter* writer, const CSerializationContext& context,
                                             const CParentElementInfo& info, bool isOptionalChoice) const {
  CElementInfo** const infos = GetClassElementInfo();
  switch (info.GetGroupType()) {
    case XmlElementGroupType_Sequence:
      ProcessElementSeqToXml(context, infos, writer);
      break;
    case XmlElementGroupType_Choice:
      ProcessElementChoiceToXml(context, infos, writer, isOptionalChoice);
      break;
    case XmlElementGroupType_All:
      ProcessElementAllToXml(context, infos, writer);
      break;
    default:
      throw CRkException(L"Unknown XML Group Type");
  }
  if (HasSimpleContent(info)) WriteSimpleContent(writer, info);
}

namespace {

void WriteContentText(CXmlWriter& writer, const RkVariant& value, const std::wstring& format) {
  if (value.GetItemType() == ItemType_string) return writer.WriteString(value.GetString(), ItemType_string);
  std::wstring& text = writer.GetValueBuffer();
  text.clear();
  value.AppendTo(text, format.c_str());
  writer.WriteString(text, value.GetItemType());
}

}  // namespace

void CXmlGeneratedClass::WriteSimpleContent(CXmlWriter* writer, const CParentElementInfo& info) const {
  RkVariant& value = writer->BeginValue();
  ReadProperty(info.GetSimpleContentProperty(), value);
  if (value.IsNil()) {
    writer->WriteAttributeNil();
  } else {
    WriteContentText(*writer, value, info.GetSimpleContentFormat());
    value.SetUnused();
  }
}

inline const CModelObject* CXmlGeneratedClass::AsModel(CElementInfo** infos) const {
  if (!GetClassInfo()->IsOfModel()) return nullptr;
  const auto* const model = static_cast<const CModelObject*>(this);
  return model->CModelObject::GetClassElementInfo() == infos ? model : nullptr;
}

inline void CXmlGeneratedClass::ProcessElementSeqToXml(const CSerializationContext& context, CElementInfo** infos,
                                                       CXmlWriter* writer) const {
  if (const CModelObject* const model = AsModel(infos))
    model->WriteMembers(context, writer, /*isChoice=*/false);
  else if (infos != nullptr)
    WriteRecords(context, infos, writer);
}

void CXmlGeneratedClass::WriteRecords(const CSerializationContext& context, CElementInfo** infos,
                                      CXmlWriter* writer) const {
  RkVariant* value = nullptr;  // unused, if it is there
  for (CElementInfo** info = infos; *info != nullptr; ++info) {
    const CElementInfo& record = **info;
    if (!record.IsPlainValue()) {
      record.ElementToXml(context, this, writer);
      value = nullptr;
      continue;
    }
    // Most optional values of most objects are absent: that is found out here.
    if (value == nullptr) value = &writer->BeginValue();
    record.ReadProperty(this, *value);
    if (!value->IsValid()) continue;
    record.WriteValue(context, *value, writer);
    value = nullptr;
  }
}

inline void CXmlGeneratedClass::ProcessElementAllToXml(const CSerializationContext& context, CElementInfo** infos,
                                                       CXmlWriter* writer) const {
  ProcessElementSeqToXml(context, infos, writer);
}

void CXmlGeneratedClass::ProcessElementChoiceToXml(const CSerializationContext& context, CElementInfo** infos,
                                                   CXmlWriter* writer, bool isOptionalChoice) const {
  if (const CModelObject* const model = AsModel(infos)) {
    if (model->WriteMembers(context, writer, /*isChoice=*/true)) return;
  } else {
    for (CElementInfo** info = infos; info != nullptr && *info != nullptr; ++info)
      if ((*info)->ElementToXml(context, this, writer)) return;
  }
  if (!DoesElementContainOptionalElements() && !isOptionalChoice && !context.GetIgnoreMissingChoice())
    throw CRkValidationException(
        L"This element is a choice, and as such must have at one (and only one) valid item, "  // sic
        L"currently there are none set",
        std::wstring());
}

void CXmlGeneratedClass::AttributesToXml_Int(CXmlWriter* writer, const CSerializationContext& context) const {
  try {
    const CParentElementInfo& info = *GetClassInfo();
    if (context.GetWriteTypeAttribute() && info.GetElementType() == XmlElementType_Element &&
        GetElementNameRef() != info.GetElementName())
      writer->WriteAttributeType(info.GetNamespace(), info.GetElementName(), ItemType_string);
    ProcessAttributesToXml(context, GetClassElementInfo(), GetClassAttributeInfo(), writer);
  } catch (const CRkException& e) {
    throw CRkException(L"Failed to convert attributes to XML", e);
  }
}

void CXmlGeneratedClass::ProcessAttributesToXml(const CSerializationContext& context, CElementInfo** elementInfos,
                                                CAttributeInfo** attributeInfos, CXmlWriter* writer) const {
  for (CAttributeInfo** info = attributeInfos; info != nullptr && *info != nullptr; ++info)
    (*info)->AttributeToXml(context, this, writer);
  if (elementInfos == nullptr) return;
  for (CElementInfo** info = elementInfos; *info != nullptr; ++info)
    if ((*info)->MayHaveAttributes()) (*info)->PseudoChildAttributeToXml(context, this, writer);
}

}  // namespace RkXmlLib16
