#include "simd/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/vector_pixel_rows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/pixel-inl.h"
#include "simd/pixel_rows.h"

#define QPX_TABLE PixelRows
#define QPX_TABLE_ROWS QPX_PIXEL_ROWS
#include "simd/vector_form-inl.h"
