#include <ORLIX/Measures/Counts.hpp>

#include <ORLIX/Measures/Count/CountKernels.hpp>
#include <ORLIX/Measures/KeyIndex.hpp>
#include <ORLIX/Measures/Pieces.hpp>

#include <algorithm>
#include <bit>
#include <numeric>

namespace orlix::measures
{

using image::eImageBufferType;

void ValueCounts::merge(ValueCounts other)
{
    if (entries_.size() < other.entries_.size()) {
        entries_.swap(other.entries_);
    }
    // Behind what is there, the keys that are not; whole tables need no memory for that.
    const std::size_t size = entries_.size();
    std::size_t at = 0;
    for (const Entry& entry : other.entries_) {
        while (at < size && entries_[at].key < entry.key) {
            ++at;
        }
        if (at < size && entries_[at].key == entry.key) {
            entries_[at].count += entry.count;
        } else {
            entries_.push_back(entry);
        }
    }
    if (entries_.size() != size) {
        other.entries_ = {};
        std::inplace_merge(entries_.begin(), entries_.begin() + static_cast<std::ptrdiff_t>(size), entries_.end(),
                           [](const Entry& a, const Entry& b) { return a.key < b.key; });
    }
}

std::uint64_t ValueCounts::getTotal() const
{
    std::uint64_t total = 0;
    for (const Entry& entry : entries_) {
        total += entry.count;
    }
    return total;
}

void ValueCounts::checkOrder() const
{
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        if (entries_[i].count == 0 || (i != 0 && entries_[i - 1].key >= entries_[i].key)) {
            data::ByteReader::fail("its counts are not in order");
        }
    }
}

double valueOf(std::uint32_t key, eImageBufferType type)
{
    switch (type) {
    case eImageBufferType::eIBT_Int8:
        return static_cast<double>(key) - 128;
    case eImageBufferType::eIBT_Int16:
        return static_cast<double>(key) - 32768;
    case eImageBufferType::eIBT_Int32:
        return static_cast<double>(key) - 2147483648.0;
    case eImageBufferType::eIBT_Float32:
        return std::bit_cast<float>((key >> 31) != 0 ? key ^ 0x80000000u : ~key);
    default:
        return key;
    }
}

namespace
{

/// What may enter a table of 32-bit counts before it is full.
constexpr std::uint64_t capacity = std::uint64_t{1} << 31;

} // namespace

ValueCounter::ValueCounter(eImageBufferType type) : type_{type}
{
    if (image::getPixelSize(type) == 1) {
        setRange(0, 255);
    }
}

void ValueCounter::setRange(std::int64_t first, std::int64_t last)
{
    counts_.first = first;
    counts_.size = static_cast<std::uint32_t>(last - first + 1);
    allocate(image::getPixelSize(type_), 65536, memory_);
}

void ValueCounter::add(const Piece& piece, double lowest, double highest)
{
    withPixelType(type_, [&]<class T>(std::type_identity<T>) {
        if constexpr (sizeof(T) > 1) {
            const auto numberOf = [](double pixel) -> std::int64_t {
                return sizeof(T) == 4 ? static_cast<std::int64_t>(orderedBits(static_cast<T>(pixel)) >> 16)
                                      : static_cast<std::int64_t>(pixel);
            };
            const std::int64_t first = numberOf(lowest);
            const std::int64_t last = numberOf(highest);
            if (first < counts_.first || last >= counts_.first + counts_.size) {
                if (counts_.size != 0) {
                    flush();
                }
                // With room for what may come, within the limits.
                const std::int64_t room = (last - first) / 4;
                const std::int64_t least = std::is_same_v<T, short> ? -32768 : 0;
                setRange(std::max(least, first - room), std::min(least + 65535, last + room));
            }
        }
        forEachRun<T>(piece, getCountKernels(), getCountMaskKernels(),
                      [&](auto kernel, auto run, std::size_t) { CountTables::add(kernel, run); });
    });
}

