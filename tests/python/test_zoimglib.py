"""zoimglib against the C library it binds: bytes, shapes, names, bands and
every error path."""

import os
import re
import shutil
import subprocess
import sys

import numpy as np
import pytest

import zoimglib as zo

RNG = np.random.default_rng(20261124)
LIB = zo.library()
BAYER_SOURCES = {t.id for t in zo.types() if t.bayer}


def c_convert(source, destination, raw, width, height, flags):
    """The frame as the C library writes it through the flat interface, in
    buffers with wide zeroed margins."""
    conv = LIB.ZoPixelTypeFactory_GetConverter(source, destination)
    src_line = LIB.ZoPixelConverter_GetSourceByteSize(conv, width)
    dst_line = LIB.ZoPixelConverter_GetDestinationByteSize(conv, width)
    margin = 4 * max(src_line, dst_line) + 256
    src = np.zeros(margin * 2 + raw.nbytes, np.uint8)
    src[margin:margin + raw.nbytes] = raw.reshape(-1).view(np.uint8)
    dst = np.zeros(margin * 2 + dst_line * height, np.uint8)
    base = lambda a: a.ctypes.data + margin
    assert LIB.ZoPixelConverter_ConvertAreaFilter(conv, None, base(src), width, height, base(dst), width, height,
                                                  width, height, flags, 0) == 0
    return dst[margin:margin + dst_line * height].tobytes()


def random_frame(source, destination, width, height):
    conv = LIB.ZoPixelTypeFactory_GetConverter(source, destination)
    line = LIB.ZoPixelConverter_GetSourceByteSize(conv, width)
    return RNG.integers(0, 256, (height, line), dtype=np.uint8)


def test_every_registered_pair_writes_the_c_library_bytes():
    pairs = zo.converters()
    assert len(pairs) == 680
    for pair, (width, height) in zip(pairs * 2, [(13, 6)] * len(pairs) + [(8, 5)] * len(pairs)):
        raw = random_frame(pair.source, pair.destination, width, height)
        flags = 0x100 if pair.source in BAYER_SOURCES else 0
        got = zo.convert(raw, pair.source, pair.destination, width=width)
        assert got.tobytes() == c_convert(pair.source, pair.destination, raw, width, height, flags), pair


@pytest.mark.parametrize("source, destination, shape, dtype", [
    ("BayerRGB12", "RGB24", (5, 7, 3), np.uint8),
    ("BayerRGB12", 0x00020007, (5, 7, 4), np.uint8),  # BGR32
    ("BayerRGB12", "RGB48", (5, 7, 3), np.uint16),
    ("BayerRGB12", "RGB16", (5, 7), np.uint16),
    ("BayerRGB12", "RGB 24-bits, Planar", (3, 5, 7), np.uint8),
    ("Gray12", "Gray8", (5, 7), np.uint8),
])
def test_natural_shape_and_dtype(source, destination, shape, dtype):
    src, _ = zo.resolve_type(source)
    dst, _ = zo.resolve_type(destination)
    got = zo.convert(random_frame(src, dst, 7, 5), source, destination)
    assert (got.shape, got.dtype) == (shape, np.dtype(dtype))
    assert got.base is not None and got.nbytes == LIB.ZoPixelConverter_GetDestinationByteSize(
        LIB.ZoPixelTypeFactory_GetConverter(src, dst), 7) * 5


def test_frames_of_any_dtype_and_bytes_and_out_buffers_give_the_same_result():
    samples = RNG.integers(0, 4096, (6, 10), dtype=np.uint16)
    expected = zo.convert(samples, "BayerRGB12", "RGB24")
    for frame, kwargs in [(samples.view(np.uint8), {}), (samples.tobytes(), {"width": 10}),
                          (samples.reshape(-1), {"width": 10, "height": 6}), (samples.T.copy().T, {}),
                          (bytearray(samples.tobytes()), {"height": 6})]:
        assert np.array_equal(zo.convert(frame, "BayerRGB12", "RGB24", **kwargs), expected)
    for out in (np.empty((6, 10, 3), np.uint8), np.empty(6 * 10 * 3 + 100, np.uint8)):  # written in place
        got = zo.convert(samples, "BayerRGB12", "RGB24", out=out)
        assert np.shares_memory(got, out) and np.array_equal(got, expected)


