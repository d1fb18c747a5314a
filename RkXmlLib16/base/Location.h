#ifndef RKXMLLIB16_BASE_LOCATION_H
#define RKXMLLIB16_BASE_LOCATION_H

#include <cstdint>
#include <string>
#include <utility>

#include "RkXmlLib16/base/Export.h"

namespace RkXmlLib16 {

// A place in a document that is or was read: of an element's start tag or an attribute of XML text (W3C XML 1.0), of a
// member or array item of JSON (RFC 8259), of the octet at which an element or attribute of a Fast Infoset (ITU-T
// X.891) begins, or of what the parser could not read. Content that an entity stands for has the place of the
// reference. What is not known is empty or 0, so a default location is known by nothing.
//
//   location.ToString();   // "order.xml:12:9"
class RKXML_EXPORT CRkLocation {
 public:
  static constexpr std::uint64_t kNoOffset = UINT64_MAX;

  CRkLocation() = default;
  explicit CRkLocation(std::wstring path) : m_path(std::move(path)) {}

  // The name as it was passed to the call that read the file; empty for other input.
  const std::wstring& GetFileName() const noexcept { return m_fileName; }
  // Both from 1, 0 when not known. Columns count characters (code points) of the decoded text, and a byte order mark is
  // none. A line ends after LF, CR or CR LF. A Fast Infoset has neither.
  std::uint64_t GetLine() const noexcept { return m_line; }
  std::uint64_t GetColumn() const noexcept { return m_column; }
  // From 0: bytes of the document as given, or wchar_t where it was given as wide text; kNoOffset when not known. Of
  // compressed input it counts the bytes that come out of the wrapper.
  std::uint64_t GetOffset() const noexcept { return m_offset; }
  bool IsWideOffset() const noexcept { return m_isWide; }
  bool IsInflatedOffset() const noexcept { return m_isInflated; }
  // The element or attribute in the manner of XPath, "/order/item[2]/@sku", or "$.order.item[1]" inside JSON that is
  // not well-formed; empty when there is none.
  const std::wstring& GetPath() const noexcept { return m_path; }

  // Whether the place in the input is known, be it by offset only.
  bool IsKnown() const noexcept { return m_offset != kNoOffset; }
  // "order.xml:12:9"; without a file "12:9"; without a line "order.fi:@1234" or "@1234"; empty when nothing is known.
  std::wstring ToString() const;

  void SetFileName(std::wstring name) { m_fileName = std::move(name); }
  void SetLineAndColumn(std::uint64_t line, std::uint64_t column) noexcept {
    m_line = line;
    m_column = column;
  }
  void SetOffset(std::uint64_t offset, bool isWide, bool isInflated) noexcept {
    m_offset = offset;
    m_isWide = isWide;
    m_isInflated = isInflated;
  }
  void SetPath(std::wstring path) { m_path = std::move(path); }

 private:
  std::wstring m_fileName;
  std::wstring m_path;
  std::uint64_t m_line = 0;
  std::uint64_t m_column = 0;
  std::uint64_t m_offset = kNoOffset;
  bool m_isWide = false;
  bool m_isInflated = false;
};

}  // namespace RkXmlLib16

#endif
