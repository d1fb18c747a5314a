#ifndef RKXMLLIB16_TESTS_SUPPORT_VARIANTS_H
#define RKXMLLIB16_TESTS_SUPPORT_VARIANTS_H

#include <vector>

#include "RkXmlLib16/base/SmartPtr.h"
#include "RkXmlLib16/document/XmlWriter.h"
#include "RkXmlLib16/wildcards/Element.h"

// Documents that differ from a given one in one thing.
namespace RkXmlTest {

using namespace RkXmlLib16;

// The element and all that are in it, in document order.
inline void Flatten(CElement& element, std::vector<CElement*>& all) {
  all.push_back(&element);
  for (int i = 0; i < element.GetChildCount(); ++i) Flatten(*element.GetChild(i), all);
}

// One change of a child of an element. False where there is nothing to do.
struct Rule {
  const char* name;
  bool (*apply)(CElement& parent, CElement& child, int at);
};

inline const Rule kRules[] = {
    {"rename",
     [](CElement& parent, CElement& child, int at) {
       parent.RemoveChild(at);
       parent.InsertChild(at, CSmartPtr<CElement>(new CElement(L"renamed", child.GetNamespace())));
       return true;
     }},
    {"unknown attribute",
     [](CElement&, CElement& child, int) {
       child.SetAttribute(L"unknown", L"x");
       return true;
     }},
    {"drop",
     [](CElement& parent, CElement&, int at) {
       parent.RemoveChild(at);
       return true;
     }},
    {"double",
     [](CElement& parent, CElement& child, int at) {
       parent.InsertChild(at, &child);
       return true;
     }},
    {"swap with the next",
     [](CElement& parent, CElement& child, int at) {
       if (at + 1 >= parent.GetChildCount()) return false;
       parent.RemoveChild(at);
       parent.InsertChild(at + 1, &child);
       return true;
     }},
    {"text beside elements",
     [](CElement& parent, CElement&, int) {
       parent.SetText(L"text");
       return true;
     }},
    {"no value",
     [](CElement&, CElement& child, int) {
       child.SetText(L"no \x2603 value");
       return true;
     }},
    {"no text",
     [](CElement&, CElement& child, int) {
       child.SetText(L"");
       return true;
     }},
    {"another number",
     [](CElement&, CElement& child, int) {
       child.SetText(L" -7 ");
       return true;
     }},
    {"nil",
     [](CElement&, CElement& child, int) {
       child.SetAttribute(L"nil", L"true", CXmlWriter::XSI_NAMESPACE.c_str());
       return true;
     }},
    {"unknown type",
     [](CElement&, CElement& child, int) {
       child.SetAttribute(L"type", L"noSuchType", CXmlWriter::XSI_NAMESPACE.c_str());
       return true;
     }},
    {"element inside",
     [](CElement&, CElement& child, int) {
       child.InsertChild(0, CSmartPtr<CElement>(new CElement(L"inner", L"")));
       return true;
     }},
};

}  // namespace RkXmlTest

#endif
