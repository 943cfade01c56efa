#include <files/tiff/TiffAxes.hpp>

#include <files/Errors.hpp>
#include <files/Names.hpp>

#include <nlohmann/json.hpp>
#include <pugixml.hpp>

#include <algorithm>
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
        return parseSize(findImageJ(description, key).value_or("1")).value_or(1);
    };
    StatedAxes stated;
    stated.rule = "ImageJ";
    stated.images = parseSize(findImageJ(description, "images").value_or("")).value_or(0);
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

/// The dimensions of a page are y and x, with samples before or behind, or a volume.
void checkPageLetters(const Source& source, const std::string& letters, const std::vector<std::size_t>& sizes)
{
    std::string longer;
    for (std::size_t i = 0; i < letters.size(); ++i) {
        longer += sizes[i] == 1 ? "" : letters.substr(i, 1);
    }
    for (const char* const known : {"YX", "YXS", "SYX", "ZYX", "ZYXS", "SZYX"}) {
        // In that order, though sides of one pixel are left out.
        std::size_t at = 0;
        for (const char* letter = known; *letter != '\0' && at < longer.size(); ++letter) {
            at += longer[at] == *letter ? 1 : 0;
        }
        if (at == longer.size()) {
            return;
        }
    }
    source.fail("its axes (tifffile) are " + letters + " in a page, where YX is read" + hintAtPages(2));
}

StatedAxes parseShape(const Source& source, const std::string& description, std::size_t pagePixels)
{
    const nlohmann::json json = parseJson(description);
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
    const std::vector<std::size_t> inner(sizes.begin() + static_cast<std::ptrdiff_t>(before), sizes.end());
    sizes.resize(before);
    std::string letters = json.contains("axes") && json["axes"].is_string() ? json["axes"].get<std::string>() : "";
    const bool hasLetters = letters.size() == json["shape"].size();
    if (hasLetters) {
        checkPageLetters(source, letters.substr(before), inner);
    }
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
    if (stated.levels.empty() && stated.images > 1 && stated.images != pages) {
        source.fail("it states " + std::to_string(stated.images) + " images (" + stated.rule + "), but has " +
                    std::to_string(pages) + " pages" + hintAtPages(pages));
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
    constexpr std::size_t farthest = 4096;
    const std::string_view start = std::string_view{description}.substr(0, farthest);
    // The element may carry a prefix of a namespace.
    const std::size_t prefixed = start.find(":OME");
    const std::size_t open = prefixed == std::string_view::npos ? prefixed : start.rfind('<', prefixed);
    const bool isPrefixed = open != std::string_view::npos &&
                            std::all_of(start.begin() + static_cast<std::ptrdiff_t>(open) + 1,
                                        start.begin() + static_cast<std::ptrdiff_t>(prefixed),
                                        [](unsigned char c) { return std::isalnum(c) != 0 || c == '_' || c == '-'; });
    return isPrefixed || start.find("<OME") != std::string_view::npos;
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
    OmePixels(const Source& source, const pugi::xml_node& ome, const pugi::xml_node& pixels, std::size_t nbPages)
        : source_{source}, ome_{ome}, pixels_{pixels}, nbPages_{nbPages}
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
            const auto size = parseSize(pixels_.attribute((std::string{"Size"} + letter).c_str()).as_string());
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
        // Elements that name other files may place more than there are pages here.
        constexpr std::size_t mostInSets = std::size_t{1} << 22;
        const bool isSet = std::any_of(data.begin(), data.end(), [&](const auto& each) { return child(each, "UUID"); });
        if (countPages(levels) > (isSet ? mostInSets : nbPages_)) {
            throw OmeFault{"state " + std::to_string(countPages(levels)) + " planes, where there are " +
                           std::to_string(nbPages_) + " pages"};
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
        for (std::size_t axis = 0; axis < 3; ++axis) {
            std::string name = "PhysicalSize";
            name += "XYZ"[axis];
            if (const double size = pixels_.attribute(name.c_str()).as_double(); size != 0) {
                setPixelSize(image.facts, axis, size, pixels_.attribute(name.append("Unit").c_str()).as_string("um"));
            }
        }
    }

    /// The file that a TiffData element names; the file itself if it names none, or was renamed.
    std::string findFile(const pugi::xml_node& data) const
    {
        const pugi::xml_node uuid = child(data, "UUID");
        const std::string name = uuid.attribute("FileName").as_string();
        const std::string own = ome_.attribute("UUID").as_string();
        if (name.empty() || name == fileName(source_.path) ||
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
    std::size_t nbPages_;
};

} // namespace

std::vector<OmeImage> parseOme(const Source& source, const std::string& xml, std::size_t nbPages,
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
            OmePixels{source, ome, child(node, "Pixels"), nbPages}.parse(image, samplesOf);
        } catch (const OmeFault& fault) {
            image.fault = fault.text;
        }
        images.push_back(std::move(image));
    }
    return images;
}

} // namespace orlix::files
