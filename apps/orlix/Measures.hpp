#pragma once

#include <orlix/Options.hpp>
#include <orlix/Output.hpp>

#include <framework/process/MeasureList.hpp>

/// The verbs that measure: each reads its files, runs the form of the measure that the options ask for, and reports
/// what it finds.
namespace orlix::app
{

/// The parameters of a measure that the command line gives.
imaproc::NamedValues listParameters(const imaproc::Measure& measure, const Options& options);

Report runInfo(const Options& options);
Report runMeasure(const imaproc::Measure& measure, const Options& options);
/// Along an axis: profiles, or an image that is written.
Report runProject(const imaproc::Measure& measure, const Options& options);

} // namespace orlix::app
