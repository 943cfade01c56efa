#pragma once

#include <framework/core/Message.hpp>

namespace orlix::imaproc::glbmsr
{

/// What measures refuse.
enum class eMeasureMessage : unsigned
{
    eMM_WrongBinWidth = 0,     ///< attribute, width
    eMM_NoBins = 1,            ///< attribute
    eMM_WrongRange = 2,        ///< attribute, Min, Max, pixel type, lowest, highest
    eMM_NarrowBins = 3,        ///< attribute, width, lowest width
    eMM_NoFiniteRange = 4,     ///< Min, Max
    eMM_NarrowRange = 5,       ///< Min, Max, width
    eMM_ManyBins = 6,          ///< number of bins, megabytes, limit in megabytes
    eMM_UnusedBinWidth = 7,    ///< attribute, width
    eMM_WideLabels = 8,        ///< lowest label, highest label, megabytes, limit in megabytes
    eMM_HighLabel = 9,         ///< label, megabytes, limit in megabytes
    eMM_UncountableLabel = 10, ///< label, highest label
    eMM_ManySamples = 11,      ///< number of samples, megabytes, limit in megabytes
    eMM_ManyPositions = 12     ///< number of positions, megabytes, limit in megabytes
};

} // namespace orlix::imaproc::glbmsr

template <>
struct orlix::core::MessageMap<orlix::imaproc::glbmsr::eMeasureMessage>
{
    static constexpr const char* library = "ORLIXIPLGlobalMeasure";
    static std::span<const Message> texts();
};
