#pragma once

#include <ostream>

namespace orlix::app
{

/// Runs the program and returns its exit status. What it has to say of an image goes to `output` as soon as the image
/// is measured, and nothing of an image that fails; `error` gets a line for each failure and each note.
int runCommand(int argc, const char* const* argv, std::ostream& output, std::ostream& error);

} // namespace orlix::app
