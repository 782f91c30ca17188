#pragma once

#include <cstddef>
#include <string>
#include <vector>

// Parts of the DirectShow walk that need nothing of the platform.

/// The low byte of each unit, up to the first that is 0 or 255 of them. Other alphabets are not
/// converted: they come out as their low bytes.
template<typename Unit>
std::string lowBytes(const Unit *text)
{
    constexpr std::size_t longest = 255;
    std::string bytes;
    for (; bytes.size() < longest && (*text & 0xff) != 0; ++text)
        bytes.push_back(static_cast<char>(*text & 0xff));
    return bytes;
}

/// Adds a device to both lists, unless one of its properties could not be read (null): then neither
/// list grows, and they stay parallel.
/// @returns whether the device counts
template<typename Unit>
bool appendDevice(const Unit *name, const Unit *path, std::vector<std::string> &names,
                  std::vector<std::string> &paths)
{
    if (!name || !path)
        return false;
    names.push_back(lowBytes(name));
    paths.push_back(lowBytes(path));
    return true;
}
