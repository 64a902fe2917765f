#include "segment/max_flow_pool.h"

#include <kesbase.h>

#include <new>

namespace qpx {
namespace {

constexpr int kChunkRecords = 128;

}  // namespace

struct FlowPool::Chunk {
  Chunk* previous;
  OrphanRecord records[kChunkRecords];
};

bool FlowPool::grow() {
  void* const place = MMemAlloc(nullptr, sizeof(Chunk));
  if (place == nullptr) return false;
  auto* const chunk = new (place) Chunk;
  chunk->previous = lastChunk;
  lastChunk = chunk;
  for (OrphanRecord& record : chunk->records) giveBack(&record);
  return true;
}

void destroyPool(FlowPool* pool) {
  if (pool == nullptr) return;
  while (pool->lastChunk != nullptr) {
    FlowPool::Chunk* const chunk = pool->lastChunk;
    pool->lastChunk = chunk->previous;
    MMemFree(nullptr, chunk);
  }
  MMemFree(nullptr, pool);
}

}  // namespace qpx
