// Benchmark program: every family registers its benchmarks in its own file.
#include <benchmark/benchmark.h>

BENCHMARK_MAIN();
