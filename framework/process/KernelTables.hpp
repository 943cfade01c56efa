#pragma once

#include <framework/core/InstructionSet.hpp>
#include <framework/image/PixelType.hpp>
#include <framework/process/KernelsByType.hpp>

/// The tables of the kernel files, seen from files with baseline flags.
namespace orlix::imaproc
{

/// The kernel of a table for pixels of type T; null if there is none.
template <class T, template <class> class Kernel>
Kernel<T>& kernelOf(KernelsByType<Kernel>& table)
{
    return static_cast<KernelSlot<Kernel, T>&>(table).kernel;
}
template <class T, template <class> class Kernel>
Kernel<T> kernelOf(const KernelsByType<Kernel>& table)
{
    return static_cast<const KernelSlot<Kernel, T>&>(table).kernel;
}

/// The tables of a measure by domain, the best that this processor can run.
template <class Table>
struct KernelTables
{
    Table generic;
    Table sse2;
    Table avx;
    Table avx2;
    Table avx512;

    const Table& of(core::eInstructionSet::domain domain) const
    {
        switch (domain) {
        case core::eInstructionSet::eIS_SSE2:
            return sse2;
        case core::eInstructionSet::eIS_AVX:
            return avx;
        case core::eInstructionSet::eIS_AVX2:
            return avx2;
        case core::eInstructionSet::eIS_AVX512:
            return avx512;
        default:
            return generic;
        }
    }
};

/// `table`, with the kernels that `better` has where this processor has the extension.
template <template <class> class Kernel>
KernelsByType<Kernel> withExtension(KernelsByType<Kernel> table, core::eInstructionExtension extension,
                                    const KernelsByType<Kernel>& better)
{
    if (core::isAvailable(extension)) {
        image::forEachPixelType([&]<class T>(std::type_identity<T>) {
            if (kernelOf<T>(better)) {
                kernelOf<T>(table) = kernelOf<T>(better);
            }
        });
    }
    return table;
}

} // namespace orlix::imaproc
