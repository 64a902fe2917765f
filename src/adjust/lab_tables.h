// The tables of CIELAB (CIE 15) over sRGB (IEC 61966-2-1) under D50.
#pragma once

#include "simd/hue_rows.h"
#include "toolkit/curve.h"

namespace qpx {

// All but the map of a* and b*.
void fillLabTables(simd::LabTables& tables);

// Linear light, 255 for white, back to samples.
ToneTable gammaTable();

}  // namespace qpx
