"""The window on a line over the network, with a real server on this computer."""
import os
import socket
import subprocess
import tempfile
import unittest

from Scenario import Scenario

from Bus import wait_for
from Window import stop, value_file

DAY = "Heizkreis 1 Raumsolltemperatur Tag"


def connects(port):
    try:
        socket.create_connection(("127.0.0.1", port)).close()
        return True
    except OSError:
        return False


class Network(Scenario):
    def setUp(self):
        super().setUp()
        # This one turns to the network, and each scenario is a process of its own.
        os.environ["KALIVOR_WITHOUT_NETWORK"] = "env"

    def server(self, device):
        """The address of a server that offers a device to this computer."""
        with socket.create_server(("127.0.0.1", 0)) as probe:
            port = probe.getsockname()[1]
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        configuration = os.path.join(folder.name, "ser2net.yaml")
        with open(configuration, "w", encoding="utf-8") as file:
            file.write(f"connection: &regler\n  accepter: telnet(rfc2217=true),tcp,127.0.0.1,{port}\n"
                       f"  connector: serialdev,{device},9600o71,local\n")
        process = subprocess.Popen([os.environ["KALIVOR_SER2NET"], "-n", "-c", configuration,
                                    "-P", os.path.join(folder.name, "pid")])
        self.addCleanup(stop, process)
        wait_for(lambda: connects(port), "the server")
        return f"rfc2217://127.0.0.1:{port}"

    def test_receive(self):
        controller = self.controller()
        file = value_file(controller.folder, "_Hk1RaumSollTag=22.5")
        controller = self.controller("--values", file)
        program = self.program_on(self.server(controller.device))
        program.activate(program.main)
        program.tree.expand_all()
        report = program.transfer("Empfangen")
        self.assertEqual(report.wait_for_end(), "Empfangen.." + "." * 111 + "\nEmpfangen beendet\n")
        self.assertIn("    22.5 °C", program.tree.row(DAY).name)
        report.close()
        self.assert_usable(program)


if __name__ == "__main__":
    unittest.main()
