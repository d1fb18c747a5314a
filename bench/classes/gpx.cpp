#include "gpx.h"

#include <cwchar>

namespace Gpx {

using namespace RkXmlLib16Data;

namespace {

constexpr wchar_t kNamespace[] = L"http://www.topografix.com/GPX/1/1";

const CPrimitiveRestrictions& Latitude() {
  static const CPrimitiveRestrictions facets(nullptr, -1, -1, L"-90.0", L"90.0", nullptr, nullptr, -1, -1, -1);
  return facets;
}

const CPrimitiveRestrictions& Longitude() {
  static const CPrimitiveRestrictions facets(nullptr, -1, -1, L"-180.0", nullptr, nullptr, L"180.0", -1, -1, -1);
  return facets;
}

const CPrimitiveRestrictions& Degrees() {
  static const CPrimitiveRestrictions facets(nullptr, -1, -1, L"0.0", nullptr, nullptr, L"360.0", -1, -1, -1);
  return facets;
}

const CPrimitiveRestrictions& NonNegative() {
  static const CPrimitiveRestrictions facets(nullptr, -1, -1, L"0", nullptr, nullptr, nullptr, -1, -1, -1);
  return facets;
}

const CPrimitiveRestrictions& DgpsStation() {
  static const CPrimitiveRestrictions facets(nullptr, -1, -1, L"0", L"1023", nullptr, nullptr, -1, -1, -1);
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
constexpr const wchar_t* kEFix[] = {L"none", L"2d", L"3d", L"dgps", L"pps"};
}  // namespace

const wchar_t* EFixToString(int value) { return value >= 0 && value < 5 ? kEFix[value] : L""; }

int EFixFromString(const wchar_t* text) {
  for (int i = 0; i < 5; ++i)
    if (std::wcscmp(text, kEFix[i]) == 0) return i;
  throw CRkInvalidValueException(FormatString(L"Unknown enumeration value [%ls].", text));
}

CExtensionsType::CExtensionsType(const wchar_t* elementName)
    : m_anyElement(new CElementCol(L"AnyElement", kNamespace, 0, -1, L"##other", kNamespace)) {
  SetElementName(elementName);
}
CExtensionsType::~CExtensionsType() = default;

const wchar_t* CExtensionsType::GetTargetNamespace() const { return kNamespace; }
const wchar_t* CExtensionsType::GetNamespace() const { return kNamespace; }

void CExtensionsType::AccessProperty(int index, bool get, RkVariant& value) {
  switch (index) {
    case 0:  // anyElement
      if (get) value.SetXmlCollection(GetAnyElement());
      break;
    default:
      break;
  }
}

namespace {

const Records& ExtensionsTypeRecords() {
  static const Records records = {
      new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, L"extensions", kNamespace, true,
                             false, -1, ItemType_none, nullptr, false),
      new ElementInfo[]{new CElementInfoSeqUntpdCol(L"AnyElement", kNamespace, 0), nullptr},
      new AttributeInfo[]{nullptr}};
  return records;
}

}  // namespace

CParentElementInfo* CExtensionsType::GetClassInfo() const { return ExtensionsTypeRecords().parent; }
CElementInfo** CExtensionsType::GetClassElementInfo() const { return ExtensionsTypeRecords().elements; }
CAttributeInfo** CExtensionsType::GetClassAttributeInfo() const { return ExtensionsTypeRecords().attributes; }
void CExtensionsType::BeginFromXml_Int(CXmlElement*, CXmlElement*, const CSerializationContext&, bool) {}

CLinkType::CLinkType(const wchar_t* elementName) { SetElementName(elementName); }
CLinkType::~CLinkType() = default;

const wchar_t* CLinkType::GetTargetNamespace() const { return kNamespace; }
const wchar_t* CLinkType::GetNamespace() const { return kNamespace; }

void CLinkType::SetText(const std::wstring& value) { m_text = std::make_unique<std::wstring>(value); }

void CLinkType::ClearText() { m_text.reset(); }

void CLinkType::SetType(const std::wstring& value) { m_type = std::make_unique<std::wstring>(value); }

void CLinkType::ClearType() { m_type.reset(); }

void CLinkType::SetHref(const std::wstring& value) { m_href = value; }

void CLinkType::AccessProperty(int index, bool get, RkVariant& value) {
  switch (index) {
    case 0:  // text
      if (!get) {
        SetText(value.GetString());
      } else if (HasText()) {
        value.SetString(*m_text);
      } else {
        value.SetInvalid();
      }
      break;
    case 1:  // type
      if (!get) {
        SetType(value.GetString());
      } else if (HasType()) {
        value.SetString(*m_type);
      } else {
        value.SetInvalid();
      }
      break;
    case 2:  // href
      if (get) {
        value.SetString(GetHref());
      } else {
        SetHref(value.GetString());
      }
      break;
    default:
      break;
  }
}

namespace {

const Records& LinkTypeRecords() {
  static const Records records = {
      new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, L"link", kNamespace, true, false, -1,
                             ItemType_none, nullptr, false),
      new ElementInfo[]{new CElementInfoSeqPrimOpt(L"text", kNamespace, 0, false, ItemType_string, nullptr,
                                                   CWhitespaceUtils::preserve, CPrimitiveRestrictions(), nullptr),
                        new CElementInfoSeqPrimOpt(L"type", kNamespace, 1, false, ItemType_string, nullptr,
                                                   CWhitespaceUtils::preserve, CPrimitiveRestrictions(), nullptr),
                        nullptr},
      new AttributeInfo[]{new CAttributeInfoPrimitive(L"href", L"", 2, false, ItemType_string, nullptr,
                                                      CWhitespaceUtils::collapse, CPrimitiveRestrictions(), nullptr),
                          nullptr}};
  return records;
}

}  // namespace

CParentElementInfo* CLinkType::GetClassInfo() const { return LinkTypeRecords().parent; }
CElementInfo** CLinkType::GetClassElementInfo() const { return LinkTypeRecords().elements; }
CAttributeInfo** CLinkType::GetClassAttributeInfo() const { return LinkTypeRecords().attributes; }
void CLinkType::BeginFromXml_Int(CXmlElement*, CXmlElement*, const CSerializationContext&, bool) {}

CLinkTypeCol::CLinkTypeCol(const wchar_t* name, int minOccurs, int maxOccurs)
    : CXmlObjectCollection(name, kNamespace, minOccurs, maxOccurs, CGpxFactory::Create, CGpxFactory::Id_LinkType,
                           XmlElementType_Element) {}
CLinkTypeCol::~CLinkTypeCol() = default;

CEmailType::CEmailType(const wchar_t* elementName) { SetElementName(elementName); }
CEmailType::~CEmailType() = default;

const wchar_t* CEmailType::GetTargetNamespace() const { return kNamespace; }
const wchar_t* CEmailType::GetNamespace() const { return kNamespace; }

void CEmailType::SetId(const std::wstring& value) { m_id = value; }

void CEmailType::SetDomain(const std::wstring& value) { m_domain = value; }

void CEmailType::AccessProperty(int index, bool get, RkVariant& value) {
  switch (index) {
    case 0:  // id
      if (get) {
        value.SetString(GetId());
      } else {
        SetId(value.GetString());
      }
      break;
    case 1:  // domain
      if (get) {
        value.SetString(GetDomain());
      } else {
        SetDomain(value.GetString());
      }
      break;
    default:
      break;
  }
}

