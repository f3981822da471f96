#include "app/TerminalSettings.h"
#include "app/Theme.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;

namespace {

/// The declarations of the rules that name exactly `selector`, blanks removed.
QString rule(const QString& sheet, const QString& selector)
{
    QString found;
    static const QRegularExpression comment(u"/\\*.*?\\*/"_s, QRegularExpression::DotMatchesEverythingOption);
    QString rules = sheet;
    rules.remove(comment);
    static const QRegularExpression block(u"([^{}]+)\\{([^{}]*)\\}"_s);
    for (auto match = block.globalMatch(rules); match.hasNext();) {
        const QRegularExpressionMatch one = match.next();
        for (const QString& name : one.captured(1).split(u',')) {
            if (name.simplified() == selector)
                found += one.captured(2).simplified();
        }
    }
    return found;
}

QString sheetOf(const QString& name)
{
    QFile file(u":/theme-%1.qss"_s.arg(name));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace

class TestTheme : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        setTheme(false);
        applyTheme(*qApp);
    }

    void withoutASettingTheLightThemeIsApplied()
    {
        QVERIFY(!isDarkTheme());
        applyTheme(*qApp);
        QCOMPARE(QApplication::palette().color(QPalette::Window), QColor(u"#f0f0f0"_s));
    }

    void coloursFollowTheThemeAtOnce()
    {
        setTheme(true);
        QVERIFY(isDarkTheme());
        QCOMPARE(themeTextColor().name(), u"#dcdcdc"_s);
        QCOMPARE(themeUpColor().name(), u"#3ba7ff"_s);
        QCOMPARE(themeDownColor().name(), u"#ff4a4a"_s);
        QCOMPARE(themeGreenColor().name(), u"#26d367"_s);
        QCOMPARE(themeMutedColor().name(), u"#c8c8c8"_s);
        QCOMPARE(themeBackdropColor().name(), u"#1a1a1a"_s);
        setTheme(false);
        QVERIFY(!isDarkTheme());
        QCOMPARE(themeTextColor().name(), u"#1e1e1e"_s);
        QCOMPARE(themeUpColor().name(), u"#0a63c2"_s);
        QCOMPARE(themeDownColor().name(), u"#cc2b2b"_s);
        QCOMPARE(themeGreenColor().name(), u"#158f43"_s);
        QCOMPARE(themeMutedColor().name(), u"#4a4a4a"_s);
        QCOMPARE(themeBackdropColor().name(), u"#9fa6ad"_s);
    }

    void fixedColoursAreTheSameInBothThemes()
    {
        QCOMPARE(FixedColors::profitBlue.name(), u"#3ba7ff"_s);
        QCOMPARE(FixedColors::lossRed.name(), u"#ff4a4a"_s);
        QCOMPARE(FixedColors::grey.name(), u"#8a8a8a"_s);
        QCOMPARE(FixedColors::neutral.name(), u"#dcdcdc"_s);
        QCOMPARE(FixedColors::splashBackground.name(), u"#0b1220"_s);
        QCOMPARE(FixedColors::wordmarkStart.name(), u"#2dd4bf"_s);
        QCOMPARE(FixedColors::wordmarkEnd.name(), u"#2563eb"_s);
    }

    void eachPaletteRoleHasItsColour_data()
    {
        QTest::addColumn<int>("role");
        QTest::addColumn<QString>("dark");
        QTest::addColumn<QString>("light");
        QTest::newRow("Window") << int(QPalette::Window) << u"#2b2b2b"_s << u"#f0f0f0"_s;
        QTest::newRow("WindowText") << int(QPalette::WindowText) << u"#dcdcdc"_s << u"#1e1e1e"_s;
        QTest::newRow("Base") << int(QPalette::Base) << u"#1c1c1c"_s << u"#ffffff"_s;
        QTest::newRow("AlternateBase") << int(QPalette::AlternateBase) << u"#1f1f1f"_s << u"#f6f7f9"_s;
        QTest::newRow("Text") << int(QPalette::Text) << u"#dcdcdc"_s << u"#1e1e1e"_s;
        QTest::newRow("Button") << int(QPalette::Button) << u"#3d3d3d"_s << u"#e1e1e1"_s;
        QTest::newRow("ButtonText") << int(QPalette::ButtonText) << u"#dcdcdc"_s << u"#1e1e1e"_s;
        QTest::newRow("ToolTipBase") << int(QPalette::ToolTipBase) << u"#252526"_s << u"#ffffe1"_s;
        QTest::newRow("ToolTipText") << int(QPalette::ToolTipText) << u"#dcdcdc"_s << u"#1e1e1e"_s;
        QTest::newRow("Highlight") << int(QPalette::Highlight) << u"#094771"_s << u"#cce8ff"_s;
        QTest::newRow("HighlightedText") << int(QPalette::HighlightedText) << u"#ffffff"_s << u"#000000"_s;
        QTest::newRow("Link") << int(QPalette::Link) << u"#3ba7ff"_s << u"#0066cc"_s;
        QTest::newRow("PlaceholderText") << int(QPalette::PlaceholderText) << u"#6d6d6d"_s << u"#9a9a9a"_s;
    }
    void eachPaletteRoleHasItsColour()
    {
        QFETCH(int, role);
        QFETCH(QString, dark);
        QFETCH(QString, light);
        const auto colorRole = static_cast<QPalette::ColorRole>(role);
        setTheme(true);
        applyTheme(*qApp);
        QCOMPARE(QApplication::palette().color(QPalette::Active, colorRole).name(), dark);
        QCOMPARE(QApplication::palette().color(QPalette::Inactive, colorRole).name(), dark);
        setTheme(false);
        applyTheme(*qApp);
        QCOMPARE(QApplication::palette().color(QPalette::Active, colorRole).name(), light);
    }

