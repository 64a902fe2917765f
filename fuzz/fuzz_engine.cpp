// Engines of any list over pictures of any format, driven by any calls that a host may make. All
// planes are blocks of just the bytes that a host must give, so that the address sanitizer sees
// every step beside them.
#include <fuzzer/FuzzedDataProvider.h>
#include <qpx/qpx.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <vector>

#include "fuzz_check.h"
#include "support/picture.h"

namespace {

using qpx::testing::Picture;
using qpx::testing::Placement;

constexpr int32_t kMaxSide = 40;

bool knownCode(int32_t result) { return result == 0 || (result >= 2 && result <= 4); }

uint32_t pickFormat(FuzzedDataProvider& data) {
  const auto formats = qpx::testing::formatCases();
  const size_t i = data.ConsumeIntegralInRange<size_t>(0, formats.size());
  return i < formats.size() ? formats[i].format : data.ConsumeIntegral<uint32_t>();
}

int32_t pickSide(FuzzedDataProvider& data) {
  return data.ConsumeIntegralInRange<int32_t>(data.ConsumeBool() ? 1 : -2, kMaxSide);
}

const std::vector<QPXEffectInfo>& catalogue() {
  static const std::vector<QPXEffectInfo> effects = [] {
    std::vector<QPXEffectInfo> read;
    QPXEffectInfo info;
    for (int32_t i = 0; QPX_GetEffectInfo(i, &info) == QPX_OK; ++i) {
      if ((info.flags & QPX_EFFECT_BUILT) != 0) read.push_back(info);
    }
    return read;
  }();
  return effects;
}

// An effect list whose records are blocks of their own.
struct List {
  std::vector<std::unique_ptr<uint8_t[]>> records;
  std::vector<QPXEffectItem> items;
  bool hasMargins = false;
  bool warps = false;
};

// Wherever records hold a picture of the host's, it must be a picture or null.
void clearPointer(std::vector<uint8_t>* bytes) {
  const MBitmap* none = nullptr;
  if (bytes->size() == sizeof(QPXFilterRecord)) {
    std::memcpy(bytes->data() + offsetof(QPXFilterRecord, overlayImage), &none, sizeof none);
  }
  if (bytes->size() == sizeof(QPXRemoveEdgeParam)) {
    std::memcpy(bytes->data() + offsetof(QPXRemoveEdgeParam, selection), &none, sizeof none);
  }
}

void addItem(FuzzedDataProvider& data, List* list) {
  const auto& effects = catalogue();
  const size_t i = data.ConsumeIntegralInRange<size_t>(0, effects.size());
  uint32_t id = data.ConsumeBool() ? data.ConsumeIntegral<uint32_t>() : 0x5A00;
  size_t size = data.ConsumeIntegralInRange<size_t>(0, 300);
  if (i < effects.size()) {
    id = effects[i].id;
    if (data.ConsumeIntegralInRange(0, 7) != 0) size = static_cast<size_t>(effects[i].recordSize);
    list->hasMargins |= effects[i].marginRule != QPX_MARGIN_FIXED || effects[i].margin != 0;
    list->warps |= effects[i].marginRule == QPX_MARGIN_ROTATION;
  }
  std::vector<uint8_t> bytes = data.ConsumeBytes<uint8_t>(size);
  bytes.resize(size);
  clearPointer(&bytes);
  list->records.emplace_back(new uint8_t[size]);
  std::copy(bytes.begin(), bytes.end(), list->records.back().get());
  const bool absent = data.ConsumeIntegralInRange(0, 15) == 0;
  list->items.push_back(
      {id, absent ? nullptr : list->records.back().get(), static_cast<uint32_t>(size)});
}

// Rows of a picture, which a negative height means to be stored bottom up.
int32_t rowCount(const MBitmap& image) { return std::abs(image.height); }

// A picture of the rows [top, bottom) of one that the engine was made for: what a host holds that
// works band by band. Whole blocks of chroma are always there.
class Rows {
 public:
  Rows(uint32_t format, int32_t width, int32_t top, int32_t bottom)
      : down_(chromaDivisor(format)),
        first_(std::max(top, 0) / down_),
        picture_(format, std::max(width, 1), std::max(bottom - first_ * down_, 1),
                 Placement::exact) {
    picture_.paint(3);
  }

