#ifndef RKXMLLIB16_BINDING_GENERATEDCLASS_H
#define RKXMLLIB16_BINDING_GENERATEDCLASS_H

#include <cstdint>

#include "RkXmlLib16/base/Enumerations.h"
#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/object/XmlObjectBase.h"

namespace RkXmlLib16Data {
class CAttributeInfo;
class CElementInfo;
class CParentElementInfo;
}  // namespace RkXmlLib16Data

namespace RkXmlLib16 {

class CRkException;
class CModelObject;
class CXmlAttribute;
class RkVariant;

// Added to the generated classes whose element may carry xsi:nil="true".
class RKXML_EXPORT INillable {
 public:
  virtual bool IsNil() const = 0;
  virtual void SetNil(bool nil) = 0;

 protected:
  ~INillable() = default;
};

// The base of every generated class. It holds no data: it walks the static records that the class hands out and reads
// and writes the members through one property accessor. docs/generated-code.md shows a whole class.
//
//   records   GetClassInfo()           one for the class: content model, names, simple content
//             GetClassElementInfo()    one for each child element, in the order of the schema, null-terminated
//             GetClassAttributeInfo()  one for each attribute, null-terminated
//   members   AccessProperty(index, get, variant)
//
// Errors while writing are CRkValidationException "Failed to convert the element [%ls] to XML" around the cause, one
// for each open element. An error while reading is wrapped once, as CRkValidationException "Failed to process the
// element." with the path of the innermost element; the outer elements pass it on as a plain CRkException.
//
// Implemented in binding/GeneratedClass.cpp, GeneratedClassRead.cpp and GeneratedClassWrite.cpp.
class RKXML_EXPORT CXmlGeneratedClass : public CXmlObjectBase {
 public:
  using CXmlObjectBase::AttributesToXml_Int;
  using CXmlObjectBase::FromXml_Int;
  using CXmlObjectBase::ToXml_Int;

  CXmlGeneratedClass() = default;
  ~CXmlGeneratedClass() override;

  void AttributesToXml_Int(CXmlWriter* writer, const CSerializationContext& context) const override;
  void ToXml_Int(CXmlWriter* writer, bool registerNamespaces, const wchar_t* namespaceUri,
                 const CSerializationContext& context, bool isOptionalChoice) const override;
  CXmlElement* FromXml_Int(CXmlElement* element, CXmlElement* firstChild, const CSerializationContext& context,
                           bool isOptionalChoice) override;

  // Reads (`get`) or sets the numbered property. A value is passed as its own kind, an enumeration as i4, a nil value
  // as nil, an unset one as invalid, a child as object, a repeated member as collection. A getter leaves the property
  // unchanged.
  virtual void AccessProperty(int propertyIndex, bool get, RkVariant& value) = 0;
  // The records, owned by the class's statics; never null, except that the arrays may be null when they are empty.
  virtual RkXmlLib16Data::CParentElementInfo* GetClassInfo() const = 0;
  virtual RkXmlLib16Data::CElementInfo** GetClassElementInfo() const = 0;
  virtual RkXmlLib16Data::CAttributeInfo** GetClassAttributeInfo() const = 0;
  // Called first while the object is read, with the arguments of FromXml_Int, so that the class can prepare its
  // members.
  virtual void BeginFromXml_Int(CXmlElement* element, CXmlElement* firstChild, const CSerializationContext& context,
                                bool isOptionalChoice) = 0;

  int GetClassElementInfoCount() const;
  // The get form of AccessProperty.
  void ReadProperty(int propertyIndex, RkVariant& value) const;
  // Whether some element record accepts the element.
  bool IsElementInList(const CSerializationContext& context, CXmlElement* element) const;
  // Whether the content may be empty although it is a choice, because some member of it is optional.
  bool DoesElementContainOptionalElements() const;

  // Deletes the records and the arrays (all made by new and new[]) and nulls the three pointers; null is allowed.
  static void CleanMetaData(RkXmlLib16Data::CParentElementInfo*& classInfo,
                            RkXmlLib16Data::CElementInfo**& elementInfos,
                            RkXmlLib16Data::CAttributeInfo**& attributeInfos);

 protected:
  // Whether an element of this local name is `first` or follows it among its siblings: for classes that make a
  // collection when it is needed, to be asked once for each element that is read.
  static bool HasElement(const CXmlElement* first, const wchar_t* localName);

