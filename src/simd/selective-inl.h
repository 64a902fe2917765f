// Selective colour. Included once per target.
#if defined(QPX_SIMD_SELECTIVE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_SELECTIVE_INL_H_
#undef QPX_SIMD_SELECTIVE_INL_H_
#else
#define QPX_SIMD_SELECTIVE_INL_H_
#endif

#include <hwy/highway.h>

#include "simd/byte_vectors-inl.h"
#include "simd/selective_math.h"
#include "simd/word_table-inl.h"

// A target without vectors runs the plain forms.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using InkTag = hn::Repartition<int32_t, D8>;
using InkLanes = hn::Vec<InkTag>;
using InkMask = hn::Mask<InkTag>;

HWY_INLINE InkLanes lanes(int32_t value) { return hn::Set(InkTag(), value); }

// Every fourth byte or every second word of a vector, from one on, as 32-bit lanes.
template <int kPart>
HWY_INLINE InkLanes quarterOf(V8 v) {
  return hn::And(hn::ShiftRight<8 * kPart>(hn::BitCast(InkTag(), v)), lanes(255));
}

template <int kPart>
HWY_INLINE InkLanes quarterOf(const Halves& v) {
  const hn::Repartition<uint32_t, D8> d;
  const auto words = hn::BitCast(d, kPart % 2 == 0 ? v.even : v.odd);
  const auto part = kPart < 2 ? hn::And(words, hn::Set(d, 0xFFFF)) : hn::ShiftRight<16>(words);
  return hn::BitCast(InkTag(), part);
}

// Back to their places, clamped.
template <int kPart>
HWY_INLINE V8 placed(InkLanes v) {
  const InkLanes sample = hn::Min(hn::Max(v, hn::Zero(InkTag())), lanes(255));
  return hn::BitCast(D8(), hn::ShiftLeft<8 * kPart>(sample));
}

// Where two channels share the extreme, the weight of its class is 0 and either class will do: a
// colour has one class by its largest channel and one by its smallest.
struct ClassMasks {
  InkMask redMost, greenMost, redLeast, greenLeast, white, black;
};

struct ClassWeights {
  InkLanes most, least, tone, neutral;
};

// An amount for each of the colours: of three classes, at most one of which a colour belongs to.
struct ClassAmounts {
  int32_t first, second, third;

  bool any() const { return (first | second | third) != 0; }
};

HWY_INLINE InkLanes choose(InkMask first, InkMask second, const ClassAmounts& of) {
  return hn::IfThenElse(first, lanes(of.first),
                        hn::IfThenElse(second, lanes(of.second), lanes(of.third)));
}

// One ink's amounts, sorted into what is added, in percent, and what is taken away, as `share` puts
// a percentage.
struct InkPlan {
  ClassAmounts addedMost, addedLeast, addedTone, takenMost, takenLeast, takenTone;
  int32_t addedNeutral, takenNeutral;
  bool adds;

  InkPlan(const int32_t* amount, int32_t (*share)(int32_t)) {
    int32_t added[kColorClasses], taken[kColorClasses];
    for (int i = 0; i < kColorClasses; ++i) {
      added[i] = amount[i] > 0 ? amount[i] : 0;
      taken[i] = amount[i] < 0 ? share(-amount[i]) : 0;
    }
    addedMost = {added[0], added[2], added[4]};
    addedLeast = {added[3], added[5], added[1]};
    addedTone = {added[6], added[8], 0};
    addedNeutral = added[7];
    takenMost = {taken[0], taken[2], taken[4]};
    takenLeast = {taken[3], taken[5], taken[1]};
    takenTone = {taken[6], taken[8], 0};
    takenNeutral = taken[7];
    adds = addedMost.any() || addedLeast.any() || addedTone.any() || addedNeutral != 0;
  }
};

// 256 numbers of 32 bits, looked up by all samples of a vector at once where that is fast, and
// quarter by quarter where it is not.
#if HWY_TARGET <= HWY_AVX3
struct NumberBytes {
  WordBytes low, high;

