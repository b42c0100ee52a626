"""Pixel types, converters, filters and whole-frame conversion over the flat
C interface."""

import collections
import concurrent.futures
import ctypes
import re
import threading

import numpy as np

from . import _native

# ID bits, conversion flags and result codes (ZoPixelTypeIDs.h).
FORMAT_MASK = 0x0000FFFF
COLORSPACE_MASK = 0x00070000
COLORSPACE_GRAY, COLORSPACE_RGB, COLORSPACE_YUV = 0x10000, 0x20000, 0x40000
NORMALIZED, INTERLACED, PACKED, PLANAR = 0x100000, 0x200000, 0x400000, 0x800000
TAP_MASK = 0x1F000000
NO_PIXEL_TYPE_ID = 0xFFFFFFFF
FLAG_INVERT_DEINTERLACER = 0x01
FLAG_BAYER_INTERPOLATE = 0x100
FLAG_BAYER_PATTERN_MASK = 0xF0
PATTERNS = {"GRBG": 0x10, "GBRG": 0x20, "RGGB": 0x40, "BGGR": 0x80}
OK, ERR_BAD_ARGUMENT, ERR_NOT_SUPPORTED = 0, 18, 26
_U32_MAX = 0xFFFFFFFF

TypeInfo = collections.namedtuple("TypeInfo", "id name bits bytes bayer class_name pfnc")
ConverterInfo = collections.namedtuple("ConverterInfo",
                                       "source destination source_name destination_name class_name stages",
                                       defaults=((),))


def _lib():
    return _native.library()


def version():
    """The library's version, "major.minor.patch"."""
    return _lib().ZoImgLib_GetVersion().decode()


def hex_id(type_id):
    return "0x%08X" % (type_id & 0xFFFFFFFFFFFFFFFF)


def _type_name(type_id):
    # Asking the name of an unregistered ID would record it in the registry.
    if not _lib().ZoPixelTypeFactory_HasPixelType(type_id):
        return "(not a registered type)"
    return _lib().ZoPixelTypeFactory_GetPixelTypeName(type_id).decode()


# ---- The catalogue ----------------------------------------------------------

# Class-style names, as the zoimg tool takes them (case-insensitive, "Zo"
# optional, "Gray" for "Grayscale"): the pixel type classes and the IDs their
# default constructors use. The flat interface hands out pixel types as
# instances of the base class, so these cannot be read from the library.
_CLASS_IDS = (
    ("Grayscale8", 0x10001), ("Grayscale10", 0x10002), ("Grayscale12", 0x10003), ("Grayscale14", 0x10004),
    ("Grayscale16", 0x10005), ("Gray8", 0x10001), ("Gray10", 0x10002), ("Gray12", 0x10003), ("Gray14", 0x10004),
    ("Gray16", 0x10005), ("RGB16", 0x20001), ("RGB24", 0x20002), ("RGB32", 0x20003), ("RGB48", 0x20004),
    ("RGB64", 0x20005), ("BGR24", 0x20006), ("BGR32", 0x20007), ("RGB48_10Bits", 0x20008),
    ("RGB64_10Bits", 0x20009), ("RGB8_3", 0x2000A), ("RGB8_4", 0x2000B), ("RGB48_12Bits", 0x2000C),
    ("RGB64_12Bits", 0x2000D), ("BayerRGB8", 0x20010), ("BayerRGB10", 0x20011), ("BayerRGB12", 0x20012),
    ("BayerRGGB8", 0x20013), ("BayerRGGB10", 0x20014), ("BayerRGGB12", 0x20015), ("YUV8", 0x40001),
    ("YUV10", 0x40002), ("YUV8_444", 0x40003), ("YCrCb", 0x40005),
)
# The class of each default ID ("Grayscale8" before its alias "Gray8").
_CLASS_OF_DEFAULT_ID = {default: "Zo" + name for name, default in reversed(_CLASS_IDS)}

_CLASSES = {name.lower(): default for name, default in _CLASS_IDS}


def _candidate_ids():
    """The ID space pixel types use, scanned as the zoimg tool scans it (the
    registry has no "list all" operation): every format number up to 0xFF in
    each colour space, with every combination of the Normalized, Interlaced,
    Packed and Planar bits and every tap mode."""
    for space in (COLORSPACE_GRAY, COLORSPACE_RGB, COLORSPACE_YUV):
        for tap in (0, 0x01000000, 0x02000000, 0x04000000, 0x08000000, 0x10000000):
            for combination in range(16):
                flags = sum(bit for i, bit in enumerate((NORMALIZED, INTERLACED, PACKED, PLANAR))
                            if combination & (1 << i))
                for number in range(1, 0x100):
                    yield space | tap | flags | number


