// The pipeline's road for a chain: rows are handed from stage to stage through small rings, so that
// the memory of a chain depends on the width of the picture and the margins of its effects, not on
// its height.
#include <algorithm>

#include "engine/address.h"
#include "engine/band.h"
#include "engine/process.h"
#include "engine/row_tables.h"

namespace qpx {
namespace {

struct RingPlan {
  int32_t columns;  // of the band, rounded up to 4
  int32_t padding;  // columns on each side that a stage's horizontal margin may reach over
  size_t bytes;
};

int32_t rowBytes(const Stage& head, const RingPlan& plan) {
  return head.pix.bytesPerSample[0] * (plan.columns + 2 * plan.padding);
}

// The first stage reads the host's rows and needs no ring.
bool planRings(const Stage& head, int32_t bandColumns, RingPlan* plan) {
  int64_t rows = 0;
  int32_t padding = 0;
  for (int32_t k = 1; k < head.stageCount; ++k) {
    rows += head.bands[k].ringCapacity;
    padding = std::max({padding, head.bands[k].marginLeft, head.bands[k].marginRight});
  }
  const int64_t columns = (int64_t{bandColumns} + 3) & ~int64_t{3};
  const int64_t pitch = head.pix.bytesPerSample[0] * (columns + 2 * int64_t{padding});
  if (pitch > INT32_MAX || (rows > 0 && pitch > INT64_MAX / rows)) return false;
  if (static_cast<uint64_t>(pitch * rows) > SIZE_MAX / 2) return false;
  *plan = {static_cast<int32_t>(columns), padding, static_cast<size_t>(pitch * rows)};
  return true;
}

void carveRings(Stage& head, uint8_t* block, const RingPlan& plan) {
  const int32_t pitch = rowBytes(head, plan);
  const ptrdiff_t padding = ptrdiff_t{plan.padding} * head.pix.bytesPerSample[0];
  ptrdiff_t cursor = 0;
  for (int32_t k = 1; k < head.stageCount; ++k) {
    QPXBand& band = head.bands[k];
    band.ring[0] = block + cursor + padding;
    band.ringPitch[0] = pitch;
    cursor += ptrdiff_t{pitch} * band.ringCapacity;
  }
  head.bands[0].ring[0] = block;
}

// Rings for the columns of this band; made at the first band and made anew when the width changes.
int32_t sizeRings(QPXEngine* engine) {
  Stage& head = *engine->head;
  QPXBand& first = head.bands[0];
  const int32_t width = head.bandRight - head.bandLeft;
  if (first.ringAllocated != 0 && first.ringWidth == width) return QPX_OK;
  RingPlan plan;
  if (!planRings(head, width, &plan)) return QPX_NO_MEMORY;
  if (plan.bytes > 0) {
    void* block = MMemRealloc(nullptr, first.ring[0], plan.bytes);
    if (block == nullptr) return QPX_NO_MEMORY;
    MMemSet(block, 0, plan.bytes);
    carveRings(head, static_cast<uint8_t*>(block), plan);
  }
  first.ringAllocated = 1;
  first.ringWidth = width;
  return QPX_OK;
}

// One call over a chain.
class ChainRun {
 public:
  ChainRun(QPXEngine* engine, const MRect& out)
      : engine_(engine),
        head_(*engine->head),
        out_(out),
        outputRight_(cutToOutput(head_, out).right),
        outputRow_(head_.bandTop) {}

  int32_t run() {
    const bool flush = head_.bandBottom >= head_.inHeight;
    for (int32_t row = out_.top; row < out_.bottom; ++row) runRow();
    while (flush && runRow()) {
    }
    return result_;
  }

 private:
  // One row through every stage that has the rows it needs. Returns whether any stage ran.
  bool runRow() {
    bool ran = false;
    for (int32_t k = 0; k < head_.stageCount; ++k) {
      if (lacksRows(k)) break;
      if (k + 1 < head_.stageCount) {
        const int32_t y = head_.chainStart + head_.bands[k + 1].rowsTaken;
        if (y >= head_.inHeight) continue;
        handOn(k, y);
      } else {
        const int32_t y = head_.lastOutBottom;
        if (y >= std::min(head_.inHeight, head_.outHeight)) return false;
        produce(k, y);
      }
      ran = true;
    }
    return ran;
  }

  bool lacksRows(int32_t k) const {
    const QPXBand& band = head_.bands[k];
    const int32_t taken = band.rowsTaken + (k == 0 ? head_.bandBottom - head_.bandTop : 0);
    // A stream that began inside the picture has fewer rows to take than the picture has.
    const int32_t end = k == 0 ? head_.bandBottom : head_.chainStart + taken;
    return band.marginBottom != 0 && band.marginBottom >= taken && end < head_.inHeight;
  }

