#pragma once

#include <framework/attribute/ImageAttributes.hpp>
#include <framework/attribute/ParaboloidParams3d.hpp>
#include <framework/process/Levels.hpp>

namespace orlix::imaproc::glbmsr
{

using attr::Doubles;
using attr::InImg;
using attr::InOptMaskImg;
using attr::InOptMaskSubImg2d;
using attr::InOptMaskYStrip2d;
using attr::InSubImg2d;
using attr::InYStrip2d;
using attr::OutMatrixSums;
using attr::OutParaboloidParams3d;
using attr::OutPIParaboloidParams3d;
using attr::ParaboloidParams3d;
using attr::PlanIndexedParaboloidParams3d;

/// The sums of one strip of rows.
class ORLIX_API ParaboloidImgFit2dLvl3 final
    : public Algorithm<ParaboloidImgFit2dLvl3, InYStrip2d, InOptMaskYStrip2d, OutMatrixSums>
{
public:
    ParaboloidImgFit2dLvl3();
    ~ParaboloidImgFit2dLvl3() override;

    static AlgorithmClass processorClass;

    /// Enters the kernels that this machine can run.
    static void functionRegistration(AlgorithmFunctionSelector& selector);

    template <class T, core::eInstructionSet::domain D>
    core::ProcessingResult genericProcessFunction(ProcessingInfo info);

protected:
    core::ProcessingResult preProcess() override;

private:
    std::vector<double> columns_; // 0, 1, 2, ... as doubles, from strip to strip
};

} // namespace orlix::imaproc::glbmsr
