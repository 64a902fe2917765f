#include "toolkit/row_ring.h"

namespace qpx {

RingHead* beginRing(uint8_t* block, size_t bytes) {
  auto* head = reinterpret_cast<RingHead*>(block);
  *head = {bytes, 0, 0, 0};
  return head;
}

int32_t reserveRing(Stage& stage, size_t bytes) {
  auto* block = static_cast<uint8_t*>(MMemAlloc(nullptr, bytes));
  if (block == nullptr) return QPX_NO_MEMORY;
  stage.scratch2 = block;
  beginRing(block, bytes);
  return QPX_OK;
}

void forgetRing(Stage& stage, const QPXBand&) {
  if (stage.scratch2 == nullptr) return;
  auto* head = reinterpret_cast<RingHead*>(stage.scratch2);
  beginRing(stage.scratch2, head->bytes);
}

}  // namespace qpx
