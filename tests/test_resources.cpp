#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QImage>
#include <QMap>
#include <QRegularExpression>
#include <QSet>
#include <QTranslator>
#include <QXmlStreamReader>
#include <QtTest>

namespace {
struct Message
{
    QString source;
    QString translation;
    bool unfinished = false;
};

/// The messages of language_en.ts by context, in the file's order.
QMap<QString, QList<Message>> messagesByContext()
{
    QFile file(QStringLiteral(SOURCE_DIR "/resources/language_en.ts"));
    if (!file.open(QIODevice::ReadOnly))
        return {};

    QMap<QString, QList<Message>> messages;
    QString context;
    QXmlStreamReader xml(&file);
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == QLatin1String("name")) {
            context = xml.readElementText();
        } else if (xml.name() == QLatin1String("source")) {
            messages[context].append({xml.readElementText(), {}, false});
        } else if (xml.name() == QLatin1String("translation")) {
            Message &message = messages[context].last();
            message.unfinished = xml.attributes().hasAttribute(QLatin1String("type"));
            message.translation = xml.readElementText();
        }
    }
    return xml.hasError() ? QMap<QString, QList<Message>>() : messages;
}

/// The class that a form describes and those of its texts that go through the translator.
QPair<QString, QSet<QString>> translatedTexts(const QString &formFile)
{
    QFile file(formFile);
    if (!file.open(QIODevice::ReadOnly))
        return {};

    QPair<QString, QSet<QString>> form;
    QXmlStreamReader xml(&file);
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        const bool isFixed = xml.attributes().value(QLatin1String("notr")) == QLatin1String("true");
        if (xml.name() == QLatin1String("class") && form.first.isEmpty())
            form.first = xml.readElementText();
        else if (xml.name() == QLatin1String("string") && !isFixed)
            form.second.insert(xml.readElementText());
    }
    return form;
}
/// Every ":/..." that the program's forms and sources name.
QSet<QString> referencesOfTheProgram()
{
    static const QRegularExpression reference(":/[a-z_]+(/[A-Za-z0-9_-]+)?\\.[a-z]+");
    QSet<QString> found;
    for (const char *folder :
         {"calibration", "camera", "fusion", "measure", "settings", "workbench"}) {
        QDirIterator files(QStringLiteral(SOURCE_DIR "/") + folder, {"*.ui", "*.cpp", "*.h"},
                           QDir::Files);
        while (files.hasNext()) {
            QFile file(files.next());
            if (!file.open(QIODevice::ReadOnly))
                return {};
            auto matches = reference.globalMatch(QString::fromUtf8(file.readAll()));
            while (matches.hasNext())
                found.insert(matches.next().captured());
        }
    }
    return found;
}
} // namespace

class TestResources : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        messages = messagesByContext();
        QVERIFY(!messages.isEmpty());
        QVERIFY(translator.load(QStringLiteral(":/language_en.qm")));
    }

    void everyPictureComesInBothResolutions_data();
    void everyPictureComesInBothResolutions();
    void everyPictureHasItsDrawing();
    void noTwoToolsLookAlike();
    void pressedArrowsOfTheStyleSheetsHaveNoPicture();
    void everyReferenceFindsItsResource();
    void theseResourcesAreReferredToByNothing();
    void logosAreIconsOfSixSizes();
    void executableTakesTheLogo();
    void backgroundIsLightAndOpaque();

    void contextHasItsNumberOfMessages_data();
    void contextHasItsNumberOfMessages();
    void thereAreNoOtherContexts();
    void everyMessageIsFinishedAndUnique();
    void everyMessageIsFoundInTheTranslation();
    void textIsTranslatedTo_data();
    void textIsTranslatedTo();
    void wordsOfTheWindowInEnglish();
    void ownTextsOfTheWindowHaveAnEnglishThatNobodyAsksFor();
    void spacingTitlesOfTheDrawSettingsHaveNoEnglish();
    void theTextsOfAFormAreItsMessages();

private:
    /// The texts of a context with what the translator makes of them.
    QMap<QString, QString> wordsOf(const QString &context) const
    {
        QMap<QString, QString> words;
        for (const Message &message : messages.value(context))
            words[message.source] = translator.translate(context.toUtf8(), message.source.toUtf8());
        return words;
    }

    QMap<QString, QList<Message>> messages;
    QTranslator translator;
};