    void disabledTextIsPaler()
    {
        for (const bool dark : {true, false}) {
            setTheme(dark);
            applyTheme(*qApp);
            for (const QPalette::ColorRole role :
                {QPalette::Text, QPalette::ButtonText, QPalette::WindowText}) {
                QCOMPARE(QApplication::palette().color(QPalette::Disabled, role).name(),
                    dark ? u"#6d6d6d"_s : u"#a0a0a0"_s);
            }
        }
    }

    void theStyleIsFusionWithTheThemesSheet()
    {
        setTheme(true);
        applyTheme(*qApp);
        QVERIFY(!sheetOf(u"dark"_s).isEmpty());
        QCOMPARE(qApp->styleSheet(), sheetOf(u"dark"_s));
        // The sheet wraps the style; without it the style itself answers.
        qApp->setStyleSheet({});
        QCOMPARE(QApplication::style()->name().toLower(), u"fusion"_s);
        setTheme(false);
        applyTheme(*qApp);
        QCOMPARE(qApp->styleSheet(), sheetOf(u"light"_s));
    }

    void openWindowsChangeWithoutBeingReopened()
    {
        QWidget window;
        auto* child = new QLabel(u"text"_s, &window);
        window.resize(100, 100);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        setTheme(true);
        applyTheme(*qApp);
        QCOMPARE(window.palette().color(QPalette::Window).name(), u"#2b2b2b"_s);
        QCOMPARE(child->palette().color(QPalette::WindowText).name(), u"#dcdcdc"_s);
        QCOMPARE(window.grab().toImage().pixelColor(90, 90).name(), u"#2b2b2b"_s);
        setTheme(false);
        applyTheme(*qApp);
        QCOMPARE(window.grab().toImage().pixelColor(90, 90).name(), u"#f0f0f0"_s);
        QCOMPARE(child->palette().color(QPalette::WindowText).name(), u"#1e1e1e"_s);
    }

    void bothSheetsStyleTheSameSelectors()
    {
        const auto selectors = [](const QString& name) {
            QStringList found;
            static const QRegularExpression line(
                u"^([^/\\s{}][^{}]*)\\{"_s, QRegularExpression::MultilineOption);
            for (auto match = line.globalMatch(sheetOf(name)); match.hasNext();)
                found += match.next().captured(1).simplified();
            return found;
        };
        QVERIFY(selectors(u"dark"_s).size() > 40);
        QCOMPARE(selectors(u"dark"_s), selectors(u"light"_s));
    }

