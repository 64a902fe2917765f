/* PNG files into image records: one call for a file in memory (QPX_DecodePNG), a handle over a
 * stream with a bitmap as the target (QPX_png_*), and the decoder below both, which also reads at a
 * lower size (PNG_*).
 *
 * Samples are as in the file: 16-bit samples are cut to 8 bits; palettes, grey and transparency are
 * not expanded, so that a palette file gives its indices. Neither side of a picture may exceed
 * 65535 pixels, and no picture 2^28 pixels.
 *
 * A handle belongs to one thread at a time; distinct handles are independent. Memory, that of
 * libpng included, comes from MMemAlloc (kesbase.h). Streams stay the caller's and must outlive the
 * handle. */
#ifndef QPX_PNG_H_
#define QPX_PNG_H_

#include <qpx/streams.h>
#include <qpx/types.h>

QPX_BEGIN_DECLS

/* What these calls return beside the codes of QPXResult. */
#define QPX_PNG_BROKEN 1         /* PNG_*: libpng refused the file, or there are no more rows */
#define QPX_PNG_SEEK_FAILED 4101 /* PNG_GetInfoFromFile: the stream can not be positioned */
#define QPX_PNG_READ_FAILED 4102 /* PNG_GetInfoFromFile: the stream ended early */
#define QPX_PNG_REFUSED 34194    /* QPX_png_*: a bad argument, or a depth without a pixel format */

/* The property that QPX_png_get_property knows. */
#define QPX_PNG_PROPERTY_INFO 1

/* A decoder over a stream. */
typedef struct PngHandle PngHandle;

/* A decoder whose target is an image record. */
typedef struct QPXPng QPXPng;

/* The picture as it will be delivered, at the size that PNG_DecodeSetDimension granted. */
typedef struct PngInfo {
  uint32_t height;
  uint32_t width;
  uint32_t bitsPerPixel; /* 1, 2, 4, 8, 16 (grey with alpha), 24 or 32 */
  uint32_t rowBytes;     /* bytes of a row, without padding */
  uint32_t format;       /* by depth: 8 QPX_FORMAT_GREY8, 24 QPX_FORMAT_RGB24, 32 QPX_FORMAT_RGBA32,
                            else 0 */
} PngInfo;

/* Header of a device-independent bitmap. */
typedef struct PngInfoHeader {
  uint32_t size; /* of this record: 40 */
  int32_t width;
  int32_t height;
  uint16_t planes; /* 1 */
  uint16_t bitsPerPixel;
  uint32_t compression; /* 0 */
  uint32_t imageSize;   /* bytes, with rows padded to 4 */
  uint32_t xResolution; /* as the file has them, in its unit; 0 if it has none */
  uint32_t yResolution;
  uint32_t colorsUsed;      /* 0 */
  uint32_t colorsImportant; /* 0 */
} PngInfoHeader;

/* Decodes a PNG file of `size` bytes into a new record, with rows padded to 4 bytes. Free it with
 * MBitmapFree on the record and then MMemFree of the record (or UTIL_MBitmapFree).
 *
 * A broken file is no error: what could be decoded is in the record and the rest is zero; a file
 * whose depth has no pixel format, or that is no PNG at all, gives a record of format 0 with pitch
 * 0 and no plane. Of an interlaced file the first pass is decoded. Returns 0; -1 for a null
 * `bitmapOut`; -2 if the record could not be made, with *bitmapOut untouched. */
QPX_API int32_t QPX_DecodePNG(const void* data, int32_t size, MBitmap** bitmapOut);

/* Opens a decoder at the stream's position. Samples are in the file's order R, G, B. Returns 0;
 * 34194 for a null argument; -1 for no memory; or the code of PNG_DecodeInit. *handleOut is written
 * on success only. */
QPX_API int32_t QPX_png_create(MStreamHandle* stream, QPXPng** handleOut);

/* Frees the decoder. Returns 0, or 34194 for null. */
QPX_API int32_t QPX_png_destroy(QPXPng* handle);

/* Fills *info; `property` is QPX_PNG_PROPERTY_INFO. Returns 0; 34194 for a null argument or any
 * other property, with nothing written, and for a depth without a pixel format, with `format` 0 and
 * the rest filled. */
