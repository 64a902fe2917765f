/* Frames of the conversion: functions that take a record and convert one rectangle by it.
 *
 * A record (convert_record.h) is built by MPPCreate and held by the stages of its context. Hosts
 * convert through MPProcess (postprocess.h), which calls the chain below; the frames are there for
 * those who cut pictures up themselves.
 *
 * All frames only read the record and its tables: any number of threads may convert different
 * rectangles by one record. They allocate nothing, but for bilinear kernels of PUZUMPE_ALL
 * (convert_wide.h). */
#ifndef QPX_CONVERT_H_
#define QPX_CONVERT_H_

#include <qpx/convert_record.h>
#include <qpx/types.h>

QPX_BEGIN_DECLS

/* The shape of every frame. Returns 0 when it converted, 3 when it declines the record, having
 * written nothing, and 2 for a null argument or plane.
 *
 * `rect` lies in destination coordinates of the unrotated frame: the rectangle of the destination,
 * mirrored inside the record's destination rectangle as the record mirrors, with X and Y exchanged
 * where it exchanges them. Planes and pitches are arrays of three. `srcPlanes` point at the origin
 * of the source. `dstPlanes` point at the destination pixel that (rect->left, rect->top) is, each
 * at its own subsampling, without the byte offsets of packed formats; `dstPitch` is negated where
 * the record mirrors top-bottom. One-plane formats have the first plane and pitch in all places.
 * Source and destination must not overlap. */
typedef int32_t (*ConvFrameFunction)(const MRect* rect, const int32_t* dstPitch,
                                     const int32_t* srcPitch, uint8_t* const* dstPlanes,
                                     const uint8_t* const* srcPlanes, const ConvRecord* record);

/* The chain: tries the specialised frames in a fixed order, the general one last. Returns 0, or 2
 * for a null argument or plane, or a rectangle that leaves the record's destination. */
QPX_API int32_t ANY_ANY_Bilinear_No_Table(const MRect* rect, const int32_t* dstPitch,
                                          const int32_t* srcPitch, uint8_t* const* dstPlanes,
                                          const uint8_t* const* srcPlanes,
                                          const ConvRecord* record);

/* The general frame: every pair of formats, in every orientation, at every step. Never declines:
 * returns 0, or 2 for a null argument or plane, or a rectangle that leaves the record's
 * destination. An empty rectangle is converted by doing nothing.
 *
 * Every pixel writes the chroma of its cell; the last one in the order of the unrotated frame
 * stays. Rows of packed 4:2:2 have whole groups of two pixels. */
QPX_API int32_t ANY_ANY_C_SLOW(const MRect* rect, const int32_t* dstPitch, const int32_t* srcPitch,
                               uint8_t* const* dstPlanes, const uint8_t* const* srcPlanes,
                               const ConvRecord* record);

QPX_END_DECLS

#endif /* QPX_CONVERT_H_ */
