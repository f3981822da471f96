#include "mainwindow/ScreenFit.h"

#include "mainwindow/WindowPlacement.h"

#include <QCoreApplication>
#include <QDockWidget>
#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QTimer>
#include <QToolBar>
#include <QWidget>

#include <iterator>

namespace {

// No signal tells when the frame has come, or that none will.
constexpr int turnsMs[] = {0, 80, 200};

// Assumed until the frame has come: a desktop may take a window of exactly the screen's size for one that
// wants no frame.
constexpr QMargins usualFrame(4, 36, 4, 4);

QMargins frameOf(const QWidget& window)
{
    const QRect inner = window.geometry();
    const QRect outer = window.frameGeometry();
    return {inner.left() - outer.left(), inner.top() - outer.top(), outer.right() - inner.right(),
        outer.bottom() - inner.bottom()};
}

QRect placeFor(const QWidget& window, const QMargins& frame)
{
    const QSize least = window.minimumSizeHint().expandedTo(window.minimumSize());
    return fittedToScreen(window.geometry(), frame, least, window.screen()->availableGeometry());
}

bool fillsScreen(const QWidget& window)
{
    return window.windowState() & (Qt::WindowMinimized | Qt::WindowMaximized | Qt::WindowFullScreen);
}

/// Floating docks and toolbars lie where the layout has them; menus and tips place themselves.
bool isDialogOrSmallWindow(const QWidget& widget)
{
    const Qt::WindowType type = widget.windowType();
    return (type == Qt::Dialog || type == Qt::Tool || type == Qt::Window)
        && !qobject_cast<const QDockWidget*>(&widget) && !qobject_cast<const QToolBar*>(&widget);
}

bool isShownForTheFirstTime(QWidget& window)
{
    constexpr auto shown = "shownBefore";
    const bool before = window.property(shown).toBool();
    window.setProperty(shown, true);
    return !before;
}

/// Fits the window in this turn and those after it, until somebody else gives it a size.
void fitLater(QWidget& window, QSize sizeBefore, std::size_t turn)
{
    if (turn == std::size(turnsMs))
        return;
    QTimer::singleShot(turnsMs[turn], &window, [&window, sizeBefore, turn] {
        if (window.size() != sizeBefore || !window.isVisible() || fillsScreen(window))
            return;
        const QRect place = placeFor(window, frameOf(window));
        if (place != window.geometry())
            window.setGeometry(place);
        fitLater(window, window.size(), turn + 1);
    });
}

} // namespace

QList<QRect> availableScreens()
{
    QList<QRect> areas;
    const QList<QScreen*> screens = QGuiApplication::screens();
    for (const QScreen* screen : screens)
        areas.append(screen->availableGeometry());
    return areas;
}

ScreenFit::ScreenFit(QWidget& mainWindow)
    : QObject(&mainWindow)
    , m_mainWindow(mainWindow)
{
    QCoreApplication::instance()->installEventFilter(this);
}

void ScreenFit::fit(QWidget& window)
{
    if (fillsScreen(window))
        return;
    // Before the window appears its place is not known, but whether it is too large for any place is.
    const QMargins frame = frameOf(window);
    if (placeFor(window, frame).size() != window.size())
        window.setGeometry(placeFor(window, frame.isNull() ? usualFrame : frame));
    fitLater(window, window.size(), 0);
}

bool ScreenFit::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::Show || event->spontaneous() || !watched->isWidgetType())
        return false;
    auto* widget = static_cast<QWidget*>(watched);
    if (widget->isWindow() && widget->parentWidget() && widget->parentWidget()->window() == &m_mainWindow
        && isDialogOrSmallWindow(*widget) && isShownForTheFirstTime(*widget))
        fit(*widget);
    return false;
}
