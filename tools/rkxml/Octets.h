#ifndef RKXML_TOOL_OCTETS_H
#define RKXML_TOOL_OCTETS_H

#include <string_view>

// Lists the octets of a Fast Infoset document on standard output: offset, octets, what they mean, one item a line.
// Throws DocumentError where the octets make no sense; what came before is listed.
void ShowOctets(std::string_view bytes);

#endif
