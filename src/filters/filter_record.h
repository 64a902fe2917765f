// The parameter record that about a hundred looks share, and which of its fields a look uses.
#pragma once

#include <cstddef>

#include "engine/effect_row.h"

namespace qpx {

// The record's bytes are the same for 32 and 64-bit hosts, the pointer apart.
static_assert(sizeof(QPXFilterRecord) == 56);
static_assert(offsetof(QPXFilterRecord, intensity) == 12);
static_assert(offsetof(QPXFilterRecord, flipX) == 20);
static_assert(offsetof(QPXFilterRecord, overlayImage) == 24);
static_assert(offsetof(QPXFilterRecord, overlayRect) == 36);
static_assert(offsetof(QPXFilterRecord, color) == 52);

constexpr QPXParamInfo filterParam(const char* name, const char* summary, const char* unit,
                                   QPXParamType type, size_t offset, double minimum, double maximum,
                                   double initial) {
  return {name, summary, unit, type, static_cast<int32_t>(offset), minimum, maximum, initial};
}

constexpr QPXParamInfo filterFlag(const char* name, const char* summary, size_t offset) {
  return filterParam(name, summary, "", QPX_PARAM_UINT8, offset, 0, 1, 0);
}

constexpr QPXParamInfo filterColorByte(const char* name, const char* summary, size_t offset,
                                       double initial) {
  return filterParam(name, summary, "", QPX_PARAM_UINT8, offset, 0, 255, initial);
}

constexpr QPXParamInfo overlayEdge(const char* name, const char* summary, size_t place,
                                   double initial) {
  return filterParam(name, summary, "pixels", QPX_PARAM_INT32,
                     offsetof(QPXFilterRecord, overlayRect) + place, 0, INT32_MAX, initial);
}

inline constexpr QPXParamInfo kPointX =
    filterParam("pointX", "Place or shift across the picture.", "percent", QPX_PARAM_INT32,
                offsetof(QPXFilterRecord, pointX), -100, 100, 10);
inline constexpr QPXParamInfo kPointY =
    filterParam("pointY", "Place or shift down the picture.", "percent", QPX_PARAM_INT32,
                offsetof(QPXFilterRecord, pointY), -100, 100, 10);
inline constexpr QPXParamInfo kAmountA =
    filterParam("amountA", "First amount of the effect.", "percent", QPX_PARAM_INT32,
                offsetof(QPXFilterRecord, amountA), 0, 100, 50);
inline constexpr QPXParamInfo kAmountB =
    filterParam("amountB", "Second amount of the effect.", "percent", QPX_PARAM_INT32,
                offsetof(QPXFilterRecord, amountB), 0, 100, 50);
inline constexpr QPXParamInfo kIntensity =
    filterParam("intensity", "How much of the look replaces the source.", "percent",
                QPX_PARAM_INT32, offsetof(QPXFilterRecord, intensity), 0, 100, 100);
inline constexpr QPXParamInfo kFlipX =
    filterFlag("flipX", "Mirrors the textures left to right.", offsetof(QPXFilterRecord, flipX));
inline constexpr QPXParamInfo kFlipY =
    filterFlag("flipY", "Mirrors the textures top to bottom.", offsetof(QPXFilterRecord, flipY));
inline constexpr QPXParamInfo kStyle =
    filterParam("style", "Variant of the effect.", "", QPX_PARAM_UINT8,
                offsetof(QPXFilterRecord, style), 0, 3, 0);

inline constexpr QPXParamInfo kIntensityParams[] = {kIntensity};
inline constexpr QPXParamInfo kFlipParams[] = {kIntensity, kFlipX, kFlipY};
inline constexpr QPXParamInfo kStyleParams[] = {kIntensity, kStyle};
inline constexpr QPXParamInfo kMotionBlurParams[] = {kAmountA, kIntensity, kAmountB};
inline constexpr QPXParamInfo kExposureParams[] = {kPointX, kPointY, kIntensity};
inline constexpr QPXParamInfo kRevealParams[] = {kPointX, kPointY, kAmountA, kIntensity};
inline constexpr QPXParamInfo kStyleColorParams[] = {
    kIntensity, kStyle,
    filterColorByte("red", "Red of the chosen colour.", offsetof(QPXFilterRecord, color), 255),
    filterColorByte("green", "Green of the chosen colour.", offsetof(QPXFilterRecord, color) + 1,
                    64),
    filterColorByte("blue", "Blue of the chosen colour.", offsetof(QPXFilterRecord, color) + 2,
                    160)};
inline constexpr QPXParamInfo kOverlayParams[] = {
    kIntensity,
    overlayEdge("overlayLeft", "First column of the overlay picture.", offsetof(MRect, left), 0),
    overlayEdge("overlayTop", "First row of the overlay picture.", offsetof(MRect, top), 0),
    overlayEdge("overlayRight", "Column behind the overlay picture.", offsetof(MRect, right), 1),
    overlayEdge("overlayBottom", "Row below the overlay picture.", offsetof(MRect, bottom), 1)};

constexpr RecordLayout filterRecord(std::span<const QPXParamInfo> params) {
  return {.size = sizeof(QPXFilterRecord), .params = params, .sharedFilterRecord = true};
}

inline constexpr RecordLayout kFilterRecord = filterRecord(kIntensityParams);
inline constexpr RecordLayout kFlipRecord = filterRecord(kFlipParams);
inline constexpr RecordLayout kStyleRecord = filterRecord(kStyleParams);
inline constexpr RecordLayout kStyleColorRecord = filterRecord(kStyleColorParams);
inline constexpr RecordLayout kMotionBlurRecord = filterRecord(kMotionBlurParams);
inline constexpr RecordLayout kExposureRecord = filterRecord(kExposureParams);
inline constexpr RecordLayout kRevealRecord = filterRecord(kRevealParams);
inline constexpr RecordLayout kOverlayRecord = filterRecord(kOverlayParams);

}  // namespace qpx
