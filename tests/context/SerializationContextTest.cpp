#include "RkXmlLib16/context/SerializationContext.h"

#include <algorithm>
#include <memory>
#include <string>

#include "Expect.h"
#include "RkXmlLib16/context/JsonContext.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/wildcards/AttributeCol.h"
#include "RkXmlLib16/wildcards/Element.h"
#include "support/Cases.h"

using namespace RkXmlTest;

namespace {

TEST(SerializationContext, IgnoresUnknownOrMissingElementsButNotBoth) {
  const std::wstring both =
      L"The parser can only ignore additional elements, or ignore the fact that some required ones are missing, you "
      L"can not ignore both\nSet ";
  CSerializationContext ctx;
  ctx.SetIgnoreUnknownElements(true);
  EXPECT_THROWS(CRkInvalidStateException,
                both + L"IgnoreUnknownElements to false before setting IgnoreMissingMandatoryElements to true",
                ctx.SetIgnoreMissingMandatoryElements(true));
  EXPECT_FALSE(ctx.GetIgnoreMissingMandatoryElements());
  ctx.SetIgnoreMissingMandatoryElements(false);
  ctx.SetIgnoreUnknownElements(false);
  ctx.SetIgnoreMissingMandatoryElements(true);
  EXPECT_THROWS(CRkInvalidStateException,
                both + L"IgnoreMissingMandatoryElements to false before setting IgnoreUnknownElements to true",
                ctx.SetIgnoreUnknownElements(true));
  EXPECT_FALSE(ctx.GetIgnoreUnknownElements());
}

TEST(SerializationContext, IndentsWithTabsAndBlanksOnly) {
  CSerializationContext ctx;
  ctx.SetIndentChars(L"  \t");
  for (const wchar_t* bad : {L"ab", L" \n", L" \x3000"}) {
    EXPECT_THROWS(CRkInvalidParamException, L"IndentChars can only contain Whitespace characters, i.e. \\t or spaces",
                  ctx.SetIndentChars(bad));
    EXPECT_TEXT(L"  \t", ctx.GetIndentChars());
  }
  ctx.SetIndentChars(nullptr);
  EXPECT_TEXT(L"", ctx.GetIndentChars());
}

TEST(SerializationContext, CopiesShareTheirWorkingObjectsAndNothingElse) {
  auto original = std::make_unique<CSerializationContext>();
  CJsonContext* const json = original->GetJsonContext();
  EXPECT_EQ(json, original->GetJsonContext());
  const CSmartPtr<CAttributeCol> attributes = original->GetAdditionalRootAttributes();
  EXPECT_EQ(2, attributes->GetRefCount());
  original->GetNamespaceAliases().Add(L"a", L"urn:a");
  original->SetStripCDATA(false);
  original->SetWellFormedOutput(true);

  CSerializationContext copy(*original);
  copy.GetNamespaceAliases().Add(L"b", L"urn:b");
  copy = static_cast<const CSerializationContext&>(copy);
  EXPECT_EQ(1, original->GetNamespaceAliases().GetNamespaceCount());
  EXPECT_FALSE(copy.GetStripCDATA());
  EXPECT_TRUE(copy.GetWellFormedOutput());
  original.reset();
  EXPECT_EQ(json, copy.GetJsonContext());
  EXPECT_EQ(attributes.Get(), copy.GetAdditionalRootAttributes().Get());
  EXPECT_EQ(2, attributes->GetRefCount());
}

// A document is written as it was read, where one default namespace and one namespace for a prefix are enough.
TEST(SerializationContext, TakesTheNamespacesOfADocument) {
  for (const auto& [xml, written] : ReadCases(RKXML_TEST_DATA "/taken_namespaces.txt")) {
    CXmlDocument document;
    document.LoadXml(xml.c_str());
    CSerializationContext context;
    context.TakeNamespaces(document);
    CElement element;
    element.FromXmlElement(document.GetDocumentElement());
    std::string text = element.ToXmlUtf8(false, false, EOLType_LF, context);
    std::replace(text.begin(), text.end(), '"', '\'');
    EXPECT_EQ(written, text);
  }

  // What is set stays, and no prefix stands for two namespaces.
  CXmlDocument document;
  document.LoadXml("<a xmlns='urn:a' xmlns:p='urn:p' xmlns:q='urn:q'/>");
  CSerializationContext context;
  context.SetDefaultNamespaceURI(L"urn:mine");
  context.GetNamespaceAliases().Add(L"p", L"urn:other");
  context.GetNamespaceAliases().Add(L"r", L"urn:q");
  context.TakeNamespaces(document);
  EXPECT_TEXT(L"urn:mine", context.GetDefaultNamespaceURI());
  EXPECT_EQ(2, context.GetNamespaceAliases().GetNamespaceCount());
  context.TakeNamespaces(CXmlDocument());
}

TEST(NamespaceAliasMap, KeepsOneAliasForANamespaceInTheirOrder) {
  CNamespaceAliasMap map;
  map.Add(L"z", L"urn:2");
  map.Add(L"y", L"urn:1");
  map.Add(L"x", L"urn:2");
  EXPECT_EQ(2, map.GetNamespaceCount());
  EXPECT_TEXT(L"urn:1", map.GetNamespaceAt(0));
  EXPECT_TEXT(L"x", map.GetAliasFromNamespace(L"urn:2"));
  EXPECT_FALSE(map.DoesAliasExist(L"z"));
  map.Add(L"x", L"urn:1");
  EXPECT_TEXT(L"urn:1", map.GetNamespaceFromAlias(L"x"));
  EXPECT_THROWS(CRkException, L"Namespace alias [q] not found", map.GetNamespaceFromAlias(L"q"));
  EXPECT_THROWS(CRkInvalidParamException, L"Index out of range", map.GetNamespaceAt(2));
  map.RemoveNamespace(L"urn:1");
  map.RemoveNamespace(L"urn:none");
  EXPECT_EQ(1, map.GetNamespaceCount());
}

TEST(NamespaceAliasMap, AskingForAnAliasAddsTheNamespaceIntended) {
  const CNamespaceAliasMap map;
  EXPECT_FALSE(map.DoesNamespaceExist(L"urn:new"));
  EXPECT_TEXT(L"", map.GetAliasFromNamespace(L"urn:new"));
  EXPECT_EQ(1, map.GetNamespaceCount());
  EXPECT_TRUE(map.DoesNamespaceExist(L"urn:new"));
}

}  // namespace
