/* Caps formats of zoimgconvert and the core pixel types they mean.
 *
 * A caps format is mapped to a core type only where the bytes mean exactly
 * the same:
 *   bggr gbrg grbg rggb           8-bit Bayer              Bayer RGB 8-bits
 *   <pattern>10le                 10 bits in bits 0-9 of   Bayer RGB 10-bits
 *                                 a little-endian word
 *   <pattern>12le                 12 bits in bits 0-11     Bayer RGB 12-bits
 *   <pattern>16le                 full 16-bit words        Bayer RGB 12-bits, Normalized
 *   <pattern>12p                  PFNC BayerXX12p          Bayer RGB 12-bits, Packed
 *   GRAY8, GRAY16_LE, YUY2        (video/x-raw)            Grayscale 8-bits, Grayscale
 *                                                          16-bits, YUV 8-bits 4:2:2
 * The 16-bit words of <pattern>16le state no significant-bit count, so they
 * are taken as full-range 16-bit samples: the core's most-significant-bit
 * aligned ("Normalized") Bayer type reads the upper byte of each word, which
 * is the 16-bit value scaled to 8 bits (v >> 8). GRAY16_LE likewise goes
 * through Grayscale 16-bits, whose 8-bit and RGB destinations take the upper
 * byte. 14-bit Bayer words have no core counterpart and are not offered.
 *
 * PFNC BayerXX12p: two samples in three bytes b0 b1 b2, p0 = b0 | (b1 & 0x0F)
 * << 8, p1 = (b1 >> 4) | b2 << 4, exactly the core's packed 12-bit group
 * (the first sample in group bits 0-11, the second in bits 12-23). Each line
 * starts on a byte boundary and holds (3 x width + 1) / 2 bytes (an odd last
 * sample fills half a group); lines follow each other without padding. */
#include "zoimgformats.h"

#include <string.h>

#include "ZoImgLibC.h"

