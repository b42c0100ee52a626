/* zoimgconvert in real pipelines: every output frame compared byte for byte
 * with the library's own conversion of the same input frame, at an odd
 * width and height, with and without gains, on one thread and two.
 *
 * Run with the plugin's directory on GST_PLUGIN_PATH. */
#include <gst/app/gstappsink.h>
#include <gst/app/gstappsrc.h>
#include <gst/base/gstbasetransform.h>
#include <gst/gst.h>
#include <gst/video/video.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "ZoImgLibC.h"
#include "ZoImgLibExt.h"

static int failures = 0;
static int frames_compared = 0;

#define CHECK(cond, ...)                                   \
  do {                                                     \
    if (!(cond)) {                                         \
      fprintf (stderr, "FAIL %s:%d: ", __FILE__, __LINE__); \
      fprintf (stderr, __VA_ARGS__);                       \
      fprintf (stderr, "\n");                              \
      failures++;                                          \
    }                                                      \
  } while (0)

/* An odd width and height (half of 21 lines rounds up to an odd count: two
 * threads must still split on a line pair), and an even width, whose PFNC
 * packed lines are the library's, for the packed chain check. */
enum { ODD_W = 37, ODD_H = 21, EVEN_W = 36, FRAMES = 2 };

typedef struct {
  double red, green, blue;      /* 1, 1, 1: no filter */
} Gains;

static const Gains kGains[] = { { 1.0, 1.0, 1.0 }, { 1.75, 0.8, 1.3 } };

/* A deterministic pseudo-random byte stream. */
static guint32 rng_state = 12345;
static guint32
next_random (void)
{
  rng_state = rng_state * 1103515245u + 12345u;
  return rng_state >> 8;
}

/* The library's conversion of a frame whose lines lie GetSourceByteSize
 * (source_width) apart, into lines of GetDestinationByteSize (width) bytes.
 * Generous margins around both buffers cover every documented over-read and
 * over-write. Returns a g_malloc'd frame of height lines. */
static guint8 *
library_convert (gint64 from, gint64 to, const guint8 * source, guint source_width, guint width, guint height,
    guint32 flags, const Gains * gains)
{
  const ZoPixelConverter *c = ZoPixelTypeFactory_GetConverter (from, to);
  gsize src_line, dst_line, margin = 256;
  guint8 *src, *dst, *result;
  ZoRGBFilter *filter = NULL;
  guint32 r;

  if (c == NULL) {
    CHECK (FALSE, "no converter 0x%llx -> 0x%llx", (long long) from, (long long) to);
    return g_malloc0 (1);
  }
  src_line = ZoPixelConverter_GetSourceByteSize (c, source_width);
  dst_line = ZoPixelConverter_GetDestinationByteSize (c, width);
  src = g_malloc0 (src_line * (height + 2) + margin);
  memcpy (src, source, src_line * height);
  /* The line after the frame, which a replicating conversion of an odd
   * height pairs with the last line: a copy of line height - 2 (the last
   * line of the same colour row), as in the library's chained conversions. */
  memcpy (src + src_line * height, source + src_line * (height >= 2 ? height - 2 : 0), src_line);
  dst = g_malloc0 (dst_line * (height + 2) + 2 * margin);
  if (gains->red != 1.0 || gains->green != 1.0 || gains->blue != 1.0) {
    filter = ZoRGBFilter_Init (16);
    ZoRGBFilter_SetMultipliers (filter, gains->red, gains->green, gains->blue, 0, 0, 0);
  }
  r = ZoPixelConverter_ConvertAreaFilter (c, filter, src, source_width, height, dst + margin, width, height, width,
      height, flags, 0);
  CHECK (r == 0, "direct conversion answered %u", r);
  result = g_memdup2 (dst + margin, dst_line * height);
  ZoRGBFilter_Destroy (filter);
  g_free (src);
  g_free (dst);
  return result;
}

