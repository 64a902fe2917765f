#include "tables/tones.h"

#include "kit/curve.h"
#include "textures/families.h"

namespace qpx::drawing {
namespace {

template <typename Red, typename Green, typename Blue>
Bytes entries(Red red, Green green, Blue blue) {
  Bytes bytes;
  for (int v = 0; v < 256; ++v) {
    const auto in = static_cast<float>(v);
    bytes.push_back(level(blue(in)));
    bytes.push_back(level(green(in)));
    bytes.push_back(level(red(in)));
  }
  return bytes;
}

template <size_t R, size_t G, size_t B>
Bytes entries(const Knot (&red)[R], const Knot (&green)[G], const Knot (&blue)[B]) {
  return entries([&](float v) { return curve(red, v); }, [&](float v) { return curve(green, v); },
                 [&](float v) { return curve(blue, v); });
}

/// What the film makes of a scene, known by its reverse: the scene's sample is
/// (square·v² + linear·v + constant) / 32768 for a sample v of the slide.
struct Film {
  double square, linear, constant;

  double slide(double scene) const {
    const double rest = 32768 * scene - constant;
    return (std::sqrt(linear * linear + 4 * square * rest) - linear) / (2 * square);
  }
  double slope(double slide) const { return 32768 / (2 * square * slide + linear); }
};

constexpr Film kRedDye = {59, 5266, 1974940};
constexpr Film kGreenDye = {102, 6947, 814583};
constexpr Film kBlueDye = {144, 13235, -1127059};

/// The film's curve, with a toe below the scene's sample `toe` and a shoulder above `shoulder`
/// where the quadratic would clip: powers that end in black and white and meet it without a bend.
float slideTone(const Film& film, double toe, double shoulder, float v) {
  // The reverse rounds down: half a level more is its middle.
  const double scene = v + 0.5;
  if (scene < toe) {
    const double edge = film.slide(toe);
    const double exponent = film.slope(edge) * toe / edge;
    return static_cast<float>(edge) *
           power(static_cast<float>(scene / toe), static_cast<float>(exponent));
  }
  if (scene > shoulder) {
    const double edge = 255 - film.slide(shoulder);
    const double width = 255.5 - shoulder;
    const double exponent = film.slope(255 - edge) * width / edge;
    return 255 - static_cast<float>(edge) * power(static_cast<float>((255.5 - scene) / width),
                                                  static_cast<float>(exponent));
  }
  return static_cast<float>(film.slide(scene));
}

constexpr double kNone = 256;

/// Tables that lay a texture over a sample in whole numbers, so that row code can do without them:
/// a texel darkens below the middle and lightens above it, in proportion to its distance from
/// there. `darker` and `lighter` say what the ends do to a sample, in 1024ths of 255.
template <typename Darker, typename Lighter>
Bytes layTable(Darker darker, Lighter lighter) {
  Bytes bytes;
  for (int base = 0; base < 256; ++base) {
    const int down = std::min(darker(base), 255);
    const int up = std::min(lighter(base), 255);
    for (int texel = 0; texel < 256; ++texel) {
      const int distance = 2 * texel - 255;
      const int laid = distance < 0 ? base - ((-distance * down + 510) >> 10)
                                    : base + ((distance * up + 510) >> 10);
      bytes.push_back(static_cast<uint8_t>(std::clamp(laid, 0, 255)));
    }
  }
  return bytes;
}

/// base - base², of 255.
int softDarker(int base) { return (1024 * base * (255 - base) + 32512) / 65025; }

/// The square root of the base less itself. The root is cut, at 1024 times its size.
int softLighter(int base) {
  const auto square = static_cast<int64_t>(255) * base * 1024 * 1024;
  auto root = static_cast<int64_t>(std::sqrt(static_cast<double>(square)));
  while (root * root > square) {
    --root;
  }
  while ((root + 1) * (root + 1) <= square) {
    ++root;
  }
  return static_cast<int>((root - 1024 * base + 127) / 255);
}

}  // namespace

// Slide film in the wrong bath: red and green gain contrast, shadows are left to blue, and lights
// lose it to a warm yellow.
Bytes buildReversal() {
  return entries([](float v) { return slideTone(kRedDye, 68, 205, v); },
                 [](float v) { return slideTone(kGreenDye, 32, kNone, v); },
                 [](float v) { return slideTone(kBlueDye, 0, kNone, v); });
}

// A toy camera in winter: steep red, shadows of slate blue, lights of thin ice.
Bytes buildVillage() {
  constexpr Knot kReds[] = {{0, 0}, {48, 26}, {112, 92}, {192, 194}, {255, 238}};
  constexpr Knot kGreens[] = {{0, 6}, {56, 50}, {120, 124}, {192, 206}, {255, 250}};
  constexpr Knot kBlues[] = {{0, 34}, {64, 90}, {128, 156}, {192, 216}, {255, 255}};
  return entries(kReds, kGreens, kBlues);
}

// A bright morning on a veranda: generous light, open shadows with a breath of sea green, and
// white that has the sun in it.
Bytes buildRixi() {
  constexpr Knot kReds[] = {{0, 12}, {48, 77}, {128, 167}, {192, 223}, {255, 254}};
  constexpr Knot kGreens[] = {{0, 16}, {48, 80}, {128, 165}, {192, 218}, {255, 252}};
  constexpr Knot kBlues[] = {{0, 24}, {48, 84}, {128, 163}, {192, 212}, {255, 245}};
  return entries(kReds, kGreens, kBlues);
}

// Light through a curtain: shadows open, nothing glares.
Bytes buildSoftLight() {
  constexpr Knot kReds[] = {{0, 6}, {64, 80}, {128, 150}, {192, 210}, {255, 255}};
  constexpr Knot kGreens[] = {{0, 2}, {64, 73}, {128, 141}, {192, 203}, {255, 252}};
  constexpr Knot kBlues[] = {{0, 6}, {64, 77}, {128, 145}, {192, 206}, {255, 252}};
  return entries(kReds, kGreens, kBlues);
}

Bytes buildSoftLightBlend() { return layTable(softDarker, softLighter); }

// A texture laid over pink skin: its darks are held back, its lights reach a little into black.
Bytes buildPinkBlend() {
  return layTable([](int base) { return softDarker(base) / 2; },
                  [](int base) { return (5 * softLighter(base) + (255 - base) / 2) / 8; });
}

Bytes buildLomoTone() {
  constexpr Knot kTones[] = {{0, 0}, {64, 42}, {128, 118}, {192, 205}, {255, 255}};
  Bytes bytes;
  for (int v = 0; v < 256; ++v) {
    const uint8_t tone = level(curve(kTones, static_cast<float>(v)));
    bytes.insert(bytes.end(), {tone, tone, tone, 255});
  }
  return bytes;
}

// Rose in the shadows, blossom in the lights.
Bytes buildPinkTone() {
  constexpr Knot kReds[] = {{0, 34}, {64, 98}, {128, 164}, {192, 220}, {255, 255}};
  constexpr Knot kGreens[] = {{0, 20}, {64, 78}, {128, 142}, {192, 202}, {255, 246}};
  constexpr Knot kBlues[] = {{0, 28}, {64, 88}, {128, 149}, {192, 205}, {255, 248}};
  const Bytes curves = entries(kReds, kGreens, kBlues);
  Bytes bytes;
  for (size_t at = 0; at < curves.size(); at += 3) {
    bytes.insert(bytes.end(), {curves[at + kRed], curves[at + kGreen], curves[at + kBlue], 255});
  }
  return bytes;
}

// Film that was kept too long: shadows have gone green, lights to the colour of peach skin. Each
// block holds all three curves.
Bytes buildFleetTone() {
  constexpr Knot kReds[] = {{0, 10}, {64, 70}, {128, 150}, {192, 216}, {255, 253}};
  constexpr Knot kGreens[] = {{0, 26}, {64, 80}, {128, 142}, {192, 199}, {255, 240}};
  constexpr Knot kBlues[] = {{0, 30}, {64, 78}, {128, 128}, {192, 176}, {255, 216}};
  const Bytes block = entries(kReds, kGreens, kBlues);
  Bytes bytes;
  for (int i = 0; i < 3; ++i) {
    bytes.insert(bytes.end(), block.begin(), block.end());
  }
  return bytes;
}

namespace {

constexpr Table kTables[] = {
    {"reversal_data", 768, buildReversal},
    {"village_data", 768, buildVillage},
    {"rixi_data", 768, buildRixi},
    {"softlight_data", 768, buildSoftLight},
    {"fleet_data3", 65536, buildSoftLightBlend},
    {"pink_mask2", 65536, buildPinkBlend},
    {"lomo_mask2", 1024, buildLomoTone},
    {"pink_mask3", 1024, buildPinkTone},
    {"fleet_data2", 2304, buildFleetTone},
};

}  // namespace

std::span<const Table> toneTables() { return kTables; }

}  // namespace qpx::drawing
