#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Kernel/Domains.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsKernels.hpp>

namespace orlix::imaproc::glbmsr
{

/// The statistics kernels of a domain; for AVX-512 the best that this processor's extensions allow.
template <core::eInstructionSet::domain D>
const StatsKernels& statsKernels();

template <>
const StatsKernels& statsKernels<core::eInstructionSet::eIS_Generic>();
template <>
const StatsKernels& statsKernels<core::eInstructionSet::eIS_SSE2>();
template <>
const StatsKernels& statsKernels<core::eInstructionSet::eIS_AVX>();
template <>
const StatsKernels& statsKernels<core::eInstructionSet::eIS_AVX2>();
template <>
const StatsKernels& statsKernels<core::eInstructionSet::eIS_AVX512>();

} // namespace orlix::imaproc::glbmsr
