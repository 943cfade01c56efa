#pragma once

#include <framework/process/BaseProcessingException.hpp>

#include <functional>
#include <string>

namespace orlix::test
{

/// The text of the exception that a call throws; that of a measure, if no other is asked for.
template <class Exception = imaproc::ORLIXBaseProcessingException>
std::string messageOf(const std::function<void()>& call)
{
    try {
        call();
    } catch (const Exception& error) {
        return error.what();
    }
    return "nothing was thrown";
}

} // namespace orlix::test
