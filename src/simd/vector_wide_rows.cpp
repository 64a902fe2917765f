#include "simd/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/vector_wide_rows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/wide-inl.h"

#define QPX_TABLE WideRows
#define QPX_TABLE_ROWS QPX_WIDE_ROWS
#include "simd/vector_form-inl.h"
