// Objects without classes: their records come from the binding of a schema at run time. In every entry point they
// behave like objects of a generated class.
//
//   CSchemaSet schemas;
//   schemas.AddFile(L"order.xsd");
//   if (!schemas.Resolve()) ...
//   const CBinding binding(schemas);
//   const CDynamicSchema schema(binding);
//   const CSmartPtr<CDynamicObject> order = schema.NewDocument({L"urn:example:order", L"order"});
//   order->FromXmlFile(L"order.xml");
//   order->Get(L"@currency").GetString();  // L"EUR"
//   order->ToJson();                       // with numbers, and arrays where the schema repeats elements
#ifndef RKXMLLIB16_SCHEMA_DYNAMIC_DYNAMICOBJECT_H
#define RKXMLLIB16_SCHEMA_DYNAMIC_DYNAMICOBJECT_H

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "RkXmlLib16/RkXmlLib16.h"
#include "schema/bind/Binding.h"

namespace RkXmlSchema {

class CDynamicClass;
class CDynamicObject;

// The classes of a binding, ready to make objects. It outlives its objects, and the binding outlives it. Threads may
// share it; records are made when the first object needs them.
class CDynamicSchema {
 public:
  explicit CDynamicSchema(const CBinding& binding);
  CDynamicSchema(const CDynamicSchema&) = delete;
  CDynamicSchema& operator=(const CDynamicSchema&) = delete;
  ~CDynamicSchema();

  const CBinding& GetBinding() const noexcept;

  // A new object for a document of this global element; null when there is none or it is abstract, or its type is.
  RkXmlLib16::CSmartPtr<CDynamicObject> NewDocument(const QName& element) const;
  // A new object of a class of the binding, for the element if there is one.
  RkXmlLib16::CSmartPtr<CDynamicObject> New(const ClassBinding& object,
                                            const ElementDeclaration* element = nullptr) const;
  // The object for the root element of a document that is loaded, not read yet: by its name, or by its xsi:type. Throws
  // CRkValidationException when the schema does not declare the element, or it is abstract, or the type does not fit.
  RkXmlLib16::CSmartPtr<CDynamicObject> NewFor(RkXmlLib16::CXmlElement& root,
                                               const RkXmlLib16::CSerializationContext& context) const;
  // The same, and the object reads the document.
  RkXmlLib16::CSmartPtr<CDynamicObject> Read(const RkXmlLib16::CXmlDocument& document,
                                             const RkXmlLib16::CSerializationContext& context) const;

 private:
  friend class CDynamicClass;
  friend const CDynamicClass& ClassOf(const CDynamicSchema& schema, const ClassBinding& binding);
  struct State;
  std::unique_ptr<State> m_state;
};

// An object without a class. Properties go by the numbers of the binding or by name: the local name of the element, "@"
// and the local name of an attribute, "#text" for the text. Where two have the same name, the first one counts.
class CDynamicObject : public RkXmlLib16::CXmlGeneratedClass {
 public:
  using CXmlObjectBase::AttributesToXml_Int;
  using CXmlObjectBase::FromXml_Int;
  using CXmlObjectBase::ToXml_Int;

  ~CDynamicObject() override;

  const ClassBinding& GetBinding() const noexcept;
  // The declaration of the element that the object stands for; null for an inline group or when only the type is known.
  const ElementDeclaration* GetDeclaration() const noexcept { return m_declaration; }

  // The number of the property; -1 for none.
  int FindProperty(std::wstring_view name) const;
  // The value, invalid when unset. Throw CRkInvalidParamException for an unknown name.
  RkXmlLib16::RkVariant Get(std::wstring_view name) const;
  // Checks the value as a generated setter does: throws CRkException of the facet checks, CRkInvalidValueException for
  // what they do not know, CRkInvalidStateException when another member of a choice is set. An invalid value unsets.
  void Set(std::wstring_view name, const RkXmlLib16::RkVariant& value);
  // The object of the property, made if it is unset; null when the property holds none.
  RkXmlLib16::CSmartPtr<RkXmlLib16::CXmlObjectBase> GetOrCreateObject(std::wstring_view name);
  // The collection of the property, made if it is unset; null when the property is not repeated.
  RkXmlLib16::CSmartPtr<RkXmlLib16::CXmlCollectionBase> GetCollection(std::wstring_view name);

  RkXmlLib16::CXmlObjectBase* GetBase() override { return this; }
  using CXmlObjectBase::GetBase;
  const wchar_t* GetTargetNamespace() const override;
  const wchar_t* GetNamespace() const override;
  void AccessProperty(int propertyIndex, bool get, RkXmlLib16::RkVariant& value) override;
  RkXmlLib16Data::CParentElementInfo* GetClassInfo() const override;
  RkXmlLib16Data::CElementInfo** GetClassElementInfo() const override;
  RkXmlLib16Data::CAttributeInfo** GetClassAttributeInfo() const override;
  void BeginFromXml_Int(RkXmlLib16::CXmlElement* element, RkXmlLib16::CXmlElement* firstChild,
                        const RkXmlLib16::CSerializationContext& context, bool isOptionalChoice) override;
  RkXmlLib16::CXmlElement* FromXml_Int(RkXmlLib16::CXmlElement* element, RkXmlLib16::CXmlElement* firstChild,
                                       const RkXmlLib16::CSerializationContext& context,
                                       bool isOptionalChoice) override;
  // xsi:type is written exactly where the type is not the declared one.
  void AttributesToXml_Int(RkXmlLib16::CXmlWriter* writer,
                           const RkXmlLib16::CSerializationContext& context) const override;

  // For the records: makes the collection of the property, or the wildcard element, if it is not there yet.
  void Ensure(int property);
  // Keeps the prefixes of the names in the text as the element has them, so that they are declared again.
  void KeepPrefixes(const RkXmlLib16::CXmlElement& element, std::wstring_view text);

 protected:
  CDynamicObject(const CDynamicClass& object, const ElementDeclaration* declaration);

 private:
  friend class CDynamicClass;
  struct Value {
    int property;
    RkXmlLib16::RkVariant value;
  };
  using Prefixes = std::map<std::wstring, std::wstring>;

  RkXmlLib16::RkVariant* Find(int property) noexcept;
  RkXmlLib16::RkVariant& Store(int property);
  void Unset(int property);
  void SetText(int property, const RkXmlLib16::RkVariant& value);
  void SelectMember(int property, const RkXmlLib16::RkVariant& value);
  void Begin();

  const CDynamicClass& m_class;
  const ElementDeclaration* m_declaration;
  std::vector<Value> m_values;  // those that are set, by property
  std::unique_ptr<Prefixes> m_prefixes;
  const RkXmlLib16::CXmlElement* m_element = nullptr;  // while it is read
  bool m_isFresh = true;
};

// The repeated objects of a property: elements, or inline groups.
class CDynamicCollection : public RkXmlLib16::CXmlObjectCollection<CDynamicObject> {
 public:
  CDynamicCollection(const CDynamicSchema& schema, const MemberBinding& member);
  ~CDynamicCollection() override;

  // Makes an item, adds it and returns it, borrowed.
  CDynamicObject* AddNew();
  RkXmlLib16::CXmlElement* FromXml_Int(RkXmlLib16::CXmlElement* parent, RkXmlLib16::CXmlElement* current,
                                       const RkXmlLib16::CSerializationContext& context,
                                       bool isOptionalChoice) override;
  using CXmlObjectBase::FromXml_Int;

 private:
  const CDynamicSchema& m_schema;
  const MemberBinding& m_member;
};

}  // namespace RkXmlSchema

#endif
