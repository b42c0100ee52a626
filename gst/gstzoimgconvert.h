/* zoimgconvert: Bayer (8, 10, 12, 16-bit and packed 12-bit), gray and YUY2
 * frames into RGB or gray through ZoImgLib. */
#ifndef GST_ZOIMG_CONVERT_H
#define GST_ZOIMG_CONVERT_H

#include <gst/base/gstbasetransform.h>
#include <gst/video/video.h>

#include "ZoImgLibC.h"
#include "zoimgformats.h"
#include "zoimgworkers.h"

G_BEGIN_DECLS

#define GST_TYPE_ZOIMG_CONVERT (gst_zoimg_convert_get_type ())
G_DECLARE_FINAL_TYPE (GstZoImgConvert, gst_zoimg_convert, GST, ZOIMG_CONVERT, GstBaseTransform)

/* A growing scratch buffer owned by the element. */
typedef struct {
  guint8 *data;
  gsize size;
} ZoImgScratch;

struct _GstZoImgConvert {
  GstBaseTransform parent;

  /* Properties (under the object lock). */
  gboolean interpolate;
  gdouble gains[3];             /* red, green, blue */
  guint threads;                /* 0: one per core */

  /* Negotiated conversion (set_caps). */
  const ZoImgSinkFormat *in_format;
  const ZoImgSrcFormat *out_format;
  GstVideoInfo in_info;         /* video/x-raw input only */
  GstVideoInfo out_info;
  guint width, height;
  const ZoPixelConverter *converter;    /* to the output; for packed input from the unpacked words */
  const ZoPixelConverter *unpacker;     /* packed input: packed 12-bit Bayer to 12-bit Bayer words */

  /* Streaming-thread state. */
  ZoRGBFilter *filter;          /* null while all gains are 1 */
  gdouble filter_gains[3];
  ZoImgWorkers *workers;
  ZoImgScratch source_copy, words, output_copy;
};

GST_ELEMENT_REGISTER_DECLARE (zoimgconvert);

G_END_DECLS

#endif
