#pragma once

#include <stdexcept>

namespace orlix::files
{

/// A file that cannot be read or written as asked; the text names it.
class FileError : public std::runtime_error
{
public:
    using runtime_error::runtime_error;
};

/// An option of reading that makes no sense, or does not fit the file.
class OptionError : public std::runtime_error
{
public:
    using runtime_error::runtime_error;
};

} // namespace orlix::files
