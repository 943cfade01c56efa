#include <ORLIXIPL/ORLIXIPLGlobalMeasure/ORLIXIPLGlobalMeasureLogMessages.hpp>

#include <log4cplus/logger.h>

namespace orlix::imaproc::glbmsr
{

namespace
{

constexpr const char* library = core::MessageMap<eORLIXIPLGlobalMeasureMessage>::library;

} // namespace

const std::string& getORLIXIPLGlobalMeasureLoggerName()
{
    static const std::string name = core::getBaseLoggerName() + "." + library;
    return name;
}

const log4cplus::Logger& getORLIXIPLGlobalMeasureLogger()
{
    static const log4cplus::Logger logger = core::getLibraryLogger(library);
    return logger;
}

core::LogMessageManager& getORLIXIPLGlobalMeasureLogMessageManager()
{
    static core::LogMessageManager& manager = core::LogMessageManager::getInstance(library);
    return manager;
}

} // namespace orlix::imaproc::glbmsr