class _Catalogue:
    """The registered types, read once."""

    def __init__(self):
        has_type = _lib().ZoPixelTypeFactory_HasPixelType
        self.types = sorted(type_id for type_id in _candidate_ids() if has_type(type_id))
        self.info = {type_id: _describe_type(type_id) for type_id in self.types}
        self.by_name = collections.defaultdict(list)
        for info in self.info.values():
            self.by_name[info.name.lower()].append(info.id)
        self._sources = None

    @property
    def sources(self):
        """Every ID some converter converts from, registered as a type or not."""
        if self._sources is None:
            enum_from = _lib().ZoPixelTypeFactory_EnumConverterFrom
            destination = ctypes.c_int64()
            self._sources = sorted(type_id for type_id in _candidate_ids()
                                   if enum_from(0, type_id, ctypes.byref(destination)))
        return self._sources


_catalogue = None
_catalogue_lock = threading.Lock()


def _cat():
    global _catalogue
    if _catalogue is None:
        with _catalogue_lock:
            if _catalogue is None:
                _catalogue = _Catalogue()
    return _catalogue


def _describe_type(type_id):
    lib = _lib()
    handle = lib.ZoPixelTypeFactory_CreatePixelType(type_id)
    if not handle:
        return None
    try:
        bits = lib.ZoPixelType_GetPixelBitSize(handle)
        size = lib.ZoPixelType_GetPixelByteSize(handle)
        bayer = bool(lib.ZoPixelType_IsBayerPattern(handle))
    finally:
        lib.ZoPixelType_Destroy(handle)
    cls = _CLASS_OF_DEFAULT_ID.get(type_id & (COLORSPACE_MASK | FORMAT_MASK))
    return TypeInfo(type_id, _type_name(type_id), bits, size, bayer, cls, _pfnc_name(type_id))


def _pfnc_name(type_id):
    lib = _lib()
    if not lib.has("ZoPfnc_FromPixelType"):
        return None
    name, code = ctypes.c_char_p(), ctypes.c_uint32()
    if lib.ZoPfnc_FromPixelType(type_id, 0, ctypes.byref(name), ctypes.byref(code)) != OK or not name.value:
        return None
    return name.value.decode()


def _pfnc_names():
    lib = _lib()
    names = []
    if lib.has("ZoPfnc_GetEntry"):
        name, code, type_id, flags = ctypes.c_char_p(), ctypes.c_uint32(), ctypes.c_int64(), ctypes.c_uint32()
        index = 0
        while lib.ZoPfnc_GetEntry(index, ctypes.byref(name), ctypes.byref(code), ctypes.byref(type_id),
                                  ctypes.byref(flags)):
            if type_id.value != NO_PIXEL_TYPE_ID and name.value:
                names.append(name.value.decode())
            index += 1
    return names


def types():
    """Every registered pixel type, ascending by ID, as TypeInfo(id, name,
    bits, bytes, bayer, class_name, pfnc): name as `zoimg types` prints it,
    class_name the C++ class ("ZoBayerRGB12"), pfnc the GenICam name meaning
    the same bytes with the type's default pattern, or None."""
    return [_cat().info[type_id] for type_id in _cat().types]


# ---- Type resolution --------------------------------------------------------

_resolved = {}


def _available_types_text():
    cat = _cat()
    lines = ["core names:"] + ["  %s  %s" % (hex_id(i), cat.info[i].name) for i in cat.types]
    lines.append("class names: " + ", ".join(name for name, _ in _CLASS_IDS))
    pfnc = _pfnc_names()
    if pfnc:
        lines.append("PFNC names: " + ", ".join(pfnc))
    return "\n".join(lines)


def _unknown_type(given, role):
    return ValueError("unknown %s pixel type %r; a type is an ID (int) or one of these names\n%s"
                      % (role, given, _available_types_text()))


def _lookup(given, role):
    """resolve_type() through its cache first."""
    try:
        found = _resolved.get((given, role)) if given.__class__ is not bool else None
    except TypeError:  # unhashable: resolve_type() says what it should be
        found = None
    return found or resolve_type(given, role)


def _known_id(type_id):
    """A registered type, or an ID some converter converts from or to."""
    lib = _lib()
    other = ctypes.c_int64()
    return bool(lib.ZoPixelTypeFactory_HasPixelType(type_id)
                or lib.ZoPixelTypeFactory_EnumConverterFrom(0, type_id, ctypes.byref(other))
                or lib.ZoPixelTypeFactory_EnumConverterTo(0, type_id, ctypes.byref(other)))


