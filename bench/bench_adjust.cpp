// Parametric adjustments, each with settings that change the picture, beside memcpy of the same
// frame and the nearest that OpenCV or libyuv do. One thread; CPU time. The first row of a work is
// the peer, so that "x first" is what an adjustment takes of its time.
#include <benchmark/benchmark.h>
#include <qpx/kernels_adjust.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "adjust_peers.h"
#include "bench_report.h"
#include "catalogue_effects.h"
#include "engine/engine_handle.h"
#include "subjects.h"

namespace qpx::bench {
namespace {

QPXEffectInfo effectNamed(const std::string& name) {
  QPXEffectInfo effect;
  if (findBuilt(name, effect)) return effect;
  std::fprintf(stderr, "bench_adjust: the library has no effect %s\n", name.c_str());
  std::exit(1);
}

EffectCall initialCall(const std::string& name) {
  const QPXEffectInfo effect = effectNamed(name);
  return {effect.id, initialRecord(effect)};
}

template <typename Record>
EffectCall callWith(const std::string& name, const Record& record) {
  EffectCall call = {effectNamed(name).id, std::vector<uint8_t>(sizeof record)};
  std::memcpy(call.record.data(), &record, sizeof record);
  return call;
}

// The rows of a picture of one plane.
struct RowPointers {
  std::vector<uint8_t*> rows;
  QPXRowTable table[1];

  explicit RowPointers(Pixels& pixels) {
    for (int32_t y = 0; y < pixels.frame().height; ++y) rows.push_back(pixels.planesAt(y).plane[0]);
    table[0] = rows.data();
  }
};

struct EngineCloser {
  void operator()(QPXEngine* engine) const { QPXDestroy(engine); }
};

// Some kernels are known by their name alone: the engine runs another one of the same record.
Body kernelBody(const PicturesPtr& on, const EffectCall& call, decltype(&Saturation_RGB) kernel) {
  const Frame& frame = on->source.frame();
  const MBitmap image = {frame.format, frame.width, frame.height, {}, {}};
  const QPXEffectItem item = {call.id, call.record.data(),
                              static_cast<uint32_t>(call.record.size())};
  const QPXEffectList list = {&item, 1, 0};
  QPXEngine* engine = nullptr;
  if (QPXCreate(&image, &image, &list, &engine) != QPX_OK) std::abort();
  const std::shared_ptr<QPXEngine> owner(engine, EngineCloser());
  const auto in = std::make_shared<RowPointers>(on->source);
  const auto out = std::make_shared<RowPointers>(on->target);
  const MRect whole = {0, 0, frame.width, frame.height};
  return [=] {
    if (kernel(headOf(owner.get()), &whole, out->table, in->table) != QPX_OK) std::abort();
  };
}

// All of it the skin of one face, in soft light: every pixel is filtered.
void paintSkin(Pixels& pixels) {
  const Frame& frame = pixels.frame();
  const bool redFirst = frame.format == QPX_FORMAT_RGBA32;
  const int32_t channels = UTIL_GetPixelBytesEX(frame.format);
  const int32_t skin[3] = {redFirst ? 190 : 120, 145, redFirst ? 120 : 190};
  uint32_t state = 7;
  uint8_t* to = pixels.data();
  for (int64_t i = 0; i < frame.pixels(); ++i, to += channels) {
    state = state * 1664525 + 1013904223;
    const int32_t light =
        static_cast<int32_t>(std::abs(i % 1024 - 512)) / 24 + static_cast<int32_t>(state >> 28);
    for (int c = 0; c < 3; ++c) to[c] = static_cast<uint8_t>(skin[c] + light);
    if (channels == 4) to[3] = 255;
  }
}

class Suite {
 public:
  explicit Suite(Report* report) : report_(report) {}

  void addAll() {
    for (const Frame& size : {kFull, kPhoto}) {
      for (const NamedFormat& format : {kBgr24, kRgba32}) addFormat(size, format);
      addWhitening(size);
    }
  }

 private:
  struct Work {
    std::string group;
    std::string name;
    PicturesPtr on;
  };

  void add(const Work& work, const std::string& name, const Body& body) {
    report_->add({work.group, work.name, name, work.on->source.frame().pixels()},
                 [body](benchmark::State& state) {
                   for (auto _ : state) body();
                 });
  }

  void addCopy(const Work& work) { add(work, "memcpy", copyBody(work.on)); }

  void addEffects(const Work& work, const std::vector<const char*>& names) {
    for (const char* name : names) add(work, name, lookBody(work.on, initialCall(name)));
  }

  void addFormat(const Frame& size, const NamedFormat& format) {
    const PicturesPtr on = album_.pictures(format, size);
    const auto work = [&](const char* group) {
      return Work{std::string(group) + ", " + sizeName(size), format.name, on};
    };
    addTones(work("Tone tables"));
    addColors(work("Colours in HLS"), work("Colours in HSV"));
    addLab(work("Colours in CIELAB"));
    addMixer(work("Channel mixer"));
    addWindows(size, format, on);
    addComplexion(size, format);
  }

  void addTones(const Work& work) {
    add(work, "cv::LUT", openCvBody(work.on, 3));
    addCopy(work);
    addEffects(work, {"Levels", "Curve", "newBrightnessContrast", "HighlightBrightDarkShadow",
                      "ColorBalance", "ColorTemperature"});
    const QPXExposureStopsParam darker = {-1.0};
    add(work, "exposure, -1 stop", lookBody(work.on, callWith("exposure", darker)));
  }

