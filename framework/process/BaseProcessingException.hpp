#pragma once

#include <framework/core/Exception.hpp>

namespace log4cplus
{
class Logger;
}

namespace orlix::imaproc
{

/// A run that failed, or a processor that was misused.
class ORLIX_API ORLIXBaseProcessingException final : public core::BaseException
{
public:
    using BaseException::BaseException;
};

/// "ORLIX.BaseProcessing"
ORLIX_API const log4cplus::Logger& getBaseProcessingLogger();

} // namespace orlix::imaproc
