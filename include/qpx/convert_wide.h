/* The widest kernels of the conversion: whole rows of the pairs of formats that cameras and screens
 * use, in BT.601 full range, with small fixed-point weights in place of look-up tables. They are
 * fast rather than equal: against the other kernels a channel may differ by 3 and resampled luma by
 * 5; resampled chroma is that of another column, or of another pixel of its cell.
 *
 * All have the shape of a frame (convert.h) and are chosen by PUZUMPE_ALL, the first of the chain.
 * A kernel called directly trusts the record: it must be one for which PUZUMPE_ALL chooses it, and
 * the rectangle must consist of whole blocks of 4x4 pixels. A null argument or plane does nothing.
 *
 * 24 and 32-bit pixels are B, G, R in memory, the fourth byte being the record's alpha; 16-bit
 * pixels are 5-6-5 with red (RGB16) or blue (BGR16) in the highest bits.
 *
 * All are reentrant, and threads may convert different rectangles by one record. */
#ifndef QPX_CONVERT_WIDE_H_
#define QPX_CONVERT_WIDE_H_

#include <qpx/convert_record.h>
#include <qpx/types.h>

QPX_BEGIN_DECLS

/* The frame. Returns 0 when a kernel below converted; 2 for a null argument or plane; 3 when it
 * declines: it wants blocks of 4x4 (block mode 3) without orientation (or with orient 3 for
 * bilinear NV21 to 32-bit BGR), BT.601 full range on every side that is YUV, no adjustments, no
 * dither, and a rectangle of whole blocks that lies in the destination and whose source lies in the
 * limits. */
QPX_API int32_t PUZUMPE_ALL(const MRect* rect, const int32_t* dstPitch, const int32_t* srcPitch,
                            uint8_t* const* dstPlanes, const uint8_t* const* srcPlanes,
                            const ConvRecord* record);

/* Steps of exactly 1. NV is NV21 or NV12. Weights have six fractional bits, those of
 * PUZUMPE_YUVtoBGR32_NoResize (packed 4:4:4) seven, those of PUZUMPE_I422HtoBGR32_NoResize and
 * PUZUMPE_YUYVtoBGR32_NoResize twenty. PUZUMPE_I422HtoBGR32_NoResize_Shift6 rounds a little
 * otherwise than the rest; PUZUMPE_ALL does not choose it. */
QPX_API void PUZUMPE_NV21YCbCr601toBGR32_NoResize(const MRect* rect, const int32_t* dstPitch,
                                                  const int32_t* srcPitch,
                                                  uint8_t* const* dstPlanes,
                                                  const uint8_t* const* srcPlanes,
                                                  const ConvRecord* record);
QPX_API void PUZUMPE_NV21toRGB24_NoResize(const MRect* rect, const int32_t* dstPitch,
                                          const int32_t* srcPitch, uint8_t* const* dstPlanes,
                                          const uint8_t* const* srcPlanes,
                                          const ConvRecord* record);
QPX_API void PUZUMPE_NV12toRGB24_NoResize(const MRect* rect, const int32_t* dstPitch,
                                          const int32_t* srcPitch, uint8_t* const* dstPlanes,
                                          const uint8_t* const* srcPlanes,
                                          const ConvRecord* record);
QPX_API void PUZUMPE_NVtoRGB16_NoResize(const MRect* rect, const int32_t* dstPitch,
                                        const int32_t* srcPitch, uint8_t* const* dstPlanes,
                                        const uint8_t* const* srcPlanes, const ConvRecord* record);
QPX_API void PUZUMPE_NVtoBGR16_NoResize(const MRect* rect, const int32_t* dstPitch,
                                        const int32_t* srcPitch, uint8_t* const* dstPlanes,
                                        const uint8_t* const* srcPlanes, const ConvRecord* record);
QPX_API void PUZUMPE_I420toBGR32_NoResize(const MRect* rect, const int32_t* dstPitch,
                                          const int32_t* srcPitch, uint8_t* const* dstPlanes,
                                          const uint8_t* const* srcPlanes,
                                          const ConvRecord* record);
