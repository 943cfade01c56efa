#pragma once

#include <stdexcept>

namespace orlix::app
{

/// A file that cannot be read or measured as asked; the text names it. Exit status 1.
class FileError : public std::runtime_error
{
public:
    using runtime_error::runtime_error;
};

/// A command line that makes no sense. Exit status 2.
class UsageError : public std::runtime_error
{
public:
    using runtime_error::runtime_error;
};

} // namespace orlix::app