namespace {

const Records& EmailTypeRecords() {
  static const Records records = {
      new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, L"email", kNamespace, true, false,
                             -1, ItemType_none, nullptr, false),
      new ElementInfo[]{nullptr},
      new AttributeInfo[]{new CAttributeInfoPrimitive(L"id", L"", 0, false, ItemType_string, nullptr,
                                                      CWhitespaceUtils::preserve, CPrimitiveRestrictions(), nullptr),
                          new CAttributeInfoPrimitive(L"domain", L"", 1, false, ItemType_string, nullptr,
                                                      CWhitespaceUtils::preserve, CPrimitiveRestrictions(), nullptr),
                          nullptr}};
  return records;
}

}  // namespace

CParentElementInfo* CEmailType::GetClassInfo() const { return EmailTypeRecords().parent; }
CElementInfo** CEmailType::GetClassElementInfo() const { return EmailTypeRecords().elements; }
CAttributeInfo** CEmailType::GetClassAttributeInfo() const { return EmailTypeRecords().attributes; }
void CEmailType::BeginFromXml_Int(CXmlElement*, CXmlElement*, const CSerializationContext&, bool) {}

CPersonType::CPersonType(const wchar_t* elementName) { SetElementName(elementName); }
CPersonType::~CPersonType() = default;

const wchar_t* CPersonType::GetTargetNamespace() const { return kNamespace; }
const wchar_t* CPersonType::GetNamespace() const { return kNamespace; }

void CPersonType::SetName(const std::wstring& value) { m_name = std::make_unique<std::wstring>(value); }

void CPersonType::ClearName() { m_name.reset(); }

void CPersonType::SetEmail(CEmailType* value) {
  Throw_IfElementNameDiffers(value, L"email");
  m_email = value;
}

void CPersonType::SetLink(CLinkType* value) {
  Throw_IfElementNameDiffers(value, L"link");
  m_link = value;
}

void CPersonType::AccessProperty(int index, bool get, RkVariant& value) {
  switch (index) {
    case 0:  // name
      if (!get) {
        SetName(value.GetString());
      } else if (HasName()) {
        value.SetString(*m_name);
      } else {
        value.SetInvalid();
      }
      break;
    case 1:  // email
      if (get) {
        value.SetXmlObject(GetEmail());
      } else {
        SetEmail(static_cast<CEmailType*>(static_cast<CXmlObjectBase*>(value.GetXmlObject())));
      }
      break;
    case 2:  // link
      if (get) {
        value.SetXmlObject(GetLink());
      } else {
        SetLink(static_cast<CLinkType*>(static_cast<CXmlObjectBase*>(value.GetXmlObject())));
      }
      break;
    default:
      break;
  }
}

namespace {

const Records& PersonTypeRecords() {
  static const Records records = {
      new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, L"author", kNamespace, true, false,
                             -1, ItemType_none, nullptr, false),
      new ElementInfo[]{new CElementInfoSeqPrimOpt(L"name", kNamespace, 0, false, ItemType_string, nullptr,
                                                   CWhitespaceUtils::preserve, CPrimitiveRestrictions(), nullptr),
                        new CElementInfoSeqClsOpt(L"email", kNamespace, 1, XmlElementType_Element, CGpxFactory::Create,
                                                  CGpxFactory::Id_EmailType),
                        new CElementInfoSeqClsOpt(L"link", kNamespace, 2, XmlElementType_Element, CGpxFactory::Create,
                                                  CGpxFactory::Id_LinkType),
                        nullptr},
      new AttributeInfo[]{nullptr}};
  return records;
}

}  // namespace

CParentElementInfo* CPersonType::GetClassInfo() const { return PersonTypeRecords().parent; }
CElementInfo** CPersonType::GetClassElementInfo() const { return PersonTypeRecords().elements; }
CAttributeInfo** CPersonType::GetClassAttributeInfo() const { return PersonTypeRecords().attributes; }
void CPersonType::BeginFromXml_Int(CXmlElement*, CXmlElement*, const CSerializationContext&, bool) {}

CCopyrightType::CCopyrightType(const wchar_t* elementName) { SetElementName(elementName); }
CCopyrightType::~CCopyrightType() = default;

const wchar_t* CCopyrightType::GetTargetNamespace() const { return kNamespace; }
const wchar_t* CCopyrightType::GetNamespace() const { return kNamespace; }

void CCopyrightType::SetYear(unsigned short value) {
  m_year = value;
  m_hasYear = true;
}

void CCopyrightType::ClearYear() {
  m_year = 0;
  m_hasYear = false;
}

void CCopyrightType::SetLicense(const std::wstring& value) { m_license = std::make_unique<std::wstring>(value); }

void CCopyrightType::ClearLicense() { m_license.reset(); }

void CCopyrightType::SetAuthor(const std::wstring& value) { m_author = value; }

void CCopyrightType::AccessProperty(int index, bool get, RkVariant& value) {
  switch (index) {
    case 0:  // year
      if (!get) {
        SetYear(value.GetYear());
      } else if (HasYear()) {
        value.SetYear(GetYear());
      } else {
        value.SetInvalid();
      }
      break;
    case 1:  // license
      if (!get) {
        SetLicense(value.GetString());
      } else if (HasLicense()) {
        value.SetString(*m_license);
      } else {
        value.SetInvalid();
      }
      break;
    case 2:  // author
      if (get) {
        value.SetString(GetAuthor());
      } else {
        SetAuthor(value.GetString());
      }
      break;
    default:
      break;
  }
}

namespace {

const Records& CopyrightTypeRecords() {
  static const Records records = {
      new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, L"copyright", kNamespace, true,
                             false, -1, ItemType_none, nullptr, false),
      new ElementInfo[]{new CElementInfoSeqPrimOpt(L"year", kNamespace, 0, false, ItemType_gYear, nullptr,
                                                   CWhitespaceUtils::collapse, CPrimitiveRestrictions(), nullptr),
                        new CElementInfoSeqPrimOpt(L"license", kNamespace, 1, false, ItemType_string, nullptr,
                                                   CWhitespaceUtils::collapse, CPrimitiveRestrictions(), nullptr),
                        nullptr},
      new AttributeInfo[]{new CAttributeInfoPrimitive(L"author", L"", 2, false, ItemType_string, nullptr,
                                                      CWhitespaceUtils::preserve, CPrimitiveRestrictions(), nullptr),
                          nullptr}};
  return records;
}

}  // namespace

CParentElementInfo* CCopyrightType::GetClassInfo() const { return CopyrightTypeRecords().parent; }
CElementInfo** CCopyrightType::GetClassElementInfo() const { return CopyrightTypeRecords().elements; }
CAttributeInfo** CCopyrightType::GetClassAttributeInfo() const { return CopyrightTypeRecords().attributes; }
void CCopyrightType::BeginFromXml_Int(CXmlElement*, CXmlElement*, const CSerializationContext&, bool) {}

CBoundsType::CBoundsType(const wchar_t* elementName) { SetElementName(elementName); }
CBoundsType::~CBoundsType() = default;

const wchar_t* CBoundsType::GetTargetNamespace() const { return kNamespace; }
const wchar_t* CBoundsType::GetNamespace() const { return kNamespace; }

void CBoundsType::SetMinlat(const CDecimal& value) {
  CXmlObjectHelper::CheckRestrictionFordecimal(L"minlat", value, Latitude());
  m_minlat = value;
}

void CBoundsType::SetMinlon(const CDecimal& value) {
  CXmlObjectHelper::CheckRestrictionFordecimal(L"minlon", value, Longitude());
  m_minlon = value;
}

void CBoundsType::SetMaxlat(const CDecimal& value) {
  CXmlObjectHelper::CheckRestrictionFordecimal(L"maxlat", value, Latitude());
  m_maxlat = value;
}

