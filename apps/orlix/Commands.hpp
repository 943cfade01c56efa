#pragma once

#include <string>

namespace orlix::app
{

/// Runs the program and returns its exit status. What it has to say on success is in `output`, which stays empty on
/// failure; `error` is then one line, and on success a line for each note.
int runCommand(int argc, const char* const* argv, std::string& output, std::string& error);

} // namespace orlix::app
