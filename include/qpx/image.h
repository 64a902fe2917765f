/* Image records: what a format code says, allocation of planes, colour matrices, rectangles.
 *
 * All functions are reentrant; two threads may work on different records at the same time. Memory
 * comes from MMemAlloc (kesbase.h). */
#ifndef QPX_IMAGE_H_
#define QPX_IMAGE_H_

#include <qpx/types.h>

QPX_BEGIN_DECLS

/* What the engine derives from a format code. */
typedef struct PixInfo {
  uint32_t format;           /* the code */
  uint32_t family;           /* 1 packed RGB of 16, 24 or 32 bits; 2, 4, 8, 16 planar YUV by
                                colorimetry 0 to 3; 32 grey of 8 bits; 48 NV21; 49 NV12; 66 YUYV or
                                UYVY */
  int32_t bytesPerSample[3]; /* step between neighbouring samples of plane i */
  int32_t xSampling[3];      /* horizontal divisor of plane i */
  int32_t ySampling[3];      /* vertical divisor of plane i */
  int32_t planes;            /* planes that rows are walked in: 1 or 3 */
  int32_t bitsPerPixel;      /* 8, 16, 24, 32, or 0 where the code names no size */
  uint32_t maskSize[3];      /* packed RGB: bits in the red, green and blue field */
  uint32_t maskPos[3];       /* packed RGB: lowest bit of each field */
  uint32_t mask[3];          /* packed RGB: the fields of a pixel read as a little-endian number */
} PixInfo;

/* Image record of the scene corrections, with format numbers of its own. */
typedef struct QEMOOFFSCREEN {
  uint32_t format;
  int32_t width;
  int32_t height;
  uint8_t* plane[4];
  int32_t pitch[4];
} QEMOOFFSCREEN;

/* Fills `info` from a format code. NV21 and NV12 are known here only by the codes 0x70020011 and
 * 0x70030011 that the engine rewrites them to. Returns 0, or 2 for a null record or a code without
 * a family. */
QPX_API int32_t mbf_GetPixInfo(uint32_t format, PixInfo* info);

/* First step of mbf_GetPixInfo: sets bitsPerPixel and family from info->format. Returns 0 or 2. */
QPX_API int32_t mbf_GetPixFormat(PixInfo* info);

/* Second step for packed RGB (family 1): sample steps and the three field masks. Returns 0, or 2
 * for any other family. */
QPX_API int32_t mbf_GetRGBPixelInfo(PixInfo* info);

/* Second step for YUV: sample steps and chroma divisors. Returns 0, or 2 for a family without
 * chroma. */
QPX_API int32_t mbf_GetYUVPixelInfo(PixInfo* info);

/* Number of set bits, and index of the lowest set bit (0 for an empty mask). */
QPX_API int32_t mbf_GetMaskSize(uint32_t mask);
QPX_API int32_t mbf_GetMaskPos(uint32_t mask);
QPX_API int32_t MGetMaskSize(uint32_t mask);
QPX_API int32_t MGetMaskPos(uint32_t mask);

/* Colour matrices for a format. `record` points to a record whose first word is a format code (an
 * MBitmap or a PixInfo). On return *forward turns R, G, B into Y, U, V and *inverse turns them
 * back; each is 3 rows of three coefficients and an offset in constant memory of the library. Bits
 * 12 and 13 of the code choose: 0 BT.601 video range, 1 BT.601 full range, 2 BT.709 video range, 3
 * BT.709 full range (whose forward rows carry no chroma offset while the inverse takes one off: the
 * pair is not inverse to itself). RGB and palette codes get the identity. Returns 0; 2 for a null
 * argument or a YUV layout other than plain planar; 3 for other models. In both refusals but that
 * of a null argument the pair is full-range BT.601. */
QPX_API int32_t mbf_GetMatrix(const float** forward, const float** inverse, const void* record);

/* Allocators. format, width and height are set by the caller; a pitch of 0 is chosen by the
 * allocator (in planar and semi-planar formats the caller's pitches count only when all three are
 * set). On success a block already in plane[0] is freed and replaced, and the plane pointers are
 * set. Free with MBitmapFree. Return 0; 2 for a null record or a caller's pitch too small for a
 * row; 3 for a width or height below 1 or an unknown code; 4 for no memory or planes of 2 GiB and
 * more. After a failure the old block is still in the record, though a chosen pitch may be stored.
 *
 * Planar formats pad the height to a multiple of 16, so that chroma starts at pitch[0] * padded
 * height.
 *
 * MBitmapAlloc fills with 0. MBitmapAllocEx also stores the bytes of the planes in *size (may be
 * null), allocates 16 more, fills with 0x77, and knows more codes. MBitmapAlloc2 is MBitmapAllocEx
 * with fill 0 and no size. UTILS_MdBitmapAlloc is MBitmapAlloc2 without the 16 spare bytes and with
 * chroma of a quarter height (a vertical divisor of 4) too. */
QPX_API int32_t MBitmapAlloc(MBitmap* bitmap);
QPX_API int32_t MBitmapAllocEx(MBitmap* bitmap, int32_t* size);
QPX_API int32_t MBitmapAlloc2(MBitmap* bitmap);
QPX_API int32_t UTILS_MdBitmapAlloc(MBitmap* bitmap);

/* Free plane[0], if set, and clear the whole record. Return 0, or 2 for a null record. */
QPX_API int32_t MBitmapFree(MBitmap* bitmap);
QPX_API int32_t MBitmapFree2(MBitmap* bitmap);

/* Bytes of a packed RGB or grey pixel; 0 for any other code. */
QPX_API int32_t UTIL_GetPixelBytesEX(uint32_t format);

/* A record and its zeroed pixels in one call, rows padded to 4 bytes. Format 0 gives a record of
 * the given size, 0 allowed, with pitch 0 and no plane. Returns null for no memory, a size below 1
 * or any other format without a pixel size. Free with UTIL_MBitmapFree, which takes null too. */
QPX_API MBitmap* UTIL_MBitmapCreate(int32_t width, int32_t height, uint32_t format);
QPX_API void UTIL_MBitmapFree(MBitmap* bitmap);

/* Writes `value` into the fourth byte of every pixel of a 4-byte format. Returns 0; 2 for a null
 * record or plane; 3 for any other format, with nothing written. */
QPX_API int32_t MBitmapSetAlpha(MBitmap* bitmap, uint8_t value);

/* Translates an image record to the off-screen record (planes are shared, not copied). Returns 0; 2
 * for a null argument; 3 for a format without an off-screen number. */
QPX_API int32_t BuildQEMOOFFSCREEN(const MBitmap* bitmap, QEMOOFFSCREEN* offscreen);

/* Rectangles, in place; a null argument does nothing. MSwapRect transposes; RectCopy copies;
 * FlipUpDownRect and MFlipLeftRightRect mirror `rect` inside `outer`, down and across. */
QPX_API void MSwapRect(MRect* rect);
QPX_API void RectCopy(MRect* to, const MRect* from);
QPX_API void FlipUpDownRect(const MRect* outer, MRect* rect);
QPX_API void MFlipLeftRightRect(const MRect* outer, MRect* rect);

QPX_END_DECLS

#endif /* QPX_IMAGE_H_ */
