/* The effect engine: a chain of effects over pictures of one format and size, run band by band.
 *
 *   QPXBrightnessContrastParam param = {20, 10};
 *   QPXEffectItem item = {0x1300, &param, sizeof param};
 *   QPXEffectList list = {&item, 1, 0};
 *   QPXEngine* engine = NULL;
 *
 *   QPXCreate(&outImage, &inImage, &list, &engine);
 *
 *   for (int top = 0; top < height; top += 64) {
 *     MRect band = {0, top, width, top + 64};
 *
 *     QPXProcess(engine, &outPlanes, &inPlanes, &band);
 *   }
 *   QPXDestroy(engine);
 *
 * The images name format and size, which are fixed for the engine's life. At each call the planes
 * address the rows of the band, and `band` comes back as the rectangle that is finished.
 *
 * The host owns all pixels; the engine copies parameters at create and owns what it allocates until
 * it is destroyed. An engine belongs to one thread at a time and has no locks; distinct engines run
 * in parallel. */
#ifndef QPX_ENGINE_H_
#define QPX_ENGINE_H_

#include <qpx/stage.h>

QPX_BEGIN_DECLS

/* One row of an effect list. */
typedef struct QPXEffectItem {
  uint32_t effectId;  /* a catalogued id, a multiple of 256 */
  const void* param;  /* the effect's parameter record; may be null for an effect without one */
  uint32_t paramSize; /* its bytes; a size other than the effect's own makes the record count as all
                         zero */
} QPXEffectItem;

typedef struct QPXEffectList {
  const QPXEffectItem* items;
  uint32_t count;
  int32_t quality; /* 2, 3 or 4 choose the levels 1, 3 or 5 for effects that have them; others 0 */
} QPXEffectList;

/* Handle of an engine. */
typedef struct QPXEngine QPXEngine;

/* A band with the places of second input and mask, in input image coordinates. */
typedef struct QPXBandRect {
  int32_t left, top, right, bottom;
  int32_t secondLeft, secondTop;
  int32_t maskLeft, maskTop;
} QPXBandRect;

/* Makes an engine. Only format, width and height of the image records are read; input and output
 * have the same format. QPXCreateIn and QPXCreateMerge also take a second input of the same plane
 * structure and a mask of one 8-bit plane, either of which may be null; such an engine is driven by
 * QPXMerge.
 *
 * Neighbouring point effects of the list merge into one stage. Lists that do not merge down to one
 * stage exist for packed RGB only.
 *
 * Returns 0 and the handle; 2 for null arguments, formats that differ, an unknown format or a
 * negative output size; 3 for an effect that is unknown, not built, or not served in this format,
 * and for several stages outside packed RGB or with a rotated effect among them; 4 for no memory.
 * *handleOut is null after a failure. An empty list makes an engine that can only be destroyed. */
QPX_API int32_t QPXCreate(const MBitmap* outImage, const MBitmap* inImage,
                          const QPXEffectList* list, QPXEngine** handleOut);
QPX_API int32_t QPXCreateIn(const MBitmap* outImage, const MBitmap* inImage,
                            const MBitmap* secondImage, const MBitmap* maskImage,
                            const QPXEffectList* list, QPXEngine** handleOut);
QPX_API int32_t QPXCreateMerge(const MBitmap* outImage, const MBitmap* inImage,
                               const MBitmap* secondImage, const MBitmap* maskImage,
                               const QPXEffectList* list, QPXEngine** handleOut);

/* Release an engine and everything it owns. Null is allowed. Return 0. */
QPX_API int32_t QPXDestroy(QPXEngine* handle);
QPX_API int32_t QPXDestroyIn(QPXEngine* handle);
QPX_API int32_t QPXDestroyMerge(QPXEngine* handle);

/* Returns the large buffers of a chain (rings, row tables, tone tables) while keeping the handle,
 * which may only be destroyed afterwards. Null is allowed. Returns 0. */
QPX_API int32_t QPXFreeMemory(QPXEngine* handle);

/* Runs the chain over one band. Planes address the pixel at (left, top) of `rect` in input and
 * output alike. Where effects have margins the input pointers must lie in a whole picture, since
 * rows around the band are read through them. On return `rect` is the rectangle of rows that were
 * finished, which trails the band by the margins until the last band releases the rest; the first
 * finished row lies at the output pointers, so that these point to the first row that is not
 * finished yet, with room for QPXGetMaxOutLine rows. Bands from top to bottom give the bytes of one
 * call over the whole picture; a band that does not continue the one before starts a new stream.
 *
 * Returns 0, also for a band outside the picture, which leaves `rect` as it is; 2 for a null
 * argument or plane, an inverted rectangle, or an engine with second input or mask; 4 for no
 * memory. */
QPX_API int32_t QPXProcess(QPXEngine* handle, const QPXPlaneSet* outPlanes,
                           const QPXPlaneSet* inPlanes, MRect* rect);

/* QPXProcess with second input and mask, whose planes address the pixel of theirs that lies at
 * (left, top) of the band; both may be null where the engine was made without them. Runs the first
 * stage of a chain only. */
