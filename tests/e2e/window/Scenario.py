"""The base of the scenarios. Importing it starts the desktop that they run on; import it first."""
import atexit
import sys
import tempfile
import unittest

from Desktop import Desktop

try:
    atexit.register(Desktop().close)
except RuntimeError as error:
    sys.exit(str(error))

from Window import Controller, Program  # noqa: E402


class Scenario(unittest.TestCase):
    """Programs end with the scenario. The desktop program has to survive it."""

    maxDiff = None

    def controller(self, *options):
        controller = Controller(*options)
        self.addCleanup(controller.close)
        return controller

    def program_on(self, device, *arguments, **options):
        program = Program(device, *arguments, **options)
        self.addCleanup(program.close)
        return program

    def program(self, *options):
        """The desktop program on a simulated controller with these options."""
        return self.program_on(self.controller(*options).device)

    def folder(self):
        folder = tempfile.TemporaryDirectory(prefix="kalivor-scenario-")
        self.addCleanup(folder.cleanup)
        return folder.name

    def assert_usable(self, program):
        """Nothing of an operation is left behind."""
        self.assertEqual(program.state, "Ready")
        self.assertTrue(program.main.enabled)
        for caption in ("Empfangen", "Senden", "Standard", "Vergleichen"):
            self.assertTrue(program.button(caption).enabled, caption)
        self.assertTrue(program.tree.rows())
