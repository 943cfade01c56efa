#include <ORLIXIPL/ORLIXIPLGlobalMeasure/ORLIXIPLGlobalMeasureLogMessages.hpp>

#include <framework/core/LazyStatic.hpp>

#include <log4cplus/logger.h>

namespace orlix::imaproc::glbmsr
{

namespace
{

constexpr const char* library = core::MessageMap<eORLIXIPLGlobalMeasureMessage>::library;

} // namespace

const std::string& getORLIXIPLGlobalMeasureLoggerName()
{
    static core::Mutex mutex;
    static core::LazyStatic<std::string> name;
    return name.get(mutex, [] { return core::getBaseLoggerName() + "." + library; });
}

const log4cplus::Logger& getORLIXIPLGlobalMeasureLogger()
{
    static core::Mutex mutex;
    static core::LazyStatic<log4cplus::Logger> logger;
    return logger.get(mutex, [] { return core::getLibraryLogger(library); });
}

core::LogMessageManager& getORLIXIPLGlobalMeasureLogMessageManager()
{
    static core::Mutex mutex;
    static core::LazyStatic<core::LogMessageManager*> manager;
    return *manager.get(mutex, [] { return &core::LogMessageManager::getInstance(library); });
}

} // namespace orlix::imaproc::glbmsr
