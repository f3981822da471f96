#pragma once

#include <QApplication>
#include <QTemporaryDir>

#include <optional>

/// The application of a program that measures the terminal: offscreen, in folders of its own, which the
/// terminal that it starts takes over, and under the terminal's names, since those tell where settings lie.
class MeasuringApplication final {
    Q_DISABLE_COPY_MOVE(MeasuringApplication)

public:
    /// With a screen as this file describes it.
    MeasuringApplication(int& argumentCount, char** arguments, const char* screenFile);
    ~MeasuringApplication();

private:
    QTemporaryDir m_folders;
    std::optional<QApplication> m_application;
};
