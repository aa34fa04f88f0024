#!/usr/bin/env python3
"""Finds the awaiting forms that GCC 12 compiles wrongly. Clang compiles them right, so no test would tell.

A co_await is safe as `co_await f(a);`, `name = co_await f(a);` (declaring or assigning) and
`co_return co_await f(a);`, with nothing inside the awaited expression that must outlive the suspension.
Elsewhere GCC 12 may skip a branch, or destroy a temporary twice.

Usage: awaiting_forms.py FOLDER...        exits 1 and names every place, if there is one
"""

import os
import re
import sys
from typing import NamedTuple


class Token(NamedTuple):
    text: str
    line: int


class Finding(NamedTuple):
    line: int
    why: str


TOKEN = re.compile(
    r"""(?P<skip>\s+|//[^\n]*|/\*.*?\*/|\#(?:\\\n|[^\n])*)
      | (?P<raw>(?:u8|[uUL])?R"(?P<mark>[^()\\\s]*)\(.*?\)(?P=mark)")
      | (?P<text>(?:u8|[uUL])?"(?:\\.|[^"\\\n])*")
      | (?P<number>\.?\d(?:'?[\w.])*)
      | (?P<character>(?:u8|[uUL])?'(?:\\.|[^'\\\n])+')
      | (?P<word>[A-Za-z_]\w*)
      | (?P<sign>->|::|&&|\|\||<=>|[<>=!+\-*/%&|^]=|<<|[^\s\w])""",
    re.VERBOSE | re.DOTALL,
)

CLOSING = {"(": ")", "{": "}", "[": "]"}
CONDITIONS = {"if", "while", "switch", "for"}
# A brace after one of these opens statements; after anything else it is an initialiser.
BEFORE_A_BODY = {")", "]", "}", ";", "{", ":", "else", "do", "try", "mutable", "noexcept", "const", "override", "final", "constexpr"}
HEADS = {"namespace", "class", "struct", "union", "enum", "extern", "concept"}


def tokens_of(source):
    """The tokens without comments and preprocessor lines; literals are reduced to one token."""
    found, line = [], 1
    for match in TOKEN.finditer(source):
        if match.lastgroup != "skip":
            kind = match.lastgroup
            found.append(Token('""' if kind in ("raw", "mark", "text", "character") else match.group(), line))
        line += match.group().count("\n")
    return found


def is_body(before, among_values):
    """Whether a brace that follows the statement's tokens `before` opens statements."""
    if not before:
        return not among_values
    if before[-1].text in BEFORE_A_BODY:
        return True
    words = [token.text for token in before]
    if HEADS & set(words[:4]) and "=" not in words:
        return True
    # A trailing return type: `) -> Task<void> {`
    if "->" in words:
        arrow = len(words) - 1 - words[::-1].index("->")
        tail = words[arrow + 1 :]
        return arrow > 0 and words[arrow - 1] in {")", "mutable", "noexcept"} and all(
            re.fullmatch(r"\w+|::|<|>|,|&|\*", word) for word in tail
        )
    return False


class Group(NamedTuple):
    """What stands between a pair of brackets. `body`: its brace holds statements, not values."""

    opening: Token
    items: list
    body: bool


def parse(tokens):
    """Nests the tokens: a list of Tokens and Groups."""
    position = 0

    def until(closing, among_values):
        nonlocal position
        items, flat = [], []
        while position < len(tokens):
            token = tokens[position]
            position += 1
            if token.text == closing:
                return items
            if token.text in CLOSING:
                body = token.text == "{" and is_body(flat, among_values)
                inner = until(CLOSING[token.text], not body)
                items.append(Group(token, inner, body))
                flat.append(Token(CLOSING[token.text], token.line))
                if body and position < len(tokens) and tokens[position].text not in {";", ",", ")", "(", "."}:
                    flat = []
            else:
                items.append(token)
                flat = [] if token.text == ";" else flat + [token]
        return items

    return until(None, False)


def statements(items):
    """Cuts a body's items at `;` and after a body that ends its statement."""
    current = []
    for index, item in enumerate(items):
        if isinstance(item, Token) and item.text == ";":
            if current:
                yield current
            current = []
            continue
        current.append(item)
        following = items[index + 1] if index + 1 < len(items) else None
        goes_on = (isinstance(following, Token) and following.text in {";", ",", "."}) or (
            isinstance(following, Group) and following.opening.text == "("
        )
        if isinstance(item, Group) and item.body and not goes_on:
            yield current
            current = []
    if current:
        yield current


def awaits_in(items):
    """The co_await tokens of one statement, with whether each stands inside brackets. Bodies are not entered."""
    for item in items:
        if isinstance(item, Token):
            if item.text == "co_await":
                yield item, False
        elif not item.body:
            for token, _ in awaits_in(item.items):
                yield token, True


