// An untrusted document, read by three schemas without classes. What one accepts is accepted again as it was
// written.
#include "schema/dynamic/DynamicObject.h"

#include "Check.h"

using namespace RkXmlLib16;
using namespace RkXmlSchema;

namespace {

class Schema {
 public:
  explicit Schema(const char* parts) {
    m_set.AddText(
        "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' xmlns:t='urn:t' targetNamespace='urn:t' "
        "elementFormDefault='qualified'>" +
            std::string(parts) + "</xs:schema>",
        L"/nowhere/fuzz.xsd");
    Fuzz::Require(m_set.Resolve(), "the schema is usable");
    m_binding = std::make_unique<CBinding>(m_set);
    m_dynamic = std::make_unique<CDynamicSchema>(*m_binding);
  }
  const CDynamicSchema& Get() const { return *m_dynamic; }

 private:
  CSchemaSet m_set;
  std::unique_ptr<CBinding> m_binding;
  std::unique_ptr<CDynamicSchema> m_dynamic;
};

// Groups in groups, recursion, derived types; substitution groups, wildcards, mixed content; values of every kind.
constexpr const char* kSchemas[] = {
    "<xs:element name='r' type='t:r'/><xs:complexType name='r'><xs:sequence><xs:choice minOccurs='0' "
    "maxOccurs='unbounded'><xs:element name='r' type='t:r'/><xs:sequence><xs:element name='a' minOccurs='2' "
    "maxOccurs='2'/><xs:element name='a' minOccurs='0'/><xs:element name='b' type='t:b'/></xs:sequence></xs:choice>"
    "<xs:sequence minOccurs='0' maxOccurs='3'><xs:element name='c' minOccurs='0' type='xs:int'/><xs:element name='d' "
    "minOccurs='0' nillable='true' type='xs:date'/></xs:sequence></xs:sequence></xs:complexType>"
    "<xs:complexType name='b'><xs:choice><xs:element name='e'/><xs:element name='f' maxOccurs='3'/></xs:choice>"
    "<xs:attribute name='n' type='xs:int' default='3'/></xs:complexType><xs:complexType name='more'>"
    "<xs:complexContent><xs:extension base='t:b'><xs:sequence><xs:element name='g'/></xs:sequence></xs:extension>"
    "</xs:complexContent></xs:complexType>",
    "<xs:element name='r'><xs:complexType mixed='true'><xs:choice minOccurs='0' maxOccurs='unbounded'><xs:element "
    "ref='t:head'/><xs:any namespace='##other' processContents='lax'/></xs:choice><xs:anyAttribute "
    "processContents='lax'/></xs:complexType></xs:element><xs:element name='head'/><xs:element name='p' "
    "substitutionGroup='t:head' type='xs:int'/><xs:element name='q' substitutionGroup='t:head' type='xs:anyType' "
    "nillable='true'/><xs:attribute name='k' type='xs:QName'/>",
    "<xs:element name='r'><xs:complexType><xs:all><xs:element name='l' type='t:l' minOccurs='0'/><xs:element name='u' "
    "type='t:u' minOccurs='0'/><xs:element name='m' type='t:m' minOccurs='0'/><xs:element name='x' "
    "type='xs:base64Binary' "
    "minOccurs='0'/><xs:element name='y' type='xs:duration' minOccurs='0' default='P1D'/><xs:element name='z' "
    "type='xs:double' fixed='1.5' minOccurs='0'/></xs:all><xs:attribute name='q' type='xs:QName'/></xs:complexType>"
    "</xs:element><xs:simpleType name='l'><xs:list itemType='xs:gYearMonth'/></xs:simpleType><xs:simpleType name='u'>"
    "<xs:union memberTypes='xs:int xs:boolean t:e'/></xs:simpleType><xs:simpleType name='e'><xs:restriction "
    "base='xs:token'><xs:enumeration value='red'/></xs:restriction></xs:simpleType><xs:simpleType name='m'>"
    "<xs:restriction base='xs:decimal'><xs:pattern value='\\d+\\.\\d\\d'/><xs:totalDigits value='5'/></xs:restriction>"
    "</xs:simpleType>"};

void Check(const CDynamicSchema& schema, const std::uint8_t* data, std::size_t size) {
  CSerializationContext context;
  std::wstring written;
  try {
    CXmlDocument document(context);
    std::vector<std::uint8_t> bytes(data, data + size);
    document.LoadXmlStream(bytes.data(), bytes.size());
    const CSmartPtr<CDynamicObject> object = schema.Read(document, context);
    written = object->ToXml(false, false, EOLType_LF, context);
  } catch (const CRkException&) {
    return;
  }
  try {
    CXmlDocument again(context);
    again.LoadXmlWide(written);
    const CSmartPtr<CDynamicObject> object = schema.Read(again, context);
    Fuzz::Require(object->ToXml(false, false, EOLType_LF, context) == written, "what is written is read the same",
                  written);
  } catch (const CRkException& e) {
    Fuzz::Require(false, "what is written can be read", e.GetFullMessage() + L'\n' + written);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Schema* const schemas[] = {new Schema(kSchemas[0]), new Schema(kSchemas[1]), new Schema(kSchemas[2])};
  for (const Schema* schema : schemas) Check(schema->Get(), data, size);
  return 0;
}