/* Lines of `line` bytes copied out of a frame with `stride`-byte lines. */
static guint8 *
repack (const guint8 * frame, gsize stride, gsize line, guint height)
{
  guint8 *out = g_malloc0 (line * height + 1);
  guint i;
  for (i = 0; i < height; i++)
    memcpy (out + i * line, frame + i * stride, line);
  return out;
}

/* Compares an output sample with the expected frame (lines of `line`
 * bytes), line by line through the sample's own strides. */
static void
expect_frame (GstSample * sample, const guint8 * expected, gsize line, guint height, const char *what)
{
  GstVideoInfo info;
  GstVideoFrame frame;
  guint i;

  if (!gst_video_info_from_caps (&info, gst_sample_get_caps (sample))
      || !gst_video_frame_map (&frame, &info, gst_sample_get_buffer (sample), GST_MAP_READ)) {
    CHECK (FALSE, "%s: unreadable output sample", what);
    return;
  }
  frames_compared++;
  CHECK (GST_VIDEO_INFO_HEIGHT (&info) == (gint) height, "%s: output height %d", what, GST_VIDEO_INFO_HEIGHT (&info));
  for (i = 0; i < height; i++) {
    const guint8 *got = (const guint8 *) GST_VIDEO_FRAME_PLANE_DATA (&frame, 0)
        + i * GST_VIDEO_FRAME_PLANE_STRIDE (&frame, 0);
    if (memcmp (got, expected + i * line, line) != 0) {
      gsize x = 0;
      while (got[x] == expected[i * line + x])
        x++;
      CHECK (FALSE, "%s: line %u differs at byte %zu: %u, expected %u", what, i, x, got[x], expected[i * line + x]);
      break;
    }
  }
  gst_video_frame_unmap (&frame);
}

static GstElement *
launch (const char *description)
{
  GError *error = NULL;
  GstElement *pipeline = gst_parse_launch (description, &error);
  if (pipeline == NULL) {
    CHECK (FALSE, "cannot build '%s': %s", description, error ? error->message : "?");
    g_clear_error (&error);
  }
  return pipeline;
}

/* Fails on an error message on the bus; returns after end of stream. */
static void
wait_for_end (GstElement * pipeline, const char *what)
{
  GstBus *bus = gst_element_get_bus (pipeline);
  GstMessage *m = gst_bus_timed_pop_filtered (bus, 20 * GST_SECOND, GST_MESSAGE_ERROR | GST_MESSAGE_EOS);
  if (m == NULL) {
    CHECK (FALSE, "%s: no end of stream", what);
  } else {
    if (GST_MESSAGE_TYPE (m) == GST_MESSAGE_ERROR) {
      GError *e = NULL;
      gst_message_parse_error (m, &e, NULL);
      CHECK (FALSE, "%s: %s", what, e->message);
      g_error_free (e);
    }
    gst_message_unref (m);
  }
  gst_object_unref (bus);
}

static const char *
element_properties (const Gains * gains, guint threads, gboolean interpolate, char *buffer, gsize size)
{
  g_snprintf (buffer, size, "zoimgconvert threads=%u interpolate=%s red-gain=%g green-gain=%g blue-gain=%g",
      threads, interpolate ? "true" : "false", gains->red, gains->green, gains->blue);
  return buffer;
}

/* One input format pushed through appsrc: `frames` in GStreamer's layout
 * (lines `stride` bytes apart), converted to `out_format`, each output
 * compared with `expected` (lines of `expected_line` bytes). */
