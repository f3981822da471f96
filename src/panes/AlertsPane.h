#pragma once

#include "app/base/Balloon.h"
#include "app/ui/SoundPlayer.h"
#include "panes/AlertBook.h"

#include <QStringList>
#include <QWidget>

#include <functional>
#include <utility>

class PriceSnapshot;
class QTreeWidget;
class TerminalSettings;

/// The trader's price alerts: a list kept in the settings, checked against every price snapshot. It asks for
/// sounds and balloons by signals, and knows neither a tray nor an audio device.
class AlertsPane final : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(AlertsPane)

public:
    /// Starts with the alerts in the settings, and keeps them there; they must outlive the pane.
    explicit AlertsPane(TerminalSettings& settings, QWidget* parent = nullptr);
    ~AlertsPane() override = default;

    /// The names that a new alert can be made for.
    void setSymbols(const QStringList& symbols) { m_symbols = symbols; }
    [[nodiscard]] const QStringList& symbols() const { return m_symbols; }

    /// What a new alert begins with, asked when it is made.
    struct Market {
        std::function<QString()> symbolInFront;             ///< what the trader looks at
        std::function<double(const QString& symbol)> bidOf; ///< 0 where none is known
    };
    void setMarket(Market market) { m_market = std::move(market); }

    /// The same as onPrices() with a price map that has been read already.
    void checkQuotes(const PriceSnapshot& prices);

public Q_SLOTS:
    /// A price map keyed by symbol.
    void onPrices(const QJsonObject& prices);

Q_SIGNALS:
    void soundWanted(SoundKind kind);
    void balloonWanted(const Balloon& balloon);

private:
    void ask();
    void addAlert(const PriceAlert& alert);
    void deleteCurrent();
    void deleteSelected();
    /// In ascending order; selects what comes after them.
    void deleteRows(const QList<int>& rows);
    void saveAndFill();
    void fill();

    TerminalSettings& m_settings;
    QStringList m_symbols;
    Market m_market;
    AlertBook m_book;
    QTreeWidget* m_list;
};
