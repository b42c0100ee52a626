/* zoimgconvert: converts camera frames through ZoImgLib.
 *
 * Sink: video/x-bayer 8-bit (bggr, gbrg, grbg, rggb), in 16-bit words
 * (<pattern>10le, 12le, 16le) and packed 12-bit (<pattern>12p, PFNC
 * BayerXX12p); video/x-raw GRAY8, GRAY16_LE, YUY2. Source: video/x-raw BGRx,
 * RGBx, BGR, RGB, RGB16, GRAY16_LE, GRAY8, as far as the library's registry
 * converts the input (zoimgformats.c has the byte-level mapping). The same
 * video/x-raw format in and out passes buffers through untouched.
 *
 * Frames are split into bands of whole line pairs converted on the
 * element's own threads through ZoPixelConverter_ConvertBand; the bytes are
 * those of one whole-frame conversion whatever the thread count.
 *
 * GStreamer lines are `stride` bytes apart; the library's are exactly its
 * line size apart (plus a destination padding), and some conversions read
 * or write a little beyond a line or the frame. Each frame is converted in
 * place when the strides fit and every byte the conversion touches lies in
 * the mapped buffer (and, on the destination side, inside the line's own
 * padding); otherwise through the element's own buffers, sized with
 * ZoPixelConverter_GetAreaBufferSizes, and copied line by line. */
#include "gstzoimgconvert.h"

#include <string.h>

#include "ZoImgLibExt.h"

GST_DEBUG_CATEGORY_STATIC (zoimg_convert_debug);
#define GST_CAT_DEFAULT zoimg_convert_debug

enum {
  PROP_0,
  PROP_INTERPOLATE,
  PROP_RED_GAIN,
  PROP_GREEN_GAIN,
  PROP_BLUE_GAIN,
  PROP_THREADS
};

#define DEFAULT_INTERPOLATE TRUE
#define DEFAULT_GAIN 1.0
#define MAX_GAIN 64.0
#define DEFAULT_THREADS 0
#define MAX_THREADS 64

G_DEFINE_TYPE (GstZoImgConvert, gst_zoimg_convert, GST_TYPE_BASE_TRANSFORM);
GST_ELEMENT_REGISTER_DEFINE (zoimgconvert, "zoimgconvert", GST_RANK_NONE, GST_TYPE_ZOIMG_CONVERT);

/* ---- Caps ---- */

static gboolean
structure_allows (const GstStructure * s, const char *format)
{
  const GValue *v = gst_structure_get_value (s, "format");
  guint i;

  if (v == NULL)
    return TRUE;
  if (G_VALUE_HOLDS_STRING (v))
    return g_strcmp0 (g_value_get_string (v), format) == 0;
  if (GST_VALUE_HOLDS_LIST (v)) {
    for (i = 0; i < gst_value_list_get_size (v); i++) {
      const GValue *item = gst_value_list_get_value (v, i);
      if (G_VALUE_HOLDS_STRING (item) && g_strcmp0 (g_value_get_string (item), format) == 0)
        return TRUE;
    }
  }
  return FALSE;
}

static const char *const geometry_fields[] = { "width", "height", "framerate", "pixel-aspect-ratio" };

/* A structure of `media` with the geometry of `from` and the formats listed
 * (a plain string when there is one). Takes `formats`. */
static GstStructure *
structure_with_formats (const char *media, const GstStructure * from, GValue * formats)
{
  GstStructure *s = gst_structure_new_empty (media);
  guint i;

  for (i = 0; i < G_N_ELEMENTS (geometry_fields); i++) {
    const GValue *v = gst_structure_get_value (from, geometry_fields[i]);
    if (v != NULL)
      gst_structure_set_value (s, geometry_fields[i], v);
  }
  if (gst_value_list_get_size (formats) == 1)
    gst_structure_set_value (s, "format", gst_value_list_get_value (formats, 0));
  else
    gst_structure_set_value (s, "format", formats);
  g_value_unset (formats);
  return s;
}

static void
append_format (GValue * list, const char *name)
{
  GValue v = G_VALUE_INIT;
  g_value_init (&v, G_TYPE_STRING);
  g_value_set_string (&v, name);
  gst_value_list_append_and_take_value (list, &v);
}

/* Source caps from sink caps: every output format some allowed input
 * format converts to. */
