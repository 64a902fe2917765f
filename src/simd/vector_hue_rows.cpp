#include "simd/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/vector_hue_rows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/hue-inl.h"
#include "simd/hue_rows.h"
#include "simd/hue_words-inl.h"
#include "simd/tint-inl.h"

#define QPX_TABLE HueRows
#define QPX_TABLE_ROWS QPX_HUE_ROWS
#include "simd/vector_form-inl.h"
