#include "filters/curves/stored_looks.h"

#include <algorithm>

#include "filters/curves/look_block.h"
#include "filters/curves/stretched_texels.h"
#include "filters/curves/texel_weights.h"
#include "filters/curves/tone_runs.h"
#include "platform/log.h"
#include "simd/tone_rows.h"
#include "toolkit/asset_constants.h"

namespace qpx {
namespace {

// Entries of a carried table that are `stride` bytes apart.
ToneTable everyNth(const uint8_t* table, size_t stride) {
  ToneTable picked;
  for (size_t i = 0; i < picked.size(); ++i) picked[i] = table[i * stride];
  return picked;
}

// Curves hold blue, green and red of each value.
ChannelTables carriedCurves(const uint8_t* curves) {
  return {everyNth(curves + 2, 3), everyNth(curves + 1, 3), everyNth(curves, 3)};
}

ToneTable mixedCurve(const ToneTable& curve, int32_t strength) {
  constexpr ToneTable kIdentity = tabulate([](int32_t i) { return i; });
  ToneTable mixed;
  simd::toneRows().mixPercent(kIdentity.data(), curve.data(), mixed.data(), 256, strength);
  return mixed;
}

ChannelTables mixedCurves(const uint8_t* carried, int32_t strength) {
  const ChannelTables curves = carriedCurves(carried);
  return {mixedCurve(curves.red, strength), mixedCurve(curves.green, strength),
          mixedCurve(curves.blue, strength)};
}

int32_t strengthIn(const Stage& stage, int32_t percent) {
  return isYuv(stage.pix) ? percent : std::clamp(percent, 0, 100);
}

constexpr int32_t kWhole = 1024;

void layTexels(const uint8_t* samples, const uint8_t* texels, uint8_t* laid, int32_t count,
               const TexelWeights& weights, int32_t share) {
  const simd::Rows& rows = simd::rows();
  alignas(kRunAlignment) uint8_t darker[kRunLength], lighter[kRunLength];
  rows.lookup(samples, darker, count, weights.darker.data());
  rows.lookup(samples, lighter, count, weights.lighter.data());
  simd::toneRows().layTexels(samples, texels, darker, lighter, laid, count, share);
}

// A body for runs of each look; calls make them anew.
class CurveLook {
 public:
  CurveLook(const Stage& stage, const uint8_t* curves)
      : curves_(mixedCurves(curves, strengthIn(stage, record<QPXCurveLookParam>(stage).strength))) {
  }

  void operator()(PixelRun& run) const {
    const simd::Rows& rows = simd::rows();
    rows.lookup(run.r, run.r, run.count, curves_.red.data());
    rows.lookup(run.g, run.g, run.count, curves_.green.data());
    rows.lookup(run.b, run.b, run.count, curves_.blue.data());
  }

 private:
  ChannelTables curves_;
};

class LomoLook {
 public:
  LomoLook(const Stage& stage, const uint8_t* curves)
      : curves_(mixedCurves(curves,
                            strengthIn(stage, record<QPXMaskedLookParam>(stage).curveStrength))),
        tone_(everyNth(::lomo_mask2, 4)),
        maskStrength_(strengthIn(stage, record<QPXMaskedLookParam>(stage).maskStrength)),
        places_(stage),
        first_(texture(stage, 0)),
        second_(texture(stage, 1)) {}

  void operator()(PixelRun& run) {
    places_.place(run);
    first_.load(places_, run.count);
    second_.load(places_, run.count);
    filter(run.r, run.count, curves_.red, first_.red(), second_.red());
    filter(run.g, run.count, curves_.green, first_.green(), second_.green());
    filter(run.b, run.count, curves_.blue, first_.blue(), second_.blue());
  }

 private:
  static constexpr int32_t kFirstShare = 307;
  static constexpr int32_t kSecondShare = 410;

  // The mask is mixed with the curve's result, not with the source.
  void filter(uint8_t* samples, int32_t count, const ToneTable& curve, const uint8_t* first,
              const uint8_t* second) const {
    const simd::Rows& rows = simd::rows();
    alignas(kRunAlignment) uint8_t laid[kRunLength];
    rows.lookup(samples, samples, count, curve.data());
    layTexels(samples, first, laid, count, kSoftLight, kFirstShare);
    layTexels(laid, second, laid, count, kSoftLight, kSecondShare);
    rows.lookup(laid, laid, count, tone_.data());
    simd::toneRows().mixPercent(samples, laid, samples, count, maskStrength_);
  }

  ChannelTables curves_;
  ToneTable tone_;
  int32_t maskStrength_;
  StretchedPlaces places_;
  StretchedTexels first_;
  StretchedTexels second_;
};

class SoftPinkLook {
 public:
  explicit SoftPinkLook(const Stage& stage)
      : curves_(mixedCurves(::softlight_data,
                            strengthIn(stage, record<QPXMaskedLookParam>(stage).curveStrength))),
        tone_{everyNth(::pink_mask3, 4), everyNth(::pink_mask3 + 1, 4),
              everyNth(::pink_mask3 + 2, 4)},
        maskStrength_(strengthIn(stage, record<QPXMaskedLookParam>(stage).maskStrength)),
        places_(stage),
        texels_(texture(stage, 0)) {}

