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

#include <cstddef>
#include <cstdint>
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
  friend class CDynamicObject;
  struct State;
  const ElementDeclaration* FindDeclaration(const RkXmlLib16::ElementModel* element) const;

  std::unique_ptr<State> m_state;
};

// An object without a class. Properties go by the numbers of the binding or by name: the local name of the element, "@"
// and the local name of an attribute, "#text" for the text. Where two have the same name, the first one counts.
class CDynamicObject : public RkXmlLib16::CModelObject {
 public:
  ~CDynamicObject() override;

  const ClassBinding& GetBinding() const noexcept;
  // The declaration of the element that the object stands for; null for an inline group or when only the type is known.
  const ElementDeclaration* GetDeclaration() const;

  // The number of the property; -1 for none.
  int FindProperty(std::wstring_view name) const;
  // The value, invalid when unset. They throw CRkInvalidParamException for an unknown name.
  RkXmlLib16::RkVariant Get(std::wstring_view name) const;
  // Checks the value as a generated setter does: throws CRkException of the facet checks, CRkInvalidValueException for
  // what they do not know, CRkInvalidStateException when another member of a choice is set,
  // CRkInvalidParamException for an object or collection in place of a value and the like. An invalid value unsets.
  void Set(std::wstring_view name, const RkXmlLib16::RkVariant& value);
  // The object of the property, made if it is unset; null when the property holds none.
  RkXmlLib16::CSmartPtr<RkXmlLib16::CXmlObjectBase> GetOrCreateObject(std::wstring_view name);
  // The collection of the property, made if it is unset; null when the property is not repeated.
  RkXmlLib16::CSmartPtr<RkXmlLib16::CXmlCollectionBase> GetCollection(std::wstring_view name);

 protected:
  explicit CDynamicObject(const CDynamicClass& object);
  RkXmlLib16::CMember FindMember(int property) override;

 private:
  struct Destroy {
    const CDynamicClass* object;
    std::uint32_t chunk;  // its number
    void operator()(std::byte* members) const;
  };
  // Members that stand together, made when the first of them is needed: a schema may have classes of very many.
  using Chunk = std::unique_ptr<std::byte[], Destroy>;
  friend class CDynamicClass;

  const CDynamicClass& GetClass() const noexcept;
  int Require(std::wstring_view name) const;

  std::vector<Chunk> m_chunks;  // in order
};

// The repeated objects of a property: elements, or inline groups.
using CDynamicCollection = RkXmlLib16::CModelCollection<CDynamicObject>;

}  // namespace RkXmlSchema

#endif
