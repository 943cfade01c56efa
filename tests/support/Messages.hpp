#pragma once

#include <framework/process/BaseProcessingException.hpp>

#include <functional>
#include <string>

namespace orlix::test
{

/// The text of the exception that a measure throws.
inline std::string messageOf(const std::function<void()>& call)
{
    try {
        call();
    } catch (const imaproc::ORLIXBaseProcessingException& error) {
        return error.what();
    }
    return "nothing was thrown";
}

} // namespace orlix::test
