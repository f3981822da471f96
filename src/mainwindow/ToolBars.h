#pragma once

class QMainWindow;
class TerminalActions;

/// Adds the terminal's three toolbars to the window, in their default places.
void addToolBars(QMainWindow& window, const TerminalActions& actions);

/// Puts the window's toolbars back to their default places, on show. Nothing in a window that has none.
void placeToolBars(QMainWindow& window);