static void
src_caps_for (const GstStructure * in, GstCaps ** result)
{
  const char *media = gst_structure_get_name (in);
  GValue list = G_VALUE_INIT;
  guint o, i;

  g_value_init (&list, GST_TYPE_LIST);
  for (o = 0; o < zoimg_n_src_formats; o++) {
    for (i = 0; i < zoimg_n_sink_formats; i++) {
      const ZoImgSinkFormat *f = &zoimg_sink_formats[i];
      if (strcmp (f->media, media) == 0 && structure_allows (in, f->name)
          && zoimg_formats_convertible (f, &zoimg_src_formats[o])) {
        append_format (&list, zoimg_src_formats[o].name);
        break;
      }
    }
  }
  if (gst_value_list_get_size (&list) == 0)
    g_value_unset (&list);
  else
    *result = gst_caps_merge_structure (*result, structure_with_formats ("video/x-raw", in, &list));
}

/* Sink caps from source caps: every input format that converts to some
 * allowed output format, Bayer and raw in separate structures. */
static void
sink_caps_for (const GstStructure * out, GstCaps ** result)
{
  static const char *const medias[] = { "video/x-bayer", "video/x-raw" };
  guint m, o, i;

  if (!gst_structure_has_name (out, "video/x-raw"))
    return;
  for (m = 0; m < G_N_ELEMENTS (medias); m++) {
    GValue list = G_VALUE_INIT;
    g_value_init (&list, GST_TYPE_LIST);
    for (i = 0; i < zoimg_n_sink_formats; i++) {
      const ZoImgSinkFormat *f = &zoimg_sink_formats[i];
      if (strcmp (f->media, medias[m]) != 0)
        continue;
      for (o = 0; o < zoimg_n_src_formats; o++) {
        if (structure_allows (out, zoimg_src_formats[o].name) && zoimg_formats_convertible (f, &zoimg_src_formats[o])) {
          append_format (&list, f->name);
          break;
        }
      }
    }
    if (gst_value_list_get_size (&list) == 0)
      g_value_unset (&list);
    else
      *result = gst_caps_merge_structure (*result, structure_with_formats (medias[m], out, &list));
  }
}

static GstCaps *
gst_zoimg_convert_transform_caps (GstBaseTransform * bt, GstPadDirection direction, GstCaps * caps,
    GstCaps * filter)
{
  GstCaps *result = gst_caps_new_empty ();
  guint i;

  for (i = 0; i < gst_caps_get_size (caps); i++) {
    GstCapsFeatures *features = gst_caps_get_features (caps, i);
    if (features != NULL && !gst_caps_features_is_any (features)
        && !gst_caps_features_is_equal (features, GST_CAPS_FEATURES_MEMORY_SYSTEM_MEMORY))
      continue;
    if (direction == GST_PAD_SINK)
      src_caps_for (gst_caps_get_structure (caps, i), &result);
    else
      sink_caps_for (gst_caps_get_structure (caps, i), &result);
  }
  if (filter != NULL) {
    GstCaps *both = gst_caps_intersect_full (filter, result, GST_CAPS_INTERSECT_FIRST);
    gst_caps_unref (result);
    result = both;
  }
  GST_DEBUG_OBJECT (bt, "%s caps %" GST_PTR_FORMAT " give %" GST_PTR_FORMAT,
      direction == GST_PAD_SINK ? "sink" : "source", caps, result);
  return result;
}

/* Output caps: the input's own format when downstream takes it (nothing to
 * convert), else the first format in order of preference; the input's
 * geometry. */
static GstCaps *
gst_zoimg_convert_fixate_caps (GstBaseTransform * bt G_GNUC_UNUSED, GstPadDirection direction, GstCaps * caps,
    GstCaps * othercaps)
{
  const GstStructure *in = gst_caps_get_structure (caps, 0);
  const char *in_format = gst_structure_get_string (in, "format");
  GstStructure *s = NULL;
  GstCaps *result;
  guint i;

  if (gst_caps_is_empty (othercaps))
    return othercaps;
  if (direction == GST_PAD_SINK && in_format != NULL && gst_structure_has_name (in, "video/x-raw")) {
    for (i = 0; i < gst_caps_get_size (othercaps) && s == NULL; i++) {
      if (structure_allows (gst_caps_get_structure (othercaps, i), in_format)) {
        s = gst_structure_copy (gst_caps_get_structure (othercaps, i));
        gst_structure_set (s, "format", G_TYPE_STRING, in_format, NULL);
      }
    }
  }
  if (s == NULL)
    s = gst_structure_copy (gst_caps_get_structure (othercaps, 0));
  for (i = 0; i < G_N_ELEMENTS (geometry_fields); i++) {
    const GValue *v = gst_structure_get_value (in, geometry_fields[i]);
    if (v != NULL && gst_value_is_fixed (v) && gst_structure_has_field (s, geometry_fields[i])) {
      GValue both = G_VALUE_INIT;
      if (gst_value_intersect (&both, v, gst_structure_get_value (s, geometry_fields[i]))) {
        gst_structure_set_value (s, geometry_fields[i], &both);
        g_value_unset (&both);
      }
    }
  }
  gst_caps_unref (othercaps);
  result = gst_caps_new_empty ();
  gst_caps_append_structure (result, s);
  return gst_caps_fixate (result);
}

