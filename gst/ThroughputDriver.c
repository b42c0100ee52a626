/* Frames per second of zoimgconvert: one prepared frame pushed through
 * appsrc again and again (no copy), converted, dropped by fakesink.
 *
 *   zoimg_gst_throughput [FORMAT [WIDTH HEIGHT [FRAMES [ROUNDS [OUTPUT]]]]]
 *
 * Defaults: rggb12le 1920 1080 200 5 BGRx. FORMAT is a video/x-bayer format
 * of the element (8-bit, 16-bit words or packed 12-bit). Each round runs one
 * pipeline of FRAMES frames with threads=1 and one with threads=2, in turn,
 * so that both see the same load; the medians over the rounds and their
 * ratio are printed. Run with the plugin's directory on GST_PLUGIN_PATH. The
 * time runs from the first push to end of stream, so it includes
 * GStreamer's own per-buffer work. */
#include <gst/app/gstappsrc.h>
#include <gst/gst.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static gsize
frame_bytes (const char *format, guint width, guint height)
{
  if (g_str_has_suffix (format, "12p"))
    return ((gsize) width * 3 + 1) / 2 * height;
  if (g_str_has_suffix (format, "le"))
    return (gsize) GST_ROUND_UP_4 (width) * 2 * height;
  return (gsize) GST_ROUND_UP_4 (width) * height;
}

/* Frames per second of one pipeline run, or a negative value on error. */
static double
run_pipeline (const char *format, guint width, guint height, guint frames, guint threads, const char *output,
    GstBuffer * frame)
{
  char description[512];
  GError *error = NULL;
  GstElement *pipeline, *src;
  GstBus *bus;
  GstMessage *m;
  gint64 start, end;
  double fps = -1.0;
  guint n;

  g_snprintf (description, sizeof description,
      "appsrc name=src format=time block=true max-bytes=0 max-buffers=4 "
      "caps=\"video/x-bayer,format=%s,width=%u,height=%u,framerate=30/1\" "
      "! zoimgconvert threads=%u ! video/x-raw,format=%s ! fakesink sync=false",
      format, width, height, threads, output);
  pipeline = gst_parse_launch (description, &error);
  if (pipeline == NULL) {
    fprintf (stderr, "%s\n", error->message);
    g_error_free (error);
    return -1.0;
  }
  src = gst_bin_get_by_name (GST_BIN (pipeline), "src");
  gst_element_set_state (pipeline, GST_STATE_PLAYING);
  start = g_get_monotonic_time ();
  for (n = 0; n < frames; n++) {
    GstBuffer *b = gst_buffer_copy (frame);     /* shares the memory */
    GST_BUFFER_PTS (b) = gst_util_uint64_scale (n, GST_SECOND, 30);
    GST_BUFFER_DURATION (b) = GST_SECOND / 30;
    if (gst_app_src_push_buffer (GST_APP_SRC (src), b) != GST_FLOW_OK)
      break;
  }
  gst_app_src_end_of_stream (GST_APP_SRC (src));
  bus = gst_element_get_bus (pipeline);
  m = gst_bus_timed_pop_filtered (bus, GST_CLOCK_TIME_NONE, GST_MESSAGE_ERROR | GST_MESSAGE_EOS);
  end = g_get_monotonic_time ();
  if (GST_MESSAGE_TYPE (m) == GST_MESSAGE_ERROR) {
    GError *e = NULL;
    gst_message_parse_error (m, &e, NULL);
    fprintf (stderr, "error: %s\n", e->message);
    g_error_free (e);
  } else {
    fps = frames / ((end - start) / 1e6);
  }
  gst_message_unref (m);
  gst_object_unref (bus);
  gst_element_set_state (pipeline, GST_STATE_NULL);
  gst_object_unref (src);
  gst_object_unref (pipeline);
  return fps;
}

static int
compare_doubles (const void *a, const void *b)
{
  double x = *(const double *) a, y = *(const double *) b;
  return (x > y) - (x < y);
}

int
main (int argc, char **argv)
{
  const char *format = argc > 1 ? argv[1] : "rggb12le";
  guint width = argc > 3 ? (guint) atoi (argv[2]) : 1920;
  guint height = argc > 3 ? (guint) atoi (argv[3]) : 1080;
  guint frames = argc > 4 ? (guint) atoi (argv[4]) : 200;
  guint rounds = argc > 5 ? (guint) atoi (argv[5]) : 5;
  const char *output = argc > 6 ? argv[6] : "BGRx";
  GstBuffer *frame;
  GstMapInfo map;
  gsize size, i;
  guint32 seed = 1;
  double *fps[2], median[2];
  guint r, t;

  gst_init (&argc, &argv);
  if (frames == 0 || rounds == 0)
    return 1;

  /* 12-bit samples in every word (and random bytes for the other layouts). */
  size = frame_bytes (format, width, height);
  frame = gst_buffer_new_allocate (NULL, size, NULL);
  gst_buffer_map (frame, &map, GST_MAP_WRITE);
  for (i = 0; i < size; i++) {
    seed = seed * 1103515245u + 12345u;
    map.data[i] = (guint8) (seed >> 16);
    if (g_str_has_suffix (format, "le") && i % 2 == 1)
      map.data[i] &= 0x0F;
  }
  gst_buffer_unmap (frame, &map);

  for (t = 0; t < 2; t++)
    fps[t] = g_new (double, rounds);
  for (r = 0; r < rounds; r++) {
    for (t = 0; t < 2; t++) {
      fps[t][r] = run_pipeline (format, width, height, frames, t + 1, output, frame);
      if (fps[t][r] < 0)
        return 1;
    }
  }
  for (t = 0; t < 2; t++) {
    qsort (fps[t], rounds, sizeof (double), compare_doubles);
    median[t] = fps[t][rounds / 2];
    printf ("%s %ux%u -> %s, threads=%u: median %.1f frames/s (%u rounds of %u frames, %.1f .. %.1f)\n", format,
        width, height, output, t + 1, median[t], rounds, frames, fps[t][0], fps[t][rounds - 1]);
    g_free (fps[t]);
  }
  printf ("threads=2 / threads=1: %.2f\n", median[1] / median[0]);
  gst_buffer_unref (frame);
  return 0;
}
