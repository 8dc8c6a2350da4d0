"""Every change that breaks a source in one place, found by its tokens."""

import hashlib
import re
from dataclasses import dataclass

TOKEN = re.compile(r"""
    (?P<skip>//[^\n]*|/\*.*?\*/|^[ \t]*\#[ \t]*(?:include|pragma)[^\n]*|\\\n|\s+)
  | (?P<string>"(?:\\.|[^"\\\n])*"|'(?:\\.|[^'\\\n])+')
  | (?P<number>0[xX][0-9a-fA-F]+[uUlL]*|\d+[uUlL]*)
  | (?P<word>[A-Za-z_]\w*)
  | (?P<mark>\.\.\.|<<=|>>=|->|\+\+|--|&&|\|\||::|<<|[-+*/%&|^=!<>]=|[-+*/%&|^=!<>?:;,.~()\[\]{}\#])
""", re.VERBOSE | re.DOTALL | re.MULTILINE)

COMPARISONS = {"==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">"}
LOGIC = {"&&": "||", "||": "&&"}
ARITHMETIC = {"+": "-", "-": "+", "*": "+", "/": "*", "%": "/", "<<": ">>", "&": "|", "|": "&",
              "^": "|", "+=": "-=", "-=": "+=", "|=": "&=", "&=": "|=", "++": "--", "--": "++"}
# What replaces a returned value, where `{}` would change nothing or another operator changes it.
RETURNED = {"0": None, "true": None, "false": None, "nullptr": None, "{}": None, "success": "1",
            "MESH_OK": "MESH_NOT_OPEN"}
# A statement that begins like this declares a name or controls others.
NOT_DROPPED = re.compile(
    r"(const|constexpr|consteval|auto|static|using|if|for|while|switch|case|default|struct|template|typename"
    r"|else|do|extern|namespace|public|private|inline|enum|alignas)\b|\[\["
    r"|[\w.]+\.reserve\("
    r"|[\w:]+(<[^;=()]*>)?[*&]* +(const +)?[*&]*\w+ *[=;{(\[,]")
# Not called, or with arguments whose order does not matter.
NOT_SWAPPED = {"if", "for", "while", "switch", "sizeof", "decltype", "alignas", "return", "defined",
              "static_assert", "constexpr", "min", "max"}


@dataclass(frozen=True)
class Mutant:
    file: str
    operator: str
    start: int
    end: int
    text: str
    # Whole source lines before and after, blanks collapsed.
    before: str
    after: str
    # The size of a member, which everything that includes it agrees on.
    is_layout: bool
    # Of the function, or else the file, and the place in it: a verdict holds while this is the same.
    context: str

    def applied(self, source):
        return source[:self.start] + self.text + source[self.end:]


class Token:
    def __init__(self, match):
        self.kind, self.text = match.lastgroup, match.group()
        self.start, self.end = match.start(), match.end()
        self.parent = None    # the innermost bracket around it
        self.partner = None   # a bracket's other half, as an index
        self.is_body = False  # a brace that opens statements


def tokens_of(source):
    found = [Token(match) for match in TOKEN.finditer(source) if match.lastgroup != "skip"]
    stack = []
    for index, token in enumerate(found):
        token.parent = stack[-1] if stack else None
        before = found[index - 1] if index else None
        touches = before is not None and before.end == token.start
        if token.text in ("(", "[", "{"):
            token.is_body = token.text == "{" and opens_body(found, index)
            stack.append(index)
        elif token.text == "<" and (touches or before.text == "template"):
            token.kind = "angle"
            stack.append(index)
        elif token.text in (")", "]", "}") or (
                token.text == ">" and stack and found[stack[-1]].kind == "angle"):
            if token.text != ">":
                while stack and found[stack[-1]].kind == "angle":
                    stack.pop()
            else:
                token.kind = "angle"
            if stack:
                opening = stack.pop()
                found[opening].partner, token.partner = index, opening
                token.parent = found[opening].parent
    return found


def opens_body(found, index):
    """Statements follow `)`, `]`, a case label, `else`, `const`, or a lambda's result type."""
    if index and found[index - 1].text in (")", "]", "else", "do", "const", ":"):
        return True
    for token in reversed(found[max(0, index - 6):index]):
        if token.text == "->":
            return True
        if token.kind == "mark" and token.text not in ("::", "*"):
            return False
    return False


def excluded(found):
    """Marks tokens of static assertions, attributes, template parameters and reserved capacities."""
    marked = [False] * len(found)
    for index, token in enumerate(found):
        following = found[index + 1] if index + 1 < len(found) else None
        if following is None or following.partner is None:
            continue
        if token.text in ("static_assert", "template", "reserve") or (token.text == following.text == "["):
            marked[index:following.partner + 1] = [True] * (following.partner + 1 - index)
    return marked


def follows_label(source, colon):
    line = source[source.rfind("\n", 0, colon.start) + 1:colon.start]
    return line.lstrip().startswith(("case ", "default"))


def in_function(found, index):
    parent = found[index].parent
    while parent is not None:
        if found[parent].is_body:
            return True
        parent = found[parent].parent
    return False


def function_of(found, index):
    """Where the outermost function around a token begins and ends; nothing outside of functions."""
    body, parent = None, found[index].parent
    while parent is not None:
        body = parent if found[parent].is_body else body
        parent = found[parent].parent
    if body is None:
        return None
    first = body
    while first and not (found[first - 1].text in ("{", "}", ";") and (
            found[first - 1].parent == found[body].parent or first - 1 == found[body].parent)):
        first -= 1
    return found[first].start, found[found[body].partner].end


def end_of(found, index, stops):
    """The first token from `index` on, in the same brackets, that is one of `stops` or closes them."""
    parent = found[index].parent
    while index < len(found):
        token = found[index]
        if token.parent == parent and token.text in stops:
            return index
        if token.partner is not None and token.partner > index:
            index = token.partner
        elif token.partner is not None and token.partner < index and token.partner == parent:
            return index
        index += 1
    return len(found)


def enumerators(sources):
    """The next enumerator of each `Enum::name` of these sources."""
    following = {}
    for source in sources:
        for name, body in re.findall(r"enum class (?:\[\[\w+\]\] )?(\w+)[^{;]*\{([^}]*)\}", source):
            names = re.findall(r"(\w+)[^,]*", re.sub(r"//.*", "", body))
            for one, other in zip(names, names[1:] + names[:1]):
                following[name, one] = other
    return following


def mutants_of(file, source, following):
    found = tokens_of(source)
    marked = excluded(found)
    result = []

    def add(operator, first, last, text):
        start, end = found[first].start, found[last].end
        line = source.rfind("\n", 0, start) + 1
        line_end = source.find("\n", end)
        collapse = lambda lines: " ".join(lines.replace("\\\n", " ").rstrip(" \\").split())
        whole = collapse(source[line:line_end])
        after = collapse(source[line:start] + text + source[end:line_end])
        alike = sum(one.before == whole and one.after.split("  // ")[0] == after for one in result)
        after += f"  // {alike + 1} of this kind" if alike else ""
        begin, finish = function_of(found, first) or (0, len(source))
        context = f"{source[begin:start]}\0{source[start:end]}\0{text}\0{source[end:finish]}"
        result.append(Mutant(file, operator, start, end, text, whole, after,
                             re.fullmatch(r"std::array<.*> \w+(\{\})?;", whole) is not None,
                             hashlib.sha256(context.encode()).hexdigest()[:16]))

    def text_of(first, last):
        return source[found[first].start:found[last].end]

    for index, token in enumerate(found):
        if marked[index] or index == 0:
            continue
        before = found[index - 1]
        is_spaced = (source[token.start - 1].isspace() and source[token.end:token.end + 1].isspace()
                     and (before.kind in ("word", "number", "string") or before.text in (")", "]", "}", ">")))
        if token.kind == "mark" and is_spaced and before.text not in ("return", "operator"):
            for operator, table in (("comparison", COMPARISONS), ("condition", LOGIC),
                                    ("arithmetic", ARITHMETIC)):
                if token.text in table:
                    add(operator, index, index, table[token.text])
        elif token.text in ("++", "--"):
            add("arithmetic", index, index, ARITHMETIC[token.text])
        elif token.text == "!":
            add("condition", index, index, "")
        elif token.kind == "number":
            digits = token.text.rstrip("uUlL")
            base = 8 if re.fullmatch(r"0\d+", digits) else 0
            suffix, value = token.text[len(digits):], int(digits, base)
            write = "0{:o}{}" if base == 8 else "{}{}"
            add("constant", index, index, write.format(value + 1, suffix))
            if value > 1:
                add("constant", index, index, write.format(value - 1, suffix))
        elif token.text in ("true", "false"):
            add("constant", index, index, "false" if token.text == "true" else "true")
        elif token.text == "::" and (before.text, found[index + 1].text) in following:
            add("constant", index + 1, index + 1, following[before.text, found[index + 1].text])

        if not in_function(found, index):
            continue
        opening = index + 1 if index + 1 < len(found) else index
        if token.text in ("if", "while"):
            if found[opening].text == "constexpr":
                opening += 1
            if found[opening].text == "(":
                condition = text_of(opening + 1, found[opening].partner - 1)
                # One comparison alone is negated as a comparison.
                if not re.fullmatch(r"[^&|]* [!=]= [^&|]*", condition):
                    add("condition", opening + 1, found[opening].partner - 1, f"!({condition})")
        if token.text == "?":
            colon = end_of(found, index + 1, (":",))
            last = end_of(found, colon + 1, (";", ",", ")", "}")) - 1
            if colon < len(found) and found[colon].text == ":":
                add("condition", index, last,
                    f"? {text_of(colon + 1, last)} : {text_of(index + 1, colon - 1)}")
        is_call = token.text == "(" and (before.kind == "word" and before.text not in NOT_SWAPPED
                                         or before.text == ">")
        is_list = token.text == "{" and not token.is_body and found[index - 2].text not in ("min", "max")
        if (is_call or is_list) and token.partner is not None:
            arguments, first = [], index + 1
            while first < token.partner:
                comma = end_of(found, first, (",",))
                arguments.append((first, min(comma, token.partner) - 1))
                first = comma + 1
            for (a, b), (c, d) in zip(arguments, arguments[1:]):
                if text_of(a, b) != text_of(c, d):
                    add("argument", a, d, f"{text_of(c, d)}, {text_of(a, b)}")
        begins = (token.parent is not None and found[token.parent].is_body
                  and (before.text == ";" or index - 1 == token.parent
                       or before.text == ":" and follows_label(source, before)
                       or before.text == "}" and before.partner is not None
                       and found[before.partner].is_body))
        if not begins or token.partner is not None and token.text == "}":
            continue
        last = end_of(found, index, (";",))
        statement = text_of(index, last) if last < len(found) else ""
        if token.text == "return" and last > index + 1:
            value = text_of(index + 1, last - 1)
            is_enumerator = (last == index + 4 and (found[index + 1].text, found[index + 3].text) in following)
            if RETURNED.get(value, "{}") and not is_enumerator:
                add("return", index + 1, last - 1, RETURNED.get(value, "{}"))
            holder = found[found[token.parent].start and token.parent - 1]
            if holder.text == ")" and holder.partner and found[holder.partner - 1].text == "if":
                add("statement", index, last, ";")
        elif statement[:-1] and not NOT_DROPPED.match(" ".join(statement.split())):
            add("statement", index, last, ";")
    return result
