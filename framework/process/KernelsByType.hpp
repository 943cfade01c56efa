#pragma once

#include <framework/core/Domain.hpp>

#include <type_traits>

/// Tables of kernels as kernel files fill them in. This header holds no code that another file could be given.
namespace orlix::imaproc
{

template <template <class> class Kernel, class T>
struct KernelSlot
{
    Kernel<T> kernel;
};

/// The tables of a measure by instruction set (KernelTables.hpp).
template <class Table>
struct KernelTables;

/// One kernel for each of the seven pixel types; null where there is none.
template <template <class> class Kernel>
struct KernelsByType : KernelSlot<Kernel, unsigned char>,
                       KernelSlot<Kernel, signed char>,
                       KernelSlot<Kernel, unsigned short>,
                       KernelSlot<Kernel, short>,
                       KernelSlot<Kernel, unsigned int>,
                       KernelSlot<Kernel, int>,
                       KernelSlot<Kernel, float>
{
};

/// The kernels `make(std::type_identity<T>)` of a set; AVX, which has no integers, has those of float only.
template <template <class> class Kernel, core::eInstructionSet::domain D, class Make>
consteval KernelsByType<Kernel> makeKernels(Make make)
{
    KernelsByType<Kernel> table{};
    const auto fill = [&]<class T>(KernelSlot<Kernel, T>& slot) {
        if constexpr (D != core::eInstructionSet::eIS_AVX || std::is_floating_point_v<T>) {
            slot.kernel = make(std::type_identity<T>{});
        }
    };
    fill.template operator()<unsigned char>(table);
    fill.template operator()<signed char>(table);
    fill.template operator()<unsigned short>(table);
    fill.template operator()<short>(table);
    fill.template operator()<unsigned int>(table);
    fill.template operator()<int>(table);
    fill.template operator()<float>(table);
    return table;
}

} // namespace orlix::imaproc
