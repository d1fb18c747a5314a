#include "schema/emit/Emitter.h"

#include <algorithm>
#include <set>

#include "RkXmlLib16/io/Encoder.h"
#include "schema/components/Pattern.h"
#include "schema/emit/internal/Plan.h"

namespace RkXmlSchema {

using namespace RkXmlLib16;

namespace {

constexpr std::size_t kWidth = 120;
constexpr std::size_t kLinesOfSource = 3000;
constexpr char kMark = '\1';  // no text has it

// Lines of a source.
class CText {
 public:
  void Line(const std::string& line = {}) {
    if (line.empty() && (m_text.empty() || (m_text.size() > 1 && m_text.substr(m_text.size() - 2) == "\n\n"))) return;
    m_text += line + '\n';
    ++m_lines;
  }
  void Lines(const std::vector<std::string>& lines) {
    for (const std::string& line : lines) Line(line);
  }
  // A call or list: on one line where it fits, else a line broken behind commas and before dots, `indent` deeper.
  void Broken(const std::string& line, std::size_t indent) {
    if (line.size() <= kWidth) return Line(line);
    std::size_t start = 0;
    std::size_t lastBreak = 0;
    bool isText = false;
    std::string pad;
    for (std::size_t i = 0; i < line.size(); ++i) {
      const char c = line[i];
      if (c == '\\' && isText) {
        ++i;
        continue;
      }
      if (c == '"') isText = !isText;
      if (isText) continue;
      const bool isBreak = c == ',' && i + 1 < line.size() && line[i + 1] == ' ';
      if (isBreak || (i + 1 < line.size() && c == ')' && line[i + 1] == '.')) {
        if (pad.size() + i + 1 - start > kWidth && lastBreak > start) {
          Line(pad + line.substr(start, lastBreak - start));
          start = lastBreak;
          while (start < line.size() && line[start] == ' ') ++start;
          pad = std::string(indent, ' ');
        }
        lastBreak = i + 1;
      }
    }
    if (pad.size() + line.size() - start > kWidth && lastBreak > start) {
      Line(pad + line.substr(start, lastBreak - start));
      start = lastBreak;
      while (start < line.size() && line[start] == ' ') ++start;
      pad = std::string(indent, ' ');
    }
    Line(pad + line.substr(start));
  }
  std::size_t GetLines() const noexcept { return m_lines; }
  std::string Take() { return std::move(m_text); }
  const std::string& Get() const noexcept { return m_text; }

 private:
  std::string m_text;
  std::size_t m_lines = 0;
};

std::string Number(int value) { return std::to_string(value); }

bool IsPlain(const std::string& type) { return type != "std::wstring" && type[0] != 'C'; }

class CEmitter {
 public:
  CEmitter(const CBinding& binding, const EmitOptions& options) : m_options(options), m_plan(binding, options) {}

  std::vector<EmittedFile> Emit() {
    std::vector<EmittedFile> files;
    for (const auto& document : m_plan.GetDocuments()) m_stems.Add(document->stem);
    for (const auto& document : m_plan.GetDocuments()) {
      files.push_back({document->stem + ".h", Header(*document)});
      for (EmittedFile& source : Sources(*document)) files.push_back(std::move(source));
    }
    return files;
  }

 private:
  const PlannedDocument& First() const { return *m_plan.GetDocuments().front(); }
  bool IsFirst(const PlannedDocument& document) const { return &document == &First(); }

  std::string Title(const PlannedDocument& document) const {
    const std::wstring& file = *document.schema->file;
    const std::size_t slash = file.rfind(L'/');
    const std::wstring name = slash == std::wstring::npos ? file : file.substr(slash + 1);
    return ToComment(L"Made by " + FromUtf8(m_options.generator) + L" from " + name + L"; changes are lost.", 0)[0];
  }

  // The name of a class as code in the document's namespace writes it.
  static std::string Name(const PlannedClass& object, const PlannedDocument& from) {
    return object.document->nameSpace == from.nameSpace ? object.name
                                                        : "::" + object.document->nameSpace + "::" + object.name;
  }

  std::string Schema(const PlannedDocument& from) const {
    return First().nameSpace == from.nameSpace ? "kSchema" : "::" + First().nameSpace + "::kSchema";
  }

  // A pointer to a simple type; "" for one that is not printed.
  std::string Type(const TypeDefinition* definition, const PlannedDocument& from) {
    const SimpleTypeDefinition* const type = definition != nullptr ? definition->AsSimple() : nullptr;
    if (type == nullptr) return {};
    if (type->IsBuiltIn()) return "BuiltIn(" + BuiltInName(type->builtIn) + ")";
    if (!m_plan.HasType(type)) return {};
    m_usedTypes.insert(type);
    const PlannedDocument& home = m_plan.DocumentOf(*type);
    return "&" + (home.nameSpace == from.nameSpace ? "" : "::" + home.nameSpace + "::") + m_plan.NameOf(type);
  }

  static std::string BuiltInName(BuiltInType type) {
    std::string name = ToPascal(GetBuiltInName(type));
    if (name == "NOTATION") name = "Notation";
    if (name == "NMTOKEN") name = "NMToken";
    if (name == "NMTOKENS") name = "NMTokens";
    if (name == "IDREF") name = "IDRef";
    if (name == "IDREFS") name = "IDRefs";
    if (name == "ENTITY") name = "Entity";
    if (name == "ENTITIES") name = "Entities";
    return "Xsd::BuiltInType::" + name;
  }

  // ---- Headers

  std::string Header(const PlannedDocument& document) {
    CText out;
    out.Line(Title(document));
    if (!document.schema->targetNamespace.empty())
      out.Lines(ToComment(L"Target namespace: " + document.schema->targetNamespace, 0));
    out.Line("#ifndef " + document.guard);
    out.Line("#define " + document.guard);
    out.Line();
    if (document.home == &document) {
      Declarations(document, out);
    } else {
      out.Line("// Bases of the one document are derived from those of the other.");
      out.Line("#include \"" + document.home->stem + ".h\"");
    }
    out.Line();
    out.Line("#endif");
    return out.Take();
  }

