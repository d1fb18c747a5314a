#ifndef RKXMLLIB16_BINDING_PARENTELEMENTINFO_H
#define RKXMLLIB16_BINDING_PARENTELEMENTINFO_H

#include <atomic>
#include <string>
#include <typeinfo>

#include "RkXmlLib16/base/Enumerations.h"
#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/base/SharedName.h"

namespace RkXmlLib16Data {

class CElementInfo;

// Describes a generated class as a whole: its content model, its type name and its simple content. Static; what it
// describes never changes, and what it remembers of the class is atomic, so threads share it freely.
class RKXML_EXPORT CParentElementInfo {
 public:
  // `name` and `ns` are those of the class's type, as xsi:type names it. `strictAttributes`: an attribute that no
  // record accepts is an error, else it is dropped. `contentMayBeEmpty`: a choice with an optional member.
  // `simpleContentProperty`: the property that holds the element's text, -1 without one; `simpleContentType` is its
  // kind (0 for none), `simpleContentFormat` (null for none) the format it is written with, and `simpleContentAsText`
  // stores the text as it was read instead of converting it.
  CParentElementInfo(RkXmlLib16::XmlElementGroupType groupType, RkXmlLib16::XmlElementType elementType,
                     const wchar_t* name, const wchar_t* ns, bool strictAttributes, bool contentMayBeEmpty,
                     int simpleContentProperty, RkXmlLib16::ItemType simpleContentType,
                     const wchar_t* simpleContentFormat, bool simpleContentAsText);
  CParentElementInfo(const CParentElementInfo&) = delete;
  CParentElementInfo& operator=(const CParentElementInfo&) = delete;
  virtual ~CParentElementInfo();

  RkXmlLib16::XmlElementGroupType GetGroupType() const noexcept { return m_groupType; }
  RkXmlLib16::XmlElementType GetElementType() const noexcept { return m_elementType; }
  const std::wstring& GetElementName() const noexcept { return m_elementName; }
  const std::wstring& GetNamespace() const noexcept { return m_namespace.Get(); }
  bool HasStrictAttributes() const noexcept { return m_strictAttributes; }
  bool CanContentBeEmpty() const noexcept { return m_contentMayBeEmpty; }
  int GetSimpleContentProperty() const noexcept { return m_simpleContentProperty; }
  RkXmlLib16::ItemType GetSimpleContentType() const noexcept { return m_simpleContentType; }
  const std::wstring& GetSimpleContentFormat() const noexcept { return m_simpleContentFormat; }
  bool IsSimpleContentText() const noexcept { return m_simpleContentAsText; }

  // Remembers one class that cannot be nil, so that its objects need not be asked again.
  bool IsKnownNotNillable(const std::type_info& type) const noexcept {
    return m_notNillable.load(std::memory_order_relaxed) == &type;
  }
  void SetNotNillable(const std::type_info& type) const noexcept {
    m_notNillable.store(&type, std::memory_order_relaxed);
  }
  // Remembers one array of element records none of which may have attributes, for the same reason.
  bool AreKnownWithoutAttributes(CElementInfo* const* records) const noexcept {
    return m_withoutAttributes.load(std::memory_order_relaxed) == records;
  }
  void SetWithoutAttributes(CElementInfo* const* records) const noexcept {
    m_withoutAttributes.store(records, std::memory_order_relaxed);
  }

 private:
  RkXmlLib16::XmlElementGroupType m_groupType;
  RkXmlLib16::XmlElementType m_elementType;
  std::wstring m_elementName;
  RkXmlLib16::CSharedName m_namespace;
  bool m_strictAttributes;
  bool m_contentMayBeEmpty;
  int m_simpleContentProperty;
  RkXmlLib16::ItemType m_simpleContentType;
  std::wstring m_simpleContentFormat;
  bool m_simpleContentAsText;
  mutable std::atomic<const std::type_info*> m_notNillable{nullptr};
  mutable std::atomic<CElementInfo* const*> m_withoutAttributes{nullptr};
};

}  // namespace RkXmlLib16Data

#endif
