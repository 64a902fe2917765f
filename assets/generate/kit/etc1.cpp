#include "kit/etc1.h"

#include <array>
#include <cstdlib>

namespace qpx::drawing {
namespace {

using Rgb = std::array<int, 3>;

// Offsets in the order of the two index bits: small, large, minus small, minus large.
constexpr int kModifiers[8][4] = {{2, 8, -2, -8},       {5, 17, -5, -17},    {9, 29, -9, -29},
                                  {13, 42, -13, -42},   {18, 60, -18, -60},  {24, 80, -24, -80},
                                  {33, 106, -33, -106}, {47, 183, -47, -183}};

// Half a block, the upper or lower two rows: pixel i is column i / 2, row i % 2.
using Half = std::array<Rgb, 8>;

struct Choice {
  int table = 0;
  std::array<int, 8> indices{};
  int64_t error = -1;
};

int64_t errorOf(const Rgb& pixel, const Rgb& base, int offset) {
  int64_t sum = 0;
  for (size_t k = 0; k < 3; ++k) {
    const int value = std::clamp(base[k] + offset, 0, 255);
    sum += (pixel[k] - value) * (pixel[k] - value);
  }
  return sum;
}

Choice bestTable(const Half& half, const Rgb& base) {
  Choice best;
  for (int table = 0; table < 8; ++table) {
    Choice choice{table, {}, 0};
    for (size_t i = 0; i < half.size(); ++i) {
      int64_t least = INT64_MAX;
      for (int index = 0; index < 4; ++index) {
        const int64_t error = errorOf(half[i], base, kModifiers[table][index]);
        if (error < least) {
          least = error;
          choice.indices[i] = index;
        }
      }
      choice.error += least;
    }
    if (best.error < 0 || choice.error < best.error) {
      best = choice;
    }
  }
  return best;
}

// The mean of a half on `levels` + 1 steps.
Rgb quantised(const Half& half, int levels) {
  Rgb result{};
  for (size_t k = 0; k < 3; ++k) {
    int sum = 0;
    for (const Rgb& pixel : half) {
      sum += pixel[k];
    }
    result[k] = (sum * levels * 2 + 8 * 255) / (8 * 255 * 2);
  }
  return result;
}

struct Block {
  uint8_t bases[3];
  bool differential;
  Choice halves[2];
};

Block individual(const Half (&halves)[2]) {
  Block block{};
  Rgb levels[2];
  for (int h = 0; h < 2; ++h) {
    levels[h] = quantised(halves[h], 15);
    block.halves[h] =
        bestTable(halves[h], {levels[h][0] * 17, levels[h][1] * 17, levels[h][2] * 17});
  }
  for (size_t k = 0; k < 3; ++k) {
    block.bases[k] = static_cast<uint8_t>(levels[0][k] << 4 | levels[1][k]);
  }
  return block;
}

// Five bits a channel, where the second half is near enough to the first.
bool differential(const Half (&halves)[2], Block& block) {
  const Rgb first = quantised(halves[0], 31);
  const Rgb second = quantised(halves[1], 31);
  const auto expand = [](int level) { return level << 3 | level >> 2; };
  block.differential = true;
  for (size_t k = 0; k < 3; ++k) {
    const int difference = second[k] - first[k];
    if (difference < -4 || difference > 3) {
      return false;
    }
    block.bases[k] = static_cast<uint8_t>(first[k] << 3 | (difference & 7));
  }
  block.halves[0] = bestTable(halves[0], {expand(first[0]), expand(first[1]), expand(first[2])});
  block.halves[1] = bestTable(halves[1], {expand(second[0]), expand(second[1]), expand(second[2])});
  return true;
}

void append(std::vector<uint8_t>& out, const Block& block) {
  constexpr int kUpperAndLower = 1;
  const int modes = (block.differential ? 2 : 0) | kUpperAndLower;
  uint32_t low = 0;
  for (int h = 0; h < 2; ++h) {
    for (int i = 0; i < 8; ++i) {
      const auto index = static_cast<uint32_t>(block.halves[h].indices[static_cast<size_t>(i)]);
      // Pixels are numbered down the columns of the whole block.
      const int pixel = 4 * (i / 2) + 2 * h + i % 2;
      low |= (index & 1) << pixel | (index >> 1) << (pixel + 16);
    }
  }
  out.insert(out.end(), block.bases, block.bases + 3);
  out.push_back(
      static_cast<uint8_t>(block.halves[0].table << 5 | block.halves[1].table << 2 | modes));
  for (int shift = 24; shift >= 0; shift -= 8) {
    out.push_back(static_cast<uint8_t>(low >> shift));
  }
}

}  // namespace

std::vector<uint8_t> toEtc1(const Canvas& canvas) {
  const std::vector<uint8_t> samples = toBytes(canvas, 3);
  const int width = canvas.width();
  std::vector<uint8_t> out;
  for (int y = 0; y < canvas.height(); y += 4) {
    for (int x = 0; x < width; x += 4) {
      Half halves[2];
      for (int i = 0; i < 16; ++i) {
        const int column = i / 4;
        const int row = i % 4;
        const uint8_t* pixel =
            &samples[3 * (static_cast<size_t>(y + row) * static_cast<size_t>(width) +
                          static_cast<size_t>(x + column))];
        halves[row / 2][static_cast<size_t>(2 * column + row % 2)] = {pixel[0], pixel[1], pixel[2]};
      }
      Block block = individual(halves);
      Block closer{};
      const auto error = [](const Block& b) { return b.halves[0].error + b.halves[1].error; };
      if (differential(halves, closer) && error(closer) < error(block)) {
        block = closer;
      }
      append(out, block);
    }
  }
  return out;
}

}  // namespace qpx::drawing
