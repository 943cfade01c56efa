#pragma once

#include <framework/core/Message.hpp>

namespace orlix::imaproc
{

/// The messages of processors and their runs.
enum class eProcessorMessage : unsigned
{
    eFailedRun = 0,       ///< message of the processing result
    eUnsetInput = 1,      ///< processor, attribute
    eRefusedInput = 2,    ///< processor, message of the attribute
    eRefusedByRule = 3,   ///< processor, message of the rule
    eNoSuchAttribute = 4, ///< processor, attribute
    eWrongPlans = 5,      ///< output attribute, plans it has, input attribute, plans it has
    eEmptyImage = 6,      ///< processor, attribute, geometry
    eNoKernel = 7,        ///< processor, pixel types
    eNoForcedKernel = 8,  ///< processor, forced sets, pixel types, sets there are
    eCancelled = 9,
    eAlreadyRunning = 10,     ///< processor
    eException = 11,          ///< processor, text of the exception
    eRunWithoutInit = 12,     ///< processor
    eUnequalStrips = 13,      ///< processor
    eNotShared = 14,          ///< processor
    eUnequalSizes = 15,       ///< attribute, geometry, attribute, geometry
    eWrongOutputSize = 16,    ///< output attribute, geometry, geometry needed, input attribute, geometry
    eUnequalTypes = 17,       ///< attribute, pixel type, attribute, pixel type
    ePositionOutside = 18,    ///< processor, number of the position, attribute, geometry
    eGpuImage = 19,           ///< processor, attribute
    eLargeResults = 20,       ///< processor, limit in megabytes
    eUninitialisedAccess = 33 ///< processor
};

} // namespace orlix::imaproc

template <>
struct orlix::core::MessageMap<orlix::imaproc::eProcessorMessage>
{
    static constexpr const char* library = "BaseProcessing";
    ORLIX_API static std::span<const Message> texts();
};
