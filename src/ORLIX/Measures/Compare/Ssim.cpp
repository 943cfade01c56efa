#include <ORLIX/Measures/Compare/Ssim.hpp>

#include <cmath>

namespace orlix::measures
{

std::size_t SsimPlane::getRadius(const CompareOptions& options)
{
    if (options.windowSize != 0) {
        return options.windowSize / 2;
    }
    constexpr double truncate = 3.5;
    return options.window == SsimWindow::Uniform ? 3 : static_cast<std::size_t>(std::lround(truncate * options.sigma));
}

SsimPlane::SsimPlane(const CompareOptions& options, double peak, std::span<const ImageView, 2> images,
                     std::size_t begin, std::size_t end)
    : images_{images}, begin_{begin}, size_{end - begin}, height_{images[0]->getGeometry().y}, radius_{getRadius(
                                                                                                   options)},
      weights_(2 * radius_ + 1, 1.0), nextRow_{std::numeric_limits<std::ptrdiff_t>::min()}
{
    const auto window = static_cast<double>(weights_.size());
    const double pixels = window * window;
    windows_.n = pixels;
    windows_.window.isUniform = options.window == SsimWindow::Uniform;
    if (!windows_.window.isUniform) {
        double sum = 0;
        for (std::size_t k = 0; k < weights_.size(); ++k) {
            // Of more digits than a double, so that libraries which round their last one differently agree on it.
            const long double x = (static_cast<double>(k) - static_cast<double>(radius_)) / options.sigma;
            weights_[k] = static_cast<double>(std::exp(-x * x / 2));
            sum += weights_[k];
        }
        for (double& weight : weights_) {
            weight /= sum;
        }
        windows_.n = 1;
    }
    windows_.factor = options.sampleCovariance && pixels > 1 ? pixels / (pixels - 1) : 1;
    const auto square = [](double x) { return x * x; };
    windows_.c1 = square(options.k1 * peak) * square(windows_.n);
    windows_.c2 = square(options.k2 * peak) * square(windows_.n);
    windows_.window.weights = weights_.data();
    windows_.window.size = weights_.size();
    const std::size_t room = size_ + 2 * radius_ + 2 * SsimWeights::step;
    for (Row& row : pixels_) {
        row.resize(room);
    }
    for (auto& rows : sums_) {
        rows.assign(weights_.size(), Row(room));
    }
    values_.resize(room);
    windows_.values = values_.data();
    windows_.size = size_;
}

namespace
{

/// Where the mirror image of `size` pixels has pixel i: d c b a | a b c d | d c b a.
std::size_t reflect(std::ptrdiff_t i, std::size_t size)
{
    const auto period = 2 * static_cast<std::ptrdiff_t>(size);
    const std::ptrdiff_t at = ((i % period) + period) % period;
    return static_cast<std::size_t>(at < static_cast<std::ptrdiff_t>(size) ? at : period - 1 - at);
}

} // namespace

std::size_t SsimPlane::slot(std::ptrdiff_t y) const
{
    const auto window = static_cast<std::ptrdiff_t>(weights_.size());
    return static_cast<std::size_t>(((y % window) + window) % window);
}

void SsimPlane::read(std::ptrdiff_t y)
{
    SsimRow row{windows_.window, {}, size_, {}};
    const auto begin = static_cast<std::ptrdiff_t>(begin_) - static_cast<std::ptrdiff_t>(radius_);
    const std::size_t nbPixels = size_ + 2 * radius_;
    for (std::size_t k = 0; k < 2; ++k) {
        const image::BaseImage& image = *images_[k];
        const std::size_t width = image.getGeometry().x;
        const std::byte* const from = image.getRow(reflect(y, height_));
        const bool isBinary = image.getType() == image::eImageBufferType::eIBT_Binary;
        withPixelType(isBinary ? image::eImageBufferType::eIBT_UInt8 : image.getType(),
                      [&]<class T>(std::type_identity<T>) {
                          const T* const pixels = reinterpret_cast<const T*>(from);
                          const bool isInside = begin >= 0 && static_cast<std::size_t>(begin) + nbPixels <= width;
                          for (std::size_t i = 0; i < nbPixels; ++i) {
                              const std::ptrdiff_t x = begin + static_cast<std::ptrdiff_t>(i);
                              pixels_[k][i] = pixels[isInside ? static_cast<std::size_t>(x) : reflect(x, width)];
                          }
                      });
        row.pixels[k] = pixels_[k].data();
    }
    for (std::size_t q = 0; q < nbSsimSums; ++q) {
        row.sums[q] = sums_[q][slot(y)].data();
    }
    selectKernel<float>(getSsimRowKernels())(row);
}

const double* SsimPlane::measure(std::size_t y)
{
    const auto radius = static_cast<std::ptrdiff_t>(radius_);
    const std::ptrdiff_t first = static_cast<std::ptrdiff_t>(y) - radius;
    const std::ptrdiff_t last = static_cast<std::ptrdiff_t>(y) + radius;
    for (nextRow_ = std::max(nextRow_, first); nextRow_ <= last; ++nextRow_) {
        read(nextRow_);
    }
    std::vector<const double*> rows[nbSsimSums];
    for (std::size_t q = 0; q < nbSsimSums; ++q) {
        for (std::ptrdiff_t row = first; row <= last; ++row) {
            rows[q].push_back(sums_[q][slot(row)].data());
        }
        windows_.rows[q] = rows[q].data();
    }
    selectKernel<float>(getSsimWindowsKernels())(windows_);
    return values_.data();
}

std::optional<std::int64_t> SsimPlane::getSum() const
{
    return windows_.hasNaN ? std::nullopt : std::optional{windows_.sum};
}

Ptr<image::BaseImage> ssimImage(const ImageView& image, const ImageView& image2, const CompareOptions& options)
{
    const double peak = checkComparison(options, image, image2);
    if (options.mask) {
        throw MeasureException{"an image of structural similarity has a value for every pixel: it takes no mask",
                               ORLIX_HERE};
    }
    const image::ImageGeometry& size = image->getGeometry();
    auto output = image::BaseImage::create(image::eImageBufferType::eIBT_Float32, size);
    const Ptr<const image::BaseImage> images[] = {image->loadAll(), image2->loadAll()};
    const image::PlanRange plans{size, image::ePlanKind::ePK_Plan2d};
    const std::size_t tiles = (size.x + SsimPlane::bestSize - 1) / SsimPlane::bestSize;
    const auto measure = [&](std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i < end; ++i) {
            const image::PlanIndex plan = plans[i / tiles];
            const std::size_t x = i % tiles * SsimPlane::bestSize;
            const std::size_t width = std::min(SsimPlane::bestSize, size.x - x);
            const ImageView planes[] = {images[0]->getSubImage(plan, image::ePlanKind::ePK_Plan2d),
                                        images[1]->getSubImage(plan, image::ePlanKind::ePK_Plan2d)};
            SsimPlane windows{options, peak, planes, x, x + width};
            for (std::size_t y = 0; y < size.y; ++y) {
                auto* const row = reinterpret_cast<float*>(output->getRow(y, plan.z, plan.c, plan.t));
                std::copy_n(windows.measure(y), width, row + x);
            }
        }
    };
    if (!size.empty()) {
        executor::parallelFor(plans.size() * tiles, 1, ePriority::eP_Normal, RangeBody{measure});
    }
    return output;
}

} // namespace orlix::measures
