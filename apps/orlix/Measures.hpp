#pragma once

#include <orlix/Options.hpp>
#include <orlix/Output.hpp>

/// The verbs that measure: each reads its files, calls the library's entry functions and reports what they return.
namespace orlix::app
{

Report runInfo(const Options& options);
Report runStats(const Options& options);
Report runHistogram(const Options& options);
Report runEntropy(const Options& options);
Report runCount(const Options& options);
Report runProject(const Options& options);
Report runNcc(const Options& options);
Report runPearson(const Options& options);
Report runSimilarity(const Options& options);
Report runNoise(const Options& options);
Report runKde(const Options& options);
Report runPercent(const Options& options);
Report runLocate(const Options& options);
Report runParaboloid(const Options& options);

} // namespace orlix::app
