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
    return options.window == SsimWindow::Uniform ? 3 : static_cast<std::size_t>(truncate * options.sigma + 0.5);
}

SsimPlane::SsimPlane(const CompareOptions& options, double peak, std::span<const ImageView> images, const Position& at)
    : images_{images}, at_{at}, width_{images[0]->getGeometry().x}, height_{images[0]->getGeometry().y},
      radius_{getRadius(options)}, weights_(2 * radius_ + 1, 1.0)
{
    const auto window = static_cast<double>(weights_.size());
    row_.n = window * window;
    if (options.window == SsimWindow::Gaussian) {
        double sum = 0;
        for (std::size_t k = 0; k < weights_.size(); ++k) {
            const double x = static_cast<double>(k) - static_cast<double>(radius_);
            weights_[k] = std::exp(-0.5 * x * x / (options.sigma * options.sigma));
            sum += weights_[k];
        }
        for (double& weight : weights_) {
            weight /= sum;
        }
        row_.n = 1;
    }
    const double pixels = window * window;
    row_.factor = options.sampleCovariance && pixels > 1 ? pixels / (pixels - 1) : 1;
    row_.c1 = std::pow(options.k1 * peak, 2) * row_.n * row_.n;
    row_.c2 = std::pow(options.k2 * peak, 2) * row_.n * row_.n;
    row_.weights = weights_.data();
    row_.window = weights_.size();
    const std::size_t size = width_ + 2 * radius_ + 2 * SsimRow::step;
    for (auto& rows : rows_) {
        rows.assign(weights_.size(), std::vector<double>(size));
    }
    for (std::size_t q = 0; q < std::size(columns_); ++q) {
        columns_[q].resize(size);
        row_.columns[q] = columns_[q].data();
    }
    values_.resize(size);
    row_.values = values_.data();
    nextRow_ = std::numeric_limits<std::ptrdiff_t>::min();
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

std::vector<double>& SsimPlane::slot(int image, std::ptrdiff_t y)
{
    const auto window = static_cast<std::ptrdiff_t>(weights_.size());
    return rows_[image][static_cast<std::size_t>(((y % window) + window) % window)];
}

void SsimPlane::read(std::ptrdiff_t y)
{
    for (int k = 0; k < 2; ++k) {
        const image::BaseImage& image = *images_[static_cast<std::size_t>(k)];
        const std::byte* const row = image.getRow(reflect(y, height_), at_.z, at_.c, at_.t);
        double* const to = slot(k, y).data();
        const bool isBinary = image.getType() == image::eImageBufferType::eIBT_Binary;
        withPixelType(isBinary ? image::eImageBufferType::eIBT_UInt8 : image.getType(),
                      [&]<class T>(std::type_identity<T>) {
                          const T* const pixels = reinterpret_cast<const T*>(row);
                          for (std::size_t x = 0; x < width_; ++x) {
                              to[radius_ + x] = pixels[x];
                          }
                      });
        for (std::size_t i = 1; i <= radius_; ++i) {
            const auto before = reflect(-static_cast<std::ptrdiff_t>(i), width_);
            const auto after = reflect(static_cast<std::ptrdiff_t>(width_ + i) - 1, width_);
            to[radius_ - i] = to[radius_ + before];
            to[radius_ + width_ + i - 1] = to[radius_ + after];
        }
    }
}

const double* SsimPlane::measure(std::size_t y, std::size_t begin, std::size_t end)
{
    const auto radius = static_cast<std::ptrdiff_t>(radius_);
    const std::ptrdiff_t first = static_cast<std::ptrdiff_t>(y) - radius;
    const std::ptrdiff_t last = static_cast<std::ptrdiff_t>(y) + radius;
    for (nextRow_ = std::max(nextRow_, first); nextRow_ <= last; ++nextRow_) {
        read(nextRow_);
    }
    std::vector<const double*> rows[2];
    for (int k = 0; k < 2; ++k) {
        for (std::ptrdiff_t row = first; row <= last; ++row) {
            rows[k].push_back(slot(k, row).data() + begin);
        }
        row_.rows[k] = rows[k].data();
    }
    row_.size = end - begin;
    selectKernel<float>(getSsimKernels())(row_);
    return values_.data();
}

Ptr<image::BaseImage> ssimImage(const ImageView& image, const ImageView& image2, const CompareOptions& options)
{
    const double peak = checkComparison(options, image, image2);
    const image::ImageGeometry& size = image->getGeometry();
    auto output = image::BaseImage::create(image::eImageBufferType::eIBT_Float32, size);
    const ImageView images[] = {image, image2};
    const image::PlanRange plans{size, image::ePlanKind::ePK_Plan2d};
    const auto measure = [&](std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i < end; ++i) {
            const image::PlanIndex plan = plans[i];
            SsimPlane plane{options, peak, images, {0, 0, plan.z, plan.c, plan.t}};
            for (std::size_t y = 0; y < size.y; ++y) {
                const double* const values = plane.measure(y, 0, size.x);
                std::copy_n(values, size.x, reinterpret_cast<float*>(output->getRow(y, plan.z, plan.c, plan.t)));
            }
        }
    };
    if (!size.empty()) {
        executor::parallelFor(plans.size(), 1, ePriority::eP_Normal, RangeBody{measure});
    }
    return output;
}

} // namespace orlix::measures