  // Row y of stage k goes to the next slot of the ring that stage k + 1 reads.
  void handOn(int32_t k, int32_t y) {
    QPXBand& next = head_.bands[k + 1];
    // Rings of whole-image effects have more slots than the 16 bits of ringPos count.
    const int32_t slot = next.rowsTaken % next.ringCapacity;
    uint8_t* row = advance(next.ring[0], next.ringPitch[0], slot);
    row = retreat(row, head_.pix.bytesPerSample[0], head_.bandLeft);
    head_.bands[k].outRows[0][y] = row;
    QPXRowTable table = next.inRows[0];
    table[y] = row;
    // The first row of a stream stands for those above it, inside the picture too: nothing else
    // will ever fill them.
    if (y == head_.chainStart) std::fill_n(table + y - next.marginTop, next.marginTop, row);
    if (y + 1 == head_.inHeight) std::fill_n(table + y + 1, next.marginBottom, row);
    takeRows(next, 1);
    result_ = runStage(engine_, k, {out_.left, y, out_.right, y + 1});
    repeatBorderColumns(next, row);
  }

  // Where the band ends inside the picture, the next stage finds the border pixels of the row
  // repeated: the true ones were never made, and what earlier bands left there must not show.
  void repeatBorderColumns(const QPXBand& next, uint8_t* row) const {
    const int32_t step = head_.pix.bytesPerSample[0];
    uint8_t* first = advance(row, step, out_.left);
    uint8_t* end = advance(row, step, out_.right);
    if (out_.left > 0) {
      const ptrdiff_t bytes = ptrdiff_t{step} * next.marginLeft;
      for (ptrdiff_t i = 1; i <= bytes; ++i) first[-i] = first[step - i];
    }
    if (out_.right < head_.inWidth) {
      const ptrdiff_t bytes = ptrdiff_t{step} * next.marginRight;
      for (ptrdiff_t i = 0; i < bytes; ++i) end[i] = end[i - step];
    }
  }

  // Row y of the last stage goes to the caller.
  void produce(int32_t k, int32_t y) {
    head_.bands[k].outRows[0][y] =
        advance(head_.plane[kOutputPlane], head_.pitch[kOutputPlane], outputRow_);
    ++outputRow_;
    head_.lastOutTop = y;
    head_.lastOutBottom = y + 1;
    if (out_.left < outputRight_) {
      result_ = runStage(engine_, k, {out_.left, y, outputRight_, y + 1});
    }
  }

  QPXEngine* engine_;
  Stage& head_;
  MRect out_;  // what the inner stages make; the last one is cut to the output picture
  int32_t outputRight_;
  int32_t outputRow_;
  int32_t result_ = QPX_OK;
};

// The first band of a stream, or the first behind bands of which only the head was run.
void startChain(Stage& head, const MRect& out) {
  for (int32_t k = 1; k < head.stageCount; ++k) {
    head.bands[k].rowsTaken = 0;
    takeRows(head.bands[k], 0);
  }
  const MRect cut = cutToOutput(head, out);
  head.chainRuns = true;
  head.chainStart = out.top;
  head.lastOutTop = head.lastOutBottom = out.top;
  head.lastOutLeft = cut.left;
  head.lastOutRight = cut.right;
}

int32_t processChain(QPXEngine* engine, const CallImages& images, QPXBandRect* rect) {
  Stage& head = *engine->head;
  storePlanes(head, images, rect);
  int32_t result = clipBand(engine, rect);
  if (result != QPX_OK || bandEmpty(head)) return result;
  result = sizeRings(engine);
  if (result != QPX_OK) return result;
  followStream(engine);

  const MRect out = outputRect(head);
  buildInputTables(head);
  if (!head.chainRuns) startChain(head, out);
  const int32_t firstRow = head.lastOutBottom;
  if (out.top < out.bottom && out.left < out.right) result = ChainRun(engine, out).run();
  keepRows(head);
  if (rect != nullptr) {
    storeRect({head.lastOutLeft, firstRow, head.lastOutRight, head.lastOutBottom}, rect);
  }
  return result;
}

}  // namespace
}  // namespace qpx

using namespace qpx;

int32_t QPXMultProcessIn(QPXEngine* handle, const MBitmap* out, const MBitmap* in,
                         const MBitmap* second, const MBitmap* mask, QPXBandRect* rect) {
  Stage* head = headOf(handle);
  if (head == nullptr) return QPX_BAD_PARAM;
  // Only plane 0 passes between stages, and rotated effects do not run row by row.
  if (head->pix.planes != 1 || head->effect->has(kWarps)) return QPX_UNSUPPORTED;
  const CallImages images = {out, in, second, mask};
  const int32_t result = checkImages(*head, images);
  return result != QPX_OK ? result : processChain(handle, images, rect);
}