  template <typename Entry>
  constexpr explicit NumberBytes(const Entry& entry)
      : low(entry), high([&](int32_t i) { return entry(i) >> 16; }) {}
};

class Numbers {
 public:
  HWY_INLINE Numbers(const NumberBytes& table, V8 index)
      : low_(WordTable(table.low)(index)), high_(WordTable(table.high)(index)) {}

  template <int kPart>
  HWY_INLINE InkLanes quarter() const {
    return hn::Or(quarterOf<kPart>(low_), hn::ShiftLeft<16>(quarterOf<kPart>(high_)));
  }

 private:
  Halves low_, high_;
};
#else
struct NumberBytes {
  int32_t numbers[256] = {};

  template <typename Entry>
  constexpr explicit NumberBytes(const Entry& entry) {
    for (int32_t i = 0; i < 256; ++i) numbers[i] = entry(i);
  }
};

class Numbers {
 public:
  HWY_INLINE Numbers(const NumberBytes& table, V8 index) : table_(table.numbers), index_(index) {}

  template <int kPart>
  HWY_INLINE InkLanes quarter() const {
    return hn::GatherIndex(InkTag(), table_, quarterOf<kPart>(index_));
  }

 private:
  const int32_t* table_;
  V8 index_;
};
#endif

// kInkCap as far as amounts go, and kInkScale of it in the upper half.
constexpr NumberBytes kCapAndScale([](int32_t v) {
  const int32_t cap = kInkCap[static_cast<size_t>(v)];
  return std::min(cap, 300) | kInkScale[static_cast<size_t>(std::min(cap, 100))] << 16;
});

// a * b of 16 bits each, of which b is not negative: the upper halves of lanes add nothing.
HWY_INLINE InkLanes shortProduct(InkLanes a, InkLanes b) {
#if HWY_ARCH_X86
  const hn::Repartition<int16_t, InkTag> d;
  InkLanes unused = hn::Zero(InkTag());
  return hn::ReorderWidenMulAccumulate(InkTag(), hn::BitCast(d, a), hn::BitCast(d, b),
                                       hn::Zero(InkTag()), unused);
#else
  return hn::Mul(a, b);
#endif
}

// Of what is not negative.
template <int kBits>
HWY_INLINE InkLanes square(InkLanes v) {
  return hn::ShiftRight<kBits>(shortProduct(v, v));
}

// -(v * v) >> kBits.
template <int kBits>
HWY_INLINE InkLanes negativeSquare(InkLanes v) {
  return hn::ShiftRight<kBits>(hn::Neg(shortProduct(v, v)));
}

HWY_INLINE InkLanes removalAnswer(InkLanes v) {
  const InkLanes bent = hn::Add(lanes(255), negativeSquare<7>(hn::Sub(lanes(255), v)));
  return hn::IfThenElse(hn::Lt(v, lanes(128)), v, bent);
}

// The term of one class for one ink of a colour.
class LossOf {
 public:
  HWY_INLINE LossOf(InkLanes v, InkLanes both) {
    cap_ = hn::And(both, lanes(0xFFFF));
    scale_ = hn::ShiftRight<16>(both);
    const InkLanes above = hn::Max(hn::Sub(v, lanes(128)), hn::Zero(InkTag()));
    answer_ = hn::Add(hn::Min(v, lanes(128)), square<7>(above));
  }

  HWY_INLINE InkLanes operator()(InkLanes percent, InkLanes weight) const {
    const InkLanes product = hn::Mul(shortProduct(weight, hn::Min(cap_, percent)), answer_);
    return hn::ShiftRight<10>(hn::Mul(scale_, hn::ShiftRight<8>(product)));
  }

 private:
  InkLanes cap_, scale_, answer_;
};

// One ink's levels by class.
struct AbsolutePlan {
  ClassAmounts most, least, tone;
  int32_t neutral;

