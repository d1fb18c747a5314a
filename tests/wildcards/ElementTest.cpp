#include "RkXmlLib16/wildcards/Element.h"

#include <string>

#include "Expect.h"
#include "RkXmlLib16/context/JsonContext.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/document/XmlWriter.h"
#include "RkXmlLib16/io/Encoder.h"
#include "RkXmlLib16/io/TextStream.h"
#include "RkXmlLib16/wildcards/ElementCol.h"
#include "RkXmlLib16/xml/XmlTextWriter.h"
#include "support/Cases.h"
#include "support/SmallStack.h"

using namespace RkXmlTest;

namespace {

// What an element writes that has read `text`.
std::wstring Rewritten(const wchar_t* text, const CSerializationContext& context = GetDefaultContext()) {
  CElement element;  // on the stack: its count stays 0
  element.FromXml(text, context);
  EXPECT_EQ(0, element.GetRefCount());
  return element.ToXml(false, false, EOLType_LF, context);
}

TEST(Element, WritesTheInfosetThatItRead) {
  for (const auto& [read, written] : ReadCases(RKXML_TEST_DATA "/elements_rewritten.txt"))
    EXPECT_TEXT(FromUtf8(written), Rewritten(FromUtf8(read).c_str()));
}

// Line ends and tabs, which XML text can put into a namespace by character references.
TEST(Element, NamespacesKeepEveryCharacter) {
  const std::wstring uri = L"urn:a\r\n\t&b";
  CElement read;
  read.FromXml("<a xmlns='urn:a&#13;&#10;&#9;&amp;b'><b xmlns:p='urn:a&#13;&#10;&#9;&amp;b' p:c='1' r='p:x'/></a>");
  EXPECT_TEXT(uri, read.GetNamespace());
  CSerializationContext context;
  context.GetJsonContext()->SetStrictOutput(true);
  CElement fromXml;
  fromXml.FromXml(read.ToXml(false, false).c_str());
  context.GetNamespaceAliases().Add(L"q", uri.c_str());
  CElement fromJson;
  fromJson.FromJson(read.ToJson(false, EOLType_LF, context).c_str(), context);
  for (CElement* const again : {&fromXml, &fromJson}) {
    EXPECT_TEXT(uri, again->GetNamespace());
    EXPECT_TEXT(L"1", again->GetChild(0)->GetAttribute(L"c", uri.c_str()));
    EXPECT_NE(nullptr, again->FindChild(L"b", uri.c_str()));
  }
  EXPECT_THROWS(CRkException, L"Failed to write FastInfoset. A namespace contains a control character.",
                read.ToFastInfosetStream());
}

// What each xsi:type and ref of a document means, in document order, by the declarations in scope.
std::wstring MeaningOfValues(const CXmlDocument& document) {
  std::wstring meaning;
  const CXmlElement* e = document.GetDocumentElement();
  while (e != nullptr) {
    for (const CXmlAttribute* attribute : e->GetAttributes()) {
      if (attribute->GetLocalName() != L"type" && attribute->GetLocalName() != L"ref") continue;
      const std::wstring value = attribute->GetValue();
      const std::size_t colon = value.find(L':');
      const std::wstring prefix = colon == std::wstring::npos ? L"" : value.substr(0, colon);
      const CXmlName* const uri = e->LookupNamespaceRef(prefix);
      meaning += L" {" + (uri != nullptr ? uri->GetText().ToString() : L"") + L"}";
      meaning += colon == std::wstring::npos ? value : value.substr(colon + 1);
    }
    if (e->GetFirstElement() != nullptr) {
      e = e->GetFirstElement();
      continue;
    }
    while (e != nullptr && e->GetNextSiblingElement() == nullptr) e = e->GetParentElement();
    if (e != nullptr) e = e->GetNextSiblingElement();
  }
  return meaning;
}

// A prefix that is bound more than once means in each form what it meant where it stood.
TEST(Element, NamesInValuesKeepTheirNamespaces) {
  for (const auto& [read, values] : ReadCases(RKXML_TEST_DATA "/values_with_prefixes.txt")) {
    SCOPED_TRACE(read);
    const std::wstring meaning = L" " + FromUtf8(values);
    std::string xml = read;
    xml.insert(xml.find(' '), " xmlns:i='http://www.w3.org/2001/XMLSchema-instance'");
    CSerializationContext named;
    named.GetNamespaceAliases().Add(L"p", L"1");
    named.GetNamespaceAliases().Add(L"n", L"2");
    named.GetNamespaceAliases().Add(L"xsi", CXmlWriter::XSI_NAMESPACE.c_str());
    named.GetJsonContext()->SetStrictOutput(true);
    const CSerializationContext plain;
    CElement element;
    for (const CSerializationContext* context : {&plain, const_cast<const CSerializationContext*>(&named)}) {
      element.FromXml(xml.c_str());
      for (int trip = 0; trip < 3; ++trip) {
        const CBinaryData bytes = trip % 2 == 0
                                      ? element.ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF, *context)
                                      : element.ToFastInfosetStream(FInfoDecl_None, *context);
        CXmlDocument document;
        document.LoadXmlStream(bytes.GetData(), bytes.GetLength());
        EXPECT_TEXT(meaning, MeaningOfValues(document))
            << trip << Narrow(element.ToXml(false, false, EOLType_LF, *context));
        element.FromXmlElement(document.GetDocumentElement());
      }
    }
    const std::wstring json = element.ToJson(false, EOLType_LF, named);
    CXmlDocument document;
    const CBinaryData converted = document.LoadJson(json.c_str());
    document.LoadXmlStream(converted.GetData(), converted.GetLength());
    EXPECT_TEXT(meaning, MeaningOfValues(document)) << Narrow(json);
  }
}