static void
check_appsrc (const char *in_caps, guint8 ** frames, gsize frame_size, const char *out_format, guint height,
    guint8 ** expected, gsize expected_line, const Gains * gains, guint threads, gboolean interpolate)
{
  char props[256], description[1024], what[1400];
  GstElement *pipeline, *src, *sink;
  guint i;

  element_properties (gains, threads, interpolate, props, sizeof props);
  g_snprintf (description, sizeof description,
      "appsrc name=src format=time caps=\"%s\" ! %s ! video/x-raw,format=%s ! appsink name=sink sync=false",
      in_caps, props, out_format);
  g_snprintf (what, sizeof what, "%s -> %s (%s)", in_caps, out_format, props);
  pipeline = launch (description);
  if (pipeline == NULL)
    return;
  src = gst_bin_get_by_name (GST_BIN (pipeline), "src");
  sink = gst_bin_get_by_name (GST_BIN (pipeline), "sink");
  gst_element_set_state (pipeline, GST_STATE_PLAYING);
  for (i = 0; i < FRAMES; i++) {
    GstBuffer *b = gst_buffer_new_memdup (frames[i], frame_size);
    GST_BUFFER_PTS (b) = i * GST_SECOND / 30;
    GST_BUFFER_DURATION (b) = GST_SECOND / 30;
    gst_app_src_push_buffer (GST_APP_SRC (src), b);
  }
  gst_app_src_end_of_stream (GST_APP_SRC (src));
  for (i = 0; i < FRAMES; i++) {
    GstSample *s = gst_app_sink_try_pull_sample (GST_APP_SINK (sink), 20 * GST_SECOND);
    if (s == NULL) {
      CHECK (FALSE, "%s: frame %u missing", what, i);
      break;
    }
    expect_frame (s, expected[i], expected_line, height, what);
    gst_sample_unref (s);
  }
  wait_for_end (pipeline, what);
  gst_element_set_state (pipeline, GST_STATE_NULL);
  gst_object_unref (src);
  gst_object_unref (sink);
  gst_object_unref (pipeline);
}

static const struct {
  const char *name;
  gint64 type;
} kOutputs[] = { { "RGB", 0x20002 }, { "BGRx", 0x20007 } };

/* GStreamer's pattern names and GenICam PFNC's: the reference conversions
 * take their type and pattern from the library's PFNC table, so the caps
 * name's meaning comes from there and not from the element's own table. */
static const struct {
  const char *pattern;
  const char *pfnc;
} kPatterns[] = { { "rggb", "RG" }, { "gbrg", "GB" } };

static void
pfnc_type (const char *name, gint64 * type, guint32 * flags)
{
  int64_t t = 0;
  uint32_t f = 0;
  CHECK (ZoPfnc_FromName (name, &t, &f) == 0, "PFNC %s has no library type", name);
  *type = t;
  *flags = f;
}

/* 12-bit Bayer in 16-bit words (<pattern>12le, lines GST_ROUND_UP_4 (width)
 * words apart; once also read as <pattern>16le) and the same samples packed
 * in PFNC BayerXX12p layout, into RGB and BGRx. Both are compared with the
 * library's conversion of the words. Without gains, at an even width, that
 * is also the library's conversion of the packed frame itself (the PFNC
 * lines are then the library's packed lines); with gains it is not: the
 * library's packed conversion is a chain whose second stage runs without
 * the caller's filter, while the element applies the gains when
 * demosaicing. */
