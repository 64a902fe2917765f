// Selective colour in 16-bit lanes, for processors that look up bytes in
// registers. Included once per target.
#if defined(QPX_SIMD_SELECTIVE_WORDS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_SELECTIVE_WORDS_INL_H_
#undef QPX_SIMD_SELECTIVE_WORDS_INL_H_
#else
#define QPX_SIMD_SELECTIVE_WORDS_INL_H_
#endif

#include <hwy/highway.h>

#include "simd/selective-inl.h"

#if HWY_TARGET <= HWY_AVX3

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using ByteMask = hn::Mask<D8>;

// kReciprocal20 in two parts: what is above 2^16, a byte, and what is below.
constexpr WordBytes kReciprocalLow([](int32_t v) { return kReciprocal20[static_cast<size_t>(v)]; });
constexpr WordBytes kReciprocalHigh([](int32_t v) {
  return kReciprocal20[static_cast<size_t>(v)] >> 16;
});

struct ReciprocalBytes {
  V8 low, middle, high;

  HWY_INLINE explicit ReciprocalBytes(V8 of)
      : low(ByteTable(kReciprocalLow.low)(of)),
        middle(ByteTable(kReciprocalLow.high)(of)),
        high(ByteTable(kReciprocalHigh.low)(of)) {}
  HWY_INLINE ReciprocalBytes(ByteMask first, const ReciprocalBytes& a, const ReciprocalBytes& b)
      : low(hn::IfThenElse(first, a.low, b.low)),
        middle(hn::IfThenElse(first, a.middle, b.middle)),
        high(hn::IfThenElse(first, a.high, b.high)) {}
};

// Levels without their sign, and which of them add ink.
struct LevelBytes {
  V8 magnitude;
  ByteMask adds;

  HWY_INLINE explicit LevelBytes(int32_t levels)
      : magnitude(magnitudeOf(levels)), adds(addsOf(levels)) {}
  HWY_INLINE LevelBytes(ByteMask first, ByteMask second, const ClassAmounts& of)
      : magnitude(
            hn::IfThenElse(first, magnitudeOf(of.first),
                           hn::IfThenElse(second, magnitudeOf(of.second), magnitudeOf(of.third)))),
        adds(hn::MaskFromVec(
            hn::IfThenElse(first, signOf(of.first),
                           hn::IfThenElse(second, signOf(of.second), signOf(of.third))))) {}

 private:
  HWY_INLINE static V8 magnitudeOf(int32_t levels) {
    return hn::Set(D8(), static_cast<uint8_t>(levels < 0 ? -levels : levels));
  }
  HWY_INLINE static V8 signOf(int32_t levels) { return hn::Set(D8(), levels > 0 ? 255 : 0); }
  HWY_INLINE static ByteMask addsOf(int32_t levels) { return hn::MaskFromVec(signOf(levels)); }
};

// What a channel loses to the classes of its colour.
class AbsoluteLosses {
 public:
  HWY_INLINE explicit AbsoluteLosses(V8 channel)
      : channel_(channel),
        ink_(hn::Not(channel)),
        byLight_(channel_),
        byInk_(ink_),
        total_{hn::Zero(D16()), hn::Zero(D16())} {}

  // Ink that is given back makes the loss negative, and cuts it away from 0: the bias is one less
  // than a whole, of which any remainder of the low part is one.
  HWY_INLINE void add(const LevelBytes& levels, V8 weight8) {
    const V8 room = hn::Min(hn::IfThenElse(levels.adds, channel_, ink_), levels.magnitude);
    const Halves weight = widen(weight8), channel = widen(channel_);
    const V8 light = narrow({share(weight.even, channel.even), share(weight.odd, channel.odd)});
    const Halves part = widen(hn::IfThenElse(levels.adds, light, hn::Sub(weight8, light)));
    const ReciprocalBytes by(levels.adds, byLight_, byInk_);
    const Halves low = wordsOf(by.low, by.middle), high = widen(by.high), most = widen(room);
    const Halves gives = widen(hn::IfThenZeroElse(levels.adds, hn::Set(D8(), 255)));
    total_.even =
        hn::Add(total_.even, loss(hn::Mul(most.even, part.even), low.even, high.even, gives.even));
    total_.odd =
        hn::Add(total_.odd, loss(hn::Mul(most.odd, part.odd), low.odd, high.odd, gives.odd));
  }

  // A whole level less where `mask` is set.
  HWY_INLINE void giveOne(ByteMask mask) {
    const Halves one = widen(hn::IfThenElseZero(mask, hn::Set(D8(), 1)));
    total_ = {hn::Sub(total_.even, one.even), hn::Sub(total_.odd, one.odd)};
  }

