"""Starting with settings that are wrong, damaged or out of reach, and storing them at the end."""
import os
import random
import signal
import unittest

from Scenario import Scenario

from Window import EXAMPLES, HZL120

SCREEN_WIDTH, SCREEN_HEIGHT = 1280, 1024
# The window manager's frame is not known before the window is shown.
FRAME = 30
NO_NUMBER = "Der Text ist keine Zahl."


class Settings(Scenario):
    def setUp(self):
        self.store = self.folder()
        os.mkdir(os.path.join(self.store, "KALIVOR"))
        self.file = os.path.join(self.store, "KALIVOR", "KALIVOR.ini")

    def write(self, *lines):
        with open(self.file, "w", encoding="utf-8") as file:
            file.write("\n".join(["[Settings]", *lines, ""]))

    def content(self):
        with open(self.file, encoding="utf-8") as file:
            return file.read().splitlines()

    def start(self, **options):
        return self.program_on(self.controller().device, settings_folder=self.store, **options)

    def assert_started(self, program, *messages):
        self.assertEqual(program.messages, list(messages))
        self.assertEqual(program.versions.name, HZL120)
        self.assert_usable(program)

    def assert_on_screen(self, program):
        left, top, width, height = program.main.place
        self.assertGreaterEqual(left, 0)
        self.assertGreaterEqual(top, 0)
        self.assertLessEqual(left + width, SCREEN_WIDTH + FRAME)
        self.assertLessEqual(top + height, SCREEN_HEIGHT + FRAME)

    def test_a_first_start_has_none(self):
        os.rmdir(os.path.dirname(self.file))
        program = self.start()
        self.assert_started(program)
        self.assertEqual(program.end(), 0)
        self.assertIn("Adresse=1", self.content())

    def test_letters_in_numbers(self):
        self.write("Adresse=abc", "Schnittstelle=4x", "MainLeft=links")
        program = self.start()
        self.assert_started(program, NO_NUMBER, NO_NUMBER, NO_NUMBER)
        self.assertEqual(program.end(), 0)
        self.assertIn("Adresse=1", self.content())

    def test_a_number_that_is_too_large(self):
        self.write("Adresse=40000")
        self.assert_started(self.start(), "Zahl außerhalb des zulässigen Bereichs.")

    def test_a_missing_folder(self):
        self.write("Inipath=/fehlt/", "Userpath=/fehlt/auch")
        program = self.start(ini_path=None)
        self.assertEqual(len(program.messages), 1)
        lines = program.messages[0].split("\n")
        self.assertEqual(lines[:2], ["Fehler beim Lesen von", "/fehlt/VF.INI"])
        self.assertEqual(lines[-2:], ["Ueberprüfen Sie die Einstellungen in Optionen -> Dateien", ""])
        self.assertEqual(program.state, "Ready")
        self.assertEqual(program.entries(program.versions), [])
        # The folder of value files is missing as well: the dialog begins elsewhere.
        program.menu("ctrl+o")
        program.cancel_file("Öffnen")
        self.assertEqual(program.end(), 0)
        self.assertIn("Inipath=/fehlt/", self.content())

    def test_a_place_off_the_screen(self):
        for place in (100_000, -100_000):
            self.write(f"MainLeft={place}", f"MainTop={place}")
            program = self.start()
            self.assert_started(program)
            self.assert_on_screen(program)
            program.close()

    def test_a_size_beyond_the_screen(self):
        self.write("MainLeft=50000", "MainTop=0", "MainWidth=900000", "MainHeight=900000")
        program = self.start()
        self.assert_started(program)
        left, top, width, height = program.main.place
        self.assertLess(left, SCREEN_WIDTH)
        self.assertLess(top, SCREEN_HEIGHT)
        self.assertLessEqual(width, SCREEN_WIDTH)
        self.assertLessEqual(height, SCREEN_HEIGHT)

    def test_the_place_comes_back(self):
        place = ["MainHeight=9015", "MainLeft=3000", "MainTop=3300", "MainWidth=9000"]
        self.write(*place)
        for _ in range(2):
            program = self.start()
            self.assertEqual(program.main.place[2:], (600, 601))
            program.activate(program.main)
            self.assertEqual(program.end(), 0)
            self.assertEqual([line for line in self.content() if line.startswith("Main")], place)

    def test_a_small_window_stays_small_and_in_its_place(self):
        place = ["MainHeight=4500", "MainLeft=600", "MainTop=600", "MainWidth=6000"]
        self.write(*place)
        for _ in range(3):
            program = self.start()
            self.assertEqual(program.main.place[2:], (400, 300))
            program.activate(program.main)
            self.assertEqual(program.end(), 0)
            self.assertEqual([line for line in self.content() if line.startswith("Main")], place)

    def test_a_damaged_file(self):
        noise = random.Random(3).randbytes(2000)
        with open(self.file, "wb") as file:
            file.write(noise)
        program = self.start()
        self.assert_started(program)
        self.assertEqual(program.end(), 0)
        self.assertIn("Adresse=1", self.content())

    def test_a_store_that_takes_nothing(self):
        os.mkdir(self.file)
        program = self.start()
        self.assert_started(program)
        program.activate(program.main)
        program.ask_to_close(program.main)
        self.assertEqual(
            program.message(), f"Die Einstellungen konnten nicht gespeichert werden:\n{self.file}"
        )
        self.assertEqual(program.process.wait(60), 0)
        self.assertTrue(os.path.isdir(self.file))

    def test_a_pipe_that_nobody_writes(self):
        os.mkfifo(self.file)
        program = self.start()
        self.assert_started(program)

    def test_a_program_that_is_killed_leaves_them_as_they_were(self):
        self.write("Adresse=17", f"Inipath={EXAMPLES}/")
        before = self.content()
        program = self.start(ini_path=None)
        self.assert_started(program)
        program.process.send_signal(signal.SIGKILL)
        program.process.wait()
        self.assertEqual(self.content(), before)
        self.assertEqual(os.listdir(os.path.dirname(self.file)), ["KALIVOR.ini"])
        again = self.start(ini_path=None)
        self.assert_started(again)
        self.assertEqual(again.end(), 0)
        self.assertIn("Adresse=17", self.content())


if __name__ == "__main__":
    unittest.main()
