#pragma once

#include <cstdint>
#include <initializer_list>
#include <iterator>

/// Random numbers of one action: they depend on the run's seed and the action's number alone, so
/// that what one action draws never shifts the others, whatever the threads' timing.
class Dice
{
public:
    Dice(std::uint64_t seed, std::uint64_t action)
        : state(seed * 0x9e3779b97f4a7c15u ^ (action + 1) * 0xbf58476d1ce4e5b9u)
    {}

    /// 0 to n - 1; 0 when there is nothing to choose from.
    int below(int n) { return n > 0 ? int(next() % std::uint64_t(n)) : 0; }
    int between(int least, int most) { return least + below(most - least + 1); }
    bool oneIn(int n) { return below(n) == 0; }

    template<typename Container>
    auto &one(Container &container)
    {
        return *std::next(std::begin(container), below(int(std::size(container))));
    }

private:
    /// SplitMix64 (Steele, Lea and Flood 2014).
    std::uint64_t next()
    {
        std::uint64_t z = (state += 0x9e3779b97f4a7c15u);
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
        return z ^ (z >> 31);
    }

    std::uint64_t state;
};
