// What records and elements of documents write: by the library's own writers, which keep what they have made of a name,
// and by classes derived from them, which get the plain calls.
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "Expect.h"
#include "RkXmlLib16/RkXmlLib16.h"
#include "support/Bytes.h"

using namespace RkXmlLib16;

namespace {

template <class Writer>
struct Derived : Writer {
  using Writer::Writer;
};

// Calls drawn at random: namespaces inside each other and declared anew, attributes, items of collections, texts that
// are escaped, long or empty.
class RandomCalls {
 public:
  RandomCalls(CXmlWriter& writer, std::uint32_t seed, std::function<void(unsigned)> changeSettings)
      : m_writer(writer), m_random(seed), m_changeSettings(std::move(changeSettings)) {}

  // The errors.
  std::wstring Run() {
    m_writer.AddNamespace(L"p", L"urn:p");
    if (Draw(2) != 0) m_writer.SetDefaultNamespace(L"urn:d");
    m_writer.WriteStartElement(L"root", Draw(2) != 0 ? L"urn:d" : L"");
    m_depth = 1;
    for (int i = 0; i < 600; ++i) {
      try {
        Step();
      } catch (const CRkException& e) {
        m_errors += e.GetFullMessage() + L"\n";
      }
    }
    m_writer.AvoidPrefix(L"");
    for (; m_depth > 0; --m_depth) m_writer.WriteEndElement();
    return m_errors;
  }

 private:
  unsigned Draw(unsigned count) { return static_cast<unsigned>(m_random() % count); }
  const CNameToken& DrawName() { return *Names()[Draw(static_cast<unsigned>(Names().size()))]; }
  // More than a writer keeps, and some of those above.
  CSharedName DrawDocumentName() {
    return Draw(2) != 0 ? DrawName().GetSharedLocalName() : CSharedName(L"d" + std::to_wstring(Draw(150)));
  }
  CXmlWriter::SharedText DrawDocumentUri() {
    static const CXmlWriter::SharedText kShared = std::make_shared<const std::wstring>(L"urn:p"),
                                        kLong = std::make_shared<const std::wstring>(100, L'u');
    const CXmlWriter::SharedText uris[] = {kShared, kShared, kLong, nullptr};
    return Draw(4) == 0 ? std::make_shared<const std::wstring>(DrawUri()) : uris[Draw(std::size(uris))];
  }
  // Without text that its type refuses, which leaves an element open.
  struct Value {
    std::wstring text;
    ItemType type;
    bool isCanonical = false;
  };
  Value DrawValue() {
    const Value values[] = {{L"", ItemType_string},
                            {L"", ItemType_int},
                            {L"1", ItemType_int, true},
                            {L"-12.50", ItemType_decimal, true},
                            {L"true", ItemType_boolean, true},
                            {L"1", ItemType_string},
                            {L"a<b & \"c\"\t>\r\nd\\", ItemType_string},
                            {L"<![CDATA[<&]]>", ItemType_string},
                            {std::wstring(64, L'x'), ItemType_string},
                            {std::wstring(63, L'&') + L"\n", ItemType_string},
                            {std::wstring(200, L'y') + L'<', ItemType_string},
                            {std::wstring(300, L'7'), ItemType_integer, true},
                            {std::wstring(310, L'7'), ItemType_integer, true},
                            {L"2026-11-22T10:30:00Z", ItemType_dateTime, true},
                            {L"INF", ItemType_double, true},
                            {L"<", ItemType_char, true},
                            {std::wstring(L"\0z", 2), ItemType_string},
                            {std::wstring(L"z\0z", 3), ItemType_string},
                            {L"\u00E9\u4E00\U0001F600", ItemType_string},
                            {{static_cast<wchar_t>(0xD83D), static_cast<wchar_t>(0xDE00), L'e'}, ItemType_string},
                            {{L'e', static_cast<wchar_t>(0xD83D)}, ItemType_string}};
    return values[Draw(std::size(values))];
  }
  const wchar_t* DrawUri() {
    const wchar_t* const uris[] = {L"urn:p", L"urn:q", L"urn:d", L""};
    return uris[Draw(std::size(uris))];
  }
  const wchar_t* DrawPrefix() {
    const wchar_t* const prefixes[] = {L"p", L"q", L"AA", L"longer", L""};
    return prefixes[Draw(std::size(prefixes))];
  }

