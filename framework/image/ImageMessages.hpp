#pragma once

#include <framework/core/Message.hpp>

namespace orlix::image
{

/// The messages of the image layer.
enum class eImageMessage : unsigned
{
    eIM_TooLarge = 0,        ///< geometry
    eIM_NullPixels = 1,      ///< geometry
    eIM_UnalignedPixels = 2, ///< pixel size, type
    eIM_UnalignedStride = 3, ///< axis, stride, pixel size, type
    eIM_NoSuchPlan = 4,      ///< plan, geometry
    eIM_WrongPixels = 5,     ///< bytes that came, bytes that are needed
    eIM_UnknownType = 6,     ///< type name
    eIM_GpuPixels = 7,
    eIM_NullSource = 8, ///< geometry
    eIM_NoMemory = 9,   ///< geometry, MiB that are needed, MiB of the machine
};

} // namespace orlix::image

template <>
struct orlix::core::MessageMap<orlix::image::eImageMessage>
{
    static constexpr const char* library = "Image";
    ORLIX_API static std::span<const Message> texts();
};
