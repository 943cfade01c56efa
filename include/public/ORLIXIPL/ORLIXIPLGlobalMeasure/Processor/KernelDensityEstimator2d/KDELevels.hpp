#pragma once

#include <framework/attribute/ImageAttributes.hpp>
#include <framework/attribute/KDEDataSet.hpp>
#include <framework/process/ImageValueExtraction.hpp>
#include <framework/process/Levels.hpp>

#include <span>

/// What the density samples of plans and of volumes share. Positions are drawn with replacement, each axis uniformly,
/// with the random generator of the process (framework/core/Random.hpp). On purpose, plans that run at once draw from
/// it in any order: the samples of an image of several plans come again in the next run only where one thread runs them
/// all, or for the same seed and one plan.
namespace orlix::imaproc::glbmsr
{

using attr::eKDEBandwidth;
using attr::InImg;
using attr::InImg3d;
using attr::InKDEBandwidthPolicy;
using attr::InKDENbSamples;
using attr::InOptKDEBandwidthPolicy;
using attr::InOptKDENbSamples;
using attr::InSubImg2d;
using attr::InSubImg3d;
using attr::KDEBandwidthPolicy;
using attr::KDEDataSet;
using attr::OutKDEDataSet;
using attr::OutPIKDEDataSet;
using attr::PlanIndexedKDEDataSet;

/// Fails where so many positions and their values need more than the memory limit.
ORLIX_API core::ProcessingResult checkNbSamples(std::size_t nbSamples, std::size_t positionBytes);
ORLIX_API void drawPositions(const image::ImageGeometry& size, std::span<image::Coords2d> positions);
ORLIX_API void drawPositions(const image::ImageGeometry& size, std::span<image::Coords3d> positions);

/// One plan or volume: Extraction is the processor that reads it at the positions that are drawn.
template <class Self, class SubImage, class Extraction, class InPositions>
class DensitySample
    : public Processor<Self, BaseAsync1Processor, SubImage, InKDENbSamples, InKDEBandwidthPolicy, OutKDEDataSet>
{
    using Positions = typename InPositions::Value;

protected:
    void clearIntermediateDataDerived() override
    {
        positions_.reset();
        extraction_.reset();
    }

    core::ProcessingResult preProcess() override
    {
        const std::size_t nbSamples = this->template value<InKDENbSamples>();
        core::ProcessingResult result = checkNbSamples(nbSamples, sizeof(typename Positions::Coords));
        if (result) {
            result = this->reserveResult(nbSamples * sizeof(double));
        }
        if (result) {
            positions_ = makePtr<Positions>();
            positions_->Coordinates.resize(nbSamples);
            drawPositions(this->template value<SubImage>().getGeometry(), positions_->Coordinates);
        }
        return result;
    }

    core::ProcessingResult retrieveProvider(ePriority, Ptr<ActionProvider>& provider) override
    {
        extraction_ = this->template makeStageProcessor<Extraction, SubImage, InPositions, InValueExtractionMethod>(
            this->template attribute<SubImage>().get(), positions_, createDefaultImageValueExtractionMethod());
        provider = makeSingleActionProvider(extraction_);
        return {};
    }

    core::ProcessingResult postProcess() override
    {
        KDEDataSet& data = this->template value<OutKDEDataSet>();
        data.Samples.swap(extraction_->template getStorage<attr::OutValues>()->Values);
        data.Bandwidth = computeBandwidth(this->template value<InKDEBandwidthPolicy>(), data.Samples);
        return {};
    }

private:
    using BaseAsync1Processor::retrieveProvider;

    Ptr<Positions> positions_;
    Ptr<Extraction> extraction_;
};

} // namespace orlix::imaproc::glbmsr
