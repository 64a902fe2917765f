#include "simd/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/vector_patch_rows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/patch-inl.h"
#include "simd/patch_rows.h"

#define QPX_TABLE PatchRows
#define QPX_TABLE_ROWS QPX_PATCH_ROWS
#include "simd/vector_form-inl.h"
