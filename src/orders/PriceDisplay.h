#pragma once

#include "app/ui/ReadAloud.h"

#include <QLabel>

/// Bid and ask of the order window's symbol in large type.
class PriceDisplay final : public QLabel, public ReadAloud {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PriceDisplay)

public:
    explicit PriceDisplay(QWidget* parent = nullptr);
    ~PriceDisplay() override = default;

    /// Whose prices they are, for those who do not see the field above.
    void setSymbol(const QString& symbol);
    /// Both as they are shown; empty ones show that there is no price yet.
    void showPrices(const QString& bid, const QString& ask);
    /// Whether the prices may not hold any more: then they are pale and slanted.
    void setStale(bool stale);

    [[nodiscard]] QString reading() const override;

private:
    QString m_bid;
    QString m_ask;
    bool m_stale = false;
};
