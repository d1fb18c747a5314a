// What errors of reading tell, in each form of a document, and reading that goes on after them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "RkXmlLib16/RkXmlLib16.h"
#include "fixtures/Records.h"
#include "support/Bytes.h"

using namespace RkXmlTest;

namespace {

CPrimitiveRestrictions AtLeastZero() {
  return CPrimitiveRestrictions(nullptr, -1, -1, L"0", nullptr, nullptr, nullptr, -1, -1, -1);
}
CPrimitiveRestrictions UpToThree() {
  return CPrimitiveRestrictions(nullptr, -1, 3, nullptr, nullptr, nullptr, nullptr, -1, -1, -1);
}

// <rec id="1"><a>1</a><b>2.5</b><c>abc</c><v>1</v><v>2</v><colour>red</colour></rec>
struct Rec : Table {
  Rec()
      : Table(ClassInfo(kSequence, L"rec"),
              {Prim(L"a", 0), Prim(L"b", 1, ItemType_decimal), Prim<CElementInfoSeqPrimOpt>(L"c", 2, ItemType_string),
               new CElementInfoSeqPrimCol(L"v", L"", 3), Enum<CElementInfoSeqEnumOpt>(L"colour", 4)},
              {Attribute(L"id", 5, /*optional=*/false)}, {{}, {}, {}, Ints(L"v", 1, 2)}) {
    m_checkSetter = [](int property, const RkVariant& value) {
      if (property == 1) CXmlObjectHelper::CheckRestriction(L"b", value, ItemType_decimal, AtLeastZero());
      if (property == 2) CXmlObjectHelper::CheckRestriction(L"c", value, ItemType_string, UpToThree());
    };
  }
};

struct List : Table {
  explicit List(const Table& rec)
      : Table(ClassInfo(kSequence, L"r"), {new CElementInfoSeqClsCol(L"rec", L"", 0, kOwn)}, {},
              {[&rec](RkVariant& value) {
                Classes() = {&rec};
                value.SetXmlCollection(new CTableCol(L"rec", L"", 0, -1, CreateClass, 0));
              }}) {}
};

enum class Form { Xml, XmlGZip, Json, FastInfoset };
constexpr Form kForms[] = {Form::Xml, Form::XmlGZip, Form::Json, Form::FastInfoset};

// The document in the given form, from XML text that the tree can hold.
CBinaryData InForm(const std::string& xml, Form form) {
  if (form == Form::Xml || form == Form::XmlGZip) {
    CBinaryData bytes = DataOf(xml);
    if (form == Form::XmlGZip) CRkZip::CompressData(bytes, CompressionType_GZip);
    return bytes;
  }
  CElement tree;
  tree.FromXml(xml.c_str(), CSerializationContext());
  CSerializationContext context;
  context.GetJsonContext()->SetSupportRoundtrip(JsonRoundTrip_Namespaces);
  context.GetNamespaceAliases().Add(L"o", L"urn:o");
  context.GetNamespaceAliases().Add(L"xsi", CXmlWriter::XSI_NAMESPACE.c_str());
  return form == Form::Json ? tree.ToJsonStream(true, XmlEncoding_UTF8, EOLType_LF, context, CompressionType_None)
                            : tree.ToFastInfosetStream(FInfoDecl_None, context, CompressionType_None);
}

void ReadForm(CXmlObjectBase& object, const CBinaryData& bytes, Form form, CSerializationContext& context) {
  context.GetJsonContext()->SetSupportRoundtrip(JsonRoundTrip_Namespaces);
  form == Form::Json ? object.FromJsonStream(bytes, context) : object.FromXmlStream(bytes, context);
}

std::string TextAt(const CBinaryData& bytes, std::uint64_t offset, std::size_t length) {
  const std::string text = BytesOf(bytes);
  return offset < text.size() ? text.substr(offset, length) : "none";
}

struct Mistake {
  const char* rec;  // one element
  RkErrorCode code;
  const wchar_t* path;  // below /r/rec
  RkFacet facet;
  const char* at;         // what stands at the location, of XML text
  const char* jsonAt;     // and of JSON
  const wchar_t* report;  // its end
};

constexpr const char* kRoot = "<r xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'>";

std::vector<Mistake> Mistakes() {
  return {
      {"<rec id='1'><a>x</a><b>2</b><v>1</v></rec>", RkErrorCode_NotANumber, L"/a", RkFacet_None, "<a>x", "\"a\"",
       L"/a: The value [x] can not be converted to a i4 (a: xs:int)"},
      {"<rec id='1'><a>1</a><b>-3</b><v>1</v></rec>", RkErrorCode_FacetMinInclusive, L"/b", RkFacet_MinInclusive,
       "<b>-3", "\"b\"", L"/b: Invalid Value for b [-3] (minInclusive 0)"},
      {"<rec id='1'><a>1</a><b>2</b><c>abcd</c><v>1</v></rec>", RkErrorCode_FacetMaxLength, L"/c", RkFacet_MaxLength,
       "<c>", "\"c\"", L"/c: Invalid Value for c [abcd] (maxLength 3)"},
      {"<rec id='1'><a>1</a><b>2</b><v>1</v><colour>blue</colour></rec>", RkErrorCode_FacetEnumeration, L"/colour",
       RkFacet_Enumeration, "<colour>", "\"colour\"", L"/colour: Unknown colour [blue] (enumeration)"},
      {"<rec id='1'><b>2</b><v>1</v></rec>", RkErrorCode_MissingElement, L"/b", RkFacet_None, "<b>2", "\"b\"",
       L"/b: Failed to find the required child element [a] (found [b])"},
      {"<rec id='1'><a>1</a><b>2</b><z>1</z><v>1</v></rec>", RkErrorCode_UnexpectedElement, L"/z", RkFacet_None, "<z>",
       "\"z\"",
       L"/z: Failed read all the elements held within the element [rec]. The unexpected element [z] remains un "
       L"processed"},
      {"<rec id='1' n='2'><a>1</a><b>2</b><v>1</v></rec>", RkErrorCode_UnexpectedAttribute, L"/@n", RkFacet_None,
       "n='2'", "\"@n\"", L"/@n: Unexpected Attribute found."},
      {"<rec id='y'><a>1</a><b>2</b><v>1</v></rec>", RkErrorCode_NotANumber, L"/@id", RkFacet_None, "id='y'", "\"@id\"",
       L"/@id: The value [y] can not be converted to a i4 (id: xs:int)"},
      {"<rec><a>1</a><b>2</b><v>1</v></rec>", RkErrorCode_MissingAttribute, L"", RkFacet_None, "<rec>", "",
       L": Failed to find the required Attribute [id]."},
      {"<rec id='1'><a xsi:nil='true'>1</a><b>2</b><v>1</v></rec>", RkErrorCode_NotNillable, L"/a/@xsi:nil",
       RkFacet_None, "xsi:nil", "\"@xsi:nil\"", L"/@xsi:nil: Invalid use of 'nil' attribute in non-nillable element."},
      {"<rec id='1'><a>1</a><b>2</b><v>1</v><v>w</v></rec>", RkErrorCode_NotANumber, L"/v[2]", RkFacet_None, "<v>w",
       "\"v\"", L"/v[2]: The value [w] can not be converted to a i4 (v: xs:int)"},
      {"<rec id='1'><a>1</a><b>2</b><v>1</v><v>2</v><v>3</v></rec>", RkErrorCode_TooManyElements, L"", RkFacet_None,
       "<rec", "", L": The Maximum number of [v] elements allowed in this collection is 2"},
      {"<rec id='1'><a>1</a><b>2</b><colour>red</colour></rec>", RkErrorCode_TooFewElements, L"/colour", RkFacet_None,
       "<colour>", "\"colour\"",
       L"/colour: The Minimum number of [v] elements allowed in this collection is 1 (found [colour])"},
      {"<rec id='1'><a>1</a><b>2</b><v>1</v><a>1</a></rec>", RkErrorCode_UnexpectedElement, L"/a[2]", RkFacet_None,
       "<a>1</a></rec>", "", L"remains un processed (repeated, or out of order)"},
      {"<rec id='1'><a>1</a><b>2</b><v xmlns='urn:o'>1</v></rec>", RkErrorCode_UnexpectedElement, L"/v", RkFacet_None,
       "<v ", "\"o:v\"", L"remains un processed (the same name in another namespace, [urn:o] instead of [])"},
  };
}

class ErrorsTest : public TableTest {};

// All errors of a read.
std::vector<std::unique_ptr<const CRkException>> ErrorsOf(const Table& table, const std::string& xml, Form form) {
  struct Keeper : IErrorHandler {
    bool OnError(const CRkException& error) override {
      errors.emplace_back(error.Clone());
      return true;
    }
    std::vector<std::unique_ptr<const CRkException>> errors;
  } keeper;
  CSerializationContext context;
  context.SetErrorHandler(&keeper);
  ReadForm(*CTableClass::Create(table), InForm(xml, form), form, context);
  return std::move(keeper.errors);
}

}  // namespace

