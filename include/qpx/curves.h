/* Tone tables: 256 bytes, one output sample for each input sample. */
#ifndef QPX_CURVES_H_
#define QPX_CURVES_H_

#include <qpx/stage.h>

QPX_BEGIN_DECLS

/* Draws a natural cubic spline through `count` control points (xs[i], ys[i]), x not decreasing,
 * into `table` (256 bytes), in single precision. Flat before the first point and behind the last;
 * values are clamped to 0 ... 255 and truncated. An interval of zero width writes nothing and
 * spoils the slopes beside it. Returns 0; 2 for a null argument, fewer than two points or
 * decreasing x, with the table untouched; 4 for no memory. Reentrant. */
QPX_API int32_t BuildSplineCurve(const uint8_t* xs, const uint8_t* ys, int32_t count,
                                 uint8_t* table);

/* Chains `table` (768 bytes from MMemAlloc, of which `size`, 256 or 768, are in use) behind the
 * table that the stage holds: the result is new after old. `flags` is 5 for one table, 9 for three.
 * Takes ownership of `table`; the first table of a stage is adopted as it is. A null `table`
 * changes nothing. Returns 0, or 2 for a null stage, with the table still the caller's. For one
 * thread at a time on a stage. */
QPX_API int32_t ComposeStageLut(QPXStage* stage, uint8_t* table, uint32_t flags, uint32_t size);

QPX_END_DECLS

#endif /* QPX_CURVES_H_ */
