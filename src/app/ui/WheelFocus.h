#pragma once

class QWidget;

/// Lets a spin box or combo box take the wheel only while it has the focus, which the wheel itself never
/// gives it: a turn on the way elsewhere must not change a volume or an account. Otherwise the wheel goes to
/// what lies beneath.
void takeWheelOnlyFocused(QWidget& box);