static void
check_bayer12 (guint width, guint height)
{
  gsize words_stride = GST_ROUND_UP_4 (width) * 2, packed_stride = (width * 3 + 1) / 2;
  guint8 *words[FRAMES], *packed[FRAMES];
  guint f, p, o, g, t, y, x;

  for (f = 0; f < FRAMES; f++) {
    words[f] = g_malloc0 (words_stride * height);
    packed[f] = g_malloc0 (packed_stride * height);
    for (y = 0; y < height; y++) {
      for (x = 0; x < width; x++) {
        guint v = next_random () & 0xFFF;
        guint8 *w = words[f] + y * words_stride + 2 * x;
        guint8 *q = packed[f] + y * packed_stride + (x / 2) * 3;
        w[0] = v & 0xFF;
        w[1] = v >> 8;
        if (x % 2 == 0) {
          q[0] = v & 0xFF;
          q[1] = (q[1] & 0xF0) | (v >> 8);
        } else {
          q[1] = (q[1] & 0x0F) | ((v & 0x0F) << 4);
          q[2] = v >> 4;
        }
      }
    }
  }
  for (p = 0; p < G_N_ELEMENTS (kPatterns); p++) {
    for (o = 0; o < G_N_ELEMENTS (kOutputs); o++) {
      for (g = 0; g < G_N_ELEMENTS (kGains); g++) {
        /* Replicating mode for one pattern and output (a line pair past the
         * area at the odd height). */
        gboolean interpolate = !(p == 1 && o == 0);
        guint8 *expected[FRAMES], *chain[FRAMES];
        gint64 words_type, packed_type;
        guint32 flags, packed_flags;
        gsize line;
        char caps[256];

        g_snprintf (caps, sizeof caps, "Bayer%s12", kPatterns[p].pfnc);
        pfnc_type (caps, &words_type, &flags);
        g_snprintf (caps, sizeof caps, "Bayer%s12p", kPatterns[p].pfnc);
        pfnc_type (caps, &packed_type, &packed_flags);
        CHECK (packed_flags == flags, "PFNC %s: pattern 0x%x, unpacked 0x%x", caps, packed_flags, flags);
        flags |= interpolate ? 0x100 : 0;
        line = ZoPixelConverter_GetDestinationByteSize (ZoPixelTypeFactory_GetConverter (words_type,
                kOutputs[o].type), width);

        for (f = 0; f < FRAMES; f++) {
          guint8 *tight = repack (words[f], words_stride, (gsize) width * 2, height);
          expected[f] = library_convert (words_type, kOutputs[o].type, tight, width, width, height, flags,
              &kGains[g]);
          g_free (tight);
          chain[f] = NULL;
          if (width % 2 == 0 && g == 0) {
            chain[f] = library_convert (packed_type, kOutputs[o].type, packed[f], width, width, height, flags,
                &kGains[g]);
            CHECK (memcmp (chain[f], expected[f], line * height) == 0,
                "library: packed and word frames of the same samples convert differently");
          }
        }
        for (t = 1; t <= 2; t++) {
          g_snprintf (caps, sizeof caps, "video/x-bayer,format=%s12le,width=%u,height=%u,framerate=30/1",
              kPatterns[p].pattern, width, height);
          check_appsrc (caps, words, words_stride * height, kOutputs[o].name, height, expected, line, &kGains[g], t,
              interpolate);
          g_snprintf (caps, sizeof caps, "video/x-bayer,format=%s12p,width=%u,height=%u,framerate=30/1",
              kPatterns[p].pattern, width, height);
          check_appsrc (caps, packed, packed_stride * height, kOutputs[o].name, height, expected, line, &kGains[g],
              t, interpolate);
        }
        for (f = 0; f < FRAMES; f++) {
          g_free (expected[f]);
          g_free (chain[f]);
        }
      }
    }
  }
  {
    /* The same words as full-range 16-bit samples (<pattern>16le): the
     * library's most-significant-bit aligned Bayer type, upper bytes. */
    guint8 *expected[FRAMES];
    gsize line = (gsize) width * 4;
    char caps[256];
    for (f = 0; f < FRAMES; f++) {
      guint8 *tight = repack (words[f], words_stride, (gsize) width * 2, height);
      expected[f] = library_convert (0x120012, 0x20007, tight, width, width, height, 0x40 | 0x100, &kGains[1]);
      g_free (tight);
    }
    g_snprintf (caps, sizeof caps, "video/x-bayer,format=rggb16le,width=%u,height=%u,framerate=30/1", width, height);
    check_appsrc (caps, words, words_stride * height, "BGRx", height, expected, line, &kGains[1], 2, TRUE);
    for (f = 0; f < FRAMES; f++)
      g_free (expected[f]);
  }
  for (f = 0; f < FRAMES; f++) {
    g_free (words[f]);
    g_free (packed[f]);
  }
}

/* YUY2 (GStreamer lines: GST_ROUND_UP_4 (2 x even width) bytes) into RGB,
 * compared with the library's conversion of lines holding whole pairs. */
