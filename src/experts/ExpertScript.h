#pragma once

#include <QObject>
#include <QString>

#include <optional>

/// A script file as read.
struct ExpertScript {
    QString name;     ///< what the expert is called: the file's name without its last extension
    QString fileName; ///< without folders; errors name it
    QString text;

    /// Larger files are refused: no script is that long.
    static constexpr qint64 largestFile = qint64{16} * 1024 * 1024;

    [[nodiscard]] static QString nameOf(const QString& path);
    /// Reads UTF-8, with or without a byte-order mark; bytes that are none become replacement characters.
    /// Absent, with the reason in `error`, when there is no such ordinary file, or it cannot be read.
    [[nodiscard]] static std::optional<ExpertScript> read(const QString& path, QString& error);
};

/// A text of the program's own that runs before a script, in its engine, and can change what the language
/// gives it.
struct ScriptForerun {
    QString text;
    QString fileName;
    QString hostName;        ///< global name of `host`, which the text had better delete
    QObject* host = nullptr; ///< the text may call its invokable methods; null: nothing runs
};
