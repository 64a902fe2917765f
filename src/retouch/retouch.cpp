#include <qpx/retouch.h>

#include <cstring>
#include <optional>

#include "geometry/packed_rgb.h"
#include "retouch/fill_front.h"
#include "retouch/full_size.h"
#include "retouch/level.h"
#include "retouch/patch_blend.h"
#include "retouch/patch_means.h"
#include "retouch/patch_search.h"
#include "retouch/source_map.h"
#include "retouch/surroundings.h"

namespace qpx::retouch {
namespace {

struct Settings {
  int32_t radius;
  float weight;
};

// What it costs a patch to be lighter or darker by one than what is known of its place: as much as
// one in a fifth of its pixels. Where it is still unknown, the patch brings nothing strange then.
// Found by filling holes of known contents; a cost of all pixels is worse than none.
constexpr int32_t meanWeight(int32_t side) { return side * side / 5; }

Level packedLevel(const MBitmap& bitmap, uint8_t* mask) {
  return {bitmap.plane[0], bitmap.pitch[0], packedRgbBytes(bitmap.format), 1, mask,
          bitmap.width,    bitmap.height};
}

// The guide's colours in planes of their own, and its mask. They are filled as the work goes on.
class Guide {
 public:
  explicit Guide(const MBitmap& bitmap)
      : pixels_(int64_t{bitmap.width} * bitmap.height),
        planes_(3 * pixels_),
        mask_(pixels_),
        level_{planes_.get(), bitmap.width, 1, static_cast<ptrdiff_t>(pixels_), mask_.get(),
               bitmap.width,  bitmap.height} {}
  explicit operator bool() const { return planes_ && mask_; }

  void load(const MBitmap& bitmap, const MBitmap& mask) const {
    const int32_t bytes = packedRgbBytes(bitmap.format);
    for (int32_t y = 0; y < level_.height; ++y) {
      const uint8_t* const row = rowOf(bitmap, y);
      const uint8_t* const marks = rowOf(mask, y);
      for (int32_t x = 0; x < level_.width; ++x) {
        uint8_t* const to = level_.pixel(x, y);
        for (ptrdiff_t c = 0; c < 3; ++c) to[level_.channelStep * c] = row[bytes * x + c];
        level_.state(x, y) = stateOf(marks[x]);
      }
    }
  }

  const Level& level() const { return level_; }

 private:
  int64_t pixels_;
  Buffer<uint8_t> planes_;
  Buffer<uint8_t> mask_;
  Level level_;
};

int64_t countHoles(const Level& level) {
  int64_t holes = 0;
  for (int32_t y = 0; y < level.height; ++y) {
    for (int32_t x = 0; x < level.width; ++x) holes += level.isHole(x, y);
  }
  return holes;
}

void copyPixels(const MBitmap& from, const MBitmap& to) {
  const size_t bytes =
      static_cast<size_t>(packedRgbBytes(from.format)) * static_cast<size_t>(from.width);
  for (int32_t y = 0; y < from.height; ++y) std::memmove(rowOf(to, y), rowOf(from, y), bytes);
}

// Everything that filling by patches needs at the guide's size.
class PatchFill {
 public:
  PatchFill(const Level& guide, const Settings& settings)
      : guide_(guide),
        radius_(settings.radius),
        front_(guide, settings.radius, settings.weight),
        target_(squareOf(2 * settings.radius + 1)),
        blend_(2 * settings.radius + 1, 2 * settings.radius + 1),
        means_(int64_t{guide.width} * guide.height),
        row_(guide.width) {}
  explicit operator bool() const { return front_ && target_ && blend_ && means_ && row_; }

  // Whether there are patches to fill from.
  bool findSources() const {
    return markSources(guide_, 2 * radius_ + 1, 2 * radius_ + 1, {radius_, radius_}, row_.get());
  }

  // After each patch done(patch, offset) is told where it is and how far from there it came.
  template <typename Done>
  void run(const Done& done) {
    patchMeans(guide_, radius_, row_.get(), means_.get());
    front_.start();
    std::optional<MPoint> last;
    while (const std::optional<MPoint> pixel = front_.next()) {
      const std::optional<MPoint> match = findMatch(*pixel, last.value_or(*pixel));
      if (!match) return;
      last = match;
      const MRect patch = intersection(squareAround(*pixel, radius_), guide_.all());
      const MPoint offset = {match->x - pixel->x, match->y - pixel->y};
      fill(patch, offset);
      done(patch, offset);
      front_.refreshAround(patch);
    }
  }

 private:
  static int64_t squareOf(int64_t side) { return side * side; }

  std::optional<MPoint> findMatch(MPoint pixel, MPoint last) {
    const MRect patch = intersection(squareAround(pixel, radius_), guide_.all());
    target_.load(guide_, patch, pixel, {guide_.pitch, guide_.channelStep});
    const PatchField field = {
        .level = guide_,
        .corner = {0, 0},
        .samples = guide_.samples,
        .pitch = guide_.pitch,
        .means = means_.get(),
        .meanWeight = meanWeight(2 * radius_ + 1),
        .origins = grown(guide_.all(), -radius_),
        .spare = 0,
    };
    const int32_t reach = radius_ + 1;
    const MRect window = {last.x - reach, last.y - reach, last.x + reach, last.y + reach};
    return findPatch(target_, field, window);
  }

