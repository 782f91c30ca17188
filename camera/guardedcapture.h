#pragma once

#include <opencv2/videoio.hpp>

#include <atomic>
#include <shared_mutex>

/// A capture object that several threads may use at once.
///
/// Reading, setting and getting go on side by side, as the backends allow. Opening, releasing and
/// changing the format rebuild what the others use, so each of these runs alone. `isOpened` never
/// waits. What a backend throws counts as a refusal, and as an empty frame when reading.
class GuardedCapture : public cv::VideoCapture
{
public:
    using cv::VideoCapture::open;
    bool open(int index, int backend) override;
    bool isOpened() const override;
    void release() override;
    /// Empties the image when there is no frame.
    bool read(cv::OutputArray image) override;
    bool set(int property, double value) override;
    /// @returns -1 when the device is not open
    double get(int property) const override;

private:
    std::atomic<bool> opened{false};
    mutable std::shared_mutex device;
};
