"""What the command line answers, and who may ask."""

import os
import re
import shutil
import signal
import socket
import stat
import subprocess
import sys
import unittest

import movie
from desktop import (ACCEPTED, DONE, NOT_RUNNING, PROGRAM, REFUSED, RUNTIME, USAGE, DesktopTestCase, output_of,
                     wait_until)
from wallpaper import BLUE, RED, make_clip


class CommandLine(DesktopTestCase):
    def test_usage(self):
        def run(*words):
            return subprocess.run([PROGRAM, *words], capture_output=True, text=True, timeout=10)

        helped = run("--help")
        self.assertEqual(helped.returncode, DONE)
        for word in ("velbrix record start", "--json", "--background", "退出码"):
            self.assertIn(word, helped.stdout)
        self.assertRegex(run("--version").stdout, r"^Velbrix \d+\.\d+\.\d+\n$")
        for reason, lines in {"无法识别的命令": ("dance", "record dance", "--background status"),
                              "还缺少要做什么": ("record", "wallpaper"),
                              "参数不对": ("show", "show recorder settings", "status --loud", "wallpaper set",
                                       "wallpaper set --display 1", "wallpaper play --display 1")}.items():
            for line in lines:
                wrong = run(*line.split())
                self.assertEqual((wrong.returncode, wrong.stdout), (USAGE, ""), line)
                self.assertTrue(wrong.stderr.startswith(reason), line)
                self.assertIn("用法：", wrong.stderr)
        for words in (["status"], ["quit"], ["record", "start"]):
            absent = run(*words)
            self.assertEqual((absent.returncode, absent.stderr), (NOT_RUNNING, "Velbrix 没有在运行\n"))
        self.assertIn('"ok":false', run("status", "--json").stdout)

    def test_answers(self):
        program = self.start_hidden()
        status = program.status()
        self.assertEqual(status["pid"], program.pid)
        self.assertEqual(
            [status[name] for name in ("recording", "windowVisible", "firstLaunchAccepted", "frames", "elapsedSeconds")],
            [False, False, True, 0, 0])
        self.assertIn("录制：未开始", program.run("status").stdout)

        hotkeys = {key["action"]: key for key in program.do("hotkeys")["hotkeys"]}
        self.assertEqual((hotkeys["recordToggle"]["active"], hotkeys["recordToggle"]["display"]), (True, "Ctrl+Alt+0"))
        self.assertEqual(hotkeys["screenshot"]["problem"], "此版本没有该功能")

        nowhere = program.run("show", "nowhere")
        self.assertEqual((nowhere.returncode, nowhere.stderr), (REFUSED, "没有这个标签页：nowhere\n"))
        self.assertEqual(program.do("show", "settings")["tab"], "settings")
        program.wait_for_window()
        self.assertTrue(program.status()["windowVisible"])

        self.assertEqual(program.do("quit")["exitCode"], DONE)
        self.assertEqual(program.process.wait(10), 0)
        self.assertEqual(program.run("status").returncode, NOT_RUNNING)
        self.assertFalse((RUNTIME / "velbrix/control").exists())

    def test_lists(self):
        program = self.start_hidden()
        window = self.color_window("目标", "FF0000", 100, 100, 320, 240)
        windows = program.do("record", "list-windows")["windows"]
        target = [window for window in windows if window["title"] == "目标"]
        self.assertEqual([window["app"] for window in target], ["Colorwindow"], windows)
        # With what the window manager puts around it.
        extra = [target[0]["width"] - 320, target[0]["height"] - 240]
        self.assertEqual(extra, self.frame_around(window))

        display, = program.do("record", "list-displays")["displays"]
        self.assertEqual([display[name] for name in ("number", "main", "width", "height")], [1, True, 1280, 800])

        devices = program.do("record", "list-devices")
        self.assertEqual([(device["name"], device["default"]) for device in devices["speakers"]],
                         [("Speaker", True), ("Mic", False)])
        self.assertEqual([(device["name"], device["default"]) for device in devices["microphones"]],
                         [("Microphone", True)])

    def frame_around(self, window):
        found = output_of("xprop", "-id", window, "_NET_FRAME_EXTENTS")
        left, right, top, bottom = (int(number) for number in re.findall(r"\d+", found))
        return [left + right, top + bottom]

    def test_recording(self):
        program = self.start_hidden(recordSystemAudio=False)
        idle = program.ask("record", "stop")
        self.assertEqual((idle["exitCode"], idle["error"]), (REFUSED, "当前没有录制"))
        started = program.do("record", "start")
        self.assertTrue(started["recording"])
        again = program.ask("record", "start")
        self.assertEqual((again["exitCode"], again["error"]), (REFUSED, "录制已在进行中"))
        program.wait_for_recording(1)
        self.assertEqual(program.status()["file"], started["file"])
        stopped = program.do("record", "stop")
        self.assertEqual((stopped["file"], stopped["bytes"]), (started["file"], os.path.getsize(started["file"])))
        self.assertFalse(program.status()["recording"])

        target = self.color_window("目标", "FF0000", 100, 100, 320, 240)
        listed, = [window for window in program.do("record", "list-windows")["windows"] if window["title"] == "目标"]
        program.do("record", "start", "--window", listed["id"], "--fps", "30", "--quality", "half")
        program.wait_for_recording(1)
        output_of("wmctrl", "-i", "-c", hex(target))
        streams, _ = movie.probe(program.wait_for_movie())
        half = [int(listed[side]) // 2 & ~1 for side in ("width", "height")]
        self.assertEqual([streams["video"][side] for side in ("width", "height")], half)
        self.assertIn("窗口", program.status()["endedEarly"])
        self.assertNotIn("lastFailure", program.status())

        self.assertTrue(program.do("record", "toggle")["recording"])
        program.wait_for_recording(1)
        self.assertFalse(program.do("record", "toggle")["recording"])
        self.assertEqual(len(list(self.movies.iterdir())), 3)

    def test_wallpaper(self):
        self.write_settings(ACCEPTED)
        program = self.start("--background")
        refused = program.ask("wallpaper", "play")
        self.assertEqual((refused["exitCode"], refused["error"]),
                         (REFUSED, "需要先在 Velbrix 窗口中确认：视频壁纸隐私确认"))
        program.end()

        self.write_settings(ACCEPTED | {"Velbrix_Privacy_consent_videoWallpaper": True})
        program = self.start("--background")
        self.assertEqual(program.ask("wallpaper", "pause")["error"], "动态壁纸没有在播放")
        self.assertIn("动态壁纸：未播放", program.run("status").stdout)
        self.assertEqual(program.ask("wallpaper", "set", "x.mp4", "--display", "2")["error"],
                         "没有编号为 2 的显示器（共 1 块）")
        clip = make_clip(self.home / "clip.mp4", RED, BLUE)
        names = ["-a b\nc.mp4", ":d.mp4", "--json", "中文 %1.mp4"]
        for name in names:
            shutil.copy(clip, self.home / name)
            done = program.run("wallpaper", "set", "--json", "--", name, folder=self.home)
            self.assertEqual(done.returncode, DONE, done.stderr + done.stdout)
            self.assertEqual(program.do("wallpaper", "status")["file"], str(self.home / name))
        status = program.status()["wallpaper"]
        self.assertEqual((status["state"], status["paused"], status["contentMode"]), ("playing", False, "video"))
        main = status["displays"][0]
        self.assertEqual((main["number"], main["main"], main["playing"]), (1, True, True))
        self.assertIn("动态壁纸：已暂停", program.run("wallpaper", "pause").stdout)
        self.assertIn("动态壁纸：播放中", program.run("wallpaper", "play").stdout)
        self.assertEqual(program.run("wallpaper", "stop").stdout, "动态壁纸已停止\n")
        self.assertFalse(program.do("wallpaper", "status")["displays"][0]["playing"])

    def test_quit_finishes_a_recording(self):
        program = self.start_hidden()
        made = program.do("record", "start")["file"]
        program.wait_for_recording(1)
        program.do("quit")
        self.assertEqual(program.process.wait(10), 0)
        self.assertGreaterEqual(movie.probe(made)[1], 1)
        self.assertNotIn("Velbrix_ScreenRecord_unfinishedFiles", program.settings())

    def test_what_was_begun_ends_with_its_client(self):
        folders = [self.home / f"rubbish/{name}" for name in "abcdefgh"]
        self.write_settings(ACCEPTED | {"Velbrix_Privacy_consent_systemCleanup": True,
                                        "VelbClean_CleanupSelection": [],
                                        "VelbClean_CustomPaths": [str(folder) for folder in folders]})
        program = self.start("--background")
        items = [item["id"] for item in program.do("clean", "list")["items"] if "path" in item]
        for act, said in ((signal.SIGINT, "清理已取消，处理了"), (signal.SIGHUP, "")):
            for folder in folders:
                folder.mkdir(parents=True, exist_ok=True)
                (folder / "file").touch()
            client = subprocess.Popen([PROGRAM, "clean", "run", "--yes", *items], env=program.environment,
                                      stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
            wait_until(lambda: not any(folders[0].iterdir()), "something is cleaned")
            client.send_signal(act)
            self.assertIn(said, client.communicate(timeout=10)[1])
            self.assertEqual(client.returncode, REFUSED if said else -act)
            wait_until(lambda: "jobs" not in program.status() or not program.status()["jobs"], "it has stopped")
            self.assertTrue(any(folders[-1].iterdir()))

    def test_consent_comes_first(self):
        self.write_settings({})
        program = self.start()
        for words in (["start"], ["toggle"]):
            refused = program.ask("record", *words)
            self.assertEqual(refused["error"], "尚未完成首启声明确认。请先在 Velbrix 窗口中确认。")
            self.assertEqual(refused["exitCode"], REFUSED)
        program.end()
        accepted = {name: value for name, value in ACCEPTED.items() if "screenRecording" not in name}
        self.write_settings(accepted)
        program = self.start("--background")
        refused = program.ask("record", "start")
        self.assertEqual((refused["exitCode"], refused["error"]),
                         (REFUSED, "需要先在 Velbrix 窗口中确认：屏幕录制隐私确认"))
        program.wait_for_window()  # where the notice can be confirmed
        self.assertFalse(program.status()["recording"])

    def test_only_the_user_may_ask(self):
        program = self.start_hidden()
        endpoint = RUNTIME / "velbrix/control"
        self.assertEqual(stat.S_IMODE(endpoint.parent.stat().st_mode), 0o700)
        mode = endpoint.stat().st_mode
        self.assertTrue(stat.S_ISSOCK(mode))
        self.assertEqual(stat.S_IMODE(mode) & 0o077, 0)

        for line in (b"dance\n", b'{"words": 7}\n', b'{"words": "status", "arguments": ["a", "b"]}\n'):
            with socket.socket(socket.AF_UNIX) as client:
                client.settimeout(5)
                client.connect(str(endpoint))
                client.sendall(line)
                self.assertNotIn(b'"exitCode":0', client.recv(4096))
        self.assertEqual(program.run("status").returncode, DONE)

        if os.geteuid() != 0 or not shutil.which("setpriv"):
            self.skipTest("only root can ask as another user")
        other = subprocess.run(
            ["setpriv", "--reuid=65534", "--regid=65534", "--clear-groups", sys.executable, "-c",
             f"import socket; socket.socket(socket.AF_UNIX).connect({str(endpoint)!r})"],
            capture_output=True, text=True, timeout=10)
        self.assertIn("PermissionError", other.stderr)


if __name__ == "__main__":
    unittest.main(verbosity=2)
