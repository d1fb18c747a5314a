// The texts of the tree in everyday use: what is done with a std::wstring compiles and gives the same.
#include <algorithm>
#include <cwchar>
#include <map>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include "Expect.h"
#include "RkXmlLib16/RkXmlLib16.h"

using namespace RkXmlTest;

namespace {

// Every result in one text. Instantiated with std::wstring, which is right by definition.
template <class Text>
std::wstring UseAsString(const Text& text) {
  const std::wstring wide = L"item";
  const std::wstring_view view = wide;
  const wchar_t* const pointer = L"iten";
  std::wostringstream out;

  out << text << L' ' << text + wide << L' ' << wide + text << L' ' << text + pointer << L' ' << pointer + text << L' '
      << text + L'c' << L' ' << L'c' + text << L' ' << text + text << L' ' << L"a" + text + L"b" + text + wide << L' '
      << std::wstring(L"moved ") + text;

  out << L'\n';
  const auto compare = [&](const auto& other) {
    out << (text == other) << (other == text) << (text != other) << (other != text) << (text < other) << (other < text)
        << (text <= other) << (other <= text) << (text > other) << (other > text) << (text >= other) << (other >= text);
  };
  compare(wide);
  compare(view);
  compare(pointer);
  compare(L"");
  compare(text);

  out << L'\n' << text.find(L"em") << text.find(L't') << text.find(wide) << text.find(view, 1) << text.rfind(L'i')
      << text.find_first_of(L"mt") << text.find_last_not_of(wide) << (text.find(L"no") == std::wstring::npos)
      << (text.compare(wide) == 0) << (text.compare(pointer) < 0) << (text.compare(1, 2, L"te") == 0)
      << (text.compare(text) == 0);
  const std::wstring tail = text.substr(1), middle = text.substr(1, 2), all = text.substr();
  out << tail << middle << all << text.substr(0, 1) + L"?";

  out << L'\n' << text.front() << text.back() << text.at(1) << text[2] << text.size() << text.length() << text.empty();
  for (const wchar_t c : text) out << c << L'.';
  out << std::wstring(text.rbegin(), text.rend()) << std::wcslen(text.c_str()) << (text.data() == text.c_str());

  out << L'\n';
  for (const bool chosen : {true, false}) {
    const auto literal = chosen ? text : L"none";
    const std::wstring left = chosen ? L"none" : text, other = chosen ? text : wide, temporary = chosen ? text : all;
    out << literal << left << other << temporary;
  }

  std::wstring copy = text, direct(text), braced{text};
  copy = text;
  copy += text;
  direct.append(text).insert(0, text).replace(0, 1, text);
  std::map<std::wstring, int> map{{text, 1}};
  ++map[text];
  const std::vector<std::wstring> list = {text, copy};
  const std::wstring& reference = text;
  out << L'\n' << copy << direct << braced << map.at(text) << map.count(text)
      << std::count(list.begin(), list.end(), text) << reference << wide.find(text) << wide.compare(text)
      << (map.find(text) != map.end());
  return out.str();
}

}  // namespace

TEST(XmlText, IsUsedLikeAString) {
  CXmlDocument document;
  document.LoadXml("<item a='1'>item</item>");
  const auto text = document.GetDocumentElement()->GetText();
  EXPECT_TEXT(UseAsString(std::wstring(L"item")), UseAsString(text));
  EXPECT_TRUE((std::is_same_v<std::remove_const_t<decltype(text)>, CXmlText>));
}

TEST(XmlText, AttributesAreUsedLikeAVector) {
  CXmlDocument document;
  document.LoadXml("<r a='1' b='2' c='3'><none/></r>");
  auto& attributes = document.GetDocumentElement()->GetAttributes();
  EXPECT_TEXT(L"1", attributes.front()->GetValue());
  EXPECT_TEXT(L"2", attributes.at(1)->GetValue());
  EXPECT_TEXT(L"3", attributes.back()->GetValue());
  EXPECT_THROWS(CRkInvalidParamException, L"Index 3 is out of range, use 0 - 3", attributes.at(3));
  std::wstring names;
  for (auto& attribute : attributes) names += attribute->GetLocalName();
  const auto isB = [](const CXmlAttribute* attribute) { return attribute->GetLocalName() == L"b"; };
  const auto found = std::find_if(attributes.begin(), attributes.end(), isB);
  EXPECT_TEXT(L"abc b", names + L" " + (*found)->GetLocalName());
  EXPECT_EQ(3u, std::vector<CXmlAttribute*>(attributes.begin(), attributes.end()).size());
  EXPECT_TRUE(document.GetDocumentElement()->GetFirstElement()->GetAttributes().empty());
}
