#ifndef RKXMLLIB16_BASE_ERRORHANDLER_H
#define RKXMLLIB16_BASE_ERRORHANDLER_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/base/Location.h"

namespace RkXmlLib16 {

class CRkException;

// What a read leaves out although it succeeds.
enum RkDropped : int {
  RkDropped_Element,                // skipped, because the context ignores unknown elements
  RkDropped_Attribute,              // skipped, because the context or the class ignores unknown attributes
  RkDropped_ItemAttribute,          // of an item of a value collection, which has no place for it
  RkDropped_Text,                   // in content of elements only
  RkDropped_Position,               // of text among child elements: it is joined into one text
  RkDropped_Comment,                // counted, with the first place
  RkDropped_ProcessingInstruction,  // counted, with the first place
  RkDropped_Entity,                 // an external entity that was not fetched
  RkDropped_TrailingText,           // after the end of the JSON value
  RkDropped_TrailingBytes           // after a gzip member or a Fast Infoset
};

struct RKXML_EXPORT CRkDropped {
  RkDropped kind = RkDropped_Element;
  std::wstring name;        // of what has one
  std::uint64_t count = 1;  // of characters or bytes for text and bytes
  CRkLocation location;

  // "2 comments", "1 element [note]".
  std::wstring GetName() const;
  // "order.xml:3:5: /order: 2 comments dropped"
  std::wstring GetReport() const;
};

// Told by the readers of what they find wrong with a document and of what they leave out, in the order in which they
// find it; set it on a CSerializationContext. It is called on the reading thread, from within the reading call, and may
// throw anything, which ends the call.
class RKXML_EXPORT IErrorHandler {
 public:
  IErrorHandler() = default;
  IErrorHandler(const IErrorHandler&) = default;
  IErrorHandler& operator=(const IErrorHandler&) = default;
  virtual ~IErrorHandler();

  // `error` is as it was found, before outer elements wrap it. True to go on: a value that is refused leaves its member
  // as it was, what is unexpected is passed over, and what is missing is missing. False to have the reading call throw.
  // After an error that ends reading anyway (see CRkException::EndsReading) the answer is ignored.
  virtual bool OnError(const CRkException& error) = 0;
  virtual void OnDropped(const CRkDropped& dropped);
};

// Keeps the first errors of a read and counts all of them.
//
//   CErrorCollector errors;
//   CSerializationContext context;
//   context.SetErrorHandler(&errors);
//   order.FromXmlFile(L"order.xml", context);   // throws only when nothing can be read
//   if (errors.HasErrors()) std::fputws(errors.GetReport().c_str(), stderr);
class RKXML_EXPORT CErrorCollector : public IErrorHandler {
 public:
  explicit CErrorCollector(std::size_t mostErrors = 100);
  CErrorCollector(const CErrorCollector&) = delete;
  CErrorCollector& operator=(const CErrorCollector&) = delete;
  ~CErrorCollector() override;

  bool OnError(const CRkException& error) override;
  void OnDropped(const CRkDropped& dropped) override;

  bool HasErrors() const noexcept { return m_errorCount != 0; }
  // All that were told; GetErrors holds the first of them, GetDropped the first of what was dropped.
  std::size_t GetErrorCount() const noexcept { return m_errorCount; }
  std::size_t GetDroppedCount() const noexcept { return m_droppedCount; }
  const std::vector<std::unique_ptr<const CRkException>>& GetErrors() const noexcept { return m_errors; }
  const std::vector<CRkDropped>& GetDropped() const noexcept { return m_dropped; }
  // The reports of the errors, one a line, and how many more there were.
  std::wstring GetReport() const;
  void Clear();

 private:
  std::size_t m_most;
  std::size_t m_errorCount = 0;
  std::size_t m_droppedCount = 0;
  std::vector<std::unique_ptr<const CRkException>> m_errors;
  std::vector<CRkDropped> m_dropped;
};

}  // namespace RkXmlLib16

#endif
