"""Runs a program for Windows with two serial ports, COM9 and COM10, that are joined by a cable: two pseudo-terminals
whose characters are carried from one to the other.

usage: joined_ports.py PROGRAM [ARGUMENT...]

The program finds "COM9 COM10 FOLDER" in KALIVOR_JOINED_PORTS. A file "pull-out" or "plug-in" that it makes in FOLDER
takes COM9 away or brings it back; it is removed when that is done.
"""
import os
import select
import sys
import termios
import threading
import tty

from wine import Wine, windows_path


class Terminal:
    """A pseudo-terminal behind a link that keeps its name."""

    def __init__(self, link):
        self.link = link
        self.master = -1
        self.slave = -1
        self.open()

    def open(self):
        self.master, self.slave = os.openpty()
        tty.setraw(self.slave, termios.TCSANOW)
        os.symlink(os.ttyname(self.slave), self.link)

    def close(self):
        os.unlink(self.link)
        os.close(self.slave)
        os.close(self.master)
        self.master = -1


class Cable(threading.Thread):
    def __init__(self, folder):
        super().__init__(daemon=True)
        self.folder = folder
        self.pc = Terminal(os.path.join(folder, "pc"))
        self.far = Terminal(os.path.join(folder, "far"))

    def answer(self, question, act):
        path = os.path.join(self.folder, question)
        if os.path.exists(path):
            act()
            os.unlink(path)

    def run(self):
        while True:
            ends = {self.far.master: self.pc.master}
            if self.pc.master >= 0:
                ends[self.pc.master] = self.far.master
            for end in select.select(list(ends), [], [], 0.005)[0]:
                characters = os.read(end, 4096)
                # Without a partner they are lost, as on a cable.
                if ends[end] >= 0:
                    os.write(ends[end], characters)
            self.answer("pull-out", self.pc.close)
            self.answer("plug-in", self.pc.open)


def main():
    with Wine() as wine:
        cable = Cable(wine.folder)
        wine.map_ports({"COM9": cable.pc.link, "COM10": cable.far.link})
        cable.start()
        wine.environment["KALIVOR_JOINED_PORTS"] = "COM9 COM10 " + windows_path(wine.folder)
        return wine.start(sys.argv[1:]).wait()


if __name__ == "__main__":
    sys.exit(main())
