#include <memory>
#include <string>

#include "Commands.h"
#include "Input.h"
#include "Progress.h"
#include "Scan.h"
#include "TagWriter.h"
#include "Text.h"

using namespace RkXmlLib16;

namespace {

// "track.gpx.gz" and 7 make "track-0007.gpx.gz".
std::string NameOfPart(const std::string& name, unsigned long long number) {
  std::string digits = std::to_string(number);
  if (digits.size() < 4) digits.insert(0, 4 - digits.size(), '0');
  const std::size_t slash = name.rfind('/');
  const std::size_t first = slash == std::string::npos ? 0 : slash + 1;
  std::size_t dot = IsGzipName(name) ? name.rfind('.', name.size() - 4) : name.rfind('.');
  if (dot == std::string::npos || dot <= first) dot = IsGzipName(name) ? name.size() - 3 : name.size();
  return name.substr(0, dot) + '-' + digits + name.substr(dot);
}

// One document of those that the input is split into.
class Part {
 public:
  Part(const Options& options, const CSerializationContext& context, unsigned long long number, Progress& progress)
      : m_output(NameOfPart(options.output, number)) {
    const auto take = [this, &progress](const unsigned char* bytes, std::size_t count) {
      m_output.Write(bytes, count);
      progress.TellWritten(m_output.GetLength());
      return true;
    };
    m_writer = options.to->open(take, options.layout, context);
  }
  CDocumentWriter& Writer() { return *m_writer; }
  void Complete() {
    m_writer->End();
    m_output.Complete();
  }

 private:
  OutputFile m_output;
  std::unique_ptr<CDocumentWriter> m_writer;
};

class Splitter {
 public:
  Splitter(const Options& options, const CSerializationContext& context, Progress& progress)
      : m_options(options), m_context(context), m_progress(progress) {
    OpenPart();
  }

  void Take(const InputStream& stream, const CXmlElement* element, std::wstring_view text) {
    switch (stream.GetEvent()) {
      case InputStream::Event::Start:
        return m_tags.Start(m_part->Writer(), *element);
      case InputStream::Event::Text:
        return m_tags.Text(text);
      case InputStream::Event::Subtree:
        return TakeObject(*element);
      default:
        return m_tags.End(m_part->Writer());
    }
  }

  void Finish() {
    if (m_parts == 1 && m_inPart == 0)
      throw DocumentError(ForTerminal(m_options.input) + " has no element " + ForTerminal(m_options.path));
    m_part->Complete();
  }

 private:
  void TakeObject(const CXmlElement& element) {
    if (m_inPart == m_options.count) {
      m_tags.Leave(m_part->Writer());
      m_part->Complete();
      OpenPart();
      m_tags.Enter(m_part->Writer(), element.GetParentElement());
    }
    CElement object;
    object.FromXmlElement(&element, m_context);
    m_tags.Object(m_part->Writer(), object);
    ++m_inPart;
  }

  void OpenPart() {
    m_part.reset();
    m_part = std::make_unique<Part>(m_options, m_context, ++m_parts, m_progress);
    m_inPart = 0;
  }

  const Options& m_options;
  const CSerializationContext& m_context;
  Progress& m_progress;
  Notes m_notes{Question::None};
  TagWriter m_tags{m_notes};
  std::unique_ptr<Part> m_part;
  unsigned long long m_parts = 0;
  unsigned long long m_inPart = 0;  // elements of the path
};

}  // namespace

void Split(const Options& options) {
  Progress progress;
  progress.Begin("reading", 0);
  const InputFile input(options.input);
  CSerializationContext context;
  context.GetLimits() = options.limits;
  context.SetIndentChars(options.layout.indent.c_str());
  options.json.ApplyTo(context);
  Notes notes(Question::None);
  const Scan scan = ScanDocument(input, options, context, progress, notes);
  if (options.to->needsPrefixes) AddPrefixes(scan.namespaces, context);
  context.SetEscapeCDATA(true);  // sections have been read as the text that they are

  progress.Begin("splitting", input.GetLength());
  InputStream stream(input, options, context, progress);
  try {
    stream->AddPath(FromUtf8(options.path).c_str());
  } catch (const CRkInvalidParamException& e) {
    throw UsageError(Reason(e), "a path is like /gpx/trk/trkseg/trkpt, with the prefixes of the document");
  }
  Splitter splitter(options, context, progress);
  while (stream.Next()) splitter.Take(stream, stream->GetElement(), stream->GetText());
  splitter.Finish();
}
