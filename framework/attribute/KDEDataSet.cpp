#include <framework/attribute/KDEDataSet.hpp>

#include <framework/data/DynamicClassRegistration.hpp>

#include <algorithm>
#include <cmath>

namespace orlix::imaproc::attr
{

namespace
{

const data::DynamicClassRegistration<KDEDataSet> kDEDataSetClass{KDEDataSet::typeName};
const data::DynamicClassRegistration<PlanIndexedKDEDataSet> planIndexedKDEDataSetClass{PlanIndexedKDEDataSet::typeName};
const data::DynamicClassRegistration<KDEBandwidthPolicy> kDEBandwidthPolicyClass{KDEBandwidthPolicy::typeName};

} // namespace

void KDEBandwidthPolicy::setParameter(std::string_view name, const data::Value& value)
{
    if (name != "Rule" || std::holds_alternative<std::string>(value)) {
        setField(name, value);
        return;
    }
    setField("Bandwidth", value);
    Rule = eKDEBandwidth::eKB_Fixed;
}

namespace
{

double standardDeviation(std::span<const double> values)
{
    const auto n = static_cast<double>(values.size());
    double mean = 0;
    for (const double x : values) {
        mean += x / n;
    }
    double squares = 0;
    for (const double x : values) {
        squares += (x - mean) * (x - mean);
    }
    return std::sqrt(squares / (n - 1));
}

/// The value at a share of the way through the sorted values.
double quantile(std::span<const double> sorted, double share)
{
    const double position = share * static_cast<double>(sorted.size() - 1);
    const auto below = static_cast<std::size_t>(position);
    const std::size_t above = std::min(below + 1, sorted.size() - 1);
    return sorted[below] + (position - static_cast<double>(below)) * (sorted[above] - sorted[below]);
}

} // namespace

double computeBandwidth(const KDEBandwidthPolicy& policy, std::span<const double> values)
{
    if (policy.Rule == eKDEBandwidth::eKB_Fixed) {
        return policy.Bandwidth;
    }
    // A deviation of equal values need not be 0 when its mean is rounded.
    if (values.size() < 2 || std::equal(values.begin() + 1, values.end(), values.begin())) {
        return 0;
    }
    double spread = standardDeviation(values);
    if (policy.Rule != eKDEBandwidth::eKB_Scott && !std::isnan(spread)) {
        std::vector<double> sorted(values.begin(), values.end());
        std::sort(sorted.begin(), sorted.end());
        const double range = quantile(sorted, 0.75) - quantile(sorted, 0.25);
        spread = 0.9 * (range > 0 ? std::min(spread, range / 1.34) : spread);
    }
    return spread * std::pow(static_cast<double>(values.size()), -0.2);
}

} // namespace orlix::imaproc::attr
