#pragma once

#include <kesbase.h>
#include <qpx/streams.h>
#include <qpx/strings.h>

#include <cstddef>
#include <cstdio>

#include "platform/new_record.h"

namespace qpx {

enum StreamKind : uint32_t { kStreamFile = 1, kStreamMemory = 2 };

enum StreamOrigin : int32_t { kFromStart = 0, kFromEnd = 1, kFromCurrent = 2 };

enum StreamMode : int32_t { kModeRead = 1, kModeWrite = 2, kModeLast = 6 };

// A piece of a growing memory stream; its bytes follow the record.
struct StreamBlock {
  uint32_t size;
  StreamBlock* next;

  uint8_t* data() { return reinterpret_cast<uint8_t*>(this + 1); }
};

struct StreamBlockChain {
  StreamBlock* head;
  StreamBlock* current;  // being read or written
};

}  // namespace qpx

struct MStreamHandle {
  void* handle;                  // the FILE, or the first byte of the current block
  uint32_t kind;                 // a StreamKind
  uint32_t blockSize;            // memory only, like all below: bytes of the current block
  uint32_t position;             // in the current block, 0 to blockSize
  uint32_t ownedFlag;            // kOwned for a stream that owns its memory
  qpx::StreamBlockChain* chain;  // null over a caller's block
  uint32_t length;               // bytes written so far
  uint32_t capacity;             // bytes of all blocks
  uint32_t reserved;
};

struct MStream64Handle {
  int32_t fd;
  uint32_t kind;
  uint64_t size64;  // when last asked for
};

static_assert(sizeof(void*) != 4 || sizeof(MStreamHandle) == 36);
static_assert(sizeof(MStream64Handle) == 16);

namespace qpx {

inline bool isKind(const MStreamHandle* stream, StreamKind kind) {
  return stream != nullptr && stream->kind == kind;
}

inline std::FILE* fileOf(const MStreamHandle* stream) {
  return static_cast<std::FILE*>(stream->handle);
}

// The whence of the C library for an origin; for an unknown origin, a number that it refuses.
int whenceOf(int32_t origin);

// A path of 16-bit units as the narrow functions take it.
class NarrowPath {
 public:
  explicit NarrowPath(const uint16_t* path) {
    known_ = MWCharToChar(path, bytes_, static_cast<int32_t>(sizeof(bytes_))) > 0;
  }
  const char* get() const { return known_ ? bytes_ : nullptr; }

 private:
  char bytes_[256];
  bool known_;
};

}  // namespace qpx
