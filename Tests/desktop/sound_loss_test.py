"""Sound that goes away during a recording takes nothing else with it."""

import os
import signal
import unittest

import movie
from desktop import RUNTIME, DesktopTestCase, output_of


class SoundLoss(DesktopTestCase):
    def finish(self, program, seconds):
        program.wait_for_recording(seconds)
        made = program.do("record", "stop")["file"]
        streams, duration = movie.probe(made)
        self.assertGreaterEqual(duration, seconds)
        self.assertGreaterEqual(float(streams["video"]["duration"]), seconds)
        movie.picture_sums(made)
        return made

    def assert_heard(self, samples, seconds):
        """The sound server may give nothing in the first two seconds of a capture."""
        levels = movie.levels(samples, 440, seconds, 1)
        self.assertTrue(all(abs(level - 0.5) < 0.05 for level in levels), f"at {seconds} s: {levels}")

    def module(self, argument):
        for line in output_of("pactl", "list", "short", "modules").splitlines():
            if argument in line:
                return line.split("\t")[0]
        raise AssertionError(f"no module with {argument}")

    def test_microphone_unplugged(self):
        output_of("pactl", "load-module", "module-remap-source", "master=mic.monitor", "source_name=usbmic",
                  "source_properties=device.description=UsbMic")
        output_of("pactl", "set-default-source", "usbmic")
        self.addCleanup(output_of, "pactl", "set-default-source", "microphone")
        tone = movie.write_tone(self.home / "tone.wav", 440, 20)
        self.spawn("paplay", "--device=mic", tone)
        program = self.start_hidden(recordSystemAudio=False, recordMicrophone=True, microphoneID="")
        program.do("record", "start")
        program.wait_for_recording(4)
        output_of("pactl", "unload-module", self.module("source_name=usbmic"))
        made = self.finish(program, 7)
        self.assert_heard(movie.sound(made), 2.5)

    def test_speaker_changes(self):
        output_of("pactl", "load-module", "module-null-sink", "sink_name=second",
                  "sink_properties=device.description=Second")
        self.addCleanup(lambda: output_of("pactl", "unload-module", self.module("sink_name=second")))
        self.addCleanup(output_of, "pactl", "set-default-sink", "speaker")
        tone = movie.write_tone(self.home / "tone.wav", 440, 20)
        self.spawn("paplay", tone)
        program = self.start_hidden(recordSystemAudio=True)
        program.do("record", "start")
        program.wait_for_recording(4)
        output_of("pactl", "set-default-sink", "second")
        made = self.finish(program, 9)
        heard = movie.sound(made)
        self.assert_heard(heard, 2.5)
        self.assert_heard(heard, 8)

    # Last, as it takes the desktop's sound server away.
    def test_the_sound_server_dies(self):
        program = self.start_hidden(recordSystemAudio=True, recordMicrophone=True)
        program.do("record", "start")
        program.wait_for_recording(3)
        os.kill(int((RUNTIME / "pulse/pid").read_text()), signal.SIGKILL)
        self.finish(program, 5)
        refused = program.ask("record", "list-devices")
        self.assertNotEqual(refused["exitCode"], 0)
        # Without sound there is still a picture, or a reason.
        answer = program.ask("record", "start")
        if answer["exitCode"] == 0:
            self.finish(program, 1)
        else:
            self.assertTrue(answer["error"])


if __name__ == "__main__":
    unittest.main(verbosity=2)
