#include "filters/curves/inverse_lomo.h"

#include <algorithm>
#include <bit>

#include "filters/curves/look_block.h"
#include "filters/curves/stretched_texels.h"
#include "filters/curves/tone_runs.h"
#include "toolkit/asset_constants.h"

namespace qpx {
namespace {

constexpr int32_t kLevels = 256;
constexpr int32_t kSide = 256;                 // of both textures
constexpr int32_t kPairs = kLevels * kLevels;  // of a texel of the first and one of the second

using Answers = ToneTable;  // by observed sample

// Which of a channel's answers holds at a place of the textures. All answers follow in memory,
// red's first.
struct UndoBlock {
  int32_t count;
  int32_t start[3];
  uint16_t chosen[3][kSide][kSide];

  Answers* answers() { return reinterpret_cast<Answers*>(this + 1); }
  const Answers* answers() const { return reinterpret_cast<const Answers*>(this + 1); }
};

int64_t bytesOf(int32_t answers) { return int64_t{answers} * int64_t{sizeof(Answers)}; }

bool hasUndoBlock(const Stage& stage) {
  const bool mayBe = stage.lut != nullptr && stage.lutFlags == QPX_LUT_OTHER_SHAPE &&
                     stage.lutSize >= sizeof(UndoBlock);
  return mayBe && holdsBlock<UndoBlock>(stage, bytesOf(blockOf<UndoBlock>(stage).count));
}

// The pairs that occur in a channel, numbered in rising order. Made of memory that is all zero.
class PairSet {
 public:
  void add(int32_t pair) { words_[pair / 64] |= bit(pair); }

  // Between adding and numbers.
  void number() {
    for (int32_t word = 0; word < kWords; ++word) {
      before_[word] = count_;
      count_ += std::popcount(words_[word]);
    }
  }

  bool has(int32_t pair) const { return (words_[pair / 64] & bit(pair)) != 0; }
  int32_t count() const { return count_; }
  int32_t numberOf(int32_t pair) const {
    return before_[pair / 64] + std::popcount(words_[pair / 64] & (bit(pair) - 1));
  }

 private:
  static constexpr int32_t kWords = kPairs / 64;
  static uint64_t bit(int32_t pair) { return uint64_t{1} << pair % 64; }

  uint64_t words_[kWords];
  int32_t before_[kWords];
  int32_t count_;
};

// The texels that show along a side of a picture: all of them, or those that its few pixels take,
// as StretchedPlaces lays them.
int32_t shownCount(int32_t pixels) { return std::clamp(pixels, 0, kSide); }

int32_t shownTexel(int32_t i, int32_t pixels) {
  return pixels >= kSide ? i : i * (0xFF00000 / std::max(pixels - 1, 1)) >> 20;
}

// Calls body(row, column, pair) for every place of a channel, 0 for red, that shows in the stage's
// picture.
template <typename Body>
void forEachPlace(const Stage& stage, int channel, const Body& body) {
  const MBitmap& first = texture(stage, 0);
  const MBitmap& second = texture(stage, 1);
  for (int32_t i = 0; i < shownCount(stage.inHeight); ++i) {
    const int32_t y = shownTexel(i, stage.inHeight);
    const uint8_t* a = first.plane[0] + ptrdiff_t{y} * first.pitch[0] + channel;
    const uint8_t* b = second.plane[0] + ptrdiff_t{y} * second.pitch[0] + channel;
    for (int32_t k = 0; k < shownCount(stage.inWidth); ++k) {
      const int32_t x = shownTexel(k, stage.inWidth);
      body(y, x, a[3 * x] << 8 | b[3 * x]);
    }
  }
}

// What setup needs until the block is full.
struct Draft {
  PairSet pairs[3];
  // The second layer and the mask's curve over every sample, a row for each texel.
  uint8_t masked[kLevels][kLevels];
};

void drawMasked(const LomoTables& tables, Draft& draft) {
  for (int32_t texel = 0; texel < kLevels; ++texel) {
    for (int32_t base = 0; base < kLevels; ++base) {
      const int32_t laid = tables.softLight[base << 8 | texel];
      draft.masked[texel][base] = tables.mask[4 * ((614 * base + 410 * laid) >> 10)];
    }
  }
}

// All candidates of a channel, in order: what the curve makes of each, and the first layer of that.
struct Candidates {
  uint8_t curved[kLevels];
  uint8_t laid[kLevels];

  // Triples of a curve table hold blue, green, red.
  Candidates(const LomoTables& tables, int channel) {
    for (int32_t i = 0; i < kLevels; ++i) curved[i] = tables.curves[3 * i + 2 - channel];
  }

