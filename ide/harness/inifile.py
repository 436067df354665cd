# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Settings files as the IDE reads and writes them: sections of keys whose values are texts or lists of texts."""

import re

_ESCAPES = {"n": "\n", "r": "\r", "t": "\t", "0": "\0", '"': '"', "\\": "\\"}
_TOKEN = re.compile(r'\s*("(?:[^"\\]|\\.)*"|[^,]*?)\s*(?:,|$)')


def _quoted(text):
    if text.startswith("@"):
        text = "@" + text
    if re.fullmatch(r"[\w./:|@%+-]+", text):
        return text
    escaped = text.replace("\\", "\\\\").replace('"', '\\"').replace("\n", "\\n")
    return f'"{escaped}"'


def _unquoted(token):
    if token.startswith('"'):
        token = token[1:-1]
    token = re.sub(r"\\x([0-9a-fA-F]+)|\\(.)",
                   lambda m: chr(int(m[1], 16)) if m[1] else _ESCAPES.get(m[2], m[2]), token)
    return token[1:] if token.startswith("@@") else token


def _encoded(value):
    if isinstance(value, (list, tuple)):
        return ", ".join(map(_quoted, value)) if value else "@Invalid()"
    return _quoted(str(value))


def _decoded(text):
    if text == "@Invalid()":
        return []
    tokens = [match[1] for match in _TOKEN.finditer(text)]
    if text and not text.endswith(","):
        tokens.pop()  # the empty match at the end of the line
    values = [_unquoted(token) for token in tokens]
    return values if len(values) > 1 else "".join(values)


def write(path, sections):
    """Writes {section: {key: value}}."""
    path.parent.mkdir(parents=True, exist_ok=True)
    lines = []
    for section, values in sections.items():
        lines.append(f"[{section}]")
        lines += [f"{key}={_encoded(value)}" for key, value in values.items()]
        lines.append("")
    path.write_text("\n".join(lines), encoding="utf-8")


def read(path):
    """Returns {section: {key: value}}; a list of one text cannot be told from the text."""
    sections = {}
    section = None
    for line in path.read_text(encoding="utf-8").splitlines():
        if line.startswith("["):
            section = sections.setdefault(line.strip()[1:-1], {})
        elif "=" in line and section is not None:
            key, _, value = line.partition("=")
            section[key] = _decoded(value)
    return sections


def change(path, section, values):
    """Sets values of one section and leaves every other line as it is."""
    lines = path.read_text(encoding="utf-8").splitlines() if path.exists() else []
    header = f"[{section}]"
    if header not in lines:
        lines += ["", header]
    start = lines.index(header) + 1
    end = next((number for number in range(start, len(lines)) if lines[number].startswith("[")), len(lines))
    kept = [line for line in lines[start:end] if line.partition("=")[0] not in values]
    lines[start:end] = [f"{key}={_encoded(value)}" for key, value in values.items()] + kept
    path.write_text("\n".join(lines) + "\n", encoding="utf-8")


def as_list(value):
    """A list also of what was stored as one text."""
    if isinstance(value, str):
        return [value] if value else []
    return list(value or [])
