"""Before a command removes anything it wants a person's yes, on a terminal or in so many words."""

import subprocess
import unittest

from desktop import ACCEPTED, DONE, PROGRAM, REFUSED, DesktopTestCase

CLEAN = ("clean", "run", "npm")


class Agreement(DesktopTestCase):
    def setUp(self):
        super().setUp()
        self.write_settings(ACCEPTED | {"Velbrix_Privacy_consent_systemCleanup": True})
        self.entry = self.home / ".npm/_cacache/entry"
        self.entry.parent.mkdir(parents=True)
        self.program = self.start("--background")

    def check(self, is_agreed, run):
        self.entry.write_text("x")
        code, shown = run()
        self.assertEqual((code, self.entry.exists()), (DONE, False) if is_agreed else (REFUSED, True), shown)
        return shown

    def test_answers_on_a_terminal(self):
        for typed in (b"n\n", b"\n", b"yeah\n", b"\x04"):
            shown = self.check(False, lambda: self.program.run_on_terminal(typed, *CLEAN))
            self.assertIn("entry", shown)
            self.assertTrue(shown.rstrip().endswith("没有执行"), shown)
        for typed in (b"y\n", b" YES \n"):
            self.check(True, lambda: self.program.run_on_terminal(typed, *CLEAN))

    def test_without_a_terminal_nobody_is_asked(self):
        def run(*words, **streams):
            done = subprocess.run([PROGRAM, *CLEAN, *words], env=self.program.environment, capture_output=True, text=True,
                                  timeout=30, **streams)
            return done.returncode, done.stdout + done.stderr

        for streams in ({"stdin": subprocess.DEVNULL}, {"input": "y\n"}):
            shown = self.check(False, lambda: run(**streams))
            self.assertIn("没有执行。确认无误后加上 --yes 再运行一次。", shown)
        self.check(False, lambda: run("--json", input="y\n"))
        self.check(True, lambda: run("--yes", stdin=subprocess.DEVNULL))


if __name__ == "__main__":
    unittest.main(verbosity=2)
