// Running catalogued effects over pictures, for the properties that every effect has.
#pragma once

#include <gtest/gtest.h>
#include <qpx/effects.h>
#include <qpx/engine.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "support/picture.h"

namespace qpx::testing {

// Every effect of the catalogue that is built.
const std::vector<QPXEffectInfo>& builtEffects();

// The parameters of one run, in a block of just their size.
class Record {
 public:
  Record() = default;
  explicit Record(int32_t size);

  void* data() const { return bytes_.get(); }
  int32_t size() const { return size_; }
  void set(const QPXParamInfo& param, double value);
  void setBytes(Random& random);
  void setWords(uint32_t word);  // over and over, to the end
  // The bits of a word, whatever the parameter's type: the upper half of a double, the low byte of
  // a byte.
  void setRaw(const QPXParamInfo& param, uint32_t word);
  const std::string& text() const { return text_; }  // for messages: how it was made

  friend Record makeRecord(const QPXEffectInfo& effect, const char* kind, uint64_t seed);

 private:
  std::shared_ptr<uint8_t[]> bytes_;
  int32_t size_ = 0;
  std::string text_;
};

// `kind`: "initial", "minimum", "maximum", "random" (each parameter inside its range), "below" and
// "above" (far outside it), "zero" and "noise" (any bytes). Records whose parameters are not
// described are noise in place of what lies in a range.
Record makeRecord(const QPXEffectInfo& effect, const char* kind, uint64_t seed = 0);

// An engine and what creating it answered. Effects of the shared filter record find a picture of
// the host's in it, which covers the whole of theirs.
class Engine {
 public:
  Engine(const Picture& picture, std::span<const QPXEffectItem> items, int32_t quality = 0);
  Engine(const Picture& picture, const QPXEffectInfo& effect, const Record& record);
  // With a second input and a mask, each of which may be null.
  Engine(const Picture& picture, const QPXEffectInfo& effect, const Record& record,
         const Picture* second, const Picture* mask);
  ~Engine() { QPXDestroy(handle_); }
  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;

  QPXEngine* handle() const { return handle_; }
  int32_t result() const { return result_; }

  // Runs the picture in bands of the given heights, the last of them repeated, and checks that the
  // finished rows follow one another down to the end.
  ::testing::AssertionResult run(const Picture& in, Picture& out,
                                 std::span<const int32_t> heights) const;
  ::testing::AssertionResult run(const Picture& in, Picture& out) const;
  // One call over a part of the picture, which makes the part that QPXCalcRect promises. `made`
  // receives that.
  ::testing::AssertionResult runPart(const Picture& in, Picture& out, const MRect& part,
                                     MRect* made) const;

 private:
  bool isAllMargin(const MRect& part) const;
  ::testing::AssertionResult runWarp(const Picture& in, Picture& out,
                                     std::span<const int32_t> heights) const;
  void layOverlay(const Picture& picture, QPXFilterRecord* record);
  int32_t process(const QPXPlaneSet& out, const QPXPlaneSet& in, MRect* rect) const;

  QPXEngine* handle_ = nullptr;
  int32_t result_ = 0;
  bool warps_ = false;
  const Picture* second_ = nullptr;
  const Picture* mask_ = nullptr;
  std::unique_ptr<Picture> overlay_;
  MBitmap overlayImage_ = {};
};

// A picture of the engine's size whose bytes were never those of a result.
Picture blankLike(const Picture& picture);

::testing::AssertionResult samePicture(const Picture& expected, const Picture& actual);
::testing::AssertionResult untouchedOutside(const Picture& before, const Picture& after,
                                            const MRect& rect);

// A case of the properties: an effect in a format, at a size where the property has cases by size.
struct EffectCase {
  const QPXEffectInfo* effect;
  const FormatCase* format;
  int32_t width;
  int32_t height;

  Picture picture(Placement placement, uint64_t seed = 1) const;
};
void PrintTo(const EffectCase& effectCase, std::ostream* stream);

// Effects that work each call by itself and so differ from band to band.
inline bool wantsOneCall(const EffectCase& effectCase) {
  return (effectCase.effect->flags & QPX_EFFECT_ONE_CALL) != 0;
}

struct Size {
  int32_t width;
  int32_t height;
};

// Every built effect in every format of its groups, at every size.
std::vector<EffectCase> allCases(std::span<const Size> sizes);
std::vector<EffectCase> allCases();  // at no size

// "1900_Sepia_NV21" and, where the case has a size, "_17x13".
std::string caseName(const ::testing::TestParamInfo<EffectCase>& info);

bool takes(const QPXEffectInfo& effect, const FormatCase& format);
bool hasMargin(const QPXEffectInfo& effect);

// Whether the case is the effect's first, for what need not be repeated for every format.
bool isFirstFormat(const EffectCase& effectCase);

}  // namespace qpx::testing
