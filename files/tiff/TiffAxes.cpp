#include <files/tiff/TiffAxes.hpp>

#include <files/Errors.hpp>

#include <nlohmann/json.hpp>
#include <pugixml.hpp>

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <limits>
#include <numeric>
#include <optional>
#include <sstream>
#include <string_view>

namespace orlix::files
{

namespace
{

namespace fs = std::filesystem;

constexpr std::size_t noPage = std::numeric_limits<std::size_t>::max();

std::optional<std::size_t> parseCount(std::string_view text)
{
    std::size_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isWhole = error == std::errc{} && end == text.data() + text.size();
    return isWhole && number > 0 && number < (std::size_t{1} << 32) ? std::optional{number} : std::nullopt;
}

std::string fileName(const std::string& path)
{
    return fs::path{path}.filename().string();
}

std::string hintAtPages(std::size_t pages)
{
    return ": tell how they nest, such as --pages z=" + std::to_string(pages);
}

/// The text behind `key=` in an ImageJ description.
std::optional<std::string> findImageJ(const std::string& description, const std::string& key)
{
    std::istringstream lines{description};
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(key + "=")) {
            std::string value = line.substr(key.size() + 1);
            value.erase(value.find_last_not_of(" \r\t") + 1);
            return value;
        }
    }
    return std::nullopt;
}

double findImageJNumber(const std::string& description, const std::string& key, double otherwise)
{
    const auto text = findImageJ(description, key);
    char* end = nullptr;
    const double number = text ? std::strtod(text->c_str(), &end) : otherwise;
    return text && end == text->c_str() ? otherwise : number;
}

StatedAxes parseImageJ(const Source& source, const std::string& description)
{
    const auto count = [&](const char* key) {
        return parseCount(findImageJ(description, key).value_or("1")).value_or(1);
    };
    StatedAxes stated;
    stated.isImageJ = true;
    stated.rule = "ImageJ";
    stated.images = parseCount(findImageJ(description, "images").value_or("")).value_or(0);
    // "order=zct": fastest first; it may begin with the axes of a plane.
    std::string order = findImageJ(description, "order").value_or("czt");
    order = order.substr(order.starts_with("xy") ? 2 : 0);
    if (order.size() != 3 || !std::is_permutation(order.begin(), order.end(), "czt")) {
        source.fail("its ImageJ order \"" + order + "\" is none of the axes c, z and t" + hintAtPages(stated.images));
    }
    for (const char axis : order) {
        stated.levels.push_back({axis, count(axis == 'c' ? "channels" : axis == 'z' ? "slices" : "frames")});
    }
    if (countPages(stated.levels) == 1) {
        stated.levels.clear(); // a plain stack states only its number of images
    }
    stated.spacing = findImageJNumber(description, "spacing", 0);
    stated.unit = findImageJ(description, "unit").value_or("");
    if (stated.unit == "micron" || stated.unit == "microns" || stated.unit == "\\u00B5m" || stated.unit == "\u00b5m") {
        stated.unit = "um";
    }
    if (findImageJ(description, "cf") == "0") { // a straight line
        stated.scale = {findImageJNumber(description, "c1", 1), findImageJNumber(description, "c0", 0)};
    }
    return stated;
}

/// The axes of dimensions before those of a page, by their letters, slowest first: letters of no axis get one that is
/// left, z before c before t.
std::vector<Level> assignAxes(const Source& source, const std::vector<std::size_t>& sizes, const std::string& letters)
{
    std::vector<Level> levels; // fastest first
    std::string left = "zct";
    for (std::size_t i = sizes.size(); i-- > 0;) {
        levels.push_back({static_cast<char>(std::tolower(letters[i])), sizes[i]});
        if (const std::size_t at = left.find(levels.back().axis); at != std::string::npos) {
            left.erase(at, 1);
        } else {
            levels.back().axis = '?';
        }
    }
    std::erase_if(levels, [](const Level& level) { return level.axis == '?' && level.size == 1; });
    for (Level& level : levels) {
        if (level.axis == '?') {
            if (left.empty()) {
                source.fail("its axes \"" + letters + "\" are more than z, c and t" + hintAtPages(countPages(levels)));
            }
            level.axis = left[0];
            left.erase(0, 1);
        }
    }
    return levels;
}

