#pragma once

#include <framework/attribute/ImageAttributes.hpp>
#include <framework/process/BaseProcessingAlgorithm.hpp>

#include <concepts>
#include <memory>
#include <string>
#include <tuple>

namespace orlix::imaproc
{

/// What every processor class inherits: identity, attributes and creation. Self has a `static processorClass`, a
/// ProcessorClass that its source file defines; Attributes stand in their fixed order, inputs first, and the last is
/// what the processor is run for.
template <class Self, class Base, class... Attributes>
class Processor : public Base
{
public:
    using AttributeTypes = std::tuple<Attributes...>;
    using Output = std::tuple_element_t<sizeof...(Attributes) - 1, AttributeTypes>;

    template <class A>
    static constexpr bool has = (std::same_as<A, Attributes> || ...);

    static_assert(sizeof...(Attributes) <= AttributeColl::static_capacity);

    static const std::string& getTypeName() { return Self::processorClass.getTypeName(); }
    static const std::string& getObjectNameStr() { return Self::processorClass.getObjectName(); }
    static const std::string& getToolTipStr() { return Self::processorClass.getToolTip(); }
    static unsigned getVersion() { return Self::processorClass.getVersion(); }
    static const ProcessorDispatchPolicy& getDefaultDispatchPolicy()
    {
        return Self::processorClass.getDefaultDispatchPolicy();
    }

    static std::unique_ptr<data::BaseDynamicObject> createNewObject() { return std::make_unique<Self>(); }
    static Ptr<data::BaseDynamicObject> createSharedObject() { return makePtr<Self>(); }
    static Ptr<BaseProcessor> createBaseProcessor() { return makePtr<Self>(); }
    static constexpr ProcessorCreators creators()
    {
        return {&createNewObject, &createSharedObject, &createBaseProcessor};
    }
    /// By the library of the class.
    static Ptr<Self> createProcessor()
    {
        return boost::static_pointer_cast<Self>(Self::processorClass.getCreators().processor());
    }

    ProcessorClass& getProcessorClass() const final { return Self::processorClass; }

    /// Throws ORLIXBaseProcessingException if the processor is not initialised, or runs.
    template <class A>
    requires has<A>
    void set(typename A::Storage value)
    {
        this->requireIdle(ORLIX_HERE);
        this->requireInitialized(ORLIX_HERE);
        attribute<A>().init(std::move(value));
    }
    template <class A>
    requires has<A>
    typename A::Storage getStorage() const
    {
        this->requireInitialized(ORLIX_HERE);
        return attribute<A>().get();
    }

protected:
    template <class A>
    A& attribute()
    {
        return std::get<A>(attributes_);
    }
    template <class A>
    const A& attribute() const
    {
        return std::get<A>(attributes_);
    }

    /// The value behind an attribute that is set.
    template <class A>
    auto& value() const
    {
        return *attribute<A>().get();
    }

    void initAttributeColl(AttributeColl& attributes) override
    {
        std::apply([&](Attributes&... each) { (attributes.push_back(&each), ...); }, attributes_);
    }

private:
    AttributeTypes attributes_;
};

/// What every level 3 class inherits. Self has a `static AlgorithmClass processorClass`, with its kernels; Strip is the
/// BaseProcessingAlgorithm that calls them.
template <class Self, class Strip, class... Attributes>
class Algorithm : public Processor<Self, Strip, Attributes...>
{
public:
    static AlgorithmFunctionSelector& retrieveFunctionSelector() { return Self::processorClass.getFunctionSelector(); }
    AlgorithmFunctionSelector& accessFunctionSelector() const { return retrieveFunctionSelector(); }

    /// Runs all instances of the class in this set, whatever is forced in the settings.
    static void forceInstructionSets(core::InstructionSetsIdentifier sets)
    {
        Self::processorClass.forceInstructionSets(sets);
    }
    static void releaseForcedInstructionSets() { forceInstructionSets({}); }
    static core::InstructionSetsIdentifier retrieveForcedInstructionSets()
    {
        return Self::processorClass.getForcedInstructionSets();
    }
    core::InstructionSetsIdentifier accessForcedInstructionSets() const { return retrieveForcedInstructionSets(); }
};

} // namespace orlix::imaproc
