// The shape of schema documents: which attributes and children each element of XML Schema has.
#include <algorithm>
#include <array>
#include <set>

#include "schema/components/internal/Reader.h"
#include "schema/components/internal/Xsd.h"

namespace RkXmlSchema {

namespace {

// An attribute is "name:type", with "!" when required. Types: b boolean, n NCName, q QName, Q QNames, o
// nonNegativeInteger, O the same or "unbounded", u anyURI, i ID, s any text; f form, p processContents, U use, N a
// namespace constraint, and sets of derivation methods: x (extension restriction), k (those and substitution), S (list
// union restriction), D (extension restriction list union).
// Children are names joined by "|" with ?, * or + for optional, any number, at least one.
struct ElementRule {
  const wchar_t* name;
  const wchar_t* within;  // parents it holds for, each followed by a blank; "" for any
  const wchar_t* attributes;
  const wchar_t* children;
};

#define RKXML_FACET(name, attributes) \
  { name, L"", attributes L" id:i", L"annotation?" }
constexpr const wchar_t* kTop = L"schema redefine ";

const ElementRule kRules[] = {
    {L"schema", L"",
     L"targetNamespace:u version:s finalDefault:D blockDefault:k attributeFormDefault:f elementFormDefault:f id:i",
     L"include|import|redefine|annotation* "
     L"simpleType|complexType|group|attributeGroup|element|attribute|notation|annotation*"},
    {L"include", L"", L"schemaLocation:u! id:i", L"annotation?"},
    {L"import", L"", L"namespace:u schemaLocation:u id:i", L"annotation?"},
    {L"redefine", L"", L"schemaLocation:u! id:i", L"annotation|simpleType|complexType|group|attributeGroup*"},
    {L"annotation", L"", L"id:i", L"appinfo|documentation*"},
    {L"notation", L"", L"name:n! public:s system:u id:i", L"annotation?"},
    {L"element", kTop,
     L"name:n! type:q substitutionGroup:q default:s fixed:s nillable:b abstract:b final:x block:k id:i",
     L"annotation? simpleType|complexType? unique|key|keyref*"},
    {L"element", L"", L"name:n ref:q type:q minOccurs:o maxOccurs:O default:s fixed:s nillable:b block:k form:f id:i",
     L"annotation? simpleType|complexType? unique|key|keyref*"},
    {L"attribute", kTop, L"name:n! type:q default:s fixed:s id:i", L"annotation? simpleType?"},
    {L"attribute", L"", L"name:n ref:q type:q use:U default:s fixed:s form:f id:i", L"annotation? simpleType?"},
    {L"complexType", kTop, L"name:n! mixed:b abstract:b final:x block:x id:i",
     L"annotation? simpleContent|complexContent|group|all|choice|sequence? attribute|attributeGroup* anyAttribute?"},
    {L"complexType", L"", L"mixed:b id:i",
     L"annotation? simpleContent|complexContent|group|all|choice|sequence? attribute|attributeGroup* anyAttribute?"},
    {L"simpleType", kTop, L"name:n! final:S id:i", L"annotation? restriction|list|union"},
    {L"simpleType", L"", L"id:i", L"annotation? restriction|list|union"},
    {L"group", kTop, L"name:n! id:i", L"annotation? all|choice|sequence"},
    {L"group", L"", L"ref:q! minOccurs:o maxOccurs:O id:i", L"annotation?"},
    {L"attributeGroup", kTop, L"name:n! id:i", L"annotation? attribute|attributeGroup* anyAttribute?"},
    {L"attributeGroup", L"", L"ref:q! id:i", L"annotation?"},
    {L"all", L"", L"minOccurs:o maxOccurs:O id:i", L"annotation? element*"},
    {L"choice", L"", L"minOccurs:o maxOccurs:O id:i", L"annotation? element|group|choice|sequence|any*"},
    {L"sequence", L"", L"minOccurs:o maxOccurs:O id:i", L"annotation? element|group|choice|sequence|any*"},
    {L"any", L"", L"namespace:N processContents:p minOccurs:o maxOccurs:O id:i", L"annotation?"},
    {L"anyAttribute", L"", L"namespace:N processContents:p id:i", L"annotation?"},
    {L"simpleContent", L"", L"id:i", L"annotation? restriction|extension"},
    {L"complexContent", L"", L"mixed:b id:i", L"annotation? restriction|extension"},
    {L"restriction", L"simpleType ", L"base:q id:i",
     L"annotation? simpleType? minExclusive|minInclusive|maxExclusive|maxInclusive|totalDigits|fractionDigits|length|"
     L"minLength|maxLength|enumeration|whiteSpace|pattern*"},
    {L"restriction", L"simpleContent ", L"base:q! id:i",
     L"annotation? simpleType? minExclusive|minInclusive|maxExclusive|maxInclusive|totalDigits|fractionDigits|length|"
     L"minLength|maxLength|enumeration|whiteSpace|pattern* attribute|attributeGroup* anyAttribute?"},
    {L"restriction", L"complexContent ", L"base:q! id:i",
     L"annotation? group|all|choice|sequence? attribute|attributeGroup* anyAttribute?"},
    {L"extension", L"simpleContent ", L"base:q! id:i", L"annotation? attribute|attributeGroup* anyAttribute?"},
    {L"extension", L"complexContent ", L"base:q! id:i",
     L"annotation? group|all|choice|sequence? attribute|attributeGroup* anyAttribute?"},
    {L"list", L"", L"itemType:q id:i", L"annotation? simpleType?"},
    {L"union", L"", L"memberTypes:Q id:i", L"annotation? simpleType*"},
    RKXML_FACET(L"minExclusive", L"value:s! fixed:b"),
    RKXML_FACET(L"minInclusive", L"value:s! fixed:b"),
    RKXML_FACET(L"maxExclusive", L"value:s! fixed:b"),
    RKXML_FACET(L"maxInclusive", L"value:s! fixed:b"),
    RKXML_FACET(L"totalDigits", L"value:P! fixed:b"),
    RKXML_FACET(L"fractionDigits", L"value:o! fixed:b"),
    RKXML_FACET(L"length", L"value:o! fixed:b"),
    RKXML_FACET(L"minLength", L"value:o! fixed:b"),
    RKXML_FACET(L"maxLength", L"value:o! fixed:b"),
    RKXML_FACET(L"whiteSpace", L"value:w! fixed:b"),
    RKXML_FACET(L"enumeration", L"value:s!"),
    RKXML_FACET(L"pattern", L"value:s!"),
    {L"unique", L"", L"name:n! id:i", L"annotation? selector field+"},
    {L"key", L"", L"name:n! id:i", L"annotation? selector field+"},
    {L"keyref", L"", L"name:n! refer:q! id:i", L"annotation? selector field+"},
    {L"selector", L"", L"xpath:s! id:i", L"annotation?"},
    {L"field", L"", L"xpath:s! id:i", L"annotation?"},
};
#undef RKXML_FACET

// Calls `visit` with each piece of the text between blanks or the separator.
template <class Visit>
void ForEachPiece(std::wstring_view text, wchar_t separator, Visit&& visit) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(separator), text.size());
    if (end != 0) visit(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
}

bool Lists(std::wstring_view names, wchar_t separator, std::wstring_view name) {
  bool found = false;
  ForEachPiece(names, separator, [&](std::wstring_view piece) { found = found || piece == name; });
  return found;
}

const ElementRule* FindRule(const CXmlElement* element) {
  const std::wstring_view name = element->GetLocalName();
  const CXmlElement* const parent = element->GetParentElement();
  const std::wstring_view within = parent != nullptr ? std::wstring_view(parent->GetLocalName()) : std::wstring_view();
  for (const ElementRule& rule : kRules) {
    if (name == rule.name && (*rule.within == L'\0' || Lists(rule.within, L' ', within))) return &rule;
  }
  return nullptr;
}

bool IsDerivationSet(std::wstring_view text, std::wstring_view allowed) {
  if (text == L"#all") return true;
  bool valid = true;
  ForEachToken(text, [&](std::wstring_view token) { valid = valid && Lists(allowed, L' ', token); });
  return valid;
}

bool IsNamespaceConstraint(std::wstring_view text) {
  if (text == L"##any" || text == L"##other") return true;
  bool valid = true;
  ForEachToken(text, [&](std::wstring_view token) {
    valid = valid && (token == L"##targetNamespace" || token == L"##local" ||
                      (token.substr(0, 2) != L"##" && IsLexical(BuiltInType::AnyURI, token)));
  });
  return valid;
}

bool IsOneOf(std::wstring_view text, std::wstring_view list) { return !text.empty() && Lists(list, L' ', text); }

bool IsCount(std::wstring_view text) {
  return IsLexical(BuiltInType::Integer, text) && CompareValues(BuiltInType::Decimal, text, L"0") != Order::Less;
}

bool IsValidAttribute(wchar_t type, std::wstring_view text) {
  switch (type) {
    case L'b':
      return IsLexical(BuiltInType::Boolean, text);
    case L'n':
    case L'i':
      return IsNCName(text);
    case L'q':
      return IsQName(text);
    case L'Q': {
      bool valid = true;
      ForEachToken(text, [&](std::wstring_view token) { valid = valid && IsQName(token); });
      return valid;
    }
    case L'o':
      return IsCount(text);
    case L'P':
      return IsCount(text) && CompareValues(BuiltInType::Decimal, text, L"0") == Order::Greater;
    case L'O':
      return text == L"unbounded" || IsCount(text);
    case L'u':
      return IsLexical(BuiltInType::AnyURI, text);
    case L'f':
      return IsOneOf(text, L"qualified unqualified");
    case L'p':
      return IsOneOf(text, L"strict lax skip");
    case L'U':
      return IsOneOf(text, L"required optional prohibited");
    case L'w':
      return IsOneOf(text, L"preserve replace collapse");
    case L'N':
      return IsNamespaceConstraint(text);
    case L'x':
      return IsDerivationSet(text, L"extension restriction");
    case L'k':
      return IsDerivationSet(text, L"extension restriction substitution");
    case L'S':
      return IsDerivationSet(text, L"list union restriction");
    case L'D':
      return IsDerivationSet(text, L"extension restriction list union");
    default:
      return true;
  }
}

class CSyntaxChecker {
 public:
  CSyntaxChecker(const SourceFile& file, CReporter& reporter) : m_file(file), m_reporter(reporter) {}

