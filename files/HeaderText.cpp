#include <files/HeaderText.hpp>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <filesystem>
#include <sstream>

namespace orlix::files
{

HeaderText::HeaderText(const Source& source, std::string_view text, std::string_view separator) : source_{source}
{
    std::istringstream lines{std::string{text}};
    for (std::string line; std::getline(lines, line);) {
        const std::size_t at = line.find(separator);
        if (at != std::string::npos && line[0] != '#') {
            fields_.emplace(trim(std::string_view{line}.substr(0, at)),
                            trim(std::string_view{line}.substr(at + separator.size())));
        }
    }
}

std::string HeaderText::get(const std::string& key) const
{
    const auto found = fields_.find(key);
    return found == fields_.end() ? std::string{} : found->second;
}

std::string HeaderText::need(const std::string& key) const
{
    if (!has(key)) {
        source_.fail("its header lacks \"" + key + "\"");
    }
    return get(key);
}

std::vector<std::string> HeaderText::getWords(const std::string& key) const
{
    return splitWords(get(key));
}

void HeaderText::failWord(const std::string& key, const std::string& word, const char* kind) const
{
    std::string what = "its header's \"";
    what.append(key).append("\" holds \"").append(word).append("\", which is no ").append(kind);
    source_.fail(what);
}

std::vector<double> HeaderText::getNumbers(const std::string& key) const
{
    std::vector<double> numbers;
    for (const std::string& word : getWords(key)) {
        char* end = nullptr;
        numbers.push_back(std::strtod(word.c_str(), &end));
        if (*end != '\0') {
            failWord(key, word, "number");
        }
    }
    return numbers;
}

std::vector<std::uint64_t> HeaderText::getSizes(const std::string& key) const
{
    std::vector<std::uint64_t> sizes;
    for (const std::string& word : splitWords(need(key))) {
        std::uint64_t size = 0;
        const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), size);
        if (error != std::errc{} || end != word.data() + word.size()) {
            failWord(key, word, "size");
        }
        sizes.push_back(size);
    }
    return sizes;
}

std::string trim(std::string_view text)
{
    constexpr std::string_view blank = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blank);
    return first == std::string_view::npos ? std::string{}
                                           : std::string{text.substr(first, text.find_last_not_of(blank) + 1 - first)};
}

std::string toLower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

std::vector<std::string> splitWords(std::string_view text)
{
    std::istringstream stream{std::string{text}};
    std::vector<std::string> words;
    for (std::string word; stream >> word;) {
        words.push_back(word);
    }
    return words;
}

std::vector<std::string> findDataFiles(const Source& source, const std::vector<std::string>& names)
{
    std::vector<std::string> paths;
    for (const std::string& name : names) {
        const std::filesystem::path path = std::filesystem::path{source.path}.parent_path() / name;
        if (!std::filesystem::exists(path)) {
            source.fail("its pixels are in " + name + ", which is not there");
        }
        paths.push_back(path.string());
    }
    return paths;
}

} // namespace orlix::files
