#pragma once

#include "net/ReplyOutcome.h"

#include <QNetworkReply>
#include <QtTest>

namespace fixtures {

/// Waits until the reply is finished, reads it and lets it go; a failure without a text after ten seconds.
inline ReplyOutcome finish(QNetworkReply* reply)
{
    const bool finished = QTest::qWaitFor([&] { return reply->isFinished(); }, 10'000);
    reply->deleteLater();
    return finished ? ReplyOutcome::read(reply) : ReplyOutcome{};
}

} // namespace fixtures