def resolve_type(given, role="source"):
    """(type ID, Bayer pattern flags) for a type given as a core ID (int), a
    core name as `zoimg types` prints it ("Bayer RGB 12-bits, Packed", any
    case), a class-style name ("BayerRGB8", "ZoRGB24", "Gray12"), or a
    GenICam PFNC name ("BayerRG12p", "Mono8"), whose Bayer names imply their
    pattern, or a hex ID ("0x20010"). Core names never read like the others;
    a class-style name wins over a PFNC name, so "RGB16" is the core's 5-6-5
    type; "PFNC:RGB16" asks for the PFNC meaning only."""
    if isinstance(given, bool) or not isinstance(given, (int, np.integer, str)):
        raise TypeError("a %s pixel type is an int ID or a name, not %s" % (role, type(given).__name__))
    key = (given, role)
    if key in _resolved:
        return _resolved[key]
    if not isinstance(given, str):
        type_id = int(given)
        if not -(1 << 63) <= type_id < (1 << 63) or not _known_id(type_id):
            raise _unknown_type(given, role)
        _resolved[key] = (type_id, 0)
        return type_id, 0
    text = given.strip()
    pfnc_only = text.lower().startswith("pfnc:")
    if pfnc_only:
        text = text[5:].strip()
    lowered = text.lower()
    if not pfnc_only and re.fullmatch(r"0x[0-9a-f]{1,16}", lowered):
        result = resolve_type(int(lowered, 16), role)
    elif not pfnc_only and (lowered[2:] if lowered.startswith("zo") else lowered) in _CLASSES:
        result = (_CLASSES[lowered[2:] if lowered.startswith("zo") else lowered], 0)
    else:
        result = _resolve_pfnc(text, given, role)
    if result is None and not pfnc_only:
        # Core names last: only they need the catalogue read.
        matches = _cat().by_name.get(lowered, [])
        if len(matches) > 1:
            raise ValueError("%s pixel type name %r is ambiguous, it names %s; give the ID instead"
                             % (role, given, " and ".join(hex_id(m) for m in matches)))
        result = (matches[0], 0) if matches else None
    if result is None:
        raise _unknown_type(given, role)
    _resolved[key] = result
    return result


def _resolve_pfnc(text, given, role):
    lib = _lib()
    if not lib.has("ZoPfnc_FromName") or not text:
        return None
    type_id, flags = ctypes.c_int64(), ctypes.c_uint32()
    code = lib.ZoPfnc_FromName(text.encode("utf-8", "replace"), ctypes.byref(type_id), ctypes.byref(flags))
    if code == ERR_NOT_SUPPORTED:
        raise ValueError("%s pixel type %r is a PFNC format without an exact counterpart in "
                         "ZoImgLib (docs/pfnc.md says why); the PFNC formats it maps: %s"
                         % (role, given, ", ".join(_pfnc_names())))
    if code != OK:
        return None
    return type_id.value, flags.value


# ---- Converters ---------------------------------------------------------------

def converters(source=None):
    """Every registered conversion (from `source` only, when given) as
    ConverterInfo(source, destination, source_name, destination_name,
    class_name, stages), class_name being the C++ converter class behind the
    pair ("ZoBayerRGB16ToRGB24"; "ZoComplexConverter" for a pair served by a
    chain of two converters) and stages, for a chain, the class names of its
    first and second stage (() otherwise)."""
    lib = _lib()
    sources = _cat().sources if source is None else [resolve_type(source, "source")[0]]
    result = []
    destination = ctypes.c_int64()
    for src in sources:
        index = 0
        while lib.ZoPixelTypeFactory_EnumConverterFrom(index, src, ctypes.byref(destination)):
            dst = destination.value
            handle = lib.ZoPixelTypeFactory_GetConverter(src, dst)
            result.append(ConverterInfo(src, dst, _type_name(src), _type_name(dst), _native.class_name(lib, handle),
                                        _native.chain_stages(lib, handle)))
            index += 1
    return result


