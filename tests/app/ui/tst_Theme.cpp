#include "app/base/TerminalSettings.h"
#include "app/ui/Theme.h"
#include "support/TestMain.h"

#include <QCheckBox>
#include <QLabel>
#include <QPalette>
#include <QPushButton>
#include <QRegularExpression>
#include <QStyle>
#include <QStyleOptionButton>
#include <QTabBar>
#include <QToolBar>
#include <QToolButton>
#include <QWidget>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

/// Has the class name of Qt's own balloon, which only a tray can show; style sheets go by that name.
class QBalloonTip final : public QWidget {
    Q_OBJECT
};

namespace {

using Declarations = QMap<QString, QString>;

Declarations declarationsIn(const QString& text)
{
    Declarations found;
    for (const QString& declaration : text.split(u';', Qt::SkipEmptyParts)) {
        const qsizetype colon = declaration.indexOf(u':');
        if (colon > 0)
            found.insert(declaration.first(colon).simplified(), declaration.sliced(colon + 1).simplified());
    }
    return found;
}

/// What the rules that name exactly `selector` declare.
Declarations rule(const QString& sheet, const QString& selector)
{
    Declarations found;
    static const QRegularExpression comment(u"/\\*.*?\\*/"_s, QRegularExpression::DotMatchesEverythingOption);
    QString rules = sheet;
    rules.remove(comment);
    static const QRegularExpression block(u"([^{}]+)\\{([^{}]*)\\}"_s);
    for (auto match = block.globalMatch(rules); match.hasNext();) {
        const QRegularExpressionMatch one = match.next();
        for (const QString& name : one.captured(1).split(u',')) {
            if (name.simplified() == selector)
                found.insert(declarationsIn(one.captured(2)));
        }
    }
    return found;
}

/// `text` with the first or the second of each two values "{dark|light}".
QString oneOf(QString text, bool dark)
{
    static const QRegularExpression pair(u"\\{([^|}]*)\\|([^}]*)\\}"_s);
    return text.replace(pair, dark ? u"\\1"_s : u"\\2"_s);
}

QString sheetOf(const QString& name)
{
    QFile file(u":/theme-%1.qss"_s.arg(name));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// How well one colour can be told from another, from 1 to 21.
double contrast(const QColor& a, const QColor& b)
{
    const auto luminance = [](const QColor& color) {
        const auto linear = [](double part) {
            return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF())
            + 0.0722 * linear(color.blueF());
    };
    const double lighter = std::max(luminance(a), luminance(b));
    const double darker = std::min(luminance(a), luminance(b));
    return (lighter + 0.05) / (darker + 0.05);
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
        QCOMPARE(fixedColors::profitBlue.name(), u"#3ba7ff"_s);
        QCOMPARE(fixedColors::lossRed.name(), u"#ff4a4a"_s);
        QCOMPARE(fixedColors::grey.name(), u"#8a8a8a"_s);
        QCOMPARE(fixedColors::neutral.name(), u"#dcdcdc"_s);
        QCOMPARE(fixedColors::splashBackground.name(), u"#0b1220"_s);
        QCOMPARE(fixedColors::wordmarkStart.name(), u"#2dd4bf"_s);
        QCOMPARE(fixedColors::wordmarkEnd.name(), u"#2563eb"_s);
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
        QTest::addColumn<QString>("wanted");
        // Where the looks differ: {dark|light}; a declaration without a value must not be there.
        const auto row = [](const char* selector, const char* wanted) {
            QTest::newRow(selector) << QString::fromLatin1(selector) << QString::fromLatin1(wanted);
        };
        row("QWidget",
            "font-family: \"Segoe UI\", Tahoma, sans-serif; font-size: 9pt; outline: none; "
            "color: {#dcdcdc|#1e1e1e}");
        row("QMainWindow", "background: {#2b2b2b|#f0f0f0}");
        row("QDialog", "background: {#2b2b2b|#f0f0f0}");
        row("QMenuBar", "background: {#2b2b2b|#f0f0f0}; border-bottom: 1px solid {#1f1f1f|#d4d4d4}");
        row("QMenuBar::item:selected", "background: {#3d3d3d|#cce8ff}; border: {|1px solid #99d1ff}");
        row("QMenu", "background: {#252526|#ffffff}; border: 1px solid {#454545|#b0b0b0}");
        row("QMenu::item", "padding: 4px 28px 4px 24px");
        row("QMenu::item:selected", "background: {#094771|#cce8ff}; color: {|#000000}");
        row("QMenu::item:disabled", "color: {#6d6d6d|#a0a0a0}");
        row("QMenu::separator", "background: {#454545|#d4d4d4}");
        row("QToolBar",
            "background: {#2b2b2b|#f0f0f0}; border: 1px solid {#1f1f1f|#d4d4d4}; "
            "spacing: 2px; padding: 2px");
        row("QToolButton", "background: transparent; border-radius: 2px; padding: 3px 7px");
        row("QToolButton:hover", "background: {#3d3d3d|#e5f1fb}; border: 1px solid {#505050|#a8cfee}");
        row("QToolButton:checked", "background: {#094771|#cce8ff}; border: 1px solid {#0e639c|#99d1ff}");
        row("QDockWidget::title",
            "background: {#333333|#dfe3e8}; border: 1px solid {#1f1f1f|#c5cbd1}; "
            "padding: 4px 8px; text-align: left");
        row("QMainWindow::separator", "background: {#1f1f1f|#c5cbd1}; width: 3px; height: 3px");
        row("QMainWindow::separator:hover", "background: {#0e639c|#4a90d9}");
        row("QAbstractItemView",
            "background: {#1c1c1c|#ffffff}; alternate-background-color: {#1f1f1f|#f6f7f9}; "
            "border: 1px solid {#1f1f1f|#c5cbd1}; gridline-color: {#2d2d2d|#e2e2e2}; "
            "selection-background-color: {#094771|#cce8ff}; "
            "selection-color: {#ffffff|#000000}");
        row("QAbstractItemView::item", "height: 20px");
        row("QAbstractItemView::item:selected", "background: {#094771|#cce8ff}; color: {#ffffff|#000000}");
        row("QHeaderView::section",
            "background: {#2b2b2b|#eef0f2}; color: {#b8b8b8|#333333}; padding: 3px 6px");
        row("QTabWidget::pane", "background: {#1c1c1c|#ffffff}; border: 1px solid {#1f1f1f|#c5cbd1}");
        row("QTabBar::tab",
            "background: {#2b2b2b|#e4e7ea}; color: {#b8b8b8|#333333}; padding: 4px 12px; "
            "border-top: none");
        row("QTabBar::tab:selected", "background: {#1c1c1c|#ffffff}; color: {#ffffff|#000000}");
        row("QTabBar::tab:hover", "background: {#3d3d3d|#eef1f4}");
        row("QLineEdit",
            "background: {#1c1c1c|#ffffff}; border: 1px solid {#454545|#b0b0b0}; "
            "border-radius: 2px; padding: 4px 6px");
        row("QComboBox",
            "background: {#1c1c1c|#ffffff}; border: 1px solid {#454545|#b0b0b0}; "
            "border-radius: 2px; padding: 4px 6px");
        row("QAbstractSpinBox",
            "background: {#1c1c1c|#ffffff}; border: 1px solid {#454545|#b0b0b0}; "
            "border-radius: 2px; padding: 4px 6px");
        row("QLineEdit:focus", "border: 1px solid {#0e639c|#4a90d9}");
        row("QComboBox:focus", "border: 1px solid {#0e639c|#4a90d9}");
        row("QAbstractSpinBox:focus", "border: 1px solid {#0e639c|#4a90d9}");
        row("QLineEdit:disabled", "color: {#6d6d6d|#a0a0a0}; background: {#252526|#f0f0f0}");
        row("QComboBox:disabled", "color: {#6d6d6d|#a0a0a0}; background: {#252526|#f0f0f0}");
        row("QAbstractSpinBox:disabled", "color: {#6d6d6d|#a0a0a0}; background: {#252526|#f0f0f0}");
        row("QPushButton",
            "background: {#3d3d3d|#e1e1e1}; border: 1px solid {#555555|#adadad}; "
            "border-radius: 2px; padding: 5px 16px; min-width: 70px");
        row("QDialogButtonBox", "dialogbuttonbox-buttons-have-icons: 0");
        row("QPushButton:hover", "background: {#4a4a4a|#e5f1fb}");
        row("QPushButton:pressed", "background: {#094771|#cce8ff}");
        row("QPushButton:default",
            "background: {#0e639c|#c7e2fb}; border: 1px solid {#1177bb|#4a90d9}; "
            "color: {#ffffff|#0b3d66}");
        row("QPushButton:default:hover", "background: {#1177bb|#d6ebff}");
        row("QPushButton:disabled", "color: {#6d6d6d|#a0a0a0}; background: {#2f2f2f|#ececec}");
        row("QCheckBox::indicator",
            "width: 14px; height: 14px; background: {#1c1c1c|#ffffff}; "
            "border: 1px solid {#555555|#909090}");
        row("QCheckBox::indicator:checked", "background: {#0e639c|#4a90d9}");
        row("QStatusBar", "background: {#2b2b2b|#f0f0f0}; border-top: 1px solid {#1f1f1f|#d4d4d4}");
        row("QStatusBar QLabel", "padding: 0 8px");
        row("QScrollBar:vertical", "background: {#1c1c1c|#f0f0f0}; width: 12px");
        row("QScrollBar:horizontal", "background: {#1c1c1c|#f0f0f0}; height: 12px");
        row("QScrollBar::handle", "background: {#424242|#c4c4c4}; border-radius: 2px");
        row("QScrollBar::handle:vertical", "min-height: 24px");
        row("QScrollBar::handle:horizontal", "min-width: 24px");
        row("QScrollBar::handle:hover", "background: {#555555|#a8a8a8}");
        row("QScrollBar::add-line", "width: 0; height: 0");
        row("QScrollBar::sub-line", "width: 0; height: 0");
        row("QMdiArea", "background: {#1a1a1a|#9fa6ad}");
        row("QToolTip",
            "background: {#252526|#ffffe1}; color: {#dcdcdc|#1e1e1e}; "
            "border: 1px solid {#454545|#b0b0b0}; padding: 3px 6px");
        row("QSplashScreen", "border: 1px solid {#454545|#b0b0b0}");
    }
    void sheetRulesHaveTheirMainValues()
    {
        QFETCH(QString, selector);
        QFETCH(QString, wanted);
        for (const bool dark : {true, false}) {
            const Declarations found = rule(sheetOf(dark ? u"dark"_s : u"light"_s), selector);
            const Declarations expected = declarationsIn(oneOf(wanted, dark));
            for (auto one = expected.cbegin(); one != expected.cend(); ++one) {
                const QString value = found.value(one.key());
                QVERIFY2(value == one.value(),
                    qPrintable(u"%1 is \"%2\", not \"%3\""_s.arg(one.key(), value, one.value())));
            }
        }
    }

    void aCheckedBoxIsMarked_data()
    {
        QTest::addColumn<bool>("dark");
        QTest::addColumn<bool>("enabled");
        for (const bool dark : {true, false}) {
            for (const bool enabled : {true, false})
                QTest::addRow("%s, %s", dark ? "dark" : "light", enabled ? "enabled" : "disabled")
                    << dark << enabled;
        }
    }
    void aCheckedBoxIsMarked()
    {
        QFETCH(const bool, dark);
        QFETCH(const bool, enabled);
        setTheme(dark);
        applyTheme(*qApp);
        QCheckBox box;
        box.setEnabled(enabled);
        box.resize(box.sizeHint());
        box.setChecked(true);
        QStyleOptionButton option;
        option.initFrom(&box);
        const QRect inside
            = box.style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, &box).adjusted(2, 2, -2, -2);
        const auto shown = [&] { return box.grab(inside).toImage().convertToFormat(QImage::Format_RGB32); };
        const QImage checked = shown();
        const QColor ground = checked.pixelColor(0, 0);
        int marked = 0;
        for (int y = 0; y < checked.height(); ++y) {
            for (int x = 0; x < checked.width(); ++x)
                marked += contrast(checked.pixelColor(x, y), ground) >= 3.0 ? 1 : 0;
        }
        QVERIFY2(marked >= 8, qPrintable(QString::number(marked)));
        box.setChecked(false);
        const QImage empty = shown();
        QImage plain(empty.size(), QImage::Format_RGB32);
        plain.fill(empty.pixelColor(0, 0));
        QCOMPARE(empty, plain);
    }

