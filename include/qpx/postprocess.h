/* The post process: copies a rectangle of one image into a rectangle of another and changes format,
 * size, orientation, brightness, contrast and saturation on the way, in one pass.
 *
 * A context is made once for a pair of formats and sizes and used for any number of calls:
 *
 *   PostProcessImage from = {.format = QPX_FORMAT_NV21, .width = 1920, .height = 1080};
 *   PostProcessImage to = {.format = QPX_FORMAT_BGRA32, .width = 540, .height = 960};
 *   PostProcessOption option = {
 *       .resampleMode = 2,
 *       .orientation = 3,
 *       .alignMode = 256,
 *       .alpha = 255,
 *   };
 *   PostProcessContext* context = NULL;
 *   if (MPPCreate(&from, &to, &option, &context) == QPX_OK) {
 *     MPProcess(context, nv21Planes, NULL, nv21Pitches, bgraPlanes, bgraPitches);
 *     MPPDestroy(context);
 *   }
 *
 * Formats: all RGB codes of types.h, palettes of 1, 4 and 8 bits (as a source), grey, and every
 * planar, packed and semi-planar YUV code. Planes lie as in MBitmap: the second and the third plane
 * of NV21 and NV12 are both addresses in the one plane of pairs, of the first U and of the first V.
 * Rows of packed 4:2:2 have whole groups of two pixels.
 *
 * A context holds only constant state: any number of threads may call MPPAlign, MPProcess and
 * MPProcessEx with one context, MPProcess on disjoint rectangles that share no chroma sample. */
#ifndef QPX_POSTPROCESS_H_
#define QPX_POSTPROCESS_H_

#include <qpx/convert_record.h>
#include <qpx/types.h>

QPX_BEGIN_DECLS

/* One side: the rectangle that is read or written, whose origin is in the option. */
typedef struct PostProcessImage {
  uint32_t format; /* a format code */
  uint32_t width;  /* of the rectangle, in pixels */
  uint32_t height;
  int32_t pitch[3];       /* not read: MPProcess takes pitches with the planes */
  const uint8_t* palette; /* read with palette formats alone: 2, 16 or 256 entries of four bytes, B,
                             G, R and one unused. It must live as long as the context. */
} PostProcessImage;

/* What is wanted. 72 bytes, the words of ConvParams under the names of this service. */
typedef struct PostProcessOption {
  uint32_t resampleMode; /* 2 bilinear where the scale is not exactly 1, anything else nearest */
  uint32_t orientation; /* bit 0 exchanges X and Y, bit 1 mirrors left-right, bit 2 top-bottom: 3 is
                           a quarter turn clockwise, 6 a half turn, 5 a quarter turn back */
  uint32_t filterLevel; /* 4: turned pictures are written in bands of 64 rows in place of 32 */
  uint32_t alignMode;   /* 1 requests of any shape; 2 and 3 requests that are multiples of 2 and 4,
                           which block kernels take; 4 the same as 3 but for resampled I420; 256
                           requests of any shape: the aligned middle goes through the block kernels
                           where these make other bytes than the whole, else the request is done in
                           one piece. Anything else counts as 1. Bytes are the same in all modes, but
                           that the widest kernels for full-range BT.601 are off by up to three
                           levels, by some more where they resample, and that dither, and chroma of
                           YUYV from odd columns, follow the pieces in which a request is done. */
  uint32_t fitMode; /* keeps the aspect ratio: bit 0 shrinks the destination rectangle, bit 1 crops
                       the source rectangle */
  uint32_t palette; /* non-zero dithers destinations of 16-bit RGB, others not: YUV sources always,
                       RGB sources where a specialised frame takes them */
  int32_t brightness; /* -128..128, 0 neutral, farther ones are clamped; so with the next two. They
                         act on YUV sources. Grey has brightness alone. */
  int32_t contrast;
  int32_t saturation;
  int32_t srcLeft; /* origins of the two rectangles, 0 and up */
  int32_t srcTop;
  int32_t dstLeft;
  int32_t dstTop;
  int32_t clipLeft; /* source pixels that edges repeat; all zero: those of the source rectangle. No
                       limit to what is read: positions are compared with the number of clipTop's
                       row, so that rows above it are read as they are, where it is not 0. */
  int32_t clipTop;
  int32_t clipRight;
  int32_t clipBottom;
  uint32_t alpha; /* fourth byte of 32-bit destinations of a YUV or grey source; capped at 255 */
} PostProcessOption;

/* What one conversion of a context needs. */
typedef struct PostProcessStage {
  ConvRecord record;
} PostProcessStage;

/* Made by MPPCreate. Only read by anyone else. */
typedef struct PostProcessContext {
  uint32_t alignMode;         /* as asked for */
  PostProcessStage* stage[3]; /* of align levels 1, 2 and 3 with alignMode 256, otherwise the first
                                 alone */
} PostProcessContext;

/* Makes a context; *out is null after a failure. Returns 0; 2 for a null argument, an empty side,
 * an origin below 0, a rectangle that ends behind INT32_MAX, an empty clip rectangle or one that
 * begins below 0, a palette format without a palette, scales of 65536 and more, or a fit that
 * leaves nothing; 3 for a format that is not known, or a palette as the destination; 4 for no
 * memory. */
QPX_API int32_t MPPCreate(const PostProcessImage* srcImage, const PostProcessImage* dstImage,
                          const PostProcessOption* option, PostProcessContext** out);

/* Maps a rectangle between the images; both are in pixels from the planes' origin. The rectangle
 * that is all zero is computed from the other: dstRect, what pixels of srcRect come to; or srcRect,
 * every pixel that is read for dstRect (and up to two more). Both are cut to their images first; an
 * empty cut gives an empty result, which is all zero. Returns 0, or 2 for a null argument, or when
 * both or none are all zero. */
QPX_API int32_t MPPAlign(const PostProcessContext* context, MRect* srcRect, MRect* dstRect);

/* Converts. Planes are those of the whole images, three each (of one-plane formats only the first
 * counts), and pitches may be negative. `clipRect` is the part of the destination to write, in its
 * pixels, cut to the destination rectangle; null is all of it. Source and destination must not
 * overlap. Bilinear resampling may read the row above the source rectangle, unless that begins at
 * row 0. Returns 0, or 2 for null arguments or planes. */
QPX_API int32_t MPProcess(const PostProcessContext* context, const uint8_t* const* srcPlanes,
                          const MRect* clipRect, const int32_t* srcPitches,
                          uint8_t* const* dstPlanes, const int32_t* dstPitches);

/* As MPProcess, with a part of the source alone: srcPlanes are addresses of the source pixel at the
 * left and top of `srcRect`, of which nothing else counts. MPPAlign tells what a clip needs.
 * Returns 0, or 2 for null arguments or planes, or a srcRect that begins below 0. */
QPX_API int32_t MPProcessEx(const PostProcessContext* context, const uint8_t* const* srcPlanes,
                            const MRect* srcRect, const MRect* clipRect, const int32_t* srcPitches,
                            uint8_t* const* dstPlanes, const int32_t* dstPitches);

/* Frees a context; null is allowed. Returns 0. */
QPX_API int32_t MPPDestroy(PostProcessContext* context);

/* Returns 0: there is no version record. */
QPX_API int32_t PostProcessGetVersionInfo(void);

QPX_END_DECLS

#endif /* QPX_POSTPROCESS_H_ */
