// Hue, saturation and lightness in 32-bit lanes. Included once per target.
#if defined(QPX_SIMD_HUE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_HUE_INL_H_
#undef QPX_SIMD_HUE_INL_H_
#else
#define QPX_SIMD_HUE_INL_H_
#endif

#include <hwy/highway.h>

#include <cstring>

#include "simd/hue_rows.h"

// A target without vectors runs the plain forms.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using DI = hn::ScalableTag<int32_t>;
using DB = hn::Rebind<uint8_t, DI>;  // as many bytes as there are lanes
using VI = hn::Vec<DI>;
using MI = hn::Mask<DI>;

HWY_INLINE VI number(int32_t value) { return hn::Set(DI(), value); }
HWY_INLINE VI times(VI v, int32_t factor) { return hn::Mul(v, number(factor)); }
HWY_INLINE VI atOrAbove0(VI v) { return hn::Max(v, hn::Zero(DI())); }
HWY_INLINE VI clampSamples(VI v) { return hn::Min(atOrAbove0(v), number(255)); }
HWY_INLINE VI lookedUp(const int32_t* table, VI index) {
  return hn::GatherIndex(DI(), table, index);
}

// Processors gather nothing less than words.
HWY_INLINE VI lookedUpByte(const uint8_t* table, VI index) {
  HWY_ALIGN int32_t places[hn::MaxLanes(DI())];
  hn::Store(index, DI(), places);
  for (size_t i = 0; i < hn::Lanes(DI()); ++i) places[i] = table[places[i]];
  return hn::Load(DI(), places);
}

struct Colors {
  VI r, g, b;

  HWY_INLINE VI most() const { return hn::Max(hn::Max(r, g), b); }
  HWY_INLINE VI least() const { return hn::Min(hn::Min(r, g), b); }
};

HWY_INLINE VI loadSamples(const uint8_t* from) {
  return hn::PromoteTo(DI(), hn::LoadU(DB(), from));
}

// Cuts what leaves 0..255.
HWY_INLINE void storeSamples(VI v, uint8_t* to) { hn::StoreU(hn::DemoteTo(DB(), v), DB(), to); }

template <class Change>
HWY_INLINE void changeVector(const Change& change, uint8_t* r, uint8_t* g, uint8_t* b) {
  const Colors colors = change(Colors{loadSamples(r), loadSamples(g), loadSamples(b)});
  storeSamples(colors.r, r);
  storeSamples(colors.g, g);
  storeSamples(colors.b, b);
}

// Whole vectors in place; what is left goes through a copy of a vector's length.
template <class Change>
HWY_INLINE void changeColors(const Change& change, uint8_t* r, uint8_t* g, uint8_t* b,
                             ptrdiff_t count) {
  const ptrdiff_t lanes = static_cast<ptrdiff_t>(hn::Lanes(DI()));
  ptrdiff_t i = 0;
  for (; i + lanes <= count; i += lanes) changeVector(change, r + i, g + i, b + i);
  if (i >= count) return;
  const size_t rest = static_cast<size_t>(count - i);
  HWY_ALIGN uint8_t copies[3][hn::MaxLanes(DI())] = {};
  uint8_t* const rows[3] = {r + i, g + i, b + i};
  for (int c = 0; c < 3; ++c) std::memcpy(copies[c], rows[c], rest);
  changeVector(change, copies[0], copies[1], copies[2]);
  for (int c = 0; c < 3; ++c) std::memcpy(rows[c], copies[c], rest);
}

template <class Change>
HWY_INLINE Colors eachChannel(const Colors& colors, const Change& change) {
  return {change(colors.r), change(colors.g), change(colors.b)};
}

// The primaries of sRGB under D50 and CIELAB, as in the plain form.
HWY_INLINE VI weighted(const Colors& v, int32_t r, int32_t g, int32_t b) {
  return hn::Add(hn::Add(times(v.r, r), times(v.g, g)), times(v.b, b));
}

