// Arrays on the caller's stack whose length is known only at run time, for paths that must not
// touch the heap. The memory lasts until the calling function returns, so keep the length small.
#pragma once

#include <cstddef>

#ifdef _WIN32
#include <malloc.h>
#define TARN_STACK_ARRAY(Type, count) \
  static_cast<Type*>(_alloca(sizeof(Type) * static_cast<std::size_t>(count)))
#else
#include <alloca.h>
#define TARN_STACK_ARRAY(Type, count) \
  static_cast<Type*>(alloca(sizeof(Type) * static_cast<std::size_t>(count)))
#endif
