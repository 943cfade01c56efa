#include <ORLIX/Measures/Figures.hpp>

#include <ORLIX/Measures/Describe/DescribeKernels.hpp>
#include <ORLIX/Measures/Pieces.hpp>

namespace orlix::measures
{

namespace
{

/// The first pixel of a value from pixel `at` on, in the run where that is.
template <class T>
Position findFirst(const Piece& piece, std::size_t at, double value)
{
    const std::size_t run = at / piece.runSize;
    const T* const pixels = piece.images[0].run<T>(run, piece.runSize);
    const std::uint8_t* const mask = piece.maskRun(run);
    const auto wanted = static_cast<T>(value);
    std::size_t i = at % piece.runSize;
    constexpr std::size_t group = 256 / sizeof(T); // looked through without a question at each pixel
    const auto isInGroup = [&] {
        Unsigned<T> found = 0; // as wide as a pixel, so that the compiler compares many at a time
        for (std::size_t k = 0; k < group; ++k) {
            found |= static_cast<Unsigned<T>>(pixels[i + k] == wanted);
        }
        return found != 0;
    };
    while (mask == nullptr && i + group <= piece.runSize && !isInGroup()) {
        i += group;
    }
    while (pixels[i] != wanted || (mask != nullptr && mask[i] == 0)) {
        ++i;
    }
    return piece.positionOf(run * piece.runSize + i);
}

template <class T>
void addFigures(const Piece& piece, bool countsSaturated, Figures& part)
{
    DescribeFigures figures{};
    figures.min = part.min.value; // what is found lies behind it: pieces enter in their order
    figures.max = part.max.value;
    figures.countsSaturated = countsSaturated;
    constexpr std::size_t nowhere = std::numeric_limits<std::size_t>::max();
    std::size_t minAt = nowhere;
    std::size_t maxAt = nowhere;
    forEachRun<T>(piece, getDescribeKernels(), getDescribeMaskKernels(), [&](auto kernel, auto run, std::size_t i) {
        figures.minBlock = figures.maxBlock = nullptr;
        kernel(run, figures);
        const auto find = [&](const void* block, std::size_t& at) {
            if (block != nullptr) {
                at = i * piece.runSize + static_cast<std::size_t>(static_cast<const T*>(block) - run.pixels);
            }
        };
        find(figures.minBlock, minAt);
        find(figures.maxBlock, maxAt);
    });
    part.nbNumbers += figures.nbNumbers;
    part.nbNaN += figures.nbNaN;
    part.nbPositiveInfinity += figures.nbPositiveInfinity;
    part.nbNegativeInfinity += figures.nbNegativeInfinity;
    part.nbSaturated += figures.nbSaturated;
    imaproc::add(part.sum, figures.sum);
    imaproc::add(part.squares, figures.squares);
    if (minAt != nowhere) {
        part.min = {figures.min + 0.0, findFirst<T>(piece, minAt, figures.min)}; // of both zeros one
    }
    if (maxAt != nowhere) {
        part.max = {figures.max + 0.0, findFirst<T>(piece, maxAt, figures.max)};
    }
}

} // namespace

void Figures::add(const Piece& piece, bool countsSaturated)
{
    withPixelType(piece.types[0],
                  [&]<class T>(std::type_identity<T>) { addFigures<T>(piece, countsSaturated, *this); });
}

void Figures::combine(const Figures& from)
{
    nbNumbers += from.nbNumbers;
    nbNaN += from.nbNaN;
    nbPositiveInfinity += from.nbPositiveInfinity;
    nbNegativeInfinity += from.nbNegativeInfinity;
    nbSaturated += from.nbSaturated;
    imaproc::add(sum, from.sum);
    imaproc::add(squares, from.squares);
    replace(min, from.min, std::less<>{});
    replace(max, from.max, std::greater<>{});
}

} // namespace orlix::measures
