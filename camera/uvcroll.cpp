#include "camera/uvcroll.h"

#include <linux/usb/video.h>
#include <linux/uvcvideo.h>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <limits>
#include <string>

namespace {

/// The unit number that UVC firmware gives to its camera terminal by custom.
constexpr __u8 cameraTerminal = 1;

/// One request about the roll, two bytes with the low one first.
bool queryRoll(int node, __u8 request, std::array<__u8, 2> &bytes)
{
    const std::string device = "/dev/video" + std::to_string(node);
    const int descriptor = ::open(device.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    uvc_xu_control_query query = {};
    query.unit = cameraTerminal;
    query.selector = UVC_CT_ROLL_ABSOLUTE_CONTROL;
    query.query = request;
    query.size = __u16(bytes.size());
    query.data = bytes.data();
    const bool answered = ::ioctl(descriptor, UVCIOC_CTRL_QUERY, &query) == 0;
    ::close(descriptor);
    return answered;
}

} // namespace

int uvcRoll(int node)
{
    std::array<__u8, 2> bytes = {};
    if (!queryRoll(node, UVC_GET_CUR, bytes))
        return -1;
    return __s16(bytes[0] | bytes[1] << 8);
}

bool setUvcRoll(int node, int roll)
{
    using Limits = std::numeric_limits<__s16>;
    const int value = std::clamp<int>(roll, Limits::min(), Limits::max());
    std::array<__u8, 2> bytes = {__u8(value & 0xff), __u8(value >> 8 & 0xff)};
    return queryRoll(node, UVC_SET_CUR, bytes);
}
