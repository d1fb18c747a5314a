#include "RkXmlLib16/json/internal/JsonPieces.h"

#include <utility>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/context/JsonContext.h"
#include "RkXmlLib16/context/SerializationContext.h"

namespace RkXmlLib16 {

namespace {

// Characters of XML text that are handed over together, and events between two looks at their number.
constexpr unsigned long kXmlPiece = 4096;
constexpr int kSteps = 64;

}  // namespace

CJsonPieces::CJsonPieces(const CSerializationContext& context, CJsonTextReader::More more)
    : m_context(context),
      m_writer(m_stream),
      m_reader(std::move(more)),
      m_handler(m_writer, context.GetJsonContext()->GetSupportRoundtrip(), m_reader.GetErrorPathProvider()) {
  const CJsonContext& settings = *context.GetJsonContext();
  m_writer.SetFormat(false);
  m_writer.Open();
  m_writer.SetKeepTabs(context.GetWellFormedOutput());
  m_reader.SetJsonReaderHandler(&m_handler);
  m_reader.SetAllowComments(settings.GetAllowComments());
  m_reader.SetRootElementName(settings.GetRootElementName());
  m_handler.SetPlaces(m_reader, m_nodes, context.GetSchemaType() == SchemaType_NoNamespaces);
}

CJsonPieces::~CJsonPieces() = default;

void CJsonPieces::Convert() {
  if (!m_isStarted) m_reader.Start();
  m_isStarted = true;
  const std::size_t start = m_reader.GetPosition();
  while (!m_isAtEnd && m_reader.GetPosition() - start < kXmlPiece) {
    m_handler.SetLimits(m_context.GetLimits(), m_reader.GetPosition());
    for (int i = 0; i < kSteps && !m_isAtEnd; ++i) m_isAtEnd = !m_reader.ReadOn();
  }
  if (m_isAtEnd) m_writer.Close();
}

// A name or value that XML cannot hold is the matter of its member.
std::size_t CJsonPieces::GetErrorPosition(const CRkException& error) const {
  const bool isMember = error.GetCode() == RkErrorCode_JsonName || error.GetCode() == RkErrorCode_JsonValue;
  return isMember ? m_reader.GetItemStart() : m_reader.GetPosition();
}

}  // namespace RkXmlLib16
