/* The catalogue of effects: what there is, which formats it takes and which parameters it has; and
 * the parameter records themselves. */
#ifndef QPX_EFFECTS_H_
#define QPX_EFFECTS_H_

#include <qpx/types.h>

QPX_BEGIN_DECLS

/* Types of a parameter, stored at its offset in the effect's record. */
typedef enum QPXParamType {
  QPX_PARAM_INT32 = 0,
  QPX_PARAM_UINT8 = 1,
  QPX_PARAM_FLOAT = 2,
  QPX_PARAM_DOUBLE = 3,
  QPX_PARAM_FLAG = 4, /* 32 bits, 0 or 1 */
  QPX_PARAM_COLOR = 5 /* 32 bits, 0xRRGGBB */
} QPXParamType;

typedef struct QPXParamInfo {
  const char* name;    /* identifier, as tools take it */
  const char* summary; /* one sentence */
  const char* unit;    /* "percent", "degrees", "" ... */
  int32_t type;        /* QPXParamType */
  int32_t offset;      /* bytes from the start of the record */
  double minimum; /* of the useful range: values outside are clamped or taken as they are, never
                     unsafe */
  double maximum;
  double initial; /* a value that shows what the effect is for */
} QPXParamInfo;

/* Format groups, as bits of QPXEffectInfo.formats: what the effect runs in. Every pixel format that
 * the engine knows is in just one group. */
enum {
  QPX_TAKES_RGB24 = 0x001,   /* BGR24, RGB24 */
  QPX_TAKES_RGB32 = 0x002,   /* BGRA32, RGBA32 */
  QPX_TAKES_RGB565 = 0x004,  /* 0x15000454 */
  QPX_TAKES_RGB_ANY = 0x008, /* all other packed RGB of 16, 24 and 32 bits */
  QPX_TAKES_GREY = 0x010,    /* 8 bits, one plane */
  QPX_TAKES_NV21 = 0x020,
  QPX_TAKES_NV12 = 0x040,
  QPX_TAKES_I420 = 0x080,   /* 0x50000811 */
  QPX_TAKES_PLANAR = 0x100, /* all other planar YUV */
  QPX_TAKES_YUYV = 0x200,   /* 0x50000010 */
  QPX_TAKES_UYVY = 0x400    /* 0x50000410 */
};

/* Bits of QPXEffectInfo.flags. */
enum {
  QPX_EFFECT_BUILT = 0x01,        /* create accepts it; otherwise it answers 3 */
  QPX_EFFECT_GIVES_TABLE = 0x02,  /* may merge with a following point effect */
  QPX_EFFECT_TAKES_TABLE = 0x04,  /* may merge with a point effect before it */
  QPX_EFFECT_ROW_THREADS = 0x08,  /* rows may be split among threads */
  QPX_EFFECT_SAME_AREA = 0x10,    /* QPXIsSameInOutArea answers 1 */
  QPX_EFFECT_SECOND_INPUT = 0x20, /* takes a second input and a mask, through QPXMerge */
  QPX_EFFECT_GENERIC = 0x40,      /* one of the oldest effects: has a form for every format */
  QPX_EFFECT_ONE_CALL = 0x80 /* works each band by itself: hand the whole picture over at once */
};

/* How many rows and columns of neighbourhood an effect reads. */
typedef enum QPXMarginRule {
  QPX_MARGIN_FIXED = 0,       /* QPXEffectInfo.margin */
  QPX_MARGIN_RECORD = 1,      /* by its parameters */
  QPX_MARGIN_FORMAT = 2,      /* by the pixel format */
  QPX_MARGIN_PICTURE = 3,     /* by the size of the picture */
  QPX_MARGIN_WHOLE_IMAGE = 4, /* all of it */
  QPX_MARGIN_ROTATION = 5     /* by the angle; ask QPXCalcRect */
} QPXMarginRule;

typedef struct QPXEffectInfo {
  uint32_t id;
  const char* name;    /* as kernels are named */
  const char* title;   /* for people */
  const char* summary; /* one sentence */
  const char* family;  /* group of effects that are made alike */
  uint32_t formats;    /* QPX_TAKES_* */
  int32_t recordSize;  /* bytes of the parameter record, 0 for none */
  int32_t marginRule;  /* QPXMarginRule */
  int32_t margin;      /* rows and columns on each side, where the rule is fixed */
  uint32_t flags;      /* QPX_EFFECT_* */
  int32_t paramCount;
  const QPXParamInfo* params; /* constant memory of the library, as are all texts */
} QPXEffectInfo;

