#ifndef RKXMLLIB16_CONTEXT_READLIMITS_H
#define RKXMLLIB16_CONTEXT_READLIMITS_H

#include <cstddef>
#include <string>

#include "RkXmlLib16/base/Export.h"

namespace RkXmlLib16 {

// How much a document may ask for while it is read, whatever its form: XML text, JSON or Fast Infoset, plain or
// compressed. The defaults are far above what a real document needs; 0 means no limit. A document over a limit throws
// CRkException "Limit exceeded: ...", which names the limit and its value.
//
//   CSerializationContext ctx;
//   ctx.GetLimits().SetMaxNodes(100000);
class RKXML_EXPORT CReadLimits {
 public:
  // Levels of elements inside each other. Trees of any depth are held, walked and freed without recursion.
  unsigned long GetMaxElementDepth() const noexcept { return m_maxElementDepth; }
  void SetMaxElementDepth(unsigned long levels) noexcept { m_maxElementDepth = levels; }
  // Levels of generated objects inside each other; reading them takes stack, one frame or two a level.
  unsigned long GetMaxObjectDepth() const noexcept { return m_maxObjectDepth; }
  void SetMaxObjectDepth(unsigned long levels) noexcept { m_maxObjectDepth = levels; }
  // Elements and attributes together.
  unsigned long GetMaxNodes() const noexcept { return m_maxNodes; }
  void SetMaxNodes(unsigned long nodes) noexcept { m_maxNodes = nodes; }
  // Characters of texts, attribute values and names that the tree holds, a repeated name counted once.
  unsigned long GetMaxCharacters() const noexcept { return m_maxCharacters; }
  void SetMaxCharacters(unsigned long characters) noexcept { m_maxCharacters = characters; }
  // Bytes that a gzip or zlib wrapper inflates to.
  unsigned long GetMaxInflatedBytes() const noexcept { return m_maxInflatedBytes; }
  void SetMaxInflatedBytes(unsigned long bytes) noexcept {
    m_maxInflatedBytes = bytes;
    m_limitsStreams = true;
  }
  // The same where they are not held all at once, as in CDocumentStream: no limit until one is set.
  unsigned long GetMaxStreamedBytes() const noexcept { return m_limitsStreams ? m_maxInflatedBytes : 0; }
  // Inflated bytes as a multiple of the compressed ones, looked at once GetInflationRatioFrom bytes are out.
  unsigned long GetMaxInflationRatio() const noexcept { return m_maxInflationRatio; }
  void SetMaxInflationRatio(unsigned long ratio) noexcept { m_maxInflationRatio = ratio; }
  unsigned long GetInflationRatioFrom() const noexcept { return m_inflationRatioFrom; }
  void SetInflationRatioFrom(unsigned long bytes) noexcept { m_inflationRatioFrom = bytes; }
  // Characters that a document stands for without spelling them, as a multiple of its octets, looked at once
  // GetExpansionRatioFrom characters are out: indexed strings and names of a Fast Infoset, and the names that JSON
  // repeats for each item of an array.
  unsigned long GetMaxExpansionRatio() const noexcept { return m_maxExpansionRatio; }
  void SetMaxExpansionRatio(unsigned long ratio) noexcept { m_maxExpansionRatio = ratio; }
  unsigned long GetExpansionRatioFrom() const noexcept { return m_expansionRatioFrom; }
  void SetExpansionRatioFrom(unsigned long characters) noexcept { m_expansionRatioFrom = characters; }
  // Steps that patterns take while they go back and forth in values, all values of one read together, also in the
  // setters that it calls; beyond a cheap attempt for each value. A step counts once for each 64 bytes of the value.
  unsigned long GetMaxPatternSteps() const noexcept { return m_maxPatternSteps; }
  void SetMaxPatternSteps(unsigned long steps) noexcept { m_maxPatternSteps = steps; }
  // The characters that a document of `length` octets may stand for by these two; the largest number when any.
  unsigned long GetExpansionLimit(std::size_t length) const noexcept;

  // Throws CRkException "Limit exceeded: <name> <value>.", with the path where it is known.
  [[noreturn]] static void ThrowExceeded(const wchar_t* name, unsigned long value, const std::wstring& path = L"");

 private:
  unsigned long m_maxElementDepth = 1UL << 31;
  unsigned long m_maxObjectDepth = 1000;
  unsigned long m_maxNodes = 1UL << 31;
  unsigned long m_maxCharacters = 1UL << 31;
  unsigned long m_maxInflatedBytes = 1UL << 32;
  bool m_limitsStreams = false;
  unsigned long m_maxInflationRatio = 200;
  unsigned long m_inflationRatioFrom = 64UL << 20;
  unsigned long m_maxExpansionRatio = 200;
  unsigned long m_expansionRatioFrom = 64UL << 20;
  unsigned long m_maxPatternSteps = 100000000;
};

}  // namespace RkXmlLib16

#endif
