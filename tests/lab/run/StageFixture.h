#pragma once

#include "lab/run/ScriptStage.h"
#include "practice/core/Types.h"

#include <QStringList>

#include <memory>

/// A script on a stage whose prices and account a test plays.
struct StageFixture final {
    double bid = 1.1;
    double ask = 1.1002;
    int positions = 0;
    std::vector<Candle> bars;
    std::uint64_t seed = 7;
    practice::TimeMs time = 1'700'000'000'000; ///< 2023-11-14T22:13:20Z
    QStringList done;                          ///< "order BUY 0.1 0 0", "refused SELL -1 0 0", "closeAll"
    std::unique_ptr<lab::ScriptStage> stage;

    void create()
    {
        ExpertHost::Callbacks calls;
        calls.bid = [this] { return bid; };
        calls.ask = [this] { return ask; };
        calls.balance = [] { return 1000.0; };
        calls.equity = [] { return 1010.0; };
        calls.positionsCount = [this] { return positions; };
        calls.order = [this](const QString& side, double lots, double sl, double tp) {
            done.append(line(QStringLiteral("order"), side, lots, sl, tp));
        };
        calls.closeAll = [this] { done.append(QStringLiteral("closeAll")); };
        stage = std::make_unique<lab::ScriptStage>(
            lab::ScriptStage::Settings{QStringLiteral("EURUSD"), 5, practice::minuteMs, seed, bars},
            std::move(calls), [this](const QString& side, double lots, double sl, double tp) {
                done.append(line(QStringLiteral("refused"), side, lots, sl, tp));
            });
        stage->setTime(time);
        stage->fold(bid, ask);
    }

    void load(const QString& script)
    {
        create();
        stage->load({QStringLiteral("Probe"), QStringLiteral("Probe.js"), script});
    }

    /// A price after so many milliseconds.
    void tickAfter(practice::TimeMs ms)
    {
        time += ms;
        stage->setTime(time);
        stage->fold(bid, ask);
        stage->tick();
    }

    /// What the journal holds.
    [[nodiscard]] QString said() const
    {
        QStringList texts;
        for (const lab::JournalLine& each : stage->journal().lines())
            texts.append(QString::fromStdString(each.text));
        return texts.join(QLatin1Char(';'));
    }

private:
    static QString line(const QString& what, const QString& side, double lots, double sl, double tp)
    {
        return QStringLiteral("%1 %2 %3 %4 %5")
            .arg(what, side, QString::number(lots), QString::number(sl), QString::number(tp));
    }
};
