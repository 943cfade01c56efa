#pragma once

#include <framework/core/Message.hpp>

namespace log4cplus
{
class Logger;
}

namespace orlix::imaproc::glbmsr
{

/// The library's own messages beside those of its processors; there are none yet.
enum class eORLIXIPLGlobalMeasureMessage : unsigned
{
};

/// "ORLIX.ORLIXIPLGlobalMeasure"
ORLIX_API const std::string& getORLIXIPLGlobalMeasureLoggerName();
ORLIX_API const log4cplus::Logger& getORLIXIPLGlobalMeasureLogger();
ORLIX_API core::LogMessageManager& getORLIXIPLGlobalMeasureLogMessageManager();

} // namespace orlix::imaproc::glbmsr

template <>
struct orlix::core::MessageMap<orlix::imaproc::glbmsr::eORLIXIPLGlobalMeasureMessage>
{
    static constexpr const char* library = "ORLIXIPLGlobalMeasure";
    static std::span<const Message> texts() { return {}; }
};