  // Planes that address the pixel (left, top) of the whole, wherever that is.
  QPXPlaneSet at(int32_t left, int32_t top) const {
    const QPXPlaneSet origin = picture_.planesAt(0, 0);
    QPXPlaneSet planes = picture_.planesAt(left, 0);
    for (int p = 0; p < 3; ++p) {
      if (planes.plane[p] == nullptr) continue;
      const int32_t down = p == 0 ? 1 : down_;
      const ptrdiff_t row = ptrdiff_t{top / down} - ptrdiff_t{first_} * down_ / down;
      planes.plane[p] = reinterpret_cast<uint8_t*>(
          reinterpret_cast<uintptr_t>(planes.plane[p]) +
          static_cast<uintptr_t>(row) * static_cast<uintptr_t>(ptrdiff_t{origin.pitch[p]}));
    }
    return planes;
  }

 private:
  static int32_t chromaDivisor(uint32_t format) {
    if (format == QPX_FORMAT_NV21 || format == QPX_FORMAT_NV12) return 2;
    PixInfo info;
    return mbf_GetPixInfo(format, &info) == QPX_OK && info.planes == 3 ? info.ySampling[1] : 1;
  }

  int32_t down_;
  int32_t first_;  // chroma row
  Picture picture_;
};

class EngineRun {
 public:
  explicit EngineRun(FuzzedDataProvider& data) : data_(data) {}
  ~EngineRun() { QPXDestroy(engine_); }

  void run() {
    if (!create()) return;
    for (int i = 0; i < 12 && data_.remaining_bytes() > 0; ++i) call();
  }

 private:
  bool create() {
    format_ = pickFormat(data_);
    in_ = {format_, pickSide(data_), pickSide(data_), {}, {}};
    out_ = in_;
    if (data_.ConsumeIntegralInRange(0, 7) == 0) out_.width = pickSide(data_);
    if (data_.ConsumeIntegralInRange(0, 7) == 0) out_.height = pickSide(data_);
    second_ = {format_, pickSide(data_), pickSide(data_), {}, {}};
    mask_ = {QPX_FORMAT_GREY8, pickSide(data_), pickSide(data_), {}, {}};
    hasSecond_ = data_.ConsumeIntegralInRange(0, 3) == 0;
    hasMask_ = data_.ConsumeIntegralInRange(0, 3) == 0;
    const int count = data_.ConsumeIntegralInRange(0, 4);
    for (int i = 0; i < count; ++i) addItem(data_, &list_);
    const QPXEffectList list = {list_.items.data(), static_cast<uint32_t>(list_.items.size()),
                                data_.ConsumeIntegralInRange<int32_t>(0, 5)};
    const int32_t result = QPXCreateIn(&out_, &in_, hasSecond_ ? &second_ : nullptr,
                                       hasMask_ ? &mask_ : nullptr, &list, &engine_);
    FUZZ_CHECK(knownCode(result));
    FUZZ_CHECK((engine_ != nullptr) == (result == QPX_OK));
    return result == QPX_OK && count > 0;
  }

  void call() {
    switch (data_.ConsumeIntegralInRange(0, 9)) {
      case 0:
        askForRectangle();
        break;
      case 1:
        QPXCalcRectReset(engine_);
        break;
      case 2:
        setProperty();
        break;
      case 3:
        QPX_UsePlainForms(data_.ConsumeBool());
        break;
      case 4:
        if (data_.ConsumeIntegralInRange(0, 15) == 0) QPXFreeMemory(engine_);
        break;
      case 5:
        processWhole();
        break;
      default:
        processBand(pickRect());
        break;
    }
  }

  int32_t pickCoordinate(int32_t side) {
    return data_.ConsumeIntegralInRange(0, 15) == 0
               ? data_.ConsumeIntegral<int32_t>()
               : data_.ConsumeIntegralInRange<int32_t>(-3, std::max(side, 0) + 3);
  }

  // Mostly the band that goes on where the last one ended.
  MRect pickRect() {
    MRect rect = {0, nextTop_, in_.width, nextTop_};
    if (data_.ConsumeBool()) {
      rect.bottom += data_.ConsumeIntegralInRange(1, 9);
    } else {
      rect = {pickCoordinate(in_.width), pickCoordinate(in_.height), pickCoordinate(in_.width),
              pickCoordinate(in_.height)};
    }
    nextTop_ = rect.bottom < in_.height && rect.bottom > 0 ? rect.bottom : 0;
    return rect;
  }

  void askForRectangle() {
    MRect out = pickRect();
    MRect in = pickRect();
    if (data_.ConsumeBool()) out = {};
    QPXCalcRect(engine_, &out, &in);
  }

  void setProperty() {
    const int32_t value = data_.ConsumeIntegral<int32_t>();
    int32_t bound = 0;
    QPXSetProPerty(engine_, 0x9200, 1, &value);
    QPXGetProPerty(engine_, 0x9200, 0, &bound, 4);
  }