QPX_API void PUZUMPE_I422HtoBGR32_NoResize(const MRect* rect, const int32_t* dstPitch,
                                           const int32_t* srcPitch, uint8_t* const* dstPlanes,
                                           const uint8_t* const* srcPlanes,
                                           const ConvRecord* record);
QPX_API void PUZUMPE_I422HtoBGR32_NoResize_Shift6(const MRect* rect, const int32_t* dstPitch,
                                                  const int32_t* srcPitch,
                                                  uint8_t* const* dstPlanes,
                                                  const uint8_t* const* srcPlanes,
                                                  const ConvRecord* record);
QPX_API void PUZUMPE_I422VtoBGR32_NoResize(const MRect* rect, const int32_t* dstPitch,
                                           const int32_t* srcPitch, uint8_t* const* dstPlanes,
                                           const uint8_t* const* srcPlanes,
                                           const ConvRecord* record);
QPX_API void PUZUMPE_I444toBGR32_NoResize(const MRect* rect, const int32_t* dstPitch,
                                          const int32_t* srcPitch, uint8_t* const* dstPlanes,
                                          const uint8_t* const* srcPlanes,
                                          const ConvRecord* record);
QPX_API void PUZUMPE_YUVtoBGR32_NoResize(const MRect* rect, const int32_t* dstPitch,
                                         const int32_t* srcPitch, uint8_t* const* dstPlanes,
                                         const uint8_t* const* srcPlanes, const ConvRecord* record);
QPX_API void PUZUMPE_YUYVtoBGR32_NoResize(const MRect* rect, const int32_t* dstPitch,
                                          const int32_t* srcPitch, uint8_t* const* dstPlanes,
                                          const uint8_t* const* srcPlanes,
                                          const ConvRecord* record);

/* Bilinear, at any steps: luma (or each channel of BGR32) with seven fractional bits, chroma of the
 * even column to the left. The conversion back to YUV has seven fractional bits and takes chroma
 * from the left top pixel of each cell. They take memory for some 12 bytes a column of the
 * rectangle from MMemAlloc; refused, the general frame converts in their place. */
QPX_API void PUZUMPE_NV21toBGR32_Fast_BilNear_R90(const MRect* rect, const int32_t* dstPitch,
                                                  const int32_t* srcPitch,
                                                  uint8_t* const* dstPlanes,
                                                  const uint8_t* const* srcPlanes,
                                                  const ConvRecord* record);
QPX_API void PUZUMPE_NV21toI420_Fast_BilNear(const MRect* rect, const int32_t* dstPitch,
                                             const int32_t* srcPitch, uint8_t* const* dstPlanes,
                                             const uint8_t* const* srcPlanes,
                                             const ConvRecord* record);
QPX_API void PUZUMPE_I4XXtoNV21_Fast_BilNear(const MRect* rect, const int32_t* dstPitch,
                                             const int32_t* srcPitch, uint8_t* const* dstPlanes,
                                             const uint8_t* const* srcPlanes,
                                             const ConvRecord* record);
QPX_API void PUZUMPE_BGR32toI420_BilNear(const MRect* rect, const int32_t* dstPitch,
                                         const int32_t* srcPitch, uint8_t* const* dstPlanes,
                                         const uint8_t* const* srcPlanes, const ConvRecord* record);
QPX_API void PUZUMPE_BGR32toNV21_Fast_BilNear(const MRect* rect, const int32_t* dstPitch,
                                              const int32_t* srcPitch, uint8_t* const* dstPlanes,
                                              const uint8_t* const* srcPlanes,
                                              const ConvRecord* record);

/* Does nothing. Hosts of old refer to it. */
QPX_API void PUZUMPE_DebugWin32(void);

QPX_END_DECLS

#endif /* QPX_CONVERT_WIDE_H_ */