/* Width, height and format of sink caps. */
static const ZoImgSinkFormat *
parse_sink_caps (GstCaps * caps, guint * width, guint * height)
{
  const GstStructure *s = gst_caps_get_structure (caps, 0);
  gint w = 0, h = 0;

  if (!gst_structure_get_int (s, "width", &w) || !gst_structure_get_int (s, "height", &h) || w <= 0 || h <= 0)
    return NULL;
  *width = (guint) w;
  *height = (guint) h;
  return zoimg_sink_format_find (gst_structure_get_name (s), gst_structure_get_string (s, "format"));
}

static gboolean
gst_zoimg_convert_get_unit_size (GstBaseTransform * bt G_GNUC_UNUSED, GstCaps * caps, gsize * size)
{
  GstVideoInfo info;
  guint width, height;
  const ZoImgSinkFormat *f;

  if (gst_structure_has_name (gst_caps_get_structure (caps, 0), "video/x-bayer")) {
    f = parse_sink_caps (caps, &width, &height);
    if (f == NULL)
      return FALSE;
    *size = zoimg_bayer_stride (f, width) * height;
    return TRUE;
  }
  if (!gst_video_info_from_caps (&info, caps))
    return FALSE;
  *size = GST_VIDEO_INFO_SIZE (&info);
  return TRUE;
}

/* YUY2 is converted with the BT.601 studio-range matrix: other matrices or
 * ranges stated by the caps are refused rather than given wrong colours. */
static gboolean
yuv_colorimetry_ok (GstZoImgConvert * self, GstCaps * caps)
{
  const char *text = gst_structure_get_string (gst_caps_get_structure (caps, 0), "colorimetry");
  GstVideoColorimetry c;

  if (text == NULL || !gst_video_colorimetry_from_string (&c, text))
    return TRUE;
  if ((c.matrix == GST_VIDEO_COLOR_MATRIX_BT601 || c.matrix == GST_VIDEO_COLOR_MATRIX_UNKNOWN)
      && (c.range == GST_VIDEO_COLOR_RANGE_16_235 || c.range == GST_VIDEO_COLOR_RANGE_UNKNOWN))
    return TRUE;
  GST_ELEMENT_WARNING (self, CORE, NEGOTIATION, (NULL),
      ("YUY2 is converted as BT.601 studio range only; the caps say colorimetry %s", text));
  return FALSE;
}

static gboolean
gst_zoimg_convert_set_caps (GstBaseTransform * bt, GstCaps * incaps, GstCaps * outcaps)
{
  GstZoImgConvert *self = GST_ZOIMG_CONVERT (bt);
  const ZoImgSinkFormat *in;
  const ZoImgSrcFormat *out;
  guint width, height;

  in = parse_sink_caps (incaps, &width, &height);
  if (in == NULL || !gst_video_info_from_caps (&self->out_info, outcaps))
    return FALSE;
  out = zoimg_src_format_find (gst_structure_get_string (gst_caps_get_structure (outcaps, 0), "format"));
  if (out == NULL || !zoimg_formats_convertible (in, out))
    return FALSE;
  if (GST_VIDEO_INFO_WIDTH (&self->out_info) != (gint) width
      || GST_VIDEO_INFO_HEIGHT (&self->out_info) != (gint) height)
    return FALSE;
  if (in->lines == ZOIMG_LINES_VIDEO_INFO && !gst_video_info_from_caps (&self->in_info, incaps))
    return FALSE;
  if (in->type_id == ZO_PT_YUV8 && !yuv_colorimetry_ok (self, incaps))
    return FALSE;

  self->in_format = in;
  self->out_format = out;
  self->width = width;
  self->height = height;
  self->unpacker = NULL;
  self->converter = NULL;
  if (strcmp (in->media, "video/x-raw") == 0 && strcmp (in->name, out->name) == 0) {
    gst_base_transform_set_passthrough (bt, TRUE);
    return TRUE;
  }
  gst_base_transform_set_passthrough (bt, FALSE);
  if (in->lines == ZOIMG_LINES_PACKED12) {
    /* The registry converts packed Bayer through a chain of two registered
     * converters: unpacking to 12-bit words, then demosaicing. The element
     * runs the same two stages itself, so that both run in bands and the
     * words stay in its own buffer. Without gains the bytes are the
     * chain's. With gains they differ on purpose: the chain hands the
     * caller's filter to its first stage only (which applies none), so its
     * demosaicing runs unfiltered; the element applies the gains when
     * demosaicing, as for 12-bit words. */
    self->unpacker = ZoPixelTypeFactory_GetConverter (in->type_id, ZO_PT_BAYER_RGB12);
    self->converter = ZoPixelTypeFactory_GetConverter (ZO_PT_BAYER_RGB12, out->type_id);
    if (self->unpacker == NULL)
      return FALSE;
  } else {
    self->converter = ZoPixelTypeFactory_GetConverter (in->type_id, out->type_id);
  }
  GST_DEBUG_OBJECT (self, "%s %s -> %s, %ux%u", in->media, in->name, out->name, width, height);
  return self->converter != NULL;
}

