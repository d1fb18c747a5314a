#ifndef RKXMLLIB16_SCHEMA_EMIT_INTERNAL_PLAN_H
#define RKXMLLIB16_SCHEMA_EMIT_INTERNAL_PLAN_H

#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "schema/bind/Binding.h"
#include "schema/emit/Emitter.h"
#include "schema/emit/internal/Names.h"

namespace RkXmlSchema {

struct PlannedClass;
struct PlannedDocument;

// What generated code calls values of a type.
struct CppType {
  const char* item;        // ItemType_int
  const char* collection;  // Ci4Col
  const char* value;       // long
};
const CppType& CppTypeOf(RkXmlLib16::ItemType type);

// An enumeration: C++ names in the order of the values.
struct PlannedEnum {
  const ValueBinding* value = nullptr;
  std::string name;  // EFixType
  std::vector<std::string> enumerators;
  PlannedDocument* document = nullptr;
};

// The place of a property in an object, and its name: Get<name>.
struct Storage {
  enum class Kind { Value, Values, Object, Objects, Wildcard, Wildcards, Attributes };

  Kind kind = Kind::Value;
  int number = 0;
  std::string name;
  std::string field;
  std::string type;                      // of a Value, in C++
  bool isRare = false;                   // a value that stands apart
  bool isNillable = false;               // a value that is nil until it is set
  const PlannedClass* object = nullptr;  // of Object and Objects
  const PlannedEnum* enumeration = nullptr;
  std::wstring xmlName;
  std::wstring xmlNamespace;
  std::string note;  // what it is: "Element", "Attribute", "Group", ...
  std::wstring documentation;
};

// A class. Its members, attributes and text are held by storages of its own or of a base class.
struct PlannedClass {
  const ClassBinding* binding = nullptr;
  PlannedDocument* document = nullptr;
  PlannedClass* base = nullptr;
  bool isBase = false;  // of others
  std::string name;     // COrderType
  std::string tables;   // OrderType: what the names of its tables begin with
  int count = 0;        // of properties, those of the base included
  std::vector<std::unique_ptr<Storage>> own;
  std::unordered_map<std::wstring, std::vector<const Storage*>> byXmlName;  // the same
  std::vector<const Storage*> attributes;                                   // by the attributes of the binding
  std::vector<const Storage*> members;                                      // by the members of the binding
  const Storage* text = nullptr;
  const Storage* anyAttribute = nullptr;
  const ElementDeclaration* element = nullptr;  // the first global element of the type
};

struct PlannedDocument {
  const SchemaDocument* schema = nullptr;
  std::string stem;                    // order
  std::string guard;                   // of the header
  std::string nameSpace;               // my::order
  CScope* scope = nullptr;             // of the namespace
  std::vector<PlannedClass*> classes;  // bases first
  std::vector<PlannedEnum*> enums;
  std::vector<const RootBinding*> roots;
  std::vector<const SimpleTypeDefinition*> types;  // bases first

  // Whose header declares the classes: the document itself, unless bases go in a circle between documents. Then it is
  // the first of them.
  PlannedDocument* home = this;
  std::vector<const PlannedDocument*> parts;      // whose home this is
  std::vector<const PlannedClass*> declarations;  // of all these, bases first
};

// The names and places of everything that is printed.
class CPlan {
 public:
  CPlan(const CBinding& binding, const EmitOptions& options);

  const CBinding& GetBinding() const noexcept { return m_binding; }
  const std::vector<std::unique_ptr<PlannedDocument>>& GetDocuments() const noexcept { return m_documents; }
  const PlannedClass* Find(const ClassBinding* object) const;
  const PlannedEnum* FindEnum(const ValueBinding* value) const;
  // The name and document of a simple type that is not built in; kMoneyType.
  const std::string& NameOf(const SimpleTypeDefinition* type) const { return m_types.at(type); }
  bool HasType(const SimpleTypeDefinition* type) const { return m_types.count(type) != 0; }
  PlannedDocument& DocumentOf(const SimpleTypeDefinition& type) const;
  // "Order" for NewOrder, by the global element.
  const std::string& NameOf(const ElementDeclaration* element) const { return m_elements.at(element); }
  PlannedDocument& DocumentOf(const ElementDeclaration& element) const;

 private:
  void AddDocuments(const EmitOptions& options);
  PlannedDocument& DocumentOf(const SourceLocation& location, const std::wstring& ns) const;
  PlannedDocument& DocumentOf(const ClassBinding& object) const;
  void AddClasses();
  void NameClasses();
  bool NameMembers(const PlannedClass& object);
  void FindHomes();
  void OrderClasses();
  void NameTypes();
  void NameType(const SimpleTypeDefinition* type, const std::wstring& fallback);
  void NameClass(const ClassBinding& object, const std::string& name);
  void PlaceClass(PlannedClass& object);
  void PlanEnum(const ValueBinding& value, const std::string& fallback, PlannedDocument& document);
  void PlaceMembers(PlannedClass& object);
  void PlaceAttributes(PlannedClass& object);
  Storage StorageOf(const MemberBinding& member, const PlannedClass& object);
  // The C++ type of a value; `name` is for an enumeration that has none of its own.
  void SetType(Storage& storage, const ValueBinding& value, const PlannedClass& object, const std::wstring& name);
  const Storage* Place(PlannedClass& object, Storage storage);

  const CBinding& m_binding;
  std::vector<std::unique_ptr<PlannedDocument>> m_documents;
  std::unordered_map<const std::wstring*, std::vector<PlannedDocument*>> m_documentsOf;  // by SchemaDocument::file
  std::map<std::string, CScope> m_scopes;
  std::vector<std::unique_ptr<PlannedClass>> m_classes;
  std::unordered_map<const ClassBinding*, PlannedClass*> m_byBinding;
  std::vector<std::unique_ptr<PlannedEnum>> m_enums;
  std::unordered_map<const ValueBinding*, PlannedEnum*> m_enumOf;
  std::unordered_map<const ElementDeclaration*, std::string> m_elements;
  std::unordered_map<const SimpleTypeDefinition*, std::string> m_types;
  std::unordered_map<const PlannedClass*, CScope> m_properties;
};

}  // namespace RkXmlSchema

#endif