/* Number of catalogued effects. */
QPX_API int32_t QPX_GetEffectCount(void);

/* Describes effect `index`, 0 ... count - 1, family by family and by id within a family. Returns 0,
 * or 2 for a null record or an index out of range. Reentrant. */
QPX_API int32_t QPX_GetEffectInfo(int32_t index, QPXEffectInfo* info);

/* 0x1100, second picture. */
typedef struct QPXSecondPictureParam {
  int32_t opacity; /* percent of the second picture, 1 ... 100; 0 acts as 1 */
  uint32_t color;  /* 0xRRGGBB: what is faded in where the engine has no second picture */
} QPXSecondPictureParam;

/* 0x1200, colour wash. */
typedef struct QPXColorWashParam {
  int32_t opacity; /* percent of the colour, 1 ... 100; 0 acts as 1 */
  uint32_t color;  /* 0xRRGGBB */
} QPXColorWashParam;

/* 0x1300, brightness and contrast. */
typedef struct QPXBrightnessContrastParam {
  int32_t brightness; /* -128 ... 127, added; 0 is neutral */
  int32_t contrast;   /* -128 ... 127; 0 is neutral */
} QPXBrightnessContrastParam;

/* 0x1600, 0x4500, 0x4600, levels; 0x4700, exposure. A matrix of 3 rows by 4 columns in 8.8 fixed
 * point, of which the diagonal (gains) and the last column (offsets) count; 256 is a gain of 1.
 * Exposure reads the first gain only, as a factor in linear light. */
typedef struct QPXLevelsParam {
  int32_t formula[12]; /* gains at 0, 5, 10, offsets at 3, 7, 11: red, green, blue */
} QPXLevelsParam;

/* 0x1D00, threshold. */
typedef struct QPXThresholdParam {
  int32_t level;   /* 1 ... 255: luma of this value and above is lit */
  int32_t twoTone; /* non-zero: lit parts are white; zero: they keep their colour */
} QPXThresholdParam;

/* 0x1F00, channel offsets. */
typedef struct QPXChannelOffsetsParam {
  int32_t red, green, blue; /* -255 ... 255, added */
} QPXChannelOffsetsParam;

/* 0x2D00, gamma. */
typedef struct QPXGammaParam {
  int32_t percent; /* 10 ... 400; 100 is neutral, above it midtones are lighter; 0 acts as 100 */
} QPXGammaParam;

/* 0x8400, dark corner. */
typedef struct QPXDarkCornerParam {
  int32_t centerX;   /* pixels from the left, 0 ... 65535; below 0 stands for the middle */
  int32_t centerY;   /* pixels from the top, likewise */
  int32_t radius;    /* percent of the way to the farthest corner that stays clear, 0 ... 100; the
                        clear circle grows in tenths, 0 ... 7 */
  int32_t intensity; /* percent, -100 ... 100: below 0 corners darken, above 0 they lighten */
} QPXDarkCornerParam;

/* 0x8600, feather. */
typedef struct QPXFeatherParam {
  int32_t radius; /* pixels, 0 ... 100; 0 copies */
  int32_t unused;
} QPXFeatherParam;

/* 0x5E00 nostalgic, 0x5F00 vintage, 0x6000 deep quiet, 0x6100 cold blue, 0x6200 Gothic, 0x6300
 * purple, 0x6400 vintage black and white: toned looks that darken towards the corners. All zero is
 * the look as it is meant, without darkened corners where it has a mode. */
typedef struct QPXCornerLookParam {
  int32_t
      mode; /* 0: tones alone; 1: darkened corners too. Deep quiet does nothing in any other mode,
               the others clamp. Cold blue, Gothic and purple always darken and ignore it. */
  int32_t corners; /* percent, -100 ... 100: how much more than usual corners darken; -100 not at
                      all, 100 twice as far */
  int32_t reach;   /* percent, -100 ... 100: how far towards the centre; -100 leaves more of the
                      middle clear, 100 begins at the centre */
  int32_t
      centerX; /* percent of half the width, -100 ... 100: the clear middle, right of the centre */
  int32_t centerY; /* percent of half the height, -100 ... 100: the same, below the centre */
} QPXCornerLookParam;

