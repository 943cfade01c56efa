#pragma once

#include <framework/attribute/ParaboloidParams3d.hpp>
#include <framework/process/Level.hpp>

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
    : public Algorithm<ParaboloidImgFit2dLvl3, BaseProcessingAlgorithm, InYStrip2d, InOptMaskYStrip2d, OutMatrixSums>
{
public:
    static AlgorithmClass processorClass;

    /// Enters the kernels that this machine can run.
    static void functionRegistration(AlgorithmFunctionSelector& selector);

    template <class T>
    core::ProcessingResult genericProcessFunction(ProcessingInfo info);

protected:
    core::ProcessingResult preProcess() override;

private:
    std::vector<double> columns_; // 0, 1, 2, ... as doubles, from strip to strip
};

/// The fit to one 2d plan: the sums of its strips, and the solution of the normal equations.
class ORLIX_API ParaboloidImgFit2dLvl2 final
    : public Processor<ParaboloidImgFit2dLvl2, Level, InSubImg2d, InOptMaskSubImg2d, OutParaboloidParams3d>
{
public:
    static LevelClass processorClass;
};

/// The fits to every 2d plan of an image.
class ORLIX_API ParaboloidImgFit2dLvl1 final
    : public Processor<ParaboloidImgFit2dLvl1, Level, InImg, InOptMaskImg, OutPIParaboloidParams3d>
{
public:
    static LevelClass processorClass;
};

/// The surface a x^2 + b y^2 + c x y + d x + e y + f that fits the pixels of a plan best (least squares), x being their
/// column and y their row from 0 on: one per 2d plan (z, c, t) of an image of any numeric type; under a mask (uint8,
/// int8 or binary, of the size of the image), over the pixels whose byte is not 0. On purpose, a plan or mask whose
/// positions do not determine the surface succeeds, with coefficients that are not finite or mean nothing; where a mask
/// selects a small part far from (0, 0), few digits are left. All instruction sets give the same bits. The synchronous
/// forms throw ORLIXBaseProcessingException when the run fails; the single-result forms measure plan (0, 0, 0) only.
ORLIX_API Ptr<ParaboloidParams3d> paraboloidImgFit2d(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<ParaboloidParams3d> paraboloidImgFit2d(const Ptr<const image::BaseImage>& image,
                                                     const Ptr<const image::BaseImage>& mask);
ORLIX_API Ptr<ParaboloidImgFit2dLvl1> paraboloidImgFit2d_async(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<ParaboloidImgFit2dLvl1> paraboloidImgFit2d_async(const Ptr<const image::BaseImage>& image,
                                                               const Ptr<const image::BaseImage>& mask);
ORLIX_API Ptr<PlanIndexedParaboloidParams3d> multiSlice_paraboloidImgFit2d(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<PlanIndexedParaboloidParams3d> multiSlice_paraboloidImgFit2d(const Ptr<const image::BaseImage>& image,
                                                                           const Ptr<const image::BaseImage>& mask);
ORLIX_API Ptr<ParaboloidImgFit2dLvl1> multiSlice_paraboloidImgFit2d_async(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<ParaboloidImgFit2dLvl1> multiSlice_paraboloidImgFit2d_async(const Ptr<const image::BaseImage>& image,
                                                                          const Ptr<const image::BaseImage>& mask);

/// The result of a run, valid once its wait() has returned success. After a failure or cancellation it is null, or the
/// unfinished record of a single-result form.
ORLIX_API Ptr<ParaboloidParams3d> getAsyncProcessorOutput(const Ptr<ParaboloidImgFit2dLvl1>& processor);
ORLIX_API Ptr<PlanIndexedParaboloidParams3d>
getAsyncProcessorMultiSliceOutput(const Ptr<ParaboloidImgFit2dLvl1>& processor);

} // namespace orlix::imaproc::glbmsr
