#!/usr/bin/env python3
"""Writes the manual page and the bash completion from the command table.

The command words, in the command table's order, are read from the table in
src/frontend/commands.cpp and the menu's labels from src/frontend/menu.cpp;
what each command takes and does comes from the README's command list. A
word of the table the README does not describe, or a README word the table
does not have, stops the build: the manual page and the completion cannot
drift from the table.

    gendocs.py --source <project root> --version <x.y.z.w> --man <out.1> --completion <out>
"""
import argparse
import datetime
import os
import re
import sys

TABLE_ROW = re.compile(r'^\s*\{"(-[^"]+)",\s*[A-Za-z_][\w:<>]*,\s*\d+\},')
MENU_ITEM = re.compile(r'\((\d+)\)\s*(.*?)\s*(?=\(\d+\)|$)')
# Words of the command line that are not rows of the command table.
TOP_LEVEL = ["-i", "-list", "-sdb", "-asynctimeout", "-h", "-help", "--help"]
DISCOVERY = ["-addr", "-bus", "-dev", "-func"]


class Failure(Exception):
    pass


def read(path):
    with open(path, encoding="utf-8") as f:
        return f.read()


def table_words(commands_cpp):
    text = read(commands_cpp)
    start = text.find("kCommandTable[] = {")
    if start < 0:
        raise Failure(f"{commands_cpp}: no kCommandTable")
    words = []
    for line in text[start:].splitlines()[1:]:
        if line.strip().startswith("{nullptr"):
            return words
        m = TABLE_ROW.match(line)
        if not m:
            raise Failure(f"{commands_cpp}: a table row this generator cannot read: {line.strip()}")
        words.append(m.group(1))
    raise Failure(f"{commands_cpp}: the table has no end marker")


def menu_items(menu_cpp):
    text = read(menu_cpp)
    start = text.find("kMenuLines[] = {")
    end = text.find("};", start)
    if start < 0 or end < 0:
        raise Failure(f"{menu_cpp}: no kMenuLines")
    items = []
    for literal in re.findall(r'"((?:[^"\\]|\\.)*)"', text[start:end]):
        line = literal.replace("\\t", " ")
        items += [(int(n), label) for n, label in MENU_ITEM.findall(line)]
    numbers = [n for n, _ in items]
    if numbers != list(range(1, len(items) + 1)):
        raise Failure(f"{menu_cpp}: menu options are not numbered 1 to {len(items)} in order")
    return items


def readme_rows(readme):
    """The rows of the README's command list: (words with arguments, menu, description)."""
    text = read(readme)
    section = re.search(r"^## Commands\n(.*?)(?=^## )", text, re.S | re.M)
    if not section:
        raise Failure(f"{readme}: no '## Commands' section")
    rows = []
    for line in section.group(1).splitlines():
        if not line.startswith("| ") or line.startswith("| command |"):
            continue
        # A "|" inside a cell is written "\\|".
        cells = [c.strip().replace("\\|", "|") for c in re.split(r"(?<!\\)\|", line.strip()[1:-1])]
        if len(cells) != 3:
            raise Failure(f"{readme}: a command row without three cells: {line}")
        rows.append(tuple(cells))
    return rows


def roff(markdown):
    """A README cell as roff text: code in bold, minus signs escaped."""
    out = []
    for i, part in enumerate(markdown.split("`")):
        part = part.replace("\\", "\\e").replace("-", "\\-")
        out.append(f"\\fB{part}\\fR" if i % 2 else part)
    text = "".join(out)
    return "\\&" + text if text[:1] in (".", "'") else text


def command_entries(rows, words):
    """Man page entries in README order, checked against the table's words."""
    known = set(words)
    described = set()
    entries = []
    for command, menu, what in rows:
        forms = re.findall(r"`([^`]+)`", command)
        if not forms:
            continue
        for form in forms:
            word = form.split()[0]
            if word not in known:
                raise Failure(f"README.md names {word}, which the command table does not have")
            described.add(word)
        head = roff(command)
        body = roff(what)
        if menu:
            body += f" (menu {menu})"
        entries.append((head, body))
    missing = [w for w in words if w not in described]
    if missing:
        raise Failure("README.md does not describe these command words: " + " ".join(missing))
    return entries


def menu_numbers(cell):
    """The options a README menu cell names: "62, 64", "67-78, 80"."""
    numbers = []
    for part in re.findall(r"\d+(?:-\d+)?", cell):
        first, _, last = part.partition("-")
        numbers += range(int(first), int(last or first) + 1)
    return numbers


def menu_descriptions(rows):
    """What the README says of the options that have no command word."""
    described = {}
    for command, menu, what in rows:
        if not command.strip():
            for number in menu_numbers(menu):
                described[number] = what
    return described


def manual(template, version, entries, items, described):
    commands = []
    for head, body in entries:
        commands += [".TP", head, body]
    menu = []
    for number, label in items:
        menu += [f".IP {number} 5", roff(label) if label else "\\&"]
        if number in described:
            menu += [".br", roff(described[number])]
    # The date of the build, or the one a reproducible build fixes.
    epoch = os.environ.get("SOURCE_DATE_EPOCH")
    when = datetime.datetime.fromtimestamp(int(epoch), datetime.timezone.utc) if epoch else datetime.datetime.now()
    text = read(template)
    return (text.replace("@VERSION@", version)
                .replace("@DATE@", when.strftime("%Y-%m-%d"))
                .replace("@COMMANDS@\n", "\n".join(commands) + "\n")
                .replace("@MENU@\n", "\n".join(menu) + "\n"))


def completion(template, words):
    return (read(template).replace("@COMMANDS@", " ".join(words))
                          .replace("@TOP_LEVEL@", " ".join(TOP_LEVEL))
                          .replace("@DISCOVERY@", " ".join(DISCOVERY)))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--source", required=True)
    parser.add_argument("--version", required=True)
    parser.add_argument("--man", required=True)
    parser.add_argument("--completion", required=True)
    args = parser.parse_args()
    root = args.source
    try:
        words = table_words(f"{root}/src/frontend/commands.cpp")
        items = menu_items(f"{root}/src/frontend/menu.cpp")
        rows = readme_rows(f"{root}/README.md")
        entries = command_entries(rows, words)
    except (Failure, OSError) as e:
        print(f"gendocs.py: {e}", file=sys.stderr)
        return 1
    with open(args.man, "w", encoding="utf-8") as f:
        f.write(manual(f"{root}/doc/zentrelLibTest.1.in", args.version, entries, items, menu_descriptions(rows)))
    with open(args.completion, "w", encoding="utf-8") as f:
        f.write(completion(f"{root}/doc/zentrelLibTest.bash-completion.in", words))
    return 0


if __name__ == "__main__":
    sys.exit(main())
