#pragma once

#include <opencv2/core.hpp>

#include <vector>

/// The lens of the simulated microscope: shows the specimen as sharp as the distance of each part's
/// height from the focus position allows.
class Optics
{
public:
    /// @param size  of the pictures, in pixels; the field's width fills their width
    explicit Optics(cv::Size size);

    cv::Size size() const { return stages.front().picture.size(); }
    /// The specimen sharp all over.
    const cv::Mat &allInFocus() const { return stages.front().picture; }
    /// A part of the picture at a focus position. @param part  inside the picture
    cv::Mat render(double focus, const cv::Rect &part) const;
    cv::Mat render(double focus) const;
    /// Focus position of 0 to 400 at which a part of the picture has the strongest gradients.
    double sharpestFocus(const cv::Rect &part) const;

private:
    /// The whole picture as it looks at one distance from the focus.
    struct Stage
    {
        double defocus;
        cv::Mat picture;
    };

    void blend(double defocus, const cv::Rect &part, cv::Mat target) const;
    double heightOfRow(int row) const;
    cv::Rect inPixels(const cv::Rect2d &area) const;

    double micrometresPerPixel;
    std::vector<Stage> stages; // by rising defocus, the sharp one first
};
