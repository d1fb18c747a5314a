// Where elements, attributes and errors of XML text stand.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "RkXmlLib16/RkXmlLib16.h"
#include "RkXmlLib16/document/internal/Source.h"
#include "support/Bytes.h"
#include "support/TempFile.h"
#include "support/Tree.h"

using namespace RkXmlLib16;

namespace {

std::string Utf16(std::string_view utf8, bool bigEndian, bool mark) {
  std::string bytes;
  const auto put = [&](unsigned unit) {
    const char high = static_cast<char>(unit >> 8);
    const char low = static_cast<char>(unit);
    bytes += bigEndian ? high : low;
    bytes += bigEndian ? low : high;
  };
  if (mark) put(0xFEFF);
  for (const wchar_t c : CEncoder::Utf8ToUnicode(utf8)) {
    const auto code = static_cast<unsigned>(c);
    if (code > 0xFFFF) {
      put(0xD7C0 + (code >> 10));
      put(0xDC00 + (code & 0x3FF));
    } else {
      put(code);
    }
  }
  return bytes;
}

const CXmlElement* FindElement(const CXmlElement* element, std::wstring_view name) {
  if (element == nullptr || element->GetLocalName() == name) return element;
  for (const CXmlElement* child = element->GetFirstElement(); child != nullptr; child = child->GetNextSiblingElement())
    if (const CXmlElement* found = FindElement(child, name)) return found;
  return nullptr;
}

struct Place {
  const char* name;
  std::string bytes;
  std::uint64_t line, column, offset;  // of the element e
  std::uint64_t attributeColumn;       // of its attribute b, on the same line
};

std::vector<Place> Places() {
  const std::string wide = "<r>\xC3\xA4\xF0\x9F\x98\x80<e a='1' b='2'/></r>";
  return {
      {"one line", "<r><e a='1' b='2'/></r>", 1, 4, 3, 13},
      {"LF", "<r>\n\n  <e a='>' b='2'/></r>", 3, 3, 7, 12},
      {"CR LF", "<r>\r\n\r\n\t<e a='1' b='2'/></r>", 3, 2, 8, 11},
      {"CR", "<r>\r\r<e a='1' b='2'/></r>", 3, 1, 5, 10},
      {"characters of two and four bytes", wide, 1, 6, 9, 15},
      {"byte order mark", "\xEF\xBB\xBF<r><e a='1' b='2'/></r>", 1, 4, 6, 13},
      {"UTF-16LE", Utf16(wide, false, true), 1, 6, 14, 15},
      {"UTF-16BE", Utf16(wide, true, true), 1, 6, 14, 15},
      {"Latin-1", "<?xml version='1.0' encoding='ISO-8859-1'?>\n<r>\xE4<e a='1' b='2'/></r>", 2, 5, 48, 14},
      {"CDATA and comments before", "<r><![CDATA[\n<e]]><!--\n--><e a='1' b='2'/></r>", 3, 4, 26, 13},
      {"prefixes and declarations", "<r><e b:b='1' xmlns='u' xmlns:b='v' a='' b='2'/></r>", 1, 4, 3, 7},
      {"the reference to an entity", "<!DOCTYPE r [<!ENTITY x \"<e b='1'/>\">]>\n<r>\n &x;</r>", 3, 2, 45, 2},
      {"a default of the DTD", "<!DOCTYPE r [<!ATTLIST e b CDATA 'x'>]><r><e a='1'/></r>", 1, 43, 42, 43},
  };
}

}  // namespace

