#ifndef RKXMLLIB16_FASTINFOSET_OCTETS_H
#define RKXMLLIB16_FASTINFOSET_OCTETS_H

#include <string_view>

#include "RkXmlLib16/context/Vocabulary.h"

// The octets of ITU-T X.891 Annex C that reader and writer share.
namespace RkXmlLib16::FastInfoset {

// One form of an integer that starts inside an octet: the bits that tell it from the other forms, then value bits in
// that octet and in further ones. The value stored is the integer minus the lowest one of the form.
struct IntegerForm {
  unsigned char pattern;
  unsigned char valueBits;
  unsigned char moreOctets;
  unsigned long lowest;
};

// An integer that starts at some bit: the bits of the octet from there on, the forms from the lowest integer to the
// highest, and the highest integer.
struct IntegerLayout {
  unsigned char field;
  IntegerForm forms[4];
  int formCount;
  unsigned long highest;
};

constexpr unsigned long kMaxLength = 0xFFFFFFFF;

// Indices (C.25, C.27, C.28).
constexpr IntegerLayout kIndexBit2 = {
    0x7F, {{0x00, 6, 0, 1}, {0x40, 5, 1, 65}, {0x60, 4, 2, 8257}}, 3, FI_MAX_TABLE_ENTRIES};
constexpr IntegerLayout kIndexBit3 = {
    0x3F, {{0x00, 5, 0, 1}, {0x20, 3, 1, 33}, {0x28, 3, 2, 2081}, {0x30, 0, 3, 526369}}, 4, FI_MAX_TABLE_ENTRIES};
constexpr IntegerLayout kIndexBit4 = {
    0x1F, {{0x00, 4, 0, 1}, {0x10, 2, 1, 17}, {0x14, 2, 2, 1041}, {0x18, 0, 3, 263185}}, 4, FI_MAX_TABLE_ENTRIES};
// Lengths of octet strings (C.22, C.23, C.24).
constexpr IntegerLayout kLengthBit2 = {0x7F, {{0x00, 6, 0, 1}, {0x40, 0, 1, 65}, {0x60, 0, 4, 321}}, 3, kMaxLength};
constexpr IntegerLayout kLengthBit5 = {0x0F, {{0x00, 3, 0, 1}, {0x08, 0, 1, 9}, {0x0C, 0, 4, 265}}, 3, kMaxLength};
constexpr IntegerLayout kLengthBit7 = {0x03, {{0x00, 1, 0, 1}, {0x02, 0, 1, 3}, {0x03, 0, 4, 259}}, 3, kMaxLength};

// First octets and the bits in them (C.2 to C.12).
constexpr unsigned char kAttributesBit = 0x40;
constexpr unsigned char kElementNamespaces = 0x38;
constexpr unsigned char kElementLiteralName = 0x3C;
constexpr unsigned char kAttributeLiteralName = 0x78;
constexpr unsigned char kNamePrefixBit = 0x02;
constexpr unsigned char kNameNamespaceBit = 0x01;
constexpr unsigned char kNamespaceAttribute = 0xCC;
constexpr unsigned char kChunk = 0x80;
constexpr unsigned char kProcessingInstruction = 0xE1;
constexpr unsigned char kComment = 0xE2;
constexpr unsigned char kDocumentType = 0xC4;
constexpr unsigned char kEntityReference = 0xC8;
constexpr unsigned char kTerminator = 0xF0;
constexpr unsigned char kDoubleTerminator = 0xFF;
// Strings (C.13 to C.15).
constexpr unsigned char kIdentifyingIndexBit = 0x80;
constexpr unsigned char kValueIndexBit = 0x80;
constexpr unsigned char kValueAddBit = 0x40;
constexpr unsigned char kEmptyValue = 0xFF;
constexpr unsigned char kChunkIndexBit = 0x20;
constexpr unsigned char kChunkAddBit = 0x10;

constexpr unsigned char kHeader[4] = {0xE0, 0x00, 0x00, 0x01};

// The XML declarations of FInfoDecl 1 to 9.
constexpr std::string_view kDeclarations[9] = {
    "<?xml encoding='finf'?>",
    "<?xml encoding='finf' standalone='yes'?>",
    "<?xml encoding='finf' standalone='no'?>",
    "<?xml version='1.0' encoding='finf'?>",
    "<?xml version='1.0' encoding='finf' standalone='yes'?>",
    "<?xml version='1.0' encoding='finf' standalone='no'?>",
    "<?xml version='1.1' encoding='finf'?>",
    "<?xml version='1.1' encoding='finf' standalone='yes'?>",
    "<?xml version='1.1' encoding='finf' standalone='no'?>",
};

// The number of bits of a character of an alphabet: the fewest in which the code of all ones is left free.
constexpr int BitsPerCharacter(unsigned long alphabetSize) {
  int bits = 1;
  while ((1ul << bits) <= alphabetSize) ++bits;
  return bits;
}

}  // namespace RkXmlLib16::FastInfoset

#endif
