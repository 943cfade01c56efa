#include <framework/core/Logging.hpp>

#include <log4cplus/logger.h>
#include <log4cplus/nullappender.h>

namespace orlix::core
{

const std::string& getBaseLoggerName()
{
    static const std::string name = "ORLIX";
    return name;
}

const log4cplus::Logger& getBaseLogger()
{
    static const log4cplus::Logger logger = [] {
        auto base = log4cplus::Logger::getInstance(getBaseLoggerName());
        // With an appender of its own the library never writes "no appenders" to a host's standard error.
        base.addAppender(log4cplus::SharedAppenderPtr{new log4cplus::NullAppender});
        return base;
    }();
    return logger;
}

log4cplus::Logger getLibraryLogger(const std::string& library)
{
    getBaseLogger();
    return log4cplus::Logger::getInstance(getBaseLoggerName() + "." + library);
}

void logMessage(const log4cplus::Logger& logger, int level, const std::string& text, const char* file, int line)
{
    if (logger.isEnabledFor(level)) {
        logger.log(level, text, getRelativeFromRoot(file).c_str(), line);
    }
}

} // namespace orlix::core
