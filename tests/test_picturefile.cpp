#include "tests/support/workingdirectory.h"
#include "workbench/picturefile.h"

#include <QBuffer>
#include <QDataStream>
#include <QImageReader>
#include <QImageWriter>
#include <QtEndian>
#include <QtTest>

class TestPictureFile : public QObject
{
    Q_OBJECT

private slots:
    void readsEachFormat_data();
    void readsEachFormat();
    void readsAFileUnderAWrongExtension();
    void keepsPicturePixelsWhateverTheName();
    void ignoresTheOrientationLikeAPixmapOfThePath();
    void seesAFileThatWasJustRewritten();
    void badFileGivesNoPicture_data();
    void badFileGivesNoPicture();
    void truncatedJpegKeepsItsSize();
    void jpegCarriesItsScale_data();
    void jpegCarriesItsScale();
    void pngCarriesItsScale();
    void bmpCarriesItsScale();
    void withoutAScaleNoFileClaimsOne_data();
    void withoutAScaleNoFileClaimsOne();
    void aPicturesOwnDensityIsNoScale();
    void aJpegIsAsGoodAsAskedFor();
    void formatOverrulesTheExtension();
    void unknownFormatWritesNothing_data();
    void unknownFormatWritesNothing();
    void absentDirectoryIsSurvived();
    void failedWriteLeavesTheOldFile();
};

namespace {

QImage sample()
{
    QImage image(40, 30, QImage::Format_RGB32);
    image.fill(QColor(200, 100, 50));
    return image;
}

/// A PNG that claims a size but holds no pixels.
QByteArray pngHeader(quint32 width, quint32 height)
{
    QByteArray header("IHDR");
    header.resize(17);
    qToBigEndian(width, header.data() + 4);
    qToBigEndian(height, header.data() + 8);
    header[12] = 8; // bits
    header[13] = 2; // RGB
    header[14] = header[15] = header[16] = 0;
    quint32 crc = 0xffffffff;
    for (const char c : qAsConst(header)) {
        crc ^= quint8(c);
        for (int bit = 0; bit < 8; ++bit)
            crc = crc & 1 ? (crc >> 1) ^ 0xedb88320 : crc >> 1;
    }
    QByteArray png("\x89PNG\r\n\x1a\n\0\0\0\x0d", 12);
    png += header;
    png.resize(png.size() + 4);
    qToBigEndian(~crc, png.data() + png.size() - 4);
    return png;
}

QByteArray bmpHeader(qint32 width, qint32 height)
{
    QByteArray bmp;
    QDataStream out(&bmp, QIODevice::WriteOnly);
    out.setByteOrder(QDataStream::LittleEndian);
    out.writeRawData("BM", 2);
    out << quint32(54) << quint32(0) << quint32(54); // file, reserved, offset of the pixels
    out << quint32(40) << width << height << quint16(1) << quint16(24);
    out << quint32(0) << quint32(0) << qint32(0) << qint32(0) << quint32(0) << quint32(0);
    return bmp;
}

QByteArray encoded(const QImage &image, const char *format)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return buffer.data();
}

/// A JPEG whose header claims another size than its data have.
QByteArray jpegClaiming(quint16 width, quint16 height)
{
    QByteArray jpeg = encoded(sample(), "jpg");
    const int frame = jpeg.indexOf("\xff\xc0");
    qToBigEndian(height, jpeg.data() + frame + 5);
    qToBigEndian(width, jpeg.data() + frame + 7);
    return jpeg;
}

} // namespace

void TestPictureFile::readsEachFormat_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("BMP") << "a.bmp";
    QTest::newRow("JPEG") << "a.jpg";
    QTest::newRow("PNG") << "a.png";
}

void TestPictureFile::readsEachFormat()
{
    QFETCH(QString, name);
    const WorkingDirectory directory;
    QVERIFY(sample().save(name));
    const QImage read = readPicture(name).toImage();
    QCOMPARE(read.size(), QSize(40, 30));
    const QColor colour = read.pixelColor(20, 15);
    QVERIFY(qAbs(colour.red() - 200) <= 2);
    QVERIFY(qAbs(colour.green() - 100) <= 2);
    QVERIFY(qAbs(colour.blue() - 50) <= 2);
}

void TestPictureFile::readsAFileUnderAWrongExtension()
{
    const WorkingDirectory directory;
    directory.write("renamed.jpg", encoded(sample(), "png"));
    QCOMPARE(readPicture("renamed.jpg").size(), QSize(40, 30));
}

void TestPictureFile::keepsPicturePixelsWhateverTheName()
{
    // The toolkit takes such a name for a picture of double density.
    const WorkingDirectory directory;
    directory.write("sample@2x.png", encoded(sample(), "png"));
    QCOMPARE(readPicture("sample@2x.png").devicePixelRatio(), 1.0);
}

