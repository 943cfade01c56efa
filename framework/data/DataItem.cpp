#include <framework/data/DataItem.hpp>

namespace orlix::data
{

BaseDataItem::~BaseDataItem() = default;

} // namespace orlix::data