  // What a header says of others.
  struct Others {
    std::set<const PlannedDocument*> above;              // with bases, which must be known in front
    std::set<const PlannedDocument*> below;              // with what is only named
    std::map<std::string, std::set<std::string>> names;  // what is declared, by namespace
  };

  Others OthersOf(const PlannedDocument& document) const {
    Others others;
    const auto declare = [&](const PlannedDocument& home, const std::string& declaration) {
      others.names[home.nameSpace].insert(declaration);
      if (home.home != &document) others.below.insert(home.home);
    };
    for (const PlannedClass* object : document.declarations) {
      declare(*object->document, "class " + object->name);
      if (object->base != nullptr) others.above.insert(object->base->document->home);
      for (const auto& storage : object->own) {
        const PlannedEnum* const enumeration = storage->kind == Storage::Kind::Value ? storage->enumeration : nullptr;
        if (enumeration != nullptr && enumeration->document->home != &document)
          declare(*enumeration->document, "enum class " + enumeration->name + " : int");
        if (storage->object != nullptr) declare(*storage->object->document, "class " + storage->object->name);
      }
    }
    for (const PlannedDocument* part : document.parts)
      for (const RootBinding* root : part->roots) {
        const PlannedClass& object = *m_plan.Find(root->object);
        declare(*object.document, "class " + object.name);
      }
    others.above.erase(&document);
    for (const PlannedDocument* known : others.above) others.below.erase(known);
    return others;
  }

  void Include(const std::set<const PlannedDocument*>& documents, CText& out) const {
    for (const auto& document : m_plan.GetDocuments())
      if (documents.count(document.get()) != 0) out.Line("#include \"" + document->stem + ".h\"");
    out.Line();
  }

  // The namespace that is open in a header.
  class CNamespace {
   public:
    explicit CNamespace(CText& out) : m_out(out) {}
    void Enter(const std::string& name) {
      if (name == m_name) return;
      Leave();
      m_name = name;
      m_out.Line("namespace " + name + " {");
      m_out.Line();
      m_out.Line("using namespace RkXmlLib16;");
      m_out.Line();
    }
    void Leave() {
      if (!m_name.empty()) m_out.Line("}  // namespace " + m_name);
      m_out.Line();
      m_name.clear();
    }

   private:
    CText& m_out;
    std::string m_name;
  };

  void Declarations(const PlannedDocument& document, CText& out) {
    Others others = OthersOf(document);
    out.Line("#include <RkXmlLib16/Generated.h>");
    out.Line();
    out.Line("#include <string>");
    out.Line();
    Include(others.above, out);
    out.Line("static_assert(RKXML_GENERATED_VERSION == 1, \"generate these classes again\");");
    out.Line();
    for (const auto& [nameSpace, names] : others.names) {
      const auto isOwn = [&, &ns = nameSpace](const PlannedDocument* part) { return part->nameSpace == ns; };
      if (std::any_of(document.parts.begin(), document.parts.end(), isOwn)) continue;
      out.Line("namespace " + nameSpace + " {");
      for (const std::string& name : names) out.Line(name + ";");
      out.Line("}  // namespace " + nameSpace);
      out.Line();
    }
    CNamespace open(out);
    for (const PlannedDocument* part : document.parts) {
      open.Enter(part->nameSpace);
      for (const std::string& name : others.names[part->nameSpace]) out.Line(name + ";");
      others.names.erase(part->nameSpace);
      out.Line();
      for (const PlannedEnum* enumeration : part->enums) EnumHeader(*enumeration, out);
    }
    for (const PlannedClass* object : document.declarations) {
      open.Enter(object->document->nameSpace);
      ClassHeader(*object, out);
    }
    for (const PlannedDocument* part : document.parts) {
      open.Enter(part->nameSpace);
      Functions(*part, out);
    }
    open.Leave();
    Include(others.below, out);
  }

  void Functions(const PlannedDocument& document, CText& out) {
    for (const RootBinding* root : document.roots) {
      const std::string& name = m_plan.NameOf(root->element);
      const PlannedClass& object = *m_plan.Find(root->object);
      out.Line("extern const ElementModel k" + name + "Element;");
      if (root->element->isAbstract || root->object->isAbstract) continue;
      out.Line("// A new object for an element " + ToUtf8(root->element->name.localName) + ".");
      out.Lines(ToComment(root->element->documentation, 0, 3));
      out.Line("CSmartPtr<" + Name(object, document) + "> New" + name + "();");
      out.Line();
    }
    if (!IsFirst(document)) return;
    out.Line("// What documents of these schemas may hold.");
    out.Line("extern const SchemaModel kSchema;");
    out.Line();
    out.Line("// Read any document of these schemas and return the object of its root element. Throw CRkException.");
    out.Line("inline CSmartPtr<CModelObject> ReadDocument(const CXmlDocument& document,");
    out.Line(
        "                                            const CSerializationContext& context = GetDefaultContext()) {");
    out.Line("  return RkXmlLib16::ReadDocument(kSchema, document, context);");
    out.Line("}");
    out.Line("inline CSmartPtr<CModelObject> ReadFile(const CFileName& fileName,");
    out.Line("                                        const CSerializationContext& context = GetDefaultContext()) {");
    out.Line("  return RkXmlLib16::ReadFile(kSchema, fileName, context);");
    out.Line("}");
    out.Line();
  }

  void EnumHeader(const PlannedEnum& enumeration, CText& out) {
    const auto& values = enumeration.value->type->facets.enumeration;
    out.Lines(ToComment(enumeration.value->type->documentation, 0));
    out.Line("enum class " + enumeration.name + " : int {");
    for (std::size_t i = 0; i < values.size(); ++i) {
      const std::string line = "  " + enumeration.enumerators[i] + ",";
      std::vector<std::string> note = ToComment(values[i].documentation, 2);
      if (note.size() == 1 && line.size() + note[0].size() <= kWidth) {
        out.Line(line + note[0]);
      } else {
        out.Lines(note);
        out.Line(line);
      }
    }
    out.Line("};");
    out.Line("extern const wchar_t* const k" + enumeration.name + "Texts[" + std::to_string(values.size()) + "];");
    out.Line("inline const wchar_t* ToText(" + enumeration.name + " value) {");
    out.Line("  return k" + enumeration.name + "Texts[static_cast<int>(value)];");
    out.Line("}");
    out.Line("inline " + enumeration.name + " " + enumeration.name + "FromText(std::wstring_view text) {");
    out.Line("  return static_cast<" + enumeration.name + ">(FindEnumeration(k" + enumeration.name + "Texts, text));");
    out.Line("}");
    out.Line();
  }

