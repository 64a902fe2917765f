#pragma once

#include <cstring>
#include <vector>

#include "engine/stage.h"
#include "support/picture.h"

namespace qpx::testing {

// Calls an effect's setup and kernel as the engine would, on a stage made by hand.
class KernelFrame {
 public:
  explicit KernelFrame(uint32_t format);
  ~KernelFrame();
  KernelFrame(const KernelFrame&) = delete;
  KernelFrame& operator=(const KernelFrame&) = delete;

  Stage& stage() { return stage_; }
  const QPXBand& band() const { return band_; }

  // Sets an effect up on the stage, behind those that are on it already.
  int32_t setUp(uint32_t id);
  template <typename Record>
  int32_t setUp(uint32_t id, const Record& record) {
    std::memcpy(stage_.param.bytes, &record, sizeof record);
    return setUp(id);
  }

  // Runs the kernel that serves the format: one written for it, or the generic one.
  int32_t run(const Picture& in, Picture& out, const MRect& rect);
  int32_t run(Kernel kernel, const Picture& in, Picture& out, const MRect& rect);

  // What the next runs have beside their source; null for none. Both cover the whole picture.
  void give(const Picture* second, const Picture* mask);

 private:
  struct Tables {
    std::vector<uint8_t*> rows[3];
    QPXRowTable planes[3];
  };

  Tables tablesOf(const Picture& picture) const;

  Stage stage_ = {};
  QPXBand band_ = {};
  const EffectRow* effect_ = nullptr;
  const Picture* second_ = nullptr;
  const Picture* mask_ = nullptr;
};

MRect wholeOf(const Picture& picture);

// Random bytes in all pixels of packed RGB, bits outside the fields too; other pictures are
// painted.
void scramble(Picture& picture, uint64_t seed);

// A packed pixel as a little-endian number.
uint32_t pixelOf(const Picture& picture, int32_t x, int32_t y);

// A field of a packed pixel as 8 bits, by writing its bits over and over; of wider fields the
// top 8.
int fieldOf(uint32_t pixel, uint32_t mask);

// The same for channel 0, 1 or 2 of a picture, whose pixels may have fewer bits than its masks.
int channelOf(const Picture& picture, int channel, int32_t x, int32_t y);

uint32_t fieldMask(uint32_t format, int channel);
int bytesOf(uint32_t format);

}  // namespace qpx::testing
