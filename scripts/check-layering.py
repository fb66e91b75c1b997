#!/usr/bin/env python3
"""Checks that every file includes only what its area may see.

The areas, their order and their declared dependencies are read from the build itself: the
order from VN_ALL_AREAS in the top CMakeLists.txt, each area's DEPENDS from the vn_add_area()
call in src/<area>/CMakeLists.txt. A file of area A (under src/A, include/vn/A, tests/A or
bench/A) may include:
  - public headers ("vn/B/...") of A and of the areas in A's DEPENDS closure;
  - A's own private headers ("A/..." or a path next to the file);
  - the platform area's internal layer ("platform/internal/...") from any area;
  - from tests and benchmarks only: the shared test-support library ("testing/...").
A public header never includes a private header or a third-party library's header. An area
may only depend on areas before it in the order. The umbrella header, the tool and the fuzz
targets see every public header.

Usage: scripts/check-layering.py [repository root]. Prints one line per violation and exits
with status 1 when there is any.
"""

import re
import sys
from pathlib import Path

INCLUDE = re.compile(r'^[ \t]*#[ \t]*include\s*([<"])([^">]+)[">]', re.MULTILINE)
THIRD_PARTY = ("unicode/", "curl/", "openssl/", "uuid/", "yajl/", "plist/", "asio", "zlib.h",
               "minizip/", "geos", "httplib.h")


def read_order(root):
    text = (root / "CMakeLists.txt").read_text()
    match = re.search(r"set\(VN_ALL_AREAS ([^)]*)\)", text)
    if not match:
        sys.exit("check-layering: VN_ALL_AREAS not found in CMakeLists.txt")
    return match.group(1).split()


def read_depends(root, areas):
    depends = {}
    for area in areas:
        cmake = root / "src" / area / "CMakeLists.txt"
        if not cmake.exists():
            continue
        call = re.search(r"vn_add_area\(\s*" + re.escape(area) + r"\b(.*?)\)", cmake.read_text(),
                         re.DOTALL)
        if not call:
            sys.exit(f"check-layering: no vn_add_area({area} ...) in {cmake}")
        words = call.group(1).split()
        listed = []
        if "DEPENDS" in words:
            for word in words[words.index("DEPENDS") + 1:]:
                if word in ("SOURCES", "LIBRARIES"):
                    break
                listed.append(word)
        depends[area] = listed
    return depends


def closures(order, depends, problems):
    position = {area: index for index, area in enumerate(order)}
    closure = {}
    for area in order:
        if area not in depends:
            continue
        seen = {area}
        for dependency in depends[area]:
            if dependency not in position:
                problems.append(f"src/{area}/CMakeLists.txt: depends on unknown area {dependency}")
                continue
            if position[dependency] >= position[area]:
                problems.append(f"src/{area}/CMakeLists.txt: depends on {dependency}, which "
                                f"comes after it in VN_ALL_AREAS")
                continue
            seen |= closure.get(dependency, {dependency})
        closure[area] = seen
    return closure


def classify(root, path, areas):
    """(kind, area) of a file: kind is src, public, tests, bench or free (sees everything)."""
    parts = path.relative_to(root).parts
    if parts[0] == "src" and len(parts) > 2 and parts[1] in areas:
        return "src", parts[1]
    if parts[:2] == ("include", "vn") and len(parts) > 3 and parts[2] in areas:
        return "public", parts[2]
    if parts[0] in ("tests", "bench") and len(parts) > 2 and parts[1] in areas:
        return parts[0], parts[1]
    if parts[0] == "tests" and len(parts) > 2 and parts[1] == "testing":
        return "testing", None
    return "free", None


def check_include(root, path, kind, area, target, closure, areas):
    """The reason why path may not include target, or None."""
    if target.startswith("vn/"):
        target_area = target.split("/")[1] if target.count("/") >= 2 else None
        if target_area is None or kind in ("free", "testing"):
            return None
        if target_area not in closure.get(area, {area}):
            return f"public header of {target_area}, outside {area}'s DEPENDS closure"
        return None
    if kind == "public":
        return "a public header includes a non-public header"
    if (path.parent / target).exists():
        return None  # next to the including file
    if target.startswith("platform/internal/"):
        return None
    first = target.split("/")[0]
    if first == "testing":
        return None if kind in ("tests", "bench", "testing") else "test support outside tests"
    if first in areas:
        if kind == "free" or first == area:
            return None
        if kind in ("tests", "testing") and (root / "tests" / target).exists():
            return f"test helper of {first}'s tests: move it to tests/testing/"
        return f"private header of {first}"
    return None


def main():
    root = Path(sys.argv[1] if len(sys.argv) > 1 else Path(__file__).resolve().parent.parent)
    order = read_order(root)
    areas = set(order)
    problems = []
    closure = closures(order, read_depends(root, order), problems)
    files = [p for folder in ("src", "include", "tests", "bench", "tools", "fuzz")
             for p in sorted((root / folder).rglob("*")) if p.suffix in (".h", ".cpp")]
    for path in files:
        kind, area = classify(root, path, areas)
        text = path.read_text(errors="replace")
        for match in INCLUDE.finditer(text):
            bracket, target = match.groups()
            line = text.count("\n", 0, match.start()) + 1
            where = f"{path.relative_to(root)}:{line}"
            if bracket == "<":
                if kind == "public" and target.startswith(THIRD_PARTY):
                    problems.append(f"{where}: a public header includes <{target}>")
                continue
            reason = check_include(root, path, kind, area, target, closure, areas)
            if reason:
                problems.append(f"{where}: includes \"{target}\": {reason}")
    for problem in problems:
        print(problem)
    if problems:
        print(f"check-layering: {len(problems)} violation(s)", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
