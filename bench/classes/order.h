#ifndef RKXMLLIB16_BENCH_CLASSES_ORDER_H
#define RKXMLLIB16_BENCH_CLASSES_ORDER_H

// Classes of examples/order/order.xsd, written by hand for speed: what generated ones are measured against.

#include <RkXmlLib16/Generated.h>

#include <memory>
#include <string>

static_assert(RKXML_GENERATED_VERSION == 1, "generate these classes again");

namespace Order {

using namespace RkXmlLib16;

// currencyType.
enum ECurrency : int { ECurrency_EUR, ECurrency_USD, ECurrency_CHF };
const wchar_t* ECurrencyToString(int value);
int ECurrencyFromString(const wchar_t* text);

// rateType: the rate of value added tax.
enum ERate : int { ERate_none, ERate_reduced, ERate_standard };
const wchar_t* ERateToString(int value);
int ERateFromString(const wchar_t* text);

// countryType.
enum ECountry : int { ECountry_AT, ECountry_CH, ECountry_DE, ECountry_US };
const wchar_t* ECountryToString(int value);
int ECountryFromString(const wchar_t* text);

class CCustomerType;
class CPersonType;
class CCompanyType;
class CAddressType;
class CGoodsType;
class CServiceType;
class CLine;
class CLinesType;
class CCardType;
class CTransferType;
class CPaymentType;
class COrderType;

// customerType: abstract, a person or a company.
class CCustomerType : public CXmlGeneratedClass {
 public:
  explicit CCustomerType(const wchar_t* elementName);
  ~CCustomerType() override;

  // Element email (string, optional).
  bool HasEmail() const { return m_email != nullptr; }
  std::wstring GetEmail() const { return m_email ? *m_email : std::wstring(); }
  void SetEmail(const std::wstring& value);
  void ClearEmail();

  CXmlObjectBase* GetBase() override { return this; }
  const wchar_t* GetTargetNamespace() const override;
  const wchar_t* GetNamespace() const override;

 protected:
  std::unique_ptr<std::wstring> m_email;
};

// personType.
class CPersonType : public CCustomerType {
 public:
  explicit CPersonType(const wchar_t* elementName = L"customer");
  ~CPersonType() override;

  // Element name (string).
  const std::wstring& GetName() const { return m_name; }
  void SetName(const std::wstring& value);

  // Element born (date, optional).
  bool HasBorn() const { return m_hasBorn; }
  const CDateTime& GetBorn() const { return m_born; }
  void SetBorn(const CDateTime& value);
  void ClearBorn();

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
  bool m_hasBorn = false;
  CDateTime m_born;
  std::wstring m_name;
};

// companyType.
class CCompanyType : public CCustomerType {
 public:
  explicit CCompanyType(const wchar_t* elementName = L"customer");
  ~CCompanyType() override;

  // Element name (string).
  const std::wstring& GetName() const { return m_name; }
  void SetName(const std::wstring& value);

  // Element vat (string).
  const std::wstring& GetVat() const { return m_vat; }
  void SetVat(const std::wstring& value);

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
  std::wstring m_name;
  std::wstring m_vat;
};

// addressType: members in any order.
class CAddressType : public CXmlGeneratedClass {
 public:
  explicit CAddressType(const wchar_t* elementName = L"delivery");
  ~CAddressType() override;

  // Element street (string).
  const std::wstring& GetStreet() const { return m_street; }
  void SetStreet(const std::wstring& value);

  // Element city (string).
  const std::wstring& GetCity() const { return m_city; }
  void SetCity(const std::wstring& value);

  // Element zip (string, optional).
  bool HasZip() const { return m_zip != nullptr; }
  std::wstring GetZip() const { return m_zip ? *m_zip : std::wstring(); }
  void SetZip(const std::wstring& value);
  void ClearZip();

  // Element country (ECountry).
  ECountry GetCountry() const { return m_country; }
  void SetCountry(ECountry value);

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
  ECountry m_country = static_cast<ECountry>(0);
  std::unique_ptr<std::wstring> m_zip;
  std::wstring m_street;
  std::wstring m_city;
};

// goodsType: a number of equal articles.
class CGoodsType : public CXmlGeneratedClass {
 public:
  explicit CGoodsType(const wchar_t* elementName = L"goods");
  ~CGoodsType() override;

  // Element name (string).
  const std::wstring& GetName() const { return m_name; }
  void SetName(const std::wstring& value);

  // Element quantity (int).
  long GetQuantity() const { return m_quantity; }
  void SetQuantity(long value);

  // Element price (decimal).
  const CDecimal& GetPrice() const { return m_price; }
  void SetPrice(const CDecimal& value);

  // Attribute sku (string).
  const std::wstring& GetSku() const { return m_sku; }
  void SetSku(const std::wstring& value);

