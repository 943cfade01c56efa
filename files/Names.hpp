#pragma once

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// How words and numbers in files, and names of files, are read.
namespace orlix::files
{

/// Compares names with their numbers by value: f2 comes before f10.
bool isNaturallyLess(const std::string& a, const std::string& b);

/// A size from 1 to 2^32 - 1.
std::optional<std::size_t> parseSize(std::string_view text);

/// The letter of an axis by its name: X, Y, Z, C, T or S (samples); '?' if it is none.
char nameAxis(const std::string& name);

/// Discarded where it is no JSON, or nests deeper than any metadata do.
nlohmann::json parseJson(const std::string& text);

} // namespace orlix::files
