"""The real program in a private desktop: start it, ask it, look at it, and keep the evidence when a test fails."""

import functools
import json
import os
import pathlib
import pty
import re
import select
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time
import unittest

PROGRAM = os.environ["VELBRIX_PROGRAM"]
HELPERS = pathlib.Path(os.environ["VELBRIX_TEST_HELPERS"])
EVIDENCE = pathlib.Path(os.environ["VELBRIX_TEST_EVIDENCE"])
RUNTIME = pathlib.Path(os.environ["XDG_RUNTIME_DIR"])

DONE, REFUSED, USAGE, NOT_RUNNING = range(4)

ACCEPTED = {
    "Velbrix_Privacy_firstLaunchAccepted": True,
    "Velbrix_Privacy_didPromptAllSystemPermissions": True,
    "Velbrix_Privacy_consent_screenRecording": True,
    "Velbrix_Privacy_consent_systemAudio": True,
    "Velbrix_Privacy_consent_microphone": True,
}


def wait_until(condition, what, seconds=20):
    """Returns the condition's first true answer."""
    deadline = time.monotonic() + seconds
    while True:
        answer = condition()
        if answer:
            return answer
        if time.monotonic() > deadline:
            raise AssertionError(f"not within {seconds} s: {what}")
        time.sleep(0.03)


def output_of(*command, check=True):
    done = subprocess.run([str(word) for word in command], capture_output=True, text=True, timeout=60)
    if check and done.returncode != 0:
        raise AssertionError(f"{command} ended with {done.returncode}: {done.stderr}")
    return done.stdout


def press(*keys):
    output_of("xdotool", "key", *keys)


def screenshot(path):
    output_of("import", "-silent", "-window", "root", path)


def windows_of(pid):
    """The program's windows that the user can see, as X identifiers."""
    found = [line.split(None, 4) for line in output_of("wmctrl", "-l", "-p", check=False).splitlines()]
    mine = [int(line[0], 16) for line in found if int(line[2]) == pid]
    return [window for window in mine if wm_state(window) == "Normal"]


def show_background(image):
    # Its exit code is 1 although all is well.
    output_of("display", "-window", "root", image, check=False)


def geometry(window):
    told = output_of("xwininfo", "-id", window)
    names = ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height")
    return tuple(int(re.search(rf"{name}: +(-?\d+)", told)[1]) for name in names)


def active_window_pid():
    answer = output_of("xdotool", "getactivewindow", "getwindowpid", check=False).strip()
    return int(answer) if answer else None


def wm_state(window):
    found = re.search(r"window state: (\w+)", output_of("xprop", "-id", window, "WM_STATE", check=False))
    return found and found[1]


class Program:
    """One start of the program, in the home given."""

    def __init__(self, home, *arguments, env=None):
        self.home = home
        self.log = home / "program.log"
        self.environment = dict(
            os.environ,
            HOME=str(home),
            XDG_CONFIG_HOME=str(home / ".config"),
            XDG_CACHE_HOME=str(home / ".cache"),
            XDG_DATA_HOME=str(home / ".local/share"),
            QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1",
            **(env or {}),
        )
        with open(self.log, "ab") as log:
            self.process = subprocess.Popen([PROGRAM, *arguments], env=self.environment, stdout=log, stderr=log)
        self.pid = self.process.pid

    def run(self, *words, folder=None):
        return subprocess.run([PROGRAM, *words], env=self.environment, capture_output=True, text=True, timeout=30,
                              cwd=folder)

    def run_on_terminal(self, typed, *words):
        """With the user's answer to its first question; the exit code and all that was shown."""
        terminal, other_end = pty.openpty()
        process = subprocess.Popen([PROGRAM, *words], env=self.environment, stdin=other_end, stdout=other_end,
                                   stderr=other_end, start_new_session=True)
        os.close(other_end)
        shown = b""
        try:
            while select.select([terminal], [], [], 30)[0]:
                shown += os.read(terminal, 4096)
                if typed and b"[y/N]" in shown:
                    os.write(terminal, typed)
                    typed = b""
        except OSError:  # its end is closed
            pass
        finally:
            os.close(terminal)
        return process.wait(10), shown.decode()

    def ask(self, *words):
        """What the program answers in JSON; the exit code comes with it."""
        done = self.run(*words, "--json")
        answer = json.loads(done.stdout) if done.stdout else {}
        answer["exitCode"] = done.returncode
        return answer

    def do(self, *words):
        answer = self.ask(*words)
        if answer["exitCode"] != DONE:
            raise AssertionError(f"velbrix {' '.join(words)}: {answer}")
        return answer

    def status(self):
        """As the command line asks for it, without a process each time: the tests look many times a second."""
        with socket.socket(socket.AF_UNIX) as client:
            client.settimeout(30)
            client.connect(str(RUNTIME / "velbrix/control"))
            client.sendall(b'{"words": "status"}\n')
            with client.makefile() as lines:
                answer = next(said for said in map(json.loads, lines) if "exitCode" in said)
        if answer["exitCode"] != DONE:
            raise AssertionError(f"velbrix status: {answer}")
        return answer["data"]

    def wait_until_ready(self):
        def answers():
            if self.process.poll() is not None:
                raise AssertionError(f"the program ended with {self.process.returncode}")
            try:
                return self.status()
            except (ConnectionError, FileNotFoundError):
                return False  # nobody listens yet

        wait_until(answers, "the program answers")
        return self

    def wait_for_window(self):
        return wait_until(lambda: windows_of(self.pid), "the main window is shown")[0]

    def wait_for_recording(self, seconds=0):
        """Until the recording has run for so many seconds."""

        def runs():
            status = self.status()
            return status["recording"] and status["elapsedSeconds"] >= seconds

        wait_until(runs, f"a recording of {seconds} s", seconds + 10)

    def wait_for_movie(self):
        """The file that a recording has become."""

        def finished():
            status = self.status()
            return not status["recording"] and (status.get("lastMovie") or status.get("lastFailure")) and status

        status = wait_until(finished, "the recording ends")
        if "lastMovie" not in status:
            raise AssertionError(f"no movie: {status}")
        return pathlib.Path(status["lastMovie"])

    def settings(self):
        return json.loads((self.home / ".config/velbrix/settings.json").read_text())

    def kill(self):
        self.process.send_signal(signal.SIGKILL)
        self.process.wait()

    def end(self):
        """However the test has left it."""
        if self.process.poll() is not None:
            return
        self.process.terminate()
        try:
            self.process.wait(10)
        except subprocess.TimeoutExpired:
            self.kill()
            raise AssertionError("the program did not end when asked to")