class _Converter:
    """A registered converter and what convert() needs to know about it,
    computed once per pair."""

    __slots__ = ("handle", "source", "destination", "source_name", "destination_name", "source_pixel_bytes",
                 "source_pair_bytes", "destination_pixel_bytes", "bayer_source", "layout", "filter_bits")

    def __init__(self, handle, source, destination):
        lib = _lib()
        self.handle, self.source, self.destination = handle, source, destination
        self.source_name, self.destination_name = _type_name(source), _type_name(destination)
        self.source_pixel_bytes = lib.ZoPixelConverter_GetSourceByteSize(handle, 1)
        self.source_pair_bytes = lib.ZoPixelConverter_GetSourceByteSize(handle, 2)
        self.destination_pixel_bytes = lib.ZoPixelConverter_GetDestinationByteSize(handle, 1)
        info = _describe_type(source) if lib.ZoPixelTypeFactory_HasPixelType(source) else None
        self.bayer_source = bool(info and info.bayer)
        # Sources of 8-bit samples (one byte a pixel, 8-bit RGB and YUV) read
        # a filter's first 256 entries; any other reads the 16-bit tables
        # with raw 16-bit samples, which a smaller filter would not hold.
        eight_bit = info is not None and (info.bytes == 1 or info.bits == 8 or (
            not info.bayer and info.bits == 8 * info.bytes and info.bytes in (3, 4))
            or (source & COLORSPACE_MASK == COLORSPACE_YUV and (info.bits, info.bytes) == (16, 2)))
        self.filter_bits = 8 if eight_bit else 16
        self.layout = _destination_layout(destination, self.destination_pixel_bytes)


_converters = {}


def _converter(source, destination):
    key = (source, destination)
    found = _converters.get(key)
    if found is None:
        handle = _lib().ZoPixelTypeFactory_GetConverter(source, destination)
        if not handle:
            available = converters(source)
            listing = "\n  ".join("%s %s" % (hex_id(c.destination), c.destination_name) for c in available)
            raise ValueError("no converter from %s (%s) to %s (%s); %s converts to:\n  %s"
                             % (hex_id(source), _type_name(source), hex_id(destination), _type_name(destination),
                                hex_id(source), listing or "(nothing)"))
        found = _converters[key] = _Converter(handle, source, destination)
    return found


def _destination_layout(type_id, pixel_bytes):
    """(kind, dtype, channels) of the natural array of a destination type:
    kind "planar" gives (3, h, w), "pixels" (h, w) or (h, w, channels),
    "lines" (h, line bytes) for layouts without one sample a pixel (packed,
    dual-tap, interlaced)."""
    low = type_id & 0xFFFFFFFF
    if low & PLANAR:
        return "planar", np.uint8, 3
    if low & (PACKED | TAP_MASK | INTERLACED) or pixel_bytes == 0:
        return "lines", np.uint8, 0
    space = low & COLORSPACE_MASK
    if pixel_bytes == 2 and space in (COLORSPACE_GRAY, COLORSPACE_RGB):
        return "pixels", np.dtype("<u2"), 1  # 16-bit gray and Bayer samples, RGB16 words
    if pixel_bytes == 1:
        return "pixels", np.uint8, 1
    if space == COLORSPACE_RGB and pixel_bytes in (6, 8):
        return "pixels", np.dtype("<u2"), pixel_bytes // 2
    return "pixels", np.uint8, pixel_bytes


def _shape(layout, width, height, line_bytes):
    kind, _, channels = layout
    if kind == "planar":
        return (3, height, width)
    if kind == "lines":
        return (height, line_bytes)
    return (height, width) if channels == 1 else (height, width, channels)


# ---- Filters ----------------------------------------------------------------

_CHANNELS = ("red", "green", "blue")