/* ---- Bands ---- */

/* One conversion step over a whole frame, run in bands. */
typedef struct {
  const ZoPixelConverter *converter;
  const ZoRGBFilter *filter;
  const guint8 *source;
  guint32 source_width;         /* source lines lie GetSourceByteSize (source_width) apart */
  guint8 *destination;
  guint32 padding;              /* destination lines: GetDestinationByteSize (width) + padding */
  guint32 width, height, flags;
  /* When set, the band's lines are then copied from `destination` to here. */
  guint8 *copy_to;
  gsize copy_stride;
  gsize copy_bytes;
  gint result;                  /* first failing result code, atomically set */
} ZoImgStep;

static void
step_band (gpointer data, guint part, guint count)
{
  ZoImgStep *s = data;
  /* Bands of whole line pairs: replicating Bayer conversions work on pairs. */
  guint32 per = GST_ROUND_UP_2 ((s->height + count - 1) / count);
  guint32 first = per * part, lines, i, r;
  gsize line_bytes;

  if (first >= s->height)
    return;
  lines = MIN (per, s->height - first);
  r = ZoPixelConverter_ConvertBand (s->converter, s->filter, s->source, s->source_width, s->height,
      s->destination, s->width, s->height, s->width, s->height, s->flags, s->padding, first, lines);
  if (r != ZO_OK) {
    g_atomic_int_compare_and_exchange (&s->result, 0, (gint) r);
    return;
  }
  if (s->copy_to == NULL)
    return;
  line_bytes = (gsize) ZoPixelConverter_GetDestinationByteSize (s->converter, s->width) + s->padding;
  for (i = first; i < first + lines; i++)
    memcpy (s->copy_to + i * s->copy_stride, s->destination + i * line_bytes, s->copy_bytes);
}

static guint8 *
scratch (ZoImgScratch * b, gsize size)
{
  if (b->size < size) {
    g_free (b->data);
    b->data = g_malloc0 (size);
    b->size = size;
  }
  return b->data;
}

static void
scratch_free (ZoImgScratch * b)
{
  g_free (b->data);
  b->data = NULL;
  b->size = 0;
}

static gboolean
area_sizes (const ZoPixelConverter * c, guint32 source_width, guint32 width, guint32 height, guint32 flags,
    guint32 padding, ZoAreaBufferSizes * sizes)
{
  return ZoPixelConverter_GetAreaBufferSizes (c, source_width, height, width, height, width, height, flags,
      padding, sizes) == ZO_OK && sizes->sourceBytes <= G_MAXSIZE / 2 && sizes->destinationBytes <= G_MAXSIZE / 2;
}

/* What a conversion may read after a frame of `height` lines of `line`
 * bytes in a buffer of `size` bytes: replicating Bayer conversions pair an
 * odd height's last line with the line after the frame, which holds a copy
 * of line height - 2 (line 0 for a one-line frame), the last line of the
 * same colour row, as in the library's chained conversions; zeros after. */
static void
after_frame (guint8 * frame, gsize line, guint height, gsize size)
{
  gsize end = line * height;

  if (size >= end + line && height > 0) {
    memcpy (frame + end, frame + line * (height >= 2 ? height - 2 : 0), line);
    end += line;
  }
  memset (frame + end, 0, size - end);
}

