"""A program that is killed while it saves leaves the old or the complete new file.

usage: saving_test.py [TIMES]     (100 if not given)
KALIVOR_SAVE_REPEATEDLY names the program.
"""
import os
import random
import shutil
import subprocess
import sys
import tempfile
import time

from wine import Wine, windows_path

SIZE = 60000
LONGEST_S = 0.05


def main():
    times = int(sys.argv[1]) if len(sys.argv) > 1 else 100
    folder = tempfile.mkdtemp()
    path = os.path.join(folder, "werte.qpf")
    moments = random.Random(1)
    counts = {"A": 0, "B": 0}
    abandoned = 0
    with Wine() as wine:
        for _ in range(times):
            program = wine.start([os.environ["KALIVOR_SAVE_REPEATEDLY"], windows_path(path), str(SIZE)],
                                 stdout=subprocess.PIPE)
            if program.stdout.readline().strip() != b"saving":
                sys.exit("The program does not save.")
            time.sleep(moments.uniform(0, LONGEST_S))
            program.kill()
            program.wait()
            program.stdout.close()
            with open(path, "rb") as file:
                content = file.read()
            if len(content) != SIZE or len(set(content)) != 1:
                sys.exit(f"Neither the old nor the new file: {len(content)} bytes of {set(content)}")
            counts[chr(content[0])] += 1
            files = os.listdir(folder)
            # At most what the last one has left: each save removes what is abandoned.
            if len(files) > 2:
                sys.exit(f"Left behind: {files}")
            abandoned += len(files) - 1
    shutil.rmtree(folder)
    print(f"killed {times} times: {counts['A']} and {counts['B']} complete files, {abandoned} with a file that was"
          " being written, removed by the next save")
    # Otherwise it was not killed while it saved.
    if times >= 100 and (min(counts.values()) == 0 or abandoned == 0):
        sys.exit("Only one kind of moment was met.")


if __name__ == "__main__":
    main()