    void sheetRulesHaveTheirMainValues_data()
    {
        QTest::addColumn<QString>("selector");
        QTest::addColumn<QStringList>("dark");
        QTest::addColumn<QStringList>("light");
        const auto row = [](const char* selector, const QStringList& dark, const QStringList& light) {
            QTest::newRow(selector) << QString::fromLatin1(selector) << dark << light;
        };
        const QStringList font = {u"\"Segoe UI\", Tahoma, sans-serif"_s, u"9pt"_s, u"outline: none"_s};
        row("QWidget", font + QStringList{u"#dcdcdc"_s}, font + QStringList{u"#1e1e1e"_s});
        row("QDialog", {u"#2b2b2b"_s}, {u"#f0f0f0"_s});
        row("QMenuBar", {u"#2b2b2b"_s, u"#1f1f1f"_s}, {u"#f0f0f0"_s, u"#d4d4d4"_s});
        row("QMenuBar::item:selected", {u"#3d3d3d"_s}, {u"#cce8ff"_s, u"#99d1ff"_s});
        row("QMenu", {u"#252526"_s, u"#454545"_s}, {u"#ffffff"_s, u"#b0b0b0"_s});
        row("QMenu::item", {u"4px 28px 4px 24px"_s}, {u"4px 28px 4px 24px"_s});
        row("QMenu::item:selected", {u"#094771"_s}, {u"#cce8ff"_s, u"#000000"_s});
        row("QMenu::item:disabled", {u"#6d6d6d"_s}, {u"#a0a0a0"_s});
        row("QMenu::separator", {u"#454545"_s}, {u"#d4d4d4"_s});
        row("QToolBar", {u"#2b2b2b"_s, u"#1f1f1f"_s, u"spacing: 2px"_s, u"padding: 2px"_s},
            {u"#f0f0f0"_s, u"#d4d4d4"_s});
        row("QToolButton", {u"transparent"_s, u"radius: 2px"_s, u"3px 7px"_s},
            {u"transparent"_s, u"3px 7px"_s});
        row("QToolButton:hover", {u"#3d3d3d"_s, u"#505050"_s}, {u"#e5f1fb"_s, u"#a8cfee"_s});
        row("QToolButton:checked", {u"#094771"_s, u"#0e639c"_s}, {u"#cce8ff"_s, u"#99d1ff"_s});
        row("QDockWidget::title", {u"#333333"_s, u"#1f1f1f"_s, u"4px 8px"_s, u"left"_s},
            {u"#dfe3e8"_s, u"#c5cbd1"_s});
        row("QMainWindow::separator", {u"#1f1f1f"_s, u"3px"_s}, {u"#c5cbd1"_s, u"3px"_s});
        row("QMainWindow::separator:hover", {u"#0e639c"_s}, {u"#4a90d9"_s});
        row("QAbstractItemView", {u"#1c1c1c"_s, u"#1f1f1f"_s, u"#2d2d2d"_s, u"#094771"_s, u"#ffffff"_s},
            {u"#ffffff"_s, u"#f6f7f9"_s, u"#c5cbd1"_s, u"#e2e2e2"_s, u"#cce8ff"_s, u"#000000"_s});
        row("QAbstractItemView::item", {u"height: 20px"_s}, {u"height: 20px"_s});
        row("QHeaderView::section", {u"#2b2b2b"_s, u"#b8b8b8"_s, u"3px 6px"_s}, {u"#eef0f2"_s, u"#333333"_s});
        row("QTabWidget::pane", {u"#1f1f1f"_s, u"#1c1c1c"_s}, {u"#c5cbd1"_s, u"#ffffff"_s});
        row("QTabBar::tab", {u"#2b2b2b"_s, u"#b8b8b8"_s, u"4px 12px"_s, u"border-top: none"_s},
            {u"#e4e7ea"_s, u"#333333"_s});
        row("QTabBar::tab:selected", {u"#1c1c1c"_s, u"#ffffff"_s}, {u"#ffffff"_s, u"#000000"_s});
        row("QTabBar::tab:hover", {u"#3d3d3d"_s}, {u"#eef1f4"_s});
        row("QLineEdit", {u"#1c1c1c"_s, u"#454545"_s, u"radius: 2px"_s, u"4px 6px"_s},
            {u"#ffffff"_s, u"#b0b0b0"_s});
        row("QComboBox:focus", {u"#0e639c"_s}, {u"#4a90d9"_s});
        row("QAbstractSpinBox:disabled", {u"#6d6d6d"_s, u"#252526"_s}, {u"#a0a0a0"_s, u"#f0f0f0"_s});
        row("QPushButton", {u"#3d3d3d"_s, u"#555555"_s, u"5px 16px"_s, u"min-width: 70px"_s},
            {u"#e1e1e1"_s, u"#adadad"_s});
        row("QPushButton:hover", {u"#4a4a4a"_s}, {u"#e5f1fb"_s});
        row("QPushButton:pressed", {u"#094771"_s}, {u"#cce8ff"_s});
        row("QPushButton:default", {u"#0e639c"_s, u"#1177bb"_s, u"#ffffff"_s},
            {u"#c7e2fb"_s, u"#4a90d9"_s, u"#0b3d66"_s});
        row("QPushButton:default:hover", {u"#1177bb"_s}, {u"#d6ebff"_s});
        row("QPushButton:disabled", {u"#6d6d6d"_s, u"#2f2f2f"_s}, {u"#a0a0a0"_s, u"#ececec"_s});
        row("QCheckBox::indicator", {u"14px"_s, u"#1c1c1c"_s, u"#555555"_s},
            {u"14px"_s, u"#ffffff"_s, u"#909090"_s});
        row("QCheckBox::indicator:checked", {u"#0e639c"_s}, {u"#4a90d9"_s});
        row("QStatusBar", {u"#2b2b2b"_s, u"#1f1f1f"_s}, {u"#f0f0f0"_s, u"#d4d4d4"_s});
        row("QStatusBar QLabel", {u"0 8px"_s}, {u"0 8px"_s});
        row("QScrollBar:vertical", {u"#1c1c1c"_s, u"12px"_s}, {u"#f0f0f0"_s, u"12px"_s});
        row("QScrollBar::handle", {u"#424242"_s, u"2px"_s}, {u"#c4c4c4"_s, u"2px"_s});
        row("QScrollBar::handle:vertical", {u"24px"_s}, {u"24px"_s});
        row("QScrollBar::handle:hover", {u"#555555"_s}, {u"#a8a8a8"_s});
        row("QMdiArea", {u"#1a1a1a"_s}, {u"#9fa6ad"_s});
        row("QToolTip", {u"#252526"_s, u"#dcdcdc"_s, u"#454545"_s, u"3px 6px"_s},
            {u"#ffffe1"_s, u"#1e1e1e"_s, u"#b0b0b0"_s});
        row("QSplashScreen", {u"#454545"_s}, {u"#b0b0b0"_s});
    }
    void sheetRulesHaveTheirMainValues()
    {
        QFETCH(QString, selector);
        QFETCH(QStringList, dark);
        QFETCH(QStringList, light);
        const QString inDark = rule(sheetOf(u"dark"_s), selector);
        const QString inLight = rule(sheetOf(u"light"_s), selector);
        for (const QString& value : std::as_const(dark))
            QVERIFY2(inDark.contains(value), qPrintable(value + u" not in "_s + inDark));
        for (const QString& value : std::as_const(light))
            QVERIFY2(inLight.contains(value), qPrintable(value + u" not in "_s + inLight));
    }

