#pragma once

#include <QSize>

class QTreeView;
class QWidget;

/// Sizes that go with ordinary letters, larger where these are. Never smaller.
[[nodiscard]] int withLetters(int pixels, const QWidget& widget);
[[nodiscard]] QSize withLetters(const QSize& size, const QWidget& widget);

/// How wide a list has to be for the title of every column that is on show when all are equally wide.
[[nodiscard]] int widthOfEqualColumns(QTreeView& list);

/// Makes a column so wide as goes with the letters, and as its title needs, which is longer in some
/// languages.
void setColumnWidth(QTreeView& list, int column, int pixels);
