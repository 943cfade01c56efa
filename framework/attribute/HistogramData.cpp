#include <framework/attribute/HistogramData.hpp>

#include <framework/data/DynamicClassRegistration.hpp>

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

void HistoMsrParams::setParameter(std::string_view name, const data::Value& value)
{
    constexpr std::uint32_t defaultClasses = 256;
    setField(name, value);
    if (name == "Min" || name == "Max") {
        MinMaxDefinition = eMinMaxDefinition::eMMD_UserDefinedMinMax;
    }
    UseBinWidth = name == "BinWidth" || (UseBinWidth && name != "NbClasses");
    NbClasses = NbClasses == 0 ? defaultClasses : NbClasses;
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
const data::DynamicClassRegistration<HistoMsrParams> histoMsrParamsClass{HistoMsrParams::typeName};
const data::DynamicClassRegistration<PlanIndexedHistoMsrParams> planIndexedHistoMsrParamsClass{
    PlanIndexedHistoMsrParams::typeName};
const data::DynamicClassRegistration<HistogramData> histogramDataClass{HistogramData::typeName};
const data::DynamicClassRegistration<PlanIndexedHistogramData> planIndexedHistogramDataClass{
    PlanIndexedHistogramData::typeName};
} // namespace

} // namespace orlix::imaproc::attr
