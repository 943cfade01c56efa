#pragma once

#include <framework/core/InstructionSet.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Kernel/KernelsByType.hpp>

/// The domains that kernels are registered for, seen from files with baseline flags.
namespace orlix::imaproc::glbmsr
{

template <core::eInstructionSet::domain D>
struct DomainConstant
{
};

/// Calls `visit` with the DomainConstant of every domain that this machine can run, in ascending order.
template <class Visitor>
void forEachAvailableDomain(Visitor visit)
{
    const auto visitAvailable = [&]<core::eInstructionSet::domain D>(DomainConstant<D> domain) {
        if (core::isAvailable(D)) {
            visit(domain);
        }
    };
    visitAvailable(DomainConstant<core::eInstructionSet::eIS_Generic>{});
    visitAvailable(DomainConstant<core::eInstructionSet::eIS_SSE2>{});
    visitAvailable(DomainConstant<core::eInstructionSet::eIS_AVX>{});
    visitAvailable(DomainConstant<core::eInstructionSet::eIS_AVX2>{});
    visitAvailable(DomainConstant<core::eInstructionSet::eIS_AVX512>{});
}

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

} // namespace orlix::imaproc::glbmsr