QPX_API int32_t QPX_png_get_property(QPXPng* handle, int32_t property, PngInfo* info);

/* Reads the next bitmap->height rows of the file into plane[0], from the top, pitch[0] bytes apart
 * (a negative pitch goes upwards). An interlaced file comes in seven passes of all its rows: seven
 * calls with the same bitmap complete it.
 *
 * Returns 0, for a height below 1 too; 34194 for a null handle, bitmap or plane[0], or when a row
 * of the file is longer than the pitch or, in packed RGB and grey, than a row of the bitmap, with
 * nothing written; or the code of PNG_DecodeScanLines, with the rows before the failure in place: 1
 * also when the bitmap is higher than the file. */
QPX_API int32_t QPX_png_decode(QPXPng* handle, MBitmap* bitmap);

/* Opens a decoder at the stream's position and reads up to the picture's data. Returns 0; 1 for a
 * broken or too large file; 2 for a null argument; 3 if there is no PNG signature; 4 for no memory.
 * *handleOut is written on success only. */
QPX_API int32_t PNG_DecodeInit(MStreamHandle* stream, PngHandle** handleOut);

/* Frees the decoder; the stream stays open. Returns 0, or 2 for null. */
QPX_API int32_t PNG_DecodeUninit(PngHandle* handle);

/* Fills *info. Returns 0, also when the depth has no pixel format; 2 for a null argument. */
QPX_API int32_t PNG_DecodeGetPngInfo(PngHandle* handle, PngInfo* info);

/* Fills *header. Returns 0, or 2 for a null argument. */
QPX_API int32_t PNG_DecodeGetInfoHeader(PngHandle* handle, PngInfoHeader* header);

/* Stores the palette, four bytes an entry: R, G, B, A after PNG_DecodeSetRGBInvert, else B, G, R,
 * A. *sizeOut is its size in bytes, 0 without a palette; with a null `table` only the size is
 * given. Returns 0; 2 for a null handle or sizeOut. */
QPX_API int32_t PNG_DecodeGetColorTab(PngHandle* handle, uint8_t* table, int32_t* sizeOut);

/* Keeps samples in the file's order R, G, B; without it they come as B, G, R. Before the first row:
 * later it changes the order of the palette only. Returns 0, or 2 for null. */
QPX_API int32_t PNG_DecodeSetRGBInvert(PngHandle* handle);

/* Asks for a picture of at most the given size, before the first row. It is never enlarged and
 * keeps its proportions; the size granted is written back. Does nothing when either size is 0.
 * Returns 0; 2 for a null argument, a negative size or when rows have been read; 4 for no memory.
 * After a failure everything is as it was. */
QPX_API int32_t PNG_DecodeSetDimension(PngHandle* handle, int32_t* widthInOut,
                                       int32_t* heightInOut);

/* Reads the next `count` rows into rows[0] ... rows[count - 1], each with room for
 * PngInfo.rowBytes. *lineOut is the number of rows of the current pass that have been read so far,
 * *doneOut the number of rows that this call has read.
 *
 * An interlaced file comes in seven passes of all its rows; each pass puts its pixels beside those
 * that the earlier ones left in the rows. At a lower size the rows must be zero before the first
 * pass: a sample of value 0 is not stored, and pixels of 1, 2 and 4 bits are added by OR (16 bits a
 * pixel are always stored).
 *
 * Returns 0; 1 for a broken file or behind the last row of the last pass; 2 for a null argument or
 * a negative count, with nothing read; 4 for no memory. After a broken file all further calls
 * return 1. */
QPX_API int32_t PNG_DecodeScanLines(PngHandle* handle, uint8_t* const* rows, int32_t count,
                                    int32_t* lineOut, int32_t* doneOut);

/* Reads size and depth from the first bytes of a stream, as the file claims them, and goes back to
 * its start. *bitsOut counts 16-bit samples as 8 bits. Returns 0; 2 for a null argument; 3 for
 * fewer than 26 bytes or another signature; 4101 for a failed seek; 4102 for a short read. The
 * outputs are written on success only. */
QPX_API int32_t PNG_GetInfoFromFile(MStreamHandle* stream, int32_t* widthOut, int32_t* heightOut,
                                    int32_t* bitsOut);

QPX_END_DECLS

#endif /* QPX_PNG_H_ */
