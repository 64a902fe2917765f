// The engine handle: an array of stage pointers, ended by a null. After merging only the first
// stageCount entries are used; the first stage, the head, holds what belongs to the whole chain.
#pragma once

#include <qpx/engine.h>

#include "engine/stage.h"

struct QPXEngine {
  qpx::Stage* head;  // the first of the array

  qpx::Stage** stages() { return reinterpret_cast<qpx::Stage**>(this); }
};

namespace qpx {

// The head, or null for a null handle and for an engine without stages.
inline Stage* headOf(QPXEngine* handle) { return handle == nullptr ? nullptr : handle->head; }

// Fills a stage from a list item: parameters, tables, plane flags, margins. `band` is the stage's
// record in the head's array.
int32_t setUpEffect(const QPXEffectItem& item, Stage& stage, QPXBand& band);

// Row tables of all stages, in one block behind head.rowTables.
int32_t allocateRowTables(QPXEngine* engine);

// Forgets what the stream has taken in and produced.
void resetStream(QPXEngine* engine);

}  // namespace qpx
