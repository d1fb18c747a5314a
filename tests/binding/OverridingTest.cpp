// What a program overrides is called: operations of writers, of records and of objects.
#include "Expect.h"
#include "RkXmlLib16/RkXmlLib16.h"
#include "fixtures/Records.h"

using namespace RkXmlTest;

namespace {

class OverridingTest : public TableTest {};

// One of the library's writers that tells what passes through its operations.
template <class Writer>
class CTellingWriter : public Writer {
 public:
  using Writer::Writer;

  void WriteStartElement(const std::wstring& localName, const std::wstring& namespaceUri) override {
    m_told += L"<" + localName;
    Writer::WriteStartElement(localName, namespaceUri);
  }
  void WriteString(const std::wstring& text, ItemType type) override {
    m_told += L"'" + text + L"'";
    Writer::WriteString(text, type);
  }
  void WriteEndElement() override {
    m_told += L">";
    Writer::WriteEndElement();
  }
  void WriteAttributeString(const std::wstring& localName, const std::wstring& namespaceUri, const std::wstring& value,
                            ItemType type) override {
    m_told += L" @" + localName + L"=" + value;
    Writer::WriteAttributeString(localName, namespaceUri, value, type);
  }

  std::wstring m_told;
};

template <class Writer>
void WriteDocument(Writer& writer, const CXmlObjectBase& object) {
  writer.Open();
  writer.AddNamespace(L"xsi", CXmlWriter::XSI_NAMESPACE);
  object.ToXml_Int(&writer, true, L"", CSerializationContext(), false);
  writer.Close();
}

// What a derived writer is told, once it wrote what the writer itself writes.
template <class Writer>
std::wstring Told(const CXmlObjectBase& object) {
  CTextStream plainStream, stream;
  Writer plain(plainStream);
  CTellingWriter<Writer> telling(stream);
  WriteDocument(plain, object);
  WriteDocument(telling, object);
  EXPECT_TEXT(plainStream.ToString(), stream.ToString());
  return telling.m_told;
}

template <>
std::wstring Told<CFastInfosetWriter>(const CXmlObjectBase& object) {
  const CFastInfosetContext context;
  CBinaryStream plainStream, stream;
  CFastInfosetWriter plain(context, plainStream);
  CTellingWriter<CFastInfosetWriter> telling(context, stream);
  WriteDocument(plain, object);
  WriteDocument(telling, object);
  EXPECT_EQ(plainStream.GetBinaryStream(), stream.GetBinaryStream());
  return telling.m_told;
}

// A primitive record that marks the element of its owner.
class CMarkingRecord : public CElementInfoSeqPrimMnd {
 public:
  using CElementInfoSeqPrimMnd::CElementInfoSeqPrimMnd;
  void PseudoChildAttributeToXml(const CSerializationContext&, const CXmlGeneratedClass*,
                                 CXmlWriter* writer) const override {
    writer->WriteAttributeString(L"mark", L"", GetElementName(), ItemType_string);
  }
};

// A record that does as its base does. As nobody can know that, it is always called, where the library may skip a
// record of its own or write the value itself.
template <class Record>
class CForwardingRecord : public Record {
 public:
  using Record::Record;
  bool ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                    CXmlWriter* writer) const override {
    return Record::ElementToXml(context, object, writer);
  }
  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override {
    return Record::ElementFromXml(context, object, parent, cursor, ownerNamespace, ownerType);
  }
};

template <class Record>
using Same = Record;

// Optional members of every kind that may be skipped, and a mandatory one.
template <template <class> class Form>
Table OptionalMembers() {
  return Table(
      ClassInfo(kSequence, L"r"),
      {Prim<Form<CElementInfoSeqPrimOpt>>(L"p", 0), Enum<Form<CElementInfoSeqEnumOpt>>(L"e", 1),
       Cls<Form<CElementInfoSeqClsOpt>>(L"c", 2), Cls<Form<CElementInfoSeqClsOpt>>(L"g", 3, 1, kInline),
       new Form<CElementInfoSeqAbsClsOpt>(L"a", L"", 4, kOwn, [](CXmlElement*) { return CreateClass(0, L"a"); }),
       Prim<Form<CElementInfoSeqPrimMnd>>(L"m", 5)});
}

// An object that looks at the text it reads.
class CLookingClass : public CTableClass {
 public:
  using CTableClass::CTableClass;
  using CTableClass::FromXml;
  void FromXml(const wchar_t* text, const CSerializationContext& context) override {
    m_seen += text;
    CTableClass::FromXml(text, context);
  }

  std::wstring m_seen;
};

}  // namespace

