#pragma once

#include <QKeyEvent>

/// Whether this is Enter, of the letters or of the digits, with whatever else is held down.
[[nodiscard]] inline bool isEnter(const QKeyEvent& key)
{
    return key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
}

/// Whether this is Enter and nothing else is held down.
[[nodiscard]] inline bool isPlainEnter(const QKeyEvent& key)
{
    return isEnter(key) && !(key.modifiers() & ~Qt::KeypadModifier);
}
