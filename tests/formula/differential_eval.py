#!/usr/bin/env python3
"""Runs a few thousand random expressions through flatform-cli eval (one process, stdin) and through
the independent evaluator, and requires the same result text for every one.

Usage: differential_eval.py FLATFORM_CLI [COUNT] [SEED]
"""

import os
import random
import subprocess
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))
import independent_evaluator  # noqa: E402

ALPHABET_WEIGHTS = [
    ("0123456789", 30), (".", 4), ("-", 4), ("+~*/^", 14), ("Mm", 2), ("()", 12),
    ("ABCELSTX", 4), ("abcelstx", 2), ("ROUND", 4), ("round", 2), ("~", 2), (" ", 3),
    ("QZ?", 1),
]


def random_expression(rng):
    kind = rng.random()
    length = rng.randint(0, 24) if kind < 0.8 else rng.randint(25, 60)
    chars = []
    for _ in range(length):
        group = rng.choices([g for g, _w in ALPHABET_WEIGHTS], [w for _g, w in ALPHABET_WEIGHTS])[0]
        chars.append(rng.choice(group))
    text = "".join(chars)
    if rng.random() < 0.3:
        # Well-formed nested brackets with small numbers, where the interesting rules live.
        def term(depth):
            if depth > 2 or rng.random() < 0.4:
                return str(rng.choice([rng.randint(0, 99), round(rng.uniform(-50, 50), 3)]))
            op = rng.choice("+~*/^M") if rng.random() < 0.8 else rng.choice("ROUNDSAX")
            inner = term(depth + 1) + op + (term(depth + 1) if op in "+~*/^M" else "")
            return "(" + inner + ")" if rng.random() < 0.6 else inner
        text = term(0)
    return text


def main(argv):
    cli = argv[1]
    count = int(argv[2]) if len(argv) > 2 else 4000
    seed = int(argv[3]) if len(argv) > 3 else 20240601
    rng = random.Random(seed)
    expressions = [random_expression(rng) for _ in range(count)]
    env = dict(os.environ, LC_ALL="C", LANG="C")
    proc = subprocess.run([cli, "eval"], input="\n".join(expressions) + "\n", capture_output=True,
                          text=True, env=env, timeout=600)
    if proc.returncode != 0:
        print("flatform-cli eval failed:", proc.stderr)
        return 1
    got = proc.stdout.split("\n")
    if len(got) != count + 1 or got[-1] != "":
        print("expected %d result lines, got %d" % (count, len(got) - 1))
        return 1
    bad = 0
    for expr, actual in zip(expressions, got):
        r = independent_evaluator.evaluate(expr)
        expected = "" if r is None else r
        if expected != actual:
            bad += 1
            if bad <= 20:
                print("differ: %r  cli=%r  independent=%r" % (expr, actual, expected))
    print("%d expressions, %d differences" % (count, bad))
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
