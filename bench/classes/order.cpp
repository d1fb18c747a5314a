#include "order.h"

#include <cwchar>

namespace Order {

using namespace RkXmlLib16Data;

namespace {

constexpr wchar_t kNamespace[] = L"urn:example:order";

const CPrimitiveRestrictions& OrderId() {
  static const CPrimitiveRestrictions facets(L"[A-Z]{2}-\\d{1,8}", -1, -1, nullptr, nullptr, nullptr, nullptr, -1, -1,
                                             -1);
  return facets;
}

const CPrimitiveRestrictions& Sku() {
  static const CPrimitiveRestrictions facets(L"[A-Z]\\d{4}", -1, -1, nullptr, nullptr, nullptr, nullptr, -1, -1, -1);
  return facets;
}

const CPrimitiveRestrictions& Vat() {
  static const CPrimitiveRestrictions facets(nullptr, 8, 14, nullptr, nullptr, nullptr, nullptr, -1, -1, -1);
  return facets;
}

const CPrimitiveRestrictions& Zip() {
  static const CPrimitiveRestrictions facets(nullptr, -1, 10, nullptr, nullptr, nullptr, nullptr, -1, -1, -1);
  return facets;
}

const CPrimitiveRestrictions& CardNumber() {
  static const CPrimitiveRestrictions facets(L"\\d{12,19}", -1, -1, nullptr, nullptr, nullptr, nullptr, -1, -1, -1);
  return facets;
}

const CPrimitiveRestrictions& Iban() {
  static const CPrimitiveRestrictions facets(L"[A-Z]{2}\\d{2}[A-Z0-9]{11,30}", -1, -1, nullptr, nullptr, nullptr,
                                             nullptr, -1, -1, -1);
  return facets;
}

const CPrimitiveRestrictions& Quantity() {
  static const CPrimitiveRestrictions facets(nullptr, -1, -1, L"1", L"100000", nullptr, nullptr, -1, -1, -1);
  return facets;
}

const CPrimitiveRestrictions& Money() {
  static const CPrimitiveRestrictions facets(nullptr, -1, -1, L"0", nullptr, nullptr, nullptr, -1, -1, 2);
  return facets;
}

using ElementInfo = CElementInfo*;
using AttributeInfo = CAttributeInfo*;

// The records of one class; freed when the library that holds them is unloaded.
struct Records {
  CParentElementInfo* parent;
  CElementInfo** elements;
  CAttributeInfo** attributes;
  ~Records() { CXmlGeneratedClass::CleanMetaData(parent, elements, attributes); }
};

}  // namespace

namespace {
constexpr const wchar_t* kECurrency[] = {L"EUR", L"USD", L"CHF"};
}  // namespace

const wchar_t* ECurrencyToString(int value) { return value >= 0 && value < 3 ? kECurrency[value] : L""; }

int ECurrencyFromString(const wchar_t* text) {
  for (int i = 0; i < 3; ++i)
    if (std::wcscmp(text, kECurrency[i]) == 0) return i;
  throw CRkInvalidValueException(FormatString(L"Unknown enumeration value [%ls].", text));
}

namespace {
constexpr const wchar_t* kERate[] = {L"none", L"reduced", L"standard"};
}  // namespace

const wchar_t* ERateToString(int value) { return value >= 0 && value < 3 ? kERate[value] : L""; }

int ERateFromString(const wchar_t* text) {
  for (int i = 0; i < 3; ++i)
    if (std::wcscmp(text, kERate[i]) == 0) return i;
  throw CRkInvalidValueException(FormatString(L"Unknown enumeration value [%ls].", text));
}

namespace {
constexpr const wchar_t* kECountry[] = {L"AT", L"CH", L"DE", L"US"};
}  // namespace

const wchar_t* ECountryToString(int value) { return value >= 0 && value < 4 ? kECountry[value] : L""; }

int ECountryFromString(const wchar_t* text) {
  for (int i = 0; i < 4; ++i)
    if (std::wcscmp(text, kECountry[i]) == 0) return i;
  throw CRkInvalidValueException(FormatString(L"Unknown enumeration value [%ls].", text));
}

CCustomerType::CCustomerType(const wchar_t* elementName) { SetElementName(elementName); }
CCustomerType::~CCustomerType() = default;

const wchar_t* CCustomerType::GetTargetNamespace() const { return kNamespace; }
const wchar_t* CCustomerType::GetNamespace() const { return kNamespace; }

void CCustomerType::SetEmail(const std::wstring& value) { m_email = std::make_unique<std::wstring>(value); }

void CCustomerType::ClearEmail() { m_email.reset(); }

CPersonType::CPersonType(const wchar_t* elementName) : CCustomerType(elementName) {}
CPersonType::~CPersonType() = default;

const wchar_t* CPersonType::GetTargetNamespace() const { return kNamespace; }
const wchar_t* CPersonType::GetNamespace() const { return kNamespace; }

void CPersonType::SetName(const std::wstring& value) { m_name = value; }

void CPersonType::SetBorn(const CDateTime& value) {
  m_born = value;
  m_hasBorn = true;
}

void CPersonType::ClearBorn() {
  m_born = CDateTime();
  m_hasBorn = false;
}

void CPersonType::AccessProperty(int index, bool get, RkVariant& value) {
  switch (index) {
    case 0:  // email
      if (!get) {
        SetEmail(value.GetString());
      } else if (HasEmail()) {
        value.SetString(GetEmail());
      } else {
        value.SetInvalid();
      }
      break;
    case 1:  // name
      if (get) {
        value.SetString(GetName());
      } else {
        SetName(value.GetString());
      }
      break;
    case 2:  // born
      if (!get) {
        SetBorn(value.GetDate());
      } else if (HasBorn()) {
        value.SetDate(GetBorn());
      } else {
        value.SetInvalid();
      }
      break;
    default:
      break;
  }
}

namespace {

const Records& PersonTypeRecords() {
  static const Records records = {
      new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, L"personType", kNamespace, true,
                             false, -1, ItemType_none, nullptr, false),
      new ElementInfo[]{new CElementInfoSeqPrimOpt(L"email", kNamespace, 0, false, ItemType_string, nullptr,
                                                   CWhitespaceUtils::preserve, CPrimitiveRestrictions(), nullptr),
                        new CElementInfoSeqPrimMnd(L"name", kNamespace, 1, false, ItemType_string, nullptr,
                                                   CWhitespaceUtils::preserve, CPrimitiveRestrictions(), nullptr),
                        new CElementInfoSeqPrimOpt(L"born", kNamespace, 2, false, ItemType_date, nullptr,
                                                   CWhitespaceUtils::collapse, CPrimitiveRestrictions(), nullptr),
                        nullptr},
      new AttributeInfo[]{nullptr}};
  return records;
}

}  // namespace