  void processBand(const MRect& rect) {
    const int32_t height = std::max(in_.height, 0);
    const int32_t top = std::clamp(rect.top, 0, height);
    const int32_t bottom = std::clamp(rect.bottom, top, height);
    int32_t finished = 0;
    FUZZ_CHECK(QPXGetMaxOutLine(engine_, bottom - top, &finished) == QPX_OK);
    const int32_t outTop = list_.warps ? 0 : top;
    const int32_t outRows = list_.warps ? out_.height : finished;
    const bool bandOnly = !list_.hasMargins;
    const Rows in(format_, in_.width, bandOnly ? top : 0, bandOnly ? bottom : height);
    // Where margins shift rows against blocks of chroma, one more block is touched.
    const Rows out(format_, out_.width, outTop, outTop + outRows + (list_.hasMargins ? 16 : 0));
    const QPXPlaneSet inPlanes = in.at(rect.left, rect.top);
    const QPXPlaneSet outPlanes = list_.warps ? out.at(0, 0) : out.at(rect.left, rect.top);
    MRect made = rect;
    const int32_t result = hasSecond_ || hasMask_ || data_.ConsumeIntegralInRange(0, 7) == 0
                               ? merge(outPlanes, inPlanes, &made)
                               : QPXProcess(engine_, &outPlanes, &inPlanes, &made);
    FUZZ_CHECK(knownCode(result));
  }

  int32_t merge(const QPXPlaneSet& out, const QPXPlaneSet& in, MRect* rect) {
    QPXBandRect band = {rect->left, rect->top, rect->right, rect->bottom, 0, 0, 0, 0};
    if (data_.ConsumeBool()) {
      band.secondLeft = pickCoordinate(in_.width);
      band.secondTop = pickCoordinate(in_.height);
      band.maskLeft = pickCoordinate(in_.width);
      band.maskTop = pickCoordinate(in_.height);
    }
    const Rows second(format_, second_.width, 0, rowCount(second_));
    const Rows mask(QPX_FORMAT_GREY8, mask_.width, 0, rowCount(mask_));
    const auto from = [](int32_t a, int32_t b) {
      return static_cast<int32_t>(std::clamp<int64_t>(int64_t{a} - b, INT32_MIN, INT32_MAX));
    };
    const QPXPlaneSet secondPlanes =
        second.at(from(band.left, band.secondLeft), from(band.top, band.secondTop));
    const QPXPlaneSet maskPlanes =
        mask.at(from(band.left, band.maskLeft), from(band.top, band.maskTop));
    return QPXMerge(engine_, &out, &in, hasSecond_ ? &secondPlanes : nullptr,
                    hasMask_ ? &maskPlanes : nullptr, &band);
  }

  // The roads behind the public calls, over whole pictures.
  void processWhole() {
    if (list_.hasMargins) return;
    const Rows in(format_, in_.width, 0, rowCount(in_));
    const Rows out(format_, out_.width, 0, rowCount(out_));
    const Rows second(format_, second_.width, 0, rowCount(second_));
    const Rows mask(QPX_FORMAT_GREY8, mask_.width, 0, rowCount(mask_));
    const auto image = [](const Rows& rows, const MBitmap& record) {
      const QPXPlaneSet planes = rows.at(0, 0);
      MBitmap made = record;
      std::copy_n(planes.plane, 3, made.plane);
      std::copy_n(planes.pitch, 3, made.pitch);
      return made;
    };
    const MBitmap inImage = image(in, in_), outImage = image(out, out_);
    const MBitmap secondImage = image(second, second_), maskImage = image(mask, mask_);
    const MRect rect = pickRect();
    QPXBandRect band = {rect.left, rect.top, rect.right, rect.bottom, 0, 0, 0, 0};
    // A null rectangle is the whole picture for a chain; second and mask then lie at its origin,
    // and are to cover it.
    const bool whole = data_.ConsumeBool() && !hasSecond_ && !hasMask_;
    const bool chain = data_.ConsumeBool();
    const auto process = chain ? QPXMultProcessIn : QPXProcessIn;
    FUZZ_CHECK(knownCode(process(engine_, &outImage, &inImage, hasSecond_ ? &secondImage : nullptr,
                                 hasMask_ ? &maskImage : nullptr, whole ? nullptr : &band)));
  }

  FuzzedDataProvider& data_;
  uint32_t format_ = 0;
  MBitmap in_ = {}, out_ = {}, second_ = {}, mask_ = {};
  bool hasSecond_ = false;
  bool hasMask_ = false;
  List list_;
  QPXEngine* engine_ = nullptr;
  int32_t nextTop_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  FuzzedDataProvider data(bytes, size);
  EngineRun(data).run();
  QPX_UsePlainForms(0);
  return 0;
}