TEST_F(ErrorsTest, EveryMistakeIsToldWithItsPlaceCodeAndFacetInEachForm) {
  const Rec rec;
  const List list(rec);
  for (const Mistake& mistake : Mistakes()) {
    const std::string xml =
        std::string(kRoot) + "\r\n " + std::string(mistake.rec) + "\n" + std::string(100, ' ') + "</r>";
    for (const Form form : kForms) {
      SCOPED_TRACE(xml + " form " + std::to_string(static_cast<int>(form)));
      const CBinaryData bytes = InForm(xml, form);
      try {
        CSerializationContext context;
        ReadForm(*CTableClass::Create(list), bytes, form, context);
        ADD_FAILURE() << "accepted";
      } catch (const CRkException& e) {
        // Plain reading stops at what is missing before it looks at what stands there instead.
        if (mistake.code != RkErrorCode_UnexpectedElement) {
          EXPECT_EQ(e.GetCode(), mistake.code);
          EXPECT_EQ(e.GetLocation().GetPath(), std::wstring(L"/r/rec") + mistake.path);
        }
      }
      const auto errors = ErrorsOf(list, xml, form);
      const bool isOtherNamespace = std::string_view(mistake.rec).find("urn:o") != std::string_view::npos;
      ASSERT_EQ(errors.size(), isOtherNamespace ? 2u : 1u);  // the v that counts is missing then, too
      const CRkException& e = *errors[0];
      const CRkLocation& location = e.GetLocation();
      EXPECT_EQ(e.GetCode(), mistake.code);
      if (!isOtherNamespace) {
        EXPECT_EQ(location.GetPath(), std::wstring(L"/r/rec") + mistake.path);
      }
      EXPECT_EQ(e.GetRefusedValue() != nullptr ? e.GetRefusedValue()->facet : RkFacet_None, mistake.facet);
      const std::wstring report = e.GetReport();
      const std::wstring end = mistake.report;
      EXPECT_TRUE(report.size() > end.size() && report.substr(report.size() - end.size()) == end)
          << std::string(e.what());
      EXPECT_EQ(location.IsInflatedOffset(), form == Form::XmlGZip);
      if (form == Form::Xml || form == Form::XmlGZip) {
        EXPECT_EQ(location.GetLine(), 2u);
        EXPECT_EQ(location.GetColumn(), location.GetOffset() - std::string_view(kRoot).size() - 1);
        const CBinaryData plain = InForm(xml, Form::Xml);
        EXPECT_EQ(TextAt(plain, location.GetOffset(), std::string_view(mistake.at).size()), mistake.at);
      } else if (form == Form::Json) {
        EXPECT_GT(location.GetLine(), 2u);
        EXPECT_EQ(TextAt(bytes, location.GetOffset(), std::string_view(mistake.jsonAt).size()), mistake.jsonAt);
      } else {
        EXPECT_EQ(location.GetLine(), 0u);
        EXPECT_TRUE(location.IsKnown());
        EXPECT_LT(static_cast<unsigned char>(TextAt(bytes, location.GetOffset(), 1)[0]), 0x80);
      }
    }
  }
}