  void layFirst(const LomoTables& tables, int32_t texel) {
    for (int32_t i = 0; i < kLevels; ++i) {
      const int32_t soft = tables.softLight[curved[i] << 8 | texel];
      laid[i] = static_cast<uint8_t>((307 * soft + 717 * curved[i]) >> 10);
    }
  }
};

// The look of every candidate, at a mask strength of 68 percent.
void filter(const Candidates& candidates, const uint8_t* masked, uint8_t* filtered) {
  simd::rows().lookup(candidates.laid, filtered, kLevels, masked);
  for (int32_t i = 0; i < kLevels; ++i) {
    const uint32_t sum = 32u * candidates.curved[i] + 68u * filtered[i];
    filtered[i] = static_cast<uint8_t>((sum * 327) >> 15);
  }
}

// For every observed sample the candidate whose look is nearest, the smallest of several. Distance
// and candidate are one number, the distance above, so that the least number is the answer. The
// ways up and down the samples do not wait for one another.
void chooseNearest(const uint8_t* filtered, Answers& answers) {
  constexpr int32_t kStep = 1 << 8;
  int32_t met[kLevels], below[kLevels], above[kLevels];
  std::fill_n(met, kLevels, kLevels * kStep);
  for (int32_t i = kLevels - 1; i >= 0; --i) met[filtered[i]] = i;
  below[0] = met[0];
  above[kLevels - 1] = met[kLevels - 1];
  for (int32_t v = 1, w = kLevels - 2; w >= 0; ++v, --w) {
    below[v] = std::min(met[v], below[v - 1] + kStep);
    above[w] = std::min(met[w], above[w + 1] + kStep);
  }
  for (size_t v = 0; v < kLevels; ++v) {
    answers[v] = static_cast<uint8_t>(std::min(below[v], above[v]));
  }
}

void answerChannel(const LomoTables& tables, const Draft& draft, int channel, Answers* answers) {
  Candidates candidates(tables, channel);
  uint8_t filtered[kLevels];
  for (int32_t pair = 0; pair < kPairs; ++pair) {
    if (pair % kLevels == 0) candidates.layFirst(tables, pair / kLevels);
    if (!draft.pairs[channel].has(pair)) continue;
    filter(candidates, draft.masked[pair % kLevels], filtered);
    chooseNearest(filtered, *answers++);
  }
}

void fillBlock(const Stage& stage, const LomoTables& tables, const Draft& draft, UndoBlock& block) {
  block.count = 0;
  MMemSet(block.chosen, 0, sizeof block.chosen);
  for (int channel = 0; channel < 3; ++channel) {
    const PairSet& pairs = draft.pairs[channel];
    block.start[channel] = block.count;
    answerChannel(tables, draft, channel, block.answers() + block.count);
    forEachPlace(stage, channel, [&](int32_t y, int32_t x, int32_t pair) {
      block.chosen[channel][y][x] = static_cast<uint16_t>(pairs.numberOf(pair));
    });
    block.count += pairs.count();
  }
}

// The answers under one texel of each channel.
class Under {
 public:
  Under(const UndoBlock& block, int32_t row, int32_t column)
      : red_(answersAt(block, 0, row, column)),
        green_(answersAt(block, 1, row, column)),
        blue_(answersAt(block, 2, row, column)) {}

  void undo(PixelRun& run, int32_t i) const {
    run.r[i] = red_[run.r[i]];
    run.g[i] = green_[run.g[i]];
    run.b[i] = blue_[run.b[i]];
  }

 private:
  static const uint8_t* answersAt(const UndoBlock& block, int c, int32_t row, int32_t column) {
    return block.answers()[block.start[c] + block.chosen[c][row][column]].data();
  }

  const uint8_t* red_;
  const uint8_t* green_;
  const uint8_t* blue_;
};

}  // namespace

int32_t prepareUndoLomo(Stage& stage, const LomoTables& tables) {
  if (!isSquareOf256(texture(stage, 0)) || !isSquareOf256(texture(stage, 1))) return QPX_BAD_PARAM;
  Scratch memory(sizeof(Draft));
  if (!memory) return QPX_NO_MEMORY;
  MMemSet(memory.get(), 0, sizeof(Draft));
  Draft& draft = *reinterpret_cast<Draft*>(memory.get());
  drawMasked(tables, draft);
  int32_t count = 0;
  for (int channel = 0; channel < 3; ++channel) {
    PairSet& pairs = draft.pairs[channel];
    forEachPlace(stage, channel, [&](int32_t, int32_t, int32_t pair) { pairs.add(pair); });
    pairs.number();
    count += pairs.count();
  }
  auto* block = makeBlock<UndoBlock>(stage, bytesOf(count));
  if (block == nullptr) return QPX_NO_MEMORY;
  fillBlock(stage, tables, draft, *block);
  return QPX_OK;
}

int32_t setUpUndoWarmLomo(Stage& stage, QPXBand&) {
  const int32_t result = loadTextures(stage, {assets::lomo_mask0, assets::lomo_mask1});
  if (result != QPX_OK) return result;
  return prepareUndoLomo(stage, {::reversal_data, ::fleet_data3, ::lomo_mask2});
}

// A picture larger than the textures has several neighbours under one texel.
int32_t undoWarmLomo(const Frame& frame) {
  if (!hasUndoBlock(frame.stage)) return QPX_BAD_PARAM;
  const auto& block = blockOf<UndoBlock>(frame.stage);
  StretchedPlaces places(frame.stage);
  auto body = [&](PixelRun& run) {
    places.place(run);
    const uint8_t* columns = places.columns();
    for (int32_t i = 0; i < run.count;) {
      const uint8_t column = columns[i];
      const Under under(block, places.row(), column);
      do {
        under.undo(run, i++);
      } while (i < run.count && columns[i] == column);
    }
  };
  return runBody(frame, RunBody(body));
}

}  // namespace qpx