    void whatIsDisabledLooksIt_data()
    {
        QTest::addColumn<bool>("dark");
        QTest::newRow("dark") << true;
        QTest::newRow("light") << false;
    }
    void whatIsDisabledLooksIt()
    {
        QFETCH(const bool, dark);
        setTheme(dark);
        applyTheme(*qApp);
        const auto strongest = [](const QImage& image) {
            double most = 1.0;
            for (int y = 3; y < image.height() - 3; ++y) {
                for (int x = 3; x < image.width() - 3; ++x)
                    most = std::max(most, contrast(image.pixelColor(x, y), image.pixelColor(3, 3)));
            }
            return most;
        };
        QTabBar tabs;
        tabs.addTab(u"Symbols"_s);
        tabs.addTab(u"Details"_s);
        tabs.addTab(u"Details"_s);
        tabs.setTabEnabled(2, false);
        tabs.resize(tabs.sizeHint());
        const auto tab = [&](int index) { return strongest(tabs.grab(tabs.tabRect(index)).toImage()); };
        QVERIFY2(tab(2) < 0.6 * tab(1), qPrintable(u"%1 and %2"_s.arg(tab(2)).arg(tab(1))));

        QToolBar bar;
        QToolButton button(&bar);
        button.setText(u"M15"_s);
        button.resize(button.sizeHint());
        const auto shown = [&] { return bar.grab(button.geometry()).toImage(); };
        const double enabled = strongest(shown());
        button.setEnabled(false);
        QVERIFY(strongest(shown()) < 0.6 * enabled);
        button.setCheckable(true);
        button.setChecked(true);
        const QImage disabled = shown();
        button.setEnabled(true);
        const QImage checked = shown();
        QVERIFY(strongest(disabled) < 0.6 * strongest(checked));
        QVERIFY(disabled.pixelColor(4, 4) != checked.pixelColor(4, 4));
    }