/* 0x5800, single colour: 7 bytes. All zero is a Prussian blue print. */
typedef struct QPXSingleColorParam {
  uint8_t red, green, blue; /* the colour of the midtones; all zero stands for Prussian blue */
  uint8_t fade;             /* percent, 0 ... 100, of the colour that gives way to grey */
  uint8_t shadows;          /* percent, 0 ... 100, of the colour that black takes */
  uint8_t highlights;       /* percent, 0 ... 100, of the colour that white takes */
  uint8_t contrast;         /* percent, 0 ... 100 */
} QPXSingleColorParam;

/* 0x6700, colour gradient. */
typedef struct QPXColorGradientParam {
  int32_t hue; /* degrees, -180 ... 180, by which the colours of the gradient are turned; 0 is
                  neutral */
} QPXColorGradientParam;

/* 0x6A00, curve brightness. */
typedef struct QPXCurveBrightnessParam {
  int32_t brightness; /* -100 ... 100; 0 is neutral, black and white stay */
} QPXCurveBrightnessParam;

/* 0x6E00, reversal film. All zero is the film as it is meant. */
typedef struct QPXReversalFilmParam {
  int32_t greenGain; /* 1/256, 128 ... 384: strength of green in its dye; 0 acts as 234 */
  int32_t blueGain;  /* 1/256, 128 ... 384: strength of blue in its dye; 0 acts as 234 */
  int32_t exposure;  /* -100 ... 100, a stop either way; 0 is neutral */
  int32_t contrast;  /* percent, -100 ... 100: of the film's curve; -100 is a straight line, 100
                        twice it */
  int32_t warmth;    /* percent, -100 ... 100; 0 is neutral, above it lights turn amber */
} QPXReversalFilmParam;

/* 0xA800, soft reversal film; 0xAC00, Japanese morning. Pictures in packed RGB clamp the strength;
 * NV21 and YUYV mix beyond the ends, and cut what leaves a sample's range. */
typedef struct QPXCurveLookParam {
  int32_t strength; /* percent of the curve, 0 ... 100; 0 leaves the picture as it is but for the
                       level that the mix takes off */
} QPXCurveLookParam;

/* 0xA900, warm lomo; 0xAA00, cold lomo; 0xAB00, soft pink. Strengths as in QPXCurveLookParam. */
typedef struct QPXMaskedLookParam {
  int32_t curveStrength; /* percent of the tone curve, 0 ... 100 */
  int32_t maskStrength;  /* percent of the textures and of the tone behind them, 0 ... 100 */
} QPXMaskedLookParam;

/* 0x1400, tint. */
typedef struct QPXTintParam {
  int32_t hue;      /* degrees, -180 ... 180 */
  int32_t strength; /* percent, -100 ... 100; 0 is neutral, below 0 it turns to the complement */
} QPXTintParam;

/* 0x1B00, box blur. */
typedef struct QPXBoxBlurParam {
  int32_t kernelSize; /* pixels of the window's side; 1 and below leave the picture sharp */
} QPXBoxBlurParam;

/* 0x4B00, white balance. */
typedef struct QPXWhiteBalanceParam {
  int32_t mode;        /* where the two values come from: 1 measured, 8 chosen by hand */
  int32_t temperature; /* kelvin, 2000 ... 12000 */
  int32_t tint;        /* -150 ... 150; 5000 kelvin with a tint of 10 changes nothing */
} QPXWhiteBalanceParam;

/* 0x5400, one-click fix: what an analysis of the picture found, or a host's own values. All zero
 * but lConMax at 255 changes nothing. */
typedef struct FixParam {
  int32_t lBalanceBlue; /* -100 ... 100: colour balance */
  int32_t lBalanceGreen;
  int32_t lBalanceRed;
  int32_t lSatPara; /* -100 ... 100 */
  int32_t lBriPara; /* -100 ... 100 */
  int32_t lConMax;  /* 0 ... 511: the level that becomes white, 255 is neutral */
  int32_t lConMin;  /* -256 ... 255: the level that becomes black, 0 is neutral */
  int32_t reserved;
  int32_t lSharpPara; /* 0 ... 100 */
  int32_t redSlope;   /* 1/1024: slopes and start values of the automatic levels */
  int32_t redStart;
  int32_t greenSlope;
  int32_t greenStart;
  int32_t blueSlope;
  int32_t blueStart;
  int32_t lClipHigh; /* limits of shadows and highlights, as measured */
  int32_t lShadowLimit;
  int32_t lHighlightLimit;
  int32_t lClipLow;
  int32_t lShadow;      /* 0 ... 100: how far shadows open */
  int32_t lHighlight;   /* -100 ... 0: how far highlights are held back */
  int32_t wideWindow;   /* non-zero: shadows and highlights go by a neighbourhood of 16 pixels */
  int32_t lBalanceAuto; /* non-zero: the value above was measured, not chosen */
  int32_t lSatAuto;
  int32_t lBriAuto;
  int32_t lConAuto;
  int32_t lSharpAuto;
  int32_t lAutoLevel; /* non-zero: the automatic levels apply */
  int32_t reservedLast[2];
} FixParam;

