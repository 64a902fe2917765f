#include "simd/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/vector_sampled_rows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/sampled_rows-inl.h"
#include "simd/sampled_rows.h"

#define QPX_TABLE SampledRows
#define QPX_TABLE_ROWS QPX_SAMPLED_ROWS
#include "simd/vector_form-inl.h"
