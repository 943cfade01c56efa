#include <files/ArrayReader.hpp>
#include <files/Names.hpp>

#include <hdf5.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <bit>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <mutex>
#include <unistd.h>
#include <utility>

namespace orlix::files
{

namespace
{

/// An identifier of the library that is closed when it is gone.
class Handle
{
public:
    Handle(hid_t id, herr_t (*close)(hid_t)) : id_{id}, close_{close} {}
    Handle(Handle&& other) noexcept : id_{std::exchange(other.id_, H5I_INVALID_HID)}, close_{other.close_} {}
    Handle& operator=(Handle&& other) noexcept
    {
        std::swap(id_, other.id_);
        std::swap(close_, other.close_);
        return *this;
    }
    ~Handle()
    {
        if (id_ >= 0) {
            close_(id_);
        }
    }

    hid_t get() const { return id_; }
    explicit operator bool() const { return id_ >= 0; }

private:
    hid_t id_;
    herr_t (*close_)(hid_t);
};

std::vector<hsize_t> getSizes(hid_t dataset)
{
    const Handle space{::H5Dget_space(dataset), &::H5Sclose};
    const int count = ::H5Sget_simple_extent_ndims(space.get());
    std::vector<hsize_t> sizes(count > 0 ? static_cast<std::size_t>(count) : 0);
    if (!sizes.empty()) {
        ::H5Sget_simple_extent_dims(space.get(), sizes.data(), nullptr);
    }
    return sizes;
}

/// An attribute of any kind as texts, numbers among them as they are printed; none where there is no such attribute.
std::vector<std::string> readAttribute(hid_t object, const char* name)
{
    if (::H5Aexists(object, name) <= 0) {
        return {};
    }
    const Handle attribute{::H5Aopen(object, name, H5P_DEFAULT), &::H5Aclose};
    const Handle type{::H5Aget_type(attribute.get()), &::H5Tclose};
    const Handle space{::H5Aget_space(attribute.get()), &::H5Sclose};
    const hssize_t points = ::H5Sget_simple_extent_npoints(space.get());
    constexpr hssize_t most = 64;
    if (points < 1 || points > most) {
        return {};
    }
    const auto count = static_cast<std::size_t>(points);
    std::vector<std::string> texts;
    if (::H5Tget_class(type.get()) != H5T_STRING) {
        std::vector<double> numbers(count);
        if (::H5Aread(attribute.get(), H5T_NATIVE_DOUBLE, numbers.data()) >= 0) {
            for (const double number : numbers) {
                texts.push_back(nlohmann::json(number).dump());
            }
        }
    } else if (::H5Tis_variable_str(type.get()) > 0) {
        const Handle memory{::H5Tcopy(type.get()), &::H5Tclose};
        std::vector<char*> strings(count, nullptr);
        if (::H5Aread(attribute.get(), memory.get(), strings.data()) >= 0) {
            for (const char* const string : strings) {
                texts.emplace_back(string == nullptr ? "" : string);
            }
            ::H5Dvlen_reclaim(memory.get(), space.get(), H5P_DEFAULT, strings.data());
        }
    } else {
        const std::size_t size = ::H5Tget_size(type.get());
        std::string bytes(size * count, '\0');
        if (::H5Aread(attribute.get(), type.get(), bytes.data()) >= 0) {
            for (std::size_t i = 0; i < count; ++i) {
                texts.emplace_back(bytes.substr(i * size, size).c_str());
            }
        }
    }
    return texts;
}

/// Whether the bits of a float of two bytes are those of IEEE 754.
bool isHalf(hid_t type)
{
    std::size_t sign = 0;
    std::size_t exponentAt = 0;
    std::size_t exponent = 0;
    std::size_t fractionAt = 0;
    std::size_t fraction = 0;
    constexpr std::size_t exponentBits = 5;
    constexpr std::size_t fractionBits = 10;
    return ::H5Tget_fields(type, &sign, &exponentAt, &exponent, &fractionAt, &fraction) >= 0 &&
           exponent == exponentBits && fraction == fractionBits;
}

/// Whether an enumeration holds 0 and 1 alone, as truth values are written.
bool isTruthValue(hid_t type)
{
    bool isOne = ::H5Tget_size(type) == 1 && ::H5Tget_nmembers(type) == 2;
    for (unsigned i = 0; i < 2 && isOne; ++i) {
        std::uint8_t value = 0;
        isOne = ::H5Tget_member_value(type, i, &value) >= 0 && value <= 1;
    }
    return isOne;
}

/// The type of a dataset's elements; none if they are no numbers.
std::optional<StoredType> findType(hid_t dataset)
{
    const Handle type{::H5Dget_type(dataset), &::H5Tclose};
    const std::size_t size = ::H5Tget_size(type.get());
    switch (::H5Tget_class(type.get())) {
    case H5T_INTEGER:
        return findStoredType(::H5Tget_sign(type.get()) == H5T_SGN_NONE ? NumberKind::Unsigned : NumberKind::Signed,
                              std::bit_ceil(size));
    case H5T_FLOAT:
        return size != 2 || isHalf(type.get()) ? findStoredType(NumberKind::Float, size) : std::nullopt;
    case H5T_ENUM:
        return isTruthValue(type.get()) ? std::optional{StoredType::Binary} : std::nullopt;
    default:
        return std::nullopt;
    }
}

bool isImage(hid_t dataset)
{
    const auto sizes = getSizes(dataset);
    const auto kind = readAttribute(dataset, "CLASS");
    return sizes.size() >= 2 && findType(dataset) && !(kind.size() == 1 && kind[0] == "DIMENSION_SCALE");
}

/// The datasets below a group that may be images.
std::vector<std::string> listImages(hid_t group, const std::string& prefix)
{
    struct Found
    {
        const std::string& prefix;
        std::vector<std::string> paths{};
    } found{prefix};
    const auto visit = [](hid_t from, const char* name, const H5O_info_t* info, void* data) -> herr_t {
        if (info->type == H5O_TYPE_DATASET) {
            const Handle dataset{::H5Dopen2(from, name, H5P_DEFAULT), &::H5Dclose};
            if (dataset && isImage(dataset.get())) {
                auto& all = *static_cast<Found*>(data);
                all.paths.push_back(all.prefix + "/" + name);
            }
        }
        return 0;
    };
    ::H5Ovisit2(group, H5_INDEX_NAME, H5_ITER_INC, visit, &found, H5O_INFO_BASIC);
    return found.paths;
}

std::string describeDataset(hid_t file, const std::string& path)
{
    const Handle dataset{::H5Dopen2(file, path.c_str(), H5P_DEFAULT), &::H5Dclose};
    std::string text = path + " (";
    for (const hsize_t size : getSizes(dataset.get())) {
        text += (text.back() == '(' ? "" : " x ") + std::to_string(size);
    }
    const auto type = findType(dataset.get());
    return text + (type ? std::string{" "} + getName(*type) : "") + ")";
}

/// The letters that a dataset gives its dimensions, and what gave them.
std::pair<std::string, std::string> findLetters(hid_t dataset)
{
    std::string letters;
    if (const auto tags = readAttribute(dataset, "axistags"); tags.size() == 1) {
        const auto json = parseJson(tags[0]);
        if (json.is_object() && json.contains("axes") && json["axes"].is_array()) {
            for (const auto& axis : json["axes"]) {
                const std::string key = axis.is_object() ? axis.value("key", "?") : "?";
                letters += nameAxis(key);
            }
            return {letters, "axistags"};
        }
    }
    bool isNamed = false;
    for (const std::string& label : readAttribute(dataset, "DIMENSION_LABELS")) {
        letters += nameAxis(label);
        isNamed = isNamed || !label.empty();
    }
    return isNamed ? std::pair{letters, std::string{"dimension labels"}} : std::pair<std::string, std::string>{};
}

/// The library runs one call at a time, and prints no errors.
class LibraryLock
{
public:
    LibraryLock() : lock_{getMutex()} { ::H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr); } // of this thread

private:
    static std::recursive_mutex& getMutex()
    {
        static std::recursive_mutex mutex;
        return mutex;
    }

