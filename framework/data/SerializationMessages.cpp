#include <framework/data/SerializationMessages.hpp>

namespace orlix::core
{

std::span<const Message> MessageMap<data::eSerializationMessage>::texts()
{
    static constexpr Message table[] = {
        {0, "The text is no archive: a JSON object is needed"},
        {1, "The archive has no \"%1%\" that is %2%"},
        {2, "The archive holds an object of the class %1%, which is not known here"},
        {3, "\"%1%\" in the archive cannot hold an object of the class %2%"},
        {4, "\"%1%\" in the archive lies too deep"},
        {5, "The section of the archive holds a processor already: write the %1% into a section of its own"},
        {6, "%2% has no field %1%, but %3%"},
        {7, "%1% of %2% takes %3%"},
        {25, "The archive holds version %1% of %3%, but no version above %2% can be read here"},
    };
    return table;
}

} // namespace orlix::core