  HWY_INLINE V8 result() const {
    const Halves channel = widen(channel_);
    return narrow({clampWord(difference(channel.even, total_.even)),
                   clampWord(difference(channel.odd, total_.odd))});
  }

 private:
  // weight * channel / 255.
  HWY_INLINE static V16 share(V16 weight, V16 channel) {
    return hn::ShiftRight<7>(hn::MulHigh(hn::Mul(weight, channel), word(0x8081)));
  }

  HWY_INLINE static V16 loss(V16 product, V16 low, V16 high, V16 gives) {
    const V16 whole = hn::Add(hn::Mul(product, high), hn::MulHigh(product, low));
    const V16 rest = hn::Min(hn::Mul(product, low), word(1));
    const V16 bias = hn::And(gives, hn::Add(rest, word(15)));
    const V16 size = hn::ShiftRight<4>(hn::Add(whole, bias));
    const V16 sign = hn::Or(gives, hn::ShiftLeft<8>(gives));
    return hn::Sub(hn::Xor(size, sign), sign);
  }

  V8 channel_, ink_;
  ReciprocalBytes byLight_, byInk_;
  Halves total_;
};

// A byte by class.
HWY_INLINE V8 chooseBytes(ByteMask first, ByteMask second, const ClassAmounts& of) {
  const auto all = [](int32_t value)
                       HWY_ATTR { return hn::Set(D8(), static_cast<uint8_t>(value)); };
  return hn::IfThenElse(first, all(of.first),
                        hn::IfThenElse(second, all(of.second), all(of.third)));
}

constexpr WordBytes kAnswers([](int32_t v) { return answerToInk(v) | answerToRemoval(v) << 8; });
constexpr WordBytes kScales([](int32_t v) {
  return kInkScale[static_cast<size_t>(std::min(kInkCap[static_cast<size_t>(v)], 100))];
});
constexpr WordBytes kCaps([](int32_t v) { return std::min(kInkCap[static_cast<size_t>(v)], 255); });

// Bits 8 and up of a product of 16 bits by 8, and bits 10 and up of one by 11.
HWY_INLINE V16 productFrom8(V16 a, V16 b) {
  return hn::Or(hn::ShiftLeft<8>(hn::MulHigh(a, b)), hn::ShiftRight<8>(hn::Mul(a, b)));
}
HWY_INLINE V16 productFrom10(V16 a, V16 b) {
  return hn::Or(hn::ShiftLeft<6>(hn::MulHigh(a, b)), hn::ShiftRight<10>(hn::Mul(a, b)));
}

// Percent to 1024ths, cut.
HWY_INLINE V16 sharesOf(V16 percent) { return hn::MulHigh(hn::ShiftLeft<4>(percent), word(41944)); }

// What is made of a room, which may be below 0, by 1024ths.
HWY_INLINE V16 ofRoom(V16 room, V16 share) {
  const VS wide = hn::BitCast(DS(), hn::ShiftLeft<5>(room));
  return hn::BitCast(D16(), hn::MulHigh(wide, hn::BitCast(DS(), hn::Add(share, share))));
}

// What a channel becomes by all classes of its colour: its losses and gains are added up.
class RelativeChanges {
 public:
  HWY_INLINE explicit RelativeChanges(V8 channel)
      : channel_(channel), sum_(widen(channel)), removal_(ByteTable(kAnswers.high)(channel)) {}

  HWY_INLINE void lookUpInk() {
    cap_ = ByteTable(kCaps.low)(channel_);
    scale_ = WordTable(kScales)(channel_);
    answer_ = widen(ByteTable(kAnswers.low)(channel_));
  }

  HWY_INLINE void lose(V8 percent, V8 weight8) {
    const Halves most = widen(hn::Min(cap_, percent)), weight = widen(weight8);
    const auto half = [](V16 sum, V16 m, V16 w, V16 answer, V16 scale) HWY_ATTR {
      return hn::Sub(sum, productFrom10(productFrom8(hn::Mul(m, w), answer), scale));
    };
    sum_ = {half(sum_.even, most.even, weight.even, answer_.even, scale_.even),
            half(sum_.odd, most.odd, weight.odd, answer_.odd, scale_.odd)};
  }

  HWY_INLINE void gain(V8 percent8, V8 weight8) {
    const Halves percent = widen(percent8), weight = widen(weight8), answer = widen(removal_);
    const auto half = [](V16 sum, V16 p, V16 w, V16 a) HWY_ATTR {
      return hn::Add(sum, hn::ShiftRight<2>(hn::MulHigh(hn::Mul(w, a), sharesOf(p))));
    };
    sum_ = {half(sum_.even, percent.even, weight.even, answer.even),
            half(sum_.odd, percent.odd, weight.odd, answer.odd)};
  }

