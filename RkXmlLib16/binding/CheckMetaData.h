#ifndef RKXMLLIB16_BINDING_CHECKMETADATA_H
#define RKXMLLIB16_BINDING_CHECKMETADATA_H

#include <string>
#include <vector>

#include "RkXmlLib16/base/Export.h"

namespace RkXmlLib16 {

class CXmlGeneratedClass;

// One mistake in what a class tells the library about itself.
struct RKXML_EXPORT CMetaDataFault {
  std::wstring className;  // of C++: "Shop::COrder"
  std::wstring record;     // the element or attribute of the record, "@id" for an attribute; empty for the class
  std::wstring fault;

  // "Shop::COrder [line]: the collection has not been created"
  std::wstring GetText() const;
};

// Looks for mistakes in hand-written metadata that would otherwise crash or make a member vanish: property indices that
// the accessor does not know or that two records share, values of another kind than the record says, null factories
// and enumeration functions, factories that know no such class, collections that were not created or are of another
// kind, default values that are not of their type, and objects on the stack that a property or a collection holds (of
// the calling thread only; others cannot be told). Made for unit tests:
//
//   for (const CMetaDataFault& fault : CheckMetaData(order)) ADD_FAILURE() << ToUtf8(fault.GetText());
//
// Goes on with the objects that the object holds and with one of each class that its factories make. The kind of an
// optional value can only be told when it is set. Values that keep to their facets are set again, to themselves, and
// where a collection is missing, BeginFromXml_Int may create it. Throws nothing but std::bad_alloc and what is no
// CRkException.
RKXML_EXPORT std::vector<CMetaDataFault> CheckMetaData(CXmlGeneratedClass& object);

}  // namespace RkXmlLib16

#endif
