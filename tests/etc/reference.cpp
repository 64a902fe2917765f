#include "etc/reference.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace qpx::reference {
namespace {

constexpr int kModifiers[8][4] = {{-8, -2, 2, 8},       {-17, -5, 5, 17},    {-29, -9, 9, 29},
                                  {-42, -13, 13, 42},   {-60, -18, 18, 60},  {-80, -24, 24, 80},
                                  {-106, -33, 33, 106}, {-183, -47, 47, 183}};
constexpr int kIndexOfPosition[4] = {3, 2, 0, 1};

int clampByte(int v) { return std::min(std::max(v, 0), 255); }

int expand(int level, int bits) { return bits == 5 ? level * 8 + level / 4 : level * 16 + level; }

int distance(const Color& a, const uint8_t* b) {
  const int r = a[0] - b[0], g = a[1] - b[1], bl = a[2] - b[2];
  return 38 * g * g + 19 * r * r + 7 * bl * bl;
}

// The halves of a block.
std::array<Half, 2> halvesOf(int x, int y, bool flip) {
  if (flip) return {Half{x, y, 4, 2}, Half{x, y + 2, 4, 2}};
  return {Half{x, y, 2, 4}, Half{x + 2, y, 2, 4}};
}

struct Coded {
  Words words;
  int error;
};

bool fitsThreeBits(const Color& first, const Color& second) {
  for (size_t c = 0; c < 3; ++c) {
    if (second[c] - first[c] < -4 || second[c] - first[c] > 3) return false;
  }
  return true;
}

void put(uint32_t& word, int value, int bits, int lowestBit) {
  const uint32_t mask = (1u << bits) - 1;
  word |= (static_cast<uint32_t>(value) & mask) << lowestBit;
}

// Levels of 5 bits for both halves, levels of 4 to fall back on.
Coded codeWith(const Image& image, int x, int y, bool flip, const std::array<Color, 2>& five,
               const std::array<Color, 2>& four) {
  const bool differential = fitsThreeBits(five[0], five[1]);
  const std::array<Half, 2> halves = halvesOf(x, y, flip);
  Coded coded = {{}, 0};
  for (size_t c = 0; c < 3; ++c) {
    const int byte = 24 - 8 * static_cast<int>(c);
    if (differential) {
      put(coded.words.word0, five[0][c], 5, byte + 3);
      put(coded.words.word0, five[1][c] - five[0][c], 3, byte);
    } else {
      put(coded.words.word0, four[0][c], 4, byte + 4);
      put(coded.words.word0, four[1][c], 4, byte);
    }
  }
  put(coded.words.word0, differential ? 1 : 0, 1, 1);
  put(coded.words.word0, flip ? 1 : 0, 1, 0);
  for (size_t h = 0; h < 2; ++h) {
    Color base;
    for (size_t c = 0; c < 3; ++c) {
      base[c] = differential ? expand(five[h][c], 5) : expand(four[h][c], 4);
    }
    const Choice choice = withBestTable(image, halves[h], base);
    coded.error += choice.error;
    put(coded.words.word0, choice.table, 3, h == 0 ? 5 : 2);
    for (int k = 0; k < 8; ++k) {
      const int column = halves[h].x - x + k / halves[h].down;
      const int row = halves[h].y - y + k % halves[h].down;
      const int pixel = 4 * column + row;
      const int index = choice.indices[static_cast<size_t>(k)];
      put(coded.words.word1, index & 1, 1, pixel);
      put(coded.words.word1, index >> 1, 1, 16 + pixel);
    }
  }
  return coded;
}

Coded codeMean(const Image& image, int x, int y, bool flip) {
  std::array<Color, 2> five, four;
  const std::array<Half, 2> halves = halvesOf(x, y, flip);
  for (size_t h = 0; h < 2; ++h) {
    const Mean mean = average(image, halves[h]);
    for (size_t c = 0; c < 3; ++c) {
      const double value = mean[c];
      five[h][c] = static_cast<int>(std::round(value * 31 / 255));
      four[h][c] = static_cast<int>(value / 17.0 + 0.5 + 0.0001);
    }
  }
  return codeWith(image, x, y, flip, five, four);
}

Coded codeNearest(const Image& image, int x, int y, bool flip) {
  std::array<Color, 2> five, four;
  const std::array<Half, 2> halves = halvesOf(x, y, flip);
  for (size_t h = 0; h < 2; ++h) {
    five[h] = nearestLevels(average(image, halves[h]), 5);
    four[h] = nearestLevels(average(image, halves[h]), 4);
  }
  return codeWith(image, x, y, flip, five, four);
}

Words better(const Coded& upright, const Coded& flipped) {
  return flipped.error < upright.error ? flipped.words : upright.words;
}

int bitsAt(uint32_t word, int lowestBit, int bits) {
  return static_cast<int>(word >> lowestBit & ((1u << bits) - 1));
}

// A block taken apart as the format lays it out.
struct Parts {
  bool flip, differential;
  Color bases[2];
  int tables[2];
  int indices[16];

