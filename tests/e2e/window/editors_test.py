"""The editors, opened and used with the keyboard."""
import unittest

from Scenario import Scenario

from Bus import wait_for

DAY = "Heizkreis 1 Raumsolltemperatur Tag"
PLACE = "Standort...."


class Editors(Scenario):
    def setUp(self):
        self.shown = self.program()

    def text_of(self, start):
        return self.shown.tree.row(start).name

    def test_number(self):
        editor = self.shown.open_expanded_editor(DAY)
        self.assertEqual(self.shown.tree.row(DAY).has("checked"), True)
        self.assertEqual(
            [editor.find("text", name).text for name in ("Wert", "Standard", "Minimum", "Maximum")],
            ["21.5", "21.5", "5", "30"],
        )
        editor.find("label", DAY)
        editor.find("label", "Gewünschte Raumtemperatur in der Nutzungszeit")
        self.shown.type_value(editor, "22.5")
        self.assertEqual(
            self.text_of(DAY),
            "Heizkreis 1 Raumsolltemperatur Tag................    22.5 °C  |     5.0 |    30.0 |    21.5 ",
        )
        self.assertTrue(self.shown.tree.row(DAY).has("checked"))

    def test_accepting_a_number_checks_its_parameter(self):
        self.shown.activate(self.shown.main)
        self.shown.check_all(False)
        editor = self.shown.open_expanded_editor(DAY)
        self.shown.type_value(editor, "22.5")
        checked = [row.name for row in self.shown.tree.rows() if row.has("checked")]
        self.assertEqual(checked, [self.text_of(DAY)])

    def test_number_beyond_its_limits_is_dropped(self):
        before = None
        for value in ("30.1", "4.9"):
            editor = self.shown.open_editor(DAY) if before else self.shown.open_expanded_editor(DAY)
            before = before or self.text_of(DAY)
            self.shown.type_value(editor, value)
            self.assertEqual(self.text_of(DAY), before)
        # The limit itself is a value.
        self.shown.type_value(self.shown.open_editor(DAY), "30")
        self.assertIn("    30.0 °C", self.text_of(DAY))

    def test_standard_value(self):
        self.shown.type_value(self.shown.open_expanded_editor(DAY), "22.5")
        editor = self.shown.open_editor(DAY)
        self.assertEqual(editor.find("text", "Wert").text, "22.5")
        editor.find("push button", "Standardwert übernehmen").press()
        wait_for(lambda: editor.find("text", "Wert").text == "21.5", "the standard value in the editor")
        editor.find("push button", "OK").press()
        wait_for(lambda: "    21.5 °C" in self.text_of(DAY), "the standard value in the tree")

    def test_cancel_changes_nothing(self):
        editor = self.shown.open_expanded_editor(DAY)
        before = self.text_of(DAY)
        self.shown.replace_value(editor, "22.5")
        editor.find("push button", "Abbrechen").press()
        wait_for(lambda: not editor.has("showing"), "the editor closed")
        self.assertEqual(self.text_of(DAY), before)

    def test_text(self):
        editor = self.shown.open_expanded_editor(PLACE)
        self.assertEqual(editor.find("text", "Wert").text, "Heizzentrale Haus 01")
        self.shown.type_value(editor, "Keller Haus 2")
        wait_for(lambda: self.text_of(PLACE).endswith(". Keller Haus 2"), "the new text in the tree")

    def test_text_is_limited_to_its_length(self):
        editor = self.shown.open_expanded_editor(PLACE)
        self.shown.type_value(editor, "12345678901234567890123", expected="12345678901234567890")
        wait_for(lambda: self.text_of(PLACE).endswith(". 12345678901234567890"), "the new text in the tree")


if __name__ == "__main__":
    unittest.main()
