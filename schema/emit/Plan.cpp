#include "schema/emit/internal/Plan.h"

#include <algorithm>
#include <cstring>
#include <set>

#include "RkXmlLib16/base/XsdTypes.h"
#include "RkXmlLib16/io/Encoder.h"

namespace RkXmlSchema {

using namespace RkXmlLib16;

const CppType& CppTypeOf(ItemType type) {
#define RKXML_ROW(Kind, Name, Property, Value) {"ItemType_" #Kind, "C" #Name "Col", #Value},
  static constexpr CppType kTypes[] = {{}, RKXML_XSD_TYPES(RKXML_ROW, RKXML_ROW, RKXML_ROW)};
#undef RKXML_ROW
  return kTypes[type];
}

namespace {

// Values of more than 8 bytes: all but numbers of the language, enumerations among them, and truth values.
bool IsLarge(const CppType& type) { return type.value == std::string("std::wstring") || type.value[0] == 'C'; }

// Of its large optional elements an object holds the first so many in place, since schemas name first what is used
// most, and the others apart, each when it is set.
constexpr int kLargeInPlace = 2;

// Not what include directives, rules of make or shells take for something else.
bool IsPlainInNames(char c) {
  return static_cast<unsigned char>(c) > 0x20 && std::strchr("\"\\<>:;|&$'`*?#%()", c) == nullptr;
}

std::string StemOf(const std::wstring& file) {
  const std::size_t slash = file.rfind(L'/');
  std::wstring name = slash == std::wstring::npos ? file : file.substr(slash + 1);
  const std::size_t dot = name.rfind(L'.');
  if (dot != std::wstring::npos && dot > 0) name.erase(dot);
  std::string stem;
  for (const char c : ToUtf8(name)) stem += IsPlainInNames(c) ? c : '_';
  static const std::set<std::string> taken = {
      "aio",      "alloca",  "assert",   "complex", "cpio",      "ctype",   "dirent",  "dlfcn",  "errno",     "fcntl",
      "fenv",     "float",   "fmtmsg",   "fnmatch", "ftw",       "glob",    "grp",     "iconv",  "inttypes",  "iso646",
      "langinfo", "libgen",  "limits",   "link",    "locale",    "malloc",  "math",    "memory", "monetary",  "ndbm",
      "netdb",    "poll",    "pthread",  "pwd",     "regex",     "resolv",  "sched",   "search", "semaphore", "setjmp",
      "signal",   "spawn",   "stdalign", "stdarg",  "stdatomic", "stdbool", "stddef",  "stdint", "stdio",     "stdlib",
      "string",   "strings", "syslog",   "tar",     "termios",   "tgmath",  "threads", "time",   "trace",     "uchar",
      "ulimit",   "unistd",  "utime",    "utmpx",   "values",    "wait",    "wchar",   "wctype", "wordexp",   "zlib"};
  if (taken.count(stem) != 0) stem += "_schema";
  return stem.empty() ? "schema" : stem;
}

std::string Upper(const std::string& text) {
  std::string result;
  for (const char c : text)
    result += c >= 'a' && c <= 'z'                               ? static_cast<char>(c - 'a' + 'A')
              : (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ? c
                                                                 : '_';
  return result;
}

// In every namespace.
NameSet TakenNames() {
  NameSet names = LibraryNames();
  names.insert(Macros().begin(), Macros().end());
  return names;
}

const ClassBinding& OwnerOf(const ClassBinding& object) {
  const ClassBinding* at = &object;
  while (at->owner != nullptr) at = at->owner;
  return *at;
}

// The name of a named group, else of its kind.
std::string NameOfGroup(const ClassBinding& object) {
  static constexpr const char* kKinds[] = {"Sequence", "Choice", "All"};
  const ModelGroupDefinition* const definition = object.particle->group->definition;
  return definition != nullptr ? ToPascal(definition->name.localName) : kKinds[object.group];
}

std::string Field(const std::string& name) {
  std::string field = name;
  if (field[0] >= 'A' && field[0] <= 'Z') field[0] = static_cast<char>(field[0] - 'A' + 'a');
  return "m_" + field;
}

// Whether the one can hold what the other one shall hold.
bool CanHold(const Storage& known, const Storage& wanted) {
  const bool hasSameType =
      known.enumeration == wanted.enumeration && (wanted.enumeration != nullptr || known.type == wanted.type);
  if (known.kind != wanted.kind || known.xmlNamespace != wanted.xmlNamespace || !hasSameType ||
      known.isNillable != wanted.isNillable || known.note != wanted.note)
    return false;
  const PlannedClass* at = wanted.object;
  while (at != nullptr && at != known.object) at = at->base;
  return known.object == at;
}

}  // namespace

CPlan::CPlan(const CBinding& binding, const EmitOptions& options) : m_binding(binding) {
  AddDocuments(options);
  AddClasses();
  NameClasses();
  FindHomes();
  OrderClasses();
  for (const auto& object : m_classes) PlaceClass(*object);
  NameTypes();
  for (const RootBinding& root : binding.GetRoots()) {
    PlannedDocument& document = DocumentOf(*root.element);
    document.roots.push_back(&root);
    PlannedClass* const object = m_byBinding.at(root.object);
    if (object->element == nullptr && !root.element->isAbstract) object->element = root.element;
    const std::string name =
        document.scope->Add(ToPascal(root.element->name.localName), {{"New", ""}, {"k", "Element"}});
    m_elements.emplace(root.element, name);
  }
}

const PlannedClass* CPlan::Find(const ClassBinding* object) const {
  const auto found = m_byBinding.find(object);
  return found == m_byBinding.end() ? nullptr : found->second;
}

const PlannedEnum* CPlan::FindEnum(const ValueBinding* value) const {
  const auto found = m_enumOf.find(value);
  return found == m_enumOf.end() ? nullptr : found->second;
}

void CPlan::AddDocuments(const EmitOptions& options) {
  CScope stems;
  CScope guards;
  CScope namespaces;
  std::map<std::wstring, std::string> names = options.namespaces;
  for (const SchemaDocument& schema : m_binding.GetSchemas().GetDocuments()) {
    auto document = std::make_unique<PlannedDocument>();
    document->schema = &schema;
    document->stem = stems.Add(StemOf(*schema.file));
    const auto known = names.find(schema.targetNamespace);
    if (known == names.end())
      names[schema.targetNamespace] =
          namespaces.Add(schema.targetNamespace.empty() ? ToNamespaceOfFile(FromUtf8(document->stem))
                                                        : ToNamespace(schema.targetNamespace));
    document->nameSpace = names[schema.targetNamespace];
    document->guard = guards.Add("RKXML_GENERATED_" + Upper(document->nameSpace) + "_" + Upper(document->stem) + "_H");
    document->scope = &m_scopes.try_emplace(document->nameSpace, TakenNames()).first->second;
    m_documentsOf[schema.file].push_back(document.get());
    m_documents.push_back(std::move(document));
  }
}

PlannedDocument& CPlan::DocumentOf(const SourceLocation& location, const std::wstring& ns) const {
  const auto found = m_documentsOf.find(location.file);
  if (found == m_documentsOf.end()) return *m_documents.front();
  for (PlannedDocument* const document : found->second)
    if (document->schema->targetNamespace == ns) return *document;
  return *found->second.front();
}

PlannedDocument& CPlan::DocumentOf(const ElementDeclaration& element) const {
  return DocumentOf(element.location, element.name.namespaceUri);
}

PlannedDocument& CPlan::DocumentOf(const ClassBinding& object) const {
  const ClassBinding& owner = OwnerOf(object);
  if (owner.type == nullptr) return DocumentOf(*owner.element);
  return DocumentOf(owner.type->location, owner.type->name.namespaceUri);
}

void CPlan::NameClass(const ClassBinding& object, const std::string& name) {
  PlannedClass& planned = *m_byBinding.at(&object);
  planned.name = planned.document->scope->Add("C" + name);
  planned.tables = planned.name.substr(1);
}

void CPlan::AddClasses() {
  const auto isOfElement = [&](const TypeDefinition* type) {
    const ClassBinding* const object = m_binding.FindClass(type);
    return object != nullptr && !object->onlyByTypeName;
  };
  const CSchemaSet& schemas = m_binding.GetSchemas();
  const bool takesAllTypes =
      isOfElement(schemas.GetAnyType()) || isOfElement(schemas.GetBuiltIn(BuiltInType::AnySimpleType));
  // A class that only xsi:type may name is printed where an element has a type that it is derived from.
  const auto isNeeded = [&](const ClassBinding& object) {
    if (!object.onlyByTypeName) return true;
    if (takesAllTypes && object.type->IsSimple()) return true;
    for (const TypeDefinition* at = object.type->base; at != nullptr && at->IsSimple(); at = at->base) {
      const ClassBinding* const base = m_binding.FindClass(at);
      if (base != nullptr && !base->onlyByTypeName) return true;
    }
    return false;
  };
  for (const auto& object : m_binding.GetClasses()) {
    if (!isNeeded(*object)) continue;
    auto planned = std::make_unique<PlannedClass>();
    planned->binding = object.get();
    planned->document = &DocumentOf(*object);
    m_byBinding[object.get()] = planned.get();
    m_classes.push_back(std::move(planned));
  }
  std::stable_partition(m_classes.begin(), m_classes.end(), [](const auto& planned) {
    return !planned->binding->onlyByTypeName || !planned->binding->type->IsBuiltIn();  // which take no name from others
  });
  for (const auto& planned : m_classes) {
    if (planned->binding->base == nullptr) continue;
    planned->base = m_byBinding.at(planned->binding->base);
    planned->base->isBase = true;
  }
}

// Names of types first, so that they stay as they are; then those of global elements and groups of their members.
void CPlan::NameClasses() {
  for (const auto& planned : m_classes)
    if (!planned->binding->typeName.empty())
      NameClass(*planned->binding, ToPascal(planned->binding->typeName.localName));
  for (const auto& planned : m_classes) {
    const ClassBinding& object = *planned->binding;
    const ElementDeclaration* const owner = object.type != nullptr ? object.type->ownerElement : nullptr;
    if (planned->name.empty() && owner != nullptr && owner->isGlobal)
      NameClass(object, ToPascal(owner->name.localName));
    if (object.kind == ClassBinding::Kind::SubstitutionGroup)
      NameClass(object, ToPascal(object.element->name.localName) + "Choice");
  }
  for (bool isChanged = true; isChanged;) {
    isChanged = false;
    for (const auto& planned : m_classes)
      if (!planned->name.empty()) isChanged = NameMembers(*planned) || isChanged;
  }
  for (const auto& planned : m_classes) {
    if (!planned->name.empty()) continue;
    const TypeDefinition* const type = planned->binding->type;
    NameClass(*planned->binding, type != nullptr && type->ownerElement != nullptr
                                     ? ToPascal(type->ownerElement->name.localName)
                                     : "Anonymous");
  }
}

// The classes of members that have no name yet; whether there were any.
bool CPlan::NameMembers(const PlannedClass& object) {
  const std::string owner = m_byBinding.at(&OwnerOf(*object.binding))->name.substr(1);
  bool isChanged = false;
  for (const MemberBinding& member : object.binding->members) {
    if (member.object == nullptr || !m_byBinding.at(member.object)->name.empty()) continue;
    const ClassBinding* const around = member.object->owner;  // of a group
    if (around != nullptr && around != object.binding && around != object.binding->owner) continue;
    NameClass(*member.object, owner + (around != nullptr ? NameOfGroup(*member.object) : ToPascal(member.name)));
    isChanged = true;
  }
  return isChanged;
}

void CPlan::FindHomes() {
  std::map<const PlannedDocument*, std::set<const PlannedDocument*>> above;  // documents of bases, and of theirs
  for (const auto& planned : m_classes)
    if (planned->base != nullptr) above[planned->document].insert(planned->base->document);
  for (auto& [document, all] : above) {
    std::vector<const PlannedDocument*> open(all.begin(), all.end());
    while (!open.empty()) {
      const auto known = above.find(open.back());
      open.pop_back();
      if (known == above.end()) continue;
      for (const PlannedDocument* next : known->second)
        if (all.insert(next).second) open.push_back(next);
    }
  }
  for (const auto& document : m_documents) {
    const auto known = above.find(document.get());
    for (std::size_t i = 0; known != above.end() && m_documents[i] != document; ++i) {
      PlannedDocument& other = *m_documents[i];
      if (known->second.count(&other) == 0 || above[&other].count(document.get()) == 0) continue;
      document->home = &other;
      break;
    }
    document->home->parts.push_back(document.get());
  }
}

// Bases first; all else in the order of the binding.
void CPlan::OrderClasses() {
  std::set<const PlannedClass*> done;
  const auto add = [&](PlannedClass* planned, const auto& self) -> void {
    if (planned == nullptr || !done.insert(planned).second) return;
    self(planned->base, self);
    planned->document->classes.push_back(planned);
    planned->document->home->declarations.push_back(planned);
  };
  for (const auto& planned : m_classes) add(planned.get(), add);
}

void CPlan::PlanEnum(const ValueBinding& value, const std::string& fallback, PlannedDocument& document) {
  if (value.kind != ValueBinding::Kind::Enumeration || m_enumOf.count(&value) != 0) return;
  auto planned = std::make_unique<PlannedEnum>();
  planned->value = &value;
  const TypeDefinition& type = *value.type;
  planned->document = type.location.file != nullptr ? &DocumentOf(type.location, type.name.namespaceUri) : &document;
  planned->name = planned->document->scope->Add("E" + (type.IsAnonymous() ? fallback : ToPascal(type.name.localName)),
                                                {{"", ""}, {"", "FromText"}, {"k", "Texts"}});
  CScope names;
  for (const EnumerationValue& allowed : type.AsSimple()->facets.enumeration)
    planned->enumerators.push_back(names.Add(ToEnumerator(allowed.text)));
  planned->document->enums.push_back(planned.get());
  m_enumOf[&value] = planned.get();
  m_enums.push_back(std::move(planned));
}

// A storage of a base class that can hold the same serves; else the class gets one of its own.
const Storage* CPlan::Place(PlannedClass& object, Storage storage) {
  for (const PlannedClass* base = object.base; base != nullptr; base = base->base) {
    const auto known = base->byXmlName.find(storage.xmlName);
    if (known == base->byXmlName.end()) continue;
    for (const Storage* candidate : known->second)
      if (CanHold(*candidate, storage) &&
          std::find(object.members.begin(), object.members.end(), candidate) == object.members.end())
        return candidate;
  }
  CScope& names = m_properties.at(&object);
  storage.number = object.count++;
  std::string name = storage.name;
  if (LibraryProperties().count(name) != 0) name += '_';
  if (storage.kind == Storage::Kind::Object)
    storage.name = names.Add(name, {{"", ""}, {"OrAdd", ""}});
  else
    storage.name = names.Add(name);
  storage.field = Field(storage.name);
  const Storage* const placed = object.own.emplace_back(std::make_unique<Storage>(std::move(storage))).get();
  object.byXmlName[placed->xmlName].push_back(placed);
  return placed;
}

void CPlan::PlaceClass(PlannedClass& object) {
  if (m_properties.count(&object) != 0) return;
  if (object.base != nullptr) {
    PlaceClass(*object.base);
    object.count = object.base->count;
    m_properties.emplace(&object, m_properties.at(object.base));
  } else {
    m_properties.emplace(&object, CScope());
  }
  PlaceMembers(object);
  PlaceAttributes(object);
  const ClassBinding& binding = *object.binding;
  if (binding.textProperty < 0) return;
  Storage storage;
  storage.name = binding.isMixed ? "Text" : "Value";
  storage.note = "Text";
  SetType(storage, *binding.text, object, L"Value");
  object.text = Place(object, std::move(storage));
}

void CPlan::SetType(Storage& storage, const ValueBinding& value, const PlannedClass& object, const std::wstring& name) {
  PlanEnum(value, m_byBinding.at(&OwnerOf(*object.binding))->name.substr(1) + ToPascal(name), *object.document);
  storage.enumeration = FindEnum(&value);
  storage.type = CppTypeOf(value.itemType).value;
  if (storage.enumeration == nullptr) return;
  const std::string& home = storage.enumeration->document->nameSpace;
  storage.type = (home == object.document->nameSpace ? "" : "::" + home + "::") + storage.enumeration->name;
}

void CPlan::PlaceMembers(PlannedClass& object) {
  const ClassBinding& binding = *object.binding;
  const auto isLarge = [](const MemberBinding& member) {
    return member.kind == MemberBinding::Kind::Value && member.cardinality == MemberBinding::Cardinality::Optional &&
           IsLarge(CppTypeOf(member.value->itemType));
  };
  int largeCount = 0;
  for (const MemberBinding& member : binding.members) {
    const std::size_t number = object.members.size();
    if (number < binding.inheritedMembers && object.base != nullptr) {
      object.members.push_back(object.base->members[number]);
      continue;
    }
    Storage storage = StorageOf(member, object);
    storage.isRare = isLarge(member) && ++largeCount > kLargeInPlace;
    object.members.push_back(Place(object, std::move(storage)));
  }
}

Storage CPlan::StorageOf(const MemberBinding& member, const PlannedClass& object) {
  Storage storage;
  storage.xmlName = member.name;
  storage.xmlNamespace = member.namespaceUri;
  storage.name = ToPascal(member.name);
  storage.note = "Element";
  if (member.element != nullptr) storage.documentation = member.element->documentation;
  switch (member.kind) {
    case MemberBinding::Kind::Value:
    case MemberBinding::Kind::Enumeration:
      SetType(storage, *member.value, object, member.name);
      storage.isNillable = member.isNillable && !member.IsCollection();
      if (!member.IsCollection()) break;
      storage.kind = Storage::Kind::Values;
      storage.type = CppTypeOf(member.value->itemType).collection;
      break;
    case MemberBinding::Kind::Wildcard:
      storage.kind = member.IsCollection() ? Storage::Kind::Wildcards : Storage::Kind::Wildcard;
      storage.note = "Any element";
      break;
    default:
      storage.kind = member.IsCollection() ? Storage::Kind::Objects : Storage::Kind::Object;
      storage.object = m_byBinding.at(member.object);
      if (member.object->owner == nullptr) break;
      storage.name = NameOfGroup(*member.object);
      storage.note = "Group";
      storage.xmlName = FromUtf8(storage.object->name);
      break;
  }
  return storage;
}

void CPlan::PlaceAttributes(PlannedClass& object) {
  const ClassBinding& binding = *object.binding;
  for (const AttributeBinding& attribute : binding.attributes) {
    const std::size_t number = object.attributes.size();
    if (number < binding.inheritedAttributes && object.base != nullptr) {
      object.attributes.push_back(object.base->attributes[number]);
      continue;
    }
    Storage storage;
    storage.xmlName = attribute.name;
    storage.xmlNamespace = attribute.namespaceUri;
    storage.name = ToPascal(attribute.name);
    storage.note = "Attribute";
    storage.documentation = !attribute.use->documentation.empty() ? attribute.use->documentation
                                                                  : attribute.use->declaration->documentation;
    SetType(storage, *attribute.value, object, attribute.name);
    if (m_properties.at(&object).Has(storage.name)) storage.name += "Attribute";
    object.attributes.push_back(Place(object, std::move(storage)));
  }
  if (binding.attributeWildcard == nullptr) return;
  const PlannedClass* base = object.base;
  while (base != nullptr && base->anyAttribute == nullptr) base = base->base;
  Storage storage;
  storage.kind = Storage::Kind::Attributes;
  storage.name = "AnyAttribute";
  storage.note = "Any attribute";
  object.anyAttribute = base != nullptr ? base->anyAttribute : Place(object, std::move(storage));
}

// ---- Simple types

PlannedDocument& CPlan::DocumentOf(const SimpleTypeDefinition& type) const {
  return DocumentOf(type.location, type.name.namespaceUri);
}

// The type, behind those that it is made of.
void CPlan::NameType(const SimpleTypeDefinition* type, const std::wstring& fallback) {
  if (type == nullptr || type->IsBuiltIn() || m_types.count(type) != 0) return;
  const std::wstring name = type->IsAnonymous() ? fallback : type->name.localName;
  NameType(type->base != nullptr ? type->base->AsSimple() : nullptr, name);
  NameType(type->itemType, name + L"Item");
  for (const SimpleTypeDefinition* member : type->memberTypes) NameType(member, name + L"Member");
  PlannedDocument& document = DocumentOf(*type);
  const std::string pascal = ToPascal(name);
  const bool isSaid = pascal.size() > 4 && pascal.compare(pascal.size() - 4, 4, "Type") == 0;
  m_types.emplace(type, document.scope->Add("k" + pascal + (isSaid ? "" : "Type")));
  document.types.push_back(type);
}

// Those that documents may name, and those whose values the facets do not check wholly.
void CPlan::NameTypes() {
  for (const TypeDefinition* type : m_binding.GetSchemas().GetTypes())
    if (type->IsSimple()) NameType(type->AsSimple(), {});
  for (const AttributeDeclaration* attribute : m_binding.GetSchemas().GetAttributes())
    NameType(attribute->type, attribute->name.localName);
  for (const auto& planned : m_classes) {
    const ClassBinding& object = *planned->binding;
    const std::wstring owner = FromUtf8(planned->tables);
    const auto name = [&](const ValueBinding* value, const DefaultBinding* fixed, const std::wstring& member) {
      if (value != nullptr && (value->needsCheck || (fixed != nullptr && fixed->isFixed)))
        NameType(value->type->AsSimple(), owner + FromUtf8(ToPascal(member)));
    };
    for (const MemberBinding& member : object.members) name(member.value, &member.defaultValue, member.name);
    for (const AttributeBinding& attribute : object.attributes)
      name(attribute.value, &attribute.defaultValue, attribute.name);
    if (object.text != nullptr && !object.isMixed) NameType(object.text->type->AsSimple(), owner);
    if (object.kind == ClassBinding::Kind::SimpleType) NameType(object.type->AsSimple(), owner);
  }
}

}  // namespace RkXmlSchema