StatedAxes parseShape(const Source& source, const std::string& description, std::size_t pagePixels)
{
    const nlohmann::json json = nlohmann::json::parse(description, nullptr, false);
    if (!json.is_object() || !json.contains("shape") || !json["shape"].is_array()) {
        return {};
    }
    std::vector<std::size_t> sizes;
    for (const auto& size : json["shape"]) {
        sizes.push_back(size.is_number_unsigned() ? size.get<std::size_t>() : 0);
    }
    // The dimensions before those of a page: as many as leave one page's pixels.
    std::size_t inPage = 1;
    std::size_t before = sizes.size();
    while (before > 0 && inPage < pagePixels) {
        inPage *= sizes[--before];
    }
    if (inPage != pagePixels) {
        source.fail(
            "it states a shape whose last dimensions are no page of its pixels: tell how its pages nest, such as "
            "--pages z=2");
    }
    while (before > 0 && sizes[before - 1] == 1 && sizes.size() - before < 2) {
        --before; // sides of one pixel belong to the page
    }
    sizes.resize(before);
    std::string letters = json.contains("axes") && json["axes"].is_string() ? json["axes"].get<std::string>() : "";
    const bool hasLetters = letters.size() == json["shape"].size();
    letters = hasLetters    ? letters.substr(0, before)
              : before <= 3 ? std::string{"TCZ"}.substr(3 - before)
                            : std::string(before, '?');
    StatedAxes stated;
    stated.levels = assignAxes(source, sizes, letters);
    stated.images = countPages(stated.levels);
    stated.rule = hasLetters ? "tifffile axes" : "tifffile shape";
    return stated;
}

} // namespace

StatedAxes parseDescription(const Source& source, const std::string& description, std::size_t pagePixels)
{
    if (description.starts_with("ImageJ=")) {
        return parseImageJ(source, description);
    }
    if (description.starts_with("{") && description.find("\"shape\"") != std::string::npos) {
        return parseShape(source, description, pagePixels);
    }
    return {};
}

Nesting findNesting(const Source& source, const StatedAxes& stated, std::size_t pages)
{
    if (!source.options.pages.empty()) {
        return nestByOption(source.options.pages, pages, source.name);
    }
    if (stated.levels.empty()) {
        return nest({{'z', pages}}, !stated.rule.empty() ? stated.rule
                                    : pages == 1         ? "a single page"
                                                         : "the order of the pages");
    }
    if (countPages(stated.levels) != pages) {
        source.fail("it states " + std::to_string(countPages(stated.levels)) + " images (" + stated.rule +
                    "), but has " + std::to_string(pages) + " pages" + hintAtPages(pages));
    }
    return nest(stated.levels, stated.rule);
}

bool isOme(const std::string& description)
{
    const std::size_t at = description.find("<OME");
    const std::size_t prefixed = description.find(":OME");
    constexpr std::size_t farthest = 4096;
    return std::min(at, prefixed) < farthest;
}

namespace
{

/// Why an image of an OME file cannot be read.
struct OmeFault
{
    std::string text;
};

/// Elements may carry a prefix of a namespace.
bool isNamed(const pugi::xml_node& node, std::string_view name)
{
    const std::string_view own = node.name();
    return own.substr(own.find(':') == std::string_view::npos ? 0 : own.find(':') + 1) == name;
}

std::vector<pugi::xml_node> children(const pugi::xml_node& node, std::string_view name)
{
    std::vector<pugi::xml_node> found;
    std::copy_if(node.begin(), node.end(), std::back_inserter(found),
                 [&](const pugi::xml_node& child) { return isNamed(child, name); });
    return found;
}

pugi::xml_node child(const pugi::xml_node& node, std::string_view name)
{
    const auto found = children(node, name);
    return found.empty() ? pugi::xml_node{} : found.front();
}

/// The Pixels element of one image, and where its planes lie.
class OmePixels
{
public:
    OmePixels(const Source& source, const pugi::xml_node& ome, const pugi::xml_node& pixels)
        : source_{source}, ome_{ome}, pixels_{pixels}
    {}

    void parse(OmeImage& image, const std::function<std::size_t(const PageRef&)>& samplesOf)
    {
        image.x = pixels_.attribute("SizeX").as_ullong();
        image.y = pixels_.attribute("SizeY").as_ullong();
        findPixelSize(image);
        const std::string order = pixels_.attribute("DimensionOrder").as_string();
        if (order.size() != 5 || !order.starts_with("XY")) {
            throw OmeFault{"lack a DimensionOrder"};
        }
        const auto data = children(pixels_, "TiffData");
        PageRef first{findFile(data.empty() ? pugi::xml_node{} : data.front())};
        if (!data.empty() && !data.front().attribute("IFD").empty()) {
            first.page = data.front().attribute("IFD").as_ullong();
            first.countsAll = true;
        }
        const std::size_t samples = samplesOf(first);
        std::vector<Level> levels;
        for (const char letter : order.substr(2)) {
            const auto size = parseCount(pixels_.attribute((std::string{"Size"} + letter).c_str()).as_string());
            if (!size || std::string_view{"ZCT"}.find(letter) == std::string_view::npos) {
                throw OmeFault{"lack a size"};
            }
            levels.push_back({static_cast<char>(std::tolower(letter)), *size});
            if (letter == 'C') {
                if (*size % samples != 0) {
                    throw OmeFault{"state " + std::to_string(*size) + " channels, but a pixel has " +
                                   std::to_string(samples) + " samples"};
                }
                levels.back().size = *size / samples; // a sample is a channel there
            }
        }
        constexpr std::size_t mostPages = std::size_t{1} << 28;
        if (countPages(levels) > mostPages) {
            throw OmeFault{"state " + std::to_string(countPages(levels)) + " planes"};
        }
        image.nesting = nest(levels, "OME-XML");
        const std::vector<std::size_t> planOfPage = invert(image.nesting.pages);
        image.pages.assign(planOfPage.size(), PageRef{{}, noPage});
        // Without TiffData the planes lie in this file, in order.
        for (const pugi::xml_node& each : data.empty() ? std::vector{pugi::xml_node{}} : data) {
            placePages(each, levels, planOfPage, image.pages);
        }
        std::iota(image.nesting.pages.begin(), image.nesting.pages.end(), std::size_t{0});
        const auto missing = std::count_if(image.pages.begin(), image.pages.end(),
                                           [](const PageRef& ref) { return ref.page == noPage; });
        if (missing != 0) {
            throw OmeFault{"leave " + std::to_string(missing) + " of " + std::to_string(image.pages.size()) +
                           " planes without a page"};
        }
    }

private:
    static std::vector<std::size_t> invert(const std::vector<std::size_t>& pages)
    {
        std::vector<std::size_t> plans(pages.size());
        for (std::size_t plan = 0; plan < pages.size(); ++plan) {
            plans[pages[plan]] = plan;
        }
        return plans;
    }

