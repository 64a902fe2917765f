#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "subjects.h"

namespace qpx::bench {
namespace {

constexpr QPXBrightnessContrastParam kBrighter = {20, 15};

bool planar(const Frame& frame) {
  return frame.format == QPX_FORMAT_NV21 || frame.format == QPX_FORMAT_I420;
}

int32_t bytesPerPixel(const Frame& frame) {
  if (planar(frame)) return 1;
  return frame.format == QPX_FORMAT_YUYV ? 2 : UTIL_GetPixelBytesEX(frame.format);
}

class EngineOwner {
 public:
  EngineOwner(const Frame& frame, const std::vector<EffectCall>& calls) {
    std::vector<QPXEffectItem> items;
    for (const EffectCall& call : calls) {
      items.push_back({call.id, call.record.empty() ? nullptr : call.record.data(),
                       static_cast<uint32_t>(call.record.size())});
    }
    const MBitmap image = {frame.format, frame.width, frame.height, {}, {}};
    const QPXEffectList list = {items.data(), static_cast<uint32_t>(items.size()), 0};
    if (QPXCreate(&image, &image, &list, &handle_) != QPX_OK) {
      std::fprintf(stderr, "no engine for effect 0x%X\n", static_cast<unsigned>(calls[0].id));
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

// What the effect of brightness is given; the others have no record.
std::vector<EffectCall> callsOf(const std::vector<uint32_t>& effects) {
  const auto* brighter = reinterpret_cast<const uint8_t*>(&kBrighter);
  std::vector<EffectCall> calls;
  for (const uint32_t id : effects) {
    calls.push_back({id, {}});
    if (id == 0x1300) calls.back().record.assign(brighter, brighter + sizeof kBrighter);
  }
  return calls;
}

}  // namespace

size_t Frame::bytes() const {
  const size_t luma = static_cast<size_t>(pixels() * bytesPerPixel(*this));
  return planar(*this) ? luma + luma / 2 : luma;
}

std::string sizeName(const Frame& frame) {
  return std::to_string(frame.width) + "x" + std::to_string(frame.height);
}

// Light that rises and falls across the picture, colours of moderate strength, grain: what recipes
// that branch by colour cost depends on it.
Pixels::Pixels(const Frame& frame) : frame_(frame), bytes_(frame.bytes()) {
  const int64_t sampleBytes = bytesPerPixel(frame);
  const int64_t lumaBytes = frame.pixels() * sampleBytes;
  uint32_t state = 1;
  for (int64_t i = 0; i < static_cast<int64_t>(bytes_.size()); ++i) {
    state = state * 1664525 + 1013904223;
    const int32_t grain = static_cast<int32_t>(state >> 27);
    const int64_t pixel = i / sampleBytes;
    const int64_t channel = i % sampleBytes;
    const int32_t wave = static_cast<int32_t>(std::abs((pixel + pixel / frame.width) % 512 - 256));
    const bool chroma = i >= lumaBytes || (frame.format == QPX_FORMAT_YUYV && channel == 1);
    const int32_t value = chroma ? 104 + wave / 8 + grain / 2
                                 : 16 + wave * 3 / 4 + static_cast<int32_t>(channel) * 8 + grain;
    bytes_[static_cast<size_t>(i)] = static_cast<uint8_t>(value);
  }
}

QPXPlaneSet Pixels::planesAt(int32_t top) {
  const int32_t pitch = frame_.width * bytesPerPixel(frame_);
  QPXPlaneSet planes = {};
  planes.plane[0] = data() + ptrdiff_t{pitch} * top;
  planes.pitch[0] = pitch;
  if (frame_.format == QPX_FORMAT_I420) {
    planes.pitch[1] = planes.pitch[2] = pitch / 2;
    planes.plane[1] = data() + frame_.pixels() + ptrdiff_t{pitch} / 2 * (top / 2);
    planes.plane[2] = planes.plane[1] + frame_.pixels() / 4;
  } else if (planar(frame_)) {
    planes.plane[2] = data() + frame_.pixels() + ptrdiff_t{pitch} * (top / 2);
    planes.plane[1] = planes.plane[2] + 1;
    planes.pitch[1] = planes.pitch[2] = pitch;
  }
  return planes;
}

PicturesPtr Album::pictures(const NamedFormat& format, const Frame& size) {
  const Frame frame = {format.format, size.width, size.height};
  PicturesPtr& made = pictures_[format.name + sizeName(frame)];
  if (made == nullptr) made = std::make_shared<Pictures>(frame);
  return made;
}

Body engineBody(PicturesPtr pictures, const std::vector<uint32_t>& effects, int32_t rows) {
  const Frame& frame = pictures->source.frame();
  const auto engine = std::make_shared<EngineOwner>(frame, callsOf(effects));
  const int32_t bandRows = rows > 0 ? rows : frame.height;
  return [=] { engine->run(pictures->source, pictures->target, bandRows); };
}

Body lookBody(PicturesPtr pictures, const EffectCall& call) {
  const Frame& frame = pictures->source.frame();
  const auto engine = std::make_shared<EngineOwner>(frame, std::vector<EffectCall>{call});
  return [=] { engine->run(pictures->source, pictures->target, frame.height); };
}

Body engineInPlaceBody(PicturesPtr pictures, uint32_t effect) {
  const Frame& frame = pictures->source.frame();
  const auto engine = std::make_shared<EngineOwner>(frame, callsOf({effect}));
  return [=] { engine->run(pictures->target, pictures->target, frame.height); };
}

Body copyBody(PicturesPtr pictures) {
  return [=] {
    std::memcpy(pictures->target.data(), pictures->source.data(), pictures->source.frame().bytes());
  };
}

}  // namespace qpx::bench
