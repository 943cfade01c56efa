#pragma once

#include <framework/core/Api.hpp>

#include <memory>

namespace orlix::core
{

/// A mutex. Failures to make or to lock it throw Boost's errors, whose headers stay out of the includers.
class ORLIX_API Mutex
{
public:
    Mutex();
    ~Mutex();
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

    void lock();
    void unlock();

private:
    struct Implementation;
    std::unique_ptr<Implementation> implementation_;
};

} // namespace orlix::core
