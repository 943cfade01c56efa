#include <framework/core/Settings.hpp>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>

/// The benchmarks, in the instruction set of `--isa=avx2` and the like, where one is given before all other options.
int main(int argc, char** argv)
{
    using namespace orlix;
    constexpr const char* option = "--isa=";
    if (argc > 1 && std::strncmp(argv[1], option, std::strlen(option)) == 0) {
        const auto set = core::findInstructionSet(argv[1] + std::strlen(option));
        if (!set || !core::isAvailable(*set)) {
            std::fprintf(stderr, "%s: this machine has no such instruction set\n", argv[1]);
            return 2;
        }
        core::settings::forceInstructionSets(*set);
        argv[1] = argv[0];
        ++argv;
        --argc;
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
