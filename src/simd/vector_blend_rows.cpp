#include "simd/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/vector_blend_rows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/blend-inl.h"
#include "simd/blend_rows.h"
#include "simd/grey-inl.h"
#include "simd/radial-inl.h"

#define QPX_TABLE BlendRows
#define QPX_TABLE_ROWS QPX_BLEND_ROWS
#include "simd/vector_form-inl.h"
