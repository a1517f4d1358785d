"""Lines and controllers that do not do what they should, and closing while they are at work."""
import os
import tempfile
import unittest

from Scenario import Scenario

from Bus import wait_for

NO_PORT = "ERROR: COM 1 nicht verfügber"


class Lines(Scenario):
    def test_dead_line(self):
        program = self.program("--fault", "silent")
        report = program.transfer("Empfangen")
        self.assertEqual(report.wait_for_end(), "Empfangen..\nERROR: kein Empfang\nEmpfangen abgebrochen\n")
        report.close()
        report = program.transfer("Senden")
        unknown = "Unbekannte ReglerVersion: ERROR: kein Empfang"
        self.assertEqual(report.wait_for_end(), f"Senden..\n{unknown}\nSenden abgebrochen\n")
        self.assert_usable(program)

    def test_missing_port(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        program = self.program_on(os.path.join(folder.name, "none"))
        report = program.transfer("Empfangen")
        self.assertEqual(report.wait_for_end(), f"Empfangen..\n{NO_PORT}\nEmpfangen abgebrochen\n")
        self.assert_usable(program)

    def test_unplugged_in_the_middle(self):
        # With this seed about 20 parameters have been received before.
        program = self.program("--seed", "5", "--fault", "unplug:0.05")
        report = program.transfer("Empfangen")
        lines = report.wait_for_end().split("\n")
        self.assertRegex(lines[0], r"^Empfangen\.\.\.+$")
        self.assertEqual(lines[1], NO_PORT)
        self.assertRegex(lines[2], "^Fehler bei: _")
        self.assertEqual(lines[-2:], ["Empfangen beendet", ""])
        self.assert_usable(program)
        report.close()
        report = program.transfer("Empfangen")
        self.assertEqual(report.wait_for_end(), f"Empfangen..\n{NO_PORT}\nEmpfangen abgebrochen\n")
        self.assert_usable(program)

    def test_controller_at_19200_only(self):
        program = self.program("--rate", "19200")
        report = program.transfer("Empfangen")
        self.assertEqual(report.wait_for_end(), "Empfangen.." + "." * 111 + "\nEmpfangen beendet\n")
        self.assert_usable(program)

    def test_closing_is_refused_during_a_transfer(self):
        program = self.program("--fault", "late:300")
        program.transfer_nothing()
        report = program.transfer("Empfangen")
        text = report.wait_for_text("Empfangen...")
        program.ask_to_close(program.main)
        # What comes to the window is looked at with each dot: the request to close has been by then.
        wait_for(lambda: len(report.text) > len(text) + 3, "more of the transfer")
        self.assertIsNone(program.process.poll())
        self.assertEqual(program.state, "Busy")
        report.button("Abbrechen").press()
        self.assertTrue(report.wait_for_end().endswith("\nEmpfangen abgebrochen\n"))
        report.close()
        self.assert_usable(program)

        program.ask_to_close(program.main)
        wait_for(lambda: program.process.poll() is not None, "the end of the program")
        self.assertEqual(program.process.returncode, 0)


if __name__ == "__main__":
    unittest.main()
