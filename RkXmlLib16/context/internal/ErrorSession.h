#ifndef RKXMLLIB16_CONTEXT_INTERNAL_ERRORSESSION_H
#define RKXMLLIB16_CONTEXT_INTERNAL_ERRORSESSION_H

#include <cstddef>
#include <exception>
#include <memory>
#include <unordered_set>
#include <utility>
#include <vector>

#include "RkXmlLib16/base/ErrorHandler.h"
#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/base/Likely.h"
#include "RkXmlLib16/context/SerializationContext.h"

namespace RkXmlLib16 {

// One reading call whose context has an error handler, on this thread. What goes wrong is told to the handler, except
// inside attempts (see below), until the handler wants no more.
class RKXML_EXPORT CErrorSession {
 public:
  // Joins the session of an enclosing call with the same handler; does nothing without a handler.
  explicit CErrorSession(const CSerializationContext& context);
  CErrorSession(const CErrorSession&) = delete;
  CErrorSession& operator=(const CErrorSession&) = delete;
  ~CErrorSession();

  // Runs `work`, the whole call: what it throws is told last, and thrown on.
  template <class Work>
  void Run(Work&& work) {
    if (m_handler == nullptr) return work();
    try {
      work();
      Finish();
    } catch (const CRkException& e) {
      TellLast(e);
      throw;
    }
  }

  // Whether a call with a handler reads on this thread.
  static bool IsActive() noexcept;
  // Whether reading goes on after the error; false without a handler.
  static bool Tell(const CSerializationContext& context, const CRkException& error) {
    return RKXML_UNLIKELY(context.GetErrorHandler() != nullptr) && TellHandler(error);
  }
  // Needs a handler.
  [[gnu::cold]] static void TellDropped(const CSerializationContext& context, CRkDropped dropped);
  // Where unknown elements are skipped: that this one was read. TakeRead tells so once.
  static void NoteRead(const CSerializationContext& context, const void* element) {
    if (RKXML_UNLIKELY(context.GetErrorHandler() != nullptr) && context.GetIgnoreUnknownElements()) AddRead(element);
  }
  [[gnu::cold]] static bool TakeRead(const void* element);

  // An attempt to read a group of members, which the rules may take back; what it told is then not told.
  class RKXML_EXPORT Attempt {
   public:
    explicit Attempt(const CSerializationContext& context)
        : m_session(RKXML_UNLIKELY(context.GetErrorHandler() != nullptr) ? Open() : nullptr) {}
    Attempt(const Attempt&) = delete;
    Attempt& operator=(const Attempt&) = delete;
    ~Attempt() {
      if (RKXML_UNLIKELY(m_session != nullptr)) Close();
    }
    // The attempt counts. Throws the error after which the handler does not want to go on.
    void Keep() {
      if (RKXML_UNLIKELY(m_session != nullptr)) KeepAll();
    }

   private:
    [[gnu::cold]] static CErrorSession* Open();
    [[gnu::cold]] void Close() noexcept;
    [[gnu::cold]] void KeepAll();

    CErrorSession* m_session;
    int m_exceptions = m_session != nullptr ? std::uncaught_exceptions() : 0;
  };

 private:
  struct Told {
    std::unique_ptr<const CRkException> error;  // null for something dropped
    CRkDropped dropped;
  };

  static bool TellHandler(const CRkException& error);
  [[gnu::cold]] static void AddRead(const void* element);
  bool Deliver(const Told& told);
  bool Deliver(const CRkException& error);
  void DeliverPending();
  void Finish();
  void TellLast(const CRkException& error);

  IErrorHandler* m_handler = nullptr;
  CErrorSession* m_outer = nullptr;
  std::vector<std::vector<Told>> m_attempts;        // what the open ones told
  std::vector<Told> m_pending;                      // of attempts that an exception ended
  std::unique_ptr<const CRkException> m_takenBack;  // the first one
  std::unordered_set<const void*> m_read;
  bool m_hasTold = false;
  bool m_isStopped = false;  // the exception that is on its way was told
};

}  // namespace RkXmlLib16

#endif
