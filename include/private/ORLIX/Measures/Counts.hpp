#pragma once

#include <framework/kernel/CountTables.hpp>
#include <framework/process/StateModel.hpp>

#include <bit>
#include <memory>
#include <vector>

namespace orlix::measures
{

using namespace imaproc;

/// How often keys occur, in their order.
class ValueCounts
{
public:
    struct [[gnu::packed, gnu::aligned(4)]] Entry // 12 bytes
    {
        std::uint32_t key = 0;
        std::uint64_t count = 0;

        template <class Stream>
        void pass(Stream & stream)
        {
            std::uint32_t k = key; // of packed members there are no references
            std::uint64_t n = count;
            stream(k), stream(n);
            key = k, count = n;
        }
    };

    void reserve(std::size_t size) { entries_.reserve(size); }
    /// A key above those that are there.
    void append(std::uint32_t key, std::uint64_t count) { entries_.push_back({key, count}); }
    void merge(ValueCounts other);
    const std::vector<Entry>& getEntries() const { return entries_; }
    std::uint64_t getTotal() const;

    template <class Stream>
    void pass(Stream& stream)
    {
        stream(entries_);
        if constexpr (Stream::isReader) {
            checkOrder();
        }
    }

private:
    void checkOrder() const;

    std::vector<Entry> entries_;
};

/// The pixel of a key: of 8 or 16 bits its place among the values of its type, else a number of 32 bits that grows
/// with the pixel.
double valueOf(std::uint32_t key, image::eImageBufferType type);

template <class T>
std::uint32_t orderedBits(T pixel)
{
    if constexpr (std::is_same_v<T, float>) {
        const auto bits = std::bit_cast<std::uint32_t>(pixel + 0.f); // of both zeros one
        return (bits >> 31) != 0 ? ~bits : bits | 0x80000000u;
    } else {
        return static_cast<std::uint32_t>(pixel) ^ (std::is_signed_v<T> ? 0x80000000u : 0u);
    }
}

/// Tables that live while pixels of one part enter.
class ValueCounter final : public CountTables<ValueTables>
{
public:
    explicit ValueCounter(image::eImageBufferType type);

    /// The pixels of a piece by values of 8 and 16 bits, or by the upper half of 32. None lies outside of the range.
    void add(const Piece& piece, double lowest, double highest);
    /// What the tables hold, which are empty then.
    ValueCounts take();

private:
    void collect() override;

    void setRange(std::int64_t first, std::int64_t last);

    image::eImageBufferType type_;
    std::vector<std::uint32_t> memory_;
    ValueCounts found_;
};

/// Looks for pixels at given places in the order of all, 32 bits wide: after each pass it knows more of their bits.
class RankSearch
{
public:
    /// What starts with the known bits of a pixel that is looked for.
    struct Target
    {
        std::uint32_t prefix = 0;
        std::uint64_t below = 0; ///< pixels that are less
        std::uint64_t count = 0;

        friend bool operator==(const Target&, const Target&) = default;
        template <class Stream>
        void pass(Stream& stream)
        {
            stream(prefix), stream(below), stream(count);
        }
    };

    /// Bits that all targets have.
    unsigned nbKnownBits() const { return known_; }
    /// Whether what has entered tells all bits.
    bool isComplete() const { return known_ == 32 || (known_ + nextBits_ == 32 && !counts_.getEntries().empty()); }
    const std::vector<Target>& getTargets() const { return targets_; }

    /// From what the upper 16 bits count, or from what add() counted: gets ready for the next pass. Throws
    /// MeasureException if that is not what the pass before found.
    void start(const ValueCounts& upperHalves, const std::vector<std::uint64_t>& ranks);
    void next(const std::vector<std::uint64_t>& ranks);

    void add(const Piece& piece);
    void settle();
    void merge(RankSearch other) { counts_.merge(std::move(other.counts_)); }
    RankSearch fork() const;
    bool isAlike(const RankSearch& other) const { return known_ == other.known_ && targets_ == other.targets_; }

    /// The pixel of a rank, as a number of 32 bits, where all are known after next().
    std::uint32_t find(std::uint64_t rank) const;

    template <class Stream>
    void pass(Stream& stream)
    {
        stream(known_), stream(nextBits_), stream(targets_), stream(counts_);
        if constexpr (Stream::isReader) {
            check();
        }
    }

private:
    struct Scan;

    std::uint64_t countTargets() const;
    /// Whether there are so few pixels to count that they may be written down one by one.
    bool isSmall() const { return countTargets() <= 65536; }
    void check() const;
    void setTargets(std::vector<Target> targets);

    std::uint32_t known_ = 0;
    std::uint32_t nextBits_ = 0;
    std::vector<Target> targets_;
    ValueCounts counts_; ///< by the number of the target and the next bits
    std::shared_ptr<Scan> scan_;
};

} // namespace orlix::measures
