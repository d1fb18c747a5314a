#ifndef RKXMLLIB16_CORE_ENTRYPOINTGUARD_H
#define RKXMLLIB16_CORE_ENTRYPOINTGUARD_H

#include <exception>
#include <new>
#include <string>
#include <utility>

#include "RkXmlLib16/core/Exception.h"

namespace RkXmlLib16 {

// Runs a part of an entry point that calls no code of the application; a failure of the standard library in it (a
// length that overflows, say) leaves as a CRkException. Exhausted memory stays std::bad_alloc.
template <class Work>
auto Guarded(Work&& work) {
  try {
    return std::forward<Work>(work)();
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& e) {
    const std::string reason = e.what();
    throw CRkException(std::wstring(reason.begin(), reason.end()));
  }
}

}  // namespace RkXmlLib16

#endif
