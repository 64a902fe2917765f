// Which processors Highway generates code for. Comes before any header of Highway, in every file
// that counts its targets.
#pragma once

// Byte permutes over 128 entries make a table look-up six instructions; Highway leaves the target
// that has them out unless asked.
#define HWY_WANT_AVX3_DL

// Further targets that a build may do without.
#ifndef QPX_SIMD_LEFT_OUT
#define QPX_SIMD_LEFT_OUT 0
#endif

// SSSE3 without SSE4 has died out, and 128-bit NEON serves every ARM processor in phones.
#define HWY_DISABLED_TARGETS \
  (QPX_SIMD_LEFT_OUT | HWY_SSSE3 | HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128)
