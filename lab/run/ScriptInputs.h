#pragma once

#include "experts/ExpertScript.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace lab {

/// A value that a script's author has put at the top of it for changing: a line at top level that says
/// `var`, `let` or `const`, a name and a single number, text, true or false.
struct ScriptInput {
    enum class Kind { Number, Text, Truth };

    QString name;
    QString literal; ///< as it stands in the script: "-1.5", "'fast'", "true"
    QString comment; ///< what follows // on the same line, trimmed; often what the input means
    int line = 0;    ///< from 1
    Kind kind = Kind::Number;
    bool isChanged = false; ///< the script gives it another value somewhere: less an input than a state

    friend bool operator==(const ScriptInput&, const ScriptInput&) = default;
};

/// The inputs of a script in its order. Nothing within functions, blocks, brackets, texts or comments is
/// one. Of a name that is given twice the last is the input, since it is the one that holds.
[[nodiscard]] QList<ScriptInput> inputsOf(const QString& script);

/// The names of the inputs, without those that the script changes itself: nobody means to set these. All of
/// them where it changes every one.
[[nodiscard]] QStringList settableNames(const QString& script);

/// A name and what it shall be, as a person types it: 20, -1.5, 1e-4, 0x10, true; a text with or without
/// quotation marks.
using InputValues = QList<std::pair<QString, QString>>;

/// The script with other values for its inputs, and nothing else changed: every line keeps its number. A
/// number stays a number, a text a text, true and false remain among themselves. Absent, with the reason in
/// `error`, for a name that is no input, which names those that can be set, and for a value of another kind.
[[nodiscard]] std::optional<QString> withInputs(
    const QString& script, const InputValues& values, QString& error);

/// The same with names and literals as the settings of a run have them. Throws std::invalid_argument with the
/// reason.
[[nodiscard]] ExpertScript withInputs(
    const ExpertScript& script, const std::vector<std::pair<std::string, std::string>>& inputs);

} // namespace lab
