/* ETC1 textures: compression of 24-bit RGB, decompression, and two operations on compressed images
 * that never decompress them, a crop by blocks and a merge that blends one image over another.
 *
 * A block codes 4 x 4 pixels in 64 bits, as two halves, left and right or (flipped) top and bottom.
 * Each half has a base colour and a table of four brightness offsets; each pixel takes one of the
 * four. Base colours have 5 bits a channel where the second is near the first (differential mode),
 * else 4 (individual mode). The layout is that of OES_compressed_ETC1_RGB8_texture and of the
 * Khronos Data Format standard, "ETC1 compressed texture image formats".
 *
 * A compressed image is an MBitmap of format QPX_FORMAT_ETC1: sides are multiples of 4; plane[0]
 * holds the blocks in raster order, 8 bytes each, as two big-endian words, word 0 first. A row of
 * blocks takes width * 2 bytes, whatever pitch[0] is, and the image width * height / 2. Headers of
 * PKM files are the caller's business.
 *
 * RGB images have their bytes in the order R, G, B, whether bit 12 of their format is set or not;
 * of an image in B, G, R order the channels would be weighed wrongly, though nothing else suffers.
 *
 * Errors between colours are perceptual: 19 * dR^2 + 38 * dG^2 + 7 * dB^2. Searches compare them
 * divided by 64 and cut, pixel by pixel, and keep what they found first where two are equal: tables
 * in the order 0 ... 7, offsets in ascending order.
 *
 * All functions are reentrant. A refused call writes nothing. */
#ifndef QPX_ETC_H_
#define QPX_ETC_H_

#include <qpx/types.h>

QPX_BEGIN_DECLS

#define QPX_FORMAT_ETC1 0x70010000u

typedef enum QPXEtcQuality {
  QPX_ETC_FAST = 0, /* mean colours, left and right halves only */
  QPX_ETC_SLOW = 1  /* both ways to halve a block and two ways to choose base colours */
} QPXEtcQuality;

/* Whole images. */

/* Compresses `src`, 24-bit RGB with sides that are multiples of 4, into the block at
 * dst->plane[0], which has room for width * height / 2 bytes. On success `dst` gets format
 * QPX_FORMAT_ETC1, width and height of `src`, and the bytes of the whole image in pitch[0].
 * `quality` is a QPXEtcQuality. Returns 0; 2 for a null record or plane, another format, other
 * sides or a pitch below a row; 3 for another quality; 4 for no memory (QPX_ETC_SLOW only). */
QPX_API int32_t TEXPK_Compress_ETC(const MBitmap* src, MBitmap* dst, int32_t quality);

/* Decompresses `src` into the block at dst->plane[0], which has room for width * height * 3 bytes;
 * `dst` is 24-bit RGB. On success it gets width and height of `src` and a pitch of width * 3.
 * Returns 0; 2 for a null record or plane, another format, sides that are no multiples of 4, or a
 * `dst` whose width, height and pitch, where they are set, say that it is too small. */
QPX_API int32_t TEXPK_Uncompress_ETC(const MBitmap* src, MBitmap* dst);

/* Copies the blocks of `srcRect`, which lies inside `src`, into the compressed image `dst` at
 * `dstOrigin`; what falls outside `dst` is left out. All coordinates and sides are multiples of 4.
 * `src` and `dst` must not overlap. Returns 0, also where nothing is left to copy; 2 for a null
 * argument or plane, another format, or coordinates that break these rules. */
QPX_API int32_t TEXPK_Crop_ETC(const MBitmap* src, MBitmap* dst, const MRect* srcRect,
                               const MPoint* dstOrigin);

/* Copies the compressed image `base` over `dst`, which has its size, and blends the blocks of
 * `rect`, which lies inside `overlay`, into `dst` at `origin`, as by TEXPKABlock; what falls
 * outside is left out. `alpha` is the share of the overlay, 0 ... 1. All coordinates and sides are
 * multiples of 4. `dst` and `base` may be the same image; otherwise none may overlap. Returns 0; 2
 * for a null argument or plane, another format, coordinates that break these rules or an alpha
 * outside 0 ... 1. */
QPX_API int32_t TEXPK_Merge_ETC(MBitmap* dst, const MBitmap* overlay, const MBitmap* base,
                                const MRect* rect, const MPoint* origin, float alpha);

/* Blocks of an RGB image: `image` has rows of width * 3 bytes without padding, (x, y) is the top
 * left pixel of a 4 x 4 block, which lies inside the image at any place. */

/* Compress one block into its two words. By mean colours with left and right halves; the same for
 * both ways to halve, of which the one with less error is taken, left and right where they are
 * equal; by base colours nearest to the mean (the Combined form), both ways; and, the Slow form,
 * whichever of the last two has less error against the source, the first of them where they are
 * equal. Return 0, or 2 for a null argument or a block that is not inside. */
QPX_API int32_t TEXPKcompressBlockDiffAveragePerceptual(const uint8_t* image, int32_t width,
                                                        int32_t height, int32_t x, int32_t y,
                                                        uint32_t* word0, uint32_t* word1);
QPX_API int32_t TEXPKcompressBlockDiffFlipAveragePerceptual(const uint8_t* image, int32_t width,
                                                            int32_t height, int32_t x, int32_t y,
                                                            uint32_t* word0, uint32_t* word1);
