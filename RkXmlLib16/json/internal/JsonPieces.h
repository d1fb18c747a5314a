#ifndef RKXMLLIB16_JSON_INTERNAL_JSONPIECES_H
#define RKXMLLIB16_JSON_INTERNAL_JSONPIECES_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/base/HugePages.h"
#include "RkXmlLib16/io/TextStream.h"
#include "RkXmlLib16/json/JsonTextReader.h"
#include "RkXmlLib16/json/JsonToXml.h"
#include "RkXmlLib16/types/BinaryData.h"
#include "RkXmlLib16/xml/XmlTextWriter.h"

namespace RkXmlLib16 {

class CRkException;
class CSerializationContext;

// What CJsonTextReader::ConvertJsonToXml does, in pieces and without indentation.
class RKXML_EXPORT CJsonPieces {
 public:
  CJsonPieces(const CSerializationContext& context, CJsonTextReader::More more);
  CJsonPieces(const CJsonPieces&) = delete;
  CJsonPieces& operator=(const CJsonPieces&) = delete;
  ~CJsonPieces();

  // Reads on for some XML text. Throws as ConvertJsonToXml does.
  void Convert();
  // What was made since the last call, also when Convert has thrown.
  CBinaryData TakeXml() { return m_stream.TakeBytes(); }
  CJsonTextReader& GetReader() noexcept { return m_reader; }
  bool IsAtEnd() const noexcept { return m_isAtEnd; }
  // Of the elements and attributes of that text, see CJsonPlaces; for the caller to take.
  CLargeVector<std::uint64_t>& GetNodes() noexcept { return m_nodes; }
  // The character that the failure is told of.
  std::size_t GetErrorPosition(const CRkException& error) const;

 private:
  const CSerializationContext& m_context;
  CUtf8TextStream m_stream;
  CXmlTextWriter m_writer;
  CJsonTextReader m_reader;
  CJsonReaderToXmlHandler m_handler;
  CLargeVector<std::uint64_t> m_nodes;
  bool m_isStarted = false;
  bool m_isAtEnd = false;
};

}  // namespace RkXmlLib16

#endif
