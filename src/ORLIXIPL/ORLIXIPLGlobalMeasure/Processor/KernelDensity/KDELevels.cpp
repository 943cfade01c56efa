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

constexpr std::uint32_t maxSeed = 0xffffffff;

/// The seed of the generator that all samples are drawn from.
const attr::Parameter seed{{.name = "Seed",
                            .help = "seed of the sample, which it repeats for one plan, or with one thread",
                            .option = "seed",
                            .lowest = 0,
                            .highest = maxSeed},
                           true,
                           data::Value{std::uint64_t{core::random::defaultSeed}}};

void checkSample(const NamedValues& parameters)
{
    for (const auto& [name, value] : parameters) {
        if (const auto* const width = std::get_if<double>(&value);
            name == "bandwidth" && width != nullptr && !(*width > 0)) {
            throw MeasureException{"bandwidth is silverman, scott, or a number above 0", ORLIX_HERE};
        }
    }
    const double asked = findNumber(parameters, "seed").value_or(0);
    if (!(asked >= 0 && asked <= maxSeed)) {
        throw MeasureException{"seed is a number from 0 to 4294967295", ORLIX_HERE};
    }
}

void startSample(BaseProcessor&, const NamedValues& parameters)
{
    core::random::setSeed(
        static_cast<std::uint32_t>(findNumber(parameters, "seed").value_or(core::random::defaultSeed)));
}

const MeasureRegistration registration{
    {"Density sample",
     "kde",
     "a random sample of the grey levels, and a bandwidth to estimate their density with",
     "",
     {&KernelDensityEstimator2dLvl1::processorClass, &KernelDensityEstimator3dLvl1::processorClass},
     {.parameters = {seed}, .check = &checkSample, .prepare = &startSample}}};

} // namespace

} // namespace orlix::imaproc::glbmsr
