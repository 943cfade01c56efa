#pragma once

#include <framework/core/Api.hpp>

#include <cstdint>
#include <mutex>

/// The one uniform random generator of the process, a 32-bit Mersenne twister, callable from any thread. It starts from
/// a fixed seed, so a program that draws from one thread draws the same numbers in every run.
namespace orlix::core::random
{

inline constexpr std::uint32_t defaultSeed = 5489;

/// Starts the sequence that belongs to the seed.
ORLIX_API void setSeed(std::uint32_t seed);

/// Draws from the generator; as long as it lives, nobody else does.
class ORLIX_API Draw
{
public:
    Draw();

    /// Uniform among 0 ... size - 1, the same on every machine; size is above 0.
    std::uint32_t operator()(std::uint32_t size);

private:
    std::lock_guard<std::mutex> lock_;
};

} // namespace orlix::core::random
