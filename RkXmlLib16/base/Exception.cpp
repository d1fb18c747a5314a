#include "RkXmlLib16/base/Exception.h"

#include <mutex>
#include <utility>

#include "RkXmlLib16/base/internal/NeverDestroyed.h"

namespace RkXmlLib16 {

namespace {

std::wstring WithPath(std::wstring message, const std::wstring& path) {
  if (!path.empty()) {
    message += L"\nPath: ";
    message += path;
  }
  return message;
}

std::shared_ptr<CRkException> CloneOf(const CRkException* exception) {
  return std::shared_ptr<CRkException>(exception != nullptr ? exception->Clone() : nullptr);
}

const CNeverDestroyed<CRkLocation> kNowhere;

}  // namespace

// What is known of a failure beyond the message.
struct RKXML_HIDDEN CRkException::Details {
  CRkLocation location;
  bool hasLocation = false;
  bool endsReading = false;
  bool isRefused = false;
  CRkRefusedValue refused;
  std::wstring hint;
};

struct RKXML_HIDDEN CRkException::LateMessage {
  std::once_flag once;
  std::function<std::wstring()> make;
  std::wstring text;
};

CRkException::CRkException() = default;
CRkException::CRkException(std::wstring message) : m_message(std::move(message)) {}
CRkException::CRkException(std::wstring message, const CRkException& inner)
    : m_message(std::move(message)), m_inner(CloneOf(&inner)), m_details(inner.m_details) {}
CRkException::CRkException(std::wstring message, std::wstring path)
    : m_message(WithPath(std::move(message), path)), m_path(std::move(path)) {}
CRkException::CRkException(std::wstring message, std::wstring path, const CRkException& inner)
    : m_message(WithPath(std::move(message), path)),
      m_path(std::move(path)),
      m_inner(CloneOf(&inner)),
      m_details(inner.m_details) {}
CRkException::CRkException(std::wstring message, CRkException&& inner)
    : m_message(std::move(message)), m_inner(TakeOver(inner)), m_details(inner.m_details) {}
CRkException::CRkException(std::wstring message, std::wstring path, CRkException&& inner)
    : m_message(WithPath(std::move(message), path)),
      m_path(std::move(path)),
      m_inner(TakeOver(inner)),
      m_details(inner.m_details) {}
CRkException::CRkException(const CRkException& other)
    : m_message(other.m_message),
      m_path(other.m_path),
      m_lateMessage(other.m_lateMessage),
      m_inner(CloneOf(other.GetInnerException())),
      m_details(other.m_details) {}
CRkException::~CRkException() {
  // One by one, because a chain may be long.
  for (auto inner = std::move(m_inner); inner != nullptr && inner.use_count() == 1;) inner = std::move(inner->m_inner);
}

std::shared_ptr<CRkException> CRkException::TakeOver(CRkException& exception) {
  auto chain = std::move(exception.m_inner);
  std::shared_ptr<CRkException> clone(exception.Clone());
  clone->m_inner = std::move(chain);
  return clone;
}

CRkException& CRkException::operator=(const CRkException& other) {
  if (this == &other) return *this;
  auto inner = CloneOf(other.GetInnerException());
  std::wstring message = other.m_message;
  if (m_inner) {
    if (!m_replaced) m_replaced = std::make_shared<std::vector<std::shared_ptr<CRkException>>>();
    m_replaced->push_back(m_inner);
  }
  m_message = std::move(message);
  m_lateMessage = other.m_lateMessage;
  m_inner = std::move(inner);
  m_details = other.m_details;
  m_what = nullptr;
  return *this;
}

const CRkLocation& CRkException::GetLocation() const noexcept {
  return HasLocation() ? m_details->location : kNowhere.Get();
}

bool CRkException::HasLocation() const noexcept { return m_details != nullptr && m_details->hasLocation; }

void CRkException::SetLocation(CRkLocation location) {
  Details& details = ChangeDetails();
  details.location = std::move(location);
  details.hasLocation = true;
}

const CRkRefusedValue* CRkException::GetRefusedValue() const noexcept {
  return m_details != nullptr && m_details->isRefused ? &m_details->refused : nullptr;
}

void CRkException::SetRefusedValue(CRkRefusedValue refused) {
  Details& details = ChangeDetails();
  details.refused = std::move(refused);
  details.isRefused = true;
}

const std::wstring& CRkException::GetHint() const noexcept {
  static const std::wstring kNone;
  return m_details != nullptr ? m_details->hint : kNone;
}

void CRkException::SetHint(std::wstring hint) { ChangeDetails().hint = std::move(hint); }

bool CRkException::EndsReading() const noexcept { return m_details != nullptr && m_details->endsReading; }

void CRkException::SetEndsReading() { ChangeDetails().endsReading = true; }

CRkException::Details& CRkException::ChangeDetails() {
  auto changed = m_details != nullptr ? std::make_shared<Details>(*m_details) : std::make_shared<Details>();
  Details& details = *changed;
  m_what = nullptr;
  m_details = std::move(changed);
  return details;
}

CRkException* CRkException::Clone() const { return std::make_unique<CRkException>(*this).release(); }

CRkException CRkException::WithLateMessage(std::function<std::wstring()> make, const CRkException& inner) {
  CRkException exception(std::wstring(), inner);
  exception.m_lateMessage = std::make_shared<LateMessage>();
  exception.m_lateMessage->make = std::move(make);
  return exception;
}

const std::wstring& CRkException::GetLateMessage() const {
  LateMessage& late = *m_lateMessage;
  std::call_once(late.once, [&late] { late.text = late.make(); });
  return late.text;
}

std::wstring CRkException::GetFullMessage() const {
  std::wstring text = GetMessage();
  for (const CRkException* inner = GetInnerException(); inner != nullptr; inner = inner->GetInnerException()) {
    text += L'\n';
    text += inner->GetMessage();
  }
  return text;
}

CRkValidationException::CRkValidationException() = default;
CRkValidationException::CRkValidationException(const CRkException& other) : CRkException(other) {}
CRkValidationException::CRkValidationException(const CRkValidationException& other) = default;
CRkValidationException::CRkValidationException(std::wstring message, std::wstring path)
    : CRkException(std::move(message), std::move(path)) {}
CRkValidationException::CRkValidationException(std::wstring message, std::wstring path, const CRkException& inner)
    : CRkException(std::move(message), std::move(path), inner) {}
CRkValidationException::CRkValidationException(std::wstring message, std::wstring path, CRkException&& inner)
    : CRkException(std::move(message), std::move(path), std::move(inner)) {}
CRkValidationException::~CRkValidationException() = default;
CRkValidationException* CRkValidationException::Clone() const {
  return std::make_unique<CRkValidationException>(*this).release();
}

CRkInvalidValueException::CRkInvalidValueException() = default;
CRkInvalidValueException::CRkInvalidValueException(const CRkException& other) : CRkValidationException(other) {}
CRkInvalidValueException::CRkInvalidValueException(const CRkInvalidValueException& other) = default;
CRkInvalidValueException::CRkInvalidValueException(std::wstring message)
    : CRkValidationException(std::move(message), std::wstring()) {}
CRkInvalidValueException::CRkInvalidValueException(std::wstring message, const CRkException& inner)
    : CRkValidationException(std::move(message), std::wstring(), inner) {}
CRkInvalidValueException::~CRkInvalidValueException() = default;
CRkInvalidValueException* CRkInvalidValueException::Clone() const {
  return std::make_unique<CRkInvalidValueException>(*this).release();
}

CRkInvalidNamespaceException::CRkInvalidNamespaceException() = default;
CRkInvalidNamespaceException::CRkInvalidNamespaceException(const CRkException& other) : CRkValidationException(other) {}
CRkInvalidNamespaceException::CRkInvalidNamespaceException(const CRkInvalidNamespaceException& other) = default;
CRkInvalidNamespaceException::CRkInvalidNamespaceException(std::wstring message, std::wstring path)
    : CRkValidationException(std::move(message), std::move(path)) {}
CRkInvalidNamespaceException::CRkInvalidNamespaceException(std::wstring message, std::wstring path,
                                                           const CRkException& inner)
    : CRkValidationException(std::move(message), std::move(path), inner) {}
CRkInvalidNamespaceException::~CRkInvalidNamespaceException() = default;
CRkInvalidNamespaceException* CRkInvalidNamespaceException::Clone() const {
  return std::make_unique<CRkInvalidNamespaceException>(*this).release();
}

CRkInvalidStateException::CRkInvalidStateException() = default;
CRkInvalidStateException::CRkInvalidStateException(const CRkException& other) : CRkException(other) {}
CRkInvalidStateException::CRkInvalidStateException(const CRkInvalidStateException& other) = default;
CRkInvalidStateException::CRkInvalidStateException(std::wstring message) : CRkException(std::move(message)) {}
CRkInvalidStateException::CRkInvalidStateException(std::wstring message, const CRkException& inner)
    : CRkException(std::move(message), inner) {}
CRkInvalidStateException::~CRkInvalidStateException() = default;
CRkInvalidStateException* CRkInvalidStateException::Clone() const {
  return std::make_unique<CRkInvalidStateException>(*this).release();
}

CRkInvalidParamException::CRkInvalidParamException() = default;
CRkInvalidParamException::CRkInvalidParamException(const CRkException& other) : CRkException(other) {}
CRkInvalidParamException::CRkInvalidParamException(const CRkInvalidParamException& other) = default;
CRkInvalidParamException::CRkInvalidParamException(std::wstring message) : CRkException(std::move(message)) {}
CRkInvalidParamException::CRkInvalidParamException(std::wstring message, const CRkException& inner)
    : CRkException(std::move(message), inner) {}
CRkInvalidParamException::~CRkInvalidParamException() = default;
CRkInvalidParamException* CRkInvalidParamException::Clone() const {
  return std::make_unique<CRkInvalidParamException>(*this).release();
}

CRkOverFlowException::CRkOverFlowException() = default;
CRkOverFlowException::CRkOverFlowException(const CRkException& other) : CRkException(other) {}
CRkOverFlowException::CRkOverFlowException(const CRkOverFlowException& other) = default;
CRkOverFlowException::CRkOverFlowException(std::wstring message) : CRkException(std::move(message)) {}
CRkOverFlowException::CRkOverFlowException(std::wstring message, const CRkException& inner)
    : CRkException(std::move(message), inner) {}
CRkOverFlowException::~CRkOverFlowException() = default;
CRkOverFlowException* CRkOverFlowException::Clone() const {
  return std::make_unique<CRkOverFlowException>(*this).release();
}

}  // namespace RkXmlLib16
