"""The programs under test and the windows of the desktop program, driven from outside."""
import os
import shutil
import subprocess
import tempfile
import time
from contextlib import suppress

from Bus import ROW, GLib, application, wait_for
from Desktop import stop

EXAMPLES = os.environ["KALIVOR_EXAMPLES"]
HZL120, HZL131, LFT205 = "HZL-012.0", "HZL-013.1", "LFT-020.5"
ENCODING = "utf-8"
MENU_S = 2
KEY_LOST_S = 5


def keys(*names):
    """Key strokes to the window that has the focus, as from a keyboard."""
    subprocess.run(["xdotool", "key", "--clearmodifiers", *names], check=True)


def type_text(text):
    """The same, letter by letter."""
    subprocess.run(["xdotool", "type", text], check=True)


def value_file(folder, *assignments):
    """A value file of the first controller version: the standard values but for `assignments`."""
    path = os.path.join(folder, "values.qpf")
    sets = [word for assignment in assignments for word in ("--set", assignment)]
    command = [os.environ["KALIVOR_CLI"], "--ini-path", EXAMPLES, *sets, "--save", path, "params"]
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL)
    return path


class Controller:
    """A simulated controller behind a pseudo-terminal."""

    def __init__(self, *options):
        self.folder = tempfile.mkdtemp(prefix="kalivor-controller-")
        self._dump = os.path.join(self.folder, "memory.txt")
        # Not the terminal's own name: when the line has been unplugged, another controller may get it.
        self.device = os.path.join(self.folder, "line")
        command = [os.environ["KALIVOR_SIM"], "--ini-path", EXAMPLES, "--link", self.device]
        command += ["--dump", self._dump, *options]
        self._process = subprocess.Popen(command, stdout=subprocess.PIPE, text=True)
        if not self._process.stdout.readline():
            self.close()
            raise AssertionError("The simulated controller did not start.")

    def memory(self):
        """Stops it. Its words by their addresses, both as hexadecimal text."""
        stop(self._process)
        with open(self._dump, encoding=ENCODING) as dump:
            return dict(line.split() for line in dump)

    def close(self):
        stop(self._process)
        shutil.rmtree(self.folder, ignore_errors=True)


class Tree:
    """The parameters. Rows of collapsed groups are not there."""

    def __init__(self, control, next_button):
        self.control = control
        self._next_button = next_button

    def rows(self):
        return [row for row in self.control.children if row.role == ROW]

    def texts(self):
        return [row.name for row in self.rows()]

    def find(self, start):
        """The row whose text starts so, or None."""
        return next((row for row in self.rows() if row.name.startswith(start)), None)

    def row(self, start):
        return wait_for(lambda: self.find(start), f"a row {start!r}")

    def go_to_top(self):
        # The tree and the lists cannot be given the focus over the bus, but the button behind them can.
        self._next_button.focus()
        keys("shift+Tab", "Home")
        wait_for(lambda: self.rows()[0].has("focused"), "the current row at the top")

    def expand_all(self):
        self.go_to_top()
        before = len(self.rows())
        keys("KP_Multiply")
        wait_for(lambda: len(self.rows()) > before, "expanded groups")

    def go_to(self, start):
        """Makes a row the current one, with the keyboard."""
        position = next(i for i, row in enumerate(self.rows()) if row.name.startswith(start))
        self.go_to_top()
        if position:
            keys(*["Down"] * position)
        wait_for(lambda: self.rows()[position].has("focused"), f"the current row at {start!r}")


class Report:
    """The report dialog. During a transfer the program takes half a second for each answer, so its controls
    are searched once only."""

    def __init__(self, control):
        self.control = control
        self._controls = {(child.role, child.name): child for child in control.children}

    @property
    def text(self):
        return self._controls["text", "Report"].text

    def button(self, caption):
        return self._controls["push button", caption]

    def wait_for_text(self, part):
        """The whole text as soon as `part` is in it."""
        return wait_for(lambda: part in self.text and self.text, f"{part!r} in the report")

    def wait_for_end(self):
        """The whole text when the transfer is over."""
        wait_for(lambda: self.button("OK").enabled, "the end of the transfer")
        return self.text

    def close(self):
        self.button("OK").press()
        wait_for(lambda: not self.control.has("showing"), "the report closed")


