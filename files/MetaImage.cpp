#include <files/ArrayReader.hpp>
#include <files/HeaderText.hpp>

#include <map>

namespace orlix::files
{

namespace
{

StoredType findType(const Source& source, const std::string& name)
{
    using enum StoredType;
    static const std::map<std::string, StoredType> types{
        {"MET_CHAR", Int8},       {"MET_UCHAR", UInt8},       {"MET_SHORT", Int16},   {"MET_USHORT", UInt16},
        {"MET_INT", Int32},       {"MET_UINT", UInt32},       {"MET_LONG", Int32},    {"MET_ULONG", UInt32},
        {"MET_LONG_LONG", Int64}, {"MET_ULONG_LONG", UInt64}, {"MET_FLOAT", Float32}, {"MET_DOUBLE", Float64}};
    const auto found = types.find(name);
    if (found == types.end()) {
        source.fail("its element type \"" + name + "\" is not read: numbers are");
    }
    return found->second;
}

bool isTrue(const std::string& value)
{
    return toLower(value) == "true" || value == "1";
}

} // namespace

ReaderPtr openMetaImage(const Source& source)
{
    constexpr std::size_t longest = std::size_t{1} << 20;
    const std::string text = readHead(source.path, source.name, longest);
    // The name of the data is the header's last field; pixels may follow.
    const std::size_t last = text.find("ElementDataFile");
    if (last == std::string::npos) {
        source.fail("its header lacks \"ElementDataFile\"");
    }
    const std::size_t end = std::min(text.find('\n', last), text.size());
    const HeaderText header{source, std::string_view{text}.substr(0, end), "="};
    PixelArray array{source.describe("MetaImage")};
    array.fastestFirst = true;
    array.facts.type = findType(source, header.need("ElementType"));
    array.sizes = header.getSizes("DimSize");
    const std::size_t dimensions = array.sizes.size();
    if (header.need("NDims") != std::to_string(dimensions) || dimensions < 1 || dimensions > 4) {
        source.fail("its header states " + header.get("NDims") + " dimensions and " + std::to_string(dimensions) +
                    " sizes: 1 to 4 of both are needed");
    }
    array.axes = std::string{"XYZT"}.substr(0, dimensions);
    array.axesBy = "MetaImage";
    const std::vector<double> spacings =
        header.getNumbers(header.has("ElementSpacing") ? "ElementSpacing" : "ElementSize");
    std::copy_n(spacings.begin(), std::min<std::size_t>(3, std::min(spacings.size(), dimensions)),
                array.facts.pixelSize.begin());
    array.facts.unit = header.get("DistanceUnits");
    if (const std::string channels = header.get("ElementNumberOfChannels"); !channels.empty() && channels != "1") {
        array.sizes.insert(array.sizes.begin(), header.getSizes("ElementNumberOfChannels").at(0));
        array.axes.insert(0, "C");
    }
    const auto number = [&](const char* key, double otherwise) {
        const auto numbers = header.getNumbers(key);
        return numbers.empty() ? otherwise : numbers[0];
    };
    array.facts.scale = {number("ElementToIntensityFunctionSlope", 1), number("ElementToIntensityFunctionOffset", 0)};
    if (!header.get("BinaryData").empty() && !isTrue(header.get("BinaryData"))) {
        source.fail("its pixels are text, which is not read: save them as binary data");
    }
    array.isSwapped = isTrue(header.get("BinaryDataByteOrderMSB")) || isTrue(header.get("ElementByteOrderMSB"));

    const std::string data = header.get("ElementDataFile");
    std::vector<std::string> paths{source.path};
    if (toLower(data) == "local") {
        array.offset = end + 1;
    } else if (data.starts_with("LIST")) {
        paths = findDataFiles(source, splitWords(std::string_view{text}.substr(end)));
    } else if (data.find('%') != std::string::npos) {
        source.fail("its pixels are in a pattern of files, which is not supported: name them with LIST");
    } else {
        paths = findDataFiles(source, {data});
    }
    openPixels(source, array, paths, static_cast<std::int64_t>(number("HeaderSize", 0)),
               isTrue(header.get("CompressedData")) ? "zlib" : "raw");
    return readArray(source, std::move(array));
}

} // namespace orlix::files
