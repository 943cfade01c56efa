#include <files/ArrayReader.hpp>
#include <files/Errors.hpp>

#include <blosc.h>
#include <boost/crc.hpp>
#include <nlohmann/json.hpp>
#include <zstd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <functional>
#include <limits>
#include <numeric>

namespace orlix::files
{

namespace
{

namespace fs = std::filesystem;
using Json = nlohmann::json;

/// How the bytes of a chunk were compressed, or sealed.
struct Codec
{
    std::string name;
};

/// How an array, or a shard of one, is cut into chunks, and what became of each.
struct Chunks
{
    std::vector<std::uint64_t> shape; ///< of a chunk, in elements
    std::vector<std::size_t> order{}; ///< of its dimensions as they are stored, slowest first
    bool isSwapped = false;
    std::vector<Codec> codecs{}; ///< as they were applied
    // A chunk that is a shard holds chunks itself, and an index of them.
    std::shared_ptr<Chunks> inner{};
    std::vector<Codec> indexCodecs{};
    bool isIndexAtEnd = true;

    std::uint64_t nbElements() const
    {
        return std::accumulate(shape.begin(), shape.end(), std::uint64_t{1}, std::multiplies<>{});
    }
};

/// An array as its metadata describe it.
struct Array
{
    std::vector<std::uint64_t> sizes;
    StoredType type = StoredType::UInt8;
    std::vector<std::byte> fill{}; ///< one element, in this machine's order of bytes
    Chunks chunks;
    std::string prefix{};    ///< of the names of chunks
    std::string separator{}; ///< in them
    std::string letters{};   ///< of the dimensions; empty: not stated
    std::string rule{};
    std::string compression = "none";
};

Json readJson(const Source& source, const fs::path& path)
{
    const std::string text = readText(path.string(), path.string());
    Json json = Json::parse(text, nullptr, false);
    if (!json.is_object()) {
        source.fail("its " + path.filename().string() + " is no JSON");
    }
    return json;
}

StoredType findType(const Source& source, NumberKind kind, std::size_t bytes, const std::string& name)
{
    const auto type = findStoredType(kind, bytes);
    if (!type) {
        source.fail("its elements of type " + name + " are not read: numbers are");
    }
    return *type;
}

std::vector<std::byte> makeFill(const Json& value, StoredType type)
{
    double number = 0;
    if (value.is_number()) {
        number = value.get<double>();
    } else if (value.is_boolean()) {
        number = value.get<bool>() ? 1 : 0;
    } else if (value.is_string()) {
        const auto text = value.get<std::string>();
        number = std::strtod(text.c_str(), nullptr); // "NaN", "Infinity", "-Infinity", "0x..." of integers
    }
    std::vector<std::byte> fill(getPixelSize(type));
    if (type == StoredType::Float16) {
        return fill; // zero, as nothing is converted to half floats
    }
    convertPixels(reinterpret_cast<const std::byte*>(&number), StoredType::Float64, fill.data(), type, 1);
    return fill;
}

constexpr std::array readCodecs{"blosc", "zstd", "gzip", "zlib", "bz2", "crc32c"};

void addCodec(const Source& source, const std::string& name, std::vector<Codec>& codecs)
{
    if (std::find(readCodecs.begin(), readCodecs.end(), name) == readCodecs.end()) {
        source.fail("its chunks are compressed with " + name +
                    ", which is not read: blosc, zstd, gzip, zlib and bz2 are");
    }
    codecs.push_back({name});
}

std::vector<std::size_t> countUp(std::size_t count)
{
    std::vector<std::size_t> order(count);
    std::iota(order.begin(), order.end(), std::size_t{0});
    return order;
}

Array parseVersion2(const Source& source, const Json& json)
{
    Array array;
    array.sizes = json.at("shape").get<std::vector<std::uint64_t>>();
    array.chunks.shape = json.at("chunks").get<std::vector<std::uint64_t>>();
    const Json& dtype = json.at("dtype");
    if (!dtype.is_string() || dtype.get<std::string>().size() < 3) {
        source.fail("its elements are records, not numbers");
    }
    const auto name = dtype.get<std::string>();
    const auto bytes = static_cast<std::size_t>(std::strtoul(name.c_str() + 2, nullptr, 10));
    array.type = name[1] == 'b' ? StoredType::Binary
                                : findType(source,
                                           name[1] == 'u'   ? NumberKind::Unsigned
                                           : name[1] == 'i' ? NumberKind::Signed
                                                            : NumberKind::Float,
                                           name[1] == 'u' || name[1] == 'i' || name[1] == 'f' ? bytes : 0, name);
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
void parseCodecs(const Source& source, const Json& list, Chunks& chunks, std::string& compression)
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
            chunks.inner = std::make_shared<Chunks>();
            chunks.inner->shape = configuration.at("chunk_shape").get<std::vector<std::uint64_t>>();
            parseCodecs(source, configuration.at("codecs"), *chunks.inner, compression);
            Chunks index;
            std::string none;
            parseCodecs(source, configuration.at("index_codecs"), index, none);
            chunks.indexCodecs = index.codecs;
            if (index.isSwapped || std::any_of(index.codecs.begin(), index.codecs.end(),
                                               [](const Codec& each) { return each.name != "crc32c"; })) {
                source.fail("the indices of its shards are compressed or big-endian, which is not read");
            }
            chunks.isIndexAtEnd = configuration.value("index_location", "end") == "end";
        } else {
            addCodec(source, name, chunks.codecs);
            compression = name == "crc32c" ? compression : name;
        }
    }
}

