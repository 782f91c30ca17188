#include "settings/pushbutton.h"
#include "settings/selectbutton.h"

#include <QLabel>
#include <QMenu>
#include <QPainter>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

namespace {

QIcon icon(const QColor &color)
{
    QPixmap pixmap(16, 16);
    pixmap.fill(color);
    return pixmap;
}

QColor colorOf(const QIcon &icon) { return icon.pixmap(16, 16).toImage().pixelColor(8, 8); }

/// The main window's button, in a parent as there.
struct Fixture
{
    QWidget window;
    SelectButton button{&window};
    QPushButton *corner = button.findChild<QPushButton *>();
    QMenu *menu = button.findChild<QMenu *>();

    Fixture()
    {
        button.setGeometry(50, 40, 60, 30);
        button.addItem(icon(Qt::red), "line", 16);
        button.addItem(icon(Qt::blue), "circle", 17);
        window.resize(300, 200);
        window.show();
    }
};

} // namespace

class TestButtons : public QObject
{
    Q_OBJECT

private slots:
    void theLastItemAddedIsCurrent();
    void addingAnItemIsSilent();
    void theCornerIsTheLowerRightTriangle();
    void aSmallCornerRoundsDown();
    void theCornerHasItsColour();
    void aClickOnTheCornerOpensTheMenuBelowTheButton();
    void aChoiceInTheMenuChangesIconAndData();
    void aClickOutsideTheTriangleIsAClickOfTheButton();

    void theCaptionStandsInTheLowerThird();
    void theCaptionOfTheFirstConstructorIsEmpty();
    void theCaptionIsSetLaterToo();
    void theButtonIsWideEnoughForItsCaption();
    void theIconStandsAboveTheCaption();
    void aPressOnTheCaptionClicks();
};

void TestButtons::theLastItemAddedIsCurrent()
{
    Fixture f;
    QCOMPARE(f.button.data(), QVariant(17));
    QCOMPARE(colorOf(f.button.icon()), QColor(Qt::blue));
}

void TestButtons::addingAnItemIsSilent()
{
    SelectButton button;
    QSignalSpy spy(&button, &SelectButton::selectChange);
    button.addItem(icon(Qt::red), "line", 16);
    QCOMPARE(spy.count(), 0);
    QCOMPARE(button.data(), QVariant(16));
}

void TestButtons::theCornerIsTheLowerRightTriangle()
{
    Fixture f; // 60 x 30: a third of the smaller side is 10
    QCOMPARE(f.corner->geometry(), QRect(QPoint(49, 19), QPoint(58, 28)));
    QCOMPARE(f.corner->mask(), QRegion(QPolygon({QPoint(10, 0), QPoint(0, 10), QPoint(10, 10)})));
    QVERIFY(f.corner->mask().contains(QPoint(9, 9)));
    QVERIFY(!f.corner->mask().contains(QPoint(1, 1)));
}

void TestButtons::aSmallCornerRoundsDown()
{
    Fixture f;
    f.button.resize(32, 32);
    QCOMPARE(f.corner->geometry(), QRect(QPoint(21, 21), QPoint(30, 30)));
    f.button.resize(26, 50);
    QCOMPARE(f.corner->geometry(), QRect(QPoint(17, 41), QPoint(24, 48)));
}

void TestButtons::theCornerHasItsColour()
{
    Fixture f;
    QCOMPARE(f.corner->styleSheet(),
             QString("QPushButton { border: none; background-color: #f3a41b;}"));
    QCOMPARE(f.button.grab().toImage().pixelColor(57, 26), QColor(0xf3, 0xa4, 0x1b));
}

void TestButtons::aClickOnTheCornerOpensTheMenuBelowTheButton()
{
    Fixture f;
    QPoint opened;
    QTimer::singleShot(0, this, [&] {
        opened = f.menu->isVisible() ? f.menu->pos() : QPoint();
        f.menu->close();
    });
    QSignalSpy clicks(&f.button, &QPushButton::clicked);
    QTest::mouseClick(f.corner, Qt::LeftButton, {}, QPoint(8, 8));
    QCOMPARE(opened, f.window.mapToGlobal(QPoint(50, 70)));
    QCOMPARE(clicks.count(), 0);
}