class DesktopTestCase(unittest.TestCase):
    def __init__(self, name="runTest"):
        super().__init__(name)
        method = getattr(self, name, None)
        if not method:
            return

        @functools.wraps(method)
        def watched():
            try:
                method()
            except unittest.SkipTest:
                raise
            except BaseException:
                self._keep_evidence()
                raise

        setattr(self, name, watched)

    def setUp(self):
        self.programs = []
        self.home = pathlib.Path(tempfile.mkdtemp(prefix="home-", dir=os.environ["HOME"]))
        self.movies = self.home / "movies"
        self.movies.mkdir()
        self.addCleanup(shutil.rmtree, self.home, ignore_errors=True)
        output_of("xdotool", "mousemove", 640, 790)

    def write_settings(self, values):
        folder = self.home / ".config/velbrix"
        folder.mkdir(parents=True, exist_ok=True)
        (folder / "settings.json").write_text(json.dumps(values))

    def prepare(self, **settings):
        """A home whose owner has consented to everything; settings go by their names after Velbrix_ScreenRecord_."""
        chosen = {f"Velbrix_ScreenRecord_{name}": value for name, value in settings.items()}
        self.write_settings(ACCEPTED | {"Velbrix_ScreenRecord_outputDir": str(self.movies)} | chosen)

    def launch(self, *arguments, env=None):
        program = Program(self.home, *arguments, env=env)
        self.programs.append(program)
        self.addCleanup(program.end)
        return program

    def start(self, *arguments, env=None):
        return self.launch(*arguments, env=env).wait_until_ready()

    def start_hidden(self, **settings):
        self.prepare(**settings)
        return self.start("--background")

    def spawn(self, *command):
        """A helper that ends with the test."""
        process = subprocess.Popen([str(word) for word in command], stdout=subprocess.PIPE, text=True)
        self.addCleanup(process.stdout.close)
        self.addCleanup(process.wait)
        self.addCleanup(process.terminate)
        return process

    def color_window(self, title, color, x, y, width, height):
        """An ordinary window of one colour, as an X identifier."""
        return int(self.spawn(HELPERS / "colorwindow", title, color, x, y, width, height).stdout.readline())

    def _keep_evidence(self):
        folder = EVIDENCE / self.id().removeprefix("__main__.")
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir(parents=True)
        print(f"evidence in {folder}", file=sys.stderr)
        try:
            screenshot(folder / "screen.png")
        except (AssertionError, subprocess.TimeoutExpired) as error:
            print(f"no screenshot: {error}", file=sys.stderr)
        for movie in self.movies.glob("*.mp4"):
            shutil.copy(movie, folder)
        log = self.home / "program.log"
        if log.exists():
            shutil.copy(log, folder)
            print(f"the program's log:\n{log.read_text(errors='replace')}", file=sys.stderr)
        for program in self.programs:
            if program.process.poll() is None:
                print(program.run("status", "--json").stdout, file=sys.stderr)