HWY_INLINE VI chromaOf(const LabTables& tables, VI difference, int32_t scale) {
  const VI index = hn::ShiftRight<10>(times(difference, scale));
  return lookedUp(tables.chroma + 200, hn::Max(hn::Min(index, number(200)), number(-200)));
}

HWY_INLINE VI squared(const LabTables& tables, VI root) {
  return lookedUp(tables.square + 1024, hn::Min(root, number(1024)));
}

template <int kBits>
HWY_INLINE VI scaled(VI v, int32_t factor) {
  return hn::ShiftRight<kBits>(times(v, factor));
}

void changeChroma(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count, const LabTables& tables) {
  const auto change = [&](const Colors& samples) HWY_ATTR {
    const Colors light = {lookedUp(tables.linear, samples.r), lookedUp(tables.linear, samples.g),
                          lookedUp(tables.linear, samples.b)};
    const VI x = hn::ShiftRight<15>(weighted(light, 14289, 12618, 4689));
    const VI y = hn::ShiftRight<15>(weighted(light, 7291, 23491, 1986));
    const VI z = hn::ShiftRight<15>(weighted(light, 456, 3182, 23402));
    const VI fx = lookedUp(tables.root, scaled<10>(x, 1062));
    const VI fy = lookedUp(tables.root, y);
    const VI fz = lookedUp(tables.root, scaled<10>(z, 1241));
    const VI a = chromaOf(tables, hn::Sub(fx, fy), 500);
    const VI bb = chromaOf(tables, hn::Sub(fy, fz), 200);
    const VI root = times(scaled<10>(fy, 116), 9);
    const Colors xyz = {scaled<10>(squared(tables, hn::Add(root, hn::Add(a, a))), 987),
                        squared(tables, root),
                        scaled<10>(squared(tables, hn::Sub(root, times(bb, 5))), 845)};
    return Colors{hn::ShiftRight<17>(weighted(xyz, 102698, -52986, -16079)),
                  hn::ShiftRight<17>(weighted(xyz, -32073, 62787, 1094)),
                  hn::ShiftRight<17>(weighted(xyz, 2356, -7504, 46046))};
  };
  changeColors(change, r, g, b, count);
}

#if HWY_ARCH_ARM_V7
// Divisions must be exact.
using plain::brighten;
using plain::changeHues;
using plain::changeRange;
using plain::fadeHues;
using plain::saturate;
#else
using DF = hn::RebindToFloat<DI>;

// Exact for whole quotients below 2^17 of dividends that a float holds: the next whole number is
// farther away than a step of the float, so that the cut is the division's.
HWY_INLINE VI quotient(VI a, VI b) {
  return hn::ConvertTo(DI(), hn::Div(hn::ConvertTo(DF(), a), hn::ConvertTo(DF(), b)));
}

HWY_INLINE VI chromaGain(VI most, VI least, int32_t amount) {
  if (amount <= 0) return number(amount);
  const VI sum = hn::Add(most, least), one = number(1), whole = number(1 << 20);
  const VI base = hn::IfThenElse(hn::Lt(sum, number(256)), sum, hn::Sub(number(512), sum));
  const VI saturation =
      hn::ShiftRight<10>(hn::Mul(quotient(whole, hn::Add(base, one)), hn::Sub(most, least)));
  const VI usual = number(1024 - amount);
  const VI divisor = hn::IfThenElse(hn::Lt(saturation, usual), usual, saturation);
  return hn::Sub(quotient(whole, hn::Add(divisor, one)), number(1024));
}

void saturate(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count, int32_t amount) {
  const auto change = [=](const Colors& colors) HWY_ATTR {
    const VI most = colors.most(), least = colors.least();
    const VI mean = hn::ShiftRight<1>(hn::Add(most, least));
    const VI gain = chromaGain(most, least, amount);
    return eachChannel(colors, [=](VI c) HWY_ATTR {
      return hn::Add(c, hn::ShiftRight<10>(hn::Mul(gain, hn::Sub(c, mean))));
    });
  };
  changeColors(change, r, g, b, count);
}

