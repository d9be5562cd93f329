"""Damaged problem files."""

import random

from conftest import TOP

WORDS = ["-1", "0", "99999999999", "1e999", "nan", "x", "1.5", "", "end", "#", "2147483647", "1e-300", "\0"]


def _cut(rng, lines):
    del lines[rng.randrange(len(lines)) :]


def _delete(rng, lines):
    del lines[rng.randrange(len(lines))]


def _repeat(rng, lines):
    line = rng.choice(lines)
    lines.insert(rng.randrange(len(lines)), line)


def _swap(rng, lines):
    i, k = rng.randrange(len(lines)), rng.randrange(len(lines))
    lines[i], lines[k] = lines[k], lines[i]


def _word(rng, lines):
    k = rng.randrange(len(lines))
    words = lines[k].split(" ")
    words[rng.randrange(len(words))] = rng.choice(WORDS)
    lines[k] = " ".join(words)


def _character(rng, lines):
    k = rng.randrange(len(lines))
    place = rng.randrange(len(lines[k]) + 1)
    lines[k] = lines[k][:place] + chr(rng.randrange(256)) + lines[k][place + 1 :]


DAMAGES = [_cut, _delete, _delete, _repeat, _swap, _word, _word, _word, _character]


def sources():
    """The texts of small problem files."""
    paths = sorted(TOP.glob("tests/runs/*/model.dat")) + sorted(TOP.glob("examples/*.dat"))
    texts = [path.read_text(encoding="utf-8", errors="replace") for path in paths]
    return [text for text in texts if len(text) < 20000]


def broken_texts(count, seed):
    """Texts of problem files, each damaged one to four times; the same for the same seed."""
    texts = sources()
    rng = random.Random(seed)
    for _ in range(count):
        lines = rng.choice(texts).splitlines()
        for _ in range(rng.randrange(1, 5)):
            if lines:
                rng.choice(DAMAGES)(rng, lines)
        yield "\n".join(lines) + "\n"
