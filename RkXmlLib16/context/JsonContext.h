#ifndef RKXMLLIB16_CONTEXT_JSONCONTEXT_H
#define RKXMLLIB16_CONTEXT_JSONCONTEXT_H

#include <string>

#include "RkXmlLib16/base/Enumerations.h"
#include "RkXmlLib16/base/Export.h"

namespace RkXmlLib16 {

// The JSON settings of a CSerializationContext (see GetJsonContext there).
//
//   ctx.GetJsonContext()->SetStrictOutput(true);   // RFC 8259 text, whatever the values hold
//   ctx.GetJsonContext()->GetAllowComments(true);  // accept // and /* */ when reading
class RKXML_EXPORT CJsonContext {
 public:
  CJsonContext();
  CJsonContext(const CJsonContext& other);
  CJsonContext& operator=(const CJsonContext& other);
  virtual ~CJsonContext();

  // How much of the XML structure the text keeps, written and read. Namespaces (everything) at first.
  JsonRoundTrip GetSupportRoundtrip() const noexcept { return m_roundTrip; }
  void SetSupportRoundtrip(JsonRoundTrip mode) noexcept { m_roundTrip = mode; }
  // Reading: the name of an element that the whole JSON value becomes the content of; empty (at first) for none.
  const std::wstring& GetRootElementName() const noexcept { return m_rootElementName; }
  // A null name is an empty one.
  void SetRootElementName(const wchar_t* name);
  // Reading: accept comments where white space may stand. Off at first; the setter has the name of the getter.
  bool GetAllowComments() const noexcept { return m_allowComments; }
  void GetAllowComments(bool allow) noexcept { m_allowComments = allow; }
  // Writing: produce text that every RFC 8259 parser reads: strings and names escaped, no member without a value, no
  // comment, numbers that JSON cannot write as strings. Off at first.
  bool GetStrictOutput() const noexcept { return m_strictOutput; }
  void SetStrictOutput(bool strict) noexcept { m_strictOutput = strict; }

 private:
  JsonRoundTrip m_roundTrip = JsonRoundTrip_Namespaces;
  std::wstring m_rootElementName;
  bool m_allowComments = false;
  bool m_strictOutput = false;
};

}  // namespace RkXmlLib16

#endif
