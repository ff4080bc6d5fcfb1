#!/usr/bin/env python3
"""Checks every shell script with shellcheck, and that none needs more than the bash 3.2 that a Mac has."""
import pathlib
import re
import subprocess
import sys

# (what bash 3.2 lacks, what to write instead)
LACKING = [
    (r'\b(mapfile|readarray)\b', 'while read -r'),
    (r'\b(declare|local|typeset)\s+-\w*[Agnlu]', 'plain variables'),
    (r'\$\{\w+(\[[^]]*\])?(\^|,|@[A-Za-z]\})', 'tr'),
    (r'\|&', '2>&1 |'),
    (r'&>>', '>>FILE 2>&1'),
    (r'\bwait\s+-\w', 'wait PID'),
    (r'\bcoproc\b', 'a named pipe'),
    (r';;?&', 'one case after the other'),
    (r'\bshopt\s+-s\s+(globstar|lastpipe|autocd|inherit_errexit)', 'find'),
    (r'\bprintf\s+-v\s+\w+\[|\bprintf\b.*%\([^)]*\)T|\$\{?EPOCH(SECONDS|REALTIME)\b', 'date'),
    (r'\[\[\s+-[vR]\s', '[ -n "${NAME+set}" ]'),
    (r'\$\{\w+:[^}:]*:\s*-\d', 'a length counted from the front'),
    (r'\{\w+\}[<>]', 'a fixed file descriptor'),
    (r'\bread\s+-\w*[iN]\b|\bread\s+-t\s*\d*\.', 'head, or whole seconds'),
]

FOLDERS = ('.ci', 'cmake', 'scripts', 'Benchmarks', 'Resources', 'Tests')


def is_script(file):
    with file.open('rb') as content:
        return re.match(rb'#!.*\b(ba)?sh\b', content.readline()) is not None


def complaints(script):
    text = script.read_text()
    for number, line in enumerate(text.splitlines(), 1):
        if line.lstrip().startswith('#'):
            continue
        for lacking, instead in LACKING:
            if found := re.search(lacking, line):
                yield number, f'bash 3.2 has no {found.group(0)!r}; write {instead}'
        # There, an empty array counts as unset.
        for name in re.findall(r'(?<!\+)"\$\{(\w+)\[@\]\}"', line):
            if re.search(rf'\b{name}=\(\)', text):
                yield number, f'write ${{{name}[@]+"${{{name}[@]}}"}}: the array may be empty'


root = pathlib.Path(sys.argv[1])
candidates = [*root.iterdir(), *(file for folder in FOLDERS for file in (root / folder).rglob('*'))]
scripts = [file for file in candidates if file.is_file() and is_script(file)]
assert root / 'test' in scripts
found = [f'{script.relative_to(root)}:{number}: {what}' for script in scripts for number, what in complaints(script)]
print('\n'.join(found))
checked = subprocess.run(['shellcheck', *scripts])
sys.exit(bool(found) or checked.returncode)
