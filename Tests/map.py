#!/usr/bin/env python3
"""Checks that docs/architecture.md names every folder of the sources, and none that is gone."""
import pathlib
import re
import sys

PAGE = 'docs/architecture.md'


def named(page):
    """The folders of the page's tree, where two spaces go one level deeper."""
    tree = page.split('## The house', 1)[1].split('```')[1]
    above = []
    for indent, name in re.findall(r'^( *)((?:[\w.]+/)+)(?= |$)', tree, re.M):
        if len(indent) > 2 * len(above):
            continue  # a description's second line
        above = above[:len(indent) // 2] + [name]
        yield ''.join(above).rstrip('/')


root = pathlib.Path(sys.argv[1])
told = set(named((root / PAGE).read_text()))
sources = root / 'Sources/Velbrix'
there = {folder.relative_to(root).as_posix() for folder in sources.rglob('*') if any(folder.glob('*.*'))}
missing = [f'{PAGE} does not name {folder}' for folder in sorted(there - told)]
gone = [f'{PAGE} names {folder}, which is not there' for folder in sorted(told) if not (root / folder).is_dir()]
print('\n'.join(missing + gone))
sys.exit(bool(missing or gone))