/* Where a step reads its source: in place when the lines lie GetSourceByteSize
 * (source width) apart for some source width and every byte the conversion
 * reads is mapped; else a copy in `copy`, zero beyond the frame, with the
 * same lines when the stride has a source width and lines of
 * GetSourceByteSize (line_width) bytes when it has none. */
static gboolean
place_source (ZoImgStep * step, const guint8 * data, gsize stride, gsize available, guint32 line_width,
    ZoImgScratch * copy)
{
  const ZoPixelConverter *c = step->converter;
  /* Bytes of two pixels: packed sources take three. */
  guint32 pair = ZoPixelConverter_GetSourceByteSize (c, 2);
  ZoAreaBufferSizes sizes;
  gsize line, i, rows_bytes;
  guint8 *dst;

  if (pair > 0 && (stride * 2) % pair == 0 && stride * 2 / pair <= G_MAXUINT32) {
    guint32 sw = (guint32) (stride * 2 / pair);
    if (sw >= step->width && ZoPixelConverter_GetSourceByteSize (c, sw) == stride) {
      if (area_sizes (c, sw, step->width, step->height, step->flags, 0, &sizes)
          && sizes.sourceBytes <= available) {
        step->source = data;
        step->source_width = sw;
        return TRUE;
      }
      /* The same lines, with room for what is read past the frame. */
      line_width = sw;
    }
  }
  if (!area_sizes (c, line_width, step->width, step->height, step->flags, 0, &sizes))
    return FALSE;
  line = ZoPixelConverter_GetSourceByteSize (c, line_width);
  rows_bytes = line * step->height;
  dst = scratch (copy, MAX (sizes.sourceBytes, rows_bytes + line));
  for (i = 0; i < step->height; i++) {
    memcpy (dst + i * line, data + i * stride, MIN (line, stride));
    if (line > stride)
      memset (dst + i * line + stride, 0, line - stride);
  }
  after_frame (dst, line, step->height, copy->size);
  step->source = dst;
  step->source_width = line_width;
  return TRUE;
}

/* Where a step writes: in place when the destination lines fit the stride
 * and every byte written lies in the mapped buffer and in no other line;
 * else in `copy` (lines of GetDestinationByteSize (width) bytes), copied to
 * the frame band by band. */
static gboolean
place_destination (ZoImgStep * step, guint8 * data, gsize stride, gsize available, ZoImgScratch * copy)
{
  const ZoPixelConverter *c = step->converter;
  gsize line = ZoPixelConverter_GetDestinationByteSize (c, step->width);
  ZoAreaBufferSizes sizes;

  if (stride >= line && stride - line <= G_MAXUINT32) {
    guint32 padding = (guint32) (stride - line);
    gsize frame = stride * (step->height - 1) + line;
    if (area_sizes (c, step->source_width, step->width, step->height, step->flags, padding, &sizes)
        && sizes.destinationBytesBefore == 0 && sizes.destinationBytes <= available
        && sizes.destinationBytes <= frame + padding) {
      step->destination = data;
      step->padding = padding;
      step->copy_to = NULL;
      return TRUE;
    }
  }
  if (!area_sizes (c, step->source_width, step->width, step->height, step->flags, 0, &sizes))
    return FALSE;
  step->destination = scratch (copy, sizes.destinationBytesBefore + sizes.destinationBytes)
      + sizes.destinationBytesBefore;
  step->padding = 0;
  step->copy_to = data;
  step->copy_stride = stride;
  step->copy_bytes = line;
  return TRUE;
}

static guint
thread_count (guint threads)
{
  if (threads == 0)
    threads = g_get_num_processors ();
  return CLAMP (threads, 1, MAX_THREADS);
}

/* Brings the filter and the threads in line with the properties; false
 * when the filter cannot be made. */
static gboolean
update_streaming_state (GstZoImgConvert * self, const gdouble gains[3], guint threads)
{
  if (self->workers == NULL || zoimg_workers_count (self->workers) != threads) {
    zoimg_workers_free (self->workers);
    self->workers = zoimg_workers_new (threads);
  }
  if (memcmp (gains, self->filter_gains, sizeof self->filter_gains) == 0)
    return TRUE;
  if (gains[0] == 1.0 && gains[1] == 1.0 && gains[2] == 1.0) {
    ZoRGBFilter_Destroy (self->filter);
    self->filter = NULL;
  } else {
    /* 16-bit tables: converters from 16-bit samples index them with whole
     * words; the 8-bit tables get the same gains. */
    if (self->filter == NULL)
      self->filter = ZoRGBFilter_Init (16);
    if (self->filter == NULL
        || ZoRGBFilter_SetMultipliers (self->filter, gains[0], gains[1], gains[2], 0, 0, 0) != ZO_OK)
      return FALSE;
  }
  memcpy (self->filter_gains, gains, sizeof self->filter_gains);
  return TRUE;
}