void CBoundsType::SetMaxlon(const CDecimal& value) {
  CXmlObjectHelper::CheckRestrictionFordecimal(L"maxlon", value, Longitude());
  m_maxlon = value;
}

void CBoundsType::AccessProperty(int index, bool get, RkVariant& value) {
  switch (index) {
    case 0:  // minlat
      if (get) {
        value.SetDecimal(GetMinlat());
      } else {
        SetMinlat(value.GetDecimal());
      }
      break;
    case 1:  // minlon
      if (get) {
        value.SetDecimal(GetMinlon());
      } else {
        SetMinlon(value.GetDecimal());
      }
      break;
    case 2:  // maxlat
      if (get) {
        value.SetDecimal(GetMaxlat());
      } else {
        SetMaxlat(value.GetDecimal());
      }
      break;
    case 3:  // maxlon
      if (get) {
        value.SetDecimal(GetMaxlon());
      } else {
        SetMaxlon(value.GetDecimal());
      }
      break;
    default:
      break;
  }
}

namespace {

const Records& BoundsTypeRecords() {
  static const Records records = {
      new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, L"bounds", kNamespace, true, false,
                             -1, ItemType_none, nullptr, false),
      new ElementInfo[]{nullptr},
      new AttributeInfo[]{new CAttributeInfoPrimitive(L"minlat", L"", 0, false, ItemType_decimal, nullptr,
                                                      CWhitespaceUtils::collapse, Latitude(), nullptr),
                          new CAttributeInfoPrimitive(L"minlon", L"", 1, false, ItemType_decimal, nullptr,
                                                      CWhitespaceUtils::collapse, Longitude(), nullptr),
                          new CAttributeInfoPrimitive(L"maxlat", L"", 2, false, ItemType_decimal, nullptr,
                                                      CWhitespaceUtils::collapse, Latitude(), nullptr),
                          new CAttributeInfoPrimitive(L"maxlon", L"", 3, false, ItemType_decimal, nullptr,
                                                      CWhitespaceUtils::collapse, Longitude(), nullptr),
                          nullptr}};
  return records;
}

}  // namespace

CParentElementInfo* CBoundsType::GetClassInfo() const { return BoundsTypeRecords().parent; }
CElementInfo** CBoundsType::GetClassElementInfo() const { return BoundsTypeRecords().elements; }
CAttributeInfo** CBoundsType::GetClassAttributeInfo() const { return BoundsTypeRecords().attributes; }
void CBoundsType::BeginFromXml_Int(CXmlElement*, CXmlElement*, const CSerializationContext&, bool) {}

CMetadataType::CMetadataType(const wchar_t* elementName) { SetElementName(elementName); }
CMetadataType::~CMetadataType() = default;

const wchar_t* CMetadataType::GetTargetNamespace() const { return kNamespace; }
const wchar_t* CMetadataType::GetNamespace() const { return kNamespace; }

void CMetadataType::SetName(const std::wstring& value) { m_name = std::make_unique<std::wstring>(value); }

void CMetadataType::ClearName() { m_name.reset(); }

void CMetadataType::SetDesc(const std::wstring& value) { m_desc = std::make_unique<std::wstring>(value); }

void CMetadataType::ClearDesc() { m_desc.reset(); }

void CMetadataType::SetAuthor(CPersonType* value) {
  Throw_IfElementNameDiffers(value, L"author");
  m_author = value;
}

void CMetadataType::SetCopyright(CCopyrightType* value) {
  Throw_IfElementNameDiffers(value, L"copyright");
  m_copyright = value;
}

CLinkTypeCol* CMetadataType::GetLink() const {
  if (m_link == nullptr) m_link = new CLinkTypeCol(L"link", 0, -1);
  return m_link;
}

void CMetadataType::SetTime(const CDateTime& value) {
  m_time = value;
  m_hasTime = true;
}

void CMetadataType::ClearTime() {
  m_time = CDateTime();
  m_hasTime = false;
}

void CMetadataType::SetKeywords(const std::wstring& value) { m_keywords = std::make_unique<std::wstring>(value); }

void CMetadataType::ClearKeywords() { m_keywords.reset(); }

void CMetadataType::SetBounds(CBoundsType* value) {
  Throw_IfElementNameDiffers(value, L"bounds");
  m_bounds = value;
}

void CMetadataType::SetExtensions(CExtensionsType* value) {
  Throw_IfElementNameDiffers(value, L"extensions");
  m_extensions = value;
}

void CMetadataType::AccessProperty(int index, bool get, RkVariant& value) {
  switch (index) {
    case 0:  // name
      if (!get) {
        SetName(value.GetString());
      } else if (HasName()) {
        value.SetString(*m_name);
      } else {
        value.SetInvalid();
      }
      break;
    case 1:  // desc
      if (!get) {
        SetDesc(value.GetString());
      } else if (HasDesc()) {
        value.SetString(*m_desc);
      } else {
        value.SetInvalid();
      }
      break;
    case 2:  // author
      if (get) {
        value.SetXmlObject(GetAuthor());
      } else {
        SetAuthor(static_cast<CPersonType*>(static_cast<CXmlObjectBase*>(value.GetXmlObject())));
      }
      break;
    case 3:  // copyright
      if (get) {
        value.SetXmlObject(GetCopyright());
      } else {
        SetCopyright(static_cast<CCopyrightType*>(static_cast<CXmlObjectBase*>(value.GetXmlObject())));
      }
      break;
    case 4:  // link
      if (get) value.SetXmlCollection(m_link);
      break;
    case 5:  // time
      if (!get) {
        SetTime(value.GetDateTime());
      } else if (HasTime()) {
        value.SetDateTime(GetTime());
      } else {
        value.SetInvalid();
      }
      break;
    case 6:  // keywords
      if (!get) {
        SetKeywords(value.GetString());
      } else if (HasKeywords()) {
        value.SetString(*m_keywords);
      } else {
        value.SetInvalid();
      }
      break;
    case 7:  // bounds
      if (get) {
        value.SetXmlObject(GetBounds());
      } else {
        SetBounds(static_cast<CBoundsType*>(static_cast<CXmlObjectBase*>(value.GetXmlObject())));
      }
      break;
    case 8:  // extensions
      if (get) {
        value.SetXmlObject(GetExtensions());
      } else {
        SetExtensions(static_cast<CExtensionsType*>(static_cast<CXmlObjectBase*>(value.GetXmlObject())));
      }
      break;
    default:
      break;
  }
}

namespace {

const Records& MetadataTypeRecords() {
  static const Records records = {
      new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, L"metadata", kNamespace, true, false,
                             -1, ItemType_none, nullptr, false),
      new ElementInfo[]{new CElementInfoSeqPrimOpt(L"name", kNamespace, 0, false, ItemType_string, nullptr,
                                                   CWhitespaceUtils::preserve, CPrimitiveRestrictions(), nullptr),
                        new CElementInfoSeqPrimOpt(L"desc", kNamespace, 1, false, ItemType_string, nullptr,
                                                   CWhitespaceUtils::preserve, CPrimitiveRestrictions(), nullptr),
                        new CElementInfoSeqClsOpt(L"author", kNamespace, 2, XmlElementType_Element, CGpxFactory::Create,
                                                  CGpxFactory::Id_PersonType),
                        new CElementInfoSeqClsOpt(L"copyright", kNamespace, 3, XmlElementType_Element,
                                                  CGpxFactory::Create, CGpxFactory::Id_CopyrightType),
                        new CElementInfoSeqClsCol(L"link", kNamespace, 4, XmlElementType_Element),
                        new CElementInfoSeqPrimOpt(L"time", kNamespace, 5, false, ItemType_dateTime, nullptr,
                                                   CWhitespaceUtils::collapse, CPrimitiveRestrictions(), nullptr),
                        new CElementInfoSeqPrimOpt(L"keywords", kNamespace, 6, false, ItemType_string, nullptr,
                                                   CWhitespaceUtils::preserve, CPrimitiveRestrictions(), nullptr),
                        new CElementInfoSeqClsOpt(L"bounds", kNamespace, 7, XmlElementType_Element, CGpxFactory::Create,
                                                  CGpxFactory::Id_BoundsType),
                        new CElementInfoSeqClsOpt(L"extensions", kNamespace, 8, XmlElementType_Element,
                                                  CGpxFactory::Create, CGpxFactory::Id_ExtensionsType),
                        nullptr},
      new AttributeInfo[]{nullptr}};
  return records;
}

}  // namespace