  void operator()(PixelRun& run) {
    places_.place(run);
    texels_.load(places_, run.count);
    filter(run.r, run.count, curves_.red, texels_.red(), tone_.red);
    filter(run.g, run.count, curves_.green, texels_.green(), tone_.green);
    filter(run.b, run.count, curves_.blue, texels_.blue(), tone_.blue);
  }

 private:
  void filter(uint8_t* samples, int32_t count, const ToneTable& curve, const uint8_t* texels,
              const ToneTable& tone) const {
    const simd::Rows& rows = simd::rows();
    alignas(kRunAlignment) uint8_t laid[kRunLength];
    rows.lookup(samples, samples, count, curve.data());
    layTexels(samples, texels, laid, count, kPinkLight, kWhole);
    rows.lookup(laid, laid, count, tone.data());
    simd::toneRows().mixPercent(samples, laid, samples, count, maskStrength_);
  }

  ChannelTables curves_;
  ChannelTables tone_;
  int32_t maskStrength_;
  StretchedPlaces places_;
  StretchedTexels texels_;
};

class FleetingLook {
 public:
  explicit FleetingLook(const Stage& stage)
      : tone_{everyNth(::fleet_data2 + 2, 3), everyNth(::fleet_data2 + kBlock + 1, 3),
              everyNth(::fleet_data2 + 2 * kBlock, 3)},
        places_(stage),
        texels_(texture(stage, 0)) {}

  void operator()(PixelRun& run) {
    places_.place(run);
    texels_.load(places_, run.count);
    filter(run.r, run.count, texels_.red(), tone_.red);
    filter(run.g, run.count, texels_.green(), tone_.green);
    filter(run.b, run.count, texels_.blue(), tone_.blue);
  }

 private:
  static constexpr size_t kBlock = 768;

  static void filter(uint8_t* samples, int32_t count, const uint8_t* texels,
                     const ToneTable& tone) {
    layTexels(samples, texels, samples, count, kSoftLight, kWhole);
    simd::rows().lookup(samples, samples, count, tone.data());
  }

  ChannelTables tone_;
  StretchedPlaces places_;
  StretchedTexels texels_;
};

// Kernels may be called by name on a stage of another effect.
template <typename Record>
bool holdsRecord(const Stage& stage) {
  return stage.record != nullptr && stage.effect != nullptr &&
         stage.effect->record.size == sizeof(Record);
}

bool holdsTextures(const Stage& stage, size_t count) {
  if (stage.resources == nullptr) return false;
  for (size_t i = 0; i < count; ++i) {
    if (stage.resources[i] == nullptr || !isSquareOf256(texture(stage, i))) return false;
  }
  return true;
}

void logPreview(const Stage& stage, const char* kernel) {
  if (stage.pix.family != kFamilyNv21) return;
  log(QPX_LOG_DEBUG, "IP", "[vloLog] %s() inresolution (%d x %d), pitch(%d, %d), heightPitch0:%d",
      kernel, stage.inWidth, stage.inHeight, stage.pitch[0], stage.pitch[1], stage.inHeight);
}

template <typename Body, typename... Arguments>
int32_t runBodyOf(const Frame& frame, const Arguments&... arguments) {
  Body body(frame.stage, arguments...);
  return runBody(frame, RunBody(body));
}

int32_t runLomo(const Frame& frame, const uint8_t* curves, const char* kernel) {
  if (!holdsRecord<QPXMaskedLookParam>(frame.stage) || !holdsTextures(frame.stage, 2)) {
    return QPX_BAD_PARAM;
  }
  logPreview(frame.stage, kernel);
  return runBodyOf<LomoLook>(frame, curves);
}

int32_t runCurves(const Frame& frame, const uint8_t* curves, const char* kernel) {
  if (!holdsRecord<QPXCurveLookParam>(frame.stage)) return QPX_BAD_PARAM;
  logPreview(frame.stage, kernel);
  return runBodyOf<CurveLook>(frame, curves);
}

}  // namespace

int32_t setUpLomo(Stage& stage, QPXBand&) {
  return loadTextures(stage, {assets::lomo_mask0, assets::lomo_mask1});
}

int32_t setUpSoftPink(Stage& stage, QPXBand&) { return loadTextures(stage, {assets::lomo_mask0}); }

int32_t setUpFleetingTime(Stage& stage, QPXBand&) {
  return loadTextures(stage, {assets::fleet_data1});
}

int32_t warmLomo(const Frame& frame) { return runLomo(frame, ::reversal_data, "WarmLomo_NV21"); }

int32_t coldLomo(const Frame& frame) { return runLomo(frame, ::village_data, "ColdLomo_NV21"); }

int32_t softPink(const Frame& frame) {
  if (!holdsRecord<QPXMaskedLookParam>(frame.stage) || !holdsTextures(frame.stage, 1)) {
    return QPX_BAD_PARAM;
  }
  logPreview(frame.stage, "SoftPink_NV21");
  return runBodyOf<SoftPinkLook>(frame);
}

int32_t rixi(const Frame& frame) { return runCurves(frame, ::rixi_data, "RIXI_NV21"); }

int32_t newReversal(const Frame& frame) {
  return runCurves(frame, ::reversal_data, "NewReversal_NV21");
}

int32_t fleetingTime(const Frame& frame) {
  if (!holdsTextures(frame.stage, 1)) return QPX_BAD_PARAM;
  logPreview(frame.stage, "FleetingTime_NV21");
  return runBodyOf<FleetingLook>(frame);
}

}  // namespace qpx
