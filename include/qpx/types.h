/* The records and numbers that every call of the library shares: result codes, pixel format codes,
 * the image record, rectangles and plane sets. Everything here is plain C data. */
#ifndef QPX_TYPES_H_
#define QPX_TYPES_H_

#include <stdint.h>

#include <qpx/export.h>

/* What every call returns. Families with codes of their own say so in their header. */
typedef enum QPXResult {
  QPX_OK = 0,          /* done */
  QPX_BAD_PARAM = 2,   /* an argument is null, out of range or inconsistent; nothing was written */
  QPX_UNSUPPORTED = 3, /* a format, effect or pair of both that the library does not serve */
  QPX_NO_MEMORY = 4    /* an allocation failed */
} QPXResult;

/* Pixel format codes. A code is read by nibbles from the top: the colour model (1 RGB, 2 RGB
 * variant, 3 RGB with alpha, 4 palette, 5 YUV, 6 grey, 7 semi-planar and other YUV), the storage
 * size (1, 3, 4, 5, 6, 7 for 1, 4, 8, 16, 24, 32 bits), then flags and, for RGB, the width of each
 * field minus one. Bit 12 puts the first RGB field into the lowest bits; for YUV and grey bits 12
 * and 13 choose the colorimetry. The names of 24 and 32-bit codes give the order of bytes in
 * memory.
 *
 * For planar YUV the low byte holds the chroma divisors minus one: across in the high nibble, down
 * in the low one.
 *
 * No service takes all of them; each header says what it does take. docs/formats.md of the sources
 * shows where the bytes of every format lie, and the codes that have no name here. */
typedef enum QPXFormat {
  QPX_FORMAT_BGR24 = 0x16000777,
  QPX_FORMAT_RGB24 = 0x16001777,
  QPX_FORMAT_BGRA32 = 0x37000777,
  QPX_FORMAT_RGBA32 = 0x37001777,
  QPX_FORMAT_BGRX32 = 0x17000777, /* fourth byte without meaning */
  QPX_FORMAT_RGBX32 = 0x17001777, /* fourth byte without meaning */
  QPX_FORMAT_BGR666 = 0x16000555, /* 6 bits a field in 3 bytes, first field on top */
  QPX_FORMAT_RGB666 = 0x16001555, /* 6 bits a field in 3 bytes, first field lowest */
  QPX_FORMAT_RGB565 = 0x15000454, /* red in the top bits */
  QPX_FORMAT_BGR565 = 0x15001454, /* red in the lowest bits */
  QPX_FORMAT_RGB444 = 0x15000333, /* 4 bits a field in 2 bytes, red above green above blue */
  QPX_FORMAT_BGR444 = 0x15001333,
  QPX_FORMAT_RGB555 = 0x15000444, /* 5 bits a field in 2 bytes, red above green above blue */
  QPX_FORMAT_BGR555 = 0x15001444,
  QPX_FORMAT_GREY8 = 0x64000000,    /* one plane, 8 bits */
  QPX_FORMAT_PALETTE1 = 0x41000000, /* indexes of 1 bit, first pixel on top; converted from only */
  QPX_FORMAT_PALETTE4 = 0x43000000, /* indexes of 4 bits, first pixel on top; converted from only */
  QPX_FORMAT_PALETTE8 = 0x44000000, /* indexes of 8 bits; allocated, copied, converted from */
  QPX_FORMAT_YUYV = 0x50000010,     /* packed 4:2:2, bytes Y U Y V */
  QPX_FORMAT_YVYU = 0x50000210,     /* packed 4:2:2, bytes Y V Y U */
  QPX_FORMAT_UYVY = 0x50000410,     /* packed 4:2:2, bytes U Y V Y */
  QPX_FORMAT_VYUY = 0x50000610,     /* packed 4:2:2, bytes V Y U Y */
  QPX_FORMAT_YUV24 = 0x50000000,    /* packed 4:4:4, bytes Y U V */
  QPX_FORMAT_YVU24 = 0x50000200,    /* packed 4:4:4, bytes Y V U */
  QPX_FORMAT_UVY24 = 0x50000400,    /* packed 4:4:4, bytes U V Y */
  QPX_FORMAT_VUY24 = 0x50000600,    /* packed 4:4:4, bytes V U Y */
  QPX_FORMAT_UYV24 = 0x50000500,    /* packed 4:4:4, bytes U Y V; also known as IYU2 */
  QPX_FORMAT_VYU24 = 0x50000700,    /* packed 4:4:4, bytes V Y U */
  QPX_FORMAT_YUVX32 = 0x70000009,   /* packed 4:4:4, bytes Y U V and one without meaning */
  QPX_FORMAT_I420 = 0x50000811,     /* planes Y, U, V; chroma halved both ways */
  QPX_FORMAT_I422 = 0x50000810,     /* planes Y, U, V; chroma halved across */
  QPX_FORMAT_I440 = 0x50000801,     /* planes Y, U, V; chroma halved down */
  QPX_FORMAT_I444 = 0x50000800,     /* planes Y, U, V; chroma at full size */
  QPX_FORMAT_I411 = 0x50000830,     /* planes Y, U, V; chroma at a quarter across */
  QPX_FORMAT_I410 = 0x50000833,     /* planes Y, U, V; chroma at a quarter both ways */
  QPX_FORMAT_YV12 = 0x50000A11,     /* planes Y, V, U; chroma halved both ways */
  QPX_FORMAT_YV16 = 0x50000A10,     /* planes Y, V, U; chroma halved across */
  QPX_FORMAT_YV24 = 0x50000A00,     /* planes Y, V, U; chroma at full size */
  QPX_FORMAT_NV21 = 0x70000002,     /* plane Y, then one plane of V, U pairs at quarter size */
  QPX_FORMAT_NV12 = 0x70000003,     /* plane Y, then one plane of U, V pairs at quarter size */
  QPX_FORMAT_NV61 = 0x70000004,     /* plane Y, then one plane of V, U pairs, halved across alone */
  QPX_FORMAT_NV16 = 0x70000005      /* plane Y, then one plane of U, V pairs, halved across alone */
} QPXFormat;

/* The universal image record. The library never owns pixels that a host put into one. */
typedef struct MBitmap {
  uint32_t format;  /* a pixel format code */
  int32_t width;    /* pixels */
  int32_t height;   /* rows */
  int32_t pitch[3]; /* bytes from one row of plane i to the next; 0 for planes that are not there */
  uint8_t* plane[3]; /* first byte of plane i. In NV21 and NV61 plane[2] is the chroma plane and
                        plane[1] the byte behind it; in NV12 and NV16 the other way round. */
} MBitmap;

/* A rectangle in pixels; right and bottom are exclusive. */
typedef struct MRect {
  int32_t left;
  int32_t top;
  int32_t right;
  int32_t bottom;
} MRect;

/* A place in pixels; it may lie outside the picture. */
typedef struct MPoint {
  int32_t x;
  int32_t y;
} MPoint;

/* Planes as the processing calls take them: no format, no size, and the pointers first. */
typedef struct QPXPlaneSet {
  uint8_t* plane[3]; /* address of the pixel at the (left, top) of the rectangle of the call */
  int32_t pitch[3];  /* bytes from row to row */
} QPXPlaneSet;

#endif /* QPX_TYPES_H_ */
