#pragma once

// A small check harness for the practice platform, which is built and tested without Qt.
//
//   TEST_CASE("an order fills at the ask") { CHECK(x > 0); CHECK_EQ(a, b); REQUIRE(found); }
//   CHECK_MAIN()          // once per executable
//
// CHECK records a failure and goes on; REQUIRE ends the case. An executable fails when any check failed,
// when a case let an exception escape, when a case checked nothing, or when there is no case at all.
// Arguments select the cases whose name contains one of them.

#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace check {

struct Case {
    const char* name;
    void (*body)();
};

struct State {
    std::vector<Case> cases;
    std::size_t checks = 0;
    std::size_t failures = 0;
    bool skipped = false;
};

inline State& state()
{
    static State instance;
    return instance;
}

struct Registration {
    Registration(const char* name, void (*body)()) { state().cases.push_back({name, body}); }
};

struct CaseAborted { };

inline bool report(bool passed, const char* file, int line, const std::string& text)
{
    ++state().checks;
    if (!passed) {
        ++state().failures;
        std::cout << file << ':' << line << ": failed: " << text << '\n';
    }
    return passed;
}

template <typename T> void print(std::ostream& out, const T& value)
{
    if constexpr (requires { out << value; })
        out << value;
    else
        out << "(value)";
}

template <typename A, typename B> std::string describe(const char* text, const A& left, const B& right)
{
    std::ostringstream out;
    out.precision(17);
    out << text << " (";
    print(out, left);
    out << " and ";
    print(out, right);
    out << ')';
    return out.str();
}

/// Leaves the running case without a verdict and says why; for data a machine may not have.
[[noreturn]] inline void skip(const std::string& reason)
{
    std::cout << "  skipped: " << reason << '\n';
    state().skipped = true;
    throw CaseAborted{};
}

inline bool selected(const Case& test, int argc, char** argv)
{
    for (int i = 1; i < argc; ++i) {
        if (std::string_view(test.name).find(argv[i]) != std::string_view::npos)
            return true;
    }
    return argc < 2;
}

/// True when the case passed.
inline bool runCase(const Case& test)
{
    State& current = state();
    const std::size_t failuresBefore = current.failures;
    const std::size_t checksBefore = current.checks;
    current.skipped = false;
    try {
        test.body();
    } catch (const CaseAborted&) {
    } catch (const std::exception& error) {
        ++current.failures;
        std::cout << "  exception: " << error.what() << '\n';
    } catch (...) {
        ++current.failures;
        std::cout << "  exception of an unknown type\n";
    }
    if (current.checks == checksBefore && current.failures == failuresBefore && !current.skipped) {
        ++current.failures;
        std::cout << "  the case checked nothing\n";
    }
    return current.failures == failuresBefore;
}

inline int runAll(int argc, char** argv)
{
    std::size_t passed = 0;
    std::size_t failed = 0;
    std::size_t skipped = 0;
    for (const Case& test : state().cases) {
        if (!selected(test, argc, argv))
            continue;
        const bool good = runCase(test);
        const bool skippedCase = good && state().skipped;
        (skippedCase ? skipped : good ? passed : failed) += 1;
        std::cout << (skippedCase ? "SKIP  " : good ? "PASS  " : "FAIL  ") << test.name << std::endl;
    }
    std::cout << passed << " passed, " << failed << " failed, " << skipped << " skipped, " << state().checks
              << " checks" << std::endl;
    return failed == 0 && passed + skipped > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace check

#define CHECK_JOIN_(a, b) a##b
#define CHECK_JOIN(a, b) CHECK_JOIN_(a, b)
#define CHECK_CASE_(name, id)                                                                                \
    static void CHECK_JOIN(checkCase, id)();                                                                 \
    static const check::Registration CHECK_JOIN(checkRegistration, id)(name, &CHECK_JOIN(checkCase, id));    \
    static void CHECK_JOIN(checkCase, id)()

/// A named case; its body follows in braces.
#define TEST_CASE(name) CHECK_CASE_(name, __COUNTER__)

#define CHECK(...) check::report(static_cast<bool>(__VA_ARGS__), __FILE__, __LINE__, #__VA_ARGS__)

#define CHECK_EQ(left, right)                                                                                \
    [](const auto& checkLeft, const auto& checkRight) {                                                      \
        const bool checkEqual = checkLeft == checkRight;                                                     \
        return check::report(checkEqual, __FILE__, __LINE__,                                                 \
            checkEqual ? std::string() : check::describe(#left " == " #right, checkLeft, checkRight));       \
    }((left), (right))

/// Passes when the two numbers differ by at most `tolerance`; a NaN never passes.
#define CHECK_NEAR(left, right, tolerance)                                                                   \
    [](double checkLeft, double checkRight, double checkTolerance) {                                         \
        return check::report(std::abs(checkLeft - checkRight) <= checkTolerance, __FILE__, __LINE__,         \
            check::describe(#left " near " #right, checkLeft, checkRight));                                  \
    }((left), (right), (tolerance))

/// Passes when the expression throws exactly this type or one derived from it.
#define CHECK_THROWS(expression, Type)                                                                       \
    [&] {                                                                                                    \
        try {                                                                                                \
            static_cast<void>(expression);                                                                   \
        } catch (const Type&) {                                                                              \
            return check::report(true, __FILE__, __LINE__, {});                                              \
        }                                                                                                    \
        return check::report(false, __FILE__, __LINE__, #expression " throws " #Type);                       \
    }()

/// Like CHECK, but ends the case when it fails.
#define REQUIRE(...)                                                                                         \
    do {                                                                                                     \
        if (!CHECK(__VA_ARGS__))                                                                             \
            throw check::CaseAborted{};                                                                      \
    } while (false)

#define CHECK_MAIN()                                                                                         \
    int main(int argc, char** argv)                                                                          \
    {                                                                                                        \
        return check::runAll(argc, argv);                                                                    \
    }
