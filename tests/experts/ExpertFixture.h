#pragma once

#include "experts/ExpertEngine.h"

#include <QPointer>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <memory>
#include <vector>

/// An expert on a chart that a test plays: bars, prices and figures to set, and everything that it was
/// asked for, in order.
struct ExpertFixture final {
    std::vector<Candle> candles;
    double bid = 1.1;
    double ask = 1.1002;
    double balance = 1000.0;
    double equity = 1010.0;
    int positions = 0;
    int digits = 5;
    quint64 revision = 0;
    QStringList done;     ///< "print a", "order BUY 0.1 0 0", …
    QStringList messages; ///< of the engine
    QString error;        ///< of the last load
    std::unique_ptr<ExpertEngine> engine;
    QPointer<QTimer> timer; ///< of the engine

    [[nodiscard]] ExpertHost::Callbacks callbacks()
    {
        ExpertHost::Callbacks calls;
        calls.bid = [this] { return bid; };
        calls.ask = [this] { return ask; };
        calls.balance = [this] { return balance; };
        calls.equity = [this] { return equity; };
        calls.positionsCount = [this] { return positions; };
        calls.seriesRevision = [this] { return revision; };
        calls.order = [this](const QString& side, double lots, double sl, double tp) {
            done.append(QStringLiteral("order %1 %2 %3 %4")
                            .arg(side, QString::number(lots), QString::number(sl, 'g', 10),
                                QString::number(tp, 'g', 10)));
        };
        calls.closeAll = [this] { done.append(QStringLiteral("closeAll")); };
        calls.print = [this](const QString& text) { done.append(QStringLiteral("print ") + text); };
        calls.comment = [this](const QString& text) { done.append(QStringLiteral("comment ") + text); };
        calls.alert = [this](const QString& text) { done.append(QStringLiteral("alert ") + text); };
        return calls;
    }

    /// A file with this content, named as given.
    [[nodiscard]] QString file(const QByteArray& content, const QString& name = QStringLiteral("Probe.js"))
    {
        QFile script(m_folder.filePath(name));
        if (!script.open(QIODevice::WriteOnly) || script.write(content) != content.size())
            qFatal("The script could not be written");
        return script.fileName();
    }

    void create() { create(callbacks()); }
    void create(ExpertHost::Callbacks calls)
    {
        auto ownTimer = std::make_unique<QTimer>();
        timer = ownTimer.get();
        engine = std::make_unique<ExpertEngine>(QStringLiteral("EURUSD"), digits, candles, std::move(calls),
            std::make_unique<SystemExpertTimer>(std::move(ownTimer)));
        QObject::connect(engine.get(), &ExpertEngine::message, engine.get(),
            [this](const QString& text) { messages.append(text); });
    }

    bool loadFile(const QString& path)
    {
        create();
        return engine->load(path, &error);
    }
    bool load(const QByteArray& script) { return loadFile(file(script)); }

    /// What the script's statements print, joined by line feeds; "!" and the reason when they fail.
    [[nodiscard]] QString printed(const QByteArray& script)
    {
        done.clear();
        if (!load(script))
            return QStringLiteral("!") + error;
        QStringList texts;
        for (const QString& line : std::as_const(done))
            texts.append(line.mid(line.indexOf(QLatin1Char(' ')) + 1));
        return texts.join(QLatin1Char('\n'));
    }

    /// Bars a minute apart with these closes; open, high and low lie beside them.
    void setCloses(const std::vector<double>& closes)
    {
        candles.clear();
        for (double close : closes) {
            const auto minute = static_cast<qint64>(candles.size());
            candles.push_back({minute * 60000, close - 0.1, close + 0.2, close - 0.3, close, 1});
        }
        ++revision;
    }

private:
    QTemporaryDir m_folder;
};
