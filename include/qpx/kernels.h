/* Kernels that hosts and other stages call by name. A kernel makes the pixels of one rectangle of a
 * stage's picture, from `inRows` to `outRows`: row tables of the stage's format, indexed by image
 * row. The rectangle is cut to the picture; nothing outside it is read or written, unless a kernel
 * says so.
 *
 * Parameters come from the stage's own record and tables. Calls on distinct rectangles of one stage
 * may run at the same time in several threads, unless a kernel says otherwise. All return 0, or 2
 * for a null argument; what else they return is stated with each. */
#ifndef QPX_KERNELS_H_
#define QPX_KERNELS_H_

#include <qpx/stage.h>

QPX_BEGIN_DECLS

/* Mixes a finished look, in place in `outRows`, with its untouched source in `inRows`: k percent of
 * the look, k being the `intensity` of the stage's QPXFilterRecord, at most 100. Rounded to the
 * nearest; exact at 100 and at 0. For 24 and 32-bit RGB in either byte order, alpha left alone; in
 * other formats nothing is done. */
QPX_API int32_t ApplyIntensityOfFilteredImage(QPXStage* stage, const MRect* rect,
                                              QPXRowTable* outRows, QPXRowTable* inRows);

/* Gaussian blur of a mask of 8 bits by QPXFeatherParam's radius; 0 copies. The rectangle is
 * feathered by itself, as if the mask ended at its edges: give the whole mask in one call. Not for
 * two calls on one stage at once, because its float plane belongs to the stage. Returns 2 for any
 * other format, 4 for no memory, with nothing written. */
QPX_API int32_t Feather(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                        QPXRowTable* inRows);

/* Vignette by QPXDarkCornerParam: from the inner radius on, pixels move towards the stage's tone
 * table with the square of the distance. For 24 and 32-bit RGB in either byte order, alpha copied;
 * in other formats nothing is done. Returns 2 for a stage without a tone table. */
QPX_API int32_t DarkCornerOptimized(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                    QPXRowTable* inRows);

QPX_END_DECLS

#endif /* QPX_KERNELS_H_ */