    std::lock_guard<std::recursive_mutex> lock_;
};

class Hdf5Reader final : public ImageReader
{
public:
    explicit Hdf5Reader(const Source& source)
        : folder_{std::filesystem::path{source.path}.parent_path()}, file_{open(source.path), &::H5Fclose}
    {
        facts_ = source.describe("HDF5");
        if (!file_) {
            fail("it is a damaged HDF5 file, or one cut short");
        }
        openDataset(source);
        const auto type = findType(dataset_.get());
        if (!type) {
            fail("its elements are no numbers, but records, texts or the like");
        }
        facts_.type = *type;
        const std::vector<hsize_t> sizes = getSizes(dataset_.get());
        const auto [letters, rule] = findLetters(dataset_.get());
        axes_ = findArrayAxes(source, {sizes.begin(), sizes.end()}, letters, rule);
        axes_.describe({sizes.begin(), sizes.end()}, facts_);
        if (const std::string doubt = describeColourDoubt(facts_); !doubt.empty()) {
            note(doubt);
        }
        findPixelSize();
        const auto number = [&](const char* name, double otherwise) {
            const auto texts = readAttribute(dataset_.get(), name);
            return texts.size() == 1 ? std::strtod(texts[0].c_str(), nullptr) : otherwise;
        };
        facts_.scale = {number("scale_factor", 1), number("add_offset", 0)};
        findStorage(source, sizes);
    }

