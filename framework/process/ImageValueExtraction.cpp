#include <framework/process/ImageValueExtraction.hpp>

#include <framework/data/DynamicClassRegistration.hpp>

#include <cmath>

namespace orlix::imaproc
{

namespace
{

const data::DynamicClassRegistration<ImageValueExtractionMethod> imageValueExtractionMethodClass{
    ImageValueExtractionMethod::typeName};

Origin getOrigin()
{
    return {core::MessageMap<eProcessorMessage>::library, __FILE__,
            [] { return std::string{"Values of an image at a list of positions"}; }, false};
}

/// A pixel's number along an axis, or the axis' size if there is none.
std::size_t nearest(double position, std::size_t size)
{
    const double rounded = std::nearbyint(position);
    return rounded >= 0 && rounded < static_cast<double>(size) ? static_cast<std::size_t>(rounded) : size;
}

/// The pixel at a position; null where it lies outside.
template <class T>
const T* findPixel(const image::BaseImage& image, double x, double y, double z)
{
    const image::ImageGeometry& size = image.getGeometry();
    const std::size_t column = nearest(x, size.x);
    const std::size_t row = nearest(y, size.y);
    const std::size_t plane = nearest(z, size.z);
    const bool isInside = column < size.x && row < size.y && plane < size.z;
    return isInside ? reinterpret_cast<const T*>(image.getRow(row, plane)) + column : nullptr;
}

template <class T>
const T* findPixel(const image::BaseImage& image, const image::Coords2d& at)
{
    return findPixel<T>(image, at.x, at.y, 0);
}
template <class T>
const T* findPixel(const image::BaseImage& image, const image::Coords3d& at)
{
    return findPixel<T>(image, at.x, at.y, at.z);
}

} // namespace

Ptr<const ImageValueExtractionMethod> createDefaultImageValueExtractionMethod()
{
    return makePtr<ImageValueExtractionMethod>();
}

template <class Self, class SubImage, class Positions>
core::ProcessingResult ImageValueExtraction<Self, SubImage, Positions>::runDerived(const RunContext& context)
{
    const image::BaseImage& image = this->template value<SubImage>();
    const auto& positions = this->template value<Positions>().Coordinates;
    std::vector<double>& values = this->template value<attr::OutValues>().Values;
    values.clear();
    values.reserve(positions.size());
    image::forEachPixelType([&]<class T>(std::type_identity<T>) {
        if (image.getType() == image::imageBufferTypeOf<T>) {
            for (const auto& at : positions) {
                const T* const pixel = findPixel<T>(image, at);
                if (pixel == nullptr) {
                    break;
                }
                values.push_back(static_cast<double>(*pixel));
            }
        }
    });
    context.advance();
    return values.size() == positions.size()
               ? core::ProcessingResult{}
               : core::ProcessingResult::failure(core::formatMessage(eProcessorMessage::ePositionOutside,
                                                                     this->getObjectName(), values.size(),
                                                                     Positions::name, toString(image.getGeometry())));
}

ProcessorClass ImageValueExtraction2d::processorClass{typeid(ImageValueExtraction2d), getOrigin(), creators()};
ProcessorClass ImageValueExtraction3d::processorClass{typeid(ImageValueExtraction3d), getOrigin(), creators()};

} // namespace orlix::imaproc