  void ClassHeader(const PlannedClass& object, CText& out) {
    const ClassBinding& binding = *object.binding;
    const PlannedDocument& document = *object.document;
    const std::string base = object.base != nullptr ? Name(*object.base, document) : "CModelObject";
    const bool addsNil = binding.isNillable && (object.base == nullptr || !object.base->binding->isNillable);
    out.Lines(ToComment(ClassNote(object), 0));
    out.Line("class " + object.name + " : public " + base + (addsNil ? ", public INillable" : "") + " {");
    out.Line(" public:");
    out.Line("  static const ClassModel kModel;");
    out.Line();
    if (!binding.isAbstract) out.Line("  explicit " + object.name + "(const wchar_t* elementName = nullptr);");
    out.Line("  ~" + object.name + "() override;");
    if (addsNil) {
      out.Line();
      out.Line("  bool IsNil() const override { return GetNilFlag(); }");
      out.Line("  void SetNil(bool nil) override { SetNilFlag(nil); }");
    }
    for (const auto& storage : object.own) {
      out.Line();
      Accessors(object, *storage, out);
    }
    const bool isConstructedByOthers = object.isBase || binding.isAbstract;
    if (isConstructedByOthers || !object.own.empty()) {
      out.Line();
      out.Line(" protected:");
    }
    if (isConstructedByOthers) out.Line("  " + object.name + "(const ClassModel& model, const wchar_t* elementName);");
    if (!object.own.empty()) out.Line("  CMember FindMember(int property) override;");
    if (!object.own.empty()) {
      out.Line();
      out.Line(" private:");
      for (const auto& storage : object.own) out.Line("  " + FieldOf(*storage, document));
    }
    out.Line("};");
    out.Line();
  }

  static std::wstring ClassNote(const PlannedClass& object) {
    const ClassBinding& binding = *object.binding;
    std::wstring note;
    if (binding.kind == ClassBinding::Kind::Group) {
      note = L"A group of elements.";
    } else if (binding.kind == ClassBinding::Kind::SubstitutionGroup) {
      note = L"The elements that may stand for " + binding.element->name.localName + L".";
    } else {
      note = binding.typeName.empty()
                 ? std::wstring(L"The type of an element.")
                 : L"Type " + binding.typeName.localName + (binding.isAbstract ? L", abstract." : L".");
      const std::wstring& documentation = binding.type->documentation;
      if (!documentation.empty()) note += L' ' + documentation;
    }
    return note;
  }

  // The class that is common to all objects of the storage: those of other types do not derive from xs:anyType.
  static std::string HeldClass(const Storage& storage, const PlannedDocument& document) {
    return storage.object->binding->IsAnyType() ? "CModelObject" : Name(*storage.object, document);
  }

  static std::string ObjectType(const Storage& storage, const PlannedDocument& document) {
    switch (storage.kind) {
      case Storage::Kind::Values:
        return storage.type;
      case Storage::Kind::Object:
        return HeldClass(storage, document);
      case Storage::Kind::Objects:
        return "CModelCollection<" + HeldClass(storage, document) + ">";
      case Storage::Kind::Wildcard:
        return "CElement";
      case Storage::Kind::Wildcards:
        return "CElementCol";
      case Storage::Kind::Attributes:
        return "CAttributeCol";
      default:
        return storage.type;
    }
  }

  static std::string FieldOf(const Storage& storage, const PlannedDocument& document) {
    const std::string type = ObjectType(storage, document);
    if (storage.kind == Storage::Kind::Value)
      return storage.isRare ? "CRareValue<" + type + "> " + storage.field + ";" : type + " " + storage.field + "{};";
    const bool isMade = storage.kind != Storage::Kind::Object && storage.kind != Storage::Kind::Wildcard;
    return std::string(isMade ? "mutable " : "") + "CSmartPtr<" + type + "> " + storage.field + ";";
  }

  void Accessors(const PlannedClass& object, const Storage& storage, CText& out) {
    const std::string number = Number(storage.number);
    const std::string& name = storage.name;
    const std::string type = ObjectType(storage, *object.document);
    std::wstring note = FromUtf8(storage.note);
    if (storage.note == "Element" || storage.note == "Attribute") note += L' ' + storage.xmlName;
    note += L'.';
    if (!storage.documentation.empty()) note += L' ' + storage.documentation;
    out.Lines(ToComment(note, 2, 3));
    if (storage.kind == Storage::Kind::Value) {
      const std::string argument = IsPlain(type) || storage.enumeration != nullptr ? type : "const " + type + "&";
      if (storage.isNillable) {
        out.Line("  bool Is" + name + "Nil() const noexcept { return !IsSet(" + number + "); }");
        out.Line("  void Set" + name + "Nil() { DropValue(" + number + ", " + storage.field + "); }");
      } else {
        out.Line("  bool Has" + name + "() const noexcept { return IsSet(" + number + "); }");
        out.Line("  void Clear" + name + "() { DropValue(" + number + ", " + storage.field + "); }");
      }
      out.Line("  " + argument + " Get" + name + "() const noexcept { return " + storage.field +
               (storage.isRare ? ".Get()" : "") + "; }");
      out.Line("  void Set" + name + "(" + argument + " value) { StoreValue(" + number + ", " + storage.field +
               ", value); }");
    } else if (storage.kind == Storage::Kind::Object || storage.kind == Storage::Kind::Wildcard) {
      out.Line("  " + type + "* Get" + name + "() const noexcept { return " + storage.field + "; }");
      out.Line("  void Set" + name + "(" + type + "* value);");
      if (storage.kind == Storage::Kind::Object && !storage.object->binding->isAbstract)
        out.Line("  " + type + "* GetOrAdd" + name + "();");
    } else {
      out.Line("  " + type + "* Get" + name + "() const { return RequireCollection(" + number + ", " + storage.field +
               "); }");
    }
  }