void TestPictureFile::ignoresTheOrientationLikeAPixmapOfThePath()
{
    const WorkingDirectory directory;
    QImageWriter writer("turned.jpg");
    writer.setTransformation(QImageIOHandler::TransformationRotate90);
    QVERIFY(writer.write(sample()));
    QCOMPARE(readPicture("turned.jpg").size(), QPixmap("turned.jpg").size());
}

void TestPictureFile::seesAFileThatWasJustRewritten()
{
    const WorkingDirectory directory;
    QImage image = sample();
    QVERIFY(image.save("a.bmp"));
    QCOMPARE(readPicture("a.bmp").toImage().pixelColor(0, 0), QColor(200, 100, 50));
    image.fill(Qt::blue);
    QVERIFY(image.save("a.bmp"));
    QCOMPARE(readPicture("a.bmp").toImage().pixelColor(0, 0), QColor(Qt::blue));
}

void TestPictureFile::badFileGivesNoPicture_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("text") << QByteArray("not a picture");
    QTest::newRow("truncated PNG") << encoded(sample(), "png").left(60);
    QTest::newRow("JPEG without a frame") << encoded(sample(), "jpg").left(20);
    QTest::newRow("PNG of 60000 x 60000") << pngHeader(60000, 60000);
    QTest::newRow("BMP of 60000 x 60000") << bmpHeader(60000, 60000);
    QTest::newRow("JPEG of 60000 x 60000") << jpegClaiming(60000, 60000);
    QTest::newRow("PNG of the largest size") << pngHeader(0x7fffffff, 0x7fffffff);
}

void TestPictureFile::badFileGivesNoPicture()
{
    QFETCH(QByteArray, bytes);
    const WorkingDirectory directory;
    for (const char *name : {"bad.jpg", "bad.png", "bad.bmp"}) {
        directory.write(name, bytes);
        QVERIFY(readPicture(name).isNull());
    }
    QVERIFY(readPicture("absent.jpg").isNull());
    QVERIFY(readPicture("").isNull());
}

void TestPictureFile::truncatedJpegKeepsItsSize()
{
    const WorkingDirectory directory;
    QImage image(400, 300, QImage::Format_RGB32);
    image.fill(Qt::red);
    const QByteArray jpeg = encoded(image, "jpg");
    directory.write("half.jpg", jpeg.left(jpeg.size() / 2));
    const QPixmap read = readPicture("half.jpg");
    QCOMPARE(read.size(), QPixmap("half.jpg").size());
}

void TestPictureFile::jpegCarriesItsScale_data()
{
    QTest::addColumn<double>("dotsPerMetre");
    QTest::addColumn<QByteArray>("density"); // unit, dots across, dots down

    QTest::newRow("the finest is 65535 a centimetre")
        << 6553500.0 << QByteArray::fromHex("02ffffffff");
    // 254.508 an inch are 0.19 % from 255, 100.2 a centimetre 0.2 % from 100.
    QTest::newRow("the unit that fits better, by its share")
        << 10020.0 << QByteArray::fromHex("0100ff00ff");
    QTest::newRow("10 um a pixel is 1000 a centimetre")
        << 100000.0 << QByteArray::fromHex("0203e803e8");
    QTest::newRow("6.35 um a pixel is 4000 an inch")
        << 1e6 / 6.35 << QByteArray::fromHex("010fa00fa0");
    QTest::newRow("0.2 um a pixel is past 65535 an inch")
        << 5e6 << QByteArray::fromHex("02c350c350");
    QTest::newRow("0.1 um a pixel is past what the header holds")
        << 1e7 << QByteArray::fromHex("0000010001");
    QTest::newRow("one dot in two metres is coarser than it holds")
        << 0.5 << QByteArray::fromHex("0000010001");
}

void TestPictureFile::jpegCarriesItsScale()
{
    QFETCH(double, dotsPerMetre);
    QFETCH(QByteArray, density);
    const WorkingDirectory directory;
    QVERIFY(writePicture(sample(), "a.jpg", 100, dotsPerMetre));
    QCOMPARE(directory.read("a.jpg").mid(13, 5).toHex(), density.toHex());
    QCOMPARE(readPicture("a.jpg").size(), QSize(40, 30));
}

