// Whole focus sweeps in memory, analysed by the worker thread and by the literal steps in the same
// run: processor time, stages, memory. bench_fusion [width height frames]

#include "fusion/picanalyse.h"
#include "tests/support/focusstack.h"
#include "tests/support/literalfusion.h"

#include <opencv2/imgproc.hpp>

#include <QCoreApplication>
#include <QFile>
#include <QGuiApplication>
#include <QRegularExpression>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <iostream>
#include <map>
#include <sstream>
#include <vector>

namespace {

struct Workload
{
    cv::Size size;
    int frames;
    double leastRatio;
};

using StageTimes = std::map<std::string, double>;

/// Processor time of all threads.
double processorSeconds() { return double(std::clock()) / CLOCKS_PER_SEC; }

/// A line of the system's status of this process in bytes; 0 where there is no such file.
double statusBytes(const char *key)
{
    QFile status("/proc/self/status");
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QRegularExpression line(QString("%1:\\s+(\\d+) kB").arg(key));
    return line.match(QString::fromLatin1(status.readAll())).captured(1).toDouble() * 1024;
}

void resetPeakMemory()
{
    QFile clear("/proc/self/clear_refs");
    if (clear.open(QIODevice::WriteOnly))
        clear.write("5");
}

QPixmap pixmap(const cv::Mat &frame)
{
    QImage image(frame.cols, frame.rows, QImage::Format_RGB32);
    cv::Mat pixels(frame.size(), CV_8UC4, image.bits(), size_t(image.bytesPerLine()));
    cv::cvtColor(frame, pixels, cv::COLOR_BGR2BGRA);
    return QPixmap::fromImage(image);
}

std::vector<QPixmap> stack(const Workload &workload)
{
    const cv::Mat surface = focusstack::surface(workload.size, 1);
    std::vector<QPixmap> frames;
    for (int i = 0; i < workload.frames; ++i)
        frames.push_back(pixmap(focusstack::frame(surface, i, workload.frames)));
    return frames;
}

/// The stages of a sweep, from the timing lines that it has written.
StageTimes stagesOf(const std::string &lines)
{
    StageTimes stages;
    const QRegularExpression line("(\\w+)-running time (\\S+) sec\\.");
    auto match = line.globalMatch(QString::fromStdString(lines));
    while (match.hasNext()) {
        const auto stage = match.next();
        stages[stage.captured(1).toStdString()] += stage.captured(2).toDouble();
    }
    return stages;
}

struct Result
{
    double seconds = 0;
    std::vector<double> perFrame;
    QImage picture;
};

/// Calls `add` for every frame.
template<typename Add>
Result sweep(const std::vector<QPixmap> &frames, const Add &add)
{
    Result result;
    for (const QPixmap &frame : frames) {
        const double begin = processorSeconds();
        add(frame);
        result.perFrame.push_back(processorSeconds() - begin);
        result.seconds += result.perFrame.back();
    }
    return result;
}

double mean(const std::vector<double> &values, size_t from, size_t to)
{
    double sum = 0;
    for (size_t i = from; i < to; ++i)
        sum += values[i];
    return sum / double(to - from);
}

/// Lets the library load and start what it needs, so that neither side pays for it.
void warmUp()
{
    PicAnalyse analysis;
    for (const QPixmap &frame : stack({{200, 200}, 2, 0})) {
        analysis.setPix(frame);
        analysis.wait();
    }
}

bool run(const Workload &workload)
{
    const std::vector<QPixmap> frames = stack(workload);
    const double frameBytes = 3.0 * workload.size.area();
    std::printf("%d x %d, %d frames\n", workload.size.width, workload.size.height, workload.frames);

    PicAnalyse analysis;
    std::ostringstream lines;
    std::streambuf *const terminal = std::cout.rdbuf(lines.rdbuf());
    resetPeakMemory();
    const double before = statusBytes("VmRSS");
    Result fast = sweep(frames, [&](const QPixmap &frame) {
        analysis.setPix(frame);
        analysis.wait();
    });
    const double extra = statusBytes("VmHWM") - before;
    std::cout.rdbuf(terminal);
    fast.picture = analysis.pix().toImage();
    const StageTimes fastStages = stagesOf(lines.str());

    literal::Sweep reference;
    std::map<literal::Outcome, int> outcomes;
    StageTimes slowStages;
    int64 last = 0;
    reference.stageEnded = [&](const std::string &stage) {
        const int64 now = cv::getTickCount();
        slowStages[stage] += stage.empty() ? 0.0 : double(now - last) / cv::getTickFrequency();
        last = now;
    };
    Result slow = sweep(frames, [&](const QPixmap &frame) { ++outcomes[reference.add(frame)]; });
    slow.picture = reference.pix().toImage();

    std::printf("  accepted %d, dropped %d, skipped %d\n", outcomes[literal::Outcome::Accepted],
                outcomes[literal::Outcome::Dropped], outcomes[literal::Outcome::Skipped]);
    std::printf("  %-10s %10s %10s %8s\n", "", "literal", "here", "ratio");
    const double ratio = slow.seconds / fast.seconds;
    std::printf("  %-10s %8.0f ms %7.0f ms %7.1fx", "sweep", slow.seconds * 1e3, fast.seconds * 1e3,
                ratio);
    if (workload.leastRatio > 0)
        std::printf("   wanted: at least %.0fx", workload.leastRatio);
    std::printf("\n");
    std::printf("  of which, on the wall clock, in all fusions:\n");
    for (const char *stage : {"S", "P", "Wbd", "norm", "lastF"})
        std::printf("  %-10s %8.0f ms %7.0f ms %7.1fx\n", stage, slowStages[stage] * 1e3,
                    fastStages.at(stage) * 1e3, slowStages[stage] / fastStages.at(stage));
    const size_t half = frames.size() / 2;
    std::printf("  a frame of the second half costs %.2f times one of the first\n",
                mean(fast.perFrame, half, frames.size()) / mean(fast.perFrame, 1, half));
    std::printf("  peak extra memory %.1f frames of 3 bytes a pixel   wanted: at most 8.5\n",
                extra / frameBytes);
    const bool same = fast.picture == slow.picture;
    std::printf("  the results are %s\n", same ? "identical" : "DIFFERENT");
    return same;
}

} // namespace

int main(int argc, char *argv[])
{
    QGuiApplication application(argc, argv);
    std::vector<Workload> workloads = {{{1920, 1080}, 20, 6}, {{4000, 3000}, 8, 8}};
    if (argc == 4)
        workloads = {{{std::atoi(argv[1]), std::atoi(argv[2])}, std::atoi(argv[3]), 0}};
    std::streambuf *const terminal = std::cout.rdbuf(nullptr);
    warmUp();
    std::cout.rdbuf(terminal);
    std::cout.clear();
    bool same = true;
    for (const Workload &workload : workloads)
        same = run(workload) && same;
    return same ? 0 : 1;
}
