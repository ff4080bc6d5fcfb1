#!/usr/bin/env python3
"""Checks the rules about who may use what, so that nobody has to remember them."""
import pathlib
import re
import sys

HOST = r'platform/(linux|macos)/'
FEATURES = ('remote', 'wallpaper', 'capture', 'tools', 'maintenance', 'steam')
# Rooms of one feature that stand beside each other: what they share lies in the folder around them.
NEIGHBOURS = ('maintenance/cleanup', 'maintenance/uninstall', 'maintenance/backup')

# (files it holds for, files excepted, forbidden text, what to do instead)
RULES = [
    (r'.*', HOST, r'\bQ_OS_\w+|__APPLE__|__linux__', 'ask the platform port, not the preprocessor'),
    (r'.*', HOST, r'#include <(X11|xcb|AppKit|Carbon|libav\w+|mpv|pulse|QDBus)\b[^>]*>', 'host headers live under platform/<host>/'),
    (r'.*', r'views/|app/main|platform/', r'#include [<"](views/|QWidget|QDialog|QMessageBox|QApplication)[^>"]*[>"]', 'models publish; views show'),
    (r'platform/', r'views/', r'#include "views/', 'hosts know no views'),
    (r'.*', HOST, r'\b(SOCK_(CLOEXEC|NONBLOCK)|MSG_NOSIGNAL|O_TMPFILE|accept4|pipe2|renameat2|statx|fallocate|copy_file_range|'
     r'memfd_create|(event|timer|signal)fd|epoll_\w+|inotify_\w+|prctl|st_[acm]tim\b|fdatasync|secure_getenv)\b|#include <(linux|sys/(epoll|'
     r'inotify|prctl|statfs|vfs|sendfile|random))[./]', 'a Mac has no such call'),
    (r'.*', r'foundation/SystemClock|linux/media/recording/MonotonicTime', r'\bQTimer\b|\bQ(Elapsed|Deadline)Timer\b|\bQ(Date|Time|DateTime)::current|\b(steady|system|high_resolution)_clock\b|\b(clock_gettime|gettimeofday)\b|\btime\((nullptr|NULL|0)\)|\bNSDate\b|\bCACurrentMediaTime\b', 'take the time from foundation/Clock.h'),
    (r'.*', r'foundation/ProcessRunner', r'\bQProcess\b(?!Environment)', 'run programs through foundation/ProcessRunner.h'),
    (r'.*', r'^$', r'\bQEventLoop\b|\.exec\(\)(?!;\s*// the program)|\bwaitFor(Started|Finished|ReadyRead|BytesWritten)\b', 'no nested event loops'),
    (r'.*', r'^$', r'(?s)QCoro::Task<[^;{}()]*>\s+[\w:]+\([^;{}]*\bconst [\w:<>, ]+ &[^;{}]*\)[^;{}]*\{(?:(?!\n\}).)*?\bco_(await|return)\b',
     'a coroutine may go on when values it was given by reference are gone'),
    (r'foundation/', r'^$', r'#include "(platform|app|views|%s)/' % '|'.join(FEATURES), 'foundation knows no feature and no host'),
    (r'platform/[^/]+$', r'^$', r'#include "(app|views|platform/(linux|macos)|%s)/' % '|'.join(FEATURES), 'a port knows only foundation'),
    (r'platform/linux/', r'platform/linux/(x11/|MakePlatform)', r'#include ("platform/linux/x11/|<xcb/)', 'only x11/ knows X11'),
    (r'platform/(linux|macos)/', r'^$', r'#include "(app|views|%s)/' % '|'.join(FEATURES), 'a host knows only ports and foundation'),
    (r'(%s)/' % '|'.join(FEATURES), r'^$', r'#include "(app|views|platform/(linux|macos))/', 'features know ports, not the application above them'),
    (r'app/', r'app/main', r'#include "(views|platform/(linux|macos))/', 'the application knows features and ports'),
    (r'views/', r'^$', r'#include "platform/(linux|macos)/', 'views know ports at most'),
]
RULES += [(rf'{name}/', r'^$', r'#include "(%s)/' % '|'.join(f for f in FEATURES if f != name), 'features do not know each other')
          for name in FEATURES]
RULES += [(rf'{name}/', r'^$', r'#include "(%s)/' % '|'.join(n for n in NEIGHBOURS if n != name), 'neighbouring rooms do not know each other')
          for name in NEIGHBOURS]


def violations(root):
    for file in sorted(p for p in root.rglob('*') if p.suffix in {'.h', '.cpp', '.mm'}):
        name, text = file.relative_to(root).as_posix(), file.read_text()
        for applies, excepted, forbidden, instead in RULES:
            if re.match(applies, name) and not re.search(excepted, name):
                for hit in re.finditer(forbidden, text):
                    line = text.count('\n', 0, hit.start()) + 1
                    yield f'{name}:{line}: {instead}: {hit.group(0)[:60]!r}'


broken = list(violations(pathlib.Path(sys.argv[1])))
print('\n'.join(broken))
sys.exit(bool(broken))
