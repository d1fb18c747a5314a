#ifndef RKXMLLIB16_BENCH_CLASSES_GPX_H
#define RKXMLLIB16_BENCH_CLASSES_GPX_H

// Classes of examples/gpx/gpx.xsd, written by hand for speed: what generated ones are measured against.

#include <RkXmlLib16/Generated.h>

#include <memory>
#include <string>

static_assert(RKXML_GENERATED_VERSION == 1, "generate these classes again");

namespace Gpx {

using namespace RkXmlLib16;

// Type of GPS fix (fixType).
enum EFix : int { EFix_none, EFix__2d, EFix__3d, EFix_dgps, EFix_pps };
const wchar_t* EFixToString(int value);
int EFixFromString(const wchar_t* text);

class CExtensionsType;
class CLinkType;
class CEmailType;
class CPersonType;
class CCopyrightType;
class CBoundsType;
class CMetadataType;
class CWptType;
class CRteType;
class CTrksegType;
class CTrkType;
class CGpxType;

// extensionsType: foreign elements, held as they are.
class CExtensionsType : public CXmlGeneratedClass {
 public:
  explicit CExtensionsType(const wchar_t* elementName = L"extensions");
  ~CExtensionsType() override;

  // Elements of any other namespace, repeated.
  CElementCol* GetAnyElement() const { return m_anyElement; }

  CXmlObjectBase* GetBase() override { return this; }
  const wchar_t* GetTargetNamespace() const override;
  const wchar_t* GetNamespace() const override;
  void AccessProperty(int index, bool get, RkVariant& value) override;
  RkXmlLib16Data::CParentElementInfo* GetClassInfo() const override;
  RkXmlLib16Data::CElementInfo** GetClassElementInfo() const override;
  RkXmlLib16Data::CAttributeInfo** GetClassAttributeInfo() const override;
  void BeginFromXml_Int(CXmlElement* element, CXmlElement* firstChild, const CSerializationContext& context,
                        bool isOptionalChoice) override;

 private:
  CSmartPtr<CElementCol> m_anyElement;
};

// linkType: a link to a resource.
class CLinkType : public CXmlGeneratedClass {
 public:
  explicit CLinkType(const wchar_t* elementName = L"link");
  ~CLinkType() override;

  // Element text (string, optional).
  bool HasText() const { return m_text != nullptr; }
  std::wstring GetText() const { return m_text ? *m_text : std::wstring(); }
  void SetText(const std::wstring& value);
  void ClearText();

  // Element type (string, optional).
  bool HasType() const { return m_type != nullptr; }
  std::wstring GetType() const { return m_type ? *m_type : std::wstring(); }
  void SetType(const std::wstring& value);
  void ClearType();

  // Attribute href (anyURI).
  const std::wstring& GetHref() const { return m_href; }
  void SetHref(const std::wstring& value);

  CXmlObjectBase* GetBase() override { return this; }
  const wchar_t* GetTargetNamespace() const override;
  const wchar_t* GetNamespace() const override;
  void AccessProperty(int index, bool get, RkVariant& value) override;
  RkXmlLib16Data::CParentElementInfo* GetClassInfo() const override;
  RkXmlLib16Data::CElementInfo** GetClassElementInfo() const override;
  RkXmlLib16Data::CAttributeInfo** GetClassAttributeInfo() const override;
  void BeginFromXml_Int(CXmlElement* element, CXmlElement* firstChild, const CSerializationContext& context,
                        bool isOptionalChoice) override;

 private:
  std::unique_ptr<std::wstring> m_text;
  std::unique_ptr<std::wstring> m_type;
  std::wstring m_href;
};

class CLinkTypeCol : public CXmlObjectCollection<CLinkType> {
 public:
  CLinkTypeCol(const wchar_t* name, int minOccurs, int maxOccurs);
  ~CLinkTypeCol() override;
};

// emailType: an address in two halves.
class CEmailType : public CXmlGeneratedClass {
 public:
  explicit CEmailType(const wchar_t* elementName = L"email");
  ~CEmailType() override;