QPX_API int32_t QPXMerge(QPXEngine* handle, const QPXPlaneSet* outPlanes,
                         const QPXPlaneSet* inPlanes, const QPXPlaneSet* secondPlanes,
                         const QPXPlaneSet* maskPlanes, QPXBandRect* rect);

/* The two roads behind QPXProcess and QPXMerge: one stage, and a chain. Only pitch and plane of the
 * records are read, and planes address the origin of their image. The chain's road takes a null
 * rectangle for the whole picture. Results as QPXProcess. */
QPX_API int32_t QPXProcessIn(QPXEngine* handle, const MBitmap* out, const MBitmap* in,
                             const MBitmap* second, const MBitmap* mask, QPXBandRect* rect);
QPX_API int32_t QPXMultProcessIn(QPXEngine* handle, const MBitmap* out, const MBitmap* in,
                                 const MBitmap* second, const MBitmap* mask, QPXBandRect* rect);

/* With an all-zero outRect: the output that the input rectangle gives. Otherwise: the input that
 * the output rectangle needs. Both are snapped to the picture's edges. For the rotated effects it
 * also fixes the rectangle that the next QPXProcess makes, and the input is cut to the size of the
 * output: where the input is larger, hand over planes of the whole input. Returns 0, or 2 for a
 * null argument. */
QPX_API int32_t QPXCalcRect(QPXEngine* handle, MRect* outRect, MRect* inRect);

/* Makes the next band start a new stream. Returns 0, or 2 for a null handle. */
QPX_API int32_t QPXCalcRectReset(QPXEngine* handle);

/* The most rows that a band of `lines` rows can finish, given what earlier bands held back. Returns
 * 0, or 2 for a null argument. */
QPX_API int32_t QPXGetMaxOutLine(QPXEngine* handle, int32_t lines, int32_t* maxOut);

/* The property 0x9200: QPXGetProPerty gives its upper bound (`reserved` is 0, `valueSize` 4),
 * QPXSetProPerty stores a value clamped to 0 ... bound (`one` is 1). Return 0; 2 for a null
 * argument or a wrong size; 3 for any other property. */
QPX_API int32_t QPXGetProPerty(QPXEngine* handle, uint32_t propertyId, int32_t reserved,
                               int32_t* valueOut, int32_t valueSize);
QPX_API int32_t QPXSetProPerty(QPXEngine* handle, uint32_t propertyId, int32_t one,
                               const int32_t* value);

/* Version numbers (each pointer may be null) and a revision text of 16 bytes, written when
 * `textOut` is not null and `textSize` is 9 or more: give room for 16 bytes whatever textSize says.
 * Returns 0. */
QPX_API int32_t PixmorphGetVersionInfo(int32_t* major, int32_t* minor, int32_t* build,
                                       char* textOut, int32_t textSize);

/* 1 when a list of two or more effects collapses into one stage in this format, else 0, as for a
 * null list. This and the next four queries are reentrant. */
QPX_API int32_t QPXMergeable(uint32_t format, const QPXEffectList* list);

/* 1 when `second` can take over the table of `first`, else 0. */
QPX_API int32_t QPXIsSupEffMerge(uint32_t first, uint32_t second);

/* 1 when the effect's output rectangle is its input rectangle, else 0. The answers are those that
 * hosts have had since the first effects: newer ids are 0 even where they move no pixel. */
QPX_API int32_t QPXIsSameInOutArea(uint32_t effectId);

/* 1 when one of the oldest effects serves a format, judged by the colour model in its top four
 * bits; 0 for newer effects, whatever they serve: ask QPX_GetEffectInfo for those. */
QPX_API int32_t QPXIsSupport(uint32_t format, uint32_t effectId);

/* 1 when a host may split the effect's rows among threads, an engine for each; else 0. */
QPX_API int32_t QPX_IfSupportMultiThread(uint32_t effectId);

/* Runs a stage's kernel over `rect` of its row tables. _Optimized tries the kernels that are
 * written for a format and returns 3 if there is none; _Slow runs the generic form, which serves
 * every format of the oldest effects, and returns 0 even where there is none; the plain name tries
 * one, then the other. */
QPX_API int32_t QPXEffectProcess_C(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                   QPXRowTable* inRows, QPXRowTable* secondRows,
                                   QPXRowTable maskRows);
QPX_API int32_t QPXEffectProcess_C_Optimized(QPXStage* stage, const MRect* rect,
                                             QPXRowTable* outRows, QPXRowTable* inRows,
                                             QPXRowTable* secondRows, QPXRowTable maskRows);
QPX_API int32_t QPXEffectProcess_C_Slow(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                        QPXRowTable* inRows, QPXRowTable* secondRows,
                                        QPXRowTable maskRows);

/* Non-zero makes the whole process use the plain forms of all vector code, which give the same
 * bytes. For tests and for finding faults. Returns nothing; may be called at any time. */
QPX_API void QPX_UsePlainForms(int32_t on);

QPX_END_DECLS

#endif /* QPX_ENGINE_H_ */
