#include "RkXmlLib16/base/Location.h"

namespace RkXmlLib16 {

std::wstring CRkLocation::ToString() const {
  std::wstring place;
  if (m_line != 0)
    place = std::to_wstring(m_line) + L':' + std::to_wstring(m_column);
  else if (IsKnown())
    place = L'@' + std::to_wstring(m_offset);
  if (m_fileName.empty() || place.empty()) return m_fileName + place;
  return m_fileName + L':' + place;
}

}  // namespace RkXmlLib16