// With wider vectors these have forms of their own, in hue_words-inl.h.
#if HWY_TARGET > HWY_AVX3

// Which channel is the largest, the first of equals: what its hue is measured by, and from where.
struct HueParts {
  VI difference;
  MI first, second;
};

HWY_INLINE HueParts huePartsOf(const Colors& c, VI most) {
  const MI first = hn::Eq(most, c.r), second = hn::Eq(most, c.g);
  const VI later = hn::IfThenElse(second, hn::Sub(c.b, c.r), hn::Sub(c.r, c.g));
  return {hn::IfThenElse(first, hn::Sub(c.g, c.b), later), first, second};
}

HWY_INLINE VI startOf(const HueParts& parts, int32_t second, int32_t third) {
  return hn::IfThenZeroElse(parts.first,
                            hn::IfThenElse(parts.second, number(second), number(third)));
}

HWY_INLINE VI wrappedUp(VI hue) {
  return hn::IfThenElse(hn::Lt(hue, hn::Zero(DI())), hn::Add(hue, number(360)), hue);
}

// The largest, the middle and the least sample by sector.
HWY_INLINE Colors bySector(VI sector, VI most, VI middle, VI least) {
  const auto is = [&](int32_t value) HWY_ATTR { return hn::Eq(sector, number(value)); };
  const MI in0 = is(0), in1 = is(1), in2 = is(2), in3 = is(3), in4 = is(4);
  const auto pick = [&](MI top, MI mid) HWY_ATTR {
    return hn::IfThenElse(top, most, hn::IfThenElse(mid, middle, least));
  };
  const MI in5 = is(5);
  return {pick(hn::Or(in0, in5), hn::Or(in1, in4)), pick(hn::Or(in1, in2), hn::Or(in0, in3)),
          pick(hn::Or(in3, in4), hn::Or(in2, in5))};
}

HWY_INLINE VI hueOf(const Colors& c, VI most, VI least) {
  const VI chroma = hn::Max(hn::Sub(most, least), number(1));  // a grey's difference is 0
  const HueParts parts = huePartsOf(c, most);
  const VI part = hn::Mul(quotient(number(60 << 10), chroma), parts.difference);
  const VI turn = hn::Add(part, startOf(parts, 120 << 10, 240 << 10));
  return wrappedUp(hn::ShiftRight<10>(turn));
}

HWY_INLINE Colors lightened(const Colors& colors, VI most, VI least, VI light) {
  const VI target = hn::IfThenElse(hn::Gt(light, hn::Zero(DI())), least, most);
  const VI strength = hn::Abs(light);
  return eachChannel(colors, [=](VI c) HWY_ATTR {
    const VI step = hn::Mul(strength, hn::Sub(target, c));
    return hn::ShiftRight<10>(hn::Add(hn::Add(step, hn::ShiftLeft<10>(c)), number(512)));
  });
}

HWY_INLINE VI spreadGain(VI spread, VI most, VI least) {
  const VI sum = hn::Add(most, least);
  const VI base = hn::IfThenElse(hn::Lt(sum, number(256)), sum, hn::Sub(number(511), sum));
  const VI chroma = hn::ShiftLeft<8>(hn::Sub(most, least));
  const VI saturation = hn::Min(quotient(chroma, hn::Max(base, number(1))), number(255));
  const VI free = hn::Sub(number(255), spread);
  const VI divisor = hn::Add(hn::IfThenElse(hn::Lt(saturation, free), free, saturation), number(1));
  const VI gain = quotient(number(65025), divisor);
  const VI risen = hn::IfThenZeroElse(hn::Eq(gain, number(254)), hn::Sub(gain, number(255)));
  return hn::IfThenElse(hn::Gt(spread, hn::Zero(DI())), risen, spread);
}

