#include <framework/process/ImageValueExtraction.hpp>

#include <framework/data/DynamicClassRegistration.hpp>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

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

image::Position findPixel(const image::ImageGeometry& size, const image::Coords2d& at)
{
    return {nearest(at.x, size.x), nearest(at.y, size.y)};
}
image::Position findPixel(const image::ImageGeometry& size, const image::Coords3d& at)
{
    return {nearest(at.x, size.x), nearest(at.y, size.y), nearest(at.z, size.z)};
}

template <class T>
double getPixel(const image::BaseImage& image, const image::Position& at)
{
    return static_cast<double>(*reinterpret_cast<const T*>(image.load({at, {1, 1}}).first));
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
    values.assign(positions.size(), 0);
    const image::ImageGeometry& size = image.getGeometry();
    std::vector<std::pair<image::Position, std::size_t>> pixels; // with their numbers on the list
    pixels.reserve(positions.size());
    for (const auto& position : positions) {
        const image::Position at = findPixel(size, position);
        if (at.x >= size.x || at.y >= size.y || at.z >= size.z) {
            return core::ProcessingResult::failure(core::formatMessage(eProcessorMessage::ePositionOutside,
                                                                       this->getObjectName(), pixels.size(),
                                                                       Positions::name, toString(size)));
        }
        pixels.emplace_back(at, pixels.size());
    }
    if (image.hasSource()) { // which is read in its order
        std::sort(pixels.begin(), pixels.end());
    }
    image::forEachPixelType([&]<class T>(std::type_identity<T>) {
        if (image.getType() == image::imageBufferTypeOf<T>) {
            for (const auto& [at, i] : pixels) {
                if (context.cancelled()) {
                    return;
                }
                values[i] = getPixel<T>(image, at);
            }
        }
    });
    context.advance();
    return context.cancelled() ? core::ProcessingResult::failure(core::formatMessage(eProcessorMessage::eCancelled))
                               : core::ProcessingResult{};
}

ProcessorClass ImageValueExtraction2d::processorClass{typeid(ImageValueExtraction2d), getOrigin(), creators()};
ProcessorClass ImageValueExtraction3d::processorClass{typeid(ImageValueExtraction3d), getOrigin(), creators()};

} // namespace orlix::imaproc
