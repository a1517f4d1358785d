"""The options dialog, used from outside."""
import configparser
import os
import shutil
import unittest

from Scenario import Scenario

from Bus import wait_for
from Window import EXAMPLES, HZL120, HZL131, LFT205, keys

TITLE = "Optionen"
PAGES = ["Schnittstelle", "Regler", "Dateien"]
MENU = {"Schnittstelle": ["alt+o", "s"], "Regler": ["ctrl+r"], "Dateien": ["alt+o", "d"]}


class Options(Scenario):
    def start(self, *options, **settings):
        program = self.program_on(self.controller(*options).device, **settings)
        program.activate(program.main)
        return program

    def open(self, program, page):
        program.menu(*MENU[page])
        options = program.window(TITLE)
        wait_for(lambda: self.page(options) == page, f"the page {page!r}")
        program.activate(options)
        return options

    def page(self, options):
        """The tab that is selected: the strip has its name."""
        return next(control.name for control in options.descendants() if control.role == "page tab list")

    def select(self, options, label, key):
        """Puts the list of the present page at an end with the keyboard."""
        # The list cannot be given the focus over the bus, but the button behind it can.
        options.find("push button", "OK").focus()
        keys("shift+Tab", key)
        return options.find("combo box", label)

    def press_key(self, options, caption):
        """Presses a button that may bring up a box: over the bus it would not answer until that is closed."""
        options.find("push button", caption).focus()
        keys("space")

    def closed(self, options):
        wait_for(lambda: not options.has("showing"), "the options closed")

    def settings(self, program):
        """What the program stores when it ends."""
        self.assertEqual(program.end(), 0)
        store = configparser.ConfigParser(interpolation=None)
        store.optionxform = str
        store.read(os.path.join(program.settings_folder, "KALIVOR", "KALIVOR.ini"), encoding="utf-8")
        return store["Settings"]

    def other_table(self):
        """A version table of another name with the second of the example's versions alone."""
        folder = os.path.join(self.folder(), "Neu")
        shutil.copytree(EXAMPLES, folder)
        with open(os.path.join(folder, "VF.INI"), "rb") as file:
            lines = file.readlines()
        path = os.path.join(folder, "T.INI")
        with open(path, "wb") as file:
            file.writelines([lines[0], lines[2]])
        return path

    def test_each_menu_item_opens_its_page(self):
        program = self.start()
        for page in PAGES:
            options = self.open(program, page)
            self.assertEqual([tab.name for tab in options.find_all("page tab")], PAGES)
        # The same dialog, left open.
        self.assertEqual(self.page(self.open(program, "Schnittstelle")), "Schnittstelle")
        for page in ("Regler", "Dateien", "Schnittstelle"):
            keys("ctrl+Tab")
            wait_for(lambda expected=page: self.page(options) == expected, f"the page {page!r}")
        keys("Escape")
        self.closed(options)
        self.assert_usable(program)

    def test_ok_stores_port_and_address(self):
        program = self.start()
        options = self.open(program, "Schnittstelle")
        ports = options.find("combo box", "Schnittstelle")
        self.assertEqual(program.entries(ports), [f"COM{number}" for number in range(1, 9)])
        self.select(options, "Schnittstelle", "End")
        wait_for(lambda: ports.name == "COM8", "COM8 selected")
        keys("ctrl+Tab")
        addresses = options.find("combo box", "Geräteadresse")
        self.select(options, "Geräteadresse", "End")
        wait_for(lambda: addresses.name == " 255", "the last address selected")
        options.find("push button", "OK").press()
        self.closed(options)
        self.assert_usable(program)
        settings = self.settings(program)
        self.assertEqual((settings["Schnittstelle"], settings["Adresse"]), ("8", "255"))

    def test_apply_stays_open_and_cancel_forgets(self):
        program = self.start()
        options = self.open(program, "Regler")
        addresses = self.select(options, "Geräteadresse", "End")
        wait_for(lambda: addresses.name == " 255", "the last address selected")
        # By key: pressed over the bus, a button clicks a tenth of a second later.
        self.press_key(options, "Übernehmen")
        self.select(options, "Geräteadresse", "Home")
        wait_for(lambda: addresses.name == " 0", "the first address selected")
        self.assertTrue(options.has("showing"))
        options.find("push button", "Abbrechen").press()
        self.closed(options)
        options = self.open(program, "Regler")
        addresses = options.find("combo box", "Geräteadresse")
        wait_for(lambda: addresses.name == " 255", "the applied address")
        keys("Escape")
        self.closed(options)
        self.assertEqual(self.settings(program)["Adresse"], "255")

    def test_the_address_reaches_the_line(self):
        program = self.start("--address", "0")
        report = program.transfer("Empfangen")
        self.assertIn("ERROR: kein Empfang", report.wait_for_end())
        report.close()
        options = self.open(program, "Regler")
        addresses = self.select(options, "Geräteadresse", "Home")
        wait_for(lambda: addresses.name == " 0", "the first address selected")
        options.find("push button", "OK").press()
        self.closed(options)
        report = program.transfer("Empfangen")
        self.assertTrue(report.wait_for_end().endswith(".\nEmpfangen beendet\n"))

    def test_another_table_is_read(self):
        program = self.start()
        self.assertEqual(program.entries(program.versions), [HZL120, HZL131, LFT205])
        options = self.open(program, "Dateien")
        path = options.find("text", "Versionstabelle")
        self.assertEqual(path.text, os.path.join(EXAMPLES, "VF.INI"))
        table = self.other_table()
        path.text = table
        options.find("push button", "Übernehmen").press()
        wait_for(lambda: program.entries(program.versions) == [HZL131], "the other versions")
        self.assertEqual(program.versions.name, HZL131)
        self.assertTrue(options.has("showing"))
        options.find("push button", "OK").press()
        self.closed(options)
        self.assert_usable(program)
        settings = self.settings(program)
        self.assertEqual(settings["Inipath"] + settings["Inifile"], table)

    def test_a_table_is_browsed_for(self):
        program = self.start()
        options = self.open(program, "Dateien")
        self.press_key(options, "Browse")
        program.cancel_file("Parameterfile")
        path = options.find("text", "Versionstabelle")
        self.assertEqual(path.text, os.path.join(EXAMPLES, "VF.INI"))
        self.press_key(options, "Browse")
        table = self.other_table()
        program.choose_file("Parameterfile", table)
        wait_for(lambda: path.text == table, "the chosen table")
        self.assertEqual(program.versions.name, HZL120)
        options.find("push button", "OK").press()
        self.closed(options)
        wait_for(lambda: program.versions.name == HZL131, "the other version")

    def test_a_path_without_folder_is_refused(self):
        program = self.start()
        options = self.open(program, "Dateien")
        path = options.find("text", "Versionstabelle")
        path.text = "VF.INI"
        self.press_key(options, "OK")
        self.assertEqual(program.message(), "Ungültiges Argument.")
        self.assertTrue(options.has("showing"))
        self.assertEqual(program.entries(program.versions), [HZL120, HZL131, LFT205])
        keys("Escape")
        self.closed(options)
        options = self.open(program, "Dateien")
        self.assertEqual(options.find("text", "Versionstabelle").text, os.path.join(EXAMPLES, "VF.INI"))

    def test_a_missing_table_is_said(self):
        program = self.start()
        options = self.open(program, "Dateien")
        options.find("text", "Versionstabelle").text = "/fehlt/VF.INI"
        self.press_key(options, "OK")
        lines = program.message().split("\n")
        self.assertEqual(lines[:2], ["Fehler beim Lesen von", "/fehlt/VF.INI"])
        self.assertEqual(lines[-2:], ["Ueberprüfen Sie die Einstellungen in Optionen -> Dateien", ""])
        self.closed(options)
        wait_for(lambda: program.entries(program.versions) == [], "an empty list")
        self.assertEqual(program.state, "Ready")

    def test_each_port_names_its_device(self):
        controller = self.controller()
        folder = self.folder()
        os.mkdir(os.path.join(folder, "KALIVOR"))
        with open(os.path.join(folder, "KALIVOR", "KALIVOR.ini"), "w", encoding="utf-8") as file:
            file.write(f"[Ports]\nCOM7={controller.device}\nCOM8=/fehlt/line\n")
        program = self.program_on(None, settings_folder=folder)
        options = self.open(program, "Schnittstelle")
        ports = self.select(options, "Schnittstelle", "End")
        wait_for(lambda: ports.name == "COM8", "COM8 selected")
        keys("alt+Down")
        entries = ports.children[0].children
        wait_for(lambda: entries[6].description == controller.device, "the device of COM7")
        self.assertEqual(entries[7].description, "nicht vorhanden")
        keys("Escape", "Escape")
        self.closed(options)

    def test_rests_during_a_transfer(self):
        program = self.start("--fault", "late:300")
        program.transfer_nothing()
        options = self.open(program, "Regler")
        report = program.transfer("Empfangen")
        text = report.wait_for_text("Empfangen...")
        self.assertFalse(options.enabled)
        program.ask_to_close(options)
        wait_for(lambda: len(report.text) > len(text) + 3, "more of the transfer")
        self.assertTrue(options.has("showing"))
        report.button("Abbrechen").press()
        self.assertTrue(report.wait_for_end().endswith("\nEmpfangen abgebrochen\n"))
        wait_for(lambda: options.enabled, "the options enabled again")
        report.close()
        self.assert_usable(program)


if __name__ == "__main__":
    unittest.main()
