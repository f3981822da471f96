#pragma once

class QWidget;

/// Keeps an Enter that is held down from pressing the buttons that the window has at this moment, or from
/// choosing an entry where the window is a menu: the keystroke that chose a menu entry must not confirm the
/// dialog that the entry opens, nor send again what was refused.
void refuseHeldEnter(QWidget& window);
