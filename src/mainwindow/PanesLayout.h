#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>

#include <optional>

/// What a trader has arranged within the panes, as the settings remember it. Nothing of it is about order:
/// lists stay as the server sorts them.
struct PanesLayout final {
    struct Columns {
        int fontHeight = 0; ///< of the list's letters when these widths suited them; 0 when unknown
        QList<int> widths;  ///< in pixels, from the first column on; 0 says nothing about a column

        bool operator==(const Columns&) const = default;
    };

    QMap<QString, Columns> columns; ///< by the object name of the list
    QString tab;                    ///< object name of the Toolbox page in front
    QByteArray popup; ///< QWidget::saveGeometry() of the popup prices; empty before there was one

    bool operator==(const PanesLayout&) const = default;
};

/// The layout as JSON text.
[[nodiscard]] QString panesLayoutText(const PanesLayout& layout);

/// Reads such a text; what makes no sense in it is left out. Nothing for a text that is damaged or of a later
/// format.
[[nodiscard]] std::optional<PanesLayout> readPanesLayout(const QString& text);

/// Whether a later version of the terminal has written the text.
[[nodiscard]] bool isLaterPanesLayout(const QString& text);

/// How wide a column of `saved` pixels becomes where the letters have another height; within 24 to 2000
/// pixels, so that its neighbours and its own edge stay in reach. 0 for a column about which nothing is
/// known.
[[nodiscard]] int fittedColumnWidth(int saved, int savedFontHeight, int fontHeight);
