#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/ParaboloidImgFit2d/ParaboloidImgFit2dLvl3.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Kernel/KernelTables.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/ParaboloidImgFit2d/ParaboloidKernels.hpp>

#include <numeric>

namespace orlix::imaproc::glbmsr
{

AlgorithmClass ParaboloidImgFit2dLvl3::processorClass =
    declareAlgorithm<ParaboloidImgFit2dLvl3>("ParaboloidImgFit2dLvl3", 49);

ParaboloidImgFit2dLvl3::ParaboloidImgFit2dLvl3() = default;
ParaboloidImgFit2dLvl3::~ParaboloidImgFit2dLvl3() = default;

namespace
{

const KernelTables<ParaboloidKernels>& getParaboloidKernels()
{
    static const KernelTables<ParaboloidKernels> tables{
        paraboloidKernels_generic, paraboloidKernels_sse2, {}, paraboloidKernels_avx2, paraboloidKernels_avx512};
    return tables;
}

/// Adds the sums of row y, in the order of OutMatrixSums.
void addRow(const RowSums& row, double y, std::vector<double>& sums)
{
    const double y2 = y * y;
    const double pixels[] = {row.x2z, y2 * row.z, y * row.xz, row.xz, y * row.z, row.z};
    const double moments[] = {row.x4,     row.x2 * y2,     row.x3 * y,     row.x3,     row.x2 * y,
                              row.x2,     row.n * y2 * y2, row.x * y2 * y, row.x * y2, row.n * y2 * y,
                              row.n * y2, row.x * y,       row.x,          row.n * y,  row.n};
    for (std::size_t i = 0; i < 6; ++i) {
        sums[i] += pixels[i];
    }
    for (std::size_t i = 6; i < sums.size(); ++i) {
        sums[i] += moments[i - 6];
    }
}

} // namespace

void ParaboloidImgFit2dLvl3::functionRegistration(AlgorithmFunctionSelector& selector)
{
    registerKernels(selector, []<class T>(std::type_identity<T>, auto domain) {
        return kernelOf<T>(getParaboloidKernels().of(domain)).sum != nullptr;
    });
}

core::ProcessingResult ParaboloidImgFit2dLvl3::preProcess()
{
    value<OutMatrixSums>().Values.assign(attribute<InOptMaskYStrip2d>().isSet() ? 21 : 6, 0);
    return {};
}

template <class T, core::eInstructionSet::domain D>
core::ProcessingResult ParaboloidImgFit2dLvl3::genericProcessFunction(ProcessingInfo info)
{
    if (info.size == 0) {
        return {};
    }
    const image::YStrip2d& strip = attribute<InYStrip2d>().get();
    const std::size_t width = strip.image->getGeometry().x;
    const std::size_t whole = (width + 15) / 16 * 16; // kernels read blocks
    if (columns_.size() < whole) {
        columns_.resize(whole);
        std::iota(columns_.begin(), columns_.end(), 0.0);
    }
    std::vector<double>& sums = value<OutMatrixSums>().Values;
    const auto kernel = kernelOf<T>(getParaboloidKernels().of(D));
    const bool isMasked = attribute<InOptMaskYStrip2d>().isSet();
    for (std::size_t i = 0; i < strip.count; ++i) {
        const T* const pixels = getParser(0).run<T>(i, width);
        const RowSums row =
            isMasked ? kernel.sumMasked({pixels, width, getParser(1).run<std::uint8_t>(i, width)}, columns_.data())
                     : kernel.sum({pixels, width}, columns_.data());
        addRow(row, static_cast<double>(strip.first + i), sums);
    }
    return {};
}

} // namespace orlix::imaproc::glbmsr
