#ifndef RKXML_TOOL_ENCODING_H
#define RKXML_TOOL_ENCODING_H

#include <string>
#include <string_view>

// The encoding that the XML declaration names; empty where it names none.
std::string_view DeclaredEncoding(std::string_view bytes);

bool IsFastInfoset(std::string_view bytes);

// The encoding of XML text, told as the parser tells it.
std::string EncodingOf(std::string_view bytes);

#endif
