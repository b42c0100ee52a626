"""Finding libZoImgLib64 and declaring its flat C functions for ctypes.

Every prototype is declared once here, so that ctypes converts arguments
and results exactly (64-bit IDs, unsigned 32-bit sizes and codes, C99 bool)
and releases the GIL during each call.
"""

import ctypes
import ctypes.util
import os
import sys
import threading

if sys.platform == "win32":
    LIBRARY_FILE = "ZoImgLib64.dll"
elif sys.platform == "darwin":
    LIBRARY_FILE = "libZoImgLib64.dylib"
else:
    LIBRARY_FILE = "libZoImgLib64.so"

ENV_VARIABLE = "ZOIMGLIB_LIBRARY"

_PACKAGE_DIR = os.path.dirname(os.path.abspath(__file__))
# python/zoimglib -> the source tree's root, whose build/ holds the library
# after `cmake -S . -B build && cmake --build build`.
_SOURCE_ROOT = os.path.dirname(os.path.dirname(_PACKAGE_DIR))


class LibraryNotFoundError(OSError):
    """libZoImgLib64 could not be loaded from any of the places tried."""

    __module__ = "zoimglib"


class _Handle(ctypes.c_void_p):
    """An opaque handle: a distinct type so that results keep their class."""


# name: (result type, argument types). Functions of the extension interface
# are marked optional: an older library lacks them, and only the operations
# that need them fail, with a message naming the function.
_i64, _u32, _u16, _u8, _bool, _dbl = (ctypes.c_int64, ctypes.c_uint32, ctypes.c_uint16, ctypes.c_uint8,
                                      ctypes.c_bool, ctypes.c_double)
_ptr, _str = ctypes.c_void_p, ctypes.c_char_p
_AREA = [_ptr, _u32, _u32, _ptr, _u32, _u32, _u32, _u32, _u32, _u32]


class AreaBufferSizes(ctypes.Structure):
    _fields_ = [("sourceBytes", ctypes.c_uint64), ("destinationBytes", ctypes.c_uint64),
                ("destinationBytesBefore", ctypes.c_uint64)]


_PROTOTYPES = {
    "ZoPixelType_Destroy": (None, [_ptr]),
    "ZoPixelType_GetTypeID": (_i64, [_ptr]),
    "ZoPixelType_GetPixelBitSize": (_u16, [_ptr]),
    "ZoPixelType_GetPixelByteSize": (_u16, [_ptr]),
    "ZoPixelType_IsBayerPattern": (_bool, [_ptr]),
    "ZoPixelTypeFactory_HasPixelType": (_bool, [_i64]),
    "ZoPixelTypeFactory_CreatePixelType": (_ptr, [_i64]),
    "ZoPixelTypeFactory_GetPixelTypeName": (_str, [_i64]),
    "ZoPixelTypeFactory_HasConverter": (_bool, [_i64, _i64]),
    "ZoPixelTypeFactory_GetConverter": (_ptr, [_i64, _i64]),
    "ZoPixelTypeFactory_EnumConverterFrom": (_bool, [_u32, _i64, ctypes.POINTER(_i64)]),
    "ZoPixelTypeFactory_EnumConverterTo": (_bool, [_u32, _i64, ctypes.POINTER(_i64)]),
    "ZoPixelConverter_GetSourceType": (_i64, [_ptr]),
    "ZoPixelConverter_GetDestinationType": (_i64, [_ptr]),
    "ZoPixelConverter_GetSourceByteSize": (_u32, [_ptr, _u32]),
    "ZoPixelConverter_GetDestinationByteSize": (_u32, [_ptr, _u32]),
    "ZoPixelConverter_ConvertAreaFilter": (_u32, [_ptr, _ptr] + _AREA),
    "ZoRGBFilter_Init": (_ptr, [_u32]),
    "ZoRGBFilter_Destroy": (None, [_ptr]),
    "ZoRGBFilter_GetBitSize": (_u32, [_ptr]),
    "ZoRGBFilter_GetEntryCount": (_u32, [_ptr]),
    "ZoRGBFilter_GetRedValue16": (_u16, [_ptr, _u32]),
    "ZoRGBFilter_GetGreenValue16": (_u16, [_ptr, _u32]),
    "ZoRGBFilter_GetBlueValue16": (_u16, [_ptr, _u32]),
    "ZoRGBFilter_SetRedValue": (_u32, [_ptr, _u32, _u16]),
    "ZoRGBFilter_SetGreenValue": (_u32, [_ptr, _u32, _u16]),
    "ZoRGBFilter_SetBlueValue": (_u32, [_ptr, _u32, _u16]),
    "ZoRGBFilter_SetMultipliers": (_u32, [_ptr, _dbl, _dbl, _dbl, _u16, _u16, _u16]),
}
_OPTIONAL_PROTOTYPES = {
    "ZoImgLib_GetVersion": (_str, []),
    "ZoPixelConverter_GetAreaBufferSizes": (_u32, [_ptr, _u32, _u32, _u32, _u32, _u32, _u32, _u32, _u32,
                                                   ctypes.POINTER(AreaBufferSizes)]),
    "ZoPixelConverter_ConvertBand": (_u32, [_ptr, _ptr] + _AREA + [_u32, _u32]),
    "ZoPfnc_FromName": (_u32, [_str, ctypes.POINTER(_i64), ctypes.POINTER(_u32)]),
    "ZoPfnc_FromPixelType": (_u32, [_i64, _u32, ctypes.POINTER(_str), ctypes.POINTER(_u32)]),
    "ZoPixelConverter_GetClassName": (ctypes.c_char_p, [_ptr]),
    "ZoPixelConverter_GetChainStage": (_ptr, [_ptr, _u32]),
    "ZoPfnc_GetEntry": (_bool, [_u32, ctypes.POINTER(_str), ctypes.POINTER(_u32), ctypes.POINTER(_i64),
                                ctypes.POINTER(_u32)]),
}


