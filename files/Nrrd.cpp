#include <files/ArrayReader.hpp>
#include <files/HeaderText.hpp>
#include <files/Names.hpp>

#include <algorithm>
#include <bit>
#include <cmath>
#include <map>
#include <sstream>

namespace orlix::files
{

namespace
{

StoredType findType(const Source& source, const std::string& name)
{
    using enum StoredType;
    static const std::map<std::string, StoredType> types{{"signed char", Int8},
                                                         {"int8", Int8},
                                                         {"int8_t", Int8},
                                                         {"uchar", UInt8},
                                                         {"unsigned char", UInt8},
                                                         {"uint8", UInt8},
                                                         {"uint8_t", UInt8},
                                                         {"short", Int16},
                                                         {"short int", Int16},
                                                         {"signed short", Int16},
                                                         {"signed short int", Int16},
                                                         {"int16", Int16},
                                                         {"int16_t", Int16},
                                                         {"ushort", UInt16},
                                                         {"unsigned short", UInt16},
                                                         {"unsigned short int", UInt16},
                                                         {"uint16", UInt16},
                                                         {"uint16_t", UInt16},
                                                         {"int", Int32},
                                                         {"signed int", Int32},
                                                         {"int32", Int32},
                                                         {"int32_t", Int32},
                                                         {"uint", UInt32},
                                                         {"unsigned int", UInt32},
                                                         {"uint32", UInt32},
                                                         {"uint32_t", UInt32},
                                                         {"longlong", Int64},
                                                         {"long long", Int64},
                                                         {"long long int", Int64},
                                                         {"signed long long", Int64},
                                                         {"signed long long int", Int64},
                                                         {"int64", Int64},
                                                         {"int64_t", Int64},
                                                         {"ulonglong", UInt64},
                                                         {"unsigned long long", UInt64},
                                                         {"unsigned long long int", UInt64},
                                                         {"uint64", UInt64},
                                                         {"uint64_t", UInt64},
                                                         {"float", Float32},
                                                         {"double", Float64}};
    const auto found = types.find(name);
    if (found == types.end()) {
        source.fail("its pixel type \"" + name + "\" is not read: numbers are");
    }
    return found->second;
}

/// The letters of the axes, fastest first; empty where the header does not tell them apart.
std::string findAxes(const HeaderText& header, std::size_t dimensions)
{
    const std::vector<std::string> kinds = header.getWords("kinds");
    const std::vector<std::string> labels = header.getWords("labels");
    std::string axes;
    std::size_t space = 0;
    for (std::size_t i = 0; i < dimensions; ++i) {
        const std::string kind = i < kinds.size() ? toLower(kinds[i]) : "";
        const std::string label = labels.size() == dimensions ? labels[i] : "";
        const char named = label.size() > 2 ? nameAxis(label.substr(1, label.size() - 2)) : '?'; // in quotes
        const bool isSpace = kind.empty() || kind == "domain" || kind == "space" || kind == "???" || kind == "none";
        if (isSpace && named != '?') {
            axes += named;
            space += named == 'X' || named == 'Y' || named == 'Z' ? 1 : 0;
        } else if (kind == "time") {
            axes += 'T';
        } else if (!isSpace) {
            axes += 'C';
        } else {
            axes += space < 3 ? "XYZ"[space] : '?';
            ++space;
        }
    }
    return space > 3 ? "" : axes;
}

/// How far apart pixels lie along the axes that are named x, y and z.
void findPixelSize(const HeaderText& header, const std::string& axes, ImageFacts& facts)
{
    std::vector<double> spacings;
    if (header.has("spacings")) {
        for (const std::string& word : header.getWords("spacings")) {
            spacings.push_back(std::strtod(word.c_str(), nullptr)); // "nan" where an axis has none
        }
    } else {
        // Vectors "(1,0,0)", or "none".
        std::string text = header.get("space directions");
        text.erase(std::remove(text.begin(), text.end(), ' '), text.end());
        for (std::size_t at = 0; at < text.size();) {
            if (text[at] == '(') {
                const std::size_t end = std::min(text.find(')', at), text.size());
                std::istringstream numbers{text.substr(at + 1, end - at - 1)};
                double squares = 0;
                for (std::string number; std::getline(numbers, number, ',');) {
                    squares += std::pow(std::strtod(number.c_str(), nullptr), 2);
                }
                spacings.push_back(std::sqrt(squares));
                at = end + 1;
            } else if (text.compare(at, 4, "none") == 0) {
                spacings.push_back(0);
                at += 4;
            } else {
                ++at;
            }
        }
    }
    for (std::size_t i = 0; i < std::min(axes.size(), spacings.size()); ++i) {
        const std::size_t axis = std::string_view{"XYZ"}.find(axes[i]);
        if (axis != std::string_view::npos && std::isfinite(spacings[i])) {
            facts.pixelSize[axis] = std::abs(spacings[i]);
        }
    }
    std::string units = header.get(header.has("space units") ? "space units" : "units");
    if (const std::size_t begin = units.find('"'); begin != std::string::npos) {
        facts.unit = units.substr(begin + 1, units.find('"', begin + 1) - begin - 1);
    }
}

/// The names of the files that hold the pixels: "slices/%03d.raw 1 20 1", "LIST" and lines, or one name.
std::vector<std::string> listDataFiles(const Source& source, const std::string& value, const std::string& behind)
{
    const std::vector<std::string> words = splitWords(value);
    if (!words.empty() && words[0] == "LIST") {
        std::vector<std::string> names;
        std::istringstream lines{behind};
        for (std::string line; std::getline(lines, line);) {
            if (!trim(line).empty()) {
                names.push_back(trim(line));
            }
        }
        return names;
    }
    if (words.size() < 4 || words[0].find('%') == std::string::npos) {
        return {value};
    }
    // "%d" or "%0Nd" stands for a number.
    const std::size_t begin = words[0].find('%');
    const std::size_t end = words[0].find('d', begin);
    const long first = std::strtol(words[1].c_str(), nullptr, 10);
    const long last = std::strtol(words[2].c_str(), nullptr, 10);
    const long step = std::strtol(words[3].c_str(), nullptr, 10);
    if (end == std::string::npos || step == 0 || (last - first) / step < 0 || (last - first) / step > 1'000'000) {
        source.fail("its data file \"" + value + "\" makes no list of files");
    }
    const auto width = static_cast<std::size_t>(std::strtoul(words[0].c_str() + begin + 1, nullptr, 10));
    std::vector<std::string> names;
    for (long i = 0; i <= (last - first) / step; ++i) {
        std::string number = std::to_string(first + i * step);
        number.insert(0, width > number.size() ? std::min<std::size_t>(width - number.size(), 20) : 0, '0');
        names.push_back(words[0].substr(0, begin) + number + words[0].substr(end + 1));
    }
    return names;
}

/// Pixels that are written as text.
std::vector<std::byte> parseNumbers(const Source& source, const std::string& text, StoredType type)
{
    std::istringstream words{text};
    std::vector<std::byte> pixels;
    for (std::string word; words >> word;) {
        char* end = nullptr;
        const double number = std::strtod(word.c_str(), &end);
        if (*end != '\0') {
            source.fail("its text holds \"" + word + "\", which is no number");
        }
        std::array<std::byte, 8> pixel{};
        convertPixels(reinterpret_cast<const std::byte*>(&number), StoredType::Float64, pixel.data(), type, 1);
        pixels.insert(pixels.end(), pixel.begin(), pixel.begin() + static_cast<std::ptrdiff_t>(getPixelSize(type)));
    }
    return pixels;
}

} // namespace

ReaderPtr openNrrd(const Source& source)
{
    constexpr std::size_t longest = std::size_t{1} << 20;
    const std::string text = readHead(source.path, source.name, longest);
    // The header ends at an empty line; one in a file of its own may end with the file.
    std::size_t end = text.find("\n\n");
    if (const std::size_t crlf = text.find("\r\n\r\n"); crlf < end) {
        end = crlf + 2;
    }
    const std::string head = text.substr(0, end);
    const HeaderText header{source, head, ":"};
    PixelArray array{source.describe("NRRD")};
    array.fastestFirst = true;
    array.facts.type = findType(source, toLower(header.need("type")));
    array.sizes = header.getSizes("sizes");
    if (header.need("dimension") != std::to_string(array.sizes.size())) {
        source.fail("its header states " + header.get("dimension") + " dimensions, but " +
                    std::to_string(array.sizes.size()) + " sizes");
    }
    if (header.has("kinds") || header.has("labels")) {
        array.axes = findAxes(header, array.sizes.size());
        array.axesBy = "NRRD kinds";
    }
    // Without kinds the first axes are x, y and z.
    findPixelSize(header, array.axes.empty() ? "XYZ" : array.axes, array.facts);
    array.isSwapped = toLower(header.get("endian")) == "big";

    std::string encoding = toLower(header.need("encoding"));
    encoding = encoding == "gz"                           ? "gzip"
               : encoding == "bz2"                        ? "bzip2"
               : encoding == "txt" || encoding == "ascii" ? "text"
                                                          : encoding;
    std::string data = header.get(header.has("data file") ? "data file" : "datafile");
    const auto skipBytes = static_cast<std::int64_t>(std::strtoll(header.get("byte skip").c_str(), nullptr, 10));
    if (!header.get("line skip").empty() && header.get("line skip") != "0") {
        source.fail("it has a \"line skip\", which is not supported: use \"byte skip\"");
    }
    std::vector<std::string> paths{source.path};
    if (!data.empty()) {
        const std::size_t field = std::min(head.find("\ndata file:"), head.find("\ndatafile:"));
        const std::size_t list = head.find("LIST", std::min(field, head.size()));
        const std::size_t behind = list == std::string::npos ? list : head.find('\n', list);
        paths =
            findDataFiles(source, listDataFiles(source, data, behind == std::string::npos ? "" : head.substr(behind)));
    } else if (end == std::string::npos) {
        source.fail("its header does not end, and names no data file");
    } else {
        array.offset = text.find('\n', end + 1) + 1;
    }
    if (encoding == "raw" || encoding == "gzip" || encoding == "bzip2") {
        openPixels(source, array, paths, skipBytes, encoding);
    } else if (encoding == "text") {
        auto pixels = parseNumbers(source, readText(paths[0], source.name).substr(array.offset), array.facts.type);
        array.facts.compression = "text";
        array.available = pixels.size();
        array.bytes = wrapBytes(std::move(pixels), source.name);
        array.offset = 0;
        array.isSwapped = false;
    } else {
        source.fail("its encoding \"" + encoding + "\" is not read: raw, gzip, bzip2 and text are");
    }
    return readArray(source, std::move(array));
}

} // namespace orlix::files
