#include "tests/support/literalfusion.h"

#include "fusion/pictureconversion.h"

#include <opencv2/imgproc.hpp>
#include <opencv2/ximgproc.hpp>

namespace literal {

std::vector<float> slidingMax(const std::vector<float> &values, int window)
{
    const int n = int(values.size());
    if (n - window < 0)
        return {};
    std::vector<float> result(size_t(n - window + 1));
    float best = -1.0f;
    int position = 0;
    const auto scan = [&](int from) {
        best = -1.0f;
        for (int i = from; i < from + window; ++i) {
            if (values[size_t(i)] > best) {
                best = values[size_t(i)];
                position = i;
            }
        }
    };
    scan(0);
    result[0] = best;
    for (int i = 1; i <= n - window; ++i) {
        const int entering = i + window - 1;
        if (position == i - 1) {
            scan(i);
        } else if (values[size_t(entering)] > best) {
            best = values[size_t(entering)];
            position = entering;
        }
        result[size_t(i)] = best;
    }
    return result;
}

void maxFilter(const cv::Mat &src, cv::Mat &dst, int radius)
{
    const int height = src.rows;
    const int width = src.cols;
    const int window = 2 * radius + 1;
    dst = src.clone();
    cv::Mat temporary = cv::Mat::zeros(height - 2 * radius, width, CV_32F);
    for (int x = 0; x < width; ++x) {
        std::vector<float> column;
        for (int y = 0; y < height; ++y)
            column.push_back(src.at<float>(y, x));
        const std::vector<float> maxima = slidingMax(column, window);
        for (int y = 0; y < height - 2 * radius; ++y)
            temporary.at<float>(y, x) = maxima[size_t(y)];
    }
    for (int y = radius; y <= height - radius - 1; ++y) {
        std::vector<float> row;
        for (int x = 0; x < width; ++x)
            row.push_back(temporary.at<float>(y - radius, x));
        const std::vector<float> maxima = slidingMax(row, window);
        for (int x = 0; x < width - 2 * radius; ++x)
            dst.at<float>(y, x + radius) = maxima[size_t(x)];
    }
}

double sharpness(const cv::Mat &frame)
{
    cv::Mat gray;
    cv::cvtColor(frame, gray, cv::COLOR_BGR2GRAY);
    gray.convertTo(gray, CV_32F, 1.0, 0.0);
    cv::Mat gx = cv::Mat::zeros(frame.size(), CV_32F);
    cv::Mat gy = cv::Mat::zeros(frame.size(), CV_32F);
    cv::Sobel(gray, gx, CV_32F, 1, 0, 3, 1.0, 0.0, cv::BORDER_DEFAULT);
    cv::Sobel(gray, gy, CV_32F, 0, 1, 3, 1.0, 0.0, cv::BORDER_DEFAULT);
    cv::add(cv::abs(gx), cv::abs(gy), gray, cv::noArray(), -1);
    return cv::sum(gray)[0] / 1000000.0;
}

namespace {

void saliency(const cv::Mat &frame, cv::Mat &gradient, cv::Mat &result, Trace *trace)
{
    cv::Mat img, L, gx, gy, M;
    frame.convertTo(img, CV_32FC3, 1.0, 0.0);
    cv::cvtColor(img, L, cv::COLOR_BGR2GRAY);
    L = L + cv::Scalar(1.0, 0, 0, 0);
    cv::log(L, L);
    L = L * 27.050532016668065;
    cv::Sobel(L, gx, CV_32F, 1, 0, 3, 1.0, 0.0, cv::BORDER_DEFAULT);
    cv::Sobel(L, gy, CV_32F, 0, 1, 3, 1.0, 0.0, cv::BORDER_DEFAULT);
    cv::add(cv::abs(gx), cv::abs(gy), gradient);
    maxFilter(gradient, M, 5);
    cv::GaussianBlur(M, result, cv::Size(11, 11), 5.0, 0.0, cv::BORDER_DEFAULT);
    if (trace) {
        trace->logGray.push_back(L.clone());
        trace->maximum.push_back(M.clone());
    }
}

void select(const std::vector<cv::Mat> &S, std::vector<cv::Mat> &P, cv::Size size)
{
    for (size_t i = 0; i < S.size(); ++i)
        P.push_back(cv::Mat::zeros(size, CV_32F));
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            float bestValue = 0.0f;
            size_t best = 0;
            for (size_t i = 0; i < S.size(); ++i) {
                if (S[i].at<float>(y, x) > bestValue) {
                    bestValue = S[i].at<float>(y, x);
                    best = i;
                }
            }
            P[best].at<float>(y, x) = 1.0f;
        }
    }
}