  // The depth of the document is limited.
  void Check(const CXmlElement* element) {
    const ElementRule* const rule = FindRule(element);
    if (rule == nullptr) return Error(element, L"The element " + Name(element) + L" cannot stand here.");
    CheckAttributes(element, *rule);
    if (element->GetLocalName() != L"annotation") {
      CheckText(element);
      CheckCombination(element);
    }
    CheckChildren(element, *rule);
    for (const CXmlElement* child = element->GetFirstElement(); child != nullptr;
         child = child->GetNextSiblingElement()) {
      if (!IsSchemaElement(child)) continue;
      if (child->GetLocalName() == L"appinfo" || child->GetLocalName() == L"documentation") {
        CheckNote(child);
      } else {
        Check(child);
      }
    }
  }

 private:
  void Error(const CXmlElement* at, std::wstring message) {
    m_reporter.Error(LocationOf(m_file.path, at), std::move(message));
  }
  static std::wstring Name(const CXmlElement* element) { return Bracketed(element->GetQName()); }

  void CheckNote(const CXmlElement* note) {
    for (const CXmlAttribute* attribute : note->GetAttributes()) {
      if (attribute->GetNamespaceURI().empty() && attribute->GetLocalName() != L"source")
        Error(note,
              L"The attribute " + Bracketed(attribute->GetLocalName()) + L" is not allowed on " + Name(note) + L".");
    }
  }

