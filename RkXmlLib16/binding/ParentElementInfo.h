#ifndef RKXMLLIB16_BINDING_PARENTELEMENTINFO_H
#define RKXMLLIB16_BINDING_PARENTELEMENTINFO_H

#include <string>

#include "RkXmlLib16/base/Enumerations.h"
#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/base/SharedName.h"

namespace RkXmlLib16Data {

// Describes a generated class as a whole: its content model, its type name and its simple content. Static; it never
// changes, so threads share it freely.
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

  // Whether the objects are CModelObjects, which know what properties are set and whether they are nil.
  bool IsOfModel() const noexcept { return m_isOfModel; }
  void SetOfModel() noexcept { m_isOfModel = true; }

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
  bool m_isOfModel = false;
};

}  // namespace RkXmlLib16Data

#endif
