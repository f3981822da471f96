#include "practice/server/Failure.h"

#include "practice/core/market/MinuteFile.h"
#include "practice/server/Options.h"
#include "practice/storage/StorageError.h"

namespace practice {

namespace {

constexpr int exitFault = 1;
constexpr int exitUnusable = 2;

} // namespace

Failure describeFailure(const std::exception_ptr& fault)
{
    try {
        std::rethrow_exception(fault);
    } catch (const UsageError& error) {
        return {exitUnusable, error.what()};
    } catch (const ListenError& error) {
        return {exitUnusable, error.what()};
    } catch (const MarketDataError& error) {
        return {exitUnusable, error.what()};
    } catch (const StorageError& error) {
        return {exitUnusable, error.what()};
    } catch (const std::exception& error) {
        return {exitFault, "ended by a fault: " + std::string(error.what())};
    }
}

} // namespace practice
