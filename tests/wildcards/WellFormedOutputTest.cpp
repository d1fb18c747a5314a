// What writers refuse under SetWellFormedOutput.
#include <functional>
#include <string>

#include "Expect.h"
#include "RkXmlLib16/RkXmlLib16.h"

using namespace RkXmlTest;

namespace {

using Fill = std::function<void(CElement&, CSerializationContext&)>;

enum Form { kXml = 1, kJson = 2, kFastInfoset = 4, kAll = 7 };

std::wstring Outcome(Form form, const Fill& fill, bool refuses) {
  CElement element(L"r");
  CSerializationContext context;
  context.SetWellFormedOutput(refuses);
  context.GetNamespaceAliases().Add(L"xsi", CXmlWriter::XSI_NAMESPACE.c_str());
  fill(element, context);
  return Thrown([&] {
    if (form == kXml) element.ToXml(false, false, EOLType_LF, context);
    if (form == kJson) element.ToJson(false, EOLType_LF, context);
    if (form == kFastInfoset) element.ToFastInfosetStream(FInfoDecl_None, context);
  });
}

Fill Name(const wchar_t* name) {
  return [name](CElement& e, CSerializationContext&) { e.SetElementName(name); };
}
Fill Text(const std::wstring& text) {
  return [text](CElement& e, CSerializationContext&) { e.SetText(text.c_str()); };
}
Fill Attribute(const wchar_t* name, const wchar_t* value, const wchar_t* uri = L"") {
  return [=](CElement& e, CSerializationContext&) { e.SetAttribute(name, value, uri); };
}

}  // namespace

TEST(WellFormedOutput, RefusesWhatWouldNotComeBack) {
  const Rows<int, const Fill, Wide> rows = {
      {kAll, Name(L"a b"), L"the name [a b]"},
      {kAll, Name(L"p:a"), L"the name [p:a]"},
      {kAll, Name(L"a><b"), L"the name [a><b]"},
      {kAll, Attribute(L"1", L""), L"the name [1]"},
      {kAll, Attribute(L"xmlns", L"urn:x"), L"the name [xmlns]"},
      {kAll, Attribute(L"a", L"\x01"), L"the character U+0001"},
      {kAll, Text(L"\x1F"), L"the character U+001F"},
      {kAll, Text(L"\xFFFE"), L"the character U+FFFE"},
      {kAll, Text(std::wstring(1, 0xD800)), L"the character U+D800"},
      {kAll, Text(std::wstring(1, 0xDC00) + L"a"), L"the character U+DC00"},
      {kAll, Text(L"a\rb"), L"the character U+000D"},
      {kXml | kJson, Attribute(L"a", L"a\rb"), L"the character U+000D"},
      {kXml | kJson, [](CElement&, CSerializationContext& c) { c.SetDefaultNamespaceURI(L"urn:d"); },
       L"the element without a namespace below a default namespace [r]"},
      {kXml | kFastInfoset | kJson,
       [](CElement&, CSerializationContext& c) { c.GetNamespaceAliases().Add(L"a b", L"urn:a"); }, L"the prefix [a b]"},
      {kAll,
       [](CElement&, CSerializationContext& c) {
         c.GetNamespaceAliases().Add(L"p", L"urn:1");
         c.GetNamespaceAliases().Add(L"p", L"urn:2");
       },
       L"the prefix of two namespaces [p]"},
      {kXml, [](CElement&, CSerializationContext& c) { c.GetProcessingInstructions().emplace_back(L"<?xml?>"); },
       L"the processing instruction [<?xml?>]"},
      {kXml, [](CElement&, CSerializationContext& c) { c.GetProcessingInstructions().emplace_back(L"<?a?><b/>"); },
       L"the processing instruction [<?a?><b/>]"},
      {kXml, [](CElement&, CSerializationContext& c) { c.SetInLineSchema(L"</r><r>"); }, L"the schema [</r><r>]"},
  };
  for (const auto& [forms, fill, what] : rows) {
    for (const Form form : {kXml, kJson, kFastInfoset}) {
      const std::wstring outcome = Outcome(form, fill, true);
      if ((forms & form) != 0)
        EXPECT_NE(std::wstring::npos, outcome.find(std::wstring(L"Refused to write ") + what))
            << form << " " << Narrow(what) << ": " << Narrow(outcome);
      else
        EXPECT_TEXT(L"nothing", outcome) << form << " " << Narrow(what);
    }
    EXPECT_TEXT(L"nothing", Outcome(kXml, fill, false)) << Narrow(what);
  }
}

