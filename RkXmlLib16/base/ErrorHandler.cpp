#include "RkXmlLib16/base/ErrorHandler.h"

#include "RkXmlLib16/base/Exception.h"

namespace RkXmlLib16 {

namespace {

constexpr std::size_t kLongestName = 40;

// One and several of each kind, in the order of RkDropped.
constexpr const wchar_t* kNames[][2] = {
    {L"element", L"elements"},
    {L"attribute", L"attributes"},
    {L"attribute of an item", L"attributes of an item"},
    {L"character of text", L"characters of text"},
    {L"position of text among elements", L"positions of text among elements"},
    {L"comment", L"comments"},
    {L"processing instruction", L"processing instructions"},
    {L"external entity", L"external entities"},
    {L"character after the JSON value", L"characters after the JSON value"},
    {L"byte after the document", L"bytes after the document"},
};

}  // namespace

std::wstring CRkDropped::GetName() const {
  std::wstring text = std::to_wstring(count) + L' ' + kNames[kind][count != 1];
  if (!name.empty()) text += L" [" + name.substr(0, kLongestName) + L']';
  return text;
}

std::wstring CRkDropped::GetReport() const {
  std::wstring report = location.ToString();
  if (!report.empty()) report += L": ";
  if (!location.GetPath().empty()) report += location.GetPath() + L": ";
  return report + GetName() + L" dropped";
}

IErrorHandler::~IErrorHandler() = default;

void IErrorHandler::OnDropped(const CRkDropped& /*dropped*/) {}

CErrorCollector::CErrorCollector(std::size_t mostErrors) : m_most(mostErrors) {}

CErrorCollector::~CErrorCollector() = default;

bool CErrorCollector::OnError(const CRkException& error) {
  if (m_errorCount++ < m_most) m_errors.emplace_back(error.Clone());
  return true;
}

void CErrorCollector::OnDropped(const CRkDropped& dropped) {
  if (m_droppedCount++ < m_most) m_dropped.push_back(dropped);
}

std::wstring CErrorCollector::GetReport() const {
  std::wstring report;
  for (const auto& error : m_errors) report += error->GetReport() + L'\n';
  if (m_errorCount > m_errors.size())
    report += L"and " + std::to_wstring(m_errorCount - m_errors.size()) + L" more errors\n";
  return report;
}

void CErrorCollector::Clear() {
  m_errorCount = m_droppedCount = 0;
  m_errors.clear();
  m_dropped.clear();
}

}  // namespace RkXmlLib16