def lambda_captures(items):
    """Lambdas of these items that capture, as their opening tokens."""
    for index, item in enumerate(items):
        if not isinstance(item, Group):
            continue
        before = items[index - 1] if index else None
        subscript = isinstance(before, Group) or (
            isinstance(before, Token) and re.fullmatch(r"\w+", before.text) and before.text not in {"return", "co_await"}
        )
        if item.opening.text == "[" and not subscript and item.items:
            yield item.opening
        if not item.body:
            yield from lambda_captures(item.items)


def initialisers(items):
    """Braces of these items that build a value, as their opening tokens."""
    for item in items:
        if isinstance(item, Group):
            if item.opening.text == "{" and not item.body:
                yield item.opening
            if not item.body:
                yield from initialisers(item.items)


def has_question_mark(items):
    return any(
        item.text == "?" if isinstance(item, Token) else (not item.body and has_question_mark(item.items))
        for item in items
    )


def texts(items):
    return [item.text if isinstance(item, Token) else item.opening.text for item in items]


def check_condition(statement):
    """Conditions stand before their body, so they are looked for wherever the keyword stands."""
    words = texts(statement)
    for index, word in enumerate(words[:-1]):
        if word in CONDITIONS and isinstance(statement[index], Token):
            rest = [item for item in statement[index + 1 :] if isinstance(item, Group) and item.opening.text == "("][:1]
            for token, _ in awaits_in(rest):
                yield Finding(token.line, f"co_await in the condition of '{word}'")


ASSIGNS = {"=", "+=", "-=", "*=", "/=", "|=", "&="}
OPERATORS = {"+", "-", "*", "/", "%", "<", ">", "==", "!=", "<=", ">=", "&&", "||", "|", "&", "^", "<<", "!", "<=>"}


def without_template_arguments(items):
    """The items with `name<...>` reduced to the name, so that what is left of `<` is a comparison."""
    kept, depth = [], 0
    for index, item in enumerate(items):
        text = item.text if isinstance(item, Token) else ""
        after_name = kept and isinstance(kept[-1], Token) and re.fullmatch(r"[A-Za-z_]\w*", kept[-1].text)
        if text == "<" and (depth or (after_name and closes_as_template(items[index:]))):
            depth += 1
        elif text == ">" and depth:
            depth -= 1
        elif not depth:
            kept.append(item)
    return kept


def closes_as_template(items):
    depth = 0
    for item in items:
        text = item.text if isinstance(item, Token) else ""
        depth += (text == "<") - (text == ">")
        if text in {"&&", "||", ";"}:
            return False
        if depth == 0:
            return True
    return False


def check_statement(statement):
    """The findings of one statement, its nested bodies left out."""
    found = list(awaits_in(statement))
    if not found:
        return
    conditions = list(check_condition(statement))
    yield from conditions
    named = {finding.line for finding in conditions}
    first = found[0][0]
    if len(found) > 1:
        yield Finding(found[1][0].line, "a second co_await in one statement")
    if has_question_mark(statement):
        yield Finding(first.line, "co_await in a statement with '?:'")
    for token, inside in found:
        if inside and token.line not in named:
            yield Finding(token.line, "co_await inside brackets: await first, then pass the named result")
    outside = [token for token, inside in found if not inside]
    if not outside:
        return
    at = statement.index(outside[0])
    before, after = statement[:at], statement[at + 1 :]
    ahead = texts(before)
    if ahead and ahead[-1] not in ASSIGNS | {"co_return", "(", "else", "do", ":"}:
        yield Finding(first.line, f"co_await after '{ahead[-1]}': give the result a name of its own")
    if OPERATORS & set(texts(without_template_arguments(after))[1:]):
        yield Finding(first.line, "an operator on the awaited result: give the result a name of its own")
    for token in lambda_captures(after):
        yield Finding(token.line, "a capturing lambda in an awaiting expression: name it first")
    for token in initialisers(after):
        yield Finding(token.line, "a value built in braces in an awaiting expression: name it first")


def check_items(items):
    for statement in statements(items):
        yield from check_statement(statement)
        yield from check_nested(statement)


def check_nested(items):
    for item in items:
        if isinstance(item, Group):
            yield from (check_items(item.items) if item.body else check_nested(item.items))


def findings(source):
    """What is wrong in a C++ source text, in the order of its lines."""
    if "co_await" not in source:
        return []
    return sorted(set(check_items(parse(tokens_of(source)))))


def sources_below(root):
    for folder, names, files in os.walk(root):
        names[:] = sorted(name for name in names if name != "build" and not name.startswith("."))
        for name in sorted(files):
            if name.endswith((".cpp", ".h")):
                yield os.path.join(folder, name)


def main(roots):
    read, bad = 0, 0
    for path in (path for root in roots for path in sources_below(root)):
        read += 1
        with open(path, encoding="utf-8") as file:
            for finding in findings(file.read()):
                print(f"{path}:{finding.line}: {finding.why}")
                bad += 1
    print(f"{read} files read, {bad} unsafe awaiting forms")
    return 1 if bad or not read else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