  // ---- Sources

  // What stands in one source: runs of the enumerations, simple types, classes and elements of a document.
  struct Part {
    std::vector<const PlannedEnum*> enums;
    std::vector<const SimpleTypeDefinition*> types;
    std::vector<const PlannedClass*> classes;
    std::vector<const RootBinding*> roots;
    bool hasSchema = false;
    CText body;  // of the classes
    std::size_t lines = 0;
  };

  std::vector<EmittedFile> Sources(const PlannedDocument& document) {
    std::vector<Part> parts(1);
    // The part for so many lines more.
    const auto at = [&](std::size_t lines) -> Part& {
      if (parts.back().lines > 0 && parts.back().lines + lines > kLinesOfSource) parts.emplace_back();
      parts.back().lines += lines;
      return parts.back();
    };
    const auto count = [](const auto& print) {
      CText text;
      print(text);
      return text.GetLines();
    };
    for (const PlannedEnum* enumeration : document.enums)
      at(count([&](CText& out) { EnumSource(*enumeration, out); })).enums.push_back(enumeration);
    for (const SimpleTypeDefinition* type : document.types)
      at(count([&](CText& out) { SimpleType(*type, document, out); })).types.push_back(type);
    for (const PlannedClass* object : document.classes) {
      CText text;
      ClassSource(*object, text);
      Part& part = at(text.GetLines() + 1);
      part.classes.push_back(object);
      Copy(text.Get(), part.body);
      part.body.Line();
    }
    for (const RootBinding* root : document.roots)
      at(count([&](CText& out) { Element(*root, document, out); })).roots.push_back(root);
    if (IsFirst(document)) at(count([&](CText& out) { SchemaSource(document, out); })).hasSchema = true;

    std::vector<EmittedFile> files;
    for (const Part& part : parts) {
      const std::string stem =
          files.empty() ? document.stem : m_stems.Add(document.stem + "_" + std::to_string(files.size() + 1));
      files.push_back({stem + ".cpp", Source(document, part)});
    }
    return files;
  }

  std::string Source(const PlannedDocument& document, const Part& part) {
    std::set<const PlannedDocument*> others;
    std::set<const ValueBinding*> values;
    std::vector<const ValueBinding*> ordered;
    const auto use = [&](const ValueBinding* value) {
      if (value != nullptr && values.insert(value).second) ordered.push_back(value);
    };
    m_usedTypes.clear();
    for (const PlannedClass* object : part.classes) {
      for (const MemberBinding& member : object->binding->members) {
        if (member.object != nullptr) others.insert(m_plan.Find(member.object)->document);
        if (member.object != nullptr && member.object->kind == ClassBinding::Kind::SimpleType)
          Type(member.object->type, document);
        use(member.value);
      }
      for (const AttributeBinding& attribute : object->binding->attributes) use(attribute.value);
      use(object->binding->text);
      if (object->binding->kind == ClassBinding::Kind::SimpleType) Type(object->binding->type, document);
      if (object->element != nullptr) others.insert(&m_plan.DocumentOf(*object->element));
    }
    if (part.hasSchema)
      for (const auto& other : m_plan.GetDocuments()) others.insert(other.get());
    others.erase(&document);

    m_valueNames.clear();
    CScope names;
    CText models;
    for (const ValueBinding* value : ordered) Value(*value, document, names, models);
    CText types;
    for (const SimpleTypeDefinition* type : part.types) SimpleType(*type, document, types);
    CText tail;
    if (!part.roots.empty()) Elements(part.roots, document, tail);
    if (part.hasSchema) SchemaSource(document, tail);

    CText out;
    out.Line(Title(document));
    out.Line("#include \"" + document.stem + ".h\"");
    out.Line();
    Include(others, out);
    ForeignTypes(!part.classes.empty() && !IsFirst(document), out);
    out.Line("namespace " + document.nameSpace + " {");
    out.Line();
    out.Line("using namespace RkXmlLib16Data;");
    out.Line();
    for (const PlannedEnum* enumeration : part.enums) EnumSource(*enumeration, out);
    Copy(types.Get(), out);
    if (!ordered.empty()) {
      out.Line("namespace {");
      out.Line();
      Copy(models.Get(), out);
      out.Line();
      out.Line("}  // namespace");
      out.Line();
    }
    Copy(Named(part.body.Get()), out);
    out.Line();
    Copy(tail.Get(), out);
    out.Line("}  // namespace " + document.nameSpace);
    return out.Take();
  }

  static void Copy(const std::string& text, CText& out) {
    for (std::size_t at = 0; at < text.size();) {
      const std::size_t end = text.find('\n', at);
      out.Line(text.substr(at, end - at));
      at = end + 1;
    }
  }

  // The simple types that the source speaks of, wherever they are defined, and the schema where no header tells it.
  void ForeignTypes(bool hasSchema, CText& out) {
    std::map<std::string, std::set<std::string>> declarations;
    if (hasSchema) declarations[First().nameSpace].insert("SchemaModel kSchema");
    for (const SimpleTypeDefinition* type : m_usedTypes)
      declarations[m_plan.DocumentOf(*type).nameSpace].insert("CSimpleTypeModel " + m_plan.NameOf(type));
    for (const auto& [nameSpace, texts] : declarations) {
      out.Line("namespace " + nameSpace + " {");
      for (const std::string& text : texts) out.Line("extern const RkXmlLib16Data::" + text + ";");
      out.Line("}  // namespace " + nameSpace);
      out.Line();
    }
  }

  // A pointer to a simple type that another one is made of.
  std::string Reference(const SimpleTypeDefinition* type, const PlannedDocument& document) {
    const std::string text = Type(type, document);
    return text.empty() ? "nullptr" : text;
  }

  // The names of the tables that a simple type takes; empty for none.
  struct TypeTables {
    std::string members;
    std::string patterns;
    std::string values;
  };

