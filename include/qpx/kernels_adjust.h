/* Kernels of the parametric adjustments, by name. A kernel makes the pixels of one rectangle of a
 * stage's picture, from `inRows` to `outRows`: row tables of the stage's format, indexed by image
 * row. The rectangle is cut to the picture.
 *
 * Those named _RGB take BGR24, RGB24, BGRA32 and RGBA32, and copy alpha; on a stage of another
 * format they write nothing and return 0. The stage is one that QPXCreate made for the effect whose
 * id is given; its tables are only read, so that calls on distinct rectangles may run at the same
 * time in several threads. All return 0, or 2 for a null argument or a stage of another effect. */
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
 * The window reaches windowSize / 2 up and to the left, and one less down and to the right if its
 * size is even. Reads windowSize / 2 rows and columns around the rectangle. The mean is taken by a
 * reciprocal of ten bits applied twice: exact for sides that are a power of two, up to 2 percent
 * off for others up to 31, 6 percent up to 63, 44 percent beyond. Returns 4 for no memory. */
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

/* 0x7800, QPXSplitToningParam. Highlights and shadows toned in a hue each, at a luma that stays
 * within 3 levels. */
QPX_API int32_t SeparateTone_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                 QPXRowTable* inRows);

/* 0x8500, QPXChannelMixerParam. Weighted sums of the channels, gains and constants from -3200 to
 * 3200 percent. Returns 2 for a mode other than 0
 * and 1. */
QPX_API int32_t ChannelMixer_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                 QPXRowTable* inRows);

/* 0x8700, QPXColorBalanceParam. Shifts of each channel by three ranges of tones. */
QPX_API int32_t ColorBalance_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                 QPXRowTable* inRows);

/* 0x11500, QPXColorTemperatureParam. Warmer or cooler light; 5000 kelvin copies. */
QPX_API int32_t ColorTemperature_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                     QPXRowTable* inRows);

/* 0x7300, QPXSaturationParam. Colours spread from the mean of their extremes, in HSL; 0 copies in
 * RGB, while NV21 goes through its conversion there too, and -100 leaves greys. The _NV21 form
 * converts by full-range BT.601 in ten fractional bits, whatever the colorimetry; the chroma of a
 * block comes from its top-left pixel, and pictures of other formats are left alone. */
QPX_API int32_t Saturation_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                               QPXRowTable* inRows);
QPX_API int32_t Saturation_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                QPXRowTable* inRows);

/* 0x7700, QPXColorRangeParam. Hue, saturation and lightness of one range of hues, in HSV. Pixels of
 * other hues are copied, and all pixels for an index of no range; those of the range are made again
 * from whole degrees, so that neutral amounts change them by up to 8 levels, on average by less
 * than one. Greys count as reds and oranges, and lose up to 1 level of green and blue there. */
QPX_API int32_t HSLColor_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                             QPXRowTable* inRows);

/* 0x7900, QPXVibranceParam. Colourfulness in CIELAB; 0 copies. Lightness goes through 116 steps and
 * linear light through 256, so that other values change all tones by some levels. */
QPX_API int32_t NaturalSaturation_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                      QPXRowTable* inRows);

/* 0x7F00, QPXHsbAdjustParam. Hue, saturation and brightness by hue, in HSL. All pixels are made
 * again from whole degrees of hue, so that neutral amounts change colours by up to 6 levels, on
 * average by less than one; greys stay as they are. */
QPX_API int32_t HSBAdjust_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                              QPXRowTable* inRows);

/* 0x9900, QPXVibranceSaturationParam. As 0x7900, with saturation beside vibrance; both 0 copy. */
QPX_API int32_t NewNaturalSaturation_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                         QPXRowTable* inRows);

/* 0x7C00, QPXSelectiveColorParam. The inks of nine classes of colours change, in proportion to what
 * a colour holds of its class. A colour that belongs to several classes takes the changes of all.
 * SelectiveColorFilter1995_RGB is the same under the name by which a look knows it;
 * SelectiveColorAbsolute_RGB adds and takes inks in absolute amounts. */
QPX_API int32_t SelectiveColor_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                   QPXRowTable* inRows);
QPX_API int32_t SelectiveColorFilter1995_RGB(QPXStage* stage, const MRect* rect,
                                             QPXRowTable* outRows, QPXRowTable* inRows);
