#include <framework/core/InstructionSet.hpp>

namespace orlix::core
{

namespace
{

struct Set
{
    eInstructionSet::domain domain;
    const char* name;
};

constexpr Set sets[] = {{eInstructionSet::eIS_Generic, "generic"},
                        {eInstructionSet::eIS_SSE2, "sse2"},
                        {eInstructionSet::eIS_AVX, "avx"},
                        {eInstructionSet::eIS_AVX2, "avx2"},
                        {eInstructionSet::eIS_AVX512, "avx512"}};

} // namespace

bool isAvailable(eInstructionSet::domain set)
{
    __builtin_cpu_init(); // may run before the compiler's own constructor
    switch (set) {
    case eInstructionSet::eIS_Generic:
        return true;
    case eInstructionSet::eIS_SSE2:
        return __builtin_cpu_supports("sse2") != 0;
    case eInstructionSet::eIS_AVX:
        return __builtin_cpu_supports("avx") != 0;
    case eInstructionSet::eIS_AVX2:
        return __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("fma") != 0;
    case eInstructionSet::eIS_AVX512:
        return __builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx512bw") != 0 &&
               __builtin_cpu_supports("avx512dq") != 0 && __builtin_cpu_supports("avx512vl") != 0;
    }
    return false;
}

bool isAvailable(eInstructionExtension extension)
{
    __builtin_cpu_init();
    switch (extension) {
    case eInstructionExtension::eIE_Avx512Vnni:
        return __builtin_cpu_supports("avx512vnni") != 0;
    case eInstructionExtension::eIE_Avx512Ifma:
        return __builtin_cpu_supports("avx512ifma") != 0;
    }
    return false;
}

const char* getName(eInstructionSet::domain set)
{
    for (const Set& known : sets) {
        if (known.domain == set) {
            return known.name;
        }
    }
    return "unknown";
}

std::optional<eInstructionSet::domain> findInstructionSet(std::string_view name)
{
    for (const Set& known : sets) {
        if (known.name == name) {
            return known.domain;
        }
    }
    return std::nullopt;
}

bool isAvailable(InstructionSetsIdentifier identifier)
{
    for (const Set& known : sets) {
        if (identifier.contains(known.domain) && !isAvailable(known.domain)) {
            return false;
        }
    }
    return true;
}

std::string toString(InstructionSetsIdentifier identifier)
{
    std::string names;
    for (const Set& known : sets) {
        if (identifier.contains(known.domain)) {
            names += (names.empty() ? "" : ", ") + std::string{known.name};
        }
    }
    return names;
}

} // namespace orlix::core
