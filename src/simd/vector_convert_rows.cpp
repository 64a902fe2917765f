#include "simd/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/vector_convert_rows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/convert_rows-inl.h"
#include "simd/convert_rows.h"
#include "simd/convert_weigh-inl.h"
#include "simd/convert_yuv-inl.h"

#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128
namespace qpx::simd::HWY_NAMESPACE {
// A load and a store for each element, in which vectors have no part.
using plain::transpose3;
}  // namespace qpx::simd::HWY_NAMESPACE
#endif

#define QPX_TABLE ConvertRows
#define QPX_TABLE_ROWS QPX_CONVERT_ROWS
#include "simd/vector_form-inl.h"
