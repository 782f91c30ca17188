// Answers for cameras made of files; README.md tells their folders. Compiled without sanitizers:
// it runs below them.

#include <linux/usb/video.h>
#include <linux/uvcvideo.h>
#include <linux/videodev2.h>

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/select.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds framePeriod(5);
/// In `controls`, for what has no V4L2 id.
constexpr __u32 rollId = 0xf;

/// The C library's own function behind one of ours.
template<typename Function>
Function *real(const char *name)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

int realOpen(const char *path, int flags, mode_t mode = 0)
{
    static const auto next = real<int(const char *, int, ...)>("open");
    return next(path, flags, mode);
}

int realClose(int fd)
{
    static const auto next = real<int(int)>("close");
    return next(fd);
}

std::string readWhole(const std::string &path)
{
    std::string text;
    const int fd = realOpen(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return text;
    char chunk[65536];
    for (ssize_t n; (n = ::read(fd, chunk, sizeof chunk)) > 0;)
        text.append(chunk, size_t(n));
    realClose(fd);
    return text;
}

void writeWhole(const std::string &path, const std::string &text, int flags)
{
    const int fd = realOpen(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | flags, 0644);
    if (fd < 0)
        return;
    if (::write(fd, text.data(), text.size()) < 0)
        std::perror("fakev4l2");
    realClose(fd);
}

bool exists(const std::string &path) { return ::access(path.c_str(), F_OK) == 0; }

const char *root() { return std::getenv("FAKE_V4L2_ROOT"); }

/// Where a path of the kernel's folder of video nodes leads; others stay.
std::string redirected(const char *path)
{
    constexpr std::string_view folder = "/sys/class/video4linux";
    const std::string asked = path ? path : "";
    if (!root() || asked.compare(0, folder.size(), folder) != 0)
        return asked;
    return std::string(root()) + "/class" + asked.substr(folder.size());
}

struct Control
{
    std::string name;
    __u32 id = 0;
    int minimum = 0;
    int maximum = 0;
    int value = 0;
};

class Camera
{
public:
    explicit Camera(std::string cameraFolder)
        : folder(std::move(cameraFolder))
    {}

    bool is(const char *misbehaviour) const { return exists(folder + "/" + misbehaviour); }

    void log(const std::string &line) const { writeWhole(folder + "/log", line + "\n", O_APPEND); }

    std::vector<Control> controls() const
    {
        std::vector<Control> all;
        std::istringstream text(readWhole(folder + "/controls"));
        Control c;
        while (text >> c.name >> std::hex >> c.id >> std::dec >> c.minimum >> c.maximum >> c.value)
            all.push_back(c);
        return all;
    }

    bool find(__u32 id, Control &found) const
    {
        for (const Control &c : controls())
            if (c.id == id) {
                found = c;
                return true;
            }
        return false;
    }

    /// @returns 0 or an error number
    int set(__u32 id, int value) const
    {
        std::vector<Control> all = controls();
        const auto at = [&all](__u32 wanted) {
            return std::find_if(all.begin(), all.end(),
                                [wanted](const Control &c) { return c.id == wanted; });
        };
        const auto is = [&](__u32 wanted, int wantedValue) {
            return at(wanted) != all.end() && at(wanted)->value == wantedValue;
        };
        const auto control = at(id);
        if (control == all.end())
            return EINVAL;
        log(control->name + " " + std::to_string(value));
        if (this->is("refuse"))
            return EIO;
        if (id == V4L2_CID_FOCUS_ABSOLUTE && is(V4L2_CID_FOCUS_AUTO, 1))
            return EIO;
        if (id == V4L2_CID_EXPOSURE_ABSOLUTE && !is(V4L2_CID_EXPOSURE_AUTO, V4L2_EXPOSURE_MANUAL))
            return EIO;
        control->value = std::clamp(value, control->minimum, control->maximum);
        std::ostringstream text;
        for (const Control &c : all)
            text << c.name << ' ' << std::hex << c.id << std::dec << ' ' << c.minimum << ' '
                 << c.maximum << ' ' << c.value << '\n';
        writeWhole(folder + "/controls", text.str(), O_TRUNC);
        return 0;
    }

    /// The bytes of the next frame.
    std::string frame(unsigned width, unsigned height) const
    {
        if (is("empty"))
            return std::string();
        if (is("broken"))
            return std::string(1000, 'x');
        return readWhole(folder + "/" + std::to_string(width) + "x" + std::to_string(height) +
                         ".jpg");
    }

private:
    std::string folder;
};

/// An open descriptor of a camera.
class Handle
{
public:
    Handle(std::string nodeLink, std::string cameraFolder, std::string heldFile)
        : link(std::move(nodeLink))
        , camera(std::move(cameraFolder))
        , held(std::move(heldFile))
    {
        writeWhole(held, "", 0);
    }
    ~Handle() { ::unlink(held.c_str()); }
    Handle(const Handle &) = delete;
    Handle &operator=(const Handle &) = delete;

    /// The way of ioctl: 0, or -1 with errno.
    int control(unsigned long request, void *argument)
    {
        std::lock_guard<std::mutex> lock(mutex);
        const int error = gone() ? ENODEV : answer(request, argument);
        errno = error;
        return error ? -1 : 0;
    }

    void *map(size_t length, off_t offset)
    {
        std::lock_guard<std::mutex> lock(mutex);
        const size_t index = size_t(offset) / bufferStep;
        if (gone() || index >= buffers.size()) {
            errno = gone() ? ENODEV : EINVAL;
            return MAP_FAILED;
        }
        static const auto next = real<void *(void *, size_t, int, int, int, off_t)>("mmap");
        void *memory =
            next(nullptr, length, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        buffers[index] = memory == MAP_FAILED ? nullptr : memory;
        return memory;
    }

    /// Whether a dequeue would answer now.
    bool ready()
    {
        std::lock_guard<std::mutex> lock(mutex);
        return gone() || (frameIsDue() && !queue.empty());
    }

private:
    static constexpr size_t bufferStep = size_t(1) << 26;

    bool gone() const { return !exists(link); }

    bool frameIsDue() const
    {
        return streaming && !camera.is("stall") && Clock::now() >= nextFrame;
    }

    int answer(unsigned long request, void *argument)
    {
        switch (request) {
        case VIDIOC_QUERYCAP: {
            auto &capability = *static_cast<v4l2_capability *>(argument);
            capability = {};
            capability.capabilities = V4L2_CAP_VIDEO_CAPTURE | V4L2_CAP_STREAMING;
            return 0;
        }
        case VIDIOC_G_FMT:
            static_cast<v4l2_format *>(argument)->fmt.pix = format();
            return 0;
        case VIDIOC_S_FMT:
            return setFormat(static_cast<v4l2_format *>(argument)->fmt.pix);
        case VIDIOC_G_PARM:
        case VIDIOC_S_PARM:
            static_cast<v4l2_streamparm *>(argument)->parm.capture.timeperframe = {1, 30};
            return 0;
        case VIDIOC_REQBUFS:
            return requestBuffers(*static_cast<v4l2_requestbuffers *>(argument));
        case VIDIOC_QUERYBUF:
            return queryBuffer(*static_cast<v4l2_buffer *>(argument));
        case VIDIOC_QBUF:
            queue.push_back(static_cast<v4l2_buffer *>(argument)->index);
            return 0;
        case VIDIOC_DQBUF:
            return dequeue(*static_cast<v4l2_buffer *>(argument));
        case VIDIOC_STREAMON:
            streaming = true;
            nextFrame = Clock::now() + framePeriod;
            return 0;
        case VIDIOC_STREAMOFF:
            streaming = false;
            queue.clear();
            return 0;
        case VIDIOC_QUERYCTRL:
            return queryControl(*static_cast<v4l2_queryctrl *>(argument));
        case VIDIOC_G_CTRL: {
            auto &asked = *static_cast<v4l2_control *>(argument);
            Control found;
            if (!camera.find(asked.id, found))
                return EINVAL;
            asked.value = found.value;
            return 0;
        }
        case VIDIOC_S_CTRL: {
            const auto &asked = *static_cast<v4l2_control *>(argument);
            return camera.set(asked.id, asked.value);
        }
        case UVCIOC_CTRL_QUERY:
            return queryUnit(*static_cast<uvc_xu_control_query *>(argument));
        default:
            return ENOTTY;
        }
    }

    v4l2_pix_format format() const
    {
        v4l2_pix_format pix = {};
        pix.width = width;
        pix.height = height;
        pix.pixelformat = V4L2_PIX_FMT_MJPEG;
        pix.field = V4L2_FIELD_NONE;
        pix.sizeimage = width * height * 2;
        return pix;
    }

    int setFormat(v4l2_pix_format &asked)
    {
        if (camera.is("busy") || !buffers.empty())
            return EBUSY;
        // Another pixel format is answered with the only one there is.
        if (asked.pixelformat == V4L2_PIX_FMT_MJPEG) {
            width = asked.width;
            height = asked.height;
            camera.log("MJPG " + std::to_string(width) + "x" + std::to_string(height));
        }
        asked = format();
        return 0;
    }

    int requestBuffers(v4l2_requestbuffers &asked)
    {
        if (camera.is("busy") && asked.count > 0)
            return EBUSY;
        streaming = false;
        queue.clear();
        buffers.assign(asked.count, nullptr);
        return 0;
    }

    int queryBuffer(v4l2_buffer &asked) const
    {
        if (asked.index >= buffers.size())
            return EINVAL;
        asked.length = width * height * 2;
        asked.m.offset = __u32(asked.index * bufferStep);
        return 0;
    }

    int dequeue(v4l2_buffer &given)
    {
        if (!streaming)
            return EINVAL;
        if (!frameIsDue() || queue.empty())
            return EAGAIN;
        const __u32 index = queue.front();
        queue.pop_front();
        nextFrame = Clock::now() + framePeriod;
        const std::string bytes = camera.frame(width, height);
        given.index = index;
        given.length = width * height * 2;
        given.bytesused = __u32(std::min(bytes.size(), size_t(given.length)));
        if (buffers[index])
            std::memcpy(buffers[index], bytes.data(), given.bytesused);
        return 0;
    }

    int queryControl(v4l2_queryctrl &asked) const
    {
        Control found;
        if (!camera.find(asked.id, found))
            return EINVAL;
        asked.minimum = found.minimum;
        asked.maximum = found.maximum;
        asked.step = 1;
        return 0;
    }

    int queryUnit(const uvc_xu_control_query &asked) const
    {
        Control roll;
        if (asked.unit != 1 || asked.selector != UVC_CT_ROLL_ABSOLUTE_CONTROL || asked.size != 2 ||
            !camera.find(rollId, roll))
            return ENOENT;
        if (asked.query == UVC_SET_CUR)
            return camera.set(rollId, __s16(asked.data[0] | asked.data[1] << 8));
        asked.data[0] = __u8(roll.value & 0xff);
        asked.data[1] = __u8(roll.value >> 8 & 0xff);
        return 0;
    }

    const std::string link;
    const Camera camera;
    const std::string held;
    std::mutex mutex;
    __u32 width = 640;
    __u32 height = 480;
    std::vector<void *> buffers; // as mapped; the program unmaps them
    std::deque<__u32> queue;
    bool streaming = false;
    Clock::time_point nextFrame;
};

/// The open descriptors. Never destroyed: closing goes on after main.
class Handles
{
public:
    static Handles &all()
    {
        static Handles &handles = *new Handles;
        return handles;
    }

    std::shared_ptr<Handle> find(int fd)
    {
        if (count.load(std::memory_order_relaxed) == 0)
            return nullptr;
        std::lock_guard<std::mutex> lock(mutex);
        const auto handle = open.find(fd);
        return handle == open.end() ? nullptr : handle->second;
    }

    void add(int fd, std::shared_ptr<Handle> handle)
    {
        std::lock_guard<std::mutex> lock(mutex);
        open[fd] = std::move(handle);
        count = int(open.size());
    }

    void remove(int fd)
    {
        if (count.load(std::memory_order_relaxed) == 0)
            return;
        std::lock_guard<std::mutex> lock(mutex);
        open.erase(fd);
        count = int(open.size());
    }

private:
    std::mutex mutex;
    std::map<int, std::shared_ptr<Handle>> open;
    std::atomic<int> count{0};
};

int openNode(const std::string &node)
{
    const std::string link = std::string(root()) + "/dev/" + node;
    char camera[4096];
    const ssize_t length = ::readlink(link.c_str(), camera, sizeof camera - 1);
    if (length < 0) {
        errno = ENOENT;
        return -1;
    }
    const int fd = ::eventfd(0, EFD_CLOEXEC);
    if (fd >= 0)
        Handles::all().add(fd, std::make_shared<Handle>(link, std::string(camera, size_t(length)),
                                                        std::string(root()) + "/held/" + node +
                                                            "." + std::to_string(fd)));
    return fd;
}

int openPath(const char *path, int flags, mode_t mode)
{
    if (root() && path && std::strncmp(path, "/dev/video", 10) == 0)
        return openNode(path + 5);
    return realOpen(redirected(path).c_str(), flags, mode);
}

/// Waits for a camera to have something to say. @returns whether it has
bool waitFor(Handle &handle, milliseconds limit)
{
    const Clock::time_point end = Clock::now() + limit;
    while (!handle.ready()) {
        if (Clock::now() >= end)
            return false;
        // The orders to a camera stand in files, which tell nobody of a change.
        std::this_thread::sleep_for(milliseconds(1));
    }
    return true;
}

mode_t modeOf(int flags, va_list arguments)
{
    return flags & O_CREAT ? va_arg(arguments, mode_t) : 0;
}

} // namespace

// ---- In the place of the C library

extern "C" {

int open(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return openPath(path, flags, mode);
}

int open64(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return openPath(path, flags | O_LARGEFILE, mode);
}

int close(int fd)
{
    Handles::all().remove(fd);
    return realClose(fd);
}

int ioctl(int fd, unsigned long request, ...) noexcept
{
    va_list arguments;
    va_start(arguments, request);
    void *argument = va_arg(arguments, void *);
    va_end(arguments);
    if (const std::shared_ptr<Handle> handle = Handles::all().find(fd))
        return handle->control(request & 0xffffffff, argument);
    static const auto next = real<int(int, unsigned long, ...)>("ioctl");
    return next(fd, request, argument);
}

void *mmap(void *address, size_t length, int protection, int flags, int fd, off_t offset) noexcept
{
    if (fd >= 0)
        if (const std::shared_ptr<Handle> handle = Handles::all().find(fd))
            return handle->map(length, offset);
    static const auto next = real<void *(void *, size_t, int, int, int, off_t)>("mmap");
    return next(address, length, protection, flags, fd, offset);
}

int select(int count, fd_set *readable, fd_set *writable, fd_set *exceptional, timeval *timeout)
{
    if (readable && timeout) {
        for (int fd = 0; fd < count; ++fd) {
            if (!FD_ISSET(fd, readable))
                continue;
            const std::shared_ptr<Handle> handle = Handles::all().find(fd);
            if (!handle)
                continue;
            const milliseconds limit(timeout->tv_sec * 1000 + timeout->tv_usec / 1000);
            if (waitFor(*handle, limit))
                return 1;
            FD_ZERO(readable);
            return 0;
        }
    }
    static const auto next = real<int(int, fd_set *, fd_set *, fd_set *, timeval *)>("select");
    return next(count, readable, writable, exceptional, timeout);
}

int poll(pollfd *descriptors, nfds_t count, int timeoutMs)
{
    if (count == 1)
        if (const std::shared_ptr<Handle> handle = Handles::all().find(descriptors->fd)) {
            const bool ready = waitFor(*handle, milliseconds(timeoutMs));
            descriptors->revents = ready ? POLLIN : 0;
            return ready;
        }
    static const auto next = real<int(pollfd *, nfds_t, int)>("poll");
    return next(descriptors, count, timeoutMs);
}

int openat(int folder, const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    static const auto next = real<int(int, const char *, int, ...)>("openat");
    return next(folder, redirected(path).c_str(), flags, mode);
}

FILE *fopen(const char *path, const char *mode)
{
    static const auto next = real<FILE *(const char *, const char *)>("fopen");
    return next(redirected(path).c_str(), mode);
}

FILE *fopen64(const char *path, const char *mode)
{
    static const auto next = real<FILE *(const char *, const char *)>("fopen64");
    return next(redirected(path).c_str(), mode);
}

char *realpath(const char *path, char *resolved) noexcept
{
    static const auto next = real<char *(const char *, char *)>("realpath");
    return next(redirected(path).c_str(), resolved);
}

} // extern "C"