CParentElementInfo* CMetadataType::GetClassInfo() const { return MetadataTypeRecords().parent; }
CElementInfo** CMetadataType::GetClassElementInfo() const { return MetadataTypeRecords().elements; }
CAttributeInfo** CMetadataType::GetClassAttributeInfo() const { return MetadataTypeRecords().attributes; }
void CMetadataType::BeginFromXml_Int(CXmlElement*, CXmlElement* firstChild, const CSerializationContext&, bool) {
  if (HasElement(firstChild, L"link")) GetLink();
}

CWptType::CWptType(const wchar_t* elementName)
    : m_declaredAs(std::wcscmp(elementName, L"rtept") == 0   ? 1
                   : std::wcscmp(elementName, L"trkpt") == 0 ? 2
                                                             : 0) {
  SetElementName(elementName);
}
CWptType::~CWptType() = default;

const wchar_t* CWptType::GetTargetNamespace() const { return kNamespace; }
const wchar_t* CWptType::GetNamespace() const { return kNamespace; }

void CWptType::SetEle(const CDecimal& value) { m_ele = std::make_unique<CDecimal>(value); }

void CWptType::ClearEle() { m_ele.reset(); }

void CWptType::SetTime(const CDateTime& value) {
  m_time = value;
  m_hasTime = true;
}

void CWptType::ClearTime() {
  m_time = CDateTime();
  m_hasTime = false;
}

void CWptType::SetMagvar(const CDecimal& value) {
  CXmlObjectHelper::CheckRestrictionFordecimal(L"magvar", value, Degrees());
  m_magvar = std::make_unique<CDecimal>(value);
}

void CWptType::ClearMagvar() { m_magvar.reset(); }

void CWptType::SetGeoidheight(const CDecimal& value) { m_geoidheight = std::make_unique<CDecimal>(value); }

void CWptType::ClearGeoidheight() { m_geoidheight.reset(); }

void CWptType::SetName(const std::wstring& value) { m_name = std::make_unique<std::wstring>(value); }

void CWptType::ClearName() { m_name.reset(); }

void CWptType::SetCmt(const std::wstring& value) { m_cmt = std::make_unique<std::wstring>(value); }

void CWptType::ClearCmt() { m_cmt.reset(); }

void CWptType::SetDesc(const std::wstring& value) { m_desc = std::make_unique<std::wstring>(value); }

void CWptType::ClearDesc() { m_desc.reset(); }

void CWptType::SetSrc(const std::wstring& value) { m_src = std::make_unique<std::wstring>(value); }

void CWptType::ClearSrc() { m_src.reset(); }

CLinkTypeCol* CWptType::GetLink() const {
  if (m_link == nullptr) m_link = new CLinkTypeCol(L"link", 0, -1);
  return m_link;
}

void CWptType::SetSym(const std::wstring& value) { m_sym = std::make_unique<std::wstring>(value); }

void CWptType::ClearSym() { m_sym.reset(); }

void CWptType::SetType(const std::wstring& value) { m_type = std::make_unique<std::wstring>(value); }

void CWptType::ClearType() { m_type.reset(); }

void CWptType::SetFix(EFix value) {
  m_fix = value;
  m_hasFix = true;
}

void CWptType::ClearFix() {
  m_fix = static_cast<EFix>(0);
  m_hasFix = false;
}

void CWptType::SetSat(const CBigInteger& value) {
  CXmlObjectHelper::CheckRestrictionForinteger(L"sat", value, NonNegative());
  m_sat = std::make_unique<CBigInteger>(value);
}

void CWptType::ClearSat() { m_sat.reset(); }

void CWptType::SetHdop(const CDecimal& value) { m_hdop = std::make_unique<CDecimal>(value); }

void CWptType::ClearHdop() { m_hdop.reset(); }

void CWptType::SetVdop(const CDecimal& value) { m_vdop = std::make_unique<CDecimal>(value); }

void CWptType::ClearVdop() { m_vdop.reset(); }

void CWptType::SetPdop(const CDecimal& value) { m_pdop = std::make_unique<CDecimal>(value); }

void CWptType::ClearPdop() { m_pdop.reset(); }

void CWptType::SetAgeofdgpsdata(const CDecimal& value) { m_ageofdgpsdata = std::make_unique<CDecimal>(value); }

void CWptType::ClearAgeofdgpsdata() { m_ageofdgpsdata.reset(); }

void CWptType::SetDgpsid(long value) {
  CXmlObjectHelper::CheckRestrictionFori4(L"dgpsid", value, DgpsStation());
  m_dgpsid = value;
  m_hasDgpsid = true;
}

void CWptType::ClearDgpsid() {
  m_dgpsid = 0;
  m_hasDgpsid = false;
}

void CWptType::SetExtensions(CExtensionsType* value) {
  Throw_IfElementNameDiffers(value, L"extensions");
  m_extensions = value;
}

void CWptType::SetLat(const CDecimal& value) {
  CXmlObjectHelper::CheckRestrictionFordecimal(L"lat", value, Latitude());
  m_lat = value;
}

void CWptType::SetLon(const CDecimal& value) {
  CXmlObjectHelper::CheckRestrictionFordecimal(L"lon", value, Longitude());
  m_lon = value;
}

