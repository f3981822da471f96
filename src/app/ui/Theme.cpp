#include "app/ui/Theme.h"

#include "app/base/TerminalSettings.h"

#include <QApplication>
#include <QFile>
#include <QPalette>
#include <QScreen>
#include <QStyle>
#include <QStyleFactory>
#include <QWidget>

using namespace Qt::StringLiterals;

namespace {

struct PaletteColors {
    QRgb window, windowText, base, alternateBase, button, toolTipBase, toolTipText;
    QRgb highlight, highlightedText, link, placeholder, disabledText;
};

constexpr PaletteColors darkColors{
    .window = 0xff2b2b2b,
    .windowText = 0xffdcdcdc,
    .base = 0xff1c1c1c,
    .alternateBase = 0xff1f1f1f,
    .button = 0xff3d3d3d,
    .toolTipBase = 0xff252526,
    .toolTipText = 0xffdcdcdc,
    .highlight = 0xff094771,
    .highlightedText = 0xffffffff,
    .link = 0xff3ba7ff,
    .placeholder = 0xff6d6d6d,
    .disabledText = 0xff6d6d6d,
};

constexpr PaletteColors lightColors{
    .window = 0xfff0f0f0,
    .windowText = 0xff1e1e1e,
    .base = 0xffffffff,
    .alternateBase = 0xfff6f7f9,
    .button = 0xffe1e1e1,
    .toolTipBase = 0xffffffe1,
    .toolTipText = 0xff1e1e1e,
    .highlight = 0xffcce8ff,
    .highlightedText = 0xff000000,
    .link = 0xff0066cc,
    .placeholder = 0xff9a9a9a,
    .disabledText = 0xffa0a0a0,
};

QPalette paletteFrom(const PaletteColors& colors)
{
    QPalette palette;
    palette.setColor(QPalette::Window, colors.window);
    palette.setColor(QPalette::WindowText, colors.windowText);
    palette.setColor(QPalette::Base, colors.base);
    palette.setColor(QPalette::AlternateBase, colors.alternateBase);
    palette.setColor(QPalette::Text, colors.windowText);
    palette.setColor(QPalette::Button, colors.button);
    palette.setColor(QPalette::ButtonText, colors.windowText);
    palette.setColor(QPalette::ToolTipBase, colors.toolTipBase);
    palette.setColor(QPalette::ToolTipText, colors.toolTipText);
    palette.setColor(QPalette::Highlight, colors.highlight);
    palette.setColor(QPalette::HighlightedText, colors.highlightedText);
    palette.setColor(QPalette::Link, colors.link);
    palette.setColor(QPalette::PlaceholderText, colors.placeholder);
    for (const QPalette::ColorRole role : {QPalette::Text, QPalette::ButtonText, QPalette::WindowText})
        palette.setColor(QPalette::Disabled, role, colors.disabledText);
    return palette;
}

QString styleSheet(bool dark)
{
    QFile file(dark ? u":/theme-dark.qss"_s : u":/theme-light.qss"_s);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QColor themed(QRgb dark, QRgb light)
{
    return QColor::fromRgb(isDarkTheme() ? dark : light);
}

/// The height of rows, which the sheet gives for ordinary letters, where these are larger.
QString rowRule()
{
    constexpr double ordinaryHeight = 20.0;
    constexpr double ordinaryDpi = 96.0;
    const double dpi = QGuiApplication::primaryScreen()->logicalDotsPerInchY();
    if (dpi <= ordinaryDpi)
        return {};
    return u"QAbstractItemView::item{height:%1px;}"_s.arg(qRound(ordinaryHeight * dpi / ordinaryDpi));
}

} // namespace

void applyTheme(QApplication& application)
{
    const bool dark = isDarkTheme();
    QApplication::setStyle(QStyleFactory::create(u"Fusion"_s));
    const QPalette palette = paletteFrom(dark ? darkColors : lightColors);
    QApplication::setPalette(palette);
    application.setStyleSheet(styleSheet(dark) + rowRule());
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget* window : windows) {
        window->setPalette(palette);
        QApplication::style()->unpolish(window);
        QApplication::style()->polish(window);
        window->update();
    }
}

void setTheme(bool dark)
{
    TerminalSettings::instance().setDarkTheme(dark);
}

bool isDarkTheme()
{
    return TerminalSettings::instance().darkTheme();
}

QColor themeTextColor()
{
    return themed(0xffdcdcdc, 0xff1e1e1e);
}

QColor themeUpColor()
{
    return themed(0xff3ba7ff, 0xff0a63c2);
}

QColor themeDownColor()
{
    return themed(0xffff4a4a, 0xffcc2b2b);
}

QColor themeGreenColor()
{
    return themed(0xff26d367, 0xff158f43);
}

QColor themeMutedColor()
{
    return themed(0xffc8c8c8, 0xff4a4a4a);
}

QColor themeStaleColor()
{
    return themed(0xff9a9a9a, 0xff666666);
}

QFont staleFont()
{
    QFont font;
    font.setItalic(true);
    return font;
}

QColor themeBackdropColor()
{
    return themed(0xff1a1a1a, 0xff9fa6ad);
}

QIcon appIcon()
{
    // Never destroyed: freeing a pixmap once the application object is gone would crash.
    static const QIcon& icon = *new QIcon(u":/logo.png"_s);
    return icon;
}