class Filter:
    """A per-channel lookup filter applied during conversion (white balance,
    gain, any per-value curve): three tables of 2**bits entries.

    Sources of one byte a sample read the first 256 entries (any bits from 8);
    wider sources read the tables with their raw 16-bit samples, so they need
    Filter(16). With a chain of two converters the filter acts on its first
    stage only (see converters())."""

    def __init__(self, bits=16):
        if isinstance(bits, bool) or not isinstance(bits, (int, np.integer)) or not 1 <= bits <= 16:
            raise ValueError("a filter has 1 to 16 bits (2**bits entries a table), not %r" % (bits,))
        self._handle = _lib().ZoRGBFilter_Init(int(bits))
        if not self._handle:
            raise MemoryError("ZoRGBFilter_Init(%d) failed" % bits)
        self.bits = int(bits)
        self.entry_count = _lib().ZoRGBFilter_GetEntryCount(self._handle)

    def __del__(self):
        handle, self._handle = getattr(self, "_handle", None), None
        if handle:
            try:
                _lib().ZoRGBFilter_Destroy(handle)
            except Exception:  # interpreter shutdown
                pass

    def __repr__(self):
        return "zoimglib.Filter(%d)" % self.bits

    def set_multipliers(self, red, green, blue, offsets=(0, 0, 0)):
        """Entry i of each table becomes min(i * multiplier + offset, entries - 1),
        truncated (not rounded). Multipliers are non-negative."""
        multipliers = [float(m) for m in (red, green, blue)]
        offsets = [int(o) for o in offsets]
        if len(offsets) != 3 or any(not 0 <= o <= 0xFFFF for o in offsets):
            raise ValueError("offsets are three integers from 0 to 65535, not %r" % (offsets,))
        if any(not m >= 0 for m in multipliers):
            raise ValueError("multipliers are non-negative numbers, not %r" % (multipliers,))
        code = _lib().ZoRGBFilter_SetMultipliers(self._handle, *multipliers, *offsets)
        if code != OK:
            raise ValueError("ZoRGBFilter_SetMultipliers refused %r with code %d" % (multipliers, code))
        return self

    def _channel(self, channel):
        if channel not in _CHANNELS:
            raise ValueError("channel is one of %s, not %r" % (", ".join(_CHANNELS), channel))
        return channel.capitalize()

    def set_entry(self, channel, index, value):
        """Sets one entry of the "red", "green" or "blue" table."""
        setter = getattr(_lib(), "ZoRGBFilter_Set%sValue" % self._channel(channel))
        index, value = int(index), int(value)
        if not 0 <= index < self.entry_count or not 0 <= value < self.entry_count:
            raise ValueError("filter entry %d = %d: index and value must be below %d"
                             % (index, value, self.entry_count))
        setter(self._handle, index, value)

    def set_table(self, channel, values):
        """Sets the first len(values) entries of a channel's table."""
        setter = getattr(_lib(), "ZoRGBFilter_Set%sValue" % self._channel(channel))
        values = np.asarray(values).reshape(-1)
        if len(values) > self.entry_count or (len(values) and (values.min() < 0 or values.max() >= self.entry_count)):
            raise ValueError("a %d-bit filter table holds at most %d values below %d"
                             % (self.bits, self.entry_count, self.entry_count))
        for index, value in enumerate(values.tolist()):
            setter(self._handle, index, int(value))

    def table(self, channel):
        """A channel's 16-bit table, as a uint16 array of entry_count values."""
        getter = getattr(_lib(), "ZoRGBFilter_Get%sValue16" % self._channel(channel))
        return np.array([getter(self._handle, i) for i in range(self.entry_count)], dtype=np.uint16)


# ---- Conversion -------------------------------------------------------------

_gains_filters = collections.OrderedDict()
_gains_lock = threading.Lock()


def _gains_filter(bits, red, green, blue):
    """A filter for gains=, kept for the next frames with the same gains
    (filling 16-bit tables takes longer than converting a small frame).
    Conversions only read a filter, so threads may share one."""
    key = (bits, red, green, blue)
    with _gains_lock:
        found = _gains_filters.get(key)
        if found is not None:
            _gains_filters.move_to_end(key)
            return found
    found = Filter(bits).set_multipliers(red, green, blue)
    with _gains_lock:
        _gains_filters[key] = found
        while len(_gains_filters) > 8:
            _gains_filters.popitem(last=False)
    return found


def _frame_bytes(frame):
    """The frame as a flat C-contiguous uint8 array, its shape and the size
    of its elements."""
    if isinstance(frame, np.ndarray):
        array = frame if frame.flags.c_contiguous else np.ascontiguousarray(frame)
        if array.dtype.hasobject:
            raise TypeError("a frame holds raw pixel bytes; an array of Python objects does not")
        flat = array.reshape(-1).view(np.uint8) if array.size else np.empty(0, np.uint8)
        return flat, array.shape, array.itemsize
    if isinstance(frame, (bytes, bytearray, memoryview)):
        flat = np.frombuffer(frame, dtype=np.uint8)
        return flat, flat.shape, 1
    raise TypeError("frame is a numpy array or a bytes-like object, not %s" % type(frame).__name__)


def _dimension(value, name):
    if value is None:
        return None
    if isinstance(value, bool) or not isinstance(value, (int, np.integer)) or not 0 < value <= _U32_MAX:
        raise ValueError("%s is a positive integer below 2**32, not %r" % (name, value))
    return int(value)


