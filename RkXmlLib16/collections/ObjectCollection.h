#ifndef RKXMLLIB16_COLLECTIONS_OBJECTCOLLECTION_H
#define RKXMLLIB16_COLLECTIONS_OBJECTCOLLECTION_H

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/SmartPtr.h"
#include "RkXmlLib16/collections/Collection.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/document/XmlWriter.h"

namespace RkXmlLib16 {

// The typed list of generated objects that generated code derives its object collections from: it knows how its items
// are made, read and written. With an inline group as element type the items have no element of their own, and each
// takes as many of the parent's children as it can.
//
//   class CWptTypeCol : public CXmlObjectCollection<CWptType> { ... };
//   CWptType* point = track->GetTrkpt()->AddNew();
template <class T>
class CXmlObjectCollection : public CXmlCollection {
 public:
  // Makes an item of the given class; the object comes with the count 0 inside the reference.
  using Factory = CSmartPtr<CXmlObjectBase> (*)(int classId, const wchar_t* elementName);
  // Makes the item that an element stands for; null when there is none.
  using AbstractFactory = CSmartPtr<CXmlObjectBase> (*)(CXmlElement* element);

  CXmlObjectCollection(const wchar_t* name, const wchar_t* namespaceUri, int minOccurs, int maxOccurs, Factory factory,
                       int classId, XmlElementType elementType = XmlElementType_Element)
      : CXmlCollection(name, namespaceUri, minOccurs, maxOccurs),
        m_factory(factory),
        m_classId(classId),
        m_elementType(elementType) {}
  CXmlObjectCollection(const wchar_t* name, const wchar_t* namespaceUri, int minOccurs, int maxOccurs,
                       AbstractFactory factory)
      : CXmlCollection(name, namespaceUri, minOccurs, maxOccurs), m_abstractFactory(factory) {}

  CXmlObjectBase* GetBase() override { return this; }

  // Borrowed; may be null when a null item was added. Throws CRkInvalidParamException for an index out of range.
  T* Item(int index) const { return static_cast<T*>(GetNodeAtIndex(index)->GetItem()); }

  // The items as references: for (CWptType& point : *track->GetTrkpt()). Null items are passed over.
  CIterator<T> begin() const noexcept { return CIterator<T>(GetFirstNode()); }
  CIterator<T> end() const noexcept { return {}; }
  // Counted.
  void Add(T* item) { AppendItem(item); }
  // Makes an item, adds it and returns it, borrowed; null when there is no class to make it of.
  T* AddNew() {
    if (m_factory == nullptr) return nullptr;
    const CSmartPtr<CXmlObjectBase> item = m_factory(m_classId, GetElementNameRef().c_str());
    if (item != nullptr) AppendItem(item);
    return static_cast<T*>(item.Get());
  }

  void ToXml_Int(CXmlWriter* writer, bool registerNamespaces, const wchar_t* namespaceUri,
                 const CSerializationContext& context, bool isOptionalChoice) const override {
    const CNameToken* const name = writer->GetExpectedName();
    if (m_elementType != XmlElementType_Element) writer->SetItemsAreGroups();
    int position = 0;
    try {
      for (CItemWalk<sizeof(T)> walk(*this); walk.Advance();) {
        ++position;
        const CXmlObjectBase* item = walk.GetItem();
        if (!IsToBeWritten(item, context)) continue;
        writer->SetExpectedName(name);
        item->ToXml_Int(writer, registerNamespaces, namespaceUri, context, isOptionalChoice);
      }
    } catch (CRkException& e) {
      AddPosition(e, position);
      throw;
    }
  }

  CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* current, const CSerializationContext& context,
                           bool isOptionalChoice) override {
    return m_elementType == XmlElementType_Element ? ReadElements(current, context)
                                                   : ReadGroups(parent, current, context, isOptionalChoice);
  }

 private:
  CXmlElement* ReadElements(CXmlElement* current, const CSerializationContext& context) {
    const CXmlElement* last = nullptr;
    while ((last != nullptr && last->HasNameOf(current)) ||
           DoesElementNameMatch(context, current, GetElementNameRef().c_str(), GetNamespace())) {
      last = current;
      const CSmartPtr<CXmlObjectBase> item =
          m_abstractFactory != nullptr ? m_abstractFactory(current) : m_factory(m_classId, GetElementNameRef().c_str());
      if (item == nullptr) break;
      item->FromXml_Int(current, current->GetFirstElement(), context, false);
      AppendItem(item);
      current = current->GetNextSiblingElement();
    }
    return current;
  }

  CXmlElement* ReadGroups(CXmlElement* parent, CXmlElement* current, const CSerializationContext& context,
                          bool isOptionalChoice) {
    while (current != nullptr) {
      const CSmartPtr<CXmlObjectBase> item = m_factory(m_classId, GetElementNameRef().c_str());
      if (item == nullptr) break;
      CXmlElement* const next = ReadGroup(item, parent, current, context, isOptionalChoice);
      if (next == current) break;
      AppendItem(item);
      current = next;
    }
    return current;
  }

  Factory m_factory = nullptr;
  AbstractFactory m_abstractFactory = nullptr;
  int m_classId = 0;
  XmlElementType m_elementType = XmlElementType_Element;
};

}  // namespace RkXmlLib16

#endif