  explicit AbsolutePlan(const int32_t* amount) {
    int32_t levels[kColorClasses];
    for (int i = 0; i < kColorClasses; ++i) levels[i] = absoluteLevels(amount[i]);
    most = {levels[0], levels[2], levels[4]};
    least = {levels[3], levels[5], levels[1]};
    tone = {levels[6], levels[8], 0};
    neutral = levels[7];
  }
};

constexpr NumberBytes kByLight([](int32_t v) { return kReciprocal20[static_cast<size_t>(v)]; });

// Reciprocals of the light and of the ink that channels hold.
struct RoomNumbers {
  Numbers light, ink;

  HWY_INLINE explicit RoomNumbers(V8 channel)
      : light(kByLight, channel), ink(kByLight, hn::Not(channel)) {}
};

// The term of one class for one ink of a colour, in absolute amounts.
class AbsoluteLossOf {
 public:
  HWY_INLINE AbsoluteLossOf(InkLanes v, InkLanes byLight, InkLanes byInk)
      : v_(v), byLight_(byLight), byInk_(byInk) {}

  // Whose weight is -1 at least: of that all falls to light. 32897 / 2^23 is enough of 1/255.
  HWY_INLINE InkLanes operator()(InkLanes levels, InkLanes weight) const {
    const InkLanes zero = hn::Zero(InkTag());
    const InkLanes product = hn::Max(shortProduct(weight, v_), zero);
    const InkLanes share = hn::ShiftRight<23>(hn::Mul(product, lanes(32897)));
    const InkLanes light = hn::Add(share, hn::ShiftRight<31>(weight));
    const InkMask adds = hn::Gt(levels, zero);
    const InkLanes taken = hn::Min(v_, levels), given = hn::Max(levels, hn::Sub(v_, lanes(255)));
    const InkLanes part = hn::IfThenElse(adds, light, hn::Sub(weight, light));
    const InkLanes most = shortProduct(hn::IfThenElse(adds, taken, given), part);
    const InkLanes reciprocal = hn::IfThenElse(adds, byLight_, byInk_);
    return hn::ShiftRight<20>(hn::Mul(reciprocal, most));
  }

 private:
  InkLanes v_, byLight_, byInk_;
};

class ColorLanes {
 public:
  HWY_INLINE ColorLanes(InkLanes r, InkLanes g, InkLanes b) {
    most_ = hn::Max(hn::Max(r, g), b);
    least_ = hn::Min(hn::Min(r, g), b);
    mid_ = hn::Sub(hn::Add(hn::Add(r, g), b), hn::Add(most_, least_));
    is_ = {hn::Eq(r, most_),  hn::Eq(g, most_),           hn::Eq(r, least_),
           hn::Eq(g, least_), hn::Gt(least_, lanes(127)), hn::Lt(most_, lanes(128))};
    const InkLanes whiteWeight = hn::Sub(hn::Add(least_, least_), lanes(255));
    const InkLanes blackWeight = hn::Sub(lanes(255), hn::Add(most_, most_));
    weight_ = {hn::Sub(most_, mid_), hn::Sub(mid_, least_),
               hn::IfThenElse(is_.white, whiteWeight, blackWeight),
               hn::Add(tent(mid_), tent(most_))};
  }

  template <int kPart>
  HWY_INLINE InkLanes changed(V8 channel, const Numbers& capAndScale, const InkPlan& plan) const {
    const InkLanes v = quarterOf<kPart>(channel);
    const InkLanes result = gained(v, v, plan);
    return plan.adds ? lost(v, result, plan, capAndScale.quarter<kPart>()) : result;
  }

