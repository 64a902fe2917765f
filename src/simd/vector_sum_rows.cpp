#include "simd/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/vector_sum_rows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/sum-inl.h"
#include "simd/sum_rows.h"

#define QPX_TABLE SumRows
#define QPX_TABLE_ROWS QPX_SUM_ROWS
#include "simd/vector_form-inl.h"
