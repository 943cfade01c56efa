#pragma once

#include <ORLIX/Measures/Counts.hpp>

namespace orlix::measures
{

/// Numbers the keys that occur, from 0 on: a table that is found by the key's hash and grows with the number of keys.
class KeyIndex
{
public:
    std::size_t size() const { return keys_.size(); }
    /// In the order of their numbers.
    const std::vector<std::uint32_t>& getKeys() const { return keys_; }

    std::uint32_t find(std::uint32_t key)
    {
        for (std::size_t at = hash(key);; ++at) {
            std::uint32_t& number = numbers_[at & mask()];
            if (number == 0) {
                return add(key);
            }
            if (keys_[number - 1] == key) {
                return number - 1;
            }
        }
    }

private:
    std::size_t mask() const { return numbers_.size() - 1; }
    std::size_t hash(std::uint32_t key) const { return (key * 0x9e3779b97f4a7c15u) >> 32; }
    std::uint32_t add(std::uint32_t key)
    {
        keys_.push_back(key);
        if (keys_.size() * 2 > numbers_.size()) {
            numbers_.assign(numbers_.size() * 2, 0);
            for (std::size_t i = 0; i < keys_.size(); ++i) {
                enter(i);
            }
        } else {
            enter(keys_.size() - 1);
        }
        return static_cast<std::uint32_t>(keys_.size() - 1);
    }
    void enter(std::size_t number)
    {
        std::size_t at = hash(keys_[number]);
        while (numbers_[at & mask()] != 0) {
            ++at;
        }
        numbers_[at & mask()] = static_cast<std::uint32_t>(number + 1);
    }

    std::vector<std::uint32_t> keys_;
    std::vector<std::uint32_t> numbers_ = std::vector<std::uint32_t>(64); ///< by hash, from 1 on; 0: none
};

/// Counts 32-bit integer pixels by value.
class KeyCounter
{
public:
    void add(const Piece& piece);
    ValueCounts take();

private:
    KeyIndex index_;
    std::vector<std::uint64_t> counts_;
};

} // namespace orlix::measures
