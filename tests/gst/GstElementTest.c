/* zoimgconvert in real pipelines: every output frame compared byte for byte
 * with the library's own conversion of the same input frame, at an odd and
 * an even width and an odd height, with and without gains, on one thread and
 * two; the output formats negotiation offers; passthrough.
 *
 * Run with the plugin's directory on GST_PLUGIN_PATH. */
#include <gst/app/gstappsink.h>
#include <gst/app/gstappsrc.h>
#include <gst/base/gstbasetransform.h>
#include <gst/gst.h>
#include <gst/video/video.h>
#include <stdio.h>
#include <string.h>

#include "ZoImgLibC.h"
#include "ZoImgLibExt.h"

static int failures = 0, frames_compared = 0;

#define CHECK(cond, ...) do { if (!(cond)) { fprintf (stderr, "FAIL %s:%d: ", __FILE__, __LINE__); \
      fprintf (stderr, __VA_ARGS__); fputc ('\n', stderr); failures++; } } while (0)

/* An odd height: half of 21 lines rounds up to an odd count, and two threads
 * must still split on a line pair. */
enum { ODD_W = 37, EVEN_W = 36, HEIGHT = 21, FRAMES = 2 };

/* Red, green and blue gains; 1, 1, 1: no filter. */
static const double kGains[][3] = { { 1.0, 1.0, 1.0 }, { 1.75, 0.8, 1.3 } };

/* Input formats. GStreamer lines are GST_ROUND_UP_4 (width x a) x b bytes
 * apart. The library's source comes from a PFNC name (type and pattern:
 * the caps name's meaning comes from the library's PFNC table, not from the
 * element's own) or is `from` with `flags`; YUY2's library lines hold whole
 * pixel pairs. 12-bit samples in words are also sent packed in the PFNC
 * <pattern>12p layout, compared with the library's conversion of the words
 * (with gains that is not the library's conversion of the packed frame,
 * a chain whose second stage runs without the caller's filter, while the
 * element applies the gains when demosaicing). */
static const struct {
  const char *caps, *pfnc;
  gint64 from;
  guint32 flags;
  guint a, b, bits;
  const char *out;
  gint64 to;
  gboolean interpolate;
  guint gains, threads;
} kCases[] = {
  { "video/x-bayer,format=grbg", "BayerGR8", 0, 0, 1, 1, 8, "BGRx", 0x20007, TRUE, 2, 2 },
  { "video/x-bayer,format=grbg", "BayerGR8", 0, 0, 1, 1, 8, "BGRx", 0x20007, FALSE, 2, 2 },
  { "video/x-bayer,format=rggb12le", "BayerRG12", 0, 0, 1, 2, 12, "RGB", 0x20002, TRUE, 2, 2 },
  { "video/x-bayer,format=gbrg12le", "BayerGB12", 0, 0, 1, 2, 12, "RGB", 0x20002, FALSE, 2, 2 },
  { "video/x-bayer,format=gbrg12le", "BayerGB12", 0, 0, 1, 2, 12, "BGRx", 0x20007, TRUE, 2, 2 },
  /* Full-range 16-bit samples: the most-significant-bit aligned type. */
  { "video/x-bayer,format=rggb16le", NULL, 0x120012, 0x40, 1, 2, 16, "BGRx", 0x20007, TRUE, 2, 2 },
  { "video/x-raw,format=YUY2", NULL, 0x40001, 0, 2, 1, 8, "RGB", 0x20002, TRUE, 2, 2 },
  /* The upper byte of each word; GRAY8 to GRAY8 passes buffers through. */
  { "video/x-raw,format=GRAY16_LE", NULL, 0x10005, 0, 2, 1, 16, "GRAY8", 0x10001, TRUE, 1, 2 },
  { "video/x-raw,format=GRAY8", NULL, 0x10001, 0, 1, 1, 8, "GRAY8", 0x10001, TRUE, 1, 1 },
};

