#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>

/// An unchanged program with the probe in it (startup_probe.cpp), which tells what is painted and runs
/// errands. Ends with this object.
class WatchedProgram final {
    Q_DISABLE_COPY_MOVE(WatchedProgram)

public:
    explicit WatchedProgram(const QString& path);
    ~WatchedProgram();

    void tell(const QByteArray& errand);
    /// The next line that starts with this word; earlier lines are dropped.
    QByteArray nextLine(const QByteArray& start);
    /// The number at the end of that line.
    qint64 next(const QByteArray& start);

    [[nodiscard]] qint64 processId() const { return m_program.processId(); }
    /// Sum of a field of the kernel's summary of the program's memory, in bytes.
    [[nodiscard]] double memory(const QByteArray& field) const;
    /// Memory that is the program's alone and backed by no file, in bytes.
    [[nodiscard]] double ownMemory() const { return memory("Anonymous") + memory("Swap"); }

    qint64 startedAt = 0; ///< ns of CLOCK_MONOTONIC

private:
    QProcess m_program;
};