TEST_F(ErrorsTest, FiftyMistakesAreFiftyReportsInOneRead) {
  const Rec rec;
  const List list(rec);
  std::string xml = kRoot;
  std::vector<RkErrorCode> codes;
  while (codes.size() < 50) {
    for (const Mistake& mistake : Mistakes()) {
      if (codes.size() == 50 || std::string_view(mistake.rec).find("urn:o") != std::string_view::npos) continue;
      xml += std::string(mistake.rec) + "\n<rec id='1'><a>1</a><b>2</b><v>1</v></rec>";
      codes.push_back(mistake.code);
    }
  }
  xml += "</r>";
  std::vector<std::wstring> paths;
  for (const Form form : kForms) {
    SCOPED_TRACE(static_cast<int>(form));
    CErrorCollector collector(40);
    CSerializationContext context;
    context.SetErrorHandler(&collector);
    const auto object = CTableClass::Create(list);
    ReadForm(*object, InForm(xml, form), form, context);
    EXPECT_EQ(collector.GetErrorCount(), 50u);
    EXPECT_EQ(collector.GetErrors().size(), 40u);
    EXPECT_TRUE(collector.HasErrors());
    const std::wstring report = collector.GetReport();
    EXPECT_EQ(std::count(report.begin(), report.end(), L'\n'), 41);
    EXPECT_NE(report.find(L"and 10 more errors"), std::wstring::npos);
    EXPECT_EQ((*object)[0].GetXmlCollection()->GetCount(), 100);

    const auto errors = ErrorsOf(list, xml, form);
    ASSERT_EQ(errors.size(), codes.size());
    std::vector<std::wstring> here;
    for (std::size_t i = 0; i < codes.size(); ++i) {
      EXPECT_EQ(errors[i]->GetCode(), codes[i]) << i;
      here.push_back(errors[i]->GetLocation().GetPath());
    }
    if (paths.empty()) paths = here;
    EXPECT_EQ(here, paths);
  }
}

