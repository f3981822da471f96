#include "MainWindowFixture.h"
#include "mainwindow/PopupPrices.h"
#include "support/TestMain.h"

#include <QDialog>
#include <QDockWidget>
#include <QScreen>
#include <QToolBar>

using namespace Qt::StringLiterals;

namespace {

/// The part of the screen that windows may cover; the test's is 800 x 800.
QRect available()
{
    return QGuiApplication::primaryScreen()->availableGeometry();
}

/// Waits until what was put off to the loop's next turn is done.
void passATurn()
{
    bool passed = false;
    QTimer::singleShot(0, qApp, [&passed] { passed = true; });
    QTRY_VERIFY(passed);
}

void showAndSettle(QWidget& window)
{
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    passATurn();
}

} // namespace

/// Windows and the screen that they open on.
class tst_ScreenFit final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theFirstWindowFitsASmallScreen()
    {
        MainWindowFixture f;
        f.window = std::make_unique<MainWindow>();
        QVERIFY(!available().contains(QRect(available().topLeft(), f.window->size())));
        showAndSettle(*f.window);
        QTRY_VERIFY(available().contains(f.window->frameGeometry()));
        QVERIFY(f.window->width() > 700 && f.window->height() > 500);
        for (const QDockWidget* dock : f.window->findChildren<QDockWidget*>())
            QVERIFY(f.window->rect().contains(dock->geometry()));
    }

    void aWindowWithAPlaceOfItsOwnKeepsIt()
    {
        QByteArray geometry;
        {
            MainWindowFixture f;
            f.open();
            f.window->setGeometry(300, 300, 700, 600);
            geometry = f.window->saveGeometry();
        }
        MainWindowFixture f;
        TerminalSettings::instance().setWindowLayout(geometry, {});
        f.window = std::make_unique<MainWindow>();
        const QRect place = f.window->geometry();
        showAndSettle(*f.window);
        QCOMPARE(f.window->geometry(), place);
    }

    void whoeverSizesTheWindowHasTheLastWord()
    {
        MainWindowFixture f;
        f.window = std::make_unique<MainWindow>();
        f.window->show();
        f.window->resize(1500, 900);
        showAndSettle(*f.window);
        QCOMPARE(f.window->size(), QSize(1500, 900));
    }

    void aWindowShownAgainStaysWhereItWasPut()
    {
        MainWindowFixture f;
        f.open();
        f.window->hide();
        f.window->setGeometry(400, 300, 700, 600);
        showAndSettle(*f.window);
        QCOMPARE(f.window->geometry(), QRect(400, 300, 700, 600));
    }

    void anOrderWindowLargerThanTheScreenShowsItsUpperLeft()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.window->openOrderDialog();
        QWidget* dialog = QApplication::activeModalWidget();
        QVERIFY(dialog);
        passATurn();
        QVERIFY(dialog->width() >= 920 && dialog->width() > available().width());
        QTRY_COMPARE(dialog->frameGeometry().topLeft().x(), available().x());
        QVERIFY(available().top() <= dialog->frameGeometry().top());
        QVERIFY(dialog->frameGeometry().bottom() <= available().bottom());
    }

    void aDialogLargerThanTheScreenIsMadeSmaller()
    {
        MainWindowFixture f;
        f.open();
        QDialog dialog(f.window.get());
        dialog.resize(1000, 2000);
        showAndSettle(dialog);
        QTRY_VERIFY(available().contains(dialog.frameGeometry()));
    }

    void aDialogOverTheEdgeComesInside()
    {
        MainWindowFixture f;
        f.open();
        QWidget window(f.window.get(), Qt::Tool);
        window.setGeometry(700, -50, 300, 200);
        showAndSettle(window);
        QTRY_VERIFY(available().contains(window.frameGeometry()));
        QCOMPARE(window.size(), QSize(300, 200));
    }

    void aSmallWindowShownAgainStaysWhereItWasPut()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        QTest::keyClick(f.window.get(), Qt::Key_F10);
        auto* prices = f.window->findChild<PopupPrices*>();
        QVERIFY(prices);
        showAndSettle(*prices);
        const QRect overTheEdge(available().right() - 60, 100, 300, 200);
        prices->setGeometry(overTheEdge);
        prices->close();
        showAndSettle(*prices);
        QCOMPARE(prices->geometry(), overTheEdge);
    }

    void aFloatingPaneIsLeftAlone()
    {
        MainWindowFixture f;
        f.open();
        auto* dock = f.window->findChild<QDockWidget*>(u"dockMarketWatch"_s);
        dock->setFloating(true);
        dock->hide();
        dock->setGeometry(700, 50, 300, 200);
        showAndSettle(*dock);
        QCOMPARE(dock->geometry(), QRect(700, 50, 300, 200));
    }

    void aFloatingToolBarIsLeftAlone()
    {
        MainWindowFixture f;
        f.open();
        auto* bar = f.window->findChild<QToolBar*>(u"toolbarStandard"_s);
        // As Qt makes a bar float that is dragged off, or restored.
        bar->hide();
        bar->setWindowFlags(Qt::Tool | Qt::FramelessWindowHint);
        const QRect overTheEdge(QPoint(available().right() - 60, 100), bar->sizeHint());
        bar->setGeometry(overTheEdge);
        showAndSettle(*bar);
        QCOMPARE(bar->geometry(), overTheEdge);
    }
};

TAVORAN_TEST(tst_ScreenFit)
#include "tst_ScreenFit.moc"
