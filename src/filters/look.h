// Rows of the looks: effects for 24 and 32-bit RGB with one kernel for all four byte orders.
#pragma once

#include "filters/filter_record.h"

namespace qpx {

// What a look has beyond its texts.
struct LookDetails {
  RecordLayout record = kFilterRecord;
  uint32_t flags = 0;
  Setup setup = nullptr;
  Kernel kernel = nullptr;
};

// A look with parameters, by default those of the shared filter record.
constexpr EffectRow look(uint32_t id, const char* name, const char* title, const char* summary,
                         const LookDetails& details = {}) {
  return {.id = id,
          .name = name,
          .title = title,
          .summary = summary,
          .formats = kTakesRgb,
          .record = details.record,
          .flags = details.flags,
          .setup = details.setup,
          .kernels = {{{kTakesRgb, details.kernel}}}};
}

// The same, where hosts may split rows among threads.
constexpr EffectRow threadedLook(uint32_t id, const char* name, const char* title,
                                 const char* summary, LookDetails details = {}) {
  details.flags |= QPX_EFFECT_ROW_THREADS;
  return look(id, name, title, summary, details);
}

// A look without parameters.
constexpr EffectRow fixedLook(uint32_t id, const char* name, const char* title, const char* summary,
                              LookDetails details = {}) {
  details.record = {};
  return look(id, name, title, summary, details);
}

}  // namespace qpx
