#ifndef RKXML_TOOL_SCAN_H
#define RKXML_TOOL_SCAN_H

#include <RkXmlLib16/RkXmlLib16.h>

#include <string>
#include <utility>
#include <vector>

#include "Files.h"
#include "Notes.h"
#include "Options.h"
#include "Progress.h"
#include "Tree.h"

// What one look at a document, from its start to its end, tells about it.
struct Scan {
  unsigned long long elements = 0;
  unsigned long long attributes = 0;
  unsigned long long depth = 0;
  unsigned long long characters = 0;  // as the limit counts them: a name once
  unsigned long long mixed = 0;       // elements with text beside child elements
  std::wstring root;
  bool isFastInfoset = false;
  std::vector<std::pair<std::wstring, std::wstring>> declared;  // prefix and namespace, in the order of the prefixes
  std::vector<UsedNamespace> namespaces;                        // in the order of the document
  // Whether a form that has text of an element in one place, and each prefix at the root, can be written tag by tag: no
  // prefix has two meanings, no namespace two prefixes, and no text stands behind a child element.
  bool isPlain = true;
};

// Reads the document, with the limits of the options, and gives `context` its prefixes and default namespace. Answers
// the questions of `notes`.
Scan ScanDocument(const InputFile& file, const Options& options, RkXmlLib16::CSerializationContext& context,
                  Progress& progress, Notes& notes);
// The same by way of a tree of the whole document, which takes JSON in any order.
Scan ScanWhole(const InputFile& file, const Options& options, RkXmlLib16::CSerializationContext& context);

#endif
