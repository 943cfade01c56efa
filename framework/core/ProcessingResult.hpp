#pragma once

#include <string>
#include <utility>

namespace orlix::core
{

/// How a processing step ended: a flag, and the message of a failure. The default is success.
class [[nodiscard]] ProcessingResult
{
public:
    ProcessingResult() = default;

    static ProcessingResult failure(std::string message)
    {
        ProcessingResult result;
        result.succeeded_ = false;
        result.message_ = std::move(message);
        return result;
    }

    explicit operator bool() const { return succeeded_; }
    const std::string& getMessage() const { return message_; }

private:
    bool succeeded_ = true;
    std::string message_;
};

} // namespace orlix::core
