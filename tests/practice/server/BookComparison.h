#pragma once

#include "practice/server/Platform.h"
#include "practice/server/SecondBooks.h"

#include <string>

namespace practice {

/// Holds what the platform says to a second set of books. Says what the first difference is and ends the
/// running case there: what followed it would only repeat it.
class BookComparison final {
public:
    /// Accounts, and the trades that are open or wait.
    static void ofNow(const Platform& platform, const SecondBooks& books);
    /// All that has ended. Returns how many trades were compared.
    static int ofHistory(Platform& platform, const SecondBooks& books);
    /// Anything else that must be true.
    static void must(bool agreed, const std::string& what);

private:
    static void ofTrade(const Trade& trade, const SecondBooks::Line& line, const SecondBooks& books);
    static int ofHistory(Platform& platform, const SecondBooks::Book& book, const SecondBooks& books);
};

} // namespace practice
