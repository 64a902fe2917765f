// The rows and steps that recipes are made of, in plain and in vector forms, on a run in the first
// cache; and look-ups on every kind of processor that this one can stand for.
#include "simd/targets.h"

#include <benchmark/benchmark.h>
#include <hwy/highway.h>
#include <qpx/engine.h>

#include <cstring>
#include <functional>
#include <string>

#include "bench_report.h"
#include "simd/blend_rows.h"
#include "simd/tone_rows.h"
#include "toolkit/steps.h"

namespace qpx::bench {
namespace {

constexpr int32_t kCount = kRunLength;
constexpr int32_t kTextureSide = 512;

// What rows read and write, and a texture under a full picture.
struct Bench {
  alignas(64) uint8_t in[4][4 * kCount];
  alignas(64) uint8_t out[4][4 * kCount];
  alignas(64) int32_t terms[kCount];
  alignas(64) int32_t wide[kCount];
  alignas(64) int32_t places[kCount];  // of an enlarged texture
  alignas(64) uint16_t weights[kCount];
  ToneTable tables[3];
  ColorTables tint;
  PixelRun run;
  std::vector<uint8_t> texels;
  MBitmap texture = {};
  Stage stage = {};

  Bench() : texels(size_t{kTextureSide} * kTextureSide * 4) {
    uint32_t state = 1;
    const auto grain = [&] {
      return static_cast<uint8_t>((state = state * 1664525 + 1013904223) >> 24);
    };
    for (auto& row : in) {
      for (uint8_t& byte : row) byte = grain();
    }
    for (uint8_t& texel : texels) texel = grain();
    for (ToneTable& table : tables) {
      for (uint8_t& entry : table) entry = grain();
    }
    tint = {tables[0], tables[1], tables[2]};
    for (int32_t i = 0; i < kCount; ++i) {
      terms[i] = 300 + i;
      weights[i] = static_cast<uint16_t>(512 - i);
      wide[i] = i * 4000;
      places[i] = 100 + i / 4;
    }
    texture = {QPX_FORMAT_RGBA32, kTextureSide, kTextureSide, {4 * kTextureSide}, {texels.data()}};
    stage.inWidth = stage.outWidth = 1920;
    stage.inHeight = stage.outHeight = 1080;
    run.count = kCount;
    run.x = 256;
    run.y = 500;
    renew();
  }

  // Steps work in place.
  void renew() {
    std::memcpy(run.r, in[0], kCount);
    std::memcpy(run.g, in[1], kCount);
    std::memcpy(run.b, in[2], kCount);
  }

  TextureLayer layer() const { return TextureLayer(texture, stage, Placement::coverCentred); }
};

using Work = std::function<void(Bench&)>;

// Work, form and time as lines of one table. A target of 0 is the best one.
class Suite {
 public:
  Suite(Report* report, Bench* bench) : report_(report), bench_(bench) {}

  void addAll() {
    addRows();
    addBlendRows();
    addToneRows();
    addSteps();
    addTargets();
  }

 private:
  void add(const std::string& group, const std::string& name, const std::string& form,
           const Work& work, bool plain, int64_t target = 0) {
    Bench* bench = bench_;
    report_->add({group, name, form, kCount}, [=](benchmark::State& state) {
      QPX_UsePlainForms(plain);
      choose(target);
      bench->renew();
      for (auto _ : state) {
        work(*bench);
        benchmark::ClobberMemory();
      }
      choose(0);
      QPX_UsePlainForms(0);
    });
  }

  void addForms(const std::string& group, const std::string& name, const Work& work) {
    add(group, name, "plain", work, true);
    add(group, name, "vector", work, false);
  }

  static void choose(int64_t target) {
#if (HWY_TARGETS & (HWY_TARGETS - 1)) != 0
    hwy::SetSupportedTargetsForTest(target);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
#else
    static_cast<void>(target);
#endif
  }

  void addRows();
  void addBlendRows();
  void addLays();
  void addToneRows();
  void addSteps();
  void addTargets();