static void
check_yuy2 (guint width, guint height)
{
  GstVideoInfo info;
  guint8 *frames[FRAMES], *expected[FRAMES];
  gsize stride, pairs_line = (gsize) GST_ROUND_UP_2 (width) * 2, line = (gsize) width * 3;
  guint f, g, t, i;
  char caps[256];

  gst_video_info_set_format (&info, GST_VIDEO_FORMAT_YUY2, width, height);
  stride = GST_VIDEO_INFO_PLANE_STRIDE (&info, 0);
  for (f = 0; f < FRAMES; f++) {
    frames[f] = g_malloc (GST_VIDEO_INFO_SIZE (&info));
    for (i = 0; i < GST_VIDEO_INFO_SIZE (&info); i++)
      frames[f][i] = next_random () & 0xFF;
  }
  g_snprintf (caps, sizeof caps, "video/x-raw,format=YUY2,width=%u,height=%u,framerate=30/1", width, height);
  for (g = 0; g < G_N_ELEMENTS (kGains); g++) {
    for (f = 0; f < FRAMES; f++) {
      guint8 *pairs = repack (frames[f], stride, pairs_line, height);
      expected[f] = library_convert (0x40001, 0x20002, pairs, GST_ROUND_UP_2 (width), width, height, 0, &kGains[g]);
      g_free (pairs);
    }
    for (t = 1; t <= 2; t++)
      check_appsrc (caps, frames, GST_VIDEO_INFO_SIZE (&info), "RGB", height, expected, line, &kGains[g], t, TRUE);
    for (f = 0; f < FRAMES; f++)
      g_free (expected[f]);
  }
  for (f = 0; f < FRAMES; f++)
    g_free (frames[f]);
}

/* 8-bit Bayer from videotestsrc ! rgb2bayer (lines GST_ROUND_UP_4 (width)
 * bytes apart) into BGRx; a tee hands the same Bayer frames to the test. */
static void
check_rgb2bayer (guint width, guint height)
{
  gsize stride = GST_ROUND_UP_4 (width), line = (gsize) width * 4;
  guint g, t, f, m;
  char props[256], description[1024];
  gint64 type;
  guint32 flags;

  pfnc_type ("BayerGR8", &type, &flags);

  for (g = 0; g < G_N_ELEMENTS (kGains); g++) {
    for (t = 1; t <= 2; t++) {
      for (m = 0; m < 2; m++) {
        GstElement *pipeline, *raw, *sink;
        element_properties (&kGains[g], t, m == 0, props, sizeof props);
        g_snprintf (description, sizeof description,
            "videotestsrc num-buffers=%d pattern=snow ! video/x-raw,format=ARGB,width=%u,height=%u "
            "! rgb2bayer ! video/x-bayer,format=grbg ! tee name=t "
            "t. ! queue ! appsink name=raw sync=false "
            "t. ! queue ! %s ! video/x-raw,format=BGRx ! appsink name=sink sync=false",
            FRAMES, width, height, props);
        pipeline = launch (description);
        if (pipeline == NULL)
          return;
        raw = gst_bin_get_by_name (GST_BIN (pipeline), "raw");
        sink = gst_bin_get_by_name (GST_BIN (pipeline), "sink");
        gst_element_set_state (pipeline, GST_STATE_PLAYING);
        for (f = 0; f < FRAMES; f++) {
          GstSample *in = gst_app_sink_try_pull_sample (GST_APP_SINK (raw), 20 * GST_SECOND);
          GstSample *out = gst_app_sink_try_pull_sample (GST_APP_SINK (sink), 20 * GST_SECOND);
          GstMapInfo map;
          if (in == NULL || out == NULL) {
            CHECK (FALSE, "rgb2bayer (%s): frame %u missing", description, f);
          } else if (gst_buffer_map (gst_sample_get_buffer (in), &map, GST_MAP_READ)) {
            guint8 *tight = repack (map.data, stride, width, height);
            guint8 *expected = library_convert (type, 0x20007, tight, width, width, height,
                flags | (m == 0 ? 0x100 : 0), &kGains[g]);
            CHECK (map.size == stride * height, "rgb2bayer gave %zu bytes", map.size);
            expect_frame (out, expected, line, height, description);
            gst_buffer_unmap (gst_sample_get_buffer (in), &map);
            g_free (tight);
            g_free (expected);
          }
          if (in)
            gst_sample_unref (in);
          if (out)
            gst_sample_unref (out);
        }
        wait_for_end (pipeline, description);
        gst_element_set_state (pipeline, GST_STATE_NULL);
        gst_object_unref (raw);
        gst_object_unref (sink);
        gst_object_unref (pipeline);
      }
    }
  }
}

