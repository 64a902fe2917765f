#include "simd/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/vector_tone_rows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/chroma-inl.h"
#include "simd/tone-inl.h"
#include "simd/tone_rows.h"

#define QPX_TABLE ToneRows
#define QPX_TABLE_ROWS QPX_TONE_ROWS
#include "simd/vector_form-inl.h"