#define BAYER_WORDS(pattern, flag, bits, type) \
  { "video/x-bayer", pattern #bits "le", type, flag, ZOIMG_LINES_BAYER, 2 }
#define BAYER_PATTERN(pattern, flag) \
  { "video/x-bayer", pattern, ZO_PT_BAYER_RGB8, flag, ZOIMG_LINES_BAYER, 1 }, \
  BAYER_WORDS (pattern, flag, 10, ZO_PT_BAYER_RGB10), \
  BAYER_WORDS (pattern, flag, 12, ZO_PT_BAYER_RGB12), \
  BAYER_WORDS (pattern, flag, 16, ZO_PT_BAYER_RGB12 | ZO_PIXEL_NORMALIZED), \
  { "video/x-bayer", pattern "12p", ZO_PT_BAYER_RGB12 | ZO_PIXEL_PACKED, flag, ZOIMG_LINES_PACKED12, 0 }

const ZoImgSinkFormat zoimg_sink_formats[] = {
  BAYER_PATTERN ("bggr", ZO_FLAG_BAYER_BGGR),
  BAYER_PATTERN ("gbrg", ZO_FLAG_BAYER_GBRG),
  BAYER_PATTERN ("grbg", ZO_FLAG_BAYER_GRBG),
  BAYER_PATTERN ("rggb", ZO_FLAG_BAYER_RGGB),
  { "video/x-raw", "GRAY8", ZO_PT_GRAY8, 0, ZOIMG_LINES_VIDEO_INFO, 0 },
  { "video/x-raw", "GRAY16_LE", ZO_PT_GRAY16, 0, ZOIMG_LINES_VIDEO_INFO, 0 },
  { "video/x-raw", "YUY2", ZO_PT_YUV8, 0, ZOIMG_LINES_VIDEO_INFO, 0 },
};
const guint zoimg_n_sink_formats = G_N_ELEMENTS (zoimg_sink_formats);

/* In order of preference when downstream accepts several. RGB16 is the
 * core's 5-6-5 word (red in bits 15-11), GStreamer's RGB16 on a
 * little-endian machine. */
const ZoImgSrcFormat zoimg_src_formats[] = {
  { "BGRx", ZO_PT_BGR32 },
  { "RGBx", ZO_PT_RGB32 },
  { "BGR", ZO_PT_BGR24 },
  { "RGB", ZO_PT_RGB24 },
  { "RGB16", ZO_PT_RGB16 },
  { "GRAY16_LE", ZO_PT_GRAY16 },
  { "GRAY8", ZO_PT_GRAY8 },
};
const guint zoimg_n_src_formats = G_N_ELEMENTS (zoimg_src_formats);

const ZoImgSinkFormat *
zoimg_sink_format_find (const char *media, const char *name)
{
  guint i;
  if (media == NULL || name == NULL)
    return NULL;
  for (i = 0; i < zoimg_n_sink_formats; i++) {
    if (strcmp (zoimg_sink_formats[i].media, media) == 0 && strcmp (zoimg_sink_formats[i].name, name) == 0)
      return &zoimg_sink_formats[i];
  }
  return NULL;
}

const ZoImgSrcFormat *
zoimg_src_format_find (const char *name)
{
  guint i;
  if (name == NULL)
    return NULL;
  for (i = 0; i < zoimg_n_src_formats; i++) {
    if (strcmp (zoimg_src_formats[i].name, name) == 0)
      return &zoimg_src_formats[i];
  }
  return NULL;
}

gboolean
zoimg_formats_convertible (const ZoImgSinkFormat * in, const ZoImgSrcFormat * out)
{
  if (strcmp (in->media, "video/x-raw") == 0 && strcmp (in->name, out->name) == 0)
    return TRUE;
  return ZoPixelTypeFactory_HasConverter (in->type_id, out->type_id);
}

static GstCaps *
caps_of (const char *media, GValue * formats)
{
  GstCaps *caps = gst_caps_new_simple (media, "width", GST_TYPE_INT_RANGE, 1, G_MAXINT,
      "height", GST_TYPE_INT_RANGE, 1, G_MAXINT, "framerate", GST_TYPE_FRACTION_RANGE, 0, 1, G_MAXINT, 1, NULL);
  gst_structure_set_value (gst_caps_get_structure (caps, 0), "format", formats);
  g_value_unset (formats);
  return caps;
}

static void
list_append_string (GValue * list, const char *s)
{
  GValue v = G_VALUE_INIT;
  g_value_init (&v, G_TYPE_STRING);
  g_value_set_string (&v, s);
  gst_value_list_append_and_take_value (list, &v);
}

GstCaps *
zoimg_sink_template_caps (void)
{
  GValue bayer = G_VALUE_INIT, raw = G_VALUE_INIT;
  GstCaps *caps;
  guint i;

  g_value_init (&bayer, GST_TYPE_LIST);
  g_value_init (&raw, GST_TYPE_LIST);
  for (i = 0; i < zoimg_n_sink_formats; i++)
    list_append_string (strcmp (zoimg_sink_formats[i].media, "video/x-bayer") == 0 ? &bayer : &raw,
        zoimg_sink_formats[i].name);
  caps = caps_of ("video/x-bayer", &bayer);
  gst_caps_append (caps, caps_of ("video/x-raw", &raw));
  return caps;
}

GstCaps *
zoimg_src_template_caps (void)
{
  GValue raw = G_VALUE_INIT;
  guint i;

  g_value_init (&raw, GST_TYPE_LIST);
  for (i = 0; i < zoimg_n_src_formats; i++)
    list_append_string (&raw, zoimg_src_formats[i].name);
  return caps_of ("video/x-raw", &raw);
}

gsize
zoimg_bayer_stride (const ZoImgSinkFormat * format, guint width)
{
  if (format->lines == ZOIMG_LINES_PACKED12)
    return ((gsize) width * 3 + 1) / 2;
  return (gsize) GST_ROUND_UP_4 (width) * format->sample_bytes;
}