/* The output formats the element offers for an input format, as its source
 * pad answers a caps query with the input caps fixed upstream: the formats
 * of every structure, in this list's order, each once. */
static char *
offered_formats (const char *in_caps)
{
  static const char *const all[] = { "BGRx", "RGBx", "BGR", "RGB", "RGB16", "GRAY16_LE", "GRAY8", "YUY2" };
  char description[512];
  GstElement *pipeline, *conv;
  GstPad *pad;
  GstCaps *caps;
  GString *names = g_string_new ("");
  guint i, k;

  g_snprintf (description, sizeof description, "appsrc ! %s ! zoimgconvert name=conv ! fakesink", in_caps);
  pipeline = launch (description);
  if (pipeline == NULL)
    return g_string_free (names, FALSE);
  conv = gst_bin_get_by_name (GST_BIN (pipeline), "conv");
  pad = gst_element_get_static_pad (conv, "src");
  caps = gst_pad_query_caps (pad, NULL);
  for (k = 0; k < G_N_ELEMENTS (all); k++) {
    GstCaps *one = gst_caps_new_simple ("video/x-raw", "format", G_TYPE_STRING, all[k], NULL);
    for (i = 0; i < gst_caps_get_size (caps); i++) {
      if (gst_structure_can_intersect (gst_caps_get_structure (caps, i), gst_caps_get_structure (one, 0))) {
        g_string_append_printf (names, "%s ", all[k]);
        break;
      }
    }
    gst_caps_unref (one);
  }
  gst_caps_unref (caps);
  gst_object_unref (pad);
  gst_object_unref (conv);
  gst_object_unref (pipeline);
  return g_string_free (names, FALSE);
}

/* Negotiation offers exactly the registered pairs (and the input's own raw
 * format), and the same raw format in and out passes buffers through. */
static void
check_negotiation (void)
{
  static const struct {
    const char *caps;
    const char *formats;
  } cases[] = {
    { "video/x-bayer,format=bggr,width=8,height=8,framerate=30/1", "BGRx RGBx BGR RGB RGB16 " },
    { "video/x-bayer,format=grbg16le,width=8,height=8,framerate=30/1", "BGRx RGBx BGR RGB RGB16 " },
    { "video/x-bayer,format=rggb12p,width=8,height=8,framerate=30/1", "BGRx RGBx BGR RGB RGB16 " },
    { "video/x-raw,format=YUY2,width=8,height=8,framerate=30/1", "BGRx RGBx BGR RGB RGB16 " },
    { "video/x-raw,format=GRAY8,width=8,height=8,framerate=30/1", "BGRx RGBx BGR RGB RGB16 GRAY8 " },
    { "video/x-raw,format=GRAY16_LE,width=8,height=8,framerate=30/1", "BGRx RGBx BGR RGB RGB16 GRAY16_LE GRAY8 " },
  };
  guint i;

  for (i = 0; i < G_N_ELEMENTS (cases); i++) {
    char *got = offered_formats (cases[i].caps);
    CHECK (strcmp (got, cases[i].formats) == 0, "%s offers '%s', expected '%s'", cases[i].caps, got,
        cases[i].formats);
    g_free (got);
  }
}

/* GRAY16_LE to GRAY8 is converted (upper byte of each word); GRAY8 to GRAY8
 * is passed through: the element is in passthrough mode, the bytes
 * unchanged. */