  explicit Parts(const Words& words)
      : flip(bitsAt(words.word0, 0, 1) != 0), differential(bitsAt(words.word0, 1, 1) != 0) {
    for (size_t c = 0; c < 3; ++c) {
      const int byte = 24 - 8 * static_cast<int>(c);
      if (differential) {
        const int first = bitsAt(words.word0, byte + 3, 5);
        int step = bitsAt(words.word0, byte, 3);
        if (step >= 4) step -= 8;
        bases[0][c] = expand(first, 5);
        bases[1][c] = expand((first + step + 32) % 32, 5);
      } else {
        bases[0][c] = expand(bitsAt(words.word0, byte + 4, 4), 4);
        bases[1][c] = expand(bitsAt(words.word0, byte, 4), 4);
      }
    }
    tables[0] = bitsAt(words.word0, 5, 3);
    tables[1] = bitsAt(words.word0, 2, 3);
    for (int pixel = 0; pixel < 16; ++pixel) {
      indices[pixel] = bitsAt(words.word1, 16 + pixel, 1) * 2 + bitsAt(words.word1, pixel, 1);
    }
  }

  int half(int pixel) const { return (flip ? pixel % 4 : pixel / 4) >= 2 ? 1 : 0; }

  int modifier(int pixel) const {
    const int* const row = kModifiers[tables[half(pixel)]];
    for (int position = 0; position < 4; ++position) {
      if (kIndexOfPosition[position] == indices[pixel]) return row[position];
    }
    return 0;
  }
};

}  // namespace

Mean average(const Image& image, const Half& half) {
  Mean mean;
  for (size_t c = 0; c < 3; ++c) {
    float sum = 0;
    for (int y = 0; y < half.down; ++y) {
      for (int x = 0; x < half.across; ++x) sum += image.at(half.x + x, half.y + y)[c];
    }
    mean[c] = sum / 8.0f;
  }
  return mean;
}

Color nearestLevels(const Mean& mean, int bits) {
  const int most = bits == 5 ? 31 : 15;
  const double divisor = bits == 5 ? 8.225806 : 17.0;
  int low[3], high[3];
  for (size_t c = 0; c < 3; ++c) {
    const int floor = static_cast<int>(std::floor(static_cast<double>(mean[c]) / divisor));
    low[c] = std::clamp(floor, 0, most);
    high[c] = floor > most - 1 ? most : floor < -1 ? 0 : floor + 1;
  }
  Color best{};
  double least = 1e30;
  for (int combination = 0; combination < 8; ++combination) {
    Color levels;
    double ranks[3];
    for (size_t c = 0; c < 3; ++c) {
      levels[c] = (combination >> c & 1) != 0 ? high[c] : low[c];
      ranks[c] = expand(levels[c], bits) - static_cast<double>(mean[c]);
    }
    const double rank =
        19 * ranks[0] * ranks[0] + 38 * ranks[1] * ranks[1] + 7 * ranks[2] * ranks[2];
    if (rank < least) {
      least = rank;
      best = levels;
    }
  }
  return best;
}

Choice withTable(const Image& image, const Half& half, const Color& base, int table) {
  Choice choice;
  choice.table = table;
  for (int k = 0; k < 8; ++k) {
    const uint8_t* const pixel = image.at(half.x + k / half.down, half.y + k % half.down);
    int least = 1 << 30;
    for (int position = 0; position < 4; ++position) {
      Color candidate;
      for (size_t c = 0; c < 3; ++c) {
        candidate[c] = clampByte(base[c] + kModifiers[table][position]);
      }
      const int error = distance(candidate, pixel) >> 6;
      if (error < least) {
        least = error;
        choice.indices[static_cast<size_t>(k)] = kIndexOfPosition[position];
      }
    }
    choice.error += least;
  }
  return choice;
}

