#pragma once

#include <QIODevice>

/// A request body that can be read once. Qt repeats a request by itself when the
/// connection closes after it was sent, but only if it can rewind the body; an order must never
/// be placed twice, so this device refuses to rewind.
class OneShotBody final : public QIODevice {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(OneShotBody)

public:
    explicit OneShotBody(QByteArray data, QObject* parent = nullptr);

    [[nodiscard]] bool isSequential() const override { return true; }
    [[nodiscard]] bool atEnd() const override { return m_position == m_data.size(); }
    [[nodiscard]] bool reset() override { return false; }
    [[nodiscard]] qint64 bytesAvailable() const override;

protected:
    qint64 readData(char* target, qint64 maxSize) override;
    qint64 writeData(const char* source, qint64 maxSize) override;

private:
    const QByteArray m_data;
    qint64 m_position = 0;
};