CParentElementInfo* CPersonType::GetClassInfo() const { return PersonTypeRecords().parent; }
CElementInfo** CPersonType::GetClassElementInfo() const { return PersonTypeRecords().elements; }
CAttributeInfo** CPersonType::GetClassAttributeInfo() const { return PersonTypeRecords().attributes; }
void CPersonType::BeginFromXml_Int(CXmlElement*, CXmlElement*, const CSerializationContext&, bool) {}

CCompanyType::CCompanyType(const wchar_t* elementName) : CCustomerType(elementName) {}
CCompanyType::~CCompanyType() = default;

const wchar_t* CCompanyType::GetTargetNamespace() const { return kNamespace; }
const wchar_t* CCompanyType::GetNamespace() const { return kNamespace; }

void CCompanyType::SetName(const std::wstring& value) { m_name = value; }

void CCompanyType::SetVat(const std::wstring& value) {
  CXmlObjectHelper::CheckRestrictionForstring(L"vat", value, Vat());
  m_vat = value;
}

void CCompanyType::AccessProperty(int index, bool get, RkVariant& value) {
  switch (index) {
    case 0:  // email
      if (!get) {
        SetEmail(value.GetString());
      } else if (HasEmail()) {
        value.SetString(GetEmail());
      } else {
        value.SetInvalid();
      }
      break;
    case 1:  // name
      if (get) {
        value.SetString(GetName());
      } else {
        SetName(value.GetString());
      }
      break;
    case 2:  // vat
      if (get) {
        value.SetString(GetVat());
      } else {
        SetVat(value.GetString());
      }
      break;
    default:
      break;
  }
}

namespace {

const Records& CompanyTypeRecords() {
  static const Records records = {
      new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, L"companyType", kNamespace, true,
                             false, -1, ItemType_none, nullptr, false),
      new ElementInfo[]{new CElementInfoSeqPrimOpt(L"email", kNamespace, 0, false, ItemType_string, nullptr,
                                                   CWhitespaceUtils::preserve, CPrimitiveRestrictions(), nullptr),
                        new CElementInfoSeqPrimMnd(L"name", kNamespace, 1, false, ItemType_string, nullptr,
                                                   CWhitespaceUtils::preserve, CPrimitiveRestrictions(), nullptr),
                        new CElementInfoSeqPrimMnd(L"vat", kNamespace, 2, false, ItemType_string, nullptr,
                                                   CWhitespaceUtils::preserve, Vat(), nullptr),
                        nullptr},
      new AttributeInfo[]{nullptr}};
  return records;
}

}  // namespace

CParentElementInfo* CCompanyType::GetClassInfo() const { return CompanyTypeRecords().parent; }
CElementInfo** CCompanyType::GetClassElementInfo() const { return CompanyTypeRecords().elements; }
CAttributeInfo** CCompanyType::GetClassAttributeInfo() const { return CompanyTypeRecords().attributes; }
void CCompanyType::BeginFromXml_Int(CXmlElement*, CXmlElement*, const CSerializationContext&, bool) {}

CAddressType::CAddressType(const wchar_t* elementName) { SetElementName(elementName); }
CAddressType::~CAddressType() = default;

const wchar_t* CAddressType::GetTargetNamespace() const { return kNamespace; }
const wchar_t* CAddressType::GetNamespace() const { return kNamespace; }

