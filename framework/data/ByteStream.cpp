#include <framework/data/ByteStream.hpp>

#include <boost/crc.hpp>

namespace orlix::data
{

void ByteWriter::put(std::uint64_t value, std::size_t size)
{
    for (std::size_t i = 0; i < size; ++i) {
        bytes_ += static_cast<char>(value >> (8 * i));
    }
}

void ByteWriter::operator()(const std::string& text)
{
    put(text.size(), 8);
    bytes_ += text;
}

std::uint64_t ByteReader::get(std::size_t size)
{
    if (bytes_.size() < size) {
        fail("the bytes end too early");
    }
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < size; ++i) {
        value |= std::uint64_t{static_cast<unsigned char>(bytes_[i])} << (8 * i);
    }
    bytes_.remove_prefix(size);
    return value;
}

void ByteReader::operator()(std::string& text)
{
    const std::uint64_t size = get(8);
    if (bytes_.size() < size) {
        fail("the bytes end too early");
    }
    text = bytes_.substr(0, size);
    bytes_.remove_prefix(size);
}

void ByteReader::fail(const std::string& text)
{
    throw ByteException{text, ORLIX_HERE};
}

std::uint32_t checksum(std::string_view bytes)
{
    boost::crc_32_type crc;
    crc.process_bytes(bytes.data(), bytes.size());
    return crc.checksum();
}

} // namespace orlix::data