  template <int kPart>
  HWY_INLINE InkLanes changedAbsolutely(V8 channel, const RoomNumbers& rooms,
                                        const AbsolutePlan& plan) const {
    const InkLanes v = quarterOf<kPart>(channel);
    const AbsoluteLossOf loss(v, rooms.light.quarter<kPart>(), rooms.ink.quarter<kPart>());
    InkLanes result = v;
    if (plan.most.any()) result = hn::Sub(result, loss(byMost(plan.most), weight_.most));
    if (plan.least.any()) result = hn::Sub(result, loss(byLeast(plan.least), weight_.least));
    if (plan.tone.any()) result = hn::Sub(result, loss(byTone(plan.tone), weight_.tone));
    if (plan.neutral != 0) {
      result = hn::Sub(result, loss(lanes(plan.neutral), absoluteNeutralWeight()));
    }
    return result;
  }

 private:
  HWY_INLINE static InkLanes tent(InkLanes v) { return hn::Min(hn::Sub(lanes(255), v), v); }

  HWY_INLINE InkLanes absoluteNeutralWeight() const {
    const InkLanes middle = lanes(127);
    const InkLanes low = hn::Abs(hn::Sub(least_, middle)), high = hn::Abs(hn::Sub(most_, middle));
    return hn::Sub(lanes(255), hn::Add(low, high));
  }

  HWY_INLINE InkLanes byMost(const ClassAmounts& of) const {
    return choose(is_.redMost, is_.greenMost, of);
  }
  HWY_INLINE InkLanes byLeast(const ClassAmounts& of) const {
    return choose(is_.redLeast, is_.greenLeast, of);
  }
  HWY_INLINE InkLanes byTone(const ClassAmounts& of) const {
    return choose(is_.white, is_.black, of);
  }

  HWY_INLINE InkLanes lost(InkLanes v, InkLanes result, const InkPlan& plan,
                           InkLanes capAndScale) const {
    const LossOf loss(v, capAndScale);
    if (plan.addedMost.any()) {
      result = hn::Sub(result, loss(byMost(plan.addedMost), weight_.most));
    }
    if (plan.addedLeast.any()) {
      result = hn::Sub(result, loss(byLeast(plan.addedLeast), weight_.least));
    }
    if (plan.addedTone.any()) {
      result = hn::Sub(result, loss(byTone(plan.addedTone), weight_.tone));
    }
    if (plan.addedNeutral != 0) {
      result = hn::Sub(result, loss(lanes(plan.addedNeutral), weight_.neutral));
    }
    return result;
  }

  HWY_INLINE InkLanes gained(InkLanes v, InkLanes result, const InkPlan& plan) const {
    const InkLanes answer = removalAnswer(v);
    const auto hueGain = [=](InkLanes share, InkLanes weight) HWY_ATTR {
      return hn::ShiftRight<18>(hn::Mul(share, shortProduct(weight, answer)));
    };
    if (plan.takenMost.any()) {
      result = hn::Add(result, hueGain(byMost(plan.takenMost), weight_.most));
    }
    if (plan.takenLeast.any()) {
      result = hn::Add(result, hueGain(byLeast(plan.takenLeast), weight_.least));
    }
    if (plan.takenTone.any()) {
      const InkLanes room = hn::IfThenElse(is_.white, whiteRoomOf(v), blackRoomOf(v));
      result = hn::Add(result, hn::ShiftRight<10>(shortProduct(room, byTone(plan.takenTone))));
    }
    if (plan.takenNeutral != 0) {
      const InkLanes share =
          hn::ShiftRight<8>(shortProduct(weight_.neutral, lanes(plan.takenNeutral)));
      result = hn::Add(result, hn::ShiftRight<10>(shortProduct(neutralRoomOf(v), share)));
    }
    return result;
  }

  HWY_INLINE InkLanes whiteRoomOf(InkLanes v) const {
    const InkLanes slope = shortProduct(hn::Sub(least_, v), hn::Sub(lanes(255), least_));
    return hn::Sub(hn::Sub(removalAnswer(least_), hn::ShiftRight<7>(slope)), v);
  }

  HWY_INLINE InkLanes slopeFromMost(InkLanes v) const {
    return hn::ShiftRight<7>(shortProduct(hn::Sub(most_, v), most_));
  }

