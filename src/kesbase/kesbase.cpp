#include <kesbase.h>

#include <cstdlib>
#include <cstring>

namespace {

// The C library may answer null for a size of 0, which callers could not tell from a failure.
size_t atLeastOne(size_t size) { return size == 0 ? 1 : size; }

}  // namespace

void* MMemAlloc(void* /*context*/, size_t size) { return std::malloc(atLeastOne(size)); }

void MMemFree(void* /*context*/, void* block) { std::free(block); }

void* MMemRealloc(void* /*context*/, void* block, size_t size) {
  return std::realloc(block, atLeastOne(size));
}

void* MMemSet(void* block, int value, size_t size) {
  return block == nullptr ? block : std::memset(block, value, size);
}

void* MMemCpy(void* to, const void* from, size_t size) {
  return to == nullptr || from == nullptr ? to : std::memcpy(to, from, size);
}
