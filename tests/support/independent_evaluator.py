#!/usr/bin/env python3
"""A second, separate implementation of the formula evaluator, kept for differential testing.

Written from the evaluator's rules alone:
  * number characters 0-9 "." "-" collect into the operand text wherever they stand;
  * binary operators + ~ * / ^ M, unary letters A B C E L S T R O U N D X, any case;
  * an operator first applies the pending one, then becomes pending; any other character only
    clears the pending operator; the end of a run applies the pending operator once more;
  * an empty pending operator makes the operand replace the accumulator;
  * a failing operation leaves the accumulator as it was;
  * brackets: one pass with a bound fixed at entry; "(" stores index+1 as the start; ")" computes
    the text from the start to before the ")", replaces every occurrence (any case) of the text
    from start-1 to the ")" by the result, resets, and the walk resumes at index 2;
  * a ")" before any "(" abandons the call;
  * while a bracket's text is scanned, R O U N D are looked for at the same index of the whole
    expression. The tests go in the order of the operator tables: numbers, the binary operators,
    A B C E L S T, then R O U N D (at the whole expression's index), then X.
Results are printed as "%.15G" with a negative zero as "0"; rounding is half to even on the
15-significant-digit decimal value.

Usage: independent_evaluator.py [EXPR]; with no EXPR, one expression per line from stdin.
"""

import decimal
import math
import re
import sys

NUMBER_CHARS = set("0123456789.-")
BINARY = set("+~*/^M")
UNARY_FIRST = set("ABCELST")
ROUNDERS = {"R": 0, "O": 1, "U": 2, "N": 3, "D": 4}

_VAL_RE = re.compile(r"[+-]?(\d+\.?\d*|\.\d+)([EeDd][+-]?\d+)?")


class Abandoned(Exception):
    pass


def val(text):
    """Leading number of a text, blanks ignored wherever they are; 0 when nothing reads."""
    squeezed = "".join(ch for ch in text if ch not in " \t\n")
    m = _VAL_RE.match(squeezed)
    if not m:
        return 0.0
    lead = m.group(0).replace("D", "E").replace("d", "e")
    try:
        return float(lead)
    except OverflowError:
        return math.inf


def decimal_round(x, places):
    """Half-to-even rounding of the 15-digit decimal form of x."""
    if x == 0 or not math.isfinite(x):
        return x
    d = decimal.Decimal("%.14e" % x)
    q = d.quantize(decimal.Decimal(1).scaleb(-places), rounding=decimal.ROUND_HALF_EVEN,
                   context=decimal.Context(prec=400, Emax=999999, Emin=-999999))
    r = float(q)
    return 0.0 if r == 0 else r


def to_text(x):
    if x == 0:
        return "0"
    return "%.15G" % x


def time_of_day_minutes(x):
    if not (-657435.0 < x < 2958466.0):
        raise ValueError("not a date")
    ax = abs(x)
    secs = int(math.floor((ax - math.floor(ax)) * 86400.0 + 0.5))
    if secs >= 86400:
        secs = 0
    return float((secs // 3600) * 60 + (secs % 3600) // 60)


def operate(op, acc, operand_text):
    """The accumulator after applying op; raises on any failure."""
    if op == "":
        return val(operand_text)
    if op in BINARY:
        b = val(operand_text)
        if op == "+":
            return acc + b
        if op == "~":
            return acc - b
        if op == "*":
            return acc * b
        if op == "/":
            if acc == 0:
                return acc
            return acc / b  # ZeroDivisionError when b is 0
        if op == "^":
            return math.pow(acc, b)
        if op == "M":
            left, right = decimal_round(acc, 0), decimal_round(b, 0)
            return math.fmod(left, right)  # ValueError when right is 0
    if op == "A":
        return abs(acc)
    if op == "B":
        return math.atan(acc)
    if op == "C":
        return math.cos(acc)
    if op == "E":
        return math.exp(acc)
    if op == "L":
        return math.log(acc)
    if op == "S":
        return math.sqrt(acc)
    if op == "T":
        return math.tan(acc)
    if op in ROUNDERS:
        return decimal_round(acc, ROUNDERS[op])
    if op == "X":
        return time_of_day_minutes(acc)
    raise ValueError(op)


class Machine:
    def __init__(self):
        self.acc = 0.0
        self.text = ""
        self.op = ""

    def fire(self):
        if self.text == "":
            self.text = "0"
        try:
            r = operate(self.op, self.acc, self.text)
            if isinstance(r, float) and math.isfinite(r):
                self.acc = 0.0 if r == 0 else r
        except (ArithmeticError, ValueError):
            pass
        self.text = ""

    def feed(self, ch, same_index_char):
        up = ch.upper()
        if ch in NUMBER_CHARS:
            self.text += ch
        elif up in BINARY or up in UNARY_FIRST:
            self.fire()
            self.op = up
        elif same_index_char.upper() in ROUNDERS:
            self.fire()
            self.op = same_index_char.upper()
        elif up == "X":
            self.fire()
            self.op = "X"
        else:
            self.op = ""


def replace_all_nocase(haystack, needle, replacement):
    if needle == "":
        return haystack
    return re.sub(re.escape(needle), lambda _m: replacement, haystack, flags=re.IGNORECASE)


def evaluate(expr):
    """Returns the result text, or None when the call is abandoned."""
    m = Machine()
    limit = len(expr)
    opened = 0
    pos = 1
    while pos <= limit:
        ch = expr[pos - 1] if pos <= len(expr) else ""
        if ch == "(":
            opened = pos + 1
        if ch == ")":
            if opened == 0:
                return None
            if opened > pos:
                # The rules say this cannot happen; say so loudly if it ever does.
                return "<start behind bracket>"
            inner = expr[opened - 1:pos - 1]
            for j, c in enumerate(inner, start=1):
                m.feed(c, expr[j - 1] if j <= len(expr) else "")
            m.fire()
            result = to_text(m.acc).replace(",", "").replace("'", "").replace("\xa0", "")
            expr = replace_all_nocase(expr, expr[opened - 2:pos], result)
            m = Machine()
            pos = 1
        pos += 1
    for c in expr:
        m.feed(c, c)
    m.fire()
    return to_text(m.acc)


def main(argv):
    if len(argv) > 1:
        r = evaluate(" ".join(argv[1:]))
        print("" if r is None else r)
        return 0
    out = []
    for line in sys.stdin:
        r = evaluate(line.rstrip("\n").rstrip("\r"))
        out.append("" if r is None else r)
    sys.stdout.write("".join(s + "\n" for s in out))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
