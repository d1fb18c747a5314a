#ifndef RKXMLLIB16_BINDING_INTERNAL_PROPERTYACCESS_H
#define RKXMLLIB16_BINDING_INTERNAL_PROPERTYACCESS_H

#include <string>
#include <string_view>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/NameToken.h"
#include "RkXmlLib16/binding/GeneratedClass.h"
#include "RkXmlLib16/binding/ModelObject.h"
#include "RkXmlLib16/object/Variant.h"

namespace RkXmlLib16Data {

// The property that a record called `name` describes. A CRkException of the accessor is wrapped in
// CRkValidationException "Failed to get the property value for [%ls].".
inline void GetProperty(RkXmlLib16::CXmlGeneratedClass& object, int index, const RkXmlLib16::CNameToken& name,
                        RkXmlLib16::RkVariant& value) {
  try {
    object.AccessProperty(index, /*get=*/true, value);
  } catch (const RkXmlLib16::CRkException& e) {
    throw RkXmlLib16::CRkValidationException(
        RkXmlLib16::FormatString(L"Failed to get the property value for [%ls].", name.GetLocalName().c_str()),
        std::wstring(), e);
  }
}

// Sets the property of a value from the text of an element or attribute. What the setter throws is wrapped in
// CRkValidationException "Failed to set the property value." with the path of the node; `isValue` tells it from an
// error of the text.
template <class Node>
void SetModelText(RkXmlLib16::CXmlGeneratedClass& object, int index, std::wstring_view text, const Node& node,
                  bool& isValue) {
  try {
    static_cast<RkXmlLib16::CModelObject&>(object).SetFromText(index, text, isValue);
  } catch (const RkXmlLib16::CRkException& e) {
    if (!isValue) throw;
    throw RkXmlLib16::CRkValidationException(L"Failed to set the property value.", node.GetXPath(), e);
  }
}

}  // namespace RkXmlLib16Data

#endif
