#include <files/ArrayReader.hpp>
#include <files/SeenSet.hpp>
#include <files/zarr/ZarrNode.hpp>

#include <blosc.h>
#include <boost/crc.hpp>
#include <zstd.h>

#include <algorithm>
#include <cstring>

namespace orlix::files
{

namespace
{

namespace fs = std::filesystem;

class ZarrReader final : public ImageReader
{
public:
    explicit ZarrReader(const Source& source)
    {
        facts_ = source.describe("OME-Zarr");
        const ZarrImage found = findArray(source);
        const ZarrNode node{source, found.path};
        if (!node.isArray()) {
            fail("its array " + found.path.filename().string() + " is not there");
        }
        folder_ = found.path;
        array_ = node.parseArray(source);
        const std::size_t dimensions = array_.sizes.size();
        for (const ZarrChunks* chunks = &array_.chunks; chunks != nullptr; chunks = chunks->inner.get()) {
            checkShape(*chunks, dimensions);
        }
        facts_.type = array_.type;
        facts_.compression = array_.compression;
        const bool isOme = found.scale.letters.size() == dimensions;
        axes_ = findArrayAxes(source, array_.sizes, isOme ? found.scale.letters : array_.letters,
                              isOme ? "OME-Zarr axes" : array_.rule);
        axes_.describe(array_.sizes, facts_);
        findLayout();
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const std::size_t dimension = axes_.dimensions[axis];
            if (dimension < found.scale.scales.size()) {
                const auto& units = found.scale.units;
                setPixelSize(facts_, axis, found.scale.scales[dimension],
                             dimension < units.size() ? units[dimension] : "");
            }
        }
    }

    void fetch(const Box& box, const PixelTarget& target) override
    {
        const Wanted wanted{axes_.place(box, target, getPixelSize(facts_.type), array_.sizes.size()), target.first};
        forEachChunk(array_.chunks, wanted,
                     [&](const std::vector<std::uint64_t>& chunk, const Wanted& part) { readChunk(chunk, part); });
    }

