#pragma once

#include <ORLIX/Measures/State.hpp>

#include <optional>

namespace orlix::measures
{

/// How the neighbours of a pixel weigh in the structural similarity.
enum class SsimWindow
{
    Uniform,
    Gaussian
};
ORLIX_API std::span<const char* const> namesOf(SsimWindow);

struct CompareOptions
{
    Per per = Per::Image;
    ImageView
        mask{}; ///< of compare() alone: pixels count where it is not 0. Binary or of 8 bits, as large as the images
    NanPolicy nan = NanPolicy::Omit;
    /// Of the signal: the highest value that a pixel may have, less the lowest. Float pixels need it; the default is
    /// the range of the first image's integer type.
    std::optional<double> peak{};
    double threshold = 0;  ///< of the first image, in Manders' coefficients
    double threshold2 = 0; ///< of the second
    /// Of each image in the joint histogram of the mutual information, of equal width from its lowest to its highest
    /// pixel; 0: no mutual information.
    unsigned bins = 256;
    bool ssim = true; ///< the structural similarity
    SsimWindow window = SsimWindow::Uniform;
    unsigned windowSize = 0; ///< odd; 0: 7, of Gaussian weights 2 round(3.5 sigma) + 1
    double sigma = 1.5;      ///< of Gaussian weights, in pixels
    double k1 = 0.01;
    double k2 = 0.03;
    bool sampleCovariance = true; ///< variances of windows are those of samples: over the number of pixels less 1

    ORLIX_API void visitFields(data::FieldVisitor& field);
};

/// How the second image differs from the first one, which is the reference. Everything but the mutual information, the
/// structural similarity and the logarithm of the PSNR is the double nearest to the exact value. Without a meaning (no
/// pixels, constant ones, an infinite one) a figure is NaN.
struct Comparison
{
    std::uint64_t NbPixels = 0; ///< pairs that count: inside the mask, and neither is NaN
    std::uint64_t NbNaN = 0;    ///< pairs with a NaN
    double ME = 0;              ///< mean of second - first
    double MSE = 0;
    double RMSE = 0;
    double NRMSE = 0; ///< the root of the sum of squared errors over that of the first image's squares
    double MAE = 0;
    double MaxAbsError = 0;
    std::vector<std::uint64_t> MaxAbsErrorPosition; ///< the first: [x, y], [x, y, z] or [x, y, z, c, t]
    double PSNR = 0;                                ///< 10 log10(Peak^2 / MSE), in dB; infinity for equal images
    double Peak = 0;
    double r = 0;     ///< Pearson's correlation
    double Slope = 0; ///< of the line second = Slope first + Intercept with the least squared errors
    double Intercept = 0;
    double MandersM1 = 0; ///< the share of the first image's sum where the second is above its threshold
    double MandersM2 = 0;
    std::optional<double> MI;   ///< mutual information, in nats
    std::optional<double> NMI;  ///< (H1 + H2) / H12, from 1 to 2
    std::optional<double> SSIM; ///< mean over all windows that lie in the image and are centred on a pixel that counts
    image::PlanIndex plan;      ///< per plan or volume: which one

    ORLIX_API void visitFields(data::FieldVisitor& field);
};

struct Compare
{
    using Options = CompareOptions;
    using Result = Comparison;
    static constexpr int nbImages = 2;
};

/// Mutual information of anything but two images of 8 bits needs a second pass; the structural similarity a margin of
/// half a window around pieces in x and y, but at the border of the image.
using CompareState = State<Compare>;
extern template class ORLIX_API State<Compare>;

/// Images of one size and of any two pixel types. Throws MeasureException if they, the mask and the options do not go
/// together.
ORLIX_API Results<Comparison> compare(const ImageView& image, const ImageView& image2,
                                      const CompareOptions& options = {});

/// The structural similarity of every pixel, a float image; at the border, images are continued by their mirror image.
ORLIX_API Ptr<image::BaseImage> ssimImage(const ImageView& image, const ImageView& image2,
                                          const CompareOptions& options = {});

} // namespace orlix::measures