/* 0x5700, smoother. */
typedef struct QPXSmootherParam {
  int32_t exposureHint[3]; /* what is known of the exposure, each 0 for unknown */
  int32_t strength[3];     /* 10 ... 100 for each channel */
  int32_t level;           /* 0 ... 100; 0 copies, 53 and above smooth strongly */
} QPXSmootherParam;

/* 0x5900, kaleidoscope. */
typedef struct QPXKaleidoscopeParam {
  int32_t angle;   /* degrees by which the mirrors are turned; 120 are a full turn */
  int32_t size;    /* pixels from the centre of the triangle to its corners */
  int32_t mode;    /* 1: a triangle too small to be seen keeps the tile before it */
  int32_t centerX; /* pixels from the left: the centre of the triangle */
  int32_t centerY; /* pixels from the top */
} QPXKaleidoscopeParam;

/* 0x5A00, fish eye. */
typedef struct QPXFishEyeParam {
  int32_t strength; /* percent, 0 ... 150; 0 is neutral */
} QPXFishEyeParam;

/* 0x5C00, focus band. */
typedef struct QPXFocusBandParam {
  int32_t angle;      /* degrees by which the band is turned */
  int32_t shape;      /* 0: a straight band; otherwise a round one */
  int32_t blurMode;   /* 0: box; otherwise Gaussian */
  int32_t focusSize;  /* pixels from the centre to the edge of what stays sharp; 0 acts as 1 */
  int32_t transition; /* pixels over which sharp turns to blurred */
  int32_t kernelSize; /* pixels of the blur's window */
  int32_t centerX;    /* pixels from the left */
  int32_t centerY;    /* pixels from the top */
  int32_t reserved[2];
} QPXFocusBandParam;

/* 0x6500, fish-eye magnifier. A centre outside the picture answers 2 when bands are processed. */
typedef struct QPXMagnifierParam {
  int32_t centerX; /* pixels from the left */
  int32_t centerY; /* pixels from the top */
  int32_t radius;  /* pixels; what lies at this distance and beyond is copied */
} QPXMagnifierParam;

/* 0x6D00, posterise. */
typedef struct QPXPosteriseParam {
  int32_t levels; /* 2 ... 16 for each channel */
} QPXPosteriseParam;

/* What levels do to one channel, or to all three. All zero changes nothing. */
typedef struct QPXLevelRange {
  int32_t black; /* 0 ... 254: the sample that becomes black */
  int32_t white; /* 1 ... 255: the sample that becomes white, at least black + 1; 0 acts as 255 */
  double gamma;  /* 0.1 ... 10: above 1 the middle is lighter; 0 acts as 1 */
} QPXLevelRange;

/* 0x6F00, levels. */
typedef struct QPXToneLevelsParam {
  QPXLevelRange master; /* behind the channels' own */
  QPXLevelRange red;
  QPXLevelRange green;
  QPXLevelRange blue;
  int32_t outputBlack; /* 0 ... 255: what black becomes in the end */
  int32_t outputWhite; /* 1 ... 255: what white becomes, at least outputBlack; 0 acts as 255 */
  int32_t mode;        /* 0: all; 1: master alone; 2: the channels' own alone */
  int32_t reserved;
} QPXToneLevelsParam;

/* A curve through up to seven points, x ascending. No points: the curve changes nothing. */
typedef struct QPXCurvePoints {
  uint8_t count; /* 0 ... 7; 1 acts as 0 */
  uint8_t reserved;
  uint8_t point[7][2]; /* x and y */
} QPXCurvePoints;

