#include <kesbase.h>
#include <qpx/heap_check.h>

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "platform/log.h"

namespace qpx {
namespace {

constexpr int32_t kMostEntries = 40000;
constexpr int32_t kLogEachFrom = 39980;
constexpr ptrdiff_t kGuardBytes = 500;
constexpr uint8_t kGuard = 0xCD;
constexpr const char* kTag = "memchk";

struct HeapCheckEntry {
  int32_t size;
  int32_t line;
  void* pointer;
  char file[64];
  char name[32];
};

struct HeapCheck {
  HeapCheckEntry entries[kMostEntries];  // live blocks, oldest first
  int32_t entryCount;
  int64_t totalSize;
  int32_t maxEntries;
  int64_t maxSize;
};

HeapCheck heap;

// Sums pass what "%10d" shows only with more than 2 GiB live.
int32_t shown(int64_t bytes) { return static_cast<int32_t>(std::min<int64_t>(bytes, INT32_MAX)); }

template <size_t kBytes>
void copyText(char (&to)[kBytes], const char* from) {
  const size_t length = std::min(std::strlen(from), kBytes - 1);
  std::memcpy(to, from, length);
  to[length] = 0;
}

// What follows the last separator. Of a path without one the first character goes, as if it were
// one.
const char* baseName(const char* path) {
  if (*path == 0) return path;
  const char* last = path;
  for (const char* at = path; *at != 0; ++at) {
    if (*at == '/' || *at == '\\') last = at;
  }
  return last + 1;
}

const char* textOf(const char* text) { return text == nullptr ? "" : text; }

bool damaged(const uint8_t* guard) {
  return std::any_of(guard, guard + kGuardBytes, [](uint8_t byte) { return byte != kGuard; });
}

// Takes the entry of a pointer out of the table; an empty one when there is none.
HeapCheckEntry takeEntry(void* pointer) {
  HeapCheckEntry* const end = heap.entries + heap.entryCount;
  HeapCheckEntry* const found =
      std::find_if(heap.entries, end,
                   [pointer](const HeapCheckEntry& entry) { return entry.pointer == pointer; });
  if (found == end) return {};
  const HeapCheckEntry taken = *found;
  std::copy(found + 1, end, found);
  --heap.entryCount;
  heap.totalSize -= taken.size;
  return taken;
}

}  // namespace
}  // namespace qpx

using namespace qpx;

void* HEAPCK_MemAlloc(void* memContext, int32_t size, const char* file, int32_t line,
                      const char* name) {
  if (heap.entryCount >= kMostEntries) {
    log(QPX_LOG_DEBUG, kTag, "%s Alloc Fail entries over flow, max entries = %d", textOf(name),
        kMostEntries);
    return nullptr;
  }
  if (size < 0) return nullptr;
  auto* const block = static_cast<uint8_t*>(
      MMemAlloc(memContext, static_cast<size_t>(size) + 2 * size_t{kGuardBytes}));
  if (block == nullptr) return nullptr;
  uint8_t* const pointer = block + kGuardBytes;
  MMemSet(block, kGuard, kGuardBytes);
  MMemSet(pointer + size, kGuard, kGuardBytes);

  HeapCheckEntry& entry = heap.entries[heap.entryCount];
  entry.size = size;
  entry.line = line;
  entry.pointer = pointer;
  copyText(entry.file, baseName(textOf(file)));
  copyText(entry.name, textOf(name));
  // Count and sum of the message are those of the blocks before this one.
  if (heap.entryCount >= kLogEachFrom) {
    log(QPX_LOG_DEBUG, kTag,
        "%s_Alloc_OK,  Size = %8d bytes, Entries = %5d, Total Size = %10d bytes, Pointer = 0X%p, "
        "Allocated at: %s, Line: %6d",
        textOf(name), size, heap.entryCount, shown(heap.totalSize), entry.pointer, entry.file,
        line);
  }
  ++heap.entryCount;
  heap.totalSize += size;
  heap.maxEntries = std::max(heap.maxEntries, heap.entryCount);
  heap.maxSize = std::max(heap.maxSize, heap.totalSize);
  return pointer;
}

void HEAPCK_MemFree(void* memContext, void* pointer) {
  if (pointer == nullptr) return;
  const HeapCheckEntry entry = takeEntry(pointer);
  auto* const bytes = static_cast<uint8_t*>(pointer);
  if (damaged(bytes - kGuardBytes) || damaged(bytes + entry.size)) {
    log(QPX_LOG_DEBUG, kTag,
        "%s_OVERWRITE, Memory Size = %d, Pointer = 0X%p, Allocated at: %s, Line: %6d", entry.name,
        entry.size, pointer, entry.file, entry.line);
  }
  MMemFree(memContext, bytes - kGuardBytes);
}

void HEAPCK_MemConclusion(const char* name) {
  if (heap.entryCount == 0) {
    log(QPX_LOG_DEBUG, kTag, "%s_MEM_CHECK_OK! Max Entries = %d, Max Size = %d bytes", textOf(name),
        heap.maxEntries, shown(heap.maxSize));
    return;
  }
  for (int32_t i = 0; i < heap.entryCount; ++i) {
    const HeapCheckEntry& entry = heap.entries[i];
    log(QPX_LOG_DEBUG, kTag,
        "%s Memory Leak detected! Pointer = 0X%p, Size = %d bytes, Allocated at: %s, Line: %6d",
        textOf(name), entry.pointer, entry.size, entry.file, entry.line);
  }
}