  void Step() {
    const unsigned kind = Draw(30);
    if (kind < 5) {
      if (m_depth < 7) Start();
    } else if (kind < 9) {
      if (m_depth == 1) return;
      m_writer.WriteEndElement();
      --m_depth;
    } else if (kind < 18) {
      const Value value = DrawValue();
      if (Draw(3) == 0)
        m_writer.TextElement(DrawDocumentName(), DrawDocumentUri(), value.text, value.type);
      else
        m_writer.TextElement(DrawName(), value.text, value.type, value.isCanonical);
    } else if (kind < 23) {
      const Value value = DrawValue();
      if (Draw(3) == 0)
        m_writer.Attribute(DrawDocumentName(), DrawDocumentUri(), value.text, value.type);
      else
        m_writer.Attribute(DrawName(), value.text, value.type, value.isCanonical);
    } else {
      Change(kind);
    }
  }
  void Start() {
    const CNameToken& name = DrawName();
    const unsigned kind = Draw(4);
    if (kind == 0) {
      m_writer.StartElement(DrawDocumentName(), DrawDocumentUri());
    } else if (kind == 1) {
      m_writer.SetExpectedName(&name);
      m_writer.StartElement(name.GetLocalName(), Draw(4) == 0 ? L"" : name.GetNamespace());
      m_writer.SetExpectedName(nullptr);
    } else {
      m_writer.StartElement(name);
    }
    ++m_depth;
  }
  void Change(unsigned kind) {
    if (kind == 23) m_writer.AddNamespace(DrawPrefix(), DrawUri());
    if (kind == 24) m_writer.SetDefaultNamespace(DrawUri());
    if (kind == 25) m_writer.DeclareNamespace(DrawPrefix(), DrawUri());
    if (kind == 26) m_writer.AvoidPrefix(DrawPrefix());
    if (kind == 27) m_writer.SetContextState(Draw(2) != 0 ? ContextState_CollectionStart : ContextState_CollectionEnd);
    const Value value = DrawValue();
    if (kind == 28) m_writer.WriteString(value.text, value.type);
    if (kind == 29) m_changeSettings(Draw(4));
  }

  // Many names that share places in the writers' tables, long ones, and some that are alike.
  static const std::vector<std::unique_ptr<CNameToken>>& Names() {
    static const auto names = [] {
      std::vector<std::unique_ptr<CNameToken>> made;
      for (const wchar_t* uri : {L"urn:p", L"urn:q", L"urn:d", L""})
        for (const std::wstring& name :
             {std::wstring(L"a"), std::wstring(L"b"), std::wstring(L"root"), std::wstring(L"sixteen_and_more"),
              std::wstring(36, L'n'), std::wstring(300, L'n')}) {
          made.push_back(std::make_unique<CNameToken>(name, uri));
          for (int i = 0; i < 5; ++i) CNameToken(L"other" + std::to_wstring(i), uri);  // uses up a number
        }
      return made;
    }();
    return names;
  }