QPX_API int32_t TEXPKcompressBlockDiffFlipCombinedPerceptual(const uint8_t* image, int32_t width,
                                                             int32_t height, int32_t x, int32_t y,
                                                             uint32_t* word0, uint32_t* word1);
QPX_API int32_t TEXPKcompressBlockDiffFlipSlowPerceptual(const uint8_t* image, int32_t width,
                                                         int32_t height, int32_t x, int32_t y,
                                                         uint32_t* word0, uint32_t* word1);

/* Writes the 16 pixels of a block into the image. Every pair of words has a meaning: where a
 * difference leads out of 5 bits, the sum is kept to 5 bits. Returns 0, or 2 as above. */
QPX_API int32_t TEXPKdecompressBlockDiffFlip(uint32_t word0, uint32_t word1, uint8_t* image,
                                             int32_t width, int32_t height, int32_t x, int32_t y);

/* The error of a block between two images of one size, not divided. Returns it, 0 ... 66585600, or
 * -1 where the functions above return 2. */
QPX_API int32_t TEXPKcalcBlockPerceptualErrorRGB(const uint8_t* a, const uint8_t* b, int32_t width,
                                                 int32_t height, int32_t x, int32_t y);

/* Half blocks: (x, y) is the top left pixel of a half, 2 wide and 4 high in functions named 2x4, 4
 * wide and 2 high in those named 4x2. */

/* The mean of a half to `result`: three numbers, 0 ... 255, in the order R, G, B. Returns 0, or 2
 * for a null argument or a half that is not inside. */
QPX_API int32_t TEXPKcomputeAverageColor2x4noQuantFloat(const uint8_t* image, int32_t width,
                                                        int32_t height, int32_t x, int32_t y,
                                                        float* result);
QPX_API int32_t TEXPKcomputeAverageColor4x2noQuantFloat(const uint8_t* image, int32_t width,
                                                        int32_t height, int32_t x, int32_t y,
                                                        float* result);

/* The levels, 0 ... 31 or 0 ... 15 for each channel, whose colour is nearest to `mean`, the
 * darker of two that are equally near. Only the two levels on either side are looked at. Returns 0,
 * or 2 for a null argument. */
QPX_API int32_t TEXPKquantize555ColorCombinedPerceptual(const float* mean, uint8_t* levels);
QPX_API int32_t TEXPKquantize444ColorCombinedPerceptual(const float* mean, uint8_t* levels);

/* The best index of each of the eight pixels of a half, given its base colour (3 bytes, R, G, B)
 * and table, 0 ... 7. `indices` gets eight numbers 0 ... 3 as the format has them: 0 a little
 * brighter than the base, 1 much brighter, 2 a little darker, 3 much darker; pixels go down the
 * columns, the left column first. Returns the half's error, a sum of errors divided by 64; -1 for a
 * null argument, a half that is not inside, or another table. */
QPX_API int32_t TEXPKcompressBlockWithTable2x4percep(const uint8_t* image, int32_t width,
                                                     int32_t height, int32_t x, int32_t y,
                                                     const uint8_t* base, int32_t table,
                                                     uint8_t* indices);
QPX_API int32_t TEXPKcompressBlockWithTable4x2percep(const uint8_t* image, int32_t width,
                                                     int32_t height, int32_t x, int32_t y,
                                                     const uint8_t* base, int32_t table,
                                                     uint8_t* indices);

/* The same with the best of the eight tables, which goes to `*table`. */
QPX_API int32_t TEXPKtryalltables_3bittable2x4percep(const uint8_t* image, int32_t width,
                                                     int32_t height, int32_t x, int32_t y,
                                                     const uint8_t* base, int32_t* table,
                                                     uint8_t* indices);
QPX_API int32_t TEXPKtryalltables_3bittable4x2percep(const uint8_t* image, int32_t width,
                                                     int32_t height, int32_t x, int32_t y,
                                                     const uint8_t* base, int32_t* table,
                                                     uint8_t* indices);

/* Compressed blocks and small arithmetic. */

/* Blends the overlay block (word0, word1) with the base block (word2, word3): base colours, table
 * numbers and the offsets of the pixels are weighed, and the new block gets the nearest there are.
 * Weights have ten fractional bits: `weight0` of the overlay, `weight1` of the base, each
 * 0 ... 1024, together at most 1025. Where one block is flipped and the other is not, the result is
 * halved like the one that weighs more, the base where both weigh the same. Returns 0, or 2 for a
 * null argument or other weights. */
QPX_API int32_t TEXPKABlock(uint32_t word0, uint32_t word1, uint32_t word2, uint32_t word3,
                            uint32_t* out0, uint32_t* out1, int32_t weight0, int32_t weight1);

/* (v + (v >> 8) + 128) >> 8: v / 255 to the nearest for the products of two bytes, less one for
 * some. Sums that leave 32 bits wrap round. */
QPX_API int32_t divideBy255(int32_t v);

/* A sample of 8 bits to 4 or 5 bits: divideBy255(x * 15) and divideBy255(x * 31). */
QPX_API int32_t convert8To4(int32_t x);
QPX_API int32_t convert8To5(int32_t x);

/* The four bytes at `bytes`, the first on top; 0 for null. */
QPX_API uint32_t read_big_endian_4byte_word(const uint8_t* bytes);

QPX_END_DECLS

#endif /* QPX_ETC_H_ */
