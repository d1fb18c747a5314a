#ifndef RKXMLLIB16_SCHEMA_COMPONENTS_INTERNAL_XSD_H
#define RKXMLLIB16_SCHEMA_COMPONENTS_INTERNAL_XSD_H

#include "RkXmlLib16/types/XsdLexical.h"

namespace RkXmlSchema {

using namespace RkXmlLib16::Xsd;

}  // namespace RkXmlSchema

#endif