void normalise(std::vector<cv::Mat> &W, int mode)
{
    if (mode != 1 && mode != 2)
        return;
    for (int y = 0; y < W[0].rows; ++y) {
        for (int x = 0; x < W[0].cols; ++x) {
            float sum = 0.0f;
            for (cv::Mat &weight : W) {
                float &w = weight.at<float>(y, x);
                if (w > 1.0f)
                    w = 1.0f;
                sum += w;
            }
            if (mode == 1) {
                for (cv::Mat &weight : W)
                    weight.at<float>(y, x) /= sum;
            }
        }
    }
}

} // namespace

void fuseFrames(const std::vector<cv::Mat> &frames, cv::Mat &out, int mode, Trace *trace,
                const StageObserver &stageEnded)
{
    const auto ended = [&](const char *stage) {
        if (stageEnded)
            stageEnded(stage);
    };
    const auto copies = [](const std::vector<cv::Mat> &mats) {
        std::vector<cv::Mat> result;
        for (const cv::Mat &mat : mats)
            result.push_back(mat.clone());
        return result;
    };
    const size_t n = frames.size();
    const cv::Size size = frames[0].size();
    ended("");
    std::vector<cv::Mat> E(n), S(n), P, W(n);

    for (size_t i = 0; i < n; ++i)
        saliency(frames[i], E[i], S[i], trace);
    ended("S");

    select(S, P, size);
    ended("P");
    if (trace) {
        trace->gradient = copies(E);
        trace->saliency = copies(S);
        trace->selection = copies(P);
    }
    S.clear();

    for (size_t i = 0; i < n; ++i)
        cv::ximgproc::guidedFilter(E[i], P[i], W[i], 7, 0.06502499999999999, -1);
    E.clear();
    P.clear();
    if (trace)
        trace->guided = copies(W);
    ended("Wbd");

    normalise(W, mode);
    if (trace)
        trace->weight = copies(W);
    ended("norm");

    cv::Mat F = cv::Mat::zeros(size, CV_32FC3);
    for (size_t i = 0; i < n; ++i) {
        cv::Mat T;
        cv::cvtColor(W[i], W[i], cv::COLOR_GRAY2BGR);
        frames[i].convertTo(T, CV_32FC3, 1.0, 0.0);
        F += W[i].mul(T, 1.0);
    }
    F.convertTo(out, CV_8U, 1.0, 0.0);
    ended("lastF");
}

Outcome Sweep::add(const QPixmap &framePix)
{
    if (resultPix.isNull()) {
        resultPix = framePix;
        return Outcome::First;
    }
    QImage resultImage = resultPix.toImage();
    QImage frameImage = framePix.toImage();
    const std::vector<cv::Mat> frames = {qImageToCvMat(resultImage), qImageToCvMat(frameImage)};
    if (lastSharpness < 1e-05)
        lastSharpness = sharpness(frames[0]);
    const double value = sharpness(frames[1]);
    if (lastSharpness > value) {
        ++declineCount;
        if (declineCount > 4) {
            lastSharpness = value;
            return Outcome::Skipped;
        }
    } else {
        declineCount = 0;
    }
    lastSharpness = value;
    cv::Mat out;
    fuseFrames(frames, out, 1, nullptr, stageEnded);
    const double a = sharpness(frames[0]);
    const double b = sharpness(out);
    if (!(a + 2.0 < b))
        return Outcome::Dropped;
    QPixmap fused = QPixmap::fromImage(cvMatToQImage(out)); // in place: a temporary
    resultPix.swap(fused);
    return Outcome::Accepted;
}

} // namespace literal