HWY_INLINE Colors spreadOut(const Colors& colors, VI spread) {
  if (hn::AllTrue(DI(), hn::Eq(spread, hn::Zero(DI())))) return colors;
  const VI most = colors.most(), least = colors.least();
  const VI mean = hn::ShiftRight<1>(hn::Add(most, least));
  const VI gain = spreadGain(spread, most, least);
  return eachChannel(colors, [=](VI c) HWY_ATTR {
    const VI step = hn::Mul(gain, hn::Sub(c, mean));
    const VI sum = hn::Add(hn::Add(step, hn::ShiftLeft<8>(c)), number(128));
    return clampSamples(hn::ShiftRight<8>(sum));
  });
}

HWY_INLINE Colors ofHue(VI hue, VI most, VI least) {
  const VI sector = scaled<14>(hue, 273);
  const VI past = hn::Sub(hue, times(sector, 60));
  const MI odd = hn::Ne(hn::And(sector, number(1)), hn::Zero(DI()));
  const VI part = hn::IfThenElse(odd, hn::Sub(number(60), past), past);
  const VI rise = times(hn::Mul(hn::Sub(most, least), part), 273);
  const VI middle = hn::ShiftRight<14>(hn::Add(rise, hn::ShiftLeft<14>(least)));
  return bySector(sector, most, middle, least);
}

void changeHues(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count, const HueChanges& changes) {
  const auto change = [&](const Colors& colors) HWY_ATTR {
    const VI most = colors.most(), least = colors.least();
    const VI word = lookedUp(changes.packed().words(), hueOf(colors, most, least));
    const VI light = hn::ShiftRight<20>(word);
    const VI spread = hn::ShiftRight<22>(hn::ShiftLeft<12>(word));
    const VI turn = hn::ShiftRight<22>(hn::ShiftLeft<22>(word));
    const Colors made = spreadOut(lightened(colors, most, least, light), spread);
    const VI newMost = made.most(), newLeast = made.least();
    const VI hue = wrappedUp(hn::Add(hueOf(made, newMost, newLeast), turn));
    const VI wrapped = hn::IfThenElse(hn::Gt(hue, number(360)), hn::Sub(hue, number(360)), hue);
    return ofHue(wrapped, newMost, newLeast);
  };
  changeColors(change, r, g, b, count);
}

struct HsvLanes {
  VI hue, saturation, value;
};

HWY_INLINE HsvLanes hsvOf(const Colors& c) {
  const VI most = c.most(), chroma = hn::Sub(most, c.least());
  const HueParts parts = huePartsOf(c, most);
  const VI one = number(1), whole = number(1 << 15);
  const VI part =
      hn::ShiftRight<5>(hn::Mul(quotient(whole, hn::Max(chroma, one)), parts.difference));
  const VI hue = scaled<10>(hn::Add(part, startOf(parts, 2048, 4096)), 60);
  const VI saturation = hn::ShiftRight<7>(hn::Mul(quotient(whole, hn::Max(most, one)), chroma));
  return {wrappedUp(hue), hn::Min(saturation, number(255)), most};
}

// Hue 360 is the value with two channels held down, as hue 0 is.
HWY_INLINE Colors rgbOf(const HsvLanes& hsv) {
  const VI hue = hn::IfThenZeroElse(hn::Eq(hsv.hue, number(360)), hsv.hue);
  const VI sector = scaled<15>(hue, 546);
  const VI past = hn::Sub(hue, times(sector, 60));
  const VI part = scaled<15>(hn::Mul(hsv.saturation, past), 546);
  const VI rest = hn::Sub(number(255), hsv.saturation);
  const MI odd = hn::Ne(hn::And(sector, number(1)), hn::Zero(DI()));
  const VI share = hn::IfThenElse(odd, hn::Sub(number(255), part), hn::Add(rest, part));
  const auto sample = [&](VI of) HWY_ATTR { return hn::ShiftRight<8>(hn::Mul(of, hsv.value)); };
  return bySector(sector, hsv.value, sample(share), sample(rest));
}

HWY_INLINE Colors chosen(MI first, const Colors& a, const Colors& b) {
  return {hn::IfThenElse(first, a.r, b.r), hn::IfThenElse(first, a.g, b.g),
          hn::IfThenElse(first, a.b, b.b)};
}

