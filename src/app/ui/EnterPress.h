#pragma once

class QAbstractButton;

/// Lets Enter press a button that has the focus, as the space bar does; an Enter that is held down presses it
/// once. Outside of dialogs Qt leaves that to the space bar alone.
void pressWithEnter(QAbstractButton& button);
