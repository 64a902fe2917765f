// Pairs of formats, sizes, rectangles and orientations of any kind through the post process. Planes
// are blocks of just the bytes that the formats need.
#include <fuzzer/FuzzedDataProvider.h>
#include <qpx/convert.h>
#include <qpx/postprocess.h>

#include "convert/conversion_picture.h"
#include "fuzz_check.h"

namespace {

using qpx::testing::ConversionPicture;
using qpx::testing::FormatLayout;

bool rarely(FuzzedDataProvider& data) { return data.ConsumeIntegralInRange(0, 15) == 0; }

uint32_t pickFormat(FuzzedDataProvider& data) {
  const auto layouts = qpx::testing::formatLayouts();
  const FormatLayout& layout = layouts[data.ConsumeIntegralInRange<size_t>(0, layouts.size() - 1)];
  const bool yuv = layout.kind == FormatLayout::Kind::yuv;
  return layout.format | (yuv ? data.ConsumeIntegralInRange<uint32_t>(0, 3) << 12 : 0);
}

uint32_t pickSide(FuzzedDataProvider& data) { return data.ConsumeIntegralInRange<uint32_t>(1, 48); }

int32_t pickOrigin(FuzzedDataProvider& data) {
  return data.ConsumeBool() ? 0 : data.ConsumeIntegralInRange(0, 9);
}

// Near the picture, or anywhere.
int32_t pickPlace(FuzzedDataProvider& data) {
  return rarely(data) ? data.ConsumeIntegral<int32_t>() : data.ConsumeIntegralInRange(-4, 60);
}

MRect pickRect(FuzzedDataProvider& data) {
  MRect rect = {};
  for (int32_t* edge : {&rect.left, &rect.top, &rect.right, &rect.bottom}) *edge = pickPlace(data);
  return rect;
}

PostProcessImage pickImage(FuzzedDataProvider& data) {
  return {pickFormat(data), pickSide(data), pickSide(data), {}, qpx::testing::noisePalette()};
}

PostProcessOption pickOption(FuzzedDataProvider& data) {
  PostProcessOption option = {};
  option.resampleMode = data.ConsumeIntegralInRange<uint32_t>(1, 2);
  option.orientation = data.ConsumeIntegralInRange<uint32_t>(0, 7);
  option.filterLevel = data.ConsumeIntegralInRange<uint32_t>(1, 4);
  option.alignMode = data.ConsumeBool() ? 256 : data.ConsumeIntegralInRange<uint32_t>(0, 4);
  option.fitMode = data.ConsumeBool() ? 0 : data.ConsumeIntegralInRange<uint32_t>(0, 3);
  option.palette = data.ConsumeBool();
  for (int32_t* value : {&option.brightness, &option.contrast, &option.saturation}) {
    *value = data.ConsumeBool() ? 0 : data.ConsumeIntegralInRange(-200, 200);
  }
  option.srcLeft = pickOrigin(data);
  option.srcTop = pickOrigin(data);
  option.dstLeft = pickOrigin(data);
  option.dstTop = pickOrigin(data);
  option.alpha = data.ConsumeIntegral<uint8_t>();
  return option;
}

// Edges of the clip lie in the source.
void pickClip(FuzzedDataProvider& data, const PostProcessImage& src, PostProcessOption* option) {
  if (!rarely(data)) return;
  const int32_t right = option->srcLeft + static_cast<int32_t>(src.width);
  const int32_t bottom = option->srcTop + static_cast<int32_t>(src.height);
  option->clipLeft = data.ConsumeIntegralInRange(0, right);
  option->clipTop = data.ConsumeIntegralInRange(0, bottom);
  option->clipRight = data.ConsumeIntegralInRange(0, right);
  option->clipBottom = data.ConsumeIntegralInRange(0, bottom);
}

class Context {
 public:
  Context(const PostProcessImage& src, const PostProcessImage& dst,
          const PostProcessOption& option) {
    const int32_t code = MPPCreate(&src, &dst, &option, &handle);
    FUZZ_CHECK(code == 0 || code == 2 || code == 3);
    FUZZ_CHECK((code == 0) == (handle != nullptr));
  }
  Context(const Context&) = delete;
  Context& operator=(const Context&) = delete;
  ~Context() { MPPDestroy(handle); }

  void run(const ConversionPicture& src, const MRect* clip, ConversionPicture* dst) const {
    FUZZ_CHECK(
        MPProcess(handle, src.planes(), clip, src.pitches(), dst->planes(), dst->pitches()) == 0);
  }