TEST_F(ErrorsTest, AHandlerThatStopsGetsWhatPlainReadingThrows) {
  struct Stopper : IErrorHandler {
    bool OnError(const CRkException&) override { return ++calls < stopAt; }
    int calls = 0;
    int stopAt = 1;
  };
  const Rec rec;
  const char* const documents[] = {
      "<rec id='1'><a>x</a><b>y</b><v>1</v></rec>",
      "<rec id='1'><b>2</b><v>1</v></rec>",
      "<rec n='1'><a>x</a></rec>",
      "<rec id='1'><a>1</a><b>2</b><v>1</v><a/></rec>",
      "<rec id='1'><a>1</b></rec>",
  };
  for (const char* const xml : documents) {
    SCOPED_TRACE(xml);
    Stopper stopper;
    CSerializationContext context;
    context.SetErrorHandler(&stopper);
    const auto read = [&](const CSerializationContext& with) {
      return Thrown([&] { CTableClass::Create(rec)->FromXml(xml, with); });
    };
    EXPECT_EQ(read(context), read(CSerializationContext()));
    EXPECT_EQ(stopper.calls, 1);
    stopper = Stopper();
    stopper.stopAt = 2;
    read(context);
    EXPECT_LE(stopper.calls, 2);
  }
}

// A group that is tried and found absent takes its errors back; if it was the only trouble, plain reading would have
// failed of it, and so it is told in the end.
TEST_F(ErrorsTest, ErrorsOfAttemptsThatAreTakenBackAreNotTold) {
  Table group(ClassInfo(kSequence, L"group", kInline), {Prim(L"a", 0), Prim(L"b", 1)});
  Classes() = {&group};
  const Table table(
      ClassInfo(kSequence, L"r"),
      {Cls(L"group", 0, 0, kInline), Prim<CElementInfoSeqPrimOpt>(L"a", 1, ItemType_string), Prim(L"c", 2)});
  const auto codes = [&](const char* xml) {
    std::vector<RkErrorCode> found;
    for (const auto& error : ErrorsOf(table, xml, Form::Xml)) found.push_back(error->GetCode());
    return found;
  };
  using Codes = std::vector<RkErrorCode>;
  EXPECT_EQ(codes("<r><a>1</a><b>2</b><c>3</c></r>"), Codes{});
  EXPECT_EQ(codes("<r><a>x</a><b>2</b><c>3</c></r>"), Codes{RkErrorCode_NotANumber});
  EXPECT_EQ(codes("<r><a>x</a><c>y</c></r>"), Codes{RkErrorCode_NotANumber});
  EXPECT_EQ(codes("<r><a>x</a><c>3</c></r>"), Codes{RkErrorCode_NotANumber});
}