static GstFlowReturn
run_step (GstZoImgConvert * self, ZoImgStep * step)
{
  step->result = 0;
  zoimg_workers_run (self->workers, step_band, step);
  if (step->result != 0) {
    GST_ELEMENT_ERROR (self, STREAM, FAILED, (NULL), ("ZoImgLib conversion failed with result %d", step->result));
    return GST_FLOW_ERROR;
  }
  return GST_FLOW_OK;
}

static GstFlowReturn
gst_zoimg_convert_transform (GstBaseTransform * bt, GstBuffer * inbuf, GstBuffer * outbuf)
{
  GstZoImgConvert *self = GST_ZOIMG_CONVERT (bt);
  const ZoImgSinkFormat *in = self->in_format;
  GstVideoFrame in_frame, out_frame;
  GstMapInfo in_map;
  const guint8 *src;
  guint8 *out;
  gsize src_stride, src_available;
  gboolean interpolate;
  gdouble gains[3];
  guint threads;
  ZoImgStep step = { 0 };
  GstFlowReturn ret = GST_FLOW_ERROR;

  if (self->converter == NULL)
    return GST_FLOW_NOT_NEGOTIATED;

  GST_OBJECT_LOCK (self);
  interpolate = self->interpolate;
  memcpy (gains, self->gains, sizeof gains);
  threads = thread_count (self->threads);
  GST_OBJECT_UNLOCK (self);
  if (!update_streaming_state (self, gains, threads)) {
    GST_ELEMENT_ERROR (self, RESOURCE, NO_SPACE_LEFT, (NULL), ("no memory for the gain tables"));
    return GST_FLOW_ERROR;
  }

  if (in->lines == ZOIMG_LINES_VIDEO_INFO) {
    if (!gst_video_frame_map (&in_frame, &self->in_info, inbuf, GST_MAP_READ))
      goto map_failed;
    src = GST_VIDEO_FRAME_PLANE_DATA (&in_frame, 0);
    src_stride = GST_VIDEO_FRAME_PLANE_STRIDE (&in_frame, 0);
    src_available = (const guint8 *) in_frame.map[0].data + in_frame.map[0].size - src;
  } else {
    if (!gst_buffer_map (inbuf, &in_map, GST_MAP_READ))
      goto map_failed;
    src = in_map.data;
    src_stride = zoimg_bayer_stride (in, self->width);
    src_available = in_map.size;
    if (in_map.size < src_stride * self->height) {
      GST_ELEMENT_ERROR (self, STREAM, FORMAT, (NULL),
          ("%s buffer of %" G_GSIZE_FORMAT " bytes, a %ux%u frame takes %" G_GSIZE_FORMAT, in->name,
              in_map.size, self->width, self->height, src_stride * self->height));
      gst_buffer_unmap (inbuf, &in_map);
      return GST_FLOW_ERROR;
    }
  }
  if (!gst_video_frame_map (&out_frame, &self->out_info, outbuf, GST_MAP_WRITE))
    goto out_map_failed;

  /* Only the frame's own lines are read from the buffer: what lies after
   * them is not part of the frame (see after_frame for what is read in its
   * place). */
  src_available = MIN (src_available, src_stride * self->height);
  step.filter = self->filter;
  step.width = self->width;
  step.height = self->height;

  if (self->unpacker != NULL) {
    /* Packed 12-bit Bayer: first into 12-bit words in the element's buffer,
     * lines of an even number of words plus one, so that the word an odd
     * width's last group writes past its line stays in the line's own
     * padding; one line more for replicating conversions of odd heights,
     * which read one line past the frame (see after_frame). */
    guint32 words_width = GST_ROUND_UP_2 (self->width) + 2;
    gsize words_line = (gsize) words_width * 2;
    ZoAreaBufferSizes sizes;
    gsize words_size;

    step.converter = self->unpacker;
    step.flags = 0;
    if (!place_source (&step, src, src_stride, src_available, GST_ROUND_UP_2 (self->width), &self->source_copy))
      goto size_failed;
    step.padding = (guint32) (words_line - (gsize) self->width * 2);
    if (!area_sizes (self->unpacker, step.source_width, self->width, self->height, 0, step.padding, &sizes)
        || sizes.destinationBytesBefore != 0)
      goto size_failed;
    words_size = MAX (sizes.destinationBytes, words_line * (self->height + 1));
    step.destination = scratch (&self->words, words_size);
    step.copy_to = NULL;
    if ((ret = run_step (self, &step)) != GST_FLOW_OK)
      goto done;
    after_frame (step.destination, words_line, self->height, words_size);
    ret = GST_FLOW_ERROR;
    src = step.destination;
    src_stride = words_line;
    src_available = words_size;
  }

  step.converter = self->converter;
  step.flags = in->pattern | (interpolate ? ZO_FLAG_BAYER_INTERPOLATE : 0);
  out = GST_VIDEO_FRAME_PLANE_DATA (&out_frame, 0);
  if (!place_source (&step, src, src_stride, src_available, self->width, &self->source_copy)
      || !place_destination (&step, out, GST_VIDEO_FRAME_PLANE_STRIDE (&out_frame, 0),
          (guint8 *) out_frame.map[0].data + out_frame.map[0].size - out, &self->output_copy))
    goto size_failed;
  ret = run_step (self, &step);
  goto done;

size_failed:
  GST_ELEMENT_ERROR (self, STREAM, FAILED, (NULL), ("frame of %ux%u too large to convert", self->width,
          self->height));
done:
  gst_video_frame_unmap (&out_frame);
  if (in->lines == ZOIMG_LINES_VIDEO_INFO)
    gst_video_frame_unmap (&in_frame);
  else
    gst_buffer_unmap (inbuf, &in_map);
  return ret;

out_map_failed:
  if (in->lines == ZOIMG_LINES_VIDEO_INFO)
    gst_video_frame_unmap (&in_frame);
  else
    gst_buffer_unmap (inbuf, &in_map);
map_failed:
  GST_ELEMENT_ERROR (self, RESOURCE, FAILED, (NULL), ("could not map a buffer"));
  return GST_FLOW_ERROR;
}