void CAddressType::SetStreet(const std::wstring& value) { m_street = value; }

void CAddressType::SetCity(const std::wstring& value) { m_city = value; }

void CAddressType::SetZip(const std::wstring& value) {
  CXmlObjectHelper::CheckRestrictionForstring(L"zip", value, Zip());
  m_zip = std::make_unique<std::wstring>(value);
}

void CAddressType::ClearZip() { m_zip.reset(); }

void CAddressType::SetCountry(ECountry value) { m_country = value; }

void CAddressType::AccessProperty(int index, bool get, RkVariant& value) {
  switch (index) {
    case 0:  // street
      if (get) {
        value.SetString(GetStreet());
      } else {
        SetStreet(value.GetString());
      }
      break;
    case 1:  // city
      if (get) {
        value.SetString(GetCity());
      } else {
        SetCity(value.GetString());
      }
      break;
    case 2:  // zip
      if (!get) {
        SetZip(value.GetString());
      } else if (HasZip()) {
        value.SetString(*m_zip);
      } else {
        value.SetInvalid();
      }
      break;
    case 3:  // country
      if (get) {
        value.SetI4(GetCountry());
      } else {
        SetCountry(static_cast<ECountry>(value.GetI4()));
      }
      break;
    default:
      break;
  }
}

namespace {

const Records& AddressTypeRecords() {
  static const Records records = {
      new CParentElementInfo(XmlElementGroupType_All, XmlElementType_Element, L"delivery", kNamespace, true, false, -1,
                             ItemType_none, nullptr, false),
      new ElementInfo[]{
          new CElementInfoAllPrimMnd(L"street", kNamespace, 0, false, ItemType_string, nullptr,
                                     CWhitespaceUtils::preserve, CPrimitiveRestrictions(), nullptr),
          new CElementInfoAllPrimMnd(L"city", kNamespace, 1, false, ItemType_string, nullptr,
                                     CWhitespaceUtils::preserve, CPrimitiveRestrictions(), nullptr),
          new CElementInfoAllPrimOpt(L"zip", kNamespace, 2, false, ItemType_string, nullptr, CWhitespaceUtils::preserve,
                                     Zip(), nullptr),
          new CElementInfoAllEnumMnd(L"country", kNamespace, 3, false, ECountryToString, ECountryFromString, nullptr),
          nullptr},
      new AttributeInfo[]{nullptr}};
  return records;
}

}  // namespace

CParentElementInfo* CAddressType::GetClassInfo() const { return AddressTypeRecords().parent; }
CElementInfo** CAddressType::GetClassElementInfo() const { return AddressTypeRecords().elements; }
CAttributeInfo** CAddressType::GetClassAttributeInfo() const { return AddressTypeRecords().attributes; }
void CAddressType::BeginFromXml_Int(CXmlElement*, CXmlElement*, const CSerializationContext&, bool) {}

CGoodsType::CGoodsType(const wchar_t* elementName) { SetElementName(elementName); }
CGoodsType::~CGoodsType() = default;

const wchar_t* CGoodsType::GetTargetNamespace() const { return kNamespace; }
const wchar_t* CGoodsType::GetNamespace() const { return kNamespace; }

void CGoodsType::SetName(const std::wstring& value) { m_name = value; }

void CGoodsType::SetQuantity(long value) {
  CXmlObjectHelper::CheckRestrictionFori4(L"quantity", value, Quantity());
  m_quantity = value;
}

void CGoodsType::SetPrice(const CDecimal& value) {
  CXmlObjectHelper::CheckRestrictionFordecimal(L"price", value, Money());
  m_price = value;
}

void CGoodsType::SetSku(const std::wstring& value) {
  CXmlObjectHelper::CheckRestrictionForstring(L"sku", value, Sku());
  m_sku = value;
}

void CGoodsType::SetVat(ERate value) {
  m_vat = value;
  m_hasVat = true;
}

void CGoodsType::ClearVat() {
  m_vat = ERate_standard;
  m_hasVat = false;
}

void CGoodsType::AccessProperty(int index, bool get, RkVariant& value) {
  switch (index) {
    case 0:  // name
      if (get) {
        value.SetString(GetName());
      } else {
        SetName(value.GetString());
      }
      break;
    case 1:  // quantity
      if (get) {
        value.SetI4(GetQuantity());
      } else {
        SetQuantity(value.GetI4());
      }
      break;
    case 2:  // price
      if (get) {
        value.SetDecimal(GetPrice());
      } else {
        SetPrice(value.GetDecimal());
      }
      break;
    case 3:  // sku
      if (get) {
        value.SetString(GetSku());
      } else {
        SetSku(value.GetString());
      }
      break;
    case 4:  // vat
      if (!get) {
        SetVat(static_cast<ERate>(value.GetI4()));
      } else if (HasVat()) {
        value.SetI4(GetVat());
      } else {
        value.SetInvalid();
      }
      break;
    default:
      break;
  }
}

