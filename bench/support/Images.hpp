#pragma once

#include <framework/image/BaseImage.hpp>

#ifdef ORLIX_BENCH_OPENCV
#include <opencv2/core.hpp>
#endif

#include <cstring>
#include <random>
#include <vector>

namespace orlix::bench
{

/// The size of a square image of about `bytes`, or of 4096 columns where that is large.
inline image::ImageGeometry chooseSize(std::size_t bytes, std::size_t pixelSize)
{
    std::size_t x = 512;
    while (x < 4096 && x * x * pixelSize * 2 <= bytes) {
        x *= 2;
    }
    return {x, bytes / pixelSize / x};
}

/// An image whose rows are all like the one that `draw` makes, pixel by pixel.
template <class T, class Draw>
Ptr<image::BaseImage> makeImage(const image::ImageGeometry& size, Draw draw)
{
    const auto image = image::BaseImage::create(image::imageBufferTypeOf<T>, size);
    std::vector<T> rows(size.x * std::min<std::size_t>(size.y, 64)); // so many that branches cannot learn them
    for (T& pixel : rows) {
        pixel = static_cast<T>(draw());
    }
    for (std::size_t z = 0; z < size.z; ++z) {
        for (std::size_t y = 0; y < size.y; ++y) {
            std::memcpy(image->getRow(y, z), rows.data() + y % 64 * size.x, size.x * sizeof(T));
        }
    }
    return image;
}

/// Pixels that may have any value; floats look like the intensities of a camera.
template <class T>
Ptr<const image::BaseImage> makeNoise(std::size_t bytes)
{
    return makeImage<T>(chooseSize(bytes, sizeof(T)), [generator = std::mt19937{1}]() mutable {
        return std::is_same_v<T, float> ? static_cast<T>(generator() % 65536) * T(1.7) : static_cast<T>(generator());
    });
}

#ifdef ORLIX_BENCH_OPENCV
inline int peerType(image::eImageBufferType type)
{
    constexpr int types[] = {CV_8U, CV_8S, CV_16U, CV_16S, -1, CV_32S, CV_32F}; // it has no unsigned 32-bit
    return types[static_cast<std::size_t>(type)];
}

inline cv::Mat asMat(const image::BaseImage& image)
{
    return {static_cast<int>(image.getGeometry().y), static_cast<int>(image.getGeometry().x), peerType(image.getType()),
            const_cast<std::byte*>(image.getRow(0))};
}
#endif

} // namespace orlix::bench
