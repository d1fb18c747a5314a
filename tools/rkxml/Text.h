#ifndef RKXML_TOOL_TEXT_H
#define RKXML_TOOL_TEXT_H

#include <RkXmlLib16/RkXmlLib16.h>

#include <string>
#include <string_view>

// Text of documents and of the library for a terminal: UTF-8 on one line, control characters shown as '?', so that no
// document can steer the terminal.
std::string ForTerminal(const std::wstring& text);
std::string ForTerminal(std::string_view text);

// The report of a failure.
std::string Reason(const RkXmlLib16::CRkException& e);

// Digits in groups of three: 1,234,567.
std::string Grouped(unsigned long long number);

#endif