  // By 1024ths of what room there is.
  HWY_INLINE void fill(const Halves& room, const Halves& share) {
    sum_ = {hn::Add(sum_.even, ofRoom(room.even, share.even)),
            hn::Add(sum_.odd, ofRoom(room.odd, share.odd))};
  }

  HWY_INLINE V8 channel() const { return channel_; }

  HWY_INLINE V8 result() const {
    return narrow(
        {clampWord(hn::BitCast(DS(), sum_.even)), clampWord(hn::BitCast(DS(), sum_.odd))});
  }

 private:
  V8 channel_;
  Halves sum_;
  V8 removal_, cap_ = hn::Zero(D8());
  Halves scale_ = {}, answer_ = {};
};

// Percents are bytes and stay so.
constexpr int32_t asPercent(int32_t percent) { return percent; }

// The classes of a vector's colours and their weights.
class ClassBytes {
 public:
  HWY_INLINE explicit ClassBytes(const Bytes3& c) {
    const D8 d;
    const V8 top = hn::Max(c.a, c.b), bottom = hn::Min(c.a, c.b);
    const V8 most = hn::Max(top, c.c), least = hn::Min(bottom, c.c);
    const V8 mid = hn::Max(bottom, hn::Min(top, c.c)), middle = hn::Set(d, 127);
    redMost_ = hn::Eq(c.a, most);
    greenMost_ = hn::Eq(c.b, most);
    redLeast_ = hn::Eq(c.a, least);
    greenLeast_ = hn::Eq(c.b, least);
    white_ = hn::Gt(least, middle);
    black_ = hn::Not(hn::Gt(most, middle));
    mostWeight_ = hn::Sub(most, mid);
    leastWeight_ = hn::Sub(mid, least);
    // Twice an extreme leaves 8 bits, its distance from 255 does not.
    const V8 ofWhite = hn::Sub(hn::Add(least, least), hn::Set(d, 255));
    const V8 ofBlack = hn::Sub(hn::Set(d, 255), hn::Add(most, most));
    toneWeight_ = hn::IfThenElse(white_, ofWhite, ofBlack);
    const V8 low = hn::Sub(hn::Max(least, middle), hn::Min(least, middle));
    const V8 high = hn::Sub(hn::Max(most, middle), hn::Min(most, middle));
    neutralWeight_ = hn::SaturatedSub(hn::Set(d, 255), hn::SaturatedAdd(low, high));
    pureWhite_ = hn::Eq(least, hn::Set(d, 255));
    most_ = most;
    mid_ = mid;
    least_ = least;
  }

  HWY_INLINE V8 changed(V8 channel, const InkPlan& plan) const {
    RelativeChanges changes(channel);
    if (plan.adds) addInk(changes, plan);
    if (plan.takenMost.any()) {
      changes.gain(chooseBytes(redMost_, greenMost_, plan.takenMost), mostWeight_);
    }
    if (plan.takenLeast.any()) {
      changes.gain(chooseBytes(redLeast_, greenLeast_, plan.takenLeast), leastWeight_);
    }
    if (plan.takenTone.any()) takeFromTones(changes, plan.takenTone);
    if (plan.takenNeutral != 0) takeFromNeutrals(changes, plan.takenNeutral);
    return changes.result();
  }

  HWY_INLINE V8 changed(V8 channel, const AbsolutePlan& plan) const {
    AbsoluteLosses losses(channel);
    if (plan.most.any()) losses.add({redMost_, greenMost_, plan.most}, mostWeight_);
    if (plan.least.any()) losses.add({redLeast_, greenLeast_, plan.least}, leastWeight_);
    if (plan.tone.any()) losses.add({white_, black_, plan.tone}, toneWeight_);
    if (plan.neutral != 0) losses.add(LevelBytes(plan.neutral), neutralWeight_);
    // The weight of white as a neutral is -1, and of that all falls to light.
    if (plan.neutral > 0) losses.giveOne(pureWhite_);
    return losses.result();
  }

 private:
  HWY_INLINE void addInk(RelativeChanges& changes, const InkPlan& plan) const {
    changes.lookUpInk();
    if (plan.addedMost.any()) {
      changes.lose(chooseBytes(redMost_, greenMost_, plan.addedMost), mostWeight_);
    }
    if (plan.addedLeast.any()) {
      changes.lose(chooseBytes(redLeast_, greenLeast_, plan.addedLeast), leastWeight_);
    }
    if (plan.addedTone.any()) {
      changes.lose(chooseBytes(white_, black_, plan.addedTone), toneWeight_);
    }
    if (plan.addedNeutral != 0) {
      changes.lose(hn::Set(D8(), static_cast<uint8_t>(plan.addedNeutral)), tentWeight());
    }
  }

