#include <files/ArrayReader.hpp>

#include <cstring>

namespace orlix::files
{

namespace
{

/// The header of MRC2014: 1024 bytes, of which these are read. https://www.ccpem.ac.uk/mrc_format/mrc2014.php
class Header
{
public:
    explicit Header(const std::string& bytes) : bytes_{bytes}
    {
        // The machine stamp, or the sizes where it is missing, tell the order of bytes.
        const auto stamp = static_cast<unsigned char>(bytes_[212]);
        isSwapped_ = stamp == 0x11 || (stamp != 0x44 && (mode() < 0 || mode() > 1000));
    }

    bool isSwapped() const { return isSwapped_; }
    std::int32_t integer(std::size_t word) const { return get<std::int32_t>(word); }
    float real(std::size_t word) const { return get<float>(word); }
    std::int32_t mode() const { return integer(3); }
    /// Some programs wrote bytes without sign, and say so behind a stamp of theirs.
    bool hasUnsignedBytes() const { return integer(38) == 1146047817 && (integer(39) & 1) == 0; }

private:
    template <class T>
    T get(std::size_t word) const
    {
        std::array<std::byte, 4> bytes{};
        std::memcpy(bytes.data(), bytes_.data() + 4 * word, 4);
        if (isSwapped_) {
            swapBytes(bytes.data(), 4, 1);
        }
        T value;
        std::memcpy(&value, bytes.data(), 4);
        return value;
    }

    const std::string& bytes_;
    bool isSwapped_ = false;
};

StoredType findType(const Source& source, const Header& header)
{
    switch (header.mode()) {
    case 0:
        return header.hasUnsignedBytes() ? StoredType::UInt8 : StoredType::Int8;
    case 1:
        return StoredType::Int16;
    case 2:
        return StoredType::Float32;
    case 6:
        return StoredType::UInt16;
    case 12:
        return StoredType::Float16;
    case 3:
    case 4:
        source.fail("its pixels are complex (mode " + std::to_string(header.mode()) +
                    "), which are not read: save their magnitude, say");
    default:
        source.fail("its pixels are of mode " + std::to_string(header.mode()) + ", but 0, 1, 2, 6 and 12 are read");
    }
}

} // namespace

ReaderPtr openMrc(const Source& source)
{
    constexpr std::size_t headerSize = 1024;
    const std::string bytes = readHead(source.path, source.name, headerSize);
    if (bytes.size() < headerSize) {
        source.fail("its MRC header is cut short");
    }
    const Header header{bytes};
    PixelArray array{source.describe("MRC")};
    array.facts.type = findType(source, header);
    array.isSwapped = header.isSwapped();
    array.fastestFirst = true;
    array.axes = "XYZ";
    array.axesBy = "MRC";
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const std::int32_t size = header.integer(axis);
        // The axis of the cell that lies along it.
        const std::int32_t mapped = header.integer(16 + axis);
        const std::size_t cellAxis = mapped >= 1 && mapped <= 3 ? static_cast<std::size_t>(mapped - 1) : axis;
        const std::int32_t sampling = header.integer(7 + cellAxis);
        if (size < 0) {
            source.fail("its header states a size of " + std::to_string(size));
        }
        array.sizes.push_back(static_cast<std::uint64_t>(size));
        const float cell = header.real(10 + cellAxis);
        if (sampling > 0 && cell > 0) {
            setPixelSize(array.facts, axis, static_cast<double>(cell) / sampling, "angstrom");
        }
    }
    const std::int32_t extended = header.integer(23);
    if (extended < 0) {
        source.fail("its header states an extended header of " + std::to_string(extended) + " bytes");
    }
    array.offset = headerSize;
    openPixels(source, array, {source.path}, extended, "raw");
    return readArray(source, std::move(array));
}

} // namespace orlix::files
