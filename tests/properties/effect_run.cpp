#include "properties/effect_run.h"

#include <algorithm>
#include <cstring>
#include <sstream>

namespace qpx::testing {
namespace {

std::vector<QPXEffectInfo> readCatalogue() {
  std::vector<QPXEffectInfo> effects;
  QPXEffectInfo info;
  for (int32_t i = 0; QPX_GetEffectInfo(i, &info) == QPX_OK; ++i) {
    if ((info.flags & QPX_EFFECT_BUILT) != 0) effects.push_back(info);
  }
  return effects;
}

std::string nameOf(const EffectCase& effectCase) {
  std::ostringstream name;
  name << std::hex << std::uppercase << effectCase.effect->id << std::dec << "_"
       << effectCase.effect->name;
  if (effectCase.format != nullptr) name << "_" << effectCase.format->name;
  if (effectCase.width != 0) name << "_" << effectCase.width << "x" << effectCase.height;
  return name.str();
}

bool whole(int32_t type) { return type != QPX_PARAM_FLOAT && type != QPX_PARAM_DOUBLE; }

double randomIn(const QPXParamInfo& param, Random& random) {
  const double share = random.next() / 4294967295.0;
  const double value = param.minimum + (param.maximum - param.minimum) * share;
  return whole(param.type) ? static_cast<double>(static_cast<int64_t>(value)) : value;
}

// Far outside the range, but inside what the type can hold.
double farOutside(const QPXParamInfo& param, bool above) {
  switch (param.type) {
    case QPX_PARAM_UINT8:
      return above ? 255 : 0;
    case QPX_PARAM_FLAG:
    case QPX_PARAM_COLOR:
      return above ? param.maximum : param.minimum;
    case QPX_PARAM_INT32:
      return above ? std::min(param.maximum + 1e6, 2147483647.0)
                   : std::max(param.minimum - 1e6, -2147483648.0);
    default:
      return above ? param.maximum + 1e6 : param.minimum - 1e6;
  }
}

double valueOf(const QPXParamInfo& param, const std::string& kind, Random& random) {
  if (kind == "initial") return param.initial;
  if (kind == "minimum") return param.minimum;
  if (kind == "maximum") return param.maximum;
  if (kind == "random") return randomIn(param, random);
  return farOutside(param, kind == "above");
}

// Rotated effects stand alone.
bool turns(std::span<const QPXEffectItem> items) {
  const std::vector<QPXEffectInfo>& all = builtEffects();
  return items.size() == 1 && std::any_of(all.begin(), all.end(), [&](const QPXEffectInfo& info) {
           return info.id == items[0].effectId && info.marginRule == QPX_MARGIN_ROTATION;
         });
}

}  // namespace

const std::vector<QPXEffectInfo>& builtEffects() {
  static const std::vector<QPXEffectInfo> effects = readCatalogue();
  return effects;
}

Record::Record(int32_t size)
    : bytes_(size > 0 ? new uint8_t[static_cast<size_t>(size)]() : nullptr), size_(size) {}

void Record::set(const QPXParamInfo& param, double value) {
  const auto store = [&](auto typed) {
    std::memcpy(bytes_.get() + param.offset, &typed, sizeof typed);
  };
  switch (param.type) {
    case QPX_PARAM_UINT8:
      store(static_cast<uint8_t>(value));
      break;
    case QPX_PARAM_FLOAT:
      store(static_cast<float>(value));
      break;
    case QPX_PARAM_DOUBLE:
      store(value);
      break;
    case QPX_PARAM_COLOR:
      store(static_cast<uint32_t>(value));
      break;
    default:
      store(static_cast<int32_t>(value));
      break;
  }
  text_.append(" ").append(param.name).append("=").append(std::to_string(value));
}

void Record::setBytes(Random& random) {
  for (int32_t i = 0; i < size_; ++i) bytes_[i] = random.byte();
}

void Record::setWords(uint32_t word) {
  for (int32_t i = 0; i < size_; ++i) bytes_[i] = static_cast<uint8_t>(word >> i % 4 * 8);
  text_.append(" words of ").append(std::to_string(word));
}

void Record::setRaw(const QPXParamInfo& param, uint32_t word) {
  uint8_t* place = bytes_.get() + param.offset;
  const uint64_t upper = uint64_t{word} << 32;
  if (param.type == QPX_PARAM_UINT8) {
    *place = static_cast<uint8_t>(word);
  } else if (param.type == QPX_PARAM_DOUBLE) {
    std::memcpy(place, &upper, sizeof upper);
  } else {
    std::memcpy(place, &word, sizeof word);
  }
  text_.append(" ").append(param.name).append(" of bits ").append(std::to_string(word));
}

Record makeRecord(const QPXEffectInfo& effect, const char* kind, uint64_t seed) {
  Record record(effect.recordSize);
  Random random(seed * 7919 + effect.id);
  const std::string how = kind;
  const bool described = effect.paramCount > 0;
  record.text_ = how;
  if (seed != 0) record.text_.append(" ").append(std::to_string(seed));
  if (how == "zero" || effect.recordSize == 0) return record;
  if (how == "noise" || (!described && how != "initial")) {
    record.setBytes(random);
    return record;
  }
  for (int32_t i = 0; i < effect.paramCount; ++i) {
    record.set(effect.params[i], valueOf(effect.params[i], how, random));
  }
  return record;
}

Engine::Engine(const Picture& picture, std::span<const QPXEffectItem> items, int32_t quality)
    : warps_(turns(items)) {
  const MBitmap image = picture.bitmap();
  const QPXEffectList list = {items.data(), static_cast<uint32_t>(items.size()), quality};
  result_ = QPXCreate(&image, &image, &list, &handle_);
}

Engine::Engine(const Picture& picture, const QPXEffectInfo& effect, const Record& record)
    : Engine(picture, effect, record, nullptr, nullptr) {}

Engine::Engine(const Picture& picture, const QPXEffectInfo& effect, const Record& record,
               const Picture* second, const Picture* mask)
    : warps_(effect.marginRule == QPX_MARGIN_ROTATION), second_(second), mask_(mask) {
  const MBitmap image = picture.bitmap();
  QPXEffectItem item = {effect.id, record.data(), static_cast<uint32_t>(record.size())};
  QPXFilterRecord filterRecord;
  if (record.size() == static_cast<int32_t>(sizeof filterRecord)) {
    std::memcpy(&filterRecord, record.data(), sizeof filterRecord);
    layOverlay(picture, &filterRecord);
    item.param = &filterRecord;
  }
  QPXRemoveEdgeParam edgeRecord;
  if (effect.id == 0x9B00 && record.size() == static_cast<int32_t>(sizeof edgeRecord)) {
    std::memcpy(&edgeRecord, record.data(), sizeof edgeRecord);
    edgeRecord.selection.mask = nullptr;
    item.param = &edgeRecord;
  }
  const QPXEffectList list = {&item, 1, 0};
  const MBitmap secondImage = second != nullptr ? second->bitmap() : MBitmap{};
  const MBitmap maskImage = mask != nullptr ? mask->bitmap() : MBitmap{};
  result_ = QPXCreateIn(&image, &image, second != nullptr ? &secondImage : nullptr,
                        mask != nullptr ? &maskImage : nullptr, &list, &handle_);
}

void Engine::layOverlay(const Picture& picture, QPXFilterRecord* record) {
  overlay_ = std::make_unique<Picture>(picture.format(), picture.width(), picture.height(),
                                       Placement::exact);
  overlay_->paint(77);
  overlayImage_ = overlay_->bitmap();
  record->overlayImage = &overlayImage_;
  record->overlayRect = {0, 0, picture.width(), picture.height()};
}

int32_t Engine::process(const QPXPlaneSet& out, const QPXPlaneSet& in, MRect* rect) const {
  if (second_ == nullptr && mask_ == nullptr) return QPXProcess(handle_, &out, &in, rect);
  const QPXPlaneSet second =
      second_ != nullptr ? second_->planesAt(rect->left, rect->top) : QPXPlaneSet{};
  const QPXPlaneSet mask =
      mask_ != nullptr ? mask_->planesAt(rect->left, rect->top) : QPXPlaneSet{};
  QPXBandRect band = {rect->left, rect->top, rect->right, rect->bottom, 0, 0, 0, 0};
  const int32_t result = QPXMerge(handle_, &out, &in, second_ != nullptr ? &second : nullptr,
                                  mask_ != nullptr ? &mask : nullptr, &band);
  *rect = {band.left, band.top, band.right, band.bottom};
  return result;
}

::testing::AssertionResult Engine::run(const Picture& in, Picture& out) const {
  const int32_t all[] = {in.height()};
  return run(in, out, all);
}

::testing::AssertionResult Engine::run(const Picture& in, Picture& out,
                                       std::span<const int32_t> heights) const {
  if (result_ != QPX_OK) return ::testing::AssertionFailure() << "create answered " << result_;
  if (warps_) return runWarp(in, out, heights);
  if (QPXCalcRectReset(handle_) != QPX_OK) return ::testing::AssertionFailure() << "no reset";
  int32_t finished = 0;
  size_t band = 0;
  for (int32_t top = 0; top < in.height();) {
    const int32_t bottom =
        std::min(top + heights[std::min(band++, heights.size() - 1)], in.height());
    MRect rect = {0, top, in.width(), bottom};
    const int32_t result = process(out.planesAt(0, finished), in.planesAt(0, top), &rect);
    if (result != QPX_OK) return ::testing::AssertionFailure() << "process answered " << result;
    if (rect.top < rect.bottom) {
      if (rect.top != finished || rect.left != 0 || rect.right != in.width()) {
        return ::testing::AssertionFailure()
               << "band " << top << " to " << bottom << " made rows " << rect.top << " to "
               << rect.bottom << ", columns " << rect.left << " to " << rect.right << " after row "
               << finished;
      }
      finished = rect.bottom;
    }
    top = bottom;
  }
  if (finished != in.height()) {
    return ::testing::AssertionFailure() << "only " << finished << " rows were finished";
  }
  return ::testing::AssertionSuccess();
}

// Rotated effects make any rectangle of the output, each by itself.
::testing::AssertionResult Engine::runWarp(const Picture& in, Picture& out,
                                           std::span<const int32_t> heights) const {
  size_t band = 0;
  for (int32_t top = 0; top < in.height();) {
    const int32_t bottom =
        std::min(top + heights[std::min(band++, heights.size() - 1)], in.height());
    MRect made;
    const ::testing::AssertionResult result = runPart(in, out, {0, top, in.width(), bottom}, &made);
    if (!result) return result;
    top = bottom;
  }
  return ::testing::AssertionSuccess();
}

// Of a part no larger than the margins nothing is left; the rectangle that is promised for it at an
// edge of the picture is not to be had.
bool Engine::isAllMargin(const MRect& part) const {
  int32_t margin = 0;
  QPXGetMaxOutLine(handle_, 0, &margin);
  return part.right - part.left <= 2 * margin || part.bottom - part.top <= 2 * margin;
}

::testing::AssertionResult Engine::runPart(const Picture& in, Picture& out, const MRect& part,
                                           MRect* made) const {
  if (result_ != QPX_OK) return ::testing::AssertionFailure() << "create answered " << result_;
  QPXCalcRectReset(handle_);
  MRect source = part;
  *made = warps_ ? part : MRect{};
  if (QPXCalcRect(handle_, made, &source) != QPX_OK) {
    return ::testing::AssertionFailure() << "no rectangle";
  }
  MRect rect = source;
  const int32_t result =
      process(out.planesAt(made->left, made->top), in.planesAt(source.left, source.top), &rect);
  if (result != QPX_OK) return ::testing::AssertionFailure() << "process answered " << result;
  const bool empty = made->top >= made->bottom || made->left >= made->right;
  const bool same = rect.left == made->left && rect.top == made->top && rect.right == made->right &&
                    rect.bottom == made->bottom;
  const bool madeNone = rect.top >= rect.bottom || rect.left >= rect.right;
  if (empty || isAllMargin(source) ? madeNone || same : same) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure()
         << "made " << rect.left << ", " << rect.top << " to " << rect.right << ", " << rect.bottom
         << " in place of " << made->left << ", " << made->top << " to " << made->right << ", "
         << made->bottom;
}

Picture blankLike(const Picture& picture) {
  Picture blank(picture.format(), picture.width(), picture.height(), Placement::guarded);
  blank.fill(0xB7);
  return blank;
}

::testing::AssertionResult samePicture(const Picture& expected, const Picture& actual) {
  const auto difference = expected.firstDifference(actual);
  if (!difference) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << describe(*difference);
}

::testing::AssertionResult untouchedOutside(const Picture& before, const Picture& after,
                                            const MRect& rect) {
  const auto difference = after.firstWriteOutside(before, rect);
  if (!difference) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "written outside: " << describe(*difference);
}

Picture EffectCase::picture(Placement placement, uint64_t seed) const {
  Picture made(format->format, width, height, placement);
  made.paint(seed);
  return made;
}

void PrintTo(const EffectCase& effectCase, std::ostream* stream) { *stream << nameOf(effectCase); }

std::vector<EffectCase> allCases(std::span<const Size> sizes) {
  std::vector<EffectCase> cases;
  for (const QPXEffectInfo& effect : builtEffects()) {
    for (const FormatCase& format : formatCases()) {
      if (!takes(effect, format)) continue;
      for (const Size& size : sizes) cases.push_back({&effect, &format, size.width, size.height});
    }
  }
  return cases;
}

std::vector<EffectCase> allCases() {
  constexpr Size kNoSize[] = {{0, 0}};
  return allCases(kNoSize);
}

std::string caseName(const ::testing::TestParamInfo<EffectCase>& info) {
  return nameOf(info.param);
}

bool takes(const QPXEffectInfo& effect, const FormatCase& format) {
  return (effect.formats & format.group) != 0;
}

bool isFirstFormat(const EffectCase& effectCase) {
  for (const FormatCase& format : formatCases()) {
    if (takes(*effectCase.effect, format)) return &format == effectCase.format;
  }
  return false;
}

bool hasMargin(const QPXEffectInfo& effect) {
  return effect.marginRule != QPX_MARGIN_FIXED || effect.margin != 0;
}

}  // namespace qpx::testing