// What is there of a group that is told missing is not told again; items of a collection of groups are found behind
// elements that nobody takes.
TEST_F(ErrorsTest, GroupsAreToldOnceAndInTheOrderOfTheDocument) {
  const Table group(ClassInfo(kSequence, L"group", kInline), {Prim(L"a", 0), Prim(L"b", 1)});
  Classes() = {&group};
  const Table one(ClassInfo(kSequence, L"r"), {MandatoryCls(L"group", 0, 0, kInline), Prim(L"c", 1)}, {},
                  {NewChild(group)});
  const Table many(
      ClassInfo(kSequence, L"r"), {new CElementInfoSeqClsCol(L"group", L"", 0, kInline), Prim(L"c", 1)}, {},
      {[](RkVariant& value) { value.SetXmlCollection(new CTableCol(L"group", L"", 1, -1, CreateClass, 0, kInline)); }});
  const struct {
    const Table& table;
    const char* xml;
    std::wstring told;
  } rows[] = {
      {one, "<r><a>1</a><c>3</c></r>", L"/r/a 501 "},
      {one, "<r><z/><b>1</b><c>x</c></r>", L"/r/z 503 /r/b 501 /r/c 403 "},
      {many, "<r><z/><a>1</a><b>2</b><c>3</c></r>", L"/r/z 503 "},
      {many, "<r><a>1</a><b>2</b><z/><a>x</a><b>2</b><y/><a>1</a><b>2</b><c>y</c></r>",
       L"/r/z 503 /r/a[2] 403 /r/y 503 /r/c 403 "},
      {many, "<r><a>1</a><b>2</b><a>1</a><c>3</c></r>", L"/r/a[2] 503 "},
      {many, "<r><c>3</c></r>", L"/r/c 506 "},
  };
  for (const auto& row : rows) {
    std::wstring told;
    for (const auto& error : ErrorsOf(row.table, row.xml, Form::Xml))
      told += error->GetLocation().GetPath() + L' ' + std::to_wstring(error->GetCode()) + L' ';
    EXPECT_EQ(told, row.told) << row.xml;
  }
}

TEST_F(ErrorsTest, WhatIsLeftOutIsTold) {
  const Rec rec;
  const struct {
    std::string xml;
    RkDropped kind;
    std::uint64_t count;
    std::uint64_t column;
  } kRows[] = {
      {"<rec id='1'><!--x--><a>1</a><!--y--><b>2</b><v>1</v></rec>", RkDropped_Comment, 2, 13},
      {"<?p q?><rec id='1'><a>1</a><b>2</b><v>1</v></rec>", RkDropped_ProcessingInstruction, 1, 1},
      {"<rec id='1'><a>1</a>text<b>2</b><v>1</v></rec>", RkDropped_Text, 4, 1},
      {"<rec id='1'><a>1</a><z/><b>2</b><v>1</v></rec>", RkDropped_Element, 1, 21},
      {"<rec id='1'><a n='1'>1</a><b>2</b><v>1</v></rec>", RkDropped_Attribute, 1, 16},
      {"<rec id='1' n='1'><a>1</a><b>2</b><v>1</v></rec>", RkDropped_Attribute, 1, 13},
      {"<rec id='1'><a>1</a><b>2</b><v n='1'>1</v></rec>", RkDropped_ItemAttribute, 1, 32},
      {"<!DOCTYPE rec [<!ENTITY e SYSTEM 'e'>]><rec id='1'><a>1&e;</a><b>2</b><v>1</v></rec>", RkDropped_Entity, 1, 56},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.xml);
    CErrorCollector collector;
    CSerializationContext context = With(kUnknownElements, &CSerializationContext::SetIgnoreUnknownAttributes);
    context.SetErrorHandler(&collector);
    CTableClass::Create(rec)->FromXml(row.xml.c_str(), context);
    EXPECT_FALSE(collector.HasErrors());
    ASSERT_EQ(collector.GetDroppedCount(), 1u);
    const CRkDropped& dropped = collector.GetDropped()[0];
    EXPECT_EQ(dropped.kind, row.kind);
    EXPECT_EQ(dropped.count, row.count);
    EXPECT_EQ(dropped.location.GetLine(), 1u);
    EXPECT_EQ(dropped.location.GetColumn(), row.column);
  }

  CErrorCollector collector;
  CSerializationContext context;
  context.SetErrorHandler(&collector);
  const std::string xml = "<rec id='1'><a>1</a><b>2</b><v>1</v></rec>" + std::string(200, ' ');
  const auto readWithTail = [&](Form form) {
    collector.Clear();
    ReadForm(*CTableClass::Create(rec), DataOf(BytesOf(InForm(xml, form)) + " tail"), form, context);
    ASSERT_EQ(collector.GetDroppedCount(), 1u);
    EXPECT_EQ(collector.GetDropped()[0].kind, form == Form::Json ? RkDropped_TrailingText : RkDropped_TrailingBytes);
    EXPECT_EQ(collector.GetDropped()[0].count, form == Form::Json ? 4u : 5u);
  };
  for (const Form form : {Form::XmlGZip, Form::Json, Form::FastInfoset}) readWithTail(form);
}

