/* Blends, greys and tints of single samples: what the looks are made of.
 *
 * Samples and masks are 0 ... 255; of larger arguments the low eight bits count. Opacities are
 * single precision, meant for 0.0 ... 1.0; other values are computed as they stand. `top` is what
 * is laid on, `base` what lies below. Results are 0 ... 255.
 *
 * Several of these differ on purpose from the textbook: a shift by 8 stands for a division by 255
 * in some, halves are rounded down, soft light changes its formula at 129. Looks depend on it byte
 * for byte. Floats become integers by truncation, which takes values below 0 to 0. Some of the
 * names are common words; in C they are global.
 *
 * All functions are pure and may be called from any thread. None can fail; a null pointer makes a
 * call do nothing. */
#ifndef QPX_BLEND_H_
#define QPX_BLEND_H_

#include <qpx/export.h>

#include <stdint.h>

QPX_BEGIN_DECLS

/* base * (1 - opacity) + opacity * ((1 - m) * base + top * m) with m = mask / 255, to the nearest,
 * a fraction of exactly one half down: 100.5 gives 100. */
QPX_API uint32_t normalPixel(uint32_t top, uint32_t base, uint32_t mask, float opacity);

/* 255 - ((255 - base) * (255 - top) >> 8): two blacks give 1. */
QPX_API uint32_t screenPixel(uint32_t top, uint32_t base);

/* 2 * base * top / 255, or for a base of 128 and above the same of all complements. Cut. */
QPX_API uint32_t overlayPixel(uint32_t top, uint32_t base);

/* Soft light: with a, t the samples as 0 ... 1 and d = 2 * t - 1, a + d * (a - a * a) for a top
 * below 129, a + d * (sqrt(a) - a) from there on; times 255 and cut. The two do not meet. */
QPX_API uint32_t softPixel(uint32_t top, uint32_t base);

/* The three above, mixed with the base by normalPixel. */
QPX_API uint32_t screenPixel4(uint32_t top, uint32_t base, uint32_t mask, float opacity);
QPX_API uint32_t overlayPixel4(uint32_t top, uint32_t base, uint32_t mask, float opacity);
QPX_API uint32_t softPixel4(uint32_t top, uint32_t base, uint32_t mask, float opacity);

/* top * base / 255, mixed with the base as by normalPixel; rounded once, at the end. */
QPX_API uint32_t multiplyPixel(uint32_t top, uint32_t base, uint32_t mask, float opacity);

/* a * b >> 8: two whites give 254. */
QPX_API uint32_t Multiply(uint32_t a, uint32_t b);

/* overlayPixel * (1 - o) + base * o, cut and kept to eight bits. An o of 1 leaves the base as it
 * is, the reverse of all others here. */
QPX_API uint32_t overlayPixelWithOpaqueness(uint32_t top, uint32_t base, float o);

/* overlayPixel * o + base * (1 - o), clamped and cut: an overlay, whatever its name. */
QPX_API uint32_t alphaPixel(uint32_t top, uint32_t base, float o);

/* screenPixel * o + (1 - o) * base, cut and kept to eight bits. */
QPX_API uint32_t Screen(uint32_t top, uint32_t base, float o);

/* `a` mixed into `b` at opacity o gives t; t * b / 255, mixed into `b` again at o, is the result.
 * Cut and kept to eight bits both times. */
QPX_API uint32_t MergeWithAlpha(uint32_t a, uint32_t b, float o);

/* b + a * o, clamped and cut. Callers that subtract give a negative o. */
QPX_API uint32_t linearReducePixel(uint32_t a, uint32_t b, float o);

/* The larger, the smaller. */
QPX_API uint32_t lighten(uint32_t a, uint32_t b);
QPX_API uint32_t darken(uint32_t a, uint32_t b);

/* 0.45 * s + 0.55 * a, cut, with s = a + b - (a * b >> 7) kept to eight bits. */
QPX_API uint32_t VintageBlend(uint32_t a, uint32_t b);

/* Bilinear mix of the values c00 at (x0, y0), c10 at (x1, y0), c01 at (x0, y1) and c11 at (x1, y1)
 * for the place (x, y), in double precision, clamped and cut. xPair is x0, x1 and yPair y0, y1;
 * pairs of equal numbers give 0, as do null pointers. */
QPX_API uint32_t bilinearCorners(const int32_t* xPair, const int32_t* yPair, uint32_t c00,
                                 uint32_t c10, uint32_t c01, uint32_t c11, double x, double y);

/* Grey of a colour by the weights of six hues, 1.0 being full weight; weights outside 0 ... 1 are
 * normal. (middle - smallest) * secondary + (largest - middle) * primary + smallest, where the
 * largest channel names the primary (reds, greens, blues) and the smallest, which is missing, the
 * secondary (cyans, magentas, yellows). Halves are rounded down; clamped. A grey keeps its value.
 */
QPX_API uint32_t ApplyBlackAndWhite(double reds, double yellows, double greens, double cyans,
                                    double blues, double magentas, uint32_t red, uint32_t green,
                                    uint32_t blue);

/* The same by the weights 0.4, 0.6, 0.4, 0.6, 0.2, 0.8 in single precision, cut. */
QPX_API uint32_t ApplyBlackAndWhiteForChalkBoard(uint32_t red, uint32_t green, uint32_t blue);

/* Replaces a colour by one of the tint's hue and chroma whose luma (77 red + 151 green + 28 blue, /
 * 256) is the grey of ApplyBlackAndWhite. Chroma gives way where it would leave 0 ... 255. Results
 * are kept to eight bits. */
QPX_API void ApplyBlackAndWhiteWithTint(double reds, double yellows, double greens, double cyans,
                                        double blues, double magentas, uint8_t* red, uint8_t* green,
                                        uint8_t* blue, uint32_t tintRed, uint32_t tintGreen,
                                        uint32_t tintBlue);

/* The same with the colour's own luma, rounded, in place of the grey; results are clamped. */
QPX_API void ApplyLumaTint(uint8_t* red, uint8_t* green, uint8_t* blue, uint32_t tintRed,
                           uint32_t tintGreen, uint32_t tintBlue);

QPX_END_DECLS

#endif /* QPX_BLEND_H_ */
