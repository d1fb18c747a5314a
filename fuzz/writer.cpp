// Bytes as calls of the writers: all three take or refuse the same, and XML text and Fast Infoset hold one tree.
#include <map>
#include <set>

#include "Check.h"

using namespace Fuzz;

namespace {

const std::wstring kNames[] = {L"a", L"b", L"type", L"nil", L"long-name.1"};
const std::wstring kNamespaces[] = {L"", L"urn:a", L"urn:b", CXmlWriter::XML_NAMESPACE, CXmlWriter::XSI_NAMESPACE};
const std::wstring kPrefixes[] = {L"", L"p", L"q", L"AA"};
const std::wstring kTexts[] = {L"",    L"text", L" \n",  L"<&>\"']]>", L"\u00E9\u20AC\U0001F600",
                               L"a:b", L"1",    L"true", L"-0.5"};

class Bytes {
 public:
  Bytes(const std::uint8_t* data, std::size_t size) : m_next(data), m_end(data + size) {}
  bool AtEnd() const { return m_next == m_end; }
  unsigned Take() { return AtEnd() ? 0 : *m_next++; }
  template <class T, std::size_t N>
  const T& Choose(const T (&list)[N]) {
    return list[Take() % N];
  }

 private:
  const std::uint8_t* m_next;
  const std::uint8_t* m_end;
};

// Writes what the bytes say. What the writer says when it refuses a call, or nothing. `prefixes` become those that the
// root element declares, by namespace URI.
std::wstring Drive(CXmlWriter& writer, Bytes bytes, std::map<std::wstring, std::wstring>& prefixes) {
  int depth = 0;
  bool hasRoot = false;
  bool hasDefault = false;
  bool isBare = false;  // a start tag without attributes
  try {
    while (!bytes.AtEnd()) {
      const unsigned call = bytes.Take() % 10;
      // Prefixes that values need are declared in front of the attributes.
      isBare = call < 2 || (isBare && call == 6);
      switch (call) {
        case 0:
        case 1:
          if (depth == 0 && hasRoot) return L"a second root";
          // Below a default namespace, XML text has no form for an element without one.
          {
            const std::wstring& name = bytes.Choose(kNames);
            writer.WriteStartElement(name, kNamespaces[hasDefault ? 1 + bytes.Take() % 2 : bytes.Take() % 3]);
          }
          hasRoot = true;
          ++depth;
          break;
        case 2:
          if (depth-- == 0) return L"no open element";
          writer.WriteEndElement();
          break;
        case 3: {
          const std::wstring& name = bytes.Choose(kNames);
          const std::wstring& uri = bytes.Choose(kNamespaces);
          const std::wstring& value = bytes.Choose(kTexts);
          if (depth != 0) writer.WriteAttributeString(name, uri, value, static_cast<ItemType>(bytes.Take() % 27));
          break;
        }
        case 4: {
          const std::wstring& text = bytes.Choose(kTexts);
          // An empty text ends the start tag of a Fast Infoset only.
          if (depth != 0 && !text.empty()) writer.WriteString(text, static_cast<ItemType>(bytes.Take() % 27));
          break;
        }
        case 5: {
          const std::wstring& prefix = bytes.Choose(kPrefixes);
          if (prefix.empty() || hasRoot) break;
          const std::wstring& uri = kNamespaces[1 + bytes.Take() % 2];
          writer.AddNamespace(prefix, uri);
          prefixes[uri] = prefix;
          break;
        }
        case 6: {
          const std::wstring& prefix = bytes.Choose(kPrefixes);
          const std::wstring& uri = kNamespaces[1 + bytes.Take() % 2];
          if (!prefix.empty() && isBare) writer.DeclareNamespace(prefix, uri);
          break;
        }
        case 7:
          if (depth == 0) writer.WriteComment(L" note ");  // inside, XML text gets a line end with it
          break;
        case 8:
          if (depth != 0) writer.WriteAttributeNil();
          break;
        case 9:
          if (!hasRoot) {
            const std::wstring& uri = kNamespaces[bytes.Take() % 3];
            hasDefault = !uri.empty();
            writer.SetDefaultNamespace(uri);
          } else if (depth != 0) {
            bytes.Take();
            // Without a namespace, as the prefix in the value may differ from writer to writer.
            writer.WriteAttributeType(L"", bytes.Choose(kNames), ItemType_string);
          }
          break;
      }
    }
    while (depth-- > 0) writer.WriteEndElement();
  } catch (const CRkException& e) {
    return e.GetMessage();
  }
  return hasRoot ? L"" : L"no root";
}

bool HasTwice(const std::map<std::wstring, std::wstring>& prefixes) {
  std::set<std::wstring> once;
  for (const auto& [uri, prefix] : prefixes) once.insert(prefix);
  return once.size() != prefixes.size();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > 4096) return 0;
  const Bytes calls(data, size);
  CTextStream jsonStream;
  CJsonTextWriter json(jsonStream);
  json.SetStrictOutput(true);
  json.WriteStartDocument();
  std::map<std::wstring, std::wstring> prefixes;
  Drive(json, calls, prefixes);

  CTextStream xmlStream(XmlEncoding_UTF8);
  CXmlTextWriter xml(xmlStream);
  xml.SetFormat(false);
  const std::wstring refusal = Drive(xml, calls, prefixes);
  const CSerializationContext context = MakeContext();
  CBinaryStream fastInfosetStream;
  CFastInfosetWriter fastInfoset(*context.GetFIContext(), fastInfosetStream);
  fastInfoset.WriteStartDocument(FInfoDecl_None);
  const std::wstring otherRefusal = Drive(fastInfoset, calls, prefixes);
  // XML text declares a prefix twice when it was given to two namespaces, Fast Infoset invents another.
  if (HasTwice(prefixes)) return 0;
  Require(refusal.empty() == otherRefusal.empty(), "the writers refuse the same calls", refusal + L"\n" + otherRefusal);
  if (!refusal.empty()) return 0;
  fastInfoset.WriteEndDocument();

  // An attribute may have been given twice, which neither can hold.
  CElement fromFastInfoset;
  const CBinaryData octets = fastInfosetStream.GetBinaryStream();
  const bool areRead = Succeeds([&] { fromFastInfoset.FromXmlStream(octets, context); });
  CElement fromXml;
  const CBinaryData text = xmlStream.GetEncodedStream();
  const bool isRead = Succeeds([&] { fromXml.FromXmlStream(text, context); });
  Require(isRead == areRead, "XML text and Fast Infoset are read or refused alike", xmlStream.GetText());
  if (!isRead) return 0;
  Require(Joined(Describe(fromXml)) == Describe(fromFastInfoset), "XML text and Fast Infoset hold one tree",
          Describe(fromXml) + L"---\n" + Describe(fromFastInfoset));
  CheckAllForms(fromXml);
  return 0;
}