 private:
  void WriteElement(CXmlWriter* writer, bool registerNamespaces, const wchar_t* namespaceUri,
                    const CSerializationContext& context, bool isOptionalChoice) const;
  inline void WriteContent(CXmlWriter* writer, const CSerializationContext& context,
                           const RkXmlLib16Data::CParentElementInfo& info, bool isOptionalChoice) const;
  [[gnu::noinline]] void WriteSimpleContent(CXmlWriter* writer, const RkXmlLib16Data::CParentElementInfo& info) const;
  void ProcessAttributesToXml(const CSerializationContext& context, RkXmlLib16Data::CElementInfo** elementInfos,
                              RkXmlLib16Data::CAttributeInfo** attributeInfos, CXmlWriter* writer) const;
  inline void ProcessElementSeqToXml(const CSerializationContext& context, RkXmlLib16Data::CElementInfo** infos,
                                     CXmlWriter* writer) const;
  [[gnu::noinline]] void WriteRecords(const CSerializationContext& context, RkXmlLib16Data::CElementInfo** infos,
                                      CXmlWriter* writer) const;
  void ProcessElementChoiceToXml(const CSerializationContext& context, RkXmlLib16Data::CElementInfo** infos,
                                 CXmlWriter* writer, bool isOptionalChoice) const;
  inline void ProcessElementAllToXml(const CSerializationContext& context, RkXmlLib16Data::CElementInfo** infos,
                                     CXmlWriter* writer) const;

  // This object as CModelObject if these are the records of its model, else null: classes may have records of their
  // own.
  const CModelObject* AsModel(RkXmlLib16Data::CElementInfo** infos) const;
  // Whether the object is nil: a CModelObject knows, others are asked as INillable.
  inline bool IsNil(const RkXmlLib16Data::CParentElementInfo& info) const;
  bool IsNilByInterface() const;

  inline CXmlElement* ReadElement(CXmlElement* element, CXmlElement* firstChild, const CSerializationContext& context,
                                  bool isOptionalChoice);
  inline CXmlElement* ReadContent(CXmlElement* element, CXmlElement* firstChild, const CSerializationContext& context,
                                  const RkXmlLib16Data::CParentElementInfo& info, bool isOptionalChoice);
  [[gnu::noinline]] CXmlElement* ReadContentPastUnknown(CXmlElement* element, CXmlElement* firstChild,
                                                        const CSerializationContext& context,
                                                        const RkXmlLib16Data::CParentElementInfo& info,
                                                        bool isOptionalChoice);
  [[gnu::noinline]] void ReadSimpleContent(const CXmlElement* element, const CSerializationContext& context,
                                           const RkXmlLib16Data::CParentElementInfo& info);
  // Whether reading goes on behind the element after the error.
  [[gnu::cold, gnu::noinline]] bool GoesOnAfter(CRkException& error, const CXmlElement* element,
                                                const CSerializationContext& context) const;
  [[gnu::cold, gnu::noinline]] static void TellLeftOut(const CXmlElement& element, const CSerializationContext& context,
                                                       const RkXmlLib16Data::CParentElementInfo& info);
  void ReadNil(const CXmlAttribute* attribute);
  inline bool ReadAttribute(RkXmlLib16Data::CAttributeInfo& info, const CSerializationContext& context,
                            CXmlAttribute* attribute);
  inline bool ReadMember(RkXmlLib16Data::CElementInfo& info, const CSerializationContext& context, CXmlElement* parent,
                         CXmlElement** cursor, XmlElementType elementType);
  void ProcessAttributesFromXml(const CSerializationContext& context, CXmlElement* element,
                                const RkXmlLib16Data::CParentElementInfo& classInfo,
                                RkXmlLib16Data::CAttributeInfo** infos);
  CXmlElement* ProcessElementSeqFromXml(const CSerializationContext& context, CXmlElement* parent, CXmlElement* first,
                                        XmlElementType elementType);
  CXmlElement* ProcessElementChoiceFromXml(const CSerializationContext& context, CXmlElement* parent,
                                           CXmlElement* first, XmlElementType elementType, bool isOptionalChoice);
  CXmlElement* ProcessElementAllFromXml(const CSerializationContext& context, CXmlElement* parent, CXmlElement* first,
                                        XmlElementType elementType);
};

}  // namespace RkXmlLib16

#endif