void TestPictureFile::pngCarriesItsScale()
{
    const WorkingDirectory directory;
    QVERIFY(writePicture(sample(), "a.png", 100, 1e6 / 0.32));
    const QByteArray bytes = directory.read("a.png");
    const int at = bytes.indexOf("pHYs");
    QVERIFY(at > 0);
    // 3 125 000 dots both ways, unit metre.
    QCOMPARE(bytes.mid(at + 4, 9).toHex(), QByteArray("002faf08002faf0801"));
    QCOMPARE(readPicture("a.png").size(), QSize(40, 30));
    // A dot a metre is the coarsest.
    QVERIFY(writePicture(sample(), "b.png", 100, 1.0));
    const QByteArray coarse = directory.read("b.png");
    QCOMPARE(coarse.mid(coarse.indexOf("pHYs") + 4, 9).toHex(), QByteArray("000000010000000101"));
}

void TestPictureFile::bmpCarriesItsScale()
{
    const WorkingDirectory directory;
    QVERIFY(writePicture(sample(), "a.bmp", 100, 500000.0));
    // 500 000 dots both ways, low byte first.
    QCOMPARE(directory.read("a.bmp").mid(38, 8).toHex(), QByteArray("20a1070020a10700"));
    QCOMPARE(readPicture("a.bmp").size(), QSize(40, 30));
}

void TestPictureFile::withoutAScaleNoFileClaimsOne_data()
{
    QTest::addColumn<double>("dotsPerMetre");
    QTest::newRow("none") << 0.0;
    QTest::newRow("negative") << -3.0;
    QTest::newRow("not a number") << qQNaN();
    QTest::newRow("infinite") << qInf();
}

void TestPictureFile::withoutAScaleNoFileClaimsOne()
{
    QFETCH(double, dotsPerMetre);
    const WorkingDirectory directory;
    for (const char *name : {"a.jpg", "a.png", "a.bmp"})
        QVERIFY(writePicture(sample(), name, 100, dotsPerMetre));
    QCOMPARE(directory.read("a.jpg").mid(13, 5).toHex(), QByteArray("0000010001"));
    QVERIFY(!directory.read("a.png").contains("pHYs"));
    QCOMPARE(directory.read("a.bmp").mid(38, 8).toHex(), QByteArray("0000000000000000"));
    for (const char *name : {"a.jpg", "a.png", "a.bmp"})
        QCOMPARE(readPicture(name).size(), QSize(40, 30));
}

void TestPictureFile::aPicturesOwnDensityIsNoScale()
{
    const WorkingDirectory directory;
    QImage image = sample();
    image.setDotsPerMeterX(11811);
    image.setDotsPerMeterY(11811);
    QVERIFY(writePicture(image, "a.png", 100, 0.0));
    QVERIFY(!directory.read("a.png").contains("pHYs"));
}

void TestPictureFile::aJpegIsAsGoodAsAskedFor()
{
    const WorkingDirectory directory;
    QImage fine(64, 64, QImage::Format_RGB32);
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x)
            fine.setPixel(x, y, (x + y) % 2 ? qRgb(255, 255, 255) : qRgb(0, 0, 0));
    QVERIFY(writePicture(fine, "best.jpg", 100, 0.0));
    QVERIFY(writePicture(fine, "small.jpg", 10, 0.0));
    QVERIFY(writePicture(fine, "usual.jpg", -1, 0.0));
    const int best = directory.read("best.jpg").size();
    const int usual = directory.read("usual.jpg").size();
    QVERIFY(best > usual);
    QVERIFY(usual > directory.read("small.jpg").size());
}

void TestPictureFile::formatOverrulesTheExtension()
{
    const WorkingDirectory directory;
    QVERIFY(writePicture(sample(), "a.png", 95, 0.0, "jpg"));
    QVERIFY(directory.read("a.png").startsWith("\xff\xd8\xff"));
}

void TestPictureFile::unknownFormatWritesNothing_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("no extension") << "picture";
    QTest::newRow("no name") << "";
    QTest::newRow("a foreign extension") << "picture.xyz";
    QTest::newRow("a directory") << "./";
}

void TestPictureFile::unknownFormatWritesNothing()
{
    QFETCH(QString, name);
    const WorkingDirectory directory;
    QVERIFY(!writePicture(sample(), name, 100, 0.0));
    QCOMPARE(QDir().entryList(QDir::Files), QStringList());
}

void TestPictureFile::absentDirectoryIsSurvived()
{
    const WorkingDirectory directory;
    QVERIFY(!writePicture(sample(), directory.path("gone/a.jpg"), 100, 0.0));
}

void TestPictureFile::failedWriteLeavesTheOldFile()
{
    const WorkingDirectory directory;
    directory.write("a.jpg", "before");
    QVERIFY(!writePicture(QImage(), "a.jpg", 100, 0.0));
    QCOMPARE(directory.read("a.jpg"), QByteArray("before"));
}

QTEST_MAIN(TestPictureFile)
#include "test_picturefile.moc"
