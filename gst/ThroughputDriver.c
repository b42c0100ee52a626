/* Frames per second of zoimgconvert: one prepared frame pushed through
 * appsrc again and again (no copy), converted, dropped by fakesink.
 *
 *   zoimg_gst_throughput [FORMAT [WIDTH HEIGHT [FRAMES [THREADS [OUTPUT]]]]]
 *
 * Defaults: rggb12le 1920 1080 300 1 BGRx. FORMAT is a video/x-bayer format
 * of the element (8-bit, 16-bit words or packed 12-bit). Run with the
 * plugin's directory on GST_PLUGIN_PATH. The time runs from the first push
 * to end of stream, so it includes GStreamer's own per-buffer work. */
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

int
main (int argc, char **argv)
{
  const char *format = argc > 1 ? argv[1] : "rggb12le";
  guint width = argc > 3 ? (guint) atoi (argv[2]) : 1920;
  guint height = argc > 3 ? (guint) atoi (argv[3]) : 1080;
  guint frames = argc > 4 ? (guint) atoi (argv[4]) : 300;
  guint threads = argc > 5 ? (guint) atoi (argv[5]) : 1;
  const char *output = argc > 6 ? argv[6] : "BGRx";
  char description[512];
  GError *error = NULL;
  GstElement *pipeline, *src;
  GstBuffer *frame;
  GstMapInfo map;
  GstBus *bus;
  GstMessage *m;
  gint64 start, end;
  gsize size, i;
  guint32 seed = 1;
  guint n;
  int status = 0;

  gst_init (&argc, &argv);
  g_snprintf (description, sizeof description,
      "appsrc name=src format=time block=true max-bytes=0 max-buffers=4 "
      "caps=\"video/x-bayer,format=%s,width=%u,height=%u,framerate=30/1\" "
      "! zoimgconvert threads=%u ! video/x-raw,format=%s ! fakesink sync=false",
      format, width, height, threads, output);
  pipeline = gst_parse_launch (description, &error);
  if (pipeline == NULL) {
    fprintf (stderr, "%s\n", error->message);
    return 1;
  }
  src = gst_bin_get_by_name (GST_BIN (pipeline), "src");

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
    status = 1;
  } else {
    printf ("%s %ux%u -> %s, threads=%u: %u frames in %.3f s, %.1f frames/s\n", format, width, height, output,
        threads, frames, (end - start) / 1e6, frames / ((end - start) / 1e6));
  }
  gst_message_unref (m);
  gst_object_unref (bus);
  gst_element_set_state (pipeline, GST_STATE_NULL);
  gst_buffer_unref (frame);
  gst_object_unref (src);
  gst_object_unref (pipeline);
  return status;
}
