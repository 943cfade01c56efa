#pragma once

#include <files/Format.hpp>

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace orlix::files
{

/// A header of lines "key SEPARATOR value".
class HeaderText
{
public:
    HeaderText(const Source& source, std::string_view text, std::string_view separator);

    bool has(const std::string& key) const { return fields_.contains(key); }
    /// Empty where there is no such key.
    std::string get(const std::string& key) const;
    /// Fails where the key is missing.
    std::string need(const std::string& key) const;
    /// The words of a value.
    std::vector<std::string> getWords(const std::string& key) const;
    /// The numbers of a value; fails where a word is none.
    std::vector<double> getNumbers(const std::string& key) const;
    std::vector<std::uint64_t> getSizes(const std::string& key) const;

private:
    [[noreturn]] void failWord(const std::string& key, const std::string& word, const char* kind) const;

    const Source& source_;
    std::map<std::string, std::string> fields_;
};

std::string trim(std::string_view text);
std::string toLower(std::string text);
std::vector<std::string> splitWords(std::string_view text);

/// Where the pixels of a header of its own lie: one file, or several that hold a part each.
std::vector<std::string> findDataFiles(const Source& source, const std::vector<std::string>& names);

} // namespace orlix::files
