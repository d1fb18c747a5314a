#ifndef RKXMLLIB16_IO_FILENAME_H
#define RKXMLLIB16_IO_FILENAME_H

#include <string>
#include <type_traits>
#include <utility>

#include "RkXmlLib16/base/Export.h"

namespace RkXmlLib16 {

// The name of a file. Narrow names and std::filesystem::path are handed to the system byte for byte, whatever the
// locale; only wide names go through it (UnicodeToMultiByte).
//
//   order.ToXmlFile("order.xml");
//   order.ToXmlFile(std::filesystem::path(folder) / "order.xml");
class RKXML_EXPORT CFileName {
 public:
  CFileName(const char* name);  // null is the empty name, also below
  CFileName(std::string name);
  // std::filesystem::path, without its header.
  template <class Path, class = std::enable_if_t<std::is_same_v<typename Path::string_type, std::string>>>
  CFileName(const Path& path) : CFileName(std::string(path.native())) {}
  explicit CFileName(const wchar_t* name);

  // What the system is given.
  const std::string& GetBytes() const noexcept { return m_bytes; }
  // What messages show: a wide name as it was, the UTF-8 of others.
  const std::wstring& GetText() const noexcept { return m_text; }

 private:
  std::string m_bytes;
  std::wstring m_text;
};

}  // namespace RkXmlLib16

#endif
