#pragma once

#include <framework/attribute/HistogramData.hpp>
#include <framework/attribute/ImageAttributes.hpp>
#include <framework/attribute/IndexableUInt64.hpp>
#include <framework/attribute/StatsResult.hpp>
#include <framework/process/Levels.hpp>

/// What the counts of objects share: a label image has an object for every class of width 1 of its histogram that is
/// not empty, but for the first class, which is the background, whatever it holds. A histogram cannot tell all labels
/// beyond 2^24 apart: where there are such, the labels are told apart by a bit for each from the lowest to the highest,
/// up to 512 MiB.
namespace orlix::imaproc::glbmsr
{

using attr::IndexableUInt64;
using attr::InLabelImg;
using attr::InLabelImg3d;
using attr::InSubLabelImg2d;
using attr::InSubLabelImg3d;
using attr::OutIndexableUInt64;
using attr::OutPIIndexableUInt64;
using attr::PlanIndexedIndexableUInt64;

/// Whether a histogram tells all labels of a range apart.
ORLIX_API bool fitsHistogram(double lowest, double highest);
/// The classes but the first that hold a pixel.
ORLIX_API std::uint64_t countObjects(const attr::HistogramData& labels);

/// Counts the different pixels of a plan or volume of 32-bit integers from `lowest` to `highest` into `labels`, in
/// parts of about so many bytes. Fails where a bit for each takes more than the memory limit.
ORLIX_API core::ProcessingResult makeLabelCounter(Ptr<const image::BaseImage> image, double lowest, double highest,
                                                  std::size_t partBytes, ePriority priority, std::uint64_t& labels,
                                                  Ptr<ActionProvider>& provider);

/// The objects of one plan or volume. Statistics, a level 2 processor, finds the range of the labels in its image
/// StatisticsImage; Histogram, one of level 1, counts them in its image HistogramImage.
template <class Self, class Labels, class Statistics, class StatisticsImage, class Histogram, class HistogramImage>
class ObjectCount : public Processor<Self, BaseAsync1Processor, Labels, OutIndexableUInt64>
{
protected:
    void clearIntermediateDataDerived() override
    {
        statistics_.reset();
        histogram_.reset();
    }

    std::size_t retrieveSequenceInfo() const override { return 2; }

    Ptr<BaseProcessor> makeStage(std::size_t) override
    {
        statistics_ =
            this->template makeStageProcessor<Statistics, StatisticsImage>(this->template attribute<Labels>().get());
        return statistics_;
    }

    core::ProcessingResult retrieveProvider(ePriority priority, Ptr<ActionProvider>& provider) override
    {
        const auto range = statistics_->template getStorage<attr::OutStatsResult>();
        const auto& image = this->template attribute<Labels>().get();
        if (!fitsHistogram(range->Min, range->Max)) {
            return makeLabelCounter(image, range->Min, range->Max, this->getDispatchPolicy().stripBytes, priority,
                                    nbLabels_, provider);
        }
        histogram_ = makePtr<attr::HistogramData>();
        auto collection = makePtr<attr::PlanIndexedHistogramData>();
        collection->insert({0, 0, 0}, histogram_);
        const auto params = attr::createHistoMsrParamsWithBinWidth(range->Min, range->Max, 1.0);
        const auto processor =
            this->template makeStageProcessor<Histogram, HistogramImage, attr::InOptHistoMsrParams>(image, params);
        processor->template set<attr::OutPIHistogram>(collection);
        provider = makeSingleActionProvider(processor);
        return {};
    }

    core::ProcessingResult postProcess() override
    {
        this->template value<OutIndexableUInt64>().Value = histogram_ ? countObjects(*histogram_) : nbLabels_ - 1;
        return {};
    }

private:
    using BaseAsync1Processor::retrieveProvider;

    Ptr<Statistics> statistics_;
    Ptr<attr::HistogramData> histogram_; ///< null where labels are told apart by bits
    std::uint64_t nbLabels_ = 0;
};

} // namespace orlix::imaproc::glbmsr
