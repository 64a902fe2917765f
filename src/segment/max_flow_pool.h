// Records of orphans from chunks, used again and again during a solve.
#pragma once

#include <cstdint>

namespace qpx {

struct OrphanRecord {
  uint32_t node;
  OrphanRecord* next;
};

struct FlowPool {
  struct Chunk;

  OrphanRecord* firstFree;
  Chunk* lastChunk;

  // A record with nothing in it, or null without memory.
  OrphanRecord* take() {
    if (firstFree == nullptr && !grow()) return nullptr;
    OrphanRecord* const record = firstFree;
    firstFree = record->next;
    return record;
  }

  void giveBack(OrphanRecord* record) {
    record->next = firstFree;
    firstFree = record;
  }

 private:
  bool grow();
};

// Frees a pool with all of its chunks. Accepts null.
void destroyPool(FlowPool* pool);

}  // namespace qpx
