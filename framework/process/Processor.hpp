#pragma once

#include <framework/attribute/ImageAttributes.hpp>
#include <framework/process/BaseProcessingAlgorithm.hpp>
#include <framework/process/BaseProcessor.hpp>
#include <framework/process/ProcessorClass.hpp>

#include <concepts>
#include <memory>
#include <string>
#include <tuple>
#include <type_traits>

namespace orlix::imaproc
{

/// Allocates an unset output as one empty result.
template <class Output>
void AllocateInitializer(Output& output)
{
    output.setInitializer([&output] { output.assign(data::makeRecord<typename Output::Value>()); });
}

/// Allocates an unset output collection with one empty element per plan of the input image.
template <class Output, class Input>
void FromImagePlanIndexedInitializer(Output& output, const Input& input)
{
    output.setInitializer([&output, &input] {
        const image::PlanRange plans{input.get()->getGeometry(), Input::kind};
        auto collection = data::makeRecord<typename Output::Value>();
        collection->reserve(plans.size());
        for (std::size_t i = 0; i < plans.size(); ++i) {
            collection->insert(plans[i], data::makeRecord<typename Output::Element>());
        }
        output.assign(std::move(collection));
    });
}

/// Allocates an unset output image with the input's pixel type and the sizes that follow from its own.
template <attr::ImageOutputAttribute Output, class Input>
void duplicateInOut(Output& output, const Input& input)
{
    output.setInitializer([&output, &input] {
        const image::BaseImage& image = *input.get();
        output.assign(image::BaseImage::create(image.getType(), Output::geometryFor(image.getGeometry())));
    });
}

/// The same with one time.
template <class Input>
void duplicateSingleInOut(attr::OutSingleImg& output, const Input& input)
{
    duplicateInOut(output, input);
}

/// The same with one plane.
template <class Input>
void duplicate2dInOut(attr::OutImg2d& output, const Input& input)
{
    duplicateInOut(output, input);
}

template <class Output, class Input>
void fromImage(Output& output, const Input& input)
{
    FromImagePlanIndexedInitializer(output, input);
}

/// What every processor class inherits: identity, attributes, copying, archives and creation. Self has `static
/// ProcessorClass processorClass` (at level 3 AlgorithmClass), defined in its source file; Attributes stand in their
/// fixed order, inputs first.
template <class Self, class Base, class... Attributes>
class Processor : public Base
{
public:
    template <class A>
    static constexpr bool has = (std::same_as<A, Attributes> || ...);

    /// The last attribute is what the processor is run for.
    using Output = std::tuple_element_t<sizeof...(Attributes) - 1, std::tuple<Attributes...>>;

    static_assert(sizeof...(Attributes) <= AttributeColl::static_capacity);

    Processor() = default;
    Processor(const Processor&) = delete;
    Processor& operator=(const Processor&) = delete;

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
    static Ptr<Self> createProcessor() { return makePtr<Self>(); }
    static Ptr<BaseProcessor> createBaseProcessor() { return makePtr<Self>(); }
    static constexpr ProcessorCreators creators()
    {
        return {&createNewObject, &createSharedObject, &createBaseProcessor};
    }

    const std::string& getClassName() const final { return getTypeName(); }
    const std::string& getObjectName() const final { return getObjectNameStr(); }
    const std::string& getToolTip() const final { return getToolTipStr(); }
    unsigned getClassVersion() const final { return getVersion(); }
    std::unique_ptr<data::BaseDynamicObject> createNew() const final { return createNewObject(); }
    Ptr<data::BaseDynamicObject> createShared() const final { return createSharedObject(); }

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

    /// Appends the attributes and tells how unset outputs are made.
    void initAttributeColl(AttributeColl& attributes)
    {
        std::apply([&](Attributes&... each) { (attributes.push_back(&each), ...); }, attributes_);
        std::apply([&](Attributes&... each) { (installInitializer(each), ...); }, attributes_);
    }

    core::ProcessingResult initDerived(AttributeColl& attributes, ProcessorDispatchPolicy& dispatchPolicy, Rule& rule,
                                       eProcessorRulePolicy rulePolicy) override
    {
        initAttributeColl(attributes);
        dispatchPolicy = getDefaultDispatchPolicy();
        if (rulePolicy != eProcessorRulePolicy::eRP_NoRules) {
            rule = makeRule();
        }
        return {};
    }

    bool acceptsEmptyImages() const final
    {
        if constexpr (attr::PlanIndexedAttribute<Output>) {
            return attr::isDefinedWithoutPixels<typename Output::Element>;
        } else {
            return attr::isDefinedWithoutPixels<typename Output::Value>;
        }
    }

    virtual Rule makeRule() const { return none(); }

