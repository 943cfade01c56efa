#pragma once

namespace orlix::imaproc::glbmsr
{

template <template <class> class Kernel, class T>
struct KernelSlot
{
    Kernel<T> kernel;
};

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

} // namespace orlix::imaproc::glbmsr