// Children of one name in a row are an array in strict JSON, and read back equal.
TEST(Element, StrictJsonRepeatsNoMember) {
  CElement element;
  const wchar_t* const xml = L"<r><a>1</a><a/><a k=\"v\">2</a><b>3</b><c><d>x</d><d>y</d></c><e/><e/></r>";
  element.FromXml(xml);
  CSerializationContext strict;
  strict.GetJsonContext()->SetStrictOutput(true);
  for (const JsonRoundTrip mode : {JsonRoundTrip_Markers, JsonRoundTrip_Namespaces}) {
    strict.GetJsonContext()->SetSupportRoundtrip(mode);
    const std::wstring json = element.ToJson(false, EOLType_LF, strict);
    EXPECT_TEXT(
        LR"({"r": {"a": [{"#text": "1"},{},{"@k": "v","#text": "2"}],"b": "3",)"
        LR"("c": {"d": [{"#text": "x"},{"#text": "y"}]},"e": [{},{}]}})",
        json);
    element.FromJson(json.c_str(), strict);
    EXPECT_TEXT(xml, element.ToXml(false, false));
  }
}

// A part that is read alone takes the scope around it along.
TEST(Element, APartKeepsTheScopeAroundIt) {
  CXmlDocument document;
  document.LoadXml(
      L"<r xmlns='1' xmlns:p='1' xmlns:i='http://www.w3.org/2001/XMLSchema-instance'><s xmlns='2' xmlns:p='2'>"
      L"<a xmlns='' i:type='p:T'/><b i:type='U'/></s></r>");
  const CXmlElement* const a = document.GetDocumentElement()->GetFirstElement()->GetFirstElement();
  CElement element;
  element.FromXmlElement(a);
  EXPECT_NE(std::wstring::npos, element.ToXml(false, false).find(L"xmlns:p=\"2\""));
  element.FromXmlElement(a->GetNextSiblingElement());
  EXPECT_TEXT(L"<AA:b xmlns:AA=\"2\" xmlns:AB=\"" + CXmlWriter::XSI_NAMESPACE + L"\" AB:type=\"AA:U\"/>",
              element.ToXml(false, false));
}

