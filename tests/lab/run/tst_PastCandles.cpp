#include "lab/run/PastCandles.h"
#include "support/TestMain.h"

/// Candles that a chart keeps no longer.
class tst_PastCandles final : public QObject {
    Q_OBJECT

    static constexpr std::size_t block = 10;

    CandleSeries m_series;
    std::vector<Candle> m_all; ///< what a series that keeps everything has
    std::vector<practice::TimeMs> m_asked;

    lab::PastCandles::Maker maker()
    {
        return [this](practice::TimeMs time, std::size_t count) {
            m_asked.push_back(time);
            const auto first = static_cast<std::ptrdiff_t>(time / practice::minuteMs);
            return std::vector<Candle>(
                m_all.begin() + first, m_all.begin() + first + static_cast<std::ptrdiff_t>(count));
        };
    }

    void fold(lab::PastCandles& past, std::size_t count)
    {
        CandleSeries whole;
        for (CandleSeries* series : {&m_series, &whole})
            series->setTimeframeMs(practice::minuteMs);
        for (std::size_t number = 0; number < count; ++number) {
            const double price = 1.0 + static_cast<double>(number);
            for (CandleSeries* series : {&m_series, &whole})
                series->foldTick(price, price, static_cast<qint64>(number) * practice::minuteMs);
            past.relieve(m_series);
        }
        m_all = whole.candles();
    }

private Q_SLOTS:
    void init()
    {
        m_series = {};
        m_all.clear();
        m_asked.clear();
    }

    void aSeriesKeepsItsNewestCandles()
    {
        lab::PastCandles past(maker(), block);
        fold(past, 3 * block - 1);
        QCOMPARE(past.count(), std::size_t{0});
        fold(past, 105);
        QCOMPARE(past.count(), std::size_t{80});
        QCOMPARE(m_series.count(), qsizetype{25});
        QCOMPARE(m_series.candles().front(), m_all[80]);
        QCOMPARE(m_series.candles().back(), m_all.back());
    }

    void olderOnesAreMadeAgainOnceWhenTheyAreAskedFor()
    {
        lab::PastCandles past(maker(), block);
        fold(past, 105);
        QVERIFY(m_asked.empty());
        QCOMPARE(past.at(37), m_all[37]);
        QCOMPARE(past.at(30), m_all[30]);
        QCOMPARE(m_asked, std::vector<practice::TimeMs>{30 * practice::minuteMs});
        const ExpertCandles all(m_series.candles(), &past);
        QCOMPARE(all.size(), std::size_t{105});
        for (std::size_t number = 0; number < m_all.size(); ++number)
            QCOMPARE(all.price(number, &Candle::close), m_all[number].close);
        QCOMPARE(m_asked.size(), std::size_t{8});
    }
};

TAVORAN_TEST(tst_PastCandles)
#include "tst_PastCandles.moc"
