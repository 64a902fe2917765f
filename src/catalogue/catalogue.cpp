// Looking effects up in the catalogue, and the places of their parameter records.
#include <algorithm>

#include "engine/effect_row.h"

namespace qpx {
namespace {

// Kernels read their record in place, so a place suits every type that a record may hold.
constexpr size_t placeSize(const RecordLayout& record) {
  return (size_t{record.size} + alignof(double) - 1) / alignof(double) * alignof(double);
}

constexpr bool ownsPlace(const RecordLayout& record) {
  return record.size != 0 && !record.sharedFilterRecord;
}

}  // namespace

const EffectRow* findEffect(uint32_t id) {
  for (const EffectFamily* family : effectFamilies()) {
    const auto row = std::ranges::lower_bound(family->effects, id, {}, &EffectRow::id);
    if (row != family->effects.end() && row->id == id) return &*row;
  }
  return nullptr;
}

// The shared filter record comes first, then the records of single effects in catalogue order.
size_t recordPlace(const EffectRow& row) {
  if (!ownsPlace(row.record)) return 0;
  size_t place = placeSize({.size = sizeof(QPXFilterRecord)});
  for (const EffectFamily* family : effectFamilies()) {
    for (const EffectRow& other : family->effects) {
      if (other.id == row.id) return place;
      if (ownsPlace(other.record)) place += placeSize(other.record);
    }
  }
  return 0;
}

}  // namespace qpx
