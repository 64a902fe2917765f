/* Kernels that undo a look: from a filtered picture they make the one before the filter, as near as
 * eight bits and the look's own clipping let it be. Called as the kernels of kernels_curves.h:
 * the pixels of one rectangle, cut to the picture, from `inRows` to `outRows`.
 *
 * _RGB24 takes BGR24 and RGB24, _NV21 NV21, converted as by the looks' own YUV forms; on a stage of
 * another format a kernel writes nothing and returns 0. In YUV a rectangle's top and left are even.
 * Each look is undone at one strength, given below: what was filtered at another comes back
 * changed.
 *
 * The stage is one that QPXCreate made for the effect whose id is given, of the same size as the
 * picture that was filtered, so that textures lie where the look laid them. Its tables are only
 * read, so that calls on distinct rectangles may run at the same time in several threads. All
 * return 0, or 2 for a null argument or a stage without the textures or tables. */
#ifndef QPX_KERNELS_INVERSE_H_
#define QPX_KERNELS_INVERSE_H_

#include <qpx/stage.h>

QPX_BEGIN_DECLS

/* 0xB900. Undoes NewReversal at strength 100. Works on any stage. */
QPX_API int32_t RE_NEWREVERSAL_RGB24(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                     QPXRowTable* inRows);
QPX_API int32_t RE_NEWREVERSAL_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                    QPXRowTable* inRows);

/* 0xBA00. Undoes FleetingTime. */
QPX_API int32_t RE_FleetingTime_RGB24(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                      QPXRowTable* inRows);
QPX_API int32_t RE_FleetingTime_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                     QPXRowTable* inRows);

/* 0xBC00. Undoes WarmLomo of curve strength 100 and mask strength 68: each channel becomes the
 * smallest value whose filtered one is nearest. */
QPX_API int32_t RE_WarmLomo_RGB24(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                  QPXRowTable* inRows);
QPX_API int32_t RE_WarmLomo_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                 QPXRowTable* inRows);

/* 0xBD00. Undoes SoftPink of curve strength and mask strength 100. */
QPX_API int32_t RE_SoftPink_RGB24(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                  QPXRowTable* inRows);
QPX_API int32_t RE_SoftPink_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                                 QPXRowTable* inRows);

/* 0xBE00. Undoes RIXI at strength 100. Works on any stage. */
QPX_API int32_t RE_RIXI_RGB24(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                              QPXRowTable* inRows);
QPX_API int32_t RE_RIXI_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                             QPXRowTable* inRows);

QPX_END_DECLS

#endif /* QPX_KERNELS_INVERSE_H_ */
