#!/usr/bin/env python3
"""portable_sources.py SOURCES BUILD [NAME …]: compiles what is not this host's own against the C++ library of a Mac.

The commands are those of the build; only the library differs, and that opening a file has to be looked at, as Qt wants
it from 6.10 on. NAMEs choose the files whose path contains one of them.
"""
import concurrent.futures
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys

SOURCES, BUILD, *NAMES = sys.argv[1:]
SOURCES, BUILD = pathlib.Path(SOURCES), pathlib.Path(BUILD)
WORK = BUILD / 'portable'
HOST_ONLY = ('Sources/Velbrix/platform/linux/', 'Tests/platform/', 'Tests/desktop/', 'Benchmarks/')
OPENING = ('qfile.h', 'qsavefile.h', 'qtemporaryfile.h')


def entries():
    """What is compiled, and how: (source, options, its headers that are compiled in advance)."""
    for entry in json.loads((BUILD / 'compile_commands.json').read_text()):
        source = pathlib.Path(entry['file'])
        if not source.is_relative_to(SOURCES) or source.is_relative_to(BUILD):
            continue
        name = source.relative_to(SOURCES).as_posix()
        if name.startswith(HOST_ONLY) or NAMES and not any(part in name for part in NAMES):
            continue
        words = shlex.split(entry['command'])
        advance = next((word for word in words if word.endswith('.hxx.pch')), None)
        headers = pathlib.Path(advance.removesuffix('.pch')).read_text() if advance else ''
        yield name, words, ''.join(re.findall(r'^#include.*\n', headers, re.M))


def options(words):
    """Those of the command that say what the code means; not how it is optimised or instrumented."""
    kept = [words[0]]
    for word, after in zip(words[1:], words[2:] + ['']):
        if word == '-isystem':
            kept += [word, after]
        elif re.match(r'-[DI]|-std=|-W|-fPIC', word) and word != '-Winvalid-pch' and '_autogen' not in word:
            kept.append(word)
    return [*kept, '-stdlib=libc++', f'-I{WORK}']


def write_opening_headers(words):
    """Qt's headers as they are from 6.10 on, where the result of opening must not be dropped."""
    folder = next(pathlib.Path(word) for word in words if word.endswith('/QtCore'))
    for name in OPENING:
        text, count = re.subn(r'^( *)(bool open\()', r'\1[[nodiscard]] \2', (folder / name).read_text(), flags=re.M)
        assert count, f'no open() in {name}'
        (WORK / name).write_text(text)


def write_moc_files(names):
    """What moc makes is the same everywhere, and is not there yet."""
    for name in names:
        for included in re.findall(r'#include "(\w+\.moc)"', (SOURCES / name).read_text()):
            (WORK / included).touch()


def run(command):
    done = subprocess.run(command, capture_output=True, text=True)
    return done.returncode, done.stderr


def precompiled(number, listed, words):
    header = WORK / f'headers{number}.h'
    # QCoro forgot this one up to 0.8.
    first = ['<exception>', *(f'"{name}"' for name in OPENING)]
    header.write_text(''.join(f'#include {name}\n' for name in first) + listed)
    code, said = run([*options(words), '-x', 'c++-header', str(header), '-o', f'{header}.pch'])
    assert code == 0, said
    return f'{header}.pch'


def main():
    WORK.mkdir(exist_ok=True)
    chosen = list(entries())
    assert chosen, 'nothing to check'
    write_opening_headers(chosen[0][1])
    write_moc_files(name for name, _, _ in chosen)
    # Targets have a file each, but few different lists.
    in_advance = {}
    for _, words, listed in chosen:
        if listed not in in_advance:
            in_advance[listed] = precompiled(len(in_advance), listed, words)

    def check(entry):
        name, words, listed = entry
        return run([*options(words), '-include-pch', in_advance[listed], '-fsyntax-only', str(SOURCES / name)])

    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        failed = [said for code, said in pool.map(check, chosen) if code != 0]
    print('\n'.join(failed))
    print(f'{len(chosen)} files, {len(failed)} of them not portable')
    sys.exit(bool(failed))


main()
