#include "simd/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/vector_window_rows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/window-inl.h"
#include "simd/window_rows.h"

#define QPX_TABLE WindowRows
#define QPX_TABLE_ROWS QPX_WINDOW_ROWS
#include "simd/vector_form-inl.h"