ValueCounts ValueCounter::take()
{
    flush();
    return std::exchange(found_, {});
}

void ValueCounter::collect()
{
    // A signed byte counts as an unsigned one.
    const std::uint32_t turn = type_ == eImageBufferType::eIBT_Int8 ? 0x80 : 0;
    const auto first = static_cast<std::uint32_t>(counts_.first + (type_ == eImageBufferType::eIBT_Int16 ? 32768 : 0));
    std::size_t size = 0;
    for (std::uint32_t entry = 0; entry < counts_.size; ++entry) {
        size += countOf(entry) != 0;
    }
    ValueCounts found;
    found.reserve(size);
    for (std::uint32_t entry = 0; entry < counts_.size; ++entry) {
        if (const std::uint64_t count = countOf(entry ^ turn); count != 0) {
            found.append(first + entry, count);
        }
    }
    found_.merge(std::move(found));
}

/// The tables of one pass: a pixel goes by its upper 16 bits to a target, or to a group of targets and by its next 8
/// bits to one of them, and by its next bits to a count. What goes to none is counted where nobody looks.
struct RankSearch::Scan
{
    static constexpr std::uint32_t nowhere = 16;

    std::vector<std::uint16_t> groupOf = std::vector<std::uint16_t>(65536);
    std::vector<std::uint16_t> targetOf; ///< by group and next 8 bits; empty: a group is a target
    std::vector<std::uint32_t> counts;   ///< by target and next bits; empty where there are few pixels to count
    std::vector<std::uint32_t> entries;  ///< and these are written down
    unsigned bits = 0;                   ///< that a count goes by
    unsigned shift = 0;                  ///< what is below them
    std::uint64_t room = capacity;
    Prefixes prefixes{};                 ///< where there are few targets, and kernels look for them
    std::vector<std::uint32_t> numbers_; ///< that a kernel found

    explicit Scan(const RankSearch& search) : bits{search.nextBits_}, shift{32 - search.known_ - search.nextBits_}
    {
        if (search.isSmall()) {
            entries.reserve(search.countTargets());
        } else {
            counts.resize(nowhere + (search.targets_.size() << bits));
        }
        if (search.targets_.size() <= Prefixes::most && !search.targets_.empty()) {
            prefixes.size = search.targets_.size();
            prefixes.shift = 32 - search.known_;
            for (std::size_t i = 0; i < Prefixes::most; ++i) {
                prefixes.prefix[i] = search.targets_[i < prefixes.size ? i : 0].prefix;
            }
        }
        std::uint16_t groups = 0;
        for (std::size_t i = 0; i < search.targets_.size(); ++i) {
            const std::uint32_t prefix = search.targets_[i].prefix;
            const auto target = static_cast<std::uint16_t>(i + 1);
            if (search.known_ == 16) {
                groupOf[prefix] = target;
                continue;
            }
            std::uint16_t& group = groupOf[prefix >> 8];
            if (group == 0) {
                group = ++groups;
                targetOf.resize((groups + std::size_t{1}) << 8);
            }
            targetOf[std::size_t{group} << 8 | (prefix & 0xff)] = target;
        }
    }

    template <class R>
    void add(const R& run)
    {
        if (prefixes.size != 0) {
            numbers_.resize(std::max(numbers_.size(), run.size));
            count(numbers_.data(), selectKernel<typename R::Pixel>(kernelsFor(run))(run, prefixes, numbers_.data()));
            return;
        }
        std::uint32_t numbers[256];
        for (std::size_t i = 0; i < run.size;) {
            std::size_t size = 0;
            for (; i < run.size && size < std::size(numbers); ++i) {
                numbers[size] = orderedBits(run.pixels[i]);
                size += isSelected(run, i) && run.pixels[i] == run.pixels[i];
            }
            count(numbers, size);
        }
    }

