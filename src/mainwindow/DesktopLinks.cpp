#include "mainwindow/DesktopLinks.h"

#include "mainwindow/ExpertsFolder.h"
#include "mainwindow/TerminalActions.h"

#include <QAction>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QShortcut>
#include <QStandardPaths>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace {

bool copyGuide(const QString& path)
{
    QFile guide(u":/ea_guide.html"_s);
    if (!guide.open(QIODevice::ReadOnly))
        return false;
    const QByteArray page = guide.readAll();
    QDir().mkpath(QFileInfo(path).absolutePath());
    QSaveFile copy(path);
    return copy.open(QIODevice::WriteOnly) && copy.write(page) == page.size() && copy.flush()
        && copy.commit();
}

} // namespace

void DesktopLinks::serve(const TerminalActions& actions, QWidget& window)
{
    connect(actions.openExpertsFolder, &QAction::triggered, this, &DesktopLinks::openExpertsFolder);
    connect(actions.openGuide, &QAction::triggered, this, &DesktopLinks::openGuide);
    // The status bar promises help on this key.
    const auto* help = new QShortcut(Qt::Key_F1, &window);
    connect(help, &QShortcut::activated, this, &DesktopLinks::openGuide);
}

QString DesktopLinks::guidePath()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + "/Tavoran-EA-Guide.html"_L1;
}

void DesktopLinks::openExpertsFolder()
{
    const QString path = ExpertsFolder::defaultPath();
    QDir().mkpath(path);
    open(path);
}

void DesktopLinks::openGuide()
{
    const QString path = guidePath();
    if (copyGuide(path))
        open(path);
    else
        Q_EMIT logMessage(tr("Terminal"), tr("The guide could not be written to %1").arg(path));
}

void DesktopLinks::open(const QString& path)
{
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path)))
        Q_EMIT logMessage(tr("Terminal"), tr("The desktop could not open %1").arg(path));
}
