#pragma once

#include "app/base/SettingsStore.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>

/// The process-wide settings: what the terminal remembers between runs, with one typed accessor for
/// each value. A value of the wrong type, as a hand-edited file may hold, reads as its default.
class TerminalSettings final {
public:
    /// The one instance, created on first use.
    [[nodiscard]] static TerminalSettings& instance();

    explicit TerminalSettings(const QString& filePath);
    ~TerminalSettings() = default;
    Q_DISABLE_COPY_MOVE(TerminalSettings)

    /// Base address of the server: trimmed, without "/" at its end, with "https://" in front when it
    /// names neither http nor https.
    [[nodiscard]] QString serverUrl() const;
    /// The address as it is stored, or the default one.
    [[nodiscard]] QString rawServerUrl() const;
    /// Saved at once, as every value is but the layout.
    void setServerUrl(const QString& url);

    /// The bearer token of this session.
    [[nodiscard]] QString token() const { return m_token; }
    /// Keeps the token for this session and, only while remember() is true, for later ones.
    void setToken(const QString& token);

    [[nodiscard]] QString email() const;
    void setEmail(const QString& email);

    /// "Keep me signed in", true by default.
    [[nodiscard]] bool remember() const;
    void setRemember(bool remember);

    [[nodiscard]] bool darkTheme() const;
    void setDarkTheme(bool dark);

    [[nodiscard]] QByteArray windowGeometry() const;
    /// The stored dock state, or nothing when it is not byte for byte what was saved: Qt
    /// can crash on a damaged one.
    [[nodiscard]] QByteArray windowState() const;
    /// Stores both with the digest of the state; call sync() when all of the layout is stored.
    void setWindowLayout(const QByteArray& geometry, const QByteArray& state);

    /// The open charts as JSON text, empty when there are none.
    [[nodiscard]] QString chartsLayout() const;
    /// Call sync() when all of the layout is stored.
    void setChartsLayout(const QString& json);

    /// What is arranged within the panes as JSON text, empty when nothing is.
    [[nodiscard]] QString panesLayout() const;
    /// Call sync() when all of the layout is stored.
    void setPanesLayout(const QString& json);

    /// The price alerts as JSON text, empty when there are none.
    [[nodiscard]] QString alerts() const;
    void setAlerts(const QString& json);

    /// True at start when an earlier run ended while it restored its layout; then use the default
    /// layout. Set before restoring and clear after.
    [[nodiscard]] bool restoringLayout() const;
    void setRestoringLayout(bool restoring);

    /// Writes everything to disk now and renews the verified copy. False, with a log line, when the
    /// store could not be written as it should be. The first failure after a save that went well is told.
    bool sync();

    /// Is called with each notice for the trader as it comes up. An empty function ends that.
    using Teller = std::function<void(const QString& notice)>;
    void setTeller(const Teller& teller);
    /// The notices that came up while there was no teller, each text once.
    [[nodiscard]] QStringList takeNotices();

private:
    void tell(const QString& notice);
    [[nodiscard]] QString text(QLatin1StringView key, const QString& fallback = {}) const;
    [[nodiscard]] QByteArray bytes(QLatin1StringView key) const;
    [[nodiscard]] bool flag(QLatin1StringView key, bool fallback) const;

    SettingsStore m_store;
    QString m_token;
    Teller m_teller;
    QStringList m_untold;
    bool m_failureTold = false;
};