Choice withBestTable(const Image& image, const Half& half, const Color& base) {
  Choice best;
  best.error = 3121200;
  for (int table = 0; table < 8; ++table) {
    const Choice choice = withTable(image, half, base, table);
    if (choice.error < best.error) best = choice;
  }
  return best;
}

Words compressFast(const Image& image, int x, int y) { return codeMean(image, x, y, false).words; }

Words compressFlipMean(const Image& image, int x, int y) {
  return better(codeMean(image, x, y, false), codeMean(image, x, y, true));
}

Words compressFlipNearest(const Image& image, int x, int y) {
  return better(codeNearest(image, x, y, false), codeNearest(image, x, y, true));
}

Words compressSlow(const Image& image, int x, int y) {
  Image decoded = image;
  const Words first = compressFlipMean(image, x, y);
  decompress(first, decoded, x, y);
  const int firstError = blockError(image, decoded, x, y);
  const Words second = compressFlipNearest(image, x, y);
  decompress(second, decoded, x, y);
  return blockError(image, decoded, x, y) < firstError ? second : first;
}

void decompress(const Words& words, Image& image, int x, int y) {
  const Parts parts(words);
  for (int pixel = 0; pixel < 16; ++pixel) {
    for (size_t c = 0; c < 3; ++c) {
      image.at(x + pixel / 4, y + pixel % 4)[c] = static_cast<uint8_t>(
          clampByte(parts.bases[parts.half(pixel)][c] + parts.modifier(pixel)));
    }
  }
}

int blockError(const Image& a, const Image& b, int x, int y) {
  int sum = 0;
  for (int row = 0; row < 4; ++row) {
    for (int column = 0; column < 4; ++column) {
      const uint8_t* const p = a.at(x + column, y + row);
      sum += distance({p[0], p[1], p[2]}, b.at(x + column, y + row));
    }
  }
  return sum;
}

Words blend(const Words& overlayWords, const Words& baseWords, int weight0, int weight1) {
  const Parts overlay(overlayWords), base(baseWords);
  const auto divide = [](int v) { return (v + (v >> 8) + 128) >> 8; };
  const bool flip = weight0 > weight1 ? overlay.flip : base.flip;
  std::array<Color, 2> five, four;
  int tables[2];
  for (size_t h = 0; h < 2; ++h) {
    for (size_t c = 0; c < 3; ++c) {
      const int color = (weight1 * base.bases[h][c] + weight0 * overlay.bases[h][c]) >> 10;
      five[h][c] = divide(color * 31);
      four[h][c] = divide(color * 15);
    }
    tables[h] = (weight1 * (base.tables[h] * 2) + weight0 * (overlay.tables[h] * 2)) >> 11;
  }
  const bool differential = fitsThreeBits(five[0], five[1]);
  Words words;
  for (size_t c = 0; c < 3; ++c) {
    const int byte = 24 - 8 * static_cast<int>(c);
    if (differential) {
      put(words.word0, five[0][c], 5, byte + 3);
      put(words.word0, five[1][c] - five[0][c], 3, byte);
    } else {
      put(words.word0, four[0][c], 4, byte + 4);
      put(words.word0, four[1][c], 4, byte);
    }
  }
  put(words.word0, tables[0], 3, 5);
  put(words.word0, tables[1], 3, 2);
  put(words.word0, differential ? 1 : 0, 1, 1);
  put(words.word0, flip ? 1 : 0, 1, 0);
  for (int pixel = 0; pixel < 16; ++pixel) {
    const int value = (weight1 * base.modifier(pixel) + weight0 * overlay.modifier(pixel)) >> 10;
    const int half = (flip ? pixel % 4 : pixel / 4) >= 2 ? 1 : 0;
    int nearest = 0;
    for (int position = 1; position < 4; ++position) {
      const int* const row = kModifiers[tables[half]];
      if (std::abs(value - row[position]) < std::abs(value - row[nearest])) nearest = position;
    }
    put(words.word1, kIndexOfPosition[nearest] & 1, 1, pixel);
    put(words.word1, kIndexOfPosition[nearest] >> 1, 1, 16 + pixel);
  }
  return words;
}

}  // namespace qpx::reference
