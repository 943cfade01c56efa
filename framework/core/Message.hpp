#pragma once

#include <framework/core/Api.hpp>
#include <framework/core/Exception.hpp>
#include <framework/core/Logging.hpp>

#include <boost/format/format_fwd.hpp>

#include <map>
#include <memory>
#include <mutex>
#include <span>
#include <sstream>
#include <string>
#include <typeinfo>
#include <utility>

namespace orlix::core
{

/// The message texts of one library, addressed by enumeration type and number.
class ORLIX_API LogMessageManager
{
public:
    /// The manager of `library`, created on first use; it lives as long as the process.
    static LogMessageManager& getInstance(const std::string& library);

    template <class Enumeration>
    void addMessage(Enumeration number, std::string text)
    {
        addMessage(typeid(Enumeration).name(), static_cast<unsigned>(number), std::move(text));
    }
    void addMessage(const std::string& enumeration, unsigned number, std::string text);

    /// Throws std::out_of_range if there is no such message.
    std::string getMessage(const std::string& enumeration, unsigned number) const;
    std::size_t getNbMessages(const std::string& enumeration) const;

private:
    mutable std::mutex mutex_;
    std::map<std::pair<std::string, unsigned>, std::string> texts_;
};

/// Builds the text of a message from its number and its arguments (%1%, %2%, ... in the text).
class ORLIX_API LogMessageFormater
{
public:
    explicit LogMessageFormater(const LogMessageManager& manager);
    ~LogMessageFormater();

    void setMsgId(const std::string& enumeration, unsigned number);

    template <class Argument>
    LogMessageFormater& operator%(const Argument& argument)
    {
        std::ostringstream text;
        text.precision(10); // whole numbers of 32 bits as they are
        text << argument;
        return apply(text.str());
    }

    /// Throws if an argument is missing.
    std::string str() const;

private:
    LogMessageFormater& apply(const std::string& argument);

    const LogMessageManager& manager_;
    std::unique_ptr<boost::format> format_;
};

struct Message
{
    unsigned number;
    const char* text;
};

/// Specialised beside each message enumeration: `library`, the name of the library that owns the texts, and `texts()`,
/// a span of Message by ascending number.
template <class Enumeration>
struct MessageMap;

/// Enters the texts of an enumeration in its library's manager.
template <class Enumeration>
struct MsgMapRegistrator
{
    /// Runs once per process; later calls return at once with success.
    static bool registerMessageMap()
    {
        static const bool registered = [] {
            auto& manager = LogMessageManager::getInstance(MessageMap<Enumeration>::library);
            for (const Message& message : MessageMap<Enumeration>::texts()) {
                manager.addMessage(static_cast<Enumeration>(message.number), message.text);
            }
            return true;
        }();
        return registered;
    }
};

/// What every user of a text calls first, so that the order of static initialisation does not matter.
template <class... Enumerations>
struct MessageMapRegistrator
{
    static bool process() { return (MsgMapRegistrator<Enumerations>::registerMessageMap() && ...); }
};

template <class Enumeration, class... Arguments>
std::string formatMessage(Enumeration number, const Arguments&... arguments)
{
    MessageMapRegistrator<Enumeration>::process();
    LogMessageFormater formater{LogMessageManager::getInstance(MessageMap<Enumeration>::library)};
    formater.setMsgId(typeid(Enumeration).name(), static_cast<unsigned>(number));
    (void)(formater % ... % arguments);
    return formater.str();
}

/// To be called inside a catch block: logs "Exception thrown while processing message" to the base logger and throws a
/// BaseException with that text, whose cause is the exception being handled.
[[noreturn]] ORLIX_API void rethrowAsBaseException(const SourceLocation& where);

/// Runs `step`; whatever it throws leaves as rethrowAsBaseException() tells.
template <class Step>
decltype(auto) guarded(const SourceLocation& where, Step step)
{
    try {
        return step();
    } catch (...) {
        rethrowAsBaseException(where);
    }
}

/// The way every error of the toolkit is thrown: its text is formatted, logged at error level, and thrown as Exception.
template <class Exception, class Enumeration, class... Arguments>
[[noreturn]] void raise(const log4cplus::Logger& logger, const SourceLocation& where, Enumeration number,
                        const Arguments&... arguments)
{
    const std::string text = guarded(where, [&] {
        std::string formatted = formatMessage(number, arguments...);
        logMessage(logger, errorLevel, formatted, where.file, where.line);
        return formatted;
    });
    throw Exception(text, where);
}

} // namespace orlix::core
