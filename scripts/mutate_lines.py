"""The faults that scripts/mutate puts into a source: which lines may be broken, and how. Nothing here runs anything.

A line is looked at with its comments and texts blanked, so that nothing within them is broken.
"""

import random
import re
from dataclasses import dataclass

# Where a mutant is compiled, warnings that the fault itself brings are no reason to refuse it.
TOLERATED = ("unused-parameter", "unused-variable", "unused-but-set-variable", "unused-function", "unused-value",
             "empty-body", "misleading-indentation", "tautological-compare", "type-limits", "bool-compare",
             "int-in-bool-context", "parentheses", "conversion", "sign-conversion", "sign-compare",
             "maybe-uninitialized", "uninitialized", "float-conversion", "unreachable-code", "div-by-zero",
             "logical-op", "implicit-fallthrough", "nonnull-compare", "bool-operation")


@dataclass(frozen=True)
class Mutation:
    line: int  # from 1
    kind: str
    before: str  # the whole line
    after: str

    def applied(self, text):
        """The source with the fault in it; every line keeps its number in messages."""
        lines = text.split("\n")
        assert lines[self.line - 1] == self.before
        lines[self.line - 1] = self.after
        pragmas = "".join(f'#pragma GCC diagnostic ignored "-W{name}"\n' for name in TOLERATED)
        return f'#pragma GCC diagnostic ignored "-Wpragmas"\n{pragmas}#line 1\n' + "\n".join(lines)


HIDDEN = re.compile(
    r'//[^\n]*|/\*.*?\*/|R"(?P<mark>[^(\s]*)\(.*?\)(?P=mark)"|"(?:\\.|[^"\\\n])*"|(?<![0-9a-zA-Z])\'(?:\\.|[^\'\\\n])+\'',
    re.DOTALL)


def masked(text):
    """The source with comments blank and the insides of texts as underscores, each character in its place."""
    def cover(found):
        whole = found.group()
        if whole.startswith(("//", "/*")):
            return re.sub(r"[^\n]", " ", whole)
        return whole[0] + re.sub(r"[^\n]", "_", whole[1:-1]) + whole[-1]

    return HIDDEN.sub(cover, text)


def opens_function(head):
    """Whether the brace behind `head`, which is what stands since the last end of a statement, holds statements."""
    head = re.sub(r"\[\[.*?\]\]|template\s*<[^{}]*?>\s*(?=[a-z\[])", " ", head.strip())
    if re.search(r"\b(?:namespace|enum)\b", head):
        return False
    if re.search(r"\b(?:class|struct|union)\b", head) and ")" not in head:
        return False
    if re.search(r"(?:=|\breturn|,)\s*[\w:<>]*$", head):
        return False
    return bool(re.search(r"\)[^)]*$", head))


def lines_in_functions(code):
    """The numbers of the lines that begin within the body of a function."""
    inside = set()
    stack = []
    head = ""
    number = 1
    for character in code:
        if character == "\n":
            number += 1
            if any(stack):
                inside.add(number)
            head += " "
        elif character == "{":
            stack.append(any(stack) or opens_function(head))
            head = ""
        elif character == "}":
            if stack:
                stack.pop()
            head = ""
        elif character == ";":
            head = ""
        else:
            head += character
    return inside


NEVER = re.compile(
    r"^\s*(?:#|using\b|namespace\b|template\b|friend\b|typedef\b|case\b|default:|static_assert|assert\b|Q_[A-Z]+\b"
    r"|qC?(?:Debug|Info|Warning|Critical)\b|(?:appLog|logReport|logMessage|log)\(|std::c(?:err|log)\b)")
NUMBER = re.compile(r"(?<![\w.'])(\d[\d']*)(\.\d+)?(?![\w.'])")
SWAPS = {
    "comparison": [(" < ", " <= "), (" <= ", " < "), (" > ", " >= "), (" >= ", " > "), (" == ", " != "),
                   (" != ", " == ")],
    "arithmetic": [(" + ", " - "), (" - ", " + "), (" * ", " / "), (" / ", " * "), (" % ", " * "), (" += ", " -= "),
                   (" -= ", " += "), (" *= ", " /= "), (" /= ", " *= "), ("++", "--"), ("--", "++")],
    "logic": [(" && ", " || "), (" || ", " && ")],
    "choice": [("std::min(", "std::max("), ("std::max(", "std::min("), ("qMin(", "qMax("), ("qMax(", "qMin("),
               ("std::floor(", "std::ceil("), ("std::ceil(", "std::floor(")],
}
WORDS = [("true", "false"), ("false", "true"), ("continue;", "break;"), ("break;", "continue;")]


def at(line, start, end, put):
    return line[:start] + put + line[end:]


def joins_texts(code, found):
    """Texts can be joined but not subtracted: such a fault would not compile."""
    return bool(re.search(r"""["']\w*\s*$""", code[:found.start()])
                or re.match(r"""\s*(?:u8|[uUL])?(?:["']|QString|std::string|std::to_string)""", code[found.end():]))


