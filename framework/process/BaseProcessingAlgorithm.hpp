#pragma once

#include <framework/core/InstructionSet.hpp>
#include <framework/image/Strip.hpp>
#include <framework/process/AlgorithmFunctionSelector.hpp>
#include <framework/process/BaseProcessor.hpp>

#include <boost/container/static_vector.hpp>

#include <atomic>

namespace orlix::imaproc
{

/// The parsers of an algorithm's strips, in the order of its attributes.
using StripParserColl = boost::container::static_vector<image::StripParser, image::DataTypeIdentifierColl::capacity>;

/// What all algorithms of one class share: their kernels, and the instruction set that they are forced to.
class ORLIX_API AlgorithmClass final : public ProcessorClass
{
public:
    /// `functionRegistration` enters the kernels that this machine can run.
    AlgorithmClass(const std::type_info& type, Origin origin, const ProcessorCreators& creators,
                   void (*functionRegistration)(AlgorithmFunctionSelector&));

    AlgorithmFunctionSelector& getFunctionSelector() { return selector_; }

    void forceInstructionSets(core::InstructionSetsIdentifier sets);
    core::InstructionSetsIdentifier getForcedInstructionSets() const { return forced_.load(std::memory_order_relaxed); }

private:
    AlgorithmFunctionSelector selector_;
    std::atomic<core::InstructionSetsIdentifier> forced_{core::InstructionSetsIdentifier{}};
};

/// A processor that runs one kernel on one strip, in the calling thread.
class ORLIX_API BaseProcessingAlgorithm : public BaseProcessor
{
public:
    bool isComplexAction() const override { return false; }
    eProcessorType getProcessorType() const override { return eProcessorType::ePT_Synchronous; }

    virtual const AlgorithmFunctionSelector& getFunctionSelector() const;
    /// The sets that the class is forced to; empty unless forced.
    virtual core::InstructionSetsIdentifier getForcedInstructionSets() const;

protected:
    core::ProcessingResult runDerived(const RunContext& context) override;

    /// Selects the kernel, parses the strips and calls it.
    virtual core::ProcessingResult mainProcess();
    /// The pixel types of the strips that are set, but for masks: the key of the kernel lookup.
    virtual void getDataTypeIdColl(image::DataTypeIdentifierColl& dataTypes) const;
    virtual void initDataParserColl(StripParserColl& parsers) const;
    virtual void clearDataParserColl(StripParserColl& parsers) const { parsers.clear(); }
    virtual core::ProcessingResult preProcess() { return {}; }
    virtual core::ProcessingResult postProcess() { return {}; }

    /// What a kernel without strips is called with.
    virtual ProcessingInfo getNoParseInfo() const { return {}; }

    /// The sets that hold for a run: those that the class is forced to, else those of the settings.
    core::InstructionSetsIdentifier getEffectiveSets() const;

    /// The set of the kernel that runs.
    core::eInstructionSet::domain getDomain() const { return domain_; }
    const StripParserColl& getParsers() const { return parsers_; }
    const image::StripParser& getParser(std::size_t i) const { return parsers_[i]; }

    /// Enters `genericProcessFunction<T>` of Self for every pixel type T and every set of this machine of which
    /// `exists(std::type_identity<T>, domain)`; so many strips have that type.
    template <class Self, class Exists>
    static void registerKernels(AlgorithmFunctionSelector& selector, std::size_t nbStrips, Exists exists)
    {
        image::forEachPixelType([&]<class T>(std::type_identity<T> type) {
            image::DataTypeIdentifierColl types;
            for (std::size_t i = 0; i < nbStrips; ++i) {
                types.add(identify<T>());
            }
            registerForSets(types, functionOf<Self, T>, selector,
                            [&](core::eInstructionSet::domain set) { return exists(type, set); });
        });
    }
    /// The same for pairs of pixel types: the function of the first type serves every second type.
    template <class Self, class Exists>
    static void registerPairKernels(AlgorithmFunctionSelector& selector, Exists exists)
    {
        image::forEachPixelType([&]<class T>(std::type_identity<T> type) {
            image::forEachPixelType([&]<class U>(std::type_identity<U>) {
                registerForSets({identify<T>(), identify<U>()}, functionOf<Self, T>, selector,
                                [&](core::eInstructionSet::domain set) { return exists(type, set); });
            });
        });
    }

private:
    template <class Self, class T>
    static constexpr auto functionOf = static_cast<AlgorithmFunction>(&Self::template genericProcessFunction<T>);

    template <class T>
    static constexpr image::ImageBufferTypeIdentifier identify()
    {
        return image::ImageBufferTypeIdentifier{image::imageBufferTypeOf<T>};
    }

    template <class Exists>
    static void registerForSets(const image::DataTypeIdentifierColl& types, AlgorithmFunction function,
                                AlgorithmFunctionSelector& selector, Exists exists)
    {
        for (const core::eInstructionSet::domain set : core::allDomains) {
            if (core::isAvailable(set) && exists(set)) {
                selector.registerFunction({types, set, getEfficiency(set), function});
            }
        }
    }

    StripParserColl parsers_;
    core::eInstructionSet::domain domain_ = core::eInstructionSet::eIS_Generic;
};

} // namespace orlix::imaproc
