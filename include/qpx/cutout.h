/* Cutting an object out of a picture by strokes: some over the object, some over its background.
 * The picture is cut into small regions of like colour once; strokes pin regions to a side, their
 * colours model both sides, and a minimum cut of the graph of regions decides about the rest.
 *
 * A handle belongs to one thread at a time; distinct handles are independent. */
#ifndef QPX_CUTOUT_H_
#define QPX_CUTOUT_H_

#include <qpx/types.h>

QPX_BEGIN_DECLS

/* A picture that is being cut out of. */
typedef struct StrokeMatting StrokeMatting;

/* The sides of a stroke. */
typedef enum QPXStrokeSide { QPX_STROKE_FOREGROUND = 0, QPX_STROKE_BACKGROUND = 1 } QPXStrokeSide;

/* Makes a handle for a picture of 24-bit RGB in either order, whose pixels are read by this call
 * only. Returns 0; 2 for a null argument, another format, a picture without pixels or a pitch too
 * small for a row; 4 for no memory, with *out null.
 *
 * Where memory runs out after the picture has been cut into regions the handle is made all the same
 * and 0 returned: calls that need what is missing answer 4 then. Needs some 20 bytes a pixel for
 * the time of the call and keeps some 6, up to 8 more for a long outline, and some 250 a region.
 * Pictures of more than 2^29 pixels are no memory. */
QPX_API int32_t STRKM_Create(StrokeMatting** out, const MBitmap* image);

/* Adds the points of a stroke to a side (QPXStrokeSide): the regions under them are pinned to it,
 * whatever side they were pinned to before. Points count alone; nothing is drawn between them.
 *
 * Returns 0; 2 for a null handle, another side, null points, a negative count or any point off the
 * picture, with nothing changed; 4 where the handle was made without memory for strokes. */
QPX_API int32_t STRKM_AddLine(StrokeMatting* handle, int32_t side, const MPoint* points,
                              int32_t count);

/* Takes all strokes and results back. Returns 0, or 2 for null. */
QPX_API int32_t STRKM_ResetLine(StrokeMatting* handle);

/* Cuts by all strokes so far, unless there are none since the last cut, or one side has none at
 * all: then the results stay. They belong to the handle and are read only; pointers stay good for
 * its life.
 *
 * *maskOut becomes a QPX_FORMAT_GREY8 picture of 255 for the object and 0 for the rest, 0
 * everywhere before the first cut. *pointsOut becomes the pixels around the object, *countOut in
 * number: chains of 20 and more, one behind the other, each a way along neighbouring pixels that
 * ends where a step leads back to its first, which is not written again, or where none is left.
 * They run over the object only along the picture's border. Nothing marks where a chain begins but
 * the step to it.
 *
 * Returns 0; 2 for a null argument, with nothing written; 4 for no memory, with the results those
 * of the last cut, or null where they could not be had; the strokes wait for the next call. Memory
 * that runs out while the regions' graph is being cut is not reported: the sides may not be the
 * best then, until there is another stroke. */
QPX_API int32_t STRKM_Process(StrokeMatting* handle, MBitmap** maskOut, MPoint** pointsOut,
                              int32_t* countOut);

/* Frees a handle and its results. Returns 0, also for null. */
QPX_API int32_t STRKM_Destroy(StrokeMatting* handle);

QPX_END_DECLS

#endif /* QPX_CUTOUT_H_ */