void TestResources::everyPictureComesInBothResolutions_data()
{
    QTest::addColumn<QSize>("size");

    const auto rows = [](const QSize &size, const QStringList &names) {
        for (const QString &name : names)
            QTest::newRow(qPrintable(name)) << size;
    };
    rows({32, 32}, {"0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "10", "11", "12", "13", "14",
                    "15", "16"});
    rows({32, 32}, {"open", "save", "save_2", "setting", "capture1", "capture2", "export"});
    rows({30, 30}, {"device", "config", "fusion", "compose", "motor", "comandfusion"});
    rows({6, 16}, {"left-arrow", "right-arrow"});
    rows({64, 64}, {"background"});
    rows({16, 16}, {"arrow-down-normal", "arrow-down-hover", "arrow-down-press",
                    "pulldown-arrow-normal", "pulldown-arrow-hover", "pulldown-press"});
    rows({16, 16}, {"arrow-up-normal", "arrow-up-hover", "arrow-up-press", "arrow-right-normal"});
    rows({16, 16}, {"checked", "checked-hover", "checked-press", "checked-disabled", "unchecked",
                    "unchecked-hover", "unchecked-press", "uncheck-disabled", "del"});
    rows({32, 32}, {"hover", "normal", "press"});
}

void TestResources::everyPictureComesInBothResolutions()
{
    QFETCH(QSize, size);
    const QString name = QString::fromUtf8(QTest::currentDataTag());
    QCOMPARE(QImage(":/pic/" + name + ".png").size(), size);
    QCOMPARE(QImage(":/pic/" + name + "@2x.png").size(), 2 * size);
}

void TestResources::everyPictureHasItsDrawing()
{
    const QDir drawings(QStringLiteral(SOURCE_DIR "/resources/svg"));
    const QStringList pictures = QDir(QStringLiteral(":/pic")).entryList(QDir::Files);
    QCOMPARE(pictures.size(), 2 * 55 + 2);
    for (const QString &picture : pictures) {
        const QString name = picture.section('.', 0, 0).remove(QStringLiteral("@2x"));
        QVERIFY2(drawings.exists(name + ".svg"), qPrintable(picture));
    }
}

void TestResources::noTwoToolsLookAlike()
{
    for (int tool = 0; tool <= 16; ++tool) {
        const QImage icon(QStringLiteral(":/pic/%1.png").arg(tool));
        for (int other = 0; other < tool; ++other)
            QVERIFY2(icon != QImage(QStringLiteral(":/pic/%1.png").arg(other)),
                     qPrintable(QStringLiteral("%1 and %2").arg(tool).arg(other)));
    }
}

void TestResources::pressedArrowsOfTheStyleSheetsHaveNoPicture()
{
    QVERIFY(!QFile::exists(QStringLiteral(":/pic/arrow-up-pressed.png")));
    QVERIFY(!QFile::exists(QStringLiteral(":/pic/arrow-down-pressed.png")));
}

void TestResources::everyReferenceFindsItsResource()
{
    const QSet<QString> references = referencesOfTheProgram();
    QSet<QString> missing;
    for (const QString &reference : references)
        if (!QFile::exists(reference))
            missing.insert(reference);
    QCOMPARE(missing,
             QSet<QString>({":/pic/arrow-up-pressed.png", ":/pic/arrow-down-pressed.png"}));
    // Those that the texts name one by one; a broken search would find fewer.
    QCOMPARE(references.size(), 1 + 17 + 6 + 6 + 2 + 1 + 6 + 8 + 2 + 2 + 2);
}

void TestResources::theseResourcesAreReferredToByNothing()
{
    const QSet<QString> references = referencesOfTheProgram();
    QSet<QString> unused;
    for (const QString &name : QDir(":/pic").entryList(QDir::Files))
        if (!name.contains("@2x") && !references.contains(":/pic/" + name))
            unused.insert(name);
    QCOMPARE(unused, QSet<QString>({"arrow-up-press.png", "capture1.png", "hover.png", "normal.png",
                                    "press.png", "logo.ico", "logo_2.ico"}));
}

void TestResources::logosAreIconsOfSixSizes()
{
    for (const char *name : {":/pic/logo.ico", ":/pic/logo_2.ico"}) {
        QFile file(QString::fromLatin1(name));
        QVERIFY2(file.open(QIODevice::ReadOnly), name);
        const QByteArray bytes = file.readAll();
        QCOMPARE(bytes.left(6), QByteArray("\0\0\1\0\6\0", 6));

        QByteArray sides;
        for (int entry = 0; entry < 6; ++entry)
            sides.append(bytes.at(6 + 16 * entry));
        QCOMPARE(sides, QByteArray("\x10\x18\x20\x30\x40\0", 6)); // 0 stands for 256
    }
}

void TestResources::executableTakesTheLogo()
{
    QFile script(QStringLiteral(SOURCE_DIR "/resources/icon.rc"));
    QVERIFY(script.open(QIODevice::ReadOnly));
    QVERIFY(script.readAll().simplified().contains("IDI_ICON1 ICON \"logo.ico\""));
}

