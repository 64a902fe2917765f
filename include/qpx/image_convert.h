/* Whole images from one format to another of the same size: no scaling, no rotation, fixed integer
 * arithmetic, YUV of full range with the primaries of BT.601.
 *
 * mcvColorCvt serves a pair of formats through the member made for it; members can be called by
 * their own names too. A name is the source's format, "to", the destination's, and "u8" for 8 bits
 * a channel.
 *
 * Every member returns 0; -1 for a null record or a null plane that the format has; -2 if a
 * record's format is not the one of its name, if a width or height is below 2, or if the source is
 * smaller than the destination. The destination's size is the one that counts. A refused call
 * writes nothing.
 *
 * Two columns share chroma in all YUV formats but I444, YV24, YUV and I422V; two rows do in I420,
 * YV12, NV12, NV21 and I422V. Where two columns share chroma on either side of a conversion, the
 * last column of an odd width is not written; where two rows do, nor is the last row of an odd
 * height. NV41 has rules of its own, below.
 *
 *   RGB to YUV   y = (19 * r + 38 * g + 7 * b) >> 6
 *                u = clamp((((b - y) * 9) >> 4) + 128), v = clamp((((r - y) * 91) >> 7) + 128)
 *                Chroma is that of the left pixel, and of the upper row, of those that share it.
 *   YUV to RGB   with u and v minus 128, each channel clamped:
 *                r = y + ((45 * v) >> 5), g = y - (((23 * v) >> 5) + ((11 * u) >> 5)),
 *                b = y + ((57 * u) >> 5)
 *   YUV to YUV   samples are moved, never averaged: fewer chroma columns or rows are the even ones,
 *                more are the same ones twice.
 *
 * Members that differ from this say so. Shifts round down; clamp is to 0..255.
 *
 * All functions are reentrant and write through dst alone. A destination may have the luma plane of
 * its source where both have one; other planes must not overlap, but for NV12 to NV21. */
#ifndef QPX_IMAGE_CONVERT_H_
#define QPX_IMAGE_CONVERT_H_

#include <qpx/types.h>

QPX_BEGIN_DECLS

/* Formats of an McvImage; these are no QPXFormat codes. Names of 24 and 32-bit formats give the
 * order of bytes in memory. */
typedef enum McvColorCode {
  MCV_BGR565 = 0x101, /* 16 bits a pixel, blue in the top five bits, red in the lowest */
  MCV_RGB565 = 0x105, /* 16 bits a pixel, red in the top five bits, blue in the lowest */
  MCV_BGR888 = 0x201,
  MCV_RGB888 = 0x204,
  MCV_BGRA8888 = 0x302,
  MCV_ARGB8888 = 0x304,
  MCV_RGBA8888 = 0x305,
  MCV_YUV = 0x401,  /* three bytes a pixel: Y, U, V */
  MCV_YUYV = 0x501, /* two pixels in the bytes Y U Y V; the next three likewise */
  MCV_YVYU = 0x502,
  MCV_UYVY = 0x503,
  MCV_VYUY = 0x504,
  MCV_I420 = 0x601,    /* planes Y, U, V; chroma halved both ways */
  MCV_I422V = 0x602,   /* planes Y, U, V; chroma of half height */
  MCV_I422H = 0x603,   /* planes Y, U, V; chroma of half width */
  MCV_I444 = 0x604,    /* planes Y, U, V of one size */
  MCV_YV12 = 0x605,    /* planes Y, V, U; chroma halved both ways */
  MCV_YV24 = 0x608,    /* planes Y, V, U of one size */
  MCV_NV12 = 0x801,    /* plane Y and one of U, V pairs, halved both ways */
  MCV_NV21 = 0x802,    /* plane Y and one of V, U pairs, halved both ways */
  MCV_LPI422H = 0x803, /* plane Y and one of U, V pairs at half width and full height */
  MCV_NV41 = 0x805     /* plane Y and one of V, U pairs at a quarter of width and height */
} McvColorCode;

/* An image. Pixels are the caller's. */
typedef struct McvImage {
  int32_t format; /* an McvColorCode */
  int32_t width;
  int32_t height;
  uint8_t* plane[4]; /* as many as the format has; the rest is ignored */
  int32_t pitch[4];  /* bytes from one row of a plane to the next */
} McvImage;

/* Converts by the two formats. `alpha` fills the fourth byte of RGBA8888 and BGRA8888 made from
 * YUV. Returns what the member does; -1 for a null record, -2 for a pair that has no member. */
QPX_API int32_t mcvColorCvt(const McvImage* src, const McvImage* dst, uint8_t alpha);

/* RGB to RGB: bytes are moved. 5-6-5 keeps the top bits of each channel, unrounded; ARGB8888 gets
 * an alpha of 255; RGBA8888 loses its own. */
