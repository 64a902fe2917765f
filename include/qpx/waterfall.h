/* The waterfall: a picture runs along the strokes of a finger.
 *
 * All pictures are 24 or 32-bit RGB; the order of the channels does not matter. A handle belongs to
 * one thread at a time; distinct handles are independent. */
#ifndef QPX_WATERFALL_H_
#define QPX_WATERFALL_H_

#include <qpx/types.h>

QPX_BEGIN_DECLS

/* A picture that is being stroked. */
typedef struct QPXWaterFallHandle QPXWaterFallHandle;

/* Result codes of QPX_WaterFall_*, beside 0. */
typedef enum QPXWaterFallResult {
  QPX_WATERFALL_BAD_HANDLE = 2, /* a null handle or value; in create: no memory too */
  QPX_WATERFALL_BAD_POINT = 3,  /* a null point; of a property: an unknown id */
  QPX_WATERFALL_NO_STROKE = 4,  /* the end of a stroke that never began */
  QPX_WATERFALL_BAD_RESULT = 5, /* a null place for the result, a format that is not served; of a
                                   property: a size that is not 4 */
  QPX_WATERFALL_REFUSED = 12    /* a segment is still being worked on; of a property: a value out
                                   of range */
} QPXWaterFallResult;

/* Properties, all int32_t. They act from the next segment on (the length: at once). */
typedef enum QPXWaterFallProp {
  QPX_WATERFALL_LENGTH = 1, /* pixels that run into one another, above 1; 40 at the start */
  QPX_WATERFALL_RADIUS = 2  /* half the width of a stroke in pixels, above 0; 20 at the start */
} QPXWaterFallProp;

/* Makes a handle with a copy of `image`, which is not kept. *resultRecord, unless null, becomes the
 * record of that copy: it shows the picture as it has become so far, belongs to the handle and is
 * read only. Returns 0; 5 for another format; 2 for a null argument, a picture without pixels, a
 * pitch too small for a row, and no memory. *handle is null after a failure. */
QPX_API int32_t QPX_WaterFall_Create(QPXWaterFallHandle** handle, const MBitmap* image,
                                     MBitmap** resultRecord);

/* Takes a touch point: the first begins a stroke, each later one that is more than a third of the
 * radius away draws a segment to it. `finish` ends the stroke with this point. Points may lie
 * anywhere.
 *
 * After a segment *resultRecord is the record of the picture and the four numbers at dirtyRect (may
 * be null) what may have changed: left, top, right and bottom, all inside, or 1, 1, 0, 0 for
 * nothing. Otherwise *resultRecord is null and dirtyRect is left alone. A segment that
 * QPX_WaterFall_Dostep has not finished stays as far as it is.
 *
 * Returns 0; 2 for a null handle, 3 for a null point, 5 for a null resultRecord, 4 for `finish`
 * without a point before. */
QPX_API int32_t QPX_WaterFall_Process(QPXWaterFallHandle* handle, const MPoint* point,
                                      int32_t finish, MBitmap** resultRecord, int32_t* dirtyRect);

/* The same without the work, which QPX_WaterFall_Dostep then does. *started is 1 when there is some
 * to do, else 0. Returns 0; 2 for a null handle, 3 for a null point, 5 for a null `started`, 12
 * while a segment is not finished, 4 as above. */
QPX_API int32_t QPX_WaterFall_ProcessAsync(QPXWaterFallHandle* handle, const MPoint* point,
                                           int32_t finish, int32_t* started);

/* Works on the segment for so many milliseconds, 0 for no limit; it gets on by one row at least.
 * When the segment is finished *resultRecord and dirtyRect are as above; until then, and when
 * there is nothing to do, *resultRecord is null and dirtyRect is left alone. Either may be null.
 * Returns 0, or 2 for a null handle. */
QPX_API int32_t QPX_WaterFall_Dostep(QPXWaterFallHandle* handle, uint32_t milliseconds,
                                     MBitmap** resultRecord, int32_t* dirtyRect);

/* Frees a handle and its picture, at any time. Returns 0, or 2 for null. */
QPX_API int32_t QPX_WaterFall_Destroy(QPXWaterFallHandle* handle);

/* Set and read a property (QPXWaterFallProp) of `size` bytes, which is 4. Return 0; 2 for a null
 * argument, 3 for an unknown id, 5 for another size, 12 for a value out of range. */
QPX_API int32_t QPX_WaterFall_SetProp(QPXWaterFallHandle* handle, int32_t id, const void* value,
                                      int32_t size);
QPX_API int32_t QPX_WaterFall_GetProp(const QPXWaterFallHandle* handle, int32_t id, void* value,
                                      int32_t size);

/* One segment from p0 to p1 in one call, with a soft edge: `radius` is half its width, `blurLength`
 * the pixels that run into one another. src and dst have the same format and size and must not
 * overlap; where nothing changes all bytes of a pixel are copied, a fourth byte always. The points
 * come back in order, the higher one first, of two at the same height the one to the right.
 *
 * Returns 0; 2 for a null argument, sizes that differ or are not positive, a pitch too small for a
 * row, different formats, or a radius or length below 1; 3 for a format that is not served; 4 for
 * no memory. A failed call writes nothing. Reentrant. */
QPX_API int32_t QPX_Waterfall(const MBitmap* src, MPoint* p0, MPoint* p1, int32_t radius,
                              int32_t blurLength, MBitmap* dst);

QPX_END_DECLS

#endif /* QPX_WATERFALL_H_ */
