#pragma once

class QMenuBar;
class TerminalActions;

/// Fills the bar with the terminal's seven menus.
void fillMenuBar(QMenuBar& bar, const TerminalActions& actions);
