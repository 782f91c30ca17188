// The simulated microscope at rest, at 1920 x 1080 and 30 frames a second: processor time of a
// frame against the time between two. bench_simulator [frames]

#include "simulator/simulatedcapture.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>

int main(int argc, char *argv[])
{
    constexpr double frameInterval = 1.0 / 30;
    constexpr double mostOfACore = 0.5;
    const int frames = argc > 1 ? std::atoi(argv[1]) : 90;

    SimulatedCapture microscope;
    microscope.open(0, cv::CAP_ANY);
    cv::Mat frame;
    microscope.read(frame); // draws the specimen
    const std::clock_t start = std::clock();
    for (int i = 0; i < frames; ++i)
        microscope.read(frame);
    const double perFrame = double(std::clock() - start) / CLOCKS_PER_SEC / frames;

    const double share = perFrame / frameInterval;
    std::printf(
        "%d x %d at rest: %.2f ms of processor time a frame, %.3f of a core (at most %.1f)\n",
        frame.cols, frame.rows, perFrame * 1e3, share, mostOfACore);
    return share <= mostOfACore ? 0 : 1;
}
