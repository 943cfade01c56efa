#include <orlix/Axes.hpp>

#include <orlix/Errors.hpp>

#include <pugixml.hpp>

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <limits>
#include <optional>
#include <sstream>
#include <string_view>

namespace orlix::app
{

namespace
{

constexpr std::size_t noPage = std::numeric_limits<std::size_t>::max();

std::optional<std::size_t> parseCount(std::string_view text)
{
    std::size_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool whole = error == std::errc{} && end == text.data() + text.size();
    return whole && number > 0 && number < (std::size_t{1} << 32) ? std::optional{number} : std::nullopt;
}

/// One axis of a nesting: its letter and its size.
struct Level
{
    char axis;
    std::size_t size;
};

std::size_t countPages(const std::vector<Level>& levels)
{
    std::size_t pages = 1;
    for (const Level& level : levels) {
        if (__builtin_mul_overflow(pages, level.size, &pages)) {
            return noPage;
        }
    }
    return pages;
}

/// The axes of pages that nest as `levels` tell, fastest first.
Axes nest(const std::vector<Level>& levels)
{
    Axes axes;
    const auto member = [](char axis) { return axis == 'z' ? &Axes::z : axis == 'c' ? &Axes::c : &Axes::t; };
    for (const Level& level : levels) {
        axes.*member(level.axis) = level.size;
    }
    axes.pages.resize(axes.nbPlans());
    for (std::size_t page = 0; page < axes.pages.size(); ++page) {
        Axes place{0, 0, 0, {}};
        std::size_t rest = page;
        for (const Level& level : levels) {
            place.*member(level.axis) = rest % level.size;
            rest /= level.size;
        }
        axes.pages[(place.t * axes.c + place.c) * axes.z + place.z] = page;
    }
    return axes;
}

Axes fromOrder(const PageFacts& facts, const std::string& order)
{
    std::vector<Level> levels;
    std::istringstream parts{order};
    for (std::string part; std::getline(parts, part, ',');) {
        const bool known =
            part.size() > 2 && part[1] == '=' && std::string_view{"zct"}.find(part[0]) != std::string::npos;
        const auto size = known ? parseCount(std::string_view{part}.substr(2)) : std::nullopt;
        const bool twice = std::any_of(levels.begin(), levels.end(), [&](const Level& l) { return l.axis == part[0]; });
        if (!size || twice) {
            throw UsageError{"--pages " + order +
                             ": the sizes of z, c and t are needed, each once, such as z=4,c=2,t=3"};
        }
        levels.push_back({part[0], *size});
    }
    if (countPages(levels) != facts.pages) {
        throw UsageError{"--pages " + order + " makes " + std::to_string(countPages(levels)) + " pages, but " +
                         facts.fileName + " has " + std::to_string(facts.pages)};
    }
    return nest(levels);
}

/// The number behind `key=` in an ImageJ description, 1 if there is none.
std::size_t imageJNumber(const std::string& description, const std::string& key)
{
    std::istringstream lines{description};
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind(key + "=", 0) == 0) {
            std::string_view value{line};
            value.remove_prefix(key.size() + 1);
            while (!value.empty() && std::isspace(static_cast<unsigned char>(value.back()))) {
                value.remove_suffix(1);
            }
            return parseCount(value).value_or(1);
        }
    }
    return 1;
}

bool isImageJ(const std::string& description)
{
    return description.rfind("ImageJ=", 0) == 0;
}

Axes fromImageJ(const PageFacts& facts)
{
    std::vector<Level> levels{{'c', imageJNumber(facts.description, "channels")},
                              {'z', imageJNumber(facts.description, "slices")},
                              {'t', imageJNumber(facts.description, "frames")}};
    if (countPages(levels) == 1) {
        levels = {{'z', facts.pages}}; // a plain stack states only its number of images
    }
    if (countPages(levels) != facts.pages) {
        throw FileError{facts.fileName + " states " + std::to_string(countPages(levels)) + " ImageJ images, but has " +
                        std::to_string(facts.pages) +
                        " pages: tell how they nest, such as --pages z=" + std::to_string(facts.pages)};
    }
    return nest(levels);
}

[[noreturn]] void refuseOme(const PageFacts& facts, const std::string& why)
{
    throw FileError{facts.fileName + ": its OME axes " + why +
                    ": tell how the pages nest, such as --pages z=" + std::to_string(facts.pages)};
}

