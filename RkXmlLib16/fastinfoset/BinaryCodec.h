#ifndef RKXMLLIB16_FASTINFOSET_BINARYCODEC_H
#define RKXMLLIB16_FASTINFOSET_BINARYCODEC_H

#include <string>
#include <string_view>
#include <vector>

#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/types/BinaryData.h"

namespace RkXmlLib16 {

// The octets of a typed value under the built-in encoding algorithms (ITU-T X.891 clause 10): 1 hexadecimal, 2 base64,
// 3 short, 4 int, 5 long, 6 boolean, 7 float, 8 double, 9 uuid, 10 cdata. Numbers stand with the most significant octet
// first.
//
//   CFastInfosetBinaryData d;
//   d.SetAsEncodedString(FIEncodingAlgorithm_Short, L"-2");  // FF FE
//   d.GetAsString(FIEncodingAlgorithm_Short);                // "-2"
class RKXML_EXPORT CFastInfosetBinaryData : public CBinaryData {
 public:
  CFastInfosetBinaryData();
  CFastInfosetBinaryData(const CFastInfosetBinaryData& other);
  explicit CFastInfosetBinaryData(const CBinaryData& data);
  CFastInfosetBinaryData(unsigned char* data, unsigned long length, bool copy);
  explicit CFastInfosetBinaryData(const wchar_t* text);
  CFastInfosetBinaryData& operator=(const CFastInfosetBinaryData& other);
  ~CFastInfosetBinaryData() override;

  // Replaces the content by the encoding of the text, which holds one value. A uuid may have hyphens. Throws
  // CRkException "Unknown byte encoding.", and what the conversion of the value throws.
  void SetAsEncodedString(unsigned long algorithm, const wchar_t* text);
  // The text of the content, a list of values with one blank between. cdata is text already and has no list form.
  // Throws CRkException "Unknown byte encoding." and "Invalid value for INT byte encoding." and its like when the
  // length does not fit.
  std::wstring GetAsString(unsigned long algorithm) const;

  // GetAsString of octets that lie elsewhere, appended to `text`.
  static void AppendAsString(unsigned long algorithm, const unsigned char* octets, unsigned long length,
                             std::wstring& text);
  // Appends the encoding of the text to `octets` when decoding it gives back this very text; otherwise appends nothing
  // and returns false. `algorithm` is one of the ten. Infinities and NaN, for which readers differ, are left as text.
  static bool AppendExactly(unsigned long algorithm, std::wstring_view text, std::vector<unsigned char>& octets);
};

}  // namespace RkXmlLib16

#endif
