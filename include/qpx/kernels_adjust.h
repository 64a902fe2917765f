/* Kernels of the parametric adjustments, by name. A kernel makes the pixels of one rectangle of a
 * stage's picture, from `inRows` to `outRows`: row tables of the stage's format, indexed by image
 * row. The rectangle is cut to the picture.
 *
 * All take BGR24, RGB24, BGRA32 and RGBA32, and copy alpha; on a stage of another format they write
 * nothing and return 0. The stage is one that QPXCreate made for the effect whose id is given; its
 * tables are only read, so that calls on distinct rectangles may run at the same time in several
 * threads. All return 0, or 2 for a null argument or a stage of another effect. */
#ifndef QPX_KERNELS_ADJUST_H_
#define QPX_KERNELS_ADJUST_H_

#include <qpx/stage.h>

QPX_BEGIN_DECLS

/* 0x7B00, QPXGaussBlurParam. Separable Gaussian blur, each of its two passes cut to bytes. Reads
 * kernelSize / 2 rows and columns around the rectangle, as far as the picture has them; beyond, its
 * edge repeats. Returns 4 for no memory. */
QPX_API int32_t GaussBlur_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                              QPXRowTable* inRows);

/* 0xAE00, QPXUnsharpMaskParam. A sample whose difference from its Gaussian blur is above the
 * threshold moves away from it by amount percent of the difference. Reads `radius` rows and columns
 * around the rectangle. Returns 4 for no memory. */
QPX_API int32_t SharpenUSM_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                               QPXRowTable* inRows);

/* 0x7400, QPXDefinitionParam. Local contrast: a sample moves away from the mean of the window
 * around it (amount above 0) or towards it, at a cost that does not depend on the window's size.
 * Reads windowSize / 2 rows and columns around the rectangle. The mean is taken by a reciprocal of
 * ten bits applied twice, which is up to 5 percent off for windows whose side does not divide 1024.
 * Returns 4 for no memory. */
QPX_API int32_t Definition_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                               QPXRowTable* inRows);

/* 0x6F00, QPXToneLevelsParam. Each channel through its own levels, then the common ones. */
QPX_API int32_t Levels_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                           QPXRowTable* inRows);

/* 0x7000, QPXCurveParam. Each channel through its own curve, then the common one. */
QPX_API int32_t Curve_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                          QPXRowTable* inRows);

/* 0x7100, QPXSmoothContrastParam. One smooth curve that keeps black and white. */
QPX_API int32_t newBrightnessContrast_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                          QPXRowTable* inRows);

/* 0x7200, QPXExposureStopsParam. Below 0 a tone table; from 0 on hue is kept and colours fade
 * towards both ends of the tones. Up to 2 levels off at 0 stops, where pixels are rebuilt too. */
QPX_API int32_t exposure_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                             QPXRowTable* inRows);

/* 0x7500, QPXTonalRangesParam. One curve by four ranges of tones. */
QPX_API int32_t HighlightBrightDarkShadow_RGB(QPXStage* stage, const MRect* rect,
                                              QPXRowTable* outRows, QPXRowTable* inRows);

/* 0x7800, QPXSplitToningParam. Highlights and shadows toned in a hue each, luma kept. */
QPX_API int32_t SeparateTone_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                 QPXRowTable* inRows);

/* 0x8500, QPXChannelMixerParam. Weighted sums of the channels. Returns 2 for a mode other than 0
 * and 1. */
QPX_API int32_t ChannelMixer_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                 QPXRowTable* inRows);

/* 0x8700, QPXColorBalanceParam. Shifts of each channel by three ranges of tones. */
QPX_API int32_t ColorBalance_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                 QPXRowTable* inRows);

/* 0x11500, QPXColorTemperatureParam. Warmer or cooler light; 5000 kelvin copies. */
QPX_API int32_t ColorTemperature_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                     QPXRowTable* inRows);

/* Sums of square windows, moved down by one row, for pixels of 3 and of 4 bytes. `sums` holds three
 * planes of `width` sums, of bytes 0, 1 and 2 of the pixels; those of columns firstColumn ...
 * endColumn - 1 change from the window around row `line` to that around the next. The window
 * reaches windowSize / 2 to the left and up and the rest of windowSize, which is odd, to the right
 * and down; columns beyond the picture repeat its edge. `rows` is indexed by row, from
 * line - windowSize / 2 to line + windowSize / 2 + 1.
 *
 * Return 0, or 2 for a null argument, a range of columns that is not in the picture or a window
 * below 1. Touch no state. */
QPX_API int32_t UpdateBoxSums24(int32_t width, int32_t firstColumn, int32_t endColumn,
                                int32_t* sums, const QPXRowTable rows, int32_t line,
                                int32_t windowSize);
QPX_API int32_t UpdateBoxSums32(int32_t width, int32_t firstColumn, int32_t endColumn,
                                int32_t* sums, const QPXRowTable rows, int32_t line,
                                int32_t windowSize);

QPX_END_DECLS

#endif /* QPX_KERNELS_ADJUST_H_ */