namespace {

const Records& GoodsTypeRecords() {
  static const Records records = {
      new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, L"goods", kNamespace, true, false,
                             -1, ItemType_none, nullptr, false),
      new ElementInfo[]{new CElementInfoSeqPrimMnd(L"name", kNamespace, 0, false, ItemType_string, nullptr,
                                                   CWhitespaceUtils::preserve, CPrimitiveRestrictions(), nullptr),
                        new CElementInfoSeqPrimMnd(L"quantity", kNamespace, 1, false, ItemType_int, nullptr,
                                                   CWhitespaceUtils::collapse, Quantity(), nullptr),
                        new CElementInfoSeqPrimMnd(L"price", kNamespace, 2, false, ItemType_decimal, nullptr,
                                                   CWhitespaceUtils::collapse, Money(), nullptr),
                        nullptr},
      new AttributeInfo[]{new CAttributeInfoPrimitive(L"sku", L"", 3, false, ItemType_string, nullptr,
                                                      CWhitespaceUtils::preserve, Sku(), nullptr),
                          new CAttributeInfoEnum(L"vat", L"", 4, true, ERateToString, ERateFromString, L"standard"),
                          nullptr}};
  return records;
}

}  // namespace

CParentElementInfo* CGoodsType::GetClassInfo() const { return GoodsTypeRecords().parent; }
CElementInfo** CGoodsType::GetClassElementInfo() const { return GoodsTypeRecords().elements; }
CAttributeInfo** CGoodsType::GetClassAttributeInfo() const { return GoodsTypeRecords().attributes; }
void CGoodsType::BeginFromXml_Int(CXmlElement*, CXmlElement*, const CSerializationContext&, bool) {}

CServiceType::CServiceType(const wchar_t* elementName) { SetElementName(elementName); }
CServiceType::~CServiceType() = default;

const wchar_t* CServiceType::GetTargetNamespace() const { return kNamespace; }
const wchar_t* CServiceType::GetNamespace() const { return kNamespace; }

void CServiceType::SetName(const std::wstring& value) { m_name = value; }

void CServiceType::SetTime(const CDateTimeSpan& value) { m_time = value; }

void CServiceType::SetPrice(const CDecimal& value) {
  CXmlObjectHelper::CheckRestrictionFordecimal(L"price", value, Money());
  m_price = value;
}

void CServiceType::SetVat(ERate value) {
  m_vat = value;
  m_hasVat = true;
}

void CServiceType::ClearVat() {
  m_vat = ERate_standard;
  m_hasVat = false;
}

void CServiceType::AccessProperty(int index, bool get, RkVariant& value) {
  switch (index) {
    case 0:  // name
      if (get) {
        value.SetString(GetName());
      } else {
        SetName(value.GetString());
      }
      break;
    case 1:  // time
      if (get) {
        value.SetDuration(GetTime());
      } else {
        SetTime(value.GetDuration());
      }
      break;
    case 2:  // price
      if (get) {
        value.SetDecimal(GetPrice());
      } else {
        SetPrice(value.GetDecimal());
      }
      break;
    case 3:  // vat
      if (!get) {
        SetVat(static_cast<ERate>(value.GetI4()));
      } else if (HasVat()) {
        value.SetI4(GetVat());
      } else {
        value.SetInvalid();
      }
      break;
    default:
      break;
  }
}

namespace {

const Records& ServiceTypeRecords() {
  static const Records records = {
      new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, L"service", kNamespace, true, false,
                             -1, ItemType_none, nullptr, false),
      new ElementInfo[]{new CElementInfoSeqPrimMnd(L"name", kNamespace, 0, false, ItemType_string, nullptr,
                                                   CWhitespaceUtils::preserve, CPrimitiveRestrictions(), nullptr),
                        new CElementInfoSeqPrimMnd(L"time", kNamespace, 1, false, ItemType_duration, nullptr,
                                                   CWhitespaceUtils::collapse, CPrimitiveRestrictions(), nullptr),
                        new CElementInfoSeqPrimMnd(L"price", kNamespace, 2, false, ItemType_decimal, nullptr,
                                                   CWhitespaceUtils::collapse, Money(), nullptr),
                        nullptr},
      new AttributeInfo[]{new CAttributeInfoEnum(L"vat", L"", 3, true, ERateToString, ERateFromString, L"standard"),
                          nullptr}};
  return records;
}

}  // namespace

CParentElementInfo* CServiceType::GetClassInfo() const { return ServiceTypeRecords().parent; }
CElementInfo** CServiceType::GetClassElementInfo() const { return ServiceTypeRecords().elements; }
CAttributeInfo** CServiceType::GetClassAttributeInfo() const { return ServiceTypeRecords().attributes; }
void CServiceType::BeginFromXml_Int(CXmlElement*, CXmlElement*, const CSerializationContext&, bool) {}

CLine::CLine(const wchar_t* elementName) { SetElementName(elementName); }
CLine::~CLine() = default;

const wchar_t* CLine::GetTargetNamespace() const { return kNamespace; }
const wchar_t* CLine::GetNamespace() const { return kNamespace; }

void CLine::SetGoods(CGoodsType* value) {
  Throw_IfElementNameDiffers(value, L"goods");
  Choice_SelectElement(L"goods", value, m_selected);
  m_goods = value;
}

