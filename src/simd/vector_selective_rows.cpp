#include "simd/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/vector_selective_rows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/selective-inl.h"
#include "simd/selective_rows.h"
#include "simd/selective_words-inl.h"

#define QPX_TABLE SelectiveRows
#define QPX_TABLE_ROWS QPX_SELECTIVE_ROWS
#include "simd/vector_form-inl.h"
