#include "fusion/sharpness.h"

#include "fusion/rowbands.h"

#include <opencv2/core/hal/intrin.hpp>
#include <opencv2/imgproc.hpp>

#include <QtGlobal>

#include <atomic>
#include <vector>

namespace {

/// Three neighbouring rows of grey levels, each continued by one mirrored pixel at both ends.
struct Rows
{
    const uchar *above;
    const uchar *here;
    const uchar *below;
};

int gradientAt(const Rows &r, int x)
{
    const int gx = r.above[x + 1] - r.above[x - 1] + 2 * (r.here[x + 1] - r.here[x - 1]) +
                   r.below[x + 1] - r.below[x - 1];
    const int gy = r.below[x - 1] - r.above[x - 1] + 2 * (r.below[x] - r.above[x]) +
                   r.below[x + 1] - r.above[x + 1];
    return std::abs(gx) + std::abs(gy);
}

/// A whole gradient is at most 2040, so eight of them fit in 16 bits each.
quint64 gradientSum(const Rows &r, int width)
{
    int x = 0;
    const auto load = [](const uchar *p) { return cv::v_reinterpret_as_s16(cv::v_load_expand(p)); };
    cv::v_uint32x4 sums = cv::v_setzero_u32();
    for (; x + 8 <= width; x += 8) {
        const auto topLeft = load(r.above + x - 1), topRight = load(r.above + x + 1);
        const auto bottomLeft = load(r.below + x - 1), bottomRight = load(r.below + x + 1);
        const auto across = load(r.here + x + 1) - load(r.here + x - 1);
        const auto down = load(r.below + x) - load(r.above + x);
        const auto rising = bottomRight - topLeft, falling = topRight - bottomLeft;
        const auto gx = rising + falling + across + across;
        const auto gy = rising - falling + down + down;
        cv::v_uint32x4 low, high;
        cv::v_expand(cv::v_abs(gx) + cv::v_abs(gy), low, high);
        sums += low + high;
    }
    quint64 sum = cv::v_reduce_sum(sums);
    for (; x < width; ++x)
        sum += quint64(gradientAt(r, x));
    return sum;
}

/// @param padded  working picture
quint64 gradientSum(const cv::Mat &frame, cv::Range rows, cv::Mat &padded)
{
    const auto mirrored = [](int p, int length) {
        return cv::borderInterpolate(p, length, cv::BORDER_DEFAULT);
    };
    const int width = frame.cols;
    const cv::Range around(std::max(rows.start - 1, 0), std::min(rows.end + 1, frame.rows));
    padded.create(around.size(), width + 2, CV_8U);
    cv::Mat gray = padded.colRange(1, width + 1);
    cv::cvtColor(frame.rowRange(around), gray, cv::COLOR_BGR2GRAY);
    for (int y = 0; y < padded.rows; ++y) {
        uchar *row = padded.ptr(y);
        row[0] = row[1 + mirrored(-1, width)];
        row[width + 1] = row[1 + mirrored(width, width)];
    }
    quint64 sum = 0;
    const auto row = [&](int y) { return padded.ptr(mirrored(y, frame.rows) - around.start) + 1; };
    for (int y = rows.start; y < rows.end; ++y)
        sum += gradientSum({row(y - 1), row(y), row(y + 1)}, width);
    return sum;
}

} // namespace

double sharpness(const cv::Mat &frame)
{
    CV_Assert(!frame.empty() && frame.type() == CV_8UC3);
    // Whole numbers: the order in which the bands are added does not matter.
    std::atomic<quint64> sum{0};
    forEachBand<cv::Mat>(frame.rows, [&](cv::Range rows, cv::Mat &padded) {
        sum += gradientSum(frame, rows, padded);
    });
    return double(sum.load()) / 1000000.0;
}
