#pragma once

#include <framework/attribute/GaussianNoiseStats.hpp>
#include <framework/process/Level.hpp>
#include <framework/process/MeasureStrip.hpp>

namespace orlix::imaproc::glbmsr
{

using attr::GaussianNoiseStats;
using attr::InImg;
using attr::InKnlYStrip2d;
using attr::InSubImg2d;
using attr::OutGaussianNoiseStats;

struct GaussianNoise;

/// The noise of one strip of rows.
class ORLIX_API GaussianNoiseMsrLvl3 final
    : public Algorithm<GaussianNoiseMsrLvl3, MeasureStrip<GaussianNoise>, InKnlYStrip2d, OutGaussianNoiseStats>
{
public:
    static AlgorithmClass processorClass;
};

/// The noise of one 2d plan.
class ORLIX_API GaussianNoiseMsrLvl2 final
    : public Processor<GaussianNoiseMsrLvl2, Level, InSubImg2d, OutGaussianNoiseStats>
{
public:
    static LevelClass processorClass;
};

/// The noise of an image, over all its plans.
class ORLIX_API GaussianNoiseMsrLvl1 final : public Processor<GaussianNoiseMsrLvl1, Level, InImg, OutGaussianNoiseStats>
{
public:
    static LevelClass processorClass;
};

/// The standard deviation of additive Gaussian noise, from the absolute responses to a 3 x 3 mask that structure of the
/// image passes by (J. Immerkaer, Fast noise variance estimation, 1996): one record over all 2d plans of an image of
/// any numeric type. Beyond the border of a plan its border pixels go on; an image without pixels has the noise NaN. On
/// purpose, the number of pixels goes through single precision, so it is rounded beyond 2^24. All instruction sets give
/// the same bits. The synchronous form throws ORLIXBaseProcessingException when the run fails.
ORLIX_API Ptr<GaussianNoiseStats> gaussianNoiseMsr(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<GaussianNoiseMsrLvl1> gaussianNoiseMsr_async(const Ptr<const image::BaseImage>& image);

/// The result of a run, valid once its wait() has returned success. After a failure or cancellation it is null, or the
/// unfinished record of a single-result form.
ORLIX_API Ptr<GaussianNoiseStats> getAsyncProcessorOutput(const Ptr<GaussianNoiseMsrLvl1>& processor);

} // namespace orlix::imaproc::glbmsr