  // They stand in front of the type, in its namespace.
  TypeTables TablesOf(const SimpleTypeDefinition& type, const PlannedDocument& document, CText& out) {
    const std::string& name = m_plan.NameOf(&type);
    std::vector<std::string> members;
    for (const SimpleTypeDefinition* member : type.memberTypes) members.push_back(Reference(member, document));
    std::vector<std::string> patterns;
    for (const PatternStep& step : type.facets.patterns)
      if (const std::wstring pattern = JoinAlternatives(step); !pattern.empty()) patterns.push_back(ToLiteral(pattern));
    std::vector<std::string> values;
    for (const EnumerationValue& value : type.facets.enumeration) {
      std::string prefixes = "{}";
      if (value.namespaces != nullptr && !value.namespaces->empty())
        prefixes = Prefixes(*value.namespaces, name + std::to_string(values.size() + 1) + "Prefixes", out);
      values.push_back("{" + ToLiteral(value.text) + ", " + prefixes + "}");
    }
    const auto table = [&](const char* element, const char* suffix, const std::vector<std::string>& items) {
      if (items.empty()) return std::string();
      std::string line = std::string("static constexpr ") + element + " " + name + suffix + "[] = {";
      for (std::size_t i = 0; i < items.size(); ++i) line += (i > 0 ? ", " : "") + items[i];
      out.Broken(line + "};", 4);
      return name + suffix;
    };
    return {table("const CSimpleTypeModel*", "Union", members), table("const wchar_t*", "Patterns", patterns),
            table("EnumerationModel", "Enumeration", values)};
  }

  void SimpleType(const SimpleTypeDefinition& type, const PlannedDocument& document, CText& out) {
    static constexpr const char* kVarieties[] = {"Absent", "Atomic", "List", "Union"};
    static constexpr const char* kSpaces[] = {"Preserve", "Replace", "Collapse"};
    const std::string& name = m_plan.NameOf(&type);
    m_usedTypes.insert(&type);  // whose declaration makes it visible to other sources
    const Facets& f = type.facets;
    const TypeTables tables = TablesOf(type, document, out);
    out.Line("const CSimpleTypeModel " + name + "([] {");
    out.Broken("  SimpleTypeData data(" + ToLiteral(type.name.localName) + ", " +
                   ToLiteral(type.IsAnonymous() ? std::wstring() : type.name.namespaceUri) + ", " +
                   Reference(type.base != nullptr ? type.base->AsSimple() : nullptr, document) + ", Xsd::Variety::" +
                   kVarieties[static_cast<int>(type.variety)] + ", " + BuiltInName(type.builtIn) + ");",
               6);
    const auto set = [&](const char* facet, const std::string& value) {
      out.Broken(std::string("  data.") + facet + " = " + value + ";", 6);
    };
    const auto count = [&](const char* facet, const std::optional<CountFacet>& value) {
      if (value) set(facet, std::to_string(std::min<std::uint64_t>(value->value, 0x7FFFFFFFFFFFFFFF)));
    };
    const auto bound = [&](const char* facet, const std::optional<BoundFacet>& value) {
      if (value) set(facet, ToLiteral(value->text));
    };
    if (f.GetWhiteSpace() != WhiteSpace::Preserve)
      set("whiteSpace", std::string("Xsd::WhiteSpace::") + kSpaces[static_cast<int>(f.GetWhiteSpace())]);
    if (type.variety == Variety::List && type.itemType != nullptr) set("itemType", Reference(type.itemType, document));
    if (!tables.members.empty()) set("memberTypes", tables.members);
    count("length", f.length);
    count("minLength", f.minLength);
    count("maxLength", f.maxLength);
    count("totalDigits", f.totalDigits);
    count("fractionDigits", f.fractionDigits);
    bound("minInclusive", f.minInclusive);
    bound("maxInclusive", f.maxInclusive);
    bound("minExclusive", f.minExclusive);
    bound("maxExclusive", f.maxExclusive);
    if (!tables.patterns.empty()) set("patterns", tables.patterns);
    if (!tables.values.empty()) set("enumeration", tables.values);
    if (type.holdsQNames) set("holdsQNames", "true");
    out.Line("  return data;");
    out.Line("}());");
    out.Line();
  }

  static std::string Prefixes(const NamespaceBindings& bindings, const std::string& name, CText& out) {
    std::string line = "static constexpr PrefixModel " + name + "[] = {";
    bool isFirst = true;
    for (const auto& [prefix, uri] : bindings) {
      line += (isFirst ? "{" : ", {") + ToLiteral(prefix) + ", " + ToLiteral(uri) + "}";
      isFirst = false;
    }
    out.Broken(line + "};", 4);
    return name;
  }

  void EnumSource(const PlannedEnum& enumeration, CText& out) {
    const auto& values = enumeration.value->type->facets.enumeration;
    std::string line = "const wchar_t* const k" + enumeration.name + "Texts[" + std::to_string(values.size()) + "] = {";
    for (std::size_t i = 0; i < values.size(); ++i) line += (i > 0 ? ", " : "") + ToLiteral(values[i].text);
    out.Broken(line + "};", 4);
    out.Line();
  }

  // The model of a value; a number between two kMark stands for its name in a body,
  // since the body is printed first.
  std::string Mark(const ValueBinding* value) {
    const auto [at, isNew] = m_marks.try_emplace(value, m_marks.size());
    if (isNew) m_marked.push_back(value);
    return kMark + std::to_string(at->second) + kMark;
  }

  std::string Named(const std::string& body) const {
    std::string result;
    std::size_t at = 0;
    for (std::size_t start; (start = body.find(kMark, at)) != std::string::npos;) {
      const std::size_t end = body.find(kMark, start + 1);
      result += body.substr(at, start - at);
      result += m_valueNames.at(m_marked[std::stoul(body.substr(start + 1, end - start - 1))]);
      at = end + 1;
    }
    return result + body.substr(at);
  }