class _Missing:
    """Stands for an extension function the loaded library does not export."""

    def __init__(self, name, path):
        self._name, self._path = name, path

    def __call__(self, *args):
        raise RuntimeError("%s has no %s: it predates the extension interface; build the library from this "
                           "source tree or point %s at a newer one" % (self._path, self._name, ENV_VARIABLE))


class Library:
    """The loaded library with its functions as attributes (lib.ZoPfnc_FromName)."""

    def __init__(self, dll, path):
        self.dll, self.path = dll, path
        for table, optional in ((_PROTOTYPES, False), (_OPTIONAL_PROTOTYPES, True)):
            for name, (restype, argtypes) in table.items():
                try:
                    function = getattr(dll, name)
                except AttributeError:
                    if not optional:
                        raise LibraryNotFoundError("%s is not libZoImgLib64: it has no %s" % (path, name))
                    setattr(self, name, _Missing(name, path))
                    continue
                function.restype, function.argtypes = restype, argtypes
                setattr(self, name, function)

    def has(self, name):
        return not isinstance(getattr(self, name), _Missing)


def _installed_candidates():
    """The library beside the installed package: the path recorded at install
    time (relative to the package), then the package directory itself."""
    candidates = []
    try:
        from . import _install  # written by `cmake --install`
        candidates.append(os.path.normpath(os.path.join(_PACKAGE_DIR, _install.LIBRARY)))
    except ImportError:
        pass
    candidates.append(os.path.join(_PACKAGE_DIR, LIBRARY_FILE))
    return candidates


def _build_tree_candidates():
    return [os.path.join(_SOURCE_ROOT, "build", LIBRARY_FILE),
            os.path.join(_SOURCE_ROOT, "build", "bin", LIBRARY_FILE)]


def _load(path):
    mode = getattr(os, "RTLD_LOCAL", 0) | getattr(os, "RTLD_NOW", 0)
    return ctypes.CDLL(path, mode=mode)


def find_and_load():
    """Loads the library from the first place that has it, in this order:
    the file named by ZOIMGLIB_LIBRARY (alone, when set), beside the installed
    package, the source tree's build/ directory, the system's loader."""
    tried = []
    explicit = os.environ.get(ENV_VARIABLE)
    if explicit:
        places = [("%s=%s" % (ENV_VARIABLE, explicit), explicit)]
    else:
        places = [("beside the installed package: %s" % p, p) for p in _installed_candidates()]
        if os.path.exists(os.path.join(_SOURCE_ROOT, "CMakeLists.txt")):
            places += [("in the build tree: %s" % p, p) for p in _build_tree_candidates()]
        else:
            places.append(("in the build tree (this package is not in a source tree)", None))
        system = [LIBRARY_FILE + ".1", LIBRARY_FILE]
        found = ctypes.util.find_library("ZoImgLib64")
        if found and found not in system:
            system.insert(0, found)
        places += [("through the system loader: %s" % p, p) for p in system]
    for description, path in places:
        if path is None:
            tried.append(description)
            continue
        if os.path.sep in path and not os.path.exists(path):
            tried.append("%s (no such file)" % description)
            continue
        try:
            dll = _load(path)
        except OSError as error:
            tried.append("%s (%s)" % (description, error))
            continue
        return Library(dll, getattr(dll, "_name", path))
    hint = ("" if explicit else
            "; build the library (cmake -S . -B build && cmake --build build), install it with "
            "cmake --install, or set %s to its path" % ENV_VARIABLE)
    raise LibraryNotFoundError("libZoImgLib64 not found. Tried:\n  " + "\n  ".join(tried) + "\n" + hint.lstrip("; "))


_library = None
_lock = threading.Lock()


def library():
    """The loaded library, loaded on first use."""
    global _library
    if _library is None:
        with _lock:
            if _library is None:
                _library = find_and_load()
    return _library


def class_name(lib, handle):
    """The C++ class of a converter handle as the library names it
    (ZoPixelConverter_GetClassName), or None for a null handle or a library
    without that function."""
    if not handle or not lib.has("ZoPixelConverter_GetClassName"):
        return None
    name = lib.ZoPixelConverter_GetClassName(handle)
    return name.decode("ascii", "replace") if name else None


def chain_stages(lib, handle):
    """The class names of a chained converter's two stages, () for any
    other converter (or a library without ZoPixelConverter_GetChainStage)."""
    if not handle or not lib.has("ZoPixelConverter_GetChainStage"):
        return ()
    stages = [lib.ZoPixelConverter_GetChainStage(handle, index) for index in (0, 1)]
    return tuple(class_name(lib, stage) for stage in stages) if all(stages) else ()
