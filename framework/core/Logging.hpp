#pragma once

#include <framework/core/Api.hpp>
#include <framework/core/SourceLocation.hpp>

#include <string>

namespace log4cplus
{
class Logger;
}

namespace orlix::core
{

/// "ORLIX", the logger above all others of the toolkit.
ORLIX_API const std::string& getBaseLoggerName();
ORLIX_API const log4cplus::Logger& getBaseLogger();

/// The logger of a library, "ORLIX." and `library`. Silent until the host program gives it or a logger above it an
/// appender.
ORLIX_API log4cplus::Logger getLibraryLogger(const std::string& library);

inline constexpr int errorLevel = 40000; ///< log4cplus's error level

/// Logs `text` if the logger is enabled for `level`. The file is logged relative to the source root.
ORLIX_API void logMessage(const log4cplus::Logger& logger, int level, const std::string& text, const char* file,
                          int line);

} // namespace orlix::core
