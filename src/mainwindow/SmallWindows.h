#pragma once

#include <QByteArray>
#include <QObject>
#include <QPointer>

class AboutBox;
class AccountBook;
class DepthOfMarket;
class MarketWatchWidget;
class PopupPrices;
class SymbolSpecification;

/// The small windows beside the main window: opened when asked for, kept up to date while they are open.
class SmallWindows final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(SmallWindows)

public:
    /// Book and Market Watch must outlive it; `window` becomes the parent of all.
    SmallWindows(const AccountBook& book, const MarketWatchWidget& marketWatch, QWidget& window);
    ~SmallWindows() override;

    /// Where the popup prices are, or will open: what QWidget::saveGeometry() says, empty for the usual
    /// place.
    [[nodiscard]] QByteArray popupPlace() const;
    /// For popup prices that have not been opened yet. A place that no screen shows is brought onto one;
    /// bytes that cannot be read count as none.
    void setPopupPlace(const QByteArray& geometry) { m_popupPlace = geometry; }

public Q_SLOTS:
    /// The book has new quotes.
    void onPrices();
    /// The book has a new symbol list.
    void onSymbols();

    void togglePopupPrices();
    /// Closes the open one, else opens one for the symbol; nothing for an empty name.
    void toggleDepthOfMarket(const QString& symbol);
    /// Opens the specification of the symbol, or turns the open one to it.
    void showSpecification(const QString& symbol);
    void showAbout();

private:
    void quoteDepth();
    void quoteSpecification();

    const AccountBook& m_book;
    const MarketWatchWidget& m_marketWatch;
    QWidget& m_window;
    QPointer<PopupPrices> m_popupPrices; ///< kept when closed
    QByteArray m_popupPlace;             ///< until there are popup prices
    QPointer<DepthOfMarket> m_depth;
    QPointer<SymbolSpecification> m_specification;
    QPointer<AboutBox> m_about;
};