  void Value(const ValueBinding& value, const PlannedDocument& document, CScope& names, CText& out) {
    const QName& typeName = value.type != nullptr ? value.type->name : QName();
    const std::string name = names.Add(
        "k" + (typeName.localName.empty() ? std::string("Anonymous") : ToPascal(typeName.localName)) + "Values");
    m_valueNames[&value] = name;
    std::string line = "constexpr ValueModel " + name + " = ValueModel(" + CppTypeOf(value.itemType).item +
                       ", CWhitespaceUtils::" + RuleName(value.whitespace) + ")";
    const CPrimitiveRestrictions& f = value.facets;
    const auto text = [&](const char* facet, const std::wstring& given) {
      if (!given.empty()) line += std::string(".") + facet + "(" + ToLiteral(given) + ")";
    };
    const auto count = [&](const char* facet, long given) {
      if (given >= 0) line += std::string(".") + facet + "(" + std::to_string(given) + ")";
    };
    text("Pattern", f.GetPattern());
    count("Length", f.GetLength());
    count("MinLength", f.GetMinLength());
    count("MaxLength", f.GetMaxLength());
    text("MinInclusive", f.GetMinInclusive());
    text("MaxInclusive", f.GetMaxInclusive());
    text("MinExclusive", f.GetMinExclusive());
    text("MaxExclusive", f.GetMaxExclusive());
    count("TotalDigits", f.GetTotalDigits());
    count("FractionDigits", f.GetFractionDigits());
    if (const PlannedEnum* enumeration = m_plan.FindEnum(&value)) {
      const bool isOwn = enumeration->document->nameSpace == document.nameSpace;
      line += ".Enumeration(" + (isOwn ? "" : "::" + enumeration->document->nameSpace + "::") + "k" +
              enumeration->name + "Texts)";
    }
    const std::string type = Type(value.type, document);
    if (!type.empty()) line += ".Type(" + type + ")";
    if (value.needsCheck) line += ".Checked()";
    if (value.holdsQNames) line += ".QNames()";
    out.Broken(line + ";", 4);
  }

  static std::string RuleName(CWhitespaceUtils::WhitespaceRule rule) {
    return rule == CWhitespaceUtils::preserve ? "preserve" : rule == CWhitespaceUtils::replace ? "replace" : "collapse";
  }

  void ClassSource(const PlannedClass& object, CText& out) {
    const ClassBinding& binding = *object.binding;
    const PlannedDocument& document = *object.document;
    const std::string base = object.base != nullptr ? Name(*object.base, document) : "CModelObject";
    Tables(object, out);
    Model(object, out);
    const bool begins = std::any_of(binding.attributes.begin(), binding.attributes.end(),
                                    [](const AttributeBinding& a) { return a.defaultValue.exists; });
    const std::string body = begins ? " { Begin(); }" : " {}";
    if (!binding.isAbstract)
      out.Line(object.name + "::" + object.name + "(const wchar_t* elementName) : " + base + "(kModel, elementName)" +
               body);
    if (object.isBase || binding.isAbstract) {
      out.Line(object.name + "::" + object.name + "(const ClassModel& model, const wchar_t* elementName)");
      out.Line("    : " + base + "(model, elementName) {}");
    }
    out.Line(object.name + "::~" + object.name + "() = default;");
    out.Line();
    for (const auto& storage : object.own) {
      if (storage->kind != Storage::Kind::Object && storage->kind != Storage::Kind::Wildcard) continue;
      const std::string type = ObjectType(*storage, document);
      out.Broken("void " + object.name + "::Set" + storage->name + "(" + type + "* value) { StoreObject(" +
                     Number(storage->number) + ", " + storage->field + ", value); }",
                 4);
      if (storage->kind == Storage::Kind::Object && !storage->object->binding->isAbstract) {
        const std::string made = Name(*storage->object, document);
        out.Broken(type + "* " + object.name + "::GetOrAdd" + storage->name + "() { return RequireObject" +
                       (made != type ? "<" + made + ">(" : "(") + Number(storage->number) + ", " + storage->field +
                       "); }",
                   4);
      }
    }
    out.Line();
    if (object.own.empty()) return;
    out.Line("CMember " + object.name + "::FindMember(int property) {");
    out.Line("  switch (property) {");
    for (const auto& storage : object.own) {
      const std::string number = Number(storage->number);
      out.Line("    case " + number + ": return " + storage->field + ";");
    }
    out.Line("    default: return " + base + "::FindMember(property);");
    out.Line("  }");
    out.Line("}");
    out.Line();
  }

  void Tables(const PlannedClass& object, CText& out) {
    const ClassBinding& binding = *object.binding;
    if (binding.members.empty() && binding.attributes.empty() && binding.attributeWildcard == nullptr) return;
    out.Line("namespace {");
    out.Line();
    MemberTable(object, out);
    AttributeTable(object, out);
    out.Line("}  // namespace");
    out.Line();
  }

  static void Table(const std::string& head, const std::vector<std::string>& rows, CText& out) {
    if (rows.empty()) return;
    out.Line(head + "[] = {");
    for (const std::string& row : rows) out.Broken("    " + row + ",", 8);
    out.Line("};");
    out.Line();
  }

  void MemberTable(const PlannedClass& object, CText& out) {
    std::size_t wildcards = 0;
    std::vector<std::string> rows;
    for (const MemberBinding& member : object.binding->members) {
      const std::string any = "k" + object.tables + "Any" + std::to_string(wildcards + 1);
      if (member.wildcard != nullptr) {
        WildcardTable(*member.wildcard, any, out);
        ++wildcards;
      }
      const std::string number = std::to_string(rows.size() + 1);
      rows.push_back(Member(object, member, *object.members[rows.size()], any) +
                     Default(member.defaultValue, "k" + object.tables + "Member" + number + "Prefixes", out));
    }
    Table("constexpr MemberModel k" + object.tables + "Members", rows, out);
  }

  void AttributeTable(const PlannedClass& object, CText& out) {
    if (object.binding->attributeWildcard != nullptr)
      WildcardTable(*object.binding->attributeWildcard, "k" + object.tables + "AnyAttribute", out);
    std::vector<std::string> rows;
    for (const AttributeBinding& attribute : object.binding->attributes) {
      const std::string number = std::to_string(rows.size() + 1);
      std::string row = "AttributeModel(" + Number(object.attributes[rows.size()]->number) + ", " +
                        ToLiteral(attribute.name) + ", " + ToLiteral(attribute.namespaceUri) + ", " +
                        Mark(attribute.value) + ")";
      if (!attribute.isOptional) row += ".Required()";
      rows.push_back(row +
                     Default(attribute.defaultValue, "k" + object.tables + "Attribute" + number + "Prefixes", out));
    }
    Table("constexpr AttributeModel k" + object.tables + "Attributes", rows, out);
  }