  void CheckText(const CXmlElement* element) {
    const std::wstring_view text = element->GetText();
    if (!std::all_of(text.begin(), text.end(), IsBlank))
      Error(element, L"The element " + Name(element) + L" cannot contain text.");
  }

  void CheckAttributes(const CXmlElement* element, const ElementRule& rule) {
    ForEachPiece(rule.attributes, L' ', [&](std::wstring_view entry) {
      const std::size_t colon = entry.find(L':');
      const std::wstring_view name = entry.substr(0, colon);
      const CXmlAttribute* const attribute = FindAttributeOf(element, name);
      if (attribute == nullptr) {
        if (entry.back() == L'!')
          Error(element, L"The attribute " + Bracketed(name) + L" of " + Name(element) + L" is missing.");
        return;
      }
      const std::wstring value = Collapsed(attribute->GetValue());
      if (!IsValidAttribute(entry[colon + 1], value))
        Error(element,
              L"The value " + Bracketed(value) + L" of the attribute " + Bracketed(name) + L" is not allowed.");
      if (entry[colon + 1] == L'i' && !m_ids.insert(value).second)
        Error(element, L"The id " + Bracketed(value) + L" stands twice in the document.");
    });
    for (const CXmlAttribute* attribute : element->GetAttributes()) {
      if (attribute->GetNamespaceURI() == kSchemaNamespace ||
          (attribute->GetNamespaceURI().empty() && !IsListed(rule.attributes, attribute->GetLocalName())))
        Error(element,
              L"The attribute " + Bracketed(attribute->GetLocalName()) + L" is not allowed on " + Name(element) + L".");
    }
  }

