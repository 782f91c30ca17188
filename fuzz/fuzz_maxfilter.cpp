#include "fusion/saliency.h"
#include "tests/support/literalfusion.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace {

void check(bool isTrue)
{
    if (!isTrue)
        std::abort();
}

/// Row by row and value by value.
float maximumAround(const cv::Mat &values, int y, int x, int radius)
{
    if (y < radius || y >= values.rows - radius || x < radius || x >= values.cols - radius)
        return values.at<float>(y, x);
    float maximum = 0.0f;
    for (int row = y - radius; row <= y + radius; ++row) {
        for (int column = x - radius; column <= x + radius; ++column)
            maximum = std::max(maximum, values.at<float>(row, column));
    }
    return maximum;
}

void checkSlidingMax(const std::vector<float> &values, int window)
{
    const std::vector<float> maxima = literal::slidingMax(values, window);
    check(int(maxima.size()) == std::max(int(values.size()) - window + 1, 0));
    for (size_t i = 0; i < maxima.size(); ++i)
        check(maxima[i] ==
              *std::max_element(values.begin() + long(i), values.begin() + long(i) + window));
}

} // namespace

/// Four bytes for size, radius and rows, the others fill a picture: the maximum filter in bands of
/// rows and the sliding maximum against a plain loop.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 5)
        return 0;
    const int columns = 1 + data[0] % 48;
    const int radius = data[1] % 7;
    const int height = std::max(1 + data[2] % 48, 2 * radius);
    const int band = 1 + data[3] % height;
    data += 4;
    size -= 4;
    cv::Mat values(height, columns, CV_32F);
    for (int i = 0; i < height * columns; ++i)
        values.at<float>(i / columns, i % columns) = float(data[size_t(i) % size]) / 3.0f;

    checkSlidingMax(values.reshape(1, 1), 2 * radius + 1);
    for (int start = 0; start < height; start += band) {
        const cv::Range rows(start, std::min(start + band, height));
        cv::Mat result;
        maxFilter(values, rows, result, radius);
        check(result.rows == rows.size() && result.cols == columns);
        for (int y = rows.start; y < rows.end; ++y) {
            for (int x = 0; x < columns; ++x)
                check(result.at<float>(y - start, x) == maximumAround(values, y, x, radius));
        }
    }
    return 0;
}