  // Attribute id (string).
  const std::wstring& GetId() const { return m_id; }
  void SetId(const std::wstring& value);

  // Attribute domain (string).
  const std::wstring& GetDomain() const { return m_domain; }
  void SetDomain(const std::wstring& value);

  CXmlObjectBase* GetBase() override { return this; }
  const wchar_t* GetTargetNamespace() const override;
  const wchar_t* GetNamespace() const override;
  void AccessProperty(int index, bool get, RkVariant& value) override;
  RkXmlLib16Data::CParentElementInfo* GetClassInfo() const override;
  RkXmlLib16Data::CElementInfo** GetClassElementInfo() const override;
  RkXmlLib16Data::CAttributeInfo** GetClassAttributeInfo() const override;
  void BeginFromXml_Int(CXmlElement* element, CXmlElement* firstChild, const CSerializationContext& context,
                        bool isOptionalChoice) override;

 private:
  std::wstring m_id;
  std::wstring m_domain;
};

// personType: a person or organisation.
class CPersonType : public CXmlGeneratedClass {
 public:
  explicit CPersonType(const wchar_t* elementName = L"author");
  ~CPersonType() override;

  // Element name (string, optional).
  bool HasName() const { return m_name != nullptr; }
  std::wstring GetName() const { return m_name ? *m_name : std::wstring(); }
  void SetName(const std::wstring& value);
  void ClearName();

  // Element email (EmailType, optional).
  CEmailType* GetEmail() const { return m_email; }
  void SetEmail(CEmailType* value);  // counted

  // Element link (LinkType, optional).
  CLinkType* GetLink() const { return m_link; }
  void SetLink(CLinkType* value);  // counted

  CXmlObjectBase* GetBase() override { return this; }
  const wchar_t* GetTargetNamespace() const override;
  const wchar_t* GetNamespace() const override;
  void AccessProperty(int index, bool get, RkVariant& value) override;
  RkXmlLib16Data::CParentElementInfo* GetClassInfo() const override;
  RkXmlLib16Data::CElementInfo** GetClassElementInfo() const override;
  RkXmlLib16Data::CAttributeInfo** GetClassAttributeInfo() const override;
  void BeginFromXml_Int(CXmlElement* element, CXmlElement* firstChild, const CSerializationContext& context,
                        bool isOptionalChoice) override;

 private:
  std::unique_ptr<std::wstring> m_name;
  CSmartPtr<CEmailType> m_email;
  CSmartPtr<CLinkType> m_link;
};

// copyrightType.
class CCopyrightType : public CXmlGeneratedClass {
 public:
  explicit CCopyrightType(const wchar_t* elementName = L"copyright");
  ~CCopyrightType() override;

  // Element year (gYear, optional).
  bool HasYear() const { return m_hasYear; }
  unsigned short GetYear() const { return m_year; }
  void SetYear(unsigned short value);
  void ClearYear();

  // Element license (anyURI, optional).
  bool HasLicense() const { return m_license != nullptr; }
  std::wstring GetLicense() const { return m_license ? *m_license : std::wstring(); }
  void SetLicense(const std::wstring& value);
  void ClearLicense();

  // Attribute author (string).
  const std::wstring& GetAuthor() const { return m_author; }
  void SetAuthor(const std::wstring& value);

  CXmlObjectBase* GetBase() override { return this; }
  const wchar_t* GetTargetNamespace() const override;
  const wchar_t* GetNamespace() const override;
  void AccessProperty(int index, bool get, RkVariant& value) override;
  RkXmlLib16Data::CParentElementInfo* GetClassInfo() const override;
  RkXmlLib16Data::CElementInfo** GetClassElementInfo() const override;
  RkXmlLib16Data::CAttributeInfo** GetClassAttributeInfo() const override;
  void BeginFromXml_Int(CXmlElement* element, CXmlElement* firstChild, const CSerializationContext& context,
                        bool isOptionalChoice) override;