QPX_API int32_t mcvColorBGR888toBGR565u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorBGR888toRGB565u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorBGR888toARGB8888u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorRGB888toBGR565u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorRGB888toRGB565u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorRGB888toARGB8888u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorRGBA8888toBGR888u8(const McvImage* src, const McvImage* dst);

/* The same conversion twice; mcvColorCvt takes the second. */
QPX_API int32_t mcvColorRGB888toBGR888u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorRGB888toBGR888u8_2(const McvImage* src, const McvImage* dst);

/* 24-bit RGB to YUV. YV24 has chroma for each pixel. */
QPX_API int32_t mcvColorBGR888toYUYVu8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorBGR888toYVYUu8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorBGR888toUYVYu8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorBGR888toVYUYu8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorBGR888toI420u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorBGR888toI422Hu8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorBGR888toNV12u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorBGR888toNV21u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorRGB888toYUYVu8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorRGB888toYVYUu8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorRGB888toUYVYu8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorRGB888toVYUYu8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorRGB888toI420u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorRGB888toI422Hu8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorRGB888toYV24u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorRGB888toNV12u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorRGB888toNV21u8(const McvImage* src, const McvImage* dst);

/* 32-bit RGB to YUV; alpha is not looked at. */
QPX_API int32_t mcvColorBGRA8888toI420u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorBGRA8888toNV12u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorBGRA8888toNV21u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorRGBA8888toYUYVu8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorRGBA8888toI420u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorRGBA8888toNV12u8(const McvImage* src, const McvImage* dst);

/* With an arithmetic of its own, of 15 fractional bits:
 *   s = 9798 * r + 19235 * g + 3736 * b, y = min(s >> 15, 255), t = s >> 8
 *   u = clamp(((((b << 7) - t) * 18492) >> 22) + 128)
 *   v = clamp(((((r << 7) - t) * 23372) >> 22) + 128) */
QPX_API int32_t mcvColorRGBA8888toNV21u8(const McvImage* src, const McvImage* dst);

/* With chroma of their own:
 *   BGRA8888   u = clamp(((b - y) >> 1) + 128), v = clamp((((r - y) * 7) >> 3) + 128)
 *   RGBA8888   u = clamp((((b - y) * 18) >> 5) + 128), v = clamp((((r - y) * 23) >> 5) + 128) */
QPX_API int32_t mcvColorBGRA8888toLPI422Hu8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorRGBA8888toLPI422Hu8(const McvImage* src, const McvImage* dst);

/* YUV to 24-bit RGB. */
QPX_API int32_t mcvColorYUYVtoBGR888u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorYUYVtoRGB888u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorI420toBGR888u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorI420toRGB888u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorYV12toBGR888u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorYV12toRGB888u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorNV21toRGB888u8(const McvImage* src, const McvImage* dst);

/* YUV to 32-bit RGB; `alpha` is the fourth byte of every pixel. */
QPX_API int32_t mcvColorYUYVtoRGBA8888u8(const McvImage* src, const McvImage* dst, uint8_t alpha);
QPX_API int32_t mcvColorI420toBGRA8888u8(const McvImage* src, const McvImage* dst, uint8_t alpha);
QPX_API int32_t mcvColorI420toRGBA8888u8(const McvImage* src, const McvImage* dst, uint8_t alpha);
QPX_API int32_t mcvColorNV12toBGRA8888u8(const McvImage* src, const McvImage* dst, uint8_t alpha);
QPX_API int32_t mcvColorNV12toRGBA8888u8(const McvImage* src, const McvImage* dst, uint8_t alpha);
QPX_API int32_t mcvColorNV21toBGRA8888u8(const McvImage* src, const McvImage* dst, uint8_t alpha);
QPX_API int32_t mcvColorLPI422HtoBGRA8888u8(const McvImage* src, const McvImage* dst,
                                            uint8_t alpha);
QPX_API int32_t mcvColorLPI422HtoRGBA8888u8(const McvImage* src, const McvImage* dst,
                                            uint8_t alpha);

/* Rounded once for each channel, r = clamp((32 * y + 45 * v + 16) >> 5),
 * g = clamp((32 * y - 11 * u - 23 * v + 16) >> 5), b = clamp((32 * y + 57 * u + 16) >> 5). */
QPX_API int32_t mcvColorNV21toBGR888u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorNV21toRGBA8888u8(const McvImage* src, const McvImage* dst, uint8_t alpha);

/* The unrounded arithmetic, with red and blue clamped crosswise: red is 0 where blue's sum is
 * negative, else 255 where its own is above; blue likewise by red's. A negative sum that is not
 * caught so keeps its low eight bits. Not reached by mcvColorCvt. */
QPX_API int32_t mcvColorNV21ToRGBA8888u8_ARMv7a(const McvImage* src, const McvImage* dst,
                                                uint8_t alpha);