    void subWindowsAreDarkOnPurposeInTheLightThemeToo()
    {
        QVERIFY(rule(sheetOf(u"light"_s), u"QMdiSubWindow"_s).contains("background: #1c1c1c"_L1));
        QVERIFY(rule(sheetOf(u"light"_s), u"QMdiSubWindow"_s).contains("#808080"_L1));
        QVERIFY(rule(sheetOf(u"dark"_s), u"QMdiSubWindow"_s).contains("background: #1c1c1c"_L1));
    }

    void theBackdropColourIsTheOneOfTheChartAreasRule()
    {
        for (const bool dark : {true, false}) {
            setTheme(dark);
            const QString area = rule(sheetOf(dark ? u"dark"_s : u"light"_s), u"QMdiArea"_s);
            QVERIFY(area.contains(themeBackdropColor().name()));
        }
    }

    void ordinaryButtonsAreAtLeastSeventyPixelsWide()
    {
        applyTheme(*qApp);
        QPushButton button(u"x"_s);
        button.show();
        QVERIFY(button.minimumSizeHint().width() >= 70);
    }

    void buttonsOfAFixedSizeKeepIt()
    {
        applyTheme(*qApp);
        QWidget panel;
        panel.setObjectName(u"oneClickPanel"_s);
        QPushButton onPanel(u"S"_s, &panel);
        onPanel.setFixedSize(24, 18);
        QPushButton swatch(&panel);
        swatch.setProperty("compact", true);
        swatch.setFixedSize(60, 20);
        panel.show();
        QVERIFY(QTest::qWaitForWindowExposed(&panel));
        QCOMPARE(onPanel.size(), QSize(24, 18));
        QCOMPARE(swatch.size(), QSize(60, 20));
    }

    void theIconComesFromTheLogoAndIsLoadedOnce()
    {
        QVERIFY(!QImage(u":/logo.png"_s).isNull());
        QVERIFY(!appIcon().isNull());
        QCOMPARE(appIcon().cacheKey(), appIcon().cacheKey());
        QVERIFY(!appIcon().pixmap(64, 64).isNull());
    }
};

TAVORAN_TEST_MAIN(TestTheme)
#include "tst_Theme.moc"