/// Enters the pages of one TiffData element.
void placePages(const PageFacts& facts, const pugi::xml_node& data, const std::vector<Level>& levels, Axes& axes)
{
    const pugi::xml_node uuid = data.child("UUID");
    const std::string file = uuid.attribute("FileName").as_string(facts.fileName.c_str());
    // A file that was renamed still has its own identifier.
    const std::string own = data.root().child("OME").attribute("UUID").as_string();
    if (file != facts.fileName && (own.empty() || own != uuid.text().as_string())) {
        refuseOme(facts, "place planes in another file, " + file);
    }
    const bool onePage = !data.attribute("IFD").empty();
    const std::size_t firstPage = data.attribute("IFD").as_ullong(0);
    const std::size_t count = data.attribute("PlaneCount").as_ullong(onePage ? 1 : axes.nbPlans());
    std::array<std::size_t, 3> at{};
    for (std::size_t k = 0; k < levels.size(); ++k) {
        const char letter = static_cast<char>(std::toupper(levels[k].axis));
        at[k] = data.attribute((std::string{"First"} + letter).c_str()).as_ullong(0);
        if (at[k] >= levels[k].size) {
            refuseOme(facts, "place a plane outside the image");
        }
    }
    for (std::size_t i = 0; i < count; ++i) {
        if (firstPage + i >= facts.pages) {
            refuseOme(facts, "name more pages than there are");
        }
        Axes place{0, 0, 0, {}};
        for (std::size_t k = 0; k < levels.size(); ++k) {
            (levels[k].axis == 'z' ? place.z : levels[k].axis == 'c' ? place.c : place.t) = at[k];
        }
        axes.pages[(place.t * axes.c + place.c) * axes.z + place.z] = firstPage + i;
        for (std::size_t k = 0; k < levels.size() && ++at[k] == levels[k].size; ++k) {
            at[k] = 0;
        }
    }
}

Axes fromOme(const PageFacts& facts)
{
    pugi::xml_document document;
    if (!document.load_string(facts.description.c_str())) {
        refuseOme(facts, "are no XML");
    }
    const pugi::xml_node first = document.child("OME").child("Image");
    if (first.next_sibling("Image")) {
        refuseOme(facts, "describe several images");
    }
    const pugi::xml_node pixels = first.child("Pixels");
    const std::string order = pixels.attribute("DimensionOrder").as_string();
    if (order.size() != 5 || order.rfind("XY", 0) != 0) {
        refuseOme(facts, "lack a DimensionOrder");
    }
    std::vector<Level> levels;
    for (const char letter : order.substr(2)) {
        const auto size = parseCount(pixels.attribute((std::string{"Size"} + letter).c_str()).as_string());
        if (!size || std::string_view{"ZCT"}.find(letter) == std::string_view::npos) {
            refuseOme(facts, "lack a size");
        }
        levels.push_back({static_cast<char>(std::tolower(letter)), *size});
        if (letter == 'C') {
            levels.back().size = std::max<std::size_t>(1, *size / facts.samples); // a sample is a channel there
        }
    }
    if (countPages(levels) > facts.pages) {
        refuseOme(facts, "want " + std::to_string(countPages(levels)) + " pages, where there are " +
                             std::to_string(facts.pages));
    }
    Axes axes = nest(levels);
    if (const auto data = pixels.children("TiffData"); data.begin() != data.end()) {
        std::fill(axes.pages.begin(), axes.pages.end(), noPage);
        for (const pugi::xml_node& each : data) {
            placePages(facts, each, levels, axes);
        }
        if (std::find(axes.pages.begin(), axes.pages.end(), noPage) != axes.pages.end()) {
            refuseOme(facts, "leave planes without a page");
        }
    }
    return axes;
}

} // namespace

std::size_t countImageJImages(const std::string& description)
{
    return isImageJ(description) ? imageJNumber(description, "images") : 0;
}

Axes findAxes(const PageFacts& facts, const std::string& order)
{
    if (!order.empty()) {
        return fromOrder(facts, order);
    }
    if (isImageJ(facts.description)) {
        return fromImageJ(facts);
    }
    const std::size_t ome = facts.description.find("<OME");
    if (ome != std::string::npos && ome < 4096) {
        return fromOme(facts);
    }
    return nest({{'z', facts.pages}});
}

} // namespace orlix::app