    std::vector<std::string> getNotes() const override
    {
        std::vector<std::string> notes = ImageReader::getNotes();
        if (const std::uint64_t missing = missing_->getSum(); missing != 0) {
            notes.push_back(facts_.path + ": " + std::to_string(missing) + " of the " +
                            std::to_string(read_->getSum()) +
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

    ZarrImage findArray(const Source& source)
    {
        const ZarrNode node{source, source.path};
        if (node.isArray()) { // its axes stand in the group that it is in
            const fs::path path = fs::weakly_canonical(source.path);
            for (const ZarrMultiscale& scale : ZarrNode(source, path.parent_path()).parseMultiscales()) {
                if (scale.path == path.filename().string()) {
                    return {path, scale};
                }
            }
            // Of another level the axes are the same, not their scales.
            for (ZarrMultiscale& scale : ZarrNode(source, path.parent_path()).parseMultiscales()) {
                return {path, {path.filename().string(), scale.letters}};
            }
            return {path};
        }
        const std::vector<ZarrImage> images = node.listImages(source);
        if (images.empty()) {
            fail("it holds no array");
        }
        for (const ZarrImage& each : images) {
            facts_.series.push_back(fs::relative(each.path, source.path).string());
        }
        const std::size_t chosen = source.chooseSeries(facts_.series, ", or name its folder");
        if (images.size() == 1) {
            facts_.series.clear();
        }
        return images[chosen];
    }

    /// What is decoded together: a chunk or, of a shard, a chunk in it.
    const ZarrChunks& getInnermost() const
    {
        const ZarrChunks* chunks = &array_.chunks;
        while (chunks->inner) {
            chunks = chunks->inner.get();
        }
        return *chunks;
    }

    void findLayout()
    {
        const ZarrChunks& chunks = getInnermost();
        const auto side = [&](std::size_t axis) {
            const std::size_t dimension = axes_.dimensions[axis];
            return dimension == ArrayAxes::none ? 1 : static_cast<std::size_t>(chunks.shape[dimension]);
        };
        layout_.block = {side(0), side(1), side(2), side(3), side(4)};
        std::uint64_t count = 1;
        for (std::size_t i = 0; i < array_.sizes.size(); ++i) {
            grid_.push_back((array_.sizes[i] + chunks.shape[i] - 1) / chunks.shape[i]);
            count *= grid_.back();
        }
        read_ = std::make_unique<SeenSet>(count);
        missing_ = std::make_unique<SeenSet>(count);
    }

    /// Counts the innermost chunks in a part of a chunk or, of a shard, of which `origin` is the first element.
    void count(const std::vector<std::uint64_t>& origin, const Wanted& part, bool isMissing)
    {
        const ZarrChunks& inner = getInnermost();
        const std::size_t dimensions = origin.size();
        std::vector<std::uint64_t> first(dimensions);
        std::vector<std::uint64_t> last(dimensions);
        for (std::size_t i = 0; i < dimensions; ++i) {
            first[i] = (origin[i] + part.dimensions[i].begin) / inner.shape[i];
            last[i] = (origin[i] + part.dimensions[i].begin + part.dimensions[i].count - 1) / inner.shape[i];
        }
        std::vector<std::uint64_t> at = first;
        for (std::size_t i = 0;;) {
            std::uint64_t number = 0;
            for (std::size_t k = 0; k < dimensions; ++k) {
                number = number * grid_[k] + at[k];
            }
            read_->add(number);
            if (isMissing) {
                missing_->add(number);
            }
            for (i = dimensions; i > 0 && at[i - 1] == last[i - 1]; --i) {
                at[i - 1] = first[i - 1];
            }
            if (i == 0) {
                return;
            }
            ++at[i - 1];
        }
    }

    void checkShape(const ZarrChunks& chunks, std::size_t dimensions) const
    {
        // In bytes, of what is decoded at once, and of a shard, which is read in parts.
        const std::uint64_t largest = std::uint64_t{1} << (chunks.inner ? 56 : 30);
        std::uint64_t bytes = getPixelSize(array_.type);
        for (const std::uint64_t side : chunks.shape) {
            if (side == 0 || __builtin_mul_overflow(bytes, side, &bytes) || bytes > largest) {
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
    static void forEachChunk(const ZarrChunks& chunks, const Wanted& wanted, Visit visit)
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
        std::vector<std::uint64_t> origin(chunk.size());
        for (std::size_t i = 0; i < chunk.size(); ++i) {
            origin[i] = chunk[i] * array_.chunks.shape[i];
        }
        std::error_code error;
        if (!fs::exists(path, error)) {
            if (error) {
                fail("its chunk " + name + " cannot be read (" + error.message() + ")");
            }
            count(origin, part, true);
            fillPart(array_.chunks, part);
            return;
        }
        const std::uint64_t size = getFileSize(path);
        const auto bytes = openBytes(path, facts_.path + ": chunk " + name);
        const auto load = [&](std::uint64_t offset, std::uint64_t count) {
            if (offset > size || count > size - offset) {
                fail("its chunk " + name + " is cut short");
            }
            ByteBlock loaded{count};
            bytes->read(offset, loaded.size(), loaded.data());
            return loaded;
        };
        if (array_.chunks.inner) {
            readShard(name, origin, size, load, part);
        } else {
            count(origin, part, false);
            copyChunk(array_.chunks, decode(array_.chunks, load(0, size), name), part);
        }
    }

    using Load = std::function<ByteBlock(std::uint64_t offset, std::uint64_t count)>;

    /// Where the chunks of a shard lie in it. The last ones that were asked for are kept.
    std::shared_ptr<const ByteBlock> findIndex(const std::string& name, std::uint64_t size, const Load& load)
    {
        {
            const std::lock_guard lock{mutex_};
            for (const auto& [shard, index] : indices_) {
                if (shard == name) {
                    return index;
                }
            }
        }
        const ZarrChunks& shard = array_.chunks;
        const std::uint64_t nbChunks = shard.nbElements() / shard.inner->nbElements();
        const std::uint64_t indexBytes = nbChunks * 16 + 4 * shard.indexCodecs.size();
        if (indexBytes > size) {
            fail("its chunk " + name + " is cut short");
        }
        auto index = std::make_shared<ByteBlock>(load(shard.isIndexAtEnd ? size - indexBytes : 0, indexBytes));
        for (std::size_t i = 0; i < shard.indexCodecs.size(); ++i) {
            checkSeal(*index, name);
        }
        constexpr std::size_t mostKept = 16;
        const std::lock_guard lock{mutex_};
        indices_.emplace_back(name, index);
        if (indices_.size() > mostKept) {
            indices_.erase(indices_.begin());
        }
        return index;
    }

    void readShard(const std::string& name, const std::vector<std::uint64_t>& origin, std::uint64_t size,
                   const Load& load, const Wanted& wanted)
    {
        const ZarrChunks& shard = array_.chunks;
        const ZarrChunks& inner = *shard.inner;
        const auto index = findIndex(name, size, load);
        forEachChunk(inner, wanted, [&](const std::vector<std::uint64_t>& chunk, const Wanted& part) {
            std::uint64_t at = 0;
            for (std::size_t i = 0; i < chunk.size(); ++i) {
                at = at * (shard.shape[i] / inner.shape[i]) + chunk[i];
            }
            std::array<std::uint64_t, 2> place{}; // offset and size
            std::memcpy(place.data(), index->data() + 16 * at, 16);
            const bool isMissing = place[0] == UINT64_MAX && place[1] == UINT64_MAX;
            std::vector<std::uint64_t> begin(origin);
            for (std::size_t i = 0; i < chunk.size(); ++i) {
                begin[i] += chunk[i] * inner.shape[i];
            }
            count(begin, part, isMissing);
            if (isMissing) {
                fillPart(inner, part);
            } else {
                copyChunk(inner, decode(inner, load(place[0], place[1]), name), part);
            }
        });
    }

    /// Takes the checksum off the end of bytes.
    void checkSeal(ByteBlock& bytes, const std::string& name) const
    {
        std::uint32_t stated = 0;
        if (bytes.size() < sizeof stated) {
            fail("its chunk " + name + " is cut short");
        }
        std::memcpy(&stated, bytes.data() + bytes.size() - sizeof stated, sizeof stated);
        bytes.shorten(bytes.size() - sizeof stated);
        constexpr std::uint32_t castagnoli = 0x1EDC6F41;
        boost::crc_optimal<32, castagnoli, 0xFFFFFFFF, 0xFFFFFFFF, true, true> crc;
        crc.process_bytes(bytes.data(), bytes.size());
        if (crc.checksum() != stated) {
            fail("its chunk " + name + " is damaged: its checksum is another");
        }
    }

    ByteBlock decode(const ZarrChunks& chunks, ByteBlock bytes, const std::string& name) const
    {
        const std::size_t size = chunks.nbElements() * getPixelSize(array_.type);
        for (auto codec = chunks.codecs.rbegin(); codec != chunks.codecs.rend(); ++codec) {
            if (*codec == "crc32c") {
                checkSeal(bytes, name);
                continue;
            }
            // A checksum may lie inside what is compressed.
            const auto seals = static_cast<std::size_t>(std::count_if(
                chunks.codecs.begin(), codec.base() - 1, [](const std::string& each) { return each == "crc32c"; }));
            const ByteBlock decoded{size + 4 * seals};
            if (!decompressChunk(*codec, bytes, decoded)) {
                fail("its chunk " + name + " is damaged: it holds no " + std::to_string(decoded.size()) +
                     " bytes compressed with " + *codec);
            }
            bytes = decoded;
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

    static bool decompressChunk(const std::string& method, const ByteBlock& from, const ByteBlock& to)
    {
        if (method == "blosc") {
            std::size_t size = 0;
            return ::blosc_cbuffer_validate(from.data(), from.size(), &size) == 0 && size == to.size() &&
                   ::blosc_decompress_ctx(from.data(), to.data(), to.size(), 1) == static_cast<int>(to.size());
        }
        if (method == "zstd") {
            struct Free
            {
                void operator()(::ZSTD_DCtx* decoder) const { ::ZSTD_freeDCtx(decoder); }
            };
            static thread_local const std::unique_ptr<::ZSTD_DCtx, Free> decoder{::ZSTD_createDCtx()};
            return ::ZSTD_decompressDCtx(decoder.get(), to.data(), to.size(), from.data(), from.size()) == to.size();
        }
        return decompress(method == "bz2" ? "bzip2" : method, from.data(), from.size(), to.data(), to.size());
    }

    /// Distances between the elements of a chunk along each dimension.
    std::vector<std::int64_t> findStrides(const ZarrChunks& chunks) const
    {
        std::vector<std::int64_t> strides(chunks.shape.size());
        auto stride = static_cast<std::int64_t>(getPixelSize(array_.type));
        for (std::size_t i = chunks.order.size(); i-- > 0;) {
            strides[chunks.order[i]] = stride;
            stride *= static_cast<std::int64_t>(chunks.shape[chunks.order[i]]);
        }
        return strides;
    }

    void copyChunk(const ZarrChunks& chunks, const ByteBlock& elements, const Wanted& part) const
    {
        const std::vector<std::int64_t> strides = findStrides(chunks);
        std::int64_t offset = 0;
        for (std::size_t i = 0; i < strides.size(); ++i) {
            offset += static_cast<std::int64_t>(part.dimensions[i].begin) * strides[i];
        }
        copyElements(elements.data() + offset, strides, part);
    }

    void fillPart(const ZarrChunks& chunks, const Wanted& part) const
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
    ZarrArray array_;
    ArrayAxes axes_;
    std::vector<std::uint64_t> grid_; // chunks along each dimension
    std::unique_ptr<SeenSet> read_;
    std::unique_ptr<SeenSet> missing_;
    std::mutex mutex_;
    std::vector<std::pair<std::string, std::shared_ptr<const ByteBlock>>> indices_; // by shard
};
} // namespace

ReaderPtr openZarr(const Source& source)
{
    try {
        return std::make_unique<ZarrReader>(source);
    } catch (const nlohmann::json::exception& error) {
        source.fail(std::string{"its Zarr metadata are damaged ("} + error.what() + ")");
    }
}

} // namespace orlix::files
