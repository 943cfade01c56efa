#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Projection/ProjectionTables.hpp>

namespace orlix::imaproc::glbmsr
{

const KernelTables<ColumnKernels>& getColumnKernels()
{
    static const KernelTables<ColumnKernels> tables{columnKernels_generic, columnKernels_sse2, columnKernels_avx,
                                                    columnKernels_avx2, columnKernels_avx512};
    return tables;
}

const KernelTables<RowKernels>& getRowKernels()
{
    static const KernelTables<RowKernels> tables{rowKernels_generic, rowKernels_sse2, rowKernels_avx, rowKernels_avx2,
                                                 rowKernels_avx512};
    return tables;
}

const KernelTables<PixelWriters>& getPixelWriters()
{
    static const KernelTables<PixelWriters> tables{
        pixelWriters_generic, pixelWriters_sse2, {}, pixelWriters_avx2, pixelWriters_avx512};
    return tables;
}

core::eInstructionSet::domain chooseMedianSet(core::InstructionSetsIdentifier forced)
{
    using enum core::eInstructionSet::domain;
    for (const core::eInstructionSet::domain set : {eIS_AVX512, eIS_AVX2, eIS_SSE2}) {
        if (core::isAvailable(set) && (forced.empty() || forced.contains(set))) {
            return set;
        }
    }
    return eIS_Generic;
}

std::vector<double> concatenate(const std::vector<Ptr<attr::Doubles>>& parts)
{
    std::vector<double> all;
    for (const Ptr<attr::Doubles>& part : parts) {
        all.insert(all.end(), part->Values.begin(), part->Values.end());
    }
    return all;
}

} // namespace orlix::imaproc::glbmsr
