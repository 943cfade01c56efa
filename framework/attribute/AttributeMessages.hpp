#pragma once

#include <framework/core/Message.hpp>

namespace orlix::imaproc::attr
{

/// The messages of the attribute layer.
enum class eAttributeMessage : unsigned
{
    eAM_WrongPixelType = 0, ///< attribute, type of the image, accepted types
    eAM_NotOnePlan = 1,     ///< attribute, geometry, what is needed
    eAM_StripOutside = 2,   ///< attribute, first element, count, number of elements, their name
    eAM_NoStrip = 3,        ///< attribute
    eAM_NoElement = 4,      ///< number of the element, class of the collection
    eAM_WrongElement = 5,   ///< class of the collection, class of the element
    eAM_NotBinary = 6,      ///< attribute, type of the image
    eAM_UnevenList = 7,     ///< key, count of numbers, numbers of one element
    eAM_NotTaken = 8,       ///< attribute, what it does not take
};

} // namespace orlix::imaproc::attr

template <>
struct orlix::core::MessageMap<orlix::imaproc::attr::eAttributeMessage>
{
    static constexpr const char* library = "Attribute";
    ORLIX_API static std::span<const Message> texts();
};
