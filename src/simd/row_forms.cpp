#include <qpx/engine.h>

#include <atomic>

#include "simd/row_forms.h"

namespace qpx::simd {
namespace {

// Relaxed is enough: both forms give the same bytes, so a call that still sees the old value is
// not wrong.
std::atomic<bool> g_plainForms{false};

}  // namespace

bool plainForms() { return g_plainForms.load(std::memory_order_relaxed); }

}  // namespace qpx::simd

extern "C" void QPX_UsePlainForms(int32_t on) {
  qpx::simd::g_plainForms.store(on != 0, std::memory_order_relaxed);
}
