#ifndef RKXMLLIB16_BINDING_DOCUMENTSTREAM_H
#define RKXMLLIB16_BINDING_DOCUMENTSTREAM_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/io/ByteSource.h"

namespace RkXmlLib16 {

// Which readers a stream tries. Each takes gzip and zlib wrappers off.
enum DocumentForm : int {
  DocumentForm_Any,  // JSON by its first character '{' or '[' (or '/' with comments), otherwise as DocumentForm_Xml
  DocumentForm_Xml,  // Fast Infoset (ITU-T X.891) by its header, otherwise XML text
  DocumentForm_Json
};

// Reads a document of any size in pieces, in constant memory: what it holds is the open elements around the place that
// it has come to, and one element that it hands out whole. CObjectStream makes objects of these.
//
//   CFileSource file("track.gpx.gz");
//   CDocumentStream stream(file, context);
//   stream.AddPath(L"/gpx/trk/trkseg/trkpt");
//   while (stream.Next() != CDocumentStream::Event::Done)
//     Use(*stream.GetElement());
//
// With SetReportsOpen it tells of all that stands around these elements, too, so that a whole document can be passed
// on; without any path that is the whole document, tag by tag.
//
// Errors are those of reading the document whole, with the same code, line, column and offset, but come when the stream
// gets there. Paths bear the positions known so far: "/gpx/trk[1]/trkseg[1]/trkpt[7]". Attributes of an element whose
// start tag is long past have its place. Of the reading limits, those of nodes and characters count what is held, with
// the names and Fast Infoset tables of the whole document; inflated bytes are not limited unless the context says so
// itself. Damage of a wrapper shows where the bytes that come out of it do, so it may be told as an error of these.
// JSON is read as CXmlObjectBase::FromJson reads it; an "@" member (RFC 8259 has them in any order) that comes
// after child elements cannot be taken back into a start tag that was passed on, and is an error.
class RKXML_EXPORT CDocumentStream {
 public:
  enum class Event {
    Start,    // an element outside the paths begins: names, attributes and namespace declarations are known
    Text,     // character data directly inside the open element; may come in several parts
    Subtree,  // an element that a path names, complete
    End,      // the element outside the paths ends that was opened last; it has attributes, but no children and no text
    Done      // the document is complete; all calls after that give it again
  };

  // `source` and `context` are kept. Nothing is read before the first Next.
  explicit CDocumentStream(CByteSource& source,
                           const CSerializationContext& context = CSerializationContext::m_defaultContext,
                           DocumentForm form = DocumentForm_Any);
  CDocumentStream(const CDocumentStream&) = delete;
  CDocumentStream& operator=(const CDocumentStream&) = delete;
  ~CDocumentStream();

  // Before the first Next: elements to hand out whole, by the names from the root on, "/gpx/trk/trkseg/trkpt". A step
  // is a local name, with a prefix from the namespace aliases of the context where it is to be of that namespace;
  // otherwise it is of the default namespace of the context or, if that is empty, of any. "*" and "p:*" are any name.
  // Where the context ignores namespaces prefixes mean nothing. Returns the number of the path, from 0. An element that
  // several paths name goes to the first of them; inside an element that is handed out no path counts.
  // Throws CRkInvalidParamException for what is no such path and for a prefix that is no alias.
  std::size_t AddPath(const wchar_t* path);
  // Before the first Next: whether the events Start, Text and End come. They do not at first.
  void SetReportsOpen(bool reports);

  // Reads on. Throws CRkException as the loads of CXmlDocument do; a stream that has thrown gives Done.
  Event Next();

  // Gives up: Next then gives Done.
  void Stop() noexcept;

  // Of Start, Subtree and End; null otherwise. It is valid until the next call of Next. Its parents, the open elements,
  // have their attributes and nothing else.
  const CXmlElement* GetElement() const noexcept;
  // Of Text; valid until the next call of Next.
  std::wstring_view GetText() const noexcept;
  // Of Subtree: the path that names the element.
  std::size_t GetPathNumber() const noexcept;

  // The settings to read objects with: those given, without namespaces where JSON is read without them.
  const CSerializationContext& GetContext() const noexcept;
  // After the first Next.
  bool IsJson() const noexcept;
  bool IsFastInfoset() const noexcept;
  // Bytes taken from the source so far, to compare with CByteSource::GetLength.
  std::uint64_t GetBytesRead() const noexcept;

 private:
  struct State;
  std::unique_ptr<State> m_state;
};

}  // namespace RkXmlLib16

#endif
