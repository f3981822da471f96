#pragma once

#include <QMetaType>
#include <QString>

/// A notice at the system tray. Title and text are plain text.
struct Balloon final {
    enum class Kind { Information, Warning, Critical };

    QString title;
    QString text;
    Kind kind = Kind::Information;
    int milliseconds = 0;

    bool operator==(const Balloon&) const = default;
};

Q_DECLARE_METATYPE(Balloon)
