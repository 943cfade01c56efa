#include <framework/attribute/HistogramData.hpp>

#include <framework/data/DynamicObjectFactory.hpp>

#include <algorithm>
#include <functional>

namespace orlix::imaproc::attr
{

Ptr<HistoMsrParams> createHistoMsrParamsWithBinWidth(double binWidth)
{
    auto params = makePtr<HistoMsrParams>();
    params->BinWidth = binWidth;
    params->UseBinWidth = true;
    return params;
}

Ptr<HistoMsrParams> createHistoMsrParamsWithBinWidth(double min, double max, double binWidth)
{
    auto params = createHistoMsrParamsWithBinWidth(binWidth);
    params->Min = min;
    params->Max = max;
    params->MinMaxDefinition = eMinMaxDefinition::eMMD_UserDefinedMinMax;
    return params;
}

void HistogramData::clear()
{
    std::fill(Frequencies.begin(), Frequencies.end(), 0);
}

HistogramData& HistogramData::operator+=(const HistogramData& other)
{
    std::transform(Frequencies.begin(), Frequencies.end(), other.Frequencies.begin(), Frequencies.begin(),
                   std::plus<>{});
    return *this;
}

namespace
{
const data::DynamicClassRegistration<HistoMsrParams> params{HistoMsrParams::typeName};
const data::DynamicClassRegistration<PlanIndexedHistoMsrParams> planParams{PlanIndexedHistoMsrParams::typeName};
const data::DynamicClassRegistration<HistogramData> histogram{HistogramData::typeName};
const data::DynamicClassRegistration<PlanIndexedHistogramData> planHistograms{PlanIndexedHistogramData::typeName};
} // namespace

Ptr<HistoMsrParams> HistoMsrParams::create()
{
    return makePtr<HistoMsrParams>();
}

Ptr<PlanIndexedHistoMsrParams> PlanIndexedHistoMsrParams::create()
{
    return makePtr<PlanIndexedHistoMsrParams>();
}

Ptr<HistogramData> HistogramData::create()
{
    return makePtr<HistogramData>();
}

Ptr<PlanIndexedHistogramData> PlanIndexedHistogramData::create()
{
    return makePtr<PlanIndexedHistogramData>();
}

} // namespace orlix::imaproc::attr