HWY_INLINE VI changedValue(const HsvLanes& hsv, VI weight, int32_t light) {
  const VI off = hn::Sub(hsv.value, number(128));
  const VI bump = hn::ShiftRight<8>(hn::Sub(number(16384), hn::Mul(off, off)));
  const VI strength = hn::Min(hn::ShiftLeft<2>(hsv.saturation), number(256));
  const VI share = hn::ShiftRight<8>(hn::Mul(weight, strength));
  const VI step = hn::ShiftRight<18>(hn::Mul(times(bump, light), share));
  return clampSamples(hn::Add(hsv.value, step));
}

void changeRange(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count, const RangeChanges& changes) {
  const auto change = [&](const Colors& colors) HWY_ATTR {
    const HsvLanes hsv = hsvOf(colors);
    const VI word = lookedUp(changes.packed().words(), hsv.hue);
    const MI outside = hn::Lt(word, number(RangeChanges::kInside));
    const VI weight = hn::And(hn::ShiftRight<9>(word), number(0x7FF));
    const VI away = hn::Sub(lookedUpByte(changes.saturation, hsv.saturation), hsv.saturation);
    const VI saturation =
        clampSamples(hn::Add(hsv.saturation, hn::ShiftRight<10>(hn::Mul(weight, away))));
    const Colors made =
        rgbOf({hn::And(word, number(0x1FF)), saturation, changedValue(hsv, weight, changes.light)});
    return chosen(outside, colors, made);
  };
  changeColors(change, r, g, b, count);
}

void brighten(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count, const uint8_t* tones,
              int32_t units) {
  const auto change = [=](const Colors& colors) HWY_ATTR {
    const HsvLanes hsv = hsvOf(colors);
    const VI toEnd =
        hn::IfThenElse(hn::Lt(hsv.value, number(129)), hsv.value, hn::Sub(number(255), hsv.value));
    const VI saturation = hn::Sub(hsv.saturation, scaled<10>(toEnd, units));
    const VI value = lookedUpByte(tones, hsv.value);
    const Colors made = rgbOf({hsv.hue, atOrAbove0(saturation), value});
    const MI isGrey = hn::Lt(saturation, hn::Zero(DI()));
    const MI isBlack = hn::Eq(hsv.value, hn::Zero(DI()));
    return chosen(isBlack, colors, chosen(isGrey, {value, value, value}, made));
  };
  changeColors(change, r, g, b, count);
}

HWY_INLINE VI wholeHueOf(const Colors& c) {
  const VI most = c.most();
  const VI chroma = hn::Max(hn::Sub(most, c.least()), number(1));
  const HueParts parts = huePartsOf(c, most);
  return wrappedUp(
      hn::Add(quotient(times(parts.difference, 60), chroma), startOf(parts, 120, 240)));
}

// A mask and the greys are no channels that change: they come and go with the vector's pixels.
void fadeHues(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count, const uint8_t* grey,
              const uint8_t* mask, const DegreeWords& shares) {
  const ptrdiff_t lanes = static_cast<ptrdiff_t>(hn::Lanes(DI()));
  ptrdiff_t i = 0;
  for (; i + lanes <= count; i += lanes) {
    const VI light = loadSamples(grey + i);
    const auto change = [&](const Colors& colors) HWY_ATTR {
      VI share = lookedUp(shares.words(), wholeHueOf(colors));
      if (mask != nullptr) {
        share = quotient(hn::Mul(share, loadSamples(mask + i)), number(255));
      }
      return eachChannel(colors, [=](VI c) HWY_ATTR {
        const VI step = hn::Mul(hn::Sub(light, c), share);
        return hn::Add(c, hn::ShiftRight<8>(hn::Add(step, number(128))));
      });
    };
    changeVector(change, r + i, g + i, b + i);
  }
  plain::fadeHues(r + i, g + i, b + i, count - i, grey + i, mask == nullptr ? mask : mask + i,
                  shares);
}

#endif  // HWY_TARGET
#endif

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
