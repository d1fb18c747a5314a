#include "RkXmlLib16/binding/ParentElementInfo.h"

#include "RkXmlLib16/base/internal/TextOrEmpty.h"

namespace RkXmlLib16Data {

using RkXmlLib16::TextOrEmpty;

CParentElementInfo::CParentElementInfo(RkXmlLib16::XmlElementGroupType groupType,
                                       RkXmlLib16::XmlElementType elementType, const wchar_t* name, const wchar_t* ns,
                                       bool strictAttributes, bool contentMayBeEmpty, int simpleContentProperty,
                                       RkXmlLib16::ItemType simpleContentType, const wchar_t* simpleContentFormat,
                                       bool simpleContentAsText)
    : m_groupType(groupType),
      m_elementType(elementType),
      m_elementName(TextOrEmpty(name)),
      m_namespace(TextOrEmpty(ns)),
      m_strictAttributes(strictAttributes),
      m_contentMayBeEmpty(contentMayBeEmpty),
      m_simpleContentProperty(simpleContentProperty),
      m_simpleContentType(simpleContentType),
      m_simpleContentFormat(TextOrEmpty(simpleContentFormat)),
      m_simpleContentAsText(simpleContentAsText) {}

CParentElementInfo::~CParentElementInfo() = default;

}  // namespace RkXmlLib16Data