def _frame_size(conv, flat, shape, itemsize, width, height):
    """Width and height from the arguments, else from the frame's shape: its
    first axis is the height and the bytes of one row make a line. Elements
    wider than a byte must be whole pixels: (h, w) uint16 for 16-bit
    samples, (h, w, 3) uint8 for 3-byte RGB."""
    lib = _lib()
    nbytes = flat.size
    if height is None and len(shape) >= 2:
        height = shape[0]
    pixel = conv.source_pixel_bytes  # 0 for packed sources: no whole pixel
    if width is None and pixel and len(shape) >= 2 and (
            (len(shape) == 2 and itemsize not in (1, pixel)) or
            (len(shape) == 3 and shape[2] * itemsize != pixel) or len(shape) > 3):
        raise ValueError("a frame of shape %s and %d-byte elements is no image of %s (%d-byte pixels); "
                         "give width= to take its bytes as they are%s"
                         % (shape, itemsize, conv.source_name, pixel, _source_hint(conv)))
    if width is None:
        if height is None:
            raise ValueError("a %s frame of %d bytes: give width= (and height=) for a 1-D frame"
                             % (conv.source_name, nbytes))
        if height == 0 or nbytes % height or not conv.source_pair_bytes:
            raise ValueError("a frame of %d bytes does not split into %d lines of %s"
                             % (nbytes, height, conv.source_name))
        line = nbytes // height
        width = 2 * line // conv.source_pair_bytes
        if width == 0 or width > _U32_MAX or lib.ZoPixelConverter_GetSourceByteSize(conv.handle, width) != line:
            raise ValueError("a line of %d bytes is no whole number of %s pixels (%d bytes for two); give "
                             "width=%s" % (line, conv.source_name, conv.source_pair_bytes, _source_hint(conv)))
    if height is None:
        line = lib.ZoPixelConverter_GetSourceByteSize(conv.handle, width)
        if line == 0 or nbytes % line:
            raise ValueError("a frame of %d bytes is no whole number of %d-byte lines of %d %s pixels"
                             % (nbytes, line, width, conv.source_name))
        height = nbytes // line
    if not 0 < width <= _U32_MAX or not 0 < height <= _U32_MAX:
        raise ValueError("a frame of %d x %d pixels cannot be converted" % (width, height))
    return width, height


def _source_hint(conv):
    # The core's converters read unpacked "RGB 24-bits" as four bytes a
    # pixel (deliberately); numpy's (h, w, 3) frames are the packed type.
    if conv.source == 0x00020002:
        return ("; the converters read 'RGB 24-bits' as four bytes a pixel: a frame of three bytes a pixel "
                "is 'RGB 24-bits, Packed' (PFNC 'RGB8')")
    return ""


def _pattern_flags(pattern, implied):
    if pattern is None:
        return implied
    if isinstance(pattern, str) and pattern.upper() in PATTERNS:
        return PATTERNS[pattern.upper()]
    if isinstance(pattern, (int, np.integer)) and not isinstance(pattern, bool) and pattern in PATTERNS.values():
        return int(pattern)
    raise ValueError("pattern is one of %s (or its flag 0x10, 0x20, 0x40, 0x80), not %r"
                     % (", ".join(PATTERNS), pattern))


_pool = None
_pool_size = 0
_pool_lock = threading.Lock()


def _executor(workers):
    global _pool, _pool_size
    with _pool_lock:
        if _pool is None or _pool_size < workers:
            # A smaller pool is left to finish what other threads gave it.
            _pool = concurrent.futures.ThreadPoolExecutor(max_workers=workers, thread_name_prefix="zoimglib")
            _pool_size = workers
        return _pool


