#include "measure/base.h"
#include "measure/graphicscross.h"
#include "measure/graphicspoint.h"
#include "measure/graphicstext.h"
#include "tests/support/shownpage.h"

#include <QApplication>
#include <QLabel>
#include <QLayout>
#include <QPushButton>
#include <QScrollBar>
#include <QTranslator>
#include <QtTest>

/// Picture pages: form, layout, list and relays. Files are tested beside this.
class TestShowWidget : public QObject
{
    Q_OBJECT

private slots:
    void newPageIsEmpty();
    void formLooksAsDesigned();
    void listTitleFollowsTheLanguage();

    void pictureIsLaidOut_data();
    void pictureIsLaidOut();
    void bothScrollBarsRelaxTheHorizontalPolicy_data();
    void bothScrollBarsRelaxTheHorizontalPolicy();
    void hiddenPageKeepsBothPolicies();
    void pictureWithoutContentTakesTheArea();
    void zoomReplacesTheMatrix();
    void sceneHoldsThePictureUnscaled();
    void hidingTheListWidensThePictureOnTheNextTurn();
    void resizeLaysOutAnew();

    void wheelStepsTheZoomAndReachesTheWindow_data();
    void wheelStepsTheZoomAndReachesTheWindow();

    void finishedShapeAddsARow();
    void shapeOnANewPageIsNoChangeYet();
    void shapeOnAPictureIsAChange();
    void onlyTheFirstChangeIsTold();
    void movedHandleRewritesItsRow();
    void moveThatChangesNoNumberIsNoChange();
    void unitChangeRewritesTheRows();
    void modifiedFlagActsOnChangesOnly();
    void currentRowGoesWithItsShape();
    void deletingWithoutACurrentRowDoesNothing();
    void deletionCountsAsAChangeBeforeChangesAreTracked_data();
    void deletionCountsAsAChangeBeforeChangesAreTracked();
    void deletingAllOfNothingIsAChangeToo();
    void undoOfAnEmptyListDoesNothing();
    void undoTakesTheLastShape();

    void rightClickWithASelectedRowOpensTheMenu();
    void rightClickWithoutASelectedRowShowsNoMenu();
    void pageMayCloseFromItsOwnMenu();
    void pageMayGoWithAShapeUnderConstruction();

    void sceneSignalsAreRelayed();
    void textReachesTheNewestShape();
    void antialiasingSwitchesTheView();
    void propertiesReachTheShapes();
    void crosshairIsForwarded();
};