void CWptType::AccessProperty(int index, bool get, RkVariant& value) {
  switch (index) {
    case 0:  // ele
      if (!get) {
        SetEle(value.GetDecimal());
      } else if (HasEle()) {
        value.SetDecimal(*m_ele);
      } else {
        value.SetInvalid();
      }
      break;
    case 1:  // time
      if (!get) {
        SetTime(value.GetDateTime());
      } else if (HasTime()) {
        value.SetDateTime(GetTime());
      } else {
        value.SetInvalid();
      }
      break;
    case 2:  // magvar
      if (!get) {
        SetMagvar(value.GetDecimal());
      } else if (HasMagvar()) {
        value.SetDecimal(*m_magvar);
      } else {
        value.SetInvalid();
      }
      break;
    case 3:  // geoidheight
      if (!get) {
        SetGeoidheight(value.GetDecimal());
      } else if (HasGeoidheight()) {
        value.SetDecimal(*m_geoidheight);
      } else {
        value.SetInvalid();
      }
      break;
    case 4:  // name
      if (!get) {
        SetName(value.GetString());
      } else if (HasName()) {
        value.SetString(*m_name);
      } else {
        value.SetInvalid();
      }
      break;
    case 5:  // cmt
      if (!get) {
        SetCmt(value.GetString());
      } else if (HasCmt()) {
        value.SetString(*m_cmt);
      } else {
        value.SetInvalid();
      }
      break;
    case 6:  // desc
      if (!get) {
        SetDesc(value.GetString());
      } else if (HasDesc()) {
        value.SetString(*m_desc);
      } else {
        value.SetInvalid();
      }
      break;
    case 7:  // src
      if (!get) {
        SetSrc(value.GetString());
      } else if (HasSrc()) {
        value.SetString(*m_src);
      } else {
        value.SetInvalid();
      }
      break;
    case 8:  // link
      if (get) value.SetXmlCollection(m_link);
      break;
    case 9:  // sym
      if (!get) {
        SetSym(value.GetString());
      } else if (HasSym()) {
        value.SetString(*m_sym);
      } else {
        value.SetInvalid();
      }
      break;
    case 10:  // type
      if (!get) {
        SetType(value.GetString());
      } else if (HasType()) {
        value.SetString(*m_type);
      } else {
        value.SetInvalid();
      }
      break;
    case 11:  // fix
      if (!get) {
        SetFix(static_cast<EFix>(value.GetI4()));
      } else if (HasFix()) {
        value.SetI4(GetFix());
      } else {
        value.SetInvalid();
      }
      break;
    case 12:  // sat
      if (!get) {
        SetSat(value.GetInteger());
      } else if (HasSat()) {
        value.SetInteger(*m_sat);
      } else {
        value.SetInvalid();
      }
      break;
    case 13:  // hdop
      if (!get) {
        SetHdop(value.GetDecimal());
      } else if (HasHdop()) {
        value.SetDecimal(*m_hdop);
      } else {
        value.SetInvalid();
      }
      break;
    case 14:  // vdop
      if (!get) {
        SetVdop(value.GetDecimal());
      } else if (HasVdop()) {
        value.SetDecimal(*m_vdop);
      } else {
        value.SetInvalid();
      }
      break;
    case 15:  // pdop
      if (!get) {
        SetPdop(value.GetDecimal());
      } else if (HasPdop()) {
        value.SetDecimal(*m_pdop);
      } else {
        value.SetInvalid();
      }
      break;
    case 16:  // ageofdgpsdata
      if (!get) {
        SetAgeofdgpsdata(value.GetDecimal());
      } else if (HasAgeofdgpsdata()) {
        value.SetDecimal(*m_ageofdgpsdata);
      } else {
        value.SetInvalid();
      }
      break;
    case 17:  // dgpsid
      if (!get) {
        SetDgpsid(value.GetI4());
      } else if (HasDgpsid()) {
        value.SetI4(GetDgpsid());
      } else {
        value.SetInvalid();
      }
      break;
    case 18:  // extensions
      if (get) {
        value.SetXmlObject(GetExtensions());
      } else {
        SetExtensions(static_cast<CExtensionsType*>(static_cast<CXmlObjectBase*>(value.GetXmlObject())));
      }
      break;
    case 19:  // lat
      if (get) {
        value.SetDecimal(GetLat());
      } else {
        SetLat(value.GetDecimal());
      }
      break;
    case 20:  // lon
      if (get) {
        value.SetDecimal(GetLon());
      } else {
        SetLon(value.GetDecimal());
      }
      break;
    default:
      break;
  }
}

namespace {

const Records& WptTypeRecords() {
  static const Records records = {
      new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, L"wpt", kNamespace, true, false, -1,
                             ItemType_none, nullptr, false),
      new ElementInfo[]{
          new CElementInfoSeqPrimOpt(L"ele", kNamespace, 0, false, ItemType_decimal, nullptr,
                                     CWhitespaceUtils::collapse, CPrimitiveRestrictions(), nullptr),
          new CElementInfoSeqPrimOpt(L"time", kNamespace, 1, false, ItemType_dateTime, nullptr,
                                     CWhitespaceUtils::collapse, CPrimitiveRestrictions(), nullptr),
          new CElementInfoSeqPrimOpt(L"magvar", kNamespace, 2, false, ItemType_decimal, nullptr,
                                     CWhitespaceUtils::collapse, Degrees(), nullptr),
          new CElementInfoSeqPrimOpt(L"geoidheight", kNamespace, 3, false, ItemType_decimal, nullptr,
                                     CWhitespaceUtils::collapse, CPrimitiveRestrictions(), nullptr),
          new CElementInfoSeqPrimOpt(L"name", kNamespace, 4, false, ItemType_string, nullptr,
                                     CWhitespaceUtils::preserve, CPrimitiveRestrictions(), nullptr),
          new CElementInfoSeqPrimOpt(L"cmt", kNamespace, 5, false, ItemType_string, nullptr, CWhitespaceUtils::preserve,
                                     CPrimitiveRestrictions(), nullptr),
          new CElementInfoSeqPrimOpt(L"desc", kNamespace, 6, false, ItemType_string, nullptr,
                                     CWhitespaceUtils::preserve, CPrimitiveRestrictions(), nullptr),
          new CElementInfoSeqPrimOpt(L"src", kNamespace, 7, false, ItemType_string, nullptr, CWhitespaceUtils::preserve,
                                     CPrimitiveRestrictions(), nullptr),
          new CElementInfoSeqClsCol(L"link", kNamespace, 8, XmlElementType_Element),
          new CElementInfoSeqPrimOpt(L"sym", kNamespace, 9, false, ItemType_string, nullptr, CWhitespaceUtils::preserve,
                                     CPrimitiveRestrictions(), nullptr),
          new CElementInfoSeqPrimOpt(L"type", kNamespace, 10, false, ItemType_string, nullptr,
                                     CWhitespaceUtils::preserve, CPrimitiveRestrictions(), nullptr),
          new CElementInfoSeqEnumOpt(L"fix", kNamespace, 11, false, EFixToString, EFixFromString, nullptr),
          new CElementInfoSeqPrimOpt(L"sat", kNamespace, 12, false, ItemType_integer, nullptr,
                                     CWhitespaceUtils::collapse, NonNegative(), nullptr),
          new CElementInfoSeqPrimOpt(L"hdop", kNamespace, 13, false, ItemType_decimal, nullptr,
                                     CWhitespaceUtils::collapse, CPrimitiveRestrictions(), nullptr),
          new CElementInfoSeqPrimOpt(L"vdop", kNamespace, 14, false, ItemType_decimal, nullptr,
                                     CWhitespaceUtils::collapse, CPrimitiveRestrictions(), nullptr),
          new CElementInfoSeqPrimOpt(L"pdop", kNamespace, 15, false, ItemType_decimal, nullptr,
                                     CWhitespaceUtils::collapse, CPrimitiveRestrictions(), nullptr),
          new CElementInfoSeqPrimOpt(L"ageofdgpsdata", kNamespace, 16, false, ItemType_decimal, nullptr,
                                     CWhitespaceUtils::collapse, CPrimitiveRestrictions(), nullptr),
          new CElementInfoSeqPrimOpt(L"dgpsid", kNamespace, 17, false, ItemType_int, nullptr,
                                     CWhitespaceUtils::collapse, DgpsStation(), nullptr),
          new CElementInfoSeqClsOpt(L"extensions", kNamespace, 18, XmlElementType_Element, CGpxFactory::Create,
                                    CGpxFactory::Id_ExtensionsType),
          nullptr},
      new AttributeInfo[]{new CAttributeInfoPrimitive(L"lat", L"", 19, false, ItemType_decimal, nullptr,
                                                      CWhitespaceUtils::collapse, Latitude(), nullptr),
                          new CAttributeInfoPrimitive(L"lon", L"", 20, false, ItemType_decimal, nullptr,
                                                      CWhitespaceUtils::collapse, Longitude(), nullptr),
                          nullptr}};
  return records;
}

}  // namespace