  HWY_INLINE InkLanes blackRoomOf(InkLanes v) const {
    const InkLanes below = hn::Max(hn::Sub(lanes(128), most_), hn::Zero(InkTag()));
    const InkLanes curve = hn::Add(lanes(128), negativeSquare<7>(below));
    return hn::Sub(hn::Sub(curve, slopeFromMost(v)), v);
  }

  HWY_INLINE InkLanes neutralRoomOf(InkLanes v) const {
    const InkLanes above = hn::Max(hn::Sub(most_, lanes(127)), hn::Zero(InkTag()));
    const InkLanes curve = hn::Add(lanes(255), square<6>(above));
    return hn::Sub(hn::Sub(curve, slopeFromMost(v)), v);
  }

  InkLanes most_, mid_, least_;
  ClassMasks is_;
  ClassWeights weight_;
};

// Colours of a vector of pixels, by quarters of it.
template <int kNumber>
struct Part {
  static constexpr int value = kNumber;
};

template <class Quarter>
HWY_INLINE Bytes3 byQuarters(const Quarter& quarter) {
  const auto joined = [](V8 a, V8 b, V8 c, V8 d)
                          HWY_ATTR { return hn::Or(hn::Or(a, b), hn::Or(c, d)); };
  const Bytes3 q0 = quarter(Part<0>()), q1 = quarter(Part<1>()), q2 = quarter(Part<2>()),
               q3 = quarter(Part<3>());
  return {joined(q0.a, q1.a, q2.a, q3.a), joined(q0.b, q1.b, q2.b, q3.b),
          joined(q0.c, q1.c, q2.c, q3.c)};
}

// Of any amounts.
void selectManyInks(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count, const Inks& inks) {
  const InkPlan cyan(inks.amount[0], percentShare), magenta(inks.amount[1], percentShare),
      yellow(inks.amount[2], percentShare);
  const auto op = [&](const Bytes3& c) HWY_ATTR {
    const Numbers forR(kCapAndScale, c.a), forG(kCapAndScale, c.b), forB(kCapAndScale, c.c);
    return byQuarters([&](auto part) HWY_ATTR {
      constexpr int k = decltype(part)::value;
      const ColorLanes color(quarterOf<k>(c.a), quarterOf<k>(c.b), quarterOf<k>(c.c));
      return Bytes3{placed<k>(color.changed<k>(c.a, forR, cyan)),
                    placed<k>(color.changed<k>(c.b, forG, magenta)),
                    placed<k>(color.changed<k>(c.c, forB, yellow))};
    });
  };
  if (!mapColors(op, r, g, b, count)) plain::selectInks(r, g, b, count, inks);
}

// With wider vectors these have forms of their own, in selective_words-inl.h.
#if HWY_TARGET > HWY_AVX3
void selectInks(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count, const Inks& inks) {
  selectManyInks(r, g, b, count, inks);
}

void selectAbsoluteInks(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count, const Inks& inks) {
  const AbsolutePlan cyan(inks.amount[0]), magenta(inks.amount[1]), yellow(inks.amount[2]);
  const auto op = [&](const Bytes3& c) HWY_ATTR {
    const RoomNumbers forR(c.a), forG(c.b), forB(c.c);
    return byQuarters([&](auto part) HWY_ATTR {
      constexpr int k = decltype(part)::value;
      const ColorLanes color(quarterOf<k>(c.a), quarterOf<k>(c.b), quarterOf<k>(c.c));
      return Bytes3{placed<k>(color.changedAbsolutely<k>(c.a, forR, cyan)),
                    placed<k>(color.changedAbsolutely<k>(c.b, forG, magenta)),
                    placed<k>(color.changedAbsolutely<k>(c.c, forB, yellow))};
    });
  };
  if (!mapColors(op, r, g, b, count)) plain::selectAbsoluteInks(r, g, b, count, inks);
}
#endif

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
