// The table of each target and the choice among them. Ends a file that Highway compiles once per
// target and that defines before:
//
//   QPX_TABLE       the table's type
//   QPX_TABLE_ROWS  the list of its rows
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {
namespace {

#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128
using namespace plain;  // a target without vectors
#endif

const QPX_TABLE& formOfTarget() {  // NOLINT(misc-definitions-in-headers)
  static constexpr QPX_TABLE kTable = {QPX_TABLE_ROWS(QPX_ROW_ENTRY, QPX_TABLE)};
  return kTable;
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace qpx::simd {

HWY_EXPORT(formOfTarget);

template <>
const QPX_TABLE& vectorForm<QPX_TABLE>() {  // NOLINT(misc-definitions-in-headers)
  return HWY_DYNAMIC_DISPATCH(formOfTarget)();
}

}  // namespace qpx::simd
#endif  // HWY_ONCE

#undef QPX_TABLE
#undef QPX_TABLE_ROWS
