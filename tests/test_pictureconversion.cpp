#include "fusion/pictureconversion.h"

#include <QImage>
#include <QtTest>

class TestPictureConversion : public QObject
{
    Q_OBJECT

private slots:
    void threeChannelsAreSwappedInTheMatItself();
    void threeChannelsShareTheMatsPixels();
    void threeChannelsConvertedTwiceComeBackExchanged();
    void threeChannelsOfAPaddedMatKeepTheirRows();
    void fourChannelsAreCopiedWithAlpha();
    void oneChannelBecomesGrayIndexed();
    void otherTypesGiveANullImage_data();
    void otherTypesGiveANullImage();
    void emptyMatGivesANullImage();
    void thirtyTwoBitFormatsGiveIndependentBgr_data();
    void thirtyTwoBitFormatsGiveIndependentBgr();
    void rgb888SharesAndLeavesTheImageInBgr();
    void indexedImageSharesItsIndices();
    void sharedImageIsDetachedFirst();
    void sharedImageWithPaddedLinesKeepsItsRows();
    void otherFormatsGiveAnEmptyMat_data();
    void otherFormatsGiveAnEmptyMat();
};

void TestPictureConversion::threeChannelsAreSwappedInTheMatItself()
{
    cv::Mat mat(2, 2, CV_8UC3, cv::Scalar(10, 20, 30));
    const QImage image = cvMatToQImage(mat);
    QCOMPARE(image.format(), QImage::Format_RGB888);
    QCOMPARE(image.size(), QSize(2, 2));
    QCOMPARE(image.pixel(0, 0), qRgb(30, 20, 10));
    const cv::Vec3b first = mat.at<cv::Vec3b>(0, 0);
    QCOMPARE(int(first[0]), 30);
    QCOMPARE(int(first[1]), 20);
    QCOMPARE(int(first[2]), 10);
}

void TestPictureConversion::threeChannelsShareTheMatsPixels()
{
    cv::Mat mat(3, 5, CV_8UC3, cv::Scalar(1, 2, 3));
    const QImage image = cvMatToQImage(mat);
    QCOMPARE(static_cast<const void *>(image.constBits()), static_cast<const void *>(mat.data));
    QCOMPARE(image.bytesPerLine(), 15);
    mat.at<cv::Vec3b>(2, 4) = cv::Vec3b(7, 8, 9);
    QCOMPARE(image.pixel(4, 2), qRgb(7, 8, 9));
}

void TestPictureConversion::threeChannelsConvertedTwiceComeBackExchanged()
{
    cv::Mat mat(1, 1, CV_8UC3, cv::Scalar(10, 20, 30));
    cvMatToQImage(mat);
    QCOMPARE(cvMatToQImage(mat).pixel(0, 0), qRgb(10, 20, 30));
}

void TestPictureConversion::threeChannelsOfAPaddedMatKeepTheirRows()
{
    cv::Mat whole(4, 8, CV_8UC3, cv::Scalar(0, 0, 0));
    cv::Mat part = whole(cv::Rect(2, 1, 3, 2));
    part.setTo(cv::Scalar(10, 20, 30));
    const QImage image = cvMatToQImage(part);
    QCOMPARE(image.bytesPerLine(), 24);
    QCOMPARE(image.pixel(2, 1), qRgb(30, 20, 10));
    QCOMPARE(int(whole.at<cv::Vec3b>(0, 0)[0]), 0);
}

void TestPictureConversion::fourChannelsAreCopiedWithAlpha()
{
    cv::Mat mat(2, 3, CV_8UC4, cv::Scalar(10, 20, 30, 40));
    const QImage image = cvMatToQImage(mat);
    QCOMPARE(image.format(), QImage::Format_ARGB32);
    mat.setTo(cv::Scalar::all(0));
    QCOMPARE(image.pixel(2, 1), qRgba(30, 20, 10, 40));
}

void TestPictureConversion::oneChannelBecomesGrayIndexed()
{
    cv::Mat mat = (cv::Mat_<uchar>(2, 3) << 0, 1, 2, 253, 254, 255);
    const QImage image = cvMatToQImage(mat);
    QCOMPARE(image.format(), QImage::Format_Indexed8);
    QCOMPARE(image.colorCount(), 256);
    QCOMPARE(image.color(0), 0xff000000u);
    QCOMPARE(image.color(128), 0xff808080u);
    QCOMPARE(image.color(255), 0xffffffffu);
    mat.setTo(0);
    QCOMPARE(image.pixelIndex(2, 0), 2);
    QCOMPARE(image.pixelIndex(0, 1), 253);
    QCOMPARE(image.pixel(1, 1), qRgb(254, 254, 254));
}

void TestPictureConversion::otherTypesGiveANullImage_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("two bytes") << int(CV_8UC2);
    QTest::newRow("float") << int(CV_32FC1);
    QTest::newRow("three floats") << int(CV_32FC3);
    QTest::newRow("16 bits") << int(CV_16UC1);
}

