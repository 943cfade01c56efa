#pragma once

#include <framework/image/BaseImage.hpp>

namespace orlix::imaproc
{

/// The plan, whole, as it lies on the GPU.
template <class Child, class A>
class CudaSubImageSplit
{
public:
    explicit CudaSubImageSplit(Ptr<const image::BaseImage> image) : image_{std::move(image)} {}
    void assign(Child& child, std::size_t) const { child.template set<A>(image_); }

private:
    Ptr<const image::BaseImage> image_;
};

} // namespace orlix::imaproc