void TestResources::backgroundIsLightAndOpaque()
{
    const QImage tile(QStringLiteral(":/pic/background.png"));
    for (int y = 0; y < tile.height(); ++y) {
        for (int x = 0; x < tile.width(); ++x) {
            QCOMPARE(tile.pixelColor(x, y).alpha(), 255);
            QVERIFY(tile.pixelColor(x, y).lightness() > 220);
        }
    }
}

void TestResources::contextHasItsNumberOfMessages_data()
{
    QTest::addColumn<int>("count");

    QTest::newRow("TavorinClass") << 40;
    QTest::newRow("CameraSetWidget2") << 38;
    QTest::newRow("DrawSettingDialog") << 14;
    QTest::newRow("FusionWidget") << 10;
    QTest::newRow("CameraSetWidget") << 10;
    QTest::newRow("CalibrationWidget") << 9;
    QTest::newRow("DrawChangeDialog") << 6;
    QTest::newRow("CrossDialog") << 5;
    QTest::newRow("PicShowDialog") << 2;
    QTest::newRow("DeviceInfoWidget") << 1;
    QTest::newRow("ShowWidget") << 1;
    QTest::newRow("Tavorin") << 17;
}

void TestResources::contextHasItsNumberOfMessages()
{
    QFETCH(int, count);
    QCOMPARE(messages.value(QTest::currentDataTag()).size(), count);
}

void TestResources::thereAreNoOtherContexts() { QCOMPARE(messages.size(), 12); }

void TestResources::everyMessageIsFinishedAndUnique()
{
    for (auto context = messages.cbegin(); context != messages.cend(); ++context) {
        QSet<QString> sources;
        for (const Message &message : context.value()) {
            QVERIFY2(!message.unfinished, qPrintable(message.source));
            QVERIFY2(!message.translation.isEmpty(), qPrintable(message.source));
            QVERIFY2(!sources.contains(message.source), qPrintable(message.source));
            sources.insert(message.source);
        }
    }
}

void TestResources::everyMessageIsFoundInTheTranslation()
{
    int found = 0;
    for (auto context = messages.cbegin(); context != messages.cend(); ++context) {
        for (const Message &message : context.value()) {
            QCOMPARE(translator.translate(context.key().toUtf8(), message.source.toUtf8()),
                     message.translation);
            ++found;
        }
    }
    QCOMPARE(found, 153);
}

void TestResources::textIsTranslatedTo_data()
{
    QTest::addColumn<QString>("context");
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("english");

    QTest::newRow("tooltip of open") << "TavorinClass"
                                     << "打开"
                                     << "Open";
    QTest::newRow("above a page's list") << "ShowWidget"
                                         << "列表"
                                         << "List";
    QTest::newRow("circle is misspelled") << "TavorinClass"
                                          << "圆"
                                          << "Cricle";
    QTest::newRow("crosshair is misspelled in the window") << "TavorinClass"
                                                           << "十字线"
                                                           << "Corss";
    QTest::newRow("crosshair is misspelled in its dialog") << "CrossDialog"
                                                           << "十字线"
                                                           << "Corss";
    QTest::newRow("contrast is misspelled in the basic panel") << "CameraSetWidget"
                                                               << "对比度(C)"
                                                               << "Constrast(C)";
    QTest::newRow("contrast is well spelled in the full panel") << "CameraSetWidget2"
                                                                << "对比度"
                                                                << "Contrast";
    QTest::newRow("undo reads redo") << "TavorinClass"
                                     << "撤销"
                                     << "Redo";
    QTest::newRow("ring reads two circles") << "TavorinClass"
                                            << "同心圆"
                                            << "TwoCircle";
    QTest::newRow("two circles") << "TavorinClass"
                                 << "双圆"
                                 << "TwoCircle";
    QTest::newRow("blank inside") << "TavorinClass"
                                  << "合成+拼接"
                                  << "Split+ Fusion";
    QTest::newRow("colon is lost") << "FusionWidget"
                                   << "当前进度:"
                                   << "CurrentProgress";
    QTest::newRow("colon is gained") << "DrawSettingDialog"
                                     << "点粗"
                                     << "PointWidth:";
    QTest::newRow("wide colon turns narrow") << "CrossDialog"
                                             << "横向数量："
                                             << "HorNum:";
    QTest::newRow("window title keeps its text") << "TavorinClass"
                                                 << "Orvane相机    190715"
                                                 << "Orvane相机    190715";
}

void TestResources::textIsTranslatedTo()
{
    QFETCH(QString, context);
    QFETCH(QString, source);
    QFETCH(QString, english);
    QCOMPARE(translator.translate(context.toUtf8(), source.toUtf8()), english);
}