void TestPictureConversion::otherTypesGiveANullImage()
{
    QFETCH(int, type);
    QVERIFY(cvMatToQImage(cv::Mat::zeros(4, 4, type)).isNull());
}

void TestPictureConversion::emptyMatGivesANullImage()
{
    QCOMPARE(cv::Mat().type(), int(CV_8UC1));
    QVERIFY(cvMatToQImage(cv::Mat()).isNull());
    QVERIFY(cvMatToQImage(cv::Mat(0, 0, CV_8UC3)).isNull());
}

void TestPictureConversion::thirtyTwoBitFormatsGiveIndependentBgr_data()
{
    QTest::addColumn<QImage::Format>("format");
    QTest::newRow("RGB32") << QImage::Format_RGB32;
    QTest::newRow("ARGB32") << QImage::Format_ARGB32;
    QTest::newRow("ARGB32 premultiplied") << QImage::Format_ARGB32_Premultiplied;
}

void TestPictureConversion::thirtyTwoBitFormatsGiveIndependentBgr()
{
    QFETCH(QImage::Format, format);
    cv::Mat mat;
    {
        QImage image(3, 2, format);
        image.fill(0xff1e140au); // red 30, green 20, blue 10
        mat = qImageToCvMat(image);
        QCOMPARE(image.pixel(0, 0), qRgb(30, 20, 10));
        image.fill(0u);
    }
    QCOMPARE(mat.type(), int(CV_8UC3));
    QCOMPARE(mat.size(), cv::Size(3, 2));
    QCOMPARE(mat.step[0], size_t(9));
    const uchar expected[] = {10, 20, 30, 10, 20, 30, 10, 20, 30};
    QVERIFY(std::equal(std::begin(expected), std::end(expected), mat.ptr(1)));
}

void TestPictureConversion::rgb888SharesAndLeavesTheImageInBgr()
{
    QImage image(3, 2, QImage::Format_RGB888);
    image.fill(QColor(30, 20, 10));
    const cv::Mat mat = qImageToCvMat(image);
    QCOMPARE(mat.type(), int(CV_8UC3));
    QCOMPARE(static_cast<const void *>(mat.data), static_cast<const void *>(image.constBits()));
    QCOMPARE(int(mat.ptr(1)[0]), 10);
    QCOMPARE(int(mat.ptr(1)[2]), 30);
    QCOMPARE(image.pixel(0, 1), qRgb(10, 20, 30));
}

void TestPictureConversion::indexedImageSharesItsIndices()
{
    QImage image(5, 2, QImage::Format_Indexed8);
    image.setColorTable({qRgb(255, 0, 0), qRgb(0, 255, 0)});
    image.fill(1);
    const cv::Mat mat = qImageToCvMat(image);
    QCOMPARE(mat.type(), int(CV_8UC1));
    QCOMPARE(static_cast<const void *>(mat.data), static_cast<const void *>(image.constBits()));
    QCOMPARE(int(mat.at<uchar>(1, 4)), 1);
}

void TestPictureConversion::sharedImageIsDetachedFirst()
{
    QImage image(2, 2, QImage::Format_RGB888);
    image.fill(QColor(30, 20, 10));
    const QImage shared = image;
    qImageToCvMat(image);
    QCOMPARE(shared.pixel(0, 0), qRgb(30, 20, 10));
    QCOMPARE(image.pixel(0, 0), qRgb(10, 20, 30));
}

void TestPictureConversion::sharedImageWithPaddedLinesKeepsItsRows()
{
    // Two lines of a pixel each, 12 bytes apart; detached they are 4 apart.
    uchar memory[24] = {1, 2, 3, 255, 9, 9, 9, 9, 9, 9, 9, 9, 4, 5, 6, 255};
    QImage image(memory, 1, 2, 12, QImage::Format_ARGB32);
    const QImage shared = image;
    const cv::Mat mat = qImageToCvMat(image);
    QCOMPARE(mat.at<cv::Vec3b>(0, 0), cv::Vec3b(1, 2, 3));
    QCOMPARE(mat.at<cv::Vec3b>(1, 0), cv::Vec3b(4, 5, 6));
}

void TestPictureConversion::otherFormatsGiveAnEmptyMat_data()
{
    QTest::addColumn<QImage>("image");
    QTest::newRow("null image") << QImage();
    QTest::newRow("16 bits") << QImage(2, 2, QImage::Format_RGB16);
    QTest::newRow("bitmap") << QImage(2, 2, QImage::Format_Mono);
    QTest::newRow("8-bit gray") << QImage(2, 2, QImage::Format_Grayscale8);
}

void TestPictureConversion::otherFormatsGiveAnEmptyMat()
{
    QFETCH(QImage, image);
    QVERIFY(qImageToCvMat(image).empty());
}

QTEST_MAIN(TestPictureConversion)
#include "test_pictureconversion.moc"
