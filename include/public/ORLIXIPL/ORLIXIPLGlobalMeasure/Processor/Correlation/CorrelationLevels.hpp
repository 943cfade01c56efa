#pragma once

#include <framework/attribute/ImageAttributes.hpp>
#include <framework/attribute/StatsResult.hpp>
#include <framework/process/Levels.hpp>

/// What the correlations of two images share.
namespace orlix::imaproc::glbmsr
{

using attr::InImg1;
using attr::InImg2;
using attr::InImg3d1;
using attr::InImg3d2;
using attr::InSubImg2d;
using attr::InSubImg2d1;
using attr::InSubImg2d2;
using attr::InSubImg3d;
using attr::InSubImg3d1;
using attr::InSubImg3d2;
using attr::InYStrip2d1;
using attr::InYStrip2d2;
using attr::InZStrip3d1;
using attr::InZStrip3d2;
using attr::OutStatsResult;
using attr::StatsResult;

struct Deviations
{
    double mean;
    double stdDev;
};

/// Those of a constant image are exact, which rounded sums need not be: its deviation might be NaN.
inline Deviations deviationsOf(const StatsResult& statistics)
{
    if (statistics.Min == statistics.Max) {
        return {statistics.Min, 0};
    }
    return {statistics.Mean, statistics.StdDev};
}

/// A pair of sub images in three stages: the statistics of the first, those of the second, and the strips of both, to
/// which they are handed down. Statistics is the processor of the first two, which takes a sub image as SubImage.
template <class Self, class Child, class Output, class Merge, class Statistics, class SubImage, class Input1,
          class Input2>
class CorrelationLvl2 : public StripsLvl2<Self, Child, Output, Merge, Input1, Input2>
{
    using Base = StripsLvl2<Self, Child, Output, Merge, Input1, Input2>;

protected:
    void clearIntermediateDataDerived() override
    {
        Base::clearIntermediateDataDerived();
        statistics1_.reset();
        statistics2_.reset();
    }

    std::size_t retrieveSequenceInfo() const override { return 3; }

    Ptr<BaseProcessor> makeStage(std::size_t index) override
    {
        if (index == 0) {
            statistics1_ = this->template makeStageProcessor<Statistics, SubImage>(
                this->template attribute<typename Input1::Source>().get());
            return statistics1_;
        }
        statistics2_ = this->template makeStageProcessor<Statistics, SubImage>(
            this->template attribute<typename Input2::Source>().get());
        return statistics2_;
    }

    /// What the first two stages found.
    Deviations deviations1() const { return deviationsOf(*statistics1_->template getStorage<OutStatsResult>()); }
    Deviations deviations2() const { return deviationsOf(*statistics2_->template getStorage<OutStatsResult>()); }

private:
    Ptr<Statistics> statistics1_;
    Ptr<Statistics> statistics2_;
};

} // namespace orlix::imaproc::glbmsr
