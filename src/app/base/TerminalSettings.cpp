#include "app/base/TerminalSettings.h"

#include "app/base/Log.h"
#include "app/base/Secrets.h"

#include <QCoreApplication>
#include <QCryptographicHash>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr auto defaultServer = "https://terminal.tavoran.example:5001"_L1;

namespace Key {
constexpr auto serverUrl = "auth/serverUrl"_L1;
constexpr auto token = "auth/token"_L1;
constexpr auto email = "auth/email"_L1;
constexpr auto remember = "auth/remember"_L1;
constexpr auto theme = "ui/theme"_L1;
constexpr auto geometry = "window/geometry"_L1;
constexpr auto state = "window/state"_L1;
constexpr auto stateDigest = "window/stateDigest"_L1;
constexpr auto restoring = "window/restoring"_L1;
constexpr auto charts = "charts/layout"_L1;
constexpr auto alerts = "alerts"_L1;
} // namespace Key

constexpr auto dark = "dark"_L1;
constexpr auto light = "light"_L1;

QString digestOf(const QByteArray& state)
{
    return QString::fromLatin1(QCryptographicHash::hash(state, QCryptographicHash::Sha256).toHex());
}

} // namespace

TerminalSettings& TerminalSettings::instance()
{
    static TerminalSettings settings(SettingsStore::userFilePath());
    return settings;
}

TerminalSettings::TerminalSettings(const QString& filePath)
    : m_store(filePath)
    , m_token(text(Key::token))
{
    keepSecret(m_token);
}

QString TerminalSettings::serverUrl() const
{
    QString url = rawServerUrl().trimmed();
    while (url.endsWith(u'/'))
        url.chop(1);
    if (!url.startsWith("http://"_L1) && !url.startsWith("https://"_L1))
        url.prepend("https://"_L1);
    return url;
}

QString TerminalSettings::rawServerUrl() const
{
    return text(Key::serverUrl, defaultServer);
}

void TerminalSettings::setServerUrl(const QString& url)
{
    m_store.setValue(Key::serverUrl, url);
    sync();
}

void TerminalSettings::setToken(const QString& token)
{
    keepSecret(token);
    m_token = token;
    if (remember())
        m_store.setValue(Key::token, token);
    else
        m_store.remove(Key::token);
    sync();
}

QString TerminalSettings::email() const
{
    return text(Key::email);
}

void TerminalSettings::setEmail(const QString& email)
{
    m_store.setValue(Key::email, email);
    sync();
}

bool TerminalSettings::remember() const
{
    return flag(Key::remember, true);
}

void TerminalSettings::setRemember(bool remember)
{
    m_store.setValue(Key::remember, remember);
    sync();
}

bool TerminalSettings::darkTheme() const
{
    return text(Key::theme) == dark;
}

void TerminalSettings::setDarkTheme(bool isDark)
{
    m_store.setValue(Key::theme, QString(isDark ? dark : light));
    sync();
}

QByteArray TerminalSettings::windowGeometry() const
{
    return bytes(Key::geometry);
}

QByteArray TerminalSettings::windowState() const
{
    const QByteArray state = bytes(Key::state);
    return !state.isEmpty() && text(Key::stateDigest) == digestOf(state) ? state : QByteArray();
}

void TerminalSettings::setWindowLayout(const QByteArray& geometry, const QByteArray& state)
{
    m_store.setValue(Key::geometry, geometry);
    m_store.setValue(Key::state, state);
    m_store.setValue(Key::stateDigest, digestOf(state));
}

QString TerminalSettings::chartsLayout() const
{
    return text(Key::charts);
}

void TerminalSettings::setChartsLayout(const QString& json)
{
    m_store.setValue(Key::charts, json);
}

QString TerminalSettings::alerts() const
{
    return text(Key::alerts);
}

void TerminalSettings::setAlerts(const QString& json)
{
    m_store.setValue(Key::alerts, json);
    sync();
}

bool TerminalSettings::restoringLayout() const
{
    return flag(Key::restoring, false);
}

void TerminalSettings::setRestoringLayout(bool restoring)
{
    m_store.setValue(Key::restoring, restoring);
    sync();
}

bool TerminalSettings::sync()
{
    const bool saved = m_store.sync();
    const QStringList notices = m_store.takeNotices();
    for (const QString& notice : notices)
        tell(notice);
    if (!saved) {
        appLog(u"settings could not be saved to %1"_s.arg(m_store.filePath()));
        if (!m_failureTold)
            tell(QCoreApplication::translate(
                "TerminalSettings", "The settings could not be saved to %1. What was saved before is kept.")
                     .arg(m_store.filePath()));
    }
    m_failureTold = !saved;
    return saved;
}

void TerminalSettings::setTeller(const Teller& teller)
{
    m_teller = teller;
}

void TerminalSettings::tell(const QString& notice)
{
    if (m_teller)
        m_teller(notice);
    else
        m_untold.append(notice);
}

QStringList TerminalSettings::takeNotices()
{
    return m_store.takeNotices() + std::exchange(m_untold, {});
}

QString TerminalSettings::text(QLatin1StringView key, const QString& fallback) const
{
    const QVariant value = m_store.value(key);
    return value.typeId() == QMetaType::QString ? value.toString() : fallback;
}

QByteArray TerminalSettings::bytes(QLatin1StringView key) const
{
    const QVariant value = m_store.value(key);
    return value.typeId() == QMetaType::QByteArray ? value.toByteArray() : QByteArray();
}

bool TerminalSettings::flag(QLatin1StringView key, bool fallback) const
{
    const QVariant value = m_store.value(key);
    if (value.typeId() == QMetaType::Bool)
        return value.toBool();
    // The file holds texts, and any text but "false" and "0" would count as true.
    const QString word = value.toString().toLower();
    if (word == "true"_L1 || word == "1"_L1)
        return true;
    if (word == "false"_L1 || word == "0"_L1)
        return false;
    return fallback;
}
