#include <string>

#include "Expect.h"
#include "RkXmlLib16/context/JsonContext.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/io/Encoder.h"
#include "RkXmlLib16/wildcards/Element.h"
#include "support/Bytes.h"
#include "support/TempFile.h"

using namespace RkXmlTest;

namespace {

constexpr wchar_t kText[] = L"<a b=\"1\"><c>\x20AC</c></a>";

class EntryPoints : public testing::Test {
 protected:
  EntryPoints() { m_element.FromXml(kText); }
  ~EntryPoints() override { AsyncToXmlFile(false); }

  static std::wstring XmlOf(const CElement& element) { return element.ToXml(false, false); }

  CElement m_element;
  CSerializationContext m_ctx;
};

TEST_F(EntryPoints, WriteTheDeclarationOfTheEncoding) {
  EXPECT_TEXT(L"<?xml version=\"1.0\"?>\n" + std::wstring(kText), m_element.ToXml(true, false));
  EXPECT_TEXT(kText, m_element.ToXml(false, false));
  EXPECT_TEXT(L"<?xml version=\"1.0\"?>\r\n<a b=\"1\">\r\n\t<c>\x20AC</c>\r\n</a>\r\n",
              m_element.ToXml(true, true, EOLType_CRLF));
  EXPECT_EQ("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a b=\"1\"><c>\xE2\x82\xAC</c></a>",
            BytesOf(m_element.ToXmlStream(true, false)));
  EXPECT_EQ(sizeof(wchar_t) * (sizeof(kText) / sizeof(wchar_t) - 1),
            m_element.ToXmlStream(false, false, XmlEncoding_Wide).GetLength());
  m_ctx.SetIndentChars(L"  ");
  EXPECT_TEXT(L"<a b=\"1\">\n  <c>\x20AC</c>\n</a>\n", m_element.ToXml(false, true, EOLType_LF, m_ctx));
}

TEST_F(EntryPoints, FilesHaveTheMarkOfTheirEncoding) {
  for (const bool direct : {false, true}) {
    AsyncToXmlFile(direct);
    CTempFile file;
    const std::wstring name = file.Name();
    m_element.ToXmlFile(name.c_str(), true, false, XmlEncoding_UTF8);
    EXPECT_EQ(BytesOf(m_element.ToXmlStream(true, false)), file.Bytes());
    for (const XmlEncoding encoding : {XmlEncoding_UTF16, XmlEncoding_Wide}) {
      m_element.ToXmlFile(name.c_str(), true, false, encoding);
      EXPECT_EQ("\xFF\xFE" + BytesOf(m_element.ToXmlStream(true, false, encoding)), file.Bytes());
    }
    m_element.ToXmlFile(name.c_str(), true, false, XmlEncoding_UTF16, EOLType_LF, m_ctx, CompressionType_GZip);
    EXPECT_EQ("\xFF\xFE\x1F\x8B", file.Bytes().substr(0, 4));
    if (direct) continue;
    m_element.ToJsonFile(name.c_str(), true, XmlEncoding_Wide);  // a buffered one has no mark
    EXPECT_EQ(BytesOf(m_element.ToJsonStream(true, XmlEncoding_Wide)), file.Bytes());
  }
}

TEST_F(EntryPoints, FilesCannotBeZlibAndFailuresNameTheFile) {
  const wchar_t* const encoding = L"Unknown Encoding, select UTF-8 (contact our support team)";
  EXPECT_THROWS(CRkException, encoding, m_element.ToXmlStream(true, true, XmlEncoding_None));
  EXPECT_THROWS(CRkException, encoding, m_element.ToJsonStream(true, static_cast<XmlEncoding>(7)));
  CTempFile file;
  const std::wstring name = file.Name();
  const wchar_t* const message = L"ZLIB Compression only available for To Stream methods.";
  EXPECT_THROWS(
      CRkException, message,
      m_element.ToXmlFile(name.c_str(), true, true, XmlEncoding_UTF8, EOLType_LF, m_ctx, CompressionType_ZLib));
  EXPECT_THROWS(CRkException, message,
                m_element.ToJsonFile(name.c_str(), true, XmlEncoding_UTF8, EOLType_LF, m_ctx, CompressionType_ZLib));
  EXPECT_THROWS(CRkException, message,
                m_element.ToFastInfosetFile(name.c_str(), FInfoDecl_None, m_ctx, CompressionType_ZLib));
  EXPECT_FALSE(file.Exists());
  const wchar_t* const nowhere = L"Failed to write data to the file [/nowhere/x].";
  for (const bool direct : {false, true}) {
    AsyncToXmlFile(direct);
    EXPECT_THROWS(CRkException, nowhere, m_element.ToXmlFile(L"/nowhere/x"));
    EXPECT_THROWS(CRkException, nowhere, m_element.ToJsonFile(L"/nowhere/x"));
  }
  EXPECT_THROWS(CRkException, nowhere, m_element.ToFastInfosetFile(L"/nowhere/x"));
  EXPECT_THROWS(CRkException, L"Failed to open the file [/nowhere/x].", m_element.FromXmlFile(L"/nowhere/x"));
}

// Sees the settings that reach it.
class CProbe : public CElement {
 public:
  void FromXmlElement(const CXmlElement* element, const CSerializationContext& context) override {
    ignoresNamespaces = context.GetIgnoreNamespaces();
    CElement::FromXmlElement(element, context);
  }
  using CElement::FromXmlElement;

