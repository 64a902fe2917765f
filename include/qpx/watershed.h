/* Small regions of like colour: a picture's gradient is flooded level by level, after Vincent and
 * Soille (1991), and every basin becomes a region.
 *
 * Pictures are 24-bit RGB in either order of channels. Labels are a caller's array of width *
 * height numbers, row after row without padding; regions are numbered from 0. All functions are
 * reentrant. */
#ifndef QPX_WATERSHED_H_
#define QPX_WATERSHED_H_

#include <qpx/types.h>

QPX_BEGIN_DECLS

/* A region's mean colour, each byte rounded down, in the picture's order of bytes. */
typedef struct QPXRegionColor {
  int32_t mean[3];
  int32_t count; /* pixels */
} QPXRegionColor;

/* A region's neighbour, in a list. */
typedef struct QPXRegionEdge {
  int32_t neighbour;          /* its label */
  struct QPXRegionEdge* next; /* null at the end */
} QPXRegionEdge;

/* Cuts a picture into regions. Every pixel gets the label of its region, 0 ... *regionCount - 1;
 * regions are connected by the sides of pixels. A picture with a side below 3 pixels is one region.
 * Needs some 12 bytes a pixel at most for the time of the call. Returns 0; 2 for a null argument, a
 * picture without pixels or a pitch below a row; 3 for another format; 4 for no memory, with labels
 * and *regionCount undefined. */
QPX_API int32_t Watershed_PreSegmentation(const MBitmap* image, int32_t* labels,
                                          int32_t* regionCount);

/* The mean colours of regionCount regions to `colours`. Pixels of other labels count nowhere; a
 * region without pixels is black. Returns 0; 2 and 3 as above, and 2 for a count below 0; 4 for no
 * memory, which only pictures above 16 megapixels need. */
QPX_API int32_t Watershed_GetRegionColor(const MBitmap* image, const int32_t* labels,
                                         int32_t regionCount, QPXRegionColor* colours);

/* Which regions touch along the side of a pixel. `heads`, with an entry for every label, gets the
 * lists, and `edges` the records that they are made of, *edgeCount in number. Each pair of regions
 * is there once: in the list of the region that comes first where the two first meet, of a pixel
 * and the one to its right or below, row by row. Labels below 0 are no regions.
 *
 * `edges` needs room for as many records as pairs of regions touch: with labels from
 * Watershed_PreSegmentation fewer than 3 * regionCount, with any labels fewer than 2 * width *
 * height. Returns 0, or 2 for a null argument or a size that is not positive. */
QPX_API int32_t Watershed_GetRegionAdjacentEdge(const int32_t* labels, int32_t width,
                                                int32_t height, QPXRegionEdge* edges,
                                                QPXRegionEdge** heads, int32_t* edgeCount);

/* Paints every region of `image` in its mean colour. `output` is a picture of the same size and
 * format, which may be `image` itself; pixels of other labels become black. Returns 0, also when
 * there is no memory, which leaves `output` as it was; 2 and 3 as above. */
QPX_API int32_t Watershed_GetSegmentationBmp(const MBitmap* image, const int32_t* labels,
                                             int32_t regionCount, MBitmap* output);

QPX_END_DECLS

#endif /* QPX_WATERSHED_H_ */