TEST_F(ErrorsTest, ReportsAreShortWhateverTheDocument) {
  const Rec rec;
  const std::wstring text(100000, L'x');
  const std::wstring xml = L"<rec id='1'><a>" + text + L"</a><b>2</b><v>1</v></rec>";
  const std::wstring json = L"{\"rec\":{\"a\":\"" + text + L"\"}}";
  const auto longest = [&](auto&& read) {
    try {
      read();
      return std::wstring();
    } catch (const CRkException& e) {
      EXPECT_GT(e.GetFullMessage().size(), text.size());
      return e.GetReport();
    }
  };
  const std::wstring ofXml = longest([&] { CTableClass::Create(rec)->FromXml(xml.c_str(), CSerializationContext()); });
  EXPECT_EQ(std::count(ofXml.begin(), ofXml.end(), L'x'), 38) << std::string(ofXml.begin(), ofXml.end());
  EXPECT_LT(ofXml.size(), 200u);
  const std::wstring ofJson =
      longest([&] { CTableClass::Create(rec)->FromJson(json.c_str(), CSerializationContext()); });
  EXPECT_LT(ofJson.size(), 200u) << std::string(ofJson.begin(), ofJson.end());
}

TEST_F(ErrorsTest, ProgramsThatCatchStdExceptionsGetTheReport) {
  const Rec rec;
  try {
    WithStdExceptions(
        [&] { CTableClass::Create(rec)->FromXml(L"<rec id='1'><a>\x00E4</a></rec>", CSerializationContext()); });
    ADD_FAILURE() << "accepted";
  } catch (const std::runtime_error& e) {
    EXPECT_STREQ(e.what(), "1:13: /rec/a: The value [\xC3\xA4] can not be converted to a i4 (a: xs:int)");
    EXPECT_EQ(dynamic_cast<const CRkStdException&>(e).GetOriginal().GetCode(), RkErrorCode_NotANumber);
  }
  EXPECT_EQ(WithStdExceptions([] { return 7; }), 7);
}

TEST_F(ErrorsTest, ErrorsOfWritingNameTheObjectInTheTree) {
  Table item(ClassInfo(kSequence, L"item"), {Prim(L"price", 0, ItemType_decimal, false, nullptr, AtLeastZero())});
  const Table order(ClassInfo(kSequence, L"order"), {new CElementInfoSeqClsCol(L"item", L"", 0, kOwn)}, {},
                    {[&item](RkVariant& value) {
                      Classes() = {&item};
                      value.SetXmlCollection(new CTableCol(L"item", L"", 0, -1, CreateClass, 0));
                    }});
  const auto object = CTableClass::Create(order);
  object->FromXml("<order><item><price>1</price></item><item><price>-3</price></item></order>",
                  CSerializationContext());
  try {
    Write(*object);
    ADD_FAILURE() << "written";
  } catch (const CRkException& e) {
    EXPECT_STREQ(e.what(), "/order/item[2]/price: Invalid Value for price [-3] (minInclusive 0)");
    EXPECT_EQ(e.GetPath(), L"");
  }
}

// The message of each row with something for its conversions.
TEST(ErrorTableTest, EveryMessageHasTheCodeOfItsRow) {
  struct Row {
    int code;
    std::vector<std::wstring> formats;
  };
  const Row rows[] = {
#define RKXML_ERROR(number, name, meaning, ...) {number, {__VA_ARGS__}},
#include "RkXmlLib16/base/ErrorTable.h"
  };
  int last = 0;
  for (const Row& row : rows) {
    if (row.code != RkErrorCode_XmlMalformed) {
      EXPECT_GT(row.code, last);
    }
    last = std::max(last, row.code);
    if (row.code > RkErrorCode_InvalidValue && row.code <= RkErrorCode_FacetFractionDigits) continue;
    for (std::wstring message : row.formats) {
      for (std::size_t at = 0; (at = message.find(L'%')) != std::wstring::npos;)
        message.replace(at, message[at + 1] == L'l' ? 3 : 2, message[at + 1] == L'd' ? L"-7" : L"?");
      EXPECT_EQ(CRkException(message, L"/p").GetCode(), row.code) << std::string(message.begin(), message.end());
    }
  }
  EXPECT_EQ(CRkException(L"The application's own").GetCode(), RkErrorCode_None);
  EXPECT_STREQ(NameOfErrorCode(RkErrorCode_FacetPattern), "FacetPattern");
}