TEST(Element, TellsOfLostPositionsOfText) {
  CErrorCollector collector;
  CSerializationContext context;
  context.SetErrorHandler(&collector);
  CElement element;
  element.FromXml("<r><a>text</a><b>x<c/>y</b></r>", context);
  ASSERT_EQ(1u, collector.GetDropped().size());
  EXPECT_EQ(RkDropped_Position, collector.GetDropped()[0].kind);
  EXPECT_TEXT(L"/r/b", collector.GetDropped()[0].location.GetPath());
}

// A prefix that would make each name long stays declared for the value that uses it.
TEST(Element, LongPrefixesOfValuesNameNoElements) {
  const std::wstring prefix(65, L'p');
  const std::wstring read = L"<" + prefix + L":a xmlns:" + prefix + L"='urn:p' r='" + prefix + L":x'><" + prefix +
                            L":b/></" + prefix + L":a>";
  EXPECT_TEXT(L"<AA:a xmlns:AA=\"urn:p\" xmlns:" + prefix + L"=\"urn:p\" r=\"" + prefix + L":x\"><AA:b/></AA:a>",
              Rewritten(read.c_str()));
}

TEST(Element, DeclaresPrefixesAgainWhereItStandsInAnotherTree) {
  CElement source;
  source.FromXml(L"<s xmlns:p='urn:p'><x ref='p:b'><y ref='p:c'/></x></s>");
  CElement target(L"t");
  target.AddChild(source.GetChild(0));
  EXPECT_TEXT(L"<t><x xmlns:p=\"urn:p\" ref=\"p:b\"><y ref=\"p:c\"/></x></t>", target.ToXml(false, false));
  CElement inner;
  inner.FromXml(L"<s xmlns:q='urn:q'><z ref='q:b'><w ref='q:c'/></z></s>");
  source.GetChild(0)->InsertChild(0, inner.GetChild(0));
  EXPECT_TEXT(
      L"<t><x xmlns:p=\"urn:p\" ref=\"p:b\"><z xmlns:q=\"urn:q\" ref=\"q:b\"><w ref=\"q:c\"/></z><y "
      L"ref=\"p:c\"/></x></t>",
      target.ToXml(false, false));

  // The settings bind the prefix to another namespace: their names come first, and only a type can be written so that
  // it keeps its meaning.
  CSerializationContext context;
  context.GetNamespaceAliases().Add(L"p", L"urn:other");
  context.GetNamespaceAliases().Add(L"xsi", L"http://www.w3.org/2001/XMLSchema-instance");
  CElement typed;
  typed.FromXml(L"<p:t xmlns:p='urn:p' xmlns:i='http://www.w3.org/2001/XMLSchema-instance' i:type='p:T'/>");
  const std::wstring written = typed.ToXml(false, false, EOLType_LF, context);
  EXPECT_NE(std::wstring::npos, written.find(L"xsi:type=\"AA:T\"")) << Narrow(written);
  EXPECT_NE(std::wstring::npos, written.find(L"xmlns:AA=\"urn:p\""));
}

TEST(Element, KeepsCDataSectionsThatTheSettingsKeep) {
  CSerializationContext keep;
  keep.SetStripCDATA(false);
  const wchar_t* const text = L"<a><![CDATA[1 < 2]]></a>";
  EXPECT_TEXT(text, Rewritten(text, keep));
  EXPECT_TEXT(L"<a>1 &lt; 2</a>", Rewritten(text));
  for (const wchar_t* mixed : {
           L"<a>x &lt; <![CDATA[<y>]]> &amp; <![CDATA[z]]>&gt;</a>",
           L"<a><![CDATA[]]> &lt; <b><![CDATA[<![CDATA[x]]></b></a>",
           L"<a>&lt;![CDATA[x]]&gt; <![CDATA[<y>]]>&lt;![CDATA[</a>",
           L"<a><![CDATA[a]]><![CDATA[b]]></a>",
       }) {
    CElement element;
    element.FromXml(mixed, keep);
    keep.SetEscapeCDATA(!keep.GetEscapeCDATA());
    EXPECT_TEXT(mixed, element.ToXml(false, false, EOLType_LF, keep));
    EXPECT_TEXT(mixed, element.ToXml(false, false));  // whatever the settings say when it is written
    element.SetText(element.GetText().c_str());
    EXPECT_EQ(std::wstring::npos, element.ToXml(false, false).find(L"<a><!"));
  }
}

