#ifndef RKXMLLIB16_BINDING_INTERNAL_PROPERTYACCESS_H
#define RKXMLLIB16_BINDING_INTERNAL_PROPERTYACCESS_H

#include <string>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/NameToken.h"
#include "RkXmlLib16/binding/GeneratedClass.h"
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

}  // namespace RkXmlLib16Data

#endif
