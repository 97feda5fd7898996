#!/usr/bin/env python3
"""Fails when an #include runs back up the layers.

The layers and their order come from src/CMakeLists.txt (the order of its add_subdirectory lines), what each
layer may see from the DEPS of its sw_library (followed transitively, as CMake links them). A file in
src/<layer>/ may include headers of its own layer and of the layers it links; fuzz/ and bench/ may include
every layer below the front ends (they link sw::core), bench/gui/ the window too. The command line is a thin
front end over the session: below `session` it may include only what cli_allowed_includes.txt lists. The
window sees the session alone: below `session` it may include only what gui_allowed_includes.txt lists.
usage: check_layers.py SOURCE_DIR
"""
import os
import re
import sys

INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.MULTILINE)


def layer_order(src):
    text = open(os.path.join(src, "CMakeLists.txt"), encoding="utf-8").read()
    text = re.sub(r"#.*", "", text)
    return re.findall(r"add_subdirectory\((\w+)\)", text)


def library_deps(src, layer):
    """The sw:: libraries a layer's CMakeLists.txt links (DEPS of sw_library, target_link_libraries)."""
    path = os.path.join(src, layer, "CMakeLists.txt")
    text = re.sub(r"#.*", "", open(path, encoding="utf-8").read())
    return set(re.findall(r"\bsw::(\w+)", text)) - {layer}


def visible_layers(layers, deps):
    """Each layer with the layers it links, directly or through another layer."""
    seen = {}
    for layer in layers:
        closure = {layer}
        stack = list(deps[layer])
        while stack:
            other = stack.pop()
            if other == "core":
                closure.update(layers[: layers.index("session") + 1])
                continue
            if other not in closure:
                closure.add(other)
                stack.extend(deps.get(other, ()))
        seen[layer] = closure
    return seen


def source_files(folder):
    for root, _, names in os.walk(folder):
        for name in sorted(names):
            if name.endswith((".h", ".cpp")):
                yield os.path.join(root, name)


def main():
    root = os.path.abspath(sys.argv[1] if len(sys.argv) > 1 else os.path.join(os.path.dirname(__file__), "../.."))
    src = os.path.join(root, "src")
    layers = layer_order(src)
    deps = {layer: library_deps(src, layer) for layer in layers}
    problems = []

    # The libraries themselves: no layer links one listed after it.
    for layer in layers:
        for other in sorted(deps[layer]):
            if other == "core":
                continue
            if other not in layers:
                problems.append(f"src/{layer}/CMakeLists.txt links sw::{other}, which is no layer")
            elif layers.index(other) > layers.index(layer):
                problems.append(f"src/{layer}/CMakeLists.txt links sw::{other}, a layer above it")

    visible = visible_layers(layers, deps)
    session_rank = layers.index("session")

    def read_allowed(name):
        entries = set()
        for line in open(os.path.join(os.path.dirname(os.path.abspath(__file__)), name), encoding="utf-8"):
            line = line.split("#", 1)[0].strip()
            if line:
                entries.add(line)
        return entries

    # The front ends and what each may include from below the session, by "<file>: <header>".
    front_ends = {
        "cli": (read_allowed("cli_allowed_includes.txt"), "the command line", "cli_allowed_includes.txt",
                "only to print what the session returns"),
        "gui": (read_allowed("gui_allowed_includes.txt"), "the window", "gui_allowed_includes.txt",
                "only for a seam the front end builds or implements; anything else comes through a "
                "session header"),
    }
    used = {name: set() for name in front_ends}

    def check(path, may_see, front_end=None):
        rel = os.path.relpath(path, root)
        text = open(path, encoding="utf-8").read()
        for target in INCLUDE.findall(text):
            folder = target.split("/", 1)[0]
            if "/" not in target or folder not in layers:
                continue  # a header beside the file, or a test's or benchmark's own
            if not os.path.exists(os.path.join(src, target)):
                problems.append(f"{rel}: includes {target}, which does not exist")
                continue
            if folder not in may_see:
                problems.append(f"{rel}: includes {target}, but its layer does not link sw::{folder}")
            elif front_end and layers.index(folder) < session_rank:
                allowed, who, listing, when = front_ends[front_end]
                entry = f"{os.path.basename(path)}: {target}"
                if entry in allowed:
                    used[front_end].add(entry)
                else:
                    problems.append(f"{rel}: {who} includes {target}, below the session "
                                    f"(allow it in tests/layering/{listing} {when})")

    for layer in layers:
        for path in source_files(os.path.join(src, layer)):
            check(path, visible[layer], front_end=layer if layer in front_ends else None)
    core = set(layers[: session_rank + 1])
    for folder in ("fuzz", "bench"):
        for path in source_files(os.path.join(root, folder)):
            may_see = core | {"gui"} if os.sep + "gui" + os.sep in path else core
            check(path, may_see)

    for name, (allowed, _, listing, _) in front_ends.items():
        for entry in sorted(allowed - used[name]):
            problems.append(f"tests/layering/{listing}: '{entry}' is no longer needed")

    for problem in problems:
        print(problem)
    if problems:
        print(f"{len(problems)} layering problem(s); layers in order: {' '.join(layers)}")
        return 1
    print(f"layers in order: {' '.join(layers)}; every include runs down")
    return 0


if __name__ == "__main__":
    sys.exit(main())