/* The library's conversion of a frame whose lines lie `stride` bytes apart,
 * read as lines of GetSourceByteSize (source_width) bytes, into lines of
 * GetDestinationByteSize (width) bytes. Generous margins around both
 * buffers cover every documented over-read and over-write; the line after
 * the frame, which a replicating conversion of an odd height pairs with the
 * last line, is a copy of line HEIGHT - 2 (the last line of the same colour
 * row), as in the library's chained conversions. */
static guint8 *
library_convert (gint64 from, gint64 to, const guint8 * frame, gsize stride, guint source_width, guint width,
    guint32 flags, const double *gains)
{
  const ZoPixelConverter *c = ZoPixelTypeFactory_GetConverter (from, to);
  gsize src_line, dst_line, margin = 256;
  guint8 *src, *dst, *result;
  ZoRGBFilter *filter = NULL;
  guint32 r, y;

  CHECK (c != NULL, "no converter 0x%llx -> 0x%llx", (long long) from, (long long) to);
  src_line = ZoPixelConverter_GetSourceByteSize (c, source_width);
  dst_line = ZoPixelConverter_GetDestinationByteSize (c, width);
  src = g_malloc0 (src_line * (HEIGHT + 2) + margin);
  for (y = 0; y <= HEIGHT; y++)
    memcpy (src + y * src_line, frame + (y < HEIGHT ? y : HEIGHT - 2) * stride, src_line);
  dst = g_malloc0 (dst_line * (HEIGHT + 2) + 2 * margin);
  if (gains[0] != 1.0 || gains[1] != 1.0 || gains[2] != 1.0) {
    filter = ZoRGBFilter_Init (16);
    ZoRGBFilter_SetMultipliers (filter, gains[0], gains[1], gains[2], 0, 0, 0);
  }
  r = ZoPixelConverter_ConvertAreaFilter (c, filter, src, source_width, HEIGHT, dst + margin, width, HEIGHT, width,
      HEIGHT, flags, 0);
  CHECK (r == 0, "direct conversion answered %u", r);
  result = g_memdup2 (dst + margin, dst_line * HEIGHT);
  ZoRGBFilter_Destroy (filter);
  g_free (src);
  g_free (dst);
  return result;
}

/* `frames` in GStreamer's layout pushed through appsrc with caps `in`, into
 * `out`; each output compared, line by line through its own strides, with
 * `expected` (lines of `line` bytes). The element passes buffers through
 * when the raw format stays (GRAY8 to GRAY8), and only then. */
