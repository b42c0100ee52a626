/* Pixel type ID bit layout, built-in base IDs, conversion flags and result
 * codes. Compiles as C and as C++.
 *
 * A pixel type ID is a signed 64-bit integer; only its low 32 bits carry
 * meaning:
 *   bits  0-15  format number (only compared, never interpreted)
 *   bits 16-18  colour space: 0x10000 grayscale, 0x20000 RGB (Bayer
 *               included), 0x40000 YUV (YCrCb included)
 *   bit  20     Normalized     bit 21 Interlaced
 *   bit  22     Packed         bit 23 Planar
 *   bits 24-28  tap mode (one value, not a set of flags)
 * A built-in ID is composed as base ID | flags, for example
 * ZO_PT_BAYER_RGB10 | ZO_PIXEL_PACKED | ZO_PIXEL_TAP_DUAL_LR == 0x01420011. */
#ifndef ZO_PIXEL_TYPE_IDS_H
#define ZO_PIXEL_TYPE_IDS_H

#include <stdint.h>

/* Typed constants in C++, enumerators in C. */
#ifdef __cplusplus
#define ZO_CONSTANT(type, name, value) constexpr type name = value;
#else
#define ZO_CONSTANT(type, name, value) enum { name = value };
#endif

ZO_CONSTANT(uint32_t, ZO_PIXEL_FORMAT_MASK, 0x0000FFFF)
ZO_CONSTANT(uint32_t, ZO_PIXEL_COLORSPACE_MASK, 0x00070000)
ZO_CONSTANT(uint32_t, ZO_PIXEL_COLORSPACE_GRAY, 0x00010000)
ZO_CONSTANT(uint32_t, ZO_PIXEL_COLORSPACE_RGB, 0x00020000)
ZO_CONSTANT(uint32_t, ZO_PIXEL_COLORSPACE_YUV, 0x00040000)
ZO_CONSTANT(uint32_t, ZO_PIXEL_NORMALIZED, 0x00100000)
ZO_CONSTANT(uint32_t, ZO_PIXEL_INTERLACED, 0x00200000)
ZO_CONSTANT(uint32_t, ZO_PIXEL_PACKED, 0x00400000)
ZO_CONSTANT(uint32_t, ZO_PIXEL_PLANAR, 0x00800000)
ZO_CONSTANT(uint32_t, ZO_PIXEL_TAP_MASK, 0x1F000000)
ZO_CONSTANT(uint32_t, ZO_PIXEL_TAP_SINGLE, 0)
ZO_CONSTANT(uint32_t, ZO_PIXEL_TAP_DUAL_LR, 0x01000000) /* Dual Left+Right */
ZO_CONSTANT(uint32_t, ZO_PIXEL_TAP_DUAL_LR_INV, 0x02000000) /* Dual Left+Right Inverted */
ZO_CONSTANT(uint32_t, ZO_PIXEL_TAP_DUAL_LINV_R, 0x04000000) /* Dual Left Inverted+Right */
ZO_CONSTANT(uint32_t, ZO_PIXEL_TAP_DUAL_LINV_RINV, 0x08000000) /* Dual Left Inverted+Right Inverted */
ZO_CONSTANT(uint32_t, ZO_PIXEL_TAP_DUAL_LINES, 0x10000000) /* Dual Lines */

