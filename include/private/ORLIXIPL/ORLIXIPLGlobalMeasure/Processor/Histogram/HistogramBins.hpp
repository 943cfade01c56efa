#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Histogram/HistogramLevels.hpp>

#include <framework/process/MeasureList.hpp>

namespace orlix::imaproc::glbmsr
{

/// Refuses what users may ask for by name and bins cannot be.
extern const MeasureExtras binExtras;

/// Whether the parameters, which may be null, define a range that the pixel type allows.
bool hasUserRange(const HistoMsrParams* params, image::eImageBufferType type);

/// Gives the histogram of a range its bins, at zero, and a guard bin. Fails where there are none or too many.
core::ProcessingResult makeBins(HistogramData& histogram, image::eImageBufferType type, const HistoMsrParams* params,
                                double min, double max);
/// One bin for a range in which there is no pixel, and a guard bin.
void makeEmptyBin(HistogramData& histogram, image::eImageBufferType type, double min, double max);

/// How many partial histograms of these bins the memory limit allows at once; at least 1.
std::size_t getMaxPartialHistograms(const HistogramData& histogram);
/// Pixels that a strip should have for its counting to outweigh its bins, and for the memory limit to hold.
std::size_t getMinStripPixels(const HistogramData& histogram, const image::BaseImage& image);

/// A BinWidth that is used is above 0, or 0 for float pixels whose range may be one value.
Rule matchBinWidth(const InOptHistoMsrParams& params, const attr::BaseAttribute& image);
/// The histogram has a bin and a guard bin, at least, and fewer than 2^31.
core::ProcessingResult checkHasBins(const attr::BaseAttribute& output, const HistogramData& histogram);
/// The histogram has bins, and they fit the pixels.
Rule matchBins(const attr::BaseAttribute& output, const attr::BaseAttribute& pixels);

} // namespace orlix::imaproc::glbmsr
