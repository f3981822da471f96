#pragma once

#include <QString>

/// A one-shot alert on the bid of a symbol.
struct PriceAlert final {
    QString symbol;
    bool above = false;     ///< fires at this price and above; else at this price and below
    double price = 0.0;     ///< the threshold
    bool triggered = false; ///< has fired and never fires again

    bool operator==(const PriceAlert&) const = default;
};
