#include <files/Names.hpp>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <map>

namespace orlix::files
{

bool isNaturallyLess(const std::string& a, const std::string& b)
{
    const auto isDigit = [](char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; };
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < a.size() && j < b.size()) {
        if (isDigit(a[i]) && isDigit(b[j])) {
            const auto takeNumber = [&](const std::string& text, std::size_t& at) {
                const std::size_t begin = std::min(text.find_first_not_of('0', at), text.size());
                at = begin;
                while (at < text.size() && isDigit(text[at])) {
                    ++at;
                }
                return std::string_view{text}.substr(begin, at - begin);
            };
            const std::string_view first = takeNumber(a, i);
            const std::string_view second = takeNumber(b, j);
            if (first.size() != second.size() || first != second) {
                return first.size() != second.size() ? first.size() < second.size() : first < second;
            }
        } else if (a[i] != b[j]) {
            return a[i] < b[j];
        } else {
            ++i;
            ++j;
        }
    }
    return a.size() - i != b.size() - j ? a.size() - i < b.size() - j : a < b;
}

std::optional<std::size_t> parseSize(std::string_view text)
{
    std::size_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isWhole = error == std::errc{} && end == text.data() + text.size();
    return isWhole && number > 0 && number < (std::size_t{1} << 32) ? std::optional{number} : std::nullopt;
}

char nameAxis(const std::string& name)
{
    static const std::map<std::string, char> names{
        {"x", 'X'},      {"column", 'X'},  {"columns", 'X'},  {"y", 'Y'},      {"row", 'Y'},    {"rows", 'Y'},
        {"z", 'Z'},      {"slice", 'Z'},   {"slices", 'Z'},   {"plane", 'Z'},  {"planes", 'Z'}, {"depth", 'Z'},
        {"c", 'C'},      {"channel", 'C'}, {"channels", 'C'}, {"t", 'T'},      {"time", 'T'},   {"frame", 'T'},
        {"frames", 'T'}, {"s", 'S'},       {"sample", 'S'},   {"samples", 'S'}};
    std::string lower = name;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    const auto found = names.find(lower);
    return found == names.end() ? '?' : found->second;
}

nlohmann::json parseJson(const std::string& text)
{
    constexpr int deepest = 64;
    bool isDeep = false;
    const auto check = [&](int depth, nlohmann::json::parse_event_t, const nlohmann::json&) {
        isDeep = isDeep || depth > deepest;
        return !isDeep;
    };
    auto json = nlohmann::json::parse(text, check, false);
    return isDeep ? nlohmann::json(nlohmann::json::value_t::discarded) : json;
}

} // namespace orlix::files