 private:
  unsigned short m_year = 0;
  bool m_hasYear = false;
  std::unique_ptr<std::wstring> m_license;
  std::wstring m_author;
};

// boundsType: the corners of a map area, in degrees.
class CBoundsType : public CXmlGeneratedClass {
 public:
  explicit CBoundsType(const wchar_t* elementName = L"bounds");
  ~CBoundsType() override;

  // Attribute minlat (decimal).
  const CDecimal& GetMinlat() const { return m_minlat; }
  void SetMinlat(const CDecimal& value);

  // Attribute minlon (decimal).
  const CDecimal& GetMinlon() const { return m_minlon; }
  void SetMinlon(const CDecimal& value);

  // Attribute maxlat (decimal).
  const CDecimal& GetMaxlat() const { return m_maxlat; }
  void SetMaxlat(const CDecimal& value);

  // Attribute maxlon (decimal).
  const CDecimal& GetMaxlon() const { return m_maxlon; }
  void SetMaxlon(const CDecimal& value);

  CXmlObjectBase* GetBase() override { return this; }
  const wchar_t* GetTargetNamespace() const override;
  const wchar_t* GetNamespace() const override;
  void AccessProperty(int index, bool get, RkVariant& value) override;
  RkXmlLib16Data::CParentElementInfo* GetClassInfo() const override;
  RkXmlLib16Data::CElementInfo** GetClassElementInfo() const override;
  RkXmlLib16Data::CAttributeInfo** GetClassAttributeInfo() const override;
  void BeginFromXml_Int(CXmlElement* element, CXmlElement* firstChild, const CSerializationContext& context,
                        bool isOptionalChoice) override;

 private:
  CDecimal m_minlat;
  CDecimal m_minlon;
  CDecimal m_maxlat;
  CDecimal m_maxlon;
};

// metadataType: what the file tells about itself.
class CMetadataType : public CXmlGeneratedClass {
 public:
  explicit CMetadataType(const wchar_t* elementName = L"metadata");
  ~CMetadataType() override;

  // Element name (string, optional).
  bool HasName() const { return m_name != nullptr; }
  std::wstring GetName() const { return m_name ? *m_name : std::wstring(); }
  void SetName(const std::wstring& value);
  void ClearName();

  // Element desc (string, optional).
  bool HasDesc() const { return m_desc != nullptr; }
  std::wstring GetDesc() const { return m_desc ? *m_desc : std::wstring(); }
  void SetDesc(const std::wstring& value);
  void ClearDesc();

  // Element author (PersonType, optional).
  CPersonType* GetAuthor() const { return m_author; }
  void SetAuthor(CPersonType* value);  // counted

  // Element copyright (CopyrightType, optional).
  CCopyrightType* GetCopyright() const { return m_copyright; }
  void SetCopyright(CCopyrightType* value);  // counted

  // Element link (LinkType, repeated).
  CLinkTypeCol* GetLink() const;

  // Element time (dateTime, optional).
  bool HasTime() const { return m_hasTime; }
  const CDateTime& GetTime() const { return m_time; }
  void SetTime(const CDateTime& value);
  void ClearTime();

  // Element keywords (string, optional).
  bool HasKeywords() const { return m_keywords != nullptr; }
  std::wstring GetKeywords() const { return m_keywords ? *m_keywords : std::wstring(); }
  void SetKeywords(const std::wstring& value);
  void ClearKeywords();

  // Element bounds (BoundsType, optional).
  CBoundsType* GetBounds() const { return m_bounds; }
  void SetBounds(CBoundsType* value);  // counted

  // Element extensions (ExtensionsType, optional).
  CExtensionsType* GetExtensions() const { return m_extensions; }
  void SetExtensions(CExtensionsType* value);  // counted

