#pragma once

#include <framework/core/Message.hpp>

namespace orlix::imaproc::attr
{

/// The messages of the attribute layer.
enum class eAttributeMessage : unsigned
{
    eAM_WrongPixelType = 0,    ///< attribute, type of the image, accepted types
    eAM_NotOnePlan = 1,        ///< attribute, geometry, what is needed
    eAM_StripOutside = 2,      ///< attribute, first element, count, number of elements, their name
    eAM_NoStrip = 3,           ///< attribute
    eAM_NoElement = 4,         ///< number of the element, class of the collection
    eAM_WrongElement = 5,      ///< class of the collection, class of the element
    eAM_WrongBinWidth = 6,     ///< attribute, width
    eAM_NoClasses = 7,         ///< attribute
    eAM_WrongRange = 8,        ///< attribute, Min, Max, pixel type, lowest, highest
    eAM_NarrowClasses = 9,     ///< attribute, width, least width
    eAM_NoFiniteRange = 10,    ///< Min, Max
    eAM_NarrowRange = 11,      ///< Min, Max, width
    eAM_ManyClasses = 12,      ///< number of classes, megabytes, limit in megabytes
    eAM_WideLabels = 13,       ///< lowest label, highest label, megabytes, limit in megabytes
    eAM_NotBinary = 14,        ///< attribute, type of the image
    eAM_HighLabel = 15,        ///< label, megabytes, limit in megabytes
    eAM_ManySamples = 16,      ///< number of samples, megabytes, limit in megabytes
    eAM_UncountableLabel = 17, ///< label, highest label
    eAM_ManyPositions = 18,    ///< number of positions, megabytes, limit in megabytes
    eAM_UnevenList = 19,       ///< key, count of numbers, numbers of one element
    eAM_UnusedBinWidth = 20,   ///< attribute, width
};

} // namespace orlix::imaproc::attr

template <>
struct orlix::core::MessageMap<orlix::imaproc::attr::eAttributeMessage>
{
    static constexpr const char* library = "Attribute";
    ORLIX_API static std::span<const Message> texts();
};
