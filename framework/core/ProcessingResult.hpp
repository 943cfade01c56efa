#pragma once

#include <framework/core/Api.hpp>
#include <framework/core/Ptr.hpp>

#include <string>
#include <utility>

namespace orlix::core
{

/// How a processing step ended: with success, by default, or with the message of a failure. A success costs no more
/// than a null pointer, since every step of every run returns one.
class [[nodiscard]] ProcessingResult
{
public:
    ProcessingResult() = default;

    static ProcessingResult failure(std::string message)
    {
        return ProcessingResult{makePtr<const std::string>(std::move(message))};
    }
    /// A failure that needs no memory.
    ORLIX_API static ProcessingResult outOfMemory();

    explicit operator bool() const { return message_ == nullptr; }
    /// Empty for a success.
    ORLIX_API const std::string& getMessage() const;

private:
    explicit ProcessingResult(Ptr<const std::string> message) : message_{std::move(message)} {}

    Ptr<const std::string> message_;
};

} // namespace orlix::core
