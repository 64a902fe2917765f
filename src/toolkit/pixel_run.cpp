// What all layouts of runs share, and grey.
#include "toolkit/pixel_run.h"

#include <cstring>

namespace qpx {
namespace {

void loadGrey(const RunFormat&, const QPXRowTable* rows, PixelRun& run) {
  const uint8_t* from = rows[0][run.y] + run.x;
  const size_t count = static_cast<size_t>(run.count);
  std::memcpy(run.r, from, count);
  std::memcpy(run.g, from, count);
  std::memcpy(run.b, from, count);
  std::memset(run.a, 255, count);
}

void storeGrey(const RunFormat&, const PixelRun& run, const QPXRowTable*, const QPXRowTable* rows) {
  std::memcpy(rows[0][run.y] + run.x, run.r, static_cast<size_t>(run.count));
}

}  // namespace

RunFormat::RunFormat(const Stage& stage) : pix_(stage.pix), rows_(simd::rows()) {
  switch (pix_.family) {
    case kFamilyPackedRgb:
      choosePacked();
      break;
    case kFamilyGrey:
      chooseGrey();
      break;
    case kFamilyYuyv:
      break;
    default:
      chooseYuv(stage);
      break;
  }
}

void RunFormat::chooseGrey() {
  load_ = loadGrey;
  store_ = storeGrey;
  model_ = Model::grey;
}

void RunFormat::load(const QPXRowTable* rows, PixelRun& run) const {
  if (model_ == Model::yuv) {
    loadAsRgb(rows, run);
  } else {
    load_(*this, rows, run);
  }
}

void RunFormat::store(const PixelRun& run, const QPXRowTable* source,
                      const QPXRowTable* rows) const {
  switch (model_) {
    case Model::rgb:
      store_(*this, run, source, rows);
      break;
    case Model::grey:
      // Luma's weights add up to one, so that equal channels come back as they are.
      rows_.luma(run.r, run.g, run.b, rows[0][run.y] + run.x, run.count);
      break;
    case Model::yuv:
      storeAsYuv(run, source, rows);
      break;
  }
}

int32_t runRecipe(const Frame& frame, Recipe recipe) {
  const RunFormat format(frame.stage);
  if (!format.known()) return QPX_UNSUPPORTED;
  forEachRun(format, frame.rect, [&](PixelRun& run) {
    format.load(frame.in, run);
    recipe(frame.stage, run);
    format.store(run, frame.in, frame.out);
  });
  return QPX_OK;
}

int32_t runComponentRecipe(const Frame& frame, Recipe recipe) {
  const RunFormat format(frame.stage);
  if (!format.known()) return QPX_UNSUPPORTED;
  forEachRun(format, frame.rect, [&](PixelRun& run) {
    format.loadComponents(frame.in, run);
    recipe(frame.stage, run);
    format.storeComponents(run, frame.in, frame.out);
  });
  return QPX_OK;
}

}  // namespace qpx
