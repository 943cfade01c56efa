#pragma once

#include <string>

namespace CLI
{
class App;
}

/// What follows from the descriptions of verbs and options besides their help.
namespace orlix::app
{

/// The manual page, in the roff language of man(7).
std::string writeManual(const CLI::App& app);
/// The completions for "bash", "zsh" or "fish".
std::string writeCompletion(const CLI::App& app, const std::string& shell);

} // namespace orlix::app
