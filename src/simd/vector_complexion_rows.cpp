#include "simd/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/vector_complexion_rows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/complexion-inl.h"
#include "simd/complexion_rows.h"

#define QPX_TABLE ComplexionRows
#define QPX_TABLE_ROWS QPX_COMPLEXION_ROWS
#include "simd/vector_form-inl.h"
