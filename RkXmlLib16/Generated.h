// Everything that generated code needs: include this one header in the sources that a generator emits. Its path stays.
#ifndef RKXMLLIB16_GENERATED_H
#define RKXMLLIB16_GENERATED_H

#include "RkXmlLib16/base/Enumerations.h"
#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/SmartPtr.h"
#include "RkXmlLib16/binding/AttributeInfo.h"
#include "RkXmlLib16/binding/ClassFactory.h"
#include "RkXmlLib16/binding/ElementInfoAll.h"
#include "RkXmlLib16/binding/ElementInfoChoice.h"
#include "RkXmlLib16/binding/ElementInfoSeq.h"
#include "RkXmlLib16/binding/GeneratedClass.h"
#include "RkXmlLib16/binding/Model.h"
#include "RkXmlLib16/binding/ModelObject.h"
#include "RkXmlLib16/binding/ParentElementInfo.h"
#include "RkXmlLib16/binding/SimpleTypeModel.h"
#include "RkXmlLib16/collections/Collection.h"
#include "RkXmlLib16/collections/ObjectCollection.h"
#include "RkXmlLib16/collections/ValueCollections.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/document/XmlWriter.h"
#include "RkXmlLib16/facets/FacetChecks.h"
#include "RkXmlLib16/object/Variant.h"
#include "RkXmlLib16/types/Conversions.h"
#include "RkXmlLib16/wildcards/AttributeCol.h"
#include "RkXmlLib16/wildcards/Element.h"
#include "RkXmlLib16/wildcards/ElementCol.h"

// The version of the contract between generated code and the library. It rises when classes must be generated again:
//   static_assert(RKXML_GENERATED_VERSION == 1, "generate these classes again");
#define RKXML_GENERATED_VERSION 1

#endif
