#ifndef RKXMLLIB16_FACETS_FACETCHECKS_H
#define RKXMLLIB16_FACETS_FACETCHECKS_H

#include <string>

#include "RkXmlLib16/base/Enumerations.h"
#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/facets/PrimitiveRestrictions.h"

namespace RkXmlLib16 {

class CBigInteger;
class CBinaryData;
class CDateTime;
class CDateTimeSpan;
class CDecimal;
class CSerializationContext;
class CXmlElement;
class RkVariant;

// Static checks of values against facets, of namespaces against constraints and of element names.
//
// Implemented in facets/; CheckRestriction, which knows the variant, in binding/FacetDispatch.cpp, DoesElementNameMatch
// in document/internal/ElementNameMatch.cpp.
class RKXML_EXPORT CXmlObjectHelper {
 public:
  // CheckRestrictionFor<type>: returns when the value satisfies every set facet that its type knows, else throws
  // CRkException "Invalid Value for %ls [...]" with `name`, the name of the element or attribute. A bound that cannot
  // be read throws what its conversion throws. totalDigits counts the characters of the lexical form of an integer, the
  // sign included.
  //
  //   CXmlObjectHelper::CheckRestrictionFori4(L"Quantity", 12, CPrimitiveRestrictions(nullptr, -1, -1, L"1", L"99",
  //                                           nullptr, nullptr, -1, -1, -1));
  static void CheckRestrictionFori1(const wchar_t* name, char value, const CPrimitiveRestrictions& facets);
  static void CheckRestrictionFori2(const wchar_t* name, short value, const CPrimitiveRestrictions& facets);
  static void CheckRestrictionFori4(const wchar_t* name, long value, const CPrimitiveRestrictions& facets);
  static void CheckRestrictionFori8(const wchar_t* name, long long value, const CPrimitiveRestrictions& facets);
  static void CheckRestrictionForui1(const wchar_t* name, unsigned char value, const CPrimitiveRestrictions& facets);
  static void CheckRestrictionForui2(const wchar_t* name, unsigned short value, const CPrimitiveRestrictions& facets);
  static void CheckRestrictionForui4(const wchar_t* name, unsigned long value, const CPrimitiveRestrictions& facets);
  static void CheckRestrictionForui8(const wchar_t* name, unsigned long long value,
                                     const CPrimitiveRestrictions& facets);
  static void CheckRestrictionForr4(const wchar_t* name, float value, const CPrimitiveRestrictions& facets);
  static void CheckRestrictionForr8(const wchar_t* name, double value, const CPrimitiveRestrictions& facets);
  static void CheckRestrictionForyear(const wchar_t* name, unsigned short value, const CPrimitiveRestrictions& facets);
  static void CheckRestrictionFormonth(const wchar_t* name, unsigned char value, const CPrimitiveRestrictions& facets);
  static void CheckRestrictionForday(const wchar_t* name, unsigned char value, const CPrimitiveRestrictions& facets);
  // Always passes.
  static void CheckRestrictionForboolean(const wchar_t* name, bool value, const CPrimitiveRestrictions& facets);
  // totalDigits counts the digits of both parts, fractionDigits those of the fraction.
  static void CheckRestrictionFordecimal(const wchar_t* name, const CDecimal& value,
                                         const CPrimitiveRestrictions& facets);
  static void CheckRestrictionForinteger(const wchar_t* name, const CBigInteger& value,
                                         const CPrimitiveRestrictions& facets);
  // Lengths and pattern. An invalid pattern throws "%ls\nInvalid Value for %ls [%ls]." with the full message of the
  // pattern's error in front.
  static void CheckRestrictionForstring(const wchar_t* name, const std::wstring& value,
                                        const CPrimitiveRestrictions& facets);
  static void CheckRestrictionForhexBinary(const wchar_t* name, const CBinaryData& value,
                                           const CPrimitiveRestrictions& facets);
  static void CheckRestrictionForbase64Binary(const wchar_t* name, const CBinaryData& value,
                                              const CPrimitiveRestrictions& facets);
  static void CheckRestrictionForduration(const wchar_t* name, const CDateTimeSpan& value,
                                          const CPrimitiveRestrictions& facets);
  static void CheckRestrictionFordate(const wchar_t* name, const CDateTime& value,
                                      const CPrimitiveRestrictions& facets);
  static void CheckRestrictionFordatetime(const wchar_t* name, const CDateTime& value,
                                          const CPrimitiveRestrictions& facets);
  static void CheckRestrictionFortime(const wchar_t* name, const CDateTime& value,
                                      const CPrimitiveRestrictions& facets);
  static void CheckRestrictionFormonthDay(const wchar_t* name, const CDateTime& value,
                                          const CPrimitiveRestrictions& facets);
  static void CheckRestrictionFormonthYear(const wchar_t* name, const CDateTime& value,
                                           const CPrimitiveRestrictions& facets);
  // Always passes.
  static void CheckRestrictionForyearMonth(const wchar_t* name, const CDateTime& value,
                                           const CPrimitiveRestrictions& facets);

  // The check of the given kind on the variant's value, which must be of that kind.
  static void CheckRestriction(const wchar_t* name, const RkVariant& value, ItemType type,
                               const CPrimitiveRestrictions& facets);

  // The number of digits of each part, as the decimal stores them: "100.050" has 3 and 2, "0.5" has 1 and 1, "7" has
  // 1 and 0.
  static int GetDecimalIntegerPartLen(const CDecimal& value);
  static int GetDecimalFractionPartLen(const CDecimal& value);

  // Whether one of the constraint's tokens, parted by single blanks, admits the URI: "##any", "##other" (differs from
  // the target namespace), "##local" (empty), "##targetNamespace", or a URI itself.
  static bool IsNamespaceValid(const std::wstring& uri, const std::wstring& constraint,
                               const std::wstring& targetNamespace);
  // Throws CRkInvalidNamespaceException when IsNamespaceValid is false.
  static void TestNamespace(const std::wstring& uri, const std::wstring& constraint,
                            const std::wstring& targetNamespace);

  // Whether the element has this local name and, unless the context ignores namespaces or its schema type is without
  // them, this namespace URI.
  static bool DoesElementNameMatch(const CSerializationContext& ctx, const CXmlElement* element,
                                   const std::wstring& localName, const std::wstring& namespaceUri);
};

}  // namespace RkXmlLib16

#endif
