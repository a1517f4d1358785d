"""kalivor-sim.exe answers on its network connection, and ends with it.

KALIVOR_SIM_EXE and KALIVOR_EXAMPLES name the program and the example.
"""
import os
import socket
import subprocess
import unittest

from wine import Wine, windows_path

LONG_S = 30


def sealed(text):
    """With its sum and its end, as a telegram."""
    return text + b"%02X\r" % (sum(text) % 256)


class Simulator(unittest.TestCase):
    def setUp(self):
        self.wine = Wine()
        self.addCleanup(self.wine.__exit__)

    def start(self, *options):
        self.program = self.wine.start(
            [os.environ["KALIVOR_SIM_EXE"], "--ini-path", windows_path(os.environ["KALIVOR_EXAMPLES"])] + list(options),
            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.addCleanup(self.program.stdout.close)
        line = self.program.stdout.readline().decode()
        self.assertRegex(line, r"^socket://127\.0\.0\.1:\d+\n$")
        connection = socket.create_connection(("127.0.0.1", int(line.split(":")[2])), LONG_S)
        self.addCleanup(connection.close)
        return connection

    def test_names_its_version(self):
        connection = self.start()
        for _ in range(3):
            connection.sendall(sealed(b"#0102v00"))
            reply = b""
            while not reply.endswith(b"\r"):
                reply += connection.recv(100)
            self.assertEqual(reply, sealed(reply[:-3]))
            self.assertIn(b"HZL", reply)

    def test_a_line_that_is_pulled_out_ends_the_program(self):
        connection = self.start("--fault", "unplug")
        connection.sendall(sealed(b"#0102v00"))
        while connection.recv(100):
            pass
        self.assertEqual(self.program.wait(LONG_S), 0)


if __name__ == "__main__":
    unittest.main(verbosity=2)
