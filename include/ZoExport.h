/* Export macro shared by the public classes and the flat C functions.
 * Compiles as C and as C++. */
#ifndef ZO_EXPORT_H
#define ZO_EXPORT_H

#if defined(_WIN32)
#  if defined(ZO_IMGLIB_STATIC)
#    define ZO_API
#  elif defined(ZO_IMGLIB_BUILD)
#    define ZO_API __declspec(dllexport)
#  else
#    define ZO_API __declspec(dllimport)
#  endif
#else
#  define ZO_API __attribute__((visibility("default")))
#endif

#endif