    ~Hdf5Reader() override
    {
        const LibraryLock lock;
        for (Handle* const each : {&memoryType_, &dataset_, &file_}) {
            *each = Handle{H5I_INVALID_HID, &::H5Fclose};
        }
    }

    void fetch(const Box& box, const PixelTarget& target) override
    {
        if (contiguous_) {
            contiguous_->fetch(box, target);
            return;
        }
        const std::vector<ArrayRange> wanted = axes_.place(box, target, getPixelSize(facts_.type), chunk_.size());
        if (decodesChunks_) {
            forEachChunk(wanted, target.first);
            return;
        }
        const LibraryLock lock;
        readBlock(wanted, target.first);
    }

private:
    /// The library does not open what has no name, such as standard input that was a pipe: it gets one for that moment.
    static hid_t open(const std::string& path)
    {
        namespace fs = std::filesystem;
        std::error_code none;
        if (!path.starts_with("/proc/self/fd/") || fs::exists(fs::read_symlink(path, none), none)) {
            return ::H5Fopen(path.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT);
        }
        const std::string name = fs::temp_directory_path() / ("orlix-" + std::to_string(::getpid()) + ".h5");
        if (::linkat(AT_FDCWD, path.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) != 0) {
            return H5I_INVALID_HID;
        }
        const hid_t file = ::H5Fopen(name.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT);
        fs::remove(name, none);
        return file;
    }

    void openDataset(const Source& source)
    {
        std::string path = source.inner;
        const std::string group = path.empty() ? "/" : path;
        if (path.empty() || isGroup(path)) {
            const Handle root{::H5Gopen2(file_.get(), group.c_str(), H5P_DEFAULT), &::H5Gclose};
            const std::vector<std::string> paths = listImages(root.get(), group == "/" ? "" : group);
            if (paths.empty()) {
                fail("it holds no array of numbers with two dimensions or more");
            }
            for (const std::string& each : paths) {
                facts_.series.push_back(describeDataset(file_.get(), each));
            }
            const std::size_t chosen =
                source.chooseSeries(facts_.series, ", or name one as " + source.name + ":" + paths[0]);
            path = paths[chosen];
            if (paths.size() == 1) {
                facts_.series.clear();
            }
        }
        constexpr std::size_t cacheBytes = std::size_t{64} << 20;
        constexpr std::size_t cacheSlots = 12421;
        const Handle access{::H5Pcreate(H5P_DATASET_ACCESS), &::H5Pclose};
        ::H5Pset_chunk_cache(access.get(), cacheSlots, cacheBytes, 1);
        // Files that are named in this one lie beside it.
        ::H5Pset_efile_prefix(access.get(), folder_.empty() ? "." : folder_.c_str());
        ::H5Pset_virtual_prefix(access.get(), folder_.empty() ? "." : folder_.c_str());
        dataset_ = Handle{::H5Dopen2(file_.get(), path.c_str(), access.get()), &::H5Dclose};
        if (!dataset_) {
            fail("there is no array " + path + " in it");
        }
    }

    bool isGroup(const std::string& path) const
    {
        const Handle object{::H5Oopen(file_.get(), path.c_str(), H5P_DEFAULT), &::H5Oclose};
        return object && ::H5Iget_type(object.get()) == H5I_GROUP;
    }

