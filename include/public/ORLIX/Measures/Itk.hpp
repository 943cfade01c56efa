#pragma once

#include <framework/image/View.hpp>

#include <itkImage.h>

namespace orlix
{

/// The buffered region of an ITK image of up to five dimensions (x, y, z, c, t), where it lies; the view keeps the
/// image alive. Pixels are integers of 8, 16 or 32 bits, 32-bit floats or bool.
template <class Pixel, unsigned Dimensions>
requires(Dimensions <= 5) ImageView view(const itk::Image<Pixel, Dimensions>* itkImage)
{
    const auto region = itkImage->GetBufferedRegion().GetSize();
    std::size_t sides[5] = {1, 1, 1, 1, 1};
    for (unsigned axis = 0; axis < Dimensions; ++axis) {
        sides[axis] = region[axis];
    }
    using Image = itk::Image<Pixel, Dimensions>;
    const typename Image::ConstPointer kept{itkImage};
    const Pixel* const pixels = itkImage->GetBufferPointer();
    const Ptr<const void> owner{pixels, [kept](const void*) {}};
    return image::BaseImage::wrap(static_cast<const void*>(pixels), image::bufferTypeOf<Pixel>(),
                                  {sides[0], sides[1], sides[2], sides[3], sides[4]}, owner);
}

template <class Pixel, unsigned Dimensions>
ImageView view(const itk::SmartPointer<itk::Image<Pixel, Dimensions>>& itkImage)
{
    return view(static_cast<const itk::Image<Pixel, Dimensions>*>(itkImage.GetPointer()));
}

} // namespace orlix
