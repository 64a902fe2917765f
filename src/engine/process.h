// What the two roads of the pipeline share.
#pragma once

#include "engine/engine_handle.h"

namespace qpx {

// The pictures of one call, planes addressing the origin of each picture.
struct CallImages {
  const MBitmap* out;
  const MBitmap* in;
  const MBitmap* second;
  const MBitmap* mask;
};

// Returns 2 where an image or plane that the engine needs is missing.
int32_t checkImages(const Stage& head, const CallImages& images);

// Stores planes and pitches in the head, second input and mask moved to image coordinates where the
// effect crops by them.
void storePlanes(Stage& head, const CallImages& images, const QPXBandRect* rect);

// Runs stage k of the chain over `rect` with its band's tables.
int32_t runStage(QPXEngine* engine, int32_t k, const MRect& rect);

void storeRect(const MRect& from, QPXBandRect* to);

}  // namespace qpx