  void Model(const PlannedClass& object, CText& out) {
    const ClassBinding& binding = *object.binding;
    const PlannedDocument& document = *object.document;
    static constexpr const char* kGroups[] = {"Sequence", "Choice", "All"};
    out.Line("const ClassModel " + object.name + "::kModel([] {");
    const bool isNew = !binding.isAbstract;
    out.Broken("  ClassData data(" + ToLiteral(binding.typeName.localName) + ", " +
                   ToLiteral(binding.typeName.namespaceUri) + ", XmlElementGroupType_" + kGroups[binding.group] + ", " +
                   (isNew ? "NewModelObject<" + object.name + ">" : std::string("nullptr")) + ");",
               6);
    const auto set = [&](const std::string& name, const std::string& value) {
      out.Line("  data." + name + " = " + value + ";");
    };
    set("schema", "&" + Schema(document));
    if (object.base != nullptr) set("base", "&" + Name(*object.base, document) + "::kModel");
    const DerivationSet methods = binding.GetDerivation();
    if (methods == kRestriction) set("derivation", "Derivation_Restriction");
    if (methods == (kExtension | kRestriction)) set("derivation", "Derivation_Extension | Derivation_Restriction");
    if (binding.type != nullptr && binding.type->AsComplex() != nullptr) {
      const unsigned block = binding.type->AsComplex()->prohibitedSubstitutions & (kExtension | kRestriction);
      if (block != 0) set("block", std::to_string(block));
    }
    if (binding.kind == ClassBinding::Kind::SimpleType) set("simple", Type(binding.type, document));
    if (object.element != nullptr) {
      const PlannedDocument& home = m_plan.DocumentOf(*object.element);
      set("element", "&" + (home.nameSpace == document.nameSpace ? "" : "::" + home.nameSpace + "::") + "k" +
                         m_plan.NameOf(object.element) + "Element");
    }
    if (binding.IsInline()) set("elementType", "XmlElementType_InlineGroup");
    if (!binding.members.empty()) set("members", "k" + object.tables + "Members");
    if (!binding.attributes.empty()) set("attributes", "k" + object.tables + "Attributes");
    if (binding.attributeWildcard != nullptr) {
      set("attributeWildcard", "&k" + object.tables + "AnyAttribute");
      set("attributeWildcardProperty", Number(object.anyAttribute->number));
    }
    if (object.text != nullptr) {
      set("text", "&" + Mark(binding.text));
      set("textProperty", Number(object.text->number));
    }
    if (object.count > 0) set("propertyCount", Number(object.count));
    if (!binding.strictAttributes) set("strictAttributes", "false");
    if (binding.contentMayBeEmpty) set("contentMayBeEmpty", "true");
    if (binding.isAbstract) set("isAbstract", "true");
    if (binding.isMixed) set("isMixed", "true");
    if (binding.IsAnyType()) set("isAnyType", "true");
    out.Line("  return data;");
    out.Line("}());");
    out.Line();
  }

  void WildcardTable(const Wildcard& wildcard, const std::string& name, CText& out) {
    static constexpr const char* kAllowed[] = {"Any", "Not", "Listed"};
    static constexpr const char* kProcess[] = {"Strict", "Lax", "Skip"};
    std::string list = "{}";
    if (!wildcard.namespaces.empty()) {
      std::string line = "constexpr const wchar_t* " + name + "Namespaces[] = {";
      for (std::size_t i = 0; i < wildcard.namespaces.size(); ++i)
        line += (i > 0 ? ", " : "") + ToLiteral(wildcard.namespaces[i]);
      out.Broken(line + "};", 4);
      list = name + "Namespaces";
    }
    out.Broken("constexpr WildcardModel " + name +
                   " = {WildcardModel::Allowed::" + kAllowed[static_cast<int>(wildcard.constraint)] +
                   ", WildcardModel::Process::" + kProcess[static_cast<int>(wildcard.processContents)] + ", " + list +
                   ", " + (wildcard.allowsAbsent ? "true" : "false") + ", " + ToLiteral(wildcard.written) + ", " +
                   ToLiteral(wildcard.targetNamespace) + "};",
               4);
    out.Line();
  }

  // A row of the table, without a default or fixed value. `any` is the name of its wildcard.
  std::string Member(const PlannedClass& object, const MemberBinding& member, const Storage& storage,
                     const std::string& any) {
    const PlannedDocument& document = *object.document;
    const std::string names =
        Number(storage.number) + ", " + ToLiteral(member.name) + ", " + ToLiteral(member.namespaceUri);
    std::string line;
    switch (member.kind) {
      case MemberBinding::Kind::Value:
      case MemberBinding::Kind::Enumeration:
        line = "ValueMember(" + names + ", " + Mark(member.value) + ")";
        break;
      case MemberBinding::Kind::Wildcard:
        line = "WildcardMember(" + Number(storage.number) + ", " + any + ")";
        break;
      default: {
        const char* const function = member.kind == MemberBinding::Kind::Object           ? "ObjectMember("
                                     : member.kind == MemberBinding::Kind::AbstractObject ? "AbstractMember("
                                                                                          : "GroupMember(";
        line = function + names + ", " + Name(*m_plan.Find(member.object), document) + "::kModel)";
        break;
      }
    }
    if (member.IsCollection()) {
      line += ".Repeated(" + Number(member.minOccurs) + ", " + Number(member.maxOccurs) +
              (member.stopsAtMaximum ? ", true)" : ")");
      if (storage.kind == Storage::Kind::Objects)
        line += ".Make(NewModelCollection<" + HeldClass(storage, document) + ">)";
    } else if (member.cardinality == MemberBinding::Cardinality::Optional) {
      line += ".Optional()";
    }
    if (!member.isRequired) line += ".NotRequired()";
    if (member.isNillable) line += ".Nillable()";
    if (member.object != nullptr && member.object->kind == ClassBinding::Kind::SimpleType)
      line += ".Simple(" + Type(member.object->type, document) + ")";
    if (member.element != nullptr && member.kind != MemberBinding::Kind::InlineGroup) {
      const unsigned block = member.element->disallowedSubstitutions & (kExtension | kRestriction);
      if (block != 0) line += ".Block(" + std::to_string(block) + ")";
    }
    return line;
  }