  void fill(const MRect& patch, MPoint offset) {
    const float confidence = front_.patchConfidence(patch);
    blend_.fill(guide_, patch, offset);
    for (const MPoint& pixel : blend_.filled()) guide_.state(pixel.x, pixel.y) = kKnown;
    for (const MPoint& pixel : blend_.filled()) front_.filled(pixel, confidence);
  }

  const Level& guide_;
  int32_t radius_;
  FillFront front_;
  PatchTarget target_;
  PatchBlend blend_;
  Buffer<uint8_t> means_;
  Buffer<int32_t> row_;
};

struct Job {
  const MBitmap& source;
  const MBitmap& guide;
  const MBitmap& mask;
  Settings settings;
  const MBitmap& destination;
};

// Where no patch is whole, at full size.
int32_t fillWithoutPatches(const Job& job, const Level& full) {
  const int64_t holes = countHoles(full);
  Buffer<MPoint> queue(holes);
  if (!queue) return QPX_NO_MEMORY;
  copyPixels(job.source, job.destination);
  fillFromSurroundings(full, queue.get());
  return QPX_OK;
}

// Guide and picture are of one size, but not always of the same pixels: the guide may have lost its
// noise. What comes into the picture are pixels of its own.
int32_t runAtOneSize(const Job& job, const Guide& guide, PatchFill& patches) {
  const int64_t pixels = int64_t{job.source.width} * job.source.height;
  const int32_t side = 2 * job.settings.radius + 1;
  const Buffer<uint8_t> mask(pixels);
  PatchBlend blend(side, side);
  if (!mask || !blend) return QPX_NO_MEMORY;
  std::memcpy(mask.get(), guide.level().mask, static_cast<size_t>(pixels));
  const Level full = packedLevel(job.destination, mask.get());
  if (!patches.findSources()) return fillWithoutPatches(job, full);
  copyPixels(job.source, job.destination);
  patches.run([&](const MRect& patch, MPoint offset) {
    blend.fill(full, patch, offset);
    for (const MPoint& pixel : blend.filled()) full.state(pixel.x, pixel.y) = kFromFill;
  });
  return QPX_OK;
}

int32_t runAtTwoSizes(const Job& job, const Guide& guide, PatchFill& patches) {
  const Cells across(job.source.width, job.guide.width);
  const Cells down(job.source.height, job.guide.height);
  const Buffer<uint8_t> mask(int64_t{job.source.width} * job.source.height);
  if (!across || !down || !mask) return QPX_NO_MEMORY;
  across.fill();
  down.fill();
  const Level level = packedLevel(job.destination, mask.get());
  FullSize full(level, across, down, job.settings.radius);
  if (!full) return QPX_NO_MEMORY;
  full.start(guide.level());
  if (!patches.findSources()) return fillWithoutPatches(job, level);
  copyPixels(job.source, job.destination);
  patches.run([&](const MRect& patch, MPoint offset) { full.fill(guide.level(), patch, offset); });
  return QPX_OK;
}

int32_t run(const Job& job) {
  const Guide guide(job.guide);
  if (!guide) return QPX_NO_MEMORY;
  guide.load(job.guide, job.mask);
  if (countHoles(guide.level()) == 0) {
    copyPixels(job.source, job.destination);
    return QPX_OK;
  }
  PatchFill patches(guide.level(), job.settings);
  if (!patches) return QPX_NO_MEMORY;
  return sameSize(job.source, job.guide) ? runAtOneSize(job, guide, patches)
                                         : runAtTwoSizes(job, guide, patches);
}

// Comparisons that are false for what is no number.
std::optional<Settings> settingsOf(const float* settings) {
  if (!(settings[0] >= 1 && settings[0] < 11)) return std::nullopt;
  if (!(settings[1] >= 0 && settings[1] <= 1)) return std::nullopt;
  return Settings{static_cast<int32_t>(settings[0]), settings[1]};
}

bool fits(const MBitmap& source, const MBitmap& guide, const MBitmap& mask,
          const MBitmap& destination) {
  const int32_t bytes = packedRgbBytes(source.format);
  return isBgr(withoutOrder(source.format)) && guide.format == source.format &&
         destination.format == source.format && mask.format == QPX_FORMAT_GREY8 &&
         hasRows(source, bytes) && hasRows(guide, bytes) && hasRows(mask, 1) &&
         hasRows(destination, bytes) && sameSize(source, destination) && sameSize(guide, mask);
}

}  // namespace
}  // namespace qpx::retouch

using namespace qpx;

int32_t ReTouch(const MBitmap* source, const MBitmap* guide, const MBitmap* mask,
                const float* settings, MBitmap* destination) {
  if (source == nullptr || guide == nullptr || mask == nullptr || destination == nullptr ||
      settings == nullptr) {
    return QPX_BAD_PARAM;
  }
  const auto numbers = retouch::settingsOf(settings);
  if (!numbers || !retouch::fits(*source, *guide, *mask, *destination)) return QPX_BAD_PARAM;
  return retouch::run({*source, *guide, *mask, *numbers, *destination});
}