  // Attribute vat (ERate, optional).
  bool HasVat() const { return m_hasVat; }
  ERate GetVat() const { return m_vat; }
  void SetVat(ERate value);
  void ClearVat();

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
  long m_quantity = 0;
  ERate m_vat = ERate_standard;
  bool m_hasVat = false;
  CDecimal m_price;
  std::wstring m_name;
  std::wstring m_sku;
};

// serviceType: work done.
class CServiceType : public CXmlGeneratedClass {
 public:
  explicit CServiceType(const wchar_t* elementName = L"service");
  ~CServiceType() override;

  // Element name (string).
  const std::wstring& GetName() const { return m_name; }
  void SetName(const std::wstring& value);

  // Element time (duration).
  const CDateTimeSpan& GetTime() const { return m_time; }
  void SetTime(const CDateTimeSpan& value);

  // Element price (decimal).
  const CDecimal& GetPrice() const { return m_price; }
  void SetPrice(const CDecimal& value);

  // Attribute vat (ERate, optional).
  bool HasVat() const { return m_hasVat; }
  ERate GetVat() const { return m_vat; }
  void SetVat(ERate value);
  void ClearVat();

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
  ERate m_vat = ERate_standard;
  bool m_hasVat = false;
  CDateTimeSpan m_time;
  CDecimal m_price;
  std::wstring m_name;
};

// One alternative of linesType: goods or a service.
class CLine : public CXmlGeneratedClass {
 public:
  explicit CLine(const wchar_t* elementName = L"line");
  ~CLine() override;

  // Element goods (GoodsType, optional).
  CGoodsType* GetGoods() const { return m_goods; }
  void SetGoods(CGoodsType* value);  // counted

  // Element service (ServiceType, optional).
  CServiceType* GetService() const { return m_service; }
  void SetService(CServiceType* value);  // counted

  CXmlObjectBase* GetBase() override { return this; }
  const wchar_t* GetTargetNamespace() const override;
  const wchar_t* GetNamespace() const override;
  void AccessProperty(int index, bool get, RkVariant& value) override;
  RkXmlLib16Data::CParentElementInfo* GetClassInfo() const override;
  RkXmlLib16Data::CElementInfo** GetClassElementInfo() const override;
  RkXmlLib16Data::CAttributeInfo** GetClassAttributeInfo() const override;
  void BeginFromXml_Int(CXmlElement* element, CXmlElement* firstChild, const CSerializationContext& context,
                        bool isOptionalChoice) override;

  // The name of the member that is set; empty when none is.
  const std::wstring& GetSelected() const { return m_selected; }

 private:
  std::wstring m_selected;
  CSmartPtr<CGoodsType> m_goods;
  CSmartPtr<CServiceType> m_service;
};

class CLineCol : public CXmlObjectCollection<CLine> {
 public:
  CLineCol(const wchar_t* name, int minOccurs, int maxOccurs);
  ~CLineCol() override;
};

// linesType: a repeating choice.
class CLinesType : public CXmlGeneratedClass {
 public:
  explicit CLinesType(const wchar_t* elementName = L"lines");
  ~CLinesType() override;

  // The alternatives, in document order.
  CLineCol* GetLine() const { return m_line; }

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
  CSmartPtr<CLineCol> m_line;
};

// cardType.
class CCardType : public CXmlGeneratedClass {
 public:
  explicit CCardType(const wchar_t* elementName = L"card");
  ~CCardType() override;

  // Element number (string).
  const std::wstring& GetNumber() const { return m_number; }
  void SetNumber(const std::wstring& value);

  // Element expires (gYearMonth).
  const CDateTime& GetExpires() const { return m_expires; }
  void SetExpires(const CDateTime& value);

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
  CDateTime m_expires;
  std::wstring m_number;
};

// transferType.
class CTransferType : public CXmlGeneratedClass {
 public:
  explicit CTransferType(const wchar_t* elementName = L"transfer");
  ~CTransferType() override;

  // Element iban (string).
  const std::wstring& GetIban() const { return m_iban; }
  void SetIban(const std::wstring& value);

  // Element reference (string, optional).
  bool HasReference() const { return m_reference != nullptr; }
  std::wstring GetReference() const { return m_reference ? *m_reference : std::wstring(); }
  void SetReference(const std::wstring& value);
  void ClearReference();

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
  std::unique_ptr<std::wstring> m_reference;
  std::wstring m_iban;
};

// paymentType: one of three ways to pay.
class CPaymentType : public CXmlGeneratedClass {
 public:
  explicit CPaymentType(const wchar_t* elementName = L"payment");
  ~CPaymentType() override;

  // Element card (CardType, optional).
  CCardType* GetCard() const { return m_card; }
  void SetCard(CCardType* value);  // counted