// Text that begins with the mark of a section and never was one, in every form that brings it.
TEST(Element, TextThatLooksLikeASectionIsData) {
  const Rows<Wide, Wide> kRows = {
      {L"<![CDATA[<b", L"<a>&lt;![CDATA[&lt;b</a>"},
      {L"<![CDATA[]]><admin/>", L"<a>&lt;![CDATA[]]&gt;&lt;admin/&gt;</a>"},
      {L"<![CDATA[", L"<a>&lt;![CDATA[</a>"},
  };
  CSerializationContext strict;
  strict.GetJsonContext()->SetStrictOutput(true);
  CSerializationContext keep;
  keep.SetStripCDATA(false);
  for (const auto& [text, written] : kRows) {
    CElement element(L"a");
    const auto expect = [&, text = text, written = written](const char* form) {
      EXPECT_TEXT(text, element.GetText()) << form;
      EXPECT_TEXT(written, element.ToXml(false, false)) << form;
    };
    element.SetText(text);
    expect("by hand");
    element.FromXml(written);
    expect("XML text");
    element.FromXml(written, keep);
    expect("XML text with sections kept");
    element.FromXml((std::wstring(L"<a><![CDATA[<]]>") + (written + 7)).c_str());
    expect("XML text with sections stripped");
    const std::wstring json = element.ToJson(false, EOLType_LF, strict);
    EXPECT_TEXT(std::wstring(L"{\"a\": \"") + text + L"\"}", json);  // one member
    element.FromJson(json.c_str());
    expect("JSON");
    element.FromXmlStream(element.ToFastInfosetStream());
    expect("Fast Infoset");
    CElement other;
    other.FromXmlElement(&element);
    EXPECT_TEXT(text, other.GetText());
  }
}

TEST(Element, RefusesInItsOwnCallsWhatItsConstraintForbids) {
  CElement element(L"e", L"urn:t", L"##targetNamespace", L"urn:t");
  EXPECT_THROWS(CRkInvalidNamespaceException, L"Invalid Namespace [urn:o].", element.FromXml(L"<x xmlns='urn:o'/>"));
  EXPECT_THROWS(CRkInvalidNamespaceException, L"Invalid Namespace [].", element.SetNamespace(nullptr));
  EXPECT_TEXT(L"<AA:e xmlns:AA=\"urn:t\"/>", element.ToXml(false, false));
  element.SetNamespace(L"urn:t");

  CElement other;
  EXPECT_THROWS(CRkInvalidStateException, L"The element has no name.", CElement().ToXml());
  EXPECT_THROWS(CRkInvalidParamException, L"The child element may not be NULL", element.AddChild(nullptr));
  EXPECT_THROWS(CRkInvalidParamException, L"Index 0 is out of range, use 0 - 0", element.GetChild(0));
  EXPECT_THROWS(CRkInvalidParamException, L"Index 2 is out of range, use 0 - 0", element.InsertChild(2, &other));
  EXPECT_THROWS(CRkInvalidParamException, L"An element may not be its own child", element.AddChild(&element));
}