void CLine::SetService(CServiceType* value) {
  Throw_IfElementNameDiffers(value, L"service");
  Choice_SelectElement(L"service", value, m_selected);
  m_service = value;
}

void CLine::AccessProperty(int index, bool get, RkVariant& value) {
  switch (index) {
    case 0:  // goods
      if (get) {
        value.SetXmlObject(GetGoods());
      } else {
        SetGoods(static_cast<CGoodsType*>(static_cast<CXmlObjectBase*>(value.GetXmlObject())));
      }
      break;
    case 1:  // service
      if (get) {
        value.SetXmlObject(GetService());
      } else {
        SetService(static_cast<CServiceType*>(static_cast<CXmlObjectBase*>(value.GetXmlObject())));
      }
      break;
    default:
      break;
  }
}

namespace {

const Records& LineRecords() {
  static const Records records = {
      new CParentElementInfo(XmlElementGroupType_Choice, XmlElementType_InlineGroup, L"line", kNamespace, true, false,
                             -1, ItemType_none, nullptr, false),
      new ElementInfo[]{new CElementInfoChoiceClsOpt(L"goods", kNamespace, 0, XmlElementType_Element,
                                                     COrderFactory::Create, COrderFactory::Id_GoodsType),
                        new CElementInfoChoiceClsOpt(L"service", kNamespace, 1, XmlElementType_Element,
                                                     COrderFactory::Create, COrderFactory::Id_ServiceType),
                        nullptr},
      new AttributeInfo[]{nullptr}};
  return records;
}

}  // namespace

CParentElementInfo* CLine::GetClassInfo() const { return LineRecords().parent; }
CElementInfo** CLine::GetClassElementInfo() const { return LineRecords().elements; }
CAttributeInfo** CLine::GetClassAttributeInfo() const { return LineRecords().attributes; }
void CLine::BeginFromXml_Int(CXmlElement*, CXmlElement*, const CSerializationContext&, bool) {}

CLineCol::CLineCol(const wchar_t* name, int minOccurs, int maxOccurs)
    : CXmlObjectCollection(name, kNamespace, minOccurs, maxOccurs, COrderFactory::Create, COrderFactory::Id_Line,
                           XmlElementType_InlineGroup) {}
CLineCol::~CLineCol() = default;

CLinesType::CLinesType(const wchar_t* elementName) : m_line(new CLineCol(L"line", 1, -1)) {
  SetElementName(elementName);
}
CLinesType::~CLinesType() = default;

const wchar_t* CLinesType::GetTargetNamespace() const { return kNamespace; }
const wchar_t* CLinesType::GetNamespace() const { return kNamespace; }

void CLinesType::AccessProperty(int index, bool get, RkVariant& value) {
  switch (index) {
    case 0:  // line
      if (get) value.SetXmlCollection(GetLine());
      break;
    default:
      break;
  }
}

namespace {

const Records& LinesTypeRecords() {
  static const Records records = {
      new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, L"lines", kNamespace, true, false,
                             -1, ItemType_none, nullptr, false),
      new ElementInfo[]{new CElementInfoSeqClsCol(L"line", kNamespace, 0, XmlElementType_InlineGroup), nullptr},
      new AttributeInfo[]{nullptr}};
  return records;
}

}  // namespace

CParentElementInfo* CLinesType::GetClassInfo() const { return LinesTypeRecords().parent; }
CElementInfo** CLinesType::GetClassElementInfo() const { return LinesTypeRecords().elements; }
CAttributeInfo** CLinesType::GetClassAttributeInfo() const { return LinesTypeRecords().attributes; }
void CLinesType::BeginFromXml_Int(CXmlElement*, CXmlElement*, const CSerializationContext&, bool) {}

CCardType::CCardType(const wchar_t* elementName) { SetElementName(elementName); }
CCardType::~CCardType() = default;

const wchar_t* CCardType::GetTargetNamespace() const { return kNamespace; }
const wchar_t* CCardType::GetNamespace() const { return kNamespace; }

void CCardType::SetNumber(const std::wstring& value) {
  CXmlObjectHelper::CheckRestrictionForstring(L"number", value, CardNumber());
  m_number = value;
}

void CCardType::SetExpires(const CDateTime& value) { m_expires = value; }

void CCardType::AccessProperty(int index, bool get, RkVariant& value) {
  switch (index) {
    case 0:  // number
      if (get) {
        value.SetString(GetNumber());
      } else {
        SetNumber(value.GetString());
      }
      break;
    case 1:  // expires
      if (get) {
        value.SetYearMonth(GetExpires());
      } else {
        SetExpires(value.GetYearMonth());
      }
      break;
    default:
      break;
  }
}

namespace {

const Records& CardTypeRecords() {
  static const Records records = {
      new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, L"card", kNamespace, true, false, -1,
                             ItemType_none, nullptr, false),
      new ElementInfo[]{new CElementInfoSeqPrimMnd(L"number", kNamespace, 0, false, ItemType_string, nullptr,
                                                   CWhitespaceUtils::preserve, CardNumber(), nullptr),
                        new CElementInfoSeqPrimMnd(L"expires", kNamespace, 1, false, ItemType_gYearMonth, nullptr,
                                                   CWhitespaceUtils::collapse, CPrimitiveRestrictions(), nullptr),
                        nullptr},
      new AttributeInfo[]{nullptr}};
  return records;
}

}  // namespace