/* 0x7000, curves. */
typedef struct QPXCurveParam {
  QPXCurvePoints master; /* behind the channels' own */
  QPXCurvePoints red;
  QPXCurvePoints green;
  QPXCurvePoints blue;
} QPXCurveParam;

/* 0x7100, brightness and contrast by one smooth curve. */
typedef struct QPXSmoothContrastParam {
  int32_t brightness; /* -100 ... 100; 0 is neutral */
  int32_t contrast;   /* -100 ... 100; 0 is neutral */
} QPXSmoothContrastParam;

/* 0x7200, exposure in stops. */
typedef struct QPXExposureStopsParam {
  double exposure; /* stops, -5 ... 5; 0 is neutral */
} QPXExposureStopsParam;

/* 0x7300, saturation. */
typedef struct QPXSaturationParam {
  int32_t saturation; /* percent, -100 ... 100; above 0 it counts half */
} QPXSaturationParam;

/* 0x7400, definition. */
typedef struct QPXDefinitionParam {
  int32_t amount;     /* percent, -100 ... 100; below 0 it smooths, above 0 it sharpens */
  int32_t windowSize; /* pixels of the window's side, 1 ... 511 */
  int32_t reserved;
} QPXDefinitionParam;

/* 0x7500, tonal ranges, each -100 ... 100, 0 neutral. */
typedef struct QPXTonalRangesParam {
  double highlights;
  double brights;
  double darks;
  double shadows;
} QPXTonalRangesParam;

/* 0x7700, colour range. */
typedef struct QPXColorRangeParam {
  int32_t colorIndex; /* 0 red, 1 orange, 2 yellow, 3 green, 4 aqua, 5 blue, 6 purple, 7 magenta;
                         others change nothing */
  int32_t hue;        /* -100 ... 100: a quarter of the range's width either way in its middle, none
                         at its ends; 0 is neutral, as below */
  int32_t saturation; /* percent, -100 ... 100 */
  int32_t lightness;  /* percent, -100 ... 100: most at mid value; above 0 lighter, but darker for
                         aqua, blue and purple */
} QPXColorRangeParam;

/* 0x7800, split toning. */
typedef struct QPXSplitToningParam {
  int32_t highlightHue;        /* degrees, 0 ... 360 */
  int32_t highlightSaturation; /* percent, 0 ... 100; 0 is neutral */
  int32_t balance;             /* -100 ... 100: above 0 more of the picture counts as highlight */
  int32_t shadowHue;           /* degrees, 0 ... 360 */
  int32_t shadowSaturation;    /* percent, 0 ... 100; 0 is neutral */
} QPXSplitToningParam;

/* 0x7900, vibrance. */
typedef struct QPXVibranceParam {
  int32_t vibrance; /* percent, -100 ... 100; 0 copies */
} QPXVibranceParam;

/* 0x7B00, Gaussian blur. */
typedef struct QPXGaussBlurParam {
  int32_t kernelSize; /* pixels of the window's side, 1 ... 383; 1 is neutral */
} QPXGaussBlurParam;

/* 0x7C00, selective colour: percent of an ink, -100 ... 100, that each of nine classes of colours
 * gains or loses. Inks in order: cyan, magenta, yellow, black. Classes in order: reds, yellows,
 * greens, cyans, blues, magentas, whites, neutrals, blacks. Black is laid on as equal parts of the
 * three other inks. */
typedef struct QPXSelectiveColorParam {
  int32_t amounts[4][9];
  int32_t reserved;
} QPXSelectiveColorParam;

/* 0x7D00, sphere. */
typedef struct QPXSphereParam {
  float
      strength; /* 0 ... 1 bulges, up to a half sphere; below 0 radians, the other way; 0 copies */
} QPXSphereParam;

/* A range of hues, which changes fully from fullFrom to fullTo and fades out towards `from` and
 * `to`: degrees in the order of the hue circle (red, yellow, green, cyan, blue, magenta), perhaps
 * past 360. All four 0 stand for the range's usual place, at which the six ranges add up to one
 * everywhere. */
typedef struct QPXHueRange {
  int32_t hue;        /* degrees added, -180 ... 180; 0 is neutral, as below */
  int32_t saturation; /* percent, -100 ... 100: from none to two and a half times as much */
  int32_t brightness; /* percent, -100 ... 100: towards the pixel's least or largest channel */
  int32_t from;
  int32_t fullFrom;
  int32_t fullTo;
  int32_t to;
} QPXHueRange;

