#pragma once

/// Defines QV_WIDE_VECTORS where functions may be compiled for AVX or AVX2 beside the plain ones. Whether the
/// processor has these is asked at run time, by `__builtin_cpu_supports`.
#if defined(__x86_64__) && defined(__GNUC__)
#include <immintrin.h>
#define QV_WIDE_VECTORS
#endif
