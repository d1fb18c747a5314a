#ifndef RKXMLLIB16_BASE_EXCEPTION_H
#define RKXMLLIB16_BASE_EXCEPTION_H

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "RkXmlLib16/base/ErrorCode.h"
#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/base/Location.h"

namespace RkXmlLib16 {

// The root of everything that the library throws (besides std::bad_alloc). An exception is a value: it carries a wide
// message, the path of the element being read (XPath-like, empty when not known) and optionally a private copy of the
// exception that caused it.
//
//   CRkException e(L"Failed to process the element.", L"/Order/Line");
//   e.GetMessage();  // "Failed to process the element.\nPath: /Order/Line"
//   e.GetPath();     // "/Order/Line"
class RKXML_EXPORT CRkException {
 public:
  CRkException();
  explicit CRkException(std::wstring message);
  // `inner` is cloned.
  CRkException(std::wstring message, const CRkException& inner);
  // A non-empty path is appended to the message as "\nPath: " and the path.
  CRkException(std::wstring message, std::wstring path);
  CRkException(std::wstring message, std::wstring path, const CRkException& inner);
  // The inner exceptions of `inner` are taken over, not cloned, so that wrapping again and again is quick.
  CRkException(std::wstring message, CRkException&& inner);
  CRkException(std::wstring message, std::wstring path, CRkException&& inner);
  // With a message that `make` makes when it is asked for: for long ones, which nobody may want.
  static CRkException WithLateMessage(std::function<std::wstring()> make, const CRkException& inner);
  // Copies message and path and clones the inner exception.
  CRkException(const CRkException& other);
  // Copies the message and clones the inner exception, but keeps this object's path. The inner exception held before
  // stays alive until this object is destroyed, so a pointer taken from GetInnerException remains valid.
  CRkException& operator=(const CRkException& other);
  virtual ~CRkException();

  // A heap copy of the same dynamic class, owned by the caller.
  virtual CRkException* Clone() const;

  // The message, path suffix included.
  const std::wstring& GetMessage() const { return m_lateMessage == nullptr ? m_message : GetLateMessage(); }
  // The path of the element being read; empty when not known.
  const std::wstring& GetPath() const noexcept { return m_path; }
  // The cause, owned by this exception; null when there is none.
  CRkException* GetInnerException() const noexcept { return m_inner.get(); }
  // The messages of the whole chain, one a line, outermost first.
  std::wstring GetFullMessage() const;

  // Where in the document the failure lies, if it was one of reading; known by nothing otherwise. An exception that
  // wraps another has the location of that one, whose path is more exact than GetPath.
  const CRkLocation& GetLocation() const noexcept;
  bool HasLocation() const noexcept;
  void SetLocation(CRkLocation location);

  // The kind of failure, that of the innermost exception of the chain. Worked out from the message when it is asked
  // for.
  RkErrorCode GetCode() const;
  // The value that was refused; null when the failure is of another kind.
  const CRkRefusedValue* GetRefusedValue() const noexcept;
  void SetRefusedValue(CRkRefusedValue refused);
  // What the reader found and expected, where the message alone misleads; empty otherwise.
  const std::wstring& GetHint() const noexcept;
  void SetHint(std::wstring hint);
  // Whether reading cannot go on behind this failure, whatever an error handler says: a limit, a document that is not
  // well-formed.
  bool EndsReading() const noexcept;
  void SetEndsReading();

  // One line for people: the location, the path, the innermost message and what it leaves open.
  //   order.xml:12:9: /order/item[2]/price: Invalid Value for price [-3] (minInclusive 0)
  // Of the document it quotes 200 characters at most; what is longer is cut short with "...".
  std::wstring GetReport() const;
  // The report in UTF-8, for code that expects the manner of std::exception; valid as long as this exception.
  const char* what() const noexcept;

 private:
  struct Details;
  struct LateMessage;

  static std::shared_ptr<CRkException> TakeOver(CRkException& exception);
  Details& ChangeDetails();
  const std::wstring& GetLateMessage() const;

  std::wstring m_message;
  std::wstring m_path;
  std::shared_ptr<LateMessage> m_lateMessage;  // shared by copies; null for a message that is there
  std::shared_ptr<CRkException> m_inner;
  // Inner exceptions that assignments took out of use; never shared with a copy.
  std::shared_ptr<std::vector<std::shared_ptr<CRkException>>> m_replaced;
  std::shared_ptr<const Details> m_details;  // shared by copies and wrapping exceptions; null until something is known
  mutable std::shared_ptr<const std::string> m_what;  // made when it is asked for
};

// A document or an object breaks its schema.
class RKXML_EXPORT CRkValidationException : public CRkException {
 public:
  CRkValidationException();
  CRkValidationException(const CRkException& other);
  CRkValidationException(const CRkValidationException& other);
  CRkValidationException(std::wstring message, std::wstring path);
  CRkValidationException(std::wstring message, std::wstring path, const CRkException& inner);
  CRkValidationException(std::wstring message, std::wstring path, CRkException&& inner);
  CRkValidationException& operator=(const CRkValidationException& other) = default;
  ~CRkValidationException() override;
  CRkValidationException* Clone() const override;

