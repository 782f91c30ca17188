#include "fusion/gradientmagnitude.h"

#include <opencv2/core/hal/intrin.hpp>
#include <opencv2/imgproc.hpp>

#include <cmath>

namespace {

/// The library adds in another order in the columns behind its last full vector. Those begin at a
/// multiple of this or to the right of one, whatever the processor's vectors.
constexpr int longestVector = 16;

void libraryMagnitude(const cv::Mat &picture, cv::Mat magnitude)
{
    cv::Mat gx, gy;
    cv::Sobel(picture, gx, CV_32F, 1, 0);
    cv::Sobel(picture, gy, CV_32F, 0, 1);
    cv::add(cv::abs(gx), cv::abs(gy), magnitude);
}

struct Rows
{
    const float *above;
    const float *here;
    const float *below;
};

float magnitudeAt(const Rows &rows, int left, int x, int right)
{
    const auto across = [&](const float *row) { return row[right] - row[left]; };
    const auto smooth = [&](const float *row) {
        return (row[left] + row[right]) + (row[x] + row[x]);
    };
    const float gx = (across(rows.above) + across(rows.below)) + 2.0f * across(rows.here);
    return std::abs(gx) + std::abs(smooth(rows.below) - smooth(rows.above));
}

/// The columns up to `end`, which a full vector of the library ends at.
void magnitudeRow(const Rows &rows, int width, int end, float *out)
{
    out[0] = magnitudeAt(rows, 1, 0, 1);
    int x = 1;
    const auto across = [&x](const float *row) {
        return cv::v_load(row + x + 1) - cv::v_load(row + x - 1);
    };
    const auto smooth = [&x](const float *row) {
        const auto middle = cv::v_load(row + x);
        return (cv::v_load(row + x - 1) + cv::v_load(row + x + 1)) + (middle + middle);
    };
    for (; x + 4 < std::min(end + 1, width); x += 4) {
        const auto here = across(rows.here);
        const auto gx = (across(rows.above) + across(rows.below)) + (here + here);
        const auto gy = smooth(rows.below) - smooth(rows.above);
        cv::v_store(out + x, cv::v_abs(gx) + cv::v_abs(gy));
    }
    for (; x < end; ++x)
        out[x] = magnitudeAt(rows, x - 1, x, x + 1 < width ? x + 1 : x - 1);
}

void ownMagnitude(const cv::Mat &picture, cv::Range rows, cv::Mat magnitude)
{
    const auto row = [&](int y) {
        return picture.ptr<float>(cv::borderInterpolate(y, picture.rows, cv::BORDER_DEFAULT));
    };
    const int end = picture.cols / longestVector * longestVector;
    for (int y = rows.start; end > 0 && y < rows.end; ++y)
        magnitudeRow({row(y - 1), row(y), row(y + 1)}, picture.cols, end,
                     magnitude.ptr<float>(y - rows.start));
    if (end < picture.cols)
        libraryMagnitude(picture(rows, {end, picture.cols}), magnitude.colRange(end, picture.cols));
}

/// Whether the library adds in the order of here, found out on a picture with columns of all kinds.
bool isExact()
{
    cv::Mat picture(16, 4 * longestVector - 1, CV_32F);
    cv::RNG(1).fill(picture, cv::RNG::UNIFORM, 0.0, 150.0);
    cv::Mat expected(picture.size(), CV_32F), actual(picture.size(), CV_32F);
    libraryMagnitude(picture, expected);
    ownMagnitude(picture, {0, picture.rows}, actual);
    return cv::norm(expected, actual, cv::NORM_INF) == 0.0;
}

} // namespace

bool isGradientOnePass()
{
    static const bool exact = isExact();
    return exact;
}

void gradientMagnitude(const cv::Mat &picture, cv::Range rows, const cv::Mat &magnitude)
{
    if (isGradientOnePass())
        ownMagnitude(picture, rows, magnitude.rowRange(0, rows.size()));
    else
        libraryMagnitude(picture.rowRange(rows), magnitude.rowRange(0, rows.size()));
}
