#pragma once

#include "DialogDesk.h"
#include "orders/ModifyDialog.h"
#include "support/ParseJson.h"
#include "support/Records.h"

#include <QLabel>

/// What the tests of the modify window share.
namespace fixtures {

using namespace Qt::StringLiterals;

inline const QByteArray modifyPath = "/api/trades/modify/t-1";

inline records::Trade modifiedPosition()
{
    return records::position("t-1").buy("0.1").stopLoss(0).takeProfit("1.2");
}

inline records::Trade modifiedOrder()
{
    return records::pendingOrder("t-1").sell(2).awaits(1.1).stopLoss(1.15).takeProfit(-3);
}

/// The modify window.
struct ModifyDesk final : DialogDesk<ModifyDialog> {
    explicit ModifyDesk(const QJsonObject& trade = modifiedPosition(), int digits = 5)
    {
        show(new ModifyDialog(api, trade, digits));
    }

    [[nodiscard]] QPushButton* modify() const { return part<QPushButton>("modifyButton"); }
    [[nodiscard]] QLabel* header() const { return part<QLabel>("modifyHeader"); }
    [[nodiscard]] QLabel* error() const { return part<QLabel>("modifyError"); }
    void press() const { QTest::mouseClick(modify(), Qt::LeftButton); }
    /// Sends what is typed to a server that does not answer.
    void pressAndWait()
    {
        server.on("PUT", modifyPath, StubAnswer::held());
        press();
        QTRY_COMPARE(server.heldCount(), 1);
    }
    [[nodiscard]] QJsonObject sent() const { return server.last("PUT", modifyPath).json(); }
};

} // namespace fixtures
