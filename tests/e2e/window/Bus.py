"""What a screen reader sees: controls by role and name. Import it after a Desktop has been made."""
import time
import warnings

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

# Generous: it only ends a test that has failed anyway.
LONGEST_WAIT_S = 90
POLL_S = 0.05
LONGEST_ANSWER_MS = 30000

Atspi.init()
Atspi.set_timeout(LONGEST_ANSWER_MS, LONGEST_ANSWER_MS)
# Each question goes to the program: without a main loop here, copies would not be kept up to date.
Atspi.get_desktop(0).set_cache_mask(Atspi.Cache.NONE)

ROW = "table cell"


def wait_for(condition, what):
    """The first true value of `condition`. While a window changes, a control may vanish in mid-question."""
    end = time.monotonic() + LONGEST_WAIT_S
    last = None
    while time.monotonic() < end:
        try:
            last = condition()
            if last:
                return last
        except GLib.Error as error:
            last = error
        time.sleep(POLL_S)
    raise AssertionError(f"Waited in vain for {what}; last: {last!r}")


class Control:
    """One control of a program."""

    def __init__(self, accessible):
        self._accessible = accessible

    @property
    def role(self):
        return self._accessible.get_role_name()

    @property
    def name(self):
        return self._accessible.get_name()

    @property
    def description(self):
        return self._accessible.get_description()

    def has(self, state):
        """Whether it has the state ("showing", "focused", "checked", ...)."""
        wanted = getattr(Atspi.StateType, state.upper())
        return self._accessible.get_state_set().contains(wanted)

    @property
    def enabled(self):
        return self.has("sensitive")

    @property
    def text(self):
        """The text of a text box."""
        return Atspi.Text.get_text(self._accessible, 0, Atspi.Text.get_character_count(self._accessible))

    @text.setter
    def text(self, text):
        Atspi.EditableText.set_text_contents(self._accessible, text)
        wait_for(lambda: self.text == text, f"{text!r} in {self.name!r}")

    @property
    def place(self):
        """Left, top, width and height on the screen."""
        extents = Atspi.Component.get_extents(self._accessible, Atspi.CoordType.SCREEN)
        return extents.x, extents.y, extents.width, extents.height

    @property
    def labels(self):
        """The names of the controls that label it."""
        names = []
        for relation in self._accessible.get_relation_set():
            if relation.get_relation_type() == Atspi.RelationType.LABELLED_BY:
                names += [relation.get_target(i).get_name() for i in range(relation.get_n_targets())]
        return names

    @property
    def children(self):
        count = self._accessible.get_child_count()
        found = [self._accessible.get_child_at_index(i) for i in range(count)]
        return [Control(child) for child in found if child is not None]

    def descendants(self):
        """Every control below, rows of trees, lists and tables excepted."""
        for child in self.children:
            yield child
            if child.role not in ("tree", "list", "table"):
                yield from child.descendants()

    def find_all(self, role, name=None, description=None):
        """Showing controls of a role. A list shows its text as its name, and its own name is its label's."""
        return [
            control
            for control in self.descendants()
            if control.role == role
            and (name is None or (name in control.labels if role == "combo box" else control.name == name))
            and (description is None or control.description == description)
            and control.has("showing")
        ]

    def find(self, role, name=None, description=None):
        found = self.find_all(role, name, description)
        what = f"{role} {name or description!r} in {self.name!r}"
        if not found:
            shown = [(c.role, c.name) for c in self.descendants() if c.has("showing")]
            raise AssertionError(f"There is no {what}, but: {shown}")
        if len(found) > 1:
            raise AssertionError(f"There are {len(found)} times {what}")
        return found[0]

    def _actions(self):
        with warnings.catch_warnings():
            # The function that is to be used instead cannot be called from Python.
            warnings.simplefilter("ignore", DeprecationWarning)
            count = self._accessible.get_n_actions()
            return [Atspi.Action.get_action_name(self._accessible, i) for i in range(count)]

    def do(self, action):
        names = self._actions()
        if action not in names:
            raise AssertionError(f"{self.role} {self.name!r} knows only {names}, not {action}")
        Atspi.Action.do_action(self._accessible, names.index(action))

    def press(self):
        if not self.enabled:
            raise AssertionError(f"{self.role} {self.name!r} is disabled")
        self.do("Press")

    def focus(self):
        """A menu that is still closing gives the keyboard back to where it was, so it is asked for until it stays."""

        def focused():
            Atspi.Component.grab_focus(self._accessible)
            return self.has("focused")

        wait_for(focused, f"focus in {self.name!r}")


class FocusListener:
    """Hears of what gets the keyboard, as a screen reader does. A field in a table's cell is found in no other
    way."""

    def __init__(self):
        self._heard = []
        self._listener = Atspi.EventListener.new(lambda event: self._heard.append(Control(event.source)))
        self._listener.register("object:state-changed:focused")

    def close(self):
        self._listener.deregister("object:state-changed:focused")

    def control(self, role, name):
        """The one that got the keyboard last and has it still, or None."""
        while GLib.MainContext.default().iteration(False):
            pass
        last = self._heard[-1] if self._heard else None
        return last if last and (last.role, last.name) == (role, name) and last.has("focused") else None


class Table:
    """The cells of a table by row and title; columns that are not shown are there, too."""

    def __init__(self, control):
        self.control = control
        self._table = control._accessible
        columns = Atspi.Table.get_n_columns(self._table)
        self.headers = [Control(Atspi.Table.get_column_header(self._table, i)) for i in range(columns)]
        self.titles = [header.name for header in self.headers]

    @property
    def rows(self):
        return Atspi.Table.get_n_rows(self._table)

    def cell(self, row, title):
        return Control(Atspi.Table.get_accessible_at(self._table, row, self.titles.index(title)))

    def texts(self, title):
        """The texts of a column from top to bottom."""
        return [self.cell(row, title).name for row in range(self.rows)]

    def shown_titles(self):
        """From left to right."""
        shown = [(header.place[0], header.name) for header in self.headers if header.place[2] > 0]
        return [name for _, name in sorted(shown)]


def application(process_id):
    """The program of that process, or None as long as it is not on the bus."""
    desktop = Atspi.get_desktop(0)
    for i in range(desktop.get_child_count()):
        program = desktop.get_child_at_index(i)
        if program is not None and program.get_process_id() == process_id:
            return Control(program)
    return None
