#include <framework/image/SourceBuffer.hpp>

#include <framework/core/Settings.hpp>
#include <framework/image/BaseImage.hpp>

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <map>
#include <new>
#include <optional>
#include <string>
#include <sys/mman.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace orlix::image
{

namespace
{

constexpr std::size_t mebibyte = std::size_t{1} << 20;
constexpr std::size_t cellBytes = mebibyte; // at least, where an image has them
constexpr std::size_t readAheadBytes = 4 * cellBytes;

std::atomic<std::size_t> nbBuffers{0}; // that have cells

/// Bytes of what workers have loaded (and two planes more), of what is being decoded, and of the cells of all images
/// (and two planes more). With the program itself less than 400 MiB and four planes, where nobody says otherwise.
struct Shares
{
    std::size_t loads;
    std::size_t decode;
    std::size_t cells;
};

Shares getShares()
{
    const std::size_t set = core::settings::getPixelMemory();
    if (set != 0) {
        return {set / 8 * 3, set / 4, set / 8 * 3};
    }
    return nbBuffers == 0 ? Shares{256 * mebibyte, 0, 0} : Shares{24 * mebibyte, 64 * mebibyte, 256 * mebibyte};
}

/// None where somebody said how much memory there is.
std::size_t getPlanesMore(std::size_t planeBytes)
{
    return core::settings::getPixelMemory() != 0 ? 0 : 2 * planeBytes;
}

/// The block of an axis that a position lies in: where it begins and ends in an image of so many pixels.
struct Span
{
    std::size_t begin;
    std::size_t end;

    Span(std::size_t at, std::size_t block, std::size_t phase, std::size_t size)
        : begin{at - std::min(at, (at + phase) % block)}, end{std::min(size, at + block - (at + phase) % block)}
    {}
    /// The same with a block of whole pixels alone.
    static Span part(std::size_t at, std::size_t step, const Span& of)
    {
        Span part = of;
        part.begin = of.begin + (at - of.begin) / step * step;
        part.end = std::min(of.end, part.begin + step);
        return part;
    }
};

} // namespace

PixelSource::~PixelSource() = default;

namespace
{

/// Memory that several may take, up to a bound; one of them always gets it, however much it is.
class Room
{
public:
    void take(std::size_t bytes, std::size_t most)
    {
        std::unique_lock lock{mutex_};
        changed_.wait(lock, [&] { return taken_ == 0 || taken_ + bytes <= most; });
        taken_ += bytes;
    }
    void give(std::size_t bytes)
    {
        const std::lock_guard lock{mutex_};
        taken_ -= bytes;
        changed_.notify_all();
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::size_t taken_ = 0;
};

Room loadRoom;   // of what workers have loaded
Room decodeRoom; // of what is being decoded, beside where it goes

/// Blocks that are free, as long as all blocks together take no more than they may.
class BlockPool
{
public:
    struct Free
    {
        std::size_t size;
        void operator()(std::byte* bytes) const { ::munmap(bytes, size); }
    };
    using Block = std::unique_ptr<std::byte, Free>;

    Block take(std::size_t size)
    {
        {
            const std::lock_guard lock{mutex_};
            // The last one that was given back is still in the cache.
            const auto found = std::find_if(blocks_.rbegin(), blocks_.rend(),
                                            [&](const Block& each) { return each.get_deleter().size == size; });
            taken_ += size;
            if (found != blocks_.rend()) {
                Block block = std::move(*found);
                blocks_.erase(found.base() - 1);
                free_ -= size;
                return block;
            }
            shrink();
        }
        // Not by malloc, which would keep what is freed.
        void* const fresh = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (fresh == MAP_FAILED) {
            const std::lock_guard lock{mutex_};
            taken_ -= size;
            throw std::bad_alloc{};
        }
        return {static_cast<std::byte*>(fresh), Free{size}};
    }
    void give(Block block)
    {
        const std::lock_guard lock{mutex_};
        taken_ -= block.get_deleter().size;
        free_ += block.get_deleter().size;
        blocks_.push_back(std::move(block));
        shrink();
    }

private:
    void shrink()
    {
        constexpr std::size_t least = 4 * mebibyte;
        constexpr std::size_t most = 32 * mebibyte;
        const Shares shares = getShares();
        const std::size_t all = shares.loads + shares.decode + shares.cells;
        const std::size_t kept = std::max(least, std::min(most, all - std::min(all, taken_)));
        while (free_ > kept) {
            free_ -= blocks_.front().get_deleter().size;
            blocks_.erase(blocks_.begin());
        }
    }

    std::mutex mutex_;
    std::vector<Block> blocks_; // that are free
    std::size_t free_ = 0;      // bytes of them
    std::size_t taken_ = 0;     // bytes of the others
};

} // namespace

std::size_t getLoadMemory(std::size_t otherwise)
{
    return core::settings::getPixelMemory() != 0 ? getShares().loads : otherwise;
}

LoadRoom::LoadRoom(std::size_t bytes, std::size_t planeBytes) : bytes_{bytes}
{
    if (bytes_ != 0) {
        loadRoom.take(bytes_, getShares().loads + getPlanesMore(planeBytes));
    }
}

LoadRoom::~LoadRoom()
{
    if (bytes_ != 0) {
        loadRoom.give(bytes_);
    }
}

Ptr<std::byte> takeBlock(std::size_t bytes)
{
    static const auto pool = std::make_shared<BlockPool>();
    // Of few sizes, four in each power of two, so that blocks fit others as well.
    constexpr std::size_t page = 4096;
    const std::size_t step = std::max(page, std::bit_ceil(bytes / 8 + 1));
    const std::size_t size = std::max<std::size_t>(1, (bytes + step - 1) / step) * step;
    return {pool->take(size).release(), [pool = pool, size](std::byte* pixels) {
                pool->give({pixels, BlockPool::Free{size}});
            }};
}

/// It outlives the buffer where the thread that reads ahead still works in it.
class SourceBuffer::Cells : public std::enable_shared_from_this<Cells>
{
public:
    Cells(Ptr<PixelSource> source, std::size_t pixelSize, const ImageGeometry& size)
        : source_{std::move(source)}, layout_{tidy(source_->getLayout())}, pixelSize_{pixelSize}, size_{size}
    {
        nbBuffers += hasCells() ? 1 : 0;
    }

    const SourceLayout& getLayout() const { return layout_; }
    bool hasCells() const { return !layout_.readsAhead; }

    LoadedBox load(const Box& box, const Box& sweep)
    {
        const ImageStrides strides = ImageStrides::contiguous(box.size, pixelSize_);
        const Grid grid = makeGrid(sweep.size.y);
        if (hasCells() && !box.size.empty()) {
            const CellPtr cell = find(grid, box.begin);
            if (const std::byte* const inside = locate(*cell, box)) {
                complete(grid, cell);
                startReadingAhead(grid, box, sweep);
                return {inside, strides, cell};
            }
        }
        const Ptr<std::byte> pixels = takeBlock(box.size.nbPixels() * pixelSize_);
        read(box, {pixels.get(), strides}, sweep);
        return {pixels.get(), strides, pixels};
    }

    void read(const Box& box, const PixelTarget& target, const Box& sweep)
    {
        if (box.size.empty()) {
            return;
        }
        if (!hasCells()) {
            source_->fetch(box, target);
            return;
        }
        const Grid grid = makeGrid(sweep.size.y);
        const auto each = [](std::uint64_t begin, std::size_t count, auto end, auto visit) {
            for (std::uint64_t at = begin; at < begin + count; at = end(at)) {
                visit(at);
            }
        };
        // Cell by cell, so that no more of them are held than need be.
        Position at;
        const auto endOf = [&](std::uint64_t Position::*axis, std::size_t ImageGeometry::*side) {
            return [&, axis, side](std::uint64_t from) {
                Position place = at;
                place.*axis = from;
                const Box cell = boxOfCell(grid, place);
                return cell.begin.*axis + cell.size.*side;
            };
        };
        each(box.begin.t, box.size.t, endOf(&Position::t, &ImageGeometry::t), [&](std::uint64_t t) {
            at.t = t;
            each(box.begin.c, box.size.c, endOf(&Position::c, &ImageGeometry::c), [&](std::uint64_t c) {
                at.c = c;
                each(box.begin.z, box.size.z, endOf(&Position::z, &ImageGeometry::z), [&](std::uint64_t z) {
                    at.z = z;
                    each(box.begin.y, box.size.y, endOf(&Position::y, &ImageGeometry::y), [&](std::uint64_t y) {
                        at.y = y;
                        const CellPtr cell = find(grid, at);
                        complete(grid, cell);
                        copy(*cell, box, target);
                    });
                });
            });
        });
        startReadingAhead(grid, box, sweep);
    }

    /// Nobody loads any more, and the source is not read any more.
    void close()
    {
        nbBuffers -= hasCells() ? 1 : 0;
        std::unique_lock lock{mutex_};
        ends_ = true;
        changed_.notify_all();
        // A process that was forked does not have the thread.
        changed_.wait(lock, [&] { return !isReading_ || process_ != ::getpid(); });
        byPlace_.clear();
        source_.reset(); // before the program ends, whenever the thread does
    }

private:
    /// No block without pixels, and phases within a block.
    static SourceLayout tidy(SourceLayout layout)
    {
        const auto axis = [](std::size_t& block, std::uint64_t& phase) {
            block = std::max<std::size_t>(1, block);
            phase %= block;
        };
        axis(layout.block.x, layout.phase.x);
        axis(layout.block.y, layout.phase.y);
        axis(layout.block.z, layout.phase.z);
        axis(layout.block.c, layout.phase.c);
        axis(layout.block.t, layout.phase.t);
        return layout;
    }

    /// Rows of some planes, channels and times.
    struct Cell
    {
        Box box;
        Ptr<std::byte> pixels;
        std::size_t bytes = 0;
        std::size_t nbParts = 1;
        std::size_t nextPart = 0;           ///< that nobody decodes yet
        std::size_t nbActive = 0;           ///< who decode parts
        std::optional<std::string> failure; ///< a text: an exception belongs to its thread
        std::uint64_t lastUse = 0;

        bool isDone() const { return nextPart == nbParts && nbActive == 0; }
    };
    using CellPtr = Ptr<Cell>;
    using Key = std::array<std::uint64_t, 8>; ///< the first pixel and the sizes

    /// The sizes of cells; those at borders are smaller.
    struct Grid
    {
        std::size_t rows = 1;
        std::size_t planes = 1;
        std::size_t channels = 1;
        std::size_t times = 1;
        std::size_t capacity = 0; ///< bytes of all cells
    };

    Grid makeGrid(std::size_t sweepRows) const
    {
        const ImageGeometry& block = layout_.block;
        const std::size_t rowBytes = std::max<std::size_t>(1, size_.x * pixelSize_);
        const std::size_t most =
            (getShares().cells + getPlanesMore(rowBytes * size_.y)) / std::max<std::size_t>(1, nbBuffers);
        // All of a block, or as much of it as fits, in parts of one size: channels rather than planes, planes rather
        // than times. With room for the cell that comes next.
        const std::size_t slack = std::min(most / 8, 4 * cellBytes);
        const std::size_t layerBytes = rowBytes * (std::max<std::size_t>(1, sweepRows) + std::min(block.y, size_.y));
        std::size_t fits = std::max<std::size_t>(1, (most - slack) / layerBytes);
        const auto take = [&](std::size_t side, std::size_t whole) {
            side = std::max<std::size_t>(1, std::min(side, whole));
            const std::size_t nbParts = (side + fits - 1) / fits;
            const std::size_t taken = (side + nbParts - 1) / nbParts;
            fits = std::max<std::size_t>(1, fits / taken);
            return taken;
        };
        Grid grid;
        grid.channels = take(block.c, size_.c);
        grid.planes = take(block.z, size_.z);
        grid.times = take(block.t, size_.t);
        const std::size_t layers = grid.channels * grid.planes * grid.times;
        grid.rows = block.y * std::max<std::size_t>(1, cellBytes / (rowBytes * layers * block.y));
        const std::size_t needed = layers == 1 ? 2 * rowBytes * grid.rows : layerBytes * layers;
        grid.capacity = std::min(most, needed + 12 * mebibyte);
        return grid;
    }

    Box boxOfCell(const Grid& grid, const Position& at) const
    {
        const Position& phase = layout_.phase;
        const ImageGeometry& block = layout_.block;
        const Span y{at.y, grid.rows, phase.y, size_.y};
        const Span z = Span::part(at.z, grid.planes, {at.z, block.z, phase.z, size_.z});
        const Span c = Span::part(at.c, grid.channels, {at.c, block.c, phase.c, size_.c});
        const Span t = Span::part(at.t, grid.times, {at.t, block.t, phase.t, size_.t});
        return {{0, y.begin, z.begin, c.begin, t.begin},
                {size_.x, y.end - y.begin, z.end - z.begin, c.end - c.begin, t.end - t.begin}};
    }

    std::size_t blockColumns() const { return layout_.block.x == 1 ? size_.x : layout_.block.x; }
    std::size_t blockRows(const Cell& cell) const { return layout_.block.y == 1 ? cell.box.size.y : layout_.block.y; }

    static std::size_t count(std::size_t begin, std::size_t size, std::size_t block, std::size_t phase)
    {
        return (begin + phase + size - 1) / block - (begin + phase) / block + 1;
    }

    Box boxOfPart(const Cell& cell, std::size_t part) const
    {
        const std::size_t phaseX = layout_.block.x == 1 ? 0 : layout_.phase.x;
        const std::size_t across = count(0, size_.x, blockColumns(), phaseX);
        const std::size_t column = part % across;
        const std::size_t x = column == 0 ? 0 : column * blockColumns() - phaseX;
        const Span columns{x, blockColumns(), phaseX, size_.x};
        Box box = cell.box;
        box.begin.x = columns.begin;
        box.size.x = columns.end - columns.begin;
        if (layout_.block.y != 1) {
            const std::size_t phaseY = layout_.phase.y;
            const std::size_t first = (cell.box.begin.y + phaseY) / layout_.block.y + part / across;
            const std::size_t y = std::max<std::size_t>(
                cell.box.begin.y, first * layout_.block.y - std::min(first * layout_.block.y, phaseY));
            const Span rows{y, layout_.block.y, phaseY, cell.box.begin.y + cell.box.size.y};
            box.begin.y = y;
            box.size.y = rows.end - y;
        }
        return box;
    }

    /// The cell that a pixel lies in; null where there is no room for what `isAhead`.
    CellPtr find(const Grid& grid, const Position& at, bool isAhead = false)
    {
        const Box box = boxOfCell(grid, at);
        const Key key{box.begin.t, box.begin.c, box.begin.z, box.begin.y,
                      box.size.t,  box.size.c,  box.size.z,  box.size.y};
        const std::lock_guard lock{mutex_};
        CellPtr& cell = byPlace_[key];
        if (!cell) {
            auto fresh = makePtr<Cell>();
            fresh->box = box;
            fresh->bytes = box.size.nbPixels() * pixelSize_;
            const std::size_t phaseX = layout_.block.x == 1 ? 0 : layout_.phase.x;
            const std::size_t phaseY = layout_.block.y == 1 ? 0 : layout_.phase.y;
            fresh->nbParts = count(0, size_.x, blockColumns(), phaseX) *
                             (layout_.block.y == 1 ? 1 : count(box.begin.y, box.size.y, blockRows(*fresh), phaseY));
            try {
                if (!makeRoom(grid.capacity, fresh->bytes) && isAhead) {
                    byPlace_.erase(key);
                    return nullptr;
                }
                fresh->pixels = takeBlock(fresh->bytes);
            } catch (...) {
                byPlace_.erase(key);
                throw;
            }
            bytes_ += fresh->bytes;
            cell = std::move(fresh);
        }
        cell->lastUse = ++time_;
        return cell;
    }

    /// Drops the cells that were not used for the longest time, and by nobody now; false where that is not enough.
    bool makeRoom(std::size_t capacity, std::size_t bytes)
    {
        while (bytes_ + bytes > capacity) {
            auto oldest = byPlace_.end();
            for (auto each = byPlace_.begin(); each != byPlace_.end(); ++each) {
                const bool isFree = each->second && each->second.use_count() == 1;
                if (isFree && (oldest == byPlace_.end() || each->second->lastUse < oldest->second->lastUse)) {
                    oldest = each;
                }
            }
            if (oldest == byPlace_.end()) {
                return false;
            }
            bytes_ -= oldest->second->bytes;
            byPlace_.erase(oldest);
        }
        return true;
    }

    /// Decodes what is missing of a cell, together with others who need it. Throws where that failed.
    void complete(const Grid& grid, const CellPtr& cell)
    {
        std::unique_lock lock{mutex_};
        if (!cell->isDone() && layout_.isSequential) {
            lock.unlock();
            completeInOrder(grid, cell);
            lock.lock();
        }
        decode(*cell, lock);
        changed_.wait(lock, [&] { return cell->isDone(); });
        if (cell->failure) {
            drop(cell);
            throw ImageException{*cell->failure, ORLIX_HERE};
        }
    }

    /// Of a source that comes in an order: those before it first, which others are about to ask for.
    void completeInOrder(const Grid& grid, const CellPtr& cell)
    {
        const std::lock_guard order{sequence_};
        const Position& end = cell->box.begin;
        std::vector<Position> between;
        constexpr std::size_t mostBetween = 8;
        for (std::optional<Position> at = last_; at && *at < end && between.size() <= mostBetween;) {
            at = next(grid, boxOfCell(grid, *at), {{}, size_});
            if (at == end) {
                for (const Position& each : between) {
                    const CellPtr passed = find(grid, each);
                    std::unique_lock lock{mutex_};
                    decode(*passed, lock);
                }
                break;
            }
            between.push_back(at.value_or(end));
        }
        std::unique_lock lock{mutex_};
        if (!cell->isDone()) {
            decode(*cell, lock);
            last_ = end;
        }
    }

    /// What decoding a block takes beside the cell: the block, and what it is decoded from.
    std::size_t getScratch() const
    {
        return layout_.block == ImageGeometry{1, 1, 1, 1, 1} ? 0 : 2 * layout_.block.nbPixels() * pixelSize_;
    }
    void decode(Cell& cell, std::unique_lock<std::mutex>& lock)
    {
        while (cell.nextPart < cell.nbParts) {
            const std::size_t part = cell.nextPart++;
            ++cell.nbActive;
            lock.unlock();
            std::optional<std::string> failure;
            const std::size_t scratch = getScratch();
            decodeRoom.take(scratch, getShares().decode);
            try {
                const Box box = boxOfPart(cell, part);
                const PixelTarget all{cell.pixels.get(), ImageStrides::contiguous(cell.box.size, pixelSize_)};
                source_->fetch(box, {all.row(box.begin.y - cell.box.begin.y) + box.begin.x * pixelSize_, all.strides});
            } catch (...) {
                failure = core::describeCurrentException();
            }
            decodeRoom.give(scratch);
            lock.lock();
            --cell.nbActive;
            if (failure) {
                cell.failure = cell.failure ? cell.failure : failure;
                cell.nextPart = cell.nbParts;
            }
        }
        if (cell.isDone()) {
            changed_.notify_all();
        }
    }

    /// Whoever asks for it later tries again.
    void drop(const CellPtr& cell)
    {
        const auto found =
            std::find_if(byPlace_.begin(), byPlace_.end(), [&](const auto& each) { return each.second == cell; });
        if (found != byPlace_.end()) {
            bytes_ -= cell->bytes;
            byPlace_.erase(found);
        }
    }

    /// Where a box lies gapless in a cell; null where it does not.
    const std::byte* locate(const Cell& cell, const Box& box) const
    {
        const Box& of = cell.box;
        const ImageGeometry& size = box.size;
        const bool isInside = size.x == of.size.x && box.begin.y + size.y <= of.begin.y + of.size.y &&
                              box.begin.z + size.z <= of.begin.z + of.size.z && size.c == 1 && size.t == 1 &&
                              (size.z == 1 || size.y == of.size.y);
        if (!isInside) {
            return nullptr;
        }
        const PixelTarget all{cell.pixels.get(), ImageStrides::contiguous(of.size, pixelSize_)};
        return all.row(box.begin.y - of.begin.y, box.begin.z - of.begin.z, box.begin.c - of.begin.c,
                       box.begin.t - of.begin.t);
    }

    /// Copies what a box and a cell have in common.
    void copy(const Cell& cell, const Box& box, const PixelTarget& target) const
    {
        struct Common
        {
            Common(std::uint64_t a, std::size_t sizeA, std::uint64_t b, std::size_t sizeB)
                : begin{std::max(a, b)}, end{std::min(a + sizeA, b + sizeB)}
            {}
            std::uint64_t begin;
            std::uint64_t end;
        };
        const Box& of = cell.box;
        const PixelTarget all{cell.pixels.get(), ImageStrides::contiguous(of.size, pixelSize_)};
        const Common y{of.begin.y, of.size.y, box.begin.y, box.size.y};
        const Common z{of.begin.z, of.size.z, box.begin.z, box.size.z};
        const Common c{of.begin.c, of.size.c, box.begin.c, box.size.c};
        const Common t{of.begin.t, of.size.t, box.begin.t, box.size.t};
        const std::size_t bytes = box.size.x * pixelSize_;
        const bool touches = bytes == size_.x * pixelSize_ && target.strides.y == all.strides.y;
        for (std::uint64_t atT = t.begin; atT < t.end; ++atT) {
            for (std::uint64_t atC = c.begin; atC < c.end; ++atC) {
                for (std::uint64_t atZ = z.begin; atZ < z.end; ++atZ) {
                    const std::byte* const from =
                        all.row(y.begin - of.begin.y, atZ - of.begin.z, atC - of.begin.c, atT - of.begin.t) +
                        box.begin.x * pixelSize_;
                    std::byte* const to =
                        target.row(y.begin - box.begin.y, atZ - box.begin.z, atC - box.begin.c, atT - box.begin.t);
                    const std::size_t rows = y.end - y.begin;
                    if (touches) {
                        std::memcpy(to, from, rows * bytes);
                        continue;
                    }
                    for (std::size_t row = 0; row < rows; ++row) {
                        std::memcpy(to + static_cast<std::ptrdiff_t>(row) * target.strides.y,
                                    from + static_cast<std::ptrdiff_t>(row) * all.strides.y, bytes);
                    }
                }
            }
        }
    }

    /// The first pixel of the cell behind one, in the order of pixels: in the box that is loaded before others, and
    /// then behind that.
    std::optional<Position> next(const Grid& grid, const Box& cell, const Box& sweep) const
    {
        const auto find = [&](const Box& last, const Position& from, const Position& end) -> std::optional<Position> {
            Position at = last.begin;
            at.y = last.begin.y + last.size.y;
            if (at.y >= end.y) {
                at.y = from.y;
                at.z = last.begin.z + last.size.z;
            }
            if (at.z >= end.z) {
                at.z = from.z;
                at.c = last.begin.c + last.size.c;
            }
            if (at.c >= end.c) {
                at.c = from.c;
                at.t = last.begin.t + last.size.t;
            }
            return at.t < end.t ? std::optional{boxOfCell(grid, at).begin} : std::nullopt;
        };
        const Position& begin = sweep.begin;
        const ImageGeometry& size = sweep.size;
        const auto inside =
            find(cell, begin, {0, begin.y + size.y, begin.z + size.z, begin.c + size.c, begin.t + size.t});
        return inside ? inside : find(sweep, {}, {0, size_.y, size_.z, size_.c, size_.t});
    }

    /// What lies behind a box that was loaded.
    void startReadingAhead(const Grid& grid, const Box& box, const Box& sweep)
    {
        const ImageGeometry& size = box.size;
        const Box last = boxOfCell(grid, {0, box.begin.y + size.y - 1, box.begin.z + size.z - 1,
                                          box.begin.c + size.c - 1, box.begin.t + size.t - 1});
        const std::lock_guard lock{mutex_};
        isUsed_ = true;
        // A thread that comes late asks for what is gone already; after some of these, another pass has begun.
        constexpr int mostLate = 8;
        nbLate_ = last.begin < furthest_ ? nbLate_ + 1 : 0;
        if (nbLate_ > 0 && nbLate_ <= mostLate) {
            return;
        }
        furthest_ = last.begin;
        nbLate_ = 0;
        wanted_ = next(grid, last, sweep);
        wantedGrid_ = grid;
        wantedSweep_ = sweep;
        if (!wanted_) {
            return;
        }
        if (process_ != ::getpid()) {
            process_ = ::getpid();
            try {
                std::thread{[self = shared_from_this()] { self->readAhead(); }}.detach();
            } catch (const std::system_error&) {
                // There are too many threads: nothing is read ahead.
            }
        }
        changed_.notify_all();
    }

    /// The thread that reads ahead.
    void readAhead()
    {
        std::unique_lock lock{mutex_};
        while (!ends_) {
            const auto isCalled = [&] { return ends_ || wanted_.has_value(); };
            if (byPlace_.empty()) {
                changed_.wait(lock, isCalled);
            } else if (!changed_.wait_for(lock, std::chrono::seconds{1}, isCalled) && !isUsed_) {
                makeRoom(0, 0); // nobody measures
            }
            isUsed_ = false;
            if (ends_ || !wanted_) {
                continue;
            }
            isReading_ = true;
            std::optional<Position> at = std::exchange(wanted_, std::nullopt);
            const Grid grid = wantedGrid_;
            const Box sweep = wantedSweep_;
            lock.unlock();
            for (std::size_t bytes = 0; at && bytes < readAheadBytes && !ends_;) {
                try {
                    const CellPtr cell = find(grid, *at, true);
                    if (!cell) {
                        break;
                    }
                    bytes += cell->bytes;
                    complete(grid, cell);
                    at = next(grid, cell->box, sweep);
                } catch (...) {
                    break; // whoever needs the pixels meets it again
                }
            }
            lock.lock();
            isReading_ = false;
            changed_.notify_all();
        }
    }

    Ptr<PixelSource> source_;
    const SourceLayout layout_;
    const std::size_t pixelSize_;
    const ImageGeometry size_;

    std::mutex mutex_;
    std::condition_variable changed_;
    std::map<Key, CellPtr> byPlace_;
    std::size_t bytes_ = 0; // of the cells
    std::uint64_t time_ = 0;

    std::mutex sequence_;
    std::optional<Position> last_; // cell that was decoded in the order of pixels

    std::optional<Position> wanted_; // what is to be read ahead
    Grid wantedGrid_;
    Box wantedSweep_;
    Position furthest_; // cell that was loaded in this pass
    int nbLate_ = 0;
    bool isUsed_ = false;
    bool isReading_ = false;
    std::atomic<bool> ends_{false};
    ::pid_t process_ = 0; // that has the thread
};

SourceBuffer::SourceBuffer(Ptr<PixelSource> source, std::size_t pixelSize, const ImageGeometry& size)
    : cells_{std::make_shared<Cells>(std::move(source), pixelSize, size)}
{}

SourceBuffer::~SourceBuffer()
{
    cells_->close();
}

const SourceLayout& SourceBuffer::getLayout() const
{
    return cells_->getLayout();
}

LoadedBox SourceBuffer::load(const Box& box, const Box& sweep)
{
    return cells_->load(box, sweep);
}

void SourceBuffer::read(const Box& box, const PixelTarget& target, const Box& sweep)
{
    cells_->read(box, target, sweep);
}

} // namespace orlix::image