CParentElementInfo* CCardType::GetClassInfo() const { return CardTypeRecords().parent; }
CElementInfo** CCardType::GetClassElementInfo() const { return CardTypeRecords().elements; }
CAttributeInfo** CCardType::GetClassAttributeInfo() const { return CardTypeRecords().attributes; }
void CCardType::BeginFromXml_Int(CXmlElement*, CXmlElement*, const CSerializationContext&, bool) {}

CTransferType::CTransferType(const wchar_t* elementName) { SetElementName(elementName); }
CTransferType::~CTransferType() = default;

const wchar_t* CTransferType::GetTargetNamespace() const { return kNamespace; }
const wchar_t* CTransferType::GetNamespace() const { return kNamespace; }

void CTransferType::SetIban(const std::wstring& value) {
  CXmlObjectHelper::CheckRestrictionForstring(L"iban", value, Iban());
  m_iban = value;
}

void CTransferType::SetReference(const std::wstring& value) { m_reference = std::make_unique<std::wstring>(value); }

void CTransferType::ClearReference() { m_reference.reset(); }

void CTransferType::AccessProperty(int index, bool get, RkVariant& value) {
  switch (index) {
    case 0:  // iban
      if (get) {
        value.SetString(GetIban());
      } else {
        SetIban(value.GetString());
      }
      break;
    case 1:  // reference
      if (!get) {
        SetReference(value.GetString());
      } else if (HasReference()) {
        value.SetString(*m_reference);
      } else {
        value.SetInvalid();
      }
      break;
    default:
      break;
  }
}

namespace {

const Records& TransferTypeRecords() {
  static const Records records = {
      new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, L"transfer", kNamespace, true, false,
                             -1, ItemType_none, nullptr, false),
      new ElementInfo[]{new CElementInfoSeqPrimMnd(L"iban", kNamespace, 0, false, ItemType_string, nullptr,
                                                   CWhitespaceUtils::preserve, Iban(), nullptr),
                        new CElementInfoSeqPrimOpt(L"reference", kNamespace, 1, false, ItemType_string, nullptr,
                                                   CWhitespaceUtils::preserve, CPrimitiveRestrictions(), nullptr),
                        nullptr},
      new AttributeInfo[]{nullptr}};
  return records;
}

}  // namespace

CParentElementInfo* CTransferType::GetClassInfo() const { return TransferTypeRecords().parent; }
CElementInfo** CTransferType::GetClassElementInfo() const { return TransferTypeRecords().elements; }
CAttributeInfo** CTransferType::GetClassAttributeInfo() const { return TransferTypeRecords().attributes; }
void CTransferType::BeginFromXml_Int(CXmlElement*, CXmlElement*, const CSerializationContext&, bool) {}

CPaymentType::CPaymentType(const wchar_t* elementName) { SetElementName(elementName); }
CPaymentType::~CPaymentType() = default;

const wchar_t* CPaymentType::GetTargetNamespace() const { return kNamespace; }
const wchar_t* CPaymentType::GetNamespace() const { return kNamespace; }

void CPaymentType::SetCard(CCardType* value) {
  Throw_IfElementNameDiffers(value, L"card");
  Choice_SelectElement(L"card", value, m_selected);
  m_card = value;
}

void CPaymentType::SetTransfer(CTransferType* value) {
  Throw_IfElementNameDiffers(value, L"transfer");
  Choice_SelectElement(L"transfer", value, m_selected);
  m_transfer = value;
}

void CPaymentType::SetCash(const CDecimal& value) {
  CXmlObjectHelper::CheckRestrictionFordecimal(L"cash", value, Money());
  if (m_selected.empty()) m_selected = L"cash";
  Choice_SetElementValid(true, L"cash", m_selected);
  m_cash = std::make_unique<CDecimal>(value);
}

void CPaymentType::ClearCash() {
  if (m_selected == L"cash") Choice_SetElementValid(false, L"cash", m_selected);
  m_cash.reset();
}

void CPaymentType::AccessProperty(int index, bool get, RkVariant& value) {
  switch (index) {
    case 0:  // card
      if (get) {
        value.SetXmlObject(GetCard());
      } else {
        SetCard(static_cast<CCardType*>(static_cast<CXmlObjectBase*>(value.GetXmlObject())));
      }
      break;
    case 1:  // transfer
      if (get) {
        value.SetXmlObject(GetTransfer());
      } else {
        SetTransfer(static_cast<CTransferType*>(static_cast<CXmlObjectBase*>(value.GetXmlObject())));
      }
      break;
    case 2:  // cash
      if (!get) {
        SetCash(value.GetDecimal());
      } else if (HasCash()) {
        value.SetDecimal(*m_cash);
      } else {
        value.SetInvalid();
      }
      break;
    default:
      break;
  }
}