    void findPixelSize()
    {
        const auto sizes = readAttribute(dataset_.get(), "element_size_um"); // z, y, x
        for (std::size_t i = 0; i < 3 && sizes.size() == 3; ++i) {
            setPixelSize(facts_, i, std::strtod(sizes[2 - i].c_str(), nullptr), "um");
        }
    }

    void findStorage(const Source& source, const std::vector<hsize_t>& sizes)
    {
        const Handle type{::H5Dget_type(dataset_.get()), &::H5Tclose};
        const H5T_class_t kind = ::H5Tget_class(type.get());
        if (kind == H5T_INTEGER) { // any precision becomes whole bytes
            const hid_t natives[] = {H5T_NATIVE_UINT8,  H5T_NATIVE_INT8,  H5T_NATIVE_UINT16, H5T_NATIVE_INT16,
                                     H5T_NATIVE_UINT32, H5T_NATIVE_INT32, H5T_NATIVE_UINT64, H5T_NATIVE_INT64};
            const auto index = static_cast<std::size_t>(facts_.type);
            constexpr auto wide = static_cast<std::size_t>(StoredType::UInt64);
            memoryType_ = Handle{::H5Tcopy(natives[index >= wide ? index - wide + 6 : index]), &::H5Tclose};
        } else {
            memoryType_ = Handle{::H5Tcopy(type.get()), &::H5Tclose};
            ::H5Tset_order(memoryType_.get(), ::H5Tget_order(H5T_NATIVE_INT));
        }
        const Handle creation{::H5Dget_create_plist(dataset_.get()), &::H5Pclose};
        chunk_.assign(sizes.size(), 1);
        if (::H5Pget_layout(creation.get()) == H5D_CHUNKED) {
            ::H5Pget_chunk(creation.get(), static_cast<int>(chunk_.size()), chunk_.data());
        }
        checkSources(creation.get());
        // Pixels of whole bytes, in one of the two orders.
        const Handle swapped{::H5Tcopy(memoryType_.get()), &::H5Tclose};
        ::H5Tset_order(swapped.get(), ::H5Tget_order(memoryType_.get()) == H5T_ORDER_LE ? H5T_ORDER_BE : H5T_ORDER_LE);
        isSwapped_ = ::H5Tequal(type.get(), memoryType_.get()) <= 0;
        const bool isPlain = facts_.members.empty() && (!isSwapped_ || ::H5Tequal(type.get(), swapped.get()) > 0);
        const H5D_layout_t layout = ::H5Pget_layout(creation.get());
        unsigned edges = 0; // whether those at borders are stored in another way
        ::H5Pget_chunk_opts(creation.get(), &edges);
        decodesChunks_ = isPlain && layout == H5D_CHUNKED && edges == 0;
        findFilters(creation.get());
        for (std::size_t axis = 0; axis < axes_.dimensions.size() && layout == H5D_CHUNKED; ++axis) {
            const std::array<std::size_t*, 5> sides{&layout_.block.x, &layout_.block.y, &layout_.block.z,
                                                    &layout_.block.c, &layout_.block.t};
            const std::size_t dimension = axes_.dimensions[axis];
            *sides[axis] = dimension == ArrayAxes::none ? 1 : chunk_[dimension];
        }
        fill_.resize(getPixelSize(facts_.type));
        ::H5Pget_fill_value(creation.get(), memoryType_.get(), fill_.data());
        const haddr_t offset = isPlain && layout == H5D_CONTIGUOUS ? ::H5Dget_offset(dataset_.get()) : HADDR_UNDEF;
        if (offset != HADDR_UNDEF) {
            openContiguous(source, sizes, offset);
        }
    }

    /// Pixels that lie in the file one after the other.
    void openContiguous(const Source& source, const std::vector<hsize_t>& sizes, std::uint64_t offset)
    {
        PixelArray array{facts_};
        array.facts.axes = axes_.letters;
        array.sizes.assign(sizes.begin(), sizes.end());
        array.axes = axes_.letters;
        array.axesBy = axes_.rule;
        array.offset = offset;
        array.isSwapped = isSwapped_;
        array.bytes = openBytes(source.path, source.name);
        contiguous_ = readArray(source, std::move(array));
        layout_ = contiguous_->getLayout();
    }

