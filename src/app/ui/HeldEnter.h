#pragma once

class QWidget;

/// Makes an Enter that is held down press none of the buttons that the window has by now: the one press that
/// chose a menu entry must not confirm what the entry asks, nor send again what was refused.
void refuseHeldEnter(QWidget& window);