static void
check_appsrc (const char *in, guint8 ** frames, gsize frame_size, guint k, guint8 ** expected, gsize line,
    const double *gains, guint threads)
{
  char description[1024];
  GstElement *pipeline, *src, *sink, *conv;
  GError *error = NULL;
  guint f, i;

  g_snprintf (description, sizeof description, "appsrc name=src format=time caps=\"%s\" ! zoimgconvert name=conv threads=%u "
      "interpolate=%s red-gain=%g green-gain=%g blue-gain=%g ! video/x-raw,format=%s ! appsink name=sink sync=false",
      in, threads, kCases[k].interpolate ? "true" : "false", gains[0], gains[1], gains[2], kCases[k].out);
  pipeline = gst_parse_launch (description, &error);
  CHECK (pipeline != NULL, "cannot build '%s': %s", description, error ? error->message : "?");
  g_clear_error (&error);
  if (pipeline == NULL)
    return;
  gst_element_set_state (pipeline, GST_STATE_PLAYING);
  src = gst_bin_get_by_name (GST_BIN (pipeline), "src");
  sink = gst_bin_get_by_name (GST_BIN (pipeline), "sink");
  conv = gst_bin_get_by_name (GST_BIN (pipeline), "conv");
  for (f = 0; f < FRAMES; f++) {
    GstBuffer *b = gst_buffer_new_memdup (frames[f], frame_size);
    GST_BUFFER_PTS (b) = f * GST_SECOND / 30;
    GST_BUFFER_DURATION (b) = GST_SECOND / 30;
    gst_app_src_push_buffer (GST_APP_SRC (src), b);
  }
  gst_app_src_end_of_stream (GST_APP_SRC (src));
  for (f = 0; f < FRAMES; f++) {
    GstSample *s = gst_app_sink_try_pull_sample (GST_APP_SINK (sink), 20 * GST_SECOND);
    GstVideoInfo info;
    GstVideoFrame frame;
    if (s == NULL || !gst_video_info_from_caps (&info, gst_sample_get_caps (s))
        || !gst_video_frame_map (&frame, &info, gst_sample_get_buffer (s), GST_MAP_READ)) {
      CHECK (FALSE, "%s: frame %u missing or unreadable", description, f);
      if (s)
        gst_sample_unref (s);
      break;
    }
    frames_compared++;
    CHECK (GST_VIDEO_INFO_HEIGHT (&info) == HEIGHT, "%s: height %d", description, GST_VIDEO_INFO_HEIGHT (&info));
    for (i = 0; i < HEIGHT; i++)
      if (memcmp ((const guint8 *) GST_VIDEO_FRAME_PLANE_DATA (&frame, 0) + i * GST_VIDEO_FRAME_PLANE_STRIDE (&frame, 0),
              expected[f] + i * line, line) != 0) {
        CHECK (FALSE, "%s: frame %u, line %u differs", description, f, i);
        break;
      }
    gst_video_frame_unmap (&frame);
    gst_sample_unref (s);
  }
  /* Nothing after the last frame but the end of the stream. */
  CHECK (gst_app_sink_try_pull_sample (GST_APP_SINK (sink), 20 * GST_SECOND) == NULL
      && gst_app_sink_is_eos (GST_APP_SINK (sink)), "%s: no end of stream after %d frames", description, FRAMES);
  CHECK (gst_base_transform_is_passthrough (GST_BASE_TRANSFORM (conv)) == g_str_has_prefix (in, "video/x-raw,format="
          "GRAY8,") * g_str_equal (kCases[k].out, "GRAY8"), "%s: passthrough %d", description,
      gst_base_transform_is_passthrough (GST_BASE_TRANSFORM (conv)));
  gst_object_unref (conv);
  gst_object_unref (sink);
  gst_object_unref (src);
  gst_element_set_state (pipeline, GST_STATE_NULL);
  gst_object_unref (pipeline);
}

/* The output formats the element offers for input caps, as its source pad
 * answers a caps query with the input caps fixed upstream: the formats of
 * every structure, in this list's order, each once. Negotiation offers
 * exactly the registered pairs (and the input's own raw format): every
 * input the five RGB layouts, a gray input its own format and GRAY8. */
static void
check_negotiation (const char *in)
{
  static const char *const all[] = { "BGRx", "RGBx", "BGR", "RGB", "RGB16", "GRAY16_LE", "GRAY8", "YUY2" };
  const char *gray = strstr (in, "GRAY16_LE") ? "GRAY16_LE GRAY8 " : strstr (in, "GRAY8") ? "GRAY8 " : "";
  gchar *expected = g_strconcat ("BGRx RGBx BGR RGB RGB16 ", gray, NULL);
  gchar *description = g_strdup_printf ("appsrc ! %s ! zoimgconvert name=conv ! fakesink", in);
  GstElement *pipeline = gst_parse_launch (description, NULL), *conv;
  GString *names = g_string_new ("");
  GstPad *pad;
  GstCaps *caps;
  guint k;

  CHECK (pipeline != NULL, "cannot build '%s'", description);
  if (pipeline) {
    conv = gst_bin_get_by_name (GST_BIN (pipeline), "conv");
    pad = gst_element_get_static_pad (conv, "src");
    caps = gst_pad_query_caps (pad, NULL);
    for (k = 0; k < G_N_ELEMENTS (all); k++) {
      GstCaps *one = gst_caps_new_simple ("video/x-raw", "format", G_TYPE_STRING, all[k], NULL);
      if (gst_caps_can_intersect (caps, one))
        g_string_append_printf (names, "%s ", all[k]);
      gst_caps_unref (one);
    }
    CHECK (strcmp (names->str, expected) == 0, "%s offers '%s', expected '%s'", in, names->str, expected);
    gst_caps_unref (caps);
    gst_object_unref (pad);
    gst_object_unref (conv);
    gst_object_unref (pipeline);
  }
  g_string_free (names, TRUE);
  g_free (description);
  g_free (expected);
}

