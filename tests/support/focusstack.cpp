#include "tests/support/focusstack.h"

#include <opencv2/imgproc.hpp>

#include <array>
#include <cmath>

namespace focusstack {

cv::Mat surface(cv::Size size, unsigned seed)
{
    cv::RNG random(seed);
    cv::Mat fine(size, CV_8UC3);
    random.fill(fine, cv::RNG::UNIFORM, 0, 256);
    cv::GaussianBlur(fine, fine, cv::Size(), 0.7);
    cv::Mat coarse(size.height / 16 + 1, size.width / 16 + 1, CV_8UC3);
    random.fill(coarse, cv::RNG::UNIFORM, 0, 256);
    cv::resize(coarse, coarse, size, 0, 0, cv::INTER_CUBIC);
    cv::Mat result;
    cv::addWeighted(fine, 1.0, coarse, 0.6, -75.0, result);
    return result;
}

cv::Mat frame(const cv::Mat &surface, int index, int count)
{
    std::array<cv::Mat, 4> blurred = {surface.clone()};
    for (size_t i = 1; i < blurred.size(); ++i)
        cv::GaussianBlur(surface, blurred[i], cv::Size(), std::pow(2.0, double(i) - 1.0));
    cv::Mat result(surface.size(), CV_8UC3);
    for (int y = 0; y < result.rows; ++y) {
        const double wave = 0.15 * std::sin(6.28 * y / result.rows);
        for (int x = 0; x < result.cols; ++x) {
            const double height = double(x) / result.cols + wave;
            const double distance = std::abs(height * count - index - 0.5);
            const size_t level = distance < 0.7 ? 0 : distance < 1.6 ? 1 : distance < 3.0 ? 2 : 3;
            result.at<cv::Vec3b>(y, x) = blurred[level].at<cv::Vec3b>(y, x);
        }
    }
    cv::RNG random(unsigned(index) + 77u);
    cv::Mat noise(result.size(), CV_16SC3);
    random.fill(noise, cv::RNG::NORMAL, 0.0, 1.5);
    cv::add(result, noise, result, cv::noArray(), CV_8U);
    return result;
}

} // namespace focusstack