void TestResources::wordsOfTheWindowInEnglish()
{
    // "线" has no ending of its own: one message serves both tools.
    const QMap<QString, QString> words{
        {"Orvane相机    190715", "Orvane相机    190715"},
        {"打开", "Open"},
        {"Ctrl+O", "Ctrl+O"},
        {"保存", "Save"},
        {"Ctrl+S", "Ctrl+S"},
        {"快速保存", "QuickSave"},
        {"Ctrl+Q", "Ctrl+Q"},
        {"撤销", "Redo"},
        {"Ctrl+Z", "Ctrl+Z"},
        {"配置", "Set"},
        {"适合窗口", "FitWindow"},
        {"适合宽度", "FitWidth"},
        {"适合高度", "FitHeight"},
        {"抓拍", "Capture"},
        {"冻结", "Freeze"},
        {"导出", "Export"},
        {"标定", "Calibration"},
        {"鼠标", "Mouse"},
        {"直线", "Line"},
        {"线", "Line"},
        {"平行线", "ParLine"},
        {"垂线", "VerLine"},
        {"角度", "Ang"},
        {"矩形", "Rect"},
        {"弧线", "Arc"},
        {"圆", "Cricle"},
        {"同心圆", "TwoCircle"},
        {"多边形", "Poly"},
        {"线圆", "LineCircle"},
        {"双圆", "TwoCircle"},
        {"文字", "Text"},
        {"十字线", "Corss"},
        {"设备管理", "Device"},
        {"配置管理", "Config"},
        {"景深合成", "Fusion"},
        {"拼接", "Split"},
        {"电机管理", "Motor"},
        {"合成+拼接", "Split+ Fusion"},
        {"菜单", "Menu"},
        {"设置", "Set"},
    };
    QCOMPARE(wordsOf("TavorinClass"), words);
}

void TestResources::ownTextsOfTheWindowHaveAnEnglishThatNobodyAsksFor()
{
    const QMap<QString, QString> words{
        {"删除", "Delete"},
        {"删除所有", "DeleteAll"},
        {"确认要删除吗", "Are you sure you want to delete it?"},
        {"确认要删除所有吗", "Are you sure you want to delete all?"},
        {"提醒", "Information"},
        {"连接成功", "Connect"},
        {"断开连接", "Disconnect"},
        {"融合完成", "FusionCompletion"},
        {"保存成功", "Save Success"},
        {"打开", "Open"},
        {"当前没有页面", "No pages currently available"},
        {"当前没有图元", "No items currently available"},
        {"保存", "Save"},
        {"信息尚未保存，是否确定退出?",
         "The information has not been saved yet. Are you sure to quit?"},
        {"是否确定要退出?", "Are you sure to quit?"},
        {"修改尚未保存，确定要退出吗？",
         "Modifications have not been saved yet. Are you sure to quit?"},
        {"显示图片", "ShowPicture"},
    };
    QCOMPARE(wordsOf("Tavorin"), words);

    // The class asks for none of them: no source of its has a call of the translator.
    QDirIterator sources(QStringLiteral(SOURCE_DIR "/workbench"), {"tavorin*.cpp", "messages.h"},
                         QDir::Files);
    int read = 0;
    for (; sources.hasNext(); ++read) {
        QFile file(sources.next());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY2(!file.readAll().contains("tr("), qPrintable(file.fileName()));
    }
    QVERIFY(read >= 6);
}

void TestResources::spacingTitlesOfTheDrawSettingsHaveNoEnglish()
{
    QCOMPARE(translator.translate("DrawSettingDialog", "同心圆间距配置"), QString());
    QCOMPARE(translator.translate("DrawSettingDialog", "直线间距配置"), QString());
}

void TestResources::theTextsOfAFormAreItsMessages()
{
    // Said by the class itself, not by its form.
    const QMap<QString, QStringList> saidInCode{
        {"CalibrationWidget", {"标定参数不能为空", "该标定已存在"}},
        {"DeviceInfoWidget", {"离线"}},
        {"DrawChangeDialog", {"确认要删除吗"}},
        {"DrawSettingDialog", {"选择"}},
    };
    int seen = 0;
    for (const char *folder :
         {"calibration", "camera", "fusion", "measure", "settings", "workbench"}) {
        QDirIterator forms(QStringLiteral(SOURCE_DIR "/") + folder, {"*.ui"}, QDir::Files);
        while (forms.hasNext()) {
            const auto form = translatedTexts(forms.next());
            QSet<QString> texts = form.second;
            for (const QString &said : saidInCode.value(form.first))
                texts.insert(said);
            QSet<QString> sources;
            for (const Message &message : messages.value(form.first))
                sources.insert(message.source);
            QVERIFY2(texts == sources,
                     qPrintable(
                         form.first + ": " +
                         QStringList(((texts - sources) + (sources - texts)).values()).join(", ")));
            seen += sources.size();
        }
    }
    QCOMPARE(seen, 153 - 17); // all but the window's own texts
}

QTEST_GUILESS_MAIN(TestResources)
#include "test_resources.moc"
