// What the compiler is asked to lay out: every public class, and classes that name the slots which the others leave
// without a name.
#include "RkXmlLib16/RkXmlLib16.h"

namespace RkXmlLib16 {

// Fills the slots that are pure for a generated class.
class CGeneratedProbe : public CXmlGeneratedClass, public INillable {
 public:
  CXmlObjectBase* GetBase() override;
  const wchar_t* GetTargetNamespace() const override;
  const wchar_t* GetNamespace() const override;
  void AccessProperty(int propertyIndex, bool get, RkVariant& value) override;
  RkXmlLib16Data::CParentElementInfo* GetClassInfo() const override;
  RkXmlLib16Data::CElementInfo** GetClassElementInfo() const override;
  RkXmlLib16Data::CAttributeInfo** GetClassAttributeInfo() const override;
  void BeginFromXml_Int(CXmlElement* element, CXmlElement* firstChild, const CSerializationContext& context,
                        bool isOptionalChoice) override;
  bool IsNil() const override;
  void SetNil(bool nil) override;
};

// Tells the overloads of one name apart: it overrides the first of each two.
class CFirstOverloadProbe : public CXmlGeneratedClass {
 public:
  void FromXml(const char* text, const CSerializationContext& context) override;
  void FromJson(const char* text, const CSerializationContext& context) override;
  void FromXmlStream(unsigned char* data, unsigned long length, const CSerializationContext& context) override;
  void FromJsonStream(unsigned char* data, unsigned long length, const CSerializationContext& context) override;
  void FromXmlElement(const CXmlElement* element, const CSerializationContext& context) override;
};

}  // namespace RkXmlLib16