  PostProcessContext* handle = nullptr;
};

ConversionPicture pictureOf(const PostProcessImage& image, int32_t left, int32_t top,
                            uint64_t seed) {
  return {image.format, left + static_cast<int32_t>(image.width),
          top + static_cast<int32_t>(image.height), seed};
}

// Specialised frames write what the general one writes, but that RGB is dithered there alone. Those
// with an arithmetic of their own want whole blocks, and dither shows where a request is cut.
void expectGeneralBytes(const Context& context, const ConversionPicture& src,
                        const ConversionPicture& before, const ConversionPicture& after) {
  const ConvRecord& record = context.handle->stage[0]->record;
  if (context.handle->alignMode == 256 || record.params.orient != 0 || record.blockMode != 1 ||
      record.dstOrgX != 0 || record.dstOrgY != 0 || (record.dither != 0 && record.convKind == 2)) {
    return;
  }
  ConversionPicture expected = before;
  uint8_t* dst[3];
  const uint8_t* from[3];
  int32_t dstPitch[3], srcPitch[3];
  for (int32_t p = 0; p < 3; ++p) {
    const int32_t to = record.dstPlane.count > 1 ? p : 0, of = record.srcPlane.count > 1 ? p : 0;
    dst[p] = expected.planes()[to];
    dstPitch[p] = expected.pitches()[to];
    from[p] = src.planes()[of];
    srcPitch[p] = src.pitches()[of];
  }
  const MRect all = {0, 0, static_cast<int32_t>(record.dst.width),
                     static_cast<int32_t>(record.dst.height)};
  FUZZ_CHECK(ANY_ANY_C_SLOW(&all, dstPitch, srcPitch, dst, from, &record) == 0);
  FUZZ_CHECK(after.sameBytes(expected));
}

void convert(FuzzedDataProvider& data) {
  const PostProcessImage src = pickImage(data), dst = pickImage(data);
  PostProcessOption option = pickOption(data);
  pickClip(data, src, &option);
  const Context context(src, dst, option);
  if (context.handle == nullptr) return;
  const auto seed = data.ConsumeIntegral<uint32_t>();
  ConversionPicture from = pictureOf(src, option.srcLeft, option.srcTop, seed);
  ConversionPicture to = pictureOf(dst, option.dstLeft, option.dstTop, seed + 1);
  if (data.ConsumeBool()) from.turnOver();
  if (data.ConsumeBool()) to.turnOver();
  const ConversionPicture sourceBefore = from, before = to;
  const MRect clip = pickRect(data);
  const bool whole = data.ConsumeBool();
  context.run(from, whole ? nullptr : &clip, &to);
  FUZZ_CHECK(from.sameBytes(sourceBefore));
  if (whole) expectGeneralBytes(context, from, before, to);
}

void align(FuzzedDataProvider& data) {
  const PostProcessImage src = pickImage(data), dst = pickImage(data);
  PostProcessOption option = pickOption(data);
  pickClip(data, src, &option);
  const Context context(src, dst, option);
  if (context.handle == nullptr) return;
  const bool forwards = data.ConsumeBool();
  MRect from = forwards ? pickRect(data) : MRect{}, to = forwards ? MRect{} : pickRect(data);
  if (MPPAlign(context.handle, &from, &to) != 0) return;
  const MRect& made = forwards ? to : from;
  const PostProcessImage& bounds = forwards ? dst : src;
  const int32_t left = forwards ? option.dstLeft : option.srcLeft;
  const int32_t top = forwards ? option.dstTop : option.srcTop;
  FUZZ_CHECK(made.left >= 0 && made.top >= 0);
  FUZZ_CHECK(made.right <= left + static_cast<int32_t>(bounds.width));
  FUZZ_CHECK(made.bottom <= top + static_cast<int32_t>(bounds.height));
}

// Words of any kind: nothing is read or written.
void create(FuzzedDataProvider& data) {
  PostProcessImage images[2] = {pickImage(data), pickImage(data)};
  PostProcessOption option = pickOption(data);
  for (PostProcessImage& image : images) {
    if (data.ConsumeBool()) image.format = data.ConsumeIntegral<uint32_t>();
    if (data.ConsumeBool()) image.width = data.ConsumeIntegral<uint32_t>();
    if (data.ConsumeBool()) image.height = data.ConsumeIntegral<uint32_t>();
  }
  for (int32_t* value :
       {&option.srcLeft, &option.srcTop, &option.dstLeft, &option.dstTop, &option.clipLeft,
        &option.clipTop, &option.clipRight, &option.clipBottom, &option.contrast}) {
    if (data.ConsumeBool()) *value = data.ConsumeIntegral<int32_t>();
  }
  const Context context(images[0], images[1], option);
  if (context.handle == nullptr) return;
  MRect from = pickRect(data), to = {};
  MPPAlign(context.handle, &from, &to);
  from = {};
  MPPAlign(context.handle, &from, &to);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  FuzzedDataProvider data(bytes, size);
  constexpr void (*kServices[])(FuzzedDataProvider&) = {convert, convert, align, create};
  while (data.remaining_bytes() > 0) kServices[data.ConsumeIntegralInRange<size_t>(0, 3)](data);
  return 0;
}