  bool ignoresNamespaces = false;
};

TEST_F(EntryPoints, JsonWithoutNamespacesIsMatchedWithoutThem) {
  for (const JsonRoundTrip mode : {JsonRoundTrip_Plain, JsonRoundTrip_Markers, JsonRoundTrip_Namespaces}) {
    m_ctx.GetJsonContext()->SetSupportRoundtrip(mode);
    CProbe probe;
    probe.FromJson(L"{\"a\": {\"b\": 1}}", m_ctx);
    EXPECT_EQ(mode != JsonRoundTrip_Namespaces, probe.ignoresNamespaces);
    EXPECT_FALSE(m_ctx.GetIgnoreNamespaces());
  }
}

TEST_F(EntryPoints, JsonErrorsShowTheXmlText) {
  CElement strict(L"e", L"urn:t", L"##targetNamespace", L"urn:t");
  EXPECT_TEXT(L"CRkException: Error converting JSON to XML:\n<a>\x20AC</a>\n\nInvalid Namespace [].",
              Thrown([&] { strict.FromJson("{\"a\": \"\xE2\x82\xAC\"}"); }));
  // What is read is not indented, but what is shown is, and the line is that of the text shown.
  EXPECT_TEXT(
      L"CRkException: Error converting JSON to XML:\n<a>\n\t<b>\n\t\t<p:c/>\n\t</b>\n</a>\n\nunbound prefix at line 3",
      Thrown([&] { strict.FromJson(L"{\"a\":{\"b\":{\"p:c\":null}}}"); }));
}

// Text beside children is that of the JSON alone, however often it is converted.
TEST_F(EntryPoints, JsonAddsNoWhiteSpaceToText) {
  for (const wchar_t* text : {L"x", L"\n\tx\n", L" \u20AC < \t"}) {
    CElement element(L"a");
    element.SetText(text);
    element.AddNewChild(L"b", L"", L"1")->AddNewChild(L"c");
    element.AddNewChild(L"b", L"", L"\n")->SetAttribute(L"k", L"v");
    const std::wstring expected = element.ToXml(false, false);
    m_ctx.GetJsonContext()->SetStrictOutput(true);
    for (const JsonRoundTrip mode : {JsonRoundTrip_Markers, JsonRoundTrip_Namespaces}) {
      m_ctx.GetJsonContext()->SetSupportRoundtrip(mode);
      for (int trip = 0; trip < 4; ++trip) {
        const CBinaryData json = element.ToJsonStream(trip % 2 == 0, XmlEncoding_UTF8, EOLType_CRLF, m_ctx);
        element.FromJsonStream(json, m_ctx);
        EXPECT_TEXT(text, element.GetText());
        EXPECT_TEXT(expected, element.ToXml(false, false));
      }
    }
  }
}

}  // namespace
