#include <framework/core/ProcessingResult.hpp>

namespace orlix::core
{

ProcessingResult ProcessingResult::outOfMemory()
{
    static const std::string message{"Out of memory"};
    return ProcessingResult{{Ptr<const std::string>{}, &message}};
}

const std::string& ProcessingResult::getMessage() const
{
    static const std::string none;
    return message_ ? *message_ : none;
}

} // namespace orlix::core
