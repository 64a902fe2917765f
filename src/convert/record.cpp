#include "convert/record.h"

#include <kesbase.h>

#include <algorithm>
#include <utility>

#include "convert/format_decoder.h"
#include "convert/position.h"
#include "convert/tables.h"

namespace qpx::convert {
namespace {

bool isValidSide(const Side& side, int32_t x, int32_t y) {
  return side.width > 0 && side.height > 0 && x >= 0 && y >= 0 &&
         int64_t{x} + side.width <= INT32_MAX && int64_t{y} + side.height <= INT32_MAX;
}

bool hasClip(const ConvParams& params) {
  return params.clipLeft != 0 || params.clipTop != 0 || params.clipRight != 0 ||
         params.clipBottom != 0;
}

bool isValidClip(const ConvParams& params) {
  if (!hasClip(params)) return true;
  return params.clipLeft >= 0 && params.clipTop >= 0 && params.clipLeft < params.clipRight &&
         params.clipTop < params.clipBottom;
}

void takeParams(const ConvParams& given, ConvRecord* record) {
  ConvParams& params = record->params;
  params = given;
  for (int32_t* value : {&params.brightness, &params.contrast, &params.saturation}) {
    *value = std::clamp(*value, -128, 128);
  }
  params.orient &= 7;
  params.alpha = std::min<uint32_t>(params.alpha, 255);
  record->alpha = params.alpha;
  record->blockMode = params.blockMode;
  record->swapXY = params.orient & 1;
  record->mirrorX = (params.orient >> 1) & 1;
  record->mirrorY = params.orient >> 2;
  record->srcOrgX = params.srcX;
  record->srcOrgY = params.srcY;
  record->dstOrgX = params.dstX;
  record->dstOrgY = params.dstY;
}

bool isPalette(const ConvFormat& format) { return format.klass == kRgb && format.colour <= 8; }

int32_t decodeSide(const Side& side, DecodedFormat* decoded) {
  const int32_t result = decodeFormat(rightAligned(side.format), decoded);
  if (result != QPX_OK) return result;
  decoded->format.width = side.width;
  decoded->format.height = side.height;
  if (!isPalette(decoded->format)) return QPX_OK;
  if (side.palette == nullptr) return QPX_BAD_PARAM;
  decoded->format.palette = side.palette;
  return QPX_OK;
}

void takeFormats(const DecodedFormat& dst, const DecodedFormat& src, ConvRecord* record) {
  record->dst = dst.format;
  record->src = src.format;
  record->dstPlane = dst.planes;
  record->srcPlane = src.planes;
  std::copy_n(dst.subX, 3, record->dstSubX);
  std::copy_n(dst.subY, 3, record->dstSubY);
  std::copy_n(src.subX, 3, record->srcSubX);
  std::copy_n(src.subY, 3, record->srcSubY);
  std::copy_n(dst.planes.step, 3, record->dstStep);
  record->dstBitsR = dst.bits[0];
  record->dstBitsG = dst.bits[1];
  record->dstBitsB = dst.bits[2];
  record->dstPosR = dst.position[0];
  record->dstPosG = dst.position[1];
  record->dstPosB = dst.position[2];
  record->srcBitsR = src.bits[0];
  record->srcBitsG = src.bits[1];
  record->srcBitsB = src.bits[2];
  record->srcPosR = src.position[0];
  record->srcPosG = src.position[1];
  record->srcPosB = src.position[2];
}

// How much of `to` one of `from` is, 16.16 and truncated; 0 where it does not fit.
uint32_t ratio(uint32_t from, uint32_t to) {
  const double step = static_cast<double>(from) / to * kFixedOne;
  return step < 4294967296.0 ? static_cast<uint32_t>(step) : 0;
}

void computeSteps(ConvRecord* record) {
  uint32_t width = record->dst.width, height = record->dst.height;
  if (record->swapXY != 0) std::swap(width, height);
  record->stepX = ratio(record->src.width, width);
  record->stepY = ratio(record->src.height, height);
  record->invStepX = ratio(width, record->src.width);
  record->invStepY = ratio(height, record->src.height);
}

bool hasSteps(const ConvRecord& record) { return record.stepX != 0 && record.stepY != 0; }

void noteSteps(ConvRecord* record) {
  const auto bothAre = [record](uint32_t step) {
    return record->stepX == step && record->stepY == step;
  };
  record->isHalf = bothAre(kFixedOne / 2);
  record->isUnit = bothAre(kFixedOne);
  record->bilinearY = record->params.interp == 2 && record->isUnit == 0;
  record->bilinearU = record->bilinearV = record->src.klass == kRgb ? record->bilinearY : 0;
}

void chooseKind(ConvRecord* record) {
  const bool fromRgb = record->src.klass == kRgb, toRgb = record->dst.klass == kRgb;
  record->convKind = kindOf(fromRgb, toRgb);
  record->dither =
      record->params.dither != 0 && toRgb && record->dstPlane.bitsPerPixel == 16 ? 1 : 0;
}

void chooseColours(ConvRecord* record) {
  for (ConvFormat* format : {&record->dst, &record->src}) {
    const uint32_t code = format->colour;
    const bool known = code == kBt601Full || code == kBt709Video || code == kBt709Full;
    if (!known && format->klass != kRgb) format->colour = kBt601Video;
  }
  const ConvParams& params = record->params;
  const bool adjusts = params.brightness != 0 || params.contrast != 0 || params.saturation != 0;
  record->useLut = record->convKind == kYuvToYuv &&
                   (adjusts || ((record->src.colour ^ record->dst.colour) & 3) != 0);
}

void chooseBlockMode(ConvRecord* record) {
  uint32_t& mode = record->blockMode;
  if (mode < 2 || mode > 4) mode = 1;
  if (isGenericPlanar(record->dst.klass) || isGenericPlanar(record->src.klass) ||
      isPalette(record->src)) {
    mode = 1;
  }
  const uint32_t orient = record->params.orient;
  const bool bilinearBlocks = record->bilinearY != 0 && record->src.klass == kI420 &&
                              record->dst.klass == kI420 &&
                              (orient == 0 || orient == 3 || orient == 5);
  if (mode == 4 && !bilinearBlocks) mode = 3;
}

int64_t blockSide(const ConvRecord& record) {
  if (record.blockMode < 2) return 1;
  return record.blockMode == kBlocksOf2 ? 2 : 4;
}

int64_t roundDown(int64_t value, int64_t block) { return value / block * block; }
int64_t roundUp(int64_t value, int64_t block) { return roundDown(value + block - 1, block); }

// Takes `margin` from both ends of a side. False if nothing stays.
bool shrink(int64_t margin, int32_t* origin, uint32_t* size) {
  const int64_t rest = int64_t{*size} - 2 * margin;
  if (rest <= 0) return false;
  *origin = static_cast<int32_t>(*origin + margin);
  *size = static_cast<uint32_t>(rest);
  return true;
}

// Of the destination: margins round up, so that it stays inside.
bool shrinkTo(int64_t wanted, int64_t block, int32_t* origin, uint32_t* size) {
  const int64_t margin = (*size - roundDown(wanted, block) + 1) >> 1;
  return shrink(std::max<int64_t>(0, roundUp(margin, block)), origin, size);
}

// Of the source: margins round down, so that nothing needed goes.
bool cropTo(int64_t wanted, int64_t block, int32_t* origin, uint32_t* size) {
  const int64_t margin = (*size - roundDown(wanted, block) + 1) >> 1;
  return shrink(roundDown(std::max<int64_t>(0, margin), block), origin, size);
}

bool shrinkDestination(ConvRecord* record) {
  const bool swap = record->swapXY != 0;
  uint32_t& width = swap ? record->dst.height : record->dst.width;
  uint32_t& height = swap ? record->dst.width : record->dst.height;
  int32_t& x = swap ? record->dstOrgY : record->dstOrgX;
  int32_t& y = swap ? record->dstOrgX : record->dstOrgY;
  const ConvFormat& src = record->src;
  if (record->stepX <= record->stepY) {
    record->stepX = record->stepY;
    record->invStepX = record->invStepY;
    return shrinkTo(int64_t{height} * src.width / src.height, blockSide(*record), &x, &width);
  }
  record->stepY = record->stepX;
  record->invStepY = record->invStepX;
  return shrinkTo(int64_t{width} * src.height / src.width, blockSide(*record), &y, &height);
}

bool cropSource(ConvRecord* record) {
  const bool swap = record->swapXY != 0;
  const int64_t width = swap ? record->dst.height : record->dst.width;
  const int64_t height = swap ? record->dst.width : record->dst.height;
  ConvFormat& src = record->src;
  if (record->stepX < record->stepY) {
    record->stepY = record->stepX;
    record->invStepY = record->invStepX;
    return cropTo(height * src.width / width, blockSide(*record), &record->srcOrgY, &src.height);
  }
  record->stepX = record->stepY;
  record->invStepX = record->invStepY;
  return cropTo(width * src.height / height, blockSide(*record), &record->srcOrgX, &src.width);
}

// Where both are asked for the shrunk destination leaves nothing to crop.
bool fit(ConvRecord* record) {
  const uint32_t mode = record->params.fit;
  if ((mode & 1) != 0 && record->stepX != record->stepY && !shrinkDestination(record)) return false;
  if ((mode & 2) != 0 && record->stepX != record->stepY && !cropSource(record)) return false;
  noteSteps(record);
  return true;
}

bool makeTables(ConvRecord* record) {
  record->tableBytes = static_cast<uint32_t>(tableBytesOf(*record));
  if (record->tableBytes == 0) return true;
  record->tables = MMemAlloc(nullptr, record->tableBytes);
  if (record->tables == nullptr) return false;
  fillTables(record);
  return true;
}

void settleBlockMode(ConvRecord* record) {
  if (record->isUnit != 0 && record->blockMode == kBilinearBlocksOf4)
    record->blockMode = kBlocksOf4;
  if (record->blockMode == kBlocksOf4 && record->isUnit != 0 && record->useLut != 0) {
    record->blockMode = kBlocksOf2;
  }
}

void turnDestination(ConvRecord* record) {
  if (record->mirrorX != 0) {
    for (int32_t& step : record->dstStep) step = -step;
  }
  if (record->swapXY == 0) return;
  std::swap(record->dstSubX, record->dstSubY);
  std::swap(record->dstOrgX, record->dstOrgY);
}

void takeClip(ConvRecord* record) {
  const ConvParams& params = record->params;
  if (hasClip(params)) {
    record->clipL = params.clipLeft;
    record->clipT = params.clipTop;
    record->clipR = params.clipRight;
    record->clipB = params.clipBottom;
    return;
  }
  record->clipL = record->srcOrgX;
  record->clipT = record->srcOrgY;
  record->clipR = record->srcOrgX + static_cast<int32_t>(record->src.width);
  record->clipB = record->srcOrgY + static_cast<int32_t>(record->src.height);
}

// The first destination coordinate whose position lies behind source column or row `at`.
int32_t firstBehind(uint32_t step, int32_t at, int32_t srcOrg, int64_t dstOrg) {
  const int64_t distance = int64_t{step / 2} + kFixedHalf + (int64_t{at} - srcOrg) * kFixedOne;
  const int64_t place = dstOrg + floorDivide(distance, step);
  return static_cast<int32_t>(std::clamp<int64_t>(place, INT32_MIN + 1, INT32_MAX - 1));
}

void computeValidWindow(ConvRecord* record) {
  const auto x = [record](int32_t at) {
    return firstBehind(record->stepX, at, record->srcOrgX, record->dstOrgX);
  };
  const auto y = [record](int32_t at) {
    return firstBehind(record->stepY, at, record->srcOrgY, record->dstOrgY);
  };
  record->validX0 = x(record->clipL);
  record->validX1 = x(record->clipR - 1) + 1;
  record->validY0 = y(record->clipT);
  record->validY1 = y(record->clipB - 1) + 1;
}

}  // namespace

int32_t buildRecord(const Side& dst, const Side& src, const ConvParams& params,
                    ConvRecord* record) {
  *record = {};
  if (!isValidSide(dst, params.dstX, params.dstY) || !isValidSide(src, params.srcX, params.srcY) ||
      !isValidClip(params)) {
    return QPX_BAD_PARAM;
  }
  DecodedFormat to, from;
  for (const auto& [side, decoded] : {std::pair{&dst, &to}, std::pair{&src, &from}}) {
    const int32_t result = decodeSide(*side, decoded);
    if (result != QPX_OK) return result;
  }
  if (isPalette(to.format)) return QPX_UNSUPPORTED;

  takeParams(params, record);
  takeFormats(to, from, record);
  computeSteps(record);
  if (!hasSteps(*record)) return QPX_BAD_PARAM;
  noteSteps(record);
  chooseKind(record);
  chooseColours(record);
  chooseBlockMode(record);
  if (!fit(record)) return QPX_BAD_PARAM;
  settleBlockMode(record);
  turnDestination(record);
  takeClip(record);
  computeValidWindow(record);
  return makeTables(record) ? QPX_OK : QPX_NO_MEMORY;
}

void setUnitSteps(ConvRecord* record) {
  record->stepX = record->stepY = record->invStepX = record->invStepY = kFixedOne;
  noteSteps(record);
  computeValidWindow(record);
}

void setBlockMode(uint32_t wanted, ConvRecord* record) {
  record->blockMode = wanted;
  chooseBlockMode(record);
  settleBlockMode(record);
}

void freeTables(ConvRecord* record) {
  MMemFree(nullptr, record->tables);
  record->tables = nullptr;
}

}  // namespace qpx::convert