static void
check_gray (guint width, guint height)
{
  GstVideoInfo info;
  guint8 *frames[FRAMES], *expected[FRAMES];
  gsize stride;
  guint f, i;
  char caps[256];
  const Gains unit = { 1.0, 1.0, 1.0 };

  gst_video_info_set_format (&info, GST_VIDEO_FORMAT_GRAY16_LE, width, height);
  stride = GST_VIDEO_INFO_PLANE_STRIDE (&info, 0);
  for (f = 0; f < FRAMES; f++) {
    guint8 *tight;
    frames[f] = g_malloc (GST_VIDEO_INFO_SIZE (&info));
    for (i = 0; i < GST_VIDEO_INFO_SIZE (&info); i++)
      frames[f][i] = next_random () & 0xFF;
    tight = repack (frames[f], stride, (gsize) width * 2, height);
    expected[f] = library_convert (0x10005, 0x10001, tight, width, width, height, 0, &unit);
    g_free (tight);
  }
  g_snprintf (caps, sizeof caps, "video/x-raw,format=GRAY16_LE,width=%u,height=%u,framerate=30/1", width, height);
  check_appsrc (caps, frames, GST_VIDEO_INFO_SIZE (&info), "GRAY8", height, expected, width, &unit, 2, TRUE);
  for (f = 0; f < FRAMES; f++) {
    g_free (expected[f]);
    g_free (frames[f]);
  }

  gst_video_info_set_format (&info, GST_VIDEO_FORMAT_GRAY8, width, height);
  stride = GST_VIDEO_INFO_PLANE_STRIDE (&info, 0);
  for (f = 0; f < FRAMES; f++) {
    frames[f] = g_malloc (GST_VIDEO_INFO_SIZE (&info));
    for (i = 0; i < GST_VIDEO_INFO_SIZE (&info); i++)
      frames[f][i] = next_random () & 0xFF;
    expected[f] = repack (frames[f], stride, width, height);
  }
  g_snprintf (caps, sizeof caps, "video/x-raw,format=GRAY8,width=%u,height=%u,framerate=30/1", width, height);
  check_appsrc (caps, frames, GST_VIDEO_INFO_SIZE (&info), "GRAY8", height, expected, width, &unit, 1, TRUE);
  for (f = 0; f < FRAMES; f++) {
    g_free (expected[f]);
    g_free (frames[f]);
  }

  for (f = 0; f < 2; f++) {
    const char *in = f == 0 ? "GRAY8" : "GRAY16_LE";
    char description[512];
    GstElement *pipeline, *conv;
    g_snprintf (description, sizeof description,
        "videotestsrc num-buffers=1 ! video/x-raw,format=%s,width=%u,height=%u ! zoimgconvert name=conv "
        "! video/x-raw,format=GRAY8 ! fakesink", in, width, height);
    pipeline = launch (description);
    if (pipeline == NULL)
      continue;
    conv = gst_bin_get_by_name (GST_BIN (pipeline), "conv");
    gst_element_set_state (pipeline, GST_STATE_PLAYING);
    wait_for_end (pipeline, description);
    CHECK (gst_base_transform_is_passthrough (GST_BASE_TRANSFORM (conv)) == (f == 0),
        "%s to GRAY8: passthrough %d", in, gst_base_transform_is_passthrough (GST_BASE_TRANSFORM (conv)));
    gst_element_set_state (pipeline, GST_STATE_NULL);
    gst_object_unref (conv);
    gst_object_unref (pipeline);
  }
}

int
main (int argc, char **argv)
{
  gst_init (&argc, &argv);
  if (gst_element_factory_find ("zoimgconvert") == NULL) {
    fprintf (stderr, "zoimgconvert not found: is the plugin's directory on GST_PLUGIN_PATH?\n");
    return 1;
  }
  check_negotiation ();
  check_rgb2bayer (ODD_W, ODD_H);
  check_bayer12 (ODD_W, ODD_H);
  check_bayer12 (EVEN_W, ODD_H);
  check_yuy2 (ODD_W, ODD_H);
  check_gray (ODD_W, ODD_H);
  if (failures > 0) {
    fprintf (stderr, "%d failure(s)\n", failures);
    return 1;
  }
  printf ("%d output frames match the library\n", frames_compared);
  return 0;
}
