/* Kernels of the looks that exist natively in YUV, by name and layout. A kernel makes the pixels of
 * one rectangle of a stage's picture, from `inRows` to `outRows`: row tables of the stage's format,
 * indexed by image row. The rectangle is cut to the picture.
 *
 * Layouts: _RGB24 and _rgb24 take BGR24 and RGB24; _RGB takes BGRA32 and RGBA32 as well and copies
 * alpha; _RGB565 takes 0x15000454, _NV21 NV21, _I420 0x50000811, _YUYV 0x50000010. On a stage of
 * another format a kernel writes nothing and returns 0. The YUV forms convert each pixel by itself
 * with full-range BT.601 in ten fractional bits; a block's chroma is made from its top-left pixel,
 * of YUYV from the first of a pair. In YUV a rectangle's top and left are even.
 *
 * Looks with strengths, 0xA800 to 0xAC00, read them from the stage's record at every call. Their
 * textures, and that of 0xA500, are stretched over the picture; the two pixels of a YUYV pair lie
 * under one texel. The NV21 forms of 0xA500 to 0xAC00 write a line to the log at entry, of debug
 * priority and with the tag "IP".
 *
 * The stage is one that QPXCreate made for the effect whose id is given; its tables are only read,
 * so that calls on distinct rectangles may run at the same time in several threads. All return 0,
 * or 2 for a null argument or a stage that holds other tables, textures or parameters. */
#ifndef QPX_KERNELS_CURVES_H_
#define QPX_KERNELS_CURVES_H_

#include <qpx/stage.h>

QPX_BEGIN_DECLS

/* 0x1900. Sepia: red takes the largest channel, blue the smallest, green a mix of both. Works on
 * any stage. */
QPX_API int32_t Sepia_RGB24(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                            QPXRowTable* inRows);
QPX_API int32_t Sepia_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                           QPXRowTable* inRows);
QPX_API int32_t Sepia_I420(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                           QPXRowTable* inRows);

/* 0x5800, QPXSingleColorParam. Grey by luma, toned in one colour. */
QPX_API int32_t SingleColor_RGB24(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                  QPXRowTable* inRows);
QPX_API int32_t SingleColor_RGB565(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                   QPXRowTable* inRows);
QPX_API int32_t SingleColor_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                 QPXRowTable* inRows);
QPX_API int32_t SingleColor_I420(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                 QPXRowTable* inRows);

/* 0x5B00, QPXPolaroidParam. Instant film. Writes nothing in a frame mode other than 0 and 1. */
QPX_API int32_t Polaroid_RGB24(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                               QPXRowTable* inRows);
QPX_API int32_t Polaroid_RGB565(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                QPXRowTable* inRows);
QPX_API int32_t Polaroid_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                              QPXRowTable* inRows);
QPX_API int32_t Polaroid_I420(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                              QPXRowTable* inRows);

/* 0x5E00, QPXCornerLookParam. Duotone by lightness. */
QPX_API int32_t Nostalgic_RGB24(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                QPXRowTable* inRows);
QPX_API int32_t Nostalgic_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                               QPXRowTable* inRows);
QPX_API int32_t Nostalgic_I420(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                               QPXRowTable* inRows);

/* 0x5F00, QPXCornerLookParam. Faded tones and weaker colours. Both RGB names take all four orders.
 */
QPX_API int32_t Vintage_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                            QPXRowTable* inRows);
QPX_API int32_t Vintage_RGB24(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                              QPXRowTable* inRows);
QPX_API int32_t Vintage_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                             QPXRowTable* inRows);
QPX_API int32_t Vintage_I420(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                             QPXRowTable* inRows);

/* 0x6000, QPXCornerLookParam. Deep, calm tones. Writes nothing in a mode other than 0 and 1. */
QPX_API int32_t DeepQuite_RGB24(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                QPXRowTable* inRows);
QPX_API int32_t DeepQuite_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                               QPXRowTable* inRows);
QPX_API int32_t DeepQuite_I420(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                               QPXRowTable* inRows);

/* 0x6100, QPXCornerLookParam. Tones of winter light. */
QPX_API int32_t ColdBlue_RGB24(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                               QPXRowTable* inRows);
QPX_API int32_t ColdBlue_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                              QPXRowTable* inRows);
QPX_API int32_t ColdBlue_I420(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                              QPXRowTable* inRows);

/* 0x6200, QPXCornerLookParam. Hard contrast and strong colours. */
QPX_API int32_t Gothic_RGB24(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                             QPXRowTable* inRows);
QPX_API int32_t Gothic_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                            QPXRowTable* inRows);
QPX_API int32_t Gothic_I420(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                            QPXRowTable* inRows);