/* Planar and semi-planar YUV to packed YUYV. */
QPX_API int32_t mcvColorI420toYUYVu8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorI422VtoYUYVu8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorI422HtoYUYVu8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorI444toYUYVu8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorNV12toYUYVu8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorNV21toYUYVu8(const McvImage* src, const McvImage* dst);

/* Packed YUYV to planes. Each pair is the same conversion twice; mcvColorCvt takes the second. */
QPX_API int32_t mcvColorYUYVtoI420u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorYUYVtoI420u8_2(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorYUYVtoNV12u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorYUYVtoNV12u8_v2(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorYUYVtoNV21u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorYUYVtoNV21u8_v2(const McvImage* src, const McvImage* dst);

/* To I420. */
QPX_API int32_t mcvColorI422VtoI420u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorI422HtoI420u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorI444toI420u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorNV12toI420u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorNV21toI420u8(const McvImage* src, const McvImage* dst);

/* To NV12. */
QPX_API int32_t mcvColorI422VtoNV12u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorI422HtoNV12u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorI444toNV12u8(const McvImage* src, const McvImage* dst);

/* To NV21. NV12 may become NV21 in its own planes. */
QPX_API int32_t mcvColorYUVtoNV21u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorI420toNV21u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorI422VtoNV21u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorI422HtoNV21u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorI444toNV21u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorNV12toNV21u8(const McvImage* src, const McvImage* dst);

/* The same conversion twice; mcvColorCvt takes the second. */
QPX_API int32_t mcvColorYV12toNV21u8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorYV12toNV21u8_2(const McvImage* src, const McvImage* dst);

/* To LPI422H. */
QPX_API int32_t mcvColorI422VtoLPI422Hu8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorI422HtoLPI422Hu8(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorI444toLPI422Hu8(const McvImage* src, const McvImage* dst);

/* To packed YUV of three bytes a pixel. */
QPX_API int32_t mcvColorNV21toYUVu8(const McvImage* src, const McvImage* dst);

/* Between NV21 and NV41. Luma is copied as it lies, pitch * height bytes where both images have the
 * same pitch, and left alone where both have the same plane.
 *
 * To NV41, a sample is the rounded mean of four, two neighbouring columns on two neighbouring rows:
 * (a + b + c + d + 2) >> 2. There are as many as a quarter of width and height, rounded down.
 *
 * To NV21, samples keep their values at even places; between two stands (a + b + 1) >> 1 and in the
 * middle of four (a + b + c + d + 2) >> 2. The last column and the last row of the source are
 * repeated. An image that is narrower or lower than 4 has no chroma to take, and none is written.
 *
 * Each direction is the same conversion twice; mcvColorCvt takes the second. */
QPX_API int32_t mcvColorNV21toNV41(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorNV21toNV41_2(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorNV41toNV21(const McvImage* src, const McvImage* dst);
QPX_API int32_t mcvColorNV41toNV21_2(const McvImage* src, const McvImage* dst);

/* To hue, saturation and lightness, three bytes a pixel in this order. Not reached by mcvColorCvt.
 *
 * Lightness is the mean of the largest and the smallest channel, rounded up. Hue runs from 0 (red)
 * through 85 (green) and 170 (blue); a grey has hue 170 and saturation 0. Reds that lean to blue
 * have hue 0.
 *
 * `src` is one image of `height` rows, `srcPitch` bytes apart; `dst` has a row of `width` * 3 bytes
 * every `dstPitch` bytes. I420 is one block: behind `height` rows of luma stand U and then V, each
 * of height / 2 rows (rounded down), srcPitch / 2 bytes apart. Its rows are taken two at a time and
 * so are its columns: the last of an odd number is not written. 5-6-5 is widened by repeating the
 * top bits of each field.
 *
 * Return 0; -1 for a null pointer; -2 for a width or height below 3. */
QPX_API int32_t mcvColorBGR888toHSL888u8(const uint8_t* src, uint8_t* dst, int32_t height,
                                         int32_t width, int32_t srcPitch, int32_t dstPitch);
QPX_API int32_t mcvColorBGR565toHSL888u8(const uint8_t* src, uint8_t* dst, int32_t height,
                                         int32_t width, int32_t srcPitch, int32_t dstPitch);
QPX_API int32_t mcvColorRGB565toHSL888u8(const uint8_t* src, uint8_t* dst, int32_t height,
                                         int32_t width, int32_t srcPitch, int32_t dstPitch);
QPX_API int32_t mcvColorI420toHSL888u8(const uint8_t* src, uint8_t* dst, int32_t height,
                                       int32_t width, int32_t srcPitch, int32_t dstPitch);

QPX_END_DECLS

#endif /* QPX_IMAGE_CONVERT_H_ */
