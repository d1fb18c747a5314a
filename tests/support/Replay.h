#ifndef RKXMLLIB16_TESTS_SUPPORT_REPLAY_H
#define RKXMLLIB16_TESTS_SUPPORT_REPLAY_H

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "RkXmlLib16/document/XmlWriter.h"
#include "RkXmlLib16/io/TextStream.h"

namespace RkXmlTest {

// Makes the calls of a writer that a script tells; its words may be parted by blanks:
//   <name <name{uri}              start an element    >          ends it: <a> is empty
//   @name=value @name{uri}=value  an attribute        :Type{uri} the attribute for a type
//   .name=value .name{uri}=value  a text element      +p{uri} ={uri} a prefix for a namespace, the default namespace
//   'text'                        a string            #12        an integer, also as the value of an attribute
//   [ ]                           begin and end the items of a collection       nil  the attribute
inline void Replay(RkXmlLib16::CXmlWriter& w, std::wstring_view script) {
  using namespace RkXmlLib16;
  const auto skip = [&script](wchar_t c) {
    const bool found = !script.empty() && script[0] == c;
    script.remove_prefix(found);
    return found;
  };
  const auto upTo = [&script](const wchar_t* ends) {
    std::wstring part(script.substr(0, std::min(script.find_first_of(ends), script.size())));
    script.remove_prefix(part.size());
    return part;
  };
  const auto uri = [&] {
    std::wstring text = skip(L'{') ? upTo(L"}") : L"";
    skip(L'}');
    return text;
  };
  while (!script.empty()) {
    if (skip(L'<')) {
      const std::wstring name = upTo(L"{ >");
      w.WriteStartElement(name, uri());
    } else if (skip(L'>')) {
      w.WriteEndElement();
    } else if (const bool isAttribute = script[0] == L'@'; isAttribute || script[0] == L'.') {
      script.remove_prefix(1);
      const std::wstring name = upTo(L"{="), ns = uri();
      skip(L'=');
      const ItemType type = skip(L'#') ? ItemType_int : ItemType_string;
      const std::wstring value = upTo(L" >");
      isAttribute ? w.WriteAttributeString(name, ns, value, type) : w.WriteTextElement(name, ns, value, type);
    } else if (skip(L'+')) {
      const std::wstring prefix = upTo(L"{");
      w.AddNamespace(prefix, uri());
    } else if (skip(L'=')) {
      w.SetDefaultNamespace(uri());
    } else if (skip(L':')) {
      const std::wstring name = upTo(L"{ >");
      w.WriteAttributeType(uri(), name, ItemType_string);
    } else if (skip(L'\'')) {
      w.WriteString(upTo(L"'"), ItemType_string);
      skip(L'\'');
    } else if (skip(L'#')) {
      w.WriteString(upTo(L" >"), ItemType_int);
    } else if (skip(L'[')) {
      w.SetContextState(ContextState_CollectionStart);
    } else if (skip(L']')) {
      w.SetContextState(ContextState_CollectionEnd);
    } else if (!skip(L' ') && upTo(L" >") == L"nil") {
      w.WriteAttributeNil();
    }
  }
}

// Makes calls that write at least a character each. All have to flush their stream at 4096 characters, the first one no
// sooner.
template <class Writer>
void ExpectFlushes(const std::vector<std::function<void(Writer&)>>& calls) {
  RkXmlLib16::CUtf8TextStream stream;
  Writer writer(stream);
  writer.Open();
  stream.Append(std::wstring(4000, L' '));
  calls[0](writer);
  EXPECT_LT(4000u, stream.GetLength());
  for (std::size_t i = 1; i < calls.size(); ++i) {
    stream.Flush();
    stream.Append(std::wstring(4095, L' '));
    calls[i](writer);
    EXPECT_GT(4095u, stream.GetLength()) << i;
  }
}

}  // namespace RkXmlTest

#endif