    void count(const std::uint32_t* numbers, std::size_t size)
    {
        const std::uint32_t mask = (std::uint32_t{1} << bits) - 1;
        for (std::size_t i = 0; i < size; ++i) {
            const std::uint32_t key = numbers[i];
            std::uint32_t target = groupOf[key >> 16];
            if (!targetOf.empty()) {
                target = targetOf[target << 8 | (key >> 8 & 0xff)];
            }
            const std::uint32_t entry = ((target - 1) << bits) + (key >> shift & mask);
            if (!counts.empty()) {
                ++counts[target != 0 ? nowhere + entry : i % nowhere];
            } else if (target != 0) {
                entries.push_back(entry);
            }
        }
    }

    template <class T>
    static const auto& kernelsFor(const Run<T>&)
    {
        return getFindKernels();
    }
    template <class T>
    static const auto& kernelsFor(const MaskedRun<T>&)
    {
        return getFindMaskKernels();
    }

    void take(ValueCounts& into)
    {
        ValueCounts found;
        const auto size = counts.size() - static_cast<std::size_t>(std::count(counts.begin(), counts.end(), 0u));
        found.reserve(size);
        for (std::size_t i = nowhere; i < counts.size(); ++i) {
            if (counts[i] != 0) {
                found.append(static_cast<std::uint32_t>(i - nowhere), counts[i]);
            }
        }
        std::sort(entries.begin(), entries.end());
        for (auto entry = entries.begin(); entry != entries.end();) {
            const auto end = std::upper_bound(entry, entries.end(), *entry);
            found.append(*entry, static_cast<std::uint64_t>(end - entry));
            entry = end;
        }
        into.merge(std::move(found));
        std::fill(counts.begin(), counts.end(), 0);
        entries.clear();
        room = capacity;
    }
};

void RankSearch::add(const Piece& piece)
{
    if (known_ == 32) {
        return;
    }
    if (!scan_) {
        scan_ = std::make_shared<Scan>(*this);
    }
    if (scan_->room < piece.nbPixels()) {
        scan_->take(counts_);
    }
    scan_->room -= std::min(scan_->room, piece.nbPixels());
    withPixelType(piece.types[0], [&]<class T>(std::type_identity<T>) {
        if constexpr (sizeof(T) == 4) {
            const image::StripParser& parser = piece.images[0];
            for (std::size_t i = 0; i < piece.nbRuns(); ++i) {
                const Run<T> run{parser.run<T>(i, piece.runSize), piece.runSize};
                if (piece.mask) {
                    scan_->add(MaskedRun<T>{run.pixels, run.size, piece.maskRun(i)});
                } else {
                    scan_->add(run);
                }
            }
        }
    });
}

void RankSearch::settle()
{
    if (scan_) {
        scan_->take(counts_);
        scan_.reset();
    }
}

RankSearch RankSearch::fork() const
{
    RankSearch search;
    search.known_ = known_;
    search.nextBits_ = nextBits_;
    search.targets_ = targets_;
    return search;
}

namespace
{

[[noreturn]] void failPass()
{
    throw MeasureException{"the pixels that entered in this pass are not those of the pass before", ORLIX_HERE};
}

} // namespace

void RankSearch::setTargets(std::vector<Target> targets)
{
    // All that is left in one pass, where that takes no more than 1 MiB; else in steps of 8 bits.
    constexpr std::size_t mostTargets = 1;
    targets_ = std::move(targets);
    const bool isOneStep = known_ == 16 && (targets_.size() <= mostTargets || isSmall());
    nextBits_ = known_ == 32 ? 0 : isOneStep ? 16 : 8;
    counts_ = {};
}

std::uint64_t RankSearch::countTargets() const
{
    std::uint64_t count = 0;
    for (const Target& target : targets_) {
        count += target.count;
    }
    return count;
}