TEST(LocationTest, ElementsAndAttributesStandWhereTheyBegin) {
  for (const Place& place : Places()) {
    SCOPED_TRACE(place.name);
    CXmlDocument document;
    RkXmlTest::Load(document, place.bytes);
    const CXmlElement* const e = FindElement(document.GetDocumentElement(), L"e");
    ASSERT_NE(e, nullptr);
    const CRkLocation location = e->GetLocation();
    EXPECT_EQ(location.GetLine(), place.line);
    EXPECT_EQ(location.GetColumn(), place.column);
    EXPECT_EQ(location.GetOffset(), place.offset);
    EXPECT_EQ(location.GetPath(), e->GetXPath());
    const CXmlAttribute* b = nullptr;
    for (const CXmlAttribute* attribute : e->GetAttributes())
      if (b == nullptr && attribute->GetLocalName() == L"b") b = attribute;
    ASSERT_NE(b, nullptr);
    EXPECT_EQ(b->GetLocation().GetLine(), place.line);
    EXPECT_EQ(b->GetLocation().GetColumn(), place.attributeColumn);
  }
}

TEST(LocationTest, TheKindOfInputShowsInTheLocation) {
  CXmlDocument document;
  document.LoadXml(L"<r>\n\x1F600<e/></r>");
  CRkLocation location = document.GetDocumentElement()->GetFirstElement()->GetLocation();
  EXPECT_TRUE(location.IsWideOffset());
  EXPECT_EQ(location.GetOffset(), 5u);
  EXPECT_EQ(location.ToString(), L"2:2");

  const std::string text = "<r>\n" + std::string(100, ' ') + "<e/></r>";
  CBinaryData bytes = RkXmlTest::DataOf(text);
  CRkZip::CompressData(bytes, CompressionType_GZip);
  const RkXmlTest::CTempFile file;
  CFileBinaryStream(file.Name().c_str(), XmlEncoding_None, bytes).ToFile();
  document.SetFirstOffset(std::uint64_t{5} << 30);
  document.Load(file.Name().c_str());
  location = document.GetDocumentElement()->GetFirstElement()->GetLocation();
  EXPECT_TRUE(location.IsInflatedOffset());
  EXPECT_EQ(location.GetOffset(), (std::uint64_t{5} << 30) + 104);
  EXPECT_EQ(location.ToString(), file.Name() + L":2:101");
}

TEST(LocationTest, ErrorsOfWellFormednessTellThePlaceOfTheError) {
  const struct {
    const char* text;
    std::uint64_t line, column, offset;
    const wchar_t* path;
  } kErrors[] = {
      {"<r>\n  <a></b></r>", 2, 8, 11, L"/r/a"},
      {"<r>\n<a", 2, 1, 4, L"/r"},
      {"text", 1, 1, 0, L""},
      {"<r/>\n<r/>", 2, 1, 5, L""},
      {"<r>\xC3\xA4 <a b='1' b='2'/></r>", 1, 15, 15, L"/r"},
  };
  for (const auto& error : kErrors) {
    SCOPED_TRACE(error.text);
    CXmlDocument document;
    try {
      document.LoadXml(error.text);
      ADD_FAILURE() << "accepted";
    } catch (const CRkException& e) {
      EXPECT_EQ(e.GetLocation().GetLine(), error.line);
      EXPECT_EQ(e.GetLocation().GetColumn(), error.column);
      EXPECT_EQ(e.GetLocation().GetOffset(), error.offset);
      EXPECT_EQ(e.GetLocation().GetPath(), error.path);
    }
  }
}

// Whatever the order in which places are asked for, over several marks.
TEST(LocationTest, PlacesInALargeInputAgreeWithACountFromTheStart) {
  std::string text;
  for (int i = 0; i < 200000; ++i) text += i % 3 == 0 ? "abc\xC3\xA4\r\n" : i % 3 == 1 ? "\n" : "xyz xyz xyz\r";
  CSource source(text, CSource::Encoding::Utf8);
  for (const std::size_t at :
       {text.size() - 7, std::size_t{3}, text.size() / 2, text.size() / 2 + 4, text.size() / 3}) {
    CSource fresh(text, CSource::Encoding::Utf8);
    const CRkLocation expected = fresh.Locate(at, L"");
    const CRkLocation location = source.Locate(at, L"");
    EXPECT_EQ(location.GetLine(), expected.GetLine());
    EXPECT_EQ(location.GetColumn(), expected.GetColumn());
    EXPECT_GT(location.GetLine(), at / 20);
  }
}