    void findPixelSize(OmeImage& image) const
    {
        const char* const names[] = {"PhysicalSizeX", "PhysicalSizeY", "PhysicalSizeZ"};
        for (std::size_t axis = 0; axis < 3; ++axis) {
            image.pixelSize[axis] = pixels_.attribute(names[axis]).as_double();
        }
        if (image.pixelSize[0] != 0) {
            const std::string unit = pixels_.attribute("PhysicalSizeXUnit").as_string("\u00b5m");
            image.unit = unit == "\u00b5m" || unit == "\u03bcm" ? "um" : unit;
        }
    }

    /// The file that a TiffData element names; the file itself if it names none, or was renamed.
    std::string findFile(const pugi::xml_node& data) const
    {
        const pugi::xml_node uuid = child(data, "UUID");
        const std::string name = uuid.attribute("FileName").as_string();
        const std::string own = ome_.attribute("UUID").as_string();
        if (name.empty() || name == fileName(source_.name) || name == fileName(source_.path) ||
            (!own.empty() && own == trimmed(uuid.text().as_string()))) {
            return source_.path;
        }
        const fs::path path = fs::path{source_.path}.parent_path() / fileName(name);
        if (!fs::exists(path)) {
            throw OmeFault{"place planes in " + name + ", which is not there"};
        }
        return path.string();
    }

    static std::string trimmed(const std::string& text)
    {
        const std::size_t first = text.find_first_not_of(" \t\r\n");
        return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(" \t\r\n") + 1 - first);
    }

    /// Enters the pages of one TiffData element.
    void placePages(const pugi::xml_node& data, const std::vector<Level>& levels,
                    const std::vector<std::size_t>& planOfPage, std::vector<PageRef>& pages) const
    {
        const bool hasPage = !data.attribute("IFD").empty();
        PageRef ref{findFile(data), data.attribute("IFD").as_ullong(0), hasPage};
        std::size_t at = 0; // as pages nest
        std::size_t step = 1;
        for (const Level& level : levels) {
            const std::string name = std::string{"First"} + static_cast<char>(std::toupper(level.axis));
            const std::size_t first = data.attribute(name.c_str()).as_ullong(0);
            if (first >= level.size) {
                throw OmeFault{"place a plane outside the image"};
            }
            at += first * step;
            step *= level.size;
        }
        const std::size_t count = data.attribute("PlaneCount").as_ullong(hasPage ? 1 : pages.size() - at);
        if (count > pages.size() - at) {
            throw OmeFault{"place a plane outside the image"};
        }
        for (std::size_t i = 0; i < count; ++i, ++ref.page) {
            pages[planOfPage[at + i]] = ref;
        }
    }

    const Source& source_;
    pugi::xml_node ome_;
    pugi::xml_node pixels_;
};

} // namespace

std::vector<OmeImage> parseOme(const Source& source, const std::string& xml,
                               const std::function<std::size_t(const PageRef&)>& samplesOf)
{
    pugi::xml_document document;
    if (!document.load_string(xml.c_str())) {
        source.fail("its OME-XML is none: tell how its pages nest, such as --pages z=2");
    }
    const pugi::xml_node ome = child(document, "OME");
    std::vector<OmeImage> images;
    for (const pugi::xml_node& node : children(ome, "Image")) {
        OmeImage image;
        image.name = node.attribute("Name").as_string();
        try {
            OmePixels{source, ome, child(node, "Pixels")}.parse(image, samplesOf);
        } catch (const OmeFault& fault) {
            image.fault = fault.text;
        }
        images.push_back(std::move(image));
    }
    return images;
}

} // namespace orlix::files
