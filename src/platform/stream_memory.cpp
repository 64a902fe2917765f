// Streams over memory: a caller's block in place, or a chain of blocks that grows with writes.

#include <algorithm>
#include <limits>

#include "platform/stream_record.h"

namespace qpx {
namespace {

constexpr uint32_t kBlockBytes = 16384;
constexpr uint32_t kOwned = 4097;
// Positions are answered as int32_t, so no chain grows beyond them.
constexpr uint32_t kMostBytes = std::numeric_limits<int32_t>::max();

void enterBlock(MStreamHandle* stream, StreamBlock* block) {
  stream->chain->current = block;
  stream->handle = block->data();
  stream->blockSize = block->size;
  stream->position = 0;
}

bool enterNextBlock(MStreamHandle* stream) {
  if (stream->chain == nullptr || stream->chain->current->next == nullptr) return false;
  enterBlock(stream, stream->chain->current->next);
  return true;
}

bool appendBlock(MStreamHandle* stream) {
  if (stream->chain == nullptr || stream->capacity > kMostBytes - kBlockBytes) return false;
  void* const place = MMemAlloc(nullptr, sizeof(StreamBlock) + kBlockBytes);
  if (place == nullptr) return false;
  stream->chain->current->next = new (place) StreamBlock{kBlockBytes, nullptr};
  stream->capacity += kBlockBytes;
  return true;
}

uint32_t tell(const MStreamHandle* stream) {
  uint32_t before = 0;
  if (stream->chain != nullptr) {
    for (StreamBlock* block = stream->chain->head; block != stream->chain->current;
         block = block->next) {
      before += block->size;
    }
  }
  return before + stream->position;
}

// A position at the very end of a block stays in that block: the next one may not exist yet.
void seekTo(MStreamHandle* stream, uint32_t target) {
  if (stream->chain != nullptr) {
    StreamBlock* block = stream->chain->head;
    while (target > block->size && block->next != nullptr) {
      target -= block->size;
      block = block->next;
    }
    enterBlock(stream, block);
  }
  stream->position = target;
}

// The next bytes that lie together, `wanted` at the most; 0 at the end of the current block.
uint32_t together(const MStreamHandle* stream, uint32_t wanted) {
  return std::min(wanted, stream->blockSize - stream->position);
}

uint8_t* cursor(const MStreamHandle* stream) {
  return static_cast<uint8_t*>(stream->handle) + stream->position;
}

uint32_t readBytes(MStreamHandle* stream, uint8_t* to, uint32_t count) {
  uint32_t moved = 0;
  while (moved < count) {
    const uint32_t run = together(stream, count - moved);
    if (run == 0) {
      if (!enterNextBlock(stream)) break;
      continue;
    }
    MMemCpy(to + moved, cursor(stream), run);
    stream->position += run;
    moved += run;
  }
  return moved;
}

uint32_t writeBytes(MStreamHandle* stream, const uint8_t* from, uint32_t count) {
  uint32_t moved = 0;
  while (moved < count) {
    const uint32_t run = together(stream, count - moved);
    if (run == 0) {
      if (enterNextBlock(stream)) continue;
      if (!appendBlock(stream)) break;
      continue;
    }
    MMemCpy(cursor(stream), from + moved, run);
    stream->position += run;
    moved += run;
  }
  return moved;
}

// Chain record and first block in one piece, so that opening is two allocations.
bool createChain(MStreamHandle* stream, uint32_t size) {
  void* const place = MMemAlloc(nullptr, sizeof(StreamBlockChain) + sizeof(StreamBlock) + size);
  if (place == nullptr) return false;
  stream->chain = new (place) StreamBlockChain{};
  stream->chain->head = new (stream->chain + 1) StreamBlock{size, nullptr};
  stream->ownedFlag = kOwned;
  stream->capacity = size;
  enterBlock(stream, stream->chain->head);
  return true;
}

void freeChain(StreamBlockChain* chain) {
  StreamBlock* block = chain->head->next;
  while (block != nullptr) {
    StreamBlock* const next = block->next;
    MMemFree(nullptr, block);
    block = next;
  }
  MMemFree(nullptr, chain);
}

}  // namespace
}  // namespace qpx

MStreamHandle* MStreamOpenFromMemoryBlock(void* buffer, int32_t size) {
  if (size < 0) return nullptr;
  MStreamHandle* const stream = qpx::newRecord<MStreamHandle>();
  if (stream == nullptr) return nullptr;
  stream->kind = qpx::kStreamMemory;
  const uint32_t bytes = static_cast<uint32_t>(size);
  if (buffer != nullptr) {
    stream->handle = buffer;
    stream->blockSize = stream->length = stream->capacity = bytes;
    return stream;
  }
  const uint32_t first = bytes == 0 ? qpx::kBlockBytes : std::min(bytes, qpx::kBlockBytes);
  if (!qpx::createChain(stream, first)) {
    MMemFree(nullptr, stream);
    return nullptr;
  }
  return stream;
}

int32_t MStreamSetSize(MStreamHandle* stream, int32_t size) {
  if (!qpx::isKind(stream, qpx::kStreamMemory) || size < 0) return -1;
  stream->length = std::min(stream->length, static_cast<uint32_t>(size));
  return static_cast<int32_t>(stream->length);
}

int32_t STRMEMClose(MStreamHandle* stream) {
  if (!qpx::isKind(stream, qpx::kStreamMemory)) return 0;
  if (stream->chain != nullptr) qpx::freeChain(stream->chain);
  MMemFree(nullptr, stream);
  return 1;
}

int32_t STRMEMRead(MStreamHandle* stream, void* buffer, int32_t count) {
  if (!qpx::isKind(stream, qpx::kStreamMemory) || buffer == nullptr || count <= 0) return 0;
  uint32_t wanted = static_cast<uint32_t>(count);
  if (stream->chain != nullptr) {
    // After the length was lowered the position may lie behind it.
    const uint32_t at = qpx::tell(stream);
    wanted = std::min(wanted, stream->length - std::min(at, stream->length));
  }
  return static_cast<int32_t>(qpx::readBytes(stream, static_cast<uint8_t*>(buffer), wanted));
}

int32_t STRMEMWrite(MStreamHandle* stream, const void* buffer, int32_t count) {
  if (!qpx::isKind(stream, qpx::kStreamMemory) || buffer == nullptr || count <= 0) return 0;
  const uint32_t written =
      qpx::writeBytes(stream, static_cast<const uint8_t*>(buffer), static_cast<uint32_t>(count));
  stream->length = std::max(stream->length, qpx::tell(stream));
  return static_cast<int32_t>(written);
}

int32_t STRMEMSeek(MStreamHandle* stream, int32_t origin, int32_t offset) {
  if (!qpx::isKind(stream, qpx::kStreamMemory)) return 1;
  int64_t target = offset;
  switch (origin) {
    case qpx::kFromStart:
      break;
    case qpx::kFromEnd:
      target += stream->length;
      break;
    case qpx::kFromCurrent:
      target += qpx::tell(stream);
      break;
    default:
      return 1;
  }
  qpx::seekTo(stream, static_cast<uint32_t>(std::clamp<int64_t>(target, 0, stream->length)));
  return 0;
}

int32_t STRMEMGetSize(MStreamHandle* stream) {
  return qpx::isKind(stream, qpx::kStreamMemory) ? static_cast<int32_t>(stream->length) : -1;
}

int32_t STRMEMTell(MStreamHandle* stream) {
  return qpx::isKind(stream, qpx::kStreamMemory) ? static_cast<int32_t>(qpx::tell(stream)) : -1;
}
