#include "mainwindow/SymbolSpecification.h"

#include "app/base/NumberFormat.h"
#include "app/base/ServerText.h"
#include "app/ui/LetterSize.h"
#include "app/ui/PlainText.h"
#include "net/records/SymbolRecord.h"
#include "panes/PriceItem.h"
#include "panes/SymbolFacts.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize specificationSize(340, 400);
constexpr int propertyWidth = 150;
constexpr int liveRows = 3; ///< the last ones

} // namespace

SymbolSpecification::SymbolSpecification(QWidget* parent)
    : QDialog(parent, Qt::Tool)
    , m_rows(new QTreeWidget)
    , m_unlisted(plainLabel(tr("The server does not list this symbol.")))
{
    setAttribute(Qt::WA_DeleteOnClose);
    resize(withLetters(specificationSize, *this));

    m_rows->setObjectName(u"specificationRows"_s);
    m_rows->setHeaderLabels({tr("Property"), tr("Value")});
    m_rows->setRootIsDecorated(false);
    m_rows->setUniformRowHeights(true);
    setColumnWidth(*m_rows, 0, propertyWidth);
    m_unlisted->setObjectName(u"specificationUnlisted"_s);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_unlisted);
    layout->addWidget(m_rows);
    layout->addWidget(buttons);
}

void SymbolSpecification::setSymbol(const QString& symbol, const QJsonObject& record)
{
    if (symbol == m_symbol && record == m_record && m_rows->topLevelItemCount() > 0)
        return;
    m_symbol = symbol;
    m_record = record;
    m_quote = {};
    setWindowTitle(tr("Specification: %1").arg(shownName(symbol)));
    m_rows->setAccessibleName(windowTitle());
    m_unlisted->setVisible(record.isEmpty());
    m_rows->clear();
    const QList<SymbolFact> facts = symbolFacts(symbol, record);
    for (const SymbolFact& fact : facts)
        new QTreeWidgetItem(m_rows, {fact.property, fact.value});
    for (const QString& property : {tr("Bid"), tr("Ask"), tr("Spread (points)")})
        m_rows->addTopLevelItem(new PriceItem({property, QString()}, 1));
    const int width = m_rows->columnWidth(0); // which a trader may have set
    m_rows->resizeColumnToContents(0);
    m_rows->setColumnWidth(0, std::max(width, m_rows->columnWidth(0)));
    fillQuote();
}

void SymbolSpecification::setQuote(const Quote& quote)
{
    if (quote == m_quote)
        return;
    m_quote = quote;
    fillQuote();
}

void SymbolSpecification::setStale(bool stale)
{
    const int rows = m_rows->topLevelItemCount();
    for (int row = std::max(rows - liveRows, 0); row < rows; ++row)
        static_cast<PriceItem*>(m_rows->topLevelItem(row))->setStale(stale);
}

void SymbolSpecification::fillQuote()
{
    const int digits = clampDigits(symbol::digits(m_record));
    const int firstLive = m_rows->topLevelItemCount() - liveRows;
    if (firstLive < 0)
        return;
    const auto show = [this, firstLive](int row, bool known, const QString& text) {
        m_rows->topLevelItem(firstLive + row)->setText(1, known ? text : QString());
    };
    show(0, m_quote.bid > 0.0, formatPrice(m_quote.bid, digits));
    show(1, m_quote.ask > 0.0, formatPrice(m_quote.ask, digits));
    const double spread = (m_quote.ask - m_quote.bid) * std::pow(10.0, digits);
    show(2, m_quote.isComplete(), QString::number(spread, 'f', 0));
}
