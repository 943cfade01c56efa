#include <framework/process/BaseProcessingException.hpp>

#include <framework/core/Logging.hpp>

#include <log4cplus/logger.h>

namespace orlix::imaproc
{

const log4cplus::Logger& getBaseProcessingLogger()
{
    static const log4cplus::Logger logger = core::getLibraryLogger("BaseProcessing");
    return logger;
}

} // namespace orlix::imaproc
