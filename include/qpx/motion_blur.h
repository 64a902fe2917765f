/* Motion blur of a part of a picture: a subject moves and its background stays. */
#ifndef QPX_MOTION_BLUR_H_
#define QPX_MOTION_BLUR_H_

#include <qpx/types.h>

QPX_BEGIN_DECLS

/* Smears the pixels under `mask` along a line, taking in only pixels that are under the mask too;
 * the rest is copied, and the step at the mask's edge is softened by a few pixels, more for longer
 * lines.
 *
 * src and dst are 24 or 32-bit RGB of the same format and size and must not overlap. The order of
 * the channels does not matter and is that of src; a fourth byte of dst is not written. mask is
 * QPX_FORMAT_GREY8 of the same size; every value but 0 is inside. `angle` is in degrees,
 * anticlockwise from the row's direction, any number, the same as the one opposite. `length` is the
 * line's in pixels, 0 and up; what is longer than the picture counts as its diagonal (along rows
 * and columns as its width and height).
 *
 * Returns 0; 2 for a null record or plane, formats other than these, sizes that differ or are not
 * positive, a pitch too small for a row, or a negative length; 4 for no memory. A refused call
 * writes nothing. Reentrant. */
QPX_API int32_t QPX_MotionBlur(const MBitmap* src, const MBitmap* mask, int32_t angle,
                               int32_t length, MBitmap* dst);

QPX_END_DECLS

#endif /* QPX_MOTION_BLUR_H_ */
