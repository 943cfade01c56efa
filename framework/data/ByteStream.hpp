#pragma once

#include <framework/core/Api.hpp>
#include <framework/core/Exception.hpp>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

/// Bytes that are the same on every machine: numbers lowest byte first, lists after their length. What is written and
/// read has one function for both: `template <class Stream> void pass(Stream& stream)` calls stream(value)...
namespace orlix::data
{

/// Bytes that are not what they should be.
class ORLIX_API ByteException final : public core::BaseException
{
public:
    using BaseException::BaseException;
};

class ORLIX_API ByteWriter
{
public:
    static constexpr bool isReader = false;

    template <class T>
    requires std::is_integral_v<T> || std::is_enum_v<T>
    void operator()(T value) { put(static_cast<std::uint64_t>(value), sizeof(T)); }
    void operator()(double value) { put(std::bit_cast<std::uint64_t>(value), 8); }
    void operator()(const std::string& text);
    template <class T, std::size_t N>
    void operator()(const T (&list)[N])
    {
        for (const T& each : list) {
            (*this)(each);
        }
    }
    template <class T>
    void operator()(const std::vector<T>& list)
    {
        (*this)(std::uint64_t{list.size()});
        for (const T& each : list) {
            (*this)(each);
        }
    }
    template <class T>
    requires requires(T& value, ByteWriter& stream) { value.pass(stream); }
    void operator()(const T& value) { const_cast<T&>(value).pass(*this); }

    std::string take() { return std::move(bytes_); }

private:
    void put(std::uint64_t value, std::size_t size);

    std::string bytes_;
};

/// Throws ByteException where the bytes end too early.
class ORLIX_API ByteReader
{
public:
    static constexpr bool isReader = true;

    explicit ByteReader(std::string_view bytes) : bytes_{bytes} {}

    template <class T>
    requires std::is_integral_v<T> || std::is_enum_v<T>
    void operator()(T& value) { value = static_cast<T>(get(sizeof(T))); }
    void operator()(double& value) { value = std::bit_cast<double>(get(8)); }
    void operator()(std::string& text);
    template <class T, std::size_t N>
    void operator()(T (&list)[N])
    {
        for (T& each : list) {
            (*this)(each);
        }
    }
    template <class T>
    void operator()(std::vector<T>& list)
    {
        std::uint64_t size = 0;
        (*this)(size);
        list.clear();
        for (std::uint64_t i = 0; i < size; ++i) { // one by one: what the length says may not be there
            (*this)(list.emplace_back());
        }
    }
    template <class T>
    requires requires(T& value, ByteReader& stream) { value.pass(stream); }
    void operator()(T& value) { value.pass(*this); }

    std::size_t nbLeft() const { return bytes_.size(); }
    /// Throws ByteException.
    [[noreturn]] static void fail(const std::string& text);

private:
    std::uint64_t get(std::size_t size);

    std::string_view bytes_;
};

/// The CRC-32 of bytes.
ORLIX_API std::uint32_t checksum(std::string_view bytes);

} // namespace orlix::data
