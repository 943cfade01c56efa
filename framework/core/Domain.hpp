#pragma once

namespace orlix::core
{

/// The instruction sets that kernels are written for. This header holds no code: files that are compiled with vector
/// flags include it.
struct eInstructionSet
{
    enum domain : unsigned
    {
        eIS_Generic = 0,
        eIS_SSE2 = 1,
        eIS_AVX = 5,
        eIS_AVX2 = 7,
        eIS_AVX512 = 8 ///< F, BW, DQ and VL together
    };
};

inline constexpr eInstructionSet::domain allDomains[] = {eInstructionSet::eIS_Generic, eInstructionSet::eIS_SSE2,
                                                         eInstructionSet::eIS_AVX, eInstructionSet::eIS_AVX2,
                                                         eInstructionSet::eIS_AVX512};

} // namespace orlix::core