    void subWindowsAreDarkOnPurposeInTheLightThemeToo()
    {
        const Declarations inLight = rule(sheetOf(u"light"_s), u"QMdiSubWindow"_s);
        QCOMPARE(inLight[u"background"_s], u"#1c1c1c"_s);
        QCOMPARE(inLight[u"border"_s], u"1px solid #808080"_s);
        const Declarations inDark = rule(sheetOf(u"dark"_s), u"QMdiSubWindow"_s);
        QCOMPARE(inDark[u"background"_s], u"#1c1c1c"_s);
        QCOMPARE(inDark[u"border"_s], u"1px solid #454545"_s);
    }

    void theBackdropColourIsTheOneOfTheChartAreasRule()
    {
        for (const bool dark : {true, false}) {
            setTheme(dark);
            const Declarations area = rule(sheetOf(dark ? u"dark"_s : u"light"_s), u"QMdiArea"_s);
            QCOMPARE(area[u"background"_s], themeBackdropColor().name());
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

    void balloonsAtTheTrayCanBeReadInBothThemes()
    {
        for (const bool dark : {true, false}) {
            setTheme(dark);
            applyTheme(*qApp);
            QBalloonTip balloon;
            QPalette pale;
            pale.setColor(QPalette::Window, QColor(0xff, 0xff, 0xe1));
            pale.setColor(QPalette::WindowText, Qt::black);
            balloon.setPalette(pale);
            auto* text = new QLabel(u"Price Alert"_s, &balloon);
            auto* close = new QPushButton(&balloon);
            close->setFixedSize(18, 18);
            balloon.show();
            QVERIFY(QTest::qWaitForWindowExposed(&balloon));
            QCOMPARE(text->palette().color(QPalette::WindowText), QColor(Qt::black));
            QCOMPARE(close->size(), QSize(18, 18));
        }
    }

    void theIconComesFromTheLogoAndIsLoadedOnce()
    {
        QVERIFY(!QImage(u":/logo.png"_s).isNull());
        QVERIFY(!appIcon().isNull());
        QCOMPARE(appIcon().cacheKey(), appIcon().cacheKey());
        QVERIFY(!appIcon().pixmap(64, 64).isNull());
    }
};

TAVORAN_TEST(TestTheme)
#include "tst_Theme.moc"