void RankSearch::start(const ValueCounts& upperHalves, const std::vector<std::uint64_t>& ranks)
{
    known_ = 16;
    std::vector<Target> targets;
    std::uint64_t below = 0;
    auto rank = ranks.begin();
    for (const ValueCounts::Entry& entry : upperHalves.getEntries()) {
        if (rank != ranks.end() && *rank < below + entry.count) {
            targets.push_back({entry.key, below, entry.count});
            rank = std::lower_bound(rank, ranks.end(), below + entry.count);
        }
        below += entry.count;
    }
    setTargets(std::move(targets));
}

void RankSearch::next(const std::vector<std::uint64_t>& ranks)
{
    if (known_ == 32) {
        return;
    }
    std::vector<Target> targets;
    auto entry = counts_.getEntries().begin();
    const auto end = counts_.getEntries().end();
    for (std::size_t i = 0; i < targets_.size(); ++i) {
        const Target& known = targets_[i];
        std::uint64_t below = known.below;
        auto rank = std::lower_bound(ranks.begin(), ranks.end(), below);
        for (; entry != end && entry->key >> nextBits_ == i; ++entry) {
            if (rank != ranks.end() && *rank < below + entry->count) {
                const std::uint32_t bits = entry->key & ((std::uint32_t{1} << nextBits_) - 1);
                targets.push_back({known.prefix << nextBits_ | bits, below, entry->count});
                rank = std::lower_bound(rank, ranks.end(), below + entry->count);
            }
            below += entry->count;
        }
        if (below != known.below + known.count) {
            failPass();
        }
    }
    known_ += nextBits_;
    setTargets(std::move(targets));
}

std::uint32_t RankSearch::find(std::uint64_t rank) const
{
    const auto target = std::partition_point(targets_.begin(), targets_.end(),
                                             [&](const Target& each) { return each.below + each.count <= rank; });
    if (target == targets_.end() || rank < target->below) {
        throw MeasureException{"this percentile was not looked for", ORLIX_HERE};
    }
    return target->prefix;
}

void RankSearch::check() const
{
    const auto fail = [](bool isWrong) {
        if (isWrong) {
            data::ByteReader::fail("what it looks for is wrong");
        }
    };
    fail(known_ != 0 && known_ != 16 && known_ != 24 && known_ != 32);
    fail(nextBits_ > 16 || known_ + nextBits_ > 32 || (known_ % 32 != 0 && nextBits_ != 8 && nextBits_ != 16));
    fail(targets_.size() > 65535);
    for (std::size_t i = 0; i < targets_.size(); ++i) {
        fail(known_ < 32 && targets_[i].prefix >> known_ != 0);
        fail(targets_[i].count == 0 || (i != 0 && targets_[i - 1].prefix >= targets_[i].prefix));
    }
    for (const ValueCounts::Entry& entry : counts_.getEntries()) {
        fail(entry.key >> nextBits_ >= targets_.size());
    }
}

void KeyCounter::add(const Piece& piece)
{
    withPixelType(piece.types[0], [&]<class T>(std::type_identity<T>) {
        for (std::size_t i = 0; i < piece.nbRuns(); ++i) {
            const T* const pixels = piece.images[0].run<T>(i, piece.runSize);
            const std::uint8_t* const mask = piece.maskRun(i);
            for (std::size_t k = 0; k < piece.runSize; ++k) {
                if (mask == nullptr || mask[k] != 0) {
                    const std::uint32_t number = index_.find(orderedBits(pixels[k]));
                    counts_.resize(index_.size());
                    ++counts_[number];
                }
            }
        }
    });
}

ValueCounts KeyCounter::take()
{
    const std::vector<std::uint32_t>& keys = index_.getKeys();
    std::vector<std::size_t> order(keys.size());
    std::iota(order.begin(), order.end(), 0);
    std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return keys[a] < keys[b]; });
    ValueCounts counts;
    for (const std::size_t i : order) {
        counts.append(keys[i], counts_[i]);
    }
    *this = {};
    return counts;
}

} // namespace orlix::measures