  // Element transfer (TransferType, optional).
  CTransferType* GetTransfer() const { return m_transfer; }
  void SetTransfer(CTransferType* value);  // counted

  // Element cash (decimal, optional).
  bool HasCash() const { return m_cash != nullptr; }
  CDecimal GetCash() const { return m_cash ? *m_cash : CDecimal(); }
  void SetCash(const CDecimal& value);
  void ClearCash();

  CXmlObjectBase* GetBase() override { return this; }
  const wchar_t* GetTargetNamespace() const override;
  const wchar_t* GetNamespace() const override;
  void AccessProperty(int index, bool get, RkVariant& value) override;
  RkXmlLib16Data::CParentElementInfo* GetClassInfo() const override;
  RkXmlLib16Data::CElementInfo** GetClassElementInfo() const override;
  RkXmlLib16Data::CAttributeInfo** GetClassAttributeInfo() const override;
  void BeginFromXml_Int(CXmlElement* element, CXmlElement* firstChild, const CSerializationContext& context,
                        bool isOptionalChoice) override;

  // The name of the member that is set; empty when none is.
  const std::wstring& GetSelected() const { return m_selected; }

 private:
  std::wstring m_selected;
  CSmartPtr<CCardType> m_card;
  CSmartPtr<CTransferType> m_transfer;
  std::unique_ptr<CDecimal> m_cash;
};

// orderType: the document.
class COrderType : public CXmlGeneratedClass {
 public:
  explicit COrderType(const wchar_t* elementName = L"order");
  ~COrderType() override;

  // Element customer (CustomerType).
  CCustomerType* GetCustomer() const { return m_customer; }
  void SetCustomer(CCustomerType* value);  // counted

  // Element delivery (AddressType).
  CAddressType* GetDelivery() const { return m_delivery; }
  void SetDelivery(CAddressType* value);  // counted, not null

  // Element lines (LinesType).
  CLinesType* GetLines() const { return m_lines; }
  void SetLines(CLinesType* value);  // counted, not null

  // Element payment (PaymentType).
  CPaymentType* GetPayment() const { return m_payment; }
  void SetPayment(CPaymentType* value);  // counted, not null

  // Element due (date, nillable).
  bool IsDueNil() const { return m_dueNil; }
  void SetDueNil();
  const CDateTime& GetDue() const { return m_due; }
  void SetDue(const CDateTime& value);

  // Element note (string, repeated).
  CstringCol* GetNote() const { return m_note; }

  // Elements of any other namespace, optional.
  CElement* GetAnyElement() const { return m_anyElement; }
  void SetAnyElement(CElement* value);  // counted

  // Attribute id (string).
  const std::wstring& GetId() const { return m_id; }
  void SetId(const std::wstring& value);

  // Attribute currency (ECurrency, optional).
  bool HasCurrency() const { return m_hasCurrency; }
  ECurrency GetCurrency() const { return m_currency; }
  void SetCurrency(ECurrency value);
  void ClearCurrency();

  // Attribute placed (dateTime, optional).
  bool HasPlaced() const { return m_hasPlaced; }
  const CDateTime& GetPlaced() const { return m_placed; }
  void SetPlaced(const CDateTime& value);
  void ClearPlaced();

  // Attributes of any other namespace.
  CAttributeCol* GetAnyAttribute() const { return m_anyAttribute; }

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
  bool m_dueNil = true;
  ECurrency m_currency = ECurrency_EUR;
  bool m_hasCurrency = false;
  bool m_hasPlaced = false;
  CSmartPtr<CCustomerType> m_customer;
  CSmartPtr<CAddressType> m_delivery;
  CSmartPtr<CLinesType> m_lines;
  CSmartPtr<CPaymentType> m_payment;
  CSmartPtr<CstringCol> m_note;
  CSmartPtr<CElement> m_anyElement;
  CSmartPtr<CAttributeCol> m_anyAttribute;
  CDateTime m_due;
  CDateTime m_placed;
  std::wstring m_id;
};

// Creates the objects that the records ask for.
class COrderFactory : public CClassfactoryBase {
 public:
  enum ClassId {
    Id_PersonType,
    Id_CompanyType,
    Id_AddressType,
    Id_GoodsType,
    Id_ServiceType,
    Id_Line,
    Id_LinesType,
    Id_CardType,
    Id_TransferType,
    Id_PaymentType,
    Id_OrderType
  };
  // The new object has the count 0.
  static CSmartPtr<CXmlObjectBase> Create(int classId, const wchar_t* elementName);
  // The class that xsi:type names; null for an unknown or missing type.
  static CSmartPtr<CXmlObjectBase> CreateCustomerType(CXmlElement* element);
};

}  // namespace Order

#endif
