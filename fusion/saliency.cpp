#include "fusion/saliency.h"

#include "fusion/gradientmagnitude.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>

namespace {

/// 150 / ln 256
constexpr double logScale = 27.050532016668065;
constexpr int maximumRadius = 5;
constexpr int gaussSide = 11;
constexpr double gaussSigma = 5.0;
/// Rows that are converted at a time: few enough to stay in the cache, and of eight columns or more
/// they still hold a group of vectors, see logOfStretch.
constexpr int fewRows = 8;

/// The rows and as many around them as the picture has, up to `margin` on each side.
cv::Range widened(cv::Range rows, int margin, int height)
{
    return {std::max(rows.start - margin, 0), std::min(rows.end + margin, height)};
}

/// The natural logarithm of a stretch of a picture, the same to the last bit as one call in place
/// for the whole picture. There the library computes what is left behind its last full group of
/// vectors by another formula than the rest, whereas a call out of place treats all values alike.
void logOfStretch(const cv::Mat &values, cv::Mat &result, bool reachesEnd, size_t pictureSize)
{
    constexpr size_t vectorGroup = 64; // a multiple of any processor's
    cv::log(values, result);
    const int tail = int(pictureSize % vectorGroup);
    if (!reachesEnd || tail == 0)
        return;
    const auto lastOnes = [tail](const cv::Mat &mat) {
        const int size = int(mat.total());
        return mat.reshape(1, 1).colRange(size - tail, size);
    };
    cv::Mat last = lastOnes(values).clone();
    cv::log(last, last);
    last.copyTo(lastOnes(result));
}

} // namespace

void logGray(const cv::Mat &frame, cv::Range rows, SaliencyBuffers &buffers)
{
    auto &[bgr, gray, levels] = buffers;
    levels.create(rows.size(), frame.cols, CV_32F);
    const int step = frame.cols < fewRows ? rows.size() : fewRows;
    const int steps = std::max(rows.size() / step, 1);
    for (int i = 0; i < steps; ++i) {
        const cv::Range few(i * step, i + 1 == steps ? rows.size() : (i + 1) * step);
        frame.rowRange(few + rows.start).convertTo(bgr, CV_32F);
        // After the conversion to float: no rounding to whole levels.
        cv::cvtColor(bgr, gray, cv::COLOR_BGR2GRAY);
        gray.convertTo(gray, CV_32F, 1.0, 1.0);
        cv::Mat target = levels.rowRange(few);
        logOfStretch(gray, target, few.end + rows.start == frame.rows, frame.total());
        target.convertTo(target, CV_32F, logScale);
    }
}

void gradientMap(const cv::Mat &frame, cv::Range rows, cv::Mat &gradient, SaliencyBuffers &buffers)
{
    const cv::Range around = widened(rows, 1, frame.rows);
    logGray(frame, around, buffers);
    gradientMagnitude(buffers.levels, rows - around.start, gradient.rowRange(rows));
}

void maxFilter(const cv::Mat &src, cv::Range rows, cv::Mat &dst, int radius)
{
    CV_Assert(src.rows >= 2 * radius);
    const cv::Range inner(std::max(rows.start, radius), std::min(rows.end, src.rows - radius));
    const cv::Range columns(radius, src.cols - radius);
    const bool fits = inner.start < inner.end && columns.start < columns.end;
    dst.create(rows.size(), src.cols, CV_32F);
    for (int y = rows.start; y < rows.end; ++y) {
        const auto *from = src.ptr<float>(y);
        auto *to = dst.ptr<float>(y - rows.start);
        const bool crossed = fits && y >= inner.start && y < inner.end;
        std::copy(from, from + (crossed ? columns.start : src.cols), to);
        if (crossed)
            std::copy(from + columns.end, from + src.cols, to + columns.end);
    }
    if (!fits)
        return;
    const cv::Mat square =
        cv::getStructuringElement(cv::MORPH_RECT, cv::Size(2 * radius + 1, 2 * radius + 1));
    cv::dilate(src(inner, columns),
               dst(cv::Range(inner.start - rows.start, inner.end - rows.start), columns), square);
}

cv::Mat saliency(const cv::Mat &gradient, cv::Range rows, cv::Mat &buffer)
{
    const cv::Range around = widened(rows, gaussSide / 2, gradient.rows);
    maxFilter(gradient, around, buffer, maximumRadius);
    cv::GaussianBlur(buffer, buffer, cv::Size(gaussSide, gaussSide), gaussSigma);
    return buffer.rowRange(rows.start - around.start, rows.end - around.start);
}