TEST(WellFormedOutput, RefusesRawTextThatIsNoSection) {
  const Rows<Wide, bool> rows = {{L"<![CDATA[a]]>", true},
                                 {L"<![CDATA[]]>", true},
                                 {L"<![CDATA[a", false},
                                 {L"<![CDATA[]]><admin/>", false},
                                 {L"<![CDATA[a]]>]]>", false}};
  for (const auto& row : rows) {
    const Wide text = std::get<0>(row);
    for (const bool escapes : {false, true}) {
      CTextStream stream;
      CXmlTextWriter writer(stream);
      writer.Open();
      writer.SetWellFormedOutput(true);
      writer.SetEscapesSections(escapes);
      writer.WriteStartElement(L"r", L"");
      const std::wstring refused = std::wstring(L"CRkException: Refused to write the CDATA section [") + text + L"].";
      EXPECT_TEXT(std::get<1>(row) || escapes ? L"nothing" : refused,
                  Thrown([&] { writer.WriteString(text, ItemType_string); }));
    }
  }
}

TEST(WellFormedOutput, RefusesAnAttributeThatRepeatsAfterAChildInJson) {
  CTextStream stream;
  CJsonTextWriter writer(stream);
  writer.Open();
  writer.SetStrictOutput(true);
  writer.SetWellFormedOutput(true);
  writer.WriteStartDocument();
  writer.WriteStartElement(L"r", L"");
  const auto attribute = [&] { writer.WriteAttributeString(L"a", L"", L"1", ItemType_string); };
  attribute();
  writer.WriteStartElement(L"c", L"");
  attribute();
  writer.WriteEndElement();
  EXPECT_TEXT(L"CRkException: Refused to write the second attribute [a].", Thrown(attribute));
}

TEST(WellFormedOutput, WritesTheRestAsItComesBack) {
  CSerializationContext context;
  context.SetWellFormedOutput(true);
  context.SetStripCDATA(false);
  context.GetNamespaceAliases().Add(L"n", L"urn:n");
  context.GetProcessingInstructions().emplace_back(L"<?go now?>");
  CElement element(L"r", L"urn:n");
  element.SetAttribute(L"a", L"tab\tand\nline \"'&<>", L"");
  element.SetText(L"quote \" backslash \\ tab\tline\n ]]> &<>");
  CElement fromXml, fromJson, fromFastInfoset;
  fromXml.FromXml(element.ToXml(false, false, EOLType_LF, context).c_str(), context);
  fromJson.FromJson(element.ToJson(true, EOLType_LF, context).c_str(), context);
  fromFastInfoset.FromXmlStream(element.ToFastInfosetStream(FInfoDecl_None, context), context);
  for (const CElement* const read : {&fromXml, &fromJson, &fromFastInfoset}) {
    EXPECT_TEXT(element.GetText(), read->GetText());
    EXPECT_TEXT(element.GetAttribute(L"a", L""), read->GetAttribute(L"a", L""));
  }
}

TEST(WellFormedOutput, ATabOfAnAttributeComesBackAsABlankWithoutItIntended) {
  CElement element(L"r"), read;
  element.SetAttribute(L"a", L"b\tc", L"");
  read.FromXml(element.ToXml(false, false).c_str());
  EXPECT_TEXT(L"b c", read.GetAttribute(L"a", L""));
}

TEST(WellFormedOutput, The677thInventedPrefixIsNoNameIntended) {
  CSerializationContext context;
  for (int i = 0; i < 676; ++i)
    context.GetNamespaceAliases().Add(CXmlWriter::NsIntToString(i).c_str(), FormatString(L"urn:%d", i).c_str());
  CElement element(L"r");
  element.SetAttribute(L"a", L"", L"urn:new");
  const std::wstring xml = element.ToXml(false, false, EOLType_LF, context);
  EXPECT_NE(std::wstring::npos, xml.find(L"xmlns:[A=\"urn:new\" [A:a=\"\"")) << Narrow(xml);
  context.SetWellFormedOutput(true);
  const std::wstring refused = L"CRkException: Refused to write the prefix [[A].";
  EXPECT_TEXT(refused, Thrown([&] { element.ToXml(false, false, EOLType_LF, context); }));
  EXPECT_TEXT(refused, Thrown([&] { element.ToFastInfosetStream(FInfoDecl_None, context); }));
}
