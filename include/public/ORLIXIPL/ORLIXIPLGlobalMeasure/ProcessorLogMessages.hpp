#pragma once

#include <framework/core/Message.hpp>

namespace orlix::imaproc::glbmsr
{

/// The tool tips of the processor classes, and one error text; a number is a row of the table.
enum class eProcessorMessage : unsigned
{
};

} // namespace orlix::imaproc::glbmsr

template <>
struct orlix::core::MessageMap<orlix::imaproc::glbmsr::eProcessorMessage>
{
    static constexpr const char* library = "ORLIXIPLGlobalMeasure";
    ORLIX_API static std::span<const Message> texts();
};
