"""zoimglib: ZoImgLib's pixel-format conversions for numpy frames.

    import zoimglib
    rgb = zoimglib.convert(raw, "BayerRG12p", "RGB24")   # (h, w, 3) uint8

Types are named by core ID, core name, class-style name or GenICam PFNC name
(see resolve_type); types(), converters() and version() tell what the
loaded library offers. The library is loaded on first use: from the file
named by ZOIMGLIB_LIBRARY, else beside the installed package, else the
source tree's build/ directory, else through the system's loader.
"""

from ._core import (ConverterInfo, Filter, PATTERNS, TypeInfo, convert, converters, resolve_type, types,
                    version)
from ._native import LibraryNotFoundError, library

__all__ = ["ConverterInfo", "Filter", "LibraryNotFoundError", "PATTERNS", "TypeInfo", "convert", "converters",
           "library", "resolve_type", "types", "version"]
