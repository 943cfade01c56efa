#pragma once

#include <framework/process/BaseProcessor.hpp>
#include <framework/process/MeasureState.hpp>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace orlix::app
{

/// The user has asked to end.
struct Interrupted
{
};
inline constexpr int interruptedStatus = 130; ///< of the program then

/// Lets Ctrl-C end what a Watch watches; otherwise, and the second time, it ends the program at once.
void catchInterrupts();
/// Throws Interrupted where the user has asked to end.
void checkInterrupt();

/// Looks after a run: draws a bar on a terminal where it takes long, and cancels it where the user asks to end.
class Watch
{
public:
    /// What runs is called `name`, and goes over so many bytes of pixels, in `nbRuns` runs. `isQuiet`: no bar.
    Watch(std::string name, double bytes, std::size_t nbRuns, bool isQuiet);
    ~Watch();
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

    /// Runs a processor. Throws as executeSyncRun does, or Interrupted.
    void run(const Ptr<imaproc::BaseProcessor>& processor);
    /// Runs something else, which works with the control that it is given.
    void run(const std::function<void(const imaproc::RunControl&)>& body);

private:
    template <class Body>
    void watch(std::function<double()> getProgress, std::function<void()> cancel, Body body);
    void tick();
    void draw(double done);

    const std::string name_;
    const double bytes_;
    const std::size_t nbRuns_;
    const bool isShown_;
    const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::size_t nbDone_ = 0; // runs
    bool isDrawn_ = false;
    bool ends_ = false;
    std::function<double()> getProgress_; // of the run that is on
    std::function<void()> cancel_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::thread ticker_;
};

} // namespace orlix::app
