"""One-line faults that can be made in a script of JavaScript, of the kinds that faults.py lists.

Texts, comments and regular expressions are left alone. The script has no texts in single quotes or backquotes.
"""
import re

import faults

COMMENT_OR_TEXT = r'''(?P<comment>//[^\n]*|/\*.*?\*/)|"(?:\\.|[^"\\\n])*"'''
EXPRESSION = r'''(?<=[(=:,!&|?;{}\[])(?P<space>\s*)/(?![/*])(?:\\.|\[(?:\\.|[^\]\\\n])*\]|[^/\\\[\n])+/[a-z]*'''
TOKEN = re.compile(COMMENT_OR_TEXT + "|" + EXPRESSION, re.S)


def masked(text):
    """The text with comments, texts and regular expressions replaced by others of the same length."""
    def mask(match):
        if match["comment"]:
            return re.sub(r"[^\n]", " ", match[0])
        space = match["space"] or ""
        return space + '"' * (len(match[0]) - len(space))

    return TOKEN.sub(mask, text)


class Source(faults.Source):
    """A script and the faults that can be made in it."""

    masked = staticmethod(masked)
    BINARY = re.compile(r"(?<=\s)(===|!==|<=|>=|<<|>>|==|!=|&&|\|\||[+\-|&]=|[<>+\-*/%&|])(?=\s|$)")
    OPERATORS = {**faults.OPERATORS, "===": "!==", "!==": "==="}
    NO_NAMES = set("""async await break case catch class const continue default delete do else export extends false
        finally for function if import in instanceof let new null of return static super switch this throw true try
        typeof undefined var void while yield""".split())
    DECLARATION = re.compile(r"(const|let|var|async|function|class) ")
    DECLARED = re.compile(r"\b(const|let|var|function|class) $")
