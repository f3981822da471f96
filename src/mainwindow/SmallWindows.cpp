#include "mainwindow/SmallWindows.h"

#include "app/base/PriceRule.h"
#include "mainwindow/AboutBox.h"
#include "mainwindow/DepthOfMarket.h"
#include "mainwindow/PopupPrices.h"
#include "mainwindow/SavedGeometry.h"
#include "mainwindow/ScreenFit.h"
#include "mainwindow/SymbolSpecification.h"
#include "mainwindow/account/AccountBook.h"
#include "panes/MarketWatchWidget.h"

using namespace Qt::StringLiterals;

namespace {

/// A closed window deletes itself a little later; until then it is as good as gone.
bool isOpen(const QWidget* window)
{
    return window && window->isVisible();
}

void bringUp(QWidget& window)
{
    window.show();
    window.raise();
    window.activateWindow();
}

} // namespace

SmallWindows::SmallWindows(const AccountBook& book, const MarketWatchWidget& marketWatch, QWidget& window)
    : QObject(&window)
    , m_book(book)
    , m_marketWatch(marketWatch)
    , m_window(window)
{
}

SmallWindows::~SmallWindows() = default;

void SmallWindows::togglePopupPrices()
{
    if (!m_popupPrices) {
        m_popupPrices = new PopupPrices(m_marketWatch.quotes(), &m_window);
        m_popupPrices->restoreGeometry(
            geometryOnScreen(m_popupPlace, availableScreens(), m_popupPrices->geometry()));
    }
    m_popupPrices->toggle();
}

QByteArray SmallWindows::popupPlace() const
{
    return m_popupPrices ? m_popupPrices->saveGeometry() : m_popupPlace;
}

void SmallWindows::toggleDepthOfMarket(const QString& symbol)
{
    if (isOpen(m_depth)) {
        m_depth->close();
        return;
    }
    if (symbol.isEmpty())
        return;
    m_depth = new DepthOfMarket(symbol, m_book.digits().value(symbol, usualPriceDigits), &m_window);
    quoteDepth();
    bringUp(*m_depth);
}

void SmallWindows::showSpecification(const QString& symbol)
{
    if (symbol.isEmpty())
        return;
    if (!isOpen(m_specification))
        m_specification = new SymbolSpecification(&m_window);
    m_specification->setSymbol(symbol, m_book.symbolsByName().value(symbol));
    quoteSpecification();
    bringUp(*m_specification);
}

void SmallWindows::showAbout()
{
    if (!isOpen(m_about))
        m_about = new AboutBox(&m_window);
    bringUp(*m_about);
}

void SmallWindows::onPrices()
{
    if (m_popupPrices)
        m_popupPrices->refresh();
    quoteDepth();
    quoteSpecification();
}

void SmallWindows::onSymbols()
{
    if (m_depth)
        m_depth->setDigits(m_book.digits().value(m_depth->symbol(), usualPriceDigits));
    if (m_specification) {
        const QString symbol = m_specification->symbol();
        m_specification->setSymbol(symbol, m_book.symbolsByName().value(symbol));
    }
}

void SmallWindows::quoteDepth()
{
    if (!m_depth)
        return;
    m_depth->setQuote(m_book.quote(m_depth->symbol()).value_or(Quote()));
    m_depth->setStale(m_book.isQuoteOld(m_depth->symbol()));
}

void SmallWindows::quoteSpecification()
{
    if (!m_specification)
        return;
    m_specification->setQuote(m_book.quote(m_specification->symbol()).value_or(Quote()));
    m_specification->setStale(m_book.isQuoteOld(m_specification->symbol()));
}
