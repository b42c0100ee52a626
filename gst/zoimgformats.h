/* The caps formats zoimgconvert takes and gives, and the core pixel type
 * each one means byte for byte. */
#ifndef ZOIMG_GST_FORMATS_H
#define ZOIMG_GST_FORMATS_H

#include <gst/gst.h>
#include <stdint.h>

G_BEGIN_DECLS

/* How the lines of a sink format lie in a buffer. */
typedef enum {
  ZOIMG_LINES_VIDEO_INFO,  /* video/x-raw: GstVideoInfo strides, or the buffer's video meta */
  ZOIMG_LINES_BAYER,       /* video/x-bayer samples: GST_ROUND_UP_4 (width) x bytes per sample */
  ZOIMG_LINES_PACKED12     /* video/x-bayer packed 12-bit: (3 x width + 1) / 2 bytes, no padding */
} ZoImgLines;

typedef struct {
  const char *media;        /* "video/x-bayer" or "video/x-raw" */
  const char *name;         /* the caps format string */
  int64_t type_id;          /* core pixel type of the bytes */
  uint32_t pattern;         /* ZO_FLAG_BAYER_* for Bayer formats, else 0 */
  ZoImgLines lines;
  guint sample_bytes;       /* ZOIMG_LINES_BAYER: bytes per sample */
} ZoImgSinkFormat;

typedef struct {
  const char *name;         /* video/x-raw format string */
  int64_t type_id;
} ZoImgSrcFormat;

extern const ZoImgSinkFormat zoimg_sink_formats[];
extern const guint zoimg_n_sink_formats;
extern const ZoImgSrcFormat zoimg_src_formats[];
extern const guint zoimg_n_src_formats;

const ZoImgSinkFormat *zoimg_sink_format_find (const char *media, const char *name);
const ZoImgSrcFormat *zoimg_src_format_find (const char *name);

/* True when the element can turn `in` into `out`: the same caps format
 * (passed through untouched) or a pair the library's registry converts. */
gboolean zoimg_formats_convertible (const ZoImgSinkFormat * in, const ZoImgSrcFormat * out);

/* Template caps of the sink and source pads (every format listed above). */
GstCaps *zoimg_sink_template_caps (void);
GstCaps *zoimg_src_template_caps (void);

/* Line size and frame size of a video/x-bayer format (lines ZOIMG_LINES_BAYER
 * or ZOIMG_LINES_PACKED12). */
gsize zoimg_bayer_stride (const ZoImgSinkFormat * format, guint width);

G_END_DECLS

#endif