  CXmlObjectBase* GetBase() override { return this; }
  const wchar_t* GetTargetNamespace() const override;
  const wchar_t* GetNamespace() const override;
  void AccessProperty(int index, bool get, RkVariant& value) override;
  RkXmlLib16Data::CParentElementInfo* GetClassInfo() const override;
  RkXmlLib16Data::CElementInfo** GetClassElementInfo() const override;
  RkXmlLib16Data::CAttributeInfo** GetClassAttributeInfo() const override;
  void BeginFromXml_Int(CXmlElement* element, CXmlElement* firstChild, const CSerializationContext& context,
                        bool isOptionalChoice) override;

 private:
  bool m_hasTime = false;
  std::unique_ptr<std::wstring> m_name;
  std::unique_ptr<std::wstring> m_desc;
  CSmartPtr<CPersonType> m_author;
  CSmartPtr<CCopyrightType> m_copyright;
  mutable CSmartPtr<CLinkTypeCol> m_link;  // made by its first use
  std::unique_ptr<std::wstring> m_keywords;
  CSmartPtr<CBoundsType> m_bounds;
  CSmartPtr<CExtensionsType> m_extensions;
  CDateTime m_time;
};

// wptType: a waypoint, or a point of a route or track.
class CWptType : public CXmlGeneratedClass {
 public:
  explicit CWptType(const wchar_t* elementName = L"wpt");
  ~CWptType() override;

  // Element ele (decimal, optional).
  bool HasEle() const { return m_ele != nullptr; }
  CDecimal GetEle() const { return m_ele ? *m_ele : CDecimal(); }
  void SetEle(const CDecimal& value);
  void ClearEle();

  // Element time (dateTime, optional).
  bool HasTime() const { return m_hasTime; }
  const CDateTime& GetTime() const { return m_time; }
  void SetTime(const CDateTime& value);
  void ClearTime();

  // Element magvar (decimal, optional).
  bool HasMagvar() const { return m_magvar != nullptr; }
  CDecimal GetMagvar() const { return m_magvar ? *m_magvar : CDecimal(); }
  void SetMagvar(const CDecimal& value);
  void ClearMagvar();

  // Element geoidheight (decimal, optional).
  bool HasGeoidheight() const { return m_geoidheight != nullptr; }
  CDecimal GetGeoidheight() const { return m_geoidheight ? *m_geoidheight : CDecimal(); }
  void SetGeoidheight(const CDecimal& value);
  void ClearGeoidheight();

  // Element name (string, optional).
  bool HasName() const { return m_name != nullptr; }
  std::wstring GetName() const { return m_name ? *m_name : std::wstring(); }
  void SetName(const std::wstring& value);
  void ClearName();

  // Element cmt (string, optional).
  bool HasCmt() const { return m_cmt != nullptr; }
  std::wstring GetCmt() const { return m_cmt ? *m_cmt : std::wstring(); }
  void SetCmt(const std::wstring& value);
  void ClearCmt();

  // Element desc (string, optional).
  bool HasDesc() const { return m_desc != nullptr; }
  std::wstring GetDesc() const { return m_desc ? *m_desc : std::wstring(); }
  void SetDesc(const std::wstring& value);
  void ClearDesc();

  // Element src (string, optional).
  bool HasSrc() const { return m_src != nullptr; }
  std::wstring GetSrc() const { return m_src ? *m_src : std::wstring(); }
  void SetSrc(const std::wstring& value);
  void ClearSrc();

  // Element link (LinkType, repeated).
  CLinkTypeCol* GetLink() const;

  // Element sym (string, optional).
  bool HasSym() const { return m_sym != nullptr; }
  std::wstring GetSym() const { return m_sym ? *m_sym : std::wstring(); }
  void SetSym(const std::wstring& value);
  void ClearSym();

  // Element type (string, optional).
  bool HasType() const { return m_type != nullptr; }
  std::wstring GetType() const { return m_type ? *m_type : std::wstring(); }
  void SetType(const std::wstring& value);
  void ClearType();

