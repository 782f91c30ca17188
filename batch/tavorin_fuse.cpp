#include "batch/progress.h"
#include "fusion/fusionsweep.h"

#include <opencv2/imgcodecs.hpp>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <cstdio>
#include <optional>
#include <ostream>
#include <vector>

namespace {

enum ExitCode {
    Done = 0,
    WrongUse = 1,
    Unreadable = 2,
    MixedSizes = 3,
    ResultExists = 4,
    ResultNotWritten = 5,
    NotFused = 6
};

const char *const description =
    "Fuses pictures of one subject at different focus positions into one that is sharp all over.\n"
    "The pictures are taken in the given order, which should be that of the focus.\n\n"
    "Exit codes: 0 done, 1 wrong use, 2 a picture is missing or unreadable, 3 the sizes differ,\n"
    "4 the result exists, 5 the result cannot be written, 6 the pictures cannot be fused.";

struct Failure
{
    ExitCode code;
    QString message;
};
using MaybeFailure = std::optional<Failure>;

struct Options
{
    QStringList pictures;
    QString result;
    bool quiet;
    bool all;
    bool force;
};

Options parse(const QCoreApplication &application)
{
    const QCommandLineOption output({"o", "output"},
                                    "Write the fused picture to <file>; its "
                                    "format follows the suffix.",
                                    "file");
    const QCommandLineOption quiet({"q", "quiet"}, "Tell nothing but errors.");
    const QCommandLineOption all({"a", "all"}, "Fuse every picture, also when the sharpness has "
                                               "been falling for a while.");
    const QCommandLineOption force({"f", "force"}, "Overwrite an existing result.");
    QCommandLineParser parser;
    parser.setApplicationDescription(description);
    parser.addOptions({output, quiet, all, force});
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument("pictures", "BMP, JPEG, PNG or TIFF files.", "pictures...");
    parser.process(application); // an unknown option ends with WrongUse, too

    return {parser.positionalArguments(), parser.value(output), parser.isSet(quiet),
            parser.isSet(all), parser.isSet(force)};
}

QByteArray suffixOf(const QString &file)
{
    return '.' + QFileInfo(file).suffix().toLower().toUtf8();
}

/// Finds out before the work what would make it vain.
MaybeFailure check(const Options &options)
{
    if (options.pictures.isEmpty())
        return Failure{WrongUse, "no pictures given, see --help"};
    if (options.result.isEmpty())
        return Failure{WrongUse, "no result given, see option -o"};
    const QList<QByteArray> suffixes = {".bmp", ".jpg", ".jpeg", ".png", ".tif", ".tiff"};
    if (!suffixes.contains(suffixOf(options.result)))
        return Failure{WrongUse, options.result + ": no format of this suffix"};
    if (QFileInfo::exists(options.result) && !options.force)
        return Failure{ResultExists, options.result + ": exists already, see option --force"};
    for (const QString &picture : options.pictures) {
        const QFileInfo info(picture);
        if (!info.isFile())
            return Failure{Unreadable, picture + ": no such file"};
        if (!info.isReadable())
            return Failure{Unreadable, picture + ": not readable"};
    }
    return {};
}

MaybeFailure read(const QString &picture, cv::Mat &frame)
{
    QFile file(picture);
    if (!file.open(QIODevice::ReadOnly))
        return Failure{Unreadable, picture + ": " + file.errorString()};
    QByteArray bytes = file.readAll();
    frame.release();
    try {
        if (!bytes.isEmpty())
            frame = cv::imdecode(cv::Mat(1, bytes.size(), CV_8U, bytes.data()), cv::IMREAD_COLOR);
    } catch (const cv::Exception &) {
        // Told below: an absurd size, for instance.
    }
    if (frame.empty())
        return Failure{Unreadable, picture + ": not a picture that can be read"};
    return {};
}

QString text(FusionSweep::Outcome outcome)
{
    switch (outcome) {
    case FusionSweep::Outcome::First:
        return "first";
    case FusionSweep::Outcome::Skipped:
        return "skipped";
    case FusionSweep::Outcome::Dropped:
        return "fused and dropped";
    case FusionSweep::Outcome::Accepted:
        return "fused and accepted";
    }
    return QString();
}

QString text(cv::Size size) { return QString("%1 x %2").arg(size.width).arg(size.height); }

/// Adds the next picture and puts the line about it together.
MaybeFailure add(const QString &picture, FusionSweep &sweep, QString &line)
{
    cv::Mat frame;
    if (MaybeFailure failure = read(picture, frame))
        return failure;
    const cv::Size size = frame.size();
    const cv::Size wanted = sweep.isEmpty() ? size : sweep.result().size();
    if (size != wanted) {
        const QString message = "%1: is %2, the pictures before it are %3";
        return Failure{MixedSizes, message.arg(picture, text(size), text(wanted))};
    }
    FusionSweep::Outcome outcome;
    try {
        outcome = sweep.add(frame);
    } catch (const cv::Exception &) {
        const QString message = "%1: cannot be fused, %2 is too small";
        return Failure{NotFused, message.arg(picture, text(size))};
    }
    const bool isFirst = outcome == FusionSweep::Outcome::First;
    const double sharpness = isFirst ? sweep.resultSharpness() : sweep.frameSharpness();
    const QString told = "%1  sharpness %2  %3";
    line = told.arg(picture, QString::number(sharpness, 'f', 6), text(outcome));
    return {};
}

/// Adds the pictures one after the other; only one is held beside the running result.
MaybeFailure fuse(const Options &options, FusionSweep &sweep)
{
    Progress progress(options.pictures.size(), options.quiet);
    for (const QString &picture : options.pictures) {
        QString line;
        if (MaybeFailure failure = add(picture, sweep, line))
            return failure;
        progress.report(line);
    }
    return {};
}

/// Writes beside the result and renames at the end, so that no half-written one is left behind.
MaybeFailure write(const cv::Mat &picture, const QString &result)
{
    std::vector<uchar> bytes;
    try {
        cv::imencode(suffixOf(result).toStdString(), picture, bytes);
    } catch (const cv::Exception &) {
        const QString message = "%1: its format cannot hold a picture of %2";
        return Failure{ResultNotWritten, message.arg(result, text(picture.size()))};
    }
    QSaveFile file(result);
    if (file.open(QIODevice::WriteOnly) &&
        file.write(reinterpret_cast<const char *>(bytes.data()), qint64(bytes.size())) >= 0 &&
        file.flush() && file.commit()) // the end alone overlooks a buffer that found no room
        return {};
    return Failure{ResultNotWritten, result + ": " + file.errorString()};
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName("tavorin_fuse");
    QCoreApplication::setApplicationVersion(TAVORIN_VERSION);

    const Options options = parse(application);
    std::ostream nowhere(nullptr);
    FusionSweep sweep(nowhere);
    sweep.setDeclineGate(!options.all);
    MaybeFailure failure = check(options);
    if (!failure)
        failure = fuse(options, sweep);
    if (!failure)
        failure = write(sweep.result(), options.result);
    if (!failure)
        return Done;
    std::fprintf(stderr, "tavorin_fuse: %s\n", qUtf8Printable(failure->message));
    return failure->code;
}