/* ---- Object ---- */

static gboolean
gst_zoimg_convert_stop (GstBaseTransform * bt)
{
  GstZoImgConvert *self = GST_ZOIMG_CONVERT (bt);

  zoimg_workers_free (self->workers);
  self->workers = NULL;
  scratch_free (&self->source_copy);
  scratch_free (&self->words);
  scratch_free (&self->output_copy);
  return TRUE;
}

static void
gst_zoimg_convert_finalize (GObject * object)
{
  GstZoImgConvert *self = GST_ZOIMG_CONVERT (object);

  gst_zoimg_convert_stop (GST_BASE_TRANSFORM (object));
  ZoRGBFilter_Destroy (self->filter);
  G_OBJECT_CLASS (gst_zoimg_convert_parent_class)->finalize (object);
}

static void
gst_zoimg_convert_set_property (GObject * object, guint id, const GValue * value, GParamSpec * pspec)
{
  GstZoImgConvert *self = GST_ZOIMG_CONVERT (object);

  GST_OBJECT_LOCK (self);
  switch (id) {
    case PROP_INTERPOLATE:
      self->interpolate = g_value_get_boolean (value);
      break;
    case PROP_RED_GAIN:
    case PROP_GREEN_GAIN:
    case PROP_BLUE_GAIN:
      self->gains[id - PROP_RED_GAIN] = g_value_get_double (value);
      break;
    case PROP_THREADS:
      self->threads = g_value_get_uint (value);
      break;
    default:
      G_OBJECT_WARN_INVALID_PROPERTY_ID (object, id, pspec);
      break;
  }
  GST_OBJECT_UNLOCK (self);
}

static void
gst_zoimg_convert_get_property (GObject * object, guint id, GValue * value, GParamSpec * pspec)
{
  GstZoImgConvert *self = GST_ZOIMG_CONVERT (object);

  GST_OBJECT_LOCK (self);
  switch (id) {
    case PROP_INTERPOLATE:
      g_value_set_boolean (value, self->interpolate);
      break;
    case PROP_RED_GAIN:
    case PROP_GREEN_GAIN:
    case PROP_BLUE_GAIN:
      g_value_set_double (value, self->gains[id - PROP_RED_GAIN]);
      break;
    case PROP_THREADS:
      g_value_set_uint (value, self->threads);
      break;
    default:
      G_OBJECT_WARN_INVALID_PROPERTY_ID (object, id, pspec);
      break;
  }
  GST_OBJECT_UNLOCK (self);
}