    /// Calls `visit` with every attribute, in order.
    template <class Visitor>
    void forEachAttribute(Visitor visit) const
    {
        std::apply([&](const Attributes&... each) { (visit(each), ...); }, attributes_);
    }

private:
    template <class A>
    void installInitializer(A& output)
    {
        if constexpr (A::role == attr::eAttributeRole::eAR_Output) {
            if constexpr (attr::PlanIndexedAttribute<A>) {
                fromImage(output, std::get<0>(attributes_));
            } else if constexpr (attr::ImageOutputAttribute<A>) {
                if constexpr (std::same_as<A, attr::OutSingleImg>) {
                    duplicateSingleInOut(output, std::get<0>(attributes_));
                } else {
                    duplicate2dInOut(output, std::get<0>(attributes_));
                }
            } else {
                AllocateInitializer(output);
            }
        }
    }

    std::tuple<Attributes...> attributes_;
};

/// What every level 3 class inherits: its kernels, and the parsers and types of its strips. Self has `static
/// AlgorithmClass processorClass`.
template <class Self, class... Attributes>
class Algorithm : public Processor<Self, BaseProcessingAlgorithm, Attributes...>
{
public:
    static AlgorithmFunctionSelector& retrieveFunctionSelector() { return Self::processorClass.getFunctionSelector(); }
    AlgorithmFunctionSelector& accessFunctionSelector() const { return retrieveFunctionSelector(); }
    const AlgorithmFunctionSelector& getFunctionSelector() const final { return retrieveFunctionSelector(); }

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
    core::InstructionSetsIdentifier getForcedInstructionSets() const final { return retrieveForcedInstructionSets(); }

protected:
    /// Enters Self's kernels of every domain that this machine has, for those pixel types of which
    /// `exists(std::type_identity<T>, domain)`; all strips but masks have that type.
    template <class Exists>
    static void registerKernels(AlgorithmFunctionSelector& selector, Exists exists)
    {
        forEachKernel(exists, [&]<class T, core::eInstructionSet::domain Set>(Kernel<T, Set>) {
            image::DataTypeIdentifierColl types;
            for (std::size_t i = 0; i < nbTypedStrips; ++i) {
                types.add(identify<T>());
            }
            registerKernel<T, Set>(selector, types);
        });
    }

    /// The same for pairs of pixel types: the kernel of the first type serves every second type.
    template <class Exists>
    static void registerPairKernels(AlgorithmFunctionSelector& selector, Exists exists)
    {
        forEachKernel(exists, [&]<class T, core::eInstructionSet::domain Set>(Kernel<T, Set>) {
            image::forEachPixelType([&]<class U>(std::type_identity<U>) {
                registerKernel<T, Set>(selector, {identify<T>(), identify<U>()});
            });
        });
    }

    void getDataTypeIdColl(image::DataTypeIdentifierColl& dataTypes) const override
    {
        forEachStrip([&]<class A>(const A& attribute) {
            if constexpr (!attr::MaskAttribute<A>) {
                dataTypes.add(image::ImageBufferTypeIdentifier{attribute.get().image->getType()});
            }
        });
    }
    void initDataParserColl(StripParserColl& parsers) const override
    {
        forEachStrip([&](const auto& attribute) { parsers.push_back(image::StripParser{attribute.get().getBox()}); });
    }

private:
    template <class T, core::eInstructionSet::domain Set>
    struct Kernel
    {
    };

    template <class A>
    static constexpr bool isTypedStrip = attr::StripAttribute<A> && !attr::MaskAttribute<A>;
    static constexpr std::size_t nbTypedStrips = (std::size_t{isTypedStrip<Attributes>} + ...);

    template <class T>
    static constexpr image::ImageBufferTypeIdentifier identify()
    {
        return image::ImageBufferTypeIdentifier{image::imageBufferTypeOf<T>};
    }

    template <class Exists, class Visitor>
    static void forEachKernel(Exists exists, Visitor visit)
    {
        const auto visitDomains = [&]<core::eInstructionSet::domain... Sets>()
        {
            (image::forEachPixelType([&]<class T>(std::type_identity<T> type) {
                 if (core::isAvailable(Sets) && exists(type, Sets)) {
                     visit(Kernel<T, Sets>{});
                 }
             }),
             ...);
        };
        using Domain = core::eInstructionSet;
        visitDomains.template
        operator()<Domain::eIS_Generic, Domain::eIS_SSE2, Domain::eIS_AVX, Domain::eIS_AVX2, Domain::eIS_AVX512>();
    }

    /// Enters Self's `genericProcessFunction<T, Set>` for the pixel types of its strips.
    template <class T, core::eInstructionSet::domain Set>
    static void registerKernel(AlgorithmFunctionSelector& selector, const image::DataTypeIdentifierColl& types)
    {
        const core::InstructionSetsIdentifier sets{Set};
        if (selector.isSupported(sets)) {
            selector.registerFunction({types, sets, AlgorithmFunctionEfficiency<Set, 0, 0>::getEfficiency(),
                                       static_cast<AlgorithmFunction>(&Self::template genericProcessFunction<T, Set>)});
        }
    }

    template <class Visitor>
    void forEachStrip(Visitor visit) const
    {
        this->forEachAttribute([&](const auto& attribute) {
            if constexpr (attr::StripAttribute<std::remove_cvref_t<decltype(attribute)>>) {
                if (attribute.isSet()) {
                    visit(attribute);
                }
            }
        });
    }
};

} // namespace orlix::imaproc
