#pragma once

#include <framework/attribute/Attribute.hpp>
#include <framework/attribute/PlanIndexedColl.hpp>

namespace orlix::imaproc::attr
{

/// The Shannon entropy of a distribution of grey levels.
class ORLIX_API GlobalEntropyResult final : public data::DataItem<GlobalEntropyResult>
{
public:
    static constexpr const char* typeName = "orlix::imaproc::attr::GlobalEntropyResult";

    double Entropy = 0;

    void visitFields(data::FieldVisitor& field) override
    {
        field({"Entropy", "sum of p log(1 / p) over the classes of the histogram", "nats"}, Entropy);
    }
};

class ORLIX_API PlanIndexedGlobalEntropyResult final
    : public PlanIndexedColl<PlanIndexedGlobalEntropyResult, GlobalEntropyResult>
{
public:
    static constexpr const char* typeName = "orlix::imaproc::attr::PlanIndexedGlobalEntropyResult";
};

class ORLIX_API OutGlobalEntropyResult final : public ObjectOutput<OutGlobalEntropyResult, GlobalEntropyResult>
{
public:
    static constexpr const char* name = "OutGlobalEntropyResult";
};

class ORLIX_API OutPIGlobalEntropyResult final
    : public PlanIndexedOutput<OutPIGlobalEntropyResult, PlanIndexedGlobalEntropyResult>
{
public:
    static constexpr const char* name = "OutPIGlobalEntropyResult";
};

} // namespace orlix::imaproc::attr
