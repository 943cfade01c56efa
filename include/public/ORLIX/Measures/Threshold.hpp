#pragma once

#include <ORLIX/Measures/State.hpp>

namespace orlix::measures
{

/// How a threshold is found, as scikit-image does where it has the method.
enum class ThresholdMethod
{
    Otsu,         ///< greatest variance between both sides; Otsu 1979
    Triangle,     ///< farthest from the line between peak and tail; Zack 1977
    Isodata,      ///< half way between the means of both sides; Ridler, Calvard 1978
    Li,           ///< least cross entropy; Li, Tam 1998
    Yen,          ///< greatest correlation; Yen 1995
    MinimumError, ///< least error of two normal distributions; Kittler, Illingworth 1986
    Mean          ///< the mean of the pixels
};
ORLIX_API std::span<const char* const> namesOf(ThresholdMethod);

struct ThresholdOptions
{
    Per per = Per::Image;
    ImageView
        mask{}; ///< of threshold() alone: pixels count where it is not 0. Binary or of 8 bits, as large as the image
    ThresholdMethod method = ThresholdMethod::Otsu;

    ORLIX_API void visitFields(data::FieldVisitor& field);
};

/// Pixels above the threshold are foreground. It is that of a histogram: of integer pixels by value where they span
/// 65536 values at most, else in as many classes; of float pixels in 256 classes (Li: 65536). NaN pixels are left out.
struct FoundThreshold
{
    ThresholdMethod Method = ThresholdMethod::Otsu;
    double Threshold = 0; ///< of one constant it; NaN where there is none
    std::uint64_t NbNaN = 0;
    image::PlanIndex plan; ///< per plan or volume: which one

    ORLIX_API void visitFields(data::FieldVisitor& field);
};

struct MeasureThreshold
{
    using Options = ThresholdOptions;
    using Result = FoundThreshold;
    static constexpr int nbImages = 1;
};

/// Pixels of 32 bits and float pixels need a second pass.
using ThresholdState = State<MeasureThreshold>;
extern template class ORLIX_API State<MeasureThreshold>;

/// Throws MeasureException if image, mask and options do not go together, or pixels are infinite.
ORLIX_API Results<FoundThreshold> threshold(const ImageView& image, const ThresholdOptions& options = {});

} // namespace orlix::measures