QPX_API int32_t SelectiveColorAbsolute_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                           QPXRowTable* inRows);

/* 0x9B00, QPXRemoveEdgeParam. Colours of two windows of hues fade to grey along edges. Reads 4 rows
 * and columns around the rectangle. Returns 2 for a mask that is not a grey picture of 8 bits of
 * the size of the rectangle, as cut to the picture, and 4 for no memory. */
QPX_API int32_t RemoveEdge_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                               QPXRowTable* inRows);

/* 0xAD00, QPXComplexionParam. Smooths skin by a bilateral mean and lifts the middle tones of the
 * whole picture a little. Reads half a window of rows and columns around the rectangle, as far as
 * the picture has them: rows beyond repeat its edge, columns beyond do not count. The forms for
 * NV21 and YUYV take these formats alone and write nothing in others; they know skin by the chroma
 * that is there, and work on its colours in full-range BT.601. Return 4 for no memory. */
QPX_API int32_t ComplexionOptimizing_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                         QPXRowTable* inRows);
QPX_API int32_t ComplexionOptimizing_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                          QPXRowTable* inRows);
QPX_API int32_t ComplexionOptimizing_YUYV(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                          QPXRowTable* inRows);

/* 0xE900, QPXFilterRecord. Even, warm skin by the inks of reds and yellows, mixed with the source
 * at the record's intensity: 100 at most, and below 0 away from the look. */
QPX_API int32_t SkinTone_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                             QPXRowTable* inRows);

/* Whitens skin in an NV21 preview, in place, block by block of 2 x 2 pixels. A last row or column
 * that is no whole block stays as it is.
 *
 * `image`: width, height, planes and pitches 0 and 2 count; plane 2 is the one of V, U pairs.
 * `mask`: how much of each pixel is skin, 0 ... 255, of the image's size, rows maskPitch bytes
 * apart. `target`: 256 bytes, the luma that each luma becomes where the mask is full. `strength`:
 * of the change of chroma, 256 for all of it. U rises by 9 at most, V by 4; neither falls, and U
 * from 128 on and V below 129 stay.
 *
 * Return 0, also for an image without a block, of which nothing else is looked at, or 2 for a null
 * argument or plane. Touch no state;
 * the three are one function. */
QPX_API int32_t _SkinWhitenByMask_YUV420_VUVU(const MBitmap* image, const uint8_t* mask,
                                              int32_t maskPitch, const uint8_t* target,
                                              int32_t strength);
QPX_API int32_t _SkinWhitenByMask_YUV420_VUVU_neon(const MBitmap* image, const uint8_t* mask,
                                                   int32_t maskPitch, const uint8_t* target,
                                                   int32_t strength);
QPX_API int32_t _SkinWhitenByMask_YUV420_VUVU_ARMv7(const MBitmap* image, const uint8_t* mask,
                                                    int32_t maskPitch, const uint8_t* target,
                                                    int32_t strength);

/* Sums of square windows, moved down by one row, for pixels of 3 and of 4 bytes. `sums` holds three
 * planes of `width` sums, of bytes 0, 1 and 2 of the pixels; those of columns firstColumn ...
 * endColumn - 1 change from the window around row `line` to that around the next. The window
 * reaches windowSize / 2 to the left, to the right, up and down of its middle; columns beyond the
 * picture repeat its edge. windowSize is odd: an even window, which begins one column short on the
 * right, takes the column windowSize / 2 away as it moves on and leaves out the one before it.
 * `rows` is indexed by row, and its rows line - windowSize / 2 and line + windowSize / 2 + 1 are
 * read. Sums that leave 32 bits wrap around, whatever the window's size.
 *
 * Return 0, or 2 for a null argument, a range of columns that is not in the picture or a window
 * below 1. Touch no state. */
QPX_API int32_t UpdateBoxSums24(int32_t width, int32_t firstColumn, int32_t endColumn,
                                int32_t* sums, QPXRowTable rows, int32_t line, int32_t windowSize);
QPX_API int32_t UpdateBoxSums32(int32_t width, int32_t firstColumn, int32_t endColumn,
                                int32_t* sums, QPXRowTable rows, int32_t line, int32_t windowSize);

QPX_END_DECLS

#endif /* QPX_KERNELS_ADJUST_H_ */
