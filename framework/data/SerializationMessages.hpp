#pragma once

#include <framework/core/Message.hpp>

namespace orlix::data
{

/// The messages of the archives.
enum class eSerializationMessage : unsigned
{
    eSM_NoArchive = 0,
    eSM_MissingKey = 1,    ///< key, what it should hold
    eSM_UnknownClass = 2,  ///< class name
    eSM_WrongClass = 3,    ///< key, class name
    eSM_TooDeep = 4,       ///< key
    eSM_TakenSection = 5,  ///< class name
    eSM_NoField = 6,       ///< field, class name, the fields that there are
    eSM_WrongField = 7,    ///< field, class name, what it takes
    eSM_NewerVersion = 25, ///< version in the archive, supported version, class name
};

} // namespace orlix::data

template <>
struct orlix::core::MessageMap<orlix::data::eSerializationMessage>
{
    static constexpr const char* library = "Serialization";
    ORLIX_API static std::span<const Message> texts();
};
