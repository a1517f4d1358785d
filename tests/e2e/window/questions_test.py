"""Sending, and the questions that it asks where PC and controller differ."""
import time
import unittest

from Scenario import Scenario

from Bus import wait_for
from Window import HZL120, LFT205

PLANT_ADDRESS = "1000"
ROOM_ADDRESS = "1050"
ROOM = "Heizkreis 1 Raumsolltemperatur Tag"
VERSION_QUESTION = (
    "Die Version auf dem Regler stimmt nicht mit derjenigen auf dem PC überein.\n"
    "Der Befehl Senden kann nicht ausgeführt werden.\n\nBitte wählen Sie:"
)
PLANT_QUESTION = (
    "Die Anlageart auf dem Regler stimmt nicht mit derjenigen auf dem PC überein.\n\nBitte wählen Sie:"
)
WATCHED_S = 2
WATCHES = 6
MOST_TICKS = 1


class Questions(Scenario):
    def ask(self, controller, question, first, second):
        """Sends until the question is there. Program, report, and the two buttons."""
        program = self.program_on(controller.device)
        report = program.transfer("Senden")
        dialog = program.window("Wählen")
        dialog.find("label", question)
        self.assertEqual([button.name for button in dialog.find_all("push button")], [first, second])
        self.assertEqual(program.state, "Busy")
        self.assertFalse(program.main.enabled)
        return program, report, dialog

    def answer(self, program, dialog, caption):
        dialog.find("push button", caption).press()
        wait_for(lambda: not program.is_shown("Wählen"), "the question gone")

    def ask_for_version(self):
        pc, regler = f"PC     (Senden Abbrechen)  : {HZL120}", f"Regler (Werte neu Einlesen): {LFT205}"
        asked = self.ask(self.controller("--controller", LFT205), VERSION_QUESTION, pc, regler)
        return *asked, pc, regler

    def test_send_without_question(self):
        controller = self.controller()
        program = self.program_on(controller.device)
        editor = program.open_expanded_editor(ROOM)
        program.type_value(editor, "22.5")
        report = program.transfer("Senden")
        self.assertEqual(report.wait_for_end(), "Senden.." + "." * 111 + "\nSenden beendet\n")
        self.assert_usable(program)
        self.assertEqual(int(controller.memory()[ROOM_ADDRESS], 16), 225)

    def test_other_version_answered_for_the_pc(self):
        program, report, dialog, pc, _ = self.ask_for_version()
        self.answer(program, dialog, pc)
        self.assertEqual(report.wait_for_end(), "Senden..\nSenden abgebrochen\n")
        self.assertEqual(program.versions.name, HZL120)
        self.assert_usable(program)

    def test_other_version_answered_for_the_controller(self):
        program, report, dialog, _, regler = self.ask_for_version()
        self.answer(program, dialog, regler)
        self.assertEqual(report.wait_for_end(), "Senden.." + "." * 77 + "\nSenden abgebrochen\n")
        self.assertEqual(program.versions.name, LFT205)
        self.assertIsNone(program.tree.find("Heizkreis 1"))
        self.assert_usable(program)

    def test_other_plant_type_answered_for_the_pc(self):
        controller = self.controller("--plant", "1")
        program, report, dialog = self.ask_for_plant(controller)
        self.answer(program, dialog, "PC: ")
        self.assertEqual(report.wait_for_end(), "Senden.." + "." * 111 + "\nSenden beendet\n")
        self.assertEqual(program.plants.name, "Anlageart")
        self.assert_usable(program)
        self.assertEqual(int(controller.memory()[PLANT_ADDRESS], 16), 0)

    def ask_for_plant(self, controller):
        return self.ask(controller, PLANT_QUESTION, "PC: ", "Regler: Heizung")

    def test_other_plant_type_answered_for_the_controller(self):
        controller = self.controller("--plant", "1")
        program, report, dialog = self.ask_for_plant(controller)
        self.assertIsNotNone(program.tree.find("Zuluft"))
        self.answer(program, dialog, "Regler: Heizung")
        text = report.wait_for_end()
        self.assertTrue(text.endswith(".\nSenden abgebrochen\n"), text)
        self.assertEqual(program.plants.name, "Heizung")
        self.assertIsNone(program.tree.find("Zuluft"))
        self.assert_usable(program)
        self.assertEqual(int(controller.memory()[PLANT_ADDRESS], 16), 1)

    def test_a_waiting_question_takes_no_processor_time(self):
        program, report, dialog, pc, _ = self.ask_for_version()
        # Drawing the question, on a busy machine later than usual, is not yet waiting.
        ticks = []
        while not ticks or (ticks[-1] > MOST_TICKS and len(ticks) < WATCHES):
            before = program.processor_ticks()
            time.sleep(WATCHED_S)
            ticks.append(program.processor_ticks() - before)
        self.assertLessEqual(ticks[-1], MOST_TICKS, ticks)
        self.answer(program, dialog, pc)
        self.assertEqual(report.wait_for_end(), "Senden..\nSenden abgebrochen\n")


if __name__ == "__main__":
    unittest.main()
