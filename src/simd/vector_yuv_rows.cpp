#include "simd/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/vector_yuv_rows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/yuv-inl.h"
#include "simd/yuv_move-inl.h"
#include "simd/yuv_pack-inl.h"
#include "simd/yuv_rows.h"

#define QPX_TABLE YuvRows
#define QPX_TABLE_ROWS QPX_YUV_ROWS
#include "simd/vector_form-inl.h"