  // Element fix (EFix, optional).
  bool HasFix() const { return m_hasFix; }
  EFix GetFix() const { return m_fix; }
  void SetFix(EFix value);
  void ClearFix();

  // Element sat (integer, optional).
  bool HasSat() const { return m_sat != nullptr; }
  CBigInteger GetSat() const { return m_sat ? *m_sat : CBigInteger(); }
  void SetSat(const CBigInteger& value);
  void ClearSat();

  // Element hdop (decimal, optional).
  bool HasHdop() const { return m_hdop != nullptr; }
  CDecimal GetHdop() const { return m_hdop ? *m_hdop : CDecimal(); }
  void SetHdop(const CDecimal& value);
  void ClearHdop();

  // Element vdop (decimal, optional).
  bool HasVdop() const { return m_vdop != nullptr; }
  CDecimal GetVdop() const { return m_vdop ? *m_vdop : CDecimal(); }
  void SetVdop(const CDecimal& value);
  void ClearVdop();

  // Element pdop (decimal, optional).
  bool HasPdop() const { return m_pdop != nullptr; }
  CDecimal GetPdop() const { return m_pdop ? *m_pdop : CDecimal(); }
  void SetPdop(const CDecimal& value);
  void ClearPdop();

  // Element ageofdgpsdata (decimal, optional).
  bool HasAgeofdgpsdata() const { return m_ageofdgpsdata != nullptr; }
  CDecimal GetAgeofdgpsdata() const { return m_ageofdgpsdata ? *m_ageofdgpsdata : CDecimal(); }
  void SetAgeofdgpsdata(const CDecimal& value);
  void ClearAgeofdgpsdata();

  // Element dgpsid (int, optional).
  bool HasDgpsid() const { return m_hasDgpsid; }
  long GetDgpsid() const { return m_dgpsid; }
  void SetDgpsid(long value);
  void ClearDgpsid();

  // Element extensions (ExtensionsType, optional).
  CExtensionsType* GetExtensions() const { return m_extensions; }
  void SetExtensions(CExtensionsType* value);  // counted

  // Attribute lat (decimal).
  const CDecimal& GetLat() const { return m_lat; }
  void SetLat(const CDecimal& value);

  // Attribute lon (decimal).
  const CDecimal& GetLon() const { return m_lon; }
  void SetLon(const CDecimal& value);

  CXmlObjectBase* GetBase() override { return this; }
  const wchar_t* GetTargetNamespace() const override;
  const wchar_t* GetNamespace() const override;
  void AccessProperty(int index, bool get, RkVariant& value) override;
  RkXmlLib16Data::CParentElementInfo* GetClassInfo() const override;
  RkXmlLib16Data::CElementInfo** GetClassElementInfo() const override;
  RkXmlLib16Data::CAttributeInfo** GetClassAttributeInfo() const override;
  void BeginFromXml_Int(CXmlElement* element, CXmlElement* firstChild, const CSerializationContext& context,
                        bool isOptionalChoice) override;

 private:
  int m_declaredAs;  // which of the elements of this type the object was made for
  bool m_hasTime = false;
  EFix m_fix = static_cast<EFix>(0);
  bool m_hasFix = false;
  long m_dgpsid = 0;
  bool m_hasDgpsid = false;
  std::unique_ptr<CDecimal> m_ele;
  std::unique_ptr<CDecimal> m_magvar;
  std::unique_ptr<CDecimal> m_geoidheight;
  std::unique_ptr<std::wstring> m_name;
  std::unique_ptr<std::wstring> m_cmt;
  std::unique_ptr<std::wstring> m_desc;
  std::unique_ptr<std::wstring> m_src;
  mutable CSmartPtr<CLinkTypeCol> m_link;  // made by its first use
  std::unique_ptr<std::wstring> m_sym;
  std::unique_ptr<std::wstring> m_type;
  std::unique_ptr<CBigInteger> m_sat;
  std::unique_ptr<CDecimal> m_hdop;
  std::unique_ptr<CDecimal> m_vdop;
  std::unique_ptr<CDecimal> m_pdop;
  std::unique_ptr<CDecimal> m_ageofdgpsdata;
  CSmartPtr<CExtensionsType> m_extensions;
  CDateTime m_time;
  CDecimal m_lat;
  CDecimal m_lon;
};

class CWptTypeCol : public CXmlObjectCollection<CWptType> {
 public:
  CWptTypeCol(const wchar_t* name, int minOccurs, int maxOccurs);
  ~CWptTypeCol() override;
};

// rteType: a route, the points to pass on the way.
class CRteType : public CXmlGeneratedClass {
 public:
  explicit CRteType(const wchar_t* elementName = L"rte");
  ~CRteType() override;