    void findFilters(hid_t creation)
    {
        const int filters = ::H5Pget_nfilters(creation);
        for (int i = 0; i < filters; ++i) {
            std::array<char, 64> name{};
            unsigned flags = 0;
            std::size_t values = 0;
            const H5Z_filter_t filter = ::H5Pget_filter2(creation, static_cast<unsigned>(i), &flags, &values, nullptr,
                                                         name.size(), name.data(), nullptr);
            if (::H5Zfilter_avail(filter) <= 0) {
                fail(std::string{"its pixels are compressed with the filter \""} + name.data() + "\" (" +
                     std::to_string(filter) + "), which this HDF5 library lacks: repack it, say with gzip");
            }
            if (filter != H5Z_FILTER_SHUFFLE && filter != H5Z_FILTER_FLETCHER32) {
                facts_.compression = filter == H5Z_FILTER_DEFLATE ? "gzip" : name.data();
            }
            filters_.push_back(filter);
            decodesChunks_ = decodesChunks_ && (filter == H5Z_FILTER_SHUFFLE || filter == H5Z_FILTER_FLETCHER32 ||
                                                filter == H5Z_FILTER_DEFLATE);
        }
    }

    /// Pixels of other files must be there: the library gives fill values where they are not.
    void checkSources(hid_t creation)
    {
        namespace fs = std::filesystem;
        constexpr std::size_t longestName = 4096;
        std::array<char, longestName> name{};
        const auto locate = [&] {
            const fs::path path{name.data()};
            return path.is_absolute() ? path : folder_ / path;
        };
        const int external = ::H5Pget_external_count(creation);
        for (int i = 0; i < external; ++i) {
            ::off_t offset = 0;
            hsize_t size = 0;
            ::H5Pget_external(creation, static_cast<unsigned>(i), name.size(), name.data(), &offset, &size);
            const std::uint64_t needed = size == H5F_UNLIMITED ? 0 : static_cast<std::uint64_t>(offset) + size;
            if (!fs::exists(locate()) || getFileSize(locate().string()) < needed) {
                fail(std::string{"its pixels are in "} + name.data() + ", which is not there, or cut short");
            }
            facts_.members.push_back(locate().string());
        }
        std::size_t sources = 0;
        if (::H5Pget_layout(creation) == H5D_VIRTUAL) {
            ::H5Pget_virtual_count(creation, &sources);
        }
        for (std::size_t i = 0; i < sources; ++i) {
            ::H5Pget_virtual_filename(creation, i, name.data(), name.size());
            if (std::string_view{name.data()} == ".") {
                continue;
            }
            if (!fs::exists(locate())) {
                fail(std::string{"its pixels are in "} + name.data() + ", which is not there");
            }
            facts_.members.push_back(locate().string());
        }
    }

    /// Decodes the chunks that hold wanted elements, each by itself: the library would do so one at a time.
    void forEachChunk(const std::vector<ArrayRange>& wanted, std::byte* to)
    {
        const std::size_t pixelSize = getPixelSize(facts_.type);
        const std::size_t count = wanted.size();
        std::vector<hsize_t> first(count);
        for (std::size_t i = 0; i < count; ++i) {
            first[i] = wanted[i].begin / chunk_[i] * chunk_[i];
        }
        ByteBlock chunk;
        std::vector<hsize_t> at = first;
        for (std::size_t i = 0;;) {
            const bool isThere = loadChunk(at, chunk);
            // Five axes at most are longer than one pixel.
            std::array<Stretch, 5> axes{};
            std::size_t next = 0;
            const std::byte* from = isThere ? chunk.data() : fill_.data();
            std::byte* target = to;
            auto stride = static_cast<std::int64_t>(pixelSize);
            for (std::size_t k = count; k-- > 0; stride *= static_cast<std::int64_t>(chunk_[k])) {
                const std::uint64_t begin = std::max<std::uint64_t>(at[k], wanted[k].begin);
                const std::uint64_t end = std::min<std::uint64_t>(at[k] + chunk_[k], wanted[k].begin + wanted[k].count);
                from += isThere ? static_cast<std::int64_t>(begin - at[k]) * stride : 0;
                target += static_cast<std::ptrdiff_t>(begin - wanted[k].begin) * wanted[k].stride;
                if (end - begin > 1) {
                    axes[next++] = {end - begin, isThere ? stride : 0, wanted[k].stride};
                }
            }
            copyPixels(from, target, pixelSize, axes);
            for (i = count; i > 0 && at[i - 1] + chunk_[i - 1] >= wanted[i - 1].begin + wanted[i - 1].count; --i) {
                at[i - 1] = first[i - 1];
            }
            if (i == 0) {
                return;
            }
            at[i - 1] += chunk_[i - 1];
        }
    }

