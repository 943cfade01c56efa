#pragma once

#include <framework/attribute/Attribute.hpp>
#include <framework/attribute/PlanIndexedColl.hpp>

#include <span>
#include <vector>

namespace orlix::imaproc::attr
{

/// What a kernel density estimate is evaluated from.
class ORLIX_API KDEDataSet final : public data::DataItem<KDEDataSet>
{
public:
    static constexpr const char* typeName = "orlix::imaproc::attr::KDEDataSet";

    std::vector<double> Samples;
    double Bandwidth = 0;

    void visitFields(data::FieldVisitor& field) override
    {
        field({"Samples", "the pixels that were drawn", "grey levels"}, Samples);
        field({"Bandwidth", "standard deviation of the kernel", "grey levels"}, Bandwidth);
    }
};

class ORLIX_API PlanIndexedKDEDataSet final : public PlanIndexedColl<PlanIndexedKDEDataSet, KDEDataSet>
{
public:
    static constexpr const char* typeName = "orlix::imaproc::attr::PlanIndexedKDEDataSet";
};

/// Where a bandwidth comes from; any other value stands for Silverman's rule.
enum class eKDEBandwidth : unsigned
{
    eKB_Silverman = 0, ///< 0.9 min(s, IQR / 1.34) n^(-1/5) (B. W. Silverman, Density estimation, 1986, eq. 3.31)
    eKB_Scott = 1,     ///< s n^(-1/5)
    eKB_Fixed = 2      ///< that of the policy
};

inline std::span<const char* const> namesOf(eKDEBandwidth)
{
    static constexpr const char* names[] = {"silverman", "scott", "fixed"};
    return names;
}

/// How the bandwidth is chosen.
class ORLIX_API KDEBandwidthPolicy final : public data::DataItem<KDEBandwidthPolicy>
{
public:
    static constexpr const char* typeName = "orlix::imaproc::attr::KDEBandwidthPolicy";

    eKDEBandwidth Rule = eKDEBandwidth::eKB_Silverman;
    double Bandwidth = 0;

    void visitFields(data::FieldVisitor& field) override
    {
        field({"Rule", "where the bandwidth comes from", "", "bandwidth"}, Rule);
        field({"Bandwidth", "the bandwidth, where Rule is fixed", "grey levels"}, Bandwidth);
    }
    /// A number for Rule is a bandwidth.
    void setParameter(std::string_view name, const data::Value& value) override;
};

/// The bandwidth for a sample: s is its standard deviation (divisor n - 1), IQR the distance of its quartiles (linear
/// interpolation; only s counts where it is 0). 0 for fewer than two values and for equal ones, but for a fixed one.
ORLIX_API double computeBandwidth(const KDEBandwidthPolicy& policy, std::span<const double> values);

/// 1000 where it is not set.
class ORLIX_API InOptKDENbSamples final
    : public ValueInput<InOptKDENbSamples, unsigned, eAttributeRole::eAR_OptionalInput>
{
public:
    static constexpr const char* name = "InOptKDENbSamples";
    static constexpr data::FieldInfo info{
        .name = name, .help = "how many pixels are drawn", .unit = "pixels", .option = "samples"};
    static Storage getDefault() { return 1000u; }
};

/// Silverman's rule where it is not set.
class ORLIX_API InOptKDEBandwidthPolicy final : public OptionalInput<InOptKDEBandwidthPolicy, KDEBandwidthPolicy>
{
public:
    static constexpr const char* name = "InOptKDEBandwidthPolicy";
    static Storage getDefault() { return makePtr<KDEBandwidthPolicy>(); }
};

class ORLIX_API InKDENbSamples final : public ValueInput<InKDENbSamples, unsigned>
{
public:
    static constexpr const char* name = "InKDENbSamples";
};

class ORLIX_API InKDEBandwidthPolicy final : public ObjectInput<InKDEBandwidthPolicy, KDEBandwidthPolicy>
{
public:
    static constexpr const char* name = "InKDEBandwidthPolicy";
};

class ORLIX_API OutKDEDataSet final : public ObjectOutput<OutKDEDataSet, KDEDataSet>
{
public:
    static constexpr const char* name = "OutKDEDataSet";
};

class ORLIX_API OutPIKDEDataSet final : public PlanIndexedOutput<OutPIKDEDataSet, PlanIndexedKDEDataSet>
{
public:
    static constexpr const char* name = "OutPIKDEDataSet";
};

} // namespace orlix::imaproc::attr