/* 0x7F00, hue, saturation and brightness by hue. What a hue gains is the sum of all that holds for
 * it. Greys only take part in the input's tones. */
typedef struct QPXHsbAdjustParam {
  int32_t hue;        /* of all colours: degrees added, -180 ... 180 */
  int32_t saturation; /* of all colours, -100 ... 100 */
  int32_t brightness; /* of all colours, -100 ... 100 */
  QPXHueRange red;
  QPXHueRange yellow;
  QPXHueRange green;
  QPXHueRange cyan;
  QPXHueRange blue;
  QPXHueRange magenta;
  int32_t inputBrightness; /* of all tones, before anything else: -100 ... 100, 0 neutral */
  int32_t inputContrast;   /* likewise */
  int32_t reserved[2];
} QPXHsbAdjustParam;

/* 0x8000, fringe removal. */
typedef struct QPXFringeRemovalParam {
  int32_t radius;   /* pixels between which an edge is looked for */
  int32_t strength; /* percent, 0 ... 100 */
  int32_t reserved;
} QPXFringeRemovalParam;

/* A row of the channel mixer: what one channel is made of, in percent, -3200 ... 3200. */
typedef struct QPXMixerRow {
  int32_t red;
  int32_t green;
  int32_t blue;
  int32_t constant; /* of white, added */
} QPXMixerRow;

/* 0x8500, channel mixer. */
typedef struct QPXChannelMixerParam {
  int32_t mode; /* 0: colour; 1: the first row makes one grey; others answer 2 from the kernel */
  QPXMixerRow red;
  QPXMixerRow green;
  QPXMixerRow blue;
} QPXChannelMixerParam;

/* Shifts between a colour and its complement, each -100 ... 100, 0 neutral. */
typedef struct QPXColorShift {
  int32_t cyanRed;
  int32_t magentaGreen;
  int32_t yellowBlue;
} QPXColorShift;

/* 0x8700, colour balance. */
typedef struct QPXColorBalanceParam {
  QPXColorShift shadows;
  QPXColorShift midtones;
  QPXColorShift highlights;
  int32_t keepLuminosity; /* non-zero: lightness stays */
} QPXColorBalanceParam;

/* 0x9B00, fringe fade, 28 bytes on every target: two windows of hues, each of 180 degrees in
 * percent, whose colours fade to grey along edges, up to 4 pixels from where luma changes: not at
 * all by changes up to 16 levels, fully from 96 on. Hues up to 20 degrees beyond a window fade less
 * and less; those behind stay as they are, and so do flat surfaces. All zero changes nothing. */
#pragma pack(push, 4)
typedef struct QPXRemoveEdgeParam {
  int32_t left;  /* 0 ... 90: where the window of blue and purple begins, from 200 degrees on; below
                    0 acts as 0, above 90 as 90 */
  int32_t right; /* 10 ... 100: where it ends; at least 10 above `left` */
  int32_t top;   /* 0 ... 90: the window of yellow and green, from 20 degrees on, likewise */
  int32_t bottom;         /* 10 ... 100; at least 10 above `top` */
  uint8_t strength;       /* percent, 0 ... 100: how far colours of the first window fade */
  uint8_t secondStrength; /* percent, 0 ... 100: those of the second */
  uint8_t reservedBytes[2];
  union {
    const MBitmap* mask; /* null, or a grey picture of 8 bits: how much of the fade shows, 255 for
                            all. It has exactly the size of each rectangle that is processed; for
                            any other nothing is written. Read while bands are processed and never
                            copied: it stays the host's and must live as long as the engine */
    uint32_t reservedWords[2];
  } selection;
} QPXRemoveEdgeParam;
#pragma pack(pop)

/* 0x9D00 Hudson, 0x9E00 Brannan, 0x9F00 Toaster, 0xA000 Lo-fi, 0xA100 Valencia. */
typedef struct QPXMapLookParam {
  int32_t intensity; /* percent, 0 ... 150; beyond 100 the look is overdone on purpose */
} QPXMapLookParam;

/* 0xA600, crayon. */
typedef struct QPXCrayonParam {
  int32_t strokeSize; /* pixels; below 1 acts as 1 */
} QPXCrayonParam;

/* 0xAD00, complexion. */
typedef struct QPXComplexionParam {
  int32_t radiusSize; /* pixels of the window's side, 0 ... 63; below 4 the smallest window, of 3 */
  int32_t reserved[5];
} QPXComplexionParam;

