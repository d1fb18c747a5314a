#include "RkXmlLib16/json/JsonReaderDefaultHandler.h"

#include <algorithm>

namespace RkXmlLib16 {

IJsonReaderHandler::~IJsonReaderHandler() = default;
IErrorPathProvider::~IErrorPathProvider() = default;

CJsonReaderDefaultHandler::CJsonReaderDefaultHandler() = default;
CJsonReaderDefaultHandler::~CJsonReaderDefaultHandler() = default;

std::wstring CJsonReaderDefaultHandler::GetPath() const {
  std::wstring path = L"$";
  for (std::size_t i = 0; i < m_depth; ++i) {
    const PathItem& item = m_path[i];
    if (item.kind == Kind::Name) {
      path += L'.';
      path += item.name;
    } else if (item.kind == Kind::Array) {
      path += L'[';
      path += std::to_wstring(std::max(item.arrayIndex, 0));
      path += L']';
    }
  }
  return path;
}

CJsonReaderDefaultHandler::PathItem& CJsonReaderDefaultHandler::Push(Kind kind) {
  if (m_depth == m_path.size()) m_path.emplace_back();
  PathItem& item = m_path[m_depth++];
  item.kind = kind;
  item.arrayIndex = -1;
  return item;
}

void CJsonReaderDefaultHandler::BeginValue() {
  if (m_depth != 0 && m_path[m_depth - 1].kind == Kind::Array) ++m_path[m_depth - 1].arrayIndex;
}

void CJsonReaderDefaultHandler::EndValue() {
  if (m_depth != 0 && m_path[m_depth - 1].kind == Kind::Name) --m_depth;
}

void CJsonReaderDefaultHandler::ReadStartDocument() {
  m_depth = 0;
  if (m_inner != nullptr) m_inner->ReadStartDocument();
}

void CJsonReaderDefaultHandler::ReadEndDocument() {
  if (m_inner != nullptr) m_inner->ReadEndDocument();
}

void CJsonReaderDefaultHandler::ReadName(const std::wstring& name) {
  Push(Kind::Name).name = name;
  if (m_inner != nullptr) m_inner->ReadName(name);
}

void CJsonReaderDefaultHandler::ReadString(const std::wstring& value) {
  BeginValue();
  if (m_inner != nullptr) m_inner->ReadString(value);
  EndValue();
}

void CJsonReaderDefaultHandler::ReadNumber(const std::wstring& lexical) {
  BeginValue();
  if (m_inner != nullptr) m_inner->ReadNumber(lexical);
  EndValue();
}

void CJsonReaderDefaultHandler::ReadStartObject() {
  BeginValue();
  Push(Kind::Object);
  if (m_inner != nullptr) m_inner->ReadStartObject();
}

void CJsonReaderDefaultHandler::ReadEndObject() {
  EndValue();  // of a name that had no value
  if (m_depth != 0) --m_depth;
  if (m_inner != nullptr) m_inner->ReadEndObject();
  EndValue();
}

void CJsonReaderDefaultHandler::ReadStartArray() {
  BeginValue();
  Push(Kind::Array);
  if (m_inner != nullptr) m_inner->ReadStartArray();
}

void CJsonReaderDefaultHandler::ReadEndArray() {
  if (m_depth != 0) --m_depth;
  if (m_inner != nullptr) m_inner->ReadEndArray();
  EndValue();
}

void CJsonReaderDefaultHandler::ReadBool(bool value) {
  BeginValue();
  if (m_inner != nullptr) m_inner->ReadBool(value);
  EndValue();
}

void CJsonReaderDefaultHandler::ReadNull() {
  BeginValue();
  if (m_inner != nullptr) m_inner->ReadNull();
  EndValue();
}

}  // namespace RkXmlLib16
