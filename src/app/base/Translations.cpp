#include "app/base/Translations.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QLibraryInfo>

using namespace Qt::StringLiterals;

namespace {

/// What Qt says itself: standard buttons and dialogs, and the reasons of failed connections.
constexpr QLatin1StringView qtCatalogues[] = {"qtbase"_L1, "qtwebsockets"_L1, "qtmultimedia"_L1};

QString catalogue(QLatin1StringView program, const QString& language)
{
    return program + u'_' + language;
}

QString ownCatalogue(const QString& language)
{
    return catalogue("tavoran-terminal"_L1, language);
}

bool isSourceLanguage(QStringView language)
{
    return language == "en"_L1 || language == "C"_L1 || language == "POSIX"_L1;
}

} // namespace

QString Translations::usualFolder()
{
    return QCoreApplication::applicationDirPath() + u"/../share/tavoran-terminal/translations"_s;
}

QString Translations::languageFor(const QStringList& languages, const QString& folder)
{
    for (const QString& wanted : languages) {
        QStringList parts = wanted.split(u'-');
        if (isSourceLanguage(parts.constFirst()))
            return {};
        for (; !parts.isEmpty(); parts.removeLast()) {
            const QString language = parts.join(u'_');
            if (QFileInfo::exists(u"%1/%2.qm"_s.arg(folder, ownCatalogue(language))))
                return language;
        }
    }
    return {};
}

Translations::Translations(const QStringList& languages, const QString& folder)
{
    const QString language = languageFor(languages, folder);
    if (language.isEmpty())
        return;
    for (const QLatin1StringView qtCatalogue : qtCatalogues)
        install(catalogue(qtCatalogue, language), QLibraryInfo::path(QLibraryInfo::TranslationsPath));
    install(ownCatalogue(language), folder);
}

void Translations::install(const QString& name, const QString& folder)
{
    auto translator = std::make_unique<QTranslator>();
    if (translator->load(name, folder) && QCoreApplication::installTranslator(translator.get()))
        m_translators.push_back(std::move(translator));
}
