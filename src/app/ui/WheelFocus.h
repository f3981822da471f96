#pragma once

class QWidget;

/// Lets a spin box or combo box take the wheel only while it has the focus, and keeps the wheel from giving
/// it the focus: a turn meant for what lies beneath must not change a volume or an account.
void takeWheelOnlyFocused(QWidget& box);