/* One input format at one width: what negotiation offers, every gain set
 * and thread count, and for 12-bit samples the packed twin. */
static void
check_case (guint k, guint width)
{
  const gsize stride = GST_ROUND_UP_4 (width * kCases[k].a) * kCases[k].b;
  const gsize packed_stride = (width * 3 + 1) / 2;
  const guint source_width = kCases[k].from == 0x40001 ? GST_ROUND_UP_2 (width) : width;
  guint8 *frames[FRAMES], *packed[FRAMES], *expected[FRAMES];
  gint64 from = kCases[k].from;
  guint32 flags = kCases[k].flags;
  char caps[256], packed_caps[256];
  guint f, g, t, i, y;
  gsize line;

  if (kCases[k].pfnc)
    CHECK (ZoPfnc_FromName (kCases[k].pfnc, &from, &flags) == 0, "PFNC %s has no library type", kCases[k].pfnc);
  flags |= g_str_has_prefix (kCases[k].caps, "video/x-bayer") && kCases[k].interpolate ? 0x100 : 0;
  line = ZoPixelConverter_GetDestinationByteSize (ZoPixelTypeFactory_GetConverter (from, kCases[k].to), width);
  g_snprintf (caps, sizeof caps, "%s,width=%u,height=%u,framerate=30/1", kCases[k].caps, width, HEIGHT);
  g_snprintf (packed_caps, sizeof packed_caps, "%.*s12p,width=%u,height=%u,framerate=30/1",
      (int) strlen (kCases[k].caps) - 4, kCases[k].caps, width, HEIGHT);
  for (f = 0; f < FRAMES; f++) {
    frames[f] = g_malloc (stride * HEIGHT);
    for (i = 0; i < stride * HEIGHT; i++)
      frames[f][i] = g_random_int () & (kCases[k].bits == 12 && i % 2 ? 0x0F : 0xFF);
    /* The 12p layout: pixel x's 12 bits from bit 12 x of the line on, the
     * lowest bit first. */
    packed[f] = g_malloc0 (packed_stride * HEIGHT);
    for (y = 0; y < HEIGHT && kCases[k].bits == 12; y++)
      for (i = 0; i < 12 * width; i++)
        if (frames[f][y * stride + 2 * (i / 12) + i % 12 / 8] >> (i % 12 % 8) & 1)
          packed[f][y * packed_stride + i / 8] |= 1 << (i % 8);
  }
  check_negotiation (caps);
  if (kCases[k].bits == 12)
    check_negotiation (packed_caps);
  for (g = 0; g < kCases[k].gains; g++) {
    for (f = 0; f < FRAMES; f++)
      expected[f] = library_convert (from, kCases[k].to, frames[f], stride, source_width, width, flags, kGains[g]);
    for (t = 1; t <= kCases[k].threads; t++) {
      check_appsrc (caps, frames, stride * HEIGHT, k, expected, line, kGains[g], t);
      if (kCases[k].bits == 12)
        check_appsrc (packed_caps, packed, packed_stride * HEIGHT, k, expected, line, kGains[g], t);
    }
    for (f = 0; f < FRAMES; f++)
      g_free (expected[f]);
  }
  for (f = 0; f < FRAMES; f++) {
    g_free (frames[f]);
    g_free (packed[f]);
  }
}

int
main (int argc, char **argv)
{
  guint k;
  gst_init (&argc, &argv);
  g_random_set_seed (12345);
  if (gst_element_factory_find ("zoimgconvert") == NULL) {
    fprintf (stderr, "zoimgconvert not found: is the plugin's directory on GST_PLUGIN_PATH?\n");
    return 1;
  }
  for (k = 0; k < 2 * G_N_ELEMENTS (kCases); k++)
    check_case (k / 2, k % 2 ? EVEN_W : ODD_W);
  if (failures > 0) {
    fprintf (stderr, "%d failure(s)\n", failures);
    return 1;
  }
  printf ("%d output frames match the library\n", frames_compared);
  return 0;
}