TEST(Element, FindsAndChangesItsContent) {
  CElement e(L"e");
  CElement* const b = e.AddNewChild(L"b", L"urn:x", L"1");
  e.AddNewChild(L"b");
  e.InsertChild(0, new CElement(L"a"));
  EXPECT_EQ(b, e.FindChild(L"b", L"urn:x"));
  EXPECT_EQ(1u, e.FindChildren(L"b").size());
  EXPECT_EQ(nullptr, e.FindChild(L"c"));
  e.RemoveChild(1);
  e.SetAttribute(L"k", L"1");
  e.SetAttribute(L"k", L"2");
  EXPECT_TEXT(L"2", e.GetAttribute(L"k"));
  EXPECT_TEXT(L"", e.GetAttribute(L"k", L"urn:x"));
  e.SetText(L" ");
  EXPECT_TEXT(L"<e k=\"2\"><a/><b/></e>", e.ToXml(false, false));
  e.FromXml(L"<new/>");  // replaces all that it held
  EXPECT_TEXT(L"<new/>", e.ToXml(false, false));
}

TEST(Element, FillsAnotherObjectWithAllCharacters) {
  CElement source(L"e");
  source.SetText(L"\U0001F600 \U0001003C &");  // the low 16 bits of the second one are a '<'
  CElement target;
  target.FromXmlElement(&source);
  EXPECT_EQ(source.ToXmlStream(), target.ToXmlStream());
  EXPECT_THROWS(CRkException, L"The document contains no element.",
                target.FromXmlElement(static_cast<const CElement*>(nullptr)));
}

// A document 100,000 levels deep, through everything that an element does, on a stack of 256 KiB.
TEST(Element, DeepTreesNeedNoStack) {
  RunInSmallStack([] {
    constexpr int kDepth = 100000;
    CElement element;
    element.FromXml((Repeat(kDepth, L"<e>") + Repeat(kDepth, L"</e>")).c_str());
    EXPECT_EQ(static_cast<std::size_t>(kDepth) * 7 - 3, element.ToXml(false, false).size());
    CTextStream stream;
    CXmlTextWriter unfinished(stream);
    unfinished.SetFormat(false);  // the indentation would take gigabytes
    for (int i = 0; i < kDepth; ++i) unfinished.WriteStartElement(L"e", L"");
    CSmartPtr<CElement> shared(element.GetChild(0));
    element.RemoveChildren();
    EXPECT_EQ(1, shared->GetChildCount());
    CElementCol collection;
    collection.Add(shared);
    shared = nullptr;
  });
}

// Every way in which parts of a tree may outlive others.
TEST(Element, SharedPartsOutliveTheTree) {
  CSmartPtr<CElement> kept;
  CSmartPtr<CElement> grandchild;
  {
    CElement root;
    root.FromXml(L"<r><a><b><c/></b></a><d/></r>");
    kept = root.GetChild(0);
    grandchild = kept->GetChild(0)->GetChild(0);
    root.AddChild(kept);  // twice in one tree
    EXPECT_EQ(3, kept->GetRefCount());
  }
  EXPECT_EQ(1, kept->GetRefCount());
  EXPECT_EQ(2, grandchild->GetRefCount());
  EXPECT_TEXT(L"<a><b><c/></b></a>", kept->ToXml(false, false));
  kept = nullptr;
  EXPECT_EQ(1, grandchild->GetRefCount());
}

TEST(ElementCol, TakesARunOfAdmittedElements) {
  CXmlDocument document;
  document.LoadXml(L"<r><a xmlns='urn:o'/><b xmlns='urn:o'>1</b><b xmlns='urn:p'/><c xmlns='urn:t'/><d/></r>");
  CXmlElement* const root = document.GetDocumentElement();
  CXmlElement* const first = root->GetFirstElement();
  CElementCol col(L"AnyElement", L"", 0, -1, L"##other", L"urn:t");
  CXmlElement* const rest = col.FromXml_Int(root, first, GetDefaultContext(), false);
  ASSERT_NE(nullptr, rest);
  EXPECT_TEXT(L"c", rest->GetLocalName().c_str());
  EXPECT_EQ(3, col.GetCount());
  EXPECT_TEXT(L"1", col.Find(L"b", L"urn:o")->GetText());
  EXPECT_TEXT(L"##other", col.Item(2)->GetNamespaceConstraint());

  CElementCol locked;
  EXPECT_EQ(first, locked.FromXmlLockElementName_Int(L"b", L"", root, first, GetDefaultContext()));
  EXPECT_EQ(rest, locked.FromXmlLockElementName_Int(L"b", L"urn:o", root, first->GetNextSiblingElement(),
                                                    GetDefaultContext()));
  EXPECT_EQ(2, locked.GetCount());
  EXPECT_EQ(nullptr, locked.FromXml_Int(root, nullptr, GetDefaultContext(), false));
}

