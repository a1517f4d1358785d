"""The program is killed: its next start offers what was not saved, and gives it back when asked to."""
import json
import os
import re
import signal
import unittest

from Scenario import Scenario

from Bus import wait_for
from Window import keys

DAY = "Heizkreis 1 Raumsolltemperatur Tag"
ITEM = re.compile(r"Wiederherstellen: 1 Wert von (heute|gestern) \d\d:\d\d")


class Recovery(Scenario):
    def setUp(self):
        self.store = self.folder()
        self.states = os.path.join(self.store, "KALIVOR")
        self.line = self.controller().device

    def start(self):
        return self.program_on(self.line, settings_folder=self.store)

    def kept(self, name="Wiederherstellung.json"):
        """The content of the file; None: there is none, {}: it is empty."""
        try:
            with open(os.path.join(self.states, name), encoding="utf-8") as file:
                text = file.read()
        except FileNotFoundError:
            return None
        return json.loads(text) if text else {}

    def kill(self, program):
        program.process.send_signal(signal.SIGKILL)
        self.assertEqual(program.process.wait(10), -signal.SIGKILL)

    def edit(self, program, value):
        program.type_value(program.open_expanded_editor(DAY), value)

    def offer(self, program):
        """The caption of the item, None where it is not shown."""
        program.menu("alt+w", "Down")
        menu = program.main.find("menu bar").find("menu item", "Werkzeuge")
        captions = wait_for(lambda: [item.name for item in menu.find_all("menu item")], "an open menu")
        keys("Escape", "Escape")
        return next((caption for caption in captions if caption.startswith("Wiederherstellen")), None)

    def test_a_killed_program(self):
        program = self.start()
        self.assertIsNone(self.offer(program))
        self.assertIsNone(self.kept(), "nothing is made before there is something to keep")
        self.edit(program, "22.5")
        wait_for(self.kept, "the file of what is unsaved")
        self.kill(program)

        program = self.start()
        self.assertEqual(program.messages, [])
        self.assertRegex(self.offer(program), ITEM)
        program.menu("alt+w", "h")
        program.tree.expand_all()
        self.assertIn("    22.5 °C", program.tree.row(DAY).name)
        self.assertIsNone(self.offer(program))
        # It is as unsaved as before, and a normal end keeps it for one start.
        self.assertEqual(program.end(), 0)
        program = self.start()
        self.assertRegex(self.offer(program), ITEM)
        self.assertEqual(program.end(), 0)
        self.assertEqual(self.kept(), {})
        self.assertIsNone(self.offer(self.start()))

    def test_two_programs(self):
        first = self.start()
        self.edit(first, "22.5")
        wait_for(self.kept, "the file of the first one")
        second = self.start()
        self.assertIsNone(self.offer(second), "the first one is at work")
        self.edit(second, "23.5")
        wait_for(lambda: self.kept("Wiederherstellung-2.json"), "the file of the second one")
        before = self.kept()
        self.kill(first)
        self.kill(second)
        self.assertEqual(self.kept(), before)
        for value in ("22.5", "23.5"):
            program = self.start()
            program.menu("alt+w", "h")
            program.tree.expand_all()
            self.assertIn(f"    {value} °C", program.tree.row(DAY).name)

    def test_a_damaged_file(self):
        os.mkdir(self.states)
        with open(os.path.join(self.states, "Wiederherstellung.json"), "wb") as file:
            file.write(b"\x00\xff damaged")
        program = self.start()
        self.assertEqual(len(program.messages), 1)
        self.assertIn("beschädigt", program.messages[0])
        self.assert_usable(program)
        self.assertIsNone(self.offer(program))
        with open(os.path.join(self.states, "Wiederherstellung.defekt.json"), "rb") as file:
            self.assertEqual(file.read(), b"\x00\xff damaged")
        self.assertEqual(program.end(), 0)
        self.assertEqual(self.start().messages, [])


if __name__ == "__main__":
    unittest.main()
