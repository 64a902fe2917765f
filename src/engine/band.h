// The bookkeeping of a stream of bands: where a band lies, and which rows of output it can finish.
#pragma once

#include "engine/engine_handle.h"

namespace qpx {

// Cuts `rect` to the picture (and, for effects that crop, to the placed second input and mask) and
// stores it as the band of every stage. A null rectangle is the whole picture. Returns 2 for an
// inverted rectangle. The band may be left empty.
int32_t clipBand(QPXEngine* engine, const QPXBandRect* rect);

bool bandEmpty(const Stage& head);

// Starts a new stream unless the band continues the one before, and remembers it.
void followStream(QPXEngine* engine);

// The rectangle that the band finishes in a stage with the head's margins. Empty if top == bottom
// or left == right.
MRect outputRect(Stage& head);

// An output picture smaller than the input gets the rows and columns it has.
MRect cutToOutput(const Stage& head, MRect out);

// Counts the rows that the band leaves to the next one.
void keepRows(Stage& head);

// Counts one row, or several, into a band's ring.
void takeRows(QPXBand& band, int32_t rows);

}  // namespace qpx
