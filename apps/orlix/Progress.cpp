#include <orlix/Progress.hpp>

#include <files/OutputFile.hpp>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <sys/ioctl.h>
#include <unistd.h>

namespace orlix::app
{

namespace
{

constexpr std::chrono::milliseconds tickTime{50};
constexpr std::chrono::milliseconds patience{500}; // before there is a bar

std::atomic<bool> isInterrupted{false};
std::atomic<bool> isWatched{false}; // a run, which can be cancelled

void interrupt(int)
{
    if (!isWatched || isInterrupted.exchange(true)) {
        files::removeUnfinishedFile();
        ::_exit(interruptedStatus);
    }
}

/// "1.2 GB/s"
std::string printRate(double bytesPerSecond)
{
    const char* const units[] = {"B", "kB", "MB", "GB", "TB"};
    std::size_t unit = 0;
    constexpr double step = 1000;
    for (; bytesPerSecond >= step && unit + 1 < std::size(units); ++unit) {
        bytesPerSecond /= step;
    }
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), bytesPerSecond < 10 ? "%.1f %s/s" : "%.0f %s/s", bytesPerSecond,
                  units[unit]);
    return text.data();
}

/// "1:05 left"
std::string printTime(double seconds)
{
    constexpr double longest = 360000;
    const auto whole = static_cast<long>(std::ceil(std::min(seconds, longest)));
    std::array<char, 32> text{};
    if (whole >= 3600) {
        std::snprintf(text.data(), text.size(), "%ld:%02ld:%02ld left", whole / 3600, whole / 60 % 60, whole % 60);
    } else {
        std::snprintf(text.data(), text.size(), "%ld:%02ld left", whole / 60, whole % 60);
    }
    return text.data();
}

std::size_t getTerminalWidth()
{
    ::winsize size{};
    return ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col != 0 ? size.ws_col : 80;
}

} // namespace

void catchInterrupts()
{
    struct ::sigaction action = {};
    action.sa_handler = interrupt;
    struct ::sigaction old = {};
    ::sigaction(SIGINT, nullptr, &old);
    if (old.sa_handler != SIG_IGN) { // as nohup wants it
        ::sigaction(SIGINT, &action, nullptr);
    }
}

void checkInterrupt()
{
    if (isInterrupted) {
        throw Interrupted{};
    }
}

Watch::Watch(std::string name, double bytes, std::size_t nbRuns, bool isQuiet)
    : name_{std::move(name)}, bytes_{bytes}, nbRuns_{nbRuns}, isShown_{!isQuiet && ::isatty(STDERR_FILENO) != 0},
      ticker_{[this] { tick(); }}
{}

Watch::~Watch()
{
    {
        const std::lock_guard lock{mutex_};
        ends_ = true;
    }
    changed_.notify_all();
    ticker_.join();
    if (isDrawn_) {
        std::fputs("\r\033[K", stderr);
        std::fflush(stderr);
    }
}

template <class Body>
void Watch::watch(std::function<double()> getProgress, std::function<void()> cancel, Body body)
{
    checkInterrupt();
    {
        const std::lock_guard lock{mutex_};
        getProgress_ = std::move(getProgress);
        cancel_ = std::move(cancel);
    }
    isWatched = true;
    const auto end = [this] {
        isWatched = false;
        const std::lock_guard lock{mutex_};
        getProgress_ = nullptr;
        cancel_ = nullptr;
        ++nbDone_;
    };
    try {
        body();
    } catch (...) {
        end();
        checkInterrupt();
        throw;
    }
    end();
    checkInterrupt();
}

void Watch::run(const Ptr<imaproc::BaseProcessor>& processor)
{
    watch([&] { return processor->getProgress(); }, [&] { processor->requestCancellation(); },
          [&] { imaproc::executeSyncRun(processor); });
}

void Watch::run(const std::function<void(const imaproc::RunControl&)>& body)
{
    imaproc::RunState state;
    watch([&] { return std::min(1.0, state.progress.load()); }, [&] { state.cancelled = true; },
          [&] { body({&state}); });
}

void Watch::tick()
{
    std::unique_lock lock{mutex_};
    while (!changed_.wait_for(lock, tickTime, [this] { return ends_; })) {
        if (isInterrupted && cancel_) {
            cancel_();
        }
        if (isShown_ && !isInterrupted && std::chrono::steady_clock::now() - start_ > patience) {
            const double current = getProgress_ ? getProgress_() : 0;
            draw(std::min(1.0, (static_cast<double>(nbDone_) + current) / static_cast<double>(nbRuns_)));
        }
    }
}

void Watch::draw(double done)
{
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start_;
    std::array<char, 8> percent{};
    std::snprintf(percent.data(), percent.size(), "%3.0f %%", 100 * done);
    std::string tail = "  ";
    tail += printRate(done * bytes_ / elapsed.count());
    if (done > 0) {
        tail += "  ";
        tail += printTime(elapsed.count() * (1 - done) / done);
    }
    // The bar takes what the texts leave of the line.
    const std::size_t width = getTerminalWidth() - 1;
    std::string head = name_;
    const std::size_t room = width - std::min(width, tail.size() + 10 + 8);
    if (head.size() > room) {
        head.erase(0, head.size() - room);
    }
    constexpr std::size_t longest = 40;
    const std::size_t taken = head.size() + tail.size() + 10;
    const std::size_t length = std::min(longest, width - std::min(width, taken));
    const auto filled = static_cast<std::size_t>(std::lround(done * static_cast<double>(length)));
    std::string bar(filled, '#');
    bar.resize(length, ' ');
    std::fprintf(stderr, "\r\033[K%s %s [%s]%s", head.c_str(), percent.data(), bar.c_str(), tail.c_str());
    std::fflush(stderr);
    isDrawn_ = true;
}

} // namespace orlix::app