  // Element name (string, optional).
  bool HasName() const { return m_name != nullptr; }
  std::wstring GetName() const { return m_name ? *m_name : std::wstring(); }
  void SetName(const std::wstring& value);
  void ClearName();

  // Element cmt (string, optional).
  bool HasCmt() const { return m_cmt != nullptr; }
  std::wstring GetCmt() const { return m_cmt ? *m_cmt : std::wstring(); }
  void SetCmt(const std::wstring& value);
  void ClearCmt();

  // Element desc (string, optional).
  bool HasDesc() const { return m_desc != nullptr; }
  std::wstring GetDesc() const { return m_desc ? *m_desc : std::wstring(); }
  void SetDesc(const std::wstring& value);
  void ClearDesc();

  // Element src (string, optional).
  bool HasSrc() const { return m_src != nullptr; }
  std::wstring GetSrc() const { return m_src ? *m_src : std::wstring(); }
  void SetSrc(const std::wstring& value);
  void ClearSrc();

  // Element link (LinkType, repeated).
  CLinkTypeCol* GetLink() const;

  // Element number (integer, optional).
  bool HasNumber() const { return m_number != nullptr; }
  CBigInteger GetNumber() const { return m_number ? *m_number : CBigInteger(); }
  void SetNumber(const CBigInteger& value);
  void ClearNumber();

  // Element type (string, optional).
  bool HasType() const { return m_type != nullptr; }
  std::wstring GetType() const { return m_type ? *m_type : std::wstring(); }
  void SetType(const std::wstring& value);
  void ClearType();

  // Element extensions (ExtensionsType, optional).
  CExtensionsType* GetExtensions() const { return m_extensions; }
  void SetExtensions(CExtensionsType* value);  // counted

  // Element rtept (WptType, repeated).
  CWptTypeCol* GetRtept() const;

  CXmlObjectBase* GetBase() override { return this; }
  const wchar_t* GetTargetNamespace() const override;
  const wchar_t* GetNamespace() const override;
  void AccessProperty(int index, bool get, RkVariant& value) override;
  RkXmlLib16Data::CParentElementInfo* GetClassInfo() const override;
  RkXmlLib16Data::CElementInfo** GetClassElementInfo() const override;
  RkXmlLib16Data::CAttributeInfo** GetClassAttributeInfo() const override;
  void BeginFromXml_Int(CXmlElement* element, CXmlElement* firstChild, const CSerializationContext& context,
                        bool isOptionalChoice) override;

 private:
  std::unique_ptr<std::wstring> m_name;
  std::unique_ptr<std::wstring> m_cmt;
  std::unique_ptr<std::wstring> m_desc;
  std::unique_ptr<std::wstring> m_src;
  mutable CSmartPtr<CLinkTypeCol> m_link;  // made by its first use
  std::unique_ptr<CBigInteger> m_number;
  std::unique_ptr<std::wstring> m_type;
  CSmartPtr<CExtensionsType> m_extensions;
  mutable CSmartPtr<CWptTypeCol> m_rtept;  // made by its first use
};

class CRteTypeCol : public CXmlObjectCollection<CRteType> {
 public:
  CRteTypeCol(const wchar_t* name, int minOccurs, int maxOccurs);
  ~CRteTypeCol() override;
};

// trksegType: points recorded without a break.
class CTrksegType : public CXmlGeneratedClass {
 public:
  explicit CTrksegType(const wchar_t* elementName = L"trkseg");
  ~CTrksegType() override;