def pack12(samples):
    """Mono12p: two samples in three bytes, LSB first."""
    a, b = samples[..., 0::2].astype(np.uint32), samples[..., 1::2].astype(np.uint32)
    group = a | (b << 12)
    return np.stack([group & 0xFF, (group >> 8) & 0xFF, group >> 16], axis=-1).astype(np.uint8).reshape(
        samples.shape[0], -1)


def test_pfnc_names_resolve_and_imply_the_bayer_pattern():
    with pytest.raises(ValueError, match="PFNC:RGB16.*without an exact counterpart"):
        zo.resolve_type("PFNC:RGB16")  # RGB16 is the core's type unless PFNC is asked for
    samples = RNG.integers(0, 4096, (8, 12), dtype=np.uint16)
    packed = pack12(samples)
    assert packed.shape == (8, 18)
    assert np.array_equal(zo.convert(pack12(samples), "Mono12p", "Gray12"), samples)
    rggb = zo.convert(samples, "BayerRGB12", "RGB48", pattern="RGGB")
    assert np.array_equal(zo.convert(packed, "BayerRG12p", "RGB48"), rggb)
    assert not np.array_equal(zo.convert(packed, "BayerRG12p", "RGB48", pattern="GRBG"), rggb)


@pytest.mark.parametrize("given, expected", [
    (0x00020010, 0x00020010), ("Bayer RGB 8-bits", 0x00020010), ("bayer rgb 8-BITS", 0x00020010),
    ("BayerRGB8", 0x00020010), ("ZoRGB24", 0x00020002), ("Gray12", 0x00010003), ("grayscale12", 0x00010003),
    ("YCrCb 8-bits 4:4:4, Packed", 0x00440005), ("0x420012", 0x00420012),
    # PFNC names, a Bayer one with its pattern; the core's 5-6-5 RGB16 wins over PFNC's
    ("Mono8", 0x00010001), ("BayerRG12p", (0x00420012, 0x40)), ("RGB8", 0x00420002),
    ("YCbCr601_422_8", 0x00040001), ("RGB16", 0x00020001),
])
def test_core_ids_names_class_names_and_pfnc_names(given, expected):
    assert zo.resolve_type(given) == (expected if isinstance(expected, tuple) else (expected, 0))


# Python's band split (pairs of lines for replicating Bayer, a fallback to
# one pass where a chain refuses a boundary); every pair's bands: BandConvertTest.
@pytest.mark.parametrize("source, destination, width, height, kwargs", [
    ("BayerRGB8", "RGB24", 29, 37, {}),
    ("BayerRGB8", "BGR32", 29, 37, {"interpolate": False}),
    ("BayerRGB12", "RGB48", 31, 23, {"gains": (1.5, 1.0, 2.0)}),
    ("Bayer RGB 12-bits, Packed", "RGB24", 30, 33, {}),  # a chain
    ("Grayscale 10-bits, Interlaced", "Gray8", 11, 21, {"invert_deinterlacer": True}),
])
def test_bands_on_threads_equal_one_pass(source, destination, width, height, kwargs):
    src, _ = zo.resolve_type(source)
    dst, _ = zo.resolve_type(destination)
    raw = random_frame(src, dst, width, height)
    one = zo.convert(raw, source, destination, width=width, threads=1, **kwargs)
    for threads in (2, 4):
        assert np.array_equal(zo.convert(raw, source, destination, width=width, threads=threads, **kwargs), one)


