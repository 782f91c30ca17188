#pragma once

#include <string>
#include <vector>

/// A node of the kernel that gives frames.
struct CaptureNode
{
    int number;       ///< N of /dev/videoN; there may be gaps
    std::string name; ///< friendly name, UTF-8
    std::string path; ///< where the device sits on its bus; stays its own over a replug
};

/// The capture nodes in the order of their numbers. A USB camera brings a second node for metadata,
/// which is left out; so is a node whose name or place cannot be read.
/// @param folder  the kernel's folder of video nodes
std::vector<CaptureNode> listCaptureNodes(const std::string &folder = "/sys/class/video4linux");

/// What keeps the user of this process from reading and writing a device file, for instance
/// "/dev/video0: Permission denied"; empty when nothing does.
std::string accessFault(const std::string &deviceFile);
