#include <files/ArrayReader.hpp>

#include <bit>
#include <charconv>
#include <cstring>

namespace orlix::files
{

namespace
{

/// What stands behind a key of the header, a Python dictionary.
std::string findValue(const Source& source, const std::string& header, const std::string& key)
{
    const std::size_t at = header.find("'" + key + "':");
    if (at == std::string::npos) {
        source.fail("its NumPy header lacks '" + key + "'");
    }
    return header.substr(header.find_first_not_of(' ', at + key.size() + 3));
}

StoredType findType(const Source& source, const std::string& descr)
{
    const std::size_t end = descr.find('\'', 1);
    if (descr.empty() || descr[0] != '\'' || end == std::string::npos || end < 4) {
        source.fail("its elements are records, not numbers: save one field of them");
    }
    const std::string code = descr.substr(2, end - 2);
    const auto type = findNumpyType(code);
    if (!type) {
        source.fail((code[0] == 'c' ? "complex" : "its elements") + (" of type " + code) +
                    " are no pixels: save numbers, such as float32");
    }
    return *type;
}

} // namespace

ReaderPtr openNpy(const Source& source)
{
    // Magic, version, the header's length in 2 or 4 bytes, the header.
    const std::string& head = source.head;
    const std::size_t lengthBytes = head.size() > 6 && head[6] == 1 ? 2 : 4;
    if (head.size() < 8 + lengthBytes) {
        source.fail("its NumPy header is cut short");
    }
    std::uint32_t length = 0;
    std::memcpy(&length, head.data() + 8, lengthBytes); // little-endian, as this machine
    constexpr std::uint32_t longest = 1 << 20;
    if (length > longest) {
        source.fail("its NumPy header of " + std::to_string(length) + " bytes is none");
    }
    PixelArray array{source.describe("NumPy")};
    array.offset = 8 + lengthBytes + length;
    const std::string header = readHead(source.path, source.name, array.offset).substr(8 + lengthBytes);
    if (header.size() != length) {
        source.fail("its NumPy header is cut short");
    }
    const std::string descr = findValue(source, header, "descr");
    array.facts.type = findType(source, descr);
    array.isSwapped = descr[1] == '>';
    array.isFortran = findValue(source, header, "fortran_order").starts_with("True");
    std::string shape = findValue(source, header, "shape");
    shape = shape.substr(0, shape.find(')'));
    for (const char* at = shape.data(); at < shape.data() + shape.size();) {
        std::uint64_t size = 0;
        const auto [end, error] = std::from_chars(at, shape.data() + shape.size(), size);
        if (error == std::errc{}) {
            array.sizes.push_back(size);
        }
        at = end + (end == at ? 1 : 0);
    }
    const std::uint64_t fileSize = getFileSize(source.path);
    array.available = fileSize - std::min(fileSize, array.offset);
    array.bytes = openBytes(source.path, source.name);
    return readArray(source, std::move(array));
}

} // namespace orlix::files
