#ifndef RKXMLLIB16_SCHEMA_BIND_INTERNAL_VALUES_H
#define RKXMLLIB16_SCHEMA_BIND_INTERNAL_VALUES_H

#include "schema/bind/Binding.h"

namespace RkXmlSchema {

// How values of the simple type are held.
ValueBinding BindValue(const SimpleTypeDefinition& type);

}  // namespace RkXmlSchema

#endif