CParentElementInfo* CWptType::GetClassInfo() const {
  static CParentElementInfo others[] = {{XmlElementGroupType_Sequence, XmlElementType_Element, L"rtept", kNamespace,
                                         true, false, -1, ItemType_none, nullptr, false},
                                        {XmlElementGroupType_Sequence, XmlElementType_Element, L"trkpt", kNamespace,
                                         true, false, -1, ItemType_none, nullptr, false}};
  return m_declaredAs == 0 ? WptTypeRecords().parent : &others[m_declaredAs - 1];
}
CElementInfo** CWptType::GetClassElementInfo() const { return WptTypeRecords().elements; }
CAttributeInfo** CWptType::GetClassAttributeInfo() const { return WptTypeRecords().attributes; }
void CWptType::BeginFromXml_Int(CXmlElement*, CXmlElement* firstChild, const CSerializationContext&, bool) {
  if (HasElement(firstChild, L"link")) GetLink();
}

CWptTypeCol::CWptTypeCol(const wchar_t* name, int minOccurs, int maxOccurs)
    : CXmlObjectCollection(name, kNamespace, minOccurs, maxOccurs, CGpxFactory::Create, CGpxFactory::Id_WptType,
                           XmlElementType_Element) {}
CWptTypeCol::~CWptTypeCol() = default;

CRteType::CRteType(const wchar_t* elementName) { SetElementName(elementName); }
CRteType::~CRteType() = default;

const wchar_t* CRteType::GetTargetNamespace() const { return kNamespace; }
const wchar_t* CRteType::GetNamespace() const { return kNamespace; }

void CRteType::SetName(const std::wstring& value) { m_name = std::make_unique<std::wstring>(value); }

void CRteType::ClearName() { m_name.reset(); }

void CRteType::SetCmt(const std::wstring& value) { m_cmt = std::make_unique<std::wstring>(value); }

void CRteType::ClearCmt() { m_cmt.reset(); }

void CRteType::SetDesc(const std::wstring& value) { m_desc = std::make_unique<std::wstring>(value); }

void CRteType::ClearDesc() { m_desc.reset(); }

void CRteType::SetSrc(const std::wstring& value) { m_src = std::make_unique<std::wstring>(value); }

void CRteType::ClearSrc() { m_src.reset(); }

CLinkTypeCol* CRteType::GetLink() const {
  if (m_link == nullptr) m_link = new CLinkTypeCol(L"link", 0, -1);
  return m_link;
}

void CRteType::SetNumber(const CBigInteger& value) {
  CXmlObjectHelper::CheckRestrictionForinteger(L"number", value, NonNegative());
  m_number = std::make_unique<CBigInteger>(value);
}

void CRteType::ClearNumber() { m_number.reset(); }

void CRteType::SetType(const std::wstring& value) { m_type = std::make_unique<std::wstring>(value); }

void CRteType::ClearType() { m_type.reset(); }

void CRteType::SetExtensions(CExtensionsType* value) {
  Throw_IfElementNameDiffers(value, L"extensions");
  m_extensions = value;
}

CWptTypeCol* CRteType::GetRtept() const {
  if (m_rtept == nullptr) m_rtept = new CWptTypeCol(L"rtept", 0, -1);
  return m_rtept;
}

void CRteType::AccessProperty(int index, bool get, RkVariant& value) {
  switch (index) {
    case 0:  // name
      if (!get) {
        SetName(value.GetString());
      } else if (HasName()) {
        value.SetString(*m_name);
      } else {
        value.SetInvalid();
      }
      break;
    case 1:  // cmt
      if (!get) {
        SetCmt(value.GetString());
      } else if (HasCmt()) {
        value.SetString(*m_cmt);
      } else {
        value.SetInvalid();
      }
      break;
    case 2:  // desc
      if (!get) {
        SetDesc(value.GetString());
      } else if (HasDesc()) {
        value.SetString(*m_desc);
      } else {
        value.SetInvalid();
      }
      break;
    case 3:  // src
      if (!get) {
        SetSrc(value.GetString());
      } else if (HasSrc()) {
        value.SetString(*m_src);
      } else {
        value.SetInvalid();
      }
      break;
    case 4:  // link
      if (get) value.SetXmlCollection(m_link);
      break;
    case 5:  // number
      if (!get) {
        SetNumber(value.GetInteger());
      } else if (HasNumber()) {
        value.SetInteger(*m_number);
      } else {
        value.SetInvalid();
      }
      break;
    case 6:  // type
      if (!get) {
        SetType(value.GetString());
      } else if (HasType()) {
        value.SetString(*m_type);
      } else {
        value.SetInvalid();
      }
      break;
    case 7:  // extensions
      if (get) {
        value.SetXmlObject(GetExtensions());
      } else {
        SetExtensions(static_cast<CExtensionsType*>(static_cast<CXmlObjectBase*>(value.GetXmlObject())));
      }
      break;
    case 8:  // rtept
      if (get) value.SetXmlCollection(m_rtept);
      break;
    default:
      break;
  }
}

namespace {

const Records& RteTypeRecords() {
  static const Records records = {
      new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, L"rte", kNamespace, true, false, -1,
                             ItemType_none, nullptr, false),
      new ElementInfo[]{new CElementInfoSeqPrimOpt(L"name", kNamespace, 0, false, ItemType_string, nullptr,
                                                   CWhitespaceUtils::preserve, CPrimitiveRestrictions(), nullptr),
                        new CElementInfoSeqPrimOpt(L"cmt", kNamespace, 1, false, ItemType_string, nullptr,
                                                   CWhitespaceUtils::preserve, CPrimitiveRestrictions(), nullptr),
                        new CElementInfoSeqPrimOpt(L"desc", kNamespace, 2, false, ItemType_string, nullptr,
                                                   CWhitespaceUtils::preserve, CPrimitiveRestrictions(), nullptr),
                        new CElementInfoSeqPrimOpt(L"src", kNamespace, 3, false, ItemType_string, nullptr,
                                                   CWhitespaceUtils::preserve, CPrimitiveRestrictions(), nullptr),
                        new CElementInfoSeqClsCol(L"link", kNamespace, 4, XmlElementType_Element),
                        new CElementInfoSeqPrimOpt(L"number", kNamespace, 5, false, ItemType_integer, nullptr,
                                                   CWhitespaceUtils::collapse, NonNegative(), nullptr),
                        new CElementInfoSeqPrimOpt(L"type", kNamespace, 6, false, ItemType_string, nullptr,
                                                   CWhitespaceUtils::preserve, CPrimitiveRestrictions(), nullptr),
                        new CElementInfoSeqClsOpt(L"extensions", kNamespace, 7, XmlElementType_Element,
                                                  CGpxFactory::Create, CGpxFactory::Id_ExtensionsType),
                        new CElementInfoSeqClsCol(L"rtept", kNamespace, 8, XmlElementType_Element), nullptr},
      new AttributeInfo[]{nullptr}};
  return records;
}

}  // namespace

CParentElementInfo* CRteType::GetClassInfo() const { return RteTypeRecords().parent; }
CElementInfo** CRteType::GetClassElementInfo() const { return RteTypeRecords().elements; }
CAttributeInfo** CRteType::GetClassAttributeInfo() const { return RteTypeRecords().attributes; }
void CRteType::BeginFromXml_Int(CXmlElement*, CXmlElement* firstChild, const CSerializationContext&, bool) {
  if (HasElement(firstChild, L"link")) GetLink();
  if (HasElement(firstChild, L"rtept")) GetRtept();
}

