#include <files/zarr/ZarrNode.hpp>

#include <files/ArrayReader.hpp>
#include <files/Names.hpp>

#include <algorithm>
#include <cstring>

namespace orlix::files
{

namespace
{

namespace fs = std::filesystem;
using Json = nlohmann::json;

Json readJson(const Source& source, const fs::path& path)
{
    const std::string text = readText(path.string(), path.string());
    Json json = parseJson(text);
    if (!json.is_object()) {
        source.fail("its " + path.filename().string() + " is no JSON");
    }
    return json;
}

StoredType need(const Source& source, std::optional<StoredType> type, const std::string& name)
{
    if (!type) {
        source.fail("its elements of type " + name + " are not read: numbers are");
    }
    return *type;
}

std::vector<std::byte> makeFill(const Json& value, StoredType type)
{
    std::vector<std::byte> fill(getPixelSize(type));
    double number = 0;
    if (value.is_number()) {
        number = value.get<double>();
    } else if (value.is_boolean()) {
        number = value.get<bool>() ? 1 : 0;
    } else if (value.is_string()) {
        const auto text = value.get<std::string>();
        if (text.starts_with("0x")) { // the bits
            const std::uint64_t bits = std::strtoull(text.c_str(), nullptr, 16);
            std::memcpy(fill.data(), &bits, fill.size());
            return fill;
        }
        number = std::strtod(text.c_str(), nullptr); // "NaN", "Infinity", "-Infinity"
    }
    convertPixels(reinterpret_cast<const std::byte*>(&number), StoredType::Float64, fill.data(), type, 1);
    return fill;
}

constexpr std::array readCodecs{"blosc", "zstd", "gzip", "zlib", "bz2", "crc32c"};

void addCodec(const Source& source, const std::string& name, std::vector<std::string>& codecs)
{
    if (std::find(readCodecs.begin(), readCodecs.end(), name) == readCodecs.end()) {
        source.fail("its chunks are compressed with " + name +
                    ", which is not read: blosc, zstd, gzip, zlib and bz2 are");
    }
    codecs.push_back(name);
}

std::vector<std::size_t> countUp(std::size_t count)
{
    std::vector<std::size_t> order(count);
    std::iota(order.begin(), order.end(), std::size_t{0});
    return order;
}

ZarrArray parseVersion2(const Source& source, const Json& json)
{
    ZarrArray array;
    array.sizes = json.at("shape").get<std::vector<std::uint64_t>>();
    array.chunks.shape = json.at("chunks").get<std::vector<std::uint64_t>>();
    const Json& dtype = json.at("dtype");
    if (!dtype.is_string() || dtype.get<std::string>().size() < 3) {
        source.fail("its elements are records, not numbers");
    }
    const auto name = dtype.get<std::string>();
    array.type = need(source, findNumpyType(name.substr(1)), name);
    array.chunks.isSwapped = name[0] == '>';
    array.chunks.order = countUp(array.sizes.size());
    if (json.value("order", "C") == "F") {
        std::reverse(array.chunks.order.begin(), array.chunks.order.end());
    }
    if (json.contains("filters") && json["filters"].is_array() && !json["filters"].empty()) {
        source.fail("its elements went through the filter " + json["filters"][0].value("id", "?") +
                    ", which is not read");
    }
    if (json.contains("compressor") && json["compressor"].is_object()) {
        array.compression = json["compressor"].value("id", "?");
        addCodec(source, array.compression, array.chunks.codecs);
    }
    array.separator = json.value("dimension_separator", ".");
    array.fill = makeFill(json.value("fill_value", Json{}), array.type);
    return array;
}

/// The codecs of version 3, which may hold a shard's.
void parseCodecs(const Source& source, const Json& list, ZarrChunks& chunks, std::string& compression)
{
    chunks.order = countUp(chunks.shape.size());
    for (const Json& codec : list) {
        const auto name = codec.at("name").get<std::string>();
        const Json configuration = codec.value("configuration", Json::object());
        if (name == "bytes" || name == "endian") {
            chunks.isSwapped = configuration.value("endian", "little") == "big";
        } else if (name == "transpose") {
            if (!configuration.at("order").is_array()) {
                source.fail("its chunks are transposed in an unknown way");
            }
            // Dimension i of what is stored was dimension order[i].
            const auto order = configuration["order"].get<std::vector<std::size_t>>();
            if (!std::is_permutation(order.begin(), order.end(), chunks.order.begin(), chunks.order.end())) {
                source.fail("its chunks are transposed in an unknown way");
            }
            std::vector<std::size_t> composed;
            for (const std::size_t dimension : order) {
                composed.push_back(chunks.order[dimension]);
            }
            chunks.order = composed;
        } else if (name == "sharding_indexed") {
            chunks.inner = std::make_shared<ZarrChunks>();
            chunks.inner->shape = configuration.at("chunk_shape").get<std::vector<std::uint64_t>>();
            parseCodecs(source, configuration.at("codecs"), *chunks.inner, compression);
            ZarrChunks index;
            std::string none;
            parseCodecs(source, configuration.at("index_codecs"), index, none);
            chunks.indexCodecs = index.codecs;
            if (index.isSwapped || std::any_of(index.codecs.begin(), index.codecs.end(),
                                               [](const std::string& each) { return each != "crc32c"; })) {
                source.fail("the indices of its shards are compressed or big-endian, which is not read");
            }
            if (!std::is_sorted(chunks.order.begin(), chunks.order.end()) || !chunks.codecs.empty() ||
                chunks.inner->inner) {
                source.fail("its shards are transposed, compressed or nested, which is not read");
            }
            chunks.isIndexAtEnd = configuration.value("index_location", "end") == "end";
        } else {
            if (chunks.inner) {
                source.fail("its shards are compressed with " + name + ", which is not read");
            }
            addCodec(source, name, chunks.codecs);
            compression = name == "crc32c" ? compression : name;
        }
    }
}

ZarrArray parseVersion3(const Source& source, const Json& json)
{
    ZarrArray array;
    array.sizes = json.at("shape").get<std::vector<std::uint64_t>>();
    if (!json.at("data_type").is_string()) {
        source.fail("its elements are no numbers");
    }
    const auto name = json["data_type"].get<std::string>();
    const std::size_t digits = std::min(name.find_first_of("0123456789"), name.size());
    const std::string kind = name.substr(0, digits);
    const std::size_t bytes = std::strtoul(name.c_str() + digits, nullptr, 10) / 8;
    array.type = need(source,
                      name == "bool"    ? std::optional{StoredType::Binary}
                      : kind == "uint"  ? findStoredType(NumberKind::Unsigned, bytes)
                      : kind == "int"   ? findStoredType(NumberKind::Signed, bytes)
                      : kind == "float" ? findStoredType(NumberKind::Float, bytes)
                                        : std::nullopt,
                      name);
    const Json& grid = json.at("chunk_grid");
    if (grid.value("name", "") != "regular") {
        source.fail("its chunks lie on no regular grid, which is not read");
    }
    array.chunks.shape = grid.at("configuration").at("chunk_shape").get<std::vector<std::uint64_t>>();
    parseCodecs(source, json.at("codecs"), array.chunks, array.compression);
    const Json keys = json.value("chunk_key_encoding", Json::object());
    const bool isDefault = keys.value("name", "default") == "default";
    array.separator = keys.value("configuration", Json::object()).value("separator", isDefault ? "/" : ".");
    array.prefix = isDefault ? "c" + array.separator : "";
    array.fill = makeFill(json.value("fill_value", Json{}), array.type);
    if (json.contains("dimension_names") && json["dimension_names"].is_array()) {
        for (const Json& each : json["dimension_names"]) {
            array.letters += each.is_string() ? nameAxis(each.get<std::string>()) : '?';
        }
        array.rule = "Zarr dimension names";
    }
    return array;
}
std::vector<double> findScales(const Json& transformed)
{
    for (const Json& each : transformed.value("coordinateTransformations", Json::array())) {
        if (each.value("type", "") == "scale" && each.contains("scale")) {
            return each["scale"].get<std::vector<double>>();
        }
    }
    return {};
}

bool isNode(const fs::path& path)
{
    return fs::exists(path / "zarr.json") || fs::exists(path / ".zarray") || fs::exists(path / ".zgroup");
}

} // namespace

ZarrNode::ZarrNode(const Source& source, const fs::path& path) : path_{path}
{
    if (fs::exists(path / "zarr.json")) {
        json_ = readJson(source, path / "zarr.json");
        attributes_ = json_.value("attributes", Json::object());
        isArray_ = json_.value("node_type", "") == "array";
        version_ = 3;
    } else if (fs::exists(path / ".zarray")) {
        json_ = readJson(source, path / ".zarray");
        isArray_ = true;
    }
    if (version_ == 2 && fs::exists(path / ".zattrs")) {
        attributes_ = readJson(source, path / ".zattrs");
    }
}

ZarrArray ZarrNode::parseArray(const Source& source) const
{
    ZarrArray array = version_ == 3 ? parseVersion3(source, json_) : parseVersion2(source, json_);
    if (array.letters.empty() && attributes_.contains("_ARRAY_DIMENSIONS")) {
        for (const Json& name : attributes_["_ARRAY_DIMENSIONS"]) {
            array.letters += name.is_string() ? nameAxis(name.get<std::string>()) : '?';
        }
        array.rule = "_ARRAY_DIMENSIONS";
    }
    return array;
}

std::vector<ZarrMultiscale> ZarrNode::parseMultiscales() const
{
    std::vector<ZarrMultiscale> all;
    const Json& ome = attributes_.contains("ome") ? attributes_["ome"] : attributes_;
    for (const Json& image : ome.value("multiscales", Json::array())) {
        const Json datasets = image.value("datasets", Json::array());
        if (datasets.empty()) {
            continue;
        }
        ZarrMultiscale scale{datasets[0].value("path", "0")};
        for (const Json& axis : image.value("axes", Json::array())) {
            const std::string name = axis.is_string() ? axis.get<std::string>() : axis.value("name", "?");
            const std::string type = axis.is_object() ? axis.value("type", "") : "";
            scale.letters += type == "time" ? 'T' : type == "channel" ? 'C' : nameAxis(name);
            scale.units.push_back(axis.is_object() ? axis.value("unit", "") : "");
        }
        scale.scales = findScales(datasets[0]);
        const std::vector<double> common = findScales(image);
        for (std::size_t i = 0; i < std::min(common.size(), scale.scales.size()); ++i) {
            scale.scales[i] *= common[i];
        }
        all.push_back(std::move(scale));
    }
    return all;
}
std::vector<fs::path> ZarrNode::listChildren() const
{
    std::vector<fs::path> children;
    std::error_code none;
    for (const auto& entry : fs::directory_iterator{path_, none}) {
        if (entry.is_directory(none) && isNode(entry.path())) {
            children.push_back(entry.path());
        }
    }
    std::sort(children.begin(), children.end(), [](const fs::path& a, const fs::path& b) {
        return isNaturallyLess(a.filename().string(), b.filename().string());
    });
    return children;
}

std::vector<ZarrImage> ZarrNode::listImages(const Source& source, int depth) const
{
    std::vector<ZarrImage> found;
    for (ZarrMultiscale& scale : parseMultiscales()) {
        fs::path path = path_ / scale.path;
        found.push_back({std::move(path), std::move(scale)});
    }
    constexpr int deepest = 4;
    if (!found.empty() || depth == deepest) {
        return found;
    }
    for (const fs::path& child : listChildren()) {
        const ZarrNode node{source, child};
        if (node.isArray()) {
            found.push_back({child});
        } else {
            const auto below = node.listImages(source, depth + 1);
            found.insert(found.end(), below.begin(), below.end());
        }
    }
    return found;
}

} // namespace orlix::files