    /// The elements of the chunk that begins at a place; false where it is not in the file.
    bool loadChunk(const std::vector<hsize_t>& at, ByteBlock& chunk) const
    {
        ByteBlock stored;
        std::uint32_t skipped = 0; // filters
        {
            const LibraryLock lock;
            hsize_t size = 0;
            if (::H5Dget_chunk_storage_size(dataset_.get(), at.data(), &size) < 0) {
                failChunk(at);
            }
            if (size == 0) {
                return false;
            }
            stored = ByteBlock{size};
            if (::H5Dread_chunk(dataset_.get(), H5P_DEFAULT, at.data(), &skipped, stored.data()) < 0) {
                failChunk(at);
            }
        }
        const std::size_t pixelSize = getPixelSize(facts_.type);
        std::size_t bytes = pixelSize;
        for (const hsize_t side : chunk_) {
            bytes *= side;
        }
        for (std::size_t i = filters_.size(); i-- > 0;) {
            if ((skipped >> i & 1) != 0) {
                continue;
            }
            if (filters_[i] == H5Z_FILTER_FLETCHER32) {
                checkSum(stored, at);
            } else if (filters_[i] == H5Z_FILTER_DEFLATE) {
                // A checksum may lie inside what is compressed.
                const auto sums = static_cast<std::size_t>(std::count(
                    filters_.begin(), filters_.begin() + static_cast<std::ptrdiff_t>(i), H5Z_FILTER_FLETCHER32));
                const ByteBlock inflated{bytes + 4 * sums};
                if (!decompress("zlib", stored.data(), stored.size(), inflated.data(), inflated.size())) {
                    failChunk(at);
                }
                stored = inflated;
            } else {
                stored = unshuffle(stored, pixelSize);
            }
        }
        if (stored.size() != bytes) {
            failChunk(at);
        }
        if (isSwapped_) {
            swapBytes(stored.data(), pixelSize, bytes / pixelSize);
        }
        chunk = stored;
        return true;
    }

    [[noreturn]] void failChunk(const std::vector<hsize_t>& at) const
    {
        std::string place;
        for (const hsize_t each : at) {
            place += (place.empty() ? "" : ", ") + std::to_string(each);
        }
        fail("its pixels cannot be read: the chunk at " + place + " is cut short or damaged");
    }

    /// Bytes of one weight that lie together go back to their elements.
    static ByteBlock unshuffle(const ByteBlock& from, std::size_t pixelSize)
    {
        ByteBlock to{from.size()};
        const std::size_t count = from.size() / pixelSize;
        for (std::size_t byte = 0; byte < pixelSize; ++byte) {
            const std::byte* const plane = from.data() + byte * count;
            for (std::size_t i = 0; i < count; ++i) {
                to.data()[i * pixelSize + byte] = plane[i];
            }
        }
        std::copy(from.data() + count * pixelSize, from.data() + from.size(), to.data() + count * pixelSize);
        return to;
    }

    /// Takes the checksum off the end: that of Fletcher, of 16-bit words with the high byte first.
    void checkSum(ByteBlock& bytes, const std::vector<hsize_t>& at) const
    {
        std::uint32_t stated = 0;
        if (bytes.size() < sizeof stated) {
            failChunk(at);
        }
        std::memcpy(&stated, bytes.data() + bytes.size() - sizeof stated, sizeof stated);
        bytes.shorten(bytes.size() - sizeof stated);
        const std::byte* const words = bytes.data();
        std::uint32_t low = 0;
        std::uint32_t high = 0;
        constexpr std::uint32_t modulus = 65535;
        for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
            low = (low + (static_cast<std::uint32_t>(words[i]) << 8 | static_cast<std::uint32_t>(words[i + 1]))) %
                  modulus;
            high = (high + low) % modulus;
        }
        if (bytes.size() % 2 != 0) {
            low = (low + (static_cast<std::uint32_t>(words[bytes.size() - 1]) << 8)) % modulus;
            high = (high + low) % modulus;
        }
        // 0 and 65535 are one number there.
        const auto isSame = [](std::uint32_t a, std::uint32_t b) { return a % modulus == b % modulus; };
        if (!isSame(stated >> 16, high) || !isSame(stated & 0xffff, low)) {
            failChunk(at);
        }
    }

