#include "RkXmlLib16/binding/ObjectStream.h"

#include <utility>

#include "RkXmlLib16/base/ErrorHandler.h"
#include "RkXmlLib16/base/Exception.h"

namespace RkXmlLib16 {

// Stands before the handler of the context and remembers what it was told and what it answered.
class CObjectStream::Handler : public IErrorHandler {
 public:
  explicit Handler(IErrorHandler& handler) : m_handler(handler) {}

  bool OnError(const CRkException& error) override {
    m_hasErrors = true;
    m_goesOn = m_handler.OnError(error);
    return m_goesOn;
  }
  void OnDropped(const CRkDropped& dropped) override { m_handler.OnDropped(dropped); }

  void Clear() noexcept {
    m_hasErrors = false;
    m_goesOn = true;
  }
  bool HasErrors() const noexcept { return m_hasErrors; }
  bool GoesOn() const noexcept { return m_goesOn; }

 private:
  IErrorHandler& m_handler;
  bool m_hasErrors = false;
  bool m_goesOn = true;
};

CObjectStream::CObjectStream(CByteSource& source, const CSerializationContext& context, DocumentForm form) {
  if (context.GetErrorHandler() != nullptr) {
    m_handler = std::make_unique<Handler>(*context.GetErrorHandler());
    m_context = std::make_unique<CSerializationContext>(context);
    m_context->SetErrorHandler(m_handler.get());
  }
  m_stream = std::make_unique<CDocumentStream>(source, m_context != nullptr ? *m_context : context, form);
}

CObjectStream::~CObjectStream() = default;

std::size_t CObjectStream::AddPath(const wchar_t* path, Factory factory) {
  m_factories.reserve(m_factories.size() + 1);
  const std::size_t number = m_stream->AddPath(path);
  m_factories.push_back(std::move(factory));
  return number;
}

bool CObjectStream::Next() {
  while (m_stream->Next() != CDocumentStream::Event::Done)
    if (ReadObject()) return true;
  return false;
}

// False for an object with errors that the handler was told of.
bool CObjectStream::ReadObject() {
  m_object = m_factories[m_stream->GetPathNumber()](*m_stream->GetElement());
  if (m_handler != nullptr) m_handler->Clear();
  try {
    m_object->FromXmlElement(m_stream->GetElement(), m_stream->GetContext());
  } catch (const CRkException& e) {
    if (m_handler != nullptr && m_handler->GoesOn() && !e.EndsReading()) return false;
    m_stream->Stop();
    throw;
  } catch (...) {
    m_stream->Stop();
    throw;
  }
  return m_handler == nullptr || !m_handler->HasErrors();
}

}  // namespace RkXmlLib16
