/* What a conversion between two images is described by: formats, parameters, and the record that
 * everything about one conversion is worked out into before the first pixel moves.
 *
 * A kernel never decides anything: the record says what is wanted. It is built once, by MPPCreate,
 * and read-only from then on, so that any number of threads may convert strips of it. Positions and
 * steps are 16.16 fixed point where nothing else is said.
 *
 * The frame is the destination rectangle as the source lies: mirrored back, and with X and Y
 * exchanged where the conversion exchanges them. Its X runs along the source's X. */
#ifndef QPX_CONVERT_RECORD_H_
#define QPX_CONVERT_RECORD_H_

#include <qpx/types.h>

QPX_BEGIN_DECLS

/* A format code, unpacked. Classes:
 *   256                     RGB by masks, of 16, 24 or 32 bits, or palette of 1, 4 or 8 bits
 *   512, 513, 514, 515      packed 4:2:2: YVYU, YUYV, UYVY, VYUY
 *   528, 529, 530, 531      the same, the two lumas of a group exchanged
 *   576 ... 581             packed 4:4:4: YUV, YVU, UVY, VUY, UYV, VYU
 *   640                     grey
 *   768 ... 772             planar, second plane V: any subsampling, 2/2, 1/2, 2/1, 1/1
 *   1024 ... 1028           planar, second plane U: any subsampling, I420, 1/2, 2/1, I444
 *   0x70000002, 0x70000003  NV21, NV12; 0x70000004, 0x70000005 the same at 2/1
 *   0x70000008, 0x70000009  packed 4:2:2 of 16 bits a pixel, packed 4:4:4 of 32 */
typedef struct ConvFormat {
  uint32_t klass;
  uint32_t width; /* of the rectangle, after fitting; of the destination as the picture lies */
  uint32_t height;
  uint32_t colour; /* of YUV and grey 0x10001 BT.601 video range, 0x10002 BT.601 full range,
                      0x20001 BT.709 video range, 0x20002 BT.709 full range; where the range alone
                      counts, bit 0 (video) and bit 1 (full) are tested by themselves. Bits a pixel
                      of an RGB or palette format */
  uint32_t maskR;  /* field masks of an RGB pixel; of a YUV format how many columns (maskR) and
                      rows (maskG) of luma share a chroma sample */
  uint32_t maskG;
  uint32_t maskB;
  const uint8_t* palette; /* four bytes an entry (B, G, R and one unused); null without a palette */
} ConvFormat;

/* What the caller wants, but for sizes and formats of the pictures. 72 bytes. */
typedef struct ConvParams {
  uint32_t interp; /* 2 bilinear, anything else nearest */
  uint32_t orient; /* bit 0 exchange of X and Y, bit 1 mirror left-right, bit 2 mirror top-bottom */
  uint32_t blockHint; /* 4: strips of 64 rows in place of 32 */
  uint32_t blockMode; /* 1 any rectangle, 2 blocks of 2x2, 3 blocks of 4x4, 4 bilinear blocks of
                         4x4 of I420; anything else counts as 1 */
  uint32_t fit;       /* bit 0 shrink the destination rectangle, bit 1 crop the source rectangle, to
                         keep the aspect ratio */
  uint32_t dither;    /* non-zero: error-carrying dither on 16-bit RGB destinations */
  int32_t brightness; /* -128..128, 0 neutral; so are the next two */
  int32_t contrast;
  int32_t saturation;
  int32_t srcX; /* origins of the two rectangles */
  int32_t srcY;
  int32_t dstX;
  int32_t dstY;
  int32_t clipLeft; /* clip rectangle in source pixels; all zero: the source rectangle */
  int32_t clipTop;
  int32_t clipRight;
  int32_t clipBottom;
  uint32_t alpha; /* fourth byte of 32-bit destinations, 0..255 */
} ConvParams;

/* Where the samples of a format stand. */
typedef struct ConvPlanes {
  uint32_t klass;
  int32_t step[3];      /* bytes between neighbouring samples of Y, U and V (or of pixels) */
  uint32_t interleaved; /* the two chroma planes are one plane of pairs */
  uint32_t planar;
  uint32_t count;    /* 1, or 3: semi-planar formats count U and V apart */
  int32_t offset[3]; /* byte offsets of Y, U and V from their plane's start */
  uint32_t bitsPerPixel;
} ConvPlanes;

/* A conversion, worked out. */
typedef struct ConvRecord {
  uint32_t tableBytes;
  void* tables;    /* the one block of look-up tables, or null where none is needed: owned by the
                      context, shared by its stages; its layout is private to the library */
  uint32_t uIndex; /* of the three tables from YUV to RGB in it, in words of 32 bits */
  uint32_t vIndex;
  uint32_t yIndex;
  uint32_t useLut;    /* a colour table from YUV to YUV is in use */
  uint32_t convKind;  /* 0 YUV to YUV, 1 YUV to RGB, 2 RGB to RGB, 3 RGB to YUV */
  uint32_t isHalf;    /* both steps are exactly 0.5 */
  uint32_t isUnit;    /* both steps are exactly 1 */
  uint32_t bilinearY; /* interpolate this plane; chroma of a YUV source never is */
  uint32_t bilinearU;
  uint32_t bilinearV;
  uint32_t blockMode; /* the working copy; params.blockMode is the caller's */
  int32_t srcSubX[3]; /* subsampling of the source's planes */
  int32_t srcSubY[3];
  int32_t srcBitsR; /* fields of an RGB source: bits, and the lowest bit's position */
  int32_t srcBitsG;
  int32_t srcBitsB;
  int32_t srcPosR;
  int32_t srcPosG;
  int32_t srcPosB;
  int32_t dstSubX[3]; /* of the destination, along the frame: exchanged with dstSubY by swapXY */
  int32_t dstSubY[3];
  int32_t dstBitsR;
  int32_t dstBitsG;
  int32_t dstBitsB;
  int32_t dstPosR;
  int32_t dstPosG;
  int32_t dstPosB;
  ConvFormat dst;
  ConvFormat src;
  ConvParams params;
  ConvPlanes srcPlane;
  ConvPlanes dstPlane;
  int32_t dstStep[3]; /* bytes from a destination pixel to its right-hand neighbour, per plane;
                         negated where the picture is mirrored left-right */
  uint32_t swapXY;
  uint32_t mirrorX;
  uint32_t mirrorY;
  uint32_t stepX; /* source pixels a destination pixel */
  uint32_t stepY;
  uint32_t invStepX;
  uint32_t invStepY;
  int32_t dstOrgX; /* origins of the rectangles after fitting; the destination's along the frame:
                      exchanged by swapXY */
  int32_t dstOrgY;
  int32_t srcOrgX;
  int32_t srcOrgY;
  int32_t clipL; /* limits of the source */
  int32_t clipT;
  int32_t clipR;
  int32_t clipB;
  int32_t validX0; /* frame columns and rows whose source lies inside the limits: columns before
                      validX0 repeat column clipL, those from validX1 - 1 on column clipR - 1 */
  int32_t validY0;
  int32_t validX1;
  int32_t validY1;
  uint32_t dither;
  uint32_t alpha;
} ConvRecord;

QPX_END_DECLS

#endif /* QPX_CONVERT_RECORD_H_ */
