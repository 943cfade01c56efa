#pragma once

#include <framework/attribute/SimilarityStats.hpp>
#include <framework/process/Level.hpp>
#include <framework/process/MeasureStrip.hpp>

namespace orlix::imaproc::glbmsr
{

using attr::InImg1;
using attr::InImg2;
using attr::InSubImg2d1;
using attr::InSubImg2d2;
using attr::InYStrip2d1;
using attr::InYStrip2d2;
using attr::OutSimilarityStats;
using attr::SimilarityStats;

struct Similarity;

/// The squared differences of a pair of strips.
class ORLIX_API SimilarityMsrLvl3 final
    : public Algorithm<SimilarityMsrLvl3, MeasureStrip<Similarity>, InYStrip2d1, InYStrip2d2, OutSimilarityStats>
{
public:
    static AlgorithmClass processorClass;

protected:
    Rule makeRule() const override { return matchType(attribute<InYStrip2d1>(), attribute<InYStrip2d2>()); }
};

/// The squared differences of a pair of 2d plans.
class ORLIX_API SimilarityMsrLvl2 final
    : public Processor<SimilarityMsrLvl2, Level, InSubImg2d1, InSubImg2d2, OutSimilarityStats>
{
public:
    static LevelClass processorClass;

protected:
    Rule makeRule() const override
    {
        return Level::makeRule() && matchType(attribute<InSubImg2d1>(), attribute<InSubImg2d2>());
    }
};

/// The squared differences of two images, over all their plans.
class ORLIX_API SimilarityMsrLvl1 final : public Processor<SimilarityMsrLvl1, Level, InImg1, InImg2, OutSimilarityStats>
{
public:
    static LevelClass processorClass;

protected:
    Rule makeRule() const override { return Level::makeRule() && matchType(attribute<InImg1>(), attribute<InImg2>()); }
};

/// How far two images of one size and one numeric pixel type differ: one record over all their plans. PSNR takes 255 as
/// the peak, whatever the pixel type, and is the greatest double for images that are the same. Integer images give the
/// same bits on every instruction set, float images on every vector instruction set; the generic kernel adds in another
/// order. The synchronous form throws ORLIXBaseProcessingException when the run fails.
ORLIX_API Ptr<SimilarityStats> similarityMsr(const Ptr<const image::BaseImage>& image1,
                                             const Ptr<const image::BaseImage>& image2);
ORLIX_API Ptr<SimilarityMsrLvl1> similarityMsr_async(const Ptr<const image::BaseImage>& image1,
                                                     const Ptr<const image::BaseImage>& image2);

/// The result of a run, valid once its wait() has returned success. After a failure or cancellation it is null, or the
/// unfinished record of a single-result form.
ORLIX_API Ptr<SimilarityStats> getAsyncProcessorOutput(const Ptr<SimilarityMsrLvl1>& processor);

} // namespace orlix::imaproc::glbmsr
