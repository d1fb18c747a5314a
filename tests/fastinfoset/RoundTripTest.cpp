#include <functional>
#include <random>

#include "Expect.h"
#include "Octets.h"
#include "RkXmlLib16/io/TextStream.h"
#include "RkXmlLib16/xml/XmlTextWriter.h"

namespace RkXmlTest {
namespace {

const Rows<ItemType, Wide> kValues = {
    {ItemType_string, L"x"},          {ItemType_string, L"a longer text, \u00E9 and \u6F22"},
    {ItemType_string, L" \n<&>\" "},  {ItemType_int, L"12"},
    {ItemType_int, L"-2147483648"},   {ItemType_int, L"99999999999"},
    {ItemType_short, L"+5"},          {ItemType_long, L"9223372036854775807"},
    {ItemType_double, L"47.644548"},  {ItemType_double, L"1e+300"},
    {ItemType_double, L"1.50"},       {ItemType_float, L"-INF"},
    {ItemType_float, L"0.1"},         {ItemType_boolean, L"true"},
    {ItemType_boolean, L"True"},      {ItemType_decimal, L"123456789.000000001"},
    {ItemType_integer, L"-0"},        {ItemType_dateTime, L"2024-02-29T08:30:00Z"},
    {ItemType_time, L"08:30:00.5"},   {ItemType_hexBinary, L"00ABFF"},
    {ItemType_hexBinary, L"0ab"},     {ItemType_base64Binary, L"AKs="},
    {ItemType_base64Binary, L"AK s"}, {ItemType_char, L"c"},
};

// A document made up from a seed: the same calls for every writer.
class MadeUpDocument {
 public:
  explicit MadeUpDocument(unsigned seed) : m_seed(seed) {}

  void WriteTo(CXmlWriter& writer) {
    m_random.seed(m_seed);
    m_hasDefault = Below(2) == 0;
    if (m_hasDefault) writer.SetDefaultNamespace(L"urn:default");
    if (Below(2) == 0) writer.AddNamespace(L"p", L"urn:1");
    if (Below(3) == 0) writer.AddNamespace(L"AA", L"urn:unused");
    Element(writer, 0);
  }

 private:
  unsigned Below(std::size_t n) { return static_cast<unsigned>(m_random() % n); }

  void Element(CXmlWriter& writer, int depth) {
    static const wchar_t* const names[] = {L"a", L"b", L"item", L"\u00E9l\u00E9ment"};
    static const wchar_t* const uris[] = {L"urn:1", L"urn:2", L"http://example.org/a/long/name/of/a/namespace/3"};
    const unsigned uri = Below(4);
    writer.WriteStartElement(names[Below(4)], uri < 3 ? uris[uri] : m_hasDefault ? L"urn:default" : L"");
    const unsigned attributes = Below(4);
    for (unsigned i = 0; i < attributes; ++i) {
      const auto& [type, text] = kValues[Below(kValues.size())];
      const std::wstring name = std::wstring(L"at") + static_cast<wchar_t>(L'0' + i);
      writer.WriteAttributeString(name, Below(3) == 0 ? uris[Below(3)] : L"", text, type);
    }
    if (Below(6) == 0) writer.WriteAttributeType(uris[Below(3)], L"Type", ItemType_string);
    if (Below(8) == 0) writer.WriteAttributeNil();
    for (unsigned left = depth < 5 ? Below(5) : 0; left > 0; --left) {
      const auto& [type, text] = kValues[Below(kValues.size())];
      if (Below(3) == 0) {
        writer.WriteString(text, type);
      } else {
        Element(writer, depth + 1);
      }
    }
    writer.WriteEndElement();
  }

  unsigned m_seed;
  std::mt19937 m_random;
  bool m_hasDefault = false;
};

std::wstring TreeOfXmlText(MadeUpDocument& document) {
  CTextStream stream(XmlEncoding_UTF8);
  CXmlTextWriter writer(stream);
  writer.Open();
  writer.SetFormat(false);
  writer.WriteStartDocument();
  document.WriteTo(writer);
  writer.Close();
  return TreeOf(ToOctets(stream.GetEncodedStream()));
}

TEST(FastInfosetRoundTrip, FastInfosetAndXmlTextGiveOneTree) {
  CFastInfosetContext plain;
  CFastInfosetContext typed;
  typed.SetSuggestedValues();
  CFastInfosetContext greedy(typed);
  greedy.SetAttributeMaxAddLength(1000);
  greedy.SetElementMaxAddLength(1000);
  greedy.SetUseGeneratedVocabulary(true);
  for (unsigned seed = 1; seed <= 200; ++seed) {
    SCOPED_TRACE(seed);
    MadeUpDocument document(seed);
    const std::wstring expected = TreeOfXmlText(document);
    for (const CFastInfosetContext* context : {&plain, &typed, &greedy}) {
      const Octets octets = Write(
          *context, [&](CFastInfosetWriter& writer) { document.WriteTo(writer); }, static_cast<FInfoDecl>(seed % 10));
      EXPECT_TEXT(expected, TreeOf(octets));
      EXPECT_TEXT(expected, Check(octets));
    }
    if (HasFailure()) return;
  }
}

}  // namespace
}  // namespace RkXmlTest
