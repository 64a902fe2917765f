// Chaining of tone tables on a stage.
#include <cstring>

#include "toolkit/curve.h"

namespace qpx {
namespace {

// New after old, in place. One old table under three new ones is read before its place is written.
void composeThree(uint8_t* old, bool oldIsThree, const uint8_t* table) {
  for (int32_t i = 0; i < 256; ++i) {
    const uint8_t first = old[i];
    for (int32_t c = 0; c < 3; ++c) {
      uint8_t& entry = old[256 * c + i];
      entry = table[256 * c + (oldIsThree ? entry : first)];
    }
  }
}

void composeOne(uint8_t* old, bool oldIsThree, const uint8_t* table) {
  const int32_t entries = oldIsThree ? 768 : 256;
  for (int32_t i = 0; i < entries; ++i) old[i] = table[old[i]];
}

}  // namespace

int32_t composeTable(Stage& stage, const ToneTable& table) {
  Scratch block(kStageLutSize);
  if (!block) return QPX_NO_MEMORY;
  std::memcpy(block.get(), table.data(), table.size());
  return ComposeStageLut(&stage, block.release(), kLutOneTable, 256);
}

int32_t composeTables(Stage& stage, const ToneTable& red, const ToneTable& green,
                      const ToneTable& blue) {
  Scratch block(kStageLutSize);
  if (!block) return QPX_NO_MEMORY;
  std::memcpy(block.get(), red.data(), red.size());
  std::memcpy(block.get() + 256, green.data(), green.size());
  std::memcpy(block.get() + 512, blue.data(), blue.size());
  return ComposeStageLut(&stage, block.release(), kLutThreeTables, kStageLutSize);
}

}  // namespace qpx

using namespace qpx;

int32_t ComposeStageLut(QPXStage* stage, uint8_t* table, uint32_t flags, uint32_t size) {
  if (table == nullptr) return QPX_OK;
  if (stage == nullptr) return QPX_BAD_PARAM;
  if (stage->lut == nullptr) {
    stage->lut = table;
    stage->lutSize = size;
    stage->lutFlags = flags;
    return QPX_OK;
  }
  const bool oldIsThree = hasThreeTables(*stage);
  const bool newIsThree = (flags & QPX_LUT_THREE_TABLES) != 0;
  stage->lutSize = std::max(stage->lutSize, size);
  if (newIsThree) {
    composeThree(stage->lut, oldIsThree, table);
  } else {
    composeOne(stage->lut, oldIsThree, table);
  }
  stage->lutFlags = oldIsThree || newIsThree ? kLutThreeTables : kLutOneTable;
  MMemFree(nullptr, table);
  return QPX_OK;
}