TEST(ElementCol, RefusesByHandWhatItsConstraintForbids) {
  CElementCol col(L"AnyElement", L"", 0, -1, L"##local", L"urn:t");
  CSmartPtr<CElement> foreign(new CElement(L"x", L"urn:x"));
  EXPECT_THROWS(CRkInvalidNamespaceException, L"Invalid Namespace [urn:x].", col.Add(foreign));
  EXPECT_THROWS(CRkInvalidNamespaceException, L"Invalid Namespace [urn:x].", col.AddItemAt(0, foreign));
  EXPECT_THROWS(CRkInvalidNamespaceException, L"Invalid Namespace [urn:x].", col.AddBeforeItem(nullptr, foreign));
  EXPECT_EQ(0, col.GetCount());
  col.Add(nullptr);
  col.PrependItem(new CElement(L"y"));
  EXPECT_EQ(2, col.GetCount());
  EXPECT_EQ(nullptr, col.Item(1));
}

TEST(ElementCol, NullItemsAreNotWrittenAndOnRequestRefused) {
  CElementCol col(L"AnyElement", L"", 0, -1, L"##any", L"");
  col.Add(new CElement(L"a"));
  col.Add(nullptr);
  const auto write = [&](const CSerializationContext& context) {
    CTextStream stream;
    CXmlTextWriter writer(stream);
    writer.SetFormat(false);
    writer.WriteStartElement(L"t", L"");
    col.ToXml_Int(&writer, false, L"", context, false);
    writer.WriteEndElement();
    return stream.ToString();
  };
  CSerializationContext context;
  EXPECT_TEXT(L"<t><a/></t>", write(context));
  context.SetWellFormedOutput(true);
  EXPECT_THROWS(CRkValidationException, L"The item 1 of the collection [AnyElement] is NULL", write(context));
  col.Remove(1);
  EXPECT_TEXT(L"<t><a/></t>", write(context));
}

TEST(AttributeCol, HoldsWhatItsConstraintAdmits) {
  CAttributeCol col(L"##other", L"urn:t");
  col.Add(L"a", L"1", L"");
  col.Add(L"b", L"2", L"urn:o");
  EXPECT_THROWS(CRkInvalidNamespaceException, L"Invalid Attribute [c]. The attributes namespace is Inappropriate.",
                col.Add(L"c", L"3", L"urn:t"));
  EXPECT_EQ(2, col.GetCount());
  EXPECT_TEXT(L"2", col.GetValue(L"b", L"urn:o"));
  EXPECT_EQ(1, col.Item(0)->GetRefCount());
  CXmlDocument document;
  document.LoadXml(
      L"<r d='4' t:e='5' xmlns:t='urn:t' i:type='x' xmlns:i='http://www.w3.org/2001/XMLSchema-instance'/>");
  col.FromXml_Int(document.GetDocumentElement(), nullptr, GetDefaultContext(), false);
  EXPECT_EQ(3, col.GetCount());
  EXPECT_TEXT(L"4", col.GetValue(L"d"));
  EXPECT_THROWS(CRkException, L"An attribute cannot be read from an element.", CAttribute().FromXml(L"<a/>"));
}

}  // namespace
