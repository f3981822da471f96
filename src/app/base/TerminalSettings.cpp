#include "app/base/TerminalSettings.h"

#include "app/base/Log.h"
#include "app/base/Secrets.h"

#include <QCoreApplication>
#include <QCryptographicHash>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr auto defaultServer = "https://terminal.tavoran.example:5001"_L1;

namespace key {
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
constexpr auto panes = "window/panes"_L1;
constexpr auto alerts = "alerts"_L1;
} // namespace key

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
    , m_token(text(key::token))
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
    return text(key::serverUrl, defaultServer);
}

void TerminalSettings::setServerUrl(const QString& url)
{
    m_store.setValue(key::serverUrl, url);
    sync();
}

void TerminalSettings::setToken(const QString& token)
{
    keepSecret(token);
    m_token = token;
    if (remember())
        m_store.setValue(key::token, token);
    else
        m_store.remove(key::token);
    sync();
}

QString TerminalSettings::email() const
{
    return text(key::email);
}

void TerminalSettings::setEmail(const QString& email)
{
    m_store.setValue(key::email, email);
    sync();
}

bool TerminalSettings::remember() const
{
    return flag(key::remember, true);
}

void TerminalSettings::setRemember(bool remember)
{
    m_store.setValue(key::remember, remember);
    sync();
}

bool TerminalSettings::darkTheme() const
{
    return text(key::theme) == dark;
}

void TerminalSettings::setDarkTheme(bool isDark)
{
    m_store.setValue(key::theme, QString(isDark ? dark : light));
    sync();
}

QByteArray TerminalSettings::windowGeometry() const
{
    return bytes(key::geometry);
}

QByteArray TerminalSettings::windowState() const
{
    const QByteArray state = bytes(key::state);
    return !state.isEmpty() && text(key::stateDigest) == digestOf(state) ? state : QByteArray();
}

void TerminalSettings::setWindowLayout(const QByteArray& geometry, const QByteArray& state)
{
    m_store.setValue(key::geometry, geometry);
    m_store.setValue(key::state, state);
    m_store.setValue(key::stateDigest, digestOf(state));
}

QString TerminalSettings::chartsLayout() const
{
    return text(key::charts);
}

void TerminalSettings::setChartsLayout(const QString& json)
{
    m_store.setValue(key::charts, json);
}

QString TerminalSettings::panesLayout() const
{
    return text(key::panes);
}

void TerminalSettings::setPanesLayout(const QString& json)
{
    m_store.setValue(key::panes, json);
}

QString TerminalSettings::alerts() const
{
    return text(key::alerts);
}

void TerminalSettings::setAlerts(const QString& json)
{
    m_store.setValue(key::alerts, json);
    sync();
}

bool TerminalSettings::restoringLayout() const
{
    return flag(key::restoring, false);
}

void TerminalSettings::setRestoringLayout(bool restoring)
{
    m_store.setValue(key::restoring, restoring);
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
