#pragma once

#include <ORLIX/Measures/Extreme.hpp>

#include <framework/kernel/FloatSums.hpp>
#include <framework/process/StateModel.hpp>

namespace orlix::measures
{

using namespace imaproc;

/// Number, sums and extremes of pixels: of float pixels in units of 2^-149 and 2^-298, of others in ones.
struct Figures
{
    std::uint64_t nbNumbers = 0; ///< pixels that count, and are no NaN
    std::uint64_t nbNaN = 0;
    std::uint64_t nbPositiveInfinity = 0;
    std::uint64_t nbNegativeInfinity = 0;
    std::uint64_t nbSaturated = 0; ///< integer pixels at the limits of their type, where they are counted
    FloatSum sum{};
    FloatProductSum squares{};
    Extreme min;
    Extreme max;

    /// The pixels of a piece, which lies behind those that have entered.
    void add(const Piece& piece, bool countsSaturated = false);
    void combine(const Figures& from);
    static int getUnit(image::eImageBufferType type)
    {
        return type == image::eImageBufferType::eIBT_Float32 ? floatUnit : 0;
    }

    template <class Stream>
    void pass(Stream& stream)
    {
        stream(nbNumbers), stream(nbNaN), stream(nbPositiveInfinity), stream(nbNegativeInfinity);
        stream(nbSaturated), stream(sum.word), stream(squares.word), stream(min), stream(max);
    }
};

} // namespace orlix::measures