namespace {

void sendWheel(QWidget *widget, int delta)
{
    const QPoint centre = widget->rect().center();
    QWheelEvent event(centre, widget->mapToGlobal(centre), {}, QPoint(0, delta), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(&event);
    qApp->notify(widget, &event);
}

/// Knows the one text of the page.
class English : public QTranslator
{
public:
    QString translate(const char *context, const char *source, const char *, int) const override
    {
        const bool isTitle =
            qstrcmp(context, "ShowWidget") == 0 && QString::fromUtf8(source) == "列表";
        return isTitle ? QString("List") : QString();
    }
    bool isEmpty() const override { return false; }
};

} // namespace

void TestShowWidget::newPageIsEmpty()
{
    ShownPage shown;
    QVERIFY(!shown.page.isLive());
    QVERIFY(!shown.page.isModified());
    QVERIFY(!shown.page.hasFile());
    QVERIFY(!shown.page.hasItems());
    QCOMPARE(shown.page.zoomFactor(), 1.0);
    QCOMPARE(shown.video->parent(), &shown.page);
    QCOMPARE(shown.view->parent(), shown.video);
    QCOMPARE(shown.view->styleSheet(), QString("border: none; background: transparent;"));
    QCOMPARE(shown.video->styleSheet(), QString("border: none;"));
}

void TestShowWidget::formLooksAsDesigned()
{
    ShownPage shown;
    QCOMPARE(shown.page.objectName(), QString("ShowWidget"));
    QCOMPARE(shown.page.windowTitle(), QString("Form"));
    const QMargins none;
    QCOMPARE(shown.page.layout()->contentsMargins(), none);
    QCOMPARE(shown.page.layout()->spacing(), 0);
    QCOMPARE(shown.area->styleSheet(), QString("background-image: url(:/pic/background.png);"));
    QCOMPARE(shown.area->sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
    QCOMPARE(shown.area->sizePolicy().verticalPolicy(), QSizePolicy::Expanding);

    auto *title = shown.page.findChild<QLabel *>("label_2");
    QCOMPARE(title->text(), QString("列表"));
    QCOMPARE(title->minimumHeight(), 24);
    QCOMPARE(shown.list->maximumWidth(), 200);
    QCOMPARE(shown.list->frameShape(), QFrame::NoFrame);
    QCOMPARE(shown.list->spacing(), 5);
    QCOMPARE(shown.list->styleSheet(),
             QString("QListView {color: #435165;}\n"
                     "QListView::item:selected {border: 1px solid #dbdfe6; background-color: "
                     "#dbdfe6; color: #435165;}\n"
                     "QListView::item:hover {background-color: #eff1f5;}"));

    auto *strip = shown.page.findChild<QWidget *>("widget_2");
    QCOMPARE(strip->maximumWidth(), 6);
    QCOMPARE(strip->styleSheet(), QString("QWidget { background-color: #cccccc; }\n"
                                          "QPushButton { background-color: blue; border: none; }"));
    auto *button = shown.page.findChild<QPushButton *>("pushButton");
    QCOMPARE(button->text(), QString());
    QCOMPARE(button->maximumWidth(), 6);
    QCOMPARE(button->minimumHeight(), 100);
    shown.page.show();
    QCOMPARE(strip->width(), 6);
    QCOMPARE(shown.area->geometry(), QRect(0, 0, 500, 400));
}

void TestShowWidget::listTitleFollowsTheLanguage()
{
    ShownPage before;
    auto *title = before.page.findChild<QLabel *>("label_2");
    English english;
    qApp->installTranslator(&english);
    QCOMPARE(title->text(), QString("列表"));
    before.page.retranslate();
    QCOMPARE(title->text(), QString("List"));
    QCOMPARE(before.page.findChild<QPushButton *>("pushButton")->text(), QString());
    ShownPage opened;
    QCOMPARE(opened.page.findChild<QLabel *>("label_2")->text(), QString("List"));
    qApp->removeTranslator(&english);
    before.page.retranslate();
    QCOMPARE(title->text(), QString("列表"));
}

void TestShowWidget::pictureIsLaidOut_data()
{
    QTest::addColumn<QSize>("picture");
    QTest::addColumn<double>("zoom");
    QTest::addColumn<QRect>("view"); // in an area of 500 x 400

    QTest::newRow("small, centred") << QSize(200, 100) << 1.0 << QRect(150, 150, 200, 100);
    QTest::newRow("as large as the area") << QSize(500, 400) << 1.0 << QRect(0, 0, 500, 400);
    QTest::newRow("odd remainders are cut") << QSize(33, 33) << 0.67 << QRect(238, 188, 22, 22);
    QTest::newRow("wider than the area") << QSize(200, 100) << 3.0 << QRect(0, 50, 500, 300);
    QTest::newRow("higher than the area") << QSize(100, 200) << 3.0 << QRect(100, 0, 300, 400);
    QTest::newRow("larger both ways") << QSize(1000, 800) << 1.0 << QRect(0, 0, 500, 400);
    QTest::newRow("a large one at a tenth") << QSize(4000, 3000) << 0.1 << QRect(50, 50, 400, 300);
}

void TestShowWidget::pictureIsLaidOut()
{
    QFETCH(QSize, picture);
    QFETCH(double, zoom);
    ShownPage shown;
    shown.page.show();
    shown.page.setPicture(plainPicture(picture.width(), picture.height()));
    shown.page.setZoom(zoom);
    QCOMPARE(shown.page.zoomFactor(), zoom);
    QCOMPARE(shown.video->geometry(), QRect(0, 0, 500, 400));
    QTEST(shown.view->geometry(), "view");
    QCOMPARE(shown.scene.sceneRect(), QRectF(QPointF(), picture));
    QCOMPARE(shown.view->transform(), QTransform::fromScale(zoom, zoom));
}

void TestShowWidget::bothScrollBarsRelaxTheHorizontalPolicy_data()
{
    QTest::addColumn<QSize>("picture");
    QTest::addColumn<Qt::ScrollBarPolicy>("horizontal");
    QTest::addColumn<Qt::ScrollBarPolicy>("vertical");

    QTest::newRow("none") << QSize(500, 400) << Qt::ScrollBarAlwaysOff << Qt::ScrollBarAlwaysOff;
    QTest::newRow("wider") << QSize(501, 400) << Qt::ScrollBarAsNeeded << Qt::ScrollBarAlwaysOff;
    QTest::newRow("higher: the vertical policy stays")
        << QSize(500, 401) << Qt::ScrollBarAsNeeded << Qt::ScrollBarAlwaysOn;
    QTest::newRow("both") << QSize(501, 401) << Qt::ScrollBarAsNeeded << Qt::ScrollBarAlwaysOn;
}

void TestShowWidget::bothScrollBarsRelaxTheHorizontalPolicy()
{
    QFETCH(QSize, picture);
    ShownPage shown;
    shown.page.show();
    shown.page.setPicture(plainPicture(picture.width(), picture.height()));
    QTEST(shown.view->horizontalScrollBarPolicy(), "horizontal");
    QTEST(shown.view->verticalScrollBarPolicy(), "vertical");
}

void TestShowWidget::hiddenPageKeepsBothPolicies()
{
    ShownPage shown;
    shown.page.setPicture(plainPicture(2000, 2000));
    QCOMPARE(shown.view->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOn);
    QCOMPARE(shown.view->verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOn);
}

void TestShowWidget::pictureWithoutContentTakesTheArea()
{
    ShownPage shown;
    shown.page.show();
    QCOMPARE(shown.view->geometry(), QRect(0, 0, 500, 400));
    QCOMPARE(shown.scene.sceneRect(), QRectF(0, 0, 500, 400));
    QCOMPARE(shown.scene.backgroundBrush().style(), Qt::NoBrush);
    // Zoomed it is laid out at the size of the area, too.
    shown.page.setZoom(0.5);
    QCOMPARE(shown.view->geometry(), QRect(125, 100, 250, 200));
    QCOMPARE(shown.scene.sceneRect(), QRectF(0, 0, 500, 400));
}

void TestShowWidget::zoomReplacesTheMatrix()
{
    ShownPage shown;
    shown.page.setPicture(plainPicture(10, 10));
    shown.page.setZoom(2.0);
    shown.page.setZoom(3.0);
    QCOMPARE(shown.view->transform(), QTransform::fromScale(3.0, 3.0));
}

void TestShowWidget::sceneHoldsThePictureUnscaled()
{
    ShownPage shown;
    shown.page.show();
    QPixmap picture = plainPicture(40, 20);
    {
        QPainter painter(&picture);
        painter.fillRect(20, 0, 20, 20, Qt::red);
    }
    shown.page.setPicture(picture);
    shown.page.setZoom(2.0);
    QCOMPARE(shown.scene.backgroundBrush().texture().size(), QSize(40, 20));
    QCOMPARE(shown.scene.imageScale(), 1.0);
    const QImage grabbed = shown.view->grab().toImage();
    const qreal ratio = grabbed.devicePixelRatio();
    QCOMPARE(grabbed.pixelColor(int(38 * ratio), int(20 * ratio)), QColor(Qt::white));
    QCOMPARE(grabbed.pixelColor(int(41 * ratio), int(20 * ratio)), QColor(Qt::red));
}

void TestShowWidget::hidingTheListWidensThePictureOnTheNextTurn()
{
    ShownPage shown;
    shown.page.show();
    shown.page.setPicture(plainPicture(100, 100));
    QCOMPARE(shown.view->x(), 200);
    auto *button = shown.page.findChild<QPushButton *>("pushButton");
    auto *title = shown.page.findChild<QLabel *>("label_2");
    QTest::mouseClick(button, Qt::LeftButton);
    QVERIFY(shown.list->isHidden());
    QVERIFY(title->isHidden());
    QCOMPARE(shown.view->x(), 200);
    QTRY_COMPARE(shown.view->x(), 300); // (700 - 100) / 2
    QCOMPARE(shown.area->width(), 700);
    QTest::mouseClick(button, Qt::LeftButton);
    QVERIFY(!shown.list->isHidden());
    QVERIFY(!title->isHidden());
    QTRY_COMPARE(shown.view->x(), 200);
}

void TestShowWidget::resizeLaysOutAnew()
{
    ShownPage shown;
    shown.page.show();
    shown.page.setPicture(plainPicture(100, 100));
    shown.page.resize(806, 600);
    QTRY_COMPARE(shown.view->geometry(), QRect(250, 250, 100, 100));
    QCOMPARE(shown.video->geometry(), QRect(0, 0, 600, 600));
}

void TestShowWidget::wheelStepsTheZoomAndReachesTheWindow_data()
{
    QTest::addColumn<int>("delta");
    QTest::addColumn<bool>("down");
    QTest::newRow("towards the operator") << -120 << true;
    QTest::newRow("away") << 120 << false;
    QTest::newRow("not at all counts as down") << 0 << true;
    QTest::newRow("the smallest turn away") << 1 << false;
}

void TestShowWidget::wheelStepsTheZoomAndReachesTheWindow()
{
    struct Window : QWidget
    {
        void wheelEvent(QWheelEvent *) override { ++wheels; }
        int wheels = 0;
    };
    QFETCH(int, delta);
    QFETCH(bool, down);
    Window window;
    QMenu menu;
    auto *page = new ShowWidget(&menu, false, &window);
    page->resize(706, 400);
    window.resize(706, 400);
    window.show();
    page->setPicture(plainPicture(2000, 2000));
    auto *view = page->findChild<GraphicsView *>();
    const QSignalSpy wheelAdd(page, &ShowWidget::wheelAdd);
    const int before = view->verticalScrollBar()->value();
    sendWheel(view->viewport(), delta);
    QCOMPARE(wheelAdd.size(), 1);
    QCOMPARE(wheelAdd.at(0).at(0).toBool(), down);
    QCOMPARE(window.wheels, 1);
    QCOMPARE(view->verticalScrollBar()->value(), before);
}

void TestShowWidget::finishedShapeAddsARow()
{
    ShownPage shown;
    shown.page.setPicture(plainPicture(300, 200));
    QVERIFY(!shown.page.hasItems());
    shown.drawLine({10, 20}, {110, 20});
    shown.drawLine({10, 20}, {10, 60});
    QCOMPARE(shown.rows(), QStringList({"Line\nLen = 100px", "Line\nLen = 40px"}));
    QVERIFY(shown.page.hasItems());
    QCOMPARE(shown.scene.items().size(), 2);
}

void TestShowWidget::shapeOnANewPageIsNoChangeYet()
{
    ShownPage shown;
    shown.page.show();
    shown.drawLine({10, 20}, {110, 20});
    QCOMPARE(shown.list->count(), 1);
    QVERIFY(!shown.page.isModified());
    QVERIFY(shown.modified.isEmpty());
}

void TestShowWidget::shapeOnAPictureIsAChange()
{
    ShownPage shown;
    shown.page.setPicture(plainPicture(300, 200));
    QVERIFY(!shown.page.isModified());
    shown.drawLine({10, 20}, {110, 20});
    QVERIFY(shown.page.isModified());
    QCOMPARE(shown.modified.size(), 1);
    QCOMPARE(shown.modified.at(0).at(0).value<ShowWidget *>(), &shown.page);
}

void TestShowWidget::onlyTheFirstChangeIsTold()
{
    ShownPage shown;
    shown.page.setPicture(plainPicture(300, 200));
    shown.drawLine({10, 20}, {110, 20});
    shown.drawLine({10, 40}, {110, 40});
    shown.list->setCurrentRow(0);
    shown.page.deleteCurrentItem();
    shown.page.deleteAllItems();
    QCOMPARE(shown.modified.size(), 1);
}

void TestShowWidget::movedHandleRewritesItsRow()
{
    ShownPage shown;
    shown.page.show();
    shown.page.setPicture(plainPicture(300, 200));
    shown.drawLine({10, 20}, {110, 20});
    painted(shown.scene);
    shown.page.setModified(false);
    shown.mouse.drag({110, 20}, {60, 20});
    painted(shown.scene);
    QCOMPARE(shown.rows(), QStringList{"Line\nLen = 50px"});
    QVERIFY(shown.page.isModified());
}

void TestShowWidget::moveThatChangesNoNumberIsNoChange()
{
    ShownPage shown;
    shown.page.show();
    shown.page.setPicture(plainPicture(300, 200));
    shown.drawLine({10, 20}, {110, 20});
    painted(shown.scene);
    shown.page.setModified(false);
    int updates = 0;
    connect(&shown.scene, &MainScene::itemUpdate, this, [&updates] { ++updates; });
    // Round its other end the line keeps its length.
    shown.mouse.drag({110, 20}, {10, 120});
    painted(shown.scene);
    QCOMPARE(shown.scene.items().at(0)->points().at(1)->pos(), QPointF(10, 120));
    QVERIFY(updates > 0);
    // By its middle it moves as a whole.
    shown.scene.clearSelection();
    shown.mouse.drag({10, 70}, {60, 50});
    painted(shown.scene);
    QCOMPARE(shown.scene.items().at(0)->points().at(0)->pos(), QPointF(60, 0));
    QCOMPARE(shown.rows(), QStringList{"Line\nLen = 100px"});
    QVERIFY(!shown.page.isModified());
}

void TestShowWidget::unitChangeRewritesTheRows()
{
    ShownPage shown;
    shown.page.setPicture(plainPicture(300, 200));
    shown.drawLine({10, 20}, {110, 20});
    shown.page.setModified(false);
    shown.page.setScale(5.0);
    QCOMPARE(shown.rows(), QStringList{"Line\nLen = 100px"});
    QVERIFY(!shown.page.isModified());
    shown.page.setUnit(3);
    QCOMPARE(shown.rows(), QStringList{"Line\nLen = 0.5mm"});
    QVERIFY(shown.page.isModified());
}

void TestShowWidget::modifiedFlagActsOnChangesOnly()
{
    ShownPage shown;
    shown.page.setModified(false);
    QVERIFY(shown.modified.isEmpty());
    shown.page.setModified(true);
    QCOMPARE(shown.modified.size(), 1);
    shown.page.setModified(true);
    QCOMPARE(shown.modified.size(), 1);
    shown.page.setModified(false);
    QVERIFY(!shown.page.isModified());
    QCOMPARE(shown.modified.size(), 1);
    shown.page.setModified(true);
    QCOMPARE(shown.modified.size(), 2);
}

void TestShowWidget::currentRowGoesWithItsShape()
{
    ShownPage shown;
    shown.page.setPicture(plainPicture(300, 200));
    shown.drawLine({10, 20}, {110, 20});
    shown.drawLine({10, 40}, {60, 40});
    shown.drawLine({10, 60}, {30, 60});
    const QList<Base *> before = shown.scene.items();
    shown.list->setCurrentRow(1);
    shown.page.deleteCurrentItem();
    QCOMPARE(shown.rows(), QStringList({"Line\nLen = 100px", "Line\nLen = 20px"}));
    QCOMPARE(shown.scene.items(), QList<Base *>({before.at(0), before.at(2)}));
}

void TestShowWidget::deletingWithoutACurrentRowDoesNothing()
{
    ShownPage shown;
    shown.page.setPicture(plainPicture(300, 200));
    shown.drawLine({10, 20}, {110, 20});
    shown.page.setModified(false);
    shown.list->setCurrentRow(-1);
    shown.page.deleteCurrentItem();
    QCOMPARE(shown.list->count(), 1);
    QVERIFY(!shown.page.isModified());
}

void TestShowWidget::deletionCountsAsAChangeBeforeChangesAreTracked_data()
{
    QTest::addColumn<int>("way");
    QTest::addColumn<int>("left");
    QTest::newRow("the current row") << 0 << 1;
    QTest::newRow("all") << 1 << 0;
    QTest::newRow("the last one") << 2 << 1;
}

void TestShowWidget::deletionCountsAsAChangeBeforeChangesAreTracked()
{
    QFETCH(int, way);
    ShownPage shown;
    shown.page.show();
    shown.drawLine({10, 20}, {110, 20});
    shown.drawLine({10, 40}, {110, 40});
    QVERIFY(!shown.page.isModified());
    shown.list->setCurrentRow(0);
    if (way == 0)
        shown.page.deleteCurrentItem();
    else if (way == 1)
        shown.page.deleteAllItems();
    else
        shown.page.undoLastItem();
    QTEST(shown.list->count(), "left");
    QTEST(shown.scene.items().size(), "left");
    QVERIFY(shown.page.isModified());
    QCOMPARE(shown.modified.size(), 1);
}

void TestShowWidget::deletingAllOfNothingIsAChangeToo()
{
    ShownPage shown;
    shown.page.deleteAllItems();
    QVERIFY(shown.page.isModified());
}

void TestShowWidget::undoOfAnEmptyListDoesNothing()
{
    ShownPage shown;
    shown.page.undoLastItem();
    QVERIFY(!shown.page.isModified());
}

void TestShowWidget::undoTakesTheLastShape()
{
    ShownPage shown;
    shown.page.setPicture(plainPicture(300, 200));
    shown.drawLine({10, 20}, {110, 20});
    shown.drawLine({10, 40}, {60, 40});
    shown.list->setCurrentRow(0);
    Base *first = shown.scene.items().at(0);
    shown.page.undoLastItem();
    QCOMPARE(shown.rows(), QStringList{"Line\nLen = 100px"});
    QCOMPARE(shown.scene.items(), QList<Base *>{first});
}

void TestShowWidget::rightClickWithASelectedRowOpensTheMenu()
{
    ShownPage shown(false, {306, 200}); // a page that leaves the menu room on any screen
    QAction *action = shown.menu.addAction("x");
    shown.page.show();
    shown.page.setPicture(plainPicture(300, 200));
    shown.drawLine({10, 20}, {110, 20});
    shown.list->setCurrentRow(0);
    const QSignalSpy triggered(action, &QAction::triggered);
    QPoint menuAt;
    QTimer::singleShot(0, &shown.menu, [&] {
        menuAt = shown.menu.pos();
        QTest::keyClick(&shown.menu, Qt::Key_Down);
        QTest::keyClick(&shown.menu, Qt::Key_Return);
    });
    emit shown.list->customContextMenuRequested(QPoint(30, 12));
    QCOMPARE(triggered.size(), 1);
    QCOMPARE(menuAt, shown.list->mapToGlobal(QPoint(30, 12)));
}

void TestShowWidget::rightClickWithoutASelectedRowShowsNoMenu()
{
    ShownPage shown;
    shown.menu.addAction("x");
    shown.page.show();
    shown.page.setPicture(plainPicture(300, 200));
    shown.drawLine({10, 20}, {110, 20});
    shown.list->clearSelection();
    const QSignalSpy aboutToShow(&shown.menu, &QMenu::aboutToShow);
    emit shown.list->customContextMenuRequested(QPoint(30, 12));
    QVERIFY(aboutToShow.isEmpty());
}

void TestShowWidget::pageMayCloseFromItsOwnMenu()
{
    QMenu menu;
    QAction *action = menu.addAction("close");
    QPointer<ShowWidget> page = new ShowWidget(&menu, false);
    connect(action, &QAction::triggered, page, &QObject::deleteLater);
    page->resize(706, 400);
    page->show();
    page->setPicture(plainPicture(300, 200));
    auto *list = page->findChild<QListWidget *>();
    list->addItem("row");
    list->setCurrentRow(0);
    QTimer::singleShot(0, &menu, [&] {
        QTest::keyClick(&menu, Qt::Key_Down);
        QTest::keyClick(&menu, Qt::Key_Return);
    });
    QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(5, 5),
                            list->viewport()->mapToGlobal(QPoint(5, 5)));
    QCoreApplication::sendEvent(list->viewport(), &event);
    QTRY_VERIFY(!page);
}

void TestShowWidget::pageMayGoWithAShapeUnderConstruction()
{
    auto shown = std::make_unique<ShownPage>();
    QPointer<MainScene> scene = &shown->scene;
    shown->page.show();
    shown->page.setPicture(plainPicture(300, 200));
    shown->page.setCrossVerCount(2);
    shown->drawLine({10, 20}, {110, 20});
    shown->page.setDrawType(11);
    shown->mouse.click({{20, 20}, {40, 20}});
    shown.reset();
    QVERIFY(!scene);
    QCoreApplication::processEvents();
}

void TestShowWidget::sceneSignalsAreRelayed()
{
    ShownPage shown;
    shown.page.show();
    shown.page.setPicture(plainPicture(340, 300));
    ShowWidget *page = &shown.page;

    const QSignalSpy caliOver(page, &ShowWidget::caliOver);
    page->setDrawType(16);
    shown.mouse.click({{10, 20}, {110, 20}});
    QCOMPARE(caliOver.size(), 1);
    QCOMPARE(caliOver.at(0).at(0).toDouble(), 100.0);
    QVERIFY(!page->hasItems());

    const QSignalSpy ltextEdit(page, &ShowWidget::ltextEdit);
    page->setDrawType(15);
    shown.mouse.click({{50, 150}, {90, 180}});
    QCOMPARE(ltextEdit.size(), 1);

    const QSignalSpy clearDrawType(page, &ShowWidget::clearDrawType);
    shown.mouse.click({5, 5}, Qt::RightButton);
    QCOMPARE(clearDrawType.size(), 1);

    shown.drawLine({200, 200}, {300, 200});
    painted(shown.scene);
    const QSignalSpy changeProperty(page, &ShowWidget::changeProperty);
    shown.mouse.click({250, 200});
    shown.mouse.doubleClick({250, 200});
    QCOMPARE(changeProperty.size(), 1);
    QCOMPARE(changeProperty.at(0).at(0).value<void *>(),
             static_cast<void *>(shown.scene.items().at(1)->item()));

    const QSignalSpy crossStatusChanged(page, &ShowWidget::crossStatusChanged);
    page->setCrossHorCount(2);
    shown.scene.crossLines().at(0)->setPos(0, 30);
    QVERIFY(!crossStatusChanged.isEmpty());
    QVERIFY(!crossStatusChanged.last().at(0).value<void *>());

    const QSignalSpy blinkArea(page, &ShowWidget::blinkArea);
    page->blinkChange(true, false, false);
    shown.mouse.press({30, 50}); // cells of 20 x 20
    QCOMPARE(blinkArea.size(), 1);
    QCOMPARE(blinkArea.at(0), QVariantList({2, 3}));
}

void TestShowWidget::textReachesTheNewestShape()
{
    ShownPage shown;
    shown.page.setPicture(plainPicture(300, 200));
    shown.page.setDrawType(15);
    shown.mouse.click({{50, 50}, {90, 80}});
    shown.page.setItemText("solder bridge");
    QCOMPARE(shown.scene.items().last()->textContent(), QString("solder bridge"));
}

void TestShowWidget::antialiasingSwitchesTheView()
{
    ShownPage shown;
    const auto isSmooth = [&] {
        return shown.view->renderHints().testFlag(QPainter::Antialiasing);
    };
    shown.page.setDrawProperties({{Antialiasing, true}});
    QVERIFY(isSmooth());
    shown.page.setDrawProperties({});
    QVERIFY(!isSmooth());
    shown.page.setDrawProperty(Antialiasing, true);
    QVERIFY(isSmooth());
    shown.page.setDrawProperty(LineWidth, 0);
    QVERIFY(isSmooth());
    shown.page.setDrawProperty(Antialiasing, false);
    QVERIFY(!isSmooth());
}

void TestShowWidget::propertiesReachTheShapes()
{
    ShownPage shown;
    shown.page.setPicture(plainPicture(300, 200));
    shown.page.setDrawProperties({{TextColor, QColor(Qt::red)}});
    shown.drawLine({10, 20}, {110, 20});
    const GraphicsText *label = shown.scene.items().at(0)->text();
    QCOMPARE(label->defaultTextColor(), QColor(Qt::red));
    shown.page.setDrawProperty(TextColor, QColor(Qt::blue));
    QCOMPARE(label->defaultTextColor(), QColor(Qt::blue));
}

void TestShowWidget::crosshairIsForwarded()
{
    ShownPage shown;
    shown.page.setPicture(plainPicture(300, 400));
    QVERIFY(shown.page.crossVisible());
    shown.page.setCrossHorCount(3);
    shown.page.setCrossVerCount(2);
    QCOMPARE(shown.page.crossHorCount(), 3);
    QCOMPARE(shown.page.crossVerCount(), 2);
    const QList<GraphicsCross *> lines = shown.scene.crossLines();
    QCOMPARE(lines.size(), 5);
    QCOMPARE(lines.at(0)->pos(), QPointF(0, 100));
    QCOMPARE(lines.at(4)->pos(), QPointF(200, 0));
    shown.page.setCrossVisible(false);
    QVERIFY(!shown.page.crossVisible());
    QVERIFY(!shown.scene.crossLines().at(0)->isVisible());
}

QTEST_MAIN(TestShowWidget)
#include "test_showwidget.moc"
