#pragma once

#include "net/records/Quote.h"

#include <QDialog>
#include <QJsonObject>

class QLabel;
class QTreeWidget;

/// The contract specification of one symbol, with its live prices below.
class SymbolSpecification final : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(SymbolSpecification)

public:
    /// Empty until setSymbol(). Deletes itself when it is closed.
    explicit SymbolSpecification(QWidget* parent = nullptr);
    ~SymbolSpecification() override = default;

    [[nodiscard]] QString symbol() const { return m_symbol; }

    /// Shows the server's record of the symbol; an empty record means that the server does not list it.
    void setSymbol(const QString& symbol, const QJsonObject& record);
    void setQuote(const Quote& quote);
    /// Whether the prices may not hold any more.
    void setStale(bool stale);

private:
    void fillQuote();

    QString m_symbol;
    QJsonObject m_record;
    Quote m_quote;
    QTreeWidget* m_rows;
    QLabel* m_unlisted;
};