    /// Reads a block at once where it is small or lies in the target as in the file, else in parts of whole chunks.
    void readBlock(const std::vector<ArrayRange>& block, std::byte* to)
    {
        constexpr std::size_t mostAtOnce = std::size_t{64} << 20;
        std::size_t bytes = getPixelSize(facts_.type);
        bool touches = true;
        for (std::size_t i = block.size(); i-- > 0;) {
            touches = touches && (block[i].count == 1 || block[i].stride == static_cast<std::ptrdiff_t>(bytes));
            bytes *= block[i].count;
        }
        if (touches) {
            readHyperslab(block, to);
            return;
        }
        const auto widest = std::find_if(block.begin(), block.end(), [](const ArrayRange& d) { return d.count > 1; });
        const auto index = static_cast<std::size_t>(widest - block.begin());
        if (bytes > mostAtOnce && widest->count > chunk_[index]) {
            std::vector<ArrayRange> part = block;
            const hsize_t end = widest->begin + widest->count;
            const hsize_t middle =
                (widest->begin + widest->count / 2 + chunk_[index] - 1) / chunk_[index] * chunk_[index];
            if (middle < end) {
                part[index].count = middle - widest->begin;
                readBlock(part, to);
                part[index] = {middle, end - middle, widest->stride};
                readBlock(part, to + static_cast<std::ptrdiff_t>(middle - widest->begin) * widest->stride);
                return;
            }
        }
        const ByteBlock buffer{bytes};
        readHyperslab(block, buffer.data());
        // Five axes at most are longer than one pixel.
        std::array<Stretch, 5> axes{};
        std::size_t next = 0;
        auto from = static_cast<std::int64_t>(getPixelSize(facts_.type));
        for (std::size_t i = block.size(); i-- > 0;) {
            if (block[i].count > 1) {
                axes[next++] = {block[i].count, from, block[i].stride};
            }
            from *= static_cast<std::int64_t>(block[i].count);
        }
        copyPixels(buffer.data(), to, getPixelSize(facts_.type), axes);
    }

    void readHyperslab(const std::vector<ArrayRange>& block, std::byte* to)
    {
        std::vector<hsize_t> begin;
        std::vector<hsize_t> count;
        for (const ArrayRange& dimension : block) {
            begin.push_back(dimension.begin);
            count.push_back(dimension.count);
        }
        const Handle inFile{::H5Dget_space(dataset_.get()), &::H5Sclose};
        const Handle inMemory{::H5Screate_simple(static_cast<int>(count.size()), count.data(), nullptr), &::H5Sclose};
        if (::H5Sselect_hyperslab(inFile.get(), H5S_SELECT_SET, begin.data(), nullptr, count.data(), nullptr) < 0 ||
            ::H5Dread(dataset_.get(), memoryType_.get(), inMemory.get(), inFile.get(), H5P_DEFAULT, to) < 0) {
            fail("its pixels cannot be read: the file is cut short or damaged");
        }
    }

    std::filesystem::path folder_;
    Handle file_;
    Handle dataset_{H5I_INVALID_HID, &::H5Dclose};
    Handle memoryType_{H5I_INVALID_HID, &::H5Tclose};
    std::vector<hsize_t> chunk_; // as many elements as are decoded together
    ArrayAxes axes_;
    bool isSwapped_ = false;
    ReaderPtr contiguous_;       // of pixels that lie in the file one after the other
    bool decodesChunks_ = false; // by itself
    std::vector<H5Z_filter_t> filters_;
    std::vector<std::byte> fill_; // a pixel that is not there
};

} // namespace

ReaderPtr openHdf5(const Source& source)
{
    const LibraryLock lock;
    return std::make_unique<Hdf5Reader>(source);
}

} // namespace orlix::files
