#ifndef RKXMLLIB16_SCHEMA_DYNAMIC_INTERNAL_CLASS_H
#define RKXMLLIB16_SCHEMA_DYNAMIC_INTERNAL_CLASS_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "schema/components/SimpleValue.h"
#include "schema/dynamic/DynamicObject.h"

namespace RkXmlSchema {

using RkXmlLib16Data::AttributeModel;
using RkXmlLib16Data::ClassModel;
using RkXmlLib16Data::CSimpleType;
using RkXmlLib16Data::DefaultModel;
using RkXmlLib16Data::ElementModel;
using RkXmlLib16Data::MemberModel;
using RkXmlLib16Data::PrefixModel;
using RkXmlLib16Data::SchemaModel;
using RkXmlLib16Data::ValueModel;
using RkXmlLib16Data::WildcardModel;

// The model of one class binding, of which the library makes the records.
class CDynamicClass final : public ClassModel {
 public:
  CDynamicClass(const CDynamicSchema& owner, const ClassBinding& binding);

  const CDynamicSchema& GetSchema() const noexcept { return m_schema; }
  const ClassBinding& GetBinding() const noexcept { return m_binding; }
  // -1 for none.
  int FindProperty(std::wstring_view wanted) const;
  // Null for attributes and text.
  const MemberModel* FindMember(int property) const noexcept;
  bool HasDefaults() const noexcept;

  // Where an object has the property: which of its chunks, and where in it.
  struct Place {
    const RkXmlLib16::MemberType* type = nullptr;
    const ValueModel* values = nullptr;  // of a value
    std::uint32_t chunk = 0;
    std::uint32_t offset = 0;
  };
  const Place& GetPlace(int property) const noexcept { return m_places[static_cast<std::size_t>(property)]; }
  // Finds the places; called once, when the models are complete.
  void Arrange();
  CDynamicObject::Chunk NewChunk(std::uint32_t number) const;
  void Destroy(std::uint32_t number, std::byte* made) const noexcept;

 private:
  struct ChunkOfPlaces {
    std::size_t begin = 0;  // the first property
    std::size_t end = 0;
    std::size_t size = 0;  // bytes
  };

  const CDynamicSchema& m_schema;
  const ClassBinding& m_binding;
  std::vector<Place> m_places;  // by property
  std::vector<ChunkOfPlaces> m_chunks;
  mutable std::once_flag m_named;
  mutable std::unordered_map<std::wstring, int> m_names;
};

// A simple type that a schema defines.
class CTypeOfSchema final : public CSimpleType {
 public:
  CTypeOfSchema(const SimpleTypeDefinition& type, const CSimpleType* base) : m_type(type), m_base(base) {}

  std::wstring_view GetName() const override { return m_type.name.localName; }
  std::wstring_view GetNamespace() const override { return m_type.name.namespaceUri; }
  const CSimpleType* GetBase() const override { return m_base; }
  std::optional<std::wstring> Check(std::wstring_view text, const NamespaceResolver& resolver) const override {
    return CheckValue(m_type, text, resolver);
  }
  bool AreEqual(std::wstring_view a, std::wstring_view b, const NamespaceResolver& resolverA,
                const NamespaceResolver& resolverB) const override {
    return AreEqualValues(m_type, a, b, resolverA, resolverB);
  }

 private:
  const SimpleTypeDefinition& m_type;
  const CSimpleType* m_base;
};

// The models of all classes of a binding. Their texts are those of the binding, what they point to stands here.
struct CDynamicSchema::State {
  State(const CDynamicSchema& schema, const CBinding& classes);
  State(const State&) = delete;
  State& operator=(const State&) = delete;

  // Null for an element that no class holds.
  const ElementModel* Find(const ElementDeclaration* element) const;
  // The declaration that the model is made of; null for null.
  const ElementDeclaration* FindDeclaration(const ElementModel* made) const;

  const CBinding& binding;
  std::unordered_map<const SimpleTypeDefinition*, CTypeOfSchema> types;
  std::unordered_map<const ValueBinding*, std::unordered_set<std::wstring_view>> enumerations;
  std::unordered_map<const ValueBinding*, ValueModel> values;
  std::unordered_map<const Wildcard*, WildcardModel> wildcards;
  std::deque<std::vector<const wchar_t*>> namespaces;
  std::unordered_map<const NamespaceBindings*, std::vector<PrefixModel>> prefixes;
  std::deque<ValueModel> attributeValues;  // of the global ones
  std::vector<AttributeModel> globalAttributes;
  std::vector<MemberModel> members;  // of all classes, as their bindings have them one behind the other
  std::vector<const ElementDeclaration*> declarations;  // of the members
  std::vector<AttributeModel> attributes;
  std::vector<ElementModel> roots;  // in the order of those of the binding
  std::vector<const ElementModel*> elements;
  std::vector<const ClassModel*> namedClasses;
  SchemaModel model;
  std::deque<CDynamicClass> classes;  // by the index of the binding

 private:
  const CSimpleType* TypeOf(const TypeDefinition* type);
  const ValueModel* ValueOf(const ValueBinding* value);
  const WildcardModel* WildcardOf(const Wildcard* wildcard);
  DefaultModel DefaultOf(const ValueConstraint* constraint);
  MemberModel MemberOf(const MemberBinding& member);
  void Fill(CDynamicClass& object);
};

}  // namespace RkXmlSchema

#endif
