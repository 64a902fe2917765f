/* Everything that libqpxengine exports, but for the textures and tables that it carries: they are
 * in qpx/assets.h, which is generated with the library. */
#ifndef QPX_QPX_H_
#define QPX_QPX_H_

#include <qpx/blend.h>
#include <qpx/contours.h>
#include <qpx/convert.h>
#include <qpx/convert_kernels.h>
#include <qpx/convert_record.h>
#include <qpx/convert_wide.h>
#include <qpx/curves.h>
#include <qpx/cutout.h>
#include <qpx/effects.h>
#include <qpx/engine.h>
#include <qpx/etc.h>
#include <qpx/heap_check.h>
#include <qpx/image.h>
#include <qpx/image_convert.h>
#include <qpx/kernels.h>
#include <qpx/kernels_adjust.h>
#include <qpx/kernels_curves.h>
#include <qpx/kernels_inverse.h>
#include <qpx/log.h>
#include <qpx/max_flow.h>
#include <qpx/motion_blur.h>
#include <qpx/parallel.h>
#include <qpx/png.h>
#include <qpx/postprocess.h>
#include <qpx/retouch.h>
#include <qpx/rotate.h>
#include <qpx/streams.h>
#include <qpx/strings.h>
#include <qpx/threads.h>
#include <qpx/types.h>
#include <qpx/waterfall.h>
#include <qpx/watershed.h>

#endif /* QPX_QPX_H_ */
