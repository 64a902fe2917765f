// The curve images of the numbered looks: Hudson (3), Brannan (4), Toaster (8, 9), Lofi (10),
// Valencia (12).
#include "kit/curve.h"
#include "textures/families.h"

namespace qpx::drawing {
namespace {

/// `rows` rows of 256 entries of `stride` bytes; `color(row, value, sample)` fills the first three
/// bytes of an entry.
template <typename Fill>
std::vector<uint8_t> curveImage(int rows, int stride, Fill color) {
  std::vector<uint8_t> bytes;
  for (int row = 0; row < rows; ++row) {
    for (int v = 0; v < 256; ++v) {
      float entry[3];
      color(row, static_cast<float>(v), entry);
      for (int k = 0; k < stride; ++k) {
        bytes.push_back(k < 3 ? level(entry[k]) : uint8_t{255});
      }
    }
  }
  return bytes;
}

// Red is read from row 0, green from row 1, blue from row 2; every row holds all three.
std::vector<uint8_t> buildHudson() {
  constexpr Knot kRed[] = {{0, 24}, {48, 52}, {128, 136}, {208, 226}, {255, 255}};
  constexpr Knot kGreen[] = {{0, 20}, {56, 62}, {128, 144}, {200, 216}, {255, 250}};
  constexpr Knot kBlue[] = {{0, 48}, {64, 92}, {128, 156}, {192, 202}, {255, 240}};
  return curveImage(3, 4, [&](int, float v, float* out) {
    out[0] = curve(kRed, v);
    out[1] = curve(kGreen, v);
    out[2] = curve(kBlue, v);
  });
}

std::vector<uint8_t> buildLofi() {
  constexpr Knot kAll[] = {{0, 0}, {48, 26}, {104, 96}, {168, 190}, {216, 240}, {255, 255}};
  constexpr Knot kBlue[] = {{0, 4}, {56, 38}, {120, 112}, {184, 198}, {255, 246}};
  return curveImage(3, 4, [&](int, float v, float* out) {
    out[0] = curve(kAll, v);
    out[1] = curve(kAll, v);
    out[2] = curve(kBlue, v);
  });
}

std::vector<uint8_t> buildValencia() {
  constexpr Knot kRed[] = {{0, 22}, {64, 88}, {144, 172}, {208, 228}, {255, 255}};
  constexpr Knot kGreen[] = {{0, 14}, {64, 72}, {128, 140}, {200, 212}, {255, 246}};
  constexpr Knot kBlue[] = {{0, 36}, {72, 84}, {136, 134}, {200, 186}, {255, 224}};
  return curveImage(3, 4, [&](int, float v, float* out) {
    out[0] = curve(kRed, v);
    out[1] = curve(kGreen, v);
    out[2] = curve(kBlue, v);
  });
}

// Five rows of three-byte entries: the print's process by sample, the burnt border by sample,
// contrast by sample, the tint by luma, the veil by the mean of the channels.
std::vector<uint8_t> buildBrannan() {
  constexpr Knot kProcess[] = {{0, 36}, {60, 66}, {128, 142}, {196, 218}, {255, 250}};
  constexpr Knot kBorder[] = {{0, 0}, {80, 40}, {160, 116}, {255, 214}};
  constexpr Knot kContrast[] = {{0, 0}, {64, 38}, {128, 132}, {192, 218}, {255, 255}};
  return curveImage(5, 3, [&](int row, float v, float* out) {
    const float tone = row == 0   ? curve(kProcess, v)
                       : row == 1 ? curve(kBorder, v)
                       : row == 2 ? curve(kContrast, v)
                                  : v;
    constexpr float kTints[5][3] = {{4, 2, -6}, {3, 0, -6}, {0, 0, 0}, {10, 4, -14}, {14, 10, 4}};
    for (int k = 0; k < 3; ++k) {
      // A tint belongs to the middle tones: it leaves black and white alone.
      out[k] = tone + kTints[row][k] * 4 * (v / 255) * (1 - v / 255);
    }
  });
}

std::vector<uint8_t> buildToaster() {
  constexpr Knot kRed[] = {{0, 72}, {64, 128}, {144, 204}, {255, 255}};
  constexpr Knot kGreen[] = {{0, 22}, {64, 66}, {136, 144}, {204, 214}, {255, 244}};
  constexpr Knot kBlue[] = {{0, 48}, {72, 82}, {144, 138}, {255, 206}};
  return curveImage(1, 4, [&](int, float v, float* out) {
    out[0] = curve(kRed, v);
    out[1] = curve(kGreen, v);
    out[2] = curve(kBlue, v);
  });
}

// By the square of the distance from the middle, 255 in the corner: the burnt rim turns from amber
// to plum.
std::vector<uint8_t> buildToasterRim() {
  constexpr Knot kRed[] = {{0, 255}, {64, 246}, {144, 190}, {255, 92}};
  constexpr Knot kGreen[] = {{0, 246}, {64, 222}, {144, 136}, {255, 42}};
  constexpr Knot kBlue[] = {{0, 226}, {64, 196}, {144, 124}, {255, 62}};
  return curveImage(1, 4, [&](int, float v, float* out) {
    out[0] = curve(kRed, v);
    out[1] = curve(kGreen, v);
    out[2] = curve(kBlue, v);
  });
}

constexpr Table kTables[] = {
    {"textureData3", 3072, buildHudson},  {"textureData4", 3840, buildBrannan},
    {"textureData8", 1024, buildToaster}, {"textureData9", 1024, buildToasterRim},
    {"textureData10", 3072, buildLofi},   {"textureData12", 3072, buildValencia},
};

}  // namespace

std::span<const Table> lookTables() { return kTables; }

}  // namespace qpx::drawing
