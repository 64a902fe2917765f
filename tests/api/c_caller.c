/* The public headers as a C program sees them. */
#include "api/c_caller.h"

#include <kesbase.h>
#include <qpx/qpx.h>
#include <stddef.h>

_Static_assert(sizeof(MRect) == 16, "four words");
_Static_assert(sizeof(QPXBandRect) == 32, "eight words");
_Static_assert(offsetof(QPXBandRect, maskTop) == 28, "the last of eight words");

_Static_assert(sizeof(PixInfo) == 88, "22 words");
_Static_assert(offsetof(PixInfo, family) == 4, "behind the format");
_Static_assert(offsetof(PixInfo, bytesPerSample) == 8, "behind the family");
_Static_assert(offsetof(PixInfo, planes) == 44, "behind three arrays of three");
_Static_assert(offsetof(PixInfo, mask) == 76, "the last array");

_Static_assert(offsetof(MBitmap, width) == 4, "behind the format");
_Static_assert(offsetof(MBitmap, pitch) == 12, "behind three words");
_Static_assert(offsetof(MBitmap, plane) == 24, "pitches first");
_Static_assert(sizeof(MBitmap) == 24 + 3 * sizeof(void*), "no padding");

_Static_assert(offsetof(QPXPlaneSet, plane) == 0, "planes first");
_Static_assert(offsetof(QPXPlaneSet, pitch) == 3 * sizeof(void*), "no padding between");

_Static_assert(offsetof(QEMOOFFSCREEN, plane) >= 12, "behind three words");
_Static_assert(offsetof(QEMOOFFSCREEN, pitch) == offsetof(QEMOOFFSCREEN, plane) + 4 * sizeof(void*),
               "four planes");

_Static_assert(offsetof(QPXEffectItem, param) == sizeof(void*), "behind the id");
_Static_assert(offsetof(QPXEffectItem, paramSize) == 2 * sizeof(void*), "behind the record");
_Static_assert(offsetof(QPXEffectList, count) == sizeof(void*), "behind the items");
_Static_assert(offsetof(QPXEffectList, quality) == sizeof(void*) + 4, "behind the count");

_Static_assert(sizeof(QPXFilterRecord) == 56, "on every target");
_Static_assert(offsetof(QPXFilterRecord, intensity) == 12, "the fourth word");
_Static_assert(offsetof(QPXFilterRecord, flipX) == 20, "behind five words");
_Static_assert(offsetof(QPXFilterRecord, style) == 22, "the third byte");
_Static_assert(offsetof(QPXFilterRecord, overlayImage) == 24, "behind four bytes");
_Static_assert(offsetof(QPXFilterRecord, overlayRect) == 36, "on every target");
_Static_assert(offsetof(QPXFilterRecord, color) == 52, "behind the rectangle");
_Static_assert(sizeof(QPXRemoveEdgeParam) == 28, "on every target");

_Static_assert(sizeof(QPXSecondPictureParam) == 8, "record of 0x1100");
_Static_assert(sizeof(QPXColorWashParam) == 8, "record of 0x1200");
_Static_assert(sizeof(QPXBrightnessContrastParam) == 8, "record of 0x1300");
_Static_assert(sizeof(QPXLevelsParam) == 48, "record of 0x1600, 0x4500, 0x4600, 0x4700");
_Static_assert(sizeof(QPXThresholdParam) == 8, "record of 0x1D00");
_Static_assert(sizeof(QPXChannelOffsetsParam) == 12, "record of 0x1F00");
_Static_assert(sizeof(QPXGammaParam) == 4, "record of 0x2D00");

int cNegativeOfPixel(const unsigned char* pixel, unsigned char* negative) {
  MBitmap image = {QPX_FORMAT_BGR24, 1, 1, {0, 0, 0}, {NULL, NULL, NULL}};
  const QPXEffectItem item = {0x1800, NULL, 0};
  const QPXEffectList list = {&item, 1, 0};
  QPXEngine* engine = NULL;
  QPXPlaneSet in = {{NULL, NULL, NULL}, {3, 0, 0}};
  QPXPlaneSet out = {{NULL, NULL, NULL}, {3, 0, 0}};
  MRect rect = {0, 0, 1, 1};
  unsigned char source[3];
  int32_t result = QPXCreate(&image, &image, &list, &engine);
  if (result != QPX_OK) return result;
  MMemCpy(source, pixel, sizeof source);
  in.plane[0] = source;
  out.plane[0] = negative;
  result = QPXProcess(engine, &out, &in, &rect);
  QPXDestroy(engine);
  return result;
}

int cTableOfRamp(unsigned char* table) {
  const unsigned char xs[2] = {0, 255};
  const unsigned char ys[2] = {0, 255};
  return BuildSplineCurve(xs, ys, 2, table);
}

int cLengthOfText(const char* text) { return MSCsLen(text); }
