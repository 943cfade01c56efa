#include "Watch.hpp"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>

namespace orlix::python
{

Watch::Watch(nb::object progress, std::size_t nbRuns, bool isLong)
    : progress_{std::move(progress)}, nbRuns_{nbRuns}, isWatched_{isLong || !progress_.is_none()}
{}

void Watch::run(const Ptr<imaproc::BaseProcessor>& processor)
{
    watch([&] { return processor->getProgress(); }, [&] { processor->requestCancellation(); },
          [&] { imaproc::executeSyncRun(processor); });
}

void Watch::run(const std::function<void(const imaproc::RunControl&)>& body)
{
    imaproc::RunState state;
    watch([&] { return state.progress.load(); }, [&] { state.cancelled = true; }, [&] { body({&state}); });
}

void Watch::skip(std::size_t nbRuns)
{
    if (nbRuns != 0) {
        nbDone_ += nbRuns;
        if (!progress_.is_none()) {
            progress_(static_cast<double>(nbDone_) / static_cast<double>(nbRuns_));
        }
    }
}

void Watch::watch(const std::function<double()>& getProgress, const std::function<void()>& cancel,
                  const std::function<void()>& body)
{
    if (!isWatched_) {
        const nb::gil_scoped_release released;
        body();
        return;
    }
    constexpr std::chrono::milliseconds tick{20};
    std::mutex mutex;
    std::condition_variable ended;
    bool hasEnded = false;
    std::exception_ptr failure;
    std::optional<nb::python_error> stop; // what Python wants to raise
    const auto look = [&](double share) {
        try {
            if (PyErr_CheckSignals() != 0) {
                throw nb::python_error{};
            }
            if (!progress_.is_none()) {
                progress_((static_cast<double>(nbDone_) + std::min(1.0, share)) / static_cast<double>(nbRuns_));
            }
        } catch (nb::python_error& error) {
            stop.emplace(std::move(error));
            cancel();
        }
    };
    {
        const nb::gil_scoped_release released;
        std::thread runner{[&] {
            try {
                body();
            } catch (...) {
                failure = std::current_exception();
            }
            const std::lock_guard lock{mutex};
            hasEnded = true;
            ended.notify_one();
        }};
        std::unique_lock lock{mutex};
        while (!ended.wait_for(lock, tick, [&] { return hasEnded; })) {
            if (!stop) {
                lock.unlock();
                {
                    const nb::gil_scoped_acquire gil;
                    look(getProgress());
                }
                lock.lock();
            }
        }
        lock.unlock();
        runner.join();
    }
    if (!stop && !failure) {
        look(1);
    }
    if (stop) {
        throw std::move(*stop);
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
    ++nbDone_;
}

} // namespace orlix::python
