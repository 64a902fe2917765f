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

// A target without vectors runs the plain forms.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using InkTag = hn::Repartition<int32_t, D8>;
using InkLanes = hn::Vec<InkTag>;
using InkBytes = hn::Rebind<uint8_t, InkTag>;
using InkMask = hn::Mask<InkTag>;

HWY_INLINE InkLanes lanes(int32_t value) { return hn::Set(InkTag(), value); }

HWY_INLINE InkLanes loadChannel(const uint8_t* from) {
  return hn::PromoteTo(InkTag(), hn::LoadU(InkBytes(), from));
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

// One ink's amounts, sorted into what is added, in percent, and the shares that are taken away.
struct InkPlan {
  ClassAmounts addedMost, addedLeast, addedTone, takenMost, takenLeast, takenTone;
  int32_t addedNeutral, takenNeutral;
  bool adds;

  explicit InkPlan(const int32_t* amount) {
    int32_t added[kColorClasses], taken[kColorClasses];
    for (int i = 0; i < kColorClasses; ++i) {
      added[i] = amount[i] > 0 ? amount[i] : 0;
      taken[i] = amount[i] < 0 ? percentShare(-amount[i]) : 0;
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

// kInkCap as far as amounts go, and kInkScale of it in the upper half.
constexpr std::array<int32_t, 256> kCapAndScale = [] {
  std::array<int32_t, 256> both = {};
  for (size_t v = 0; v < 256; ++v) {
    const int32_t cap = kInkCap[v];
    both[v] = std::min(cap, 300) | kInkScale[static_cast<size_t>(std::min(cap, 100))] << 16;
  }
  return both;
}();

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
  HWY_INLINE explicit LossOf(InkLanes v) {
    const InkLanes both = hn::GatherIndex(InkTag(), kCapAndScale.data(), v);
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

class ColorLanes {
 public:
  HWY_INLINE ColorLanes(InkLanes r, InkLanes g, InkLanes b) : r_(r), g_(g), b_(b) {
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

  HWY_INLINE InkLanes r() const { return r_; }
  HWY_INLINE InkLanes g() const { return g_; }
  HWY_INLINE InkLanes b() const { return b_; }

  HWY_INLINE InkLanes changed(InkLanes v, const InkPlan& plan) const {
    InkLanes result = gained(v, v, plan);
    return plan.adds ? lost(v, result, plan) : result;
  }

 private:
  HWY_INLINE static InkLanes tent(InkLanes v) { return hn::Min(hn::Sub(lanes(255), v), v); }

  HWY_INLINE InkLanes byMost(const ClassAmounts& of) const {
    return choose(is_.redMost, is_.greenMost, of);
  }
  HWY_INLINE InkLanes byLeast(const ClassAmounts& of) const {
    return choose(is_.redLeast, is_.greenLeast, of);
  }
  HWY_INLINE InkLanes byTone(const ClassAmounts& of) const {
    return choose(is_.white, is_.black, of);
  }

  HWY_INLINE InkLanes lost(InkLanes v, InkLanes result, const InkPlan& plan) const {
    const LossOf loss(v);
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

  InkLanes r_, g_, b_;
  InkLanes most_, mid_, least_;
  ClassMasks is_;
  ClassWeights weight_;
};

struct InkColors {
  hn::Vec<InkBytes> r, g, b;
};

void selectInks(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count, const Inks& inks) {
  const InkPlan cyan(inks.amount[0]), magenta(inks.amount[1]), yellow(inks.amount[2]);
  const auto make = [&](ptrdiff_t i) HWY_ATTR {
    const ColorLanes color(loadChannel(r + i), loadChannel(g + i), loadChannel(b + i));
    const InkBytes bytes;
    return InkColors{hn::DemoteTo(bytes, color.changed(color.r(), cyan)),
                     hn::DemoteTo(bytes, color.changed(color.g(), magenta)),
                     hn::DemoteTo(bytes, color.changed(color.b(), yellow))};
  };
  const auto store = [=](const InkColors& colors, ptrdiff_t i) HWY_ATTR {
    hn::StoreU(colors.r, InkBytes(), r + i);
    hn::StoreU(colors.g, InkBytes(), g + i);
    hn::StoreU(colors.b, InkBytes(), b + i);
  };
  if (!eachVector(static_cast<ptrdiff_t>(hn::Lanes(InkTag())), count, make, store)) {
    plain::selectInks(r, g, b, count, inks);
  }
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
