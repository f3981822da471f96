#include "mainwindow/MoreButtons.h"
#include "mainwindow/ToolBarKeys.h"
#include "support/TestMain.h"

#include <QPointer>
#include <QStatusTipEvent>
#include <QToolBar>
#include <QToolButton>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace {

/// Where a toolbar tells the names of its buttons.
class Window final : public QWidget {
public:
    QStringList tips;

protected:
    bool event(QEvent* event) override
    {
        if (event->type() == QEvent::StatusTip)
            tips.append(static_cast<QStatusTipEvent*>(event)->tip());
        return QWidget::event(event);
    }
};

} // namespace

/// Built with a check of what each object is that is taken for a button, which ends the program where it is
/// none. The keys themselves are in tst_ToolBars.
class tst_ToolBarKeys final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void a_button_that_is_being_destroyed_is_no_button_any_more();
};

void tst_ToolBarKeys::a_button_that_is_being_destroyed_is_no_button_any_more()
{
    Window window;
    auto* bar = new QToolBar(&window);
    const QPointer<QToolButton> button(
        qobject_cast<QToolButton*>(bar->widgetForAction(bar->addAction(u"Fibonacci"_s))));
    button->setFocusPolicy(Qt::StrongFocus);
    new ToolBarKeys(*bar, *new MoreButtons(*bar, *bar->findChild<QToolButton*>(u"qt_toolbar_ext_button"_s)));
    window.resize(300, 100);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    button->setFocus();
    QTRY_COMPARE(window.tips.value(0), u"Fibonacci"_s);

    delete bar; // the last events of its buttons come when these are no more than widgets
    QVERIFY(!button);
    QCOMPARE(window.tips.last(), QString());
    QCOMPARE(window.tips.count(u"Fibonacci"_s), 1);
}

TAVORAN_TEST(tst_ToolBarKeys)
#include "tst_ToolBarKeys.moc"