  static bool IsListed(std::wstring_view attributes, std::wstring_view name) {
    bool found = false;
    ForEachPiece(attributes, L' ',
                 [&](std::wstring_view entry) { found = found || entry.substr(0, entry.find(L':')) == name; });
    return found;
  }

  void CheckChildren(const CXmlElement* element, const ElementRule& rule) {
    const CXmlElement* child = element->GetFirstElement();
    bool ordered = true;
    ForEachPiece(rule.children, L' ', [&](std::wstring_view step) {
      const wchar_t mark = step.back();
      const bool marked = mark == L'?' || mark == L'*' || mark == L'+';
      const std::wstring_view names = step.substr(0, step.size() - (marked ? 1 : 0));
      std::size_t count = 0;
      while (child != nullptr && IsSchemaElement(child) && Lists(names, L'|', child->GetLocalName()) &&
             (count == 0 || mark == L'*' || mark == L'+')) {
        ++count;
        child = child->GetNextSiblingElement();
      }
      if (count == 0 && mark != L'?' && mark != L'*' && ordered) {
        ordered = false;
        std::wstring expected(names);
        std::replace(expected.begin(), expected.end(), L'|', L' ');
        Error(element, L"The element " + Name(element) + L" lacks one of " + Bracketed(expected) + L".");
      }
    });
    const bool hasContent = element->GetFirstElement() != nullptr;
    if (child != nullptr && hasContent && ordered)
      Error(child, L"The element " + Name(child) + L" cannot stand here within " + Name(element) + L".");
  }

  // What attributes and children allow beside each other (the schema representation constraints).
  void CheckCombination(const CXmlElement* element) {
    const std::wstring_view name = element->GetLocalName();
    const auto has = [&](const wchar_t* attribute) { return HasAttribute(element, attribute); };
    const bool isTop = IsTop(element);
    if (has(L"default") && has(L"fixed")) Error(element, L"The attributes [default] and [fixed] exclude each other.");
    if (name == L"element" || name == L"attribute") {
      const bool hasType = FindPart(element, L"simpleType") != nullptr || FindPart(element, L"complexType") != nullptr;
      if (has(L"type") && hasType) Error(element, L"The attribute [type] and a type within exclude each other.");
      if (!isTop) {
        if (has(L"name") == has(L"ref"))
          Error(element, L"The element " + Name(element) + L" needs either the attribute [name] or [ref].");
        if (has(L"ref")) {
          for (const wchar_t* other : {L"type", L"nillable", L"form", L"default", L"fixed", L"block"}) {
            const bool isUse = name == L"attribute" &&
                               (std::wstring_view(other) == L"default" || std::wstring_view(other) == L"fixed");
            if (has(other) && !isUse)
              Error(element, L"The attributes [ref] and " + Bracketed(other) + L" exclude each other.");
          }
          if (FirstPart(element) != nullptr)
            Error(element,
                  L"The element " + Name(element) + L" with the attribute [ref] can contain an annotation only.");
        }
      }
    }
    if (name == L"attribute") {
      if (has(L"default") && has(L"use") && TokenOf(element, L"use") != L"optional")
        Error(element, L"An attribute with a default value has to be optional.");
      if (TokenOf(element, L"name") == L"xmlns") Error(element, L"An attribute cannot be named [xmlns].");
    }
    if (name == L"simpleType" || name == L"list" || name == L"union" ||
        (name == L"restriction" && element->GetParentElement()->GetLocalName() == L"simpleType"))
      CheckSimpleType(element);
    if (name == L"complexType") {
      const CXmlElement* const content = FirstPart(element);
      if (content != nullptr && NextPart(content) != nullptr &&
          (content->GetLocalName() == L"simpleContent" || content->GetLocalName() == L"complexContent"))
        Error(NextPart(content), L"Nothing can stand after " + Name(content) + L".");
    }
    CheckOccurrence(element);
  }