static void
gst_zoimg_convert_class_init (GstZoImgConvertClass * klass)
{
  GObjectClass *gobject_class = G_OBJECT_CLASS (klass);
  GstElementClass *element_class = GST_ELEMENT_CLASS (klass);
  GstBaseTransformClass *bt_class = GST_BASE_TRANSFORM_CLASS (klass);
  static const char *const gain_names[] = { "red-gain", "green-gain", "blue-gain" };
  static const char *const gain_blurbs[] = {
    "Red gain (white balance), applied by the library's filter in the same pass",
    "Green gain (white balance), applied by the library's filter in the same pass",
    "Blue gain (white balance), applied by the library's filter in the same pass"
  };
  GstCaps *caps;
  guint i;

  gobject_class->set_property = gst_zoimg_convert_set_property;
  gobject_class->get_property = gst_zoimg_convert_get_property;
  gobject_class->finalize = gst_zoimg_convert_finalize;

  g_object_class_install_property (gobject_class, PROP_INTERPOLATE,
      g_param_spec_boolean ("interpolate", "Interpolate",
          "Demosaic Bayer input by interpolation; false replicates each 2x2 cell",
          DEFAULT_INTERPOLATE, G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS | GST_PARAM_MUTABLE_PLAYING));
  for (i = 0; i < 3; i++)
    g_object_class_install_property (gobject_class, PROP_RED_GAIN + i,
        g_param_spec_double (gain_names[i], gain_names[i], gain_blurbs[i], 0.0, MAX_GAIN, DEFAULT_GAIN,
            G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS | GST_PARAM_MUTABLE_PLAYING));
  g_object_class_install_property (gobject_class, PROP_THREADS,
      g_param_spec_uint ("threads", "Threads",
          "Threads converting bands of each frame (0 = one per core); the output does not depend on it",
          0, MAX_THREADS, DEFAULT_THREADS, G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS | GST_PARAM_MUTABLE_PLAYING));

  caps = zoimg_sink_template_caps ();
  gst_element_class_add_pad_template (element_class, gst_pad_template_new ("sink", GST_PAD_SINK, GST_PAD_ALWAYS,
          caps));
  gst_caps_unref (caps);
  caps = zoimg_src_template_caps ();
  gst_element_class_add_pad_template (element_class, gst_pad_template_new ("src", GST_PAD_SRC, GST_PAD_ALWAYS,
          caps));
  gst_caps_unref (caps);
  gst_element_class_set_static_metadata (element_class, "ZoImgLib converter", "Filter/Converter/Video",
      "Converts 8- to 16-bit and packed 12-bit Bayer, gray and YUY2 frames to RGB or gray with ZoImgLib",
      "ZoImgLib developers");

  bt_class->transform_caps = GST_DEBUG_FUNCPTR (gst_zoimg_convert_transform_caps);
  bt_class->fixate_caps = GST_DEBUG_FUNCPTR (gst_zoimg_convert_fixate_caps);
  bt_class->get_unit_size = GST_DEBUG_FUNCPTR (gst_zoimg_convert_get_unit_size);
  bt_class->set_caps = GST_DEBUG_FUNCPTR (gst_zoimg_convert_set_caps);
  bt_class->transform = GST_DEBUG_FUNCPTR (gst_zoimg_convert_transform);
  bt_class->stop = GST_DEBUG_FUNCPTR (gst_zoimg_convert_stop);
  bt_class->passthrough_on_same_caps = TRUE;

  GST_DEBUG_CATEGORY_INIT (zoimg_convert_debug, "zoimgconvert", 0, "ZoImgLib converter");
}

static void
gst_zoimg_convert_init (GstZoImgConvert * self)
{
  guint i;

  self->interpolate = DEFAULT_INTERPOLATE;
  self->threads = DEFAULT_THREADS;
  for (i = 0; i < 3; i++) {
    self->gains[i] = DEFAULT_GAIN;
    self->filter_gains[i] = DEFAULT_GAIN;
  }
}

static gboolean
plugin_init (GstPlugin * plugin)
{
  return GST_ELEMENT_REGISTER (zoimgconvert, plugin);
}

GST_PLUGIN_DEFINE (GST_VERSION_MAJOR, GST_VERSION_MINOR, zoimg,
    "ZoImgLib pixel format conversion: Bayer, packed Bayer, gray and YUV to RGB", plugin_init, ZOIMG_GST_VERSION,
    "Proprietary", "ZoImgLib", "https://example.invalid/zoimglib")