/* 0x9900, vibrance and saturation. */
typedef struct QPXVibranceSaturationParam {
  int32_t vibrance;   /* percent, -100 ... 100: weak colours first; both 0 copy */
  int32_t saturation; /* percent, -100 ... 100: all colours alike */
} QPXVibranceSaturationParam;

/* 0xAE00, unsharp mask. */
typedef struct QPXUnsharpMaskParam {
  int32_t amount;    /* percent, 0 ... 500; 0 copies */
  int32_t threshold; /* 0 ... 255: differences up to this stay as they are */
  int32_t radius;    /* pixels of the blur's window around a pixel, 0 ... 191 */
} QPXUnsharpMaskParam;

/* 0xAF00, light leak. */
typedef struct QPXLightLeakParam {
  int32_t style; /* 0 ... 4; others answer 2 when bands are processed */
  int32_t angle; /* degrees by which the leak is turned */
  int32_t reserved;
} QPXLightLeakParam;

/* 0xB000, oil painting. */
typedef struct QPXOilPaintingParam {
  int32_t amount; /* percent, 0 ... 150 */
} QPXOilPaintingParam;

/* 0x11500, colour temperature. */
typedef struct QPXColorTemperatureParam {
  int32_t kelvin; /* 4000 ... 6000; 5000 copies, values outside act as the nearer end */
  int32_t reserved[2];
} QPXColorTemperatureParam;

/* 0x5B00, Polaroid: instant film. All zero is the film's colours alone. */
typedef struct QPXPolaroidParam {
  int32_t frameMode;    /* 0: the picture alone; 1: in the film's paper frame. Any other mode leaves
                           the output as it was. */
  int32_t vignetteMode; /* 0: none; 1: corners of the picture darken */
  int32_t corners;      /* percent, -100 ... 100: how much more than usual corners darken */
  int32_t reach;        /* percent, -100 ... 100: how far towards the centre */
  int32_t centerX;      /* percent of half the picture's width, -100 ... 100: the clear middle */
  int32_t centerY;      /* percent of half the picture's height, -100 ... 100 */
} QPXPolaroidParam;

/* 0x4400, rotate. The output may have any size; its middle shows the middle of the source. */
typedef struct QPXRotationParam {
  float degrees;  /* clockwise, -360 ... 360; 0 is neutral */
  uint32_t color; /* 0xRRGGBB: what lies outside */
} QPXRotationParam;

/* 0xA200, rotate with scale and fill. */
typedef struct QPXScaledRotationParam {
  float degrees;  /* clockwise, -360 ... 360; 0 is neutral */
  int32_t scale;  /* percent, 10 ... 1000; 100 is neutral, above it the picture grows; 0 acts as
                     100 */
  uint32_t color; /* 0xRRGGBB: what lies outside */
  int32_t repeat; /* non-zero: the border is repeated outside in place of the colour */
} QPXScaledRotationParam;

/* The record that about a hundred looks share, 56 bytes on every target. Each reads only some of
 * the fields: QPX_GetEffectInfo tells which. Hosts clear the record first, so that fields added
 * later are neutral. */
typedef struct QPXFilterRecord {
  int32_t pointX; /* a place or a shift, in percent of the width and of the height */
  int32_t pointY;
  int32_t amountA;   /* percent, 0 ... 100; outside values are clamped */
  int32_t intensity; /* percent of the look that replaces the source; above 100 acts as 100 */
  int32_t amountB;   /* percent, 0 ... 100; outside values are clamped */
  uint8_t flipX;     /* non-zero mirrors the textures left to right */
  uint8_t flipY;     /* non-zero mirrors the textures top to bottom */
  uint8_t style;     /* variant of the effect */
  uint8_t reservedByte;
  const MBitmap* overlayImage; /* a picture of the host's, read while bands are processed and never
                                  copied: it stays the host's and must live as long as the engine */
  uint32_t reservedWords[3 - sizeof(void*) / 4]; /* fill up what the pointer leaves of 12 bytes */
  MRect overlayRect;                             /* where overlayImage lies, in image coordinates */
  uint8_t color[3];                              /* a chosen colour: red, green, blue */
  uint8_t reservedLast;
} QPXFilterRecord;

QPX_END_DECLS

#endif /* QPX_EFFECTS_H_ */
