#include "mainwindow/DesktopLinks.h"

#include "app/base/ServerText.h"
#include "mainwindow/ExpertsFolder.h"
#include "mainwindow/TerminalActions.h"

#include <QAction>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMessageBox>
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

DesktopLinks::DesktopLinks(QWidget& window)
    : QObject(&window)
    , m_window(window)
{
}

void DesktopLinks::serve(const TerminalActions& actions)
{
    connect(actions.openExpertsFolder, &QAction::triggered, this, &DesktopLinks::openExpertsFolder);
    connect(actions.openGuide, &QAction::triggered, this, &DesktopLinks::openGuide);
    // The status bar promises help on this key.
    const auto* help = new QShortcut(Qt::Key_F1, &m_window);
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
        tellFailure(tr("The guide could not be written to %1").arg(path));
}

void DesktopLinks::open(const QString& path)
{
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path)))
        tellFailure(tr("The desktop could not open %1").arg(path));
}

// Without a lock on the window: a trader who missed the guide must still reach an open position.
void DesktopLinks::tellFailure(const QString& text)
{
    Q_EMIT logMessage(tr("Terminal"), text);
    if (!m_notice) {
        m_notice
            = new QMessageBox(QMessageBox::Warning, tr("Tavoran Terminal"), {}, QMessageBox::Ok, &m_window);
        m_notice->setAttribute(Qt::WA_DeleteOnClose);
        m_notice->setTextFormat(Qt::PlainText);
        m_notice->setModal(false);
    }
    m_notice->setText(shownSentence(text));
    m_notice->show();
    m_notice->raise();
    m_notice->activateWindow();
}