  void CheckSimpleType(const CXmlElement* element) {
    const std::wstring_view name = element->GetLocalName();
    const bool hasInner = FindPart(element, L"simpleType") != nullptr;
    if (name == L"restriction" && HasAttribute(element, L"base") == hasInner)
      Error(element, L"A restriction needs either the attribute [base] or a simple type within.");
    if (name == L"list" && HasAttribute(element, L"itemType") == hasInner)
      Error(element, L"A list needs either the attribute [itemType] or a simple type within.");
    if (name == L"union" && TokenOf(element, L"memberTypes").empty() && !hasInner)
      Error(element, L"A union needs the attribute [memberTypes] or a simple type within.");
  }

  void CheckOccurrence(const CXmlElement* element) {
    const std::wstring_view name = element->GetLocalName();
    const bool hasLeast = HasAttribute(element, L"minOccurs");
    const bool hasMost = HasAttribute(element, L"maxOccurs");
    if (name == L"all" || name == L"choice" || name == L"sequence") {
      const CXmlElement* const parent = element->GetParentElement();
      if (parent->GetLocalName() == L"group" && (hasLeast || hasMost))
        Error(element, L"The model group of a named group has no [minOccurs] and [maxOccurs].");
    }
    if (!hasLeast && !hasMost) return;
    const std::wstring least = hasLeast ? TokenOf(element, L"minOccurs") : L"1";
    const std::wstring most = hasMost ? TokenOf(element, L"maxOccurs") : L"1";
    if (!IsCount(least) || (most != L"unbounded" && !IsCount(most))) return;
    const auto equals = [](const std::wstring& text, const wchar_t* number) {
      return CompareValues(BuiltInType::Decimal, text, number) == Order::Equal;
    };
    if (most != L"unbounded" && CompareValues(BuiltInType::Decimal, least, most) == Order::Greater)
      Error(element, L"The value of [minOccurs] is larger than that of [maxOccurs].");
    const CXmlElement* const parent = element->GetParentElement();
    const bool atMostOne = most != L"unbounded" && (equals(most, L"1") || equals(most, L"0"));
    if (name == L"all" &&
        (most == L"unbounded" || !equals(most, L"1") || !(equals(least, L"0") || equals(least, L"1"))))
      Error(element, L"An all group occurs once, or at most once.");
    if (parent->GetLocalName() == L"all" && !atMostOne)
      Error(element, L"An element of an all group occurs at most once.");
  }

  static bool IsTop(const CXmlElement* element) {
    const CXmlElement* const parent = element->GetParentElement();
    return parent == nullptr || parent->GetLocalName() == L"schema" || parent->GetLocalName() == L"redefine";
  }

  const SourceFile& m_file;
  CReporter& m_reporter;
  std::set<std::wstring> m_ids;
};

}  // namespace

void CheckSyntax(const SourceFile& file, CReporter& reporter) { CSyntaxChecker(file, reporter).Check(file.root); }

}  // namespace RkXmlSchema
