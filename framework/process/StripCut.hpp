#pragma once

#include <framework/image/BaseImage.hpp>

#include <algorithm>
#include <cstddef>

namespace orlix::imaproc
{

/// The cut of a sub image into strips of whole elements (rows, columns or planes): as even as it goes, and the same for
/// the same sizes and the same policy.
class StripCut
{
public:
    /// Strips of about `stripBytes`, but of at least `minElements`.
    template <class Strip>
    static StripCut of(const image::BaseImage& image, std::size_t stripBytes, std::size_t minElements)
    {
        const std::size_t elementBytes = Strip::getElementPixels(image) * image.getPixelSize();
        return {Strip::getNbElements(image), elementBytes, std::max(stripBytes, minElements * elementBytes)};
    }

    StripCut(std::size_t nbElements, std::size_t elementBytes, std::size_t stripBytes) : nbElements_{nbElements}
    {
        const std::size_t bytes = nbElements * elementBytes;
        const std::size_t limit = std::max<std::size_t>(1, stripBytes);
        size_ = std::min(nbElements, bytes / limit + (bytes % limit != 0));
    }
    std::size_t size() const { return size_; }
    std::size_t begin(std::size_t i) const { return nbElements_ / size_ * i + std::min(i, nbElements_ % size_); }

private:
    std::size_t nbElements_;
    std::size_t size_;
};

} // namespace orlix::imaproc
