#pragma once

#include <framework/gpu/CudaTypes.hpp>

namespace orlix::bench
{

/// Best times of a buffer on the GPU by CUDA events, in seconds.
struct DeviceTimes
{
    double read;   ///< a plain read
    double kernel; ///< the statistics
    double peer;   ///< a reduction of the same figures by CUB, whose memory is allocated beforehand
};

/// Of an image without gaps, whose rows are multiples of 16 bytes. Ends the program, with the runtime's reason, where a
/// call fails.
template <class T>
DeviceTimes timeDevice(const imaproc::LauncherInfo& info, const imaproc::GpuBuffer& image);

} // namespace orlix::bench
