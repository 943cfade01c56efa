#pragma once

#include <framework/image/BaseImage.hpp>

#include <ranges>
#include <span>
#include <utility>

namespace orlix
{

/// An image as a value: it looks at pixels that somebody else keeps, or shares those of an image. Copies are cheap.
class ImageView
{
public:
    /// No image.
    ImageView() = default;
    ImageView(Ptr<const image::BaseImage> image) : image_{std::move(image)} {}
    ImageView(const Ptr<image::BaseImage>& image) : image_{image} {}

    explicit operator bool() const { return image_ != nullptr; }
    const image::BaseImage& operator*() const { return *image_; }
    const image::BaseImage* operator->() const { return image_.get(); }
    const Ptr<const image::BaseImage>& getImage() const { return image_; }

private:
    Ptr<const image::BaseImage> image_;
};

namespace image
{

/// What a pixel of type T makes an image of: the seven numeric types, and bool.
template <class T>
constexpr eImageBufferType bufferTypeOf()
{
    if constexpr (std::is_same_v<T, bool>) {
        return eImageBufferType::eIBT_Binary;
    } else {
        return imageBufferTypeOf<T>;
    }
}

} // namespace image

/// The image whose first pixel `pixels` is, without a copy: x lies fastest, then y, z, c, t, without gaps. The caller
/// keeps the pixels as long as any view looks at them. Throws image::ImageException if they are not aligned.
template <class T>
ImageView view(const T* pixels, const image::ImageGeometry& size)
{
    return image::BaseImage::wrap(pixels, image::bufferTypeOf<T>(), size, Ptr<const void>{});
}

/// The same where rows, planes, channels and times lie as far apart as `strides` says, in bytes. Pixels of a row touch.
template <class T>
ImageView view(const T* pixels, const image::ImageGeometry& size, const image::ImageStrides& strides)
{
    return image::BaseImage::wrap(pixels, image::bufferTypeOf<T>(), size, strides, Ptr<const void>{});
}

/// What a std::span can look at.
template <class Pixels>
concept SpanOfPixels = requires(const Pixels& pixels)
{
    std::span{pixels};
};

/// The same for a span, a vector, an array, which has as many pixels as the size says; else image::ImageException.
template <SpanOfPixels Pixels>
ImageView view(const Pixels& pixels, const image::ImageGeometry& size)
{
    const std::span all{pixels};
    if (all.size() != size.nbPixels()) {
        throw image::ImageException{"there are " + std::to_string(all.size()) + " pixels, but an image of " +
                                        toString(size) + " has " + std::to_string(size.nbPixels()),
                                    ORLIX_HERE};
    }
    return view(all.data(), size);
}

/// Nobody keeps the pixels of a temporary.
template <SpanOfPixels Pixels>
requires(!std::is_lvalue_reference_v<Pixels> && !std::ranges::borrowed_range<Pixels>) ImageView
    view(Pixels&& pixels, const image::ImageGeometry& size)
= delete;

} // namespace orlix
