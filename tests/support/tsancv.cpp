// What the thread sanitizer cannot see of OpenCV's threads, which are not built with it: what was
// done before a parallel loop happened before its parts, and these before what follows the loop.
// Linked into everything that fuses in the tsan preset; stands before the library's own function.

#include <opencv2/core/utility.hpp>

#include <dlfcn.h>

extern "C" {
void __tsan_acquire(void *);
void __tsan_release(void *);
}

namespace {

char loopBegins;
char partEnds;

class OrderedBody : public cv::ParallelLoopBody
{
public:
    explicit OrderedBody(const cv::ParallelLoopBody &loopBody)
        : body(loopBody)
    {}
    void operator()(const cv::Range &range) const override
    {
        __tsan_acquire(&loopBegins);
        body(range);
        __tsan_release(&partEnds);
    }

private:
    const cv::ParallelLoopBody &body;
};

} // namespace

void cv::parallel_for_(const cv::Range &range, const cv::ParallelLoopBody &body, double stripes)
{
    using Function = void(const cv::Range &, const cv::ParallelLoopBody &, double);
    static const auto real = reinterpret_cast<Function *>(
        dlsym(RTLD_NEXT, "_ZN2cv13parallel_for_ERKNS_5RangeERKNS_16ParallelLoopBodyEd"));
    const OrderedBody ordered(body);
    __tsan_release(&loopBegins);
    real(range, ordered, stripes);
    __tsan_acquire(&partEnds);
}
