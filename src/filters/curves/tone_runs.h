// Looks that exist natively in YUV: one recipe on R, G and B for every format.
//
// The YUV formats convert with constants of this family (simd::ToneRows), whatever colorimetry the
// format has, so that a preview and a saved picture of it look alike. Every pixel is converted by
// itself with the chroma of its block, and the block's top-left pixel alone gives its chroma back.
#pragma once

#include "toolkit/pixel_run.h"

namespace qpx {

struct Look {
  Recipe recipe;
  bool (*ready)(const Stage&) = nullptr;    // the stage holds what the recipe reads; 2 otherwise
  bool (*applies)(const Stage&) = nullptr;  // otherwise nothing is written, which is no error
};

// A recipe that keeps what its call prepared: any callable that takes a run and outlives the call.
class RunBody {
 public:
  template <typename Body>
  explicit RunBody(Body& body)
      : body_(&body), call_([](void* made, PixelRun& run) { (*static_cast<Body*>(made))(run); }) {}

  void operator()(PixelRun& run) const { call_(body_, run); }

 private:
  void* body_;
  void (*call_)(void*, PixelRun&);
};

// Over all formats that runs know, and packed 4:2:2 in the order Y, U, Y, V.
int32_t runLook(const Frame& frame, const Look& look);
int32_t runBody(const Frame& frame, RunBody body);

template <const Look& look>
int32_t overLook(const Frame& frame) {
  return runLook(frame, look);
}

}  // namespace qpx
