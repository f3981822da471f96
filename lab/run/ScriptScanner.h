#pragma once

#include <QString>

#include <vector>

namespace lab {

/// One word of a script.
struct ScriptToken {
    enum class Kind { End, Word, Number, Text, Template, Expression, Sign };

    Kind kind = Kind::End;
    qsizetype start = 0; ///< of its first character
    qsizetype end = 0;   ///< after its last
    int line = 1;        ///< of its first character, from 1
    int depth = 0;       ///< open brackets of any kind around it; a bracket is at the depth outside it
    /// Of a text: its line ends before it does.
    bool isBroken = false;
    /// Runs only under a condition, or again and again: the statement of an if, else, while, for or do, or
    /// what follows a colon.
    bool isGoverned = false;
};

/// Takes a script apart into words, as far as is needed to tell what stands at its top level: texts, parts of
/// templates, regular expressions and comments are passed as wholes. Knows no grammar, and goes through what
/// is no valid script as well.
class ScriptScanner final {
public:
    /// `script` must outlive this object.
    explicit ScriptScanner(const QString& script)
        : m_text(script)
    {
    }

    /// The next word; End at the end, again and again.
    [[nodiscard]] ScriptToken next();

private:
    struct Bracket {
        QChar open; ///< '`' for the ${ of a template
        /// Of a parenthesis: the condition of a statement. Of a brace: a block, and no object.
        bool isPlain = false;
    };

    [[nodiscard]] QChar at(qsizetype place) const;
    void skipBlanksAndComments();
    void passLineEnd();
    /// The end of the literal that begins here.
    [[nodiscard]] qsizetype endOfWord(qsizetype place) const;
    [[nodiscard]] qsizetype endOfNumber(qsizetype place) const;
    [[nodiscard]] qsizetype endOfText(qsizetype place, bool& isClosed) const;
    /// The end of its line where nothing ends it before.
    [[nodiscard]] qsizetype endOfExpression(qsizetype place) const;
    /// Goes on in a template after ` or }; true when it goes into a ${.
    bool passTemplate();
    void passSign(ScriptToken& token);
    /// Whether a / begins a regular expression here.
    [[nodiscard]] bool expectsValue() const;
    [[nodiscard]] bool beginsBlock() const;

    const QString& m_text;
    qsizetype m_place = 0;
    int m_line = 1;
    std::vector<Bracket> m_open;
    ScriptToken m_last;         ///< the word before; of kind End at the start
    QStringView m_lastText;     ///< its text
    bool m_lastIsPlain = false; ///< the closing bracket before was of a plain one
    bool m_afterDot = false;    ///< the word before is a property's name
};

} // namespace lab
