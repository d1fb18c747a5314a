// The entry points of CXmlObjectBase for JSON and Fast Infoset, while their readers and writers are not there.
#include "RkXmlLib16/core/Exception.h"
#include "RkXmlLib16/core/XmlObjectBase.h"

namespace RkXmlLib16 {

namespace {
[[noreturn]] void ThrowNoJson() { throw CRkException(L"JSON is not supported by this build."); }
[[noreturn]] void ThrowNoFastInfoset() { throw CRkException(L"Fast Infoset is not supported by this build."); }
}  // namespace

using Context = CSerializationContext;
std::wstring CXmlObjectBase::ToJson(bool, EOLType, const Context&) const { ThrowNoJson(); }
CBinaryData CXmlObjectBase::ToJsonStream(bool, XmlEncoding, EOLType, const Context&, CompressionType) const {
  ThrowNoJson();
}
void CXmlObjectBase::ToJsonFile(const wchar_t*, bool, XmlEncoding, EOLType, const Context&, CompressionType) const {
  ThrowNoJson();
}
void CXmlObjectBase::FromJson(const wchar_t*, const Context&) { ThrowNoJson(); }
void CXmlObjectBase::FromJson(const char*, const Context&) { ThrowNoJson(); }
void CXmlObjectBase::FromJsonFile(const wchar_t*, const Context&) { ThrowNoJson(); }
void CXmlObjectBase::FromJsonStream(unsigned char*, unsigned long, const Context&) { ThrowNoJson(); }
void CXmlObjectBase::FromJsonStream(const CBinaryData&, const Context&) { ThrowNoJson(); }
CBinaryData CXmlObjectBase::ToFastInfosetStream(FInfoDecl, const Context&, CompressionType) const {
  ThrowNoFastInfoset();
}
void CXmlObjectBase::ToFastInfosetFile(const wchar_t*, FInfoDecl, const Context&, CompressionType) const {
  ThrowNoFastInfoset();
}

}  // namespace RkXmlLib16