@pytest.mark.parametrize("height", [3, 5])
def test_replicating_bayer_at_an_odd_height_gives_the_last_row_the_row_above(height):
    # One colour mosaiced: every output row must be that colour, the last
    # one (paired with the line after the frame) included.
    mosaic = np.tile(np.array([[200, 100], [100, 50]], np.uint8), (3, 3))[:height, :6]
    got = zo.convert(np.ascontiguousarray(mosaic), "BayerRGB8", "RGB24", width=6, pattern="RGGB", interpolate=False)
    assert np.array_equal(got, np.broadcast_to(np.array([200, 100, 50], np.uint8), got.shape)), got


def test_gains_and_per_entry_tables_filter_in_the_same_pass():
    rgb = RNG.integers(0, 256, (4, 5, 3), dtype=np.uint8)
    inverse = zo.Filter(8)
    inverse.set_table("red", np.arange(255, -1, -1))
    inverse.set_entry("blue", 7, 200)
    got = zo.convert(rgb, "RGB 24-bits, Packed", "BGR24", filter=inverse)
    assert np.array_equal(got[..., 2], 255 - rgb[..., 0])
    assert np.array_equal(got[..., 1], rgb[..., 1])
    assert np.array_equal(got[..., 0], np.where(rgb[..., 2] == 7, 200, rgb[..., 2]))
    gained = zo.convert(rgb, "RGB 24-bits, Packed", "RGB24", gains=(2, 1, 0.5))
    assert np.array_equal(gained[..., 0], np.minimum(rgb[..., 0].astype(int) * 2, 255))
    assert np.array_equal(gained[..., 2], rgb[..., 2] // 2)
    table = zo.Filter(16).set_multipliers(1.0, 1.0, 1.0, offsets=(10, 0, 0)).table("red")
    assert (table[0], table[65535], len(table)) == (10, 65535, 65536)


def test_invert_deinterlacer_takes_the_even_lines_from_the_second_field():
    fields = np.arange(30, dtype=np.uint8).reshape(6, 5)  # field 1: lines 0-2, field 2: lines 3-5
    got = zo.convert(fields, "Grayscale 8-bits, Interlaced", "Gray8", invert_deinterlacer=True)
    assert np.array_equal(got, fields[[3, 0, 4, 1, 5, 2]])
    assert np.array_equal(zo.convert(fields, "Grayscale 8-bits, Interlaced", "Gray8"), fields[[0, 3, 1, 4, 2, 5]])


def test_discovery():
    assert re.fullmatch(r"\d+\.\d+\.\d+", zo.version())
    types = zo.types()
    assert len(types) == 121 and types[0].name == "Grayscale 8-bits"
    assert [t.class_name for t in types if t.id == 0x00020012] == ["ZoBayerRGB12"]
    classes = {c.destination: c.class_name for c in zo.converters("BayerRGB8")}
    assert classes[0x00020002] == "ZoBayerRGB8ToRGB24"
    assert classes[0x00820002] == "ZoComplexConverter"
    stages = {c.destination: c.stages for c in zo.converters("BayerRGB8")}
    assert stages[0x00820002] == ("ZoBayerRGB8ToRGB24", "ZoRGB24ToRGB24Planar") and stages[0x00020002] == ()


GRAY = np.zeros((4, 6), np.uint8)
BAYER12 = np.zeros((4, 6), np.uint16)


@pytest.mark.parametrize("call, error, words", [
    (lambda: zo.convert(GRAY, "NoSuchType", "RGB24"), ValueError, ["NoSuchType", "BayerRGB8", "Grayscale 8-bits"]),
    (lambda: zo.convert(GRAY, 0x12345, "RGB24"), ValueError, ["74565", "core names"]),
    (lambda: zo.convert(GRAY, "Gray8", "YUV8"), ValueError, ["no converter", "0x00020002 RGB 24-bits"]),
    (lambda: zo.convert(GRAY, "RGB 32-bits", "RGB24"), ValueError, ["ambiguous", "0x00020003", "0x00020007"]),
    (lambda: zo.convert(GRAY, "Mono10p", "RGB24"), ValueError, ["Mono10p", "counterpart"]),
    (lambda: zo.convert(GRAY, "Gray8", "RGB24", width=5), ValueError, ["24 bytes", "20"]),
    (lambda: zo.convert(GRAY.reshape(-1), "Gray8", "RGB24"), ValueError, ["width="]),
    (lambda: zo.convert(BAYER12, "BayerRGB8", "RGB24"), ValueError, ["(4, 6)", "2-byte elements", "1-byte pixels"]),
    (lambda: zo.convert(np.zeros((4, 6, 3), np.uint8), "RGB24", "BGR24"), ValueError, ["'RGB 24-bits, Packed'"]),
    (lambda: zo.convert(GRAY, "Gray8", "RGB24", width=0), ValueError, ["width"]),
    (lambda: zo.convert(BAYER12, "BayerRGB12", "RGB24", pattern="RGBG"), ValueError, ["RGGB"]),
    (lambda: zo.convert(GRAY, "Gray8", "RGB24", pattern="RGGB"), ValueError, ["Bayer sources"]),
    (lambda: zo.convert(BAYER12, "BayerRGB12", "RGB24", gains=(1, 2)), ValueError, ["three numbers"]),
    (lambda: zo.convert(BAYER12, "BayerRGB12", "RGB24", gains=(1, -2, 1)), ValueError, ["non-negative"]),
    (lambda: zo.convert(BAYER12, "BayerRGB12", "RGB24", gains=(1, 1, 1), filter=zo.Filter(16)), ValueError,
     ["not both"]),
    (lambda: zo.convert(BAYER12, "BayerRGB12", "RGB24", filter=zo.Filter(8)), ValueError, ["Filter(16)"]),
    (lambda: zo.convert(BAYER12, "BayerRGB12", "RGB24", filter="warm"), TypeError, ["Filter"]),
    (lambda: zo.convert(GRAY, "Gray8", "RGB24", out=np.empty(71, np.uint8)), ValueError, ["71", "72"]),
    (lambda: zo.convert(GRAY, "Gray8", "RGB24", out=np.empty((4, 6, 6), np.uint8)[..., :3]), ValueError,
     ["C-contiguous"]),
    (lambda: zo.convert([[1, 2]], "Gray8", "RGB24"), TypeError, ["numpy array"]),
    (lambda: zo.convert(GRAY, 1.5, "RGB24"), TypeError, ["float"]),
    (lambda: zo.Filter(17), ValueError, ["1 to 16"]),
    (lambda: zo.Filter(8).set_entry("red", 256, 1), ValueError, ["below 256"]),
    (lambda: zo.Filter(8).set_table("alpha", [1]), ValueError, ["red, green, blue"]),
])
def test_bad_arguments_raise_documented_errors(call, error, words):
    with pytest.raises(error) as raised:
        call()
    for word in words:
        assert word in str(raised.value)


def test_missing_library_names_every_place_tried(tmp_path):
    shutil.copytree(os.path.dirname(zo.__file__), tmp_path / "zoimglib",
                    ignore=shutil.ignore_patterns("__pycache__", "_install.py"))
    env = {k: v for k, v in os.environ.items() if k not in ("ZOIMGLIB_LIBRARY", "LD_LIBRARY_PATH")}
    script = "import zoimglib\ntry:\n    zoimglib.version()\nexcept zoimglib.LibraryNotFoundError as e:\n    print(e)"
    found = subprocess.run([sys.executable, "-c", script], cwd=tmp_path, env=dict(env, PYTHONPATH=str(tmp_path)),
                           capture_output=True, text=True, check=True).stdout
    for place in ("beside the installed package", "in the build tree", "through the system loader"):
        assert place in found
    explicit = subprocess.run([sys.executable, "-c", script], cwd=tmp_path, capture_output=True, text=True, check=True,
                              env=dict(env, PYTHONPATH=str(tmp_path), ZOIMGLIB_LIBRARY="/nowhere/libZoImgLib64.so"))
    assert "ZOIMGLIB_LIBRARY=/nowhere/libZoImgLib64.so (no such file)" in explicit.stdout
