#include "app/ui/MenuLetters.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMenu>

namespace {

/// The letter or digit that a key writes; nothing for others and for commands.
QString letterOf(const QKeyEvent& press)
{
    const bool writes = press.text().size() == 1 && press.text().at(0).isLetterOrNumber();
    return writes && !(press.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier)) ? press.text()
                                                                                      : QString();
}

bool isUnderlined(const QMenu& menu, const QString& letter)
{
    const QKeySequence mnemonic = QKeySequence::mnemonic(u'&' + letter);
    for (const QAction* entry : menu.actions()) {
        if (QKeySequence::mnemonic(entry->text()) == mnemonic)
            return true;
    }
    return false;
}

/// The first such entry after the active one, once around.
QAction* entryWith(const QMenu& menu, const QString& letter)
{
    const QList<QAction*> entries = menu.actions();
    const qsizetype active = entries.indexOf(menu.activeAction()); // -1 without one
    for (qsizetype step = 1; step <= entries.size(); ++step) {
        QAction* entry = entries.at((active + step) % entries.size());
        if (entry->isVisible() && entry->isEnabled() && !entry->isSeparator()
            && entry->text().startsWith(letter, Qt::CaseInsensitive))
            return entry;
    }
    return nullptr;
}

} // namespace

MenuLetters::MenuLetters(QApplication& application)
{
    application.installEventFilter(this);
}

bool MenuLetters::eventFilter(QObject* watched, QEvent* event)
{
    auto* menu = event->type() == QEvent::KeyPress ? qobject_cast<QMenu*>(watched) : nullptr;
    if (!menu)
        return false;
    const QString letter = letterOf(*static_cast<QKeyEvent*>(event));
    QAction* entry = letter.isEmpty() || isUnderlined(*menu, letter) ? nullptr : entryWith(*menu, letter);
    if (!entry)
        return false;
    menu->setActiveAction(entry);
    return true;
}
