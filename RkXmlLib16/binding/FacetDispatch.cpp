#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/facets/FacetChecks.h"
#include "RkXmlLib16/object/Variant.h"

namespace RkXmlLib16 {

void CXmlObjectHelper::CheckRestriction(const wchar_t* name, const RkVariant& value, ItemType type,
                                        const CPrimitiveRestrictions& facets) {
  switch (type) {
#define RKXML_CHECK(Kind, Name, Property, Value) \
  case ItemType_##Kind:                          \
    return CheckRestrictionFor##Name(name, value.Get##Property(), facets);
#define RKXML_NO_CHECK(Kind, Name, Property, Value) \
  case ItemType_##Kind:                             \
    return;
    RKXML_XSD_TYPES(RKXML_CHECK, RKXML_CHECK, RKXML_NO_CHECK)
#undef RKXML_CHECK
#undef RKXML_NO_CHECK
    case ItemType_none:
      break;
  }
  throw CRkException(FormatString(L"Invalid Type %d", static_cast<int>(type)));
}

}  // namespace RkXmlLib16
