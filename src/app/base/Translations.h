#pragma once

#include <QStringList>
#include <QTranslator>

#include <memory>
#include <vector>

/// The visible texts in the trader's language, ours and Qt's, for as long as this lives. Numbers, and the
/// formats of times and prices, are the same in every language.
class Translations {
public:
    /// Where the texts lie beside the running program, in its build folder as where it is installed.
    [[nodiscard]] static QString usualFolder();

    /// The first of `languages` (such as "de-AT", the most wanted first) that `folder` has texts for, as its
    /// files name it ("de"). Empty where English, which the sources speak, comes first or none is there.
    [[nodiscard]] static QString languageFor(const QStringList& languages, const QString& folder);

    /// Installs what languageFor() finds; needs the application object. Files that are damaged or missing
    /// leave their texts English.
    explicit Translations(const QStringList& languages, const QString& folder = usualFolder());

private:
    void install(const QString& name, const QString& folder);

    std::vector<std::unique_ptr<QTranslator>> m_translators; // each takes itself off the application
};