  CXmlWriter& m_writer;
  std::mt19937 m_random;
  std::function<void(unsigned)> m_changeSettings;
  int m_depth = 0;
  std::wstring m_errors;
};

struct Written {
  CBinaryData octets;
  std::wstring errors;
};

// Calls to a writer of text, of which some change its settings: those of all of them, and one of its own.
template <class Writer>
std::wstring RunOnText(Writer& w, std::uint32_t seed, std::function<void()> changeOwn) {
  return RandomCalls(w, seed,
                     [&](unsigned change) {
                       if (change == 0) w.SetFormat(!w.GetFormat());
                       if (change == 1) w.SetIndentChars(L"  ");
                       if (change == 2) w.SetEOLType(w.GetEOLType() == EOLType_LF ? EOLType_CRLF : EOLType_LF);
                       if (change == 3) changeOwn();
                     })
      .Run();
}

template <class Writer, class Stream, class... Arguments>
Written WriteXml(std::uint32_t seed, Arguments... arguments) {
  Stream stream(arguments...);
  Writer w(stream);
  w.Open();
  w.SetEscapesSections(seed % 3 == 0);
  const std::wstring errors = RunOnText(w, seed, [&w] { w.SetKeepTabs(true); });
  w.Close();
  if constexpr (std::is_same_v<Stream, CUtf8TextStream>)
    return {stream.TakeBytes(), errors};
  else
    return {stream.GetEncodedStream(), errors};
}

template <class Writer>
Written WriteJson(std::uint32_t seed) {
  CUtf8TextStream stream;
  Writer w(stream);
  w.SetSupportRoundtrip(static_cast<JsonRoundTrip>(seed % 3));
  w.SetStrictOutput(seed % 2 == 0);
  w.Open();
  w.WriteStartDocument();
  const std::wstring errors = RunOnText(w, seed, [&w] { w.SetStrictOutput(!w.GetStrictOutput()); });
  w.WriteEndDocument();
  w.Close();
  return {stream.TakeBytes(), errors};
}

template <class Writer>
Written WriteFastInfoset(std::uint32_t seed) {
  CBinaryStream stream;
  CFastInfosetContext context;
  if (seed % 2 == 0) context.SetSuggestedValues();
  Writer w(context, stream);
  w.WriteStartDocument(FInfoDecl_None);
  const std::wstring errors = RandomCalls(w, seed, [](unsigned) {}).Run();
  w.WriteEndDocument();
  return {stream.GetBinaryStream(), errors};
}

void ExpectSame(const Written& own, const Written& derived, std::uint32_t seed) {
  EXPECT_LT(1000u, derived.octets.GetLength()) << seed;
  EXPECT_TEXT(derived.errors, own.errors);
  EXPECT_TRUE(derived.octets == own.octets) << seed << "\n"
                                            << RkXmlTest::BytesOf(derived.octets) << "\n----\n"
                                            << RkXmlTest::BytesOf(own.octets);
}

// Each array that ends takes its owner's members one level out, in the end to levels below 0.
template <class Writer>
std::string WriteArraysInARow() {
  CUtf8TextStream stream;
  Writer w(stream);
  w.SetStrictOutput(false);
  w.Open();
  w.WriteStartDocument();
  const CNameToken root(L"root", L""), list(L"list", L""), item(L"item", L"");
  w.StartElement(root);
  for (int i = 0; i < 6; ++i) {
    const CNameToken inner(L"inner" + std::to_wstring(i), L""), next(L"next" + std::to_wstring(i), L"");
    w.StartElement(list);
    w.SetContextState(ContextState_CollectionStart);
    w.StartElement(item);
    w.TextElement(inner, L"1", ItemType_int);
    w.WriteEndElement();
    w.SetContextState(ContextState_CollectionEnd);
    w.WriteEndElement();
    w.TextElement(next, L"2", ItemType_int);
  }
  w.WriteEndElement();
  w.WriteEndDocument();
  w.Close();
  return RkXmlTest::BytesOf(stream.TakeBytes());
}

}  // namespace

TEST(RecordNames, HaveTheirKeysAtEachLevelOfJson) {
  EXPECT_EQ(WriteArraysInARow<Derived<CJsonTextWriter>>(), WriteArraysInARow<CJsonTextWriter>());
}

TEST(RecordNames, AreWrittenAsByDerivedWriters) {
  using DerivedXml = Derived<CXmlTextWriter>;
  for (std::uint32_t seed = 0; seed < 60 && !::testing::Test::HasFailure(); ++seed) {
    for (const XmlEncoding encoding : {XmlEncoding_UTF8, XmlEncoding_UTF16, XmlEncoding_Wide})
      ExpectSame(WriteXml<CXmlTextWriter, CTextStream>(seed, encoding),
                 WriteXml<DerivedXml, CTextStream>(seed, encoding), seed);
    ExpectSame(WriteXml<CXmlTextWriter, CUtf8TextStream>(seed),
               WriteXml<DerivedXml, CTextStream>(seed, XmlEncoding_UTF8), seed);
    ExpectSame(WriteJson<CJsonTextWriter>(seed), WriteJson<Derived<CJsonTextWriter>>(seed), seed);
    ExpectSame(WriteFastInfoset<CFastInfosetWriter>(seed), WriteFastInfoset<Derived<CFastInfosetWriter>>(seed), seed);
  }
}

TEST(RecordNames, AreOneForEachName) {
  auto first = std::make_unique<CNameToken>(L"name", L"urn:n");
  const std::uint32_t number = first->GetNumber();
  const CNameToken same(std::wstring(L"name"), std::wstring(L"urn:n")), other(L"name", L""), swapped(L"urn:n", L"name");
  EXPECT_EQ(number, same.GetNumber());
  EXPECT_EQ(&first->GetLocalName(), &same.GetLocalName());
  EXPECT_NE(number, other.GetNumber());
  EXPECT_NE(number, swapped.GetNumber());
  first.reset();
  EXPECT_EQ(number, CNameToken(L"name", L"urn:n").GetNumber());
  const std::uint32_t gone = CNameToken(L"passing", L"urn:n").GetNumber();
  EXPECT_NE(gone, CNameToken(L"passing", L"urn:n").GetNumber());  // nobody takes the old name for the new one
}
