#include "camera/videodevices_v4l2.h"

#include "camera/enumeratevideodevices.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <optional>
#include <system_error>

namespace {

namespace fs = std::filesystem;

std::optional<std::string> firstLine(const fs::path &file)
{
    std::ifstream stream(file);
    std::string line;
    if (!std::getline(stream, line))
        return std::nullopt;
    return line;
}

/// N of a folder videoN, or nothing.
std::optional<int> nodeNumber(const std::string &folderName)
{
    const std::string prefix = "video";
    const std::string digits = folderName.substr(std::min(prefix.size(), folderName.size()));
    const bool numbered = folderName.compare(0, prefix.size(), prefix) == 0 && !digits.empty() &&
                          digits.size() <= 6 &&
                          digits.find_first_not_of("0123456789") == std::string::npos;
    return numbered ? std::optional<int>(std::stoi(digits)) : std::nullopt;
}

std::optional<CaptureNode> captureNode(const fs::path &folder)
{
    const std::optional<int> number = nodeNumber(folder.filename().string());
    // The first node of a device captures, the others carry its metadata.
    if (!number || firstLine(folder / "index") != "0")
        return std::nullopt;
    const std::optional<std::string> name = firstLine(folder / "name");
    std::error_code error;
    const fs::path path = fs::canonical(folder / "device", error);
    if (!name || error)
        return std::nullopt;
    return CaptureNode{*number, *name, path.string()};
}

} // namespace

std::vector<CaptureNode> listCaptureNodes(const std::string &folder)
{
    std::vector<CaptureNode> nodes;
    std::error_code error;
    fs::directory_iterator entry(folder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error))
        if (std::optional<CaptureNode> node = captureNode(entry->path()))
            nodes.push_back(std::move(*node));
    std::sort(nodes.begin(), nodes.end(),
              [](const CaptureNode &a, const CaptureNode &b) { return a.number < b.number; });
    return nodes;
}

int enumerateVideoDevices(std::vector<std::string> &names, std::vector<std::string> &paths)
{
    const std::vector<CaptureNode> nodes = listCaptureNodes();
    for (const CaptureNode &node : nodes) {
        names.push_back(node.name);
        paths.push_back(node.path);
    }
    return int(nodes.size());
}

std::string accessFault(const std::string &deviceFile)
{
    if (access(deviceFile.c_str(), R_OK | W_OK) == 0)
        return {};
    return deviceFile + ": " + std::generic_category().message(errno);
}

std::string videoDeviceFault(const std::string &path)
{
    for (const CaptureNode &node : listCaptureNodes())
        if (node.path == path)
            return accessFault("/dev/video" + std::to_string(node.number));
    return {};
}