  Report* report_;
  Bench* bench_;
};

void lookup(Bench& b) { simd::rows().lookup(b.in[0], b.out[0], kCount, b.tables[0].data()); }

void lookup3(Bench& b) {
  simd::rows().lookup3(b.in[0], b.out[0], kCount, b.tables[0].data(), b.tables[1].data(),
                       b.tables[2].data());
}

void lookup4(Bench& b) {
  simd::rows().lookup4(b.in[0], b.out[0], kCount, b.tables[0].data(), b.tables[1].data(),
                       b.tables[2].data());
}

void Suite::addRows() {
  using simd::rows;
  const std::string group = "Rows";
  addForms(group, "lookup", lookup);
  addForms(group, "lookup3", lookup3);
  addForms(group, "lookup4", lookup4);
  addForms(group, "deinterleave2",
           [](Bench& b) { rows().deinterleave2(b.in[0], kCount, b.out[0], b.out[1]); });
  addForms(group, "interleave2",
           [](Bench& b) { rows().interleave2(b.in[0], b.in[1], kCount, b.out[0]); });
  addForms(group, "deinterleave3",
           [](Bench& b) { rows().deinterleave3(b.in[0], kCount, b.out[0], b.out[1], b.out[2]); });
  addForms(group, "interleave3",
           [](Bench& b) { rows().interleave3(b.in[0], b.in[1], b.in[2], kCount, b.out[0]); });
  addForms(group, "deinterleave4", [](Bench& b) {
    rows().deinterleave4(b.in[0], kCount, b.out[0], b.out[1], b.out[2], b.out[3]);
  });
  addForms(group, "interleave4", [](Bench& b) {
    rows().interleave4(b.in[0], b.in[1], b.in[2], b.in[3], kCount, b.out[0]);
  });
  addForms(group, "gather4", [](Bench& b) {
    rows().gather4(b.texels.data(), kTextureSide, b.places, kCount, b.out[0]);
  });
  addForms(group, "luma",
           [](Bench& b) { rows().luma(b.in[0], b.in[1], b.in[2], b.out[0], kCount); });
  addForms(group, "weightedSum", [](Bench& b) {
    constexpr int32_t kWeights[4] = {65536, -22567, -46819, 8914122};
    rows().weightedSum(b.in[0], b.in[1], b.in[2], b.out[0], kCount, kWeights);
  });
  addForms(group, "mixOpaque",
           [](Bench& b) { rows().mixOpaque(b.in[0], b.in[1], b.out[0], kCount, 37); });
  addForms(group, "mixColor",
           [](Bench& b) { rows().mixColor(b.in[0], 201, b.out[0], kCount, 37); });
  addForms(group, "mixMasked",
           [](Bench& b) { rows().mixMasked(b.in[0], b.in[1], b.in[2], b.out[0], kCount, 37); });
  addForms(group, "complement256",
           [](Bench& b) { rows().complement256(b.in[0], b.out[0], kCount); });
}

void Suite::addLays() {
  const struct {
    const char* name;
    simd::BlendRows::Lay simd::BlendRows::*row;
  } lays[] = {{"layNormal", &simd::BlendRows::layNormal},
              {"layScreen", &simd::BlendRows::layScreen},
              {"layOverlay", &simd::BlendRows::layOverlay},
              {"laySoft", &simd::BlendRows::laySoft},
              {"layMultiply", &simd::BlendRows::layMultiply}};
  for (const auto& lay : lays) {
    const auto row = lay.row;
    addForms("Rows of blends", lay.name, [row](Bench& b) {
      (simd::blendRows().*row)(b.in[0], b.in[1], nullptr, b.out[0], kCount, 0.7f);
    });
    addForms("Rows of blends", std::string(lay.name) + ", mask", [row](Bench& b) {
      (simd::blendRows().*row)(b.in[0], b.in[1], b.in[2], b.out[0], kCount, 0.7f);
    });
  }
}

void Suite::addBlendRows() {
  using simd::blendRows;
  const std::string group = "Rows of blends";
  addLays();
  addForms(group, "multiplyShift",
           [](Bench& b) { blendRows().multiplyShift(b.in[0], b.in[1], b.out[0], kCount); });
  addForms(group, "lighten",
           [](Bench& b) { blendRows().lighten(b.in[0], b.in[1], b.out[0], kCount); });
  addForms(group, "darken",
           [](Bench& b) { blendRows().darken(b.in[0], b.in[1], b.out[0], kCount); });
  addForms(group, "lightness",
           [](Bench& b) { blendRows().lightness(b.in[0], b.in[1], b.in[2], b.out[0], kCount); });
  addForms(group, "weighedLuma", [](Bench& b) {
    blendRows().weighedLuma(b.in[0], b.in[1], b.in[2], b.out[0], kCount, kLooksLuma);
  });
  addForms(group, "hueGrey", [](Bench& b) {
    blendRows().hueGrey(b.in[0], b.in[1], b.in[2], b.out[0], kCount,
                        {0.4, 0.6, 0.4, 0.6, 0.2, 0.8});
  });
  addForms(group, "chalkBoardGrey", [](Bench& b) {
    blendRows().chalkBoardGrey(b.in[0], b.in[1], b.in[2], b.out[0], kCount);
  });
  addForms(group, "moveApart",
           [](Bench& b) { blendRows().moveApart(b.in[0], b.in[1], b.out[0], kCount, 307); });
  addForms(group, "drawTogether",
           [](Bench& b) { blendRows().drawTogether(b.in[0], b.in[1], b.out[0], kCount, 307); });
  addForms(group, "falloffWeights",
           [](Bench& b) { blendRows().falloffWeights(60, b.terms, b.weights, kCount); });
  addForms(group, "scaleByFalloff",
           [](Bench& b) { blendRows().scaleByFalloff(b.in[0], b.weights, b.out[0], kCount); });
  addForms(group, "cornerWeights", [](Bench& b) {
    blendRows().cornerWeights({-300, 400, 200, 0x100000 / 900, 300, 1100}, b.wide, kCount);
  });
  addForms(group, "mixCorner", [](Bench& b) {
    blendRows().mixCorner(b.in[0], b.in[1], b.wide, b.out[0], kCount, 800);
  });
}

void Suite::addToneRows() {
  using simd::toneRows;
  const std::string group = "Rows of native looks";
  addForms(group, "halvesToRgb", [](Bench& b) {
    toneRows().halvesToRgb(b.in[0], b.in[1], b.in[2], b.out[0], b.out[1], b.out[2], kCount);
  });
  addForms(group, "pairsToRgb", [](Bench& b) {
    toneRows().pairsToRgb(b.in[0], b.in[1], true, b.out[0], b.out[1], b.out[2], kCount);
  });
  addForms(group, "rgbToLuma",
           [](Bench& b) { toneRows().rgbToLuma(b.in[0], b.in[1], b.in[2], b.out[0], kCount); });
  addForms(group, "rgbToHalves", [](Bench& b) {
    toneRows().rgbToHalves(b.in[0], b.in[1], b.in[2], b.out[0], b.out[1], kCount);
  });
  addForms(group, "rgbToPairs", [](Bench& b) {
    toneRows().rgbToPairs(b.in[0], b.in[1], b.in[2], b.out[0], true, kCount);
  });
  addForms(group, "sortToSepia",
           [](Bench& b) { toneRows().sortToSepia(b.run.r, b.run.g, b.run.b, kCount); });
  addForms(group, "lean",
           [](Bench& b) { toneRows().lean(b.in[0], b.in[1], b.in[2], b.in[3], b.out[0], kCount); });
  addForms(group, "overlay",
           [](Bench& b) { toneRows().overlay(b.in[0], b.in[1], b.out[0], kCount); });
  addForms(group, "enrich", [](Bench& b) { toneRows().enrich(b.run.r, b.run.g, b.run.b, kCount); });
}

void Suite::addSteps() {
  const std::string group = "Steps";
  const struct {
    const char* name;
    Placement placement;
  } placements[] = {{"load, stretched", Placement::stretch},
                    {"load, cover centred", Placement::coverCentred},
                    {"load, cover anchored", Placement::coverAnchored}};
  for (const auto& one : placements) {
    const Placement placement = one.placement;
    addForms(group, one.name, [placement](Bench& b) {
      TextureRun texels;
      TextureLayer(b.texture, b.stage, placement).load(b.run.x, b.run.y, kCount, texels);
      benchmark::DoNotOptimize(texels);
    });
  }
  const struct {
    const char* name;
    void (*lay)(PixelRun&, const TextureLayer&, Coverage, float);
  } layers[] = {{"normalLayer", normalLayer},
                {"screenLayer", screenLayer},
                {"overlayLayer", overlayLayer},
                {"softLayer", softLayer},
                {"multiplyLayer", multiplyLayer}};
  for (const auto& layer : layers) {
    const auto lay = layer.lay;
    addForms(group, layer.name, [lay](Bench& b) { lay(b.run, b.layer(), kOpaque, 0.7f); });
    addForms(group, std::string(layer.name) + ", alpha",
             [lay](Bench& b) { lay(b.run, b.layer(), kByAlpha, 0.7f); });
  }
  addForms(group, "multiplyShiftLayer", [](Bench& b) { multiplyShiftLayer(b.run, b.layer()); });
  addForms(group, "lightenLayer", [](Bench& b) { lightenLayer(b.run, b.layer()); });
  addForms(group, "darkenLayer", [](Bench& b) { darkenLayer(b.run, b.layer()); });
  addForms(group, "tintByHues", [](Bench& b) {
    tintByHues(b.run, {0.4, 0.6, 0.4, 0.6, 0.2, 0.8}, b.tint);
  });
  addForms(group, "tintByLuma", [](Bench& b) { tintByLuma(b.run, b.tint); });
  addForms(group, "saturate", [](Bench& b) { saturate(b.run, 307); });
  addForms(group, "desaturate", [](Bench& b) { desaturate(b.run, 307); });
  addForms(group, "radialFalloff", [](Bench& b) {
    b.run.x = b.run.y = 0;
    radialFalloff(b.run, {b.terms, b.terms});
    b.run.x = 256;
    b.run.y = 500;
  });
}

void Suite::addTargets() {
  const struct {
    const char* name;
    void (*work)(Bench&);
  } works[] = {{"lookup", lookup}, {"lookup3", lookup3}, {"lookup4", lookup4}};
  for (const auto& work : works) {
    add("Look-ups by target", work.name, "plain", work.work, true);
    for (int64_t left = HWY_SUPPORTED_TARGETS & HWY_TARGETS; left != 0; left &= left - 1) {
      const int64_t target = left & -left;
      add("Look-ups by target", work.name, hwy::TargetName(target), work.work, false, target);
    }
  }
}

}  // namespace
}  // namespace qpx::bench

int main(int argc, char** argv) {
  qpx::bench::Report report;
  qpx::bench::Bench bench;
  qpx::bench::Suite suite(&report, &bench);
  suite.addAll();
  return qpx::bench::run(argc, argv, report);
}