  // Element trkpt (WptType, repeated).
  CWptTypeCol* GetTrkpt() const;

  // Element extensions (ExtensionsType, optional).
  CExtensionsType* GetExtensions() const { return m_extensions; }
  void SetExtensions(CExtensionsType* value);  // counted

  CXmlObjectBase* GetBase() override { return this; }
  const wchar_t* GetTargetNamespace() const override;
  const wchar_t* GetNamespace() const override;
  void AccessProperty(int index, bool get, RkVariant& value) override;
  RkXmlLib16Data::CParentElementInfo* GetClassInfo() const override;
  RkXmlLib16Data::CElementInfo** GetClassElementInfo() const override;
  RkXmlLib16Data::CAttributeInfo** GetClassAttributeInfo() const override;
  void BeginFromXml_Int(CXmlElement* element, CXmlElement* firstChild, const CSerializationContext& context,
                        bool isOptionalChoice) override;

 private:
  mutable CSmartPtr<CWptTypeCol> m_trkpt;  // made by its first use
  CSmartPtr<CExtensionsType> m_extensions;
};

class CTrksegTypeCol : public CXmlObjectCollection<CTrksegType> {
 public:
  CTrksegTypeCol(const wchar_t* name, int minOccurs, int maxOccurs);
  ~CTrksegTypeCol() override;
};

// trkType: a track, the points of a journey made.
class CTrkType : public CXmlGeneratedClass {
 public:
  explicit CTrkType(const wchar_t* elementName = L"trk");
  ~CTrkType() override;

  // Element name (string, optional).
  bool HasName() const { return m_name != nullptr; }
  std::wstring GetName() const { return m_name ? *m_name : std::wstring(); }
  void SetName(const std::wstring& value);
  void ClearName();

  // Element cmt (string, optional).
  bool HasCmt() const { return m_cmt != nullptr; }
  std::wstring GetCmt() const { return m_cmt ? *m_cmt : std::wstring(); }
  void SetCmt(const std::wstring& value);
  void ClearCmt();

  // Element desc (string, optional).
  bool HasDesc() const { return m_desc != nullptr; }
  std::wstring GetDesc() const { return m_desc ? *m_desc : std::wstring(); }
  void SetDesc(const std::wstring& value);
  void ClearDesc();

  // Element src (string, optional).
  bool HasSrc() const { return m_src != nullptr; }
  std::wstring GetSrc() const { return m_src ? *m_src : std::wstring(); }
  void SetSrc(const std::wstring& value);
  void ClearSrc();

  // Element link (LinkType, repeated).
  CLinkTypeCol* GetLink() const;

  // Element number (integer, optional).
  bool HasNumber() const { return m_number != nullptr; }
  CBigInteger GetNumber() const { return m_number ? *m_number : CBigInteger(); }
  void SetNumber(const CBigInteger& value);
  void ClearNumber();

  // Element type (string, optional).
  bool HasType() const { return m_type != nullptr; }
  std::wstring GetType() const { return m_type ? *m_type : std::wstring(); }
  void SetType(const std::wstring& value);
  void ClearType();

  // Element extensions (ExtensionsType, optional).
  CExtensionsType* GetExtensions() const { return m_extensions; }
  void SetExtensions(CExtensionsType* value);  // counted

  // Element trkseg (TrksegType, repeated).
  CTrksegTypeCol* GetTrkseg() const;

