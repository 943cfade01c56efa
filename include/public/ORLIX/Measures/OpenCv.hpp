#pragma once

#include <framework/core/Exception.hpp>
#include <framework/image/View.hpp>

#include <opencv2/core.hpp>

namespace orlix
{

/// An OpenCV matrix as an image: columns are x, rows y, of three dimensions the first one z. One channel is looked at
/// where it lies, and the view keeps it alive; several, which lie pixel by pixel, are copied apart into channels of
/// their own. Throws image::ImageException for other pixels than 8-bit, 16-bit and 32-bit integers and 32-bit floats.
inline ImageView view(const cv::Mat& mat)
{
    using enum image::eImageBufferType;
    const auto typeOf = [&] {
        switch (mat.depth()) {
        case CV_8U:
            return eIBT_UInt8;
        case CV_8S:
            return eIBT_Int8;
        case CV_16U:
            return eIBT_UInt16;
        case CV_16S:
            return eIBT_Int16;
        case CV_32S:
            return eIBT_Int32;
        case CV_32F:
            return eIBT_Float32;
        default:
            throw image::ImageException{"OpenCV pixels of type " + cv::typeToString(mat.type()) +
                                            " are not measured as they are: convert them with convertTo(..., CV_32F)",
                                        ORLIX_HERE};
        }
    };
    const image::eImageBufferType type = typeOf();
    if (mat.dims > 3) {
        throw image::ImageException{"an OpenCV matrix of " + std::to_string(mat.dims) +
                                        " dimensions is no image: two or three are",
                                    ORLIX_HERE};
    }
    const auto side = [&](int fromLast) {
        return mat.dims > fromLast ? static_cast<std::size_t>(mat.size[mat.dims - 1 - fromLast]) : 1u;
    };
    const auto step = [&](int fromLast) {
        return mat.dims > fromLast ? static_cast<std::ptrdiff_t>(mat.step[mat.dims - 1 - fromLast]) : 0;
    };
    image::ImageGeometry size{side(0), side(1), side(2)};
    if (mat.empty()) {
        return image::BaseImage::create(type, {});
    }
    if (mat.channels() == 1) {
        image::ImageStrides strides;
        strides.y = step(1);
        strides.z = step(2);
        const Ptr<const void> owner{mat.data, [kept = mat](const void*) {}};
        return image::BaseImage::wrap(static_cast<const void*>(mat.data), type, size, strides, owner);
    }
    size.c = static_cast<std::size_t>(mat.channels());
    const auto image = image::BaseImage::create(type, size);
    const std::size_t bytes = image::getPixelSize(type);
    for (std::size_t z = 0; z < size.z; ++z) {
        for (std::size_t y = 0; y < size.y; ++y) {
            const uchar* const row =
                mat.data + static_cast<std::ptrdiff_t>(z) * step(2) + static_cast<std::ptrdiff_t>(y) * step(1);
            for (std::size_t c = 0; c < size.c; ++c) {
                std::byte* const to = image->getRow(y, z, c);
                for (std::size_t x = 0; x < size.x; ++x) {
                    std::memcpy(to + x * bytes, row + (x * size.c + c) * bytes, bytes);
                }
            }
        }
    }
    return image;
}

} // namespace orlix
