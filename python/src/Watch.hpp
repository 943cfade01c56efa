#pragma once

#include <framework/process/BaseProcessor.hpp>
#include <framework/process/MeasureState.hpp>

#include <nanobind/nanobind.h>

#include <functional>

namespace orlix::python
{

namespace nb = nanobind;

/// Looks after runs, without the interpreter's lock: tells how far they are, and ends them where Python has a signal to
/// handle, such as Ctrl-C.
class Watch
{
public:
    /// `progress` is None or is called with the share that is done of `nbRuns` runs. Where they are neither long nor
    /// told of, nobody looks.
    Watch(nb::object progress, std::size_t nbRuns, bool isLong);

    /// Throws what the run throws, or nb::python_error.
    void run(const Ptr<imaproc::BaseProcessor>& processor);
    void run(const std::function<void(const imaproc::RunControl&)>& body);
    /// So many runs turn out not to be needed.
    void skip(std::size_t nbRuns);

private:
    void watch(const std::function<double()>& getProgress, const std::function<void()>& cancel,
               const std::function<void()>& body);

    nb::object progress_;
    std::size_t nbRuns_;
    std::size_t nbDone_ = 0;
    bool isWatched_;
};

} // namespace orlix::python