  // Both distances from the nearer end are 127 at most.
  HWY_INLINE V8 tentWeight() const {
    const auto tent = [](V8 v) HWY_ATTR { return hn::Min(v, hn::Not(v)); };
    return hn::Add(tent(mid_), tent(most_));
  }

  HWY_INLINE static V16 slopeFrom(V16 most, V16 v) {
    return hn::ShiftRight<7>(hn::Mul(hn::Sub(most, v), most));
  }

  HWY_INLINE void takeFromTones(RelativeChanges& changes, const ClassAmounts& taken) const {
    const Halves v = widen(changes.channel()), least = widen(least_), most = widen(most_),
                 answer = widen(ByteTable(kAnswers.high)(least_)),
                 percent = widen(chooseBytes(white_, black_, taken));
    const auto half = [](V16 c, V16 low, V16 high, V16 answerToLeast) HWY_ATTR {
      const V16 whiteSlope = arithmeticShift<7>(hn::Mul(hn::Sub(word(255), low), hn::Sub(low, c)));
      const V16 white = hn::Sub(hn::Sub(answerToLeast, whiteSlope), c);
      const V16 below = hn::Sub(word(128), high);
      const V16 bend = arithmeticShift<7>(hn::Sub(hn::Zero(D16()), hn::Mul(below, below)));
      const V16 black = hn::Sub(hn::Sub(hn::Add(word(128), bend), slopeFrom(high, c)), c);
      const auto light = hn::Gt(hn::BitCast(DS(), low), signedWord(127));
      return hn::IfThenElse(hn::RebindMask(D16(), light), white, black);
    };
    changes.fill({half(v.even, least.even, most.even, answer.even),
                  half(v.odd, least.odd, most.odd, answer.odd)},
                 {sharesOf(percent.even), sharesOf(percent.odd)});
  }

  HWY_INLINE void takeFromNeutrals(RelativeChanges& changes, int32_t taken) const {
    const V16 share = word(16 * percentShare(taken));
    const Halves v = widen(changes.channel()), most = widen(most_), weight = widen(tentWeight());
    const auto room = [](V16 c, V16 high) HWY_ATTR {
      const V16 above = hn::SaturatedSub(high, word(127));
      const V16 curve = hn::Add(word(255), hn::ShiftRight<6>(hn::Mul(above, above)));
      return hn::Sub(hn::Sub(curve, slopeFrom(high, c)), c);
    };
    const auto weighed = [=](V16 w) HWY_ATTR { return hn::MulHigh(share, hn::ShiftLeft<4>(w)); };
    changes.fill({room(v.even, most.even), room(v.odd, most.odd)},
                 {weighed(weight.even), weighed(weight.odd)});
  }

  V8 most_, mid_, least_;
  ByteMask redMost_, greenMost_, redLeast_, greenLeast_, white_, black_, pureWhite_;
  V8 mostWeight_, leastWeight_, toneWeight_, neutralWeight_;
};

void selectAbsoluteInks(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count, const Inks& inks) {
  const AbsolutePlan cyan(inks.amount[0]), magenta(inks.amount[1]), yellow(inks.amount[2]);
  const auto op = [&](const Bytes3& c) HWY_ATTR {
    const ClassBytes classes(c);
    return Bytes3{classes.changed(c.a, cyan), classes.changed(c.b, magenta),
                  classes.changed(c.c, yellow)};
  };
  if (!mapColors(op, r, g, b, count)) plain::selectAbsoluteInks(r, g, b, count, inks);
}

bool areBytes(const Inks& inks) {
  for (const auto& amounts : inks.amount) {
    for (const int32_t amount : amounts) {
      if (amount < -100 || amount > 255) return false;
    }
  }
  return true;
}

// Black can make more of an ink than a byte holds.
void selectInks(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count, const Inks& inks) {
  if (!areBytes(inks)) {
    selectManyInks(r, g, b, count, inks);
    return;
  }
  const InkPlan cyan(inks.amount[0], asPercent), magenta(inks.amount[1], asPercent),
      yellow(inks.amount[2], asPercent);
  const auto op = [&](const Bytes3& c) HWY_ATTR {
    const ClassBytes classes(c);
    return Bytes3{classes.changed(c.a, cyan), classes.changed(c.b, magenta),
                  classes.changed(c.c, yellow)};
  };
  if (!mapColors(op, r, g, b, count)) plain::selectInks(r, g, b, count, inks);
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
