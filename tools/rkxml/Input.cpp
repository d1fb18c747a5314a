#include "Input.h"

#include "Load.h"

using namespace RkXmlLib16;

InputStream::InputStream(const InputFile& file, const Options& options, const CSerializationContext& context,
                         Progress& progress)
    : m_file(file),
      m_options(options),
      m_source(file, progress),
      m_stream(m_source, context, options.from == FindForm("json") ? DocumentForm_Json : DocumentForm_Xml) {
  m_stream.SetReportsOpen(true);
}

bool InputStream::Next() {
  try {
    m_event = m_stream.Next();
  } catch (const CRkException& e) {
    ThrowUnreadable(e, m_options, m_file);
  }
  return m_event != Event::Done;
}
