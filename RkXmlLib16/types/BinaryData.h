#ifndef RKXMLLIB16_TYPES_BINARYDATA_H
#define RKXMLLIB16_TYPES_BINARYDATA_H

#include <atomic>
#include <cstdint>
#include <string>

#include "RkXmlLib16/base/Export.h"

namespace RkXmlLib16 {

// The shared, reference counted bytes behind CBinaryData. Created with a count of 1.
class RKXML_EXPORT CDataHolder {
 public:
  CDataHolder();
  // Owns `data` (allocated with new[]) from now on, or copies it when `copy` is true.
  CDataHolder(unsigned char* data, unsigned long length, bool copy);
  CDataHolder(const CDataHolder&) = delete;
  CDataHolder& operator=(const CDataHolder&) = delete;

  void AddRef();
  // Drops one reference and frees the holder with the last one. With `last` the caller demands that this is the last
  // reference: CRkException "Failed to release data. [RefCount=%d]" otherwise.
  void Release(bool last);
  // This holder when nobody shares it; otherwise a new holder with a copy of the bytes, and one reference on this
  // holder is dropped.
  CDataHolder* GetExclusiveCopy();
  // Appends a copy of `length` bytes, which may lie in this holder; the capacity becomes twice the new length when it
  // does not suffice. Throws CRkException "Failed to append. [RefCount=%d]" when the holder is shared.
  void Append(const unsigned char* data, unsigned long length);
  // Appends `count` bytes for the caller to fill and returns the first. The holder must not be shared.
  unsigned char* Extend(unsigned long count);
  // Makes space for `capacity` bytes in all. The holder must not be shared.
  void Reserve(unsigned long capacity);

  unsigned char* GetData() const noexcept { return m_data; }
  unsigned long GetLength() const noexcept { return m_length; }

 private:
  friend class CBinaryData;
  ~CDataHolder();

  enum class Origin : std::uint8_t {
    Array,  // made by new[]
    Heap,   // made by malloc
    Large   // see CLargeMemory
  };

  bool IsShared() const noexcept { return m_refCount.load(std::memory_order_acquire) > 1; }
  unsigned long GrownCapacity(unsigned long count) const;
  void Grow(unsigned long capacity);
  static unsigned char* Allocate(Origin origin, unsigned long capacity);
  unsigned char* Enlarge(unsigned long capacity);  // of the heap or large
  void FreeData() noexcept;
  // Gives the bytes away as an array of new[].
  unsigned char* DetachData();

  unsigned char* m_data = nullptr;
  unsigned long m_length = 0;
  unsigned long m_capacity = 0;
  Origin m_origin = Origin::Array;
  std::atomic<std::int64_t> m_refCount{1};  // nobody but the only owner can make it grow from 1
};

// A byte buffer: the value of base64Binary and hexBinary properties and the result of the To*Stream entry points.
// A value type: copies share one buffer and the first writer copies it. Lengths count bytes.
//
//   CBinaryData d;
//   d.SetAsHexString(L"00ab");
//   d.GetAsBase64();  // "AKs="
class RKXML_EXPORT CBinaryData {
 public:
  CBinaryData() noexcept;
  CBinaryData(const CBinaryData& other);
  CBinaryData(CBinaryData&& other) noexcept;
  // Copies the bytes, or owns `data` (allocated with new[]) from now on when `copy` is false. If the constructor
  // throws, `data` stays the caller's.
  CBinaryData(unsigned char* data, unsigned long length, bool copy);
  // The raw bytes of the wide characters, four a character, without terminator.
  CBinaryData(const wchar_t* text);
  CBinaryData& operator=(const CBinaryData& other);
  CBinaryData& operator=(CBinaryData&& other) noexcept;
  virtual ~CBinaryData();

  // The bytes; null or unspecified when the length is 0. Writing through the pointer changes every copy that shares
  // the buffer.
  unsigned char* GetData() const noexcept;
  unsigned long GetLength() const noexcept;
  // Throw CRkException "Index Out of range [%d]". The writable form gives this object its own copy first.
  unsigned char operator[](unsigned long index) const;
  unsigned char& operator[](unsigned long index);
  bool operator==(const CBinaryData& other) const noexcept;
  bool operator!=(const CBinaryData& other) const noexcept { return !(*this == other); }
  void Clear();
  // Hands the bytes to the caller, who frees them with delete[], and leaves this object empty. Other copies are not
  // affected. `length`, when not null, receives the number of bytes.
  unsigned char* ReleaseData(unsigned long* length = nullptr);

  // Replace the content by a copy of the bytes, or by the raw bytes of the wide characters.
  void SetBuffer(const unsigned char* data, unsigned long length);
  void SetBuffer(const wchar_t* text);
  void Append(const unsigned char* data, unsigned long length);
  void Append(unsigned char byte);
  void Append(wchar_t character);
  void Append(const wchar_t* text);
  void Append(const std::wstring& text);
  void Append(const CBinaryData& other);
  // Makes space for `capacity` bytes in all, so that appends up to it do not move the bytes.
  void Reserve(unsigned long capacity);
  // Appends `count` bytes for the caller to fill and returns the first of them.
  unsigned char* Extend(unsigned long count);
  // Drops the bytes from `length` on; does nothing when there are fewer.
  void Truncate(unsigned long length);
  void Swap(CBinaryData& other) noexcept;

  // Two upper-case digits a byte, no separators.
  std::wstring GetAsHexString() const;
  static std::wstring GetAsHexString(const unsigned char* data, unsigned long length);
  // Throw CRkException "Invalid length in hex string" and "Invalid char in hex string [%c]".
  void SetAsHexString(const wchar_t* text);
  // Allocates `*data` with new[], which the caller frees, and returns the number of bytes.
  static unsigned long ConvertToHexData(const wchar_t* text, unsigned char** data);
  // RFC 4648 base64, padded, without line breaks.
  std::wstring GetAsBase64() const;
  // Skips white space; throws CRkException on other characters that are not base64 (see CBase64::Decode). Like
  // SetAsHexString it leaves the content as it was when it throws.
  void SetAsBase64(const wchar_t* text);

 private:
  void CheckIndex(unsigned long index) const;
  CDataHolder& Exclusive();

  CDataHolder* m_holder = nullptr;  // null only while empty
};

}  // namespace RkXmlLib16

#endif