def swaps(line, code):
    for kind, pairs in SWAPS.items():
        for old, new in pairs:
            for found in re.finditer(re.escape(old), code):
                if kind == "arithmetic" and joins_texts(code, found):
                    continue
                yield kind, at(line, found.start(), found.end(), new)
    for old, new in WORDS:
        for found in re.finditer(rf"(?<![\w.:]){re.escape(old)}(?!\w)", code):
            yield "word", at(line, found.start(), found.end(), new)


def numbers(line, code):
    for found in NUMBER.finditer(code):
        whole, rest = found.group(1), found.group(2) or ""
        value = int(whole.replace("'", ""))
        yield "number", at(line, found.start(), found.end(), f"{value + 1}{rest}")
        if value > 0:
            yield "number", at(line, found.start(), found.end(), f"{value - 1}{rest}")


def condition(code):
    """Where the condition of an `if` or `while` that is closed on its line stands."""
    found = re.search(r"\b(?:if|while) \(", code)
    if not found:
        return None
    depth = 1
    for place in range(found.end(), len(code)):
        depth += {"(": 1, ")": -1}.get(code[place], 0)
        if depth == 0:
            return found.end(), place
    return None


def negations(line, code):
    for found in re.finditer(r"(?<![\w)\]])!(?=[\w(:*])", code):
        yield "negation", at(line, found.start(), found.end(), "")
    place = condition(code)
    if place and ";" not in code[place[0]:place[1]] and not re.search(r"[^=!<>]=[^=]", code[place[0]:place[1]]):
        yield "negation", at(line, *place, f"!({line[slice(*place)]})")


def removals(line, code):
    """The statement that fills the line is left out; a declaration cannot be."""
    stripped = code.strip()
    indent = line[:len(line) - len(line.lstrip())]
    returned = re.fullmatch(r"return (.+);", stripped)
    if returned and returned.group(1) not in ("{}", "false", "true", "0", "nullptr", "std::nullopt"):
        yield "return", f"{indent}return {{}};"
    if stripped.count("(") != stripped.count(")"):
        return
    call = re.fullmatch(r"[\w:]+(?:(?:\.|->|::)\w+|\([^;]*?\)|\[[^;]*?\])*\([^;]*\);", stripped)
    change = re.fullmatch(r"[\w.:\[\]()*]+(?:->[\w.:\[\]()]+)* (?:[-+*/|&]?=) [^;]*;|[-+]{2}[\w.>-]+;|[\w.>-]+[-+]{2};",
                          stripped)
    if (call or change) and not stripped.startswith(("return", "throw", "delete ", "co_return")):
        yield "removal", f"{indent};"


def whole_statement(lines, number):
    """Whether the line begins where a statement may, so that leaving it out leaves no half of another."""
    for before in reversed(lines[:number - 1]):
        if before.strip():
            return before.rstrip().endswith((";", "{", "}", ":", "else")) or bool(
                re.match(r"\s*(?:if|for|while|else if)\b.*\)\s*$", before))
    return False


def mutations_of(text):
    """Each line that may be broken, with every way to break it: {number: [Mutation, ...]}."""
    code = masked(text)
    lines, shown = text.split("\n"), code.split("\n")
    inside = lines_in_functions(code)
    result = {}
    for number, (line, bare) in enumerate(zip(lines, shown), 1):
        if NEVER.match(bare) or not bare.strip():
            continue
        found = []
        if number in inside:
            found += [*swaps(line, bare), *numbers(line, bare), *negations(line, bare)]
            if whole_statement(shown, number):
                found += removals(line, bare)
        elif re.match(r"\s*(?:static |inline )*constexpr [\w:<> ]+ = ", bare):
            found += [*swaps(line, bare), *numbers(line, bare)]
        if found:
            result[number] = [Mutation(number, kind, line, after) for kind, after in found]
    return result


def chosen(sources, seed):
    """One mutation a line, in the order in which they are tried; the same for the same sources and seed.

    `sources` maps a path to its text. The kinds of a line have the same chance, however often each occurs in it.
    """
    dice = random.Random(seed)
    tries = []
    for path in sorted(sources):
        for _, found in sorted(mutations_of(sources[path]).items()):
            kind = dice.choice(sorted({mutation.kind for mutation in found}))
            tries.append((path, dice.choice([mutation for mutation in found if mutation.kind == kind])))
    dice.shuffle(tries)
    return tries


def words_of(name):
    return {word.lower() for word in re.findall(r"[A-Z]+(?![a-z])|[A-Z]?[a-z]+|\d+", name)}


def likely_first(tests, stem, seconds):
    """Names of tests, the likeliest to notice a fault in the source `stem` first, then the quick ones."""
    def rank(name):
        bare = re.sub(r"^(?:tst|check)_(?:lab_)?", "", name)
        shared = words_of(bare) & words_of(stem)
        return (bare != stem, -len(shared), seconds.get(name, 0.0), name)

    return sorted(tests, key=rank)
