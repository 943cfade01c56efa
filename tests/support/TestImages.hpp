#pragma once

#include <framework/core/Settings.hpp>
#include <framework/image/BaseImage.hpp>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <functional>
#include <limits>
#include <random>
#include <vector>

/// Builders of images and scoped settings for all tests.
namespace orlix::test
{

using image::BaseImage;
using image::ImageGeometry;

template <class T>
inline constexpr T lowest = std::numeric_limits<T>::lowest();
template <class T>
inline constexpr T highest = std::numeric_limits<T>::max();

/// An image whose pixels are `values`, in the order of memory.
template <class T>
Ptr<BaseImage> makeImage(const ImageGeometry& geometry, const std::vector<T>& values)
{
    auto image = BaseImage::create(image::imageBufferTypeOf<T>, geometry);
    std::copy(values.begin(), values.end(), reinterpret_cast<T*>(image->getRow(0)));
    return image;
}

/// Numbers over the whole range of an integer type; for float, of either sign and many magnitudes.
template <class T>
std::vector<T> randomValues(std::size_t count, unsigned seed = 1)
{
    std::mt19937_64 generator{seed};
    std::vector<T> values(count);
    for (T& value : values) {
        if constexpr (std::is_same_v<T, float>) {
            value = static_cast<float>(std::normal_distribution<double>{100, 1000}(generator));
        } else {
            value = static_cast<T>(generator());
        }
    }
    return values;
}

/// Copies an image's pixels into a buffer with gaps, rows or planes in reverse where asked, and wraps that.
template <class T>
Ptr<const BaseImage> makeStrided(const ImageGeometry& size, const std::vector<T>& values, bool gaps, bool reverseY,
                                 bool reverseZ)
{
    const auto row = static_cast<std::ptrdiff_t>((size.x + (gaps ? 3 : 0)) * sizeof(T));
    const std::ptrdiff_t plane = row * static_cast<std::ptrdiff_t>(size.y + (gaps ? 1 : 0));
    const std::size_t bytes = static_cast<std::size_t>(plane) * size.z * size.c * size.t;
    // What lies in the gaps must not count.
    auto buffer = makePtr<std::vector<std::byte>>(bytes, std::byte{0x7f});
    const auto offset = [&](std::size_t i, std::size_t n, bool reverse, std::ptrdiff_t stride) {
        return static_cast<std::ptrdiff_t>(reverse ? n - 1 - i : i) * stride;
    };
    const std::size_t planes = size.z * size.c * size.t;
    for (std::size_t p = 0; p < planes; ++p) {
        const std::ptrdiff_t base = static_cast<std::ptrdiff_t>(p / size.z * size.z) * plane;
        for (std::size_t y = 0; y < size.y; ++y) {
            std::memcpy(buffer->data() + base + offset(p % size.z, size.z, reverseZ, plane) +
                            offset(y, size.y, reverseY, row),
                        values.data() + (p * size.y + y) * size.x, size.x * sizeof(T));
        }
    }
    image::ImageStrides strides;
    strides.y = reverseY ? -row : row;
    strides.z = reverseZ ? -plane : plane;
    strides.c = plane * static_cast<std::ptrdiff_t>(size.z);
    strides.t = strides.c * static_cast<std::ptrdiff_t>(size.c);
    const void* const first = buffer->data() + offset(0, size.y, reverseY, row) + offset(0, size.z, reverseZ, plane);
    return BaseImage::wrap(first, image::imageBufferTypeOf<T>, size, strides, buffer);
}

/// Forces an instruction set as long as it lives.
class ForcedSet
{
public:
    explicit ForcedSet(core::InstructionSetsIdentifier set) { core::settings::forceInstructionSets(set); }
    ~ForcedSet() { core::settings::forceInstructionSets({}); }
    ForcedSet(const ForcedSet&) = delete;
    ForcedSet& operator=(const ForcedSet&) = delete;
};

/// Sets the number of threads as long as it lives.
class Threads
{
public:
    explicit Threads(unsigned threads) { core::settings::setNbThreads(threads); }
    ~Threads() { core::settings::setNbThreads(0); }
    Threads(const Threads&) = delete;
    Threads& operator=(const Threads&) = delete;
};

inline constexpr core::eInstructionSet::domain allSets[] = {
    core::eInstructionSet::eIS_Generic, core::eInstructionSet::eIS_SSE2, core::eInstructionSet::eIS_AVX,
    core::eInstructionSet::eIS_AVX2, core::eInstructionSet::eIS_AVX512};

/// Pixels that count from 0.
inline Ptr<const BaseImage> makeRamp(const ImageGeometry& shape)
{
    std::vector<unsigned short> values(shape.nbPixels());
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] = static_cast<unsigned short>(i);
    }
    return makeImage(shape, values);
}

} // namespace orlix::test
