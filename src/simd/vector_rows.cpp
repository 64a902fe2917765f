#include "simd/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/vector_rows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/channels-inl.h"
#include "simd/lookup_neon-inl.h"
#include "simd/lookup_x86-inl.h"
#include "simd/mix-inl.h"
#include "simd/rows.h"

// Sixteen shuffles for sixteen bytes (SSE4), or eight look-ups for eight (32-bit ARM), are no
// faster than a load for each byte.
#if HWY_TARGET > HWY_AVX2 && !HWY_ARCH_ARM_A64 && HWY_TARGET != HWY_SCALAR && \
    HWY_TARGET != HWY_EMU128
namespace qpx::simd::HWY_NAMESPACE {
using plain::lookup;
using plain::lookup3;
using plain::lookup4;
}  // namespace qpx::simd::HWY_NAMESPACE
#endif

#define QPX_TABLE Rows
#define QPX_TABLE_ROWS QPX_ROWS
#include "simd/vector_form-inl.h"
