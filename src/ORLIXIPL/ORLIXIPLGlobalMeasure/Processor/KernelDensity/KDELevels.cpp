#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/KernelDensity/KDELevels.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Define.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/MeasureMessages.hpp>

#include <framework/core/Random.hpp>
#include <framework/core/Settings.hpp>

#include <algorithm>
#include <span>

namespace orlix::imaproc::glbmsr
{

namespace
{

/// Fails where so many positions and their values need more than the memory limit.
core::ProcessingResult checkNbSamples(std::size_t nbSamples, std::size_t positionBytes)
{
    // Of every sample the position, its value, and a copy of that which is sorted.
    const std::size_t bytes = nbSamples * (positionBytes + 2 * sizeof(double));
    const std::size_t limit = core::settings::getMemoryLimit();
    if (bytes <= limit) {
        return {};
    }
    return core::ProcessingResult::failure(
        core::formatMessage(eMeasureMessage::eMM_ManySamples, nbSamples, (bytes >> 20) + 1, limit >> 20));
}

double drawAlong(std::size_t size, core::random::Draw& draw)
{
    return draw(static_cast<std::uint32_t>(std::min<std::size_t>(size, 0xffffffff)));
}

void drawPositions(const image::ImageGeometry& size, std::span<image::Coords2d> positions)
{
    core::random::Draw draw;
    for (image::Coords2d& position : positions) {
        position.x = drawAlong(size.x, draw);
        position.y = drawAlong(size.y, draw);
    }
}

void drawPositions(const image::ImageGeometry& size, std::span<image::Coords3d> positions)
{
    core::random::Draw draw;
    for (image::Coords3d& position : positions) {
        position.x = drawAlong(size.x, draw);
        position.y = drawAlong(size.y, draw);
        position.z = drawAlong(size.z, draw);
    }
}

} // namespace

template <class InPositions>
void DensitySample<InPositions>::clearIntermediateDataDerived()
{
    positions_.reset();
    extraction_.reset();
}

template <class InPositions>
core::ProcessingResult DensitySample<InPositions>::preProcess()
{
    using Positions = typename InPositions::Value;
    const std::size_t nbSamples = *find<InKDENbSamples>().get();
    core::ProcessingResult result = checkNbSamples(nbSamples, sizeof(typename Positions::Coords));
    if (result) {
        result = reserveResult(nbSamples * sizeof(double));
    }
    if (result) {
        positions_ = makePtr<Positions>();
        positions_->Coordinates.resize(nbSamples);
        drawPositions(getAttributes().front()->getImage()->getGeometry(), positions_->Coordinates);
    }
    return result;
}

template <class InPositions>
core::ProcessingResult DensitySample<InPositions>::retrieveProvider(ePriority, Ptr<ActionProvider>& provider)
{
    extraction_ = makeStageProcessor(getExtractionClass(), {getAttributes().front()});
    extraction_->set<InPositions>(positions_);
    extraction_->set<InValueExtractionMethod>(createDefaultImageValueExtractionMethod());
    provider = makeSingleActionProvider(extraction_);
    return {};
}

template <class InPositions>
core::ProcessingResult DensitySample<InPositions>::postProcess()
{
    KDEDataSet& data = output<KDEDataSet>();
    data.Samples.swap(extraction_->getStorage<attr::OutValues>()->Values);
    data.Bandwidth = computeBandwidth(*find<InKDEBandwidthPolicy>().get(), data.Samples);
    return {};
}

const ProcessorClass& KernelDensityEstimator2dLvl2::getExtractionClass() const
{
    return ImageValueExtraction2d::processorClass;
}
const ProcessorClass& KernelDensityEstimator3dLvl2::getExtractionClass() const
{
    return ImageValueExtraction3d::processorClass;
}

template class DensitySample<attr::InPixels2d>;
template class DensitySample<attr::InVoxels3d>;

LevelClass KernelDensityEstimator2dLvl1::processorClass =
    defineLevel<KernelDensityEstimator2dLvl1, KernelDensityEstimator2dLvl2>(30);
ProcessorClass KernelDensityEstimator2dLvl2::processorClass = define<KernelDensityEstimator2dLvl2>(31);
LevelClass KernelDensityEstimator3dLvl1::processorClass =
    defineLevel<KernelDensityEstimator3dLvl1, KernelDensityEstimator3dLvl2>(32);
ProcessorClass KernelDensityEstimator3dLvl2::processorClass = define<KernelDensityEstimator3dLvl2>(33);

namespace
{

const MeasureRegistration registration{
    {"Density sample",
     "kde",
     "a random sample of the grey levels, and a bandwidth to estimate their density with",
     "",
     {&KernelDensityEstimator2dLvl1::processorClass, &KernelDensityEstimator3dLvl1::processorClass}}};

} // namespace

} // namespace orlix::imaproc::glbmsr
