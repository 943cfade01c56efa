#pragma once

#include <orlix/Output.hpp>

/// What a report becomes before a person reads it as a table; programs get it as it is.
namespace orlix::app
{

/// Processors: the kernels of a class by instruction set, not one by one.
void summariseKernels(Report& report);
/// Histograms: a row for every class.
void spreadClasses(Report& report);
/// Profiles: a row for every number.
void spreadValues(Report& report);
/// Percentages: a row for every value that occurs.
void spreadPercentages(Report& report);
/// Positions: a row each.
void spreadCoordinates(Report& report);
/// Fits: a column for every coefficient.
void spreadCoefficients(Report& report);
/// Samples: their number.
void countSamples(Report& report);
/// Correlations: what the record keeps besides means nothing to them.
void keepCorrelation(Report& report);
/// Similarities: the ratio of equal images is infinite.
void showInfinity(Report& report);
/// Descriptions: a row for every figure, of one; the most important figures of several.
void listFigures(Report& report);
/// Measures: the names of things.
void listNames(Report& report);

/// What a file says of itself: a row for every fact, of one image.
void listFacts(Report& report);

} // namespace orlix::app