namespace {

const Records& PaymentTypeRecords() {
  static const Records records = {
      new CParentElementInfo(XmlElementGroupType_Choice, XmlElementType_Element, L"payment", kNamespace, true, false,
                             -1, ItemType_none, nullptr, false),
      new ElementInfo[]{new CElementInfoChoiceClsOpt(L"card", kNamespace, 0, XmlElementType_Element,
                                                     COrderFactory::Create, COrderFactory::Id_CardType),
                        new CElementInfoChoiceClsOpt(L"transfer", kNamespace, 1, XmlElementType_Element,
                                                     COrderFactory::Create, COrderFactory::Id_TransferType),
                        new CElementInfoChoicePrimOpt(L"cash", kNamespace, 2, false, ItemType_decimal, nullptr,
                                                      CWhitespaceUtils::collapse, Money(), nullptr),
                        nullptr},
      new AttributeInfo[]{nullptr}};
  return records;
}

}  // namespace

CParentElementInfo* CPaymentType::GetClassInfo() const { return PaymentTypeRecords().parent; }
CElementInfo** CPaymentType::GetClassElementInfo() const { return PaymentTypeRecords().elements; }
CAttributeInfo** CPaymentType::GetClassAttributeInfo() const { return PaymentTypeRecords().attributes; }
void CPaymentType::BeginFromXml_Int(CXmlElement*, CXmlElement*, const CSerializationContext&, bool) {}

COrderType::COrderType(const wchar_t* elementName)
    : m_delivery(new CAddressType(L"delivery")),
      m_lines(new CLinesType(L"lines")),
      m_payment(new CPaymentType(L"payment")),
      m_note(new CstringCol(L"note", kNamespace, 0, 3, nullptr, -1, -1, nullptr, nullptr, nullptr, nullptr, -1, -1, -1,
                            CWhitespaceUtils::preserve, nullptr)),
      m_anyAttribute(new CAttributeCol(L"##other", kNamespace)) {
  SetElementName(elementName);
}
COrderType::~COrderType() = default;

const wchar_t* COrderType::GetTargetNamespace() const { return kNamespace; }
const wchar_t* COrderType::GetNamespace() const { return kNamespace; }

void COrderType::SetCustomer(CCustomerType* value) {
  Throw_IfPropertyIsNull(value, L"Customer");
  Throw_IfElementNameDiffers(value, L"customer");
  m_customer = value;
}

void COrderType::SetDelivery(CAddressType* value) {
  Throw_IfPropertyIsNull(value, L"Delivery");
  Throw_IfElementNameDiffers(value, L"delivery");
  m_delivery = value;
}

void COrderType::SetLines(CLinesType* value) {
  Throw_IfPropertyIsNull(value, L"Lines");
  Throw_IfElementNameDiffers(value, L"lines");
  m_lines = value;
}

void COrderType::SetPayment(CPaymentType* value) {
  Throw_IfPropertyIsNull(value, L"Payment");
  Throw_IfElementNameDiffers(value, L"payment");
  m_payment = value;
}

void COrderType::SetDue(const CDateTime& value) {
  m_due = value;
  m_dueNil = false;
}

void COrderType::SetDueNil() {
  m_due = CDateTime();
  m_dueNil = true;
}

void COrderType::SetAnyElement(CElement* value) { m_anyElement = value; }

void COrderType::SetId(const std::wstring& value) {
  CXmlObjectHelper::CheckRestrictionForstring(L"id", value, OrderId());
  m_id = value;
}

void COrderType::SetCurrency(ECurrency value) {
  m_currency = value;
  m_hasCurrency = true;
}

void COrderType::ClearCurrency() {
  m_currency = ECurrency_EUR;
  m_hasCurrency = false;
}

void COrderType::SetPlaced(const CDateTime& value) {
  m_placed = value;
  m_hasPlaced = true;
}

void COrderType::ClearPlaced() {
  m_placed = CDateTime();
  m_hasPlaced = false;
}

