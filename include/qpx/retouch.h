/* Retouch: takes something out of a picture and fills the hole from the rest of it. */
#ifndef QPX_RETOUCH_H_
#define QPX_RETOUCH_H_

#include <qpx/types.h>

QPX_BEGIN_DECLS

/* Fills what `mask` marks, patch by patch from the border of the hole inwards. Each patch is the
 * one of the picture that fits best around its place; lines that run into the hole are continued
 * first, and each patch is blended into its surroundings, so that no seam shows.
 *
 * source and destination are of the same format and size: QPX_FORMAT_BGR24, QPX_FORMAT_RGB24,
 * QPX_FORMAT_BGRA32 or QPX_FORMAT_RGBA32. They may be the same planes; otherwise they must not
 * overlap. A fourth byte is copied from the source.
 *
 * guide is the same picture in the same format, as a rule smaller: patches are sought in it, and
 * then refined at full size, which is what makes large pictures quick. With
 *   sx = (source width - 1) / (guide width - 1), sy = (source height - 1) / (guide height - 1)
 * guide pixel (x, y) stands for the source pixels that are nearest to (x * sx, y * sy), and is best
 * their mean. It should have the shape of source, or be source itself. Of the source's size it may
 * be a picture of the same with less noise: what fills the hole are the source's pixels, noise and
 * all.
 *
 * mask is QPX_FORMAT_GREY8 of the guide's size. 255 marks what is filled, 0 what is known. Pixels
 * of any other value are kept, but nothing is copied from them: something else that should not
 * show up in the hole. The mark should reach a little beyond the object, its shadow and its soft
 * edges.
 *
 * settings are two numbers. settings[0] is the radius of a patch in pixels of the guide, 1 to 10
 * (10.9 counts as 10): somewhat more than the size of the texture's elements; a patch is a square
 * of 2 * radius + 1. settings[1], 0 to 1, says what goes first: 0 the strongest line into the hole,
 * 1 what has most that is known around it.
 *
 * Where the picture has no patch without a hole, because it is too small or the mask covers too
 * much, the hole takes the colours around it. Where nothing is known the destination is the source.
 *
 * Returns 0; 2 for a null argument or plane, other formats, sizes that differ or are not positive,
 * a pitch too small for a row, or settings out of range; 4 for no memory. A refused call writes
 * nothing. Reentrant.
 *
 * Memory is some 21 bytes for each pixel of the guide, 1 for each of the source, and the equations
 * of a patch's blend. These take 4 * side^2 * (side + 1) bytes, where side is that of a patch in
 * pixels of the source, about (2 * radius + 1) * max(sx, sy): 40 KB for a radius of 10 and a guide
 * of the source's size, 37 MB where the guide is 10 times smaller, 2.4 GB where it is 40 times
 * smaller, which ends in 4 or takes very long: the time of each patch grows with side^4. Keep side
 * below some 200 by a larger guide or a smaller radius. */
QPX_API int32_t ReTouch(const MBitmap* source, const MBitmap* guide, const MBitmap* mask,
                        const float* settings, MBitmap* destination);

QPX_END_DECLS

#endif /* QPX_RETOUCH_H_ */
