#pragma once

// A row kernel marked CMDTEXTURE_MULTIVERSION is compiled once for every level of the x86-64
// instruction set named here, and the loader picks the best one that the processor has. The plain
// loop is written once; since contraction of floating-point operations is off, all versions give
// the same bits.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && \
    !defined(CMDTEXTURE_NO_MULTIVERSION)
#ifdef CMDTEXTURE_NO_AVX512
#define CMDTEXTURE_MULTIVERSION __attribute__((target_clones("default", "arch=x86-64-v3")))
#else
#define CMDTEXTURE_MULTIVERSION \
    __attribute__((target_clones("default", "arch=x86-64-v3", "arch=x86-64-v4")))
#endif
#else
#define CMDTEXTURE_MULTIVERSION
#endif

// A function that such kernels are made of: inlined, so that it is compiled for each level with
// them.
#define CMDTEXTURE_INLINE [[gnu::always_inline]] inline