CRteTypeCol::CRteTypeCol(const wchar_t* name, int minOccurs, int maxOccurs)
    : CXmlObjectCollection(name, kNamespace, minOccurs, maxOccurs, CGpxFactory::Create, CGpxFactory::Id_RteType,
                           XmlElementType_Element) {}
CRteTypeCol::~CRteTypeCol() = default;

CTrksegType::CTrksegType(const wchar_t* elementName) { SetElementName(elementName); }
CTrksegType::~CTrksegType() = default;

const wchar_t* CTrksegType::GetTargetNamespace() const { return kNamespace; }
const wchar_t* CTrksegType::GetNamespace() const { return kNamespace; }

CWptTypeCol* CTrksegType::GetTrkpt() const {
  if (m_trkpt == nullptr) m_trkpt = new CWptTypeCol(L"trkpt", 0, -1);
  return m_trkpt;
}

void CTrksegType::SetExtensions(CExtensionsType* value) {
  Throw_IfElementNameDiffers(value, L"extensions");
  m_extensions = value;
}

void CTrksegType::AccessProperty(int index, bool get, RkVariant& value) {
  switch (index) {
    case 0:  // trkpt
      if (get) value.SetXmlCollection(m_trkpt);
      break;
    case 1:  // extensions
      if (get) {
        value.SetXmlObject(GetExtensions());
      } else {
        SetExtensions(static_cast<CExtensionsType*>(static_cast<CXmlObjectBase*>(value.GetXmlObject())));
      }
      break;
    default:
      break;
  }
}

namespace {

const Records& TrksegTypeRecords() {
  static const Records records = {
      new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, L"trkseg", kNamespace, true, false,
                             -1, ItemType_none, nullptr, false),
      new ElementInfo[]{new CElementInfoSeqClsCol(L"trkpt", kNamespace, 0, XmlElementType_Element),
                        new CElementInfoSeqClsOpt(L"extensions", kNamespace, 1, XmlElementType_Element,
                                                  CGpxFactory::Create, CGpxFactory::Id_ExtensionsType),
                        nullptr},
      new AttributeInfo[]{nullptr}};
  return records;
}

}  // namespace

CParentElementInfo* CTrksegType::GetClassInfo() const { return TrksegTypeRecords().parent; }
CElementInfo** CTrksegType::GetClassElementInfo() const { return TrksegTypeRecords().elements; }
CAttributeInfo** CTrksegType::GetClassAttributeInfo() const { return TrksegTypeRecords().attributes; }
void CTrksegType::BeginFromXml_Int(CXmlElement*, CXmlElement* firstChild, const CSerializationContext&, bool) {
  if (HasElement(firstChild, L"trkpt")) GetTrkpt();
}

CTrksegTypeCol::CTrksegTypeCol(const wchar_t* name, int minOccurs, int maxOccurs)
    : CXmlObjectCollection(name, kNamespace, minOccurs, maxOccurs, CGpxFactory::Create, CGpxFactory::Id_TrksegType,
                           XmlElementType_Element) {}
CTrksegTypeCol::~CTrksegTypeCol() = default;

CTrkType::CTrkType(const wchar_t* elementName) { SetElementName(elementName); }
CTrkType::~CTrkType() = default;

const wchar_t* CTrkType::GetTargetNamespace() const { return kNamespace; }
const wchar_t* CTrkType::GetNamespace() const { return kNamespace; }

void CTrkType::SetName(const std::wstring& value) { m_name = std::make_unique<std::wstring>(value); }

void CTrkType::ClearName() { m_name.reset(); }

void CTrkType::SetCmt(const std::wstring& value) { m_cmt = std::make_unique<std::wstring>(value); }

void CTrkType::ClearCmt() { m_cmt.reset(); }

void CTrkType::SetDesc(const std::wstring& value) { m_desc = std::make_unique<std::wstring>(value); }

void CTrkType::ClearDesc() { m_desc.reset(); }

void CTrkType::SetSrc(const std::wstring& value) { m_src = std::make_unique<std::wstring>(value); }

void CTrkType::ClearSrc() { m_src.reset(); }

CLinkTypeCol* CTrkType::GetLink() const {
  if (m_link == nullptr) m_link = new CLinkTypeCol(L"link", 0, -1);
  return m_link;
}

void CTrkType::SetNumber(const CBigInteger& value) {
  CXmlObjectHelper::CheckRestrictionForinteger(L"number", value, NonNegative());
  m_number = std::make_unique<CBigInteger>(value);
}

void CTrkType::ClearNumber() { m_number.reset(); }

void CTrkType::SetType(const std::wstring& value) { m_type = std::make_unique<std::wstring>(value); }

void CTrkType::ClearType() { m_type.reset(); }

void CTrkType::SetExtensions(CExtensionsType* value) {
  Throw_IfElementNameDiffers(value, L"extensions");
  m_extensions = value;
}

CTrksegTypeCol* CTrkType::GetTrkseg() const {
  if (m_trkseg == nullptr) m_trkseg = new CTrksegTypeCol(L"trkseg", 0, -1);
  return m_trkseg;
}

void CTrkType::AccessProperty(int index, bool get, RkVariant& value) {
  switch (index) {
    case 0:  // name
      if (!get) {
        SetName(value.GetString());
      } else if (HasName()) {
        value.SetString(*m_name);
      } else {
        value.SetInvalid();
      }
      break;
    case 1:  // cmt
      if (!get) {
        SetCmt(value.GetString());
      } else if (HasCmt()) {
        value.SetString(*m_cmt);
      } else {
        value.SetInvalid();
      }
      break;
    case 2:  // desc
      if (!get) {
        SetDesc(value.GetString());
      } else if (HasDesc()) {
        value.SetString(*m_desc);
      } else {
        value.SetInvalid();
      }
      break;
    case 3:  // src
      if (!get) {
        SetSrc(value.GetString());
      } else if (HasSrc()) {
        value.SetString(*m_src);
      } else {
        value.SetInvalid();
      }
      break;
    case 4:  // link
      if (get) value.SetXmlCollection(m_link);
      break;
    case 5:  // number
      if (!get) {
        SetNumber(value.GetInteger());
      } else if (HasNumber()) {
        value.SetInteger(*m_number);
      } else {
        value.SetInvalid();
      }
      break;
    case 6:  // type
      if (!get) {
        SetType(value.GetString());
      } else if (HasType()) {
        value.SetString(*m_type);
      } else {
        value.SetInvalid();
      }
      break;
    case 7:  // extensions
      if (get) {
        value.SetXmlObject(GetExtensions());
      } else {
        SetExtensions(static_cast<CExtensionsType*>(static_cast<CXmlObjectBase*>(value.GetXmlObject())));
      }
      break;
    case 8:  // trkseg
      if (get) value.SetXmlCollection(m_trkseg);
      break;
    default:
      break;
  }
}