 private:
  std::wstring m_detail;
};

// A lexical value cannot be converted, or a number does not fit.
class RKXML_EXPORT CRkInvalidValueException : public CRkValidationException {
 public:
  CRkInvalidValueException();
  CRkInvalidValueException(const CRkException& other);
  CRkInvalidValueException(const CRkInvalidValueException& other);
  explicit CRkInvalidValueException(std::wstring message);
  CRkInvalidValueException(std::wstring message, const CRkException& inner);
  CRkInvalidValueException& operator=(const CRkInvalidValueException& other) = default;
  ~CRkInvalidValueException() override;
  CRkInvalidValueException* Clone() const override;
};

// A namespace restriction does not allow the namespace of an element or attribute.
class RKXML_EXPORT CRkInvalidNamespaceException : public CRkValidationException {
 public:
  CRkInvalidNamespaceException();
  CRkInvalidNamespaceException(const CRkException& other);
  CRkInvalidNamespaceException(const CRkInvalidNamespaceException& other);
  CRkInvalidNamespaceException(std::wstring message, std::wstring path);
  CRkInvalidNamespaceException(std::wstring message, std::wstring path, const CRkException& inner);
  CRkInvalidNamespaceException& operator=(const CRkInvalidNamespaceException& other) = default;
  ~CRkInvalidNamespaceException() override;
  CRkInvalidNamespaceException* Clone() const override;
};

// An operation is not valid in the present state of the object.
class RKXML_EXPORT CRkInvalidStateException : public CRkException {
 public:
  CRkInvalidStateException();
  CRkInvalidStateException(const CRkException& other);
  CRkInvalidStateException(const CRkInvalidStateException& other);
  explicit CRkInvalidStateException(std::wstring message);
  CRkInvalidStateException(std::wstring message, const CRkException& inner);
  CRkInvalidStateException& operator=(const CRkInvalidStateException& other) = default;
  ~CRkInvalidStateException() override;
  CRkInvalidStateException* Clone() const override;
};

// A bad argument from the application.
class RKXML_EXPORT CRkInvalidParamException : public CRkException {
 public:
  CRkInvalidParamException();
  CRkInvalidParamException(const CRkException& other);
  CRkInvalidParamException(const CRkInvalidParamException& other);
  explicit CRkInvalidParamException(std::wstring message);
  CRkInvalidParamException(std::wstring message, const CRkException& inner);
  CRkInvalidParamException& operator=(const CRkInvalidParamException& other) = default;
  ~CRkInvalidParamException() override;
  CRkInvalidParamException* Clone() const override;
};

// A decimal does not fit the requested machine type.
class RKXML_EXPORT CRkOverFlowException : public CRkException {
 public:
  CRkOverFlowException();
  CRkOverFlowException(const CRkException& other);
  CRkOverFlowException(const CRkOverFlowException& other);
  explicit CRkOverFlowException(std::wstring message);
  CRkOverFlowException(std::wstring message, const CRkException& inner);
  CRkOverFlowException& operator=(const CRkOverFlowException& other) = default;
  ~CRkOverFlowException() override;
  CRkOverFlowException* Clone() const override;
};

// A CRkException for programs that catch std::exception at their boundaries; what() is the report in UTF-8.
class RKXML_EXPORT CRkStdException : public std::runtime_error {
 public:
  explicit CRkStdException(const CRkException& original);  // cloned
  CRkStdException(const CRkStdException& other) noexcept;
  CRkStdException& operator=(const CRkStdException& other) noexcept;
  ~CRkStdException() override;

  const CRkException& GetOriginal() const noexcept { return *m_original; }

 private:
  std::shared_ptr<const CRkException> m_original;
};

// Returns what `f()` returns; a CRkException that leaves it is thrown on as a CRkStdException.
//
//   WithStdExceptions([&] { order.FromXmlFile(L"order.xml"); });
template <class F>
decltype(auto) WithStdExceptions(F&& f) {
  try {
    return std::forward<F>(f)();
  } catch (const CRkException& e) {
    throw CRkStdException(e);
  }
}

}  // namespace RkXmlLib16

#endif