void COrderType::AccessProperty(int index, bool get, RkVariant& value) {
  switch (index) {
    case 0:  // customer
      if (get) {
        value.SetXmlObject(GetCustomer());
      } else {
        SetCustomer(static_cast<CCustomerType*>(static_cast<CXmlObjectBase*>(value.GetXmlObject())));
      }
      break;
    case 1:  // delivery
      if (get) {
        value.SetXmlObject(GetDelivery());
      } else {
        SetDelivery(static_cast<CAddressType*>(static_cast<CXmlObjectBase*>(value.GetXmlObject())));
      }
      break;
    case 2:  // lines
      if (get) {
        value.SetXmlObject(GetLines());
      } else {
        SetLines(static_cast<CLinesType*>(static_cast<CXmlObjectBase*>(value.GetXmlObject())));
      }
      break;
    case 3:  // payment
      if (get) {
        value.SetXmlObject(GetPayment());
      } else {
        SetPayment(static_cast<CPaymentType*>(static_cast<CXmlObjectBase*>(value.GetXmlObject())));
      }
      break;
    case 4:  // due
      if (get) {
        value.SetDate(GetDue());
        if (IsDueNil()) value.SetNil();
      } else if (value.IsNil()) {
        SetDueNil();
      } else {
        SetDue(value.GetDate());
      }
      break;
    case 5:  // note
      if (get) value.SetXmlCollection(GetNote());
      break;
    case 6:  // anyElement
      if (get) {
        value.SetXmlObject(GetAnyElement());
      } else {
        SetAnyElement(static_cast<CElement*>(static_cast<CXmlObjectBase*>(value.GetXmlObject())));
      }
      break;
    case 7:  // id
      if (get) {
        value.SetString(GetId());
      } else {
        SetId(value.GetString());
      }
      break;
    case 8:  // currency
      if (!get) {
        SetCurrency(static_cast<ECurrency>(value.GetI4()));
      } else if (HasCurrency()) {
        value.SetI4(GetCurrency());
      } else {
        value.SetInvalid();
      }
      break;
    case 9:  // placed
      if (!get) {
        SetPlaced(value.GetDateTime());
      } else if (HasPlaced()) {
        value.SetDateTime(GetPlaced());
      } else {
        value.SetInvalid();
      }
      break;
    case 10:  // anyAttribute
      if (get) value.SetXmlCollection(GetAnyAttribute());
      break;
    default:
      break;
  }
}

namespace {

const Records& OrderTypeRecords() {
  static const Records records = {
      new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, L"order", kNamespace, true, false,
                             -1, ItemType_none, nullptr, false),
      new ElementInfo[]{new CElementInfoSeqAbsClsMnd(L"customer", kNamespace, 0, XmlElementType_Element,
                                                     COrderFactory::CreateCustomerType),
                        new CElementInfoSeqClsMnd(L"delivery", kNamespace, 1, XmlElementType_Element,
                                                  COrderFactory::Create, COrderFactory::Id_AddressType, true),
                        new CElementInfoSeqClsMnd(L"lines", kNamespace, 2, XmlElementType_Element,
                                                  COrderFactory::Create, COrderFactory::Id_LinesType, true),
                        new CElementInfoSeqClsMnd(L"payment", kNamespace, 3, XmlElementType_Element,
                                                  COrderFactory::Create, COrderFactory::Id_PaymentType, true),
                        new CElementInfoSeqPrimMnd(L"due", kNamespace, 4, true, ItemType_date, nullptr,
                                                   CWhitespaceUtils::collapse, CPrimitiveRestrictions(), nullptr),
                        new CElementInfoSeqPrimCol(L"note", kNamespace, 5),
                        new CElementInfoSeqUntpdOpt(L"AnyElement", kNamespace, 6, L"##other", kNamespace), nullptr},
      new AttributeInfo[]{
          new CAttributeInfoPrimitive(L"id", L"", 7, false, ItemType_string, nullptr, CWhitespaceUtils::preserve,
                                      OrderId(), nullptr),
          new CAttributeInfoEnum(L"currency", L"", 8, true, ECurrencyToString, ECurrencyFromString, L"EUR"),
          new CAttributeInfoPrimitive(L"placed", L"", 9, true, ItemType_dateTime, nullptr, CWhitespaceUtils::collapse,
                                      CPrimitiveRestrictions(), nullptr),
          new CAttributeInfoAny(L"AnyAttribute", kNamespace, 10, true, L"##other", kNamespace, nullptr), nullptr}};
  return records;
}

}  // namespace

CParentElementInfo* COrderType::GetClassInfo() const { return OrderTypeRecords().parent; }
CElementInfo** COrderType::GetClassElementInfo() const { return OrderTypeRecords().elements; }
CAttributeInfo** COrderType::GetClassAttributeInfo() const { return OrderTypeRecords().attributes; }
void COrderType::BeginFromXml_Int(CXmlElement*, CXmlElement*, const CSerializationContext&, bool) {
  SetDueNil();  // a nil element leaves the member as it is
}

CSmartPtr<CXmlObjectBase> COrderFactory::Create(int classId, const wchar_t* elementName) {
  switch (classId) {
    case Id_PersonType:
      return new CPersonType(elementName);
    case Id_CompanyType:
      return new CCompanyType(elementName);
    case Id_AddressType:
      return new CAddressType(elementName);
    case Id_GoodsType:
      return new CGoodsType(elementName);
    case Id_ServiceType:
      return new CServiceType(elementName);
    case Id_Line:
      return new CLine(elementName);
    case Id_LinesType:
      return new CLinesType(elementName);
    case Id_CardType:
      return new CCardType(elementName);
    case Id_TransferType:
      return new CTransferType(elementName);
    case Id_PaymentType:
      return new CPaymentType(elementName);
    case Id_OrderType:
      return new COrderType(elementName);
    default:
      return nullptr;
  }
}

CSmartPtr<CXmlObjectBase> COrderFactory::CreateCustomerType(CXmlElement* element) {
  const std::wstring type = GetElementType(element);
  if (type == L"personType") return new CPersonType(element->GetLocalName().c_str());
  if (type == L"companyType") return new CCompanyType(element->GetLocalName().c_str());
  return nullptr;
}

}  // namespace Order
