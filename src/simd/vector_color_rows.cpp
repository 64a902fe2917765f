#include "simd/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/vector_color_rows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/color-inl.h"
#include "simd/color_rows.h"

#define QPX_TABLE ColorRows
#define QPX_TABLE_ROWS QPX_COLOR_ROWS
#include "simd/vector_form-inl.h"
