#include "experts/WindowSums.h"

#include "support/TestMain.h"

#include <random>

/// Remembered sums equal computed ones to the last bit, whatever happens to the series.
class tst_WindowSums final : public QObject {
    Q_OBJECT

    std::vector<Candle> m_candles;
    std::mt19937 m_random{7};

    void append(std::size_t count)
    {
        std::uniform_real_distribution<double> price(1.0, 2.0);
        for (std::size_t i = 0; i < count; ++i)
            m_candles.push_back({0, 1, 1, 1, price(m_random), 1});
    }

    /// Compares every window of some lengths with a fresh computation.
    void compare(WindowSums& sums, quint64 revision)
    {
        for (const std::size_t length : {1U, 2U, 14U, 50U}) {
            for (std::size_t last = m_candles.size() - 3; last < m_candles.size(); ++last) {
                const std::size_t first = last + 1 - length;
                WindowSums plain;
                QCOMPARE(sums.closes(m_candles, revision, first, last),
                    plain.closes(m_candles, std::nullopt, first, last));
                const auto remembered = sums.moves(m_candles, revision, first, last);
                const auto computed = plain.moves(m_candles, std::nullopt, first, last);
                QCOMPARE(remembered.gains, computed.gains);
                QCOMPARE(remembered.losses, computed.losses);
            }
        }
    }

private Q_SLOTS:
    void init()
    {
        m_candles.clear();
        append(100);
    }

    void closesAreSummedFromFirstToLast()
    {
        m_candles = {{0, 0, 0, 0, 1.0, 0}, {0, 0, 0, 0, 2.0, 0}, {0, 0, 0, 0, 4.0, 0}};
        WindowSums sums;
        QCOMPARE(sums.closes(m_candles, std::nullopt, 0, 2), 7.0);
        QCOMPARE(sums.closes(m_candles, 1, 1, 2), 6.0);
        QCOMPARE(sums.closes(m_candles, 1, 0, 0), 1.0);
    }

    void movesUpAndDownAreBothPositive()
    {
        m_candles = {{0, 0, 0, 0, 4.0, 0}, {0, 0, 0, 0, 1.0, 0}, {0, 0, 0, 0, 3.0, 0}};
        WindowSums sums;
        const auto moves = sums.moves(m_candles, 1, 1, 2);
        QCOMPARE(moves.gains, 2.0);
        QCOMPARE(moves.losses, 3.0);
    }

    void ticksIntoTheNewestBarAreFollowed()
    {
        WindowSums sums;
        for (int tick = 0; tick < 50; ++tick) {
            m_candles.back().close = 1.0 + tick * 0.0137;
            compare(sums, 1);
        }
    }

    void aNewBarMakesTheFormerNewestBarCount()
    {
        WindowSums sums;
        for (quint64 revision = 1; revision < 30; ++revision) {
            compare(sums, revision);
            m_candles.back().close += 0.001;
            compare(sums, revision);
            append(1);
        }
    }

    void anotherHistoryOfTheSameSizeIsNoticed()
    {
        WindowSums sums;
        compare(sums, 1);
        m_candles.clear();
        append(100);
        compare(sums, 2);
    }

    void moreWindowsThanAreRememberedStayRight()
    {
        WindowSums sums;
        for (int round = 0; round < 2; ++round) {
            for (std::size_t first = 1; first < 90; ++first) {
                WindowSums plain;
                QCOMPARE(
                    sums.closes(m_candles, 1, first, 95), plain.closes(m_candles, std::nullopt, first, 95));
            }
        }
    }

    void rememberedBarsAreNotReadAgain()
    {
        WindowSums sums;
        const double before = sums.closes(m_candles, 1, 10, 90);
        m_candles[50].close = 1000.0;
        QCOMPARE(sums.closes(m_candles, 1, 10, 90), before);
        QVERIFY(sums.closes(m_candles, 2, 10, 90) > before + 900.0);
    }
};

TAVORAN_TEST(tst_WindowSums)
#include "tst_WindowSums.moc"