def _bands(height, count, step):
    """count bands covering [0, height), each starting on a multiple of step."""
    units = -(-height // step)
    count = max(1, min(count, units))
    edges = [(units * i // count) * step for i in range(count)] + [height]
    return [(edges[i], edges[i + 1] - edges[i]) for i in range(count) if edges[i + 1] > edges[i]]


def _convert_bands(conv, filt, src, dst, width, height, flags, threads):
    lib = _lib()
    band = lib.ZoPixelConverter_ConvertBand
    # Replicating Bayer demosaicing converts lines in pairs (2k, 2k + 1), so
    # its bands start on even lines; any other converter splits anywhere.
    step = 2 if conv.bayer_source and not flags & FLAG_BAYER_INTERPOLATE else 1
    bands = _bands(height, threads, step)

    def run(first_count):
        return band(conv.handle, filt, src, width, height, dst, width, height, width, height, flags, 0, *first_count)

    futures = [_executor(threads).submit(run, b) for b in bands[1:]]
    codes = [run(bands[0])] + [f.result() for f in futures]
    return next((code for code in codes if code != OK), OK)


def convert(frame, source, destination, *, width=None, height=None, pattern=None, interpolate=True, gains=None,
            filter=None, invert_deinterlacer=False, out=None, threads=1):
    """Converts a whole frame and returns it as a numpy array of the natural
    shape of the destination type:

      24-bit RGB/BGR (h, w, 3) uint8    32-bit RGB/BGR (h, w, 4) uint8
      8-bit gray/Bayer (h, w) uint8     10- to 16-bit gray/Bayer (h, w) uint16
      48-bit RGB (h, w, 3) uint16       planar RGB (3, h, w) uint8
      16-bit RGB (h, w) uint16 words    other layouts (h, line bytes) uint8

    frame: a numpy array (any dtype whose bytes hold the frame: (h, w) uint16
    for 12-bit samples, (h, 3w/2) uint8 for packed 12-bit, (h, w, 3) uint8
    for RGB24...) or a bytes-like object. The first axis of a 2-D or 3-D
    array is the height and a row is a line (elements wider than a byte are
    whole pixels, unless width= is given); a 1-D frame needs width= (the
    height follows from its size).
    source, destination: see resolve_type(); a PFNC Bayer name implies its
    pattern, which pattern= ("RGGB", "GRBG", "GBRG", "BGGR") overrides.
    interpolate: Bayer sources interpolate (True) or replicate each 2x2 cell.
    gains=(r, g, b): white balance in the same pass, through a Filter of 8
    bits for one-byte sources and 16 for wider ones; filter=: your own Filter.
    invert_deinterlacer: the second half of an interlaced source holds the
    field that goes to the even lines.
    out: a C-contiguous writable array of at least the frame's bytes; the
    frame is written at its start and the returned array is a view of it.
    threads: the frame is split into that many bands converted concurrently;
    the result is identical to threads=1.

    Raises ValueError for an unknown type (listing the known ones), a pair
    without converter (listing the source's destinations), or a frame whose
    size does not match (naming both sizes); TypeError for arguments of the
    wrong kind."""
    source_id, implied = _lookup(source, "source")
    destination_id, _ = _lookup(destination, "destination")
    flags = _pattern_flags(pattern, implied) if pattern is not None else implied
    explicit_pattern = pattern is not None
    if invert_deinterlacer:
        flags |= FLAG_INVERT_DEINTERLACER
    if threads != 1 and (isinstance(threads, bool) or not isinstance(threads, (int, np.integer)) or threads < 1):
        raise ValueError("threads is a positive integer, not %r" % (threads,))

    flat, shape, itemsize = _frame_bytes(frame)
    width = None if width is None else _dimension(width, "width")
    height = None if height is None else _dimension(height, "height")
    key = (source_id, destination_id, flags, bool(interpolate), shape, itemsize, width, height)
    plan = _plans.get(key)
    if plan is None:
        conv = _converter(source_id, destination_id)
        if explicit_pattern and not conv.bayer_source:
            raise ValueError("pattern= is for Bayer sources; %s is none" % conv.source_name)
        plan = _Plan(conv, flags, interpolate, flat, shape, itemsize, width, height)
        if len(_plans) >= 64:
            _plans.clear()
        _plans[key] = plan
    conv = plan.conv
    if plan.source_bytes > plan.frame_bytes:  # the converter reads beyond the frame
        padded = np.zeros(plan.source_bytes, np.uint8)
        padded[:plan.frame_bytes] = flat
        if plan.extra_line:
            copied = plan.source_line * (plan.height - 2 if plan.height >= 2 else 0)
            padded[plan.frame_bytes:plan.frame_bytes + plan.source_line] = flat[copied:copied + plan.source_line]
        flat = padded
    src = _address(flat)

    filt = None
    if gains is not None:
        if filter is not None:
            raise ValueError("give gains= or filter=, not both")
        try:
            red, green, blue = (float(g) for g in gains)
        except (TypeError, ValueError):
            raise ValueError("gains are three numbers (red, green, blue), not %r" % (gains,)) from None
        filter = _gains_filter(8 if conv.source_pixel_bytes == 1 else 16, red, green, blue)
    if filter is not None:
        if not isinstance(filter, Filter):
            raise TypeError("filter is a zoimglib.Filter, not %s" % type(filter).__name__)
        if filter.bits < conv.filter_bits:
            raise ValueError("a %s source reads %d-bit filter tables: give Filter(%d), not Filter(%d)"
                             % (conv.source_name, conv.filter_bits, conv.filter_bits, filter.bits))
        filt = filter._handle

    copy_to = None
    if out is not None:
        if not isinstance(out, np.ndarray):
            raise TypeError("out is a numpy array, not %s" % type(out).__name__)
        if not out.flags.c_contiguous or not out.flags.writeable:
            raise ValueError("out must be a C-contiguous writable array")
        if out.nbytes < plan.result_bytes:
            raise ValueError("out holds %d bytes, but the %d x %d frame of %s takes %d"
                             % (out.nbytes, plan.width, plan.height, conv.destination_name, plan.result_bytes))
        out_bytes = out.reshape(-1).view(np.uint8)
        if plan.before == 0 and out.nbytes >= plan.total:
            buffer = out_bytes
        else:  # the converter writes around the frame: convert aside, then copy
            buffer, copy_to = np.empty(plan.total, np.uint8), out_bytes
    else:
        buffer = np.empty(plan.total, np.uint8)
    dst = _address(buffer) + plan.before

    lib = _lib()
    w, h, flags = plan.width, plan.height, plan.flags
    if threads > 1 and h > 1 and lib.has("ZoPixelConverter_ConvertBand"):
        code = _convert_bands(conv, filt, src, dst, w, h, flags, int(threads))
        if code == ERR_BAD_ARGUMENT:  # a band boundary this converter cannot split at: one pass
            code = lib.ZoPixelConverter_ConvertAreaFilter(conv.handle, filt, src, w, h, dst, w, h, w, h, flags, 0)
    else:
        code = lib.ZoPixelConverter_ConvertAreaFilter(conv.handle, filt, src, w, h, dst, w, h, w, h, flags, 0)
    if code != OK:
        raise RuntimeError("converting %s to %s failed with result code %d"
                           % (conv.source_name, conv.destination_name, code))
    frame_view = buffer[plan.before:plan.before + plan.result_bytes]
    if copy_to is not None:
        copy_to[:plan.result_bytes] = frame_view
        frame_view = copy_to[:plan.result_bytes]
    return frame_view.view(plan.dtype).reshape(plan.shape)


def _address(array):
    """The address of a C-contiguous array's first byte (the cheap way for a
    writable one)."""
    if array.flags.writeable and array.size:
        return ctypes.addressof(ctypes.c_char.from_buffer(array))
    return array.__array_interface__["data"][0]


_plans = {}


class _Plan:
    """Everything about one conversion that depends only on its types, flags
    and frame geometry, checked and computed once."""

    __slots__ = ("conv", "flags", "width", "height", "frame_bytes", "source_bytes", "before", "total",
                 "result_bytes", "dtype", "shape", "source_line", "extra_line")

    def __init__(self, conv, flags, interpolate, flat, shape, itemsize, width, height):
        lib = _lib()
        if interpolate and conv.bayer_source:
            flags |= FLAG_BAYER_INTERPOLATE
        width, height = _frame_size(conv, flat, shape, itemsize, width, height)
        source_line = lib.ZoPixelConverter_GetSourceByteSize(conv.handle, width)
        frame_bytes = source_line * height
        if flat.size != frame_bytes or source_line == 0:
            raise ValueError("the frame holds %d bytes, but a %d x %d frame of %s takes %d (%d a line)%s"
                             % (flat.size, width, height, conv.source_name, frame_bytes, source_line,
                                _source_hint(conv)))
        sizes = _native.AreaBufferSizes()
        code = lib.ZoPixelConverter_GetAreaBufferSizes(conv.handle, width, height, width, height, width, height,
                                                       flags, 0, ctypes.byref(sizes))
        if code != OK:
            raise ValueError("a %d x %d frame of %s is too large to convert (code %d)"
                             % (width, height, conv.source_name, code))
        line = lib.ZoPixelConverter_GetDestinationByteSize(conv.handle, width)
        self.conv, self.flags, self.width, self.height = conv, flags, width, height
        self.frame_bytes, self.source_bytes = frame_bytes, sizes.sourceBytes
        self.before = sizes.destinationBytesBefore
        self.result_bytes = line * height
        # A replicating Bayer source of odd height pairs its last line with
        # the line after the frame: a copy of line height - 2 (line 0 for one
        # line), the last line of the same colour row, as the library's
        # chains do, so the last row takes the colours of the row above.
        self.source_line = source_line
        self.extra_line = (conv.bayer_source and not flags & FLAG_BAYER_INTERPOLATE and height % 2 == 1
                           and sizes.sourceBytes >= frame_bytes + source_line)
        # The count stops at the last byte written, which may fall short of
        # the frame's end: the buffer holds both.
        self.total = sizes.destinationBytesBefore + max(sizes.destinationBytes, self.result_bytes)
        self.dtype = conv.layout[1]
        self.shape = _shape(conv.layout, width, height, line)
