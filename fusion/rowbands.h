#pragma once

#include <opencv2/core.hpp>

/// Calls `work(cv::Range rows, Scratch &scratch)` for every band of a picture's rows, on the
/// library's threads. What a thread leaves in `scratch` is there again for its next band.
///
/// Bands begin at multiples of 64; the last one takes the remainder, so that no band of a higher
/// picture is smaller. What `work` throws reaches the caller.
template<typename Scratch, typename Work>
void forEachBand(int rows, const Work &work)
{
    constexpr int bandRows = 64;        // a band's pictures stay in the cache
    constexpr int stripesPerThread = 8; // for threads of uneven speed
    const int bands = std::max(rows / bandRows, 1);
    cv::parallel_for_(
        cv::Range(0, bands),
        [&](const cv::Range &range) {
            Scratch scratch;
            for (int i = range.start; i < range.end; ++i)
                work(cv::Range(i * bandRows, i + 1 == bands ? rows : (i + 1) * bandRows), scratch);
        },
        cv::getNumThreads() * stripesPerThread);
}
