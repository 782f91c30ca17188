#include "simulator/simulatedcapture.h"
#include "simulator/tour.h"
#include "workbench/application.h"
#include "workbench/tavorin.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFile>
#include <QLoggingCategory>
#include <QTimer>

#include <chrono>
#include <cstdio>

namespace {

constexpr int wrongUse = 64; // above the numbers of the steps

const char *const description =
    "Visits every part of the window by mouse and keyboard, against the simulated microscope.\n"
    "Prints what it does and measures; leaves screenshots, pictures and a list in the folder.\n\n"
    "Exit codes: 0 all was done and every measure is right, 1 to 16 the step that failed,\n"
    "64 wrong use.";

int complain(const QString &what)
{
    std::fprintf(stderr, "tavorin_tour: %s\n", qUtf8Printable(what));
    return wrongUse;
}

} // namespace

int main(int argc, char *argv[])
{
    prepareApplication();
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QApplication application(argc, argv);
    warnOfMissingFont();
    // The program's debug lines would stand between the steps.
    QLoggingCategory::setFilterRules("default.debug=false");

    QCommandLineParser parser;
    parser.setApplicationDescription(description);
    parser.addHelpOption();
    parser.addOption({"language", "Language of the window: zh (default) or en.", "name", "zh"});
    parser.addOption({"config", "Settings to start from.", "file", "config.ini"});
    parser.addPositionalArgument("folder", "Where the files go: a new or an empty folder.");
    if (!parser.parse(QCoreApplication::arguments()))
        return complain(parser.errorText());
    if (parser.isSet("help"))
        parser.showHelp();

    const QString language = parser.value("language");
    if (language != "zh" && language != "en")
        return complain("there is no language " + language);
    if (parser.positionalArguments().size() != 1)
        return complain("one folder is needed");
    const QDir folder(parser.positionalArguments().constFirst());
    if (!folder.mkpath(".") || !folder.isEmpty())
        return complain("the folder is not empty: " + folder.path());
    if (!QFile::copy(parser.value("config"), folder.filePath("config.ini")))
        return complain("cannot copy " + parser.value("config"));
    // The program keeps its settings in the directory that it runs in.
    QDir::setCurrent(folder.path());

    // A third of the usual rate: the window gets its time on a slow machine too.
    simulatedMicroscope().setFrameInterval(std::chrono::milliseconds(100));
    Tavorin window;
    window.showMaximized();
    int result = 0;
    QTimer::singleShot(500, &window, [&] {
        const auto chosen = language == "en" ? TourLanguage::English : TourLanguage::Chinese;
        result = Tour(window, QDir::currentPath(), chosen).run();
        QApplication::exit(result);
    });
    QApplication::exec();
    return result;
}