/* Default IDs of the 28 pixel type classes (no flag bits set). */
ZO_CONSTANT(int64_t, ZO_PT_GRAY8, 0x00010001)
ZO_CONSTANT(int64_t, ZO_PT_GRAY10, 0x00010002)
ZO_CONSTANT(int64_t, ZO_PT_GRAY12, 0x00010003)
ZO_CONSTANT(int64_t, ZO_PT_GRAY14, 0x00010004)
ZO_CONSTANT(int64_t, ZO_PT_GRAY16, 0x00010005)
ZO_CONSTANT(int64_t, ZO_PT_RGB16, 0x00020001)
ZO_CONSTANT(int64_t, ZO_PT_RGB24, 0x00020002)
ZO_CONSTANT(int64_t, ZO_PT_RGB32, 0x00020003)
ZO_CONSTANT(int64_t, ZO_PT_RGB48, 0x00020004)
ZO_CONSTANT(int64_t, ZO_PT_RGB64, 0x00020005)
ZO_CONSTANT(int64_t, ZO_PT_BGR24, 0x00020006)
ZO_CONSTANT(int64_t, ZO_PT_BGR32, 0x00020007)
ZO_CONSTANT(int64_t, ZO_PT_RGB48_10BITS, 0x00020008)
ZO_CONSTANT(int64_t, ZO_PT_RGB64_10BITS, 0x00020009)
ZO_CONSTANT(int64_t, ZO_PT_RGB8_3, 0x0002000A)
ZO_CONSTANT(int64_t, ZO_PT_RGB8_4, 0x0002000B)
ZO_CONSTANT(int64_t, ZO_PT_RGB48_12BITS, 0x0002000C)
ZO_CONSTANT(int64_t, ZO_PT_RGB64_12BITS, 0x0002000D)
ZO_CONSTANT(int64_t, ZO_PT_BAYER_RGB8, 0x00020010)
ZO_CONSTANT(int64_t, ZO_PT_BAYER_RGB10, 0x00020011)
ZO_CONSTANT(int64_t, ZO_PT_BAYER_RGB12, 0x00020012)
ZO_CONSTANT(int64_t, ZO_PT_BAYER_RGGB8, 0x00020013) /* deprecated alias of ZO_PT_BAYER_RGB8 */
ZO_CONSTANT(int64_t, ZO_PT_BAYER_RGGB10, 0x00020014) /* deprecated alias of ZO_PT_BAYER_RGB10 */
ZO_CONSTANT(int64_t, ZO_PT_BAYER_RGGB12, 0x00020015) /* deprecated alias of ZO_PT_BAYER_RGB12 */
ZO_CONSTANT(int64_t, ZO_PT_YUV8, 0x00040001) /* YUV 8-bits 4:2:2 */
ZO_CONSTANT(int64_t, ZO_PT_YUV10, 0x00040002) /* YUV 10-bits 4:2:2 */
ZO_CONSTANT(int64_t, ZO_PT_YUV8_444, 0x00040003) /* registered only with ZO_PIXEL_PACKED */
ZO_CONSTANT(int64_t, ZO_PT_YCRCB, 0x00040005) /* registered only with ZO_PIXEL_PACKED */

/* Flags of the area conversion (also static members of ZoPixelConverter). */
ZO_CONSTANT(uint32_t, ZO_FLAG_INVERT_DEINTERLACER, 0x01)
ZO_CONSTANT(uint32_t, ZO_FLAG_BAYER_GRBG, 0x10)
ZO_CONSTANT(uint32_t, ZO_FLAG_BAYER_GBRG, 0x20)
ZO_CONSTANT(uint32_t, ZO_FLAG_BAYER_RGGB, 0x40)
ZO_CONSTANT(uint32_t, ZO_FLAG_BAYER_BGGR, 0x80)
ZO_CONSTANT(uint32_t, ZO_FLAG_BAYER_PATTERN_MASK, 0xF0)
ZO_CONSTANT(uint32_t, ZO_FLAG_BAYER_INTERPOLATE, 0x100)

/* Result codes (unsigned 32-bit). */
ZO_CONSTANT(uint32_t, ZO_OK, 0)
ZO_CONSTANT(uint32_t, ZO_ERR_BAD_ARGUMENT, 18) /* bad argument or null object */
ZO_CONSTANT(uint32_t, ZO_ERR_ALREADY_REGISTERED, 18) /* the ID or pair is taken; nothing changed */
ZO_CONSTANT(uint32_t, ZO_ERR_NO_REGISTRY, 24) /* the registry could not be allocated */
ZO_CONSTANT(uint32_t, ZO_ERR_NOTHING_CLONED, 25) /* ClonePixelConverters added nothing */
ZO_CONSTANT(uint32_t, ZO_ERR_NOT_SUPPORTED, 26) /* operation not supported by this converter */
ZO_CONSTANT(uint32_t, ZO_ERR_INTERPOLATION, 33) /* an interpolating Bayer kernel failed */

/* The type ID returned by the flat interface for a null type handle. */
#define ZO_NO_PIXEL_TYPE_ID 0x00000000FFFFFFFFLL

#endif
