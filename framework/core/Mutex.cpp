#include <framework/core/Mutex.hpp>

#include <boost/thread/mutex.hpp>

namespace orlix::core
{

struct Mutex::Implementation
{
    boost::mutex mutex;
};

Mutex::Mutex() : implementation_{std::make_unique<Implementation>()} {}

Mutex::~Mutex() = default;

void Mutex::lock()
{
    implementation_->mutex.lock();
}

void Mutex::unlock()
{
    implementation_->mutex.unlock();
}

} // namespace orlix::core
