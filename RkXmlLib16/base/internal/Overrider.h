#ifndef RKXMLLIB16_BASE_INTERNAL_OVERRIDER_H
#define RKXMLLIB16_BASE_INTERNAL_OVERRIDER_H

#include <cstddef>
#include <cstring>
#include <type_traits>

namespace RkXmlLib16 {

// The function that a call of the virtual `member` on `object` reaches; two objects with the same one do the same. By
// the Itanium C++ ABI an object begins with the address of its virtual table, and a pointer to a virtual member begins
// with 1 plus its offset there.
template <class Class, class Member>
const void* FindOverrider(const Class& object, Member Class::*member) {
  static_assert(std::is_polymorphic_v<Class> && sizeof member == 2 * sizeof(std::ptrdiff_t));
  std::ptrdiff_t offset;
  const char* table;
  const void* function;
  std::memcpy(&offset, &member, sizeof offset);
  std::memcpy(&table, static_cast<const void*>(&object), sizeof table);
  std::memcpy(&function, table + offset - 1, sizeof function);
  return function;
}

}  // namespace RkXmlLib16

#endif
