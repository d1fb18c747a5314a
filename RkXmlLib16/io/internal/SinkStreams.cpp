#include "RkXmlLib16/io/internal/SinkStreams.h"

namespace RkXmlLib16 {

void SinkEnd::Write(CBinaryData& bytes) {
  try {
    if (bytes.GetLength() > 0) m_sink->Write(bytes.GetData(), bytes.GetLength());
  } catch (...) {
    m_failure = std::current_exception();
    throw;
  }
  bytes.Truncate(0);
}

void SinkEnd::Finish() { m_sink->Finish(); }

void SinkTextStream::Flush() {
  m_text.ForEachBlock([this](std::wstring_view block) { m_utf8.Append(block); });
  m_text.Empty();
  m_end.Offer(m_encoded);
}

void SinkTextStream::Close() {
  Flush();
  m_utf8.Finish();
  m_end.Write(m_encoded);
  CTextStream::Close();
}

}  // namespace RkXmlLib16
