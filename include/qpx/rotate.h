/* Turning whole RGB pictures: by any angle with a fill colour, in one call or strip by strip, and
 * levelling of photographs without empty corners.
 *
 * Angles of the rotation are whole degrees without a range. As the picture is seen, with rows that
 * run downwards, positive angles turn it counterclockwise in QPX_RotateImage and clockwise in the
 * QPXRotate* functions. QPX_Straighten takes radians, clockwise.
 *
 * Pictures are MBitmap records of 24 or 32-bit RGB whose pitch is at least a row of pixels. Source
 * and destination must not overlap. Bytes between the rows are neither read nor written.
 *
 * Results: QPX_OK; QPX_BAD_PARAM for a null argument, a record without plane, of a size below 1 or
 * with a pitch too small; QPX_UNSUPPORTED and QPX_NO_MEMORY where a function says so. A refused
 * call writes nothing. All functions are reentrant; one handle may be used by several threads at a
 * time. */
#ifndef QPX_ROTATE_H_
#define QPX_ROTATE_H_

#include <qpx/types.h>

QPX_BEGIN_DECLS

/* Size of the upright rectangle that holds `image` turned by `degrees`, rounded up: for turns by 90
 * or 180 degrees it may be a pixel more than the picture, because no sine of these is exactly 0.
 * Reads size and plane (which must be there) of the record, of any format. Returns 0 or 2. */
QPX_API int32_t QPX_GetRotateDstSize(const MBitmap* image, int32_t degrees, int32_t* width,
                                     int32_t* height);

/* Turns `src` counterclockwise about its centre onto the centre of `dst`, which has any size and
 * the same format: BGR24, RGB24, BGRA32 or RGBA32. Bilinear with ten fractional bits; what lies
 * outside the source is `fill`, and the border fades into it over a pixel. `fill` is 0xAABBGGRR
 * whatever the order of bytes in the format: red is bits 0 to 7, and bits 24 to 31 are the fourth
 * byte of 32-bit pixels outside. Pixels that show the source, or its fading border, get an alpha of
 * 255.
 *
 * Returns 0; 2 as above, and for formats that differ or are none of the four; 4 for no memory, in
 * which case all pixels of `dst` are filled with bytes of 255. Takes 8 bytes of memory for each
 * pixel of the longer side of `dst`. Sides of up to 2,000,000 pixels are served; beyond, places
 * saturate and the picture is wrong, though nothing outside it is touched. */
QPX_API int32_t QPX_RotateImage(const MBitmap* src, int32_t degrees, uint32_t fill, MBitmap* dst);

/* Size of the upright rectangle that holds `image` turned by `degrees`, cut to whole pixels. Reads
 * the size alone. Returns 0 or 2. */
QPX_API int32_t QPXRotateCalcDstSize(const MBitmap* image, int32_t degrees, int32_t* width,
                                     int32_t* height);

/* The largest upright rectangle of the proportions of `image` inside `image` turned by `degrees`,
 * about the centre of `target` and cut to it: what is left when the corners of a turned picture are
 * cropped. Reads the sizes alone. Only angles of 0 ... 179 degrees, more by whole half turns, and
 * -90 give a useful one; for other negative angles it has no size, so reduce the angle first.
 * Returns 0 or 2. */
QPX_API int32_t QPXRotateCalcInternalRect(const MBitmap* image, const MBitmap* target,
                                          int32_t degrees, MRect* rect);

/* What a rotation is made for: the first three fields of an MBitmap. */
typedef struct QPXRotateFormat {
  uint32_t format; /* QPX_FORMAT_BGR24 or QPX_FORMAT_BGRA32; the bytes of a pixel keep their order,
                      so RGB pictures may be given as BGR */
  int32_t width;
  int32_t height;
} QPXRotateFormat;

typedef struct QPXRotateParams {
  int32_t angle;       /* degrees, clockwise */
  const uint8_t* fill; /* four bytes in the order of the format; copied */
} QPXRotateParams;

/* A rotation from one size to another. Opaque. */
typedef struct QPXRotateHandle QPXRotateHandle;

/* Makes a rotation. Returns 0; 2 for a null argument or a size below 1; 3 for a format other than
 * the two, or for formats that differ; 4 for no memory. On failure *handle is null. Destroy with
 * QPXRotateDestroy. */
QPX_API int32_t QPXRotateCreate(QPXRotateHandle** handle, const QPXRotateFormat* srcFormat,
                                const QPXRotateFormat* dstFormat, const QPXRotateParams* params);

/* With `dstRect` all zero, the part of the destination that `srcRect` covers goes to `dstRect`;
 * otherwise the part of the source that `dstRect` needs goes to `srcRect`, whose old contents do
 * not matter. Both are cut to their pictures. Returns 0 or 2. */
QPX_API int32_t QPXRotateCalcRect(const QPXRotateHandle* handle, MRect* dstRect, MRect* srcRect);

/* Makes the pixels of `dstRect` of the turned picture; null stands for all of it. The source is
 * turned about its centre onto that of the destination. Strips and tiles in any order give the
 * bytes of one call, and distinct rectangles may be made by several threads at a time.
 *
 * Bilinear with 16 fractional bits; what lies outside is the fill, and the border fades into it
 * over a pixel. Alpha is not blended: it is that of the pixel left above the place. Multiples of 90
 * degrees move whole pixels, alpha with them; where the destination is larger they repeat the
 * border and use no fill.
 *
 * Both records must have the same format of the two, and be at least as large as the sizes at
 * create, of which this function goes by. The rectangle is cut to the destination; nothing is done
 * for one outside. Source columns from 32,768 on cannot be reached but by multiples of 90 degrees:
 * they are fill.
 *
 * Returns 0; 2 as above, for an empty or inverted rectangle and for a record that is too small; 3
 * for other formats. Allocates nothing. */
QPX_API int32_t QPXRotateProcess(const QPXRotateHandle* handle, const MBitmap* src, MBitmap* dst,
                                 const MRect* dstRect);

/* Frees a rotation. Returns 0, or 2 for null. */
QPX_API int32_t QPXRotateDestroy(QPXRotateHandle* handle);

/* Levels a photograph: turns it clockwise by `angle` radians about its centre and enlarges it just
 * so much that no corner stays empty. `dst` shows the middle of the result; usually it has the size
 * of `src`, and in neither direction may it be larger. `bilinear` non-zero blends four pixels with
 * 16 fractional bits, zero takes one; alpha is taken from one pixel either way.
 *
 * Both records have one format: BGR24, RGB24, BGRA32 or RGBA32, or two of them that differ in the
 * order of bytes alone, which is then copied as it is. Any other format that both have does nothing
 * and returns 0. Returns 2 as above, for formats that do not go together, for a `dst` larger than
 * `src` and for an angle that is no finite number; 3 for sides above 65,536 pixels; 4 for no
 * memory. Takes 8 bytes of memory for each pixel of the longer side of `src`. */
QPX_API int32_t QPX_Straighten(const MBitmap* src, MBitmap* dst, double angle, int32_t bilinear);

QPX_END_DECLS

#endif /* QPX_ROTATE_H_ */
