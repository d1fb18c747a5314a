#include "RkXmlLib16/document/ElementTree.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Expect.h"
#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/NameToken.h"
#include "RkXmlLib16/context/SerializationContext.h"

using namespace RkXmlTest;

namespace {

constexpr const wchar_t* kXsi = L"http://www.w3.org/2001/XMLSchema-instance";

TEST(ElementTree, TextsAndAttributesGrowBetweenOthers) {
  CXmlDocument document;
  CXmlElement* const root = document.AddDocElement(L"", L"r");
  std::wstring expected;
  for (int i = 0; i < 2000; ++i) {
    const std::wstring piece = std::to_wstring(i) + L"\r;";
    document.AppendTextExcludingCR(root, piece.c_str(), 2);
    expected += piece.substr(0, 2);
    if (expected.back() == L'\r') expected.pop_back();
    CXmlElement* const child = document.AddChildElement(L"", L"c");
    document.AppendTextExcludingCR(child, L"between");
    document.EndElement();
    root->AddAttribute(std::to_wstring(i).c_str(), L"v", nullptr);
  }
  EXPECT_TEXT(expected, root->GetText());
  EXPECT_EQ(2000u, root->GetAttributes().size());
  EXPECT_TEXT(L"v", root->GetAttribute(L"1999", L""));
  EXPECT_TEXT(L"between", root->GetFirstElement()->GetText());
}

TEST(ElementTree, NamesAreHeldOnceInEachNamespace) {
  for (const bool scans : {true, false}) {
    CSerializationContext context;
    context.SetScanPlainXml(scans);
    CXmlDocument document(context);
    document.LoadXml("<r xmlns='u:1' xmlns:p='u:2' xmlns:q='u:2'><a/><p:a p:a='1' a='2'/><q:a/><a xmlns=''/></r>");
    CXmlElement* const root = document.GetDocumentElement();
    const CXmlElement* const one = root->GetFirstElement();
    const CXmlElement* const two = one->GetNextSiblingElement();
    const CXmlElement* const again = two->GetNextSiblingElement();
    const CXmlElement* const none = again->GetNextSiblingElement();
    EXPECT_TRUE(two->HasNameOf(again));
    EXPECT_EQ(two->GetNameRef(), two->GetAttributes()[0]->GetNameRef());
    EXPECT_EQ(none->GetNameRef(), two->GetAttributes()[1]->GetNameRef());
    EXPECT_EQ(one->GetLocalNameRef(), two->GetLocalNameRef());
    EXPECT_FALSE(one->HasNameOf(two) || two->HasNameOf(none) || none->HasNameOf(one));
    const CNameToken inOne(L"a", L"u:1"), inTwo(L"a", L"u:2");
    for (int i = 0; i < 2; ++i) {  // compared, then known
      EXPECT_TRUE(one->GetNameRef()->Is(inOne) && two->GetNameRef()->Is(inTwo));
      EXPECT_FALSE(one->GetNameRef()->Is(inTwo) || none->GetNameRef()->Is(inOne));
    }
    CXmlElement* const built = root->CreateNewChildElement();
    built->SetElementName(L"a");
    EXPECT_EQ(none->GetNameRef(), built->GetNameRef());
    built->SetNamespace(L"u:2");
    EXPECT_EQ(two->GetNameRef(), built->GetNameRef());
  }
}

TEST(ElementTree, PathsUseAliasesAndPositions) {
  CXmlDocument document;
  document.AddNamespaceAlias(L"p", L"urn:p");
  document.AddNamespaceAlias(L"q", L"urn:p");
  document.AddNamespaceAlias(L"", L"urn:default");
  const Rows<Wide, Wide> rows = {{L"", L"/order/item[1]"},
                                 {L"urn:p", L"/order/p:item[1]"},
                                 {L"urn:default", L"/order/item[2]"},
                                 {L"urn:unknown", L"/order/item[3]"},
                                 {L"urn:p", L"/order/p:item[2]"},
                                 {L"urn:last", L"/order/item[4]"}};
  document.AddDocElement(L"", L"order");
  for (const auto& [uri, path] : rows) {
    document.AddChildElement(uri, L"item");
    document.EndElement();
  }
  CXmlElement* const only = document.AddChildElement(L"urn:p", L"only");
  document.AddElementAttribute(only, L"a", L"", L"urn:p");
  document.AddElementAttribute(only, L"b", L"", L"");
  const CXmlElement* item = document.GetDocumentElement()->GetFirstElement();
  for (const auto& [uri, path] : rows) {
    EXPECT_TEXT(path, item->GetXPath());
    item = item->GetNextSiblingElement();
  }
  EXPECT_TEXT(L"/order/p:only/@p:a", only->GetAttributes()[0]->GetXPath());
  EXPECT_TEXT(L"/order/p:only/@b", only->GetAttributes()[1]->GetXPath());

  document.AddNamespaceAlias(L"p", L"urn:other");
  EXPECT_TEXT(L"q:only", only->GetQName());
  EXPECT_TEXT(L"urn:other", document.LookupNamespaceFromAlias(L"p"));
  EXPECT_TEXT(L"", document.LookupNamespaceFromAlias(L"x"));
  EXPECT_TEXT(L"", document.LookupAliasFromNamespace(L"urn:x"));
}

TEST(ElementTree, KnowsTheAttributesOfTheNamespaceMachinery) {
  const wchar_t* const xmlns = L"http://www.w3.org/2000/xmlns/";
  const Rows<Wide, Wide, bool, bool> rows = {
      {L"type", kXsi, true, false},   {L"schemaLocation", kXsi, true, false},
      {L"xmlns", xmlns, true, false}, {L"noNamespaceSchemaLocation", kXsi, true, false},
      {L"nil", kXsi, false, true},    {L"nil", xmlns, false, true},
      {L"type", L"", false, false},   {L"other", kXsi, false, false}};
  CXmlDocument document;
  CXmlElement* const e = document.AddDocElement(L"", L"e");
  for (const auto& [name, uri, isNamespace, isNil] : rows) {
    e->AddAttribute(name, L"", uri);
    EXPECT_EQ(isNamespace, e->GetAttributes()[e->GetAttributes().size() - 1]->IsNamespaceAttribute()) << Narrow(name);
    EXPECT_EQ(isNil, e->GetAttributes()[e->GetAttributes().size() - 1]->IsNilAttribute()) << Narrow(name);
  }
}

// Blanks between elements are held once for many; each element still has all of its own.
TEST(ElementTree, WhiteSpaceBetweenChildrenBelongsToEachElement) {
  const std::wstring longRun(300, L' ');
  const std::vector<std::pair<std::wstring, std::wstring>> rows = {
      {L"\n\t<c/>\n\t<c/>\n", L"\n\t\n\t\n"},
      {L"\n\t<c/>\n\t<c/>\n", L"\n\t\n\t\n"},
      {L"\n\t<c/>\n  <c/>\n", L"\n\t\n  \n"},
      {L"\n\t<c/>word\n\t<c/>\n", L"\n\tword\n\t\n"},
      {L"\n\t<c/> &#13; <c/>\n", L"\n\t  \n"},
      {L" <![CDATA[ ]]> ", L"   "},
      {L" " + longRun + L"<c/> " + longRun, L"  " + longRun + longRun},
      {L" <c/> <c/> ", L"   "}};
  std::wstring many;
  std::wstring manyBlanks;
  for (int i = 0; i < 200; ++i) {
    many += L"<c/>\n\t";
    manyBlanks += L"\n\t";
  }
  std::wstring xml = L"<r>";
  for (const auto& [content, text] : rows) xml += L"<e>" + content + L"</e>";
  xml += L"<e>" + many + L"</e></r>";

  CXmlDocument document;
  document.LoadXml(xml.c_str());
  CXmlElement* e = document.GetDocumentElement()->GetFirstElement();
  e->AppendText(L"!");
  EXPECT_TEXT(rows[0].second + L"!", e->GetText());
  for (std::size_t i = 1; i < rows.size(); ++i) {
    e = e->GetNextSiblingElement();
    EXPECT_TEXT(rows[i].second, e->GetText()) << i;
  }
  EXPECT_TEXT(manyBlanks, e->GetNextSiblingElement()->GetText());
}

TEST(ElementTree, ForgetsTheDeclarationsOfADocumentThatFailed) {
  for (const bool scans : {false, true}) {
    CSerializationContext context;
    context.SetScanPlainXml(scans);
    CXmlDocument document(context);
    EXPECT_THROW(document.LoadXml("<a xmlns='' p:b='1'/>"), CRkException);
    document.LoadXml("<r/>");
    EXPECT_EQ(nullptr, document.GetDocumentElement()->LookupNamespaceRef(L""));
  }
}

TEST(ElementTree, BuildsByHand) {
  CXmlDocument document;
  CXmlElement* const root = document.AddDocElement(nullptr, L"r");
  EXPECT_EQ(nullptr, root->RemoveLastChildElement());
  CXmlElement* const a = root->CreateNewChildElement();
  CXmlElement* const b = root->CreateNewChildElement();
  a->SetElementName(L"a");
  a->SetNamespace(L"urn:a");
  a->AppendText(L"one\rtwo", 4);
  a->AppendText(L"\r");
  EXPECT_TEXT(L"one\r\r", a->GetText());
  EXPECT_TEXT(L"urn:a", a->GetNamespaceURI());
  EXPECT_TEXT(L"", b->GetLocalName());
  EXPECT_EQ(b, root->RemoveLastChildElement());
  EXPECT_EQ(nullptr, a->GetNextSiblingElement());
  EXPECT_EQ(a, root->RemoveLastChildElement());
  EXPECT_EQ(nullptr, root->GetFirstElement());
  document.EndElement();
  EXPECT_THROWS(CRkException, L"There is no open element to end.", document.EndElement());
  EXPECT_THROWS(CRkException, L"A child element needs an open element.", document.AddChildElement(L"", L"c"));
  EXPECT_THROWS(CRkException, L"A document has one document element only.", document.AddDocElement(L"", L"r"));
  EXPECT_THROWS(CRkInvalidParamException, L"An element needs a document.", CXmlElement(nullptr, root));
}

TEST(ElementTree, RemovedElementsMayBeDeleted) {
  CXmlDocument document;
  document.LoadXml("<r><a/><b><c/></b></r>");
  CXmlElement* const root = document.GetDocumentElement();
  const std::unique_ptr<CXmlElement> removed(root->RemoveLastChildElement());
  EXPECT_TEXT(L"b", removed->GetLocalName());
  delete root->RemoveLastChildElement();
  EXPECT_EQ(nullptr, root->GetFirstElement());
  root->CreateNewChildElement()->SetElementName(L"d");
  EXPECT_TEXT(L"/r/d", root->GetFirstElement()->GetXPath());
  EXPECT_TEXT(L"c", removed->GetFirstElement()->GetLocalName());
  delete new CXmlElement(&document, root);
}

}  // namespace
