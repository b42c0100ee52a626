"""What the zoimglib package costs over the C library it binds.

  PYTHONPATH=python python3 bench/python_overhead.py [--rounds N]

1. Per call on a 64 x 64 frame: zoimglib.convert() against the bare ctypes
   call of ZoPixelConverter_ConvertAreaFilter on buffers allocated once
   (CPU time of the calling thread).
2. On a 4096 x 3000 Bayer frame: convert(threads=2) against threads=1
   (wall-clock time).

Prints medians over rounds; the machine may be shared, so compare the
numbers of one run with each other, not with another run's.
"""

import argparse
import statistics
import time

import numpy as np

import zoimglib


def per_call(function, calls, rounds):
    """Median CPU time of the calling thread per call: on a shared machine
    the wall clock also counts the time other processes held the core."""
    times = []
    for _ in range(rounds):
        start = time.thread_time()
        for _ in range(calls):
            function()
        times.append((time.thread_time() - start) / calls)
    return statistics.median(times)


def small_frame(rounds):
    lib = zoimglib.library()
    rows = []
    for source, destination, dtype in (("BayerRGB8", "RGB24", np.uint8), ("Gray12", "Gray8", np.uint16),
                                       ("BayerRGB12", "RGB48", np.uint16)):
        frame = np.random.default_rng(1).integers(0, 256, (64, 64), dtype=dtype)
        src, flags = zoimglib.resolve_type(source)
        dst, _ = zoimglib.resolve_type(destination)
        if any(t.bayer for t in zoimglib.types() if t.id == src):
            flags |= 0x100  # interpolate, as convert() does by default
        conv = lib.ZoPixelTypeFactory_GetConverter(src, dst)
        margin = 4096
        src_buffer = np.zeros(frame.nbytes + 2 * margin, np.uint8)
        src_buffer[margin:margin + frame.nbytes] = frame.reshape(-1).view(np.uint8)
        dst_buffer = np.zeros(lib.ZoPixelConverter_GetDestinationByteSize(conv, 64) * 64 + 2 * margin, np.uint8)
        s, d = src_buffer.ctypes.data + margin, dst_buffer.ctypes.data + margin
        call = lib.ZoPixelConverter_ConvertAreaFilter
        raw = per_call(lambda: call(conv, None, s, 64, 64, d, 64, 64, 64, 64, flags, 0), 2000, rounds)
        package = per_call(lambda: zoimglib.convert(frame, source, destination), 2000, rounds)
        out = np.empty_like(zoimglib.convert(frame, source, destination))
        package_out = per_call(lambda: zoimglib.convert(frame, source, destination, out=out), 2000, rounds)
        rows.append((source + " -> " + destination, raw, package, package_out))
    print("64 x 64 frame, median CPU time per call over %d rounds of 2000 calls" % rounds)
    print("%-22s %10s %12s %10s %12s %10s" % ("conversion", "C call", "convert()", "over", "out=", "over"))
    for name, raw, package, package_out in rows:
        print("%-22s %8.1f us %10.1f us %7.1f us %10.1f us %7.1f us" % (
            name, raw * 1e6, package * 1e6, (package - raw) * 1e6, package_out * 1e6, (package_out - raw) * 1e6))


def threads(rounds):
    print("\n4096 x 3000 Bayer frame, median of %d conversions" % rounds)
    print("(wall clock; 'cpu' is the CPU time of both threads over that of one: the work splitting adds)")
    print("%-28s %12s %12s %8s %6s" % ("conversion", "threads=1", "threads=2", "ratio", "cpu"))
    for source, destination, dtype, interpolate in (("BayerRGB8", "RGB24", np.uint8, True),
                                                    ("BayerRGB12", "RGB24", np.uint16, True),
                                                    ("BayerRGB12", "RGB48", np.uint16, False)):
        frame = np.random.default_rng(2).integers(0, 4096 if dtype == np.uint16 else 256, (3000, 4096),
                                                  dtype=dtype)
        out = np.empty_like(zoimglib.convert(frame, source, destination, interpolate=interpolate))
        medians, cpu = [], []
        for count in (1, 2):
            times, cpu_times = [], []
            for _ in range(rounds):
                start, start_cpu = time.perf_counter(), time.process_time()
                zoimglib.convert(frame, source, destination, interpolate=interpolate, threads=count, out=out)
                times.append(time.perf_counter() - start)
                cpu_times.append(time.process_time() - start_cpu)
            medians.append(statistics.median(times))
            cpu.append(statistics.median(cpu_times))
        name = "%s -> %s%s" % (source, destination, "" if interpolate else " (replicate)")
        print("%-28s %9.1f ms %9.1f ms %7.2fx %5.2f" % (name, medians[0] * 1e3, medians[1] * 1e3,
                                                        medians[0] / medians[1], cpu[1] / cpu[0]))


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--rounds", type=int, default=15, help="rounds to take the median of")
    args = parser.parse_args()
    print("zoimglib over libZoImgLib64 %s (%s)\n" % (zoimglib.version(), zoimglib.library().path))
    small_frame(args.rounds)
    threads(args.rounds)


if __name__ == "__main__":
    main()
