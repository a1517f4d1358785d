"""A display, a session bus and a window manager of this process's own, and nothing of the user's."""
import importlib.util
import os
import shutil
import subprocess
import tempfile
import time

# What the tests call, and the Debian package that brings it.
PROGRAMS = {
    "Xvfb": "xvfb",
    "dbus-daemon": "dbus-daemon",
    "openbox": "openbox",
    "xdotool": "xdotool",
}
FILES = {
    "/usr/share/dbus-1/services/org.a11y.Bus.service": "at-spi2-core",
}
START_S = 60
STOP_S = 10


def missing_packages():
    """Names of the Debian packages that are needed and not there."""
    missing = [package for program, package in PROGRAMS.items() if not shutil.which(program)]
    missing += [package for file, package in FILES.items() if not os.path.exists(file)]
    if importlib.util.find_spec("gi") is None:
        return sorted(missing + ["python3-gi", "gir1.2-atspi-2.0"])
    import gi

    try:
        gi.require_version("Atspi", "2.0")
    except ValueError:
        missing.append("gir1.2-atspi-2.0")
    return sorted(missing)


def stop(process):
    """Ends a child and waits for it."""
    if process.poll() is None:
        process.terminate()
    try:
        process.wait(STOP_S)
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()
    if process.stdout is not None:
        process.stdout.close()


class Desktop:
    """Sets the environment of this process and its children, so there is one in a process."""

    def __init__(self):
        missing = missing_packages()
        if missing:
            raise RuntimeError("Tests of the window need these Debian packages: " + " ".join(missing))
        self.folder = tempfile.mkdtemp(prefix="kalivor-window-")
        os.chmod(self.folder, 0o700)
        self._children = []
        try:
            self._start()
        except BaseException:
            self.close()
            raise

    def _start(self):
        for name in ("AT_SPI_BUS_ADDRESS", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "QT_SCALE_FACTOR"):
            os.environ.pop(name, None)
        os.environ.update(
            DISPLAY=self._start_display(),
            HOME=self.folder,
            XDG_RUNTIME_DIR=self.folder,
            XDG_CONFIG_HOME=self.folder,
            XDG_CACHE_HOME=self.folder,
            # Rows of a tree that has been rebuilt are asked for once more. The toolkit would note each.
            QT_LOGGING_RULES="qt.accessibility.atspi.warning=false",
            QT_ACCESSIBILITY="1",
            QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1",
        )
        # The bus of the accessibility is started through this one, in its environment.
        os.environ["DBUS_SESSION_BUS_ADDRESS"] = self._start_bus()
        self._start_window_manager()

    def _start_child(self, command, **options):
        with open(os.path.join(self.folder, os.path.basename(command[0]) + ".log"), "wb") as log:
            options.setdefault("stdout", log)
            child = subprocess.Popen(command, stderr=log, **options)
        self._children.append(child)
        return child

    def _start_display(self):
        reader, writer = os.pipe()
        # Without -noreset it would restart when its last client leaves, and take the next one with it.
        options = ["-screen", "0", "1280x1024x24", "-nolisten", "tcp", "-noreset"]
        self._start_child(["Xvfb", "-displayfd", str(writer), *options], pass_fds=[writer])
        os.close(writer)
        with open(reader, encoding="ascii") as answer:
            number = answer.readline().strip()
        if not number:
            raise RuntimeError("Xvfb did not start.")
        return ":" + number

    def _start_bus(self):
        bus = self._start_child(
            ["dbus-daemon", "--session", "--nofork", "--print-address=1"], stdout=subprocess.PIPE, text=True
        )
        address = bus.stdout.readline().strip()
        if not address:
            raise RuntimeError("dbus-daemon did not start.")
        return address

    def _start_window_manager(self):
        """Windows that are there before it do not always get the keyboard."""
        self._start_child(["openbox"])
        end = time.monotonic() + START_S
        question = ["xdotool", "get_num_desktops"]
        while subprocess.run(question, check=False, capture_output=True).returncode != 0:
            if time.monotonic() > end:
                raise RuntimeError("openbox did not start.")
            time.sleep(0.05)

    def close(self):
        for child in reversed(self._children):
            stop(child)
        shutil.rmtree(self.folder, ignore_errors=True)