Array parseVersion3(const Source& source, const Json& json)
{
    Array array;
    array.sizes = json.at("shape").get<std::vector<std::uint64_t>>();
    if (!json.at("data_type").is_string()) {
        source.fail("its elements are no numbers");
    }
    const auto name = json["data_type"].get<std::string>();
    const std::size_t digits = name.find_first_of("0123456789");
    const std::string kind = name.substr(0, digits);
    const std::size_t bits = digits == std::string::npos ? 0 : std::strtoul(name.c_str() + digits, nullptr, 10);
    const bool isNumber = kind == "uint" || kind == "int" || kind == "float";
    array.type = name == "bool" ? StoredType::Binary
                                : findType(source,
                                           kind == "uint"  ? NumberKind::Unsigned
                                           : kind == "int" ? NumberKind::Signed
                                                           : NumberKind::Float,
                                           isNumber ? bits / 8 : 0, name);
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
            array.letters += each.is_string() && !each.get<std::string>().empty() ? each.get<std::string>()[0] : '?';
        }
        array.rule = "Zarr dimension names";
    }
    return array;
}

/// What a multiscale image of OME-Zarr says of its arrays.
struct Multiscale
{
    std::string path; ///< of the array of full resolution
    std::string letters{};
    std::vector<double> scales{};
    std::vector<std::string> units{};
};

std::vector<double> findScales(const Json& transformed)
{
    for (const Json& each : transformed.value("coordinateTransformations", Json::array())) {
        if (each.value("type", "") == "scale" && each.contains("scale")) {
            return each["scale"].get<std::vector<double>>();
        }
    }
    return {};
}

