#include <random>
#include <vector>

#include "Expect.h"
#include "RkXmlLib16/core/SerializationContext.h"
#include "RkXmlLib16/json/JsonTextReader.h"
#include "RkXmlLib16/json/JsonTextWriter.h"
#include "RkXmlLib16/support/Encoder.h"
#include "RkXmlLib16/support/TextStream.h"
#include "RkXmlLib16/types/BinaryData.h"
#include "RkXmlLib16/xml/XmlTextWriter.h"

#if __has_include(<nlohmann/json.hpp>)
#define RKXML_HAS_JUDGE 1
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wshadow"
#include <nlohmann/json.hpp>
#pragma GCC diagnostic pop
#endif

using namespace RkXmlLib16;

namespace {

// A random document that is written by the same calls through any writer.
class Document {
 public:
  // With `hard`, also what only strict output brings through: quotes, controls, elements with nothing in them, nil.
  Document(unsigned seed, bool hard) : m_seed(seed), m_hard(hard) {}

  void Write(CXmlWriter& writer) const {
    std::mt19937 random(m_seed);
    if (random() % 2 == 0) writer.SetDefaultNamespace(L"urn:d");
    writer.AddNamespace(L"p", L"urn:p");
    writer.AddNamespace(L"d", L"urn:d");
    if (random() % 2 == 0) writer.AddNamespace(L"xsi", CXmlWriter::XSI_NAMESPACE);
    Element(writer, random, kNames[random() % 4], 0);
  }

 private:
  enum Content { Text, Object, Nothing, EmptyText, Nil, ContentKinds };

  void Element(CXmlWriter& writer, std::mt19937& random, const wchar_t* name, int depth) const {
    static const wchar_t* const kNamespaces[] = {L"urn:d", L"urn:p"};
    writer.WriteStartElement(name, kNamespaces[name[0] % 2]);
    auto content = static_cast<Content>(random() % ContentKinds);
    if (depth == 0) content = Object;
    if (!m_hard && content > Object) content = Text;
    const bool attributes = content != Nil && random() % 3 == 0;
    if (attributes) {
      writer.WriteAttributeString(L"u", L"", Value(random), ItemType_string);
      writer.WriteAttributeString(L"v", L"urn:p", Number(random), ItemType_decimal);
    }
    switch (content) {
      case Text:
        if (random() % 2 == 0)
          writer.WriteString(Value(random) + L"x", ItemType_string);
        else
          writer.WriteString(Number(random), ItemType_double);
        break;
      case EmptyText:
        writer.WriteString(L"", ItemType_string);
        break;
      case Nil:
        writer.WriteAttributeNil();
        break;
      case Object:
        if (m_hard && random() % 4 == 0) writer.WriteString(Value(random), ItemType_string);
        Children(writer, random, depth + 1);
        break;
      default:
        break;
    }
    writer.WriteEndElement();
  }

  void Children(CXmlWriter& writer, std::mt19937& random, int depth) const {
    for (auto groups = 1 + random() % 3; groups > 0; --groups) {
      const wchar_t* name = kNames[random() % 4];
      if (depth > 4 || random() % 2 == 0) {
        writer.WriteStartElement(name, L"urn:p");
        writer.WriteString(Number(random), ItemType_int);
        writer.WriteEndElement();
        continue;
      }
      writer.SetContextState(ContextState_CollectionStart);
      for (auto items = 1 + random() % 4; items > 0; --items)
        Element(writer, random, random() % 5 == 0 ? L"other" : name, depth);
      writer.SetContextState(ContextState_CollectionEnd);
    }
  }

  std::wstring Value(std::mt19937& random) const {
    static const wchar_t* const kEasy[] = {L"a", L" ", L"\u00e9", L"\U0001F600", L"<&>'", L"]]>", L"\u2028", L"null"};
    static const wchar_t* const kHard[] = {L"\"", L"\\", L"\n", L"\t", L"\\u0041", L"\r"};
    std::wstring value;
    for (auto n = random() % 4; n > 0; --n) {
      if (m_hard && random() % 2 == 0)
        value += kHard[random() % 6];
      else
        value += kEasy[random() % 8];
    }
    return value;
  }

  std::wstring Number(std::mt19937& random) const {
    static const wchar_t* const kNumbers[] = {L"0",  L"-1.5", L"1E400", L"12345678901234567890123",
                                              L"+5", L"007",  L".5",    L"INF"};
    return kNumbers[random() % (m_hard ? 8 : 2)];
  }

  static constexpr const wchar_t* kNames[] = {L"a", L"b", L"item", L"e-\u00e9"};
  unsigned m_seed;
  bool m_hard;
};

std::wstring AsXml(const Document& document) {
  CTextStream stream;
  CXmlTextWriter writer(stream);
  writer.Open();
  document.Write(writer);
  writer.Close();
  return stream.GetText();
}

std::wstring AsJson(const Document& document, bool format, bool strict) {
  CTextStream stream;
  CJsonTextWriter writer(stream);
  writer.SetFormat(format);
  writer.SetStrictOutput(strict);
  writer.Open();
  writer.WriteStartDocument();
  document.Write(writer);
  writer.WriteEndDocument();
  writer.Close();
  return stream.GetText();
}

std::wstring JsonToXml(const std::wstring& json) {
  const CBinaryData xml = CJsonTextReader::ConvertJsonToXml(json, CSerializationContext());
  return CEncoder::Utf8ToUnicode(xml.GetData(), static_cast<int>(xml.GetLength()));
}

class JsonRoundTrip : public testing::TestWithParam<bool> {};

TEST_P(JsonRoundTrip, JsonBecomesTheSameXmlText) {
  for (unsigned seed = 0; seed < 1500; ++seed) {
    const Document document(seed, GetParam());
    const std::wstring xml = AsXml(document);
    for (const bool format : {false, true}) {
      const std::wstring json = AsJson(document, format, GetParam());
      ASSERT_EQ(RkXmlTest::Narrow(xml), RkXmlTest::Narrow(JsonToXml(json))) << RkXmlTest::Narrow(json);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(DefaultAndStrict, JsonRoundTrip, testing::Bool());

TEST(JsonStrictOutput, ParsesUnderAStrictParser) {
#ifdef RKXML_HAS_JUDGE
  for (unsigned seed = 0; seed < 1500; ++seed) {
    const std::wstring json = AsJson(Document(seed, true), seed % 2 == 0, true);
    const CBinaryData utf8 = CEncoder::UnicodeToUtf8Binary(json.c_str());
    ASSERT_TRUE(nlohmann::json::accept(utf8.GetData(), utf8.GetData() + utf8.GetLength())) << RkXmlTest::Narrow(json);
  }
#else
  GTEST_SKIP() << "nlohmann-json3-dev is not installed";
#endif
}

}  // namespace
