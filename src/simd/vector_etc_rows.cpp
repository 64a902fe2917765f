#include "simd/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/vector_etc_rows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/etc_decode-inl.h"
#include "simd/etc_rows.h"
#include "simd/etc_search-inl.h"

#define QPX_TABLE EtcRows
#define QPX_TABLE_ROWS QPX_ETC_ROWS
#include "simd/vector_form-inl.h"
