#pragma once

#include <orlix/Options.hpp>
#include <orlix/Output.hpp>

#include <framework/process/MeasureList.hpp>

/// The verbs whose measures are states: an image enters one, which is finished, or saved to be merged with others.
namespace orlix::app
{

Report runState(const imaproc::Measure& measure, const Options& options);
/// Saves a report of histograms as a state, which has no more in it.
void saveHistograms(Report& report, const Options& options);
/// Merges the states of files, and finishes or saves what they make.
Report runMerge(const Options& options);

} // namespace orlix::app
