#include <framework/core/Exception.hpp>

#include <new>
#include <utility>

namespace orlix::core
{

BaseException::BaseException(std::string text, const SourceLocation& where, std::exception_ptr cause)
    : text_{std::move(text)}, file_{getRelativeFromRoot(where.file)}, function_{where.function}, line_{where.line},
      cause_{std::move(cause)}
{}

BaseException::~BaseException() = default;

UnHandleException::UnHandleException(const SourceLocation& where) : BaseException{"Unhandled exception", where} {}

std::string describeCurrentException()
{
    try {
        throw;
    } catch (const std::bad_alloc&) {
        return "Not enough memory";
    } catch (const std::exception& error) {
        return error.what();
    } catch (...) {
        return "Unhandled exception";
    }
}

} // namespace orlix::core
