#pragma once

#include <files/Errors.hpp>

namespace orlix::app
{

/// A file that cannot be read or measured as asked. Exit status 1.
using files::FileError;
/// A command line that makes no sense. Exit status 2.
using UsageError = files::OptionError;

} // namespace orlix::app
