#pragma once

#include <QString>
#include <QStringList>

/// The folder of Expert Advisor scripts ("*.js").
class ExpertsFolder final {
public:
    explicit ExpertsFolder(QString path = defaultPath());

    /// "/Experts" below the application's writable data location.
    [[nodiscard]] static QString defaultPath();
    /// The scripts that a folder without any script starts with.
    [[nodiscard]] static QStringList bundledExamples();

    [[nodiscard]] const QString& path() const { return m_path; }

    /// Creates the folder; copies the examples in when it holds no script. Existing files are never
    /// overwritten, a copy that fails is skipped.
    void prepare(const QStringList& examples = bundledExamples()) const;

    /// Full paths of all scripts, by name.
    [[nodiscard]] QStringList scripts() const;

private:
    QString m_path;
};
