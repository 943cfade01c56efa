#pragma once

#include <framework/core/Api.hpp>
#include <framework/core/InstructionSet.hpp>
#include <framework/core/LazyStatic.hpp>
#include <framework/data/DynamicObjectFactory.hpp>
#include <framework/process/AlgorithmFunctionSelector.hpp>
#include <framework/process/DispatchPolicy.hpp>
#include <framework/process/ProcessorFactory.hpp>

#include <atomic>
#include <functional>
#include <string>

namespace orlix::imaproc
{

/// The mutexes of the lazily built statics, one per kind, each created on first use.
ORLIX_API core::Mutex& ToolTipMutex();
ORLIX_API core::Mutex& DispatchPolicyMutex();
ORLIX_API core::Mutex& VersionMutex();
ORLIX_API core::Mutex& ForcedInstructionSetsMutex();

/// Who a processor class is.
struct Identity
{
    std::string typeName;   ///< fully qualified
    std::string objectName; ///< without namespace
    std::string libraryName;
    const char* sourceFile = "";
    std::function<std::string()> toolTip; ///< from the library's message table
    bool isListed = true;                 ///< whether the processor factory offers the class to hosts
};

struct ProcessorCreators
{
    data::DynamicObjectFactory::Creator plain;
    data::DynamicObjectFactory::SharedCreator shared;
    ProcessorInfo::Creator processor;
};

/// What all processors of one class share. The object is a static of the class: it registers the class in both
/// factories when the library loads, and unregisters it when the library unloads.
class ORLIX_API ProcessorClass
{
public:
    ProcessorClass(Identity identity, const ProcessorCreators& creators);
    ~ProcessorClass();
    ProcessorClass(const ProcessorClass&) = delete;
    ProcessorClass& operator=(const ProcessorClass&) = delete;

    const std::string& getTypeName() const { return identity_.typeName; }
    const std::string& getObjectName() const { return identity_.objectName; }
    const std::string& getToolTip();
    unsigned getVersion();
    const ProcessorDispatchPolicy& getDefaultDispatchPolicy();

private:
    Identity identity_;
    core::LazyStatic<std::string> toolTip_;
    core::LazyStatic<unsigned> version_;
    core::LazyStatic<ProcessorDispatchPolicy> dispatchPolicy_;
};

/// A level 3 class has its kernels, and may be forced to an instruction set.
class ORLIX_API AlgorithmClass : public ProcessorClass
{
public:
    /// `functionRegistration` enters the kernels that this machine can run.
    AlgorithmClass(Identity identity, const ProcessorCreators& creators,
                   void (*functionRegistration)(AlgorithmFunctionSelector&));

    AlgorithmFunctionSelector& getFunctionSelector() { return selector_; }

    void forceInstructionSets(core::InstructionSetsIdentifier sets);
    core::InstructionSetsIdentifier getForcedInstructionSets() const { return forced_.load(std::memory_order_relaxed); }

private:
    AlgorithmFunctionSelector selector_;
    std::atomic<core::InstructionSetsIdentifier> forced_{core::InstructionSetsIdentifier{}};
};

} // namespace orlix::imaproc
