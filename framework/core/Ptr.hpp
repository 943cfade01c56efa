#pragma once

#include <boost/smart_ptr/make_shared_object.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>

#include <utility>

namespace orlix
{

/// The shared pointer by which every object of the toolkit is held.
template <class T>
using Ptr = boost::shared_ptr<T>;

/// Creates an object and its reference count in one allocation.
template <class T, class... Arguments>
Ptr<T> makePtr(Arguments&&... arguments)
{
    return boost::make_shared<T>(std::forward<Arguments>(arguments)...);
}

} // namespace orlix
