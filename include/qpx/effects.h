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
                        clear    circle grows in tenths, 0 ... 7 */
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
                      middle   clear, 100 begins at the centre */
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
