#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "subjects.h"

namespace qpx::bench {
namespace {

constexpr QPXBrightnessContrastParam kBrighter = {20, 15};

bool semiPlanar(const Frame& frame) { return frame.format == QPX_FORMAT_NV21; }

int32_t bytesPerPixel(const Frame& frame) {
  return semiPlanar(frame) ? 1 : UTIL_GetPixelBytesEX(frame.format);
}

class EngineOwner {
 public:
  EngineOwner(const Frame& frame, const std::vector<uint32_t>& effects) {
    std::vector<QPXEffectItem> items;
    for (const uint32_t id : effects) {
      const bool adjusts = id == 0x1300;
      items.push_back(
          {id, adjusts ? &kBrighter : nullptr, adjusts ? uint32_t{sizeof kBrighter} : 0});
    }
    const MBitmap image = {frame.format, frame.width, frame.height, {}, {}};
    const QPXEffectList list = {items.data(), static_cast<uint32_t>(items.size()), 0};
    if (QPXCreate(&image, &image, &list, &handle_) != QPX_OK) {
      std::fprintf(stderr, "no engine for effect 0x%X\n", static_cast<unsigned>(effects[0]));
      std::exit(1);
    }
  }
  ~EngineOwner() { QPXDestroy(handle_); }
  EngineOwner(const EngineOwner&) = delete;
  EngineOwner& operator=(const EngineOwner&) = delete;

  void run(Pixels& source, Pixels& target, int32_t rows) const {
    const Frame& frame = source.frame();
    for (int32_t top = 0; top < frame.height; top += rows) {
      MRect band = {0, top, frame.width, std::min(top + rows, frame.height)};
      const QPXPlaneSet in = source.planesAt(top);
      const QPXPlaneSet out = target.planesAt(top);
      QPXProcess(handle_, &out, &in, &band);
    }
  }

 private:
  QPXEngine* handle_ = nullptr;
};

}  // namespace

size_t Frame::bytes() const {
  const size_t luma = static_cast<size_t>(pixels() * bytesPerPixel(*this));
  return semiPlanar(*this) ? luma + luma / 2 : luma;
}

Pixels::Pixels(const Frame& frame) : frame_(frame), bytes_(frame.bytes()) {
  uint32_t state = 1;
  for (uint8_t& byte : bytes_) {
    state = state * 1664525 + 1013904223;
    byte = static_cast<uint8_t>(state >> 24);
  }
}

QPXPlaneSet Pixels::planesAt(int32_t top) {
  const int32_t pitch = frame_.width * bytesPerPixel(frame_);
  QPXPlaneSet planes = {};
  planes.plane[0] = data() + ptrdiff_t{pitch} * top;
  planes.pitch[0] = pitch;
  if (semiPlanar(frame_)) {
    planes.plane[2] = data() + frame_.pixels() + ptrdiff_t{pitch} * (top / 2);
    planes.plane[1] = planes.plane[2] + 1;
    planes.pitch[1] = planes.pitch[2] = pitch;
  }
  return planes;
}

Body engineBody(PicturesPtr pictures, const std::vector<uint32_t>& effects, int32_t rows) {
  const Frame& frame = pictures->source.frame();
  const auto engine = std::make_shared<EngineOwner>(frame, effects);
  const int32_t bandRows = rows > 0 ? rows : frame.height;
  return [=] { engine->run(pictures->source, pictures->target, bandRows); };
}

Body engineInPlaceBody(PicturesPtr pictures, uint32_t effect) {
  const Frame& frame = pictures->source.frame();
  const auto engine = std::make_shared<EngineOwner>(frame, std::vector<uint32_t>{effect});
  return [=] { engine->run(pictures->target, pictures->target, frame.height); };
}

Body copyBody(PicturesPtr pictures) {
  return [=] {
    std::memcpy(pictures->target.data(), pictures->source.data(), pictures->source.frame().bytes());
  };
}

}  // namespace qpx::bench
