#ifndef RKXML_TOOL_INPUT_H
#define RKXML_TOOL_INPUT_H

#include <RkXmlLib16/RkXmlLib16.h>

#include "Files.h"
#include "Options.h"
#include "Progress.h"

// The input as the library reads it in pieces, from its start.
class InputSource : public RkXmlLib16::CByteSource {
 public:
  InputSource(const InputFile& file, Progress& progress) : m_file(file), m_progress(progress) {}  // both kept

  std::size_t Read(unsigned char* buffer, std::size_t room) override {
    const std::size_t count = m_file.ReadAt(m_offset, buffer, room);
    m_offset += count;
    m_progress.Tell(m_offset);
    return count;
  }
  std::uint64_t GetLength() const override { return m_file.GetLength(); }

 private:
  const InputFile& m_file;
  Progress& m_progress;
  std::uint64_t m_offset = 0;
};

// The events of the input, tag by tag, or whole elements where a path names them. What the library throws is told with
// the name of the file.
class InputStream {
 public:
  using Event = RkXmlLib16::CDocumentStream::Event;

  // All kept.
  InputStream(const InputFile& file, const Options& options, const RkXmlLib16::CSerializationContext& context,
              Progress& progress);
  RkXmlLib16::CDocumentStream* operator->() { return &m_stream; }
  // False when the document is complete.
  bool Next();
  Event GetEvent() const { return m_event; }

 private:
  const InputFile& m_file;
  const Options& m_options;
  InputSource m_source;
  RkXmlLib16::CDocumentStream m_stream;
  Event m_event = Event::Done;
};

#endif
