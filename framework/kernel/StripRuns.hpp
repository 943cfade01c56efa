#pragma once

#include <framework/kernel/Run.hpp>

#include <framework/image/Strip.hpp>
#include <framework/process/AlgorithmFunctionSelector.hpp>

/// A strip as the runs that kernels take; for files with baseline flags.
namespace orlix::imaproc
{

/// Calls `visit` with every run of a strip of pixels of type T, in their order.
template <class T, class Visitor>
void forEachRun(ProcessingInfo info, const image::StripParser& strip, Visitor visit)
{
    for (std::size_t i = 0; i < info.nbRuns(); ++i) {
        visit(Run<T>{strip.run<T>(i, info.rowSize), info.rowSize});
    }
}

/// The same under a mask.
template <class T, class Visitor>
void forEachRun(ProcessingInfo info, const image::StripParser& strip, const image::StripParser& mask, Visitor visit)
{
    for (std::size_t i = 0; i < info.nbRuns(); ++i) {
        visit(MaskedRun<T>{strip.run<T>(i, info.rowSize), info.rowSize, mask.run<std::uint8_t>(i, info.rowSize)});
    }
}

} // namespace orlix::imaproc
