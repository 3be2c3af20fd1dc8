// Work on a thread with a stack of a given size.
#pragma once

#include <gtest/gtest.h>
#include <pthread.h>

#include <cstddef>

namespace support {

template <class Work>
void OnStackOf(std::size_t kilobytes, Work work) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, kilobytes * 1024), 0);
  pthread_t thread;
  const auto run = [](void* pWork) -> void* {
    (*static_cast<Work*>(pWork))();
    return nullptr;
  };
  ASSERT_EQ(pthread_create(&thread, &attributes, run, &work), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
}

}  // namespace support