namespace {

const Records& TrkTypeRecords() {
  static const Records records = {
      new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, L"trk", kNamespace, true, false, -1,
                             ItemType_none, nullptr, false),
      new ElementInfo[]{new CElementInfoSeqPrimOpt(L"name", kNamespace, 0, false, ItemType_string, nullptr,
                                                   CWhitespaceUtils::preserve, CPrimitiveRestrictions(), nullptr),
                        new CElementInfoSeqPrimOpt(L"cmt", kNamespace, 1, false, ItemType_string, nullptr,
                                                   CWhitespaceUtils::preserve, CPrimitiveRestrictions(), nullptr),
                        new CElementInfoSeqPrimOpt(L"desc", kNamespace, 2, false, ItemType_string, nullptr,
                                                   CWhitespaceUtils::preserve, CPrimitiveRestrictions(), nullptr),
                        new CElementInfoSeqPrimOpt(L"src", kNamespace, 3, false, ItemType_string, nullptr,
                                                   CWhitespaceUtils::preserve, CPrimitiveRestrictions(), nullptr),
                        new CElementInfoSeqClsCol(L"link", kNamespace, 4, XmlElementType_Element),
                        new CElementInfoSeqPrimOpt(L"number", kNamespace, 5, false, ItemType_integer, nullptr,
                                                   CWhitespaceUtils::collapse, NonNegative(), nullptr),
                        new CElementInfoSeqPrimOpt(L"type", kNamespace, 6, false, ItemType_string, nullptr,
                                                   CWhitespaceUtils::preserve, CPrimitiveRestrictions(), nullptr),
                        new CElementInfoSeqClsOpt(L"extensions", kNamespace, 7, XmlElementType_Element,
                                                  CGpxFactory::Create, CGpxFactory::Id_ExtensionsType),
                        new CElementInfoSeqClsCol(L"trkseg", kNamespace, 8, XmlElementType_Element), nullptr},
      new AttributeInfo[]{nullptr}};
  return records;
}

}  // namespace

CParentElementInfo* CTrkType::GetClassInfo() const { return TrkTypeRecords().parent; }
CElementInfo** CTrkType::GetClassElementInfo() const { return TrkTypeRecords().elements; }
CAttributeInfo** CTrkType::GetClassAttributeInfo() const { return TrkTypeRecords().attributes; }
void CTrkType::BeginFromXml_Int(CXmlElement*, CXmlElement* firstChild, const CSerializationContext&, bool) {
  if (HasElement(firstChild, L"link")) GetLink();
  if (HasElement(firstChild, L"trkseg")) GetTrkseg();
}

CTrkTypeCol::CTrkTypeCol(const wchar_t* name, int minOccurs, int maxOccurs)
    : CXmlObjectCollection(name, kNamespace, minOccurs, maxOccurs, CGpxFactory::Create, CGpxFactory::Id_TrkType,
                           XmlElementType_Element) {}
CTrkTypeCol::~CTrkTypeCol() = default;

CGpxType::CGpxType(const wchar_t* elementName) { SetElementName(elementName); }
CGpxType::~CGpxType() = default;

const wchar_t* CGpxType::GetTargetNamespace() const { return kNamespace; }
const wchar_t* CGpxType::GetNamespace() const { return kNamespace; }

void CGpxType::SetMetadata(CMetadataType* value) {
  Throw_IfElementNameDiffers(value, L"metadata");
  m_metadata = value;
}

CWptTypeCol* CGpxType::GetWpt() const {
  if (m_wpt == nullptr) m_wpt = new CWptTypeCol(L"wpt", 0, -1);
  return m_wpt;
}

CRteTypeCol* CGpxType::GetRte() const {
  if (m_rte == nullptr) m_rte = new CRteTypeCol(L"rte", 0, -1);
  return m_rte;
}

CTrkTypeCol* CGpxType::GetTrk() const {
  if (m_trk == nullptr) m_trk = new CTrkTypeCol(L"trk", 0, -1);
  return m_trk;
}

void CGpxType::SetExtensions(CExtensionsType* value) {
  Throw_IfElementNameDiffers(value, L"extensions");
  m_extensions = value;
}

void CGpxType::SetVersion(const std::wstring& value) { m_version = value; }

void CGpxType::SetCreator(const std::wstring& value) { m_creator = value; }

void CGpxType::AccessProperty(int index, bool get, RkVariant& value) {
  switch (index) {
    case 0:  // metadata
      if (get) {
        value.SetXmlObject(GetMetadata());
      } else {
        SetMetadata(static_cast<CMetadataType*>(static_cast<CXmlObjectBase*>(value.GetXmlObject())));
      }
      break;
    case 1:  // wpt
      if (get) value.SetXmlCollection(m_wpt);
      break;
    case 2:  // rte
      if (get) value.SetXmlCollection(m_rte);
      break;
    case 3:  // trk
      if (get) value.SetXmlCollection(m_trk);
      break;
    case 4:  // extensions
      if (get) {
        value.SetXmlObject(GetExtensions());
      } else {
        SetExtensions(static_cast<CExtensionsType*>(static_cast<CXmlObjectBase*>(value.GetXmlObject())));
      }
      break;
    case 5:  // version
      if (get) {
        value.SetString(GetVersion());
      } else {
        SetVersion(value.GetString());
      }
      break;
    case 6:  // creator
      if (get) {
        value.SetString(GetCreator());
      } else {
        SetCreator(value.GetString());
      }
      break;
    default:
      break;
  }
}

namespace {

const Records& GpxTypeRecords() {
  static const Records records = {
      new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, L"gpx", kNamespace, true, false, -1,
                             ItemType_none, nullptr, false),
      new ElementInfo[]{new CElementInfoSeqClsOpt(L"metadata", kNamespace, 0, XmlElementType_Element,
                                                  CGpxFactory::Create, CGpxFactory::Id_MetadataType),
                        new CElementInfoSeqClsCol(L"wpt", kNamespace, 1, XmlElementType_Element),
                        new CElementInfoSeqClsCol(L"rte", kNamespace, 2, XmlElementType_Element),
                        new CElementInfoSeqClsCol(L"trk", kNamespace, 3, XmlElementType_Element),
                        new CElementInfoSeqClsOpt(L"extensions", kNamespace, 4, XmlElementType_Element,
                                                  CGpxFactory::Create, CGpxFactory::Id_ExtensionsType),
                        nullptr},
      new AttributeInfo[]{new CAttributeInfoPrimitive(L"version", L"", 5, false, ItemType_string, nullptr,
                                                      CWhitespaceUtils::preserve, CPrimitiveRestrictions(), nullptr),
                          new CAttributeInfoPrimitive(L"creator", L"", 6, false, ItemType_string, nullptr,
                                                      CWhitespaceUtils::preserve, CPrimitiveRestrictions(), nullptr),
                          nullptr}};
  return records;
}

}  // namespace

CParentElementInfo* CGpxType::GetClassInfo() const { return GpxTypeRecords().parent; }
CElementInfo** CGpxType::GetClassElementInfo() const { return GpxTypeRecords().elements; }
CAttributeInfo** CGpxType::GetClassAttributeInfo() const { return GpxTypeRecords().attributes; }
void CGpxType::BeginFromXml_Int(CXmlElement*, CXmlElement* firstChild, const CSerializationContext&, bool) {
  if (HasElement(firstChild, L"wpt")) GetWpt();
  if (HasElement(firstChild, L"rte")) GetRte();
  if (HasElement(firstChild, L"trk")) GetTrk();
}

CSmartPtr<CXmlObjectBase> CGpxFactory::Create(int classId, const wchar_t* elementName) {
  switch (classId) {
    case Id_ExtensionsType:
      return new CExtensionsType(elementName);
    case Id_LinkType:
      return new CLinkType(elementName);
    case Id_EmailType:
      return new CEmailType(elementName);
    case Id_PersonType:
      return new CPersonType(elementName);
    case Id_CopyrightType:
      return new CCopyrightType(elementName);
    case Id_BoundsType:
      return new CBoundsType(elementName);
    case Id_MetadataType:
      return new CMetadataType(elementName);
    case Id_WptType:
      return new CWptType(elementName);
    case Id_RteType:
      return new CRteType(elementName);
    case Id_TrksegType:
      return new CTrksegType(elementName);
    case Id_TrkType:
      return new CTrkType(elementName);
    case Id_GpxType:
      return new CGpxType(elementName);
    default:
      return nullptr;
  }
}

}  // namespace Gpx
