#ifndef RKXMLLIB16_TESTS_SUPPORT_BYTES_H
#define RKXMLLIB16_TESTS_SUPPORT_BYTES_H

#include <string>
#include <string_view>

#include "RkXmlLib16/io/Encoder.h"
#include "RkXmlLib16/types/BinaryData.h"

// Bytes in the forms that tests need.
namespace RkXmlTest {

// The halves of U+1F600 as XML text brings them.
const std::wstring kHigh(1, 0xD83D), kLow(1, 0xDE00);

inline RkXmlLib16::CBinaryData DataOf(std::string_view bytes) {
  RkXmlLib16::CBinaryData data;
  data.Append(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
  return data;
}
inline RkXmlLib16::CBinaryData Hex(const wchar_t* digits) {
  RkXmlLib16::CBinaryData data;
  data.SetAsHexString(digits);
  return data;
}
inline std::string BytesOf(const RkXmlLib16::CBinaryData& data) {
  return {reinterpret_cast<const char*>(data.GetData()), data.GetLength()};
}
inline std::wstring Utf8Text(const RkXmlLib16::CBinaryData& data) {
  return RkXmlLib16::CEncoder::Utf8ToUnicode(data.GetData(), static_cast<int>(data.GetLength()));
}

}  // namespace RkXmlTest

#endif