TEST_F(OverridingTest, DerivedWritersSeeEveryElementAndAttribute) {
  const Table child(ClassInfo(kSequence, L"c"), {Prim<CElementInfoSeqPrimOpt>(L"v", 0)});
  const Table table(ClassInfo(kSequence, L"r"),
                    {Prim(L"a", 0), Prim<CElementInfoSeqPrimOpt>(L"b", 1), Prim(L"n", 2, ItemType_int, true),
                     Enum(L"e", 3), Cls(L"c", 4), new CElementInfoSeqPrimCol(L"i", L"", 5)},
                    {Attribute(L"q", 6, false)}, {nullptr, nullptr, nullptr, nullptr, nullptr, Ints(L"i", 0, -1)});
  Classes() = {&child};
  const auto object = Read(table,
                           L"<r q='1'><a>1</a><b>2</b><n xmlns:x='http://www.w3.org/2001/XMLSchema-instance' "
                           L"x:nil='false'>3</n><e>red</e><c><v>4</v></c><i>5</i><i>6</i></r>");
  (*object)[2].SetNil();
  object->SetElementName(L"other");  // so that xsi:type is written
  const std::wstring content = L"<e'red'><c<v'4'>><i'5'><i'6'>>";
  EXPECT_TEXT(L"<other @type=r @q=1<a'1'><b'2'><n @nil=true>" + content, Told<CXmlTextWriter>(*object));
  EXPECT_TEXT(L"<other @type=r @q=1<a'1'><b'2'><n @nil=true>" + content, Told<CFastInfosetWriter>(*object));
  EXPECT_TEXT(L"<other @type=r @q=1<a'1'><b'2'><n>" + content, Told<CJsonTextWriter>(*object));
}

TEST_F(OverridingTest, RecordsWriteAttributesOfTheirOwn) {
  const Table table(ClassInfo(kSequence, L"r"), {Prim(L"a", 0), Prim<CMarkingRecord>(L"b", 1), Prim(L"c", 2)});
  const auto object = Read(table, L"<r><a>1</a><b>2</b><c>3</c></r>");
  for (int i = 0; i < 2; ++i) EXPECT_TEXT(L"<r mark=\"b\"><a>1</a><b>2</b><c>3</c></r>", Write(*object));
}

TEST_F(OverridingTest, RecordsThatAreSkippedOrWrittenAtOnceDoAsOthers) {
  const Table child(ClassInfo(kSequence, L"c"), {Prim<CElementInfoSeqPrimOpt>(L"v", 0)});
  const Table group(ClassInfo(kSequence, L"", kInline), {Prim(L"h", 0)});
  Classes() = {&child, &group};
  const Table known = OptionalMembers<Same>();
  const Table called = OptionalMembers<CForwardingRecord>();
  const wchar_t* const members[] = {L"<p>1</p>", L"<e>red</e>", L"<c><v>2</v></c>", L"<h>3</h>",
                                    L"<a/>",     L"<m>4</m>",   L"<p>x</p>",        L"<other/>"};
  for (const auto& context : {CSerializationContext(), With(kUnknownElements), With(kMissingElements)}) {
    for (unsigned mask = 0; mask < 256; ++mask) {
      std::wstring xml, reversed;
      for (unsigned i = 0; i < 8; ++i) {
        if ((mask >> i & 1) == 0) continue;
        xml += members[i];
        reversed = members[i] + reversed;
      }
      for (const std::wstring& content : {xml, reversed}) {
        const std::wstring document = L"<r>" + content + L"</r>";
        EXPECT_TEXT(Outcome(called, document, context), Outcome(known, document, context)) << mask;
      }
    }
  }
}

TEST_F(OverridingTest, ObjectsReadTheTextsThatAreMadeForThem) {
  const Table table(ClassInfo(kSequence, L"r"), {Prim(L"a", 0, ItemType_string)});
  const std::wstring emoji = L"\xD83D\xDE00";
  CElement element(L"r");
  element.FromXml("<r><a>\xF0\x9F\x98\x80</a></r>");
  const char* const json = "{\"r\": {\"a\": \"\xF0\x9F\x98\x80\"}}";
  for (const JsonRoundTrip mode : {JsonRoundTrip_Plain, JsonRoundTrip_Markers, JsonRoundTrip_Namespaces}) {
    CSerializationContext context;
    context.GetJsonContext()->SetSupportRoundtrip(mode);
    CLookingClass fromJson(table), fromElement(table);
    CTableClass other(table);
    fromJson.FromJson(json, context);
    other.FromJson(json, context);
    fromElement.FromXmlElement(&element, context);
    EXPECT_TEXT(L"<r><a>" + emoji + L"</a></r>", fromJson.m_seen);
    EXPECT_TEXT(L"<r><a>" + emoji + L"</a></r>", fromElement.m_seen);
    for (CTableClass* object : {static_cast<CTableClass*>(&fromJson), &other, static_cast<CTableClass*>(&fromElement)})
      EXPECT_TEXT(emoji, (*object)[0].GetString());
  }
}
