// Tone tables of the sliders. Each is monotone, keeps black and white in their places unless it
// says otherwise, and is the identity at the slider's neutral value.
#pragma once

#include "toolkit/curve.h"

namespace qpx {

// Black point, white point and gamma. White stays above black; 0, as of an empty record, is 255.
ToneTable levelsTable(const QPXLevelRange& range);

// 0 ... 255 drawn into black ... white, of which the same holds; both may be the same.
ToneTable outputTable(int32_t black, int32_t white);

// Through the points of a record. Returns 0, or 4 for no memory; points that go back leave the
// table as the identity.
int32_t pointsTable(const QPXCurvePoints& points, ToneTable& table);

// brightness and contrast -100 ... 100.
ToneTable contrastTable(int32_t brightness, int32_t contrast);

// Each range -100 ... 100.
ToneTable tonalRangesTable(const QPXTonalRangesParam& param);

// More or less light by `stops`.
ToneTable exposureTable(double stops);

}  // namespace qpx
