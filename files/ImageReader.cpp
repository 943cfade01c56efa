#include <files/ImageReader.hpp>

#include <files/Errors.hpp>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace orlix::files
{

void ImageReader::fail(const std::string& what) const
{
    throw FileError{facts_.path + ": " + what};
}

void ImageReader::note(const std::string& text)
{
    const std::string line = facts_.path + ": " + text;
    if (std::find(notes_.begin(), notes_.end(), line) == notes_.end()) {
        notes_.push_back(line);
    }
}

namespace
{

template <std::size_t Size>
void copyRow(const std::byte* from, std::byte* to, const Stretch& x)
{
    for (std::size_t i = 0; i < x.count; ++i) {
        std::memcpy(to + static_cast<std::ptrdiff_t>(i) * x.to, from + static_cast<std::ptrdiff_t>(i) * x.from, Size);
    }
}

} // namespace

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