void TestButtons::aChoiceInTheMenuChangesIconAndData()
{
    Fixture f;
    QSignalSpy spy(&f.button, &SelectButton::selectChange);
    QTimer::singleShot(0, this, [&] {
        const QRect row = f.menu->actionGeometry(f.menu->actions().at(0));
        QTest::mouseClick(f.menu, Qt::LeftButton, {}, row.center());
    });
    f.button.menuShow();
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy[0][0].value<QVariant>(), QVariant(16));
    QCOMPARE(f.button.data(), QVariant(16));
    QCOMPARE(colorOf(f.button.icon()), QColor(Qt::red));
}

void TestButtons::aClickOutsideTheTriangleIsAClickOfTheButton()
{
    Fixture f;
    QSignalSpy clicks(&f.button, &QPushButton::clicked);
    QTest::mouseClick(&f.button, Qt::LeftButton, {}, QPoint(10, 10));
    QCOMPARE(clicks.count(), 1);
    QVERIFY(!f.menu->isVisible());
}

void TestButtons::theCaptionStandsInTheLowerThird()
{
    PushButton button(QString::fromUtf8("设备管理"));
    button.resize(70, 61);
    button.show();
    const auto *label = button.findChild<QLabel *>();
    QCOMPARE(label->text(), QString::fromUtf8("设备管理"));
    QCOMPARE(label->geometry(), QRect(QPoint(0, 41), QPoint(69, 60)));
    QVERIFY(label->wordWrap());
    QCOMPARE(label->alignment(), Qt::AlignCenter);
    QCOMPARE(label->styleSheet(), QString("color: #435165"));
}

void TestButtons::theCaptionOfTheFirstConstructorIsEmpty()
{
    PushButton button;
    QCOMPARE(button.text(), QString());
    QCOMPARE(button.findChild<QLabel *>()->text(), QString());
}

void TestButtons::theCaptionIsSetLaterToo()
{
    PushButton button;
    button.setText("Split+ Fusion");
    QCOMPARE(button.findChild<QLabel *>()->text(), QString("Split+ Fusion"));
    QCOMPARE(button.text(), QString("Split+ Fusion"));
    QCOMPARE(button.accessibleName(), QString("Split+ Fusion"));
}

void TestButtons::theButtonIsWideEnoughForItsCaption()
{
    PushButton button;
    const int narrow = button.sizeHint().width();
    button.setText(QString(50, 'w'));
    QVERIFY(button.sizeHint().width() > narrow);
    QVERIFY(button.minimumSizeHint().width() >
            button.fontMetrics().horizontalAdvance(QString(50, 'w')));
}

void TestButtons::theIconStandsAboveTheCaption()
{
    PushButton button;
    button.setIcon(icon(Qt::red));
    button.setIconSize({30, 30});
    button.setStyleSheet("QPushButton { border: none; background: white; }");
    button.resize(70, 60);
    const QImage picture = button.grab().toImage();
    for (const int y : {12, 27}) // in the middle of 40 rows
        QCOMPARE(picture.pixelColor(35, y), QColor(Qt::red));
    for (const int y : {11, 28})
        QCOMPARE(picture.pixelColor(35, y), QColor(Qt::white));
    for (int y = 40; y < 60; ++y)
        QCOMPARE(picture.pixelColor(35, y), QColor(Qt::white));
}

void TestButtons::aPressOnTheCaptionClicks()
{
    PushButton button("Device");
    button.resize(70, 60);
    button.show();
    QSignalSpy clicks(&button, &QPushButton::clicked);
    QTest::mouseClick(button.findChild<QLabel *>(), Qt::LeftButton);
    QCOMPARE(clicks.count(), 1);
}

QTEST_MAIN(TestButtons)
#include "test_buttons.moc"