  void addColors(const Work& inHls, const Work& inHsv) {
    add(inHls, "cv::cvtColor, HLS", roundTripBody(inHls.on, ColorSpace::hls));
    addCopy(inHls);
    addEffects(inHls, {"HSBAdjust", "Saturation", "SeparateTone"});
    add(inHsv, "cv::cvtColor, HSV", roundTripBody(inHsv.on, ColorSpace::hsv));
    addCopy(inHsv);
    addEffects(inHsv, {"HSLColor", "exposure", "RemoveEdge", "SelectiveColor", "SkinTone"});
    add(inHsv, "SelectiveColorAbsolute",
        kernelBody(inHsv.on, initialCall("SelectiveColor"), SelectiveColorAbsolute_RGB));
  }

  void addLab(const Work& work) {
    add(work, "cv::cvtColor, Lab", roundTripBody(work.on, ColorSpace::lab));
    addCopy(work);
    addEffects(work, {"NaturalSaturation", "NewNaturalSaturation"});
  }

  void addMixer(const Work& work) {
    add(work, "cv::transform", transformBody(work.on));
    if (work.on->source.frame().format == QPX_FORMAT_RGBA32) {
      add(work, "libyuv::ARGBColorMatrix", libyuvMatrixBody(work.on));
    }
    addCopy(work);
    addEffects(work, {"ChannelMixer"});
  }

  void addWindows(const Frame& size, const NamedFormat& format, const PicturesPtr& on) {
    const auto work = [&](const char* group, const std::string& of) {
      return Work{std::string(group) + ", " + sizeName(size), format.name + of, on};
    };
    for (const int radius : {5, 10, 20}) {
      const Work blur = work("Blur", ", radius " + std::to_string(radius));
      add(blur, "cv::GaussianBlur", gaussianBody(on, radius));
      if (format.format == QPX_FORMAT_RGBA32) {
        add(blur, "libyuv::ARGBBlur", libyuvBlurBody(on, radius));
      }
      addCopy(blur);
      const QPXGaussBlurParam gauss = {2 * radius + 1};
      add(blur, "GaussBlur", lookBody(on, callWith("GaussBlur", gauss)));
      const QPXUnsharpMaskParam unsharp = {120, 3, radius};
      add(blur, "SharpenUSM", lookBody(on, callWith("SharpenUSM", unsharp)));
    }
    for (const int window : {3, 31, 101}) {
      const Work box = work("Definition", ", window " + std::to_string(window));
      add(box, "cv::boxFilter", boxBody(on, window));
      addCopy(box);
      for (const int32_t amount : {50, -50}) {
        const QPXDefinitionParam param = {amount, window, 0};
        add(box, "Definition, " + std::to_string(amount),
            lookBody(on, callWith("Definition", param)));
      }
    }
  }

  // cv::bilateralFilter knows three channels alone, whatever ours are. Large windows take it too
  // long on large pictures.
  void addComplexion(const Frame& size, const NamedFormat& format) {
    const PicturesPtr skin = skinPictures(format, size), three = skinPictures(kBgr24, size);
    for (const int window : {3, 9, 31}) {
      if (window > 9 && size.width > kFull.width) continue;
      const Work work = {"Complexion, all skin, " + sizeName(size),
                         format.name + (", window " + std::to_string(window)), skin};
      add(work, "cv::bilateralFilter", bilateralBody(three, window));
      addCopy(work);
      QPXComplexionParam param = {};
      param.radiusSize = window;
      const EffectCall call = callWith("ComplexionOptimizing", param);
      add(work, "ComplexionOptimizing", lookBody(skin, call));
    }
  }

  PicturesPtr skinPictures(const NamedFormat& format, const Frame& size) {
    const PicturesPtr skin = skins_.pictures(format, size);
    paintSkin(skin->source);
    return skin;
  }

  void addWhitening(const Frame& size) {
    const PicturesPtr on = album_.pictures(kNv21, size);
    const auto mask =
        std::make_shared<std::vector<uint8_t>>(static_cast<size_t>(on->source.frame().pixels()));
    const auto lit = std::make_shared<std::vector<uint8_t>>(256);
    for (size_t i = 0; i < mask->size(); ++i) (*mask)[i] = static_cast<uint8_t>(1 + i % 255);
    for (size_t i = 0; i < 256; ++i) (*lit)[i] = static_cast<uint8_t>(i + (255 - i) / 4);
    const Work work = {"Skin whitening, " + sizeName(size), kNv21.name, on};
    add(work, "libyuv::BlendPlane", libyuvMixBody(on, mask->data()));
    addCopy(work);
    add(work, "_SkinWhitenByMask", [=] {
      const QPXPlaneSet planes = on->target.planesAt(0);
      const MBitmap image = {QPX_FORMAT_NV21,
                             size.width,
                             size.height,
                             {planes.pitch[0], planes.pitch[1], planes.pitch[2]},
                             {planes.plane[0], planes.plane[1], planes.plane[2]}};
      _SkinWhitenByMask_YUV420_VUVU(&image, mask->data(), size.width, lit->data(), 200);
    });
  }

  Report* report_;
  Album album_;
  Album skins_;
};

}  // namespace
}  // namespace qpx::bench

int main(int argc, char** argv) {
  qpx::bench::Report report;
  qpx::bench::Suite suite(&report);
  suite.addAll();
  return qpx::bench::run(argc, argv, report);
}
