#include "simd/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/vector_tap_rows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/tap_rows.h"
#include "simd/taps-inl.h"

#define QPX_TABLE TapRows
#define QPX_TABLE_ROWS QPX_TAP_ROWS
#include "simd/vector_form-inl.h"
