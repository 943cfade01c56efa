#include <files/ImageReader.hpp>

#include <files/Errors.hpp>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <map>

namespace orlix::files
{

void ImageReader::fail(const std::string& what) const
{
    throw FileError{facts_.path + ": " + what};
}

void ImageReader::note(const std::string& text)
{
    const std::string line = facts_.path + ": " + text;
    const std::lock_guard lock{mutex_};
    if (std::find(notes_.begin(), notes_.end(), line) == notes_.end()) {
        notes_.push_back(line);
    }
}

std::vector<std::string> ImageReader::getNotes() const
{
    const std::lock_guard lock{mutex_};
    return notes_;
}

namespace
{

struct Length
{
    const char* unit;
    double micrometres;
};

/// A length unit by any of its names; null if it is none of these.
const Length* findLength(const std::string& name)
{
    static constexpr Length lengths[] = {{"um", 1},  {"nm", 1e-3}, {"mm", 1e3},        {"cm", 1e4},
                                         {"m", 1e6}, {"pm", 1e-6}, {"angstrom", 1e-4}, {"inch", 25400}};
    static const std::map<std::string, std::string> names{
        {"\u00b5m", "um"},      {"\u03bcm", "um"},        {"\\u00B5m", "um"},  {"micron", "um"},
        {"microns", "um"},      {"micrometer", "um"},     {"nanometer", "nm"}, {"millimeter", "mm"},
        {"centimeter", "cm"},   {"meter", "m"},           {"picometer", "pm"}, {"\u00c5", "angstrom"},
        {"\u212b", "angstrom"}, {"Angstrom", "angstrom"}, {"in", "inch"}};
    const auto other = names.find(name);
    const std::string& known = other == names.end() ? name : other->second;
    const auto* const found =
        std::find_if(std::begin(lengths), std::end(lengths), [&](const Length& each) { return each.unit == known; });
    return found == std::end(lengths) ? nullptr : found;
}

template <std::size_t Size>
void copyRow(const std::byte* from, std::byte* to, const Stretch& x)
{
    for (std::size_t i = 0; i < x.count; ++i) {
        std::memcpy(to + static_cast<std::ptrdiff_t>(i) * x.to, from + static_cast<std::ptrdiff_t>(i) * x.from, Size);
    }
}

} // namespace

void setPixelSize(ImageFacts& facts, std::size_t axis, double size, const std::string& unit)
{
    const Length* const length = findLength(unit);
    const std::string name = length == nullptr ? unit : length->unit;
    if (facts.pixelSize == std::array<double, 3>{}) {
        facts.unit = name;
    }
    const Length* const first = findLength(facts.unit);
    const bool converts = length != nullptr && first != nullptr;
    facts.pixelSize[axis] = name == facts.unit ? size : converts ? size * length->micrometres / first->micrometres : 0;
}

void copyPixels(const std::byte* from, std::byte* to, std::size_t pixelSize, const std::array<Stretch, 5>& axes)
{
    // The axis whose pixels lie closest in the target is copied innermost, the others as they lie in the source.
    std::array<Stretch, 5> sorted = axes;
    std::stable_sort(sorted.begin(), sorted.end(), [](const Stretch& a, const Stretch& b) {
        return (a.count > 1 ? a.from : INT64_MAX) < (b.count > 1 ? b.from : INT64_MAX);
    });
    const auto inner = std::min_element(sorted.begin(), sorted.end(), [](const Stretch& a, const Stretch& b) {
        return (a.count > 1 ? std::abs(a.to) : INT64_MAX) < (b.count > 1 ? std::abs(b.to) : INT64_MAX);
    });
    std::rotate(sorted.begin(), inner, inner + 1);
    const Stretch& x = sorted[0];
    const auto size = static_cast<std::int64_t>(pixelSize);
    const bool touches = x.count == 1 || (x.from == size && x.to == size);
    const auto copyInner = [&](const std::byte* source, std::byte* target) {
        if (touches) {
            std::memcpy(target, source, x.count * pixelSize);
        } else if (pixelSize == 1) {
            copyRow<1>(source, target, x);
        } else if (pixelSize == 2) {
            copyRow<2>(source, target, x);
        } else if (pixelSize == 4) {
            copyRow<4>(source, target, x);
        } else {
            copyRow<8>(source, target, x);
        }
    };
    std::array<std::size_t, 5> at{};
    for (;;) {
        const std::byte* source = from;
        std::byte* target = to;
        for (std::size_t k = 1; k < sorted.size(); ++k) {
            source += static_cast<std::ptrdiff_t>(at[k]) * sorted[k].from;
            target += static_cast<std::ptrdiff_t>(at[k]) * sorted[k].to;
        }
        copyInner(source, target);
        std::size_t k = 1;
        while (k < sorted.size() && ++at[k] == sorted[k].count) {
            at[k++] = 0;
        }
        if (k == sorted.size()) {
            return;
        }
    }
}

} // namespace orlix::files
