#ifndef RKXMLLIB16_BINDING_OBJECTSTREAM_H
#define RKXMLLIB16_BINDING_OBJECTSTREAM_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/base/SmartPtr.h"
#include "RkXmlLib16/binding/DocumentStream.h"
#include "RkXmlLib16/object/XmlObjectBase.h"

namespace RkXmlLib16 {

// Reads the elements that some paths name as objects, one after the other, from a document of any size: XML text, JSON
// or Fast Infoset, plain or in gzip or zlib, in constant memory (see CDocumentStream for paths, limits and errors).
//
//   CFileSource file("track.gpx.gz");
//   CObjectStream stream(file, context);
//   const std::size_t points = stream.AddPath<CWptType>(L"/gpx/trk/trkseg/trkpt");
//   stream.AddPath<CMetadataType>(L"/gpx/metadata");
//   while (stream.Next())
//     if (stream.GetPathNumber() == points) Use(stream.Get<CWptType>());
//
// Where the context has an error handler, an object with errors is not given out: when the handler wants to go on, the
// next one is read. A document that is not well-formed, and a limit, end the reading.
class RKXML_EXPORT CObjectStream {
 public:
  // Makes a fresh object, without references, that is then filled from the element.
  using Factory = std::function<CXmlObjectBase*(const CXmlElement& element)>;

  // `source` and `context` are kept. Nothing is read before the first Next.
  explicit CObjectStream(CByteSource& source,
                         const CSerializationContext& context = CSerializationContext::m_defaultContext,
                         DocumentForm form = DocumentForm_Any);
  CObjectStream(const CObjectStream&) = delete;
  CObjectStream& operator=(const CObjectStream&) = delete;
  ~CObjectStream();

  // Before the first Next; as CDocumentStream::AddPath. The elements are read as objects of this class, whatever their
  // xsi:type. Its constructor is given the name of the element, if it takes one.
  template <class Object>
  std::size_t AddPath(const wchar_t* path) {
    return AddPath(path, [](const CXmlElement& element) {
      if constexpr (std::is_constructible_v<Object, const wchar_t*>)
        return new Object(element.GetLocalName().c_str());
      else
        return static_cast<void>(element), new Object;
    });
  }
  std::size_t AddPath(const wchar_t* path, Factory factory);

  // Reads the next object; false at the end of the document. Throws what reading an object and CDocumentStream::Next
  // throw; after that it gives false.
  bool Next();

  // The object read last. Whoever wants to keep it takes a reference (CSmartPtr).
  CXmlObjectBase& GetObject() const noexcept { return *m_object; }
  // The same as what its path was added with.
  template <class Object>
  Object& Get() const noexcept {
    return static_cast<Object&>(*m_object);
  }
  // The element that it was read from, with its place and the attributes of the elements around it; valid until the
  // next call of Next.
  const CXmlElement& GetElement() const noexcept { return *m_stream->GetElement(); }
  std::size_t GetPathNumber() const noexcept { return m_stream->GetPathNumber(); }
  // See CDocumentStream.
  std::uint64_t GetBytesRead() const noexcept { return m_stream->GetBytesRead(); }

 private:
  class Handler;

  bool ReadObject();

  std::unique_ptr<Handler> m_handler;  // null without an error handler
  std::unique_ptr<CSerializationContext> m_context;
  std::unique_ptr<CDocumentStream> m_stream;
  std::vector<Factory> m_factories;
  CSmartPtr<CXmlObjectBase> m_object;
};

// Calls `handler(object, element)` or `handler(object)` for each element that the path names, read as an `Object`. It
// stops when the handler returns false; a handler may also return nothing. What the handler throws leaves the call.
// Returns how often the handler was called. `source` is a CByteSource.
//
//   ForEachObject<CWptType>(CFileSource("track.gpx.gz"), L"/gpx/trk/trkseg/trkpt", context,
//                           [&](CWptType& point, const CXmlElement& element) { ...; return true; });
template <class Object, class Source, class Handler>
std::uint64_t ForEachObject(Source&& source, const wchar_t* path, const CSerializationContext& context,
                            Handler&& handler) {
  CObjectStream stream(source, context);
  stream.AddPath<Object>(path);
  const auto call = [&] {
    Object& object = stream.Get<Object>();
    if constexpr (std::is_invocable_v<Handler&, Object&, const CXmlElement&>)
      return handler(object, stream.GetElement());
    else
      return handler(object);
  };
  std::uint64_t count = 0;
  while (stream.Next()) {
    ++count;
    if constexpr (std::is_void_v<decltype(call())>)
      call();
    else if (!call())
      break;
  }
  return count;
}

}  // namespace RkXmlLib16

#endif