/// The multiscale images that attributes describe.
std::vector<Multiscale> parseMultiscales(const Json& attributes)
{
    std::vector<Multiscale> all;
    const Json& ome = attributes.contains("ome") ? attributes["ome"] : attributes;
    for (const Json& image : ome.value("multiscales", Json::array())) {
        const Json datasets = image.value("datasets", Json::array());
        if (datasets.empty()) {
            continue;
        }
        Multiscale scale{datasets[0].value("path", "0")};
        for (const Json& axis : image.value("axes", Json::array())) {
            const std::string name = axis.is_string() ? axis.get<std::string>() : axis.value("name", "?");
            const std::string type = axis.is_object() ? axis.value("type", "") : "";
            scale.letters += type == "time" ? 'T' : type == "channel" ? 'C' : name.empty() ? '?' : name[0];
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

/// A folder of a Zarr hierarchy: an array, or a group.
class Node
{
public:
    Node(const Source& source, const fs::path& path) : path_{path}
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

    const fs::path& getPath() const { return path_; }
    const Json& getAttributes() const { return attributes_; }
    bool isArray() const { return isArray_; }
    Array parseArray(const Source& source) const
    {
        Array array = version_ == 3 ? parseVersion3(source, json_) : parseVersion2(source, json_);
        if (array.letters.empty() && attributes_.contains("_ARRAY_DIMENSIONS")) {
            for (const Json& name : attributes_["_ARRAY_DIMENSIONS"]) {
                array.letters +=
                    name.is_string() && !name.get<std::string>().empty() ? name.get<std::string>()[0] : '?';
            }
            array.rule = "_ARRAY_DIMENSIONS";
        }
        return array;
    }

    static bool exists(const fs::path& path)
    {
        return fs::exists(path / "zarr.json") || fs::exists(path / ".zarray") || fs::exists(path / ".zgroup");
    }
    /// The folders below, by name, that are arrays or groups.
    std::vector<fs::path> listChildren() const
    {
        std::vector<fs::path> children;
        std::error_code none;
        for (const auto& entry : fs::directory_iterator{path_, none}) {
            if (entry.is_directory(none) && exists(entry.path())) {
                children.push_back(entry.path());
            }
        }
        std::sort(children.begin(), children.end());
        return children;
    }

private:
    fs::path path_;
    Json json_ = Json::object();
    Json attributes_ = Json::object();
    bool isArray_ = false;
    int version_ = 2;
};

/// An array, and what the group that it is in says of it.
struct Found
{
    fs::path path;
    Multiscale scale{};
};

/// The images below a group: its multiscales, else those of its groups and its arrays.
std::vector<Found> listImages(const Source& source, const Node& group, int depth = 0)
{
    std::vector<Found> found;
    for (Multiscale& scale : parseMultiscales(group.getAttributes())) {
        fs::path path = group.getPath() / scale.path;
        found.push_back({std::move(path), std::move(scale)});
    }
    constexpr int deepest = 4;
    if (!found.empty() || depth == deepest) {
        return found;
    }
    for (const fs::path& child : group.listChildren()) {
        const Node node{source, child};
        if (node.isArray()) {
            found.push_back({child});
        } else {
            const auto below = listImages(source, node, depth + 1);
            found.insert(found.end(), below.begin(), below.end());
        }
    }
    return found;
}

class ZarrReader final : public ImageReader
{
public:
    explicit ZarrReader(const Source& source)
    {
        facts_ = source.describe("OME-Zarr");
        const Found found = findArray(source);
        const Node node{source, found.path};
        if (!node.isArray()) {
            fail("its array " + found.path.filename().string() + " is not there");
        }
        folder_ = found.path;
        array_ = node.parseArray(source);
        const std::size_t dimensions = array_.sizes.size();
        for (const Chunks* chunks = &array_.chunks; chunks != nullptr; chunks = chunks->inner.get()) {
            checkShape(*chunks, dimensions);
        }
        facts_.type = array_.type;
        facts_.compression = array_.compression;
        const bool isOme = found.scale.letters.size() == dimensions;
        axes_ = findArrayAxes(source, array_.sizes, isOme ? found.scale.letters : array_.letters,
                              isOme ? "OME-Zarr axes" : array_.rule);
        facts_.geometry = axes_.getGeometry(array_.sizes);
        facts_.axes = axes_.letters;
        facts_.axesRule = axes_.rule;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const std::size_t dimension = axes_.dimensions[axis];
            if (dimension < found.scale.scales.size()) {
                facts_.pixelSize[axis] = found.scale.scales[dimension];
                facts_.unit = dimension < found.scale.units.size() ? found.scale.units[dimension] : "";
            }
        }
        facts_.unit = facts_.unit == "micrometer" ? "um" : facts_.unit;
    }

    void read(const Box& box, const PixelTarget& target) override
    {
        const Wanted wanted{axes_.place(box, target, getPixelSize(facts_.type), array_.sizes.size()), target.first};
        forEachChunk(array_.chunks, wanted,
                     [&](const std::vector<std::uint64_t>& chunk, const Wanted& part) { readChunk(chunk, part); });
    }

    std::vector<std::string> getNotes() const override
    {
        std::vector<std::string> notes = ImageReader::getNotes();
        if (missing_ != 0) {
            notes.push_back(facts_.path + ": " + std::to_string(missing_) + " of the " + std::to_string(chunksRead_) +
                            " chunks that were read are not there, which stands for the fill value");
        }
        return notes;
    }

private:
    /// Elements of an array, or of a chunk, that are wanted.
    struct Wanted
    {
        std::vector<ArrayRange> dimensions;
        std::byte* to;
    };

    Found findArray(const Source& source)
    {
        const Node node{source, source.path};
        if (node.isArray()) { // its axes stand in the group that it is in
            const fs::path path = fs::weakly_canonical(source.path);
            for (const Multiscale& scale : parseMultiscales(Node{source, path.parent_path()}.getAttributes())) {
                if (scale.path == path.filename().string()) {
                    return {path, scale};
                }
            }
            // Of another level the axes are the same, not their scales.
            for (Multiscale& scale : parseMultiscales(Node{source, path.parent_path()}.getAttributes())) {
                return {path, {path.filename().string(), scale.letters}};
            }
            return {path};
        }
        const std::vector<Found> images = listImages(source, node);
        if (images.empty()) {
            fail("it holds no array");
        }
        for (const Found& each : images) {
            facts_.series.push_back(fs::relative(each.path, source.path).string());
        }
        const std::size_t chosen = source.chooseSeries(facts_.series, ", or name its folder");
        if (images.size() == 1) {
            facts_.series.clear();
        }
        return images[chosen];
    }

    void checkShape(const Chunks& chunks, std::size_t dimensions) const
    {
        constexpr std::uint64_t largest = std::uint64_t{1} << 33; // bytes
        std::uint64_t bytes = getPixelSize(array_.type);
        for (const std::uint64_t side : chunks.shape) {
            if (side == 0 || __builtin_mul_overflow(bytes, side, &bytes) || (bytes > largest && !chunks.inner)) {
                fail("its chunks are of no size that can be read");
            }
        }
        bool divides = chunks.shape.size() == dimensions;
        for (std::size_t i = 0; divides && chunks.inner && i < dimensions; ++i) {
            const auto& inner = chunks.inner->shape;
            divides = i < inner.size() && inner[i] != 0 && chunks.shape[i] % inner[i] == 0;
        }
        if (!divides) {
            fail("its chunks do not fit its shape");
        }
    }

    /// Calls `visit(chunk, part)` for every chunk that holds wanted elements: its place in the grid, and what of it is
    /// wanted.
    template <class Visit>
    static void forEachChunk(const Chunks& chunks, const Wanted& wanted, Visit visit)
    {
        const std::size_t count = wanted.dimensions.size();
        std::vector<std::uint64_t> first(count);
        std::vector<std::uint64_t> last(count);
        for (std::size_t i = 0; i < count; ++i) {
            const ArrayRange& dimension = wanted.dimensions[i];
            first[i] = dimension.begin / chunks.shape[i];
            last[i] = (dimension.begin + dimension.count - 1) / chunks.shape[i];
        }
        std::vector<std::uint64_t> chunk = first;
        for (;;) {
            Wanted part{std::vector<ArrayRange>(count), wanted.to};
            for (std::size_t i = 0; i < count; ++i) {
                const ArrayRange& dimension = wanted.dimensions[i];
                const std::uint64_t origin = chunk[i] * chunks.shape[i];
                const std::uint64_t begin = std::max(origin, dimension.begin);
                const std::uint64_t end = std::min(origin + chunks.shape[i], dimension.begin + dimension.count);
                part.dimensions[i] = {begin - origin, end - begin, dimension.stride};
                part.to += static_cast<std::ptrdiff_t>(begin - dimension.begin) * dimension.stride;
            }
            visit(chunk, part);
            std::size_t i = count;
            while (i > 0 && chunk[i - 1] == last[i - 1]) {
                chunk[i - 1] = first[i - 1];
                --i;
            }
            if (i == 0) {
                return;
            }
            ++chunk[i - 1];
        }
    }

    void readChunk(const std::vector<std::uint64_t>& chunk, const Wanted& part)
    {
        std::string name = array_.prefix;
        for (std::size_t i = 0; i < chunk.size(); ++i) {
            name += (i == 0 ? "" : array_.separator) + std::to_string(chunk[i]);
        }
        const std::string path = (folder_ / name).string();
        ++chunksRead_;
        std::error_code none;
        if (!fs::exists(path, none)) {
            ++missing_;
            fillPart(array_.chunks, part);
            return;
        }
        const std::uint64_t size = getFileSize(path);
        const auto bytes = openBytes(path, facts_.path + ": chunk " + name);
        const auto load = [&](std::uint64_t offset, std::uint64_t count) {
            if (offset > size || count > size - offset) {
                fail("its chunk " + name + " is cut short");
            }
            std::vector<std::byte> loaded(count);
            bytes->read(offset, loaded.size(), loaded.data());
            return loaded;
        };
        if (array_.chunks.inner) {
            readShard(array_.chunks, name, size, load, part);
        } else {
            copyChunk(array_.chunks, decode(array_.chunks, load(0, size), name), part);
        }
    }

    using Load = std::function<std::vector<std::byte>(std::uint64_t offset, std::uint64_t count)>;

    void readShard(const Chunks& shard, const std::string& name, std::uint64_t size, const Load& load,
                   const Wanted& wanted)
    {
        const Chunks& inner = *shard.inner;
        const std::uint64_t count = shard.nbElements() / inner.nbElements();
        const std::uint64_t indexBytes = count * 16 + 4 * shard.indexCodecs.size();
        if (indexBytes > size) {
            fail("its chunk " + name + " is cut short");
        }
        std::vector<std::byte> index = load(shard.isIndexAtEnd ? size - indexBytes : 0, indexBytes);
        for (std::size_t i = 0; i < shard.indexCodecs.size(); ++i) {
            checkSeal(index, name);
        }
        forEachChunk(inner, wanted, [&](const std::vector<std::uint64_t>& chunk, const Wanted& part) {
            std::uint64_t at = 0;
            for (std::size_t i = 0; i < chunk.size(); ++i) {
                at = at * (shard.shape[i] / inner.shape[i]) + chunk[i];
            }
            std::array<std::uint64_t, 2> place{}; // offset and size
            std::memcpy(place.data(), index.data() + 16 * at, 16);
            ++chunksRead_;
            if (place[0] == UINT64_MAX && place[1] == UINT64_MAX) {
                ++missing_;
                fillPart(inner, part);
            } else {
                copyChunk(inner, decode(inner, load(place[0], place[1]), name), part);
            }
        });
    }

    /// Takes the checksum off the end of bytes.
    void checkSeal(std::vector<std::byte>& bytes, const std::string& name) const
    {
        std::uint32_t stated = 0;
        if (bytes.size() < sizeof stated) {
            fail("its chunk " + name + " is cut short");
        }
        std::memcpy(&stated, bytes.data() + bytes.size() - sizeof stated, sizeof stated);
        bytes.resize(bytes.size() - sizeof stated);
        constexpr std::uint32_t castagnoli = 0x1EDC6F41;
        boost::crc_optimal<32, castagnoli, 0xFFFFFFFF, 0xFFFFFFFF, true, true> crc;
        crc.process_bytes(bytes.data(), bytes.size());
        if (crc.checksum() != stated) {
            fail("its chunk " + name + " is damaged: its checksum is another");
        }
    }

    std::vector<std::byte> decode(const Chunks& chunks, std::vector<std::byte> bytes, const std::string& name) const
    {
        const std::size_t size = chunks.nbElements() * getPixelSize(array_.type);
        for (auto codec = chunks.codecs.rbegin(); codec != chunks.codecs.rend(); ++codec) {
            if (codec->name == "crc32c") {
                checkSeal(bytes, name);
                continue;
            }
            // A checksum may lie inside what is compressed.
            const auto seals = static_cast<std::size_t>(std::count_if(
                chunks.codecs.begin(), codec.base() - 1, [](const Codec& each) { return each.name == "crc32c"; }));
            std::vector<std::byte> decoded(size + 4 * seals);
            if (!decompressChunk(codec->name, bytes, decoded)) {
                fail("its chunk " + name + " is damaged: it holds no " + std::to_string(decoded.size()) +
                     " bytes compressed with " + codec->name);
            }
            bytes = std::move(decoded);
        }
        if (bytes.size() != size) {
            fail("its chunk " + name + " has " + std::to_string(bytes.size()) + " bytes, where " +
                 std::to_string(size) + " are needed");
        }
        if (chunks.isSwapped) {
            swapBytes(bytes.data(), getPixelSize(array_.type), bytes.size() / getPixelSize(array_.type));
        }
        return bytes;
    }

    static bool decompressChunk(const std::string& method, const std::vector<std::byte>& from,
                                std::vector<std::byte>& to)
    {
        if (method == "blosc") {
            std::size_t size = 0;
            return ::blosc_cbuffer_validate(from.data(), from.size(), &size) == 0 && size == to.size() &&
                   ::blosc_decompress_ctx(from.data(), to.data(), to.size(), 1) == static_cast<int>(to.size());
        }
        if (method == "zstd") {
            return ::ZSTD_decompress(to.data(), to.size(), from.data(), from.size()) == to.size();
        }
        return decompress(method == "bz2" ? "bzip2" : method, from.data(), from.size(), to.data(), to.size());
    }

    /// Distances between the elements of a chunk along each dimension.
    std::vector<std::int64_t> findStrides(const Chunks& chunks) const
    {
        std::vector<std::int64_t> strides(chunks.shape.size());
        auto stride = static_cast<std::int64_t>(getPixelSize(array_.type));
        for (std::size_t i = chunks.order.size(); i-- > 0;) {
            strides[chunks.order[i]] = stride;
            stride *= static_cast<std::int64_t>(chunks.shape[chunks.order[i]]);
        }
        return strides;
    }

    void copyChunk(const Chunks& chunks, const std::vector<std::byte>& elements, const Wanted& part) const
    {
        const std::vector<std::int64_t> strides = findStrides(chunks);
        std::int64_t offset = 0;
        for (std::size_t i = 0; i < strides.size(); ++i) {
            offset += static_cast<std::int64_t>(part.dimensions[i].begin) * strides[i];
        }
        copyElements(elements.data() + offset, strides, part);
    }

    void fillPart(const Chunks& chunks, const Wanted& part) const
    {
        copyElements(array_.fill.data(), std::vector<std::int64_t>(chunks.shape.size(), 0), part);
    }

    void copyElements(const std::byte* from, const std::vector<std::int64_t>& strides, const Wanted& part) const
    {
        std::array<Stretch, 5> axes{}; // no more than five are longer than one element
        std::size_t next = 0;
        for (std::size_t i = 0; i < strides.size(); ++i) {
            if (part.dimensions[i].count > 1) {
                axes[next++] = {part.dimensions[i].count, strides[i], part.dimensions[i].stride};
            }
        }
        copyPixels(from, part.to, getPixelSize(array_.type), axes);
    }

    fs::path folder_;
    Array array_;
    ArrayAxes axes_;
    std::uint64_t chunksRead_ = 0;
    std::uint64_t missing_ = 0;
};

} // namespace

ReaderPtr openZarr(const Source& source)
{
    try {
        return std::make_unique<ZarrReader>(source);
    } catch (const Json::exception& error) {
        source.fail(std::string{"its Zarr metadata are damaged ("} + error.what() + ")");
    }
}

} // namespace orlix::files
