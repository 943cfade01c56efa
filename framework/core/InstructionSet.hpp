#pragma once

#include <framework/core/Api.hpp>
#include <framework/core/Domain.hpp>

#include <bit>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orlix::core
{

/// Extensions that a second kernel table of the AVX-512 domain may want.
enum class eInstructionExtension
{
    eIE_Avx512Vnni,
    eIE_Avx512Ifma
};

/// Whether the processor and the operating system of this machine support the set.
ORLIX_API bool isAvailable(eInstructionSet::domain set);
ORLIX_API bool isAvailable(eInstructionExtension extension);

/// "generic", "sse2", "avx", "avx2", "avx512"
ORLIX_API const char* getName(eInstructionSet::domain set);
/// The set of that name, or nothing.
ORLIX_API std::optional<eInstructionSet::domain> findInstructionSet(std::string_view name);

/// The instruction sets that a kernel needs, or that a user forces; empty by default.
class InstructionSetsIdentifier
{
public:
    constexpr InstructionSetsIdentifier() = default;
    constexpr InstructionSetsIdentifier(eInstructionSet::domain set) : bits_{1u << set} {}

    constexpr bool empty() const { return bits_ == 0; }
    constexpr bool contains(eInstructionSet::domain set) const { return (bits_ >> set & 1u) != 0; }
    /// The highest of the sets; there is one.
    constexpr eInstructionSet::domain highest() const
    {
        return static_cast<eInstructionSet::domain>(std::bit_width(bits_) - 1);
    }
    constexpr bool contains(InstructionSetsIdentifier sets) const { return (sets.bits_ & ~bits_) == 0; }
    friend constexpr InstructionSetsIdentifier operator|(InstructionSetsIdentifier a, InstructionSetsIdentifier b)
    {
        a.bits_ |= b.bits_;
        return a;
    }
    friend constexpr bool operator==(InstructionSetsIdentifier a, InstructionSetsIdentifier b)
    {
        return a.bits_ == b.bits_;
    }

private:
    std::uint32_t bits_ = 0;
};

ORLIX_API bool isAvailable(InstructionSetsIdentifier sets);
/// The names of the sets, separated by commas.
ORLIX_API std::string toString(InstructionSetsIdentifier sets);

} // namespace orlix::core
