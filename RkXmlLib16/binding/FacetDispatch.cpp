#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/facets/FacetChecks.h"
#include "RkXmlLib16/object/Variant.h"

namespace RkXmlLib16 {

void CXmlObjectHelper::CheckRestriction(const wchar_t* name, const RkVariant& value, ItemType type,
                                        const CPrimitiveRestrictions& facets) {
  switch (type) {
    case ItemType_hexBinary:
      return CheckRestrictionForhexBinary(name, value.GetHexBinary(), facets);
    case ItemType_base64Binary:
      return CheckRestrictionForbase64Binary(name, value.GetBase64Binary(), facets);
    case ItemType_byte:
      return CheckRestrictionFori1(name, value.GetI1(), facets);
    case ItemType_short:
      return CheckRestrictionFori2(name, value.GetI2(), facets);
    case ItemType_int:
      return CheckRestrictionFori4(name, value.GetI4(), facets);
    case ItemType_long:
      return CheckRestrictionFori8(name, value.GetI8(), facets);
    case ItemType_unsignedByte:
      return CheckRestrictionForui1(name, value.GetUI1(), facets);
    case ItemType_unsignedShort:
      return CheckRestrictionForui2(name, value.GetUI2(), facets);
    case ItemType_unsignedInt:
      return CheckRestrictionForui4(name, value.GetUI4(), facets);
    case ItemType_unsignedLong:
      return CheckRestrictionForui8(name, value.GetUI8(), facets);
    case ItemType_float:
      return CheckRestrictionForr4(name, value.GetR4(), facets);
    case ItemType_double:
      return CheckRestrictionForr8(name, value.GetR8(), facets);
    case ItemType_duration:
      return CheckRestrictionForduration(name, value.GetDuration(), facets);
    case ItemType_gYearMonth:
      return CheckRestrictionForyearMonth(name, value.GetYearMonth(), facets);
    case ItemType_gMonthDay:
      return CheckRestrictionFormonthDay(name, value.GetMonthDay(), facets);
    case ItemType_gYear:
      return CheckRestrictionForyear(name, value.GetYear(), facets);
    case ItemType_gMonth:
      return CheckRestrictionFormonth(name, value.GetMonth(), facets);
    case ItemType_gDay:
      return CheckRestrictionForday(name, value.GetDay(), facets);
    case ItemType_date:
      return CheckRestrictionFordate(name, value.GetDate(), facets);
    case ItemType_dateTime:
      return CheckRestrictionFordatetime(name, value.GetDateTime(), facets);
    case ItemType_time:
      return CheckRestrictionFortime(name, value.GetTime(), facets);
    case ItemType_char:  // no check of its own
      return;
    case ItemType_string:
      return CheckRestrictionForstring(name, value.GetString(), facets);
    case ItemType_boolean:
      return CheckRestrictionForboolean(name, value.GetBoolean(), facets);
    case ItemType_decimal:
      return CheckRestrictionFordecimal(name, value.GetDecimal(), facets);
    case ItemType_integer:
      return CheckRestrictionForinteger(name, value.GetInteger(), facets);
    case ItemType_none:
      break;
  }
  throw CRkException(FormatString(L"Invalid Type %d", static_cast<int>(type)));
}

}  // namespace RkXmlLib16
