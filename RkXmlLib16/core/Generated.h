// Everything that generated code needs: include this one header in the sources that a generator emits.
#ifndef RKXMLLIB16_CORE_GENERATED_H
#define RKXMLLIB16_CORE_GENERATED_H

#include "RkXmlLib16/collections/Collection.h"
#include "RkXmlLib16/collections/ObjectCollection.h"
#include "RkXmlLib16/collections/ValueCollections.h"
#include "RkXmlLib16/core/ClassFactory.h"
#include "RkXmlLib16/core/Enumerations.h"
#include "RkXmlLib16/core/Exception.h"
#include "RkXmlLib16/core/GeneratedClass.h"
#include "RkXmlLib16/core/SerializationContext.h"
#include "RkXmlLib16/core/SmartPtr.h"
#include "RkXmlLib16/metadata/AttributeInfo.h"
#include "RkXmlLib16/metadata/ElementInfoAll.h"
#include "RkXmlLib16/metadata/ElementInfoChoice.h"
#include "RkXmlLib16/metadata/ElementInfoSeq.h"
#include "RkXmlLib16/metadata/FacetChecks.h"
#include "RkXmlLib16/metadata/ParentElementInfo.h"
#include "RkXmlLib16/support/Format.h"
#include "RkXmlLib16/types/Conversions.h"
#include "RkXmlLib16/types/Variant.h"
#include "RkXmlLib16/wildcards/AttributeCol.h"
#include "RkXmlLib16/wildcards/Element.h"
#include "RkXmlLib16/wildcards/ElementCol.h"
#include "RkXmlLib16/xml/ElementTree.h"
#include "RkXmlLib16/xml/XmlWriter.h"

// The version of the contract between generated code and the library. It rises when classes must be generated again:
//   static_assert(RKXML_GENERATED_VERSION == 1, "generate these classes again");
#define RKXML_GENERATED_VERSION 1

#endif
