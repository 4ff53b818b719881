"""Reads the includes of a source tree and says which of them break the order of its folders."""

import re
from pathlib import Path

# What each folder builds on; what those build on is open to it too.
BUILDS_ON = {
    "base": [],
    "model": ["base"],
    "library": ["model"],
    "storage": ["model"],
    "presence": ["storage"],
    "reminders": ["storage", "library"],
    "focus": ["reminders"],
    "alerts": ["reminders", "focus"],
    "stats": ["storage"],
    "planning": ["storage", "library", "stats"],
    "sound": ["storage", "focus"],
    "menubar": ["alerts", "presence", "stats"],
    "updates": ["storage"],
    "app": ["alerts", "presence", "planning", "sound", "menubar", "updates"],
    # Adapters know the interfaces that they implement, never the application or its windows.
    "platform": ["alerts", "presence", "planning", "sound", "menubar", "updates"],
    "ui/theme": ["library"],
    "ui/alert": ["alerts", "ui/theme"],
    "ui/pill": ["menubar", "ui/alert"],
    "ui/tray": ["app", "ui/theme", "ui/panel"],
    "ui/stats": ["app", "ui/theme"],
    "ui/remote": ["app", "ui/alert"],
    "ui/window": ["app", "ui/theme", "ui/stats"],
    "ui/panel": ["app", "ui/theme", "ui/window"],
    "ui": ["ui/alert", "ui/pill", "ui/tray", "ui/window", "ui/panel"],
    "main": ["platform", "ui", "ui/remote"],
}

ADAPTERS = {"platform", "ui", "ui/alert", "ui/panel", "ui/pill", "ui/remote", "ui/stats", "ui/theme", "ui/tray", "ui/window", "main"}

# Which folders may include what is neither ours nor the standard library's, and whether in headers too.
FOREIGN = [
    (re.compile(r"Q"), ADAPTERS, {".h", ".cpp"}),
    (re.compile(r"nlohmann/json_fwd\.hpp$"), {"base", "storage"}, {".h", ".cpp"}),
    (re.compile(r"nlohmann/"), {"base", "storage"}, {".cpp"}),
    (re.compile(r"(sqlite3\.h$|SQLiteCpp/)"), {"storage"}, {".cpp"}),
    (re.compile(r"unicode/"), {"base"}, {".cpp"}),
    (re.compile(r".*[./]"), ADAPTERS | {"base", "storage"}, {".cpp"}),  # the system's own
]

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.MULTILINE)


def folder_of(path):
    """The entry of BUILDS_ON that a path relative to the tree belongs to; None when there is none."""
    if path == Path("main.cpp"):
        return "main"
    folders = path.parts[:-1]
    # A folder below ui/ has an entry of its own; those below other folders belong to these.
    name = "/".join(folders[:2]) if folders[:1] == ("ui",) else "".join(folders[:1])
    return name if name in BUILDS_ON and name != "main" else None


def reachable(folder):
    found = {folder}
    for below in BUILDS_ON[folder]:
        found |= reachable(below)
    return found


def violations(root):
    """One line for each include below `root` that must not be, as "file: reason"."""
    found = []
    for file in sorted(p for p in root.rglob("*") if p.suffix in {".h", ".cpp"}):
        path = file.relative_to(root)
        folder = folder_of(path)
        if folder is None:
            found.append(f"{path}: is in no folder of the table")
            continue
        for bracket, name in INCLUDE.findall(file.read_text(encoding="utf-8")):
            reason = own(root, folder, name) if bracket == '"' else foreign(path, folder, name)
            if reason:
                found.append(f"{path}: {reason}")
    return found


def own(root, folder, name):
    if name.endswith(".moc"):
        return None
    if not (root / name).is_file():
        return f'"{name}" is not a file named from the root of the sources'
    target = folder_of(Path(name))
    if target not in reachable(folder):
        return f'"{name}": {folder} does not build on {target}'
    return None


def foreign(path, folder, name):
    for pattern, folders, suffixes in FOREIGN:
        if pattern.match(name):
            if folder not in folders:
                return f"<{name}> does not belong in {folder}"
            if path.suffix not in suffixes:
                return f"<{name}> belongs in .cpp files"
            return None
    return None