/* 0x6300, QPXCornerLookParam. Tones towards lilac. */
QPX_API int32_t Purple_rgb24(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                             QPXRowTable* inRows);
QPX_API int32_t Purple_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                            QPXRowTable* inRows);
QPX_API int32_t Purple_I420(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                            QPXRowTable* inRows);

/* 0x6400, QPXCornerLookParam. Grey by lightness through a soft curve. */
QPX_API int32_t VintageBlackWhite_rgb24(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                        QPXRowTable* inRows);
QPX_API int32_t VintageBlackWhite_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                       QPXRowTable* inRows);
QPX_API int32_t VintageBlackWhite_I420(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                       QPXRowTable* inRows);

/* 0x6700, QPXColorGradientParam. A cast that turns along the diagonal. */
QPX_API int32_t ColorGradient_RGB24(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                    QPXRowTable* inRows);
QPX_API int32_t ColorGradient_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                   QPXRowTable* inRows);
QPX_API int32_t ColorGradient_I420(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                   QPXRowTable* inRows);

/* 0x6900. Sunlit tones. */
QPX_API int32_t Sunny_RGB24(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                            QPXRowTable* inRows);
QPX_API int32_t Sunny_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                           QPXRowTable* inRows);
QPX_API int32_t Sunny_I420(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                           QPXRowTable* inRows);

/* 0x6A00, QPXCurveBrightnessParam. Lighter or darker midtones. */
QPX_API int32_t CurveBrightness_RGB24(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                      QPXRowTable* inRows);
QPX_API int32_t CurveBrightness_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                     QPXRowTable* inRows);

/* 0x6E00, QPXReversalFilmParam. Slide film. */
QPX_API int32_t ReversalFilm_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                 QPXRowTable* inRows);

/* 0xBF00. Grey by luma through a curve; chroma becomes neutral. */
QPX_API int32_t BLACKWHITE2_RGB24(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                  QPXRowTable* inRows);
QPX_API int32_t BLACKWHITE2_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                 QPXRowTable* inRows);
QPX_API int32_t BLACKWHITE2_YUYV(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                 QPXRowTable* inRows);

/* 0xC000. Lifted midtones and richer colours. */
QPX_API int32_t FINEFOOD_RGB24(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                               QPXRowTable* inRows);
QPX_API int32_t FINEFOOD_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                              QPXRowTable* inRows);
QPX_API int32_t FINEFOOD_YUYV(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                              QPXRowTable* inRows);

/* 0xA500. Faded film under a fogged texture. */
QPX_API int32_t FleetingTime_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                 QPXRowTable* inRows);
QPX_API int32_t FleetingTime_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                  QPXRowTable* inRows);
QPX_API int32_t FleetingTime_YUYV(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                  QPXRowTable* inRows);

/* 0xA800, QPXCurveLookParam. The curve of slide film in the wrong bath. */
QPX_API int32_t NewReversal_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                QPXRowTable* inRows);
QPX_API int32_t NewReversal_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                 QPXRowTable* inRows);
QPX_API int32_t NewReversal_YUYV(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                 QPXRowTable* inRows);

/* 0xA900, QPXMaskedLookParam. That curve under two textures that darken the border and cast
 * colours. */
QPX_API int32_t WarmLomo_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                             QPXRowTable* inRows);
QPX_API int32_t WarmLomo_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                              QPXRowTable* inRows);
QPX_API int32_t WarmLomo_YUYV(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                              QPXRowTable* inRows);

/* 0xAA00, QPXMaskedLookParam. The same textures over a curve of blue shadows and icy lights. */
QPX_API int32_t ColdLomo_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                             QPXRowTable* inRows);
QPX_API int32_t ColdLomo_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                              QPXRowTable* inRows);
QPX_API int32_t ColdLomo_YUYV(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                              QPXRowTable* inRows);

/* 0xAB00, QPXMaskedLookParam. Soft light and rosy tones under one texture. */
QPX_API int32_t SoftPink_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                             QPXRowTable* inRows);
QPX_API int32_t SoftPink_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                              QPXRowTable* inRows);
QPX_API int32_t SoftPink_YUYV(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                              QPXRowTable* inRows);

/* 0xAC00, QPXCurveLookParam. An airy, sunlit curve. */
QPX_API int32_t RIXI_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                         QPXRowTable* inRows);
QPX_API int32_t RIXI_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                          QPXRowTable* inRows);
QPX_API int32_t RIXI_YUYV(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                          QPXRowTable* inRows);

QPX_END_DECLS

#endif /* QPX_KERNELS_CURVES_H_ */
