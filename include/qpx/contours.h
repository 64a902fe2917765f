/* Outlines of masks, and palettes of sets of colours.
 *
 * Both functions are reentrant. */
#ifndef QPX_CONTOURS_H_
#define QPX_CONTOURS_H_

#include <qpx/types.h>

QPX_BEGIN_DECLS

/* Follows the outlines of what a mask covers. Pixels of 0 that touch others are the outline; along
 * the picture's border it runs over covered pixels too.
 *
 * mask is QPX_FORMAT_GREY8; 0 is outside and every other value inside. It is changed: a pixel of 0
 * within the border that more than 4 of its 8 neighbours cover becomes 255.
 *
 * points has room for width * height points. It receives the chains, one behind the other, each a
 * way along neighbouring pixels that closes: a step leads from its last point back to its first,
 * which is not written again, or it ends within width * height / 40000 pixels of it in x and in y,
 * as a pixel alone does. Chains that do not are left out, and what they took of the room is set to
 * zeros; the rest of it is left alone. Nothing marks where a chain begins but the step to it, so
 * callers fill points with a value of their own before.
 *
 * *count is not the number of points in the chains. It is that of the outline's pixels, where a
 * covered pixel of the border counts three times, and never below what is written to points, so
 * that it serves as the room for a second call too.
 *
 * Returns 0; 2 for a null argument, another format, a null plane, a size that is not positive or a
 * pitch too small for a row; 4 for no memory and masks of 2^31 pixels and more. A call that fails
 * writes nothing. */
QPX_API int32_t QPX_ContourTracing(const MBitmap* mask, MPoint* points, int32_t* count);

/* A palette of `k` colours for `n` others, by k-means from colours picked at even steps. colours
 * and palette are three bytes each, in any order of channels. k is 1 to 256. An entry that no
 * colour is nearest to is black, as are all for n = 0.
 *
 * Returns 0; 2 for a null palette, null colours of n above 0, a negative n or a k out of range; 4
 * for no memory. A call that fails writes nothing. */
QPX_API int32_t KmeansSegColor(const uint8_t* colours, int32_t n, int32_t k, uint8_t* palette);

QPX_END_DECLS

#endif /* QPX_CONTOURS_H_ */
