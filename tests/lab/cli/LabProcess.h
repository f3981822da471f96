#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

/// The real program, in a folder and an environment of the test's choice.
struct LabProcess {
    struct Result {
        int exitCode = -1; ///< -1 when a signal ended it
        std::string output;
        std::string errors;
    };

    std::filesystem::path folder;                                 ///< where it runs
    std::vector<std::pair<std::string, std::string>> environment; ///< in addition to the test's own
    std::string outputFile; ///< takes its standard output; empty: the result does

    [[nodiscard]] Result run(const std::vector<std::string>& arguments) const;
    /// Its standard error is a terminal, and what it has written there comes as `errors`. With a signal, it
    /// gets that as soon as it has written `mark`: how far it is.
    [[nodiscard]] Result runOnTerminal(
        const std::vector<std::string>& arguments, int signal = 0, const std::string& mark = "%") const;
    /// Another program, with the lab's path as its last argument and these behind it.
    [[nodiscard]] Result runWithin(
        const std::vector<std::string>& other, const std::vector<std::string>& arguments) const;

private:
    struct Child;
    [[nodiscard]] Child start(std::vector<std::string> words, bool isTerminal) const;
    static Result resultOf(const Child& child, int signal, const std::string& mark);
};

/// The words of a command, and more behind them.
[[nodiscard]] std::vector<std::string> joined(
    std::vector<std::string> words, const std::vector<std::string>& more);

/// Is this what the program says in place of a result?
[[nodiscard]] bool isOneLine(const std::string& text);
