#ifndef RKXMLLIB16_TESTS_SUPPORT_SMALLSTACK_H
#define RKXMLLIB16_TESTS_SUPPORT_SMALLSTACK_H

#include <gtest/gtest.h>
#include <pthread.h>

#include <functional>

namespace RkXmlTest {

// Runs in a thread with a stack of 256 KiB, too small for recursion by the depth or length of the input.
inline void RunInSmallStack(std::function<void()> work) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, 256 * 1024);
  const auto run = [](void* w) -> void* {
    (*static_cast<std::function<void()>*>(w))();
    return nullptr;
  };
  pthread_t thread;
  ASSERT_EQ(0, pthread_create(&thread, &attributes, run, &work));
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
}

}  // namespace RkXmlTest

#endif
