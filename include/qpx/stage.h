/* The records behind an engine handle: one QPXStage for each step of a chain, with one QPXBand for
 * each stage in the first of them. Hosts never make or change these; they are public because the
 * exported kernels and toolkit functions take a stage. */
#ifndef QPX_STAGE_H_
#define QPX_STAGE_H_

#include <qpx/image.h>

/* Room for the parameter records of all effects, each at its own place. */
#define QPX_PARAM_BLOCK_SIZE 4096

/* Row pointers of one plane, indexed by image row. An input table may be indexed from -marginTop to
 * height + marginBottom - 1: rows outside the picture repeat its edge rows. */
typedef uint8_t** QPXRowTable;

/* Bits of QPXBand.planeFlags: what the pipeline does to the planes of the output rectangle after
 * the kernel. A copy falls back on the fill of the same plane, if that is asked for too, where
 * input and output are the same plane. */
enum {
  QPX_FILL_PLANE0 = 1,
  QPX_FILL_PLANE1 = 2,
  QPX_FILL_PLANE2 = 4,
  QPX_COPY_PLANE0 = 8,
  QPX_COPY_PLANE1 = 16,
  QPX_COPY_PLANE2 = 32
};

/* Bits of QPXStage.lutFlags: 5 for one tone table, 9 for three, 2 for another shape. */
enum {
  QPX_LUT_PRESENT = 1,
  QPX_LUT_OTHER_SHAPE = 2, /* `lut` is a working block of the effect, no tone table */
  QPX_LUT_ONE_TABLE = 4,   /* 256 bytes for all components */
  QPX_LUT_THREE_TABLES = 8 /* 3 x 256 bytes, in component order */
};

typedef struct QPXBand {
  uint8_t* ring[3];     /* ring of this stage's input rows, per plane; ring[0] of the first band is
                           the one allocation for all rings */
  int32_t ringPitch[3]; /* bytes of a ring row */
  int32_t ringCapacity; /* rows the ring holds: 2 * margin + 1 */
  int32_t marginTop;    /* rows and columns of neighbourhood that the kernel reads on each side */
  int32_t marginBottom;
  int32_t marginLeft;
  int32_t marginRight;
  uint16_t ringPos[3];    /* next row to write, per plane */
  uint16_t ringWrap[3];   /* times the ring has wrapped; counts modulo 65536 */
  QPXRowTable inRows[3];  /* this stage's input */
  QPXRowTable outRows[3]; /* this stage's output */
  QPXRowTable secondRows[3];
  QPXRowTable maskRows;
  uint32_t planeFlags;
  uint8_t fill[3];       /* fill values of planes 0 to 2 */
  int32_t ringAllocated; /* first band only */
  int32_t ringWidth;     /* first band only: columns for which the rings were sized */
  int32_t rowsTaken; /* rows taken in since the stream began; ringPos and ringWrap of plane 0 are
                        its remainder and quotient by ringCapacity */
} QPXBand;

typedef struct QPXStage {
  PixInfo pix;
  uint32_t effectId;           /* of a merged stage: the last effect set up on it */
  int32_t fillY, fillU, fillV; /* plain colour of the effects 0x1100 and 0x1200 */
  int32_t cropMode;            /* the effect works inside the placed second input and mask */
  int32_t outHeight, outWidth;
  int32_t inHeight, inWidth;
  int32_t secondHeight, secondWidth;
  int32_t maskHeight, maskWidth;
  int32_t pitch[10];  /* of the current call: input 0-2, output 3-5, second 6-8, mask 9 */
  uint8_t* plane[10]; /* origins of the images, in the same order */
  int32_t bandLeft, bandTop, bandRight, bandBottom;             /* clipped rectangle of this call */
  int32_t prevLeft, prevTop, prevRight, prevBottom;             /* of the call before */
  int32_t lastOutLeft, lastOutTop, lastOutRight, lastOutBottom; /* last rectangle produced */
  int32_t hasMask;
  int32_t hasSecond;
  const float* forwardMatrix; /* see mbf_GetMatrix */
  const float* inverseMatrix;
  int32_t level; /* from QPXEffectList.quality: 0, 1, 3 or 5 */
  int32_t *colTableA, *colTableB, *rowTableA, *rowTableB; /* a word for each list item */
  int32_t skipR, skipG, skipB, keepR, keepG, keepB;       /* channel switches of the hue effects */
  uint32_t lutSize;                                       /* bytes in use in `lut` */
  uint32_t lutFlags;
  uint8_t* lut; /* tone table or working block; owned by the stage */
  union {
    uint8_t bytes[QPX_PARAM_BLOCK_SIZE];
    double alignment;
  } param;        /* parameter records, each effect at its place */
  QPXBand* bands; /* first stage: a band for each stage */
  int32_t listIndex;
  int32_t stageCount;    /* first stage only, as are the next two */
  int32_t ringRows;      /* sum of the ring capacities of all stages */
  uint8_t** rowTables;   /* one block behind all row tables */
  int32_t startedAtTop;  /* the stream began with row 0 */
  uint8_t* scratch2;     /* second working block; owned by the stage */
  int32_t propertyLimit; /* property 0x9200: upper bound, then value */
  int32_t propertyValue;
  struct {
    int32_t left, right, top, bottom;
  } warpRect;       /* output rectangle of the rotated effects */
  void** resources; /* textures and other objects of the effect */
} QPXStage;

#endif /* QPX_STAGE_H_ */
