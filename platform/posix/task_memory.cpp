#include <cstdlib>

#include "platform/com.h"

void* CoTaskMemAlloc(std::size_t bytes) noexcept { return std::malloc(bytes); }
void CoTaskMemFree(void* block) noexcept { std::free(block); }
