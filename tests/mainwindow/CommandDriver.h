#pragma once

#include "MainWindowFixture.h"
#include "chart/window/ChartWidget.h"
#include "chart/window/ChartWindow.h"
#include "mainwindow/TerminalActions.h"
#include "support/Hands.h"

#include <QApplication>
#include <QMenuBar>
#include <QToolBar>

/// Works the main window's menus, toolbars and keys like a person.
struct CommandDriver final {
    MainWindowFixture f;

    CommandDriver() { f.signInAndSettle(); }

    [[nodiscard]] TerminalActions& actions() const { return *f.window->findChild<TerminalActions*>(); }
    [[nodiscard]] QToolBar& bar(const char* name) const
    {
        return *f.window->findChild<QToolBar*>(QString::fromLatin1(name));
    }
    [[nodiscard]] ChartWindow* openChart(const QString& symbol) const
    {
        f.window->openChart(symbol);
        return f.charts().constLast();
    }
    void activate() const
    {
        f.window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(f.window.get()));
    }

    /// Clicks through menus, from the bar down: choose({"&Charts", "Timeframe", "H1"}).
    void choose(const QStringList& path) const
    {
        QMenuBar* bar = f.window->menuBar();
        const QAction* top = entry(bar, path.at(0));
        QVERIFY2(top, qPrintable(path.at(0)));
        QTest::mouseClick(bar, Qt::LeftButton, {}, bar->actionGeometry(const_cast<QAction*>(top)).center());
        QMenu* menu = top->menu();
        for (const QString& text : path.mid(1)) {
            QTRY_VERIFY(menu->isVisible());
            QAction* next = entry(menu, text);
            QVERIFY2(next, qPrintable(text));
            hands::choose(*menu, next);
            menu = next->menu();
        }
        QTRY_VERIFY(!QApplication::activePopupWidget());
    }
    /// Clicks the button of an action in a toolbar.
    void press(const char* toolBar, QAction* action) const
    {
        QWidget* button = bar(toolBar).widgetForAction(action);
        QVERIFY(button && button->isVisible());
        QTest::mouseClick(button, Qt::LeftButton);
    }

    [[nodiscard]] static QAction* entry(const QWidget* menu, const QString& text)
    {
        for (QAction* action : menu->actions()) {
            if (action->text() == text)
                return action;
        }
        return nullptr;
    }
};