class Program:
    """The desktop program with settings of its own, on a line."""

    def __init__(self, device, *arguments, ini_path=EXAMPLES, settings_folder=None):
        """`ini_path` and `device` may be None: what is stored counts then. `settings_folder` is left as it is
        at the end; without one the program has a new one. `messages` are the boxes before the window."""
        self._own_folder = settings_folder is None
        self.settings_folder = settings_folder or tempfile.mkdtemp(prefix="kalivor-settings-")
        environment = dict(os.environ, XDG_CONFIG_HOME=self.settings_folder,
                           XDG_STATE_HOME=self.settings_folder, XDG_DATA_HOME=self.settings_folder)
        # Whoever turns to the network is killed; the display is reached by a local socket.
        command = [os.environ["KALIVOR_WITHOUT_NETWORK"], os.environ["KALIVOR"], *arguments]
        command += ["--ini-path", ini_path] if ini_path else []
        command += ["--port", device] if device else []
        self.process = subprocess.Popen(command, env=environment)
        self._report = None
        self.messages = []
        self.main = self._main_window()
        self._buttons = {button.name: button for button in self.main.find_all("push button")}
        self._state = self.main.find("label", description="Zustand")
        self.versions = self.main.find("combo box", "Versionsnummer")
        self.plants = self.main.find("combo box", "Anlageart")
        self.tree = Tree(self.main.find("tree", "Parameter"), self.button("Empfangen"))

    def _main_window(self):
        """The main window, after the boxes that come before it."""
        while True:
            first = self.window("KALIVOR", ("frame", "alert"))
            if first.role == "frame":
                return first
            self.messages.append(self.answer(first))

    def find_window(self, title, roles=("frame", "dialog", "alert")):
        program = application(self.process.pid)
        for window in program.children if program else []:
            if window.name == title and window.has("showing") and window.role in roles:
                return window
        return None

    def window(self, title, roles=("frame", "dialog", "alert")):
        def shown():
            if self.process.poll() is not None:
                raise AssertionError(f"The program has ended with status {self.process.returncode}")
            return self.find_window(title, roles)

        return wait_for(shown, f"a window {title!r}")

    def is_shown(self, title):
        return self.find_window(title) is not None

    # Message boxes and file dialogs

    def answer(self, box):
        """Presses OK in a message box. Returns its text."""
        text = box.find("label").name
        box.find("push button", "OK").press()
        wait_for(lambda: not box.has("showing"), "the box closed")
        return text

    def message(self):
        """Answers the next message box. Returns its text."""
        return self.answer(self.window("KALIVOR", ("alert",)))

    def choose_file(self, title, path):
        """Accepts a file dialog with this path."""
        dialog = self.window(title)
        name = dialog.find("text")
        name.text = path
        name.focus()
        keys("Return")
        wait_for(lambda: not self.is_shown(title), f"the dialog {title!r} closed")

    def cancel_file(self, title):
        dialog = self.window(title)
        self.activate(dialog)
        keys("Escape")
        wait_for(lambda: not self.is_shown(title), f"the dialog {title!r} closed")

    # The main window

    def menu(self, stroke, *item):
        """A key stroke to the main window: a shortcut, or a menu's with those that choose one of its items."""
        self.activate(self.main)
        if not item:
            keys(stroke)
            return
        # The toolkit takes a menu's letter after an earlier menu for the end of that one, and wants it again.
        wait_for(lambda: self._open_menu(stroke), "an open menu")
        keys(*item)
        # A letter chooses an item, which may end the program.
        if len(item[-1]) == 1:
            with suppress(GLib.Error):
                self._menu_becomes(False)

    def _open_menu(self, stroke):
        keys(stroke)
        return self._menu_becomes(True)

    def _menu_becomes(self, is_open):
        """Whether one is open soon, or none any more."""
        menus = self.main.find("menu bar").children
        end = time.monotonic() + MENU_S
        while time.monotonic() < end:
            if any(menu.find_all("menu item") for menu in menus) == is_open:
                return True
        return False

    @property
    def file(self):
        """The current value file, as the status bar shows it."""
        return self.main.find("label", description="Wertedatei").name

    @property
    def state(self):
        return self._state.name

    def button(self, caption):
        return self._buttons[caption]

    def press(self, caption):
        self.button(caption).press()

    def transfer(self, caption):
        """Starts a transfer; its report."""
        self.press(caption)
        if self._report is None:
            self._report = Report(self.window("Report"))
        wait_for(lambda: self._report.control.has("showing"), "the report")
        return self._report

    def transfer_nothing(self):
        """Receives with no parameter checked. After it, the report of a slow transfer is found at once."""
        self.check_all(False)
        report = self.transfer("Empfangen")
        text = report.wait_for_end()
        report.close()
        self.check_all(True)
        return text

    def check_all(self, checked):
        """Checks or unchecks all parameters with the keyboard."""
        self.activate(self.main)
        self.tree.go_to_top()
        if self.tree.rows()[0].has("checked") != checked:
            keys("space")
        wait_for(lambda: all(row.has("checked") == checked for row in self.tree.rows()), "the check marks")

    def entries(self, combo):
        """The texts in a list."""
        return [entry.name for entry in combo.children[0].children]

    def open_editor(self, start):
        """Opens the editor of a parameter with the keyboard."""
        self.activate(self.main)
        self.tree.go_to(start)
        keys("Return")
        return self.window("Edit Parameter")

    def open_expanded_editor(self, start):
        """The same for a parameter in a group that may be collapsed."""
        self.activate(self.main)
        self.tree.expand_all()
        return self.open_editor(start)

    def replace_value(self, editor, text, expected=None):
        """Replaces the value in an editor with the keyboard. `expected` is what it takes of the text."""
        value = editor.find("text", "Wert")
        wait_for(lambda: editor.has("active") and value.has("focused"), "focus in the editor")
        keys("ctrl+a")
        type_text(text)
        expected = text if expected is None else expected
        wait_for(lambda: value.text == expected, f"{expected!r} in the editor")

    def type_value(self, editor, text, expected=None):
        """The same, and accepts it."""
        self.replace_value(editor, text, expected)
        keys("Return")
        wait_for(lambda: not editor.has("showing"), "the editor closed")

    # The window manager

    def activate(self, window):
        """Puts it in front and gives it the keyboard. The window manager may still be starting."""
        wait_for(lambda: window.has("active") or self._activate(window), f"{window.name!r} active")

    def ask_to_close(self, window):
        """Closes it as by its frame."""
        wait_for(lambda: self._activate(window), f"{window.name!r} in front")
        keys("alt+F4")

    def close_main(self):
        """Closes the program by its frame. On a busy machine the window manager misses a key that comes right after
        the window did, so it is pressed until it works."""

        def ended():
            if self.process.poll() is None and self._activate(self.main):
                keys("alt+F4")
            return self.process.poll() is not None

        wait_for(ended, "the end of the program")

    def _activate(self, window):
        search = ["search", "--onlyvisible", "--all", "--pid", str(self.process.pid)]
        command = ["xdotool", *search, "--name", f"^{window.name}$", "windowactivate", "--sync"]
        return subprocess.run(command, check=False, capture_output=True).returncode == 0

    # The process

    def processor_ticks(self):
        """Processor time of the process so far."""
        with open(f"/proc/{self.process.pid}/stat", encoding=ENCODING) as file:
            fields = file.read().rpartition(")")[2].split()
        return int(fields[11]) + int(fields[12])

    def end(self):
        """Closes the main window. The program's status when it has ended."""
        self.ask_to_close(self.main)
        try:
            self.process.wait(KEY_LOST_S)
        except subprocess.TimeoutExpired:
            # A key that comes while the focus still moves can be lost on its way to the program.
            self.ask_to_close(self.main)
        wait_for(lambda: self.process.poll() is not None, "the end of the program")
        return self.process.returncode

    def close(self):
        stop(self.process)
        if self._own_folder:
            shutil.rmtree(self.settings_folder, ignore_errors=True)
