#ifndef RKXMLLIB16_SCHEMA_DYNAMIC_INTERNAL_CLASS_H
#define RKXMLLIB16_SCHEMA_DYNAMIC_INTERNAL_CLASS_H

#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "RkXmlLib16/Generated.h"
#include "schema/components/SimpleValue.h"
#include "schema/dynamic/DynamicObject.h"

namespace RkXmlSchema {

using Texts = std::unordered_set<std::wstring_view>;

// What a class without code knows about one property.
struct Property {
  const wchar_t* name = L"";              // for messages
  const ValueBinding* value = nullptr;    // of a value or text
  const MemberBinding* member = nullptr;  // of an element, group or wildcard
  const AttributeBinding* attribute = nullptr;
  const Texts* enumeration = nullptr;
  const DefaultBinding* defaultValue = nullptr;
};

// A class without code: the records and properties of one class binding. Made at first use, then shared.
class CDynamicClass {
 public:
  CDynamicClass(const CDynamicSchema& schema, const ClassBinding& binding) : m_schema(schema), m_binding(binding) {}
  CDynamicClass(const CDynamicClass&) = delete;
  CDynamicClass& operator=(const CDynamicClass&) = delete;
  ~CDynamicClass();

  const CDynamicSchema& GetSchema() const noexcept { return m_schema; }
  const ClassBinding& GetBinding() const noexcept { return m_binding; }
  // Makes the records, unless they are there.
  const CDynamicClass& Require() const;
  RkXmlLib16::CSmartPtr<CDynamicObject> New(const ElementDeclaration* declaration) const;

  RkXmlLib16Data::CParentElementInfo* GetInfo() const noexcept { return m_info; }
  RkXmlLib16Data::CElementInfo** GetElements() const noexcept { return m_elements; }
  RkXmlLib16Data::CAttributeInfo** GetAttributes() const noexcept { return m_attributes; }
  const Property& GetProperty(int property) const { return m_properties[static_cast<std::size_t>(property)]; }
  int FindProperty(std::wstring_view name) const;
  // The properties that an object begins with: attribute defaults, nil values, and collections that may not be empty.
  const std::vector<int>& GetInitial() const noexcept { return m_initial; }

 private:
  void Make();
  void MakeProperties();

  const CDynamicSchema& m_schema;
  const ClassBinding& m_binding;
  mutable std::once_flag m_made;
  RkXmlLib16Data::CParentElementInfo* m_info = nullptr;
  RkXmlLib16Data::CElementInfo** m_elements = nullptr;
  RkXmlLib16Data::CAttributeInfo** m_attributes = nullptr;
  std::vector<Property> m_properties;
  std::vector<int> m_initial;
  std::unordered_map<std::wstring, int> m_names;
  std::vector<int> m_factoryIds;
};

struct CDynamicSchema::State {
  const CBinding* binding = nullptr;
  std::vector<std::unique_ptr<CDynamicClass>> classes;  // by the index of the binding
  std::mutex mutex;                                     // of what follows
  std::unordered_map<const ValueBinding*, Texts> enumerations;
};

// The text that a property is being set from, while a record that reads is at work on this thread.
struct Reading {
  const RkXmlLib16::CXmlElement* element = nullptr;
  std::wstring_view text;

  static const Reading*& Current() noexcept;
};

class ReadingScope {
 public:
  ReadingScope(const RkXmlLib16::CXmlElement& element, std::wstring_view text) : m_reading{&element, text} {
    Reading::Current() = &m_reading;
  }
  ReadingScope(const ReadingScope&) = delete;
  ReadingScope& operator=(const ReadingScope&) = delete;
  ~ReadingScope() { Reading::Current() = nullptr; }

 private:
  Reading m_reading;
};

// Tells the handler of the context of an error at an element or attribute; throws it unless reading goes on.
template <class Error, class Node>
void Refuse(const RkXmlLib16::CSerializationContext& context, Error error, const Node& node) {
  if (!context.TellError(At(error, node))) throw error;
}

const CDynamicClass& ClassOf(const CDynamicSchema& schema, const ClassBinding& binding);

// Prefixes as the document of the element declares them.
NamespaceResolver ResolverOf(const RkXmlLib16::CXmlElement& element);

// Throws CRkInvalidValueException when the text is no value of the type, or not the fixed one.
void CheckText(const Property& property, std::wstring_view text, const NamespaceResolver& resolver);

// The type that xsi:type names; null without the attribute or for an unknown name, which `isNamed` tells apart.
const TypeDefinition* FindNamedType(const CSchemaSet& schemas, const RkXmlLib16::CXmlElement& element, bool& isNamed);

// The object for an element of the declaration, as xsi:type says; null when the type does not fit.
RkXmlLib16::CSmartPtr<CDynamicObject> NewElement(const CDynamicSchema& schema, const ElementDeclaration& declaration,
                                                 RkXmlLib16::CXmlElement& element);

// What processContents asks for. Throws CRkValidationException.
void CheckWildcardElement(const CDynamicSchema& schema, ProcessContents process, RkXmlLib16::CXmlElement& element,
                          const RkXmlLib16::CSerializationContext& context);
void CheckWildcardAttribute(const CDynamicSchema& schema, ProcessContents process,
                            const RkXmlLib16::CXmlAttribute& attribute);

// The records of one class.
RkXmlLib16Data::CElementInfo* NewRecord(const CDynamicSchema& schema, const ClassBinding& owner,
                                        const MemberBinding& member, std::vector<int>& factoryIds);
RkXmlLib16Data::CAttributeInfo* NewRecord(const AttributeBinding& attribute);
RkXmlLib16Data::CAttributeInfo* NewWildcardRecord(const CDynamicSchema& schema, const ClassBinding& owner);
// A new collection for the property of a repeated member.
RkXmlLib16::CSmartPtr<RkXmlLib16::CXmlCollectionBase> NewCollection(const CDynamicSchema& schema,
                                                                    const Property& property);

// Class records make their objects by number: the numbers of all schemas of the process.
class Factories {
 public:
  static int Add(const CDynamicClass* object, const ElementDeclaration* declaration);
  static void Remove(int id) noexcept;
  static RkXmlLib16::CSmartPtr<RkXmlLib16::CXmlObjectBase> Create(int id, const wchar_t* elementName);
};

}  // namespace RkXmlSchema

#endif
