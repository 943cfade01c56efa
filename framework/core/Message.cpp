#include <framework/core/Message.hpp>

#include <boost/format.hpp>

#include <log4cplus/logger.h>

namespace orlix::core
{

LogMessageManager& LogMessageManager::getInstance(const std::string& library)
{
    static std::mutex mutex;
    static std::map<std::string, LogMessageManager> managers;
    const std::lock_guard lock{mutex};
    return managers[library];
}

void LogMessageManager::addMessage(const std::string& enumeration, unsigned number, std::string text)
{
    const std::lock_guard lock{mutex_};
    texts_.insert_or_assign({enumeration, number}, std::move(text));
}

std::string LogMessageManager::getMessage(const std::string& enumeration, unsigned number) const
{
    const std::lock_guard lock{mutex_};
    return texts_.at({enumeration, number});
}

std::size_t LogMessageManager::getNbMessages(const std::string& enumeration) const
{
    const std::lock_guard lock{mutex_};
    const auto first = texts_.lower_bound({enumeration, 0});
    auto last = first;
    while (last != texts_.end() && last->first.first == enumeration) {
        ++last;
    }
    return static_cast<std::size_t>(std::distance(first, last));
}

LogMessageFormater::LogMessageFormater(const LogMessageManager& manager)
    : manager_{manager}, format_{std::make_unique<boost::format>()}
{}

LogMessageFormater::~LogMessageFormater() = default;

void LogMessageFormater::setMsgId(const std::string& enumeration, unsigned number)
{
    format_->parse(manager_.getMessage(enumeration, number));
}

LogMessageFormater& LogMessageFormater::apply(const std::string& argument)
{
    *format_ % argument;
    return *this;
}

std::string LogMessageFormater::str() const
{
    return format_->str();
}

void rethrowAsBaseException(const SourceLocation& where)
{
    static const char* const text = "Exception thrown while processing message";
    std::exception_ptr cause = std::current_exception();
    try {
        throw;
    } catch (const std::exception&) {
    } catch (...) {
        cause = std::make_exception_ptr(UnHandleException{where});
    }
    logMessage(getBaseLogger(), errorLevel, text, where.file, where.line);
    throw BaseException{text, where, cause};
}

} // namespace orlix::core
