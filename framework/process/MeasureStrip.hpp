#pragma once

#include <framework/process/KernelTables.hpp>
#include <framework/process/Processor.hpp>

namespace orlix::imaproc
{

/// What the kernel of a measure is given: its strips as runs.
struct Strips
{
    ProcessingInfo info;
    const StripParserColl& parsers;
    const BaseProcessingAlgorithm& algorithm;

    /// The value of one of the algorithm's attributes, which is set.
    template <class A>
    typename A::Storage get() const
    {
        return algorithm.getStorage<A>();
    }
};

/// Level 3 of a measure M: a strip enters a state, and the state becomes a result. M has, beside what merges results
/// (Merge.hpp),
///
///     static const KernelTables<KernelsByType<Kernel>>& getKernels();
///     template <class T> static void consume(Kernel<T> kernel, const Strips& strips, State& state);
///
/// and, where there are several images of one type, `static constexpr std::size_t nbImages`.
template <class M>
class MeasureStrip : public BaseProcessingAlgorithm
{
public:
    /// Enters the kernels that this machine can run.
    static void functionRegistration(AlgorithmFunctionSelector& selector)
    {
        registerKernels<MeasureStrip>(selector, nbImages, []<class T>(std::type_identity<T>, auto set) {
            return static_cast<bool>(kernelOf<T>(M::getKernels().of(set)));
        });
    }

    template <class T>
    core::ProcessingResult genericProcessFunction(ProcessingInfo info)
    {
        typename M::State state{};
        M::template consume<T>(kernelOf<T>(M::getKernels().of(getDomain())), Strips{info, getParsers(), *this}, state);
        M::finish(state, output<typename M::Result>());
        return {};
    }

private:
    static constexpr std::size_t nbImages = [] {
        if constexpr (requires { M::nbImages; }) {
            return M::nbImages;
        } else {
            return std::size_t{1};
        }
    }();
};

} // namespace orlix::imaproc
