#pragma once

#include <framework/core/Api.hpp>
#include <framework/core/SourceLocation.hpp>

#include <exception>
#include <string>

namespace orlix::core
{

/// The root of the toolkit's exceptions: a text, where it was thrown, and the exception that led to it, if any.
class ORLIX_API BaseException : public std::exception
{
public:
    BaseException(std::string text, const SourceLocation& where, std::exception_ptr cause = nullptr);
    ~BaseException() override;

    const char* what() const noexcept override { return text_.c_str(); }
    const std::string& getFile() const { return file_; } ///< relative to the source root
    const std::string& getFunction() const { return function_; }
    int getLine() const { return line_; }
    std::exception_ptr getCause() const { return cause_; }

private:
    std::string text_;
    std::string file_;
    std::string function_;
    int line_;
    std::exception_ptr cause_;
};

/// Stands for an exception that is no std::exception.
class ORLIX_API UnHandleException final : public BaseException
{
public:
    explicit UnHandleException(const SourceLocation& where);
};

/// The text of the exception being handled; callable only inside a catch block.
ORLIX_API std::string describeCurrentException();

} // namespace orlix::core