  CXmlObjectBase* GetBase() override { return this; }
  const wchar_t* GetTargetNamespace() const override;
  const wchar_t* GetNamespace() const override;
  void AccessProperty(int index, bool get, RkVariant& value) override;
  RkXmlLib16Data::CParentElementInfo* GetClassInfo() const override;
  RkXmlLib16Data::CElementInfo** GetClassElementInfo() const override;
  RkXmlLib16Data::CAttributeInfo** GetClassAttributeInfo() const override;
  void BeginFromXml_Int(CXmlElement* element, CXmlElement* firstChild, const CSerializationContext& context,
                        bool isOptionalChoice) override;

 private:
  std::unique_ptr<std::wstring> m_name;
  std::unique_ptr<std::wstring> m_cmt;
  std::unique_ptr<std::wstring> m_desc;
  std::unique_ptr<std::wstring> m_src;
  mutable CSmartPtr<CLinkTypeCol> m_link;  // made by its first use
  std::unique_ptr<CBigInteger> m_number;
  std::unique_ptr<std::wstring> m_type;
  CSmartPtr<CExtensionsType> m_extensions;
  mutable CSmartPtr<CTrksegTypeCol> m_trkseg;  // made by its first use
};

class CTrkTypeCol : public CXmlObjectCollection<CTrkType> {
 public:
  CTrkTypeCol(const wchar_t* name, int minOccurs, int maxOccurs);
  ~CTrkTypeCol() override;
};

// gpxType: the document.
class CGpxType : public CXmlGeneratedClass {
 public:
  explicit CGpxType(const wchar_t* elementName = L"gpx");
  ~CGpxType() override;

  // Element metadata (MetadataType, optional).
  CMetadataType* GetMetadata() const { return m_metadata; }
  void SetMetadata(CMetadataType* value);  // counted

  // Element wpt (WptType, repeated).
  CWptTypeCol* GetWpt() const;

  // Element rte (RteType, repeated).
  CRteTypeCol* GetRte() const;

  // Element trk (TrkType, repeated).
  CTrkTypeCol* GetTrk() const;

  // Element extensions (ExtensionsType, optional).
  CExtensionsType* GetExtensions() const { return m_extensions; }
  void SetExtensions(CExtensionsType* value);  // counted

  // Attribute version (string).
  const std::wstring& GetVersion() const { return m_version; }
  void SetVersion(const std::wstring& value);

  // Attribute creator (string).
  const std::wstring& GetCreator() const { return m_creator; }
  void SetCreator(const std::wstring& value);

  CXmlObjectBase* GetBase() override { return this; }
  const wchar_t* GetTargetNamespace() const override;
  const wchar_t* GetNamespace() const override;
  void AccessProperty(int index, bool get, RkVariant& value) override;
  RkXmlLib16Data::CParentElementInfo* GetClassInfo() const override;
  RkXmlLib16Data::CElementInfo** GetClassElementInfo() const override;
  RkXmlLib16Data::CAttributeInfo** GetClassAttributeInfo() const override;
  void BeginFromXml_Int(CXmlElement* element, CXmlElement* firstChild, const CSerializationContext& context,
                        bool isOptionalChoice) override;

 private:
  CSmartPtr<CMetadataType> m_metadata;
  mutable CSmartPtr<CWptTypeCol> m_wpt;  // made by its first use
  mutable CSmartPtr<CRteTypeCol> m_rte;  // made by its first use
  mutable CSmartPtr<CTrkTypeCol> m_trk;  // made by its first use
  CSmartPtr<CExtensionsType> m_extensions;
  std::wstring m_version;
  std::wstring m_creator;
};

// Creates the objects that the records ask for.
class CGpxFactory : public CClassfactoryBase {
 public:
  enum ClassId {
    Id_ExtensionsType,
    Id_LinkType,
    Id_EmailType,
    Id_PersonType,
    Id_CopyrightType,
    Id_BoundsType,
    Id_MetadataType,
    Id_WptType,
    Id_RteType,
    Id_TrksegType,
    Id_TrkType,
    Id_GpxType
  };
  // The new object has the count 0.
  static CSmartPtr<CXmlObjectBase> Create(int classId, const wchar_t* elementName);
};

}  // namespace Gpx

#endif