  static bool HasPrefixes(const ValueConstraint& constraint) {
    return constraint.kind == ValueConstraintKind::Fixed && constraint.namespaces != nullptr &&
           !constraint.namespaces->empty();
  }

  // The part of a row for the value. The prefixes of names stand in a table of the given name in front.
  static std::string Default(const DefaultBinding& value, const std::string& prefixes, CText& out) {
    if (!value.exists) return {};
    return (value.isFixed ? ".Fixed(" : ".Default(") + ToLiteral(value.text) +
           (HasPrefixes(*value.constraint) ? ", " + Prefixes(*value.constraint->namespaces, prefixes, out) : "") + ")";
  }

  void Elements(const std::vector<const RootBinding*>& roots, const PlannedDocument& document, CText& out) {
    const auto isMade = [](const RootBinding* root) { return !root->element->isAbstract && !root->object->isAbstract; };
    if (std::any_of(roots.begin(), roots.end(), isMade)) {
      out.Line("namespace {");
      out.Line();
      out.Line("template <class T>");
      out.Line("CSmartPtr<T> NewFor(const ElementModel& element) {");
      out.Line("  CSmartPtr<T> object(new T());");
      out.Line("  object->SetDeclaration(element);");
      out.Line("  return object;");
      out.Line("}");
      out.Line();
      out.Line("}  // namespace");
      out.Line();
    }
    for (const RootBinding* root : roots) Element(*root, document, out);
  }

  void Element(const RootBinding& root, const PlannedDocument& document, CText& out) {
    const ElementDeclaration& element = *root.element;
    const std::string& name = m_plan.NameOf(&element);
    const PlannedClass& object = *m_plan.Find(root.object);
    std::string value = "{}";
    if (element.value) {
      const bool isFixed = element.value.kind == ValueConstraintKind::Fixed;
      value = "{" + ToLiteral(element.value.normalized) + (isFixed ? ", true, " : ", false, ") +
              (HasPrefixes(element.value) ? Prefixes(*element.value.namespaces, "k" + name + "ElementPrefixes", out)
                                          : "{}") +
              "}";
    }
    out.Broken("const ElementModel k" + name + "Element = {" + ToLiteral(element.name.localName) + ", " +
                   ToLiteral(element.name.namespaceUri) + ", &" + Name(object, document) + "::kModel, " +
                   (element.type->IsSimple() ? Type(element.type, document) : std::string("nullptr")) + ", " + value +
                   ", " + std::to_string(element.disallowedSubstitutions & (kExtension | kRestriction)) + ", " +
                   (element.isNillable ? "true" : "false") + ", " + (element.isAbstract ? "true" : "false") + "};",
               4);
    if (element.isAbstract || root.object->isAbstract) return;
    const std::string type = Name(object, document);
    out.Broken("CSmartPtr<" + type + "> New" + name + "() { return NewFor<" + type + ">(k" + name + "Element); }", 4);
    out.Line();
  }

  void SchemaSource(const PlannedDocument& document, CText& out) {
    out.Line("namespace {");
    out.Line();
    std::vector<std::string> classes;
    std::vector<std::string> elements;
    std::vector<std::string> types;
    std::vector<std::string> attributes;
    for (const TypeDefinition* type : m_plan.GetBinding().GetSchemas().GetTypes())
      if (type->IsSimple()) types.push_back(Type(type, document));
    std::size_t number = 0;
    for (const AttributeDeclaration* attribute : m_plan.GetBinding().GetSchemas().GetAttributes()) {
      const std::string model = "kAttribute" + std::to_string(++number) + "Model";
      out.Broken("constexpr ValueModel " + model + " = ValueModel(ItemType_string, CWhitespaceUtils::preserve).Type(" +
                     Type(attribute->type, document) + ");",
                 4);
      std::string line = "AttributeModel(0, " + ToLiteral(attribute->name.localName) + ", " +
                         ToLiteral(attribute->name.namespaceUri) + ", " + model + ")";
      if (attribute->value.kind == ValueConstraintKind::Fixed)
        line += Default({true, true, attribute->value.normalized, &attribute->value},
                        "kAttribute" + std::to_string(number) + "Prefixes", out);
      attributes.push_back(line);
    }
    for (const auto& other : m_plan.GetDocuments()) {
      const std::string scope = other->nameSpace == document.nameSpace ? "" : "::" + other->nameSpace + "::";
      for (const PlannedClass* object : other->classes)
        if (!object->binding->typeName.empty()) classes.push_back("&" + scope + object->name + "::kModel");
      for (const RootBinding* root : other->roots)
        elements.push_back("&" + scope + "k" + m_plan.NameOf(root->element) + "Element");
    }
    Table("const ClassModel* const kClasses", classes, out);
    Table("const ElementModel* const kElements", elements, out);
    Table("constexpr AttributeModel kAttributeModels", attributes, out);
    Table("const CSimpleType* const kSimpleTypes", types, out);
    out.Line("}  // namespace");
    out.Line();
    out.Line(std::string("const SchemaModel kSchema = {") + (classes.empty() ? "{}" : "kClasses") + ", " +
             (elements.empty() ? "{}" : "kElements") + ", " + (attributes.empty() ? "{}" : "kAttributeModels") + ", " +
             (types.empty() ? "{}" : "kSimpleTypes") + "};");
    out.Line();
  }

  const EmitOptions& m_options;
  CPlan m_plan;
  std::unordered_map<const ValueBinding*, std::size_t> m_marks;
  std::vector<const ValueBinding*> m_marked;
  std::unordered_map<const ValueBinding*, std::string> m_valueNames;
  std::set<const SimpleTypeDefinition*> m_usedTypes;  // of the source at work
  CScope m_stems;                                     // of all files
};

}  // namespace

std::vector<EmittedFile> EmitClasses(const CBinding& binding, const EmitOptions& options) {
  return CEmitter(binding, options).Emit();
}

}  // namespace RkXmlSchema
