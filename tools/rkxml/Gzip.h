#ifndef RKXML_TOOL_GZIP_H
#define RKXML_TOOL_GZIP_H

#include "Files.h"

// The bytes in a gzip wrapper (RFC 1952), stored where compression would not shrink them.
Bytes Gzip(const unsigned char* data, std::size_t length);

#endif
