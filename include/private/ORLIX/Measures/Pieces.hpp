#pragma once

#include <framework/core/Settings.hpp>
#include <framework/kernel/Run.hpp>
#include <framework/process/KernelTables.hpp>
#include <framework/process/StateModel.hpp>

/// How a piece meets kernels.
namespace orlix::measures
{

using namespace imaproc;

/// The kernel for pixels of type T of the best set that this processor has, or of those that are forced; null if there
/// is none.
template <class T, template <class> class Kernel>
Kernel<T> findKernel(const KernelTables<KernelsByType<Kernel>>& tables)
{
    const core::InstructionSetsIdentifier forced = core::settings::getForcedInstructionSets();
    for (std::size_t i = std::size(core::allDomains); i-- > 0;) {
        const auto set = core::allDomains[i];
        const Kernel<T> kernel = kernelOf<T>(tables.of(set));
        if (kernel != nullptr && core::isAvailable(set) && (forced.empty() || forced.contains(set))) {
            return kernel;
        }
    }
    return nullptr;
}

/// The same; throws MeasureException if there is none.
template <class T, template <class> class Kernel>
Kernel<T> selectKernel(const KernelTables<KernelsByType<Kernel>>& tables)
{
    if (const Kernel<T> kernel = findKernel<T>(tables)) {
        return kernel;
    }
    core::InstructionSetsIdentifier others;
    for (const auto set : core::allDomains) {
        if (kernelOf<T>(tables.of(set)) != nullptr && core::isAvailable(set)) {
            others = others | set;
        }
    }
    throw MeasureException{"there is no " + toString(core::settings::getForcedInstructionSets()) + " kernel for " +
                               getName(image::imageBufferTypeOf<T>) + " pixels: there are " + toString(others),
                           ORLIX_HERE};
}

/// Calls `call(kernel, run, i)` for every run of an image of a piece, with the kernel for runs under a mask where there
/// is one.
template <class T, class Kernels, class MaskKernels, class Call>
void forEachRun(const Piece& piece, const Kernels& kernels, const MaskKernels& maskKernels, Call call,
                std::size_t image = 0)
{
    const image::StripParser& parser = piece.images[image];
    if (piece.mask) {
        const auto kernel = selectKernel<T>(maskKernels);
        for (std::size_t i = 0; i < piece.nbRuns(); ++i) {
            call(kernel, MaskedRun<T>{parser.run<T>(i, piece.runSize), piece.runSize, piece.maskRun(i)}, i);
        }
    } else {
        const auto kernel = selectKernel<T>(kernels);
        for (std::size_t i = 0; i < piece.nbRuns(); ++i) {
            call(kernel, Run<T>{parser.run<T>(i, piece.runSize), piece.runSize}, i);
        }
    }
}

/// Calls `visit` with a std::type_identity of the pixel type.
template <class Visit>
void withPixelType(image::eImageBufferType type, Visit visit)
{
    image::forEachPixelType([&]<class T>(std::type_identity<T> identity) {
        if (image::imageBufferTypeOf<T> == type) {
            visit(identity);
        }
    });
}

} // namespace orlix::measures
